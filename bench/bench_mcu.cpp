// MCU-level conversion: MPix/s over a 1024x512 image walked MCU by MCU, the
// way an encoder (forward) or decoder (inverse) drives these functions.
// libjpeg-turbo exposes no MCU-level entry; its whole-codec speed is
// compared in bench_codec.cpp.
#include <vector>

#include "bench_util.h"
#include "vprjp.h"

namespace {

constexpr int kW = 1024, kH = 512;

using FwdApi = VprStatus (*)(const Vpr8u*, int, Vpr16s*[3]);
using InvApi = VprStatus (*)(const Vpr16s*[3], Vpr8u*, int);

void fwd(benchmark::State& state, FwdApi f, int mcu_w, int mcu_h, int y_blocks, int channels) {
  const std::vector<uint8_t> img = vprbench::photo_like(kW, kH, channels);
  const int step = kW * channels;
  alignas(16) int16_t y[256], cb[64], cr[64];
  Vpr16s* d[3] = {y, cb, cr};
  (void)y_blocks;
  for (auto _ : state) {
    for (int my = 0; my < kH; my += mcu_h)
      for (int mx = 0; mx < kW; mx += mcu_w) {
        f(img.data() + static_cast<size_t>(my) * step + mx * channels, step, d);
        benchmark::DoNotOptimize(y);
      }
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(state, double(kW) * kH);
}

void inv(benchmark::State& state, InvApi f, int mcu_w, int mcu_h, int y_blocks, int channels) {
  std::vector<uint8_t> img(static_cast<size_t>(kW) * kH * channels);
  const int step = kW * channels;
  alignas(16) int16_t y[256], cb[64], cr[64];
  for (int i = 0; i < 256; ++i) y[i] = static_cast<int16_t>((i * 37) % 256 - 128);
  for (int i = 0; i < 64; ++i) cb[i] = static_cast<int16_t>((i * 11) % 80 - 40), cr[i] = static_cast<int16_t>(30 - i);
  const Vpr16s* s[3] = {y, cb, cr};
  (void)y_blocks;
  for (auto _ : state) {
    for (int my = 0; my < kH; my += mcu_h)
      for (int mx = 0; mx < kW; mx += mcu_w) f(s, img.data() + static_cast<size_t>(my) * step + mx * channels, step);
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(state, double(kW) * kH);
}

#define FWD_BM(name, w, h, yb, ch) \
  BENCHMARK_CAPTURE(fwd, name, vpri##name, w, h, yb, ch)->Name("BM_Mcu_" #name "_vprjp")
#define INV_BM(name, w, h, yb, ch) \
  BENCHMARK_CAPTURE(inv, name, vpri##name, w, h, yb, ch)->Name("BM_Mcu_" #name "_vprjp")

FWD_BM(RGBToYCbCr444LS_MCU_8u16s_C3P3R, 8, 8, 1, 3);
FWD_BM(RGBToYCbCr422LS_MCU_8u16s_C3P3R, 16, 8, 2, 3);
FWD_BM(RGBToYCbCr411LS_MCU_8u16s_C3P3R, 16, 16, 4, 3);
FWD_BM(SampleDown411LS_MCU_8u16s_C3P3R, 16, 16, 4, 3);
FWD_BM(Split422LS_MCU_8u16s_C2P3R, 16, 8, 2, 2);
INV_BM(YCbCr444ToRGBLS_MCU_16s8u_P3C3R, 8, 8, 1, 3);
INV_BM(YCbCr422ToRGBLS_MCU_16s8u_P3C3R, 16, 8, 2, 3);
INV_BM(YCbCr411ToRGBLS_MCU_16s8u_P3C3R, 16, 16, 4, 3);
INV_BM(SampleUp411LS_MCU_16s8u_P3C3R, 16, 16, 4, 3);
INV_BM(Join422LS_MCU_16s8u_P3C2R, 16, 8, 2, 2);

}  // namespace
