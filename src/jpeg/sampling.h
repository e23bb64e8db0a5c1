// JPEG chroma down- and up-sampling: per-row kernels.
//
// Whole-image kernels take the destination width; the up-samplers read one
// source sample before and after the samples they centre on (x[-1], x[n]).
// Row kernels take the source width and handle the row ends themselves.
// ref:: scalar kernels from the formulas, sse:: SSE4.1 kernels with the
// same results.
#pragma once

#include <cstdint>

namespace vpr::jpeg {

#define VPR_SAMPLING_KERNELS                                                                                \
  /* d[j] = (s[2j] + s[2j+1] + 1) >> 1 */                                                                   \
  void ownpj_SampleDownH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int dstWidth);                     \
  /* d[j] = (2x2 sum + 3) >> 2 */                                                                           \
  void ownpj_SampleDownH2V2_JPEG_8u_C1(const uint8_t* src0, const uint8_t* src1, uint8_t* dst, int dstWidth); \
  /* triangle 3:1, reads src[-1] .. src[(dstWidth + 1) / 2] */                                              \
  void ownpj_SampleUpH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int dstWidth);                       \
  /* t = 3 near + far, biases 8 / 7, reads [-1, (dstWidth + 1) / 2] of both rows */                         \
  void ownpj_SampleUpH2V2_JPEG_8u_C1(const uint8_t* near, const uint8_t* far, uint8_t* dst, int dstWidth);  \
  /* srcWidth / 2 outputs, bias 1, 0, 1, 0, ... */                                                          \
  void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* src, int srcWidth, uint8_t* dst);              \
  /* srcWidth / 2 outputs, bias 1, 2, 1, 2, ... */                                                          \
  void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* src1, const uint8_t* src2, int srcWidth,       \
                                              uint8_t* dst);                                                \
  /* 2 * srcWidth outputs, end samples replicated */                                                        \
  void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* src, int srcWidth, uint8_t* dst);           \
  void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* near, const uint8_t* far, int srcWidth,     \
                                                 uint8_t* dst);

namespace ref {
VPR_SAMPLING_KERNELS
}  // namespace ref

namespace sse {
VPR_SAMPLING_KERNELS
}  // namespace sse

#undef VPR_SAMPLING_KERNELS

}  // namespace vpr::jpeg
