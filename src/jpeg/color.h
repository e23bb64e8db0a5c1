// JPEG colour conversion: constant tables and per-row kernels.
//
// Every kernel converts one row of `width` pixels and does not check its
// arguments.  ref:: holds the scalar kernels, written straight from the
// formulas of each precision family (see vprjp_jpeg_color.h); sse:: holds
// the SSE4.1 kernels, which give the same bytes.  The exported entries call
// the sse:: kernels.
#pragma once

#include <cstdint>

namespace vpr::jpeg {

// Forward table of the planar remainder: eight 256-entry sub-tables
// T0..T7 at cc_table[k * 256 + i].
extern const int32_t cc_table[8 * 256];
// Inverse tables of the C2C3R conversion and the P3C3R / P3R remainders.
extern const int32_t cr_r_tbl[256];
extern const int32_t cb_b_tbl[256];
extern const int32_t cr_g_tbl[256];
extern const int32_t cb_g_tbl[256];

inline uint8_t clamp255(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }
inline int32_t sat16(int32_t v) { return v < -32768 ? -32768 : v > 32767 ? 32767 : v; }

// Method G for one pixel (one chroma pair per pixel); writes R, G, B at
// dst[ri], dst[1], dst[bi].
inline void ycbcr_to_rgb_tbl_pixel(int y, int cb, int cr, uint8_t* dst, int ri, int bi) {
  dst[ri] = clamp255(y + cr_r_tbl[cr]);
  dst[1] = clamp255(y + ((cb_g_tbl[cb] + cr_g_tbl[cr]) >> 16));
  dst[bi] = clamp255(y + cb_b_tbl[cb]);
}

#define VPR_COLOR_KERNELS                                                                                     \
  /* Family A: Q15 groups of 8, then a Q14 group of 4, then Q14 pixels. */                                   \
  void ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width);    \
  void ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width);    \
  /* Family A, Y only, Q15 for every pixel. */                                                                \
  void ownpj_RGBToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width);                                 \
  void ownpj_BGRToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width);                                 \
  /* Family B: Q16 Y, Q15 differences on width & ~3, cc_table on the rest. */                                \
  void ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,      \
                                        uint8_t* cb, uint8_t* cr, int width);                                 \
  /* Family H: float weights, round to nearest even. */                                                       \
  void ownpj_RGBToY_JPEG_8u_P3C1R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,        \
                                      int width);                                                             \
  /* Family E: Q14 on width & ~3, method G on the rest. */                                                    \
  void ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, \
                                          int width);                                                         \
  void ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, \
                                          int width);                                                         \
  /* Family E': Q14 planar on width & ~3, method G on the rest. */                                            \
  void ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* r,    \
                                        uint8_t* g, uint8_t* b, int width);                                   \
  /* Family C: RGBx/BGRx -> planes, Q16, low-byte chroma. */                                                  \
  void rgb_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width);          \
  void bgr_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width);          \
  /* Family D, 2x1: `width` even; channels 3 or 4; BGR when bgr. */                                          \
  void rgb_to_ycbcr422_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width,           \
                               int channels, bool bgr);                                                       \
  /* Family D, 2x2: two source rows, two Y rows, one chroma row; `width` even. */                             \
  void rgb_to_ycbcr411_q16_rows(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1,           \
                                uint8_t* cb, uint8_t* cr, int width, int channels, bool bgr);                 \
  /* Family F: one Y row, chroma at full (hsub 1) or half (hsub 2, `width`    \
     even) resolution, 3 or 4 output channels (the fourth = alpha). */                                        \
  void ycbcr_to_rgb_q16_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width,  \
                            int hsub, int channels, bool bgr, uint8_t alpha);                                 \
  /* Family F, 2x2: two Y rows and two output rows share one chroma row. */                                  \
  void ycbcr411_to_rgb_q16_rows(const uint8_t* y0, const uint8_t* y1, const uint8_t* cb, const uint8_t* cr,   \
                                uint8_t* d0, uint8_t* d1, int width, int channels, bool bgr, uint8_t alpha);  \
  /* Family G: Y0 Cb Y1 Cr groups -> RGB; `width` even. */                                                   \
  void ycbcr422_c2_to_rgb_tbl_row(const uint8_t* src, uint8_t* dst, int width);

namespace ref {
VPR_COLOR_KERNELS
}  // namespace ref

namespace sse {
VPR_COLOR_KERNELS
}  // namespace sse

#undef VPR_COLOR_KERNELS

}  // namespace vpr::jpeg
