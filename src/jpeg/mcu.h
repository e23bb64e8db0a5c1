// MCU-level conversion kernels: one minimum coded unit between interleaved
// 8-bit pixels and level-shifted 16-bit 8x8 blocks.  Forward kernels take
// (pixels, step, Y blocks, Cb block, Cr block); inverse kernels take
// (Y blocks, Cb block, Cr block, pixels, step).  Kernels check nothing.
//
// ref::  scalar twins written straight from the formulas.
// sse::  the SSE4.1 kernels the exported entries call.
#pragma once

#include <cstdint>

#define VPR_MCU_FWD_KERNELS(X)                 \
  X(ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R)     \
  X(ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R)     \
  X(ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R)     \
  X(ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R)     \
  X(ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R)     \
  X(ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R)     \
  X(ownpj_SampleDown444LS_MCU_8u16s_C3P3R)     \
  X(ownpj_SampleDown422LS_MCU_8u16s_C3P3R)     \
  X(ownpj_SampleDown411LS_MCU_8u16s_C3P3R)     \
  X(ownpj_Split422LS_MCU_8u16s_C2P3R)

#define VPR_MCU_INV_KERNELS(X)                 \
  X(ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R)     \
  X(ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R)     \
  X(ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R)     \
  X(ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R)     \
  X(ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R)     \
  X(ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R)     \
  X(ownpj_SampleUp444LS_MCU_16s8u_P3C3R)       \
  X(ownpj_SampleUp422LS_MCU_16s8u_P3C3R)       \
  X(ownpj_SampleUp411LS_MCU_16s8u_P3C3R)       \
  X(ownpj_Join422LS_MCU_16s8u_P3C2R)

#define VPR_MCU_DECLARE_FWD(name) \
  void name(const uint8_t* pSrc, int srcStep, int16_t* pY, int16_t* pCb, int16_t* pCr);
#define VPR_MCU_DECLARE_INV(name) \
  void name(const int16_t* pY, const int16_t* pCb, const int16_t* pCr, uint8_t* pDst, int dstStep);

namespace vpr::jpeg {

// Fixed-point constants of the MCU conversions.
namespace mcu {
// Forward, Q14 (4:2:2 uses Q15 on pair sums, 4:2:0 Q16 on 2x2 sums).
inline constexpr int32_t kYR = 4899, kYG = 9617, kYB = 1868, kYBias = -2088960;  // 128*2^14 - 8192
inline constexpr int32_t kCbR = -2764, kCbG = -5428, kCbB = 8192;
inline constexpr int32_t kCrR = 8192, kCrG = -6860, kCrB = -1332;
// Inverse 4:4:4, Q14; 2105344 = 128*2^14 + 8192.
inline constexpr int32_t kRCr = 22970, kGCb = -5638, kGCr = -11700, kBCb = 29032, kInvBias = 2105344;
// Inverse 4:2:2 / 4:2:0: Q13 R and B terms (1052672 = 128*2^13 + 4096),
// Q14 G term subtracted from Y' (2088960 = 128*2^14 - 8192).
inline constexpr int32_t kRCr13 = 11485, kBCb13 = 14516, kBias13 = 1052672;
inline constexpr int32_t kGCb14 = 5638, kGCr14 = 11700, kGBias14 = -2088960;
}  // namespace mcu

namespace ref {
VPR_MCU_FWD_KERNELS(VPR_MCU_DECLARE_FWD)
VPR_MCU_INV_KERNELS(VPR_MCU_DECLARE_INV)
}  // namespace ref

namespace sse {
VPR_MCU_FWD_KERNELS(VPR_MCU_DECLARE_FWD)
VPR_MCU_INV_KERNELS(VPR_MCU_DECLARE_INV)
}  // namespace sse

}  // namespace vpr::jpeg
