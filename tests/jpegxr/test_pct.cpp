// Photo core transform: SIMD kernels against their scalar twins, the
// exported entries' checks, losslessness, and hand-computed blocks.
#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "jpegxr/pct.h"
#include "vprjp_jpegxr.h"
#include "vprtest.h"

namespace {

using vprtest::Image;
using vprtest::Rng;
namespace ref = vpr::jxr::ref;
namespace sse = vpr::jxr::sse;

template <class T>
using Kernel = void (*)(T*, std::ptrdiff_t, int, int);

struct Geo {
  int w, h, pad, mis;
};

std::vector<Geo> pct_geometries() {
  std::vector<Geo> g;
  int i = 0;
  for (int w = 4; w <= 72; w += 4)
    for (int h : {4, 8, 12, 20}) g.push_back({w, h, (i % 3) * 6, i % 4}), ++i;
  for (int w : {124, 252, 260, 1000}) g.push_back({w, 8, 10, 1}), g.push_back({w, 12, 0, 0});
  return g;
}

// Random data of the full range of the type; floats in [-1000, 1000].
template <class T>
void fill(Image<T>& img, Rng& r, int mode) {
  if constexpr (std::is_floating_point_v<T>) {
    img.fill_random(r);
  } else if (mode == 0) {
    img.fill_random(r);
  } else if (mode == 1) {
    img.fill_random(r, -300, 300);
  } else {  // extremes
    const T lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
    const T vals[6] = {lo, hi, 0, -1, static_cast<T>(lo + 1), static_cast<T>(hi - 1)};
    img.fill_with([&](int, int) { return vals[r.uniform(0, 5)]; });
  }
}

template <class T>
void check_twins(Kernel<T> twin, Kernel<T> fast) {
  Rng rng(0x9c7 + sizeof(T));
  for (const Geo& g : pct_geometries())
    for (int mode = 0; mode < 3; ++mode) {
      SCOPED_TRACE(::testing::Message() << g.w << "x" << g.h << " pad " << g.pad << " mis " << g.mis << " mode " << mode);
      Image<T> a(g.w, g.h, g.pad, g.mis);
      fill(a, rng, mode);
      Image<T> b = a;
      twin(a.data(), a.step(), g.w, g.h);
      fast(b.data(), b.step(), g.w, g.h);
      ASSERT_TRUE(vprtest::same_region(a, b));
      ASSERT_TRUE(vprtest::guards_ok(a));
      ASSERT_TRUE(vprtest::guards_ok(b));
    }
}

TEST(PctKernels, SseMatchesScalar16s) {
  check_twins<int16_t>(ref::pct_fwd_16s, sse::pct_fwd_16s);
  check_twins<int16_t>(ref::pct_inv_16s, sse::pct_inv_16s);
}
TEST(PctKernels, SseMatchesScalar32s) {
  check_twins<int32_t>(ref::pct_fwd_32s, sse::pct_fwd_32s);
  check_twins<int32_t>(ref::pct_inv_32s, sse::pct_inv_32s);
}
TEST(PctKernels, SseMatchesScalar32f) {
  check_twins<float>(ref::pct_fwd_32f, sse::pct_fwd_32f);
  check_twins<float>(ref::pct_inv_32f, sse::pct_inv_32f);
}

// Every 4x4 block is transformed on its own: a region equals its blocks
// transformed one by one as 4x4 regions.
TEST(PctKernels, RegionIsBlockwise) {
  Rng rng(5);
  Image<int32_t> a(12, 8, 4, 0);
  a.fill_random(rng);
  Image<int32_t> b = a;
  sse::pct_fwd_32s(a.data(), a.step(), 12, 8);
  for (int by = 0; by < 8; by += 4)
    for (int bx = 0; bx < 12; bx += 4) ref::pct_fwd_32s(b.row(by) + bx, b.step(), 4, 4);
  EXPECT_TRUE(vprtest::same_region(a, b));
}

// ---------------------------------------------------------------- entries
using Region16 = VprStatus (*)(Vpr16s*, int, VprRoiSize);
using Region32 = VprStatus (*)(Vpr32s*, int, VprRoiSize);
using RegionF = VprStatus (*)(Vpr32f*, int, VprRoiSize);

template <class T, class F>
void check_region_entry(F entry, Kernel<T> twin) {
  const int es = static_cast<int>(sizeof(T));
  Rng rng(77);
  Image<T> img(24, 8, 8, 1);
  fill(img, rng, 0);
  const Image<T> orig = img;
  auto untouched = [&] { return vprtest::same_region(img, orig); };
  EXPECT_EQ(entry(nullptr, 1000, {8, 8}), vprStatusNullPointer);
  EXPECT_EQ(entry(nullptr, -5, {0, 0}), vprStatusNullPointer);
  EXPECT_EQ(entry(img.data(), img.step(), {0, 8}), vprStatusBadSize);
  EXPECT_EQ(entry(img.data(), img.step(), {8, -4}), vprStatusBadSize);
  EXPECT_EQ(entry(img.data(), 0, {0, 4}), vprStatusBadSize);  // size before step
  EXPECT_EQ(entry(img.data(), 8 * es - 1, {8, 8}), vprStatusBadStep);
  EXPECT_EQ(entry(img.data(), 0, {4, 4}), vprStatusBadStep);
  EXPECT_EQ(entry(img.data(), 6 * es - 1, {6, 8}), vprStatusBadStep);  // step before multiple of 4
  EXPECT_EQ(entry(img.data(), 5 * es - 1, {5, 4}), vprStatusBadStep);
  EXPECT_EQ(entry(img.data(), img.step(), {5, 4}), vprStatusBadSize);
  EXPECT_EQ(entry(img.data(), img.step(), {8, 6}), vprStatusBadSize);
  EXPECT_EQ(entry(img.data(), img.step(), {2, 2}), vprStatusBadSize);
  EXPECT_TRUE(untouched());
  // A step of exactly one row is enough.
  Image<T> tight(8, 4, 0, 0), tight_ref;
  fill(tight, rng, 0);
  tight_ref = tight;
  EXPECT_EQ(entry(tight.data(), 8 * es, {8, 4}), vprStatusOk);
  twin(tight_ref.data(), tight_ref.step(), 8, 4);
  EXPECT_TRUE(vprtest::same_region(tight, tight_ref));
  // Success on a sub-region: only that region changes.
  Image<T> want = img;
  EXPECT_EQ(entry(img.data(), img.step(), {16, 4}), vprStatusOk);
  twin(want.data(), want.step(), 16, 4);
  EXPECT_TRUE(vprtest::same_region(img, want));
  EXPECT_TRUE(vprtest::guards_ok(img));
}

TEST(PctEntries, RegionChecksInOrder) {
  check_region_entry<Vpr16s>(vpriPCTFwd_JPEGXR_16s_C1IR, ref::pct_fwd_16s);
  check_region_entry<Vpr16s>(vpriPCTInv_JPEGXR_16s_C1IR, ref::pct_inv_16s);
  check_region_entry<Vpr32s>(vpriPCTFwd_JPEGXR_32s_C1IR, ref::pct_fwd_32s);
  check_region_entry<Vpr32s>(vpriPCTInv_JPEGXR_32s_C1IR, ref::pct_inv_32s);
  check_region_entry<Vpr32f>(vpriPCTFwd_JPEGXR_32f_C1IR, ref::pct_fwd_32f);
  check_region_entry<Vpr32f>(vpriPCTInv_JPEGXR_32f_C1IR, ref::pct_inv_32f);
}

// A negative step passes the check (it is a large unsigned value) and the
// rows go upwards in memory.
TEST(PctEntries, NegativeStepWalksUpwards) {
  Rng rng(3);
  Image<int32_t> img(8, 8, 0, 0);
  img.fill_random(rng);
  Image<int32_t> want = img;
  // Row 0 of the region is the bottom row of the buffer.
  ASSERT_EQ(vpriPCTFwd_JPEGXR_32s_C1IR(img.row(7), -img.step(), {8, 8}), vprStatusOk);
  ref::pct_fwd_32s(want.row(7), -want.step(), 8, 8);
  EXPECT_TRUE(vprtest::same_region(img, want));
  // Upside down it is not the same transform: the blocks are read flipped.
  Image<int32_t> other = img;
  ref::pct_inv_32s(other.data(), other.step(), 8, 8);
  ref::pct_inv_32s(img.row(7), -img.step(), 8, 8);
  EXPECT_FALSE(vprtest::same_region(other, img));
  EXPECT_TRUE(vprtest::guards_ok(img));
  // 16s, a width with a lone 4-wide block column, through the kernels.
  Image<int16_t> h(20, 12, 6, 1);
  h.fill_random(rng);
  Image<int16_t> hw = h;
  ASSERT_EQ(vpriPCTFwd_JPEGXR_16s_C1IR(h.row(11), -h.step(), {20, 12}), vprStatusOk);
  ref::pct_fwd_16s(hw.row(11), -hw.step(), 20, 12);
  EXPECT_TRUE(vprtest::same_region(h, hw));
  ASSERT_EQ(vpriPCTInv8x8_JPEGXR_16s_C1IR(h.row(7), -h.step()), vprStatusOk);
  ref::pct_inv_16s(hw.row(7), -hw.step(), 8, 8);
  EXPECT_TRUE(vprtest::same_region(h, hw));
  EXPECT_TRUE(vprtest::guards_ok(h));
}

struct FixedCase {
  const char* name;
  std::function<VprStatus(void*, int)> fn;
  std::function<void(void*, std::ptrdiff_t)> twin;
  int es, w, h;
};

template <class T>
FixedCase fixed(const char* name, VprStatus (*fn)(T*, int), Kernel<T> twin, int w, int h) {
  return {name, [fn](void* p, int s) { return fn(static_cast<T*>(p), s); },
          [twin, w, h](void* p, std::ptrdiff_t s) { twin(static_cast<T*>(p), s, w, h); }, static_cast<int>(sizeof(T)), w, h};
}

std::vector<FixedCase> fixed_cases() {
  return {
      fixed<Vpr16s>("Fwd16x16_16s", vpriPCTFwd16x16_JPEGXR_16s_C1IR, ref::pct_fwd_16s, 16, 16),
      fixed<Vpr16s>("Inv16x16_16s", vpriPCTInv16x16_JPEGXR_16s_C1IR, ref::pct_inv_16s, 16, 16),
      fixed<Vpr32s>("Fwd16x16_32s", vpriPCTFwd16x16_JPEGXR_32s_C1IR, ref::pct_fwd_32s, 16, 16),
      fixed<Vpr32s>("Inv16x16_32s", vpriPCTInv16x16_JPEGXR_32s_C1IR, ref::pct_inv_32s, 16, 16),
      fixed<Vpr32f>("Fwd16x16_32f", vpriPCTFwd16x16_JPEGXR_32f_C1IR, ref::pct_fwd_32f, 16, 16),
      fixed<Vpr32f>("Inv16x16_32f", vpriPCTInv16x16_JPEGXR_32f_C1IR, ref::pct_inv_32f, 16, 16),
      fixed<Vpr16s>("Fwd8x16_16s", vpriPCTFwd8x16_JPEGXR_16s_C1IR, ref::pct_fwd_16s, 8, 16),
      fixed<Vpr16s>("Inv8x16_16s", vpriPCTInv8x16_JPEGXR_16s_C1IR, ref::pct_inv_16s, 8, 16),
      fixed<Vpr32s>("Fwd8x16_32s", vpriPCTFwd8x16_JPEGXR_32s_C1IR, ref::pct_fwd_32s, 8, 16),
      fixed<Vpr32s>("Inv8x16_32s", vpriPCTInv8x16_JPEGXR_32s_C1IR, ref::pct_inv_32s, 8, 16),
      fixed<Vpr32f>("Fwd8x16_32f", vpriPCTFwd8x16_JPEGXR_32f_C1IR, ref::pct_fwd_32f, 8, 16),
      fixed<Vpr32f>("Inv8x16_32f", vpriPCTInv8x16_JPEGXR_32f_C1IR, ref::pct_inv_32f, 8, 16),
      fixed<Vpr16s>("Fwd8x8_16s", vpriPCTFwd8x8_JPEGXR_16s_C1IR, ref::pct_fwd_16s, 8, 8),
      fixed<Vpr16s>("Inv8x8_16s", vpriPCTInv8x8_JPEGXR_16s_C1IR, ref::pct_inv_16s, 8, 8),
      fixed<Vpr32s>("Fwd8x8_32s", vpriPCTFwd8x8_JPEGXR_32s_C1IR, ref::pct_fwd_32s, 8, 8),
      fixed<Vpr32s>("Inv8x8_32s", vpriPCTInv8x8_JPEGXR_32s_C1IR, ref::pct_inv_32s, 8, 8),
      fixed<Vpr32f>("Fwd8x8_32f", vpriPCTFwd8x8_JPEGXR_32f_C1IR, ref::pct_fwd_32f, 8, 8),
      fixed<Vpr32f>("Inv8x8_32f", vpriPCTInv8x8_JPEGXR_32f_C1IR, ref::pct_inv_32f, 8, 8),
  };
}

// Fixed forms: null, then the minimum step (one row of the block); they
// transform exactly their block grid.  Byte images keep the test generic.
TEST(PctEntries, FixedFormsChecksAndGrid) {
  Rng rng(11);
  for (const FixedCase& c : fixed_cases()) {
    SCOPED_TRACE(c.name);
    const int row = c.w * c.es;
    // A 4-byte-element-wide buffer; an int32 view of random bytes would make
    // NaNs for float, which compare fine bytewise.
    Image<int32_t> img((row + 8) / 4, c.h + 4, 12, 0);
    img.fill_random(rng, -20000, 20000);
    if (c.es == 4 && std::string(c.name).find("32f") != std::string::npos)
      img.fill_with([&](int, int) { float f = static_cast<float>(rng.real(-500, 500)); int32_t v; std::memcpy(&v, &f, 4); return v; });
    const Image<int32_t> orig = img;
    EXPECT_EQ(c.fn(nullptr, 4096), vprStatusNullPointer);
    EXPECT_EQ(c.fn(nullptr, -1), vprStatusNullPointer);
    EXPECT_EQ(c.fn(img.data(), row - 1), vprStatusBadStep);
    EXPECT_EQ(c.fn(img.data(), 0), vprStatusBadStep);
    EXPECT_TRUE(vprtest::same_region(img, orig));
    EXPECT_EQ(c.fn(img.data(), img.step()), vprStatusOk);
    Image<int32_t> want = orig;
    c.twin(want.data(), want.step());
    EXPECT_TRUE(vprtest::same_region(img, want));  // columns right of / rows below the grid untouched
    EXPECT_TRUE(vprtest::guards_ok(img));
    // Minimum step exactly: rows packed back to back.
    std::vector<int32_t> packed(static_cast<size_t>(row) * c.h / 4 + 4), packed_ref;
    for (auto& v : packed) v = static_cast<int32_t>(rng.uniform(-9000, 9000));
    if (std::string(c.name).find("32f") != std::string::npos)
      for (auto& v : packed) { float f = static_cast<float>(v) * 0.25f; std::memcpy(&v, &f, 4); }
    packed_ref = packed;
    EXPECT_EQ(c.fn(packed.data(), row), vprStatusOk);
    c.twin(packed_ref.data(), row);
    EXPECT_TRUE(vprtest::same_array(packed.data(), packed_ref.data(), packed.size()));
  }
}

// ---------------------------------------------------------------- facts
template <class T>
void check_lossless(Kernel<T> fwd, Kernel<T> inv) {
  Rng rng(123 + sizeof(T));
  for (int mode = 0; mode < 3; ++mode)
    for (int rep = 0; rep < 20; ++rep) {
      Image<T> img(64, 16, 8, rep % 4);
      fill(img, rng, mode);
      const Image<T> orig = img;
      fwd(img.data(), img.step(), 64, 16);
      if (mode != 2) {
        EXPECT_FALSE(vprtest::same_region(img, orig));
      }
      inv(img.data(), img.step(), 64, 16);
      ASSERT_TRUE(vprtest::same_region(img, orig)) << "mode " << mode;
    }
}

TEST(PctFacts, IntegerFormsAreLossless) {
  // Full-range data wraps inside the 16s and 32s forms; lifting undoes it.
  check_lossless<int16_t>(sse::pct_fwd_16s, sse::pct_inv_16s);
  check_lossless<int32_t>(sse::pct_fwd_32s, sse::pct_inv_32s);
  check_lossless<int16_t>(ref::pct_fwd_16s, ref::pct_inv_16s);
  check_lossless<int32_t>(ref::pct_fwd_32s, ref::pct_inv_32s);
}

TEST(PctFacts, LosslessThroughEveryEntry) {
  Rng rng(8);
  for (const auto& pair : {std::pair{0, 1}, {6, 7}, {12, 13}}) {
    auto cases = fixed_cases();
    for (int t = 0; t < 2; ++t) {  // 16s, 32s
      const FixedCase& f = cases[pair.first + 2 * t];
      const FixedCase& i = cases[pair.second + 2 * t];
      Image<int32_t> img(f.w, f.h, 0, 0);  // big enough for 16s too
      img.fill_random(rng);
      const Image<int32_t> orig = img;
      ASSERT_EQ(f.fn(img.data(), f.w * f.es), vprStatusOk);
      ASSERT_EQ(i.fn(img.data(), f.w * f.es), vprStatusOk);
      EXPECT_TRUE(vprtest::same_region(img, orig)) << f.name;
    }
  }
  Image<Vpr16s> a(20, 12, 6, 1);
  a.fill_random(rng);
  const Image<Vpr16s> orig = a;
  ASSERT_EQ(vpriPCTFwd_JPEGXR_16s_C1IR(a.data(), a.step(), {20, 12}), vprStatusOk);
  ASSERT_EQ(vpriPCTInv_JPEGXR_16s_C1IR(a.data(), a.step(), {20, 12}), vprStatusOk);
  EXPECT_TRUE(vprtest::same_region(a, orig));
}

TEST(PctFacts, FloatFormsInvertUpToRounding) {
  Rng rng(9);
  Image<float> img(32, 8, 0, 0);
  img.fill_random(rng, -255, 255);
  const Image<float> orig = img;
  ASSERT_EQ(vpriPCTFwd_JPEGXR_32f_C1IR(img.data(), img.step(), {32, 8}), vprStatusOk);
  ASSERT_EQ(vpriPCTInv_JPEGXR_32f_C1IR(img.data(), img.step(), {32, 8}), vprStatusOk);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 32; ++x) EXPECT_NEAR(img.get(x, y), orig.get(x, y), 1e-3);
}

template <class T>
void check_constant_block(Kernel<T> fwd, Kernel<T> inv, T c) {
  Image<T> img(8, 4, 0, 0);
  img.fill(c);
  fwd(img.data(), img.step(), 8, 4);
  for (int bx = 0; bx < 8; bx += 4)
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 4; ++x) {
        const T want = (x == 0 && y == 0) ? static_cast<T>(4 * c) : T(0);
        ASSERT_EQ(img.get(bx + x, y), want) << "c=" << +c << " at " << x << "," << y;
      }
  inv(img.data(), img.step(), 8, 4);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 8; ++x) ASSERT_EQ(img.get(x, y), c);
}

TEST(PctFacts, ConstantBlockGoesToFourTimesDc) {
  for (int c : {0, 1, -1, 7, -128, 255, 1000, -8191, 8191}) {
    check_constant_block<int16_t>(sse::pct_fwd_16s, sse::pct_inv_16s, static_cast<int16_t>(c));
    check_constant_block<int16_t>(ref::pct_fwd_16s, ref::pct_inv_16s, static_cast<int16_t>(c));
    check_constant_block<int32_t>(sse::pct_fwd_32s, sse::pct_inv_32s, c * 1000);
    check_constant_block<int32_t>(ref::pct_fwd_32s, ref::pct_inv_32s, c * 1000);
    check_constant_block<float>(sse::pct_fwd_32f, sse::pct_inv_32f, static_cast<float>(c) * 0.5f);
    check_constant_block<float>(ref::pct_fwd_32f, ref::pct_inv_32f, static_cast<float>(c) * 0.5f);
  }
}

// Hand-computed block: a single 1 at b.  First stage H2(b,c,n,o;0) with
// (1,0,0,0): A=1, B=0, t=0, C1=0, D1=0 -> b stays 1.  Second stage
// H2(a,b,e,f;1) with (0,1,0,0): t=(0-1+1)>>1=0, C1=D1=0 -> a=0, b=1.
// The other groups are all zero and stay zero.
TEST(PctFacts, HandComputedImpulses) {
  int32_t blk[16] = {0};
  blk[1] = 1;
  ref::pct_fwd_32s(blk, 16, 4, 4);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(blk[i], i == 1 ? 1 : 0) << i;
  // 4 at a: stage one H2(a,d,m,p;0) on (4,0,0,0): A=4, t=2, C1=2, D1=2,
  // A=2, B=2 -> a=2 d=2 m=2 p=2.  Stage two: H2(a,b,e,f;1) (2,0,0,0):
  // t=(2+1)>>1=1, C1=1, D1=1, a=1, b=1, e=1, f=1.  Odd(c,d,g,h)=(0,2,0,0):
  // B=2; C=0+((2+1)>>1)=1; D=((0+1)>>1)-0=0; B=2-((0+4)>>3)=2;
  // A=0+((6+4)>>3)=1; D=0-((3+4)>>3)=0; C=1+((0+4)>>3)=1; D=0+(2>>1)=1;
  // C=1-((1+1)>>1)=0; B=2-1=1; A=1+0=1 -> c=1 d=1 g=0 h=1.
  int32_t b2[16] = {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  int16_t b3[16] = {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  ref::pct_fwd_32s(b2, 16, 4, 4);
  sse::pct_fwd_16s(b3, 8, 4, 4);
  EXPECT_EQ(b2[0], 1);
  EXPECT_EQ(b2[1], 1);
  EXPECT_EQ(b2[4], 1);
  EXPECT_EQ(b2[5], 1);
  EXPECT_EQ(b2[2], 1);
  EXPECT_EQ(b2[3], 1);
  EXPECT_EQ(b2[6], 0);
  EXPECT_EQ(b2[7], 1);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(b3[i], b2[i]) << i;
}

// 16s wraps instead of saturating, and keeps the values inside one
// expression exact: with small values 16s and 32s agree, with large ones
// the 16s result differs from the saturated or the 32-bit-then-truncated
// one but still inverts.
TEST(PctFacts, SixteenBitWrapsPerAssignment) {
  Rng rng(21);
  Image<int16_t> s(64, 8, 0, 0);
  Image<int32_t> w(64, 8, 0, 0);
  s.fill_random(rng, -2000, 2000);
  w.fill_with([&](int x, int y) { return s.get(x, y); });
  sse::pct_fwd_16s(s.data(), s.step(), 64, 8);
  sse::pct_fwd_32s(w.data(), w.step(), 64, 8);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 64; ++x) ASSERT_EQ(s.get(x, y), w.get(x, y));
  // All 32767: a = 4 * 32767 does not fit.  Computed by the twin and by
  // the wrapping rule in 32 bits with a truncation after each assignment:
  // first stage H2 (c,c,c,c): A=2c -> -2, B=0, t=-1, C1=D1=-1-c -> -32768,
  // A=-2+32768 -> 32766, B=0-32768 -> -32768.
  int16_t blk[16];
  for (auto& v : blk) v = 32767;
  int16_t ref_blk[16];
  std::memcpy(ref_blk, blk, sizeof blk);
  sse::pct_fwd_16s(blk, 8, 4, 4);
  ref::pct_fwd_16s(ref_blk, 8, 4, 4);
  EXPECT_TRUE(vprtest::same_array(blk, ref_blk, 16));
  EXPECT_NE(blk[0], 32767);  // not saturated at a
  sse::pct_inv_16s(blk, 8, 4, 4);
  for (int16_t v : blk) EXPECT_EQ(v, 32767);
}

}  // namespace
