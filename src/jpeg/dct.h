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
extern const int16_t tab_i_04[32], tab_i_17[32], tab_i_26[32], tab_i_35[32];
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
