// JPEG colour conversion: SSE4.1 row kernels.
//
// Every kernel gives exactly the bytes of its scalar twin in color.cpp; the
// arithmetic is rearranged, never approximated:
//  - pmaddwd on two 16-bit samples of a pixel in one 32-bit lane ((B - G,
//    R - G), (G, G), (R, G), (B, 1), ...) gives w0 * s0 + w1 * s1 exactly.
//    Where the weights of a formula sum to zero (the forward chroma) one
//    multiply-add on colour differences does the work of two.
//  - A weight that is a multiple of 2^s plus a small one leaves a shift by s
//    whole: Y = G + ((19595 R - 27066 G + ...) >> 16), R = Y + term(Cr), and
//    the chroma terms of the sampled inverses are formed once per chroma
//    sample and added to each Y that shares them.
//  - Two-sample terms with 16-bit weights split as 256 h + l go through
//    pmaddubsw on (Cb, Cr) or (R, G) byte pairs; single-sample terms use
//    pmulhrsw / pmulhuw forms that equal the formula for all 256 inputs
//    (the tests run every input).
//  - 32-bit results are shifted arithmetically and narrowed with packssdw /
//    packuswb, which is exactly clamp (and sat16) of the formulas.
// Row remainders the SIMD steps do not cover go to the scalar kernel of the
// same family, so they follow the same formulas by construction.
#include "core/simd.h"
#include "jpeg/color.h"

namespace vpr::jpeg::sse {
namespace {

using simd::load16;
using simd::load4;
using simd::load8;
using simd::store16;
using simd::store4;
using simd::store8;

// A 32-bit lane holding w0 in the low and w1 in the high 16 bits.
inline __m128i pair(int w0, int w1) {
  return _mm_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(static_cast<uint16_t>(w0))) |
                                             (static_cast<uint32_t>(static_cast<uint16_t>(w1)) << 16)));
}
inline __m128i hi_mask() { return _mm_set1_epi32(static_cast<int32_t>(0xFFFF0000u)); }
inline __m128i lo16(__m128i v) { return _mm_cvtepu8_epi16(v); }
inline __m128i hi16(__m128i v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
// v * 65536 in 32-bit lanes, from 16-bit lanes (signed).
inline __m128i shl16_lo(__m128i v) { return _mm_unpacklo_epi16(_mm_setzero_si128(), v); }
inline __m128i shl16_hi(__m128i v) { return _mm_unpackhi_epi16(_mm_setzero_si128(), v); }
inline __m128i pack_u8(__m128i lo, __m128i hi) { return _mm_packus_epi16(lo, hi); }

// ------------------------------------------------------------------ shuffle masks

struct Mask {
  alignas(16) uint8_t b[16];
  __m128i v() const { return _mm_load_si128(reinterpret_cast<const __m128i*>(b)); }
};

// From (a, b) byte pairs of pixels 8 h .. 8 h + 7 (src 0) or the c plane
// (src 1) into output register k (natural pixel order).
constexpr Mask c3_pair_store_mask(int k, int src, int h) {
  Mask m{};
  for (int j = 0; j < 16; ++j) {
    const int idx = 16 * k + j, px = idx / 3, ch = idx % 3;
    m.b[j] = 0x80;
    if (src == 1 && ch == 2) m.b[j] = static_cast<uint8_t>(px);
    if (src == 0 && ch < 2 && px / 8 == h) m.b[j] = static_cast<uint8_t>(2 * (px % 8) + ch);
  }
  return m;
}
// Output register k from three channel registers that hold the even pixels
// in bytes 0-7 and the odd pixels in bytes 8-15.
constexpr Mask c3_store_eo_mask(int k, int c) {
  Mask m{};
  for (int j = 0; j < 16; ++j) {
    const int idx = 16 * k + j, px = idx / 3;
    m.b[j] = static_cast<uint8_t>(idx % 3 == c ? ((px & 1) ? 8 + px / 2 : px / 2) : 0x80);
  }
  return m;
}
// Gather channel c of 16 pixels (48 bytes) from input register k.
constexpr Mask c3_load_mask(int k, int c) {
  Mask m{};
  for (int j = 0; j < 16; ++j) {
    const int idx = 3 * j + c - 16 * k;
    m.b[j] = static_cast<uint8_t>(idx >= 0 && idx < 16 ? idx : 0x80);
  }
  return m;
}
// Four pixels of 3 bytes in a register: (ch a, ch b) as 16-bit pairs per
// 32-bit lane; b < 0 leaves the high half zero.
constexpr Mask c3_pair_mask(int a, int b) {
  Mask m{};
  for (int k = 0; k < 4; ++k) {
    m.b[4 * k] = static_cast<uint8_t>(3 * k + a);
    m.b[4 * k + 1] = 0x80;
    m.b[4 * k + 2] = static_cast<uint8_t>(b < 0 ? 0x80 : 3 * k + b);
    m.b[4 * k + 3] = 0x80;
  }
  return m;
}
// Four pixels of 4 bytes: channel 0 of each in lane 0, channel 1 in lane 1...
constexpr Mask c4_gather_mask() {
  Mask m{};
  for (int j = 0; j < 16; ++j) m.b[j] = static_cast<uint8_t>(4 * (j & 3) + (j >> 2));
  return m;
}
// C2 (Y0 Cb Y1 Cr) groups: Y of 8 pixels, Cb / Cr of 4 pairs, into bytes
// starting at `at` (the rest zero).
constexpr Mask c2_mask(int first, int stride, int count, int at) {
  Mask m{};
  for (int j = 0; j < 16; ++j) m.b[j] = 0x80;
  for (int j = 0; j < count; ++j) m.b[at + j] = static_cast<uint8_t>(first + stride * j);
  return m;
}

constexpr Mask kC3PairLo[3] = {c3_pair_store_mask(0, 0, 0), c3_pair_store_mask(1, 0, 0), c3_pair_store_mask(2, 0, 0)};
constexpr Mask kC3PairHi[3] = {c3_pair_store_mask(0, 0, 1), c3_pair_store_mask(1, 0, 1), c3_pair_store_mask(2, 0, 1)};
constexpr Mask kC3PairC[3] = {c3_pair_store_mask(0, 1, 0), c3_pair_store_mask(1, 1, 0), c3_pair_store_mask(2, 1, 0)};
constexpr Mask kC3StoreEO[3][3] = {{c3_store_eo_mask(0, 0), c3_store_eo_mask(0, 1), c3_store_eo_mask(0, 2)},
                                   {c3_store_eo_mask(1, 0), c3_store_eo_mask(1, 1), c3_store_eo_mask(1, 2)},
                                   {c3_store_eo_mask(2, 0), c3_store_eo_mask(2, 1), c3_store_eo_mask(2, 2)}};
constexpr Mask kC3Load[3][3] = {{c3_load_mask(0, 0), c3_load_mask(0, 1), c3_load_mask(0, 2)},
                                {c3_load_mask(1, 0), c3_load_mask(1, 1), c3_load_mask(1, 2)},
                                {c3_load_mask(2, 0), c3_load_mask(2, 1), c3_load_mask(2, 2)}};
// (byte 0, byte 1), (byte 2, byte 1), (byte 0, 0), (byte 2, 0) of each pixel.
constexpr Mask kPair01 = c3_pair_mask(0, 1), kPair21 = c3_pair_mask(2, 1);
constexpr Mask kPair0 = c3_pair_mask(0, -1), kPair2 = c3_pair_mask(2, -1);
constexpr Mask kPair20 = c3_pair_mask(2, 0), kPair02 = c3_pair_mask(0, 2), kPair11 = c3_pair_mask(1, 1);
constexpr Mask kC4Gather = c4_gather_mask();
// C2 groups (Y0 Cb Y1 Cr) of one register -> 16-bit lanes `at`..`at` + 3
// of byte `first` of each group (zero-extended), or of the (Cb, Cr) pairs.
constexpr Mask c2_lane_mask(int first, int at) {
  Mask m{};
  for (int j = 0; j < 16; ++j) m.b[j] = 0x80;
  for (int g = 0; g < 4; ++g) m.b[2 * (at + g)] = static_cast<uint8_t>(4 * g + first);
  return m;
}
constexpr Mask c2_pair_mask(int at) {
  Mask m{};
  for (int j = 0; j < 16; ++j) m.b[j] = 0x80;
  for (int g = 0; g < 4; ++g) {
    m.b[2 * (at + g)] = static_cast<uint8_t>(4 * g + 1);
    m.b[2 * (at + g) + 1] = static_cast<uint8_t>(4 * g + 3);
  }
  return m;
}
constexpr Mask kC2Y0[2] = {c2_lane_mask(0, 0), c2_lane_mask(0, 4)}, kC2Y1[2] = {c2_lane_mask(2, 0), c2_lane_mask(2, 4)};
constexpr Mask kC2CbCr[2] = {c2_pair_mask(0), c2_pair_mask(4)};

// Three byte planes a, b, c (16 pixels, first channel first) -> 48
// interleaved bytes in o[3]; kEvenOdd: the planes hold the even pixels in
// bytes 0-7 and the odd ones in 8-15.
template <bool kEvenOdd = false>
inline void interleave3(__m128i a, __m128i b, __m128i c, __m128i o[3]) {
  if (!kEvenOdd) {
    // (a, b) pairs first: register 0 takes pixels 0-5, 1 takes 5-10 (both
    // pair registers), 2 takes 10-15.
    const __m128i lo = _mm_unpacklo_epi8(a, b), hi = _mm_unpackhi_epi8(a, b);
    o[0] = _mm_or_si128(_mm_shuffle_epi8(lo, kC3PairLo[0].v()), _mm_shuffle_epi8(c, kC3PairC[0].v()));
    o[1] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(lo, kC3PairLo[1].v()), _mm_shuffle_epi8(hi, kC3PairHi[1].v())),
                        _mm_shuffle_epi8(c, kC3PairC[1].v()));
    o[2] = _mm_or_si128(_mm_shuffle_epi8(hi, kC3PairHi[2].v()), _mm_shuffle_epi8(c, kC3PairC[2].v()));
    return;
  }
  const auto& m = kC3StoreEO;
  for (int k = 0; k < 3; ++k)
    o[k] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, m[k][0].v()), _mm_shuffle_epi8(b, m[k][1].v())),
                        _mm_shuffle_epi8(c, m[k][2].v()));
}
template <bool kEvenOdd = false>
inline void store_c3(uint8_t* d, __m128i a, __m128i b, __m128i c, int pixels) {
  __m128i o[3];
  interleave3<kEvenOdd>(a, b, c, o);
  if (pixels == 16) {
    store16(d, o[0]);
    store16(d + 16, o[1]);
    store16(d + 32, o[2]);
  } else if (pixels == 8) {
    store16(d, o[0]);
    store8(d + 16, o[1]);
  } else {  // 4
    store8(d, o[0]);
    store4(d + 8, _mm_srli_si128(o[0], 8));
  }
}
inline void store_c4(uint8_t* d, __m128i a, __m128i b, __m128i c, __m128i e, int pixels) {
  const __m128i ab0 = _mm_unpacklo_epi8(a, b), ce0 = _mm_unpacklo_epi8(c, e);
  store16(d, _mm_unpacklo_epi16(ab0, ce0));
  if (pixels == 4) return;
  store16(d + 16, _mm_unpackhi_epi16(ab0, ce0));
  if (pixels == 8) return;
  const __m128i ab1 = _mm_unpackhi_epi8(a, b), ce1 = _mm_unpackhi_epi8(c, e);
  store16(d + 32, _mm_unpacklo_epi16(ab1, ce1));
  store16(d + 48, _mm_unpackhi_epi16(ab1, ce1));
}

// 16 pixels (or fewer: missing registers zero) of C3 / C4 -> byte planes
// in source byte order.
inline void deinterleave3(__m128i v0, __m128i v1, __m128i v2, __m128i ch[3]) {
  for (int c = 0; c < 3; ++c)
    ch[c] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(v0, kC3Load[0][c].v()), _mm_shuffle_epi8(v1, kC3Load[1][c].v())),
                         _mm_shuffle_epi8(v2, kC3Load[2][c].v()));
}
inline void deinterleave4(__m128i v0, __m128i v1, __m128i v2, __m128i v3, __m128i ch[3]) {
  const __m128i m = kC4Gather.v();
  const __m128i s0 = _mm_shuffle_epi8(v0, m), s1 = _mm_shuffle_epi8(v1, m), s2 = _mm_shuffle_epi8(v2, m),
                s3 = _mm_shuffle_epi8(v3, m);
  const __m128i t0 = _mm_unpacklo_epi32(s0, s1), t1 = _mm_unpacklo_epi32(s2, s3), t2 = _mm_unpackhi_epi32(s0, s1),
                t3 = _mm_unpackhi_epi32(s2, s3);
  ch[0] = _mm_unpacklo_epi64(t0, t1);
  ch[1] = _mm_unpackhi_epi64(t0, t1);
  ch[2] = _mm_unpacklo_epi64(t2, t3);
}
// Loads `pixels` (16 or 8) pixels of `CH` channels and returns R, G, B planes.
template <int CH, int RI>
inline void load_planes(const uint8_t* p, int pixels, __m128i& r, __m128i& g, __m128i& b) {
  __m128i ch[3];
  const __m128i z = _mm_setzero_si128();
  if (CH == 3) {
    if (pixels == 16)
      deinterleave3(load16(p), load16(p + 16), load16(p + 32), ch);
    else
      deinterleave3(load16(p), load8(p + 16), z, ch);
  } else {
    if (pixels == 16)
      deinterleave4(load16(p), load16(p + 16), load16(p + 32), load16(p + 48), ch);
    else
      deinterleave4(load16(p), load16(p + 16), z, z, ch);
  }
  r = ch[RI];
  g = ch[1];
  b = ch[2 - RI];
}

// ------------------------------------------------------------------ family A

struct Q15 {
  static constexpr int shift = 15, yr = 9798, yg = 19235, yb = 3736, ybias = 16266;
  static constexpr int cbr = -5529, cbg = -10855, cbb = 16384, cbbias = 4210688;
  static constexpr int crr = 16384, crg = -13720, crb = -2664, crbias = 4210704;
};
struct Q14 {
  static constexpr int shift = 14, yr = 4899, yg = 9617, yb = 1868, ybias = 8192;
  static constexpr int cbr = -2764, cbg = -5428, cbb = 8192, cbbias = 2105344;
  static constexpr int crr = 8192, crg = -6860, crb = -1332, crbias = 2105344;
};

// Four pixels of 3 bytes in the low 12 bytes of g -> 32-bit Y of the Q15
// (or Q14) formula from (R, G) and (B, 1) pairs (the bias rides on the 1).
template <class Q>
inline __m128i a_y_group(__m128i g, __m128i mrg, __m128i mb) {
  const __m128i rg = _mm_shuffle_epi8(g, mrg);                                         // (R, G)
  const __m128i b1 = _mm_or_si128(_mm_shuffle_epi8(g, mb), _mm_set1_epi32(0x10000));  // (B, 1)
  return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(rg, pair(Q::yr, Q::yg)), _mm_madd_epi16(b1, pair(Q::yb, Q::ybias))),
                        Q::shift);
}

// Four pixels -> Y, Cb, Cr with one multiply-add per chroma value: the
// chroma weights sum to zero, so Cb and Cr are functions of
// d = (B - G, R - G) alone
//   Cb = d * (cbb, cbr) + bias,  Cr = d * (crb, crr) + bias,
// and Y = (B, R) * (yb, yr) + (G, G) * (yg / 2, yg - yg / 2) + bias.
// mbr / mgg gather (B, R) / (G, G) as 16-bit pairs.
template <class Q>
inline void a_group_d(__m128i g, __m128i mbr, __m128i mgg, __m128i* y, __m128i* cb, __m128i* cr) {
  const __m128i br = _mm_shuffle_epi8(g, mbr), gg = _mm_shuffle_epi8(g, mgg);
  const __m128i d = _mm_sub_epi16(br, gg);  // (B - G, R - G)
  *y = _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(br, pair(Q::yb, Q::yr)),
                                                  _mm_madd_epi16(gg, pair(Q::yg / 2, Q::yg - Q::yg / 2))),
                                    _mm_set1_epi32(Q::ybias)),
                      Q::shift);
  static_assert(Q::cbr + Q::cbg + Q::cbb == 0 && Q::crr + Q::crg + Q::crb == 0, "chroma weights sum to zero");
  *cb = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(d, pair(Q::cbb, Q::cbr)), _mm_set1_epi32(Q::cbbias)), Q::shift);
  *cr = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(d, pair(Q::crb, Q::crr)), _mm_set1_epi32(Q::crbias)), Q::shift);
}

inline __m128i pack4x32(__m128i a, __m128i b, __m128i c, __m128i d) {
  return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}

template <int RI, bool kChroma>
void a_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  const __m128i mrg = (RI == 0 ? kPair01 : kPair21).v();  // (R, G)
  const __m128i mb = (RI == 0 ? kPair2 : kPair0).v();     // (B, 0)
  const __m128i mbr = (RI == 0 ? kPair20 : kPair02).v();  // (B, R)
  const __m128i mgg = kPair11.v();                        // (G, G)
  int x = 0;
  __m128i Y[4], CB[4], CR[4];
  for (; x + 16 <= width; x += 16) {
    const uint8_t* p = s + 3 * x;
    const __m128i v0 = load16(p), v1 = load16(p + 16), v2 = load16(p + 32);
    const __m128i g[4] = {v0, _mm_alignr_epi8(v1, v0, 12), _mm_alignr_epi8(v2, v1, 8), _mm_srli_si128(v2, 4)};
    for (int k = 0; k < 4; ++k) {
      if (kChroma)
        a_group_d<Q15>(g[k], mbr, mgg, &Y[k], &CB[k], &CR[k]);
      else
        Y[k] = a_y_group<Q15>(g[k], mrg, mb);
    }
    store16(y + x, pack4x32(Y[0], Y[1], Y[2], Y[3]));
    if (kChroma) {
      store16(cb + x, pack4x32(CB[0], CB[1], CB[2], CB[3]));
      store16(cr + x, pack4x32(CR[0], CR[1], CR[2], CR[3]));
    }
  }
  if (x + 8 <= width) {
    const uint8_t* p = s + 3 * x;
    const __m128i v0 = load16(p), v1 = load8(p + 16);
    const __m128i g1 = _mm_alignr_epi8(v1, v0, 12);
    if (kChroma) {
      a_group_d<Q15>(v0, mbr, mgg, &Y[0], &CB[0], &CR[0]);
      a_group_d<Q15>(g1, mbr, mgg, &Y[1], &CB[1], &CR[1]);
    } else {
      Y[0] = a_y_group<Q15>(v0, mrg, mb);
      Y[1] = a_y_group<Q15>(g1, mrg, mb);
    }
    const __m128i z = _mm_setzero_si128();
    store8(y + x, pack4x32(Y[0], Y[1], z, z));
    if (kChroma) {
      store8(cb + x, pack4x32(CB[0], CB[1], z, z));
      store8(cr + x, pack4x32(CR[0], CR[1], z, z));
    }
    x += 8;
  }
  if (!kChroma) {
    // Y only: Q15 for every pixel.
    if (x + 4 <= width) {
      const uint8_t* p = s + 3 * x;
      Y[0] = a_y_group<Q15>(_mm_unpacklo_epi64(load8(p), load4(p + 8)), mrg, mb);
      store4(y + x, pack4x32(Y[0], Y[0], Y[0], Y[0]));
      x += 4;
    }
    if (x < width) {
      if (RI == 0)
        ref::ownpj_RGBToY_JPEG_8u_C3C1R(s + 3 * x, y + x, width - x);
      else
        ref::ownpj_BGRToY_JPEG_8u_C3C1R(s + 3 * x, y + x, width - x);
    }
    return;
  }
  // The 4-pixel group and single pixels are Q14.
  if (x + 4 <= width) {
    const uint8_t* p = s + 3 * x;
    a_group_d<Q14>(_mm_unpacklo_epi64(load8(p), load4(p + 8)), mbr, mgg, &Y[0], &CB[0], &CR[0]);
    store4(y + x, pack4x32(Y[0], Y[0], Y[0], Y[0]));
    store4(cb + x, pack4x32(CB[0], CB[0], CB[0], CB[0]));
    store4(cr + x, pack4x32(CR[0], CR[0], CR[0], CR[0]));
    x += 4;
  }
  // Fewer than 4 left: the scalar kernel takes them all as single pixels.
  if (x < width) {
    if (RI == 0)
      ref::ownpj_RGBToYCbCr_JPEG_8u_C3P3R(s + 3 * x, y + x, cb + x, cr + x, width - x);
    else
      ref::ownpj_BGRToYCbCr_JPEG_8u_C3P3R(s + 3 * x, y + x, cb + x, cr + x, width - x);
  }
}

// ------------------------------------------------------------------ Q16 luminance (families B, C, D)

// Y = (19595 R + 38470 G + 7471 B + 32768) >> 16.  38470 G = 65536 G -
// 27066 G and 65536 G leaves the shift whole, so Y = G + (u >> 16) with
// u = 19595 R - 27066 G + 7471 B + 32768 = 256 H + L,
//   H = 77 R - 106 G + 29 B + 128,  L = -117 R + 70 G + 47 B
// (both exact in 16 bits, from pmaddubsw on (R, G) and (B, 2) byte pairs),
// and u >> 16 = (H + (L >> 8)) >> 8.  8 pixels -> 16-bit lanes.
inline __m128i bytes_w(int w0, int w1) { return _mm_set1_epi16(static_cast<int16_t>((w0 & 255) + w1 * 256)); }
inline __m128i y_q16_pairs(__m128i rg, __m128i b2, __m128i g16) {
  const __m128i h = _mm_add_epi16(_mm_maddubs_epi16(rg, bytes_w(77, -106)), _mm_maddubs_epi16(b2, bytes_w(29, 64)));
  const __m128i l = _mm_add_epi16(_mm_maddubs_epi16(rg, bytes_w(-117, 70)), _mm_maddubs_epi16(b2, bytes_w(47, 0)));
  return _mm_add_epi16(g16, _mm_srai_epi16(_mm_add_epi16(h, _mm_srai_epi16(l, 8)), 8));
}
// 16 pixels of byte planes -> 16 Y bytes.
inline __m128i y_q16_16(__m128i r, __m128i g, __m128i b) {
  const __m128i two = _mm_set1_epi8(2);
  return pack_u8(y_q16_pairs(_mm_unpacklo_epi8(r, g), _mm_unpacklo_epi8(b, two), lo16(g)),
                 y_q16_pairs(_mm_unpackhi_epi8(r, g), _mm_unpackhi_epi8(b, two), hi16(g)));
}

// Low-byte chroma of families C and D on 8 lanes of channel sums (16-bit):
//   Cb = lo8((32768 SB - 21709 SG - 11059 SR + K) >> S)
//   Cr = lo8((32768 SR - 27439 SG -  5329 SB + K) >> S)
// The weights sum to zero, so with differences from SG
//   Cb = (SG - SB, SR - SG) * (-32768, -11059) + K
//   Cr = (SG - SR, SB - SG) * (-32768, -5329) + K.
// Returns the 8 bytes in the low half of each result.
template <int S, int K>
inline void chroma_lo8(__m128i sr, __m128i sg, __m128i sb, __m128i* cb, __m128i* cr) {
  const __m128i k = _mm_set1_epi32(K);
  const __m128i gb = _mm_sub_epi16(sg, sb), rg = _mm_sub_epi16(sr, sg), gr = _mm_sub_epi16(sg, sr),
                bg = _mm_sub_epi16(sb, sg);
  const __m128i lo_bytes = _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i hi_bytes = _mm_setr_epi8(-1, -1, -1, -1, 0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1);
  auto one = [&](__m128i p, __m128i q, __m128i w) {
    const __m128i a = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(p, q), w), k), S);
    const __m128i b = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(p, q), w), k), S);
    return _mm_or_si128(_mm_shuffle_epi8(a, lo_bytes), _mm_shuffle_epi8(b, hi_bytes));
  };
  *cb = one(gb, rg, pair(-32768, -11059));
  *cr = one(gr, bg, pair(-32768, -5329));
}

// ------------------------------------------------------------------ family B

// 8 pixels -> Y, Cb, Cr 16-bit lanes; R, G, B bytes of the 8 pixels in the
// low half of r8, g8, b8.
inline void b_8(__m128i r8, __m128i g8, __m128i b8, __m128i* y16, __m128i* cb16, __m128i* cr16) {
  const __m128i r16 = lo16(r8), b16 = lo16(b8);
  *y16 = y_q16_pairs(_mm_unpacklo_epi8(r8, g8), _mm_unpacklo_epi8(b8, _mm_set1_epi8(2)), lo16(g8));
  // ((d * 18491 + 4210688) >> 15) = 128 + ((d * 18491 + 16384) >> 15), the
  // rounding multiply pmulhrsw does exactly.
  const __m128i db = _mm_sub_epi16(b16, *y16), dr = _mm_sub_epi16(r16, *y16), c128 = _mm_set1_epi16(128);
  *cb16 = _mm_add_epi16(_mm_mulhrs_epi16(db, _mm_set1_epi16(18491)), c128);
  *cr16 = _mm_add_epi16(_mm_mulhrs_epi16(dr, _mm_set1_epi16(23373)), c128);
}

// ------------------------------------------------------------------ families E, E', F, G (inverse)

// Family E / E' on 8 pixels: 16-bit R, G, B before the final clamp.
// Two-channel terms from (Cb, Cr) byte pairs with pmaddubsw: a weight w =
// 256 h + l (h, l signed bytes) gives w0 Cb + w1 Cr = 256 H + L with
// H = h0 Cb + h1 Cr and L = l0 Cb + l1 Cr, both exact in 16 bits, and
// floor((256 H + L + 256 kh + kl) / 2^(8 + s)) = (H + kh + ((L + kl) >> 8)) >> s.
template <int H0, int H1, int L0, int L1>
inline void split_terms(__m128i cbcr, __m128i* h, __m128i* l) {
  *h = _mm_maddubs_epi16(cbcr, _mm_set1_epi16(static_cast<int16_t>((H0 & 255) + H1 * 256)));
  *l = _mm_maddubs_epi16(cbcr, _mm_set1_epi16(static_cast<int16_t>((L0 & 255) | (L1 << 8))));
}

// Family E / E' on 8 pixels: 16-bit R, G, B before the final clamp.  cbcr
// holds the (Cb, Cr) byte pairs of the same 8 pixels, cb16 their Cb.
template <bool kPlanarG>
inline void e_8(__m128i y16, __m128i cb16, __m128i cbcr, __m128i* r, __m128i* g, __m128i* b) {
  // (22970 Cr - 2932015) >> 14 == mulhi_u16(4 Cr + 3, 22969) - 180 for every
  // Cr in 0..255 (checked over all values).
  // 4 Cr + 3 straight from the (Cb, Cr) bytes: (Cb, Cr) * (0, 4) + 3.
  *r = _mm_add_epi16(y16, _mm_add_epi16(_mm_mulhi_epu16(_mm_add_epi16(_mm_maddubs_epi16(cbcr, bytes_w(0, 4)),
                                                                      _mm_set1_epi16(3)),
                                                        _mm_set1_epi16(22969)),
                                        _mm_set1_epi16(-180)));
  // (29032 Cb - 3708561) >> 14 == mulhrs(8 (Cb - 128) - 3, 11354) - (Cb - 128) + 1
  //                          == mulhrs(8 Cb - 1027, 11354) + 129 - Cb.
  *b = _mm_add_epi16(_mm_add_epi16(_mm_sub_epi16(y16, cb16), _mm_set1_epi16(129)),
                     _mm_mulhrs_epi16(_mm_sub_epi16(_mm_slli_epi16(cb16, 3), _mm_set1_epi16(1027)),
                                      _mm_set1_epi16(11354)));
  __m128i h, l;
  if (kPlanarG) {
    // (5638 Cb + 11700 Cr - 2211182) >> 14: 5638 = 22*256 + 6, 11700 = 46*256 - 76,
    // -2211182 = -8638*256 + 146.
    split_terms<22, 46, 6, -76>(cbcr, &h, &l);
    const __m128i t = _mm_add_epi16(_mm_add_epi16(h, _mm_set1_epi16(-8638)),
                                    _mm_srai_epi16(_mm_add_epi16(l, _mm_set1_epi16(146)), 8));
    *g = _mm_sub_epi16(y16, _mm_srai_epi16(t, 6));
  } else {
    // (-5638 Cb - 11700 Cr + 2227566) >> 14: -5638 = -22*256 - 6,
    // -11700 = -46*256 + 76, 2227566 = 8701*256 + 110.
    split_terms<-22, -46, -6, 76>(cbcr, &h, &l);
    const __m128i t = _mm_add_epi16(_mm_add_epi16(h, _mm_set1_epi16(8701)),
                                    _mm_srai_epi16(_mm_add_epi16(l, _mm_set1_epi16(110)), 8));
    *g = _mm_add_epi16(y16, _mm_srai_epi16(t, 6));
  }
}

// Family F: 65536 Y is a multiple of 65536, so (65536 Y + X) >> 16 =
// Y + (X >> 16); the chroma terms X >> 16 are formed once per chroma sample
// (8 samples, 16-bit lanes) and added to every Y that shares them.
inline void f_terms(__m128i cb16, __m128i cr16, __m128i cbcr, __m128i* tr, __m128i* tg, __m128i* tb) {
  // Single-variable terms in 16-bit lanes, equal for every sample value:
  //   (91880 Cr - 11727880) >> 16 == mulhrs(2 (Cr - 128), 22970)
  //   (116128 Cb - 14831618) >> 16 == mulhrs(2 (Cb - 128), 29030)
  const __m128i off = _mm_set1_epi16(128);
  const __m128i crd = _mm_sub_epi16(cr16, off), cbd = _mm_sub_epi16(cb16, off);
  *tr = _mm_mulhrs_epi16(_mm_add_epi16(crd, crd), _mm_set1_epi16(22970));
  *tb = _mm_mulhrs_epi16(_mm_add_epi16(cbd, cbd), _mm_set1_epi16(29030));
  // G: -46801 Cr = -65536 Cr + 18735 Cr, so the term is -Cr + (u >> 16) with
  // u = -22553 Cb + 18735 Cr + 8910128; -22553 = -88*256 - 25,
  // 18735 = 73*256 + 47, 8910128 = 34805*256 + 48.  The sum before the last
  // shift lies in 12340..53467 (unsigned 16 bits).
  __m128i h, l;
  split_terms<-88, 73, -25, 47>(cbcr, &h, &l);
  const __m128i v = _mm_add_epi16(_mm_add_epi16(h, _mm_set1_epi16(static_cast<int16_t>(34805))),
                                  _mm_srai_epi16(_mm_add_epi16(l, _mm_set1_epi16(48)), 8));
  *tg = _mm_sub_epi16(_mm_srli_epi16(v, 8), cr16);
}

// Method G on 8 chroma pairs (16-bit lanes, unbiased) -> 8 lanes of each
// term: cr_r_tbl = (91881 d + 32768) >> 16, cb_b_tbl = (116130 d + 32768)
// >> 16, (cb_g_tbl + cr_g_tbl) >> 16, computed exactly.
inline void g_terms(__m128i cb16, __m128i cr16, __m128i cbcr, __m128i* tr, __m128i* tg, __m128i* tb) {
  // cr_r_tbl[c] == mulhrs(2 (c - 128), 22970), cb_b_tbl[c] == mulhrs(2 (c - 128), 29033)
  // for every c in 0..255.
  const __m128i off = _mm_set1_epi16(128);
  const __m128i dcb = _mm_sub_epi16(cb16, off), dcr = _mm_sub_epi16(cr16, off);
  *tr = _mm_mulhrs_epi16(_mm_add_epi16(dcr, dcr), _mm_set1_epi16(22970));
  *tb = _mm_mulhrs_epi16(_mm_add_epi16(dcb, dcb), _mm_set1_epi16(29033));
  // (cb_g_tbl[Cb] + cr_g_tbl[Cr]) >> 16 = (-22554 Cb - 46802 Cr + 8910336) >> 16
  // = -Cr + ((-22554 Cb + 18734 Cr + 8910336) >> 16); -22554 = -88*256 - 26,
  // 18734 = 73*256 + 46, 8910336 = 34806*256.
  __m128i h, l;
  split_terms<-88, 73, -26, 46>(cbcr, &h, &l);
  const __m128i v = _mm_add_epi16(_mm_add_epi16(h, _mm_set1_epi16(static_cast<int16_t>(34806))), _mm_srai_epi16(l, 8));
  *tg = _mm_sub_epi16(_mm_srli_epi16(v, 8), cr16);
}

// Shared driver for 3-plane -> interleaved-C3 inverse rows of 16/8/4 pixels.
template <class Convert8>
inline void p3_to_c3_rows(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* d, int n, int ri,
                          Convert8 conv) {
  int x = 0;
  auto out = [&](uint8_t* dst, __m128i r, __m128i g, __m128i b, int px) {
    if (ri == 0)
      store_c3(dst, r, g, b, px);
    else
      store_c3(dst, b, g, r, px);
  };
  for (; x + 16 <= n; x += 16) {
    const __m128i Y = load16(y + x), CB = load16(cb + x), CR = load16(cr + x);
    __m128i r0, g0, b0, r1, g1, b1;
    conv(lo16(Y), lo16(CB), _mm_unpacklo_epi8(CB, CR), &r0, &g0, &b0);
    conv(hi16(Y), hi16(CB), _mm_unpackhi_epi8(CB, CR), &r1, &g1, &b1);
    out(d + 3 * x, pack_u8(r0, r1), pack_u8(g0, g1), pack_u8(b0, b1), 16);
  }
  for (int px = 8; px >= 4; px -= 4) {
    if (x + px > n) continue;
    const __m128i Y = px == 8 ? load8(y + x) : load4(y + x), CB = px == 8 ? load8(cb + x) : load4(cb + x),
                  CR = px == 8 ? load8(cr + x) : load4(cr + x);
    __m128i r0, g0, b0;
    conv(lo16(Y), lo16(CB), _mm_unpacklo_epi8(CB, CR), &r0, &g0, &b0);
    out(d + 3 * x, pack_u8(r0, r0), pack_u8(g0, g0), pack_u8(b0, b0), px);
    x += px;
  }
}

template <int RI>
void e_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* d, int width) {
  const int n4 = width & ~3;
  p3_to_c3_rows(y, cb, cr, d, n4, RI, e_8<false>);
  if (n4 < width) {
    if (RI == 0)
      ref::ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(y + n4, cb + n4, cr + n4, d + 3 * n4, width - n4);
    else
      ref::ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(y + n4, cb + n4, cr + n4, d + 3 * n4, width - n4);
  }
}

// Family F rows: HSUB 1 (full-resolution chroma) or 2 (one chroma sample
// for two pixels), CH 3 or 4 output bytes per pixel, ROWS 1 or 2 rows of Y
// sharing one chroma row.
template <int HSUB, int CH, int RI, int ROWS>
void f_rows(const uint8_t* const* yr, const uint8_t* cb, const uint8_t* cr, uint8_t* const* dr, int width,
            uint8_t alpha) {
  const __m128i a = _mm_set1_epi8(static_cast<char>(alpha));
  auto out = [&](uint8_t* dst, __m128i r, __m128i g, __m128i b, int px) {
    const __m128i c0 = RI == 0 ? r : b, c2 = RI == 0 ? b : r;
    if (CH == 3)
      store_c3(dst, c0, g, c2, px);
    else
      store_c4(dst, c0, g, c2, a, px);
  };
  // t[c][0..1]: terms of pixels 0-7 and 8-15 of the step.
  auto emit = [&](int x, __m128i t[3][2], int px) {
    for (int k = 0; k < ROWS; ++k) {
      const __m128i Y = px == 16 ? load16(yr[k] + x) : load8(yr[k] + x);
      const __m128i y0 = lo16(Y), y1 = hi16(Y);
      __m128i c[3];
      for (int ch = 0; ch < 3; ++ch) c[ch] = pack_u8(_mm_add_epi16(y0, t[ch][0]), _mm_add_epi16(y1, t[ch][1]));
      out(dr[k] + CH * x, c[0], c[1], c[2], px);
    }
  };
  int x = 0;
  if (HSUB == 2 && CH == 3) {
    // One term per pixel pair: add it to the even and the odd Y of the pair
    // (16-bit lanes without unpacking), pack even | odd, and let the store
    // masks put the pixels in order.
    const __m128i lo8 = _mm_set1_epi16(0x00FF);
    for (int px = 16; px >= 8; px -= 8)
      for (; x + px <= width; x += px) {
        const __m128i CB = px == 16 ? load8(cb + x / 2) : load4(cb + x / 2);
        const __m128i CR = px == 16 ? load8(cr + x / 2) : load4(cr + x / 2);
        __m128i u[3];
        f_terms(lo16(CB), lo16(CR), _mm_unpacklo_epi8(CB, CR), &u[0], &u[1], &u[2]);
        for (int k = 0; k < ROWS; ++k) {
          const __m128i Y = px == 16 ? load16(yr[k] + x) : load8(yr[k] + x);
          const __m128i ye = _mm_and_si128(Y, lo8), yo = _mm_srli_epi16(Y, 8);
          __m128i c[3];
          for (int ch = 0; ch < 3; ++ch) c[ch] = pack_u8(_mm_add_epi16(ye, u[ch]), _mm_add_epi16(yo, u[ch]));
          store_c3<true>(dr[k] + CH * x, RI == 0 ? c[0] : c[2], c[1], RI == 0 ? c[2] : c[0], px);
        }
      }
    if (x < width)
      for (int k = 0; k < ROWS; ++k)
        ref::ycbcr_to_rgb_q16_row(yr[k] + x, cb + x / 2, cr + x / 2, dr[k] + CH * x, width - x, 2, CH, RI != 0, alpha);
    return;
  }
  __m128i t[3][2];
  for (; x + 16 <= width; x += 16) {
    if (HSUB == 1) {
      const __m128i CB = load16(cb + x), CR = load16(cr + x);
      f_terms(lo16(CB), lo16(CR), _mm_unpacklo_epi8(CB, CR), &t[0][0], &t[1][0], &t[2][0]);
      f_terms(hi16(CB), hi16(CR), _mm_unpackhi_epi8(CB, CR), &t[0][1], &t[1][1], &t[2][1]);
    } else {
      __m128i u[3];
      const __m128i CB = load8(cb + x / 2), CR = load8(cr + x / 2);
      f_terms(lo16(CB), lo16(CR), _mm_unpacklo_epi8(CB, CR), &u[0], &u[1], &u[2]);
      for (int ch = 0; ch < 3; ++ch) {
        t[ch][0] = _mm_unpacklo_epi16(u[ch], u[ch]);
        t[ch][1] = _mm_unpackhi_epi16(u[ch], u[ch]);
      }
    }
    emit(x, t, 16);
  }
  if (x + 8 <= width) {
    __m128i u[3];
    if (HSUB == 1) {
      const __m128i CB = load8(cb + x), CR = load8(cr + x);
      f_terms(lo16(CB), lo16(CR), _mm_unpacklo_epi8(CB, CR), &u[0], &u[1], &u[2]);
      for (int ch = 0; ch < 3; ++ch) t[ch][0] = t[ch][1] = u[ch];
    } else {
      const __m128i CB = load4(cb + x / 2), CR = load4(cr + x / 2);
      f_terms(lo16(CB), lo16(CR), _mm_unpacklo_epi8(CB, CR), &u[0], &u[1], &u[2]);
      for (int ch = 0; ch < 3; ++ch) t[ch][0] = t[ch][1] = _mm_unpacklo_epi16(u[ch], u[ch]);
    }
    emit(x, t, 8);
    x += 8;
  }
  if (x < width)
    for (int k = 0; k < ROWS; ++k)
      ref::ycbcr_to_rgb_q16_row(yr[k] + x, cb + x / HSUB, cr + x / HSUB, dr[k] + CH * x, width - x, HSUB, CH, RI != 0,
                                alpha);
}

// ------------------------------------------------------------------ families C and D (forward, Q16)

template <int CH, int RI>
void c_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  int x = 0;
  for (int px = 16; px >= 8; px -= 8)
    for (; x + px <= width; x += px) {
      __m128i r, g, b, cb0, cr0, cb1, cr1;
      load_planes<CH, RI>(s + CH * x, px, r, g, b);
      const __m128i Y = y_q16_16(r, g, b);
      chroma_lo8<16, -8372224>(lo16(r), lo16(g), lo16(b), &cb0, &cr0);
      if (px == 16) {
        chroma_lo8<16, -8372224>(hi16(r), hi16(g), hi16(b), &cb1, &cr1);
        store16(y + x, Y);
        store16(cb + x, _mm_unpacklo_epi64(cb0, cb1));
        store16(cr + x, _mm_unpacklo_epi64(cr0, cr1));
      } else {
        store8(y + x, Y);
        store8(cb + x, cb0);
        store8(cr + x, cr0);
      }
    }
  if (x < width) {
    if (RI == 0)
      ref::rgb_to_ycbcr_c4_q16_row(s + CH * x, y + x, cb + x, cr + x, width - x);
    else
      ref::bgr_to_ycbcr_c4_q16_row(s + CH * x, y + x, cb + x, cr + x, width - x);
  }
}

// Pair sums of 16 bytes -> 8 lanes of 16 bits.
inline __m128i pair_sums(__m128i v) { return _mm_maddubs_epi16(v, _mm_set1_epi8(1)); }

template <int CH, int RI>
void d422_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  int x = 0;
  for (int px = 16; px >= 8; px -= 8)
    for (; x + px <= width; x += px) {
      __m128i r, g, b, c0, c1;
      load_planes<CH, RI>(s + CH * x, px, r, g, b);
      const __m128i Y = y_q16_16(r, g, b);
      chroma_lo8<17, -16760832>(pair_sums(r), pair_sums(g), pair_sums(b), &c0, &c1);
      if (px == 16) {
        store16(y + x, Y);
        store8(cb + x / 2, c0);
        store8(cr + x / 2, c1);
      } else {
        store8(y + x, Y);
        store4(cb + x / 2, c0);
        store4(cr + x / 2, c1);
      }
    }
  if (x < width) ref::rgb_to_ycbcr422_q16_row(s + CH * x, y + x, cb + x / 2, cr + x / 2, width - x, CH, RI != 0);
}

template <int CH, int RI>
void d411_rows(const uint8_t* s0, const uint8_t* s1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr, int width) {
  int x = 0;
  for (int px = 16; px >= 8; px -= 8)
    for (; x + px <= width; x += px) {
      __m128i r0, g0, b0, r1, g1, b1, c0, c1;
      load_planes<CH, RI>(s0 + CH * x, px, r0, g0, b0);
      load_planes<CH, RI>(s1 + CH * x, px, r1, g1, b1);
      const __m128i Y0 = y_q16_16(r0, g0, b0), Y1 = y_q16_16(r1, g1, b1);
      chroma_lo8<18, -33521664>(_mm_add_epi16(pair_sums(r0), pair_sums(r1)),
                                _mm_add_epi16(pair_sums(g0), pair_sums(g1)),
                                _mm_add_epi16(pair_sums(b0), pair_sums(b1)), &c0, &c1);
      if (px == 16) {
        store16(y0 + x, Y0);
        store16(y1 + x, Y1);
        store8(cb + x / 2, c0);
        store8(cr + x / 2, c1);
      } else {
        store8(y0 + x, Y0);
        store8(y1 + x, Y1);
        store4(cb + x / 2, c0);
        store4(cr + x / 2, c1);
      }
    }
  if (x < width)
    ref::rgb_to_ycbcr411_q16_rows(s0 + CH * x, s1 + CH * x, y0 + x, y1 + x, cb + x / 2, cr + x / 2, width - x, CH,
                                  RI != 0);
}

}  // namespace

// ------------------------------------------------------------------ kernels

void ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  a_row<0, true>(src, y, cb, cr, width);
}
void ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  a_row<2, true>(src, y, cb, cr, width);
}
void ownpj_RGBToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) {
  a_row<0, false>(src, y, nullptr, nullptr, width);
}
void ownpj_BGRToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) {
  a_row<2, false>(src, y, nullptr, nullptr, width);
}

void ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,
                                      uint8_t* cb, uint8_t* cr, int width) {
  const int n4 = width & ~3;
  int x = 0;
  for (; x + 16 <= n4; x += 16) {
    const __m128i R = load16(r + x), G = load16(g + x), B = load16(b + x);
    __m128i y0, cb0, cr0, y1, cb1, cr1;
    b_8(R, G, B, &y0, &cb0, &cr0);
    b_8(_mm_unpackhi_epi64(R, R), _mm_unpackhi_epi64(G, G), _mm_unpackhi_epi64(B, B), &y1, &cb1, &cr1);
    store16(y + x, pack_u8(y0, y1));
    store16(cb + x, pack_u8(cb0, cb1));
    store16(cr + x, pack_u8(cr0, cr1));
  }
  for (int px = 8; px >= 4; px -= 4) {
    if (x + px > n4) continue;
    __m128i y0, cb0, cr0;
    if (px == 8)
      b_8(load8(r + x), load8(g + x), load8(b + x), &y0, &cb0, &cr0);
    else
      b_8(load4(r + x), load4(g + x), load4(b + x), &y0, &cb0, &cr0);
    const __m128i Y = pack_u8(y0, y0), CB = pack_u8(cb0, cb0), CR = pack_u8(cr0, cr0);
    if (px == 8) {
      store8(y + x, Y);
      store8(cb + x, CB);
      store8(cr + x, CR);
    } else {
      store4(y + x, Y);
      store4(cb + x, CB);
      store4(cr + x, CR);
    }
    x += px;
  }
  if (n4 < width) ref::ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(r + n4, g + n4, b + n4, y + n4, cb + n4, cr + n4, width - n4);
}

void ownpj_RGBToY_JPEG_8u_P3C1R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, int width) {
  const __m128 wr = _mm_set1_ps(0.299f), wg = _mm_set1_ps(0.587f), wb = _mm_set1_ps(0.114f);
  auto y4 = [&](__m128i R, __m128i G, __m128i B) {  // low 4 bytes of each -> 4 x int32
    const __m128 v = _mm_add_ps(_mm_add_ps(_mm_mul_ps(wr, _mm_cvtepi32_ps(_mm_cvtepu8_epi32(R))),
                                           _mm_mul_ps(wg, _mm_cvtepi32_ps(_mm_cvtepu8_epi32(G)))),
                                _mm_mul_ps(wb, _mm_cvtepi32_ps(_mm_cvtepu8_epi32(B))));
    return _mm_cvtps_epi32(v);  // current rounding mode: nearest, ties to even
  };
  int x = 0;
  for (; x + 16 <= width; x += 16) {
    const __m128i R = load16(r + x), G = load16(g + x), B = load16(b + x);
    const __m128i q[4] = {y4(R, G, B), y4(_mm_srli_si128(R, 4), _mm_srli_si128(G, 4), _mm_srli_si128(B, 4)),
                          y4(_mm_srli_si128(R, 8), _mm_srli_si128(G, 8), _mm_srli_si128(B, 8)),
                          y4(_mm_srli_si128(R, 12), _mm_srli_si128(G, 12), _mm_srli_si128(B, 12))};
    store16(y + x, pack4x32(q[0], q[1], q[2], q[3]));
  }
  for (; x + 4 <= width; x += 4) {
    const __m128i q = y4(load4(r + x), load4(g + x), load4(b + x));
    store4(y + x, pack4x32(q, q, q, q));
  }
  if (x < width) ref::ownpj_RGBToY_JPEG_8u_P3C1R_opt(r + x, g + x, b + x, y + x, width - x);
}

void ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst,
                                        int width) {
  e_row<0>(y, cb, cr, dst, width);
}
void ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst,
                                        int width) {
  e_row<2>(y, cb, cr, dst, width);
}

void ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* r,
                                      uint8_t* g, uint8_t* b, int width) {
  const int n4 = width & ~3;
  int x = 0;
  for (; x + 16 <= n4; x += 16) {
    const __m128i Y = load16(y + x), CB = load16(cb + x), CR = load16(cr + x);
    __m128i r0, g0, b0, r1, g1, b1;
    e_8<true>(lo16(Y), lo16(CB), _mm_unpacklo_epi8(CB, CR), &r0, &g0, &b0);
    e_8<true>(hi16(Y), hi16(CB), _mm_unpackhi_epi8(CB, CR), &r1, &g1, &b1);
    store16(r + x, pack_u8(r0, r1));
    store16(g + x, pack_u8(g0, g1));
    store16(b + x, pack_u8(b0, b1));
  }
  for (int px = 8; px >= 4; px -= 4) {
    if (x + px > n4) continue;
    __m128i r0, g0, b0;
    const __m128i Y = px == 8 ? load8(y + x) : load4(y + x), CB = px == 8 ? load8(cb + x) : load4(cb + x),
                  CR = px == 8 ? load8(cr + x) : load4(cr + x);
    e_8<true>(lo16(Y), lo16(CB), _mm_unpacklo_epi8(CB, CR), &r0, &g0, &b0);
    const __m128i R = pack_u8(r0, r0), G = pack_u8(g0, g0), B = pack_u8(b0, b0);
    if (px == 8) {
      store8(r + x, R);
      store8(g + x, G);
      store8(b + x, B);
    } else {
      store4(r + x, R);
      store4(g + x, G);
      store4(b + x, B);
    }
    x += px;
  }
  if (n4 < width) ref::ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(y + n4, cb + n4, cr + n4, r + n4, g + n4, b + n4, width - n4);
}

void rgb_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  c_row<4, 0>(src, y, cb, cr, width);
}
void bgr_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  c_row<4, 2>(src, y, cb, cr, width);
}

void rgb_to_ycbcr422_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width, int channels,
                             bool bgr) {
  if (channels == 3)
    bgr ? d422_row<3, 2>(src, y, cb, cr, width) : d422_row<3, 0>(src, y, cb, cr, width);
  else
    bgr ? d422_row<4, 2>(src, y, cb, cr, width) : d422_row<4, 0>(src, y, cb, cr, width);
}

void rgb_to_ycbcr411_q16_rows(const uint8_t* s0, const uint8_t* s1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                              uint8_t* cr, int width, int channels, bool bgr) {
  if (channels == 3)
    bgr ? d411_rows<3, 2>(s0, s1, y0, y1, cb, cr, width) : d411_rows<3, 0>(s0, s1, y0, y1, cb, cr, width);
  else
    bgr ? d411_rows<4, 2>(s0, s1, y0, y1, cb, cr, width) : d411_rows<4, 0>(s0, s1, y0, y1, cb, cr, width);
}

namespace {
template <int ROWS>
void f_dispatch(const uint8_t* const* y, const uint8_t* cb, const uint8_t* cr, uint8_t* const* d, int width, int hsub,
                int channels, bool bgr, uint8_t alpha) {
  const int sel = (hsub == 2 ? 4 : 0) + (channels == 4 ? 2 : 0) + (bgr ? 1 : 0);
  switch (sel) {
    case 0: f_rows<1, 3, 0, ROWS>(y, cb, cr, d, width, alpha); break;
    case 1: f_rows<1, 3, 2, ROWS>(y, cb, cr, d, width, alpha); break;
    case 2: f_rows<1, 4, 0, ROWS>(y, cb, cr, d, width, alpha); break;
    case 3: f_rows<1, 4, 2, ROWS>(y, cb, cr, d, width, alpha); break;
    case 4: f_rows<2, 3, 0, ROWS>(y, cb, cr, d, width, alpha); break;
    case 5: f_rows<2, 3, 2, ROWS>(y, cb, cr, d, width, alpha); break;
    case 6: f_rows<2, 4, 0, ROWS>(y, cb, cr, d, width, alpha); break;
    default: f_rows<2, 4, 2, ROWS>(y, cb, cr, d, width, alpha); break;
  }
}
}  // namespace

void ycbcr_to_rgb_q16_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width, int hsub,
                          int channels, bool bgr, uint8_t alpha) {
  f_dispatch<1>(&y, cb, cr, &dst, width, hsub, channels, bgr, alpha);
}

void ycbcr411_to_rgb_q16_rows(const uint8_t* y0, const uint8_t* y1, const uint8_t* cb, const uint8_t* cr,
                              uint8_t* d0, uint8_t* d1, int width, int channels, bool bgr, uint8_t alpha) {
  const uint8_t* y[2] = {y0, y1};
  uint8_t* d[2] = {d0, d1};
  f_dispatch<2>(y, cb, cr, d, width, 2, channels, bgr, alpha);
}

void ycbcr422_c2_to_rgb_tbl_row(const uint8_t* src, uint8_t* dst, int width) {
  int x = 0;
  const __m128i lo8 = _mm_set1_epi16(0x00FF);
  for (int px = 16; px >= 8; px -= 8)
    for (; x + px <= width; x += px) {
      // 8 (or 4) groups: Y0 and Y1 of each group in 16-bit lanes, (Cb, Cr)
      // byte pairs; the terms of a group serve both of its pixels.
      const uint8_t* s = src + 2 * x;
      const __m128i v0 = load16(s), v1 = px == 16 ? load16(s + 16) : _mm_setzero_si128();
      auto gather = [&](const Mask* m) {
        return _mm_or_si128(_mm_shuffle_epi8(v0, m[0].v()), _mm_shuffle_epi8(v1, m[1].v()));
      };
      const __m128i y0 = gather(kC2Y0), y1 = gather(kC2Y1), cbcr = gather(kC2CbCr);
      __m128i t[3];
      g_terms(_mm_and_si128(cbcr, lo8), _mm_srli_epi16(cbcr, 8), cbcr, &t[0], &t[1], &t[2]);
      __m128i c[3];
      for (int ch = 0; ch < 3; ++ch) c[ch] = pack_u8(_mm_add_epi16(y0, t[ch]), _mm_add_epi16(y1, t[ch]));
      store_c3<true>(dst + 3 * x, c[0], c[1], c[2], px);
    }
  if (x < width) ref::ycbcr422_c2_to_rgb_tbl_row(src + 2 * x, dst + 3 * x, width - x);
}

}  // namespace vpr::jpeg::sse
