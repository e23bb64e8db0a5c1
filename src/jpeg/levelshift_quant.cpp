// Level shift, quantisation tables and single-block quantisation: exported
// entries, table builders and the scalar twins of the SSE kernels.
#include "jpeg/levelshift_quant.h"

#include <algorithm>

#include "core/parallel.h"
#include "core/simd.h"
#include "vprjp_jpeg_transform.h"

namespace vpr::jpeg {

alignas(64) const int32_t zigzag_index_Fwd[64] = {
    0,  1,  5,  6,  14, 15, 27, 28,  //
    2,  4,  7,  13, 16, 26, 29, 42,  //
    3,  8,  12, 17, 25, 30, 41, 43,  //
    9,  11, 18, 24, 31, 40, 44, 53,  //
    10, 19, 23, 32, 39, 45, 52, 54,  //
    20, 22, 33, 38, 46, 51, 55, 60,  //
    21, 34, 37, 47, 50, 56, 59, 61,  //
    35, 36, 48, 49, 57, 58, 62, 63};

alignas(64) const int32_t own_pj_izigzag_index[72] = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,   //
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,  //
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,  //
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,  //
    63, 63, 63, 63, 63, 63, 63, 63};

void quant_fwd_raw_table_scale(uint8_t* raw, int quality) {
  const int32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  for (int i = 0; i < 64; ++i) {
    const int32_t v = (static_cast<int32_t>(raw[i]) * scale + 50) / 100;
    raw[i] = static_cast<uint8_t>(std::clamp<int32_t>(v, 1, 255));
  }
}

bool quant_fwd_table_init_16u(const uint8_t* raw, uint16_t* fwd) {
  bool ok = true;
  for (int n = 0; n < 64; ++n) {
    const uint32_t q = raw[zigzag_index_Fwd[n]];
    if (q == 0) {
      fwd[n] = 0;
      ok = false;
    } else {
      fwd[n] = static_cast<uint16_t>((32768u + q / 2) / q);
    }
  }
  return ok;
}

bool quant_fwd_table_init_32f(const uint8_t* raw, float* fwd) {
  bool ok = true;
  for (int n = 0; n < 64; ++n) {
    const uint32_t q = raw[zigzag_index_Fwd[n]];
    if (q == 0) {
      fwd[n] = 0.0f;
      ok = false;
    } else {
      fwd[n] = 1.0f / static_cast<float>(q);
    }
  }
  return ok;
}

void quant_inv_table_init_16u(const uint8_t* raw, uint16_t* inv) {
  for (int n = 0; n < 64; ++n) inv[n] = raw[zigzag_index_Fwd[n]];
}

namespace ref {

void sub128_rows(const uint8_t* src, int src_step, int16_t* dst, int dst_step, int width, int rows) {
  for (int y = 0; y < rows; ++y) {
    const uint8_t* s = simd::row_ptr(src, src_step, y);
    int16_t* d = simd::row_ptr(dst, dst_step, y);
    for (int x = 0; x < width; ++x) d[x] = static_cast<int16_t>(static_cast<int16_t>(s[x]) - 128);
  }
}

void add128_rows(const int16_t* src, int src_step, uint8_t* dst, int dst_step, int width, int rows) {
  for (int y = 0; y < rows; ++y) {
    const int16_t* s = simd::row_ptr(src, src_step, y);
    uint8_t* d = simd::row_ptr(dst, dst_step, y);
    for (int x = 0; x < width; ++x) {
      const int32_t v = std::min<int32_t>(static_cast<int32_t>(s[x]) + 128, 32767);  // saturating add
      d[x] = static_cast<uint8_t>(std::clamp<int32_t>(v, 0, 255));
    }
  }
}

void quant_fwd_8x8(int16_t* block, const uint16_t* fwd) {
  for (int i = 0; i < 64; ++i) {
    const int16_t c8 = static_cast<int16_t>(static_cast<uint16_t>(block[i]) << 3);  // wraps
    const int32_t hi = (static_cast<int32_t>(c8) * static_cast<int32_t>(fwd[i] >> 1)) >> 16;
    block[i] = static_cast<int16_t>((hi + 1) >> 1);
  }
}

void quant_inv_8x8(int16_t* block, const uint16_t* inv) {
  for (int i = 0; i < 64; ++i)
    block[i] = static_cast<int16_t>(static_cast<uint16_t>(static_cast<int32_t>(block[i]) * inv[i]));
}

}  // namespace ref
}  // namespace vpr::jpeg

using namespace vpr::jpeg;

namespace {

VprStatus check_region(const void* src, int src_step, const void* dst, int dst_step, VprRoiSize roi) {
  if (!src) return vprStatusNullPointer;
  if (src_step < 1) return vprStatusBadStep;
  if (!dst) return vprStatusNullPointer;
  if (dst_step < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  return vprStatusOk;
}

}  // namespace

extern "C" {

VPR_API VprStatus vpriSub128_JPEG_8u16s_C1R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDst, int dstStep,
                                            VprRoiSize roiSize) {
  if (const VprStatus st = check_region(pSrc, srcStep, pDst, dstStep, roiSize)) return st;
  vpr::parallel_rows(roiSize.width, roiSize.height, roiSize.height, [&](int y0, int y1) {
    sse::sub128_rows(vpr::simd::row_ptr(pSrc, srcStep, y0), srcStep, vpr::simd::row_ptr(pDst, dstStep, y0), dstStep,
                     roiSize.width, y1 - y0);
  });
  return vprStatusOk;
}

VPR_API VprStatus vpriAdd128_JPEG_16s8u_C1R(const Vpr16s* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                            VprRoiSize roiSize) {
  if (const VprStatus st = check_region(pSrc, srcStep, pDst, dstStep, roiSize)) return st;
  vpr::parallel_rows(roiSize.width, roiSize.height, roiSize.height, [&](int y0, int y1) {
    sse::add128_rows(vpr::simd::row_ptr(pSrc, srcStep, y0), srcStep, vpr::simd::row_ptr(pDst, dstStep, y0), dstStep,
                     roiSize.width, y1 - y0);
  });
  return vprStatusOk;
}

VPR_API VprStatus vpriQuantFwdRawTableInit_JPEG_8u(Vpr8u* pRawQuantTable, int quality) {
  if (!pRawQuantTable) return vprStatusNullPointer;
  if (quality < 1) return vprStatusBadArg;
  quant_fwd_raw_table_scale(pRawQuantTable, quality);
  return vprStatusOk;
}

VPR_API VprStatus vpriQuantFwdTableInit_JPEG_8u16u(const Vpr8u* pRawQuantTable, Vpr16u* pFwdQuantTable) {
  if (!pRawQuantTable || !pFwdQuantTable) return vprStatusNullPointer;
  return quant_fwd_table_init_16u(pRawQuantTable, pFwdQuantTable) ? vprStatusOk : vprStatusDivByZeroWarning;
}

VPR_API VprStatus vpriQuantFwdTableInit_JPEG_8u32f(const Vpr8u* pRawQuantTable, Vpr32f* pFwdQuantTable) {
  if (!pRawQuantTable || !pFwdQuantTable) return vprStatusNullPointer;
  return quant_fwd_table_init_32f(pRawQuantTable, pFwdQuantTable) ? vprStatusOk : vprStatusDivByZeroWarning;
}

VPR_API VprStatus vpriQuantInvTableInit_JPEG_8u16u(const Vpr8u* pRawQuantTable, Vpr16u* pInvQuantTable) {
  if (!pInvQuantTable || !pRawQuantTable) return vprStatusNullPointer;
  quant_inv_table_init_16u(pRawQuantTable, pInvQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriQuantFwd8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pFwdQuantTable) {
  if (!pSrcDst || !pFwdQuantTable) return vprStatusNullPointer;
  sse::quant_fwd_8x8(pSrcDst, pFwdQuantTable);
  return vprStatusOk;
}

VPR_API VprStatus vpriQuantInv8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pInvQuantTable) {
  if (!pSrcDst || !pInvQuantTable) return vprStatusNullPointer;
  sse::quant_inv_8x8(pSrcDst, pInvQuantTable);
  return vprStatusOk;
}

}  // extern "C"
