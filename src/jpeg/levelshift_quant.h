// Level shift of regions and single-block quantisation kernels.
// ref:: are the scalar twins written from the formulas, sse:: the kernels the
// exported functions run; both give the same bits.
#pragma once

#include <cstdint>

#include "jpeg/zigzag.h"

namespace vpr::jpeg {

// Quality scaling of a raw table and the three table builders (scalar only:
// 64 entries once per image).
void quant_fwd_raw_table_scale(uint8_t* raw, int quality);
bool quant_fwd_table_init_16u(const uint8_t* raw, uint16_t* fwd);  // false: a zero entry
bool quant_fwd_table_init_32f(const uint8_t* raw, float* fwd);     // false: a zero entry
void quant_inv_table_init_16u(const uint8_t* raw, uint16_t* inv);

namespace ref {
// dst = src - 128 over `rows` rows of `width` samples.
void sub128_rows(const uint8_t* src, int src_step, int16_t* dst, int dst_step, int width, int rows);
// dst = clamp(src +sat 128, 0, 255).
void add128_rows(const int16_t* src, int src_step, uint8_t* dst, int dst_step, int width, int rows);
// c = ((((int16)(c << 3) * (r >> 1)) >> 16) + 1) >> 1
void quant_fwd_8x8(int16_t* block, const uint16_t* fwd);
// c = (int16)(c * q)
void quant_inv_8x8(int16_t* block, const uint16_t* inv);
}  // namespace ref

namespace sse {
void sub128_rows(const uint8_t* src, int src_step, int16_t* dst, int dst_step, int width, int rows);
void add128_rows(const int16_t* src, int src_step, uint8_t* dst, int dst_step, int width, int rows);
void quant_fwd_8x8(int16_t* block, const uint16_t* fwd);
void quant_inv_8x8(int16_t* block, const uint16_t* inv);
}  // namespace sse

}  // namespace vpr::jpeg
