// libjpeg-turbo as the peer: baseline files it writes (grey and 4:2:0
// colour, with and without restart intervals, quality 75 and 95) decode
// with our block decoder to exactly the coefficients libjpeg-turbo reads;
// and files whose entropy-coded data we write (with a minimal JFIF wrapper
// made here) read back in libjpeg-turbo to exactly our coefficients.
#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <jpeglib.h>

#include "test_huffman_tables.h"
#include "vprjp_jpeg_huffman.h"
#include "vprtest.h"

using namespace hufftest;

namespace {

// ------------------------------------------------------------------ libjpeg glue
struct ErrorMgr {
  jpeg_error_mgr pub;
  jmp_buf jump;
  int warnings = 0;
};

void on_error(j_common_ptr cinfo) {
  auto* e = reinterpret_cast<ErrorMgr*>(cinfo->err);
  longjmp(e->jump, 1);
}
void on_message(j_common_ptr cinfo, int level) {
  if (level < 0) reinterpret_cast<ErrorMgr*>(cinfo->err)->warnings++;
}

std::vector<uint8_t> test_image(int w, int h, int channels, uint32_t seed) {
  std::vector<uint8_t> img(static_cast<size_t>(w) * h * channels);
  uint32_t r = seed;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < channels; ++c) {
        r = r * 1664525u + 1013904223u;
        const int base = (x * (c + 2) * 3 + y * (4 - c) * 2) % 256;
        const int edge = ((x / 13 + y / 9) & 1) ? 50 : -50;
        int v = base / 2 + 64 + edge + static_cast<int>((r >> 24) % 21) - 10;
        img[(static_cast<size_t>(y) * w + x) * channels + c] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
      }
  return img;
}

std::vector<uint8_t> peer_compress(const std::vector<uint8_t>& img, int w, int h, int channels, int quality,
                                   int restart_rows, bool optimize) {
  jpeg_compress_struct c;
  ErrorMgr err;
  c.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = on_error;
  unsigned char* out = nullptr;
  unsigned long size = 0;
  if (setjmp(err.jump)) {
    jpeg_destroy_compress(&c);
    free(out);
    throw std::runtime_error("libjpeg compress failed");
  }
  jpeg_create_compress(&c);
  jpeg_mem_dest(&c, &out, &size);
  c.image_width = static_cast<JDIMENSION>(w);
  c.image_height = static_cast<JDIMENSION>(h);
  c.input_components = channels;
  c.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, quality, TRUE);
  c.optimize_coding = optimize ? TRUE : FALSE;
  c.restart_in_rows = restart_rows;
  jpeg_start_compress(&c, TRUE);
  while (c.next_scanline < c.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(&img[static_cast<size_t>(c.next_scanline) * w * channels]);
    jpeg_write_scanlines(&c, &row, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  std::vector<uint8_t> file(out, out + size);
  free(out);
  return file;
}

// Coefficients per component as libjpeg reads them: comp -> blocks in
// raster order, 64 natural-order values each.
struct PeerCoefs {
  std::vector<std::vector<int16_t>> comp;
  std::vector<int> wblocks, hblocks;
  int warnings = 0;
};

PeerCoefs peer_read_coefficients(const std::vector<uint8_t>& file) {
  jpeg_decompress_struct d;
  ErrorMgr err;
  d.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = on_error;
  err.pub.emit_message = on_message;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&d);
    throw std::runtime_error("libjpeg read failed");
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&d, TRUE);
  jvirt_barray_ptr* arrays = jpeg_read_coefficients(&d);
  PeerCoefs pc;
  for (int ci = 0; ci < d.num_components; ++ci) {
    const jpeg_component_info& comp = d.comp_info[ci];
    const int wb = static_cast<int>(comp.width_in_blocks), hb = static_cast<int>(comp.height_in_blocks);
    pc.wblocks.push_back(wb);
    pc.hblocks.push_back(hb);
    std::vector<int16_t> all;
    for (int by = 0; by < hb; ++by) {
      JBLOCKARRAY rows = (*d.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&d), arrays[ci],
                                                      static_cast<JDIMENSION>(by), 1, FALSE);
      for (int bx = 0; bx < wb; ++bx)
        for (int k = 0; k < 64; ++k) all.push_back(static_cast<int16_t>(rows[0][bx][k]));
    }
    pc.comp.push_back(std::move(all));
  }
  jpeg_finish_decompress(&d);
  jpeg_destroy_decompress(&d);
  pc.warnings = err.warnings;
  return pc;
}

// ------------------------------------------------------------------ a small JPEG parser
struct Component {
  int id, h, v, dc_table, ac_table;
};
struct Parsed {
  int width = 0, height = 0, restart_interval = 0;
  std::vector<Component> comps;
  RawTable dc[4], ac[4];
  std::vector<uint8_t> scan;  // entropy-coded data with its RST markers, up to EOI
};

Parsed parse(const std::vector<uint8_t>& f) {
  Parsed p;
  size_t i = 2;
  auto u16 = [&](size_t at) { return (f[at] << 8) | f[at + 1]; };
  while (i + 4 <= f.size()) {
    if (f[i] != 0xFF) throw std::runtime_error("marker expected");
    const int m = f[i + 1];
    const int len = u16(i + 2);
    const size_t body = i + 4;
    if (m == 0xC4) {  // DHT: one or more tables
      size_t q = body;
      while (q < i + 2 + len) {
        const int tc = f[q] >> 4, th = f[q] & 15;
        RawTable& t = tc ? p.ac[th] : p.dc[th];
        int n = 0;
        for (int l = 0; l < 16; ++l) n += t.counts[l] = f[q + 1 + l];
        t.values.assign(f.begin() + static_cast<long>(q + 17), f.begin() + static_cast<long>(q + 17 + n));
        q += 17 + n;
      }
    } else if (m == 0xC0) {
      p.height = u16(body + 1);
      p.width = u16(body + 3);
      const int nc = f[body + 5];
      for (int c = 0; c < nc; ++c)
        p.comps.push_back({f[body + 6 + 3 * c], f[body + 7 + 3 * c] >> 4, f[body + 7 + 3 * c] & 15, 0, 0});
    } else if (m == 0xDD) {
      p.restart_interval = u16(body);
    } else if (m == 0xDA) {
      const int ns = f[body];
      if (ns != static_cast<int>(p.comps.size())) throw std::runtime_error("one interleaved scan expected");
      for (int c = 0; c < ns; ++c) {
        p.comps[c].dc_table = f[body + 2 + 2 * c] >> 4;
        p.comps[c].ac_table = f[body + 2 + 2 * c] & 15;
      }
      const size_t start = i + 2 + len;
      size_t end = start;
      while (end + 1 < f.size() && !(f[end] == 0xFF && f[end + 1] == 0xD9)) ++end;
      p.scan.assign(f.begin() + static_cast<long>(start), f.begin() + static_cast<long>(end));
      return p;
    }
    i += 2 + len;
  }
  throw std::runtime_error("no scan");
}

// Decodes every block of the (single, interleaved or not) scan with our
// decoder, handling restart markers as a codec would.
std::vector<std::vector<int16_t>> our_decode(const Parsed& p, const PeerCoefs& shape) {
  const int nc = static_cast<int>(p.comps.size());
  int hmax = 1, vmax = 1;
  for (const auto& c : p.comps) {
    hmax = std::max(hmax, c.h);
    vmax = std::max(vmax, c.v);
  }
  std::vector<DecTables> tabs(nc);
  for (int c = 0; c < nc; ++c) {
    EXPECT_EQ(make_dec(p.dc[p.comps[c].dc_table], tabs[c].dc), vprStatusOk);
    EXPECT_EQ(make_dec(p.ac[p.comps[c].ac_table], tabs[c].ac), vprStatusOk);
  }
  std::vector<std::vector<int16_t>> out(nc);
  for (int c = 0; c < nc; ++c) out[c].assign(shape.comp[c].size(), 0);
  int mcux, mcuy;
  if (nc == 1) {
    mcux = shape.wblocks[0];
    mcuy = shape.hblocks[0];
  } else {
    mcux = (p.width + 8 * hmax - 1) / (8 * hmax);
    mcuy = (p.height + 8 * vmax - 1) / (8 * vmax);
  }
  alignas(8) uint8_t st[24] = {};
  auto* state = reinterpret_cast<VprDecodeHuffmanState*>(st);
  vpriDecodeHuffmanStateInit_JPEG_8u(state);
  std::vector<int16_t> pred(nc, 0);
  int pos = 0, marker = 0, next_rst = 0;
  const int len = static_cast<int>(p.scan.size());
  for (int m = 0; m < mcux * mcuy; ++m) {
    if (p.restart_interval && m > 0 && m % p.restart_interval == 0) {
      if (marker == 0) {  // the marker lies ahead: skip to it
        while (pos + 1 < len && !(p.scan[pos] == 0xFF && p.scan[pos + 1] >= 0xD0 && p.scan[pos + 1] <= 0xD7)) ++pos;
        marker = p.scan[pos + 1];
        pos += 2;
      }
      EXPECT_EQ(marker, 0xD0 + next_rst);
      next_rst = (next_rst + 1) & 7;
      marker = 0;
      vpriDecodeHuffmanStateInit_JPEG_8u(state);
      std::fill(pred.begin(), pred.end(), 0);
    }
    const int mx = m % mcux, my = m / mcux;
    for (int c = 0; c < nc; ++c) {
      const int bh = nc == 1 ? 1 : p.comps[c].h, bv = nc == 1 ? 1 : p.comps[c].v;
      for (int yy = 0; yy < bv; ++yy)
        for (int xx = 0; xx < bh; ++xx) {
          const int bx = mx * bh + xx, by = my * bv + yy;
          int16_t blk[64];
          const VprStatus s = vpriDecodeHuffman8x8_JPEG_1u16s_C1(p.scan.data(), len, &pos, blk, &pred[c], &marker,
                                                                 tabs[c].dcp(), tabs[c].acp(), state);
          if (s != vprStatusOk) {
            ADD_FAILURE() << "status " << s << " at MCU " << m;
            return out;
          }
          if (bx < shape.wblocks[c] && by < shape.hblocks[c])
            std::memcpy(&out[c][64 * (static_cast<size_t>(by) * shape.wblocks[c] + bx)], blk, 128);
        }
    }
  }
  return out;
}

// ------------------------------------------------------------------ our writer
void put16(std::vector<uint8_t>& f, int v) {
  f.push_back(static_cast<uint8_t>(v >> 8));
  f.push_back(static_cast<uint8_t>(v));
}
void put_dht(std::vector<uint8_t>& f, int cls, int id, const RawTable& t) {
  f.push_back(0xFF);
  f.push_back(0xC4);
  put16(f, 2 + 17 + static_cast<int>(t.values.size()));
  f.push_back(static_cast<uint8_t>(cls << 4 | id));
  f.insert(f.end(), t.counts, t.counts + 16);
  f.insert(f.end(), t.values.begin(), t.values.end());
}

// A baseline JFIF file of one interleaved scan (grey: one component;
// colour: 4:2:0) whose blocks are coded by our encoder.
std::vector<uint8_t> our_file(int w, int h, const std::vector<std::vector<int16_t>>& coefs,
                              const std::vector<int>& wblocks, int restart_interval, const RawTable* tables) {
  const int nc = static_cast<int>(coefs.size());
  std::vector<uint8_t> f = {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
  f.insert(f.end(), {0xFF, 0xDB});
  put16(f, 2 + 65);
  f.push_back(0);
  for (int k = 0; k < 64; ++k) f.push_back(static_cast<uint8_t>(1 + k / 4));
  f.insert(f.end(), {0xFF, 0xC0});
  put16(f, 8 + 3 * nc);
  f.push_back(8);
  put16(f, h);
  put16(f, w);
  f.push_back(static_cast<uint8_t>(nc));
  for (int c = 0; c < nc; ++c) {
    f.push_back(static_cast<uint8_t>(c + 1));
    f.push_back(nc == 1 ? 0x11 : c == 0 ? 0x22 : 0x11);
    f.push_back(0);
  }
  put_dht(f, 0, 0, tables[0]);
  put_dht(f, 1, 0, tables[1]);
  put_dht(f, 0, 1, tables[2]);
  put_dht(f, 1, 1, tables[3]);
  if (restart_interval) {
    f.insert(f.end(), {0xFF, 0xDD, 0, 4});
    put16(f, restart_interval);
  }
  f.insert(f.end(), {0xFF, 0xDA});
  put16(f, 6 + 2 * nc);
  f.push_back(static_cast<uint8_t>(nc));
  for (int c = 0; c < nc; ++c) {
    f.push_back(static_cast<uint8_t>(c + 1));
    f.push_back(c == 0 ? 0x00 : 0x11);
  }
  f.insert(f.end(), {0, 63, 0});

  EncTables tabs[2] = {enc_tables(tables[0], tables[1]), enc_tables(tables[2], tables[3])};
  alignas(8) uint8_t st[1048] = {};
  auto* state = reinterpret_cast<VprEncodeHuffmanState*>(st);
  std::vector<uint8_t> data(1 << 22);
  int pos = 0;
  std::vector<int16_t> pred(nc, 0);
  const int hmax = nc == 1 ? 1 : 2;
  const int mcux = (w + 8 * hmax - 1) / (8 * hmax), mcuy = (h + 8 * hmax - 1) / (8 * hmax);
  int rst = 0;
  for (int m = 0; m < mcux * mcuy; ++m) {
    if (restart_interval && m > 0 && m % restart_interval == 0) {
      EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, data.data(), static_cast<int>(data.size()), &pos, nullptr,
                                                   nullptr, nullptr, state, 1),
                vprStatusOk);
      data[pos++] = 0xFF;
      data[pos++] = static_cast<uint8_t>(0xD0 + rst);
      rst = (rst + 1) & 7;
      std::fill(pred.begin(), pred.end(), 0);
    }
    const int mx = m % mcux, my = m / mcux;
    for (int c = 0; c < nc; ++c) {
      const int b = (nc > 1 && c == 0) ? 2 : 1;
      for (int yy = 0; yy < b; ++yy)
        for (int xx = 0; xx < b; ++xx) {
          const int bx = mx * b + xx, by = my * b + yy;
          const int16_t* blk = &coefs[c][64 * (static_cast<size_t>(by) * wblocks[c] + bx)];
          const EncTables& t = tabs[c == 0 ? 0 : 1];
          EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(blk, data.data(), static_cast<int>(data.size()), &pos, &pred[c],
                                                       t.dcp(), t.acp(), state, 0),
                    vprStatusOk);
        }
    }
  }
  EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, data.data(), static_cast<int>(data.size()), &pos, nullptr,
                                               nullptr, nullptr, state, 1),
            vprStatusOk);
  f.insert(f.end(), data.begin(), data.begin() + pos);
  f.insert(f.end(), {0xFF, 0xD9});
  return f;
}

}  // namespace

struct PeerCase {
  int w, h, channels, quality, restart_rows;
  bool optimize;
};

class HuffmanPeer : public ::testing::TestWithParam<PeerCase> {};

TEST_P(HuffmanPeer, WeDecodeWhatLibjpegWrites) {
  const PeerCase pc = GetParam();
  const std::vector<uint8_t> img = test_image(pc.w, pc.h, pc.channels, 7u + static_cast<uint32_t>(pc.quality));
  const std::vector<uint8_t> file = peer_compress(img, pc.w, pc.h, pc.channels, pc.quality, pc.restart_rows, pc.optimize);
  const PeerCoefs want = peer_read_coefficients(file);
  ASSERT_EQ(want.warnings, 0);
  const Parsed p = parse(file);
  ASSERT_EQ(p.comps.size(), static_cast<size_t>(pc.channels));
  EXPECT_EQ(p.restart_interval != 0, pc.restart_rows != 0);
  const auto got = our_decode(p, want);
  for (size_t c = 0; c < got.size(); ++c) {
    SCOPED_TRACE(c);
    EXPECT_TRUE(vprtest::same_array(got[c].data(), want.comp[c].data(), want.comp[c].size()));
  }
}

TEST_P(HuffmanPeer, LibjpegDecodesWhatWeWrite) {
  const PeerCase pc = GetParam();
  // Real coefficients: take libjpeg's own for the picture, re-encode them
  // with our coder (standard or the file's optimised tables) in our file.
  const std::vector<uint8_t> img = test_image(pc.w, pc.h, pc.channels, 99u + static_cast<uint32_t>(pc.quality));
  const std::vector<uint8_t> file = peer_compress(img, pc.w, pc.h, pc.channels, pc.quality, 0, pc.optimize);
  const PeerCoefs coefs = peer_read_coefficients(file);
  const Parsed p = parse(file);
  const int restart = pc.restart_rows ? 3 : 0;
  // The file's own tables fit its DC differences only without restarts
  // (a restart resets the prediction); otherwise the standard tables.
  RawTable tables[4] = {kDcLuma, kAcLuma, kDcChroma, kAcChroma};
  if (restart == 0) {
    tables[0] = p.dc[0];
    tables[1] = p.ac[0];
    tables[2] = pc.channels > 1 ? p.dc[1] : p.dc[0];
    tables[3] = pc.channels > 1 ? p.ac[1] : p.ac[0];
  }
  const std::vector<uint8_t> ours = our_file(pc.w, pc.h, coefs.comp, coefs.wblocks, restart, tables);
  const PeerCoefs back = peer_read_coefficients(ours);
  EXPECT_EQ(back.warnings, 0);
  ASSERT_EQ(back.comp.size(), coefs.comp.size());
  for (size_t c = 0; c < back.comp.size(); ++c) {
    SCOPED_TRACE(c);
    EXPECT_TRUE(vprtest::same_array(back.comp[c].data(), coefs.comp[c].data(), coefs.comp[c].size()));
  }
}

INSTANTIATE_TEST_SUITE_P(Files, HuffmanPeer,
                         ::testing::Values(PeerCase{128, 96, 1, 75, 0, false}, PeerCase{128, 96, 1, 95, 2, false},
                                           PeerCase{160, 128, 3, 75, 0, false}, PeerCase{160, 128, 3, 95, 1, false},
                                           PeerCase{96, 64, 3, 85, 0, true}, PeerCase{64, 48, 1, 100, 1, true},
                                           PeerCase{256, 192, 3, 50, 3, false}));

TEST(HuffmanPeerEdge, OptimisedTablesFromOurCountsMatchTheirCodeLengths) {
  // libjpeg builds optimised tables with the same standard procedure: feed
  // our builder the symbol counts of the file's luminance AC data and get
  // the same code-length counts (the symbols may differ in order only
  // among equal lengths, which the procedure fixes by value).
  const std::vector<uint8_t> img = test_image(128, 128, 1, 3);
  const std::vector<uint8_t> file = peer_compress(img, 128, 128, 1, 80, 0, true);
  const PeerCoefs coefs = peer_read_coefficients(file);
  const Parsed p = parse(file);
  int dc_counts[256] = {}, ac_counts[256] = {};
  int16_t prev = 0;
  const std::vector<int> zz = zigzag_order();
  for (size_t b = 0; b < coefs.comp[0].size() / 64; ++b) {
    const int16_t* blk = &coefs.comp[0][64 * b];
    int diff = blk[0] - prev;
    prev = blk[0];
    int s = 0;
    for (int a = diff < 0 ? -diff : diff; a; a >>= 1) ++s;
    dc_counts[s]++;
    int run = 0;
    for (int k = 1; k < 64; ++k) {
      const int v = blk[zz[k]];
      if (v == 0) {
        ++run;
        continue;
      }
      for (; run > 15; run -= 16) ac_counts[0xF0]++;
      int t = 0;
      for (int a = v < 0 ? -v : v; a; a >>= 1) ++t;
      ac_counts[run * 16 + t]++;
      run = 0;
    }
    if (run) ac_counts[0]++;
  }
  uint8_t bits[16], vals[256];
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(dc_counts, bits, vals), vprStatusOk);
  EXPECT_EQ(std::memcmp(bits, p.dc[0].counts, 16), 0);
  EXPECT_TRUE(std::equal(p.dc[0].values.begin(), p.dc[0].values.end(), vals));
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(ac_counts, bits, vals), vprStatusOk);
  EXPECT_EQ(std::memcmp(bits, p.ac[0].counts, 16), 0);
  EXPECT_TRUE(std::equal(p.ac[0].values.begin(), p.ac[0].values.end(), vals));
}
