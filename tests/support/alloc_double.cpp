// Test double for libvprcore's vprMalloc: forwards to the real one unless a
// MallocFailure scope asked for a failure.  Linked into every test binary;
// the definition in the executable interposes the shared library's.
#include <dlfcn.h>

#include <atomic>
#include <cstddef>

#include "vprtest.h"

namespace {
std::atomic<long> g_calls{0};
std::atomic<long> g_fail_at{0};  // call number that fails; 0: none

using MallocFn = void* (*)(size_t);
MallocFn real_malloc() {
  static MallocFn fn = reinterpret_cast<MallocFn>(dlsym(RTLD_NEXT, "vprMalloc"));
  return fn;
}
}  // namespace

extern "C" __attribute__((visibility("default"))) void* vprMalloc(size_t size) {
  const long n = ++g_calls;
  if (g_fail_at.load() != 0 && n == g_fail_at.load()) return nullptr;
  return real_malloc()(size);
}

namespace vprtest {
MallocFailure::MallocFailure(int nth) { g_fail_at = g_calls.load() + nth; }
MallocFailure::~MallocFailure() { g_fail_at = 0; }
long malloc_calls() { return g_calls.load(); }
}  // namespace vprtest
