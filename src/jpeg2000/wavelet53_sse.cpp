// Reversible 5/3 wavelet, SSE4.1 kernels.
//
// 32s lanes use plain 32-bit adds and arithmetic shifts (the scalar twins
// wrap the same way).  16s lanes never widen: the halved sums use
//   floor((a + b) / 2)     = (a & b) + ((a ^ b) >> 1)
//   floor((a + b + 2) / 4) = m - (m >> 1),  m = floor((a + b) / 2)
// which are exact for all 16-bit a, b, so the 16-bit lanes equal the
// 32-bit-sum scalar formulas for every input.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "core/simd.h"
#include "jpeg2000/wavelet53.h"
#include "jpeg2000/wavelet53_lift.h"

namespace vpr::j2k::sse {
namespace {

using simd::load16;
using simd::store16;
namespace lift = vpr::j2k::lift;

template <class T>
struct V;

template <>
struct V<int32_t> {
  static constexpr int N = 4;
  static __m128i add(__m128i a, __m128i b) { return _mm_add_epi32(a, b); }
  static __m128i sub(__m128i a, __m128i b) { return _mm_sub_epi32(a, b); }
  // (a + b) >> 1
  static __m128i avg(__m128i a, __m128i b) { return _mm_srai_epi32(_mm_add_epi32(a, b), 1); }
  // (a + b + 2) >> 2
  static __m128i q4(__m128i a, __m128i b) {
    return _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(a, b), _mm_set1_epi32(2)), 2);
  }
  // (h + 1) >> 1
  static __m128i half_up(__m128i h) { return _mm_srai_epi32(_mm_add_epi32(h, _mm_set1_epi32(1)), 1); }
  // x / 2 truncating toward zero
  static __m128i half_trunc(__m128i x) { return _mm_srai_epi32(_mm_add_epi32(x, _mm_srli_epi32(x, 31)), 1); }
  // (a0 a1 a2 a3), (b0 b1 b2 b3) -> evens (a0 a2 b0 b2), odds (a1 a3 b1 b3)
  static void split(__m128i a, __m128i b, __m128i& ev, __m128i& od) {
    const __m128 fa = _mm_castsi128_ps(a), fb = _mm_castsi128_ps(b);
    ev = _mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(2, 0, 2, 0)));
    od = _mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(3, 1, 3, 1)));
  }
  static void merge(__m128i ev, __m128i od, __m128i& a, __m128i& b) {
    a = _mm_unpacklo_epi32(ev, od);
    b = _mm_unpackhi_epi32(ev, od);
  }
};

template <>
struct V<int16_t> {
  static constexpr int N = 8;
  static __m128i add(__m128i a, __m128i b) { return _mm_add_epi16(a, b); }
  static __m128i sub(__m128i a, __m128i b) { return _mm_sub_epi16(a, b); }
  static __m128i avg(__m128i a, __m128i b) {
    return _mm_add_epi16(_mm_and_si128(a, b), _mm_srai_epi16(_mm_xor_si128(a, b), 1));
  }
  static __m128i q4(__m128i a, __m128i b) {
    const __m128i m = avg(a, b);
    return _mm_sub_epi16(m, _mm_srai_epi16(m, 1));
  }
  static __m128i half_up(__m128i h) { return _mm_sub_epi16(h, _mm_srai_epi16(h, 1)); }
  static __m128i half_trunc(__m128i x) { return _mm_srai_epi16(_mm_add_epi16(x, _mm_srli_epi16(x, 15)), 1); }
  static void split(__m128i a, __m128i b, __m128i& ev, __m128i& od) {
    const __m128i m = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m128i x = _mm_shuffle_epi8(a, m), y = _mm_shuffle_epi8(b, m);
    ev = _mm_unpacklo_epi64(x, y);
    od = _mm_unpackhi_epi64(x, y);
  }
  static void merge(__m128i ev, __m128i od, __m128i& a, __m128i& b) {
    a = _mm_unpacklo_epi16(ev, od);
    b = _mm_unpackhi_epi16(ev, od);
  }
};

template <class T>
inline T* rp(T* p, int step, int y) {
  return simd::row_ptr(p, step, y);
}

// ---------------------------------------------------------------- row ops
enum Op { kPredict, kUpdate, kUnupdate, kUnpredict };

template <class T, Op op>
inline __m128i vop(__m128i x, __m128i a, __m128i b) {
  using v = V<T>;
  if constexpr (op == kPredict) return v::sub(x, v::avg(a, b));
  if constexpr (op == kUpdate) return v::add(x, v::q4(a, b));
  if constexpr (op == kUnupdate) return v::sub(x, v::q4(a, b));
  if constexpr (op == kUnpredict) return v::add(x, v::avg(a, b));
}
template <class T, Op op>
inline T sop(T x, T a, T b) {
  if constexpr (op == kPredict) return lift::predict(x, a, b);
  if constexpr (op == kUpdate) return lift::update(x, a, b);
  if constexpr (op == kUnupdate) return lift::unupdate(x, a, b);
  if constexpr (op == kUnpredict) return lift::unpredict(x, a, b);
}

// out[k] = op(x[k], a[k], b[k]); out may be x.
template <class T, Op op>
void rows_op(T* out, const T* x, const T* a, const T* b, int n) {
  constexpr int N = V<T>::N;
  int k = 0;
  for (; k + N <= n; k += N) store16(out + k, vop<T, op>(load16(x + k), load16(a + k), load16(b + k)));
  for (; k < n; ++k) out[k] = sop<T, op>(x[k], a[k], b[k]);
}

// Forward lifting step over rows: hi = s1 - avg(s0, s2); lo = s0 + q4(hi, hp)
// where hp is the row hiPrev, or (kFly) predict(pm1, pm2, s0) formed on the
// fly.  kStoreHigh = false keeps hi unwritten.
template <class T, bool kFly, bool kStoreHigh>
void fwd_lift(const T* s0, const T* s1, const T* s2, T* lo, const T* hiPrev, T* hi, int w, const T* pm2,
              const T* pm1) {
  constexpr int N = V<T>::N;
  int x = 0;
  for (; x + N <= w; x += N) {
    const __m128i a = load16(s0 + x);
    const __m128i h = vop<T, kPredict>(load16(s1 + x), a, load16(s2 + x));
    __m128i hp;
    if constexpr (kFly)
      hp = vop<T, kPredict>(load16(pm1 + x), load16(pm2 + x), a);
    else
      hp = load16(hiPrev + x);
    if constexpr (kStoreHigh) store16(hi + x, h);
    store16(lo + x, vop<T, kUpdate>(a, h, hp));
  }
  for (; x < w; ++x) {
    const T h = lift::predict(s1[x], s0[x], s2[x]);
    const T hp = kFly ? lift::predict(pm1[x], pm2[x], s0[x]) : hiPrev[x];
    if constexpr (kStoreHigh) hi[x] = h;
    lo[x] = lift::update(s0[x], h, hp);
  }
}

// Inverse lifting step over rows: even = lo - q4(hiPrev, hi);
// odd = hiPrev + avg(even, evPrev) where evPrev is the row evPrev or (kFly)
// unupdate(lm1, hm1, hiPrev) formed on the fly.  kStoreEven = false keeps
// even unwritten.
template <class T, bool kFly, bool kStoreEven>
void inv_lift(const T* lo, const T* hiPrev, const T* hi, const T* evPrev, T* odd, T* even, int w, const T* lm1,
              const T* hm1) {
  constexpr int N = V<T>::N;
  int x = 0;
  for (; x + N <= w; x += N) {
    const __m128i hp = load16(hiPrev + x);
    const __m128i e = vop<T, kUnupdate>(load16(lo + x), hp, load16(hi + x));
    __m128i ep;
    if constexpr (kFly)
      ep = vop<T, kUnupdate>(load16(lm1 + x), load16(hm1 + x), hp);
    else
      ep = load16(evPrev + x);
    if constexpr (kStoreEven) store16(even + x, e);
    store16(odd + x, vop<T, kUnpredict>(hp, e, ep));
  }
  for (; x < w; ++x) {
    const T e = lift::unupdate(lo[x], hiPrev[x], hi[x]);
    const T ep = kFly ? lift::unupdate(lm1[x], hm1[x], hiPrev[x]) : evPrev[x];
    if constexpr (kStoreEven) even[x] = e;
    odd[x] = lift::unpredict(hiPrev[x], e, ep);
  }
}

// ---------------------------------------------------------------- one line in split form
// x: n >= 3 samples; buf: n + 4 samples.  Low samples go to Lb = buf + 1
// (slots -1 .. nL), high ones to Hb = buf + nL + 3 (slots -1 .. nH); the
// slots just outside each band hold the symmetric extension, which in split
// form is a copy of the band's end sample.
template <class T>
void hline_fwd(T* x, int n, int p, T* buf) {
  using v = V<T>;
  constexpr int N = v::N;
  const int nL = low_count(n, p), nH = n - nL;
  T* Lb = buf + 1;
  T* Hb = buf + nL + 3;
  const int pairs = n >> 1;
  // Split the line into its bands and predict the high band in one sweep
  // over the samples whose neighbours lie inside the line; the ends are
  // finished below with the extension slots.
  int k = p, k0 = p;
  if (p == 0) {
    for (; k + N <= (n - 2) >> 1; k += N) {
      __m128i e, o, e1, o1;
      v::split(load16(x + 2 * k), load16(x + 2 * k + N), e, o);
      v::split(load16(x + 2 * k + 2), load16(x + 2 * k + 2 + N), e1, o1);
      store16(Lb + k, e);
      store16(Hb + k, v::sub(o, v::avg(e, e1)));
    }
  } else {
    for (; k + N <= pairs; k += N) {
      __m128i e, o, e0, o0;
      v::split(load16(x + 2 * k), load16(x + 2 * k + N), e, o);
      v::split(load16(x + 2 * k - 2), load16(x + 2 * k - 2 + N), e0, o0);
      store16(Lb + k, o);
      store16(Hb + k, v::sub(e, v::avg(o0, o)));
    }
  }
  const int k1 = k;  // [k0, k1) is done
  T* first = p ? Hb : Lb;
  T* second = p ? Lb : Hb;
  for (int j = 0; j < k0; ++j) {
    first[j] = x[2 * j];
    second[j] = x[2 * j + 1];
  }
  for (int j = k1; j < pairs; ++j) {
    first[j] = x[2 * j];
    second[j] = x[2 * j + 1];
  }
  if (n & 1) first[pairs] = x[n - 1];
  Lb[-1] = Lb[0];
  Lb[nL] = Lb[nL - 1];
  const T* La = Lb - p;
  for (int j = 0; j < k0; ++j) Hb[j] = lift::predict(Hb[j], La[j], La[j + 1]);
  for (int j = k1; j < nH; ++j) Hb[j] = lift::predict(Hb[j], La[j], La[j + 1]);
  Hb[-1] = Hb[0];
  Hb[nH] = Hb[nH - 1];
  const T* Ha = Hb - 1 + p;
  rows_op<T, kUpdate>(x, Lb, Ha, Ha + 1, nL);
  std::memcpy(x + nL, Hb, sizeof(T) * nH);
}

template <class T>
void hline_inv(T* x, int n, int p, T* buf) {
  constexpr int N = V<T>::N;
  const int nL = low_count(n, p), nH = n - nL;
  T* Lb = buf + 1;
  T* Hb = buf + nL + 3;
  std::memcpy(Lb, x, sizeof(T) * nL);
  std::memcpy(Hb, x + nL, sizeof(T) * nH);
  Hb[-1] = Hb[0];
  Hb[nH] = Hb[nH - 1];
  const T* Ha = Hb - 1 + p;
  rows_op<T, kUnupdate>(Lb, Lb, Ha, Ha + 1, nL);
  Lb[-1] = Lb[0];
  Lb[nL] = Lb[nL - 1];
  const T* La = Lb - p;
  const int pairs = n >> 1;
  int k = 0;
  for (; k + N <= pairs; k += N) {
    const __m128i h = vop<T, kUnpredict>(load16(Hb + k), load16(La + k), load16(La + k + 1));
    const __m128i l = load16(Lb + k);
    __m128i a, b;
    if (p)
      V<T>::merge(h, l, a, b);
    else
      V<T>::merge(l, h, a, b);
    store16(x + 2 * k, a);
    store16(x + 2 * k + N, b);
  }
  for (; k < pairs; ++k) {
    const T h = lift::unpredict(Hb[k], La[k], La[k + 1]);
    x[2 * k + 1 - p] = h;
    x[2 * k + p] = Lb[k];
  }
  if (n & 1) x[n - 1] = p ? lift::unpredict(Hb[nH - 1], La[nH - 1], La[nH]) : Lb[nL - 1];
}

// A whole row in the horizontal pass (any length >= 1).
template <class T>
void hrow_fwd(T* x, int n, int p, T* buf) {
  if (n >= 3) {
    hline_fwd(x, n, p, buf);
  } else if (n == 2) {
    T L, H;
    lift::fwd2(x[p], x[1 - p], L, H);
    x[0] = L;
    x[1] = H;
  } else {
    x[0] = lift::fwd1(x[0], p);
  }
}
template <class T>
void hrow_inv(T* x, int n, int p, T* buf) {
  if (n >= 3) {
    hline_inv(x, n, p, buf);
  } else if (n == 2) {
    T e, o;
    lift::inv2(x[0], x[1], e, o);
    x[p] = e;
    x[1 - p] = o;
  } else {
    x[0] = lift::inv1(x[0], p);
  }
}

// ---------------------------------------------------------------- row permutation
template <class T>
void swap_rows(T* a, T* b, int w) {
  constexpr int N = V<T>::N;
  int x = 0;
  for (; x + N <= w; x += N) {
    const __m128i va = load16(a + x), vb = load16(b + x);
    store16(a + x, vb);
    store16(b + x, va);
  }
  for (; x < w; ++x) std::swap(a[x], b[x]);
}

// Moves row i to row dest(i) for every i, following the permutation's
// cycles with one spare row (tmp, w samples).
template <class T, class Dest>
void permute_rows(T* p, int step, int w, int h, Dest dest, T* tmp) {
  constexpr int kMaxTracked = 65536;
  uint64_t seen[kMaxTracked / 64];
  const bool track = h <= kMaxTracked;
  if (track) std::memset(seen, 0, sizeof(uint64_t) * ((h + 63) / 64));
  for (int s = 0; s < h; ++s) {
    const int d = dest(s);
    if (d == s) continue;
    if (track) {
      if ((seen[s >> 6] >> (s & 63)) & 1) continue;
    } else {
      bool leader = true;
      for (int j = d; j != s; j = dest(j))
        if (j < s) {
          leader = false;
          break;
        }
      if (!leader) continue;
    }
    std::memcpy(tmp, rp(p, step, s), sizeof(T) * w);
    for (int j = d;; j = dest(j)) {
      swap_rows(tmp, rp(p, step, j), w);
      if (track) seen[j >> 6] |= uint64_t{1} << (j & 63);
      if (j == s) break;
    }
  }
}

// ---------------------------------------------------------------- 2-D in place
// kPermute = false leaves the rows of an h >= 3 region in interleaved order
// (row r holds the vertically low coefficients when (r + py) is even).
template <class T, bool kPermute>
void fwd_2d(T* p, int step, int w, int h, int px, int py, T* buf) {
  if (w < 1 || h < 1) return;
  using v = V<T>;
  constexpr int N = v::N;
  if (h == 1) {
    if (py) {
      int x = 0;
      for (; x + N <= w; x += N) {
        const __m128i a = load16(p + x);
        store16(p + x, v::add(a, a));
      }
      for (; x < w; ++x) p[x] = lift::fwd1(p[x], 1);
    }
    hrow_fwd(p, w, px, buf);
    return;
  }
  if (h == 2) {
    T* r0 = rp(p, step, 0);
    T* r1 = rp(p, step, 1);
    T* re = py ? r1 : r0;
    T* ro = py ? r0 : r1;
    int x = 0;
    for (; x + N <= w; x += N) {
      const __m128i e = load16(re + x);
      const __m128i hh = v::sub(load16(ro + x), e);
      store16(r0 + x, v::add(e, v::half_up(hh)));
      store16(r1 + x, hh);
    }
    for (; x < w; ++x) {
      T L, H;
      lift::fwd2(re[x], ro[x], L, H);
      r0[x] = L;
      r1[x] = H;
    }
    hrow_fwd(r0, w, px, buf);
    hrow_fwd(r1, w, px, buf);
    return;
  }
  auto row = [&](int y) {
    y = y < 0 ? -y : (y >= h ? 2 * (h - 1) - y : y);
    return rp(p, step, y);
  };
  // Vertical lifting on whole rows, in place (rows stay interleaved): one
  // step per low row r predicts the high row below it and updates r; each
  // row gets its horizontal pass as soon as no later vertical step reads it.
  if (py) rows_op<T, kPredict>(row(0), row(0), row(1), row(1), w);
  int hdone = 0;
  for (int r = py; r < h; r += 2) {
    if (r == 0) {  // the update reads high row 1 on both sides
      rows_op<T, kPredict>(row(1), row(1), row(0), row(2), w);
      rows_op<T, kUpdate>(row(0), row(0), row(1), row(1), w);
    } else if (r + 1 < h) {
      fwd_lift<T, false, true>(row(r), row(r + 1), row(r + 2), row(r), row(r - 1), row(r + 1), w, nullptr, nullptr);
    } else {
      rows_op<T, kUpdate>(row(r), row(r), row(r - 1), row(r - 1), w);
    }
    for (; hdone <= r; ++hdone) hrow_fwd(row(hdone), w, px, buf);
  }
  for (; hdone < h; ++hdone) hrow_fwd(row(hdone), w, px, buf);
  if constexpr (kPermute) {
    const int nL = low_count(h, py);
    permute_rows(
        p, step, w, h, [=](int r) { return (((r + py) & 1) ? nL : 0) + (r >> 1); }, buf);
  }
}

// kPermute = false takes the rows of an h >= 3 region in interleaved order.
template <class T, bool kPermute>
void inv_2d(T* p, int step, int w, int h, int px, int py, T* buf) {
  if (w < 1 || h < 1) return;
  using v = V<T>;
  constexpr int N = v::N;
  if (h == 1) {
    hrow_inv(p, w, px, buf);
    if (py) {
      int x = 0;
      for (; x + N <= w; x += N) store16(p + x, v::half_trunc(load16(p + x)));
      for (; x < w; ++x) p[x] = lift::inv1(p[x], 1);
    }
    return;
  }
  if (h == 2) {
    T* r0 = rp(p, step, 0);
    T* r1 = rp(p, step, 1);
    hrow_inv(r0, w, px, buf);
    hrow_inv(r1, w, px, buf);
    T* re = py ? r1 : r0;
    T* ro = py ? r0 : r1;
    int x = 0;
    for (; x + N <= w; x += N) {
      const __m128i hh = load16(r1 + x);
      const __m128i e = v::sub(load16(r0 + x), v::half_up(hh));
      store16(re + x, e);
      store16(ro + x, v::add(hh, e));
    }
    for (; x < w; ++x) {
      T e, o;
      lift::inv2(r0[x], r1[x], e, o);
      re[x] = e;
      ro[x] = o;
    }
    return;
  }
  if constexpr (kPermute) {
    const int nL = low_count(h, py);
    permute_rows(
        p, step, w, h, [=](int d) { return d < nL ? 2 * d + py : 2 * (d - nL) + 1 - py; }, buf);
  }
  auto row = [&](int y) {
    y = y < 0 ? -y : (y >= h ? 2 * (h - 1) - y : y);
    return rp(p, step, y);
  };
  // One step per low row r: undo its update and undo the prediction of the
  // high row above it; rows get their horizontal pass just before use.
  int hdone = 0;
  auto horizontal_upto = [&](int y) {
    for (; hdone <= y && hdone < h; ++hdone) hrow_inv(row(hdone), w, px, buf);
  };
  for (int r = py; r < h; r += 2) {
    horizontal_upto(r + 1);
    if (r < 2) {
      rows_op<T, kUnupdate>(row(r), row(r), row(r - 1), row(r + 1), w);
      if (r == 1) rows_op<T, kUnpredict>(row(0), row(0), row(1), row(1), w);
    } else {
      inv_lift<T, false, true>(row(r), row(r - 1), row(r + 1), row(r - 2), row(r - 1), row(r), w, nullptr, nullptr);
    }
  }
  horizontal_upto(h - 1);
  if ((h - 1 + py) & 1) rows_op<T, kUnpredict>(row(h - 1), row(h - 1), row(h - 2), row(h - 2), w);
}

// ---------------------------------------------------------------- row forms
template <class T>
void fwd_row_line(const T* s, T* lo, T* hi, int w, int phase) {
  using v = V<T>;
  constexpr int N = v::N;
  const T* t = s + phase;
  T* hout = hi + phase;
  const T h0 = lift::predict(t[-1], t[-2], t[0]);
  if (phase) hi[0] = h0;
  int k = 0;
  __m128i carry;  // only its last lane (the previous high coefficient) is read
  if constexpr (N == 4)
    carry = _mm_set1_epi32(h0);
  else
    carry = _mm_set1_epi16(h0);
  for (; k + N <= w - 1; k += N) {
    __m128i e, o, e1, o1;
    v::split(load16(t + 2 * k), load16(t + 2 * k + N), e, o);
    v::split(load16(t + 2 * k + 2), load16(t + 2 * k + 2 + N), e1, o1);
    const __m128i hv = v::sub(o, v::avg(e, e1));
    const __m128i hp = _mm_alignr_epi8(hv, carry, 16 - static_cast<int>(sizeof(T)));
    store16(hout + k, hv);
    store16(lo + k, v::add(e, v::q4(hv, hp)));
    carry = hv;
  }
  T hprev = k ? hout[k - 1] : h0;
  for (; k < w; ++k) {
    const T hk = lift::predict(t[2 * k + 1], t[2 * k], t[2 * k + 2]);
    if (!phase || k + 1 < w) hout[k] = hk;
    lo[k] = lift::update(t[2 * k], hk, hprev);
    hprev = hk;
  }
}

template <class T>
void inv_row_line(const T* l, const T* hh, T* d, int w, int phase) {
  using v = V<T>;
  constexpr int N = v::N;
  int k = 0;
  if (phase == 0) {
    for (; k + N <= w; k += N) {
      const __m128i hk = load16(hh + k), hk1 = load16(hh + k + 1);
      const __m128i ev = vop<T, kUnupdate>(load16(l + k), load16(hh + k - 1), hk);
      const __m128i ev1 = vop<T, kUnupdate>(load16(l + k + 1), hk, hk1);
      __m128i a, b;
      v::merge(ev, vop<T, kUnpredict>(hk, ev, ev1), a, b);
      store16(d + 2 * k, a);
      store16(d + 2 * k + N, b);
    }
    T ev = lift::unupdate(l[k], hh[k - 1], hh[k]);
    for (; k < w; ++k) {
      const T ev1 = lift::unupdate(l[k + 1], hh[k], hh[k + 1]);
      d[2 * k] = ev;
      d[2 * k + 1] = lift::unpredict(hh[k], ev, ev1);
      ev = ev1;
    }
  } else {
    for (; k + N <= w; k += N) {
      const __m128i hm = load16(hh + k - 1), hk = load16(hh + k), hk1 = load16(hh + k + 1);
      const __m128i ep = vop<T, kUnupdate>(load16(l + k - 1), hm, hk);
      const __m128i ev = vop<T, kUnupdate>(load16(l + k), hk, hk1);
      __m128i a, b;
      v::merge(vop<T, kUnpredict>(hk, ep, ev), ev, a, b);
      store16(d + 2 * k, a);
      store16(d + 2 * k + N, b);
    }
    T ep = lift::unupdate(l[k - 1], hh[k - 1], hh[k]);
    for (; k < w; ++k) {
      const T ev = lift::unupdate(l[k], hh[k], hh[k + 1]);
      d[2 * k] = lift::unpredict(hh[k], ep, ev);
      d[2 * k + 1] = ev;
      ep = ev;
    }
  }
}

// ---------------------------------------------------------------- column forms
template <class T>
void fwd_col_impl(const T* s, int ss, T* lo, int ls, T* hi, int hs, int w, int h, int phase) {
  if (phase == 0) {
    fwd_lift<T, true, true>(s, rp(s, ss, 1), rp(s, ss, 2), lo, nullptr, hi, w, rp(s, ss, -2), rp(s, ss, -1));
    for (int n = 1; n < h; ++n)
      fwd_lift<T, false, true>(rp(s, ss, 2 * n), rp(s, ss, 2 * n + 1), rp(s, ss, 2 * n + 2), rp(lo, ls, n),
                               rp(hi, hs, n - 1), rp(hi, hs, n), w, nullptr, nullptr);
  } else {
    rows_op<T, kPredict>(hi, s, rp(s, ss, -1), rp(s, ss, 1), w);
    const T* t = rp(s, ss, 1);
    for (int n = 0; n < h - 1; ++n)
      fwd_lift<T, false, true>(rp(t, ss, 2 * n), rp(t, ss, 2 * n + 1), rp(t, ss, 2 * n + 2), rp(lo, ls, n),
                               rp(hi, hs, n), rp(hi, hs, n + 1), w, nullptr, nullptr);
    const int n = h - 1;
    fwd_lift<T, false, false>(rp(t, ss, 2 * n), rp(t, ss, 2 * n + 1), rp(t, ss, 2 * n + 2), rp(lo, ls, n),
                              rp(hi, hs, n), nullptr, w, nullptr, nullptr);
  }
}

template <class T>
void inv_col_impl(const T* l, int ls, const T* hh, int hs, T* d, int ds, int w, int h, int phase) {
  if (phase == 0) {
    rows_op<T, kUnupdate>(d, l, rp(hh, hs, -1), hh, w);
    for (int n = 0; n < h - 1; ++n)
      inv_lift<T, false, true>(rp(l, ls, n + 1), rp(hh, hs, n), rp(hh, hs, n + 1), rp(d, ds, 2 * n),
                               rp(d, ds, 2 * n + 1), rp(d, ds, 2 * n + 2), w, nullptr, nullptr);
    const int n = h - 1;
    inv_lift<T, false, false>(rp(l, ls, n + 1), rp(hh, hs, n), rp(hh, hs, n + 1), rp(d, ds, 2 * n),
                              rp(d, ds, 2 * n + 1), nullptr, w, nullptr, nullptr);
  } else {
    inv_lift<T, true, true>(l, hh, rp(hh, hs, 1), nullptr, d, rp(d, ds, 1), w, rp(l, ls, -1), rp(hh, hs, -1));
    for (int n = 1; n < h; ++n)
      inv_lift<T, false, true>(rp(l, ls, n), rp(hh, hs, n), rp(hh, hs, n + 1), rp(d, ds, 2 * n - 1),
                               rp(d, ds, 2 * n), rp(d, ds, 2 * n + 1), w, nullptr, nullptr);
  }
}

}  // namespace

#define VPR_J2K_SSE_KERNELS(T)                                                                                      \
  void wt_fwd_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) {                                         \
    fwd_2d<T, true>(p, step, w, h, px, py, buf);                                                                    \
  }                                                                                                                 \
  void wt_inv_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) {                                         \
    inv_2d<T, true>(p, step, w, h, px, py, buf);                                                                    \
  }                                                                                                                 \
  void wt_fwd_c1ir_interleaved(T* p, int step, int w, int h, int px, int py, T* buf) {                             \
    fwd_2d<T, false>(p, step, w, h, px, py, buf);                                                                   \
  }                                                                                                                 \
  void wt_inv_c1ir_interleaved(T* p, int step, int w, int h, int px, int py, T* buf) {                             \
    inv_2d<T, false>(p, step, w, h, px, py, buf);                                                                   \
  }                                                                                                                 \
  void wt_fwd_row(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase) {       \
    for (int y = 0; y < h; ++y)                                                                                     \
      fwd_row_line(rp(src, srcStep, y), rp(lo, loStep, y), rp(hi, hiStep, y), w, phase != 0);                       \
  }                                                                                                                 \
  void wt_inv_row(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase) { \
    for (int y = 0; y < h; ++y)                                                                                     \
      inv_row_line(rp(lo, loStep, y), rp(hi, hiStep, y), rp(dst, dstStep, y), w, phase != 0);                       \
  }                                                                                                                 \
  void wt_fwd_col(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase) {       \
    fwd_col_impl(src, srcStep, lo, loStep, hi, hiStep, w, h, phase != 0);                                           \
  }                                                                                                                 \
  void wt_inv_col(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase) { \
    inv_col_impl(lo, loStep, hi, hiStep, dst, dstStep, w, h, phase != 0);                                           \
  }                                                                                                                 \
  void wt_fwd_col_lift(const T* s0, const T* s1, const T* s2, T* lo, const T* hiPrev, T* hi, int w) {              \
    fwd_lift<T, false, true>(s0, s1, s2, lo, hiPrev, hi, w, nullptr, nullptr);                                      \
  }                                                                                                                 \
  void wt_inv_col_lift(const T* lo, const T* hiPrev, const T* hi, const T* evPrev, T* odd, T* even, int w) {      \
    inv_lift<T, false, true>(lo, hiPrev, hi, evPrev, odd, even, w, nullptr, nullptr);                               \
  }

VPR_J2K_SSE_KERNELS(int32_t)
VPR_J2K_SSE_KERNELS(int16_t)
#undef VPR_J2K_SSE_KERNELS

}  // namespace vpr::j2k::sse
