// Scalar lifting formulas shared by the ref kernels and the scalar tails of
// the sse kernels.  Sums are 32-bit two's complement (wrapping, so no
// signed overflow); 16-bit operands are sign-extended first, so their sums
// are exact.  Each result is truncated to the sample type.
#pragma once

#include <cstdint>

namespace vpr::j2k::lift {

inline int32_t wadd(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
inline int32_t wsub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }

// x - ((a + b) >> 1)
template <class T>
inline T predict(T x, T a, T b) {
  return static_cast<T>(wsub(x, wadd(a, b) >> 1));
}
// x + ((h1 + h2 + 2) >> 2)
template <class T>
inline T update(T x, T h1, T h2) {
  return static_cast<T>(wadd(x, wadd(wadd(h1, h2), 2) >> 2));
}
// x - ((h1 + h2 + 2) >> 2)
template <class T>
inline T unupdate(T x, T h1, T h2) {
  return static_cast<T>(wsub(x, wadd(wadd(h1, h2), 2) >> 2));
}
// x + ((a + b) >> 1)
template <class T>
inline T unpredict(T x, T a, T b) {
  return static_cast<T>(wadd(x, wadd(a, b) >> 1));
}

// Length-2 lines: H = o - e, L = e + ((H + 1) >> 1); inverse e = L - ((H + 1) >> 1), o = H + e.
template <class T>
inline void fwd2(T e, T o, T& L, T& H) {
  H = static_cast<T>(wsub(o, e));
  L = static_cast<T>(wadd(e, wadd(H, 1) >> 1));
}
template <class T>
inline void inv2(T L, T H, T& e, T& o) {
  e = static_cast<T>(wsub(L, wadd(H, 1) >> 1));
  o = static_cast<T>(wadd(H, e));
}
// Length-1 lines: x * (1 + p); inverse x / (1 + p) truncating toward zero.
template <class T>
inline T fwd1(T x, int p) {
  return p ? static_cast<T>(wadd(x, x)) : x;
}
template <class T>
inline T inv1(T x, int p) {
  return p ? static_cast<T>(static_cast<int32_t>(x) / 2) : x;
}

}  // namespace vpr::j2k::lift
