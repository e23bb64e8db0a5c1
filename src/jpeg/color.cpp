// JPEG colour conversion: constant tables, scalar row kernels and the
// exported whole-image entries.
#include "jpeg/color.h"

#include <cmath>

#include "core/parallel.h"
#include "core/simd.h"
#include "vprjp_jpeg_color.h"

namespace vpr::jpeg {

// ------------------------------------------------------------------ tables

namespace {

constexpr int32_t cc_value(int k) {
  const int32_t i = k & 255;
  switch (k >> 8) {
    case 0: return 19595 * i;
    case 1: return 38470 * i;
    case 2: return 7471 * i + 32768;
    case 3: return -11059 * i;
    case 4: return -21709 * i;
    case 5: return 32768 * i + 8421375;  // 128 * 2^16 + 32767
    case 6: return -27439 * i;
    default: return -5329 * i;
  }
}
// Nearest integer to 1.402 (i - 128) and 1.772 (i - 128); the two exact
// ties of the latter (+-221.5) go away from zero.
constexpr int32_t cr_r_value(int i) { return (91881 * (i - 128) + 32768) >> 16; }
constexpr int32_t cb_b_value(int i) { return (116130 * (i - 128) + 32768) >> 16; }
constexpr int32_t cr_g_value(int i) { return -46802 * (i - 128); }
constexpr int32_t cb_g_value(int i) { return -22554 * (i - 128) + 32768; }

}  // namespace

#define VPR_E4(F, b) F(b), F(b + 1), F(b + 2), F(b + 3)
#define VPR_E16(F, b) VPR_E4(F, b), VPR_E4(F, b + 4), VPR_E4(F, b + 8), VPR_E4(F, b + 12)
#define VPR_E64(F, b) VPR_E16(F, b), VPR_E16(F, b + 16), VPR_E16(F, b + 32), VPR_E16(F, b + 48)
#define VPR_E256(F, b) VPR_E64(F, b), VPR_E64(F, b + 64), VPR_E64(F, b + 128), VPR_E64(F, b + 192)

alignas(16) const int32_t cc_table[8 * 256] = {
    VPR_E256(cc_value, 0),    VPR_E256(cc_value, 256),  VPR_E256(cc_value, 512),  VPR_E256(cc_value, 768),
    VPR_E256(cc_value, 1024), VPR_E256(cc_value, 1280), VPR_E256(cc_value, 1536), VPR_E256(cc_value, 1792)};
alignas(16) const int32_t cr_r_tbl[256] = {VPR_E256(cr_r_value, 0)};
alignas(16) const int32_t cb_b_tbl[256] = {VPR_E256(cb_b_value, 0)};
alignas(16) const int32_t cr_g_tbl[256] = {VPR_E256(cr_g_value, 0)};
alignas(16) const int32_t cb_g_tbl[256] = {VPR_E256(cb_g_value, 0)};

#undef VPR_E4
#undef VPR_E16
#undef VPR_E64
#undef VPR_E256

// ------------------------------------------------------------------ scalar kernels

namespace ref {
namespace {

inline void a_q15_pixel(int r, int g, int b, uint8_t* y, uint8_t* cb, uint8_t* cr) {
  *y = clamp255((9798 * r + 19235 * g + 3736 * b + 16266) >> 15);
  *cb = clamp255((-5529 * r - 10855 * g + 16384 * b + 4210688) >> 15);
  *cr = clamp255((16384 * r - 13720 * g - 2664 * b + 4210704) >> 15);
}
inline void a_q14_pixel(int r, int g, int b, uint8_t* y, uint8_t* cb, uint8_t* cr) {
  *y = clamp255((4899 * r + 9617 * g + 1868 * b + 8192) >> 14);
  *cb = clamp255((-2764 * r - 5428 * g + 8192 * b + 2105344) >> 14);
  *cr = clamp255((8192 * r - 6860 * g - 1332 * b + 2105344) >> 14);
}

template <int RI, int BI>
void a_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  int x = 0;
  for (; x + 8 <= width; x += 8)
    for (int k = x; k < x + 8; ++k) a_q15_pixel(s[3 * k + RI], s[3 * k + 1], s[3 * k + BI], y + k, cb + k, cr + k);
  if (width - x >= 4) {
    for (int k = x; k < x + 4; ++k) a_q14_pixel(s[3 * k + RI], s[3 * k + 1], s[3 * k + BI], y + k, cb + k, cr + k);
    x += 4;
  }
  for (; x < width; ++x) a_q14_pixel(s[3 * x + RI], s[3 * x + 1], s[3 * x + BI], y + x, cb + x, cr + x);
}

template <int RI, int BI>
void a_y_row(const uint8_t* s, uint8_t* y, int width) {
  for (int x = 0; x < width; ++x)
    y[x] = clamp255((9798 * s[3 * x + RI] + 19235 * s[3 * x + 1] + 3736 * s[3 * x + BI] + 16266) >> 15);
}

template <int RI, int BI>
void e_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* d, int width) {
  const int n4 = width & ~3;
  for (int x = 0; x < n4; ++x) {
    const int Y = y[x], Cb = cb[x], Cr = cr[x];
    d[3 * x + RI] = clamp255(Y + sat16((22970 * Cr - 2932015) >> 14));
    d[3 * x + 1] = clamp255(Y + sat16((-5638 * Cb - 11700 * Cr + 2227566) >> 14));
    d[3 * x + BI] = clamp255(Y + sat16((29032 * Cb - 3708561) >> 14));
  }
  for (int x = n4; x < width; ++x) ycbcr_to_rgb_tbl_pixel(y[x], cb[x], cr[x], d + 3 * x, RI, BI);
}

template <int RI, int BI>
void c_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  for (int x = 0; x < width; ++x) {
    const int R = s[4 * x + RI], G = s[4 * x + 1], B = s[4 * x + BI];
    y[x] = static_cast<uint8_t>((19595 * R + 38470 * G + 7471 * B + 32768) >> 16);
    cb[x] = static_cast<uint8_t>((32768 * B - 21709 * G - 11059 * R - 8372224) >> 16);
    cr[x] = static_cast<uint8_t>((32768 * R - 27439 * G - 5329 * B - 8372224) >> 16);
  }
}

inline uint8_t q16_y(int r, int g, int b) { return static_cast<uint8_t>((19595 * r + 38470 * g + 7471 * b + 32768) >> 16); }

}  // namespace

void ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  a_row<0, 2>(src, y, cb, cr, width);
}
void ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  a_row<2, 0>(src, y, cb, cr, width);
}
void ownpj_RGBToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) { a_y_row<0, 2>(src, y, width); }
void ownpj_BGRToY_JPEG_8u_C3C1R(const uint8_t* src, uint8_t* y, int width) { a_y_row<2, 0>(src, y, width); }

void ownpj_RGBToYCbCr_JPEG_8u_P3R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y,
                                      uint8_t* cb, uint8_t* cr, int width) {
  const int n4 = width & ~3;
  for (int x = 0; x < n4; ++x) {
    const int R = r[x], G = g[x], B = b[x];
    const int Y = clamp255((19595 * R + 38470 * G + 7471 * B + 32768) >> 16);
    const int16_t db = static_cast<int16_t>(B - Y), dr = static_cast<int16_t>(R - Y);
    y[x] = static_cast<uint8_t>(Y);
    cb[x] = clamp255((db * 18491 + 4210688) >> 15);
    cr[x] = clamp255((dr * 23373 + 4210688) >> 15);
  }
  const int32_t* T = cc_table;
  for (int x = n4; x < width; ++x) {
    const int R = r[x], G = g[x], B = b[x];
    y[x] = static_cast<uint8_t>((T[R] + T[256 + G] + T[512 + B]) >> 16);
    cb[x] = static_cast<uint8_t>((T[768 + R] + T[1024 + G] + T[1280 + B]) >> 16);
    cr[x] = static_cast<uint8_t>((T[1280 + R] + T[1536 + G] + T[1792 + B]) >> 16);
  }
}

void ownpj_RGBToY_JPEG_8u_P3C1R_opt(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, int width) {
  for (int x = 0; x < width; ++x) {
    const float v = 0.299f * static_cast<float>(r[x]) + 0.587f * static_cast<float>(g[x]) +
                    0.114f * static_cast<float>(b[x]);
    const long n = std::lrintf(v);  // current rounding mode: nearest, ties to even
    y[x] = static_cast<uint8_t>(n < 0 ? 0 : n > 255 ? 255 : n);
  }
}

void ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst,
                                        int width) {
  e_row<0, 2>(y, cb, cr, dst, width);
}
void ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst,
                                        int width) {
  e_row<2, 0>(y, cb, cr, dst, width);
}

void ownpj_YCbCrToRGB_JPEG_8u_P3R_opt(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* r,
                                      uint8_t* g, uint8_t* b, int width) {
  const int n4 = width & ~3;
  for (int x = 0; x < n4; ++x) {
    const int Y = y[x], Cb = cb[x], Cr = cr[x];
    r[x] = clamp255(Y + ((22970 * Cr - 2932015) >> 14));
    g[x] = clamp255(Y - ((5638 * Cb + 11700 * Cr - 2211182) >> 14));
    b[x] = clamp255(Y + ((29032 * Cb - 3708561) >> 14));
  }
  for (int x = n4; x < width; ++x) {
    uint8_t px[3];
    ycbcr_to_rgb_tbl_pixel(y[x], cb[x], cr[x], px, 0, 2);
    r[x] = px[0];
    g[x] = px[1];
    b[x] = px[2];
  }
}

void rgb_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  c_row<0, 2>(src, y, cb, cr, width);
}
void bgr_to_ycbcr_c4_q16_row(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, int width) {
  c_row<2, 0>(src, y, cb, cr, width);
}

void rgb_to_ycbcr422_q16_row(const uint8_t* s, uint8_t* y, uint8_t* cb, uint8_t* cr, int width, int channels,
                             bool bgr) {
  const int ri = bgr ? 2 : 0, bi = bgr ? 0 : 2, c = channels;
  for (int j = 0; j < width / 2; ++j) {
    const uint8_t* p = s + 2 * j * c;
    const int R0 = p[ri], G0 = p[1], B0 = p[bi], R1 = p[c + ri], G1 = p[c + 1], B1 = p[c + bi];
    y[2 * j] = q16_y(R0, G0, B0);
    y[2 * j + 1] = q16_y(R1, G1, B1);
    const int SR = R0 + R1, SG = G0 + G1, SB = B0 + B1;
    cb[j] = static_cast<uint8_t>((32768 * SB - 21709 * SG - 11059 * SR - 16760832) >> 17);
    cr[j] = static_cast<uint8_t>((32768 * SR - 27439 * SG - 5329 * SB - 16760832) >> 17);
  }
}

void rgb_to_ycbcr411_q16_rows(const uint8_t* s0, const uint8_t* s1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                              uint8_t* cr, int width, int channels, bool bgr) {
  const int ri = bgr ? 2 : 0, bi = bgr ? 0 : 2, c = channels;
  for (int j = 0; j < width / 2; ++j) {
    int SR = 0, SG = 0, SB = 0;
    for (int row = 0; row < 2; ++row) {
      const uint8_t* p = (row ? s1 : s0) + 2 * j * c;
      uint8_t* yy = row ? y1 : y0;
      for (int k = 0; k < 2; ++k) {
        const int R = p[k * c + ri], G = p[k * c + 1], B = p[k * c + bi];
        yy[2 * j + k] = q16_y(R, G, B);
        SR += R;
        SG += G;
        SB += B;
      }
    }
    cb[j] = static_cast<uint8_t>((32768 * SB - 21709 * SG - 11059 * SR - 33521664) >> 18);
    cr[j] = static_cast<uint8_t>((32768 * SR - 27439 * SG - 5329 * SB - 33521664) >> 18);
  }
}

void ycbcr_to_rgb_q16_row(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, int width,
                          int hsub, int channels, bool bgr, uint8_t alpha) {
  const int ri = bgr ? 2 : 0, bi = bgr ? 0 : 2;
  for (int x = 0; x < width; ++x) {
    const int Y = y[x], Cb = cb[x / hsub], Cr = cr[x / hsub];
    uint8_t* d = dst + x * channels;
    d[ri] = clamp255((65536 * Y + 91880 * Cr - 11727880) >> 16);
    d[1] = clamp255((65536 * Y - 22553 * Cb - 46801 * Cr + 8910128) >> 16);
    d[bi] = clamp255((65536 * Y + 116128 * Cb - 14831618) >> 16);
    if (channels == 4) d[3] = alpha;
  }
}

void ycbcr411_to_rgb_q16_rows(const uint8_t* y0, const uint8_t* y1, const uint8_t* cb, const uint8_t* cr,
                              uint8_t* d0, uint8_t* d1, int width, int channels, bool bgr, uint8_t alpha) {
  ycbcr_to_rgb_q16_row(y0, cb, cr, d0, width, 2, channels, bgr, alpha);
  ycbcr_to_rgb_q16_row(y1, cb, cr, d1, width, 2, channels, bgr, alpha);
}

void ycbcr422_c2_to_rgb_tbl_row(const uint8_t* src, uint8_t* dst, int width) {
  for (int j = 0; j < width / 2; ++j) {
    const uint8_t* s = src + 4 * j;
    ycbcr_to_rgb_tbl_pixel(s[0], s[1], s[3], dst + 6 * j, 0, 2);
    ycbcr_to_rgb_tbl_pixel(s[2], s[1], s[3], dst + 6 * j + 3, 0, 2);
  }
}

}  // namespace ref

// ------------------------------------------------------------------ entries

namespace {

using simd::row_ptr;

inline bool planes_ok(const void* const* p) { return p && p[0] && p[1] && p[2]; }
inline bool size_ok(VprRoiSize s) { return s.width >= 1 && s.height >= 1; }

// Full-resolution checks: all pointers, then the steps, then the size.
inline VprStatus check_full(bool pointers, int srcStep, int dstStep, VprRoiSize roi) {
  if (!pointers) return vprStatusNullPointer;
  if (srcStep < 1 || dstStep < 1) return vprStatusBadStep;
  if (!size_ok(roi)) return vprStatusBadSize;
  return vprStatusOk;
}
// C4P3R / P3C4R: pointers, then the size; steps are not checked.
inline VprStatus check_nostep(bool pointers, VprRoiSize roi) {
  if (!pointers) return vprStatusNullPointer;
  if (!size_ok(roi)) return vprStatusBadSize;
  return vprStatusOk;
}
// 422 / 411: pointers, then the size; odd sizes give the warning.
inline VprStatus check_sampled(bool pointers, VprRoiSize roi, bool v2) {
  if (!pointers) return vprStatusNullPointer;
  if (roi.width < 2 || roi.height < (v2 ? 2 : 1)) return vprStatusBadSize;
  return vprStatusOk;
}
inline VprStatus odd_status(VprRoiSize roi, bool v2) {
  return ((roi.width & 1) || (v2 && (roi.height & 1))) ? vprStatusOddSizeWarning : vprStatusOk;
}

template <class RowKernel>
VprStatus c3p3(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep, VprRoiSize roi, RowKernel kernel) {
  const VprStatus st = check_full(pSrc && planes_ok(reinterpret_cast<const void* const*>(pDst)), srcStep, dstStep, roi);
  if (st != vprStatusOk) return st;
  Vpr8u* d0 = pDst[0];
  Vpr8u* d1 = pDst[1];
  Vpr8u* d2 = pDst[2];
  parallel_rows(roi.width, roi.height, roi.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y)
      kernel(row_ptr(pSrc, srcStep, y), row_ptr(d0, dstStep, y), row_ptr(d1, dstStep, y), row_ptr(d2, dstStep, y),
             roi.width);
  });
  return vprStatusOk;
}

template <class RowKernel>
VprStatus c3c1(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep, VprRoiSize roi, RowKernel kernel) {
  const VprStatus st = check_full(pSrc && pDst, srcStep, dstStep, roi);
  if (st != vprStatusOk) return st;
  parallel_rows(roi.width, roi.height, roi.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) kernel(row_ptr(pSrc, srcStep, y), row_ptr(pDst, dstStep, y), roi.width);
  });
  return vprStatusOk;
}

template <class RowKernel>
VprStatus p3c3(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst, int dstStep, VprRoiSize roi, RowKernel kernel) {
  const VprStatus st = check_full(planes_ok(reinterpret_cast<const void* const*>(pSrc)) && pDst, srcStep, dstStep, roi);
  if (st != vprStatusOk) return st;
  const Vpr8u* s0 = pSrc[0];
  const Vpr8u* s1 = pSrc[1];
  const Vpr8u* s2 = pSrc[2];
  parallel_rows(roi.width, roi.height, roi.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y)
      kernel(row_ptr(s0, srcStep, y), row_ptr(s1, srcStep, y), row_ptr(s2, srcStep, y), row_ptr(pDst, dstStep, y),
             roi.width);
  });
  return vprStatusOk;
}

template <class RowKernel>
VprStatus p3p3(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst[3], int dstStep, VprRoiSize roi,
               RowKernel kernel) {
  const VprStatus st = check_full(planes_ok(reinterpret_cast<const void* const*>(pSrc)) &&
                                      planes_ok(reinterpret_cast<const void* const*>(pDst)),
                                  srcStep, dstStep, roi);
  if (st != vprStatusOk) return st;
  const Vpr8u* s0 = pSrc[0];
  const Vpr8u* s1 = pSrc[1];
  const Vpr8u* s2 = pSrc[2];
  Vpr8u* d0 = pDst[0];
  Vpr8u* d1 = pDst[1];
  Vpr8u* d2 = pDst[2];
  parallel_rows(roi.width, roi.height, roi.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y)
      kernel(row_ptr(s0, srcStep, y), row_ptr(s1, srcStep, y), row_ptr(s2, srcStep, y), row_ptr(d0, dstStep, y),
             row_ptr(d1, dstStep, y), row_ptr(d2, dstStep, y), roi.width);
  });
  return vprStatusOk;
}

VprStatus c4p3(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep, VprRoiSize roi, bool bgr) {
  const VprStatus st = check_nostep(pSrc && planes_ok(reinterpret_cast<const void* const*>(pDst)), roi);
  if (st != vprStatusOk) return st;
  for (int y = 0; y < roi.height; ++y) {
    const Vpr8u* s = row_ptr(pSrc, srcStep, y);
    Vpr8u *a = row_ptr(pDst[0], dstStep, y), *b = row_ptr(pDst[1], dstStep, y), *c = row_ptr(pDst[2], dstStep, y);
    if (bgr)
      sse::bgr_to_ycbcr_c4_q16_row(s, a, b, c, roi.width);
    else
      sse::rgb_to_ycbcr_c4_q16_row(s, a, b, c, roi.width);
  }
  return vprStatusOk;
}

VprStatus fwd422(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], const int* dstStep, VprRoiSize roi, int channels,
                 bool bgr) {
  const VprStatus st =
      check_sampled(pSrc && planes_ok(reinterpret_cast<const void* const*>(pDst)) && dstStep, roi, false);
  if (st != vprStatusOk) return st;
  const int w = roi.width & ~1;
  for (int y = 0; y < roi.height; ++y)
    sse::rgb_to_ycbcr422_q16_row(row_ptr(pSrc, srcStep, y), row_ptr(pDst[0], dstStep[0], y),
                                 row_ptr(pDst[1], dstStep[1], y), row_ptr(pDst[2], dstStep[2], y), w, channels, bgr);
  return odd_status(roi, false);
}

VprStatus fwd411(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], const int* dstStep, VprRoiSize roi, int channels,
                 bool bgr) {
  const VprStatus st =
      check_sampled(pSrc && planes_ok(reinterpret_cast<const void* const*>(pDst)) && dstStep, roi, true);
  if (st != vprStatusOk) return st;
  const int w = roi.width & ~1;
  for (int r = 0; r < roi.height / 2; ++r) {
    const Vpr8u* s0 = row_ptr(pSrc, srcStep, 2 * r);
    Vpr8u* y0 = row_ptr(pDst[0], dstStep[0], 2 * r);
    sse::rgb_to_ycbcr411_q16_rows(s0, row_ptr(s0, srcStep, 1), y0, row_ptr(y0, dstStep[0], 1),
                                  row_ptr(pDst[1], dstStep[1], r), row_ptr(pDst[2], dstStep[2], r), w, channels, bgr);
  }
  return odd_status(roi, true);
}

VprStatus inv_p3c4(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst, int dstStep, VprRoiSize roi, bool bgr,
                   Vpr8u alpha) {
  const VprStatus st = check_nostep(planes_ok(reinterpret_cast<const void* const*>(pSrc)) && pDst, roi);
  if (st != vprStatusOk) return st;
  for (int y = 0; y < roi.height; ++y)
    sse::ycbcr_to_rgb_q16_row(row_ptr(pSrc[0], srcStep, y), row_ptr(pSrc[1], srcStep, y),
                              row_ptr(pSrc[2], srcStep, y), row_ptr(pDst, dstStep, y), roi.width, 1, 4, bgr, alpha);
  return vprStatusOk;
}

VprStatus inv_sampled(const Vpr8u* const pSrc[3], const int* srcStep, Vpr8u* pDst, int dstStep, VprRoiSize roi,
                      bool v2, int channels, bool bgr, Vpr8u alpha) {
  const VprStatus st =
      check_sampled(planes_ok(reinterpret_cast<const void* const*>(pSrc)) && srcStep && pDst, roi, v2);
  if (st != vprStatusOk) return st;
  const int w = roi.width & ~1;
  if (v2) {
    for (int r = 0; r < roi.height / 2; ++r) {
      const Vpr8u* y0 = row_ptr(pSrc[0], srcStep[0], 2 * r);
      Vpr8u* d0 = row_ptr(pDst, dstStep, 2 * r);
      sse::ycbcr411_to_rgb_q16_rows(y0, row_ptr(y0, srcStep[0], 1), row_ptr(pSrc[1], srcStep[1], r),
                                    row_ptr(pSrc[2], srcStep[2], r), d0, row_ptr(d0, dstStep, 1), w, channels, bgr,
                                    alpha);
    }
  } else {
    for (int y = 0; y < roi.height; ++y)
      sse::ycbcr_to_rgb_q16_row(row_ptr(pSrc[0], srcStep[0], y), row_ptr(pSrc[1], srcStep[1], y),
                                row_ptr(pSrc[2], srcStep[2], y), row_ptr(pDst, dstStep, y), w, 2, channels, bgr,
                                alpha);
  }
  return odd_status(roi, v2);
}

}  // namespace
}  // namespace vpr::jpeg

using namespace vpr::jpeg;

VPR_EXTERN_C_BEGIN

VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize) {
  return c3p3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_RGBToYCbCr_JPEG_8u_C3P3R);
}
VPR_API VprStatus vpriBGRToYCbCr_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize) {
  return c3p3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_BGRToYCbCr_JPEG_8u_C3P3R);
}
VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_P3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst[3],
                                             int dstStep, VprRoiSize roiSize) {
  return p3p3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_RGBToYCbCr_JPEG_8u_P3R_opt);
}
VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize) {
  return c4p3(pSrc, srcStep, pDst, dstStep, roiSize, false);
}
VPR_API VprStatus vpriBGRToYCbCr_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize) {
  return c4p3(pSrc, srcStep, pDst, dstStep, roiSize, true);
}
VPR_API VprStatus vpriRGBToY_JPEG_8u_C3C1R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize) {
  return c3c1(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_RGBToY_JPEG_8u_C3C1R);
}
VPR_API VprStatus vpriBGRToY_JPEG_8u_C3C1R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize) {
  return c3c1(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_BGRToY_JPEG_8u_C3C1R);
}
VPR_API VprStatus vpriRGBToY_JPEG_8u_P3C1R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize) {
  return p3c3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_RGBToY_JPEG_8u_P3C1R_opt);
}

VPR_API VprStatus vpriRGBToYCbCr422_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd422(pSrc, srcStep, pDst, dstStep, roiSize, 3, false);
}
VPR_API VprStatus vpriBGRToYCbCr422_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd422(pSrc, srcStep, pDst, dstStep, roiSize, 3, true);
}
VPR_API VprStatus vpriRGBToYCbCr422_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd422(pSrc, srcStep, pDst, dstStep, roiSize, 4, false);
}
VPR_API VprStatus vpriBGRToYCbCr422_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd422(pSrc, srcStep, pDst, dstStep, roiSize, 4, true);
}
VPR_API VprStatus vpriRGBToYCbCr411_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd411(pSrc, srcStep, pDst, dstStep, roiSize, 3, false);
}
VPR_API VprStatus vpriBGRToYCbCr411_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd411(pSrc, srcStep, pDst, dstStep, roiSize, 3, true);
}
VPR_API VprStatus vpriRGBToYCbCr411_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd411(pSrc, srcStep, pDst, dstStep, roiSize, 4, false);
}
VPR_API VprStatus vpriBGRToYCbCr411_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize) {
  return fwd411(pSrc, srcStep, pDst, dstStep, roiSize, 4, true);
}

VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize) {
  return p3c3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt);
}
VPR_API VprStatus vpriYCbCrToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize) {
  return p3c3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt);
}
VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst[3],
                                             int dstStep, VprRoiSize roiSize) {
  return p3p3(pSrc, srcStep, pDst, dstStep, roiSize, sse::ownpj_YCbCrToRGB_JPEG_8u_P3R_opt);
}
VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_p3c4(pSrc, srcStep, pDst, dstStep, roiSize, false, aval);
}
VPR_API VprStatus vpriYCbCrToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_p3c4(pSrc, srcStep, pDst, dstStep, roiSize, true, aval);
}
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, false, 3, false, 0);
}
VPR_API VprStatus vpriYCbCr422ToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, false, 3, true, 0);
}
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, false, 4, false, aval);
}
VPR_API VprStatus vpriYCbCr422ToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, false, 4, true, aval);
}
VPR_API VprStatus vpriYCbCr411ToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, true, 3, false, 0);
}
VPR_API VprStatus vpriYCbCr411ToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, true, 3, true, 0);
}
VPR_API VprStatus vpriYCbCr411ToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, true, 4, false, aval);
}
VPR_API VprStatus vpriYCbCr411ToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval) {
  return inv_sampled(pSrc, srcStep, pDst, dstStep, roiSize, true, 4, true, aval);
}
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_C2C3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                                  VprRoiSize roiSize) {
  const VprStatus st = check_sampled(pSrc && pDst, roiSize, false);
  if (st != vprStatusOk) return st;
  const int w = roiSize.width & ~1;
  vpr::parallel_rows(roiSize.width, roiSize.height, roiSize.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y)
      sse::ycbcr422_c2_to_rgb_tbl_row(vpr::simd::row_ptr(pSrc, srcStep, y), vpr::simd::row_ptr(pDst, dstStep, y), w);
  });
  return odd_status(roiSize, false);
}

VPR_EXTERN_C_END
