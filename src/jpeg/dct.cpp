// Fused 8x8 DCT: constant tables, exported entries and the scalar twins of
// the SSE kernels (written straight from the formulas in dct.h).
#include "jpeg/dct.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/simd.h"
#include "vprjp_jpeg_transform.h"

namespace vpr::jpeg {

// Forward row tables; pairs multiply (s0,s1), (d0,d1), (s2,s3), (d2,d3) with
// s = x[k] + x[7-k], d = x[k] - x[7-k]:
//   (s0s1,d0d1) -> Y0,Y1 | (s2s3,d2d3) -> Y2,Y3 | (s2s3,d2d3) -> Y0,Y1 | (s0s1,d0d1) -> Y2,Y3
//   (s0s1,d0d1) -> Y4,Y5 | (s2s3,d2d3) -> Y6,Y7 | (s2s3,d2d3) -> Y4,Y5 | (s0s1,d0d1) -> Y6,Y7
alignas(16) const int16_t tab_f_04[32] = {
    16384, 16384,  22725, 19266,  -8867,  -21407, -22725, -12873, 16384, 16384, 12873, 4520,  21407, 8867,   19266, -4520,
    16384, -16384, 12873, -22725, 21407,  -8867,  19266,  -22725, -16384, 16384, 4520,  19266, 8867,  -21407, 4520,  -12873};
alignas(16) const int16_t tab_f_17[32] = {
    22725, 22725,  31521, 26722,  -12299, -29692, -31521, -17855, 22725, 22725, 17855, 6270,  29692, 12299,  26722, -6270,
    22725, -22725, 17855, -31521, 29692,  -12299, 26722,  -31521, -22725, 22725, 6270,  26722, 12299, -29692, 6270,  -17855};
alignas(16) const int16_t tab_f_26[32] = {
    21407, 21407,  29692, 25172,  -11585, -27969, -29692, -16819, 21407, 21407, 16819, 5906,  27969, 11585,  25172, -5906,
    21407, -21407, 16819, -29692, 27969,  -11585, 25172,  -29692, -21407, 21407, 5906,  25172, 11585, -27969, 5906,  -16819};
alignas(16) const int16_t tab_f_35[32] = {
    19266, 19266,  26722, 22654,  -10426, -25172, -26722, -15137, 19266, 19266, 15137, 5315,  25172, 10426,  22654, -5315,
    19266, -19266, 15137, -26722, 25172,  -10426, 22654,  -26722, -19266, 19266, 5315,  22654, 10426, -25172, 5315,  -15137};

const int16_t* const tab_i_row[8] = {tab_i_04, tab_i_17, tab_i_26, tab_i_35, tab_i_04, tab_i_35, tab_i_26, tab_i_17};
const int16_t* const tab_f_row[8] = {tab_f_04, tab_f_17, tab_f_26, tab_f_35, tab_f_04, tab_f_35, tab_f_26, tab_f_17};


namespace {
constexpr float norm_entry(int v, int u) {
  return (u == 0 && v == 0) ? 0.125f : (u == 0 || v == 0) ? 0.176776692f : 0.25f;
}
}  // namespace

#define VPR_NORM_ROW(v)                                                                                 \
  {norm_entry(v, 0), norm_entry(v, 1), norm_entry(v, 2), norm_entry(v, 3), norm_entry(v, 4), norm_entry(v, 5), \
   norm_entry(v, 6), norm_entry(v, 7)}
alignas(16) const float dct_norm_8[8][8] = {VPR_NORM_ROW(0), VPR_NORM_ROW(1), VPR_NORM_ROW(2), VPR_NORM_ROW(3),
                                             VPR_NORM_ROW(4), VPR_NORM_ROW(5), VPR_NORM_ROW(6), VPR_NORM_ROW(7)};
#undef VPR_NORM_ROW

alignas(16) const float dct_cos_4[4][4] = {{1.0f, 0.923879504f, 0.707106769f, 0.382683426f},
                                            {1.0f, 0.382683426f, -0.707106769f, -0.923879504f},
                                            {1.0f, -0.382683426f, -0.707106769f, 0.923879504f},
                                            {1.0f, -0.923879504f, 0.707106769f, -0.382683426f}};

// Transposed copy for the kernel that vectorises over the output column:
// dct_cos_4t[u][j] = dct_cos_4[j][u].
alignas(16) const float dct_cos_4t[4][4] = {{1.0f, 1.0f, 1.0f, 1.0f},
                                             {0.923879504f, 0.382683426f, -0.382683426f, -0.923879504f},
                                             {0.707106769f, -0.707106769f, -0.707106769f, 0.707106769f},
                                             {0.382683426f, -0.923879504f, 0.923879504f, -0.382683426f}};

namespace ref {
namespace {

int16_t sat16(int32_t v) { return static_cast<int16_t>(std::clamp<int32_t>(v, -32768, 32767)); }
int16_t adds(int16_t a, int16_t b) { return sat16(int32_t{a} + b); }
int16_t subs(int16_t a, int16_t b) { return sat16(int32_t{a} - b); }
// High half of the signed 16 x 16 product.
int16_t mulhi(int16_t a, int16_t c) { return static_cast<int16_t>((int32_t{a} * c) >> 16); }
// Wrapping 32-bit value of an exact sum (the SIMD pair sums wrap).
int32_t wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v))); }
int16_t shl16(int16_t a, int s) { return static_cast<int16_t>(static_cast<uint16_t>(a) << s); }

// Inverse row pass of one row with table t and rounder rnd.
void idct_row(const int16_t* x, const int16_t* t, int32_t rnd, int16_t* y) {
  auto m = [](int16_t a, int16_t b) { return int64_t{a} * b; };
  const int64_t e[4] = {
      m(x[0], t[0]) + m(x[2], t[1]) + m(x[4], t[12]) + m(x[6], t[13]),
      m(x[0], t[2]) + m(x[2], t[3]) + m(x[4], t[14]) + m(x[6], t[15]),
      m(x[0], t[8]) + m(x[2], t[9]) + m(x[4], t[4]) + m(x[6], t[5]),
      m(x[0], t[10]) + m(x[2], t[11]) + m(x[4], t[6]) + m(x[6], t[7])};
  const int64_t o[4] = {
      m(x[1], t[16]) + m(x[3], t[17]) + m(x[5], t[28]) + m(x[7], t[29]),
      m(x[1], t[18]) + m(x[3], t[19]) + m(x[5], t[30]) + m(x[7], t[31]),
      m(x[1], t[24]) + m(x[3], t[25]) + m(x[5], t[20]) + m(x[7], t[21]),
      m(x[1], t[26]) + m(x[3], t[27]) + m(x[5], t[22]) + m(x[7], t[23])};
  for (int k = 0; k < 4; ++k) {
    y[k] = sat16(wrap32(e[k] + rnd + o[k]) >> 11);
    y[7 - k] = sat16(wrap32(e[k] + rnd - o[k]) >> 11);
  }
}

// Forward column pass of one column (x[0..7] -> y[0..7]).
void fdct_col(const int16_t* in, int16_t* y) {
  int16_t x[8];
  for (int i = 0; i < 8; ++i) x[i] = shl16(in[i], 3);
  const int16_t t0 = adds(x[0], x[7]), t7 = subs(x[0], x[7]);
  const int16_t t1 = adds(x[1], x[6]), t6 = subs(x[1], x[6]);
  const int16_t t2 = adds(x[2], x[5]), t5 = subs(x[2], x[5]);
  const int16_t t3 = adds(x[3], x[4]), t4 = subs(x[3], x[4]);
  // even part
  const int16_t tp03 = adds(t0, t3), tm03 = subs(t0, t3);
  const int16_t tp12 = adds(t1, t2), tm12 = subs(t1, t2);
  y[0] = adds(tp03, tp12);
  y[4] = subs(tp03, tp12);
  y[2] = static_cast<int16_t>(adds(tm03, mulhi(tm12, tg_2_16)) | one_corr);
  y[6] = static_cast<int16_t>(subs(mulhi(tm03, tg_2_16), tm12) | one_corr);
  // odd part: (t6 +- t5) * cos(pi/4)
  const int16_t tp65 = static_cast<int16_t>(mulhi(shl16(adds(t6, t5), 1), ocos_4_16) | one_corr);
  const int16_t tm65 = static_cast<int16_t>(mulhi(shl16(subs(t6, t5), 1), ocos_4_16) | one_corr);
  const int16_t tp765 = adds(t7, tp65), tm765 = subs(t7, tp65);
  const int16_t tp465 = adds(t4, tm65), tm465 = subs(t4, tm65);
  y[1] = static_cast<int16_t>(adds(tp765, mulhi(tp465, tg_1_16)) | one_corr);
  y[7] = static_cast<int16_t>(subs(mulhi(tp765, tg_1_16), tp465) | one_corr);
  y[3] = subs(tm765, adds(mulhi(tm465, tg_3_16), tm465));
  y[5] = static_cast<int16_t>(adds(adds(mulhi(tm765, tg_3_16), tm765), tm465) | one_corr);
}

// Forward row pass of row r (in place).
void fdct_row(int16_t* x, const int16_t* t) {
  int16_t s[4], d[4];
  for (int k = 0; k < 4; ++k) {
    s[k] = adds(x[k], x[7 - k]);
    d[k] = subs(x[k], x[7 - k]);
  }
  auto m = [](int16_t a, int16_t b) { return int64_t{a} * b; };
  const int64_t y[8] = {
      m(s[0], t[0]) + m(s[1], t[1]) + m(s[2], t[8]) + m(s[3], t[9]),
      m(d[0], t[2]) + m(d[1], t[3]) + m(d[2], t[10]) + m(d[3], t[11]),
      m(s[2], t[4]) + m(s[3], t[5]) + m(s[0], t[12]) + m(s[1], t[13]),
      m(d[2], t[6]) + m(d[3], t[7]) + m(d[0], t[14]) + m(d[1], t[15]),
      m(s[0], t[16]) + m(s[1], t[17]) + m(s[2], t[24]) + m(s[3], t[25]),
      m(d[0], t[18]) + m(d[1], t[19]) + m(d[2], t[26]) + m(d[3], t[27]),
      m(s[2], t[20]) + m(s[3], t[21]) + m(s[0], t[28]) + m(s[1], t[29]),
      m(d[2], t[22]) + m(d[3], t[23]) + m(d[0], t[30]) + m(d[1], t[31])};
  for (int k = 0; k < 8; ++k) x[k] = sat16(wrap32(y[k] + round_frw_row) >> 20);
}

int16_t quant_round(int16_t c, uint16_t r) {
  const uint32_t a = static_cast<uint32_t>(std::abs(int32_t{c}));
  const uint32_t m = std::min<uint32_t>((a * r + 16384u) >> 15, 32767u);
  return static_cast<int16_t>(c < 0 ? -static_cast<int32_t>(m) : static_cast<int32_t>(m));
}

int16_t dequant16(int16_t c, uint16_t q) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(int32_t{c} * q)));
}

uint8_t clamp_u8_add128(int16_t v) { return static_cast<uint8_t>(std::clamp<int32_t>(int32_t{v} + 128, 0, 255)); }

// Float pipeline helpers: clamp like maxps/minps (NaN takes the bound), then
// round to nearest with the current rounding mode.
int32_t clamp_round(float v, float lo, float hi) {
  v = v > lo ? v : lo;
  v = v < hi ? v : hi;
  return static_cast<int32_t>(std::lrint(v));
}

}  // namespace

void idct_col(const int16_t x[8], int16_t y[8]) {
  const int16_t u17 = adds(x[1], mulhi(x[7], tg_1_16));
  const int16_t v17 = subs(mulhi(x[1], tg_1_16), x[7]);
  const int16_t u35 = adds(x[3], adds(mulhi(x[5], tg_3_16), x[5]));
  const int16_t v35 = subs(adds(mulhi(x[3], tg_3_16), x[3]), x[5]);
  const int16_t u26 = adds(x[2], mulhi(x[6], tg_2_16));
  const int16_t v26 = subs(mulhi(x[2], tg_2_16), x[6]);
  const int16_t u04 = adds(x[0], x[4]), v04 = subs(x[0], x[4]);
  const int16_t b0 = adds(u17, u35), b3 = subs(v17, v35);
  const int16_t u12 = subs(u17, u35), v12 = adds(v17, v35);
  const int16_t sp = adds(u12, v12), sm = subs(u12, v12);
  const int16_t b1 = adds(mulhi(sp, cos_4_16), sp);
  const int16_t b2 = adds(mulhi(sm, cos_4_16), sm);
  const int16_t a0 = adds(u04, u26), a3 = subs(u04, u26);
  const int16_t a1 = adds(v04, v26), a2 = subs(v04, v26);
  y[0] = static_cast<int16_t>(adds(a0, b0) >> 6);
  y[7] = static_cast<int16_t>(subs(a0, b0) >> 6);
  y[1] = static_cast<int16_t>(adds(a1, b1) >> 6);
  y[6] = static_cast<int16_t>(subs(a1, b1) >> 6);
  y[2] = static_cast<int16_t>(adds(a2, b2) >> 6);
  y[5] = static_cast<int16_t>(subs(a2, b2) >> 6);
  y[3] = static_cast<int16_t>(adds(a3, b3) >> 6);
  y[4] = static_cast<int16_t>(subs(a3, b3) >> 6);
}

void dct_8x8_fwd_16s(const int16_t* src, int16_t* dst) {
  int16_t blk[64], col_in[8], col_out[8];
  std::memcpy(blk, src, sizeof blk);
  for (int c = 0; c < 8; ++c) {
    for (int r = 0; r < 8; ++r) col_in[r] = blk[r * 8 + c];
    fdct_col(col_in, col_out);
    for (int r = 0; r < 8; ++r) blk[r * 8 + c] = col_out[r];
  }
  for (int r = 0; r < 8; ++r) fdct_row(blk + r * 8, tab_f_row[r]);
  std::memcpy(dst, blk, sizeof blk);
}

// Rounder of row r: rows 1..7 whose eight coefficients are all zero are
// skipped (rounder 0, so they contribute nothing); row 0 always carries its
// rounder, the rounding offset of the column pass.
int32_t row_rounder(const int16_t* x, int r) {
  if (r == 0) return round_i[0];
  for (int i = 0; i < 8; ++i)
    if (x[i] != 0) return round_i[r];
  return 0;
}

void dct_8x8_inv_16s(const int16_t* src, int16_t* dst) {
  int16_t blk[64], col_in[8], col_out[8];
  for (int r = 0; r < 8; ++r) idct_row(src + r * 8, tab_i_row[r], row_rounder(src + r * 8, r), blk + r * 8);
  for (int c = 0; c < 8; ++c) {
    for (int r = 0; r < 8; ++r) col_in[r] = blk[r * 8 + c];
    idct_col(col_in, col_out);
    for (int r = 0; r < 8; ++r) dst[r * 8 + c] = col_out[r];
  }
}

void quant_coefs_8x8(const int16_t* coef, int16_t* dst, const uint16_t* fwd) {
  for (int i = 0; i < 64; ++i) dst[i] = quant_round(coef[i], fwd[i]);
}

void dct_quant_fwd_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* fwd) {
  int16_t blk[64];
  dct_8x8_fwd_16s(src, blk);
  quant_coefs_8x8(blk, dst, fwd);
}

void dct_quant_fwd_8x8_ls_8u16s(const uint8_t* src, int src_step, int16_t* dst, const uint16_t* fwd) {
  int16_t blk[64];
  for (int r = 0; r < 8; ++r)
    for (int c = 0; c < 8; ++c) blk[r * 8 + c] = static_cast<int16_t>(src[r * src_step + c] - 128);
  dct_quant_fwd_8x8_16s(blk, dst, fwd);
}

namespace {

// Unnormalised 8-point forward DCT, S_k = sum_n x_n cos((2n+1)k pi/16)
// (S_0 = plain sum), by even/odd halves; the order of every operation is
// part of the result (the SSE kernel runs the same sequence per lane).
void fdct8_float(const float* x, float* S) {
  const float s0 = x[0] + x[7], s1 = x[1] + x[6], s2 = x[2] + x[5], s3 = x[3] + x[4];
  const float d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];
  const float e0 = s0 + s3, e1 = s1 + s2, e2 = s0 - s3, e3 = s1 - s2;
  S[0] = e0 + e1;
  S[4] = kC4 * (e0 - e1);
  S[2] = kC2 * e2 + kC6 * e3;
  S[6] = kC6 * e2 - kC2 * e3;
  S[1] = kC1 * d0 + kC3 * d1 + kC5 * d2 + kC7 * d3;
  S[3] = kC3 * d0 - kC7 * d1 - kC1 * d2 - kC5 * d3;
  S[5] = kC5 * d0 - kC1 * d1 + kC7 * d2 + kC3 * d3;
  S[7] = kC7 * d0 - kC5 * d1 + kC3 * d2 - kC1 * d3;
}

// Unnormalised 8-point inverse DCT, x_n = X_0 + sum_k X_k cos((2n+1)k pi/16).
void idct8_float(const float* X, float* x) {
  const float p0 = X[0] + kC4 * X[4], p1 = X[0] - kC4 * X[4];
  const float q0 = kC2 * X[2] + kC6 * X[6], q1 = kC6 * X[2] - kC2 * X[6];
  const float E0 = p0 + q0, E3 = p0 - q0, E1 = p1 + q1, E2 = p1 - q1;
  const float O0 = kC1 * X[1] + kC3 * X[3] + kC5 * X[5] + kC7 * X[7];
  const float O1 = kC3 * X[1] - kC7 * X[3] - kC1 * X[5] - kC5 * X[7];
  const float O2 = kC5 * X[1] - kC1 * X[3] + kC7 * X[5] + kC3 * X[7];
  const float O3 = kC7 * X[1] - kC5 * X[3] + kC3 * X[5] - kC1 * X[7];
  x[0] = E0 + O0;
  x[7] = E0 - O0;
  x[1] = E1 + O1;
  x[6] = E1 - O1;
  x[2] = E2 + O2;
  x[5] = E2 - O2;
  x[3] = E3 + O3;
  x[4] = E3 - O3;
}

}  // namespace

void dct_quant_fwd_8x8_ls_16u16s(const uint16_t* src, int src_step, int16_t* dst, const float* fwd) {
  float f[8][8], tmp[8][8], col[8], out[8];
  for (int y = 0; y < 8; ++y) {
    const uint16_t* row = simd::row_ptr(src, src_step, y);
    for (int x = 0; x < 8; ++x) f[y][x] = static_cast<float>(int32_t{row[x]} - 2048);
  }
  for (int x = 0; x < 8; ++x) {  // columns first
    for (int y = 0; y < 8; ++y) col[y] = f[y][x];
    fdct8_float(col, out);
    for (int v = 0; v < 8; ++v) tmp[v][x] = out[v];
  }
  for (int v = 0; v < 8; ++v) {  // then rows; F = S * C(u) C(v) / 4; out = F * t
    fdct8_float(tmp[v], out);
    for (int u = 0; u < 8; ++u) {
      const float F = out[u] * dct_norm_8[v][u];
      dst[v * 8 + u] = static_cast<int16_t>(clamp_round(F * fwd[v * 8 + u], -32768.0f, 32767.0f));
    }
  }
}

void dct_quant_inv_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* inv) {
  int16_t blk[64];
  for (int i = 0; i < 64; ++i) blk[i] = dequant16(src[i], inv[i]);
  dct_8x8_inv_16s(blk, dst);
}

void dct_quant_inv_8x8_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  int16_t blk[64];
  dct_quant_inv_8x8_16s(src, blk, inv);
  for (int r = 0; r < 8; ++r)
    for (int c = 0; c < 8; ++c) dst[r * dst_step + c] = clamp_u8_add128(blk[r * 8 + c]);
}

void dct_quant_inv_8x8_ls_16s16u(const int16_t* src, uint16_t* dst, int dst_step, const uint16_t* inv) {
  float c[8][8], tmp[8][8], col[8], out[8];
  for (int v = 0; v < 8; ++v)
    for (int u = 0; u < 8; ++u)
      c[v][u] = static_cast<float>(int32_t{src[v * 8 + u]} * int32_t{inv[v * 8 + u]}) * dct_norm_8[v][u];
  for (int v = 0; v < 8; ++v) idct8_float(c[v], tmp[v]);  // rows first
  for (int x = 0; x < 8; ++x) {                            // then columns
    for (int v = 0; v < 8; ++v) col[v] = tmp[v][x];
    idct8_float(col, out);
    for (int y = 0; y < 8; ++y)
      simd::row_ptr(dst, dst_step, y)[x] = static_cast<uint16_t>(clamp_round(out[y] + 2048.0f, 0.0f, 4095.0f));
  }
}

namespace {
void inv_ls_corner(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv, int n) {
  int16_t blk[64] = {};
  for (int r = 0; r < n; ++r)
    for (int c = 0; c < n; ++c) blk[r * 8 + c] = src[r * 8 + c];
  dct_quant_inv_8x8_ls_16s8u(blk, dst, dst_step, inv);
}
}  // namespace

void dct_quant_inv_8x8_ls_1x1_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  inv_ls_corner(src, dst, dst_step, inv, 1);
}
void dct_quant_inv_8x8_ls_2x2_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  inv_ls_corner(src, dst, dst_step, inv, 2);
}
void dct_quant_inv_8x8_ls_4x4_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  inv_ls_corner(src, dst, dst_step, inv, 4);
}

void dct_quant_inv_8x8_to2x2_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  const int32_t f00 = dequant16(src[0], inv[0]), f01 = dequant16(src[1], inv[1]);
  const int32_t f10 = dequant16(src[8], inv[8]), f11 = dequant16(src[9], inv[9]);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) {
      const int32_t si = i ? -1 : 1, sj = j ? -1 : 1;
      const int32_t s = f00 + sj * f01 + si * f10 + si * sj * f11;
      dst[i * dst_step + j] = static_cast<uint8_t>(std::clamp<int32_t>(((s + 4) >> 3) + 128, 0, 255));
    }
}

void dct_quant_inv_8x8_to4x4_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  float c[4][4], tmp[4][4];
  for (int v = 0; v < 4; ++v)
    for (int u = 0; u < 4; ++u) c[v][u] = static_cast<float>(dequant16(src[v * 8 + u], inv[v * 8 + u])) * dct_norm_8[v][u];
  // rows: tmp[v][j] = sum_u c[v][u] * cos4[j][u], u in order
  for (int v = 0; v < 4; ++v)
    for (int j = 0; j < 4; ++j) {
      float acc = c[v][0] * dct_cos_4[j][0];
      for (int u = 1; u < 4; ++u) acc = acc + c[v][u] * dct_cos_4[j][u];
      tmp[v][j] = acc;
    }
  // columns: out[i][j] = sum_v cos4[i][v] * tmp[v][j], v in order
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      float acc = dct_cos_4[i][0] * tmp[0][j];
      for (int v = 1; v < 4; ++v) acc = acc + dct_cos_4[i][v] * tmp[v][j];
      dst[i * dst_step + j] = static_cast<uint8_t>(clamp_round(acc + 128.0f, 0.0f, 255.0f));
    }
}

}  // namespace ref
}  // namespace vpr::jpeg

using namespace vpr::jpeg;

extern "C" {

VPR_API VprStatus vpriDCTQuantFwd8x8_JPEG_16s_C1(const Vpr16s* pSrc, Vpr16s* pDst, const Vpr16u* pFwdQuantTable) {
  if (!pSrc || !pDst || !pFwdQuantTable) return vprStatusNullPointer;
  sse::dct_quant_fwd_8x8_16s(pSrc, pDst, pFwdQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriDCTQuantFwd8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pFwdQuantTable) {
  if (!pSrcDst || !pFwdQuantTable) return vprStatusNullPointer;
  sse::dct_quant_fwd_8x8_16s(pSrcDst, pSrcDst, pFwdQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDst,
                                                      const Vpr16u* pFwdQuantTable) {
  if (!pSrc || !pDst) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (!pFwdQuantTable) return vprStatusNullPointer;
  sse::dct_quant_fwd_8x8_ls_8u16s(pSrc, srcStep, pDst, pFwdQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Vpr16u* pSrc, int srcStep, Vpr16s* pDst,
                                                       const Vpr32f* pFwdQuantTable) {
  if (!pSrc || !pDst) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (!pFwdQuantTable) return vprStatusNullPointer;
  sse::dct_quant_fwd_8x8_ls_16u16s(pSrc, srcStep, pDst, pFwdQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriDCTQuantInv8x8_JPEG_16s_C1(const Vpr16s* pSrc, Vpr16s* pDst, const Vpr16u* pInvQuantTable) {
  if (!pSrc || !pDst || !pInvQuantTable) return vprStatusNullPointer;
  sse::dct_quant_inv_8x8_16s(pSrc, pDst, pInvQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriDCTQuantInv8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pInvQuantTable) {
  if (!pSrcDst || !pInvQuantTable) return vprStatusNullPointer;
  sse::dct_quant_inv_8x8_16s(pSrcDst, pSrcDst, pInvQuantTable);
  return vprStatusOk;
}

#define VPR_INV_LS_ENTRY(name, kernel, T)                                                          \
  VPR_API VprStatus name(const Vpr16s* pSrc, T* pDst, int dstStep, const Vpr16u* pInvQuantTable) { \
    if (!pSrc || !pDst) return vprStatusNullPointer;                                               \
    if (dstStep < 1) return vprStatusBadStep;                                                      \
    if (!pInvQuantTable) return vprStatusNullPointer;                                              \
    sse::kernel(pSrc, pDst, dstStep, pInvQuantTable);                                              \
    return vprStatusOk;                                                                            \
  }

VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R, dct_quant_inv_8x8_ls_16s8u, Vpr8u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R, dct_quant_inv_8x8_ls_16s16u, Vpr16u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, dct_quant_inv_8x8_ls_1x1_16s8u, Vpr8u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, dct_quant_inv_8x8_ls_2x2_16s8u, Vpr8u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, dct_quant_inv_8x8_ls_4x4_16s8u, Vpr8u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, dct_quant_inv_8x8_to2x2_ls_16s8u, Vpr8u)
VPR_INV_LS_ENTRY(vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, dct_quant_inv_8x8_to4x4_ls_16s8u, Vpr8u)

#undef VPR_INV_LS_ENTRY

}  // extern "C"
