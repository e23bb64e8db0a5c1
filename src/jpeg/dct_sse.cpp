// SSE kernels of the fused 8x8 DCT.  Fixed point: the block lives in eight
// registers, one row each; row passes work inside a register (pair sums with
// pmaddwd), column passes across the eight registers (high-half products with
// pmulhw), so no transposes are needed.  Single precision (12-bit forms): two
// registers per row, butterflies across registers, an 8x8 transpose between
// the passes.  Every kernel gives the bits of its twin in dct.cpp.
#include "core/simd.h"
#include "jpeg/dct.h"

namespace vpr::jpeg::sse {

using namespace vpr::simd;

namespace {

[[gnu::always_inline]] inline __m128i adds(__m128i a, __m128i b) { return _mm_adds_epi16(a, b); }
[[gnu::always_inline]] inline __m128i subs(__m128i a, __m128i b) { return _mm_subs_epi16(a, b); }
[[gnu::always_inline]] inline __m128i mulhi(__m128i a, __m128i c) { return _mm_mulhi_epi16(a, c); }
[[gnu::always_inline]] inline __m128i load_tab(const int16_t* t) { return _mm_load_si128(reinterpret_cast<const __m128i*>(t)); }

// Row tables by row, as address constants (no pointer loads in the kernels).
constexpr const int16_t* kTabI[8] = {tab_i_04, tab_i_17, tab_i_26, tab_i_35, tab_i_04, tab_i_35, tab_i_26, tab_i_17};
constexpr const int16_t* kTabF[8] = {tab_f_04, tab_f_17, tab_f_26, tab_f_35, tab_f_04, tab_f_35, tab_f_26, tab_f_17};

// The table address for one row, hidden from the optimiser: rows sharing a
// table would otherwise share its loads, and the compiler keeps such values
// in registers it does not have (copies on the stack); memory operands of
// pmaddwd are free.
[[gnu::always_inline]] inline const int16_t* row_table(const int16_t* t) {
  asm("" : "+r"(t));
  return t;
}

// ------------------------------------------------------------ inverse

// Row pass of one row: (x0..x7) -> 8 values, 16-bit saturated, with the
// rounder vector rnd.  kMixed leaves the upper half reversed (lanes y0 y1 y2
// y3 y7 y6 y5 y4): the column pass works lane by lane, so the order can be
// put right once at the very end, on bytes.
template <bool kMixed>
[[gnu::always_inline]] inline __m128i idct_row_v(__m128i x, const int16_t* t, __m128i rnd) {
  const __m128i xe = _mm_shuffle_epi8(x, _mm_setr_epi8(0, 1, 4, 5, 0, 1, 4, 5, 8, 9, 12, 13, 8, 9, 12, 13));
  const __m128i xo = _mm_shuffle_epi8(x, _mm_setr_epi8(2, 3, 6, 7, 2, 3, 6, 7, 10, 11, 14, 15, 10, 11, 14, 15));
  // xe = x0 x2 x0 x2 x4 x6 x4 x6, xo = x1 x3 x1 x3 x5 x7 x5 x7
  __m128i e = _mm_add_epi32(_mm_madd_epi16(xe, load_tab(t)),
                            _mm_shuffle_epi32(_mm_madd_epi16(xe, load_tab(t + 8)), 0x4E));
  const __m128i o = _mm_add_epi32(_mm_madd_epi16(xo, load_tab(t + 16)),
                                  _mm_shuffle_epi32(_mm_madd_epi16(xo, load_tab(t + 24)), 0x4E));
  e = _mm_add_epi32(e, rnd);
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(e, o), 11);  // y0 y1 y2 y3
  __m128i hi = _mm_srai_epi32(_mm_sub_epi32(e, o), 11);        // y7 y6 y5 y4
  if constexpr (!kMixed) hi = _mm_shuffle_epi32(hi, 0x1B);
  return _mm_packs_epi32(lo, hi);
}

[[gnu::always_inline]] inline __m128i idct_row(__m128i x, const int16_t* t, int32_t rnd) {
  return idct_row_v<false>(x, t, _mm_set1_epi32(rnd));
}

// The halves of the inverse row tables that multiply (x0,x2) and (x1,x3):
// entries 0..3 + 8..11 and 16..19 + 24..27 of each table, by row.
struct HalfTables {
  alignas(16) int16_t v[8][16];
};
constexpr HalfTables make_half_tables() {
  const int16_t* const tabs[8] = {tab_i_04, tab_i_17, tab_i_26, tab_i_35, tab_i_04, tab_i_35, tab_i_26, tab_i_17};
  HalfTables h{};
  for (int r = 0; r < 8; ++r)
    for (int k = 0; k < 4; ++k) {
      h.v[r][k] = tabs[r][k];
      h.v[r][4 + k] = tabs[r][8 + k];
      h.v[r][8 + k] = tabs[r][16 + k];
      h.v[r][12 + k] = tabs[r][24 + k];
    }
  return h;
}
constexpr HalfTables kHalfTabI = make_half_tables();

// Row pass of a row whose coefficients 4..7 are zero: the pair sums of
// (x0,x2) and (x1,x3) alone, against the matching halves of the table (h:
// a row of kHalfTabI).
template <bool kMixed = false>
[[gnu::always_inline]] inline __m128i idct_row_half_v(__m128i x, const int16_t* h, __m128i rnd) {
  const __m128i xe = _mm_shuffle_epi32(_mm_shufflelo_epi16(x, 0x88), 0x00);  // (x0 x2) x4
  const __m128i xo = _mm_shuffle_epi32(_mm_shufflelo_epi16(x, 0xDD), 0x00);  // (x1 x3) x4
  const __m128i e = _mm_add_epi32(_mm_madd_epi16(xe, load_tab(h)), rnd);
  const __m128i o = _mm_madd_epi16(xo, load_tab(h + 8));
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(e, o), 11);
  __m128i hi = _mm_srai_epi32(_mm_sub_epi32(e, o), 11);
  if constexpr (!kMixed) hi = _mm_shuffle_epi32(hi, 0x1B);
  return _mm_packs_epi32(lo, hi);
}


// Column pass over the eight row registers, in place, >> 6 included.
// kUpperZero: rows 4..7 are known to be zero (their terms vanish exactly).
template <bool kUpperZero>
[[gnu::always_inline]] inline void idct_cols(__m128i* x) {
  const __m128i tg1 = _mm_set1_epi16(tg_1_16), tg2 = _mm_set1_epi16(tg_2_16);
  const __m128i tg3 = _mm_set1_epi16(tg_3_16), c4 = _mm_set1_epi16(cos_4_16);
  __m128i u17, v17, u35, v35, u26, v26, u04, v04;
  if constexpr (kUpperZero) {
    u17 = x[1];
    v17 = mulhi(x[1], tg1);
    u35 = x[3];
    v35 = adds(mulhi(x[3], tg3), x[3]);
    u26 = x[2];
    v26 = mulhi(x[2], tg2);
    u04 = x[0];
    v04 = x[0];
  } else {
    u17 = adds(x[1], mulhi(x[7], tg1));
    v17 = subs(mulhi(x[1], tg1), x[7]);
    u35 = adds(x[3], adds(mulhi(x[5], tg3), x[5]));
    v35 = subs(adds(mulhi(x[3], tg3), x[3]), x[5]);
    u26 = adds(x[2], mulhi(x[6], tg2));
    v26 = subs(mulhi(x[2], tg2), x[6]);
    u04 = adds(x[0], x[4]);
    v04 = subs(x[0], x[4]);
  }
  const __m128i b0 = adds(u17, u35), b3 = subs(v17, v35);
  const __m128i u12 = subs(u17, u35), v12 = adds(v17, v35);
  const __m128i sp = adds(u12, v12), sm = subs(u12, v12);
  const __m128i b1 = adds(mulhi(sp, c4), sp);
  const __m128i b2 = adds(mulhi(sm, c4), sm);
  const __m128i a0 = adds(u04, u26), a3 = subs(u04, u26);
  const __m128i a1 = adds(v04, v26), a2 = subs(v04, v26);
  x[0] = _mm_srai_epi16(adds(a0, b0), 6);
  x[7] = _mm_srai_epi16(subs(a0, b0), 6);
  x[1] = _mm_srai_epi16(adds(a1, b1), 6);
  x[6] = _mm_srai_epi16(subs(a1, b1), 6);
  x[2] = _mm_srai_epi16(adds(a2, b2), 6);
  x[5] = _mm_srai_epi16(subs(a2, b2), 6);
  x[3] = _mm_srai_epi16(adds(a3, b3), 6);
  x[4] = _mm_srai_epi16(subs(a3, b3), 6);
}

// Rounder vector of row r >= 1: round_i[r], or 0 for an all-zero row (a
// skipped row).  With its rounder an all-zero row would give rnd >> 11 in
// every lane, which is 0 for rows 3..7 (rounders below 2048): only rows 1 and
// 2 need the test, done here without a branch.
template <int r>
[[gnu::always_inline]] inline __m128i skip_rounder(__m128i x) {
  if constexpr (round_i[r] < 2048) {
    return _mm_set1_epi32(round_i[r]);
  } else {
    __m128i o = _mm_or_si128(x, _mm_shuffle_epi32(x, 0x4E));
    o = _mm_or_si128(o, _mm_shuffle_epi32(o, 0xB1));  // every dword: OR of the row
    const __m128i zero_row = _mm_cmpeq_epi32(o, _mm_setzero_si128());
    return _mm_andnot_si128(zero_row, _mm_set1_epi32(round_i[r]));
  }
}

// Row pass of row r >= 1 with that rounder.
template <int r, bool kMixed>
[[gnu::always_inline]] inline __m128i idct_row_skip(__m128i x) {
  return idct_row_v<kMixed>(x, row_table(kTabI[r]), skip_rounder<r>(x));
}


// Full inverse of eight coefficient rows (already dequantised) into x[0..7]
// (kMixed: lanes in the order y0 y1 y2 y3 y7 y6 y5 y4).
// Rows 4..7 all zero (common in coded images) give zero rows: their rounders
// are below 2048, so the row pass and their column terms are skipped.
// Rows 1..7 all zero as well: the column pass hands row 0 on to every row,
// shifted right by 6.
template <bool kMixed>
[[gnu::always_inline]] inline void idct_8x8(__m128i* x) {
  const __m128i rnd0 = _mm_set1_epi32(round_i[0]);
  const __m128i upper = _mm_or_si128(_mm_or_si128(x[4], x[5]), _mm_or_si128(x[6], x[7]));
  if (_mm_testz_si128(upper, upper)) {
    const __m128i mid = _mm_or_si128(_mm_or_si128(x[1], x[2]), x[3]);
    if (_mm_testz_si128(mid, mid)) {
      const __m128i y = _mm_srai_epi16(idct_row_v<kMixed>(x[0], row_table(kTabI[0]), rnd0), 6);
      for (int r = 0; r < 8; ++r) x[r] = y;
      return;
    }
    x[0] = idct_row_v<kMixed>(x[0], row_table(kTabI[0]), rnd0);
    x[1] = idct_row_skip<1, kMixed>(x[1]);
    x[2] = idct_row_skip<2, kMixed>(x[2]);
    x[3] = idct_row_skip<3, kMixed>(x[3]);
    idct_cols<true>(x);
    return;
  }
  x[0] = idct_row_v<kMixed>(x[0], row_table(kTabI[0]), rnd0);
  x[1] = idct_row_skip<1, kMixed>(x[1]);
  x[2] = idct_row_skip<2, kMixed>(x[2]);
  x[3] = idct_row_skip<3, kMixed>(x[3]);
  x[4] = idct_row_skip<4, kMixed>(x[4]);
  x[5] = idct_row_skip<5, kMixed>(x[5]);
  x[6] = idct_row_skip<6, kMixed>(x[6]);
  x[7] = idct_row_skip<7, kMixed>(x[7]);
  idct_cols<false>(x);
}

// Dequantise (16-bit products) and run the full inverse into x[0..7].
template <bool kMixed>
[[gnu::always_inline]] inline void dequant_idct(const int16_t* src, const uint16_t* inv, __m128i* x) {
  for (int r = 0; r < 8; ++r) x[r] = _mm_mullo_epi16(load16(src + 8 * r), load16(inv + 8 * r));
  idct_8x8<kMixed>(x);
}

// clamp(v + 128, 0, 255) as clamp(v, -128, 127) + 128: packsswb, then the
// sign bit flipped.
// kMixed: the rows are in the lane order of idct_row_v<true>.
template <bool kMixed = false>
[[gnu::always_inline]] inline void store_ls_rows(const __m128i* x, uint8_t* dst, int dst_step) {
  const __m128i k80 = _mm_set1_epi8(static_cast<char>(0x80));
  for (int r = 0; r < 8; r += 2) {
    __m128i p = _mm_xor_si128(_mm_packs_epi16(x[r], x[r + 1]), k80);
    if constexpr (kMixed) p = _mm_shuffle_epi8(p, _mm_setr_epi8(0, 1, 2, 3, 7, 6, 5, 4, 8, 9, 10, 11, 15, 14, 13, 12));
    store8(dst + r * dst_step, p);
    _mm_storeh_pi(reinterpret_cast<__m64*>(dst + (r + 1) * dst_step), _mm_castsi128_ps(p));  // movhps
  }
}

// ------------------------------------------------------------ forward

// Column pass over the eight row registers, which already hold the inputs
// shifted left by 3.
[[gnu::always_inline]] inline void fdct_cols(__m128i* x) {
  const __m128i tg1 = _mm_set1_epi16(tg_1_16), tg2 = _mm_set1_epi16(tg_2_16);
  const __m128i tg3 = _mm_set1_epi16(tg_3_16), oc4 = _mm_set1_epi16(ocos_4_16);
  const __m128i corr = _mm_set1_epi16(one_corr);
  const __m128i* s = x;
  const __m128i t0 = adds(s[0], s[7]), t7 = subs(s[0], s[7]);
  const __m128i t1 = adds(s[1], s[6]), t6 = subs(s[1], s[6]);
  const __m128i t2 = adds(s[2], s[5]), t5 = subs(s[2], s[5]);
  const __m128i t3 = adds(s[3], s[4]), t4 = subs(s[3], s[4]);
  const __m128i tp03 = adds(t0, t3), tm03 = subs(t0, t3);
  const __m128i tp12 = adds(t1, t2), tm12 = subs(t1, t2);
  x[0] = adds(tp03, tp12);
  x[4] = subs(tp03, tp12);
  x[2] = _mm_or_si128(adds(tm03, mulhi(tm12, tg2)), corr);
  x[6] = _mm_or_si128(subs(mulhi(tm03, tg2), tm12), corr);
  const __m128i tp65 = _mm_or_si128(mulhi(_mm_slli_epi16(adds(t6, t5), 1), oc4), corr);
  const __m128i tm65 = _mm_or_si128(mulhi(_mm_slli_epi16(subs(t6, t5), 1), oc4), corr);
  const __m128i tp765 = adds(t7, tp65), tm765 = subs(t7, tp65);
  const __m128i tp465 = adds(t4, tm65), tm465 = subs(t4, tm65);
  x[1] = _mm_or_si128(adds(tp765, mulhi(tp465, tg1)), corr);
  x[7] = _mm_or_si128(subs(mulhi(tp765, tg1), tp465), corr);
  x[3] = subs(tm765, adds(mulhi(tm465, tg3), tm465));
  x[5] = _mm_or_si128(adds(adds(mulhi(tm765, tg3), tm765), tm465), corr);
}

// Row pass of one row with table t.
[[gnu::always_inline]] inline __m128i fdct_row(__m128i x, const int16_t* t) {
  const __m128i rev = _mm_shuffle_epi8(x, _mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
  const __m128i s = adds(x, rev), d = subs(x, rev);
  const __m128i p = _mm_unpacklo_epi32(s, d);  // s0 s1 d0 d1 s2 s3 d2 d3
  const __m128i q = _mm_shuffle_epi32(p, 0x4E);  // s2 s3 d2 d3 s0 s1 d0 d1
  const __m128i rnd = _mm_set1_epi32(round_frw_row);
  const __m128i a = _mm_add_epi32(_mm_madd_epi16(p, load_tab(t)), _mm_madd_epi16(q, load_tab(t + 8)));
  const __m128i b = _mm_add_epi32(_mm_madd_epi16(p, load_tab(t + 16)), _mm_madd_epi16(q, load_tab(t + 24)));
  return _mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(a, rnd), 20), _mm_srai_epi32(_mm_add_epi32(b, rnd), 20));
}

// sign(c) * min((|c| * r + 16384) >> 15, 32767), in 16-bit lanes: with
// |c| * r = hi * 65536 + lo, the rounded quotient is 2 * hi + ((lo >> 14) + 1) >> 1.
[[gnu::always_inline]] inline __m128i quant_round(__m128i c, __m128i r) {
  const __m128i a = _mm_abs_epi16(c);
  const __m128i lo = _mm_mullo_epi16(a, r), hi = _mm_mulhi_epu16(a, r);
  const __m128i frac = _mm_srli_epi16(_mm_add_epi16(_mm_srli_epi16(lo, 14), _mm_set1_epi16(1)), 1);
  const __m128i m = _mm_adds_epu16(_mm_adds_epu16(hi, hi), frac);
  return _mm_sign_epi16(_mm_min_epu16(m, _mm_set1_epi16(32767)), c);
}

// The same rounded quotient when r <= 32767: pmulhrsw gives (a * r + 16384) >> 15
// exactly and never exceeds 32767.  |-32768| stays 0x8000 (-32768 as a signed
// factor), so the product comes out negated for that lane alone; the second
// psignw, by that negative |c|, turns it back.
// kNoMin: c is known not to be -32768 (8-bit samples: |c| stays below 2048),
// the fix is not needed.
template <bool kNoMin = false>
[[gnu::always_inline]] inline __m128i quant_round_short(__m128i c, __m128i r) {
  const __m128i a = _mm_abs_epi16(c);
  const __m128i q = _mm_sign_epi16(_mm_mulhrs_epi16(a, r), c);
  if constexpr (kNoMin) return q;
  return _mm_sign_epi16(q, a);
}

// True when every reciprocal of the table is at most 32767 (every table built
// from quantisers 2..255, or with zero entries).
[[gnu::always_inline]] inline bool short_reciprocals(const uint16_t* fwd) {
  __m128i o = _mm_or_si128(load16(fwd), load16(fwd + 8));
  for (int r = 16; r < 64; r += 8) o = _mm_or_si128(o, load16(fwd + r));
  return (_mm_movemask_epi8(o) & 0xAAAA) == 0;
}

// Row pass of the eight rows, quantisation and store.
template <bool kNoMin = false>
[[gnu::always_inline]] inline void fdct_rows_quant_store(const __m128i* x, int16_t* dst, const uint16_t* fwd) {
  if (short_reciprocals(fwd)) {
    for (int r = 0; r < 8; ++r)
      store16(dst + 8 * r, quant_round_short<kNoMin>(fdct_row(x[r], row_table(kTabF[r])), load16(fwd + 8 * r)));
  } else {
    for (int r = 0; r < 8; ++r) store16(dst + 8 * r, quant_round(fdct_row(x[r], row_table(kTabF[r])), load16(fwd + 8 * r)));
  }
}

// Eight rows of 16-bit samples, shifted left by 3.
[[gnu::always_inline]] inline void load_shifted(const int16_t* src, __m128i* x) {
  for (int r = 0; r < 8; ++r) x[r] = _mm_slli_epi16(load16(src + 8 * r), 3);
}

// ------------------------------------------------------------ float helpers

[[gnu::always_inline]] inline __m128 splat(__m128 v, int i) {
  switch (i) {
    case 0: return _mm_shuffle_ps(v, v, 0x00);
    case 1: return _mm_shuffle_ps(v, v, 0x55);
    case 2: return _mm_shuffle_ps(v, v, 0xAA);
    default: return _mm_shuffle_ps(v, v, 0xFF);
  }
}
[[gnu::always_inline]] inline __m128 loadf(const float* p) { return _mm_loadu_ps(p); }
[[gnu::always_inline]] inline __m128i clamp_round(__m128 v, float lo, float hi) {
  return _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(v, _mm_set1_ps(lo)), _mm_set1_ps(hi)));
}

// 8x8 transpose of a block held as a[r] (columns 0..3) and b[r] (columns
// 4..7) into c[r] / d[r] likewise.
[[gnu::always_inline]] inline void transpose8(const __m128* a, const __m128* b, __m128* c, __m128* d) {
  __m128 t[4][4];
  const __m128* src[4] = {a, a + 4, b, b + 4};  // quadrants (rows 0-3 | 4-7) x (cols 0-3 | 4-7)
  for (int q = 0; q < 4; ++q) {
    __m128 r0 = src[q][0], r1 = src[q][1], r2 = src[q][2], r3 = src[q][3];
    _MM_TRANSPOSE4_PS(r0, r1, r2, r3);
    t[q][0] = r0;
    t[q][1] = r1;
    t[q][2] = r2;
    t[q][3] = r3;
  }
  // quadrant (R, C) of the source becomes quadrant (C, R)
  for (int i = 0; i < 4; ++i) {
    c[i] = t[0][i];      // rows 0-3 of the result, cols 0-3: source rows 0-3, cols 0-3
    d[i] = t[1][i];      // rows 0-3, cols 4-7: source rows 4-7, cols 0-3
    c[4 + i] = t[2][i];  // rows 4-7, cols 0-3: source rows 0-3, cols 4-7
    d[4 + i] = t[3][i];  // rows 4-7, cols 4-7: source rows 4-7, cols 4-7
  }
}

[[gnu::always_inline]] inline __m128 mulc(float k, __m128 v) { return _mm_mul_ps(_mm_set1_ps(k), v); }
[[gnu::always_inline]] inline __m128 add(__m128 a, __m128 b) { return _mm_add_ps(a, b); }
[[gnu::always_inline]] inline __m128 sub(__m128 a, __m128 b) { return _mm_sub_ps(a, b); }

// The 8-point transforms of dct.cpp across eight registers, same order of operations.
[[gnu::always_inline]] inline void fdct8_ps(__m128* x) {
  const __m128 s0 = add(x[0], x[7]), s1 = add(x[1], x[6]), s2 = add(x[2], x[5]), s3 = add(x[3], x[4]);
  const __m128 d0 = sub(x[0], x[7]), d1 = sub(x[1], x[6]), d2 = sub(x[2], x[5]), d3 = sub(x[3], x[4]);
  const __m128 e0 = add(s0, s3), e1 = add(s1, s2), e2 = sub(s0, s3), e3 = sub(s1, s2);
  x[0] = add(e0, e1);
  x[4] = mulc(kC4, sub(e0, e1));
  x[2] = add(mulc(kC2, e2), mulc(kC6, e3));
  x[6] = sub(mulc(kC6, e2), mulc(kC2, e3));
  x[1] = add(add(add(mulc(kC1, d0), mulc(kC3, d1)), mulc(kC5, d2)), mulc(kC7, d3));
  x[3] = sub(sub(sub(mulc(kC3, d0), mulc(kC7, d1)), mulc(kC1, d2)), mulc(kC5, d3));
  x[5] = add(add(sub(mulc(kC5, d0), mulc(kC1, d1)), mulc(kC7, d2)), mulc(kC3, d3));
  x[7] = sub(add(sub(mulc(kC7, d0), mulc(kC5, d1)), mulc(kC3, d2)), mulc(kC1, d3));
}

[[gnu::always_inline]] inline void idct8_ps(__m128* X) {
  const __m128 p0 = add(X[0], mulc(kC4, X[4])), p1 = sub(X[0], mulc(kC4, X[4]));
  const __m128 q0 = add(mulc(kC2, X[2]), mulc(kC6, X[6])), q1 = sub(mulc(kC6, X[2]), mulc(kC2, X[6]));
  const __m128 E0 = add(p0, q0), E3 = sub(p0, q0), E1 = add(p1, q1), E2 = sub(p1, q1);
  const __m128 O0 = add(add(add(mulc(kC1, X[1]), mulc(kC3, X[3])), mulc(kC5, X[5])), mulc(kC7, X[7]));
  const __m128 O1 = sub(sub(sub(mulc(kC3, X[1]), mulc(kC7, X[3])), mulc(kC1, X[5])), mulc(kC5, X[7]));
  const __m128 O2 = add(add(sub(mulc(kC5, X[1]), mulc(kC1, X[3])), mulc(kC7, X[5])), mulc(kC3, X[7]));
  const __m128 O3 = sub(add(sub(mulc(kC7, X[1]), mulc(kC5, X[3])), mulc(kC3, X[5])), mulc(kC1, X[7]));
  X[0] = add(E0, O0);
  X[7] = sub(E0, O0);
  X[1] = add(E1, O1);
  X[6] = sub(E1, O1);
  X[2] = add(E2, O2);
  X[5] = sub(E2, O2);
  X[3] = add(E3, O3);
  X[4] = sub(E3, O3);
}

}  // namespace

// ------------------------------------------------------------ kernels

void dct_8x8_fwd_16s(const int16_t* src, int16_t* dst) {
  __m128i x[8];
  load_shifted(src, x);
  fdct_cols(x);
  for (int r = 0; r < 8; ++r) store16(dst + 8 * r, fdct_row(x[r], row_table(kTabF[r])));
}

void quant_coefs_8x8(const int16_t* coef, int16_t* dst, const uint16_t* fwd) {
  if (short_reciprocals(fwd)) {
    for (int r = 0; r < 64; r += 8) store16(dst + r, quant_round_short(load16(coef + r), load16(fwd + r)));
  } else {
    for (int r = 0; r < 64; r += 8) store16(dst + r, quant_round(load16(coef + r), load16(fwd + r)));
  }
}

void dct_8x8_inv_16s(const int16_t* src, int16_t* dst) {
  __m128i x[8];
  for (int r = 0; r < 8; ++r) x[r] = load16(src + 8 * r);
  idct_8x8<false>(x);
  for (int r = 0; r < 8; ++r) store16(dst + 8 * r, x[r]);
}

void dct_quant_fwd_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* fwd) {
  __m128i x[8];
  load_shifted(src, x);
  fdct_cols(x);
  fdct_rows_quant_store(x, dst, fwd);
}

void dct_quant_fwd_8x8_ls_8u16s(const uint8_t* src, int src_step, int16_t* dst, const uint16_t* fwd) {
  // (v - 128) << 3 in one pmaddubsw: byte pairs (v, 128) times (8, -8).
  const __m128i k128 = _mm_set1_epi8(static_cast<char>(128)), k8 = _mm_set1_epi16(static_cast<int16_t>(0xF808));
  __m128i x[8];
  for (int r = 0; r < 8; ++r) x[r] = _mm_maddubs_epi16(_mm_unpacklo_epi8(load8(src + r * src_step), k128), k8);
  fdct_cols(x);
  fdct_rows_quant_store<true>(x, dst, fwd);
}

void dct_quant_fwd_8x8_ls_16u16s(const uint16_t* src, int src_step, int16_t* dst, const float* fwd) {
  const __m128i k2048 = _mm_set1_epi32(2048);
  __m128 a[8], b[8], c[8], d[8];  // a/b: lanes 0..3 / 4..7 of the rows
  for (int y = 0; y < 8; ++y) {
    const __m128i v = load16(row_ptr(src, src_step, y));
    a[y] = _mm_cvtepi32_ps(_mm_sub_epi32(_mm_cvtepu16_epi32(v), k2048));
    b[y] = _mm_cvtepi32_ps(_mm_sub_epi32(_mm_cvtepu16_epi32(_mm_srli_si128(v, 8)), k2048));
  }
  fdct8_ps(a);  // columns
  fdct8_ps(b);
  transpose8(a, b, c, d);
  fdct8_ps(c);  // rows (transposed)
  fdct8_ps(d);
  transpose8(c, d, a, b);
  for (int v = 0; v < 8; ++v) {
    const __m128 lo = _mm_mul_ps(_mm_mul_ps(a[v], loadf(dct_norm_8[v])), loadf(fwd + 8 * v));
    const __m128 hi = _mm_mul_ps(_mm_mul_ps(b[v], loadf(dct_norm_8[v] + 4)), loadf(fwd + 8 * v + 4));
    store16(dst + 8 * v,
            _mm_packs_epi32(clamp_round(lo, -32768.0f, 32767.0f), clamp_round(hi, -32768.0f, 32767.0f)));
  }
}

void dct_quant_inv_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* inv) {
  __m128i x[8];
  dequant_idct<false>(src, inv, x);
  for (int r = 0; r < 8; ++r) store16(dst + 8 * r, x[r]);
}

void dct_quant_inv_8x8_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  __m128i x[8];
  dequant_idct<true>(src, inv, x);
  store_ls_rows<true>(x, dst, dst_step);
}

void dct_quant_inv_8x8_ls_16s16u(const int16_t* src, uint16_t* dst, int dst_step, const uint16_t* inv) {
  __m128 a[8], b[8], c[8], d[8];
  for (int v = 0; v < 8; ++v) {
    const __m128i k = load16(src + 8 * v), q = load16(inv + 8 * v);
    a[v] = _mm_mul_ps(_mm_cvtepi32_ps(_mm_mullo_epi32(_mm_cvtepi16_epi32(k), _mm_cvtepu16_epi32(q))),
                      loadf(dct_norm_8[v]));
    b[v] = _mm_mul_ps(_mm_cvtepi32_ps(_mm_mullo_epi32(_mm_cvtepi16_epi32(_mm_srli_si128(k, 8)),
                                                      _mm_cvtepu16_epi32(_mm_srli_si128(q, 8)))),
                      loadf(dct_norm_8[v] + 4));
  }
  transpose8(a, b, c, d);
  idct8_ps(c);  // rows (transposed)
  idct8_ps(d);
  transpose8(c, d, a, b);
  idct8_ps(a);  // columns
  idct8_ps(b);
  const __m128 off = _mm_set1_ps(2048.0f);
  for (int y = 0; y < 8; ++y)
    store16(row_ptr(dst, dst_step, y), _mm_packus_epi32(clamp_round(_mm_add_ps(a[y], off), 0.0f, 4095.0f),
                                                        clamp_round(_mm_add_ps(b[y], off), 0.0f, 4095.0f)));
}

void dct_quant_inv_8x8_ls_1x1_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  // Rows 1..7 are skipped, row 0 gives (16384 * d + rounder) >> 11 in every
  // column, and the column pass passes it on unchanged to every row: >> 6.
  const __m128i d = _mm_mullo_epi16(load4(src), load4(inv));
  const __m128i r0 = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(d, _mm_setr_epi16(16384, 0, 0, 0, 0, 0, 0, 0)),
                                                  _mm_set1_epi32(round_i[0])),
                                    11);
  const __m128i y = _mm_adds_epi16(_mm_srai_epi16(_mm_packs_epi32(r0, r0), 6), _mm_set1_epi16(128));
  const __m128i p = _mm_shuffle_epi8(_mm_packus_epi16(y, y), _mm_setzero_si128());  // byte 0 everywhere
  for (int r = 0; r < 8; ++r) store8(dst + r * dst_step, p);
}

void dct_quant_inv_8x8_ls_2x2_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  const __m128i c0 = _mm_mullo_epi16(load4(src), load4(inv));  // lanes 2..7 zero
  const __m128i c1 = _mm_mullo_epi16(load4(src + 8), load4(inv + 8));
  __m128i x[8];
  x[0] = idct_row_half_v<false>(c0, kHalfTabI.v[0], _mm_set1_epi32(round_i[0]));
  x[1] = idct_row_half_v<false>(c1, kHalfTabI.v[1], skip_rounder<1>(c1));
  x[2] = x[3] = _mm_setzero_si128();  // skipped rows
  idct_cols<true>(x);
  store_ls_rows<false>(x, dst, dst_step);
}

void dct_quant_inv_8x8_ls_4x4_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  __m128i x[8];
  for (int r = 0; r < 4; ++r) x[r] = _mm_mullo_epi16(load8(src + 8 * r), load8(inv + 8 * r));  // lanes 4..7 zero
  x[0] = idct_row_half_v<false>(x[0], kHalfTabI.v[0], _mm_set1_epi32(round_i[0]));
  x[1] = idct_row_half_v<false>(x[1], kHalfTabI.v[1], skip_rounder<1>(x[1]));
  x[2] = idct_row_half_v<false>(x[2], kHalfTabI.v[2], skip_rounder<2>(x[2]));
  x[3] = idct_row_half_v<false>(x[3], kHalfTabI.v[3], skip_rounder<3>(x[3]));
  idct_cols<true>(x);  // rows 4..7 skipped
  store_ls_rows<false>(x, dst, dst_step);
}

void dct_quant_inv_8x8_to2x2_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  // Four sums of four values: the scalar form is already the fast one.
  ref::dct_quant_inv_8x8_to2x2_ls_16s8u(src, dst, dst_step, inv);
}

void dct_quant_inv_8x8_to4x4_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  __m128 tmp[4];
  for (int v = 0; v < 4; ++v) {
    const __m128i c16 = _mm_mullo_epi16(load8(src + 8 * v), load8(inv + 8 * v));
    const __m128 c = _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(c16)), loadf(dct_norm_8[v]));
    // rows: tmp[v][j] = sum_u c[v][u] * cos4[j][u], vectorised over j
    __m128 acc = _mm_mul_ps(splat(c, 0), loadf(dct_cos_4t[0]));
    for (int u = 1; u < 4; ++u) acc = _mm_add_ps(acc, _mm_mul_ps(splat(c, u), loadf(dct_cos_4t[u])));
    tmp[v] = acc;
  }
  for (int i = 0; i < 4; ++i) {
    __m128 acc = _mm_mul_ps(_mm_set1_ps(dct_cos_4[i][0]), tmp[0]);
    for (int v = 1; v < 4; ++v) acc = _mm_add_ps(acc, _mm_mul_ps(_mm_set1_ps(dct_cos_4[i][v]), tmp[v]));
    const __m128i y = clamp_round(_mm_add_ps(acc, _mm_set1_ps(128.0f)), 0.0f, 255.0f);
    const __m128i w = _mm_packs_epi32(y, y);
    store4(dst + i * dst_step, _mm_packus_epi16(w, w));
  }
}

}  // namespace vpr::jpeg::sse
