// JPEG chroma down- and up-sampling: scalar row kernels and the exported
// whole-image and row entries.
#include "jpeg/sampling.h"

#include "core/parallel.h"
#include "core/simd.h"
#include "vprjp_jpeg_color.h"

namespace vpr::jpeg::ref {

void ownpj_SampleDownH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int dstWidth) {
  for (int j = 0; j < dstWidth; ++j) dst[j] = static_cast<uint8_t>((src[2 * j] + src[2 * j + 1] + 1) >> 1);
}

void ownpj_SampleDownH2V2_JPEG_8u_C1(const uint8_t* s0, const uint8_t* s1, uint8_t* dst, int dstWidth) {
  for (int j = 0; j < dstWidth; ++j)
    dst[j] = static_cast<uint8_t>((s0[2 * j] + s0[2 * j + 1] + s1[2 * j] + s1[2 * j + 1] + 3) >> 2);
}

void ownpj_SampleUpH2V1_JPEG_8u_C1(const uint8_t* x, uint8_t* dst, int dstWidth) {
  for (int j = 0; j < dstWidth; ++j) {
    const int i = j >> 1;
    dst[j] = static_cast<uint8_t>((j & 1) ? (3 * x[i] + x[i + 1] + 2) >> 2 : (3 * x[i] + x[i - 1] + 1) >> 2);
  }
}

void ownpj_SampleUpH2V2_JPEG_8u_C1(const uint8_t* n, const uint8_t* f, uint8_t* dst, int dstWidth) {
  auto t = [&](int i) { return 3 * n[i] + f[i]; };
  for (int j = 0; j < dstWidth; ++j) {
    const int i = j >> 1;
    dst[j] = static_cast<uint8_t>((j & 1) ? (3 * t(i) + t(i + 1) + 7) >> 4 : (3 * t(i) + t(i - 1) + 8) >> 4);
  }
}

void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* src, int srcWidth, uint8_t* dst) {
  for (int j = 0; j < srcWidth / 2; ++j)
    dst[j] = static_cast<uint8_t>((src[2 * j] + src[2 * j + 1] + ((j & 1) ? 0 : 1)) >> 1);
}

void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* s1, const uint8_t* s2, int srcWidth, uint8_t* dst) {
  for (int j = 0; j < srcWidth / 2; ++j)
    dst[j] = static_cast<uint8_t>((s1[2 * j] + s1[2 * j + 1] + s2[2 * j] + s2[2 * j + 1] + ((j & 1) ? 2 : 1)) >> 2);
}

void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* x, int n, uint8_t* dst) {
  for (int i = 0; i < n; ++i) {
    const int prev = x[i > 0 ? i - 1 : 0], next = x[i + 1 < n ? i + 1 : n - 1];
    dst[2 * i] = static_cast<uint8_t>((3 * x[i] + prev + 1) >> 2);
    dst[2 * i + 1] = static_cast<uint8_t>((3 * x[i] + next + 2) >> 2);
  }
}

void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* nr, const uint8_t* fr, int n, uint8_t* dst) {
  auto t = [&](int i) { return 3 * nr[i] + fr[i]; };
  for (int i = 0; i < n; ++i) {
    const int prev = t(i > 0 ? i - 1 : 0), next = t(i + 1 < n ? i + 1 : n - 1);
    dst[2 * i] = static_cast<uint8_t>((3 * t(i) + prev + 8) >> 4);
    dst[2 * i + 1] = static_cast<uint8_t>((3 * t(i) + next + 7) >> 4);
  }
}

}  // namespace vpr::jpeg::ref

namespace {

using vpr::simd::row_ptr;
namespace k = vpr::jpeg::sse;

// Source: pointer, step, size; then destination: pointer, step, size.
VprStatus check_regions(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, const Vpr8u* pDst, int dstStep,
                        VprRoiSize dstSize) {
  if (!pSrc) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (srcSize.width < 1 || srcSize.height < 1) return vprStatusBadSize;
  if (!pDst) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  if (dstSize.width < 1 || dstSize.height < 1) return vprStatusBadSize;
  return vprStatusOk;
}

}  // namespace

VPR_EXTERN_C_BEGIN

VPR_API VprStatus vpriSampleDownH2V1_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                                 int dstStep, VprRoiSize dstSize) {
  const VprStatus st = check_regions(pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
  if (st != vprStatusOk) return st;
  vpr::parallel_rows(dstSize.width, dstSize.height, dstSize.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y)
      k::ownpj_SampleDownH2V1_JPEG_8u_C1(row_ptr(pSrc, srcStep, y), row_ptr(pDst, dstStep, y), dstSize.width);
  });
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleDownH2V2_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                                 int dstStep, VprRoiSize dstSize) {
  const VprStatus st = check_regions(pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
  if (st != vprStatusOk) return st;
  vpr::parallel_rows(dstSize.width, dstSize.height, dstSize.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
      const Vpr8u* s0 = row_ptr(pSrc, srcStep, 2 * y);
      k::ownpj_SampleDownH2V2_JPEG_8u_C1(s0, row_ptr(s0, srcStep, 1), row_ptr(pDst, dstStep, y), dstSize.width);
    }
  });
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleUpH2V1_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                               int dstStep, VprRoiSize dstSize) {
  const VprStatus st = check_regions(pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
  if (st != vprStatusOk) return st;
  for (int y = 0; y < dstSize.height; ++y)
    k::ownpj_SampleUpH2V1_JPEG_8u_C1(row_ptr(pSrc, srcStep, y), row_ptr(pDst, dstStep, y), dstSize.width);
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleUpH2V2_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                               int dstStep, VprRoiSize dstSize) {
  const VprStatus st = check_regions(pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
  if (st != vprStatusOk) return st;
  vpr::parallel_rows(dstSize.width, dstSize.height, dstSize.height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
      const Vpr8u* nr = row_ptr(pSrc, srcStep, y >> 1);
      const Vpr8u* fr = row_ptr(nr, srcStep, (y & 1) ? 1 : -1);
      k::ownpj_SampleUpH2V2_JPEG_8u_C1(nr, fr, row_ptr(pDst, dstStep, y), dstSize.width);
    }
  });
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleDownRowH2V1_Box_JPEG_8u_C1(const Vpr8u* pSrc, int srcWidth, Vpr8u* pDst) {
  if (!pSrc || !pDst) return vprStatusNullPointer;
  if (srcWidth < 1) return vprStatusBadSize;
  k::ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(pSrc, srcWidth, pDst);
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleDownRowH2V2_Box_JPEG_8u_C1(const Vpr8u* pSrc1, const Vpr8u* pSrc2, int srcWidth,
                                                       Vpr8u* pDst) {
  if (!pSrc1 || !pSrc2 || !pDst) return vprStatusNullPointer;
  if (srcWidth < 1) return vprStatusBadSize;
  k::ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(pSrc1, pSrc2, srcWidth, pDst);
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Vpr8u* pSrc, int srcWidth, Vpr8u* pDst) {
  if (!pSrc || !pDst) return vprStatusNullPointer;
  if (srcWidth < 1) return vprStatusBadSize;
  k::ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(pSrc, srcWidth, pDst);
  return vprStatusOk;
}

VPR_API VprStatus vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Vpr8u* pSrcNear, const Vpr8u* pSrcFar,
                                                          int srcWidth, Vpr8u* pDst) {
  if (!pSrcNear || !pSrcFar || !pDst) return vprStatusNullPointer;
  if (srcWidth < 1) return vprStatusBadSize;
  k::ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(pSrcNear, pSrcFar, srcWidth, pDst);
  return vprStatusOk;
}

VPR_EXTERN_C_END
