// Baseline Huffman block coding: encode and decode throughput on quantised
// blocks of a photo-like 1024x768 grey picture (float DCT, the JPEG
// standard's luminance table scaled to quality 75 and 95), with the JPEG
// standard's tables.  Units: blocks/s, ns/block, and bytes/s of coded data.
// Peer: libjpeg-turbo's entropy coder on the same coefficients
// (jpeg_read_coefficients / jpeg_write_coefficients on an in-memory file,
// which adds only its per-file header work).
#include <cmath>
#include <cstring>
#include <vector>

#include "bench_util.h"
#include "vprjp_jpeg_huffman.h"
#include "../tests/jpeg/test_huffman_tables.h"

#if VPR_HAVE_JPEG
#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
#endif

namespace {

constexpr int kW = 1024, kH = 768;

// The JPEG standard's example luminance tables, typed once for the tests.
const auto& kDc = hufftest::kDcLuma;
const auto& kAc = hufftest::kAcLuma;
const int kLumaQuant[64] = {16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
                            14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
                            18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
                            49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

struct Workload {
  std::vector<int16_t> blocks;  // natural order, raster order of blocks
  std::vector<uint8_t> coded;   // our entropy-coded data (flushed)
  int nblocks = 0;
  alignas(64) uint8_t encDc[1024], encAc[1024];
  alignas(64) uint8_t decDc[1644], decAc[1644];
};

// Quantised coefficients of the picture at an IJG-style quality.
Workload make_workload(int quality) {
  Workload w;
  const std::vector<uint8_t> img = vprbench::photo_like(kW, kH, 1);
  const int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  int q[64];
  for (int i = 0; i < 64; ++i) {
    const int v = (kLumaQuant[i] * scale + 50) / 100;
    q[i] = v < 1 ? 1 : v > 255 ? 255 : v;
  }
  double cosv[8][8];
  for (int x = 0; x < 8; ++x)
    for (int u = 0; u < 8; ++u) cosv[x][u] = std::cos((2 * x + 1) * u * M_PI / 16);
  for (int by = 0; by < kH / 8; ++by)
    for (int bx = 0; bx < kW / 8; ++bx) {
      for (int v = 0; v < 8; ++v)
        for (int u = 0; u < 8; ++u) {
          double s = 0;
          for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
              s += (img[static_cast<size_t>(by * 8 + y) * kW + bx * 8 + x] - 128.0) * cosv[x][u] * cosv[y][v];
          const double cu = u ? 1 : M_SQRT1_2, cv = v ? 1 : M_SQRT1_2;
          const double c = 0.25 * cu * cv * s;
          w.blocks.push_back(static_cast<int16_t>(std::lround(c / q[v * 8 + u])));
        }
      ++w.nblocks;
    }
  vpriEncodeHuffmanSpecInit_JPEG_8u(kDc.counts, kDc.values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(w.encDc));
  vpriEncodeHuffmanSpecInit_JPEG_8u(kAc.counts, kAc.values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(w.encAc));
  vpriDecodeHuffmanSpecInit_JPEG_8u(kDc.counts, kDc.values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(w.decDc));
  vpriDecodeHuffmanSpecInit_JPEG_8u(kAc.counts, kAc.values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(w.decAc));
  std::vector<uint8_t> out(static_cast<size_t>(w.nblocks) * 200);
  alignas(64) uint8_t st[1048] = {};
  int pos = 0;
  int16_t dc = 0;
  for (int b = 0; b < w.nblocks; ++b)
    vpriEncodeHuffman8x8_JPEG_16s1u_C1(&w.blocks[64 * static_cast<size_t>(b)], out.data(),
                                       static_cast<int>(out.size()), &pos, &dc,
                                       reinterpret_cast<VprEncodeHuffmanSpec*>(w.encDc),
                                       reinterpret_cast<VprEncodeHuffmanSpec*>(w.encAc),
                                       reinterpret_cast<VprEncodeHuffmanState*>(st), 0);
  vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), static_cast<int>(out.size()), &pos, nullptr, nullptr,
                                     nullptr, reinterpret_cast<VprEncodeHuffmanState*>(st), 1);
  w.coded.assign(out.begin(), out.begin() + pos);
  return w;
}

const Workload& workload(int quality) {
  static const Workload q75 = make_workload(75);
  static const Workload q95 = make_workload(95);
  return quality == 75 ? q75 : q95;
}

void report(benchmark::State& s, const Workload& w) {
  vprbench::set_items(s, w.nblocks, "blocks/s");
  vprbench::set_ns_per_block(s, w.nblocks);
  vprbench::set_bytes(s, static_cast<double>(w.coded.size()));
}

void BM_Huffman_Encode_vpr(benchmark::State& s) {
  const Workload& w = workload(static_cast<int>(s.range(0)));
  std::vector<uint8_t> out(w.coded.size() + 4096);
  alignas(64) uint8_t st[1048];
  for (auto _ : s) {
    std::memset(st, 0, sizeof st);
    int pos = 0;
    int16_t dc = 0;
    for (int b = 0; b < w.nblocks; ++b)
      vpriEncodeHuffman8x8_JPEG_16s1u_C1(&w.blocks[64 * static_cast<size_t>(b)], out.data(),
                                         static_cast<int>(out.size()), &pos, &dc,
                                         reinterpret_cast<const VprEncodeHuffmanSpec*>(w.encDc),
                                         reinterpret_cast<const VprEncodeHuffmanSpec*>(w.encAc),
                                         reinterpret_cast<VprEncodeHuffmanState*>(st), 0);
    vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), static_cast<int>(out.size()), &pos, nullptr, nullptr,
                                       nullptr, reinterpret_cast<VprEncodeHuffmanState*>(st), 1);
    benchmark::DoNotOptimize(out.data());
  }
  report(s, w);
}
BENCHMARK(BM_Huffman_Encode_vpr)->Arg(75)->Arg(95);

void BM_Huffman_Decode_vpr(benchmark::State& s) {
  const Workload& w = workload(static_cast<int>(s.range(0)));
  std::vector<int16_t> out(64 * static_cast<size_t>(w.nblocks));
  alignas(64) uint8_t st[24];
  for (auto _ : s) {
    std::memset(st, 0, sizeof st);
    int pos = 0, marker = 0;
    int16_t dc = 0;
    for (int b = 0; b < w.nblocks; ++b)
      vpriDecodeHuffman8x8_JPEG_1u16s_C1(w.coded.data(), static_cast<int>(w.coded.size()), &pos,
                                         &out[64 * static_cast<size_t>(b)], &dc, &marker,
                                         reinterpret_cast<const VprDecodeHuffmanSpec*>(w.decDc),
                                         reinterpret_cast<const VprDecodeHuffmanSpec*>(w.decAc),
                                         reinterpret_cast<VprDecodeHuffmanState*>(st));
    benchmark::DoNotOptimize(out.data());
  }
  report(s, w);
}
BENCHMARK(BM_Huffman_Decode_vpr)->Arg(75)->Arg(95);

void BM_Huffman_DecodeDirect_vpr(benchmark::State& s) {
  // The plain-bit Direct coder (no stuffing): its own stream of the blocks.
  const Workload& w = workload(static_cast<int>(s.range(0)));
  std::vector<uint8_t> raw(w.coded.size() + 4096);
  int bits = 0;
  int16_t dc = 0;
  for (int b = 0; b < w.nblocks; ++b)
    vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&w.blocks[64 * static_cast<size_t>(b)], raw.data(),
                                              static_cast<int>(raw.size()), &bits, &dc,
                                              reinterpret_cast<const VprEncodeHuffmanSpec*>(w.encDc),
                                              reinterpret_cast<const VprEncodeHuffmanSpec*>(w.encAc));
  std::vector<int16_t> out(64 * static_cast<size_t>(w.nblocks));
  for (auto _ : s) {
    int pos = 0;
    int16_t pdc = 0;
    for (int b = 0; b < w.nblocks; ++b)
      vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(raw.data(), static_cast<int>(raw.size()), &pos,
                                                &out[64 * static_cast<size_t>(b)], &pdc,
                                                reinterpret_cast<const VprDecodeHuffmanSpec*>(w.decDc),
                                                reinterpret_cast<const VprDecodeHuffmanSpec*>(w.decAc));
    benchmark::DoNotOptimize(out.data());
  }
  report(s, w);
}
BENCHMARK(BM_Huffman_DecodeDirect_vpr)->Arg(75)->Arg(95);

#if VPR_HAVE_JPEG
// ------------------------------------------------------------------ libjpeg-turbo
struct Jerr {
  jpeg_error_mgr pub;
  jmp_buf jump;
};
void jerr_exit(j_common_ptr c) { longjmp(reinterpret_cast<Jerr*>(c->err)->jump, 1); }

void put16(std::vector<uint8_t>& f, int v) {
  f.push_back(static_cast<uint8_t>(v >> 8));
  f.push_back(static_cast<uint8_t>(v));
}

// A grey baseline file around our coded data (same tables).
std::vector<uint8_t> wrap_file(const Workload& w) {
  std::vector<uint8_t> f = {0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
  for (int k = 0; k < 64; ++k) f.push_back(1);
  f.insert(f.end(), {0xFF, 0xC0, 0, 11, 8});
  put16(f, kH);
  put16(f, kW);
  f.insert(f.end(), {1, 1, 0x11, 0});
  f.insert(f.end(), {0xFF, 0xC4});
  put16(f, 2 + 17 + 12);
  f.push_back(0x00);
  f.insert(f.end(), kDc.counts, kDc.counts + 16);
  f.insert(f.end(), kDc.values.begin(), kDc.values.end());
  f.insert(f.end(), {0xFF, 0xC4});
  put16(f, 2 + 17 + 162);
  f.push_back(0x10);
  f.insert(f.end(), kAc.counts, kAc.counts + 16);
  f.insert(f.end(), kAc.values.begin(), kAc.values.end());
  f.insert(f.end(), {0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0});
  f.insert(f.end(), w.coded.begin(), w.coded.end());
  f.insert(f.end(), {0xFF, 0xD9});
  return f;
}

void BM_Huffman_Decode_libjpeg(benchmark::State& s) {
  const Workload& w = workload(static_cast<int>(s.range(0)));
  const std::vector<uint8_t> file = wrap_file(w);
  for (auto _ : s) {
    jpeg_decompress_struct d;
    Jerr err;
    d.err = jpeg_std_error(&err.pub);
    err.pub.error_exit = jerr_exit;
    if (setjmp(err.jump)) {
      jpeg_destroy_decompress(&d);
      s.SkipWithError("libjpeg failed");
      return;
    }
    jpeg_create_decompress(&d);
    jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&d, TRUE);
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&d);
    benchmark::DoNotOptimize(arrays);
    jpeg_finish_decompress(&d);
    jpeg_destroy_decompress(&d);
  }
  report(s, w);
}
BENCHMARK(BM_Huffman_Decode_libjpeg)->Arg(75)->Arg(95);

void BM_Huffman_Encode_libjpeg(benchmark::State& s) {
  const Workload& w = workload(static_cast<int>(s.range(0)));
  const std::vector<uint8_t> file = wrap_file(w);
  jpeg_decompress_struct d;
  Jerr err;
  d.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = jerr_exit;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&d);
    s.SkipWithError("libjpeg failed");
    return;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&d, TRUE);
  jvirt_barray_ptr* arrays = jpeg_read_coefficients(&d);
  for (auto _ : s) {
    jpeg_compress_struct c;
    Jerr cerr;
    c.err = jpeg_std_error(&cerr.pub);
    cerr.pub.error_exit = jerr_exit;
    unsigned char* out = nullptr;
    unsigned long size = 0;
    if (setjmp(cerr.jump)) {
      jpeg_destroy_compress(&c);
      free(out);
      s.SkipWithError("libjpeg failed");
      break;
    }
    jpeg_create_compress(&c);
    jpeg_mem_dest(&c, &out, &size);
    jpeg_copy_critical_parameters(&d, &c);
    c.optimize_coding = FALSE;
    jpeg_write_coefficients(&c, arrays);
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  jpeg_finish_decompress(&d);
  jpeg_destroy_decompress(&d);
  report(s, w);
}
BENCHMARK(BM_Huffman_Encode_libjpeg)->Arg(75)->Arg(95);
#endif

}  // namespace
