// SSE kernels of the level shifts and the single-block quantisation.
#include "core/simd.h"
#include "jpeg/levelshift_quant.h"

namespace vpr::jpeg::sse {

using namespace vpr::simd;

void sub128_rows(const uint8_t* src, int src_step, int16_t* dst, int dst_step, int width, int rows) {
  const __m128i k128 = _mm_set1_epi16(128);
  const __m128i zero = _mm_setzero_si128();
  for (int y = 0; y < rows; ++y) {
    const uint8_t* s = row_ptr(src, src_step, y);
    int16_t* d = row_ptr(dst, dst_step, y);
    int x = 0;
    for (; x + 16 <= width; x += 16) {
      const __m128i v = load16(s + x);
      store16(d + x, _mm_sub_epi16(_mm_unpacklo_epi8(v, zero), k128));
      store16(d + x + 8, _mm_sub_epi16(_mm_unpackhi_epi8(v, zero), k128));
    }
    if (x + 8 <= width) {
      store16(d + x, _mm_sub_epi16(_mm_unpacklo_epi8(load8(s + x), zero), k128));
      x += 8;
    }
    for (; x < width; ++x) d[x] = static_cast<int16_t>(s[x] - 128);
  }
}

void add128_rows(const int16_t* src, int src_step, uint8_t* dst, int dst_step, int width, int rows) {
  const __m128i k128 = _mm_set1_epi16(128);
  for (int y = 0; y < rows; ++y) {
    const int16_t* s = row_ptr(src, src_step, y);
    uint8_t* d = row_ptr(dst, dst_step, y);
    int x = 0;
    for (; x + 16 <= width; x += 16) {
      const __m128i a = _mm_adds_epi16(load16(s + x), k128);
      const __m128i b = _mm_adds_epi16(load16(s + x + 8), k128);
      store16(d + x, _mm_packus_epi16(a, b));
    }
    if (x + 8 <= width) {
      store8(d + x, _mm_packus_epi16(_mm_adds_epi16(load16(s + x), k128), k128));
      x += 8;
    }
    for (; x < width; ++x) {
      const int v = s[x] + 128;
      d[x] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
  }
}

void quant_fwd_8x8(int16_t* block, const uint16_t* fwd) {
  const __m128i one = _mm_set1_epi16(1);
  for (int i = 0; i < 64; i += 8) {
    const __m128i c8 = _mm_slli_epi16(load16(block + i), 3);
    const __m128i r = _mm_srli_epi16(load16(fwd + i), 1);
    const __m128i hi = _mm_mulhi_epi16(c8, r);
    store16(block + i, _mm_srai_epi16(_mm_add_epi16(hi, one), 1));
  }
}

void quant_inv_8x8(int16_t* block, const uint16_t* inv) {
  for (int i = 0; i < 64; i += 8) store16(block + i, _mm_mullo_epi16(load16(block + i), load16(inv + i)));
}

}  // namespace vpr::jpeg::sse
