// Shared SSE helpers.  The library's baseline is SSE4.1 (-msse4.1); kernels
// include this header rather than the intrinsics headers directly.
#pragma once

#include <smmintrin.h>

#include <cstdint>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace vpr::simd {

inline __m128i load16(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store16(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline void store8(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }
inline __m128i load4(const void* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return _mm_cvtsi32_si128(v);
}
inline void store4(void* p, __m128i v) {
  const int32_t x = _mm_cvtsi128_si32(v);
  std::memcpy(p, &x, 4);
}

// Byte address of row `y` of a region with a byte step.
template <class T>
inline T* row_ptr(T* base, int32_t step, int y) {
  using B = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
  return reinterpret_cast<T*>(reinterpret_cast<B*>(base) + static_cast<std::ptrdiff_t>(y) * step);
}

}  // namespace vpr::simd
