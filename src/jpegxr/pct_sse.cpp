// Photo core transform, SSE4.1 kernels.
//
// Blocks are transposed so that one vector holds one block position (a..p)
// of several blocks: 8 blocks per vector for 16s, 4 for 32s and 32f.  The
// lifting then runs on whole vectors, two such groups side by side so the
// dependency chains of one hide the latency of the other.  Blocks are
// independent, so a group may take its blocks from different block rows;
// slots are filled in raster order, and only the last groups of a region
// (or groups holding a lone 4-wide block at the right edge, 16s) take the
// general path with partial loads.
//
// 16s exactness: the assignments wrap to 16 bits, but the values inside an
// expression must be exact.  The shift terms are rewritten into forms that
// never leave 16 bits:
//   (A-B+0)>>1  = avg_epu16(A^0x8000, B^0x7fff) ^ 0x8000   (17-bit average;
//                 its low 16 bits, all that the wrapping sums using t need)
//   (A-B+1)>>1  = -((B-A+0)>>1)
//   (x+1)>>1    = x - (x>>1)
//   (3x+4)>>3   = mulhrs(x, 12288)      ((12288x + 2^14) >> 15)
//   (3x+3)>>2   = x - (x>>2)
//   (3x+3)>>3   = (x - (x>>2)) >> 1
// 32s keeps the literal 32-bit wrapping forms (3x = x+x+x).
#include <cstring>

#include "core/simd.h"
#include "jpegxr/pct.h"

namespace vpr::jxr::sse {
namespace {

#define VPR_ALWAYS_INLINE inline __attribute__((always_inline))

// ---------------------------------------------------------------- ops
struct Ops16 {
  using V = __m128i;
  static VPR_ALWAYS_INLINE V add(V a, V b) { return _mm_add_epi16(a, b); }
  static VPR_ALWAYS_INLINE V sub(V a, V b) { return _mm_sub_epi16(a, b); }
  static VPR_ALWAYS_INLINE V neg(V a) { return _mm_sub_epi16(_mm_setzero_si128(), a); }
  static VPR_ALWAYS_INLINE V h2t0(V a, V b) {
    const V s = _mm_set1_epi16(static_cast<int16_t>(0x8000));
    const V m = _mm_set1_epi16(0x7fff);
    return _mm_xor_si128(_mm_avg_epu16(_mm_xor_si128(a, s), _mm_xor_si128(b, m)), s);
  }
  static VPR_ALWAYS_INLINE V h2t(V a, V b, int r) { return r ? neg(h2t0(b, a)) : h2t0(a, b); }
  static VPR_ALWAYS_INLINE V half(V x) { return _mm_srai_epi16(x, 1); }                // x>>1
  static VPR_ALWAYS_INLINE V half_up(V x) { return _mm_sub_epi16(x, _mm_srai_epi16(x, 1)); }  // (x+1)>>1
  static VPR_ALWAYS_INLINE V r3p4s3(V x) { return _mm_mulhrs_epi16(x, _mm_set1_epi16(12288)); }
  static VPR_ALWAYS_INLINE V r3p3s2(V x) { return _mm_sub_epi16(x, _mm_srai_epi16(x, 2)); }
  static VPR_ALWAYS_INLINE V r3p3s3(V x) { return _mm_srai_epi16(r3p3s2(x), 1); }
};

struct Ops32 {
  using V = __m128i;
  static VPR_ALWAYS_INLINE V add(V a, V b) { return _mm_add_epi32(a, b); }
  static VPR_ALWAYS_INLINE V sub(V a, V b) { return _mm_sub_epi32(a, b); }
  static VPR_ALWAYS_INLINE V neg(V a) { return _mm_sub_epi32(_mm_setzero_si128(), a); }
  static VPR_ALWAYS_INLINE V h2t(V a, V b, int r) {
    return _mm_srai_epi32(_mm_add_epi32(_mm_sub_epi32(a, b), _mm_set1_epi32(r)), 1);
  }
  static VPR_ALWAYS_INLINE V half(V x) { return _mm_srai_epi32(x, 1); }
  static VPR_ALWAYS_INLINE V half_up(V x) { return _mm_srai_epi32(_mm_add_epi32(x, _mm_set1_epi32(1)), 1); }
  static VPR_ALWAYS_INLINE V times3(V x) { return _mm_add_epi32(_mm_add_epi32(x, x), x); }
  static VPR_ALWAYS_INLINE V r3p4s3(V x) { return _mm_srai_epi32(_mm_add_epi32(times3(x), _mm_set1_epi32(4)), 3); }
  static VPR_ALWAYS_INLINE V r3p3s2(V x) { return _mm_srai_epi32(_mm_add_epi32(times3(x), _mm_set1_epi32(3)), 2); }
  static VPR_ALWAYS_INLINE V r3p3s3(V x) { return _mm_srai_epi32(_mm_add_epi32(times3(x), _mm_set1_epi32(3)), 3); }
};

struct OpsF {
  using V = __m128;
  static VPR_ALWAYS_INLINE V add(V a, V b) { return _mm_add_ps(a, b); }
  static VPR_ALWAYS_INLINE V sub(V a, V b) { return _mm_sub_ps(a, b); }
  static VPR_ALWAYS_INLINE V neg(V a) { return _mm_sub_ps(_mm_setzero_ps(), a); }
  static VPR_ALWAYS_INLINE V h2t(V a, V b, int) { return _mm_mul_ps(_mm_set1_ps(0.5f), _mm_sub_ps(a, b)); }
  static VPR_ALWAYS_INLINE V half(V x) { return _mm_mul_ps(_mm_set1_ps(0.5f), x); }
  static VPR_ALWAYS_INLINE V half_up(V x) { return _mm_mul_ps(_mm_set1_ps(0.5f), x); }
  static VPR_ALWAYS_INLINE V r3p4s3(V x) { return _mm_mul_ps(_mm_set1_ps(0.375f), x); }
  static VPR_ALWAYS_INLINE V r3p3s2(V x) { return _mm_mul_ps(_mm_set1_ps(0.75f), x); }
  static VPR_ALWAYS_INLINE V r3p3s3(V x) { return _mm_mul_ps(_mm_set1_ps(0.375f), x); }
};

// ---------------------------------------------------------------- lifting
template <class O>
struct Lift {
  using V = typename O::V;
  static VPR_ALWAYS_INLINE void h2(V& A, V& B, V& C, V& D, int r) {
    A = O::add(A, D);
    B = O::sub(B, C);
    const V t = O::h2t(A, B, r);
    const V C1 = O::sub(t, D);
    const V D1 = O::sub(t, C);
    A = O::sub(A, D1);
    B = O::add(B, C1);
    C = C1;
    D = D1;
  }
  static VPR_ALWAYS_INLINE void odd(V& A, V& B, V& C, V& D) {
    B = O::sub(B, C);
    A = O::add(A, D);
    C = O::add(C, O::half_up(B));
    D = O::sub(O::half_up(A), D);
    B = O::sub(B, O::r3p4s3(A));
    A = O::add(A, O::r3p4s3(B));
    D = O::sub(D, O::r3p4s3(C));
    C = O::add(C, O::r3p4s3(D));
    D = O::add(D, O::half(B));
    C = O::sub(C, O::half_up(A));
    B = O::sub(B, D);
    A = O::add(A, C);
  }
  static VPR_ALWAYS_INLINE void odd_inv(V& A, V& B, V& C, V& D) {
    B = O::add(B, D);
    A = O::sub(A, C);
    D = O::sub(D, O::half(B));
    C = O::add(C, O::half_up(A));
    A = O::sub(A, O::r3p4s3(B));
    B = O::add(B, O::r3p4s3(A));
    C = O::sub(C, O::r3p4s3(D));
    D = O::add(D, O::r3p4s3(C));
    C = O::sub(C, O::half_up(B));
    D = O::sub(O::half_up(A), D);
    B = O::add(B, C);
    A = O::sub(A, D);
  }
  static VPR_ALWAYS_INLINE void odd_odd(V& A, V& B, V& C, V& D) {
    B = O::neg(B);
    C = O::neg(C);
    D = O::add(D, A);
    C = O::sub(C, B);
    const V t1 = O::half(D);
    A = O::sub(A, t1);
    const V t2 = O::half(C);
    B = O::add(B, t2);
    A = O::add(A, O::r3p4s3(B));
    B = O::sub(B, O::r3p3s2(A));
    A = O::add(A, O::r3p3s3(B));
    B = O::sub(B, t2);
    A = O::add(A, t1);
    C = O::add(C, B);
    D = O::sub(D, A);
  }
  static VPR_ALWAYS_INLINE void odd_odd_inv(V& A, V& B, V& C, V& D) {
    D = O::add(D, A);
    C = O::sub(C, B);
    const V t1 = O::half(D);
    A = O::sub(A, t1);
    const V t2 = O::half(C);
    B = O::add(B, t2);
    A = O::sub(A, O::r3p3s3(B));
    B = O::add(B, O::r3p3s2(A));
    A = O::sub(A, O::r3p4s3(B));
    B = O::sub(B, t2);
    A = O::add(A, t1);
    C = O::add(C, B);
    D = O::sub(D, A);
    B = O::neg(B);
    C = O::neg(C);
  }
  static VPR_ALWAYS_INLINE void fwd(V* x) {
    h2(x[0], x[3], x[12], x[15], 0);
    h2(x[1], x[2], x[13], x[14], 0);
    h2(x[4], x[7], x[8], x[11], 0);
    h2(x[5], x[6], x[9], x[10], 0);
    h2(x[0], x[1], x[4], x[5], 1);
    odd(x[2], x[3], x[6], x[7]);
    odd(x[8], x[12], x[9], x[13]);
    odd_odd(x[10], x[11], x[14], x[15]);
  }
  static VPR_ALWAYS_INLINE void inv(V* x) {
    odd_inv(x[2], x[3], x[6], x[7]);
    odd_inv(x[8], x[12], x[9], x[13]);
    odd_odd_inv(x[10], x[11], x[14], x[15]);
    h2(x[0], x[1], x[4], x[5], 1);
    h2(x[0], x[3], x[12], x[15], 0);
    h2(x[1], x[2], x[13], x[14], 0);
    h2(x[4], x[7], x[8], x[11], 0);
    h2(x[5], x[6], x[9], x[10], 0);
  }
};

template <class O, bool kFwd>
VPR_ALWAYS_INLINE void transform(typename O::V* x) {
  if constexpr (kFwd)
    Lift<O>::fwd(x);
  else
    Lift<O>::inv(x);
}

// Two groups side by side: every operation is issued for
// both, so the lifting's dependency chains of one group hide the latency
// of the other's.
template <class O>
struct OpsPair {
  struct V {
    typename O::V a, b;
  };
  static VPR_ALWAYS_INLINE V add(V x, V y) { return {O::add(x.a, y.a), O::add(x.b, y.b)}; }
  static VPR_ALWAYS_INLINE V sub(V x, V y) { return {O::sub(x.a, y.a), O::sub(x.b, y.b)}; }
  static VPR_ALWAYS_INLINE V neg(V x) { return {O::neg(x.a), O::neg(x.b)}; }
  static VPR_ALWAYS_INLINE V h2t(V x, V y, int r) { return {O::h2t(x.a, y.a, r), O::h2t(x.b, y.b, r)}; }
  static VPR_ALWAYS_INLINE V half(V x) { return {O::half(x.a), O::half(x.b)}; }
  static VPR_ALWAYS_INLINE V half_up(V x) { return {O::half_up(x.a), O::half_up(x.b)}; }
  static VPR_ALWAYS_INLINE V r3p4s3(V x) { return {O::r3p4s3(x.a), O::r3p4s3(x.b)}; }
  static VPR_ALWAYS_INLINE V r3p3s2(V x) { return {O::r3p3s2(x.a), O::r3p3s2(x.b)}; }
  static VPR_ALWAYS_INLINE V r3p3s3(V x) { return {O::r3p3s3(x.a), O::r3p3s3(x.b)}; }
};

// ---------------------------------------------------------------- 16s
// A slot is a pair of horizontally adjacent blocks (8 elements per row),
// or a single block at the right edge (4 elements).
struct Slot16 {
  uint8_t* p;  // row 0 of the slot
  int full;    // 1: two blocks, 0: one block
};

VPR_ALWAYS_INLINE void transpose16_in(const __m128i* P, __m128i* x) {
  const __m128i t0 = _mm_unpacklo_epi16(P[0], P[1]);
  const __m128i t1 = _mm_unpackhi_epi16(P[0], P[1]);
  const __m128i t2 = _mm_unpacklo_epi16(P[2], P[3]);
  const __m128i t3 = _mm_unpackhi_epi16(P[2], P[3]);
  const __m128i u0 = _mm_unpacklo_epi32(t0, t2);
  const __m128i u1 = _mm_unpackhi_epi32(t0, t2);
  const __m128i u2 = _mm_unpacklo_epi32(t1, t3);
  const __m128i u3 = _mm_unpackhi_epi32(t1, t3);
  x[0] = _mm_unpacklo_epi64(u0, u2);
  x[1] = _mm_unpackhi_epi64(u0, u2);
  x[2] = _mm_unpacklo_epi64(u1, u3);
  x[3] = _mm_unpackhi_epi64(u1, u3);
}

VPR_ALWAYS_INLINE void transpose16_out(const __m128i* x, __m128i* P) {
  const __m128i s0 = _mm_unpacklo_epi16(x[0], x[1]);
  const __m128i s1 = _mm_unpackhi_epi16(x[0], x[1]);
  const __m128i s2 = _mm_unpacklo_epi16(x[2], x[3]);
  const __m128i s3 = _mm_unpackhi_epi16(x[2], x[3]);
  const __m128i w0 = _mm_unpacklo_epi32(s0, s2);
  const __m128i w1 = _mm_unpackhi_epi32(s0, s2);
  const __m128i w2 = _mm_unpacklo_epi32(s1, s3);
  const __m128i w3 = _mm_unpackhi_epi32(s1, s3);
  P[0] = _mm_unpacklo_epi64(w0, w2);
  P[1] = _mm_unpackhi_epi64(w0, w2);
  P[2] = _mm_unpacklo_epi64(w1, w3);
  P[3] = _mm_unpackhi_epi64(w1, w3);
}

// kFull > 0: exactly kFull slots, all full pairs (branch-free); kFull = 0:
// n slots of either kind.
template <bool kFwd, int kFull>
VPR_ALWAYS_INLINE void group16(const Slot16* s, int n, std::ptrdiff_t step) {
  if constexpr (kFull > 0) n = kFull;
  __m128i x[16];
  for (int y = 0; y < 4; ++y) {
    __m128i P[4];
    for (int k = 0; k < 4; ++k) {
      if (kFull > 0 && k < kFull) {
        P[k] = simd::load16(s[k].p + y * step);
      } else if (kFull == 0 && k < n) {
        const uint8_t* r = s[k].p + y * step;
        P[k] = s[k].full ? simd::load16(r) : simd::load8(r);
      } else {
        P[k] = _mm_setzero_si128();
      }
    }
    transpose16_in(P, x + 4 * y);
  }
  transform<Ops16, kFwd>(x);
  for (int y = 0; y < 4; ++y) {
    __m128i P[4];
    transpose16_out(x + 4 * y, P);
    for (int k = 0; k < n; ++k) {
      uint8_t* r = s[k].p + y * step;
      if (kFull > 0 || s[k].full)
        simd::store16(r, P[k]);
      else
        simd::store8(r, P[k]);
    }
  }
}

// Sixteen blocks: eight full slots, two groups side by side.
template <bool kFwd>
VPR_ALWAYS_INLINE void group16x2(const Slot16* s, std::ptrdiff_t step) {
  using P = OpsPair<Ops16>;
  P::V x[16];
  for (int y = 0; y < 4; ++y) {
    __m128i a[4], b[4], xa[4], xb[4];
    for (int k = 0; k < 4; ++k) a[k] = simd::load16(s[k].p + y * step), b[k] = simd::load16(s[k + 4].p + y * step);
    transpose16_in(a, xa);
    transpose16_in(b, xb);
    for (int k = 0; k < 4; ++k) x[4 * y + k] = {xa[k], xb[k]};
  }
  transform<P, kFwd>(x);
  for (int y = 0; y < 4; ++y) {
    const __m128i xa[4] = {x[4 * y].a, x[4 * y + 1].a, x[4 * y + 2].a, x[4 * y + 3].a};
    const __m128i xb[4] = {x[4 * y].b, x[4 * y + 1].b, x[4 * y + 2].b, x[4 * y + 3].b};
    __m128i a[4], b[4];
    transpose16_out(xa, a);
    transpose16_out(xb, b);
    for (int k = 0; k < 4; ++k) simd::store16(s[k].p + y * step, a[k]), simd::store16(s[k + 4].p + y * step, b[k]);
  }
}

template <bool kFwd>
__attribute__((noinline)) void group16_any(const Slot16* s, int n, std::ptrdiff_t step) {
  group16<kFwd, 0>(s, n, step);
}

// Four blocks (two full slots): one vector holds one position of the four
// blocks in each half, so two groups of a stage share a vector.  Layouts:
//   rows:    [a|b] [c|d] [e|f] [g|h] [i|j] [k|l] [m|n] [o|p]
//   stage 1: H2([a|b],[d|c],[m|n],[p|o]) and H2([e|f],[h|g],[i|j],[l|k])
//   stage 2: Odd([c|i],[d|m],[g|j],[h|n]); H2(a,b,e,f;1) and
//            OddOdd(k,l,o,p) in the low halves.
VPR_ALWAYS_INLINE __m128i swap_halves(__m128i v) { return _mm_shuffle_epi32(v, 0x4e); }
VPR_ALWAYS_INLINE __m128i lo_hi(__m128i lo_of, __m128i hi_of) { return _mm_blend_epi16(lo_of, hi_of, 0xf0); }
VPR_ALWAYS_INLINE __m128i hi_lo(__m128i hi_of, __m128i lo_of) {  // [hi_of.high | lo_of.low]
  return _mm_castpd_si128(_mm_shuffle_pd(_mm_castsi128_pd(hi_of), _mm_castsi128_pd(lo_of), 1));
}

struct Quad {
  // stage-1 layout
  __m128i ab, dc, mn, po, ef, hg, ij, lk;
};

VPR_ALWAYS_INLINE void quad_stage1(Quad& q) {
  using L = Lift<Ops16>;
  L::h2(q.ab, q.dc, q.mn, q.po, 0);
  L::h2(q.ef, q.hg, q.ij, q.lk, 0);
}

template <bool kFwd>
VPR_ALWAYS_INLINE void quad_stage2(Quad& q) {
  using L = Lift<Ops16>;
  __m128i oa = hi_lo(q.dc, q.ij);                   // [c|i]
  __m128i ob = _mm_unpacklo_epi64(q.dc, q.mn);      // [d|m]
  __m128i oc = _mm_unpackhi_epi64(q.hg, q.ij);      // [g|j]
  __m128i od = lo_hi(q.hg, q.mn);                   // [h|n]
  __m128i ha = q.ab, hb = swap_halves(q.ab), hc = q.ef, hd = swap_halves(q.ef);  // a b e f (low)
  __m128i ka = swap_halves(q.lk), kb = q.lk, kc = swap_halves(q.po), kd = q.po;  // k l o p (low)
  if constexpr (kFwd) {
    L::h2(ha, hb, hc, hd, 1);
    L::odd(oa, ob, oc, od);
    L::odd_odd(ka, kb, kc, kd);
  } else {
    L::odd_inv(oa, ob, oc, od);
    L::odd_odd_inv(ka, kb, kc, kd);
    L::h2(ha, hb, hc, hd, 1);
  }
  q.ab = _mm_unpacklo_epi64(ha, hb);
  q.ef = _mm_unpacklo_epi64(hc, hd);
  q.dc = _mm_unpacklo_epi64(ob, oa);
  q.mn = _mm_unpackhi_epi64(ob, od);
  q.hg = _mm_unpacklo_epi64(od, oc);
  q.ij = _mm_unpackhi_epi64(oa, oc);
  q.lk = _mm_unpacklo_epi64(kb, ka);
  q.po = _mm_unpacklo_epi64(kd, kc);
}

template <bool kFwd>
VPR_ALWAYS_INLINE void group16_quad(uint8_t* p0, uint8_t* p1, std::ptrdiff_t step) {
  __m128i r[8];  // [x0|x1], [x2|x3] of rows 0..3 (block order 0 2 1 3 in each half)
  for (int y = 0; y < 4; ++y) {
    const __m128i P0 = simd::load16(p0 + y * step), P1 = simd::load16(p1 + y * step);
    const __m128i t0 = _mm_unpacklo_epi16(P0, P1), t1 = _mm_unpackhi_epi16(P0, P1);
    r[2 * y] = _mm_unpacklo_epi32(t0, t1);
    r[2 * y + 1] = _mm_unpackhi_epi32(t0, t1);
  }
  Quad q{r[0], swap_halves(r[1]), r[6], swap_halves(r[7]), r[2], swap_halves(r[3]), r[4], swap_halves(r[5])};
  if constexpr (kFwd) {
    quad_stage1(q);
    quad_stage2<true>(q);
  } else {
    quad_stage2<false>(q);
    quad_stage1(q);
  }
  r[0] = q.ab, r[1] = swap_halves(q.dc), r[2] = q.ef, r[3] = swap_halves(q.hg);
  r[4] = q.ij, r[5] = swap_halves(q.lk), r[6] = q.mn, r[7] = swap_halves(q.po);
  const __m128i deint = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
  for (int y = 0; y < 4; ++y) {
    const __m128 u0 = _mm_castsi128_ps(r[2 * y]), u1 = _mm_castsi128_ps(r[2 * y + 1]);
    const __m128i t0 = _mm_shuffle_epi8(_mm_castps_si128(_mm_shuffle_ps(u0, u1, _MM_SHUFFLE(2, 0, 2, 0))), deint);
    const __m128i t1 = _mm_shuffle_epi8(_mm_castps_si128(_mm_shuffle_ps(u0, u1, _MM_SHUFFLE(3, 1, 3, 1))), deint);
    simd::store16(p0 + y * step, _mm_unpacklo_epi64(t0, t1));
    simd::store16(p1 + y * step, _mm_unpackhi_epi64(t0, t1));
  }
}

// Up to four slots: the branch-free form when all are full pairs.
template <bool kFwd>
VPR_ALWAYS_INLINE void group16_upto4(const Slot16* s, int n, std::ptrdiff_t step) {
  bool full = true;
  for (int k = 0; k < n; ++k) full = full && s[k].full;
  if (full && n == 4)
    group16<kFwd, 4>(s, 4, step);
  else if (full && n == 2)
    group16_quad<kFwd>(s[0].p, s[1].p, step);
  else
    group16_any<kFwd>(s, n, step);
}

template <bool kFwd>
void region16(int16_t* p, std::ptrdiff_t step, int width, int height) {
  auto* base = reinterpret_cast<uint8_t*>(p);
  Slot16 s[8];
  int n = 0;
  bool all_full = true;
  for (int by = 0; by < height; by += 4) {
    uint8_t* row = base + by * step;
    for (int bx = 0; bx < width; bx += 8) {
      s[n].p = row + static_cast<std::ptrdiff_t>(bx) * 2;
      s[n].full = bx + 8 <= width;
      all_full = all_full && s[n].full;
      if (++n == 8) {
        if (all_full) {
          group16x2<kFwd>(s, step);
        } else {
          group16_upto4<kFwd>(s, 4, step);
          group16_upto4<kFwd>(s + 4, 4, step);
        }
        n = 0;
        all_full = true;
      }
    }
  }
  if (n > 4) {
    group16_upto4<kFwd>(s, 4, step);
    group16_upto4<kFwd>(s + 4, n - 4, step);
  } else if (n) {
    group16_upto4<kFwd>(s, n, step);
  }
}

// ---------------------------------------------------------------- 32s / 32f
// A slot is one block (4 elements per row); a group takes four.
template <class O>
struct Mem32;
template <>
struct Mem32<Ops32> {
  static VPR_ALWAYS_INLINE __m128i load(const uint8_t* p) { return simd::load16(p); }
  static VPR_ALWAYS_INLINE void store(uint8_t* p, __m128i v) { simd::store16(p, v); }
  static VPR_ALWAYS_INLINE __m128i zero() { return _mm_setzero_si128(); }
  static VPR_ALWAYS_INLINE void transpose(__m128i& a, __m128i& b, __m128i& c, __m128i& d) {
    const __m128i t0 = _mm_unpacklo_epi32(a, b), t1 = _mm_unpackhi_epi32(a, b);
    const __m128i t2 = _mm_unpacklo_epi32(c, d), t3 = _mm_unpackhi_epi32(c, d);
    a = _mm_unpacklo_epi64(t0, t2);
    b = _mm_unpackhi_epi64(t0, t2);
    c = _mm_unpacklo_epi64(t1, t3);
    d = _mm_unpackhi_epi64(t1, t3);
  }
};
template <>
struct Mem32<OpsF> {
  static VPR_ALWAYS_INLINE __m128 load(const uint8_t* p) { return _mm_loadu_ps(reinterpret_cast<const float*>(p)); }
  static VPR_ALWAYS_INLINE void store(uint8_t* p, __m128 v) { _mm_storeu_ps(reinterpret_cast<float*>(p), v); }
  static VPR_ALWAYS_INLINE __m128 zero() { return _mm_setzero_ps(); }
  static VPR_ALWAYS_INLINE void transpose(__m128& a, __m128& b, __m128& c, __m128& d) { _MM_TRANSPOSE4_PS(a, b, c, d); }
};

template <class O, bool kFwd>
VPR_ALWAYS_INLINE void group32(uint8_t* const* s, int n, std::ptrdiff_t step) {
  using M = Mem32<O>;
  typename O::V x[16];
  for (int y = 0; y < 4; ++y) {
    typename O::V q[4];
    for (int k = 0; k < 4; ++k) q[k] = k < n ? M::load(s[k] + y * step) : M::zero();
    M::transpose(q[0], q[1], q[2], q[3]);
    for (int k = 0; k < 4; ++k) x[4 * y + k] = q[k];
  }
  transform<O, kFwd>(x);
  for (int y = 0; y < 4; ++y) {
    typename O::V q[4] = {x[4 * y], x[4 * y + 1], x[4 * y + 2], x[4 * y + 3]};
    M::transpose(q[0], q[1], q[2], q[3]);
    for (int k = 0; k < n; ++k) M::store(s[k] + y * step, q[k]);
  }
}

template <class O, bool kFwd>
VPR_ALWAYS_INLINE void group32x2(uint8_t* const* s, std::ptrdiff_t step) {
  using M = Mem32<O>;
  using P = OpsPair<O>;
  typename P::V x[16];
  for (int y = 0; y < 4; ++y) {
    typename O::V q[4], r[4];
    for (int k = 0; k < 4; ++k) q[k] = M::load(s[k] + y * step), r[k] = M::load(s[k + 4] + y * step);
    M::transpose(q[0], q[1], q[2], q[3]);
    M::transpose(r[0], r[1], r[2], r[3]);
    for (int k = 0; k < 4; ++k) x[4 * y + k] = {q[k], r[k]};
  }
  transform<P, kFwd>(x);
  for (int y = 0; y < 4; ++y) {
    typename O::V q[4] = {x[4 * y].a, x[4 * y + 1].a, x[4 * y + 2].a, x[4 * y + 3].a};
    typename O::V r[4] = {x[4 * y].b, x[4 * y + 1].b, x[4 * y + 2].b, x[4 * y + 3].b};
    M::transpose(q[0], q[1], q[2], q[3]);
    M::transpose(r[0], r[1], r[2], r[3]);
    for (int k = 0; k < 4; ++k) M::store(s[k] + y * step, q[k]), M::store(s[k + 4] + y * step, r[k]);
  }
}

template <class O, bool kFwd>
__attribute__((noinline)) void group32_any(uint8_t* const* s, int n, std::ptrdiff_t step) {
  group32<O, kFwd>(s, n, step);
}

template <class O, bool kFwd>
void region32(void* p, std::ptrdiff_t step, int width, int height) {
  auto* base = static_cast<uint8_t*>(p);
  uint8_t* s[8];
  int n = 0;
  for (int by = 0; by < height; by += 4) {
    uint8_t* row = base + by * step;
    for (int bx = 0; bx < width; bx += 4) {
      s[n] = row + static_cast<std::ptrdiff_t>(bx) * 4;
      if (++n == 8) {
        group32x2<O, kFwd>(s, step);
        n = 0;
      }
    }
  }
  if (n >= 4) {
    group32<O, kFwd>(s, 4, step);
    n -= 4;
    for (int k = 0; k < n; ++k) s[k] = s[k + 4];
  }
  if (n) group32_any<O, kFwd>(s, n, step);
}

}  // namespace

void pct_fwd_16s(int16_t* p, std::ptrdiff_t step, int w, int h) { region16<true>(p, step, w, h); }
void pct_inv_16s(int16_t* p, std::ptrdiff_t step, int w, int h) { region16<false>(p, step, w, h); }
void pct_fwd_32s(int32_t* p, std::ptrdiff_t step, int w, int h) { region32<Ops32, true>(p, step, w, h); }
void pct_inv_32s(int32_t* p, std::ptrdiff_t step, int w, int h) { region32<Ops32, false>(p, step, w, h); }
void pct_fwd_32f(float* p, std::ptrdiff_t step, int w, int h) { region32<OpsF, true>(p, step, w, h); }
void pct_inv_32f(float* p, std::ptrdiff_t step, int w, int h) { region32<OpsF, false>(p, step, w, h); }

}  // namespace vpr::jxr::sse
