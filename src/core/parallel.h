// The row-parallel policy of the whole-image functions.
//
//   parallel_rows(width, height, rows, kernel)
//
// calls kernel(first_row, end_row) over [0, rows) and returns when all rows
// are done.  `width` x `height` is the image's sample count that decides
// between the serial and the parallel path; `rows` is the number of rows the
// kernel iterates over (the output rows of a sampling function; usually
// `height`).
//   - at most 8192 samples: one call kernel(0, rows) on the calling thread;
//   - inside an active OpenMP parallel region: the same, serially;
//   - otherwise one parallel region with ownGetNumThreads() threads, each
//     taking one contiguous block of rows, the blocks as equal as possible
//     (the first rows % T threads get one row more).
// The kernel must treat rows independently; the result then does not depend
// on the thread count.
#pragma once

#include <cstdint>

namespace vpr {

inline constexpr int64_t kParallelMinSamples = 8192;

// Thread count from libvprcore, and whether a parallel region may open now.
int parallel_thread_count();
bool parallel_region_allowed();
// Thin wrappers so this header does not need <omp.h> everywhere.
int omp_thread_index();
int omp_team_size();

// Block of rows of thread `t` out of `n` over `rows` rows.
inline void parallel_row_block(int rows, int t, int n, int* first, int* end) {
  const int base = rows / n, extra = rows % n;
  *first = t * base + (t < extra ? t : extra);
  *end = *first + base + (t < extra ? 1 : 0);
}

// True when an image of width x height samples takes the parallel path
// (given more than one thread).  The product is formed in 64 bits so very
// large images are never mistaken for small ones.
inline bool parallel_by_size(int32_t width, int32_t height) {
  return static_cast<int64_t>(width) * height > kParallelMinSamples;
}

template <class Kernel>
void parallel_rows(int32_t width, int32_t height, int rows, Kernel&& kernel) {
  if (rows <= 0) return;
  const int threads = parallel_thread_count();
  if (!parallel_by_size(width, height) || !parallel_region_allowed()) {
    kernel(0, rows);
    return;
  }
#pragma omp parallel num_threads(threads)
  {
    int first, end;
    parallel_row_block(rows, omp_thread_index(), omp_team_size(), &first, &end);
    if (first < end) kernel(first, end);
  }
}

}  // namespace vpr
