// libvprcore: aligned allocation and the thread count of whole-image calls.
#include "vprcore.h"

#include <omp.h>

#include <atomic>
#include <cstdlib>

namespace {
std::atomic<int> g_threads{0};  // 0: follow OpenMP's default
}

extern "C" {

VPRCORE_API void* vprMalloc(size_t size) {
  if (size == 0) return nullptr;
  void* p = nullptr;
  if (posix_memalign(&p, VPRCORE_ALIGNMENT, size) != 0) return nullptr;
  return p;
}

VPRCORE_API void vprFree(void* p) { std::free(p); }

VPRCORE_API int ownGetNumThreads(void) {
  const int n = g_threads.load(std::memory_order_relaxed);
  if (n > 0) return n;
  const int d = omp_get_max_threads();
  return d > 0 ? d : 1;
}

VPRCORE_API int vprSetNumThreads(int n) {
  g_threads.store(n > 0 ? n : 0, std::memory_order_relaxed);
  return ownGetNumThreads();
}

VPRCORE_API int vprGetNumThreads(void) { return ownGetNumThreads(); }

}  // extern "C"
