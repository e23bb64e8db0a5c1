// JPEG 2000 component transforms: SSE rows against the scalar twins over
// every width remainder, padded and misaligned rows and guard zones;
// hand-computed values; grey input; round trips; the 16s ICT wrap and
// clamps; argument checks in order with nothing written on failure.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "jpeg2000/ct.h"
#include "vprjp.h"
#include "vprtest.h"

namespace {

using vprtest::Image;
using vprtest::Rng;
namespace ref = vpr::j2k::ref;
namespace sse = vpr::j2k::sse;

// ---------------------------------------------------------------- twins through the entries
// P3IR entry vs the reference rows.
template <class T, class Entry, class RefRow>
void check_p3(Entry entry, RefRow refRow, double lo, double hi) {
  Rng rng(7);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Image<T> p[3], q[3];
    for (int c = 0; c < 3; ++c) {
      p[c] = Image<T>(g.width, g.height, g.pad, g.misalign);
      if (lo < hi)
        p[c].fill_random(rng, lo, hi);
      else
        p[c].fill_random(rng);
      q[c] = p[c];
    }
    // One step for all planes: the planes share geometry.
    T* pp[3] = {p[0].data(), p[1].data(), p[2].data()};
    ASSERT_EQ(entry(pp, p[0].step(), VprRoiSize{g.width, g.height}), vprStatusOk);
    for (int y = 0; y < g.height; ++y) refRow(q[0].row(y), q[1].row(y), q[2].row(y), g.width);
    for (int c = 0; c < 3; ++c) {
      ASSERT_TRUE(vprtest::same_region(p[c], q[c])) << "plane " << c;
      ASSERT_TRUE(vprtest::guards_ok(p[c]));
    }
  }
}

template <class T, class Entry, class RefRow>
void check_c3p3(Entry entry, RefRow refRow, double lo, double hi) {
  Rng rng(8);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Image<T> src(3 * g.width, g.height, g.pad, g.misalign);
    if (lo < hi)
      src.fill_random(rng, lo, hi);
    else
      src.fill_random(rng);
    Image<T> d[3], e[3];
    for (int c = 0; c < 3; ++c) d[c] = e[c] = Image<T>(g.width, g.height, g.pad + 4, g.misalign + 1);
    T* pd[3] = {d[0].data(), d[1].data(), d[2].data()};
    ASSERT_EQ(entry(src.data(), src.step(), pd, d[0].step(), VprRoiSize{g.width, g.height}), vprStatusOk);
    for (int y = 0; y < g.height; ++y) refRow(src.row(y), e[0].row(y), e[1].row(y), e[2].row(y), g.width);
    for (int c = 0; c < 3; ++c) {
      ASSERT_TRUE(vprtest::same_region(d[c], e[c])) << "plane " << c;
      ASSERT_TRUE(vprtest::guards_ok(d[c]));
    }
  }
}

template <class T, class Entry, class RefRow>
void check_p3c3(Entry entry, RefRow refRow, double lo, double hi) {
  Rng rng(9);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Image<T> s[3];
    for (int c = 0; c < 3; ++c) {
      s[c] = Image<T>(g.width, g.height, g.pad, g.misalign);
      if (lo < hi)
        s[c].fill_random(rng, lo, hi);
      else
        s[c].fill_random(rng);
    }
    Image<T> d(3 * g.width, g.height, g.pad + 2, g.misalign + 3), e = d;
    const T* ps[3] = {s[0].data(), s[1].data(), s[2].data()};
    ASSERT_EQ(entry(ps, s[0].step(), d.data(), d.step(), VprRoiSize{g.width, g.height}), vprStatusOk);
    for (int y = 0; y < g.height; ++y) refRow(s[0].row(y), s[1].row(y), s[2].row(y), e.row(y), g.width);
    ASSERT_TRUE(vprtest::same_region(d, e));
    ASSERT_TRUE(vprtest::guards_ok(d));
  }
}

template <class T>
void (*as_p3(void (*f)(T*, T*, T*, int)))(T*, T*, T*, int) {
  return f;
}

TEST(ComponentTransforms, RctTwins) {
  check_p3<int16_t>(vpriRCTFwd_JPEG2K_16s_P3IR, as_p3<int16_t>(ref::rct_fwd_p3), 0, 0);
  check_p3<int32_t>(vpriRCTFwd_JPEG2K_32s_P3IR, as_p3<int32_t>(ref::rct_fwd_p3), 0, 0);
  check_p3<int16_t>(vpriRCTInv_JPEG2K_16s_P3IR, as_p3<int16_t>(ref::rct_inv_p3), 0, 0);
  check_p3<int32_t>(vpriRCTInv_JPEG2K_32s_P3IR, as_p3<int32_t>(ref::rct_inv_p3), 0, 0);
  check_c3p3<int16_t>(vpriRCTFwd_JPEG2K_16s_C3P3R,
                      static_cast<void (*)(const int16_t*, int16_t*, int16_t*, int16_t*, int)>(ref::rct_fwd_c3p3), 0, 0);
  check_c3p3<int32_t>(vpriRCTFwd_JPEG2K_32s_C3P3R,
                      static_cast<void (*)(const int32_t*, int32_t*, int32_t*, int32_t*, int)>(ref::rct_fwd_c3p3), 0, 0);
  check_p3c3<int16_t>(
      vpriRCTInv_JPEG2K_16s_P3C3R,
      static_cast<void (*)(const int16_t*, const int16_t*, const int16_t*, int16_t*, int)>(ref::rct_inv_p3c3), 0, 0);
  check_p3c3<int32_t>(
      vpriRCTInv_JPEG2K_32s_P3C3R,
      static_cast<void (*)(const int32_t*, const int32_t*, const int32_t*, int32_t*, int)>(ref::rct_inv_p3c3), 0, 0);
}

TEST(ComponentTransforms, IctTwins) {
  check_p3<int16_t>(vpriICTFwd_JPEG2K_16s_P3IR, as_p3<int16_t>(ref::ict_fwd_p3), 0, 0);
  check_p3<int16_t>(vpriICTInv_JPEG2K_16s_P3IR, as_p3<int16_t>(ref::ict_inv_p3), 0, 0);
  check_p3<int32_t>(vpriICTFwd_JPEG2K_32s_P3IR, as_p3<int32_t>(ref::ict_fwd_p3), 0, 0);
  check_p3<int32_t>(vpriICTInv_JPEG2K_32s_P3IR, as_p3<int32_t>(ref::ict_inv_p3), 0, 0);
  check_p3<float>(vpriICTFwd_JPEG2K_32f_P3IR, as_p3<float>(ref::ict_fwd_p3), -1e4, 1e4);
  check_p3<float>(vpriICTInv_JPEG2K_32f_P3IR, as_p3<float>(ref::ict_inv_p3), -1e4, 1e4);
  check_c3p3<float>(vpriICTFwd_JPEG2K_32f_C3P3R, ref::ict_fwd_c3p3, -300, 300);
  check_p3c3<float>(vpriICTInv_JPEG2K_32f_P3C3R, ref::ict_inv_p3c3, -300, 300);
}

// ---------------------------------------------------------------- values
template <class T, class F>
void one_pixel(F f, T a, T b, T c, T& x, T& y, T& z) {
  T p0[1] = {a}, p1[1] = {b}, p2[1] = {c};
  T* pp[3] = {p0, p1, p2};
  ASSERT_EQ(f(pp, static_cast<int32_t>(sizeof(T)), VprRoiSize{1, 1}), vprStatusOk);
  x = p0[0];
  y = p1[0];
  z = p2[0];
}

TEST(ComponentTransforms, RctValues) {
  int32_t y, u, v;
  one_pixel<int32_t>(vpriRCTFwd_JPEG2K_32s_P3IR, 10, 20, 40, y, u, v);
  EXPECT_EQ(y, 22);  // (10 + 40 + 40) >> 2
  EXPECT_EQ(u, 20);  // B - G
  EXPECT_EQ(v, -10); // R - G
  one_pixel<int32_t>(vpriRCTFwd_JPEG2K_32s_P3IR, -1, -2, -2, y, u, v);
  EXPECT_EQ(y, -2);  // -7 >> 2 rounds toward minus infinity
  int16_t a, b, c;
  one_pixel<int16_t>(vpriRCTFwd_JPEG2K_16s_P3IR, 32767, -32768, 32767, a, b, c);
  EXPECT_EQ(a, -1);                         // (32767 - 65536 + 32767) >> 2 = -2 >> 2
  EXPECT_EQ(b, static_cast<int16_t>(-1));  // 65535 truncated
  EXPECT_EQ(c, static_cast<int16_t>(-1));
  for (int g : {-300, 0, 7, 4095}) {
    one_pixel<int16_t>(vpriRCTFwd_JPEG2K_16s_P3IR, int16_t(g), int16_t(g), int16_t(g), a, b, c);
    EXPECT_EQ(a, g);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(c, 0);
  }
  // 16s inverse saturates what does not fit.
  one_pixel<int16_t>(vpriRCTInv_JPEG2K_16s_P3IR, 30000, 30000, 30000, a, b, c);
  EXPECT_EQ(b, 30000 - 15000);
  EXPECT_EQ(a, 32767);  // 30000 + 15000
  EXPECT_EQ(c, 32767);
  one_pixel<int16_t>(vpriRCTInv_JPEG2K_16s_P3IR, -32768, 32767, 32767, a, b, c);
  EXPECT_EQ(b, -32768);  // -32768 - 16383 saturated
  EXPECT_EQ(a, 32767 - 32768 - 16383);
}

TEST(ComponentTransforms, IctValues) {
  for (int g : {-2048, -1, 0, 1, 255, 4095}) {
    int32_t y, cb, cr;
    one_pixel<int32_t>(vpriICTFwd_JPEG2K_32s_P3IR, g, g, g, y, cb, cr);
    EXPECT_EQ(y, g);
    EXPECT_EQ(cb, 0);
    EXPECT_EQ(cr, 0);
    int16_t a, b, c;
    one_pixel<int16_t>(vpriICTFwd_JPEG2K_16s_P3IR, int16_t(g), int16_t(g), int16_t(g), a, b, c);
    EXPECT_EQ(a, g);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(c, 0);
    float fy, fcb, fcr;
    one_pixel<float>(vpriICTFwd_JPEG2K_32f_P3IR, float(g), float(g), float(g), fy, fcb, fcr);
    EXPECT_NEAR(fy, g, 1e-3 * (1 + std::abs(g)));
    EXPECT_NEAR(fcr, 0.0, 1e-4 * (1 + std::abs(g)));
    EXPECT_NEAR(fcb, -0.00001 * g, 1e-4 * (1 + std::abs(g)));  // the Cb row sums to -0.00001
  }
  // 32s, hand-computed: R = 100, G = 50, B = 0.
  int32_t y, cb, cr;
  one_pixel<int32_t>(vpriICTFwd_JPEG2K_32s_P3IR, 100, 50, 0, y, cb, cr);
  EXPECT_EQ(y, (4899 * 100 + 9617 * 50 + 8192) >> 14);
  EXPECT_EQ(cb, (-2765 * 100 - 5427 * 50 + 8192) >> 14);
  EXPECT_EQ(cr, (8192 * 100 - 6860 * 50 + 8192) >> 14);
  int32_t r, g, b;
  one_pixel<int32_t>(vpriICTInv_JPEG2K_32s_P3IR, 60, -33, 29, r, g, b);
  EXPECT_EQ(r, 60 + ((22970 * 29 + 8192) >> 14));
  EXPECT_EQ(g, 60 + ((-5638 * -33 - 11700 * 29 + 8192) >> 14));
  EXPECT_EQ(b, 60 + ((29032 * -33 + 8192) >> 14));
  // 16s forward: the luma difference wraps to 16 bits before scaling.
  int16_t a, bb, c;
  one_pixel<int16_t>(vpriICTFwd_JPEG2K_16s_P3IR, -32768, -32768, 32767, a, bb, c);
  const int64_t S = 4899LL * -32768 + 9617LL * -32768 + 1868LL * 32767;
  const int64_t DB = ((32767LL << 14) - S + 8192) >> 14;  // above 32767
  ASSERT_GT(DB, 32767);
  EXPECT_EQ(a, (S + 8192) >> 14);
  EXPECT_EQ(bb, (static_cast<int16_t>(DB) * 9246 + 8192) >> 14);
  // 16s inverse clamps.
  one_pixel<int16_t>(vpriICTInv_JPEG2K_16s_P3IR, 32000, 32767, 32767, a, bb, c);
  EXPECT_EQ(a, 32767);
  EXPECT_EQ(c, 32767);
  EXPECT_EQ(bb, 32000 + ((-5638 * 32767 - 11700 * 32767 + 8192) >> 14));
  one_pixel<int16_t>(vpriICTInv_JPEG2K_16s_P3IR, -32000, -32768, -32768, a, bb, c);
  EXPECT_EQ(a, -32768);
  EXPECT_EQ(c, -32768);
}

// ---------------------------------------------------------------- round trips
TEST(ComponentTransforms, RoundTrips) {
  Rng rng(31);
  const int w = 203, h = 5;
  // RCT: exact for 15-bit 16s samples and wide 32s samples.
  {
    Image<int16_t> p[3], o[3];
    for (int c = 0; c < 3; ++c) {
      p[c] = Image<int16_t>(w, h, 6, 1);
      p[c].fill_random(rng, -16384, 16383);
      o[c] = p[c];
    }
    int16_t* pp[3] = {p[0].data(), p[1].data(), p[2].data()};
    ASSERT_EQ(vpriRCTFwd_JPEG2K_16s_P3IR(pp, p[0].step(), {w, h}), vprStatusOk);
    ASSERT_EQ(vpriRCTInv_JPEG2K_16s_P3IR(pp, p[0].step(), {w, h}), vprStatusOk);
    for (int c = 0; c < 3; ++c) ASSERT_TRUE(vprtest::same_region(p[c], o[c]));
  }
  {
    Image<int32_t> src(3 * w, h, 4, 3), back(3 * w, h, 0, 0), d[3];
    src.fill_random(rng, -(1 << 29), (1 << 29) - 1);
    for (int c = 0; c < 3; ++c) d[c] = Image<int32_t>(w, h, 8, c);
    int32_t* pd[3] = {d[0].data(), d[1].data(), d[2].data()};
    ASSERT_EQ(vpriRCTFwd_JPEG2K_32s_C3P3R(src.data(), src.step(), pd, d[0].step(), {w, h}), vprStatusOk);
    const int32_t* ps[3] = {pd[0], pd[1], pd[2]};
    ASSERT_EQ(vpriRCTInv_JPEG2K_32s_P3C3R(ps, d[0].step(), back.data(), back.step(), {w, h}), vprStatusOk);
    ASSERT_TRUE(vprtest::same_region(src, back));
  }
  // ICT: within rounding.  16s over 15-bit samples (where nothing clamps).
  {
    int worst = 0;
    for (int it = 0; it < 20000; ++it) {
      const int16_t r = static_cast<int16_t>(rng.uniform(-16384, 16383)), g = static_cast<int16_t>(rng.uniform(-16384, 16383)),
                    b = static_cast<int16_t>(rng.uniform(-16384, 16383));
      int16_t y, cb, cr, r2, g2, b2;
      one_pixel<int16_t>(vpriICTFwd_JPEG2K_16s_P3IR, r, g, b, y, cb, cr);
      one_pixel<int16_t>(vpriICTInv_JPEG2K_16s_P3IR, y, cb, cr, r2, g2, b2);
      worst = std::max({worst, std::abs(r - r2), std::abs(g - g2), std::abs(b - b2)});
    }
    EXPECT_LE(worst, 3);
    worst = 0;
    for (int it = 0; it < 20000; ++it) {
      const int32_t r = static_cast<int32_t>(rng.uniform(-30000, 30000)),
                    g = static_cast<int32_t>(rng.uniform(-30000, 30000)),
                    b = static_cast<int32_t>(rng.uniform(-30000, 30000));
      int32_t y, cb, cr, r2, g2, b2;
      one_pixel<int32_t>(vpriICTFwd_JPEG2K_32s_P3IR, r, g, b, y, cb, cr);
      one_pixel<int32_t>(vpriICTInv_JPEG2K_32s_P3IR, y, cb, cr, r2, g2, b2);
      worst = std::max({worst, std::abs(r - r2), std::abs(g - g2), std::abs(b - b2)});
    }
    EXPECT_LE(worst, 3);
    double fworst = 0;
    for (int it = 0; it < 2000; ++it) {
      const float r = float(rng.real(-255, 255)), g = float(rng.real(-255, 255)), b = float(rng.real(-255, 255));
      float y = 0, cb = 0, cr = 0, r2 = 0, g2 = 0, b2 = 0;
      one_pixel<float>(vpriICTFwd_JPEG2K_32f_P3IR, r, g, b, y, cb, cr);
      one_pixel<float>(vpriICTInv_JPEG2K_32f_P3IR, y, cb, cr, r2, g2, b2);
      fworst = std::max({fworst, double(std::fabs(r - r2)), double(std::fabs(g - g2)), double(std::fabs(b - b2))});
    }
    EXPECT_LT(fworst, 0.02);
  }
}

// ---------------------------------------------------------------- checks
TEST(ComponentTransforms, ArgumentChecks) {
  int16_t a[8] = {1, 2, 3, 4, 5, 6, 7, 8}, b[8] = {}, c[8] = {}, s[24] = {};
  int16_t* p[3] = {a, b, c};
  int16_t* pn[3] = {a, nullptr, c};
  const VprRoiSize roi{4, 2};
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_P3IR(nullptr, 8, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_P3IR(pn, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriICTInv_JPEG2K_16s_P3IR(p, 0, roi), vprStatusBadStep);
  EXPECT_EQ(vpriICTFwd_JPEG2K_16s_P3IR(p, 8, VprRoiSize{0, 2}), vprStatusBadSize);
  EXPECT_EQ(vpriICTFwd_JPEG2K_16s_P3IR(p, 8, VprRoiSize{4, -1}), vprStatusBadSize);
  // C3P3R: pSrc, srcStep, pDst (array and planes), dstStep, size.
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_C3P3R(nullptr, 0, nullptr, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_C3P3R(s, 0, nullptr, 0, roi), vprStatusBadStep);
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_C3P3R(s, 24, pn, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_C3P3R(s, 24, p, 0, VprRoiSize{0, 0}), vprStatusBadStep);
  EXPECT_EQ(vpriRCTFwd_JPEG2K_16s_C3P3R(s, 24, p, 8, VprRoiSize{4, 0}), vprStatusBadSize);
  // P3C3R: pSrc (array and planes), srcStep, pDst, dstStep, size.
  const int16_t* q[3] = {a, b, c};
  const int16_t* qn[3] = {a, b, nullptr};
  EXPECT_EQ(vpriRCTInv_JPEG2K_16s_P3C3R(qn, 8, s, 24, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriRCTInv_JPEG2K_16s_P3C3R(q, 0, nullptr, 24, roi), vprStatusBadStep);
  EXPECT_EQ(vpriRCTInv_JPEG2K_16s_P3C3R(q, 8, nullptr, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriRCTInv_JPEG2K_16s_P3C3R(q, 8, s, 0, VprRoiSize{0, 1}), vprStatusBadStep);
  EXPECT_EQ(vpriRCTInv_JPEG2K_16s_P3C3R(q, 8, s, 24, VprRoiSize{1, 0}), vprStatusBadSize);
  float f[12] = {}, g0[4], g1[4], g2[4];
  float* pf[3] = {g0, g1, nullptr};
  EXPECT_EQ(vpriICTFwd_JPEG2K_32f_C3P3R(f, 48, pf, 16, VprRoiSize{4, 1}), vprStatusNullPointer);
  const float* qf[3] = {g0, g1, g2};
  EXPECT_EQ(vpriICTInv_JPEG2K_32f_P3C3R(qf, 16, f, -5, VprRoiSize{4, 1}), vprStatusBadStep);
  // Nothing was written.
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(a[i], i + 1);
    EXPECT_EQ(b[i], 0);
    EXPECT_EQ(c[i], 0);
  }
  for (int16_t v : s) EXPECT_EQ(v, 0);
  for (float v : f) EXPECT_EQ(v, 0.0f);
}

}  // namespace
