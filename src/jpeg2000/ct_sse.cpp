// JPEG 2000 component transforms, SSE4.1 rows.  32-bit samples go 4 a
// step, 16-bit ones 8 a step; the scalar tails use the same per-pixel
// formulas as the reference rows, and every vector formula is the scalar
// one lane by lane (16s RCT forward via exact floor averages, 16s RCT
// inverse widened to 32 bits and packed with saturation, 16s ICT via
// 16-bit multiply-add pairs into 32-bit sums).
#include <array>
#include <cstdint>

#include "core/simd.h"
#include "jpeg2000/ct.h"
#include "jpeg2000/ct_px.h"

namespace vpr::j2k::sse {
namespace {

using simd::load16;
using simd::store16;

// ---------------------------------------------------------------- vector transforms
// Each takes components 0, 1, 2 in a, b, c and leaves the results there.
struct RctFwd32 {
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i y = _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(a, _mm_add_epi32(b, b)), c), 2);
    const __m128i u = _mm_sub_epi32(c, b), w = _mm_sub_epi32(a, b);
    a = y;
    b = u;
    c = w;
  }
};
struct RctInv32 {
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i g = _mm_sub_epi32(a, _mm_srai_epi32(_mm_add_epi32(b, c), 2));
    const __m128i r = _mm_add_epi32(c, g), bl = _mm_add_epi32(b, g);
    a = r;
    b = g;
    c = bl;
  }
};
inline __m128i favg16(__m128i a, __m128i b) {  // floor((a + b) / 2), exact
  return _mm_add_epi16(_mm_and_si128(a, b), _mm_srai_epi16(_mm_xor_si128(a, b), 1));
}
struct RctFwd16 {
  // (R + 2G + B) >> 2 = floor((floor((R + B) / 2) + G) / 2)
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i y = favg16(favg16(a, c), b);
    const __m128i u = _mm_sub_epi16(c, b), w = _mm_sub_epi16(a, b);
    a = y;
    b = u;
    c = w;
  }
};
struct RctInv16 {
  static void half(__m128i y, __m128i u, __m128i v, __m128i& r, __m128i& g, __m128i& b) {
    g = _mm_sub_epi32(y, _mm_srai_epi32(_mm_add_epi32(u, v), 2));
    r = _mm_add_epi32(v, g);
    b = _mm_add_epi32(u, g);
  }
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    __m128i r0, g0, b0, r1, g1, b1;
    half(_mm_cvtepi16_epi32(a), _mm_cvtepi16_epi32(b), _mm_cvtepi16_epi32(c), r0, g0, b0);
    half(_mm_cvtepi16_epi32(_mm_srli_si128(a, 8)), _mm_cvtepi16_epi32(_mm_srli_si128(b, 8)),
         _mm_cvtepi16_epi32(_mm_srli_si128(c, 8)), r1, g1, b1);
    a = _mm_packs_epi32(r0, r1);
    b = _mm_packs_epi32(g0, g1);
    c = _mm_packs_epi32(b0, b1);
  }
};
struct IctFwd32s {
  static __m128i dot(__m128i a, __m128i b, __m128i c, int ka, int kb, int kc) {
    const __m128i s = _mm_add_epi32(_mm_add_epi32(_mm_mullo_epi32(a, _mm_set1_epi32(ka)), _mm_mullo_epi32(b, _mm_set1_epi32(kb))),
                                    _mm_mullo_epi32(c, _mm_set1_epi32(kc)));
    return _mm_srai_epi32(_mm_add_epi32(s, _mm_set1_epi32(8192)), 14);
  }
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i y = dot(a, b, c, 4899, 9617, 1868);
    const __m128i cb = dot(a, b, c, -2765, -5427, 8192);
    const __m128i cr = dot(a, b, c, 8192, -6860, -1332);
    a = y;
    b = cb;
    c = cr;
  }
};
struct IctInv32s {
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i k = _mm_set1_epi32(8192);
    const __m128i r = _mm_add_epi32(a, _mm_srai_epi32(_mm_add_epi32(_mm_mullo_epi32(c, _mm_set1_epi32(22970)), k), 14));
    const __m128i g = _mm_add_epi32(
        a, _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(_mm_mullo_epi32(b, _mm_set1_epi32(-5638)),
                                                      _mm_mullo_epi32(c, _mm_set1_epi32(-11700))),
                                        k),
                          14));
    const __m128i bl = _mm_add_epi32(a, _mm_srai_epi32(_mm_add_epi32(_mm_mullo_epi32(b, _mm_set1_epi32(29032)), k), 14));
    a = r;
    b = g;
    c = bl;
  }
};
inline __m128i pair16(int lo, int hi) {  // 32-bit lanes holding (lo, hi) as two 16-bit halves
  return _mm_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(hi) << 16) | (static_cast<uint32_t>(lo) & 0xFFFF)));
}
struct IctFwd16 {
  // Four pixels in 32-bit lanes: rg = (R, G) pairs, b1 = (B, 1), r1 = (R, 1).
  static void quarter(__m128i rg, __m128i b1, __m128i r1, __m128i& y, __m128i& cb, __m128i& cr) {
    const __m128i s8 = _mm_add_epi32(_mm_madd_epi16(rg, pair16(4899, 9617)), _mm_madd_epi16(b1, pair16(1868, 8192)));
    y = _mm_srai_epi32(s8, 14);                                                         // (S + 8192) >> 14
    const __m128i db = _mm_srai_epi32(_mm_sub_epi32(_mm_madd_epi16(b1, pair16(16384, 16384)), s8), 14);
    const __m128i dr = _mm_srai_epi32(_mm_sub_epi32(_mm_madd_epi16(r1, pair16(16384, 16384)), s8), 14);
    // Low 16 bits of the difference paired with 1: (D, 1) . (k, 8192).
    const __m128i lowmask = _mm_set1_epi32(0xFFFF), one_hi = _mm_set1_epi32(0x10000);
    cb = _mm_srai_epi32(_mm_madd_epi16(_mm_or_si128(_mm_and_si128(db, lowmask), one_hi), pair16(9246, 8192)), 14);
    cr = _mm_srai_epi32(_mm_madd_epi16(_mm_or_si128(_mm_and_si128(dr, lowmask), one_hi), pair16(11686, 8192)), 14);
  }
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i one = _mm_set1_epi16(1);
    __m128i y0, cb0, cr0, y1, cb1, cr1;
    quarter(_mm_unpacklo_epi16(a, b), _mm_unpacklo_epi16(c, one), _mm_unpacklo_epi16(a, one), y0, cb0, cr0);
    quarter(_mm_unpackhi_epi16(a, b), _mm_unpackhi_epi16(c, one), _mm_unpackhi_epi16(a, one), y1, cb1, cr1);
    a = _mm_packs_epi32(y0, y1);
    b = _mm_packs_epi32(cb0, cb1);
    c = _mm_packs_epi32(cr0, cr1);
  }
};
struct IctInv16 {
  static void quarter(__m128i y, __m128i cr1, __m128i cbcr, __m128i cb1, __m128i& r, __m128i& g, __m128i& b) {
    r = _mm_add_epi32(y, _mm_srai_epi32(_mm_madd_epi16(cr1, pair16(22970, 8192)), 14));
    g = _mm_add_epi32(
        y, _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(cbcr, pair16(-5638, -11700)), _mm_set1_epi32(8192)), 14));
    b = _mm_add_epi32(y, _mm_srai_epi32(_mm_madd_epi16(cb1, pair16(29032, 8192)), 14));
  }
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128i one = _mm_set1_epi16(1);
    __m128i r0, g0, b0, r1, g1, b1;
    quarter(_mm_cvtepi16_epi32(a), _mm_unpacklo_epi16(c, one), _mm_unpacklo_epi16(b, c), _mm_unpacklo_epi16(b, one),
            r0, g0, b0);
    quarter(_mm_cvtepi16_epi32(_mm_srli_si128(a, 8)), _mm_unpackhi_epi16(c, one), _mm_unpackhi_epi16(b, c),
            _mm_unpackhi_epi16(b, one), r1, g1, b1);
    a = _mm_packs_epi32(r0, r1);
    b = _mm_packs_epi32(g0, g1);
    c = _mm_packs_epi32(b0, b1);
  }
};
struct IctFwd32f {
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128 r = _mm_castsi128_ps(a), g = _mm_castsi128_ps(b), bl = _mm_castsi128_ps(c);
    auto k = [](float f) { return _mm_set1_ps(f); };
    const __m128 y = _mm_add_ps(_mm_add_ps(_mm_mul_ps(k(0.299f), r), _mm_mul_ps(k(0.587f), g)), _mm_mul_ps(k(0.114f), bl));
    const __m128 cb =
        _mm_add_ps(_mm_sub_ps(_mm_mul_ps(k(-0.16875f), r), _mm_mul_ps(k(0.33126f), g)), _mm_mul_ps(k(0.5f), bl));
    const __m128 cr =
        _mm_sub_ps(_mm_sub_ps(_mm_mul_ps(k(0.5f), r), _mm_mul_ps(k(0.41869f), g)), _mm_mul_ps(k(0.08131f), bl));
    a = _mm_castps_si128(y);
    b = _mm_castps_si128(cb);
    c = _mm_castps_si128(cr);
  }
};
struct IctInv32f {
  static void v(__m128i& a, __m128i& b, __m128i& c) {
    const __m128 y = _mm_castsi128_ps(a), cb = _mm_castsi128_ps(b), cr = _mm_castsi128_ps(c);
    auto k = [](float f) { return _mm_set1_ps(f); };
    const __m128 r = _mm_add_ps(y, _mm_mul_ps(k(1.402f), cr));
    const __m128 g = _mm_sub_ps(_mm_sub_ps(y, _mm_mul_ps(k(0.34413f), cb)), _mm_mul_ps(k(0.71414f), cr));
    const __m128 bl = _mm_add_ps(y, _mm_mul_ps(k(1.772f), cb));
    a = _mm_castps_si128(r);
    b = _mm_castps_si128(g);
    c = _mm_castps_si128(bl);
  }
};

// ---------------------------------------------------------------- interleave helpers
// 32-bit: (R0 G0 B0 R1)(G1 B1 R2 G2)(B2 R3 G3 B3) <-> planes.
inline void split3_32(__m128i va, __m128i vb, __m128i vc, __m128i& r, __m128i& g, __m128i& b) {
  const __m128 A = _mm_castsi128_ps(va), B = _mm_castsi128_ps(vb), C = _mm_castsi128_ps(vc);
  const __m128 x = _mm_blend_ps(_mm_blend_ps(A, B, 0x4), C, 0x2);
  const __m128 y = _mm_blend_ps(_mm_blend_ps(A, B, 0x9), C, 0x4);
  const __m128 z = _mm_blend_ps(_mm_blend_ps(A, B, 0x2), C, 0x9);
  r = _mm_castps_si128(_mm_shuffle_ps(x, x, _MM_SHUFFLE(1, 2, 3, 0)));
  g = _mm_castps_si128(_mm_shuffle_ps(y, y, _MM_SHUFFLE(2, 3, 0, 1)));
  b = _mm_castps_si128(_mm_shuffle_ps(z, z, _MM_SHUFFLE(3, 0, 1, 2)));
}
inline void join3_32(__m128i r, __m128i g, __m128i b, __m128i& va, __m128i& vb, __m128i& vc) {
  const __m128 R = _mm_castsi128_ps(r), G = _mm_castsi128_ps(g), B = _mm_castsi128_ps(b);
  const __m128 r2 = _mm_shuffle_ps(R, R, _MM_SHUFFLE(1, 2, 3, 0));
  const __m128 g2 = _mm_shuffle_ps(G, G, _MM_SHUFFLE(2, 3, 0, 1));
  const __m128 b2 = _mm_shuffle_ps(B, B, _MM_SHUFFLE(3, 0, 1, 2));
  va = _mm_castps_si128(_mm_blend_ps(_mm_blend_ps(r2, g2, 0x2), b2, 0x4));
  vb = _mm_castps_si128(_mm_blend_ps(_mm_blend_ps(g2, b2, 0x2), r2, 0x4));
  vc = _mm_castps_si128(_mm_blend_ps(_mm_blend_ps(b2, r2, 0x2), g2, 0x4));
}

// 16-bit: byte shuffles.  split[ch][v] gathers channel ch from source
// vector v; join[v][ch] places channel ch into output vector v.
using Mask = std::array<uint8_t, 16>;
struct Masks16 {
  Mask split[3][3];
  Mask join[3][3];
};
constexpr Masks16 make_masks16() {
  Masks16 m{};
  for (int ch = 0; ch < 3; ++ch)
    for (int v = 0; v < 3; ++v)
      for (int i = 0; i < 8; ++i) {
        const int g = 3 * i + ch;  // global 16-bit index of pixel i, channel ch
        const bool here = g / 8 == v;
        m.split[ch][v][2 * i] = here ? static_cast<uint8_t>(2 * (g % 8)) : 0x80;
        m.split[ch][v][2 * i + 1] = here ? static_cast<uint8_t>(2 * (g % 8) + 1) : 0x80;
      }
  for (int v = 0; v < 3; ++v)
    for (int ch = 0; ch < 3; ++ch)
      for (int j = 0; j < 8; ++j) {
        const int g = 8 * v + j;
        const bool here = g % 3 == ch;
        m.join[v][ch][2 * j] = here ? static_cast<uint8_t>(2 * (g / 3)) : 0x80;
        m.join[v][ch][2 * j + 1] = here ? static_cast<uint8_t>(2 * (g / 3) + 1) : 0x80;
      }
  return m;
}
constexpr Masks16 kMasks16 = make_masks16();
inline __m128i mask(const Mask& m) { return load16(m.data()); }

inline void split3_16(__m128i va, __m128i vb, __m128i vc, __m128i& r, __m128i& g, __m128i& b) {
  __m128i out[3];
  for (int ch = 0; ch < 3; ++ch)
    out[ch] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(va, mask(kMasks16.split[ch][0])),
                                        _mm_shuffle_epi8(vb, mask(kMasks16.split[ch][1]))),
                           _mm_shuffle_epi8(vc, mask(kMasks16.split[ch][2])));
  r = out[0];
  g = out[1];
  b = out[2];
}
inline void join3_16(__m128i r, __m128i g, __m128i b, __m128i& va, __m128i& vb, __m128i& vc) {
  __m128i out[3];
  for (int v = 0; v < 3; ++v)
    out[v] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(r, mask(kMasks16.join[v][0])),
                                       _mm_shuffle_epi8(g, mask(kMasks16.join[v][1]))),
                          _mm_shuffle_epi8(b, mask(kMasks16.join[v][2])));
  va = out[0];
  vb = out[1];
  vc = out[2];
}

// ---------------------------------------------------------------- layout drivers
template <class T>
constexpr int lanes() {
  return 16 / static_cast<int>(sizeof(T));
}

template <class VX, class SX, class T>
void p3(T* p0, T* p1, T* p2, int w) {
  constexpr int N = lanes<T>();
  int x = 0;
  for (; x + N <= w; x += N) {
    __m128i a = load16(p0 + x), b = load16(p1 + x), c = load16(p2 + x);
    VX::v(a, b, c);
    store16(p0 + x, a);
    store16(p1 + x, b);
    store16(p2 + x, c);
  }
  for (; x < w; ++x) {
    T a, b, c;
    SX::px(p0[x], p1[x], p2[x], a, b, c);
    p0[x] = a;
    p1[x] = b;
    p2[x] = c;
  }
}

template <class VX, class SX, class T>
void c3p3(const T* s, T* d0, T* d1, T* d2, int w) {
  constexpr int N = lanes<T>();
  int x = 0;
  for (; x + N <= w; x += N) {
    __m128i a, b, c;
    const __m128i v0 = load16(s + 3 * x), v1 = load16(s + 3 * x + N), v2 = load16(s + 3 * x + 2 * N);
    if constexpr (N == 4)
      split3_32(v0, v1, v2, a, b, c);
    else
      split3_16(v0, v1, v2, a, b, c);
    VX::v(a, b, c);
    store16(d0 + x, a);
    store16(d1 + x, b);
    store16(d2 + x, c);
  }
  for (; x < w; ++x) SX::px(s[3 * x], s[3 * x + 1], s[3 * x + 2], d0[x], d1[x], d2[x]);
}

template <class VX, class SX, class T>
void p3c3(const T* s0, const T* s1, const T* s2, T* d, int w) {
  constexpr int N = lanes<T>();
  int x = 0;
  for (; x + N <= w; x += N) {
    __m128i a = load16(s0 + x), b = load16(s1 + x), c = load16(s2 + x), v0, v1, v2;
    VX::v(a, b, c);
    if constexpr (N == 4)
      join3_32(a, b, c, v0, v1, v2);
    else
      join3_16(a, b, c, v0, v1, v2);
    store16(d + 3 * x, v0);
    store16(d + 3 * x + N, v1);
    store16(d + 3 * x + 2 * N, v2);
  }
  for (; x < w; ++x) SX::px(s0[x], s1[x], s2[x], d[3 * x], d[3 * x + 1], d[3 * x + 2]);
}

}  // namespace

void rct_fwd_c3p3(const int16_t* s, int16_t* a, int16_t* b, int16_t* c, int w) { c3p3<RctFwd16, ct::RctFwd>(s, a, b, c, w); }
void rct_fwd_c3p3(const int32_t* s, int32_t* a, int32_t* b, int32_t* c, int w) { c3p3<RctFwd32, ct::RctFwd>(s, a, b, c, w); }
void rct_fwd_p3(int16_t* a, int16_t* b, int16_t* c, int w) { p3<RctFwd16, ct::RctFwd>(a, b, c, w); }
void rct_fwd_p3(int32_t* a, int32_t* b, int32_t* c, int w) { p3<RctFwd32, ct::RctFwd>(a, b, c, w); }
void rct_inv_p3c3(const int16_t* a, const int16_t* b, const int16_t* c, int16_t* d, int w) {
  p3c3<RctInv16, ct::RctInv>(a, b, c, d, w);
}
void rct_inv_p3c3(const int32_t* a, const int32_t* b, const int32_t* c, int32_t* d, int w) {
  p3c3<RctInv32, ct::RctInv>(a, b, c, d, w);
}
void rct_inv_p3(int16_t* a, int16_t* b, int16_t* c, int w) { p3<RctInv16, ct::RctInv>(a, b, c, w); }
void rct_inv_p3(int32_t* a, int32_t* b, int32_t* c, int w) { p3<RctInv32, ct::RctInv>(a, b, c, w); }
void ict_fwd_p3(int16_t* a, int16_t* b, int16_t* c, int w) { p3<IctFwd16, ct::IctFwd>(a, b, c, w); }
void ict_fwd_p3(int32_t* a, int32_t* b, int32_t* c, int w) { p3<IctFwd32s, ct::IctFwd>(a, b, c, w); }
void ict_inv_p3(int16_t* a, int16_t* b, int16_t* c, int w) { p3<IctInv16, ct::IctInv>(a, b, c, w); }
void ict_inv_p3(int32_t* a, int32_t* b, int32_t* c, int w) { p3<IctInv32s, ct::IctInv>(a, b, c, w); }
void ict_fwd_c3p3(const float* s, float* a, float* b, float* c, int w) { c3p3<IctFwd32f, ct::IctFwd>(s, a, b, c, w); }
void ict_fwd_p3(float* a, float* b, float* c, int w) { p3<IctFwd32f, ct::IctFwd>(a, b, c, w); }
void ict_inv_p3c3(const float* a, const float* b, const float* c, float* d, int w) {
  p3c3<IctInv32f, ct::IctInv>(a, b, c, d, w);
}
void ict_inv_p3(float* a, float* b, float* c, int w) { p3<IctInv32f, ct::IctInv>(a, b, c, w); }

}  // namespace vpr::j2k::sse
