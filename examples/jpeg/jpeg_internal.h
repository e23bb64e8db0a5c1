// Shared helpers of the example codec (not part of its interface).
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <memory>
#include <string>

#include "vprjp.h"

namespace vprjpeg::detail {

// Owning handles for the library's Huffman objects.
struct SpecFree {
  void operator()(VprEncodeHuffmanSpec* p) const { vpriEncodeHuffmanSpecFree_JPEG_8u(p); }
  void operator()(VprDecodeHuffmanSpec* p) const { vpriDecodeHuffmanSpecFree_JPEG_8u(p); }
  void operator()(VprEncodeHuffmanState* p) const { vpriEncodeHuffmanStateFree_JPEG_8u(p); }
  void operator()(VprDecodeHuffmanState* p) const { vpriDecodeHuffmanStateFree_JPEG_8u(p); }
};
using EncodeSpec = std::unique_ptr<VprEncodeHuffmanSpec, SpecFree>;
using DecodeSpec = std::unique_ptr<VprDecodeHuffmanSpec, SpecFree>;
using EncodeState = std::unique_ptr<VprEncodeHuffmanState, SpecFree>;
using DecodeState = std::unique_ptr<VprDecodeHuffmanState, SpecFree>;

inline std::string status_text(const char* what, VprStatus st) {
  return std::string(what) + " failed (status " + std::to_string(st) + ")";
}

// Size of the top-left square that holds every non-zero coefficient of a
// block (natural order, 16-byte aligned): 1 (DC only), 2, 4 or 8.
inline int coefficient_extent(const int16_t* c) {
  const auto row = [c](int r) { return _mm_load_si128(reinterpret_cast<const __m128i*>(c + 8 * r)); };
  const auto none = [](__m128i v) { return _mm_movemask_epi8(_mm_cmpeq_epi16(v, _mm_setzero_si128())) == 0xFFFF; };
  const __m128i top = _mm_or_si128(_mm_or_si128(row(0), row(1)), _mm_or_si128(row(2), row(3)));
  const __m128i bottom = _mm_or_si128(_mm_or_si128(row(4), row(5)), _mm_or_si128(row(6), row(7)));
  const __m128i cols4to7 = _mm_set_epi16(-1, -1, -1, -1, 0, 0, 0, 0);
  if (!none(_mm_or_si128(bottom, _mm_and_si128(top, cols4to7)))) return 8;
  const __m128i cols2to3 = _mm_set_epi16(0, 0, 0, 0, -1, -1, 0, 0);
  if (!none(_mm_or_si128(_mm_or_si128(row(2), row(3)), _mm_and_si128(_mm_or_si128(row(0), row(1)), cols2to3)))) return 4;
  const __m128i col1 = _mm_set_epi16(0, 0, 0, 0, 0, 0, -1, 0), cols0to1 = _mm_set_epi16(0, 0, 0, 0, 0, 0, -1, -1);
  if (!none(_mm_or_si128(_mm_and_si128(row(0), col1), _mm_and_si128(row(1), cols0to1)))) return 2;
  return 1;
}

}  // namespace vprjpeg::detail
