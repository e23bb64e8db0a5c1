// DXT1 (BC1) block kernels.
//
//   encode_block_rgba_dxt1(block, out)   64-byte block (16 RGBA pixels,
//                                         row-major) -> one 8-byte block
//   decode_block_dxt1(in, block)          8-byte block -> 16 RGBA pixels
//   encode_image_dxt1 / decode_image_dxt1 whole regions, block by block;
//                                         partial edge blocks as documented
//                                         in vprjp_texture.h
//
// ref:: holds the scalar twins written straight from the formulas; sse::
// the SSE4.1 kernels the exported functions call.  The two agree bit for
// bit on every input.  No kernel checks its arguments.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vpr::texture {

inline constexpr int kDxt1BlockBytes = 8;

// Number of blocks along a dimension of n >= 1 pixels (no overflow for any
// positive int32).
inline int64_t dxt_blocks(int32_t n) { return (static_cast<int64_t>(n) + 3) >> 2; }

// Copies the bw x bh pixels (1..4 each) at src into a 4x4 RGBA block,
// repeating the last column and the last row into the missing pixels.
void gather_block_rgba(const uint8_t* src, int32_t step, int bw, int bh, uint8_t block[64]);
// Writes the top-left bw x bh pixels of a decoded 4x4 block to dst.
void scatter_block_rgba(const uint8_t block[64], uint8_t* dst, int32_t step, int bw, int bh);

namespace ref {
void encode_block_rgba_dxt1(const uint8_t block[64], uint8_t out[8]);
void decode_block_dxt1(const uint8_t in[8], uint8_t block[64]);
void encode_image_dxt1(const uint8_t* src, int32_t srcStep, int32_t width, int32_t height, uint8_t* dst);
void decode_image_dxt1(const uint8_t* src, uint8_t* dst, int32_t dstStep, int32_t width, int32_t height);
}  // namespace ref

namespace sse {
void encode_block_rgba_dxt1(const uint8_t block[64], uint8_t out[8]);
// The same block read in place: four rows of 16 bytes at src, src + step, ...
void encode_block_rgba_dxt1_rows(const uint8_t* src, int32_t step, uint8_t out[8]);
void decode_block_dxt1(const uint8_t in[8], uint8_t block[64]);
void encode_image_dxt1(const uint8_t* src, int32_t srcStep, int32_t width, int32_t height, uint8_t* dst);
void decode_image_dxt1(const uint8_t* src, uint8_t* dst, int32_t dstStep, int32_t width, int32_t height);
}  // namespace sse

}  // namespace vpr::texture
