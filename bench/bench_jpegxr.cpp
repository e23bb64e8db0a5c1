// JPEG XR photo core transform throughput (MPix/s), every form; the scalar
// twins for scale; jxrlib's 4x4 core transform on the same blocks as peer.
#include <cstring>
#include <string>
#include <vector>

#include "bench_util.h"
#include "jpegxr/pct.h"
#include "jpegxr/vlc.h"
#include "vprjp.h"

#if VPR_HAVE_JXR
extern "C" {
void strDCT4x4Stage1(int* p);
void strIDCT4x4Stage1(int* p);
}
#endif

namespace {

constexpr int kW = 512, kH = 512;  // 0.5 MB (16s) to 1 MB (32-bit): stays in L2

template <class T>
std::vector<T> test_plane(int w, int h) {
  const std::vector<uint8_t> img = vprbench::photo_like(w, h, 1);
  std::vector<T> v(img.size());
  for (size_t i = 0; i < v.size(); ++i) v[i] = static_cast<T>(static_cast<int>(img[i]) - 128);
  return v;
}

// Whole region through the exported entry.
template <class T>
void BM_region(benchmark::State& s, VprStatus (*fn)(T*, int, VprRoiSize)) {
  std::vector<T> buf = test_plane<T>(kW, kH);
  for (auto _ : s) {
    fn(buf.data(), kW * static_cast<int>(sizeof(T)), {kW, kH});
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}

// Whole region through a kernel (scalar twin or SSE).
template <class T>
void BM_kernel(benchmark::State& s, void (*fn)(T*, std::ptrdiff_t, int, int)) {
  std::vector<T> buf = test_plane<T>(kW, kH);
  for (auto _ : s) {
    fn(buf.data(), kW * static_cast<std::ptrdiff_t>(sizeof(T)), kW, kH);
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}

// Fixed-size form over every macroblock of the plane.
template <class T>
void BM_fixed(benchmark::State& s, VprStatus (*fn)(T*, int), int bw, int bh) {
  std::vector<T> buf = test_plane<T>(kW, kH);
  const int step = kW * static_cast<int>(sizeof(T));
  for (auto _ : s) {
    for (int y = 0; y < kH; y += bh)
      for (int x = 0; x < kW; x += bw) fn(buf.data() + static_cast<size_t>(y) * kW + x, step);
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}

template <class T>
void register_forms(const char* dir, const char* t, VprStatus (*region)(T*, int, VprRoiSize),
                    VprStatus (*f16x16)(T*, int), VprStatus (*f8x16)(T*, int), VprStatus (*f8x8)(T*, int),
                    void (*twin)(T*, std::ptrdiff_t, int, int)) {
  const std::string base = std::string("BM_JpegXR_PCT") + dir;
  const std::string ty = std::string("_") + t;
  benchmark::RegisterBenchmark((base + ty + "_region_vpr").c_str(), [region](benchmark::State& s) { BM_region<T>(s, region); });
  benchmark::RegisterBenchmark((base + "16x16" + ty + "_vpr").c_str(), [f16x16](benchmark::State& s) { BM_fixed<T>(s, f16x16, 16, 16); });
  benchmark::RegisterBenchmark((base + "8x16" + ty + "_vpr").c_str(), [f8x16](benchmark::State& s) { BM_fixed<T>(s, f8x16, 8, 16); });
  benchmark::RegisterBenchmark((base + "8x8" + ty + "_vpr").c_str(), [f8x8](benchmark::State& s) { BM_fixed<T>(s, f8x8, 8, 8); });
  benchmark::RegisterBenchmark((base + ty + "_region_scalar").c_str(), [twin](benchmark::State& s) { BM_kernel<T>(s, twin); });
}

#define VPR_BENCH_FORMS(Dir, dir, t, T)                                                          \
  register_forms<T>(#Dir, #t, vpriPCT##Dir##_JPEGXR_##t##_C1IR, vpriPCT##Dir##16x16_JPEGXR_##t##_C1IR, \
                    vpriPCT##Dir##8x16_JPEGXR_##t##_C1IR, vpriPCT##Dir##8x8_JPEGXR_##t##_C1IR,         \
                    vpr::jxr::ref::pct_##dir##_##t)

const int kRegistered = [] {
  VPR_BENCH_FORMS(Fwd, fwd, 16s, Vpr16s);
  VPR_BENCH_FORMS(Inv, inv, 16s, Vpr16s);
  VPR_BENCH_FORMS(Fwd, fwd, 32s, Vpr32s);
  VPR_BENCH_FORMS(Inv, inv, 32s, Vpr32s);
  VPR_BENCH_FORMS(Fwd, fwd, 32f, Vpr32f);
  VPR_BENCH_FORMS(Inv, inv, 32f, Vpr32f);
  return 0;
}();

// Peer comparison on blocks stored one after another (16 values each), the
// layout jxrlib's block transform works on: ours as a 4-wide region.
constexpr int kBlocks = kW * kH / 16;

void BM_JpegXR_PCTFwd4x4Blocks_32s_vpr(benchmark::State& s) {
  std::vector<int32_t> buf = test_plane<int32_t>(kW, kH);
  for (auto _ : s) {
    vpriPCTFwd_JPEGXR_32s_C1IR(buf.data(), 16, {4, 4 * kBlocks});
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_JpegXR_PCTFwd4x4Blocks_32s_vpr);

void BM_JpegXR_PCTInv4x4Blocks_32s_vpr(benchmark::State& s) {
  std::vector<int32_t> buf = test_plane<int32_t>(kW, kH);
  for (auto _ : s) {
    vpriPCTInv_JPEGXR_32s_C1IR(buf.data(), 16, {4, 4 * kBlocks});
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_JpegXR_PCTInv4x4Blocks_32s_vpr);

#if VPR_HAVE_JXR
void BM_JpegXR_PCTFwd4x4Blocks_32s_jxrlib(benchmark::State& s) {
  std::vector<int32_t> buf = test_plane<int32_t>(kW, kH);
  for (auto _ : s) {
    for (int b = 0; b < kBlocks; ++b) strDCT4x4Stage1(buf.data() + 16 * b);
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_JpegXR_PCTFwd4x4Blocks_32s_jxrlib);

void BM_JpegXR_PCTInv4x4Blocks_32s_jxrlib(benchmark::State& s) {
  std::vector<int32_t> buf = test_plane<int32_t>(kW, kH);
  for (auto _ : s) {
    for (int b = 0; b < kBlocks; ++b) strIDCT4x4Stage1(buf.data() + 16 * b);
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_JpegXR_PCTInv4x4Blocks_32s_jxrlib);
#endif

// ---------------------------------------------------------------- VLC
// DC-band scan of 4x4 blocks with adaptation (ns/block), sparse blocks as a
// codec meets them.
template <bool kTwin>
void BM_scan(benchmark::State& s) {
  const int model_bits = static_cast<int>(s.range(0));
  alignas(16) unsigned char state[vpr::jxr::kVlcStateSize];
  vpriVLCInit_JPEGXR(state);
  vpriVLCScanReset_JPEGXR(state, 2);
  auto* st = reinterpret_cast<vpr::jxr::VlcState*>(state);
  // Non-zero values get rarer towards position 15, as in real DC bands.
  std::vector<int32_t> blocks(16 * 1024);
  uint32_t x = 12345;
  for (size_t i = 0; i < blocks.size(); ++i) {
    x = x * 1664525u + 1013904223u;
    const int r = static_cast<int>(x >> 24), pos = static_cast<int>(i & 15);
    const bool nz = r < 200 - 12 * pos;
    blocks[i] = nz ? (r & 1 ? 1 : -1) * (1 + ((r >> 1) & 31)) : 0;
  }
  int32_t dst[16], rl[30];
  int np = 0;
  for (auto _ : s) {
    for (size_t b = 0; b < blocks.size(); b += 16)
      if constexpr (kTwin)
        np = vpr::jxr::ref::vlc_scan4x4_dc(blocks.data() + b, model_bits, dst, rl, st);
      else
        vpriVLCScan4x4DC_JPEGXR_32s(blocks.data() + b, model_bits, dst, rl, &np, state);
    benchmark::DoNotOptimize(np);
    benchmark::ClobberMemory();
  }
  vprbench::set_ns_per_block(s, blocks.size() / 16.0);
}
void BM_JpegXR_VLCScan4x4DC_32s_vpr(benchmark::State& s) { BM_scan<false>(s); }
void BM_JpegXR_VLCScan4x4DC_32s_scalar(benchmark::State& s) { BM_scan<true>(s); }
BENCHMARK(BM_JpegXR_VLCScan4x4DC_32s_vpr)->Arg(0)->Arg(2);
BENCHMARK(BM_JpegXR_VLCScan4x4DC_32s_scalar)->Arg(0)->Arg(2);

// One group adaptation (9 or 8 tables) per call.
void BM_JpegXR_VLCAdapt_vpr(benchmark::State& s) {
  alignas(16) unsigned char state[vpr::jxr::kVlcStateSize];
  vpriVLCInit_JPEGXR(state);
  auto* st = reinterpret_cast<vpr::jxr::VlcState*>(state);
  int i = 0;
  for (auto _ : s) {
    st->disc[5 + (i & 7)][i & 1] = (i & 16) ? 9 : -9;
    vpriVLCAdapt_JPEGXR(state, i & 1);
    ++i;
    benchmark::ClobberMemory();
  }
  vprbench::set_items(s, 1, "adapts");
}
BENCHMARK(BM_JpegXR_VLCAdapt_vpr);

}  // namespace
