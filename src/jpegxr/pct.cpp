// Photo core transform: exported entries and the scalar twins.
#include "jpegxr/pct.h"

#include <cstring>

#include "vprjp_jpegxr.h"

namespace vpr::jxr {
namespace ref {
namespace {

// Integer arithmetic of the 16s forms: each assignment is computed in
// 32 bits from the current 16-bit values and truncated on the store.
struct Arith16 {
  using S = int16_t;
  using I = int32_t;
  static I in(S v) { return v; }
  static S out(I v) { return static_cast<int16_t>(v); }
};

// 32-bit two's-complement value: every operation wraps.
struct W32 {
  uint32_t u = 0;
  W32() = default;
  W32(int32_t v) : u(static_cast<uint32_t>(v)) {}  // NOLINT: literals convert
  static W32 raw(uint32_t x) {
    W32 w;
    w.u = x;
    return w;
  }
  friend W32 operator+(W32 a, W32 b) { return raw(a.u + b.u); }
  friend W32 operator-(W32 a, W32 b) { return raw(a.u - b.u); }
  friend W32 operator*(W32 a, W32 b) { return raw(a.u * b.u); }
  friend W32 operator>>(W32 a, int s) { return W32(static_cast<int32_t>(a.u) >> s); }
};

struct Arith32 {
  using S = int32_t;
  using I = W32;
  static I in(S v) { return W32(v); }
  static S out(I v) { return static_cast<int32_t>(v.u); }
};

template <class P>
struct Lift {
  using S = typename P::S;
  using I = typename P::I;
  static I v(S x) { return P::in(x); }
  static S s(I x) { return P::out(x); }

  static void h2(S& A, S& B, S& C, S& D, int r) {
    A = s(v(A) + v(D));
    B = s(v(B) - v(C));
    const I t = (v(A) - v(B) + I(r)) >> 1;
    const S C1 = s(t - v(D));
    const S D1 = s(t - v(C));
    A = s(v(A) - v(D1));
    B = s(v(B) + v(C1));
    C = C1;
    D = D1;
  }

  static void odd(S& A, S& B, S& C, S& D) {
    B = s(v(B) - v(C));
    A = s(v(A) + v(D));
    C = s(v(C) + ((v(B) + I(1)) >> 1));
    D = s(((v(A) + I(1)) >> 1) - v(D));
    B = s(v(B) - ((I(3) * v(A) + I(4)) >> 3));
    A = s(v(A) + ((I(3) * v(B) + I(4)) >> 3));
    D = s(v(D) - ((I(3) * v(C) + I(4)) >> 3));
    C = s(v(C) + ((I(3) * v(D) + I(4)) >> 3));
    D = s(v(D) + (v(B) >> 1));
    C = s(v(C) - ((v(A) + I(1)) >> 1));
    B = s(v(B) - v(D));
    A = s(v(A) + v(C));
  }

  static void odd_inv(S& A, S& B, S& C, S& D) {
    B = s(v(B) + v(D));
    A = s(v(A) - v(C));
    D = s(v(D) - (v(B) >> 1));
    C = s(v(C) + ((v(A) + I(1)) >> 1));
    A = s(v(A) - ((I(3) * v(B) + I(4)) >> 3));
    B = s(v(B) + ((I(3) * v(A) + I(4)) >> 3));
    C = s(v(C) - ((I(3) * v(D) + I(4)) >> 3));
    D = s(v(D) + ((I(3) * v(C) + I(4)) >> 3));
    C = s(v(C) - ((v(B) + I(1)) >> 1));
    D = s(((v(A) + I(1)) >> 1) - v(D));
    B = s(v(B) + v(C));
    A = s(v(A) - v(D));
  }

  static void odd_odd(S& A, S& B, S& C, S& D) {
    B = s(I(0) - v(B));
    C = s(I(0) - v(C));
    D = s(v(D) + v(A));
    C = s(v(C) - v(B));
    const S t1 = s(v(D) >> 1);
    A = s(v(A) - v(t1));
    const S t2 = s(v(C) >> 1);
    B = s(v(B) + v(t2));
    A = s(v(A) + ((I(3) * v(B) + I(4)) >> 3));
    B = s(v(B) - ((I(3) * v(A) + I(3)) >> 2));
    A = s(v(A) + ((I(3) * v(B) + I(3)) >> 3));
    B = s(v(B) - v(t2));
    A = s(v(A) + v(t1));
    C = s(v(C) + v(B));
    D = s(v(D) - v(A));
  }

  static void odd_odd_inv(S& A, S& B, S& C, S& D) {
    D = s(v(D) + v(A));
    C = s(v(C) - v(B));
    const S t1 = s(v(D) >> 1);
    A = s(v(A) - v(t1));
    const S t2 = s(v(C) >> 1);
    B = s(v(B) + v(t2));
    A = s(v(A) - ((I(3) * v(B) + I(3)) >> 3));
    B = s(v(B) + ((I(3) * v(A) + I(3)) >> 2));
    A = s(v(A) - ((I(3) * v(B) + I(4)) >> 3));
    B = s(v(B) - v(t2));
    A = s(v(A) + v(t1));
    C = s(v(C) + v(B));
    D = s(v(D) - v(A));
    B = s(I(0) - v(B));
    C = s(I(0) - v(C));
  }
};

// Single-precision counterpart: shifts become multiplications, rounding
// terms are dropped.
struct LiftF {
  using S = float;
  static void h2(float& A, float& B, float& C, float& D, int /*r*/) {
    A = A + D;
    B = B - C;
    const float t = 0.5f * (A - B);
    const float C1 = t - D;
    const float D1 = t - C;
    A = A - D1;
    B = B + C1;
    C = C1;
    D = D1;
  }
  static void odd(float& A, float& B, float& C, float& D) {
    B = B - C;
    A = A + D;
    C = C + 0.5f * B;
    D = 0.5f * A - D;
    B = B - 0.375f * A;
    A = A + 0.375f * B;
    D = D - 0.375f * C;
    C = C + 0.375f * D;
    D = D + 0.5f * B;
    C = C - 0.5f * A;
    B = B - D;
    A = A + C;
  }
  static void odd_inv(float& A, float& B, float& C, float& D) {
    B = B + D;
    A = A - C;
    D = D - 0.5f * B;
    C = C + 0.5f * A;
    A = A - 0.375f * B;
    B = B + 0.375f * A;
    C = C - 0.375f * D;
    D = D + 0.375f * C;
    C = C - 0.5f * B;
    D = 0.5f * A - D;
    B = B + C;
    A = A - D;
  }
  static void odd_odd(float& A, float& B, float& C, float& D) {
    B = 0.0f - B;
    C = 0.0f - C;
    D = D + A;
    C = C - B;
    const float t1 = 0.5f * D;
    A = A - t1;
    const float t2 = 0.5f * C;
    B = B + t2;
    A = A + 0.375f * B;
    B = B - 0.75f * A;
    A = A + 0.375f * B;
    B = B - t2;
    A = A + t1;
    C = C + B;
    D = D - A;
  }
  static void odd_odd_inv(float& A, float& B, float& C, float& D) {
    D = D + A;
    C = C - B;
    const float t1 = 0.5f * D;
    A = A - t1;
    const float t2 = 0.5f * C;
    B = B + t2;
    A = A - 0.375f * B;
    B = B + 0.75f * A;
    A = A - 0.375f * B;
    B = B - t2;
    A = A + t1;
    C = C + B;
    D = D - A;
    B = 0.0f - B;
    C = 0.0f - C;
  }
};

// x[0..15] = a..p.
template <class L, class S>
void block_fwd(S* x) {
  L::h2(x[0], x[3], x[12], x[15], 0);
  L::h2(x[1], x[2], x[13], x[14], 0);
  L::h2(x[4], x[7], x[8], x[11], 0);
  L::h2(x[5], x[6], x[9], x[10], 0);
  L::h2(x[0], x[1], x[4], x[5], 1);
  L::odd(x[2], x[3], x[6], x[7]);
  L::odd(x[8], x[12], x[9], x[13]);
  L::odd_odd(x[10], x[11], x[14], x[15]);
}

template <class L, class S>
void block_inv(S* x) {
  L::odd_inv(x[2], x[3], x[6], x[7]);
  L::odd_inv(x[8], x[12], x[9], x[13]);
  L::odd_odd_inv(x[10], x[11], x[14], x[15]);
  L::h2(x[0], x[1], x[4], x[5], 1);
  L::h2(x[0], x[3], x[12], x[15], 0);
  L::h2(x[1], x[2], x[13], x[14], 0);
  L::h2(x[4], x[7], x[8], x[11], 0);
  L::h2(x[5], x[6], x[9], x[10], 0);
}

template <class L, class S, bool kFwd>
void region(S* p, std::ptrdiff_t step, int width, int height) {
  auto* base = reinterpret_cast<unsigned char*>(p);
  for (int by = 0; by < height; by += 4)
    for (int bx = 0; bx < width; bx += 4) {
      S x[16];
      for (int y = 0; y < 4; ++y)
        std::memcpy(&x[4 * y], base + (by + y) * step + bx * static_cast<std::ptrdiff_t>(sizeof(S)), 4 * sizeof(S));
      if constexpr (kFwd)
        block_fwd<L>(x);
      else
        block_inv<L>(x);
      for (int y = 0; y < 4; ++y)
        std::memcpy(base + (by + y) * step + bx * static_cast<std::ptrdiff_t>(sizeof(S)), &x[4 * y], 4 * sizeof(S));
    }
}

}  // namespace

void pct_fwd_16s(int16_t* p, std::ptrdiff_t step, int w, int h) { region<Lift<Arith16>, int16_t, true>(p, step, w, h); }
void pct_inv_16s(int16_t* p, std::ptrdiff_t step, int w, int h) { region<Lift<Arith16>, int16_t, false>(p, step, w, h); }
void pct_fwd_32s(int32_t* p, std::ptrdiff_t step, int w, int h) { region<Lift<Arith32>, int32_t, true>(p, step, w, h); }
void pct_inv_32s(int32_t* p, std::ptrdiff_t step, int w, int h) { region<Lift<Arith32>, int32_t, false>(p, step, w, h); }
void pct_fwd_32f(float* p, std::ptrdiff_t step, int w, int h) { region<LiftF, float, true>(p, step, w, h); }
void pct_inv_32f(float* p, std::ptrdiff_t step, int w, int h) { region<LiftF, float, false>(p, step, w, h); }

}  // namespace ref

namespace {

// Checks of the whole-region forms: pointer, size, step (unsigned, exact
// product), multiple of 4.
template <class T>
VprStatus check_region(const T* p, int step, VprRoiSize roi) {
  if (!p) return vprStatusNullPointer;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  if (static_cast<uint64_t>(static_cast<uint32_t>(step)) < static_cast<uint64_t>(roi.width) * sizeof(T))
    return vprStatusBadStep;
  if ((roi.width & 3) != 0 || (roi.height & 3) != 0) return vprStatusBadSize;
  return vprStatusOk;
}

template <class T>
VprStatus check_fixed(const T* p, int step, uint32_t min_step) {
  if (!p) return vprStatusNullPointer;
  if (static_cast<uint32_t>(step) < min_step) return vprStatusBadStep;
  return vprStatusOk;
}

// A negative int step is taken as a signed byte distance by the kernels.
inline std::ptrdiff_t byte_step(int step) { return static_cast<std::ptrdiff_t>(step); }

}  // namespace
}  // namespace vpr::jxr

using namespace vpr::jxr;

#define VPR_PCT_REGION(Dir, dir, T, t)                                                    \
  VPR_API VprStatus vpriPCT##Dir##_JPEGXR_##t##_C1IR(T* pSrcDst, int srcDstStep, VprRoiSize roi) { \
    const VprStatus st = check_region(pSrcDst, srcDstStep, roi);                          \
    if (st != vprStatusOk) return st;                                                     \
    sse::pct_##dir##_##t(pSrcDst, byte_step(srcDstStep), roi.width, roi.height);          \
    return vprStatusOk;                                                                   \
  }

#define VPR_PCT_FIXED(Dir, dir, Shape, W, H, T, t)                                     \
  VPR_API VprStatus vpriPCT##Dir##Shape##_JPEGXR_##t##_C1IR(T* pSrcDst, int srcDstStep) { \
    const VprStatus st = check_fixed(pSrcDst, srcDstStep, (W) * sizeof(T));            \
    if (st != vprStatusOk) return st;                                                  \
    sse::pct_##dir##_##t(pSrcDst, byte_step(srcDstStep), (W), (H));                    \
    return vprStatusOk;                                                                \
  }

#define VPR_PCT_ALL(Dir, dir, T, t)                  \
  VPR_PCT_REGION(Dir, dir, T, t)                     \
  VPR_PCT_FIXED(Dir, dir, 16x16, 16, 16, T, t)       \
  VPR_PCT_FIXED(Dir, dir, 8x16, 8, 16, T, t)         \
  VPR_PCT_FIXED(Dir, dir, 8x8, 8, 8, T, t)

extern "C" {
VPR_PCT_ALL(Fwd, fwd, Vpr16s, 16s)
VPR_PCT_ALL(Fwd, fwd, Vpr32s, 32s)
VPR_PCT_ALL(Fwd, fwd, Vpr32f, 32f)
VPR_PCT_ALL(Inv, inv, Vpr16s, 16s)
VPR_PCT_ALL(Inv, inv, Vpr32s, 32s)
VPR_PCT_ALL(Inv, inv, Vpr32f, 32f)
}
