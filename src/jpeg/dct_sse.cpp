// SSE kernels of the fused 8x8 DCT.
#include "core/simd.h"
#include "jpeg/dct.h"

namespace vpr::jpeg::sse {

void dct_8x8_fwd_16s(const int16_t* src, int16_t* dst) { ref::dct_8x8_fwd_16s(src, dst); }
void dct_8x8_inv_16s(const int16_t* src, int16_t* dst) { ref::dct_8x8_inv_16s(src, dst); }
void dct_quant_fwd_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* fwd) {
  ref::dct_quant_fwd_8x8_16s(src, dst, fwd);
}
void dct_quant_fwd_8x8_ls_8u16s(const uint8_t* src, int src_step, int16_t* dst, const uint16_t* fwd) {
  ref::dct_quant_fwd_8x8_ls_8u16s(src, src_step, dst, fwd);
}
void dct_quant_fwd_8x8_ls_16u16s(const uint16_t* src, int src_step, int16_t* dst, const float* fwd) {
  ref::dct_quant_fwd_8x8_ls_16u16s(src, src_step, dst, fwd);
}
void dct_quant_inv_8x8_16s(const int16_t* src, int16_t* dst, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_16s(src, dst, inv);
}
void dct_quant_inv_8x8_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_ls_16s8u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_ls_16s16u(const int16_t* src, uint16_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_ls_16s16u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_ls_1x1_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_ls_1x1_16s8u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_ls_2x2_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_ls_2x2_16s8u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_ls_4x4_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_ls_4x4_16s8u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_to2x2_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_to2x2_ls_16s8u(src, dst, dst_step, inv);
}
void dct_quant_inv_8x8_to4x4_ls_16s8u(const int16_t* src, uint8_t* dst, int dst_step, const uint16_t* inv) {
  ref::dct_quant_inv_8x8_to4x4_ls_16s8u(src, dst, dst_step, inv);
}

}  // namespace vpr::jpeg::sse
