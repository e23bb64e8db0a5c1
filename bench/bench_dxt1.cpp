// DXT1 encode and decode, MPix/s, side by side with stb_dxt and libsquish on
// the same 1024x768 RGBA images, single thread.  Image 0 is the photo-like
// test image (gradients, edges and +-6 noise per channel), image 1 a smooth
// one (slow colour waves, no noise).  Every encoder benchmark also reports
// its quality on the image: RMSE and PSNR (dB) over R, G, B after decoding
// its blocks with one common decoder (libsquish's, the standard reading of
// three-colour blocks; our own where it is absent).
#include <cmath>
#include <cstring>
#include <vector>

#include "bench_util.h"
#include "texture/dxt1.h"
#include "vprjp.h"

#if VPR_HAVE_STB
#include <stb_dxt.h>
#endif
#if VPR_HAVE_SQUISH
#include <squish.h>
#endif

namespace {

constexpr int kW = 1024, kH = 768;

// Opaque: libsquish reads alpha < 128 as transparent in DXT1 and would
// spend blocks on it.
std::vector<uint8_t> make_image(int which) {
  std::vector<uint8_t> v = vprbench::photo_like(kW, kH, 4, 7);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      uint8_t* p = &v[(size_t(y) * kW + x) * 4];
      if (which == 1)
        for (int c = 0; c < 3; ++c)
          p[c] = uint8_t(127.5 + 110.0 * std::sin(x / (31.0 + 9 * c) + c) * std::cos(y / (47.0 - 7 * c) - c));
      p[3] = 255;
    }
  return v;
}
const std::vector<uint8_t>& image(int which) {
  static const std::vector<uint8_t> img[2] = {make_image(0), make_image(1)};
  return img[which];
}
size_t coded_size() { return size_t(8) * (kW / 4) * (kH / 4); }

void report_quality(benchmark::State& s, const std::vector<uint8_t>& coded) {
  const std::vector<uint8_t>& src = image(static_cast<int>(s.range(0)));
  std::vector<uint8_t> back(size_t(4) * kW * kH);
#if VPR_HAVE_SQUISH
  squish::DecompressImage(back.data(), kW, kH, coded.data(), squish::kDxt1);
#else
  vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), back.data(), 4 * kW, {kW, kH});
#endif
  double se = 0;
  for (size_t i = 0; i < back.size(); ++i) {
    if ((i & 3) == 3) continue;
    const double d = double(back[i]) - double(src[i]);
    se += d * d;
  }
  const double mse = se / (3.0 * kW * kH);
  s.counters["RMSE"] = std::sqrt(mse);
  s.counters["PSNR_dB"] = 10.0 * std::log10(255.0 * 255.0 / mse);
}

// Copies block (bx, by) of the image into 16 contiguous RGBA pixels.
inline void gather(const uint8_t* img, int bx, int by, uint8_t block[64]) {
  for (int r = 0; r < 4; ++r) std::memcpy(block + 16 * r, img + (size_t(4 * by + r) * kW + 4 * bx) * 4, 16);
}

void BM_DXT1_Encode_vprjp(benchmark::State& s) {
  const std::vector<uint8_t>& img = image(static_cast<int>(s.range(0)));
  std::vector<uint8_t> coded(coded_size());
  for (auto _ : s) {
    vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(img.data(), 4 * kW, {kW, kH}, coded.data());
    benchmark::DoNotOptimize(coded.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
  report_quality(s, coded);
}
BENCHMARK(BM_DXT1_Encode_vprjp)->Arg(0)->Arg(1)->ArgName("image");

// The scalar twin of the same encoder, for the SIMD speed-up.
void BM_DXT1_Encode_vprjpScalar(benchmark::State& s) {
  const std::vector<uint8_t>& img = image(static_cast<int>(s.range(0)));
  std::vector<uint8_t> coded(coded_size());
  for (auto _ : s) {
    vpr::texture::ref::encode_image_dxt1(img.data(), 4 * kW, kW, kH, coded.data());
    benchmark::DoNotOptimize(coded.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
  report_quality(s, coded);
}
BENCHMARK(BM_DXT1_Encode_vprjpScalar)->Arg(0)->Arg(1)->ArgName("image");

#if VPR_HAVE_STB
void stb_encode(benchmark::State& s, int mode) {
  const std::vector<uint8_t>& img = image(static_cast<int>(s.range(0)));
  std::vector<uint8_t> coded(coded_size());
  alignas(16) uint8_t block[64];
  for (auto _ : s) {
    uint8_t* out = coded.data();
    for (int by = 0; by < kH / 4; ++by)
      for (int bx = 0; bx < kW / 4; ++bx, out += 8) {
        gather(img.data(), bx, by, block);
        stb_compress_dxt_block(out, block, 0, mode);
      }
    benchmark::DoNotOptimize(coded.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
  report_quality(s, coded);
}
void BM_DXT1_Encode_stb(benchmark::State& s) { stb_encode(s, STB_DXT_NORMAL); }
void BM_DXT1_Encode_stbHighQual(benchmark::State& s) { stb_encode(s, STB_DXT_HIGHQUAL); }
BENCHMARK(BM_DXT1_Encode_stb)->Arg(0)->Arg(1)->ArgName("image");
BENCHMARK(BM_DXT1_Encode_stbHighQual)->Arg(0)->Arg(1)->ArgName("image");
#endif

#if VPR_HAVE_SQUISH
void squish_encode(benchmark::State& s, int flags) {
  const std::vector<uint8_t>& img = image(static_cast<int>(s.range(0)));
  std::vector<uint8_t> coded(coded_size());
  for (auto _ : s) {
    squish::CompressImage(img.data(), kW, kH, coded.data(), flags);
    benchmark::DoNotOptimize(coded.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
  report_quality(s, coded);
}
// libsquish's default (cluster fit) and its fastest mode (range fit).
void BM_DXT1_Encode_squish(benchmark::State& s) { squish_encode(s, squish::kDxt1 | squish::kColourClusterFit); }
void BM_DXT1_Encode_squishRangeFit(benchmark::State& s) { squish_encode(s, squish::kDxt1 | squish::kColourRangeFit); }
BENCHMARK(BM_DXT1_Encode_squish)->Arg(0)->Arg(1)->ArgName("image")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DXT1_Encode_squishRangeFit)->Arg(0)->Arg(1)->ArgName("image");
#endif

// Decoders, on the blocks of our encoder for image 0.
const std::vector<uint8_t>& coded_image() {
  static const std::vector<uint8_t> coded = [] {
    std::vector<uint8_t> c(coded_size());
    vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(image(0).data(), 4 * kW, {kW, kH}, c.data());
    return c;
  }();
  return coded;
}

void BM_DXT1_Decode_vprjp(benchmark::State& s) {
  const std::vector<uint8_t>& coded = coded_image();
  std::vector<uint8_t> out(size_t(4) * kW * kH);
  for (auto _ : s) {
    vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), out.data(), 4 * kW, {kW, kH});
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_DXT1_Decode_vprjp);

void BM_DXT1_Decode_vprjpScalar(benchmark::State& s) {
  const std::vector<uint8_t>& coded = coded_image();
  std::vector<uint8_t> out(size_t(4) * kW * kH);
  for (auto _ : s) {
    vpr::texture::ref::decode_image_dxt1(coded.data(), out.data(), 4 * kW, kW, kH);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_DXT1_Decode_vprjpScalar);

#if VPR_HAVE_SQUISH
void BM_DXT1_Decode_squish(benchmark::State& s) {
  const std::vector<uint8_t>& coded = coded_image();
  std::vector<uint8_t> out(size_t(4) * kW * kH);
  for (auto _ : s) {
    squish::DecompressImage(out.data(), kW, kH, coded.data(), squish::kDxt1);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  vprbench::set_mpix(s, double(kW) * kH);
}
BENCHMARK(BM_DXT1_Decode_squish);
#endif

}  // namespace
