// Baseline JFIF encoder: headers and the entropy-coded segment are written
// here; every sample and coefficient is computed by vprJP.
#include <algorithm>
#include <array>
#include <cstring>

#include "jpeg_codec.h"
#include "jpeg_internal.h"
#include "jpeg_tables.h"

namespace vprjpeg {
namespace {

using namespace detail;

// Room kept free before each MCU of up to six blocks: the worst case (per
// block a 27-bit DC and 63 26-bit AC codes, every byte stuffed) is 6 * 512
// bytes; 640 a block also keeps the block coder on its fast path, which
// wants 560 bytes of room.
constexpr size_t kMcuWorstBytes = 6 * 640 + 16;

struct Table {
  uint8_t counts[16];
  uint8_t symbols[256];
  int n() const {
    int s = 0;
    for (uint8_t c : counts) s += c;
    return s;
  }
};

Table from_standard(const tables::Huffman& h) {
  Table t{};
  std::memcpy(t.counts, h.counts, 16);
  std::memcpy(t.symbols, h.symbols, 256);
  return t;
}

class Writer {
 public:
  explicit Writer(std::vector<uint8_t>& out) : out_(out) {}
  void u8(int v) { out_.push_back(static_cast<uint8_t>(v)); }
  void u16(int v) { u8(v >> 8), u8(v & 0xFF); }
  void marker(int m) { u8(0xFF), u8(m); }
  void bytes(const uint8_t* p, size_t n) { out_.insert(out_.end(), p, p + n); }

 private:
  std::vector<uint8_t>& out_;
};

struct Layout {
  int ncomp;     // 1 or 3
  int h, v;      // luma sampling factors
  int mcu_w, mcu_h, mcus_x, mcus_y;
  int y_blocks;  // Y blocks per MCU
};

class Encoder {
 public:
  Encoder(const Image& img, const EncodeOptions& opt) : img_(img), opt_(opt) {}

  std::string run(std::vector<uint8_t>& jpeg) {
    if (img_.channels != 1 && img_.channels != 3) return "encode: the image must have 1 or 3 channels";
    if (img_.width < 1 || img_.height < 1 || img_.width > 65535 || img_.height > 65535)
      return "encode: width and height must be 1..65535";
    if (img_.pixels.size() < static_cast<size_t>(img_.width) * img_.height * img_.channels)
      return "encode: the pixel buffer is smaller than width x height x channels";
    if (opt_.quality < 1 || opt_.quality > 100) return "encode: quality must be 1..100";
    if (opt_.restart_interval < 0 || opt_.restart_interval > 65535) return "encode: restart interval must be 0..65535";
    setup_layout();
    if (std::string e = setup_quant(); !e.empty()) return e;
    dc_[0] = from_standard(tables::kDcLuma), ac_[0] = from_standard(tables::kAcLuma);
    dc_[1] = from_standard(tables::kDcChroma), ac_[1] = from_standard(tables::kAcChroma);

    if (opt_.optimize_huffman) {
      coefs_.resize(static_cast<size_t>(L_.mcus_x) * L_.mcus_y * blocks_per_mcu() * 64);
      if (std::string e = transform_all(); !e.empty()) return e;
      if (std::string e = fit_tables(); !e.empty()) return e;
    }
    if (std::string e = build_specs(); !e.empty()) return e;

    jpeg.clear();
    write_headers(jpeg);
    if (std::string e = write_scan(jpeg); !e.empty()) return e;
    Writer(jpeg).marker(0xD9);  // EOI
    return {};
  }

 private:
  int blocks_per_mcu() const { return L_.ncomp == 1 ? 1 : L_.y_blocks + 2; }

  void setup_layout() {
    L_.ncomp = img_.channels;
    L_.h = L_.v = 1;
    if (L_.ncomp == 3 && opt_.sampling == Sampling::k422) L_.h = 2;
    if (L_.ncomp == 3 && opt_.sampling == Sampling::k420) L_.h = L_.v = 2;
    L_.mcu_w = 8 * L_.h, L_.mcu_h = 8 * L_.v;
    L_.mcus_x = (img_.width + L_.mcu_w - 1) / L_.mcu_w;
    L_.mcus_y = (img_.height + L_.mcu_h - 1) / L_.mcu_h;
    L_.y_blocks = L_.h * L_.v;
  }

  std::string setup_quant() {
    const uint8_t* base[2] = {tables::kLumaQuant, tables::kChromaQuant};
    for (int t = 0; t < 2; ++t) {
      for (int k = 0; k < 64; ++k) qraw_[t][k] = base[t][tables::kZigzag[k]];
      VprStatus st = vpriQuantFwdRawTableInit_JPEG_8u(qraw_[t], opt_.quality);
      if (st != vprStatusOk) return status_text("encode: quantisation table scaling", st);
      st = vpriQuantFwdTableInit_JPEG_8u16u(qraw_[t], qfwd_[t]);
      if (st != vprStatusOk) return status_text("encode: quantisation table", st);
    }
    return {};
  }

  std::string build_specs() {
    for (int t = 0; t < 2; ++t) {
      VprEncodeHuffmanSpec* p = nullptr;
      VprStatus st = vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(dc_[t].counts, dc_[t].symbols, &p);
      if (st != vprStatusOk) return status_text("encode: DC Huffman table", st);
      dcspec_[t].reset(p);
      st = vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(ac_[t].counts, ac_[t].symbols, &p);
      if (st != vprStatusOk) return status_text("encode: AC Huffman table", st);
      acspec_[t].reset(p);
    }
    VprEncodeHuffmanState* s = nullptr;
    const VprStatus st = vpriEncodeHuffmanStateInitAlloc_JPEG_8u(&s);
    if (st != vprStatusOk) return status_text("encode: Huffman state", st);
    state_.reset(s);
    return {};
  }

  // Level-shifted, transformed and quantised blocks of MCU (mx, my), in
  // scan order: Y blocks, then Cb, then Cr (or the one grey block).
  std::string transform_mcu(int mx, int my, int16_t* blocks) {
    const int x0 = mx * L_.mcu_w, y0 = my * L_.mcu_h;
    const int stride = img_.width * img_.channels;
    const bool inside = x0 + L_.mcu_w <= img_.width && y0 + L_.mcu_h <= img_.height;
    const uint8_t* src = img_.pixels.data() + static_cast<size_t>(y0) * stride + static_cast<size_t>(x0) * img_.channels;
    int step = stride;
    if (!inside) {  // replicate the last column and row into a full MCU
      const int bpp = img_.channels;
      const int w = std::min(L_.mcu_w, img_.width - x0);
      step = L_.mcu_w * bpp;
      for (int r = 0; r < L_.mcu_h; ++r) {
        const int sy = std::min(y0 + r, img_.height - 1);
        const uint8_t* row = img_.pixels.data() + static_cast<size_t>(sy) * stride + static_cast<size_t>(x0) * bpp;
        uint8_t* out = edge_ + r * step;
        std::memcpy(out, row, static_cast<size_t>(w) * bpp);
        for (int i = w * bpp; i < step; ++i) out[i] = out[i - bpp];
      }
      src = edge_;
    }
    VprStatus st;
    if (L_.ncomp == 1) {
      st = vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(src, step, blocks, qfwd_[0]);
      return st == vprStatusOk ? std::string() : status_text("encode: DCT", st);
    }
    Vpr16s* dst[3] = {blocks, blocks + 64 * L_.y_blocks, blocks + 64 * (L_.y_blocks + 1)};
    if (L_.y_blocks == 1) st = vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R(src, step, dst);
    else if (L_.y_blocks == 2) st = vpriRGBToYCbCr422LS_MCU_8u16s_C3P3R(src, step, dst);
    else st = vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R(src, step, dst);
    if (st != vprStatusOk) return status_text("encode: colour conversion", st);
    for (int b = 0; b < L_.y_blocks + 2; ++b) {
      st = vpriDCTQuantFwd8x8_JPEG_16s_C1I(blocks + 64 * b, qfwd_[b < L_.y_blocks ? 0 : 1]);
      if (st != vprStatusOk) return status_text("encode: DCT", st);
    }
    return {};
  }

  std::string transform_all() {
    int16_t* p = coefs_.data();
    const size_t per = static_cast<size_t>(blocks_per_mcu()) * 64;
    for (int my = 0; my < L_.mcus_y; ++my)
      for (int mx = 0; mx < L_.mcus_x; ++mx, p += per)
        if (std::string e = transform_mcu(mx, my, p); !e.empty()) return e;
    return {};
  }

  // Table index (0 luma, 1 chroma) of block b of an MCU.
  int table_of(int b) const { return b < L_.y_blocks || L_.ncomp == 1 ? 0 : 1; }
  // Component of block b of an MCU.
  int comp_of(int b) const { return L_.ncomp == 1 || b < L_.y_blocks ? 0 : b - L_.y_blocks + 1; }

  // Optimised tables: count the symbols the blocks will use, the way the
  // block coder forms them, and let the library build the codes.
  std::string fit_tables() {
    std::array<std::array<int, 256>, 2> dcn{}, acn{};
    const int per = blocks_per_mcu();
    int prev[3] = {0, 0, 0};
    const int16_t* p = coefs_.data();
    const int mcus = L_.mcus_x * L_.mcus_y;
    for (int m = 0; m < mcus; ++m) {
      if (opt_.restart_interval > 0 && m > 0 && m % opt_.restart_interval == 0) prev[0] = prev[1] = prev[2] = 0;
      for (int b = 0; b < per; ++b, p += 64) {
        const int t = table_of(b), c = comp_of(b);
        const int diff = p[0] - prev[c];
        prev[c] = p[0];
        ++dcn[t][category(diff)];
        int run = 0;
        for (int k = 1; k < 64; ++k) {
          const int v = p[tables::kZigzag[k]];
          if (v == 0) {
            ++run;
            continue;
          }
          for (; run > 15; run -= 16) ++acn[t][0xF0];
          ++acn[t][(run << 4) | category(v)];
          run = 0;
        }
        if (run > 0) ++acn[t][0x00];
      }
    }
    for (int t = 0; t < (L_.ncomp == 1 ? 1 : 2); ++t) {
      VprStatus st = vpriEncodeHuffmanRawTableInit_JPEG_8u(dcn[t].data(), dc_[t].counts, dc_[t].symbols);
      if (st != vprStatusOk) return status_text("encode: optimised DC table", st);
      st = vpriEncodeHuffmanRawTableInit_JPEG_8u(acn[t].data(), ac_[t].counts, ac_[t].symbols);
      if (st != vprStatusOk) return status_text("encode: optimised AC table", st);
    }
    return {};
  }

  static int category(int v) {
    unsigned a = static_cast<unsigned>(v < 0 ? -v : v);
    int n = 0;
    for (; a != 0; a >>= 1) ++n;
    return n;
  }

  void write_headers(std::vector<uint8_t>& out) {
    Writer w(out);
    w.marker(0xD8);  // SOI
    static const uint8_t jfif[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
    w.marker(0xE0), w.u16(2 + sizeof jfif), w.bytes(jfif, sizeof jfif);
    const int ntab = L_.ncomp == 1 ? 1 : 2;
    w.marker(0xDB), w.u16(2 + 65 * ntab);  // DQT, 8-bit entries, zig-zag order
    for (int t = 0; t < ntab; ++t) w.u8(t), w.bytes(qraw_[t], 64);
    w.marker(0xC0), w.u16(8 + 3 * L_.ncomp);  // SOF0
    w.u8(8), w.u16(img_.height), w.u16(img_.width), w.u8(L_.ncomp);
    for (int c = 0; c < L_.ncomp; ++c) {
      w.u8(c + 1);
      w.u8(c == 0 ? (L_.h << 4) | L_.v : 0x11);
      w.u8(c == 0 ? 0 : 1);
    }
    int len = 2;
    for (int t = 0; t < ntab; ++t) len += 17 + dc_[t].n() + 17 + ac_[t].n();
    w.marker(0xC4), w.u16(len);  // DHT
    for (int t = 0; t < ntab; ++t) {
      w.u8(0x00 | t), w.bytes(dc_[t].counts, 16), w.bytes(dc_[t].symbols, dc_[t].n());
      w.u8(0x10 | t), w.bytes(ac_[t].counts, 16), w.bytes(ac_[t].symbols, ac_[t].n());
    }
    if (opt_.restart_interval > 0) w.marker(0xDD), w.u16(4), w.u16(opt_.restart_interval);  // DRI
    w.marker(0xDA), w.u16(6 + 2 * L_.ncomp), w.u8(L_.ncomp);  // SOS
    for (int c = 0; c < L_.ncomp; ++c) w.u8(c + 1), w.u8(c == 0 ? 0x00 : 0x11);
    w.u8(0), w.u8(63), w.u8(0);
  }

  std::string write_scan(std::vector<uint8_t>& out) {
    size_t base = out.size();
    int pos = 0;
    std::vector<uint8_t>& buf = out;
    auto room = [&](size_t need) {
      if (buf.size() - base - static_cast<size_t>(pos) < need) buf.resize(std::max(buf.size() * 2, base + pos + need));
    };
    // A first guess of the coded size (grown on demand, trimmed at the end).
    buf.resize(base + kMcuWorstBytes * 4 + static_cast<size_t>(img_.width) * img_.height * img_.channels / 4);
    int16_t prev[3] = {0, 0, 0};
    alignas(16) int16_t local[6 * 64];
    const int per = blocks_per_mcu();
    // Tables and DC predictor of each block of an MCU.
    const VprEncodeHuffmanSpec *dcs[6], *acs[6];
    int16_t* pred[6];
    for (int b = 0; b < per; ++b) dcs[b] = dcspec_[table_of(b)].get(), acs[b] = acspec_[table_of(b)].get(), pred[b] = &prev[comp_of(b)];
    int restarts = 0;
    for (int my = 0, m = 0; my < L_.mcus_y; ++my)
      for (int mx = 0; mx < L_.mcus_x; ++mx, ++m) {
        room(kMcuWorstBytes);
        uint8_t* dst = buf.data() + base;
        const int len = static_cast<int>(std::min<size_t>(buf.size() - base, 0x7FFFFFFF));
        VprStatus st;
        if (opt_.restart_interval > 0 && m > 0 && m % opt_.restart_interval == 0) {
          st = vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, len, &pos, nullptr, nullptr, nullptr, state_.get(), 1);
          if (st != vprStatusOk) return status_text("encode: flush", st);
          dst[pos++] = 0xFF;
          dst[pos++] = static_cast<uint8_t>(0xD0 + (restarts++ & 7));
          prev[0] = prev[1] = prev[2] = 0;
        }
        const int16_t* blocks;
        if (opt_.optimize_huffman) {
          blocks = coefs_.data() + static_cast<size_t>(m) * per * 64;
        } else {
          if (std::string e = transform_mcu(mx, my, local); !e.empty()) return e;
          blocks = local;
        }
        for (int b = 0; b < per; ++b) {
          st = vpriEncodeHuffman8x8_JPEG_16s1u_C1(blocks + 64 * b, dst, len, &pos, pred[b], dcs[b], acs[b], state_.get(), 0);
          if (st != vprStatusOk) return status_text("encode: Huffman coding", st);
        }
      }
    room(16);
    const int len = static_cast<int>(std::min<size_t>(buf.size() - base, 0x7FFFFFFF));
    const VprStatus st =
        vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, buf.data() + base, len, &pos, nullptr, nullptr, nullptr, state_.get(), 1);
    if (st != vprStatusOk) return status_text("encode: flush", st);
    buf.resize(base + pos);
    return {};
  }

  const Image& img_;
  const EncodeOptions& opt_;
  Layout L_{};
  uint8_t qraw_[2][64];
  alignas(16) Vpr16u qfwd_[2][64];
  Table dc_[2], ac_[2];
  EncodeSpec dcspec_[2], acspec_[2];
  EncodeState state_;
  std::vector<int16_t> coefs_;
  alignas(16) uint8_t edge_[16 * 16 * 3];
};

}  // namespace

std::string encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  return Encoder(image, options).run(jpeg);
}

}  // namespace vprjpeg
