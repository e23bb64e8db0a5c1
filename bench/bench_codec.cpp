// Whole-image baseline JPEG: the example codec built on vprJP
// (examples/jpeg) against libjpeg-turbo's TurboJPEG API, single thread,
// quality 90, on the same 1920x1080 photo-like image.  Both decoders read
// the same file (the one TurboJPEG wrote).  TurboJPEG runs with its default
// flags (accurate integer DCT, interpolated chroma); the _turbojpeg_fast
// decode row adds TJFLAG_FASTUPSAMPLE, which replicates chroma as ours does.
#if VPR_HAVE_JPEGCODEC && VPR_HAVE_TURBOJPEG
#include <turbojpeg.h>

#include <vector>

#include "bench_util.h"
#include "jpeg_codec.h"
#include "jpeg_internal.h"
#include "jpeg_tables.h"
#include "vprjp.h"

namespace {

constexpr int kW = 1920, kH = 1080, kQuality = 90;

const vprjpeg::Image& image() {
  static const vprjpeg::Image img = [] {
    vprjpeg::Image i;
    i.width = kW, i.height = kH, i.channels = 3;
    i.pixels = vprbench::photo_like(kW, kH, 3);
    return i;
  }();
  return img;
}

int tj_samp(vprjpeg::Sampling s) {
  return s == vprjpeg::Sampling::k444 ? TJSAMP_444 : s == vprjpeg::Sampling::k422 ? TJSAMP_422 : TJSAMP_420;
}

std::vector<uint8_t> tj_file(vprjpeg::Sampling s) {
  tjhandle h = tjInitCompress();
  std::vector<uint8_t> buf(tjBufSize(kW, kH, tj_samp(s)));
  unsigned char* p = buf.data();
  unsigned long size = buf.size();
  tjCompress2(h, image().pixels.data(), kW, 0, kH, TJPF_RGB, &p, &size, tj_samp(s), kQuality, TJFLAG_NOREALLOC);
  tjDestroy(h);
  buf.resize(size);
  return buf;
}

void encode_vprjp(benchmark::State& state, vprjpeg::Sampling s) {
  vprbench::use_threads(1);
  vprjpeg::EncodeOptions o;
  o.quality = kQuality, o.sampling = s;
  std::vector<uint8_t> jpeg;
  for (auto _ : state) {
    if (!vprjpeg::encode(image(), o, jpeg).empty()) state.SkipWithError("encode failed");
    benchmark::DoNotOptimize(jpeg.data());
  }
  state.counters["bytes"] = static_cast<double>(jpeg.size());
  vprbench::set_mpix(state, double(kW) * kH);
  vprbench::use_threads(0);
}

void encode_turbo(benchmark::State& state, vprjpeg::Sampling s) {
  tjhandle h = tjInitCompress();
  std::vector<uint8_t> buf(tjBufSize(kW, kH, tj_samp(s)));
  unsigned long size = 0;
  for (auto _ : state) {
    unsigned char* p = buf.data();
    size = buf.size();
    if (tjCompress2(h, image().pixels.data(), kW, 0, kH, TJPF_RGB, &p, &size, tj_samp(s), kQuality,
                    TJFLAG_NOREALLOC) != 0)
      state.SkipWithError("tjCompress2 failed");
    benchmark::DoNotOptimize(buf.data());
  }
  tjDestroy(h);
  state.counters["bytes"] = static_cast<double>(size);
  vprbench::set_mpix(state, double(kW) * kH);
}

void decode_vprjp(benchmark::State& state, vprjpeg::Sampling s) {
  vprbench::use_threads(1);
  const std::vector<uint8_t> jpeg = tj_file(s);
  vprjpeg::Image out;
  for (auto _ : state) {
    if (!vprjpeg::decode(jpeg, out).empty()) state.SkipWithError("decode failed");
    benchmark::DoNotOptimize(out.pixels.data());
  }
  vprbench::set_mpix(state, double(kW) * kH);
  vprbench::use_threads(0);
}

void decode_turbo(benchmark::State& state, vprjpeg::Sampling s, int flags) {
  const std::vector<uint8_t> jpeg = tj_file(s);
  tjhandle h = tjInitDecompress();
  std::vector<uint8_t> out(static_cast<size_t>(kW) * kH * 3);
  for (auto _ : state) {
    if (tjDecompress2(h, jpeg.data(), jpeg.size(), out.data(), kW, 0, kH, TJPF_RGB, flags) != 0)
      state.SkipWithError("tjDecompress2 failed");
    benchmark::DoNotOptimize(out.data());
  }
  tjDestroy(h);
  vprbench::set_mpix(state, double(kW) * kH);
}

// ---- Stages of the same 1920x1080 4:2:0 / 4:4:4 encode and decode, each over
// the whole image through the library's exported functions, so the time of
// a codec row splits into colour conversion, DCT and Huffman coding.  The
// stages call what the example codec calls: MCU colour conversion and the
// 16-bit forward DCT when encoding; sparse or full inverse DCTs into 8-bit
// planes and planar colour conversion when decoding.
struct Stages {
  int y_blocks;                  // per MCU
  int mcus_x, mcus_y;
  std::vector<int16_t> shifted;  // level-shifted samples, MCU after MCU
  std::vector<int16_t> coefs;    // quantised coefficients
  std::vector<uint8_t> stream;   // entropy-coded data
  Vpr16u qf[2][64], qi[2][64];
  uint8_t raw[2][64];
};

const Stages& stages(int y_blocks) {
  static Stages st[5];
  Stages& s = st[y_blocks];
  if (!s.shifted.empty()) return s;
  s.y_blocks = y_blocks;
  const int mw = y_blocks == 1 ? 8 : 16, mh = y_blocks == 4 ? 16 : 8;
  s.mcus_x = kW / mw, s.mcus_y = kH / mh;
  const int per = (y_blocks + 2) * 64;
  const size_t n = static_cast<size_t>(s.mcus_x) * s.mcus_y * per;
  s.shifted.resize(n), s.coefs.resize(n), s.stream.resize(n * 4);
  for (int t = 0; t < 2; ++t) {
    for (int k = 0; k < 64; ++k)
      s.raw[t][k] = (t ? vprjpeg::tables::kChromaQuant : vprjpeg::tables::kLumaQuant)[vprjpeg::tables::kZigzag[k]];
    vpriQuantFwdRawTableInit_JPEG_8u(s.raw[t], kQuality);
    vpriQuantFwdTableInit_JPEG_8u16u(s.raw[t], s.qf[t]);
    vpriQuantInvTableInit_JPEG_8u16u(s.raw[t], s.qi[t]);
  }
  int16_t* b = s.shifted.data();
  for (int my = 0; my < s.mcus_y; ++my)
    for (int mx = 0; mx < s.mcus_x; ++mx, b += per) {
      Vpr16s* d[3] = {b, b + 64 * y_blocks, b + 64 * (y_blocks + 1)};
      const uint8_t* src = image().pixels.data() + (static_cast<size_t>(my) * mh * kW + mx * mw) * 3;
      if (y_blocks == 1) vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R(src, kW * 3, d);
      else vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R(src, kW * 3, d);
    }
  for (size_t i = 0; i < n; i += 64) {
    std::copy(s.shifted.begin() + static_cast<std::ptrdiff_t>(i), s.shifted.begin() + static_cast<std::ptrdiff_t>(i + 64),
              s.coefs.begin() + static_cast<std::ptrdiff_t>(i));
    vpriDCTQuantFwd8x8_JPEG_16s_C1I(s.coefs.data() + i, s.qf[((i / 64) % (y_blocks + 2)) < static_cast<size_t>(y_blocks) ? 0 : 1]);
  }
  return s;
}

struct HuffTables {
  VprEncodeHuffmanSpec *edc[2], *eac[2];
  VprDecodeHuffmanSpec *ddc[2], *dac[2];
  HuffTables() {
    using vprjpeg::tables::Huffman;
    const Huffman* dc[2] = {&vprjpeg::tables::kDcLuma, &vprjpeg::tables::kDcChroma};
    const Huffman* ac[2] = {&vprjpeg::tables::kAcLuma, &vprjpeg::tables::kAcChroma};
    for (int t = 0; t < 2; ++t) {
      vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(dc[t]->counts, dc[t]->symbols, &edc[t]);
      vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(ac[t]->counts, ac[t]->symbols, &eac[t]);
      vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(dc[t]->counts, dc[t]->symbols, &ddc[t]);
      vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(ac[t]->counts, ac[t]->symbols, &dac[t]);
    }
  }
};
const HuffTables& huff() {
  static const HuffTables h;
  return h;
}

// Huffman-codes every block of s.coefs into out; returns the length.
int huff_encode(const Stages& s, std::vector<uint8_t>& out, VprEncodeHuffmanState* state) {
  vpriEncodeHuffmanStateInit_JPEG_8u(state);
  int16_t prev[3] = {0, 0, 0};
  int pos = 0;
  const int per = s.y_blocks + 2, len = static_cast<int>(out.size());
  const int16_t* b = s.coefs.data();
  for (size_t m = 0; m < s.coefs.size() / (64 * per); ++m)
    for (int k = 0; k < per; ++k, b += 64) {
      const int c = k < s.y_blocks ? 0 : k - s.y_blocks + 1, t = c ? 1 : 0;
      vpriEncodeHuffman8x8_JPEG_16s1u_C1(b, out.data(), len, &pos, &prev[c], huff().edc[t], huff().eac[t], state, 0);
    }
  vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), len, &pos, nullptr, nullptr, nullptr, state, 1);
  return pos;
}

// The decoder's inverse transform: every block, dequantised, inverse
// transformed and level shifted by the smallest inverse its non-zero
// coefficients allow, into 8-bit Y, Cb and Cr planes of the whole image.
struct Planes {
  std::vector<uint8_t> y, cb, cr;
  int y_step, c_step;
};
void inverse_to_planes(const Stages& s, Planes& p) {
  const int per = s.y_blocks + 2, mw = s.y_blocks == 1 ? 8 : 16, mh = s.y_blocks == 4 ? 16 : 8;
  const int16_t* b = s.coefs.data();
  for (int my = 0; my < s.mcus_y; ++my)
    for (int mx = 0; mx < s.mcus_x; ++mx)
      for (int k = 0; k < per; ++k, b += 64) {
        uint8_t* d;
        int step;
        if (k < s.y_blocks) {
          d = p.y.data() + static_cast<size_t>(my * mh + (k >> 1) * 8) * p.y_step + mx * mw + (k & 1) * 8, step = p.y_step;
        } else {
          d = (k == s.y_blocks ? p.cb : p.cr).data() + static_cast<size_t>(my * 8) * p.c_step + mx * 8, step = p.c_step;
        }
        const Vpr16u* q = s.qi[k < s.y_blocks ? 0 : 1];
        switch (vprjpeg::detail::coefficient_extent(b)) {
          case 1: vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(b, d, step, q); break;
          case 2: vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(b, d, step, q); break;
          case 4: vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(b, d, step, q); break;
          default: vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(b, d, step, q);
        }
      }
}

void stage(benchmark::State& state, int y_blocks, int which) {
  const Stages& s = stages(y_blocks);
  const int per = y_blocks + 2;
  const size_t n = s.coefs.size();
  std::vector<int16_t> work(n);
  std::vector<uint8_t> px(static_cast<size_t>(kW) * kH * 3), bits(s.stream.size());
  VprEncodeHuffmanState* es = nullptr;
  VprDecodeHuffmanState* ds = nullptr;
  vpriEncodeHuffmanStateInitAlloc_JPEG_8u(&es);
  vpriDecodeHuffmanStateInitAlloc_JPEG_8u(&ds);
  const int coded = huff_encode(s, bits, es);
  const int mw = y_blocks == 1 ? 8 : 16, mh = y_blocks == 4 ? 16 : 8;
  Planes planes;
  planes.y_step = s.mcus_x * mw, planes.c_step = s.mcus_x * 8;
  planes.y.resize(static_cast<size_t>(planes.y_step) * s.mcus_y * mh);
  planes.cb.resize(static_cast<size_t>(planes.c_step) * s.mcus_y * 8), planes.cr.resize(planes.cb.size());
  inverse_to_planes(s, planes);
  vprbench::use_threads(1);
  for (auto _ : state) {
    switch (which) {
      case 0:  // colour conversion, forward
        for (int my = 0, i = 0; my < s.mcus_y; ++my)
          for (int mx = 0; mx < s.mcus_x; ++mx, i += per * 64) {
            Vpr16s* d[3] = {&work[i], &work[i + 64 * y_blocks], &work[i + 64 * (y_blocks + 1)]};
            const uint8_t* src = image().pixels.data() + (static_cast<size_t>(my) * mh * kW + mx * mw) * 3;
            if (y_blocks == 1) vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R(src, kW * 3, d);
            else vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R(src, kW * 3, d);
          }
        break;
      case 1:  // forward DCT and quantisation
        for (size_t i = 0; i < n; i += 64)
          vpriDCTQuantFwd8x8_JPEG_16s_C1(&s.shifted[i], &work[i], s.qf[((i / 64) % per) < static_cast<size_t>(y_blocks) ? 0 : 1]);
        break;
      case 2:  // Huffman encoding
        benchmark::DoNotOptimize(huff_encode(s, bits, es));
        break;
      case 3: {  // Huffman decoding
        vpriDecodeHuffmanStateInit_JPEG_8u(ds);
        int pos = 0, marker = 0;
        int16_t prev[3] = {0, 0, 0};
        for (size_t i = 0; i < n; i += 64) {
          const int k = static_cast<int>((i / 64) % per), c = k < y_blocks ? 0 : k - y_blocks + 1, t = c ? 1 : 0;
          vpriDecodeHuffman8x8_JPEG_1u16s_C1(bits.data(), coded, &pos, &work[i], &prev[c], &marker, huff().ddc[t],
                                             huff().dac[t], ds);
        }
        break;
      }
      case 4:  // dequantisation, inverse DCT and level shift
        inverse_to_planes(s, planes);
        break;
      default: {  // colour conversion, inverse (chroma replicated)
        const Vpr8u* src[3] = {planes.y.data(), planes.cb.data(), planes.cr.data()};
        int steps[3] = {planes.y_step, planes.c_step, planes.c_step};
        if (y_blocks == 1) vpriYCbCrToRGB_JPEG_8u_P3C3R(src, planes.y_step, px.data(), kW * 3, {kW, kH});
        else vpriYCbCr411ToRGB_JPEG_8u_P3C3R(src, steps, px.data(), kW * 3, {kW, kH});
      }
    }
    benchmark::ClobberMemory();
  }
  vprbench::use_threads(0);
  vpriEncodeHuffmanStateFree_JPEG_8u(es);
  vpriDecodeHuffmanStateFree_JPEG_8u(ds);
  vprbench::set_mpix(state, double(kW) * kH);
  vprbench::set_ns_per_block(state, double(n / 64));
}

#define STAGE(yb, tag, which, op)                                                      \
  BENCHMARK_CAPTURE(stage, tag##op, yb, which)                                           \
      ->Name("BM_Codec_Stage" #tag "_" #op "_vprjp")                                     \
      ->Unit(benchmark::kMillisecond)
STAGE(1, 444, 0, ColourFwd);
STAGE(1, 444, 1, DCTQuantFwd);
STAGE(1, 444, 2, HuffmanEncode);
STAGE(1, 444, 3, HuffmanDecode);
STAGE(1, 444, 4, DCTQuantInv);
STAGE(1, 444, 5, ColourInv);
STAGE(4, 420, 0, ColourFwd);
STAGE(4, 420, 1, DCTQuantFwd);
STAGE(4, 420, 2, HuffmanEncode);
STAGE(4, 420, 3, HuffmanDecode);
STAGE(4, 420, 4, DCTQuantInv);
STAGE(4, 420, 5, ColourInv);

using vprjpeg::Sampling;
BENCHMARK_CAPTURE(encode_vprjp, 444, Sampling::k444)->Name("BM_Codec_Encode444_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode_turbo, 444, Sampling::k444)->Name("BM_Codec_Encode444_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode_vprjp, 422, Sampling::k422)->Name("BM_Codec_Encode422_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode_turbo, 422, Sampling::k422)->Name("BM_Codec_Encode422_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode_vprjp, 420, Sampling::k420)->Name("BM_Codec_Encode420_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode_turbo, 420, Sampling::k420)->Name("BM_Codec_Encode420_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_vprjp, 444, Sampling::k444)->Name("BM_Codec_Decode444_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_turbo, 444, Sampling::k444, 0)->Name("BM_Codec_Decode444_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_vprjp, 422, Sampling::k422)->Name("BM_Codec_Decode422_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_turbo, 422, Sampling::k422, 0)->Name("BM_Codec_Decode422_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_turbo, 422f, Sampling::k422, TJFLAG_FASTUPSAMPLE)->Name("BM_Codec_Decode422_turbojpeg_fast")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_vprjp, 420, Sampling::k420)->Name("BM_Codec_Decode420_vprjp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_turbo, 420, Sampling::k420, 0)->Name("BM_Codec_Decode420_turbojpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode_turbo, 420f, Sampling::k420, TJFLAG_FASTUPSAMPLE)->Name("BM_Codec_Decode420_turbojpeg_fast")->Unit(benchmark::kMillisecond);

}  // namespace
#endif
