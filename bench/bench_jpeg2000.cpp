// JPEG 2000 wavelet and component transforms: samples per second of the
// 2-D forward / inverse 5/3 wavelet (in place, one level), of the row and
// column forms, and MPix/s of the component transforms.  "_ref" variants
// run the scalar twins on the same data, so the SIMD gain reads off one run.
#include <cstdint>
#include <random>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "core/simd.h"
#include "jpeg2000/ct.h"
#include "jpeg2000/wavelet53.h"
#include "vprjp.h"

namespace {

template <class T>
std::vector<T> image(int w, int h, int bits) {
  std::vector<uint8_t> px = vprbench::photo_like(w, h, 1);
  std::vector<T> out(px.size());
  const int shift = bits - 8;
  for (size_t i = 0; i < px.size(); ++i) out[i] = static_cast<T>((px[i] - 128) * (1 << shift));
  return out;
}

// ---------------------------------------------------------------- 2-D wavelet
template <class T, bool kFwd, bool kRef>
void BM_WT2D(benchmark::State& s) {
  const int n = static_cast<int>(s.range(0));
  std::vector<T> img = image<T>(n, n, sizeof(T) == 2 ? 12 : 16);
  const int step = n * static_cast<int>(sizeof(T));
  VprRect r{0, 0, n, n};
  int32_t bytes = 0;
  if constexpr (sizeof(T) == 4)
    vpriWTGetBufSize_B53_JPEG2K_32s_C1IR(&r, &bytes);
  else
    vpriWTGetBufSize_B53_JPEG2K_16s_C1IR(&r, &bytes);
  std::vector<T> buf(bytes / sizeof(T) + 1);
  for (auto _ : s) {
    // The pair keeps the data in range; only one direction is timed.
    if constexpr (kRef) {
      if (kFwd) vpr::j2k::ref::wt_fwd_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      s.PauseTiming();
      if (kFwd) vpr::j2k::sse::wt_inv_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      else vpr::j2k::sse::wt_fwd_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      s.ResumeTiming();
      if (!kFwd) vpr::j2k::ref::wt_inv_c1ir(img.data(), step, n, n, 0, 0, buf.data());
    } else {
      if (kFwd) vpr::j2k::sse::wt_fwd_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      s.PauseTiming();
      if (kFwd) vpr::j2k::sse::wt_inv_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      else vpr::j2k::sse::wt_fwd_c1ir(img.data(), step, n, n, 0, 0, buf.data());
      s.ResumeTiming();
      if (!kFwd) vpr::j2k::sse::wt_inv_c1ir(img.data(), step, n, n, 0, 0, buf.data());
    }
    benchmark::DoNotOptimize(img.data());
  }
  vprbench::set_items(s, double(n) * n, "samples/s");
  vprbench::set_mpix(s, double(n) * n);
}
void BM_J2K_WTFwd_32s_vprjp(benchmark::State& s) { BM_WT2D<int32_t, true, false>(s); }
void BM_J2K_WTInv_32s_vprjp(benchmark::State& s) { BM_WT2D<int32_t, false, false>(s); }
void BM_J2K_WTFwd_16s_vprjp(benchmark::State& s) { BM_WT2D<int16_t, true, false>(s); }
void BM_J2K_WTInv_16s_vprjp(benchmark::State& s) { BM_WT2D<int16_t, false, false>(s); }
void BM_J2K_WTFwd_32s_ref(benchmark::State& s) { BM_WT2D<int32_t, true, true>(s); }
void BM_J2K_WTInv_32s_ref(benchmark::State& s) { BM_WT2D<int32_t, false, true>(s); }
void BM_J2K_WTFwd_16s_ref(benchmark::State& s) { BM_WT2D<int16_t, true, true>(s); }
void BM_J2K_WTInv_16s_ref(benchmark::State& s) { BM_WT2D<int16_t, false, true>(s); }
BENCHMARK(BM_J2K_WTFwd_32s_vprjp)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInv_32s_vprjp)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTFwd_16s_vprjp)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInv_16s_vprjp)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTFwd_32s_ref)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInv_32s_ref)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTFwd_16s_ref)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInv_16s_ref)->Arg(1024)->Unit(benchmark::kMillisecond);

// ---------------------------------------------------------------- four subbands
template <class T, bool kFwd>
void BM_WTC1R(benchmark::State& s) {
  const int n = static_cast<int>(s.range(0)), hn = n / 2;
  std::vector<T> img = image<T>(n, n, 12), out(img.size());
  std::vector<T> band[4];
  T* pb[4];
  const T* cb[4];
  int32_t bs[4];
  for (int i = 0; i < 4; ++i) {
    band[i].resize(static_cast<size_t>(hn) * hn);
    pb[i] = band[i].data();
    cb[i] = pb[i];
    bs[i] = hn * static_cast<int>(sizeof(T));
  }
  const int step = n * static_cast<int>(sizeof(T));
  VprRect r{0, 0, n, n};
  int32_t bytes = 0;
  if constexpr (sizeof(T) == 4)
    vpriWTGetBufSize_B53_JPEG2K_32s_C1R(&r, &bytes);
  else
    vpriWTGetBufSize_B53_JPEG2K_16s_C1R(&r, &bytes);
  std::vector<T> buf(bytes / sizeof(T) + 1);
  Vpr8u* wb = reinterpret_cast<Vpr8u*>(buf.data());
  auto fwd = [&] {
    if constexpr (sizeof(T) == 4)
      vpriWTFwd_B53_JPEG2K_32s_C1R(img.data(), step, &r, pb, bs, wb);
    else
      vpriWTFwd_B53_JPEG2K_16s_C1R(img.data(), step, &r, pb, bs, wb);
  };
  fwd();
  for (auto _ : s) {
    if constexpr (kFwd) {
      fwd();
    } else if constexpr (sizeof(T) == 4) {
      vpriWTInv_B53_JPEG2K_32s_C1R(cb, bs, out.data(), step, &r, wb);
    } else {
      vpriWTInv_B53_JPEG2K_16s_C1R(cb, bs, out.data(), step, &r, wb);
    }
    benchmark::DoNotOptimize(band[0].data());
    benchmark::DoNotOptimize(out.data());
  }
  vprbench::set_items(s, double(n) * n, "samples/s");
}
void BM_J2K_WTFwdC1R_32s_vprjp(benchmark::State& s) { BM_WTC1R<int32_t, true>(s); }
void BM_J2K_WTInvC1R_32s_vprjp(benchmark::State& s) { BM_WTC1R<int32_t, false>(s); }
void BM_J2K_WTFwdC1R_16s_vprjp(benchmark::State& s) { BM_WTC1R<int16_t, true>(s); }
void BM_J2K_WTInvC1R_16s_vprjp(benchmark::State& s) { BM_WTC1R<int16_t, false>(s); }
BENCHMARK(BM_J2K_WTFwdC1R_32s_vprjp)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInvC1R_32s_vprjp)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTFwdC1R_16s_vprjp)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_J2K_WTInvC1R_16s_vprjp)->Arg(4096)->Unit(benchmark::kMillisecond);

// ---------------------------------------------------------------- row / column forms
template <class T, bool kRow>
void BM_WTLines(benchmark::State& s) {
  const int w = 2048, h = 64;  // output band size; sources 2w wide (row) or 2h tall (col)
  const int sw = kRow ? 2 * w + 8 : w, sh = kRow ? h : 2 * h + 8;
  std::vector<T> src = image<T>(sw, sh, 12), lo(static_cast<size_t>(w) * h), hi(lo.size());
  const int ss = sw * static_cast<int>(sizeof(T)), ds = w * static_cast<int>(sizeof(T));
  for (auto _ : s) {
    if constexpr (kRow) {
      if constexpr (sizeof(T) == 4)
        vpriWTFwdRow_B53_JPEG2K_32s_C1R(src.data() + 4, ss, lo.data(), ds, hi.data(), ds, {w, h}, 0);
      else
        vpriWTFwdRow_B53_JPEG2K_16s_C1R(src.data() + 4, ss, lo.data(), ds, hi.data(), ds, {w, h}, 0);
    } else {
      const T* s0 = src.data() + 4 * static_cast<size_t>(sw);
      if constexpr (sizeof(T) == 4)
        vpriWTFwdCol_B53_JPEG2K_32s_C1R(s0, ss, lo.data(), ds, hi.data(), ds, {w, h}, 0);
      else
        vpriWTFwdCol_B53_JPEG2K_16s_C1R(s0, ss, lo.data(), ds, hi.data(), ds, {w, h}, 0);
    }
    benchmark::DoNotOptimize(lo.data());
  }
  vprbench::set_items(s, 2.0 * w * h, "samples/s");
}
void BM_J2K_WTFwdRow_32s_vprjp(benchmark::State& s) { BM_WTLines<int32_t, true>(s); }
void BM_J2K_WTFwdRow_16s_vprjp(benchmark::State& s) { BM_WTLines<int16_t, true>(s); }
void BM_J2K_WTFwdCol_32s_vprjp(benchmark::State& s) { BM_WTLines<int32_t, false>(s); }
void BM_J2K_WTFwdCol_16s_vprjp(benchmark::State& s) { BM_WTLines<int16_t, false>(s); }
BENCHMARK(BM_J2K_WTFwdRow_32s_vprjp);
BENCHMARK(BM_J2K_WTFwdRow_16s_vprjp);
BENCHMARK(BM_J2K_WTFwdCol_32s_vprjp);
BENCHMARK(BM_J2K_WTFwdCol_16s_vprjp);

// ---------------------------------------------------------------- component transforms
constexpr int kW = 1920, kH = 1080;

template <class T, class F>
void ct_p3(benchmark::State& s, F f, int bits) {
  std::vector<T> p[3];
  for (int c = 0; c < 3; ++c) {
    if constexpr (std::is_floating_point_v<T>) {
      std::vector<uint8_t> px = vprbench::photo_like(kW, kH, 1, c + 1);
      p[c].assign(px.begin(), px.end());
    } else {
      p[c] = image<T>(kW, kH, bits);
    }
  }
  T* pp[3] = {p[0].data(), p[1].data(), p[2].data()};
  const int step = kW * static_cast<int>(sizeof(T));
  // In place, over and over: float data would drift into denormals, so it
  // is restored (untimed) before each pass; integer data stays in range.
  std::vector<T> keep[3] = {p[0], p[1], p[2]};
  for (auto _ : s) {
    if constexpr (std::is_floating_point_v<T>) {
      s.PauseTiming();
      for (int c = 0; c < 3; ++c) p[c] = keep[c];
      s.ResumeTiming();
    }
    f(pp, step);
    benchmark::DoNotOptimize(pp[0]);
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
template <class T, class K>
void ref_p3(T* const* pp, int step, K k) {
  for (int y = 0; y < kH; ++y)
    k(vpr::simd::row_ptr(pp[0], step, y), vpr::simd::row_ptr(pp[1], step, y), vpr::simd::row_ptr(pp[2], step, y), kW);
}

void BM_J2K_RCTFwd_16s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) { vpriRCTFwd_JPEG2K_16s_P3IR(p, st, {kW, kH}); }, 12);
}
void BM_J2K_RCTFwd_16s_P3IR_ref(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) {
    ref_p3(p, st, [](int16_t* a, int16_t* b, int16_t* c, int w) { vpr::j2k::ref::rct_fwd_p3(a, b, c, w); });
  }, 12);
}
void BM_J2K_RCTInv_32s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int32_t>(s, [](int32_t** p, int st) { vpriRCTInv_JPEG2K_32s_P3IR(p, st, {kW, kH}); }, 16);
}
void BM_J2K_RCTInv_16s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) { vpriRCTInv_JPEG2K_16s_P3IR(p, st, {kW, kH}); }, 12);
}
void BM_J2K_ICTFwd_32f_P3IR_vprjp(benchmark::State& s) {
  ct_p3<float>(s, [](float** p, int st) { vpriICTFwd_JPEG2K_32f_P3IR(p, st, {kW, kH}); }, 0);
}
void BM_J2K_ICTFwd_32f_P3IR_ref(benchmark::State& s) {
  ct_p3<float>(s, [](float** p, int st) {
    ref_p3(p, st, [](float* a, float* b, float* c, int w) { vpr::j2k::ref::ict_fwd_p3(a, b, c, w); });
  }, 0);
}
void BM_J2K_ICTInv_32f_P3IR_vprjp(benchmark::State& s) {
  ct_p3<float>(s, [](float** p, int st) { vpriICTInv_JPEG2K_32f_P3IR(p, st, {kW, kH}); }, 0);
}
void BM_J2K_ICTFwd_16s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) { vpriICTFwd_JPEG2K_16s_P3IR(p, st, {kW, kH}); }, 12);
}
void BM_J2K_ICTFwd_16s_P3IR_ref(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) {
    ref_p3(p, st, [](int16_t* a, int16_t* b, int16_t* c, int w) { vpr::j2k::ref::ict_fwd_p3(a, b, c, w); });
  }, 12);
}
void BM_J2K_ICTInv_16s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int16_t>(s, [](int16_t** p, int st) { vpriICTInv_JPEG2K_16s_P3IR(p, st, {kW, kH}); }, 12);
}
void BM_J2K_ICTFwd_32s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int32_t>(s, [](int32_t** p, int st) { vpriICTFwd_JPEG2K_32s_P3IR(p, st, {kW, kH}); }, 12);
}
void BM_J2K_ICTInv_32s_P3IR_vprjp(benchmark::State& s) {
  ct_p3<int32_t>(s, [](int32_t** p, int st) { vpriICTInv_JPEG2K_32s_P3IR(p, st, {kW, kH}); }, 12);
}
BENCHMARK(BM_J2K_RCTFwd_16s_P3IR_vprjp);
BENCHMARK(BM_J2K_RCTFwd_16s_P3IR_ref);
BENCHMARK(BM_J2K_RCTInv_16s_P3IR_vprjp);
BENCHMARK(BM_J2K_RCTInv_32s_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTFwd_32f_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTFwd_32f_P3IR_ref);
BENCHMARK(BM_J2K_ICTInv_32f_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTFwd_16s_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTFwd_16s_P3IR_ref);
BENCHMARK(BM_J2K_ICTInv_16s_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTFwd_32s_P3IR_vprjp);
BENCHMARK(BM_J2K_ICTInv_32s_P3IR_vprjp);

template <class T, class F>
void ct_interleaved(benchmark::State& s, F f) {
  std::vector<uint8_t> px = vprbench::photo_like(kW, kH, 3);
  std::vector<T> src(px.begin(), px.end());
  std::vector<T> p[3];
  for (auto& v : p) v.resize(static_cast<size_t>(kW) * kH);
  T* pp[3] = {p[0].data(), p[1].data(), p[2].data()};
  for (auto _ : s) {
    f(src.data(), pp);
    benchmark::DoNotOptimize(pp[0]);
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
void BM_J2K_RCTFwd_16s_C3P3R_vprjp(benchmark::State& s) {
  ct_interleaved<int16_t>(s, [](const int16_t* src, int16_t** p) {
    vpriRCTFwd_JPEG2K_16s_C3P3R(src, 6 * kW, p, 2 * kW, {kW, kH});
  });
}
void BM_J2K_RCTFwd_32s_C3P3R_vprjp(benchmark::State& s) {
  ct_interleaved<int32_t>(s, [](const int32_t* src, int32_t** p) {
    vpriRCTFwd_JPEG2K_32s_C3P3R(src, 12 * kW, p, 4 * kW, {kW, kH});
  });
}
void BM_J2K_ICTFwd_32f_C3P3R_vprjp(benchmark::State& s) {
  ct_interleaved<float>(s, [](const float* src, float** p) {
    vpriICTFwd_JPEG2K_32f_C3P3R(src, 12 * kW, p, 4 * kW, {kW, kH});
  });
}
BENCHMARK(BM_J2K_RCTFwd_16s_C3P3R_vprjp);
BENCHMARK(BM_J2K_RCTFwd_32s_C3P3R_vprjp);
BENCHMARK(BM_J2K_ICTFwd_32f_C3P3R_vprjp);

}  // namespace
