// JPEG 2000 component transforms: row kernels.
//   c3p3: interleaved R,G,B row -> three plane rows
//   p3:   three plane rows transformed in place
//   p3c3: three plane rows -> interleaved row
// ref:: scalar twins from the formulas in ct_px.h; sse:: 4 or 8 samples a
// step with the same arithmetic.
#pragma once

#include <cstdint>

namespace vpr::j2k {

#define VPR_J2K_CT_ROWS(T)                                                                     \
  void rct_fwd_c3p3(const T* src, T* d0, T* d1, T* d2, int w);                                 \
  void rct_fwd_p3(T* p0, T* p1, T* p2, int w);                                                 \
  void rct_inv_p3c3(const T* s0, const T* s1, const T* s2, T* dst, int w);                     \
  void rct_inv_p3(T* p0, T* p1, T* p2, int w);                                                 \
  void ict_fwd_p3(T* p0, T* p1, T* p2, int w);                                                 \
  void ict_inv_p3(T* p0, T* p1, T* p2, int w);

#define VPR_J2K_CT_ROWS_F                                                                      \
  void ict_fwd_c3p3(const float* src, float* d0, float* d1, float* d2, int w);                 \
  void ict_fwd_p3(float* p0, float* p1, float* p2, int w);                                     \
  void ict_inv_p3c3(const float* s0, const float* s1, const float* s2, float* dst, int w);     \
  void ict_inv_p3(float* p0, float* p1, float* p2, int w);

namespace ref {
VPR_J2K_CT_ROWS(int16_t)
VPR_J2K_CT_ROWS(int32_t)
VPR_J2K_CT_ROWS_F
}  // namespace ref
namespace sse {
VPR_J2K_CT_ROWS(int16_t)
VPR_J2K_CT_ROWS(int32_t)
VPR_J2K_CT_ROWS_F
}  // namespace sse

#undef VPR_J2K_CT_ROWS
#undef VPR_J2K_CT_ROWS_F

}  // namespace vpr::j2k
