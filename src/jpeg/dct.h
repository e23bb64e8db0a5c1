// Fused 8x8 DCT kernels: constant tables, scalar twins (ref::) and SSE
// kernels (sse::).  Blocks are 64 int16 in natural order; "ls" kernels read
// or write 8 rows of a pixel region with a byte step.  Kernels may be called
// with src == dst for the block forms.
//
// Fixed-point scheme (identical in ref:: and sse::)
//   inverse rows:  32-bit pair sums with tab_i_xx (wrapping), + round_i_r,
//                  (even +- odd) >> 11, signed saturation to 16 bits; rows
//                  1..7 whose coefficients are all zero are skipped (output
//                  zero: their rounder is not added), row 0 never is;
//   inverse cols:  16-bit saturating butterflies, high-half products
//                  (a * c) >> 16 with tg_1_16, tg_2_16, tg_3_16 + a,
//                  cos_4_16 + a; >> 6;
//   forward cols:  inputs << 3 (16-bit), saturating butterflies, high-half
//                  products with tg_x_16 and ocos_4_16 (on values << 1),
//                  one_corr or-ed into the outputs that carry a product;
//   forward rows:  saturating s = x[k] + x[7-k], d = x[k] - x[7-k], 32-bit
//                  pair sums with tab_f_xx, (sum + round_frw_row) >> 20,
//                  signed saturation;
//   quantisation:  sign(c) * min((|c| * r + 16384) >> 15, 32767)
//                  (quant_coefs_8x8: this step alone, on any coefficients).
// The 12-bit forms and the 4x4 scaled inverse use single precision with
// fixed summation order (see the public header).
#pragma once

#include <cstdint>

namespace vpr::jpeg {

// Row tables, 32 entries each: rows 0/4, 1/7, 2/6, 3/5.
//
// Inverse row tables.  With C1..C7 = round(S * sqrt(2) * cos(k pi/16)) and
// S = 16384 (rows 0/4) or 16384 * sqrt(2) * cos(r pi/16) (rows r, 8 - r),
// the layout in 4-entry groups (pairs multiply (x0,x2), (x4,x6), (x1,x3),
// (x5,x7)) is:
//   x0x2 -> e0,e1 | x4x6 -> e2,e3 | x0x2 -> e2,e3 | x4x6 -> e0,e1
//   x1x3 -> o0,o1 | x5x7 -> o2,o3 | x1x3 -> o2,o3 | x5x7 -> o0,o1
alignas(16) inline constexpr int16_t tab_i_04[32] = {
    16384, 21407, 16384, 8867,  -16384, 21407, 16384, -8867,  16384, -8867, 16384, -21407, 16384, 8867,  -16384, -21407,
    22725, 19266, 19266, -4520, 4520,   19266, 19266, -22725, 12873, -22725, 4520, -12873, 12873, 4520,  -22725, -12873};
alignas(16) inline constexpr int16_t tab_i_17[32] = {
    22725, 29692, 22725, 12299, -22725, 29692, 22725, -12299, 22725, -12299, 22725, -29692, 22725, 12299, -22725, -29692,
    31521, 26722, 26722, -6270, 6270,   26722, 26722, -31521, 17855, -31521, 6270, -17855, 17855, 6270,  -31521, -17855};
alignas(16) inline constexpr int16_t tab_i_26[32] = {
    21407, 27969, 21407, 11585, -21407, 27969, 21407, -11585, 21407, -11585, 21407, -27969, 21407, 11585, -21407, -27969,
    29692, 25172, 25172, -5906, 5906,   25172, 25172, -29692, 16819, -29692, 5906, -16819, 16819, 5906,  -29692, -16819};
alignas(16) inline constexpr int16_t tab_i_35[32] = {
    19266, 25172, 19266, 10426, -19266, 25172, 19266, -10426, 19266, -10426, 19266, -25172, 19266, 10426, -19266, -25172,
    26722, 22654, 22654, -5315, 5315,   22654, 22654, -26722, 15137, -26722, 5315, -15137, 15137, 5315,  -26722, -15137};

// Forward row tables (layout in dct.cpp).
extern const int16_t tab_f_04[32], tab_f_17[32], tab_f_26[32], tab_f_35[32];
// Table of row r, for r = 0..7.
extern const int16_t* const tab_i_row[8];
extern const int16_t* const tab_f_row[8];

inline constexpr int16_t tg_1_16 = 13036;    // tan(pi/16) * 65536
inline constexpr int16_t tg_2_16 = 27146;    // tan(2pi/16) * 65536
inline constexpr int16_t tg_3_16 = -21746;   // tan(3pi/16) * 65536 - 65536
inline constexpr int16_t cos_4_16 = -19195;  // cos(pi/4) * 65536 - 65536
inline constexpr int16_t ocos_4_16 = 23170;  // cos(pi/4) * 32768
inline constexpr int16_t one_corr = 1;
inline constexpr int32_t round_frw_row = 524288;  // 2^19
// Inverse row rounders, row 0..7.
inline constexpr int32_t round_i[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};

// Single precision.  kC1..kC7 = cos(k pi/16); dct_norm_8[v][u] = C(u) C(v) / 4
// with C(0) = 1/sqrt(2), else 1 (0.125 exactly at DC, so flat blocks stay
// exact); dct_cos_4[j][u] = cos((2j+1)u pi/8) and its transpose dct_cos_4t.
// The 8-point float transforms are unnormalised even/odd butterflies whose
// order of operations is fixed (ref:: and sse:: run the same sequence).
inline constexpr float kC1 = 0.980785251f, kC2 = 0.923879504f, kC3 = 0.831469595f, kC4 = 0.707106769f,
                       kC5 = 0.555570245f, kC6 = 0.382683426f, kC7 = 0.195090324f;
extern const float dct_norm_8[8][8];
extern const float dct_cos_4[4][4];
extern const float dct_cos_4t[4][4];

#define VPR_DCT_KERNELS                                                                                   \
  void dct_8x8_fwd_16s(const int16_t* src, int16_t* dst);                                                 \
  void dct_8x8_inv_16s(const int16_t* src, int16_t* dst);                                                 \
  void dct_quant_fwd_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* fwd);                     \
  void quant_coefs_8x8(const int16_t* coef, int16_t* dst, const uint16_t* fwd);                           \
  void dct_quant_fwd_8x8_ls_8u16s(const uint8_t* src, int src_step, int16_t* dst, const uint16_t* fwd);  \
  void dct_quant_fwd_8x8_ls_16u16s(const uint16_t* src, int src_step, int16_t* dst, const float* fwd);   \
  void dct_quant_inv_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* inv);                     \
  void dct_quant_inv_8x8_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv);  \
  void dct_quant_inv_8x8_ls_16s16u(const int16_t* src, uint16_t* dst, int dst_step, const uint16_t* inv); \
  void dct_quant_inv_8x8_ls_1x1_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv); \
  void dct_quant_inv_8x8_ls_2x2_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv); \
  void dct_quant_inv_8x8_ls_4x4_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv); \
  void dct_quant_inv_8x8_to2x2_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv); \
  void dct_quant_inv_8x8_to4x4_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv);

namespace ref {
VPR_DCT_KERNELS
// One column of the inverse column pass (x[0..7] -> y[0..7], >> 6 included).
void idct_col(const int16_t x[8], int16_t y[8]);
// Rounder of row r of the inverse row pass: round_i[r], or 0 for an all-zero row r >= 1.
int32_t row_rounder(const int16_t* x, int r);
}  // namespace ref

namespace sse {
VPR_DCT_KERNELS
}  // namespace sse

#undef VPR_DCT_KERNELS

}  // namespace vpr::jpeg
