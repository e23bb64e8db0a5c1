#include "core/parallel.h"

#include <omp.h>

#include "vprcore.h"

namespace vpr {

int parallel_thread_count() {
  const int n = ownGetNumThreads();
  return n > 0 ? n : 1;
}

// A region opened inside an active one would be serialised (or nested) by
// the runtime; the library then stays on the calling thread instead.
bool parallel_region_allowed() { return !omp_in_parallel(); }

int omp_thread_index() { return omp_get_thread_num(); }
int omp_team_size() { return omp_get_num_threads(); }

}  // namespace vpr
