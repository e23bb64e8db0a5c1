// JPEG colour conversion: SSE4.1 row kernels.
#include "core/simd.h"
#include "jpeg/color.h"

namespace vpr::jpeg::sse {

void ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  ref::ownpj_RGBToYCbCr_JPEG_8u_C3P3R(src, y, cb, cr, width);
}
void ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  ref::ownpj_BGRToYCbCr_JPEG_8u_C3P3R(src, y, cb, cr, width);
}
void ownpj_RGBToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) { ref::ownpj_RGBToY_JPEG_8u_C3C1R(src, y, width); }
void ownpj_BGRToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) { ref::ownpj_BGRToY_JPEG_8u_C3C1R(src, y, width); }
void ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,
                                      uint8_t* cb, uint8_t* cr, int width) {
  ref::ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(r, g, b, y, cb, cr, width);
}
void ownpj_RGBToY_JPEG_8u_P3C1R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, int width) {
  ref::ownpj_RGBToY_JPEG_8u_P3C1R_opt(r, g, b, y, width);
}
void ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width) {
  ref::ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(y, cb, cr, dst, width);
}
void ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width) {
  ref::ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(y, cb, cr, dst, width);
}
void ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* r,
                                      uint8_t* g, uint8_t* b, int width) {
  ref::ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(y, cb, cr, r, g, b, width);
}
void rgb_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  ref::rgb_to_ycbcr_c4_q16_row(src, y, cb, cr, width);
}
void bgr_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  ref::bgr_to_ycbcr_c4_q16_row(src, y, cb, cr, width);
}
void rgb_to_ycbcr422_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width, int channels, bool bgr) {
  ref::rgb_to_ycbcr422_q16_row(src, y, cb, cr, width, channels, bgr);
}
void rgb_to_ycbcr411_q16_rows(const uint8_t* s0, const uint8_t* s1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                              uint8_t* cr, int width, int channels, bool bgr) {
  ref::rgb_to_ycbcr411_q16_rows(s0, s1, y0, y1, cb, cr, width, channels, bgr);
}
void ycbcr_to_rgb_q16_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width, int hsub,
                          int channels, bool bgr, uint8_t alpha) {
  ref::ycbcr_to_rgb_q16_row(y, cb, cr, dst, width, hsub, channels, bgr, alpha);
}
void ycbcr422_c2_to_rgb_tbl_row(const uint8_t* src, uint8_t* dst, int width) {
  ref::ycbcr422_c2_to_rgb_tbl_row(src, dst, width);
}

}  // namespace vpr::jpeg::sse
