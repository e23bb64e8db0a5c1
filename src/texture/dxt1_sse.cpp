// DXT1 SSE4.1 kernels.
//
// Encoder, one block of 16 RGBA pixels in four registers (one row each):
//   - min / max per channel: byte min/max over the rows, then two folds;
//   - inset and endpoints in bytes (min + i never exceeds max, max - i never
//     drops below min, so no clamping is needed);
//   - the search palette in 16-bit lanes: 565 truncation by masking,
//     bit-replicating expansion as (v8 * 66) >> 6 for red/blue and
//     (v8 * 65) >> 6 for green (v8 = the channel with its low bits cleared),
//     division by 3 as mulhi(x, 0xAAAB) >> 1 (exact for x < 65536);
//   - pixels regrouped into RG byte pairs and 16-bit blue values (two
//     registers each, 8 pixels per register), so the L1 distances of 8
//     pixels to a palette entry are one byte |a - b| and one pmaddubsw for
//     R + G, one 16-bit |a - b| for blue and an add: 16 distances in two
//     16-bit registers per entry;
//   - the index rule on 16-bit compares; a byte blend of the two index-bit
//     masks and pmovmskb give 16 bits of the index word per 8 pixels.
// Decoder, one block: the four palette entries in one register (both modes
// computed, the mode picked by a blend); each output row is one pshufb of
// the palette with a control loaded from a 256-entry table by the row's
// index byte.
#include <cstring>

#include "core/simd.h"
#include "texture/dxt1.h"

namespace vpr::texture::sse {
namespace {

inline __m128i abs_diff_u8(__m128i a, __m128i b) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }

inline uint32_t pack565(uint32_t rgba) {
  return ((rgba & 0xF8u) << 8) | ((rgba >> 5) & 0x7E0u) | ((rgba >> 19) & 0x1Fu);
}

// Encodes the block whose rows (4 RGBA pixels each) are p0..p3.
inline void encode_rows(__m128i p0, __m128i p1, __m128i p2, __m128i p3, uint8_t* out) {
  // Bounding box: every dword lane ends up holding the per-channel min/max.
  __m128i mn = _mm_min_epu8(_mm_min_epu8(p0, p1), _mm_min_epu8(p2, p3));
  __m128i mx = _mm_max_epu8(_mm_max_epu8(p0, p1), _mm_max_epu8(p2, p3));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0x4E));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0x4E));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0xB1));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0xB1));

  // Inset by (max - min) >> 4 per channel.
  const __m128i inset = _mm_and_si128(_mm_srli_epi16(_mm_sub_epi8(mx, mn), 4), _mm_set1_epi8(0x0F));
  const __m128i hi = _mm_sub_epi8(mx, inset);
  const __m128i lo = _mm_add_epi8(mn, inset);
  const __m128i hl = _mm_unpacklo_epi32(hi, lo);  // dwords: hi, lo, hi, lo

  const uint32_t hl0 = static_cast<uint32_t>(_mm_cvtsi128_si32(hl));
  const uint32_t hl1 = static_cast<uint32_t>(_mm_extract_epi32(hl, 1));
  const uint32_t endpoints = pack565(hl0) | (pack565(hl1) << 16);

  // Search palette: c0 c1 expanded, then c2 c3, as bytes R G B 0 per entry.
  const __m128i trunc = _mm_and_si128(_mm_cvtepu8_epi16(hl), _mm_setr_epi16(0xF8, 0xFC, 0xF8, 0, 0xF8, 0xFC, 0xF8, 0));
  const __m128i e01 = _mm_srli_epi16(_mm_mullo_epi16(trunc, _mm_setr_epi16(66, 65, 66, 0, 66, 65, 66, 0)), 6);
  const __m128i e10 = _mm_shuffle_epi32(e01, 0x4E);
  const __m128i sum = _mm_add_epi16(_mm_add_epi16(e01, e01), e10);  // 2c0 + c1 | 2c1 + c0
  const __m128i e23 = _mm_srli_epi16(_mm_mulhi_epu16(sum, _mm_set1_epi16(static_cast<short>(0xAAAB))), 1);
  const __m128i pal = _mm_packus_epi16(e01, e23);

  // Pixels regrouped: RG byte pairs of pixels 0-7 and 8-15, and blue as
  // 16-bit values of pixels 0-7 and 8-15 (alpha dropped).
  const __m128i group = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, -1, 6, -1, 10, -1, 14, -1);
  const __m128i g0 = _mm_shuffle_epi8(p0, group), g1 = _mm_shuffle_epi8(p1, group);
  const __m128i g2 = _mm_shuffle_epi8(p2, group), g3 = _mm_shuffle_epi8(p3, group);
  const __m128i rg_a = _mm_unpacklo_epi64(g0, g1), b_a = _mm_unpackhi_epi64(g0, g1);
  const __m128i rg_b = _mm_unpacklo_epi64(g2, g3), b_b = _mm_unpackhi_epi64(g2, g3);

  const __m128i ones = _mm_set1_epi8(1);
  __m128i d_a[4], d_b[4];  // L1 distances of pixels 0-7 / 8-15 to entry k
  for (int k = 0; k < 4; ++k) {
    const __m128i rg_k = _mm_shuffle_epi8(pal, _mm_set1_epi16(static_cast<short>((4 * k) | ((4 * k + 1) << 8))));
    const __m128i b_k = _mm_shuffle_epi8(pal, _mm_set1_epi16(static_cast<short>((4 * k + 2) | 0x8000)));
    d_a[k] = _mm_add_epi16(_mm_maddubs_epi16(abs_diff_u8(rg_a, rg_k), ones), _mm_abs_epi16(_mm_sub_epi16(b_a, b_k)));
    d_b[k] = _mm_add_epi16(_mm_maddubs_epi16(abs_diff_u8(rg_b, rg_k), ones), _mm_abs_epi16(_mm_sub_epi16(b_b, b_k)));
  }

  // Index bits of 8 pixels as 16-bit masks; the low byte of each lane is
  // taken from bit 0, the high byte from bit 1, so pmovmskb yields the two
  // bits of pixel i at bits 2i and 2i+1.
  const __m128i low_byte = _mm_set1_epi16(0x00FF);
  uint32_t halves[2];
  for (int h = 0; h < 2; ++h) {
    const __m128i* d = h == 0 ? d_a : d_b;
    const __m128i b0 = _mm_cmpgt_epi16(d[0], d[3]);
    const __m128i b1 = _mm_cmpgt_epi16(d[1], d[2]);
    const __m128i b2 = _mm_cmpgt_epi16(d[0], d[2]);
    const __m128i b3 = _mm_cmpgt_epi16(d[1], d[3]);
    const __m128i b4 = _mm_cmpgt_epi16(d[2], d[3]);
    const __m128i bit0 = _mm_and_si128(b0, b4);
    const __m128i bit1 = _mm_or_si128(_mm_and_si128(b1, b2), _mm_and_si128(b0, b3));
    halves[h] = static_cast<uint32_t>(_mm_movemask_epi8(_mm_blendv_epi8(bit1, bit0, low_byte)));
  }
  const uint32_t indices = halves[0] | (halves[1] << 16);

  const uint64_t word = endpoints | (static_cast<uint64_t>(indices) << 32);
  std::memcpy(out, &word, 8);
}

// pshufb controls for one block row, by the row's index byte: pixel i of
// the row (index k = bits 2i..2i+1) takes palette bytes 4k..4k+3.
struct RowControls {
  alignas(16) uint8_t c[256][16];
};
constexpr RowControls make_row_controls() {
  RowControls t{};
  for (int byte = 0; byte < 256; ++byte)
    for (int i = 0; i < 4; ++i)
      for (int ch = 0; ch < 4; ++ch) t.c[byte][4 * i + ch] = static_cast<uint8_t>(4 * ((byte >> (2 * i)) & 3) + ch);
  return t;
}
constexpr RowControls kRowControls = make_row_controls();

inline __m128i row_control(uint32_t indices, int r) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(kRowControls.c[(indices >> (8 * r)) & 0xFF]));
}

// The four palette entries of a block as RGBA bytes.
inline __m128i decode_palette(uint64_t word) {
  const uint32_t color0 = static_cast<uint32_t>(word) & 0xFFFF;
  const uint32_t color1 = static_cast<uint32_t>(word >> 16) & 0xFFFF;
  const __m128i w = _mm_cvtsi32_si128(static_cast<int>(word));

  // Lanes c0 c0 c0 c0 c1 c1 c1 c1; blue moved to the top bits, then
  // v * 264 >> 16 = v5 * 33 / 4 and v * 8320 >> 16 = v6 * 65 / 16 give the
  // bit-replicated 8-bit values.
  const __m128i c = _mm_shuffle_epi8(w, _mm_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3));
  const __m128i fields = _mm_and_si128(_mm_mullo_epi16(c, _mm_setr_epi16(1, 1, 2048, 0, 1, 1, 2048, 0)),
                                       _mm_setr_epi16(static_cast<short>(0xF800), 0x07E0, static_cast<short>(0xF800),
                                                      0, static_cast<short>(0xF800), 0x07E0,
                                                      static_cast<short>(0xF800), 0));
  const __m128i e01 = _mm_mulhi_epu16(fields, _mm_setr_epi16(264, 8320, 264, 0, 264, 8320, 264, 0));
  const __m128i e10 = _mm_shuffle_epi32(e01, 0x4E);
  const __m128i four = _mm_srli_epi16(
      _mm_mulhi_epu16(_mm_add_epi16(_mm_add_epi16(e01, e01), e10), _mm_set1_epi16(static_cast<short>(0xAAAB))), 1);
  const __m128i three = _mm_or_si128(_mm_srli_epi16(_mm_add_epi16(e01, e10), 1),
                                     _mm_setr_epi16(0, 0, 0, 0, 255, 255, 255, 255));
  const __m128i mode = _mm_set1_epi32(color0 > color1 ? -1 : 0);
  const __m128i e23 = _mm_blendv_epi8(three, four, mode);
  return _mm_or_si128(_mm_packus_epi16(e01, e23), _mm_set1_epi32(static_cast<int>(0xFF000000u)));
}

inline uint64_t load_block(const uint8_t* in) {
  uint64_t word;
  std::memcpy(&word, in, 8);
  return word;
}

}  // namespace

void encode_block_rgba_dxt1(const uint8_t block[64], uint8_t out[8]) {
  encode_rows(simd::load16(block), simd::load16(block + 16), simd::load16(block + 32), simd::load16(block + 48), out);
}

void encode_block_rgba_dxt1_rows(const uint8_t* src, int32_t step, uint8_t out[8]) {
  encode_rows(simd::load16(src), simd::load16(simd::row_ptr(src, step, 1)), simd::load16(simd::row_ptr(src, step, 2)),
              simd::load16(simd::row_ptr(src, step, 3)), out);
}

void decode_block_dxt1(const uint8_t in[8], uint8_t block[64]) {
  const uint64_t word = load_block(in);
  const __m128i pal = decode_palette(word);
  const uint32_t indices = static_cast<uint32_t>(word >> 32);
  for (int r = 0; r < 4; ++r) simd::store16(block + 16 * r, _mm_shuffle_epi8(pal, row_control(indices, r)));
}

void encode_image_dxt1(const uint8_t* src, int32_t srcStep, int32_t width, int32_t height, uint8_t* dst) {
  const int64_t bw = dxt_blocks(width), bh = dxt_blocks(height);
  const int64_t full_bw = width >> 2;
  alignas(16) uint8_t block[64];
  for (int64_t by = 0; by < bh; ++by) {
    const int y0 = static_cast<int>(4 * by);
    const int rows = height - y0 < 4 ? height - y0 : 4;
    const uint8_t* s = simd::row_ptr(src, srcStep, y0);
    uint8_t* d = dst + kDxt1BlockBytes * by * bw;
    int64_t bx = 0;
    if (rows == 4) {
      const uint8_t* s1 = simd::row_ptr(s, srcStep, 1);
      const uint8_t* s2 = simd::row_ptr(s, srcStep, 2);
      const uint8_t* s3 = simd::row_ptr(s, srcStep, 3);
      for (; bx < full_bw; ++bx)
        encode_rows(simd::load16(s + 16 * bx), simd::load16(s1 + 16 * bx), simd::load16(s2 + 16 * bx),
                    simd::load16(s3 + 16 * bx), d + kDxt1BlockBytes * bx);
    }
    for (; bx < bw; ++bx) {
      const int64_t x0 = 4 * bx;
      const int cols = width - x0 < 4 ? static_cast<int>(width - x0) : 4;
      gather_block_rgba(s + 4 * x0, srcStep, cols, rows, block);
      encode_block_rgba_dxt1(block, d + kDxt1BlockBytes * bx);
    }
  }
}

void decode_image_dxt1(const uint8_t* src, uint8_t* dst, int32_t dstStep, int32_t width, int32_t height) {
  const int64_t bw = dxt_blocks(width), bh = dxt_blocks(height);
  const int64_t full_bw = width >> 2;
  alignas(16) uint8_t block[64];
  for (int64_t by = 0; by < bh; ++by) {
    const int y0 = static_cast<int>(4 * by);
    const int rows = height - y0 < 4 ? height - y0 : 4;
    uint8_t* d = simd::row_ptr(dst, dstStep, y0);
    const uint8_t* s = src + kDxt1BlockBytes * by * bw;
    int64_t bx = 0;
    if (rows == 4) {
      uint8_t* d1 = simd::row_ptr(d, dstStep, 1);
      uint8_t* d2 = simd::row_ptr(d, dstStep, 2);
      uint8_t* d3 = simd::row_ptr(d, dstStep, 3);
      for (; bx < full_bw; ++bx) {
        const uint64_t word = load_block(s + kDxt1BlockBytes * bx);
        const __m128i pal = decode_palette(word);
        const uint32_t indices = static_cast<uint32_t>(word >> 32);
        simd::store16(d + 16 * bx, _mm_shuffle_epi8(pal, row_control(indices, 0)));
        simd::store16(d1 + 16 * bx, _mm_shuffle_epi8(pal, row_control(indices, 1)));
        simd::store16(d2 + 16 * bx, _mm_shuffle_epi8(pal, row_control(indices, 2)));
        simd::store16(d3 + 16 * bx, _mm_shuffle_epi8(pal, row_control(indices, 3)));
      }
    }
    for (; bx < bw; ++bx) {
      const int64_t x0 = 4 * bx;
      const int cols = width - x0 < 4 ? static_cast<int>(width - x0) : 4;
      decode_block_dxt1(s + kDxt1BlockBytes * bx, block);
      scatter_block_rgba(block, d + 4 * x0, dstStep, cols, rows);
    }
  }
}

}  // namespace vpr::texture::sse
