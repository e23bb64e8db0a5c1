// DXT1 exported entries, edge-block helpers and the scalar reference kernels.
#include "texture/dxt1.h"

#include <cstring>

#include "core/simd.h"
#include "vprjp_texture.h"

namespace vpr::texture {

void gather_block_rgba(const uint8_t* src, int32_t step, int bw, int bh, uint8_t block[64]) {
  for (int y = 0; y < 4; ++y) {
    const uint8_t* row = simd::row_ptr(src, step, y < bh ? y : bh - 1);
    for (int x = 0; x < 4; ++x) std::memcpy(block + 16 * y + 4 * x, row + 4 * (x < bw ? x : bw - 1), 4);
  }
}

void scatter_block_rgba(const uint8_t block[64], uint8_t* dst, int32_t step, int bw, int bh) {
  for (int y = 0; y < bh; ++y) std::memcpy(simd::row_ptr(dst, step, y), block + 16 * y, 4 * static_cast<size_t>(bw));
}

namespace ref {
namespace {

struct Rgb {
  int r, g, b;
};

int expand5(int v) { return (v << 3) | (v >> 2); }
int expand6(int v) { return (v << 2) | (v >> 4); }

Rgb expand565(uint32_t c) { return {expand5(static_cast<int>(c >> 11) & 31), expand6(static_cast<int>(c >> 5) & 63), expand5(static_cast<int>(c) & 31)}; }

uint32_t to565(int r, int g, int b) {
  return (static_cast<uint32_t>(r >> 3) << 11) | (static_cast<uint32_t>(g >> 2) << 5) | static_cast<uint32_t>(b >> 3);
}

int abs_diff(int a, int b) { return a > b ? a - b : b - a; }

int l1(const uint8_t* p, const Rgb& c) { return abs_diff(p[0], c.r) + abs_diff(p[1], c.g) + abs_diff(p[2], c.b); }

}  // namespace

void encode_block_rgba_dxt1(const uint8_t block[64], uint8_t out[8]) {
  int mn[3] = {255, 255, 255}, mx[3] = {0, 0, 0};
  for (int i = 0; i < 16; ++i)
    for (int c = 0; c < 3; ++c) {
      const int v = block[4 * i + c];
      if (v < mn[c]) mn[c] = v;
      if (v > mx[c]) mx[c] = v;
    }
  int lo[3], hi[3];
  for (int c = 0; c < 3; ++c) {
    const int inset = (mx[c] - mn[c]) >> 4;
    lo[c] = mn[c] + inset < 255 ? mn[c] + inset : 255;
    hi[c] = mx[c] - inset > 0 ? mx[c] - inset : 0;
  }
  const uint32_t color0 = to565(hi[0], hi[1], hi[2]);
  const uint32_t color1 = to565(lo[0], lo[1], lo[2]);

  Rgb pal[4];
  pal[0] = expand565(color0);
  pal[1] = expand565(color1);
  pal[2] = {(2 * pal[0].r + pal[1].r) / 3, (2 * pal[0].g + pal[1].g) / 3, (2 * pal[0].b + pal[1].b) / 3};
  pal[3] = {(pal[0].r + 2 * pal[1].r) / 3, (pal[0].g + 2 * pal[1].g) / 3, (pal[0].b + 2 * pal[1].b) / 3};

  uint32_t indices = 0;
  for (int i = 0; i < 16; ++i) {
    const uint8_t* p = block + 4 * i;
    const int d0 = l1(p, pal[0]), d1 = l1(p, pal[1]), d2 = l1(p, pal[2]), d3 = l1(p, pal[3]);
    const bool b0 = d0 > d3, b1 = d1 > d2, b2 = d0 > d2, b3 = d1 > d3, b4 = d2 > d3;
    const uint32_t bit0 = (b0 && b4) ? 1u : 0u;
    const uint32_t bit1 = ((b1 && b2) || (b0 && b3)) ? 1u : 0u;
    indices |= (bit0 | (bit1 << 1)) << (2 * i);
  }
  out[0] = static_cast<uint8_t>(color0);
  out[1] = static_cast<uint8_t>(color0 >> 8);
  out[2] = static_cast<uint8_t>(color1);
  out[3] = static_cast<uint8_t>(color1 >> 8);
  for (int k = 0; k < 4; ++k) out[4 + k] = static_cast<uint8_t>(indices >> (8 * k));
}

void decode_block_dxt1(const uint8_t in[8], uint8_t block[64]) {
  const uint32_t color0 = in[0] | (static_cast<uint32_t>(in[1]) << 8);
  const uint32_t color1 = in[2] | (static_cast<uint32_t>(in[3]) << 8);
  const uint32_t indices = in[4] | (static_cast<uint32_t>(in[5]) << 8) | (static_cast<uint32_t>(in[6]) << 16) |
                           (static_cast<uint32_t>(in[7]) << 24);
  uint8_t pal[4][4];
  const Rgb c0 = expand565(color0), c1 = expand565(color1);
  Rgb c2, c3;
  if (color0 > color1) {
    c2 = {(2 * c0.r + c1.r) / 3, (2 * c0.g + c1.g) / 3, (2 * c0.b + c1.b) / 3};
    c3 = {(c0.r + 2 * c1.r) / 3, (c0.g + 2 * c1.g) / 3, (c0.b + 2 * c1.b) / 3};
  } else {
    c2 = {(c0.r + c1.r) >> 1, (c0.g + c1.g) >> 1, (c0.b + c1.b) >> 1};
    c3 = {255, 255, 255};  // opaque white
  }
  const Rgb* entries[4] = {&c0, &c1, &c2, &c3};
  for (int k = 0; k < 4; ++k) {
    pal[k][0] = static_cast<uint8_t>(entries[k]->r);
    pal[k][1] = static_cast<uint8_t>(entries[k]->g);
    pal[k][2] = static_cast<uint8_t>(entries[k]->b);
    pal[k][3] = 255;
  }
  for (int i = 0; i < 16; ++i) std::memcpy(block + 4 * i, pal[(indices >> (2 * i)) & 3], 4);
}

void encode_image_dxt1(const uint8_t* src, int32_t srcStep, int32_t width, int32_t height, uint8_t* dst) {
  const int64_t bw = dxt_blocks(width), bh = dxt_blocks(height);
  alignas(16) uint8_t block[64];
  for (int64_t by = 0; by < bh; ++by) {
    const int y0 = static_cast<int>(4 * by);
    const int rows = height - y0 < 4 ? height - y0 : 4;
    for (int64_t bx = 0; bx < bw; ++bx) {
      const int64_t x0 = 4 * bx;
      const int cols = width - x0 < 4 ? static_cast<int>(width - x0) : 4;
      gather_block_rgba(simd::row_ptr(src, srcStep, y0) + 4 * x0, srcStep, cols, rows, block);
      encode_block_rgba_dxt1(block, dst + kDxt1BlockBytes * (by * bw + bx));
    }
  }
}

void decode_image_dxt1(const uint8_t* src, uint8_t* dst, int32_t dstStep, int32_t width, int32_t height) {
  const int64_t bw = dxt_blocks(width), bh = dxt_blocks(height);
  alignas(16) uint8_t block[64];
  for (int64_t by = 0; by < bh; ++by) {
    const int y0 = static_cast<int>(4 * by);
    const int rows = height - y0 < 4 ? height - y0 : 4;
    for (int64_t bx = 0; bx < bw; ++bx) {
      const int64_t x0 = 4 * bx;
      const int cols = width - x0 < 4 ? static_cast<int>(width - x0) : 4;
      decode_block_dxt1(src + kDxt1BlockBytes * (by * bw + bx), block);
      scatter_block_rgba(block, simd::row_ptr(dst, dstStep, y0) + 4 * x0, dstStep, cols, rows);
    }
  }
}

}  // namespace ref
}  // namespace vpr::texture

using namespace vpr::texture;

VPR_API VprStatus vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Vpr8u* pSrc, Vpr8u* pDst, int dstStep,
                                                           VprRoiSize roiSize) {
  if (pSrc == nullptr || pDst == nullptr) return vprStatusNullPointer;
  if (dstStep == 0) return vprStatusBadStep;
  if (roiSize.width < 1 || roiSize.height < 1) return vprStatusBadSize;
  sse::decode_image_dxt1(pSrc, pDst, dstStep, roiSize.width, roiSize.height);
  return vprStatusOk;
}

VPR_API VprStatus vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize roiSize,
                                                             Vpr8u* pDst) {
  if (pSrc == nullptr || pDst == nullptr) return vprStatusNullPointer;
  if (srcStep == 0) return vprStatusBadStep;
  if (roiSize.width < 1 || roiSize.height < 1) return vprStatusBadSize;
  sse::encode_image_dxt1(pSrc, srcStep, roiSize.width, roiSize.height, pDst);
  return vprStatusOk;
}
