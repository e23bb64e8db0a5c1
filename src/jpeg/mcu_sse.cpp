// MCU-level conversion: SSE4.1 kernels.  Each kernel handles one MCU, a
// block row (8 pixels or 16 pixels) per step; products are 16x16->32-bit
// pair sums (pmaddwd) so every formula is evaluated exactly as written.
#include "jpeg/mcu.h"

#include "core/simd.h"

namespace vpr::jpeg::sse {
namespace {

using namespace vpr::simd;
using namespace vpr::jpeg::mcu;

struct alignas(16) Mask {
  int8_t m[16];
};

// Byte shuffle that gathers channel `ch` of 8 interleaved 3-byte pixels into
// eight 16-bit lanes: from `lo` = bytes 0..15 or `hi` = bytes 8..23.
constexpr Mask deint_mask(int ch, bool hi) {
  Mask r{};
  for (int k = 0; k < 8; ++k) {
    const int src = 3 * k + ch;
    int8_t v = -128;
    if (!hi && src < 16) v = static_cast<int8_t>(src);
    if (hi && src >= 16) v = static_cast<int8_t>(src - 8);
    r.m[2 * k] = v;
    r.m[2 * k + 1] = -128;
  }
  return r;
}

// Byte shuffle that builds interleaved output bytes [16*part, 16*part+16)
// from a = (c0[0..7], c1[0..7]) or b = (c2[0..7], ...).
constexpr Mask inter_mask(bool from_b, int part) {
  Mask r{};
  for (int i = 0; i < 16; ++i) {
    const int o = part * 16 + i;
    const int k = o / 3, ch = o % 3;
    int8_t v = -128;
    if (o < 24) {
      if (!from_b && ch == 0) v = static_cast<int8_t>(k);
      if (!from_b && ch == 1) v = static_cast<int8_t>(8 + k);
      if (from_b && ch == 2) v = static_cast<int8_t>(k);
    }
    r.m[i] = v;
  }
  return r;
}

constexpr Mask kDeint[3][2] = {{deint_mask(0, false), deint_mask(0, true)},
                               {deint_mask(1, false), deint_mask(1, true)},
                               {deint_mask(2, false), deint_mask(2, true)}};
constexpr Mask kInter[2][2] = {{inter_mask(false, 0), inter_mask(false, 1)},
                               {inter_mask(true, 0), inter_mask(true, 1)}};

inline __m128i mask(const Mask& m) { return _mm_load_si128(reinterpret_cast<const __m128i*>(m.m)); }
inline __m128i pair16(int a, int b) {
  return _mm_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(a)) |
                                             (static_cast<uint32_t>(static_cast<uint16_t>(b)) << 16)));
}

// 8 pixels (24 bytes) -> channels 0, 1, 2 as unsigned 16-bit lanes.
inline void load_c3(const uint8_t* p, __m128i& c0, __m128i& c1, __m128i& c2) {
  const __m128i a = load16(p), b = load16(p + 8);
  c0 = _mm_or_si128(_mm_shuffle_epi8(a, mask(kDeint[0][0])), _mm_shuffle_epi8(b, mask(kDeint[0][1])));
  c1 = _mm_or_si128(_mm_shuffle_epi8(a, mask(kDeint[1][0])), _mm_shuffle_epi8(b, mask(kDeint[1][1])));
  c2 = _mm_or_si128(_mm_shuffle_epi8(a, mask(kDeint[2][0])), _mm_shuffle_epi8(b, mask(kDeint[2][1])));
}

// Channels as signed 16-bit lanes -> clamped to 0..255 -> 8 pixels (24 bytes).
inline void store_c3(uint8_t* p, __m128i c0, __m128i c1, __m128i c2) {
  const __m128i a = _mm_packus_epi16(c0, c1), b = _mm_packus_epi16(c2, c2);
  store16(p, _mm_or_si128(_mm_shuffle_epi8(a, mask(kInter[0][0])), _mm_shuffle_epi8(b, mask(kInter[1][0]))));
  store8(p + 16, _mm_or_si128(_mm_shuffle_epi8(a, mask(kInter[0][1])), _mm_shuffle_epi8(b, mask(kInter[1][1]))));
}

// (w_ab . (a, b) + w_cd . (c, d)) >> Shift over 8 lanes, saturated to 16 bits,
// with (a,b) and (c,d) given as interleaved lo/hi halves.
template <int Shift>
inline __m128i dot4(__m128i ab_lo, __m128i ab_hi, __m128i cd_lo, __m128i cd_hi, __m128i wab, __m128i wcd) {
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(ab_lo, wab), _mm_madd_epi16(cd_lo, wcd)), Shift);
  const __m128i hi = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(ab_hi, wab), _mm_madd_epi16(cd_hi, wcd)), Shift);
  return _mm_packs_epi32(lo, hi);
}

// (w . (a, b) + bias) >> Shift over 8 lanes, saturated to 16 bits.
template <int Shift>
inline __m128i dot2(__m128i a, __m128i b, __m128i w, __m128i bias) {
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), w), bias), Shift);
  const __m128i hi = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(a, b), w), bias), Shift);
  return _mm_packs_epi32(lo, hi);
}

// Byte shuffle that builds, for pixels [4*half, 4*half + 4) of 8
// interleaved 3-byte pixels, 16-bit pairs (channel c0, channel c1) -- or
// (channel c0, 0) when c1 < 0 -- from the bytes loaded at 8 * half.
constexpr Mask pair_mask(int c0, int c1, int half) {
  Mask r{};
  for (int k = 0; k < 4; ++k) {
    const int px = 4 * half + k;
    r.m[4 * k] = static_cast<int8_t>(3 * px + c0 - 8 * half);
    r.m[4 * k + 1] = -128;
    r.m[4 * k + 2] = c1 < 0 ? int8_t{-128} : static_cast<int8_t>(3 * px + c1 - 8 * half);
    r.m[4 * k + 3] = -128;
  }
  return r;
}
// [RI][half]: (R, G) pairs and (B, 0) pairs for RGB (RI = 0) or BGR (RI = 2).
constexpr Mask kRG[3][2] = {{pair_mask(0, 1, 0), pair_mask(0, 1, 1)}, {}, {pair_mask(2, 1, 0), pair_mask(2, 1, 1)}};
constexpr Mask kB0[3][2] = {{pair_mask(2, -1, 0), pair_mask(2, -1, 1)}, {}, {pair_mask(0, -1, 0), pair_mask(0, -1, 1)}};

// 8 pixels as pair vectors for pmaddwd: (R, G) and (B, 128), pixels 0-3 in
// the lo and 4-7 in the hi vectors.  The constant 128 lane carries the
// bias: bias = 128 * its weight.
struct Pairs {
  __m128i rg_lo, rg_hi, bk_lo, bk_hi;
};
template <int RI>
inline Pairs load_pairs(const uint8_t* p) {
  const __m128i a = load16(p), b = load16(p + 8), k = _mm_set1_epi32(128 << 16);
  return {_mm_shuffle_epi8(a, mask(kRG[RI][0])), _mm_shuffle_epi8(b, mask(kRG[RI][1])),
          _mm_or_si128(_mm_shuffle_epi8(a, mask(kB0[RI][0])), k),
          _mm_or_si128(_mm_shuffle_epi8(b, mask(kB0[RI][1])), k)};
}
// Lane-wise sum of pair vectors (16-bit halves never carry: sums stay < 2^15).
inline Pairs add(const Pairs& x, const Pairs& y) {
  return {_mm_add_epi16(x.rg_lo, y.rg_lo), _mm_add_epi16(x.rg_hi, y.rg_hi), _mm_add_epi16(x.bk_lo, y.bk_lo),
          _mm_add_epi16(x.bk_hi, y.bk_hi)};
}
// Sums of horizontal pixel pairs of 16 pixels (x: pixels 0-7, y: 8-15):
// 8 pair sums, 0-3 in lo, 4-7 in hi; the constant lane doubles.
inline Pairs pair_sums(const Pairs& x, const Pairs& y) {
  return {_mm_hadd_epi32(x.rg_lo, x.rg_hi), _mm_hadd_epi32(y.rg_lo, y.rg_hi), _mm_hadd_epi32(x.bk_lo, x.bk_hi),
          _mm_hadd_epi32(y.bk_lo, y.bk_hi)};
}

struct FwdWeights {
  __m128i y_rg = pair16(kYR, kYG), y_bk = pair16(kYB, kYBias / 128);  // -2088960 = 128 * -16320
  __m128i cb_rg = pair16(kCbR, kCbG), cr_rg = pair16(kCrR, kCrG);
  // Chroma bias 8192 (Q14, lane 128), 16384 (Q15, lane 256), 32768 (Q16,
  // lane 512): always 64 times the constant lane.
  __m128i cb_bk = pair16(kCbB, 64), cr_bk = pair16(kCrB, 64);
};

// Y' of 8 pixels, Q14.
inline __m128i fwd_y(const Pairs& p, const FwdWeights& w) {
  return dot4<14>(p.rg_lo, p.rg_hi, p.bk_lo, p.bk_hi, w.y_rg, w.y_bk);
}
template <int Shift>
inline __m128i fwd_cb(const Pairs& p, const FwdWeights& w) {
  return dot4<Shift>(p.rg_lo, p.rg_hi, p.bk_lo, p.bk_hi, w.cb_rg, w.cb_bk);
}
template <int Shift>
inline __m128i fwd_cr(const Pairs& p, const FwdWeights& w) {
  return dot4<Shift>(p.rg_lo, p.rg_hi, p.bk_lo, p.bk_hi, w.cr_rg, w.cr_bk);
}

inline void st(int16_t* p, __m128i v) { store16(p, v); }
inline __m128i ld(const int16_t* p) { return load16(p); }
inline const uint8_t* srow(const uint8_t* p, int step, int y) { return row_ptr(p, step, y); }
inline uint8_t* drow(uint8_t* p, int step, int y) { return row_ptr(p, step, y); }

// RI == 0: pixels are R,G,B; otherwise B,G,R.
template <int RI>
inline void store_rgb(uint8_t* p, __m128i R, __m128i G, __m128i B) {
  if constexpr (RI == 0) store_c3(p, R, G, B);
  else store_c3(p, B, G, R);
}

template <int RI>
void fwd444(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const FwdWeights w;
  for (int r = 0; r < 8; ++r) {
    const Pairs p = load_pairs<RI>(srow(s, step, r));
    st(y + 8 * r, fwd_y(p, w));
    st(cb + 8 * r, fwd_cb<14>(p, w));
    st(cr + 8 * r, fwd_cr<14>(p, w));
  }
}

template <int RI>
void fwd422(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const FwdWeights w;
  for (int r = 0; r < 8; ++r) {
    const uint8_t* row = srow(s, step, r);
    const Pairs a = load_pairs<RI>(row), b = load_pairs<RI>(row + 24);
    st(y + 8 * r, fwd_y(a, w));
    st(y + 64 + 8 * r, fwd_y(b, w));
    const Pairs sum = pair_sums(a, b);  // pair sums, Q15
    st(cb + 8 * r, fwd_cb<15>(sum, w));
    st(cr + 8 * r, fwd_cr<15>(sum, w));
  }
}

template <int RI>
void fwd411(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const FwdWeights w;
  for (int i = 0; i < 8; ++i) {
    const uint8_t* row0 = srow(s, step, 2 * i);
    const uint8_t* row1 = srow(s, step, 2 * i + 1);
    const Pairs a0 = load_pairs<RI>(row0), b0 = load_pairs<RI>(row0 + 24);
    const Pairs a1 = load_pairs<RI>(row1), b1 = load_pairs<RI>(row1 + 24);
    int16_t* y0 = y + (i >> 2) * 128 + ((2 * i) & 7) * 8;
    st(y0, fwd_y(a0, w));
    st(y0 + 64, fwd_y(b0, w));
    st(y0 + 8, fwd_y(a1, w));
    st(y0 + 72, fwd_y(b1, w));
    const Pairs sum = pair_sums(add(a0, a1), add(b0, b1));  // 2x2 sums, Q16
    st(cb + 8 * i, fwd_cb<16>(sum, w));
    st(cr + 8 * i, fwd_cr<16>(sum, w));
  }
}

// ---- SampleDown / Split: level shift and box average (halves up).
void down444(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const __m128i k = _mm_set1_epi16(128);
  for (int r = 0; r < 8; ++r) {
    __m128i c0, c1, c2;
    load_c3(srow(s, step, r), c0, c1, c2);
    st(y + 8 * r, _mm_sub_epi16(c0, k));
    st(cb + 8 * r, _mm_sub_epi16(c1, k));
    st(cr + 8 * r, _mm_sub_epi16(c2, k));
  }
}

template <int V>  // pixel rows per chroma row: 1 (4:2:2) or 2 (4:2:0)
void down_sampled(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const __m128i k = _mm_set1_epi16(128);
  const __m128i round = _mm_set1_epi16(V);  // n/2 for n = 2V samples
  for (int i = 0; i < 8; ++i) {
    __m128i s1a = _mm_setzero_si128(), s2a = s1a, s1b = s1a, s2b = s1a;
    for (int dy = 0; dy < V; ++dy) {
      const int r = V * i + dy;
      const uint8_t* p = srow(s, step, r);
      __m128i a0, a1, a2, b0, b1, b2;
      load_c3(p, a0, a1, a2);
      load_c3(p + 24, b0, b1, b2);
      int16_t* yr = y + (r >> 3) * 128 + (r & 7) * 8;
      st(yr, _mm_sub_epi16(a0, k));
      st(yr + 64, _mm_sub_epi16(b0, k));
      s1a = _mm_add_epi16(s1a, a1), s2a = _mm_add_epi16(s2a, a2);
      s1b = _mm_add_epi16(s1b, b1), s2b = _mm_add_epi16(s2b, b2);
    }
    constexpr int sh = V == 1 ? 1 : 2;
    const __m128i v1 = _mm_srli_epi16(_mm_add_epi16(_mm_hadd_epi16(s1a, s1b), round), sh);
    const __m128i v2 = _mm_srli_epi16(_mm_add_epi16(_mm_hadd_epi16(s2a, s2b), round), sh);
    st(cb + 8 * i, _mm_sub_epi16(v1, k));
    st(cr + 8 * i, _mm_sub_epi16(v2, k));
  }
}

void split422(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  const __m128i k = _mm_set1_epi16(128), lo8 = _mm_set1_epi16(0x00FF), lo16 = _mm_set1_epi32(0xFFFF);
  for (int r = 0; r < 8; ++r) {
    const uint8_t* p = srow(s, step, r);
    const __m128i a = load16(p), b = load16(p + 16);
    st(y + 8 * r, _mm_sub_epi16(_mm_and_si128(a, lo8), k));
    st(y + 64 + 8 * r, _mm_sub_epi16(_mm_and_si128(b, lo8), k));
    const __m128i oa = _mm_srli_epi16(a, 8), ob = _mm_srli_epi16(b, 8);  // Cb, Cr, Cb, Cr, ...
    st(cb + 8 * r, _mm_sub_epi16(_mm_packus_epi32(_mm_and_si128(oa, lo16), _mm_and_si128(ob, lo16)), k));
    st(cr + 8 * r, _mm_sub_epi16(_mm_packus_epi32(_mm_srli_epi32(oa, 16), _mm_srli_epi32(ob, 16)), k));
  }
}

// ---- inverse colour conversion
template <int RI>
void inv444(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  const __m128i k = _mm_set1_epi16(128);
  const __m128i wr = pair16(kRCr, kInvBias / 128), wb = pair16(kBCb, kInvBias / 128);
  const __m128i wg = pair16(kGCb, kGCr), bias = _mm_set1_epi32(kInvBias);
  const __m128i zero = _mm_setzero_si128();
  for (int r = 0; r < 8; ++r) {
    const __m128i Y = ld(y + 8 * r), Cb = ld(cb + 8 * r), Cr = ld(cr + 8 * r);
    const __m128i rt = dot2<14>(Cr, k, wr, zero);
    const __m128i bt = dot2<14>(Cb, k, wb, zero);
    const __m128i gt = dot2<14>(Cb, Cr, wg, bias);
    store_rgb<RI>(drow(d, step, r), _mm_adds_epi16(Y, rt), _mm_adds_epi16(Y, gt), _mm_adds_epi16(Y, bt));
  }
}

template <int RI, int V>  // V: pixel rows per chroma row
void inv_sampled(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  const __m128i k = _mm_set1_epi16(128);
  const __m128i wr = pair16(kRCr13, kBias13 / 128), wb = pair16(kBCb13, kBias13 / 128);
  const __m128i wg = pair16(kGCb14, kGCr14), gbias = _mm_set1_epi32(kGBias14);
  const __m128i zero = _mm_setzero_si128();
  for (int i = 0; i < 8; ++i) {
    const __m128i Cb = ld(cb + 8 * i), Cr = ld(cr + 8 * i);
    const __m128i rt = dot2<13>(Cr, k, wr, zero);
    const __m128i bt = dot2<13>(Cb, k, wb, zero);
    const __m128i gt = dot2<14>(Cb, Cr, wg, gbias);
    const __m128i rta = _mm_unpacklo_epi16(rt, rt), rtb = _mm_unpackhi_epi16(rt, rt);
    const __m128i gta = _mm_unpacklo_epi16(gt, gt), gtb = _mm_unpackhi_epi16(gt, gt);
    const __m128i bta = _mm_unpacklo_epi16(bt, bt), btb = _mm_unpackhi_epi16(bt, bt);
    for (int dy = 0; dy < V; ++dy) {
      const int r = V * i + dy;
      const int16_t* yr = y + (r >> 3) * 128 + (r & 7) * 8;
      const __m128i Ya = ld(yr), Yb = ld(yr + 64);
      uint8_t* p = drow(d, step, r);
      store_rgb<RI>(p, _mm_adds_epi16(Ya, rta), _mm_subs_epi16(Ya, gta), _mm_adds_epi16(Ya, bta));
      store_rgb<RI>(p + 24, _mm_adds_epi16(Yb, rtb), _mm_subs_epi16(Yb, gtb), _mm_adds_epi16(Yb, btb));
    }
  }
}

void up444(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  const __m128i k = _mm_set1_epi16(128);
  for (int r = 0; r < 8; ++r)
    store_c3(drow(d, step, r), _mm_adds_epi16(ld(y + 8 * r), k), _mm_adds_epi16(ld(cb + 8 * r), k),
             _mm_adds_epi16(ld(cr + 8 * r), k));
}

template <int V>
void up_sampled(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  const __m128i k = _mm_set1_epi16(128);
  for (int i = 0; i < 8; ++i) {
    const __m128i Cb = _mm_adds_epi16(ld(cb + 8 * i), k), Cr = _mm_adds_epi16(ld(cr + 8 * i), k);
    const __m128i cba = _mm_unpacklo_epi16(Cb, Cb), cbb = _mm_unpackhi_epi16(Cb, Cb);
    const __m128i cra = _mm_unpacklo_epi16(Cr, Cr), crb = _mm_unpackhi_epi16(Cr, Cr);
    for (int dy = 0; dy < V; ++dy) {
      const int r = V * i + dy;
      const int16_t* yr = y + (r >> 3) * 128 + (r & 7) * 8;
      uint8_t* p = drow(d, step, r);
      store_c3(p, _mm_adds_epi16(ld(yr), k), cba, cra);
      store_c3(p + 24, _mm_adds_epi16(ld(yr + 64), k), cbb, crb);
    }
  }
}

void join422(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  const __m128i k = _mm_set1_epi16(128);
  for (int r = 0; r < 8; ++r) {
    const __m128i yy = _mm_packus_epi16(_mm_adds_epi16(ld(y + 8 * r), k), _mm_adds_epi16(ld(y + 64 + 8 * r), k));
    const __m128i cc = _mm_packus_epi16(_mm_adds_epi16(ld(cb + 8 * r), k), _mm_adds_epi16(ld(cr + 8 * r), k));
    const __m128i cbcr = _mm_unpacklo_epi8(cc, _mm_srli_si128(cc, 8));  // Cb0 Cr0 Cb1 Cr1 ...
    uint8_t* p = drow(d, step, r);
    store16(p, _mm_unpacklo_epi8(yy, cbcr));
    store16(p + 16, _mm_unpackhi_epi8(yy, cbcr));
  }
}

}  // namespace

void ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd444<0>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd444<2>(s, st, y, cb, cr); }
void ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd422<0>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd422<2>(s, st, y, cb, cr); }
void ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd411<0>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd411<2>(s, st, y, cb, cr); }
void ownpj_SampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { down444(s, st, y, cb, cr); }
void ownpj_SampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { down_sampled<1>(s, st, y, cb, cr); }
void ownpj_SampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { down_sampled<2>(s, st, y, cb, cr); }
void ownpj_Split422LS_MCU_8u16s_C2P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { split422(s, st, y, cb, cr); }

void ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv444<0>(y, cb, cr, d, st); }
void ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv444<2>(y, cb, cr, d, st); }
void ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<0, 1>(y, cb, cr, d, st); }
void ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<2, 1>(y, cb, cr, d, st); }
void ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<0, 2>(y, cb, cr, d, st); }
void ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<2, 2>(y, cb, cr, d, st); }
void ownpj_SampleUp444LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { up444(y, cb, cr, d, st); }
void ownpj_SampleUp422LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { up_sampled<1>(y, cb, cr, d, st); }
void ownpj_SampleUp411LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { up_sampled<2>(y, cb, cr, d, st); }
void ownpj_Join422LS_MCU_16s8u_P3C2R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { join422(y, cb, cr, d, st); }

}  // namespace vpr::jpeg::sse
