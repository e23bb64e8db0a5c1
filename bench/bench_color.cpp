// Colour conversion and chroma sampling on one 3840x2160 image, side by side
// with libjpeg-turbo (TurboJPEG tjEncodeYUV3 / tjDecodeYUV with the matching
// subsampling).  Unit: MPix/s of the full-resolution image.  Arg "threads":
// 1 = one thread, 0 = all threads of libvprcore (libjpeg-turbo is always
// single-threaded).  Single-threaded rates are per CPU second (steady on a
// shared machine); the ".../real_time" runs give one thread and all threads
// per wall-clock second, for the scaling.
//
//   Forward  444: vpriRGBToYCbCr_JPEG_8u_C3P3R           vs tjEncodeYUV3 TJSAMP_444
//            422: vpriRGBToYCbCr422_JPEG_8u_C3P3R        vs tjEncodeYUV3 TJSAMP_422
//            420: vpriRGBToYCbCr411_JPEG_8u_C3P3R        vs tjEncodeYUV3 TJSAMP_420
//            420 planes: C3P3R then SampleDownH2V2 on Cb and Cr (the
//            row-parallel route of a threaded encoder)
//   Inverse  444: vpriYCbCrToRGB_JPEG_8u_P3C3R           vs tjDecodeYUV TJSAMP_444
//            422: vpriYCbCr422ToRGB_JPEG_8u_P3C3R        vs tjDecodeYUV TJSAMP_422, fast upsampling
//            420: vpriYCbCr411ToRGB_JPEG_8u_P3C3R        vs tjDecodeYUV TJSAMP_420, fast upsampling
//            420 triangle: SampleUpH2V2 on Cb and Cr then P3C3R (the
//            row-parallel route of a threaded decoder with triangle chroma)
#include <cstring>
#include <vector>

#include "bench_util.h"
#include "vprjp.h"

#if VPR_HAVE_TURBOJPEG
#include <turbojpeg.h>
#endif

namespace {

constexpr int kW = 3840, kH = 2160;

struct Frame {
  std::vector<uint8_t> rgb = vprbench::photo_like(kW, kH, 3);
  // Full-resolution planes (with one spare row above and below for the
  // up-samplers' border), half-width and quarter planes.
  std::vector<uint8_t> y = std::vector<uint8_t>(size_t(kW) * kH), cb = y, cr = y;
  std::vector<uint8_t> cb2 = std::vector<uint8_t>(size_t(kW / 2) * kH), cr2 = cb2;
  std::vector<uint8_t> cb4 = std::vector<uint8_t>(size_t(kW / 2 + 2) * (kH / 2 + 2)), cr4 = cb4;
  std::vector<uint8_t> out = std::vector<uint8_t>(size_t(kW) * kH * 3);
  Frame() {
    Vpr8u* d[3] = {y.data(), cb.data(), cr.data()};
    vpriRGBToYCbCr_JPEG_8u_C3P3R(rgb.data(), 3 * kW, d, kW, {kW, kH});
    for (size_t i = 0; i < cb2.size(); ++i) {
      cb2[i] = cb[2 * i];
      cr2[i] = cr[2 * i];
    }
    for (auto* v : {&cb4, &cr4}) std::memset(v->data(), 128, v->size());
  }
  // Quarter plane with a one-sample border: first region sample.
  uint8_t* q(std::vector<uint8_t>& v) { return v.data() + (kW / 2 + 2) + 1; }
};

Frame& frame() {
  static Frame f;
  return f;
}

// range(0): threads (1, or 0 = all); range(1): rows (2160 = the frame, 16 =
// a strip that stays in cache: compute rather than memory bound).
template <class F>
void run(benchmark::State& s, F&& f) {
  vprbench::use_threads(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    f();
    benchmark::ClobberMemory();
  }
  vprbench::use_threads(0);
  vprbench::set_mpix(s, double(kW) * static_cast<double>(s.range(1)));
}

// ------------------------------------------------------------------ forward

void BM_Color_RGBToYCbCr444_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  Vpr8u* d[3] = {f.y.data(), f.cb.data(), f.cr.data()};
  run(s, [&] { vpriRGBToYCbCr_JPEG_8u_C3P3R(f.rgb.data(), 3 * kW, d, kW, {kW, h}); });
}
void BM_Color_RGBToYCbCr422_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  Vpr8u* d[3] = {f.y.data(), f.cb2.data(), f.cr2.data()};
  int steps[3] = {kW, kW / 2, kW / 2};
  run(s, [&] { vpriRGBToYCbCr422_JPEG_8u_C3P3R(f.rgb.data(), 3 * kW, d, steps, {kW, h}); });
}
void BM_Color_RGBToYCbCr420_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  Vpr8u* d[3] = {f.y.data(), f.q(f.cb4), f.q(f.cr4)};
  int steps[3] = {kW, kW / 2 + 2, kW / 2 + 2};
  run(s, [&] { vpriRGBToYCbCr411_JPEG_8u_C3P3R(f.rgb.data(), 3 * kW, d, steps, {kW, h}); });
}
void BM_Color_RGBToYCbCr420_vpr_planes(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  Vpr8u* d[3] = {f.y.data(), f.cb.data(), f.cr.data()};
  run(s, [&] {
    vpriRGBToYCbCr_JPEG_8u_C3P3R(f.rgb.data(), 3 * kW, d, kW, {kW, h});
    vpriSampleDownH2V2_JPEG_8u_C1R(f.cb.data(), kW, {kW, h}, f.q(f.cb4), kW / 2 + 2, {kW / 2, h / 2});
    vpriSampleDownH2V2_JPEG_8u_C1R(f.cr.data(), kW, {kW, h}, f.q(f.cr4), kW / 2 + 2, {kW / 2, h / 2});
  });
}
BENCHMARK(BM_Color_RGBToYCbCr444_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_RGBToYCbCr444_vpr)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();
BENCHMARK(BM_Color_RGBToYCbCr422_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_RGBToYCbCr420_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_RGBToYCbCr420_vpr_planes)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_RGBToYCbCr420_vpr_planes)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();

// ------------------------------------------------------------------ inverse

void BM_Color_YCbCrToRGB444_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  const Vpr8u* p[3] = {f.y.data(), f.cb.data(), f.cr.data()};
  run(s, [&] { vpriYCbCrToRGB_JPEG_8u_P3C3R(p, kW, f.out.data(), 3 * kW, {kW, h}); });
}
void BM_Color_YCbCrToRGB422_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  const Vpr8u* p[3] = {f.y.data(), f.cb2.data(), f.cr2.data()};
  int steps[3] = {kW, kW / 2, kW / 2};
  run(s, [&] { vpriYCbCr422ToRGB_JPEG_8u_P3C3R(p, steps, f.out.data(), 3 * kW, {kW, h}); });
}
void BM_Color_YCbCrToRGB420_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  const Vpr8u* p[3] = {f.y.data(), f.q(f.cb4), f.q(f.cr4)};
  int steps[3] = {kW, kW / 2 + 2, kW / 2 + 2};
  run(s, [&] { vpriYCbCr411ToRGB_JPEG_8u_P3C3R(p, steps, f.out.data(), 3 * kW, {kW, h}); });
}
void BM_Color_YCbCrToRGB420_triangle_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  const Vpr8u* p[3] = {f.y.data(), f.cb.data(), f.cr.data()};
  const int qs = kW / 2 + 2;
  run(s, [&] {
    vpriSampleUpH2V2_JPEG_8u_C1R(f.q(f.cb4), qs, {kW / 2, h / 2}, f.cb.data(), kW, {kW, h});
    vpriSampleUpH2V2_JPEG_8u_C1R(f.q(f.cr4), qs, {kW / 2, h / 2}, f.cr.data(), kW, {kW, h});
    vpriYCbCrToRGB_JPEG_8u_P3C3R(p, kW, f.out.data(), 3 * kW, {kW, h});
  });
}
BENCHMARK(BM_Color_YCbCrToRGB444_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_YCbCrToRGB444_vpr)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();
BENCHMARK(BM_Color_YCbCrToRGB422_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_YCbCrToRGB420_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_YCbCrToRGB420_triangle_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Color_YCbCrToRGB420_triangle_vpr)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();

// ------------------------------------------------------------------ sampling alone

void BM_Sampling_DownH2V2_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  run(s, [&] { vpriSampleDownH2V2_JPEG_8u_C1R(f.cb.data(), kW, {kW, h}, f.q(f.cb4), kW / 2 + 2, {kW / 2, h / 2}); });
}
void BM_Sampling_UpH2V2_vpr(benchmark::State& s) {
  Frame& f = frame();
  const int h = static_cast<int>(s.range(1));
  run(s, [&] { vpriSampleUpH2V2_JPEG_8u_C1R(f.q(f.cb4), kW / 2 + 2, {kW / 2, h / 2}, f.cb.data(), kW, {kW, h}); });
}
BENCHMARK(BM_Sampling_DownH2V2_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Sampling_DownH2V2_vpr)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();
BENCHMARK(BM_Sampling_UpH2V2_vpr)->Args({1, kH})->Args({1, 16})->ArgNames({"threads", "rows"});
BENCHMARK(BM_Sampling_UpH2V2_vpr)->Args({1, kH})->Args({0, kH})->ArgNames({"threads", "rows"})->UseRealTime();

// ------------------------------------------------------------------ libjpeg-turbo

#if VPR_HAVE_TURBOJPEG
// range(0): rows.
void turbo_encode(benchmark::State& s, int samp) {
  Frame& f = frame();
  const int rows = static_cast<int>(s.range(0));
  tjhandle h = tjInitCompress();
  std::vector<uint8_t> yuv(tjBufSizeYUV2(kW, 1, rows, samp));
  for (auto _ : s) {
    if (tjEncodeYUV3(h, f.rgb.data(), kW, 3 * kW, rows, TJPF_RGB, yuv.data(), 1, samp, 0) != 0) {
      s.SkipWithError(tjGetErrorStr2(h));
      break;
    }
    benchmark::ClobberMemory();
  }
  tjDestroy(h);
  vprbench::set_mpix(s, double(kW) * rows);
}
void turbo_decode(benchmark::State& s, int samp, int flags) {
  Frame& f = frame();
  const int rows = static_cast<int>(s.range(0));
  tjhandle ec = tjInitCompress(), h = tjInitDecompress();
  std::vector<uint8_t> yuv(tjBufSizeYUV2(kW, 1, rows, samp));
  tjEncodeYUV3(ec, f.rgb.data(), kW, 3 * kW, rows, TJPF_RGB, yuv.data(), 1, samp, 0);
  for (auto _ : s) {
    if (tjDecodeYUV(h, yuv.data(), 1, samp, f.out.data(), kW, 3 * kW, rows, TJPF_RGB, flags) != 0) {
      s.SkipWithError(tjGetErrorStr2(h));
      break;
    }
    benchmark::ClobberMemory();
  }
  tjDestroy(ec);
  tjDestroy(h);
  vprbench::set_mpix(s, double(kW) * rows);
}
void BM_Color_RGBToYCbCr444_turbojpeg(benchmark::State& s) { turbo_encode(s, TJSAMP_444); }
void BM_Color_RGBToYCbCr422_turbojpeg(benchmark::State& s) { turbo_encode(s, TJSAMP_422); }
void BM_Color_RGBToYCbCr420_turbojpeg(benchmark::State& s) { turbo_encode(s, TJSAMP_420); }
void BM_Color_YCbCrToRGB444_turbojpeg(benchmark::State& s) { turbo_decode(s, TJSAMP_444, 0); }
void BM_Color_YCbCrToRGB422_turbojpeg(benchmark::State& s) { turbo_decode(s, TJSAMP_422, TJFLAG_FASTUPSAMPLE); }
void BM_Color_YCbCrToRGB420_turbojpeg(benchmark::State& s) { turbo_decode(s, TJSAMP_420, TJFLAG_FASTUPSAMPLE); }
BENCHMARK(BM_Color_RGBToYCbCr444_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
BENCHMARK(BM_Color_RGBToYCbCr422_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
BENCHMARK(BM_Color_RGBToYCbCr420_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
BENCHMARK(BM_Color_YCbCrToRGB444_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
BENCHMARK(BM_Color_YCbCrToRGB422_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
BENCHMARK(BM_Color_YCbCrToRGB420_turbojpeg)->Arg(kH)->Arg(16)->ArgName("rows");
#endif

}  // namespace
