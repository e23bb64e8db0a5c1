// Frame benchmarks: the cost of the row-parallel policy itself, on a plain
// row kernel (3840x2160, one byte per sample), serial and threaded.
#include <cstring>

#include "bench_util.h"
#include "core/parallel.h"
#include "vprcore.h"
#include "vprjp.h"

namespace vprbench {
void use_threads(int n) { vprSetNumThreads(n); }
}  // namespace vprbench

namespace {

void BM_Core_ParallelRows_Copy(benchmark::State& s) {
  const int w = 3840, h = 2160;
  std::vector<uint8_t> src = vprbench::photo_like(w, h, 1), dst(src.size());
  vprbench::use_threads(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    vpr::parallel_rows(w, h, h, [&](int y0, int y1) {
      std::memcpy(dst.data() + static_cast<size_t>(y0) * w, src.data() + static_cast<size_t>(y0) * w,
                  static_cast<size_t>(y1 - y0) * w);
    });
    benchmark::DoNotOptimize(dst.data());
  }
  vprbench::use_threads(0);
  vprbench::set_mpix(s, double(w) * h);
  vprbench::set_bytes(s, 2.0 * w * h);
}
BENCHMARK(BM_Core_ParallelRows_Copy)->Arg(1)->Arg(0)->ArgName("threads")->UseRealTime();

void BM_Core_GetLibVersion(benchmark::State& s) {
  for (auto _ : s) benchmark::DoNotOptimize(vprjGetLibVersion());
}
BENCHMARK(BM_Core_GetLibVersion);

}  // namespace
