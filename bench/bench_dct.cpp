// JPEG level shift, quantisation and fused 8x8 DCT: ns per block for every
// forward and inverse form, MPix/s for the level shifts.  Each exported
// (SSE) form is paired with its scalar twin ("_scalar") on the same data, so
// the SIMD gain reads off one run.
#include <cstring>
#include <vector>

#include "bench_util.h"
#include "jpeg/dct.h"
#include "jpeg/levelshift_quant.h"
#include "vprjp.h"

#if VPR_HAVE_JPEG
// libjpeg-turbo exports its portable C islow forward DCT (16-bit DCTELEM in
// SIMD builds; its SSE2 version is internal).  Output scaled by 8, no quantisation.
extern "C" void jpeg_fdct_islow(short* data);
#endif

namespace {

namespace jp = vpr::jpeg;

constexpr int kW = 512, kH = 256, kBlocks = (kW / 8) * (kH / 8);

const uint8_t kLumaZigzag[64] = {16, 11, 12, 14, 12, 10, 16, 14, 13, 14, 18, 17, 16, 19, 24, 40,
                                 26, 24, 22, 22, 24, 49, 35, 37, 29, 40, 58, 51, 61, 60, 57, 51,
                                 56, 55, 64, 72, 92, 78, 64, 68, 87, 69, 55, 56, 80, 109, 81, 87,
                                 95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};

// A photo-like plane, its quality-75 tables and its quantised coefficients.
struct Data {
  std::vector<uint8_t> px;
  std::vector<uint16_t> px12;
  std::vector<int16_t> coef;  // kBlocks blocks of 64
  uint16_t fwd[64], inv[64];
  float fwdf[64];
  Data() : px(vprbench::photo_like(kW, kH, 1)), px12(px.size()), coef(static_cast<size_t>(kBlocks) * 64) {
    uint8_t raw[64];
    std::memcpy(raw, kLumaZigzag, 64);
    vpriQuantFwdRawTableInit_JPEG_8u(raw, 75);
    vpriQuantFwdTableInit_JPEG_8u16u(raw, fwd);
    vpriQuantInvTableInit_JPEG_8u16u(raw, inv);
    vpriQuantFwdTableInit_JPEG_8u32f(raw, fwdf);
    for (size_t i = 0; i < px.size(); ++i) px12[i] = static_cast<uint16_t>(px[i] * 16 + (i & 15));
    for (int b = 0; b < kBlocks; ++b) vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(block_px(b), kW, &coef[b * 64], fwd);
  }
  const uint8_t* block_px(int b) const { return px.data() + (b / (kW / 8)) * 8 * kW + (b % (kW / 8)) * 8; }
  const uint16_t* block_px12(int b) const { return px12.data() + (b / (kW / 8)) * 8 * kW + (b % (kW / 8)) * 8; }
};

const Data& data() {
  static const Data d;
  return d;
}

// ------------------------------------------------------------ level shift

void BM_Jpeg_Sub128(benchmark::State& s) {
  const int w = 1920, h = 1080;
  std::vector<uint8_t> src = vprbench::photo_like(w, h, 1);
  std::vector<int16_t> dst(static_cast<size_t>(w) * h);
  vprbench::use_threads(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    vpriSub128_JPEG_8u16s_C1R(src.data(), w, dst.data(), w * 2, {w, h});
    benchmark::DoNotOptimize(dst.data());
  }
  vprbench::use_threads(0);
  vprbench::set_mpix(s, double(w) * h);
}
BENCHMARK(BM_Jpeg_Sub128)->Arg(1)->Arg(0)->ArgName("threads")->UseRealTime();

void BM_Jpeg_Sub128_scalar(benchmark::State& s) {
  const int w = 1920, h = 1080;
  std::vector<uint8_t> src = vprbench::photo_like(w, h, 1);
  std::vector<int16_t> dst(static_cast<size_t>(w) * h);
  for (auto _ : s) {
    jp::ref::sub128_rows(src.data(), w, dst.data(), w * 2, w, h);
    benchmark::DoNotOptimize(dst.data());
  }
  vprbench::set_mpix(s, double(w) * h);
}
BENCHMARK(BM_Jpeg_Sub128_scalar);

void BM_Jpeg_Add128(benchmark::State& s) {
  const int w = 1920, h = 1080;
  std::vector<uint8_t> px = vprbench::photo_like(w, h, 1);
  std::vector<int16_t> src(px.size());
  for (size_t i = 0; i < px.size(); ++i) src[i] = static_cast<int16_t>(px[i] - 128 + static_cast<int>(i % 7) - 3);
  std::vector<uint8_t> dst(px.size());
  vprbench::use_threads(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    vpriAdd128_JPEG_16s8u_C1R(src.data(), w * 2, dst.data(), w, {w, h});
    benchmark::DoNotOptimize(dst.data());
  }
  vprbench::use_threads(0);
  vprbench::set_mpix(s, double(w) * h);
}
BENCHMARK(BM_Jpeg_Add128)->Arg(1)->Arg(0)->ArgName("threads")->UseRealTime();

void BM_Jpeg_Add128_scalar(benchmark::State& s) {
  const int w = 1920, h = 1080;
  std::vector<uint8_t> px = vprbench::photo_like(w, h, 1);
  std::vector<int16_t> src(px.size());
  for (size_t i = 0; i < px.size(); ++i) src[i] = static_cast<int16_t>(px[i] - 128);
  std::vector<uint8_t> dst(px.size());
  for (auto _ : s) {
    jp::ref::add128_rows(src.data(), w * 2, dst.data(), w, w, h);
    benchmark::DoNotOptimize(dst.data());
  }
  vprbench::set_mpix(s, double(w) * h);
}
BENCHMARK(BM_Jpeg_Add128_scalar);

// ------------------------------------------------------------ block forms

template <class F>
void run_blocks(benchmark::State& s, F&& f) {
  for (auto _ : s) {
    for (int b = 0; b < kBlocks; ++b) f(b);
    benchmark::ClobberMemory();
  }
  vprbench::set_ns_per_block(s, kBlocks);
}

#define VPR_BENCH_FWD(name, call)                                      \
  void BM_Jpeg_##name(benchmark::State& s) {                           \
    const Data& d = data();                                            \
    std::vector<int16_t> out(static_cast<size_t>(kBlocks) * 64);       \
    std::vector<int16_t> shifted(static_cast<size_t>(kBlocks) * 64);   \
    for (int b = 0; b < kBlocks; ++b)                                  \
      for (int i = 0; i < 64; ++i)                                     \
        shifted[b * 64 + i] = static_cast<int16_t>(d.block_px(b)[(i / 8) * kW + i % 8] - 128); \
    run_blocks(s, [&](int b) { call; });                               \
  }                                                                    \
  BENCHMARK(BM_Jpeg_##name);

VPR_BENCH_FWD(DCTQuantFwd8x8_16s_C1, vpriDCTQuantFwd8x8_JPEG_16s_C1(&shifted[b * 64], &out[b * 64], d.fwd))
VPR_BENCH_FWD(DCTQuantFwd8x8_16s_C1_scalar, jp::ref::dct_quant_fwd_8x8_16s(&shifted[b * 64], &out[b * 64], d.fwd))
VPR_BENCH_FWD(DCTQuantFwd8x8_16s_C1I, vpriDCTQuantFwd8x8_JPEG_16s_C1I(&shifted[b * 64], d.fwd))
VPR_BENCH_FWD(DCTQuantFwd8x8LS_8u16s, vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(d.block_px(b), kW, &out[b * 64], d.fwd))
VPR_BENCH_FWD(DCTQuantFwd8x8LS_8u16s_scalar,
              jp::ref::dct_quant_fwd_8x8_ls_8u16s(d.block_px(b), kW, &out[b * 64], d.fwd))
VPR_BENCH_FWD(DCTQuantFwd8x8LS_16u16s,
              vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(d.block_px12(b), kW * 2, &out[b * 64], d.fwdf))
VPR_BENCH_FWD(DCTQuantFwd8x8LS_16u16s_scalar,
              jp::ref::dct_quant_fwd_8x8_ls_16u16s(d.block_px12(b), kW * 2, &out[b * 64], d.fwdf))
VPR_BENCH_FWD(DCTFwd8x8_16s_noquant, jp::sse::dct_8x8_fwd_16s(&shifted[b * 64], &out[b * 64]))
#if VPR_HAVE_JPEG
VPR_BENCH_FWD(DCTFwd8x8_16s_noquant_libjpeg_islow_c, std::memcpy(&out[b * 64], &shifted[b * 64], 128);
              jpeg_fdct_islow(&out[b * 64]))
#endif
VPR_BENCH_FWD(QuantFwd8x8_16s_C1I, vpriQuantFwd8x8_JPEG_16s_C1I(&shifted[b * 64], d.fwd))

#define VPR_BENCH_INV(name, call)                                          \
  void BM_Jpeg_##name(benchmark::State& s) {                               \
    const Data& d = data();                                                \
    std::vector<int16_t> coef = d.coef, out16(coef.size());                \
    std::vector<uint8_t> img(static_cast<size_t>(kW) * kH);                \
    std::vector<uint16_t> img16(static_cast<size_t>(kW) * kH);             \
    auto px = [&](int b) { return img.data() + (b / (kW / 8)) * 8 * kW + (b % (kW / 8)) * 8; };     \
    auto px16 = [&](int b) { return img16.data() + (b / (kW / 8)) * 8 * kW + (b % (kW / 8)) * 8; }; \
    (void)px;                                                              \
    (void)px16;                                                            \
    run_blocks(s, [&](int b) { call; });                                   \
  }                                                                        \
  BENCHMARK(BM_Jpeg_##name);

VPR_BENCH_INV(DCTQuantInv8x8_16s_C1, vpriDCTQuantInv8x8_JPEG_16s_C1(&coef[b * 64], &out16[b * 64], d.inv))
VPR_BENCH_INV(DCTQuantInv8x8_16s_C1_scalar, jp::ref::dct_quant_inv_8x8_16s(&coef[b * 64], &out16[b * 64], d.inv))
VPR_BENCH_INV(DCTQuantInv8x8_16s_C1I, std::memcpy(&out16[b * 64], &coef[b * 64], 128);
              vpriDCTQuantInv8x8_JPEG_16s_C1I(&out16[b * 64], d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_16s8u, vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
// The same blocks, half of them (at random, so the branch on rows 4..7 being
// zero cannot be predicted) with a non-zero coefficient in row 5.
VPR_BENCH_INV(DCTQuantInv8x8LS_16s8u_randomUpperRows,
              (void)0;
              static const std::vector<int16_t> mixed = [&] {
                std::vector<int16_t> m = d.coef;
                uint32_t h = 12345;
                for (int k = 0; k < kBlocks; ++k) {
                  h = h * 1103515245u + 12345u;
                  if ((h >> 16) & 1) m[k * 64 + 42] = static_cast<int16_t>(1 + (h >> 20) % 3);
                }
                return m;
              }();
              vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(&mixed[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_16s8u_scalar, jp::ref::dct_quant_inv_8x8_ls_16s8u(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_16s16u,
              vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(&coef[b * 64], px16(b), kW * 2, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_16s16u_scalar,
              jp::ref::dct_quant_inv_8x8_ls_16s16u(&coef[b * 64], px16(b), kW * 2, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_1x1, vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_2x2, vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8LS_4x4, vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8To2x2LS, vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8To4x4LS, vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(DCTQuantInv8x8To4x4LS_scalar,
              jp::ref::dct_quant_inv_8x8_to4x4_ls_16s8u(&coef[b * 64], px(b), kW, d.inv))
VPR_BENCH_INV(QuantInv8x8_16s_C1I, std::memcpy(&out16[b * 64], &coef[b * 64], 128);
              vpriQuantInv8x8_JPEG_16s_C1I(&out16[b * 64], d.inv))

}  // namespace
