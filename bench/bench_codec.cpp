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
