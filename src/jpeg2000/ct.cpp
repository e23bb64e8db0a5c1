// JPEG 2000 component transforms: exported entries and the scalar rows.
#include "jpeg2000/ct.h"

#include <cstddef>

#include "core/simd.h"
#include "jpeg2000/ct_px.h"
#include "vprjp_jpeg2000.h"

namespace vpr::j2k::ref {
namespace {

template <class X, class T>
void c3p3(const T* s, T* d0, T* d1, T* d2, int w) {
  for (int x = 0; x < w; ++x) X::px(s[3 * x], s[3 * x + 1], s[3 * x + 2], d0[x], d1[x], d2[x]);
}
template <class X, class T>
void p3(T* p0, T* p1, T* p2, int w) {
  for (int x = 0; x < w; ++x) {
    T a, b, c;
    X::px(p0[x], p1[x], p2[x], a, b, c);
    p0[x] = a;
    p1[x] = b;
    p2[x] = c;
  }
}
template <class X, class T>
void p3c3(const T* s0, const T* s1, const T* s2, T* d, int w) {
  for (int x = 0; x < w; ++x) X::px(s0[x], s1[x], s2[x], d[3 * x], d[3 * x + 1], d[3 * x + 2]);
}

}  // namespace

#define VPR_J2K_CT_REF(T)                                                                                        \
  void rct_fwd_c3p3(const T* src, T* d0, T* d1, T* d2, int w) { c3p3<ct::RctFwd>(src, d0, d1, d2, w); }          \
  void rct_fwd_p3(T* p0, T* p1, T* p2, int w) { p3<ct::RctFwd>(p0, p1, p2, w); }                                 \
  void rct_inv_p3c3(const T* s0, const T* s1, const T* s2, T* dst, int w) { p3c3<ct::RctInv>(s0, s1, s2, dst, w); } \
  void rct_inv_p3(T* p0, T* p1, T* p2, int w) { p3<ct::RctInv>(p0, p1, p2, w); }                                 \
  void ict_fwd_p3(T* p0, T* p1, T* p2, int w) { p3<ct::IctFwd>(p0, p1, p2, w); }                                 \
  void ict_inv_p3(T* p0, T* p1, T* p2, int w) { p3<ct::IctInv>(p0, p1, p2, w); }
VPR_J2K_CT_REF(int16_t)
VPR_J2K_CT_REF(int32_t)
#undef VPR_J2K_CT_REF

void ict_fwd_c3p3(const float* src, float* d0, float* d1, float* d2, int w) { c3p3<ct::IctFwd>(src, d0, d1, d2, w); }
void ict_fwd_p3(float* p0, float* p1, float* p2, int w) { p3<ct::IctFwd>(p0, p1, p2, w); }
void ict_inv_p3c3(const float* s0, const float* s1, const float* s2, float* dst, int w) {
  p3c3<ct::IctInv>(s0, s1, s2, dst, w);
}
void ict_inv_p3(float* p0, float* p1, float* p2, int w) { p3<ct::IctInv>(p0, p1, p2, w); }

}  // namespace vpr::j2k::ref

// ---------------------------------------------------------------- exported entries
namespace {

using vpr::simd::row_ptr;

template <class T>
bool any_null(T* const* p) {
  return !p || !p[0] || !p[1] || !p[2];
}

template <class T, class K>
VprStatus run_p3(T* const* p, int32_t step, VprRoiSize roi, K kernel) {
  if (any_null(p)) return vprStatusNullPointer;
  if (step < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  for (int y = 0; y < roi.height; ++y)
    kernel(row_ptr(p[0], step, y), row_ptr(p[1], step, y), row_ptr(p[2], step, y), roi.width);
  return vprStatusOk;
}

template <class T, class K>
VprStatus run_c3p3(const T* src, int32_t srcStep, T* const* dst, int32_t dstStep, VprRoiSize roi, K kernel) {
  if (!src) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (any_null(dst)) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  for (int y = 0; y < roi.height; ++y)
    kernel(row_ptr(src, srcStep, y), row_ptr(dst[0], dstStep, y), row_ptr(dst[1], dstStep, y),
           row_ptr(dst[2], dstStep, y), roi.width);
  return vprStatusOk;
}

template <class T, class K>
VprStatus run_p3c3(const T* const* src, int32_t srcStep, T* dst, int32_t dstStep, VprRoiSize roi, K kernel) {
  if (any_null(src)) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (!dst) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  for (int y = 0; y < roi.height; ++y)
    kernel(row_ptr(src[0], srcStep, y), row_ptr(src[1], srcStep, y), row_ptr(src[2], srcStep, y),
           row_ptr(dst, dstStep, y), roi.width);
  return vprStatusOk;
}

namespace sse = vpr::j2k::sse;

}  // namespace

VPR_EXTERN_C_BEGIN

VPR_API VprStatus vpriRCTFwd_JPEG2K_16s_C3P3R(const Vpr16s* pSrc, int32_t srcStep, Vpr16s* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_c3p3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr16s* s, Vpr16s* a, Vpr16s* b, Vpr16s* c, int w) { sse::rct_fwd_c3p3(s, a, b, c, w); });
}
VPR_API VprStatus vpriRCTFwd_JPEG2K_32s_C3P3R(const Vpr32s* pSrc, int32_t srcStep, Vpr32s* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_c3p3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr32s* s, Vpr32s* a, Vpr32s* b, Vpr32s* c, int w) { sse::rct_fwd_c3p3(s, a, b, c, w); });
}
VPR_API VprStatus vpriRCTFwd_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr16s* a, Vpr16s* b, Vpr16s* c, int w) { sse::rct_fwd_p3(a, b, c, w); });
}
VPR_API VprStatus vpriRCTFwd_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32s* a, Vpr32s* b, Vpr32s* c, int w) { sse::rct_fwd_p3(a, b, c, w); });
}

VPR_API VprStatus vpriRCTInv_JPEG2K_16s_P3C3R(const Vpr16s* pSrc[3], int32_t srcStep, Vpr16s* pDst, int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_p3c3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr16s* a, const Vpr16s* b, const Vpr16s* c, Vpr16s* d, int w) {
                    sse::rct_inv_p3c3(a, b, c, d, w);
                  });
}
VPR_API VprStatus vpriRCTInv_JPEG2K_32s_P3C3R(const Vpr32s* pSrc[3], int32_t srcStep, Vpr32s* pDst, int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_p3c3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr32s* a, const Vpr32s* b, const Vpr32s* c, Vpr32s* d, int w) {
                    sse::rct_inv_p3c3(a, b, c, d, w);
                  });
}
VPR_API VprStatus vpriRCTInv_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr16s* a, Vpr16s* b, Vpr16s* c, int w) { sse::rct_inv_p3(a, b, c, w); });
}
VPR_API VprStatus vpriRCTInv_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32s* a, Vpr32s* b, Vpr32s* c, int w) { sse::rct_inv_p3(a, b, c, w); });
}

VPR_API VprStatus vpriICTFwd_JPEG2K_32f_C3P3R(const Vpr32f* pSrc, int32_t srcStep, Vpr32f* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_c3p3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr32f* s, Vpr32f* a, Vpr32f* b, Vpr32f* c, int w) { sse::ict_fwd_c3p3(s, a, b, c, w); });
}
VPR_API VprStatus vpriICTFwd_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr16s* a, Vpr16s* b, Vpr16s* c, int w) { sse::ict_fwd_p3(a, b, c, w); });
}
VPR_API VprStatus vpriICTFwd_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32s* a, Vpr32s* b, Vpr32s* c, int w) { sse::ict_fwd_p3(a, b, c, w); });
}
VPR_API VprStatus vpriICTFwd_JPEG2K_32f_P3IR(Vpr32f* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32f* a, Vpr32f* b, Vpr32f* c, int w) { sse::ict_fwd_p3(a, b, c, w); });
}

VPR_API VprStatus vpriICTInv_JPEG2K_32f_P3C3R(const Vpr32f* pSrc[3], int32_t srcStep, Vpr32f* pDst, int32_t dstStep,
                                              VprRoiSize roiSize) {
  return run_p3c3(pSrc, srcStep, pDst, dstStep, roiSize,
                  [](const Vpr32f* a, const Vpr32f* b, const Vpr32f* c, Vpr32f* d, int w) {
                    sse::ict_inv_p3c3(a, b, c, d, w);
                  });
}
VPR_API VprStatus vpriICTInv_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr16s* a, Vpr16s* b, Vpr16s* c, int w) { sse::ict_inv_p3(a, b, c, w); });
}
VPR_API VprStatus vpriICTInv_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32s* a, Vpr32s* b, Vpr32s* c, int w) { sse::ict_inv_p3(a, b, c, w); });
}
VPR_API VprStatus vpriICTInv_JPEG2K_32f_P3IR(Vpr32f* pSrcDst[3], int32_t step, VprRoiSize roiSize) {
  return run_p3(pSrcDst, step, roiSize, [](Vpr32f* a, Vpr32f* b, Vpr32f* c, int w) { sse::ict_inv_p3(a, b, c, w); });
}

VPR_EXTERN_C_END
