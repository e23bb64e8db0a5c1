// JPEG chroma down- and up-sampling: SSE4.1 row kernels.
//
// Sums stay in 16-bit lanes (at most 16 * 255 + 8); pair sums come from
// pmaddubsw with weights 1.  Samples the 16/8-wide steps do not cover are
// done by the scalar kernel, which uses the same formulas (the alternating
// bias of the Box rows restarts on an even output index, so it keeps its
// parity).
#include "core/simd.h"
#include "jpeg/sampling.h"

namespace vpr::jpeg::sse {
namespace {

using simd::load16;
using simd::load8;
using simd::store16;
using simd::store8;

inline __m128i pair_sums(__m128i v) { return _mm_maddubs_epi16(v, _mm_set1_epi8(1)); }
inline __m128i lo16(__m128i v) { return _mm_cvtepu8_epi16(v); }
inline __m128i hi16(__m128i v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
inline __m128i x3(__m128i v) { return _mm_add_epi16(v, _mm_add_epi16(v, v)); }

// 16 outputs from 32 source bytes of one row: (a + b + bias) >> 1, bias per
// output lane.
inline __m128i down_h2v1_16(const uint8_t* s, __m128i bias) {
  return _mm_packus_epi16(_mm_srli_epi16(_mm_add_epi16(pair_sums(load16(s)), bias), 1),
                          _mm_srli_epi16(_mm_add_epi16(pair_sums(load16(s + 16)), bias), 1));
}
inline __m128i down_h2v2_16(const uint8_t* s0, const uint8_t* s1, __m128i bias) {
  const __m128i a = _mm_add_epi16(_mm_add_epi16(pair_sums(load16(s0)), pair_sums(load16(s1))), bias);
  const __m128i b = _mm_add_epi16(_mm_add_epi16(pair_sums(load16(s0 + 16)), pair_sums(load16(s1 + 16))), bias);
  return _mm_packus_epi16(_mm_srli_epi16(a, 2), _mm_srli_epi16(b, 2));
}

// Triangle step on 8 centre values c with left / right neighbours l, r
// (16-bit lanes, already in the 3:1 scale `scale`): even = (3c + l + be)
// >> sh, odd = (3c + r + bo) >> sh; returns 16 interleaved output bytes.
template <int SH>
inline __m128i triangle_8(__m128i l, __m128i c, __m128i r, __m128i be, __m128i bo) {
  const __m128i c3 = x3(c);
  const __m128i ev = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, l), be), SH);
  const __m128i od = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, r), bo), SH);
  return _mm_packus_epi16(_mm_unpacklo_epi16(ev, od), _mm_unpackhi_epi16(ev, od));
}

// Column sums t = 3 near + far of 8 samples starting at p (16-bit lanes).
inline __m128i col_sums(const uint8_t* n, const uint8_t* f) { return _mm_add_epi16(x3(lo16(load8(n))), lo16(load8(f))); }

// Up H2V1 over source samples [i0, i1): needs x[i0 - 1] .. x[i1].
inline int up_h2v1_body(const uint8_t* x, uint8_t* dst, int i0, int i1) {
  const __m128i be = _mm_set1_epi16(1), bo = _mm_set1_epi16(2);
  int i = i0;
  for (; i + 8 <= i1; i += 8)
    store16(dst + 2 * i, triangle_8<2>(lo16(load8(x + i - 1)), lo16(load8(x + i)), lo16(load8(x + i + 1)), be, bo));
  return i;
}
inline int up_h2v2_body(const uint8_t* n, const uint8_t* f, uint8_t* dst, int i0, int i1) {
  const __m128i be = _mm_set1_epi16(8), bo = _mm_set1_epi16(7);
  int i = i0;
  for (; i + 8 <= i1; i += 8)
    store16(dst + 2 * i, triangle_8<4>(col_sums(n + i - 1, f + i - 1), col_sums(n + i, f + i),
                                       col_sums(n + i + 1, f + i + 1), be, bo));
  return i;
}

}  // namespace

void ownpj_SampleDownH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int w) {
  const __m128i one = _mm_set1_epi16(1);
  int j = 0;
  for (; j + 16 <= w; j += 16) store16(dst + j, down_h2v1_16(src + 2 * j, one));
  if (j < w) ref::ownpj_SampleDownH2V1_JPEG_8u_C1(src + 2 * j, dst + j, w - j);
}

void ownpj_SampleDownH2V2_JPEG_8u_C1(const uint8_t* s0, const uint8_t* s1, uint8_t* dst, int w) {
  const __m128i three = _mm_set1_epi16(3);
  int j = 0;
  for (; j + 16 <= w; j += 16) store16(dst + j, down_h2v2_16(s0 + 2 * j, s1 + 2 * j, three));
  if (j < w) ref::ownpj_SampleDownH2V2_JPEG_8u_C1(s0 + 2 * j, s1 + 2 * j, dst + j, w - j);
}

void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* src, int srcWidth, uint8_t* dst) {
  const __m128i bias = _mm_set1_epi32(1);  // 1, 0, 1, 0, ... per output
  const int w = srcWidth / 2;
  int j = 0;
  for (; j + 16 <= w; j += 16) store16(dst + j, down_h2v1_16(src + 2 * j, bias));
  if (j < w) ref::ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(src + 2 * j, srcWidth - 2 * j, dst + j);
}

void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* s1, const uint8_t* s2, int srcWidth, uint8_t* dst) {
  const __m128i bias = _mm_set1_epi32(0x00020001);  // 1, 2, 1, 2, ... per output
  const int w = srcWidth / 2;
  int j = 0;
  for (; j + 16 <= w; j += 16) store16(dst + j, down_h2v2_16(s1 + 2 * j, s2 + 2 * j, bias));
  if (j < w) ref::ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(s1 + 2 * j, s2 + 2 * j, srcWidth - 2 * j, dst + j);
}

void ownpj_SampleUpH2V1_JPEG_8u_C1(const uint8_t* x, uint8_t* dst, int w) {
  // Whole pairs of outputs come from source samples [0, w / 2).
  const int i = up_h2v1_body(x, dst, 0, w / 2);
  if (2 * i < w) ref::ownpj_SampleUpH2V1_JPEG_8u_C1(x + i, dst + 2 * i, w - 2 * i);
}

void ownpj_SampleUpH2V2_JPEG_8u_C1(const uint8_t* n, const uint8_t* f, uint8_t* dst, int w) {
  const int i = up_h2v2_body(n, f, dst, 0, w / 2);
  if (2 * i < w) ref::ownpj_SampleUpH2V2_JPEG_8u_C1(n + i, f + i, dst + 2 * i, w - 2 * i);
}

void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* x, int n, uint8_t* dst) {
  if (n < 10) {
    ref::ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(x, n, dst);
    return;
  }
  // Source sample 0 and n - 1 take the end rules; 1 .. n - 2 read both
  // neighbours inside the row.
  dst[0] = x[0];
  dst[1] = static_cast<uint8_t>((3 * x[0] + x[1] + 2) >> 2);
  int i = up_h2v1_body(x, dst, 1, n - 1);
  for (; i < n - 1; ++i) {
    dst[2 * i] = static_cast<uint8_t>((3 * x[i] + x[i - 1] + 1) >> 2);
    dst[2 * i + 1] = static_cast<uint8_t>((3 * x[i] + x[i + 1] + 2) >> 2);
  }
  dst[2 * n - 2] = static_cast<uint8_t>((3 * x[n - 1] + x[n - 2] + 1) >> 2);
  dst[2 * n - 1] = x[n - 1];
}

void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* nr, const uint8_t* fr, int n, uint8_t* dst) {
  if (n < 10) {
    ref::ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(nr, fr, n, dst);
    return;
  }
  auto t = [&](int i) { return 3 * nr[i] + fr[i]; };
  dst[0] = static_cast<uint8_t>((4 * t(0) + 8) >> 4);
  dst[1] = static_cast<uint8_t>((3 * t(0) + t(1) + 7) >> 4);
  int i = up_h2v2_body(nr, fr, dst, 1, n - 1);
  for (; i < n - 1; ++i) {
    dst[2 * i] = static_cast<uint8_t>((3 * t(i) + t(i - 1) + 8) >> 4);
    dst[2 * i + 1] = static_cast<uint8_t>((3 * t(i) + t(i + 1) + 7) >> 4);
  }
  dst[2 * n - 2] = static_cast<uint8_t>((3 * t(n - 1) + t(n - 2) + 8) >> 4);
  dst[2 * n - 1] = static_cast<uint8_t>((4 * t(n - 1) + 7) >> 4);
}

}  // namespace vpr::jpeg::sse
