// Baseline JPEG decoder: marker parsing, table set-up and restart handling
// are done here; Huffman decoding, dequantisation, inverse DCT, level shift
// and colour conversion are vprJP calls.  The decoder reads only inside the
// buffer it is given and reports every malformed or unsupported file with
// a message instead of guessing.
#include <algorithm>
#include <cstring>
#include <vector>

#include "jpeg_codec.h"
#include "jpeg_internal.h"

namespace vprjpeg {
namespace {

using namespace detail;

struct Component {
  int id = 0, h = 1, v = 1, tq = 0;  // from the frame header
  int td = 0, ta = 0;                // from the scan header
  Vpr16s prev_dc = 0;
};

class Decoder {
 public:
  Decoder(const uint8_t* data, size_t size) : d_(data), n_(size) {}

  std::string run(Image& out) {
    if (n_ < 2 || d_[0] != 0xFF || d_[1] != 0xD8) return "not a JPEG file (no SOI marker)";
    pos_ = 2;
    for (;;) {
      int m = 0;
      if (std::string e = next_marker(m); !e.empty()) return e;
      if (m == 0xD9) return "no image data before the end of the file (EOI)";
      if (m == 0xD8 || (m >= 0xD0 && m <= 0xD7) || m == 0x01) continue;  // no segment
      size_t len = 0;
      if (std::string e = segment_length(len); !e.empty()) return e;
      const uint8_t* seg = d_ + pos_;
      pos_ += len;
      std::string e;
      switch (m) {
        case 0xC0: case 0xC1: e = parse_frame(seg, len); break;
        case 0xC2: case 0xC6: case 0xCA: case 0xCE: return "progressive JPEG is not supported";
        case 0xC3: case 0xC7: case 0xCB: case 0xCF: return "lossless JPEG is not supported";
        case 0xC5: return "hierarchical JPEG is not supported";
        case 0xC9: case 0xCD: case 0xCC: return "arithmetic-coded JPEG is not supported";
        case 0xC4: e = parse_dht(seg, len); break;
        case 0xDB: e = parse_dqt(seg, len); break;
        case 0xDD: e = parse_dri(seg, len); break;
        case 0xDC: return "DNL markers are not supported";
        case 0xDA: {
          if (std::string e2 = parse_sos(seg, len); !e2.empty()) return e2;
          return decode_scan(out);
        }
        default: break;  // APPn, COM and others: skipped
      }
      if (!e.empty()) return e;
    }
  }

 private:
  // --------------------------------------------------------------- markers
  std::string next_marker(int& m) {
    if (pos_ >= n_ || d_[pos_] != 0xFF) return pos_ >= n_ ? "truncated file (no image data)" : "corrupt file: marker expected";
    while (pos_ < n_ && d_[pos_] == 0xFF) ++pos_;
    if (pos_ >= n_) return "truncated file (no image data)";
    m = d_[pos_++];
    if (m == 0) return "corrupt file: marker expected";
    return {};
  }
  std::string segment_length(size_t& len) {
    if (n_ - pos_ < 2) return "truncated marker segment";
    const size_t l = static_cast<size_t>(d_[pos_] << 8 | d_[pos_ + 1]);
    if (l < 2) return "corrupt marker segment length";
    if (l > n_ - pos_) return "truncated marker segment";
    pos_ += 2;
    len = l - 2;
    return {};
  }

  std::string parse_frame(const uint8_t* s, size_t len) {
    if (frame_) return "more than one frame header";
    if (len < 6) return "corrupt frame header";
    const int precision = s[0];
    if (precision == 12) return "12-bit JPEG is not supported";
    if (precision != 8) return "only 8-bit samples are supported";
    height_ = s[1] << 8 | s[2];
    width_ = s[3] << 8 | s[4];
    ncomp_ = s[5];
    if (height_ == 0) return "images whose height is set by a DNL marker are not supported";
    if (width_ == 0) return "corrupt frame header: zero width";
    if (ncomp_ != 1 && ncomp_ != 3) return "only greyscale and three-component (YCbCr) images are supported";
    if (len != 6 + 3 * static_cast<size_t>(ncomp_)) return "corrupt frame header length";
    for (int c = 0; c < ncomp_; ++c) {
      Component& k = comp_[c];
      k.id = s[6 + 3 * c];
      k.h = s[7 + 3 * c] >> 4;
      k.v = s[7 + 3 * c] & 15;
      k.tq = s[8 + 3 * c];
      if (k.h < 1 || k.h > 4 || k.v < 1 || k.v > 4 || k.tq > 3) return "corrupt frame header: bad component";
      for (int o = 0; o < c; ++o)
        if (comp_[o].id == k.id) return "corrupt frame header: duplicate component id";
    }
    if (ncomp_ == 3) {
      const Component &y = comp_[0], &cb = comp_[1], &cr = comp_[2];
      if (cb.h != 1 || cb.v != 1 || cr.h != 1 || cr.v != 1 ||
          !((y.h == 1 && y.v == 1) || (y.h == 2 && y.v == 1) || (y.h == 2 && y.v == 2)))
        return "unsupported chroma sampling (4:4:4, 4:2:2 and 4:2:0 are supported)";
      h_ = y.h, v_ = y.v;
    } else {
      h_ = v_ = 1;  // one component: one block per MCU whatever its factors
    }
    frame_ = true;
    return {};
  }

  std::string parse_dht(const uint8_t* s, size_t len) {
    size_t i = 0;
    while (i < len) {
      if (len - i < 17) return "corrupt Huffman table segment";
      const int tc = s[i] >> 4, th = s[i] & 15;
      if (tc > 1 || th > 3) return "corrupt Huffman table segment: bad class or id";
      int total = 0;
      for (int k = 0; k < 16; ++k) total += s[i + 1 + k];
      if (total > 256 || static_cast<size_t>(total) > len - i - 17) return "corrupt Huffman table segment: bad counts";
      uint8_t symbols[256] = {};
      std::memcpy(symbols, s + i + 17, static_cast<size_t>(total));
      VprDecodeHuffmanSpec* p = nullptr;
      const VprStatus st = vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(s + i + 1, symbols, &p);
      if (st != vprStatusOk) return status_text("Huffman table", st);
      (tc == 0 ? dc_ : ac_)[th].reset(p);
      i += 17 + static_cast<size_t>(total);
    }
    return {};
  }

  std::string parse_dqt(const uint8_t* s, size_t len) {
    size_t i = 0;
    while (i < len) {
      const int pq = s[i] >> 4, tq = s[i] & 15;
      if (pq != 0) return "16-bit quantisation tables are not supported";
      if (tq > 3) return "corrupt quantisation table segment: bad id";
      if (len - i < 65) return "corrupt quantisation table segment";
      const VprStatus st = vpriQuantInvTableInit_JPEG_8u16u(s + i + 1, qinv_[tq]);
      if (st != vprStatusOk) return status_text("quantisation table", st);
      qset_[tq] = true;
      i += 65;
    }
    return {};
  }

  std::string parse_dri(const uint8_t* s, size_t len) {
    if (len != 2) return "corrupt restart interval segment";
    restart_ = s[0] << 8 | s[1];
    return {};
  }

  std::string parse_sos(const uint8_t* s, size_t len) {
    if (!frame_) return "scan before the frame header";
    if (len < 1) return "corrupt scan header";
    const int ns = s[0];
    if (len != 4 + 2 * static_cast<size_t>(ns)) return "corrupt scan header length";
    if (ns != ncomp_) return "files with more than one scan are not supported";
    for (int i = 0; i < ns; ++i) {
      const int id = s[1 + 2 * i];
      int c = 0;
      while (c < ncomp_ && comp_[c].id != id) ++c;
      if (c == ncomp_) return "corrupt scan header: unknown component";
      for (int j = 0; j < i; ++j)
        if (order_[j] == c) return "corrupt scan header: component repeated";
      order_[i] = c;
      comp_[c].td = s[2 + 2 * i] >> 4;
      comp_[c].ta = s[2 + 2 * i] & 15;
      if (comp_[c].td > 3 || comp_[c].ta > 3) return "corrupt scan header: bad table id";
      if (!dc_[comp_[c].td] || !ac_[comp_[c].ta]) return "scan uses a Huffman table that was not defined";
      if (!qset_[comp_[c].tq]) return "frame uses a quantisation table that was not defined";
    }
    const uint8_t* t = s + 1 + 2 * ns;
    if (t[0] != 0 || t[1] != 63 || t[2] != 0) return "not a sequential scan (progressive parameters)";
    return {};
  }

  // --------------------------------------------------------------- scan
  // Skips to the next marker (the bits before it are padding), checks that
  // it is a restart marker, and resets the coder for the next interval.
  std::string restart() {
    if (marker_ == 0) {
      while (pos_ + 1 < n_) {
        if (d_[pos_] == 0xFF && d_[pos_ + 1] != 0 && d_[pos_ + 1] != 0xFF) {
          marker_ = d_[pos_ + 1];
          pos_ += 2;
          break;
        }
        ++pos_;
      }
    }
    if (marker_ < 0xD0 || marker_ > 0xD7) return "corrupt data: restart marker missing";
    marker_ = 0;
    vpriDecodeHuffmanStateInit_JPEG_8u(state_.get());
    for (Component& c : comp_) c.prev_dc = 0;
    return {};
  }

  // The blocks of one MCU in scan order (Y blocks, then Cb, then Cr), each
  // with its tables and the place its 8x8 samples go in the planes of a
  // stretch of MCUs: the i-th MCU of the stretch puts them at
  // `samples + i * advance`, rows `step` apart.
  struct Block {
    int16_t* coef;
    Vpr16s* prev_dc;
    const VprDecodeHuffmanSpec *dc, *ac;
    const Vpr16u* q;
    uint8_t* samples;
    int advance, step;
  };

  // Colour images are decoded a stretch of MCUs at a time: every block's
  // inverse DCT writes 8-bit samples into Y, Cb and Cr planes that span the
  // stretch, and one colour conversion turns them into RGB image rows.
  // Greyscale blocks are written straight into the image.
  std::string decode_scan(Image& out) {
    const int mcu_w = 8 * h_, mcu_h = 8 * v_;
    const int mcus_x = (width_ + mcu_w - 1) / mcu_w, mcus_y = (height_ + mcu_h - 1) / mcu_h;
    const int y_blocks = h_ * v_;
    const int per = ncomp_ == 1 ? 1 : y_blocks + 2;
    // Every block takes at least two bits; refuse sizes the data cannot hold
    // before allocating the image.
    const double blocks = static_cast<double>(mcus_x) * mcus_y * per;
    if (blocks * 2 > static_cast<double>(n_ - pos_) * 8 + 64) return "truncated file: too little data for the image size";
    VprDecodeHuffmanState* s = nullptr;
    if (VprStatus st = vpriDecodeHuffmanStateInitAlloc_JPEG_8u(&s); st != vprStatusOk)
      return status_text("Huffman state", st);
    state_.reset(s);

    out.width = width_, out.height = height_, out.channels = ncomp_;
    // Every pixel is written below, so a buffer of the right size is reused as is.
    out.pixels.resize(static_cast<size_t>(width_) * height_ * ncomp_);
    alignas(16) int16_t coef[6 * 64];  // the coefficients of one MCU
    alignas(16) uint8_t edge[64];      // a grey block that sticks out of the image

    // MCUs colour-converted together: 256 pixels wide, so the samples stay
    // in the first-level cache, and at most 256 x 16 pixels, so the 4:4:4
    // converter (which spreads more than 8192 pixels over the library's
    // threads) stays on the calling thread.
    const int stretch = std::min(256 / mcu_w, mcus_x);
    // Planes of one stretch: Y is stretch * mcu_w samples wide and mcu_h
    // high, Cb and Cr are stretch * 8 wide and 8 high.
    const int y_step = stretch * mcu_w, c_step = stretch * 8;
    if (ncomp_ == 3) planes_.resize(static_cast<size_t>(y_step) * mcu_h + 2 * static_cast<size_t>(c_step) * 8);
    uint8_t* const plane[3] = {planes_.data(), planes_.data() + y_step * mcu_h, planes_.data() + y_step * mcu_h + c_step * 8};
    const int len = static_cast<int>(std::min<size_t>(n_, 0x7FFFFFFF));
    Block plan[6];
    int nplan = 0;
    for (int i = 0; i < ncomp_; ++i) {
      const int ci = order_[i];
      Component& c = comp_[ci];
      const int first = ci == 0 ? 0 : y_blocks + ci - 1;
      const int count = ci == 0 && ncomp_ == 3 ? y_blocks : 1;
      for (int b = first; b < first + count; ++b) {
        Block& k = plan[nplan++];
        k = {coef + 64 * b, &c.prev_dc, dc_[c.td].get(), ac_[c.ta].get(), qinv_[c.tq], nullptr, 8, c_step};
        if (ncomp_ == 1) continue;
        if (ci == 0) {  // Y block b: column 8 (b & 1), row 8 (b >> 1) of the MCU
          k.samples = plane[0] + (b >> 1) * 8 * y_step + (b & 1) * 8;
          k.advance = mcu_w, k.step = y_step;
        } else {
          k.samples = plane[ci];
        }
      }
    }

    int p = static_cast<int>(pos_);
    int m = 0;
    for (int my = 0; my < mcus_y; ++my) {
      const int y0 = my * mcu_h;
      for (int mx = 0, i = 0; mx < mcus_x; ++mx, ++m) {  // i: MCU within the stretch
        if (restart_ > 0 && m > 0 && m % restart_ == 0) {
          pos_ = static_cast<size_t>(p);
          if (std::string e = restart(); !e.empty()) return e;
          p = static_cast<int>(pos_);
        }
        for (int k = 0; k < nplan; ++k) {
          const Block& b = plan[k];
          const VprStatus st =
              vpriDecodeHuffman8x8_JPEG_1u16s_C1(d_, len, &p, b.coef, b.prev_dc, &marker_, b.dc, b.ac, state_.get());
          if (st != vprStatusOk) return entropy_error(st, mx, my);
        }
        if (ncomp_ == 1) {
          if (std::string e = put_grey_block(coef, plan[0].q, out, mx * 8, y0, edge); !e.empty()) return e;
          continue;
        }
        for (int k = 0; k < nplan; ++k) {
          const Block& b = plan[k];
          const VprStatus st = inverse_dct(b.coef, b.samples + i * b.advance, b.step, b.q);
          if (st != vprStatusOk) return status_text("inverse DCT", st);
        }
        // Colour-convert each stretch as soon as it is complete.
        if (++i == stretch || mx + 1 == mcus_x) {
          if (std::string e = put_colour_mcus(plane, y_step, c_step, out, y0, mx + 1 - i, mx + 1); !e.empty()) return e;
          i = 0;
        }
      }
    }
    return {};
  }

  // One grey block at (x0, y0): straight into the image, or through `edge`
  // when it sticks out of the image on the right or at the bottom.
  std::string put_grey_block(const int16_t* coef, const Vpr16u* q, Image& out, int x0, int y0, uint8_t* edge) const {
    uint8_t* dst = out.pixels.data() + static_cast<size_t>(y0) * width_ + x0;
    const bool inside = x0 + 8 <= width_ && y0 + 8 <= height_;
    const VprStatus st = inside ? inverse_dct(coef, dst, width_, q) : inverse_dct(coef, edge, 8, q);
    if (st != vprStatusOk) return status_text("inverse DCT", st);
    if (!inside) {
      const int w = std::min(8, width_ - x0), h = std::min(8, height_ - y0);
      for (int r = 0; r < h; ++r) std::memcpy(dst + static_cast<size_t>(r) * width_, edge + 8 * r, static_cast<size_t>(w));
    }
    return {};
  }

  // Colour conversion of the stretch in `plane`, MCUs [mx0, mx1) of the MCU
  // row at image row y0, into RGB image rows.  The converters replicate chroma over pixel pairs
  // (4:2:2) or 2x2 blocks (4:2:0) and so want even sizes there; an odd
  // width at the right edge, or an odd number of rows left at the bottom of
  // a 4:2:0 image, is converted at the padded size into `rows_` and cropped.
  std::string put_colour_mcus(uint8_t* const plane[3], int y_step, int c_step, Image& out, int y0, int mx0, int mx1) {
    const int mcu_w = 8 * h_, mcu_h = 8 * v_;
    const int x0 = mx0 * mcu_w, w = std::min(mx1 * mcu_w, width_) - x0;
    const int rows = std::min(mcu_h, height_ - y0);
    const Vpr8u* const src[3] = {plane[0], plane[1], plane[2]};
    const int stride = width_ * 3;
    uint8_t* dst = out.pixels.data() + static_cast<size_t>(y0) * stride + 3 * static_cast<size_t>(x0);
    const bool direct = (h_ == 1 || w % 2 == 0) && (v_ == 1 || rows % 2 == 0);
    if (direct) {
      const VprStatus st = to_rgb(src, y_step, c_step, dst, stride, VprRoiSize{w, rows});
      return st == vprStatusOk ? std::string() : status_text("colour conversion", st);
    }
    const int padded_w = (mx1 - mx0) * mcu_w;
    rows_.resize(static_cast<size_t>(padded_w) * 3 * mcu_h);
    const VprStatus st = to_rgb(src, y_step, c_step, rows_.data(), padded_w * 3, VprRoiSize{padded_w, mcu_h});
    if (st != vprStatusOk) return status_text("colour conversion", st);
    for (int r = 0; r < rows; ++r)
      std::memcpy(dst + static_cast<size_t>(r) * stride, rows_.data() + static_cast<size_t>(r) * padded_w * 3,
                  3 * static_cast<size_t>(w));
    return {};
  }

  // Y, Cb, Cr planes to RGB pixels; in 4:4:4 all three planes share y_step.
  VprStatus to_rgb(const Vpr8u* const src[3], int y_step, int c_step, uint8_t* dst, int step, VprRoiSize roi) const {
    if (h_ == 1) return vpriYCbCrToRGB_JPEG_8u_P3C3R(src, y_step, dst, step, roi);
    int steps[3] = {y_step, c_step, c_step};
    if (v_ == 1) return vpriYCbCr422ToRGB_JPEG_8u_P3C3R(src, steps, dst, step, roi);
    return vpriYCbCr411ToRGB_JPEG_8u_P3C3R(src, steps, dst, step, roi);
  }

  // Dequantisation, inverse DCT and level shift of one block.  Most blocks
  // of a photo have only low frequencies left after quantisation; the
  // sparse inverses give exactly the full inverse's samples for them at a
  // fraction of the cost.
  static VprStatus inverse_dct(const int16_t* c, uint8_t* dst, int step, const Vpr16u* q) {
    switch (coefficient_extent(c)) {
      case 1: return vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(c, dst, step, q);
      case 2: return vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(c, dst, step, q);
      case 4: return vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(c, dst, step, q);
      default: return vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(c, dst, step, q);
    }
  }

  static std::string entropy_error(VprStatus st, int mx, int my) {
    std::string where = " at MCU (" + std::to_string(mx) + ", " + std::to_string(my) + ")";
    switch (st) {
      case vprStatusOutOfBuffer: return "truncated file: the image data ends early" + where;
      case vprStatusCodeRange: return "corrupt data: invalid Huffman code or data cut by a marker" + where;
      case vprStatusError: return "corrupt data: coefficient run past the end of a block" + where;
      default: return status_text("Huffman decoding", st) + where;
    }
  }

  const uint8_t* d_;
  size_t n_;
  size_t pos_ = 0;
  bool frame_ = false;
  int width_ = 0, height_ = 0, ncomp_ = 0, h_ = 1, v_ = 1;
  Component comp_[3];
  int order_[3] = {0, 1, 2};
  int restart_ = 0;
  int marker_ = 0;
  alignas(16) Vpr16u qinv_[4][64] = {};
  bool qset_[4] = {};
  DecodeSpec dc_[4], ac_[4];
  DecodeState state_;
  std::vector<uint8_t> planes_;  // 8-bit Y, Cb, Cr of one stretch of MCUs
  std::vector<uint8_t> rows_;    // RGB rows of a stretch that needs cropping
};

}  // namespace

std::string decode(const uint8_t* data, size_t size, Image& image) {
  if (data == nullptr) return "no data";
  return Decoder(data, size).run(image);
}

}  // namespace vprjpeg
