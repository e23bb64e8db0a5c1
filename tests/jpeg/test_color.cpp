// Colour conversion: every exported function against per-pixel formulas
// written here, SSE row kernels against the scalar ones, argument checks,
// odd sizes, threading.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "jpeg/color.h"
#include "vprjp.h"
#include "vprtest.h"

using vprtest::Image;
using vprtest::Rng;
namespace vj = vpr::jpeg;

namespace {

using Px = std::array<int, 3>;

int cl(int64_t v) { return v < 0 ? 0 : v > 255 ? 255 : static_cast<int>(v); }
int fl(int64_t v, int s) { return static_cast<int>(v >> s); }  // flooring shift
int lo8(int64_t v, int s) { return static_cast<int>((v >> s) & 255); }

// ---- forward models: (R, G, B) -> (Y, Cb, Cr)
Px fwd_q15(int R, int G, int B) {
  return {cl(fl(9798 * R + 19235 * G + 3736 * B + 16266, 15)), cl(fl(-5529 * R - 10855 * G + 16384 * B + 4210688, 15)),
          cl(fl(16384 * R - 13720 * G - 2664 * B + 4210704, 15))};
}
Px fwd_q14(int R, int G, int B) {
  return {cl(fl(4899 * R + 9617 * G + 1868 * B + 8192, 14)), cl(fl(-2764 * R - 5428 * G + 8192 * B + 2105344, 14)),
          cl(fl(8192 * R - 6860 * G - 1332 * B + 2105344, 14))};
}
// Family A: Q15 on the groups of 8, Q14 after.
Px fwd_a(int x, int w, int R, int G, int B) { return x < w / 8 * 8 ? fwd_q15(R, G, B) : fwd_q14(R, G, B); }
int y_q16(int R, int G, int B) { return fl(19595 * R + 38470 * G + 7471 * B + 32768, 16); }
Px fwd_b(int x, int w, int R, int G, int B) {
  if (x < (w & ~3)) {
    const int Y = cl(y_q16(R, G, B));
    return {Y, cl(fl((B - Y) * 18491 + 4210688, 15)), cl(fl((R - Y) * 23373 + 4210688, 15))};
  }
  return {y_q16(R, G, B), fl(-11059 * R - 21709 * G + 32768 * B + 8421375, 16),
          fl(32768 * R + 8421375 - 27439 * G - 5329 * B, 16)};
}
Px fwd_c(int R, int G, int B) {
  return {y_q16(R, G, B), lo8(32768 * B - 21709 * G - 11059 * R - 8372224, 16),
          lo8(32768 * R - 27439 * G - 5329 * B - 8372224, 16)};
}
int y_float(int R, int G, int B) {
  const float v = 0.299f * static_cast<float>(R) + 0.587f * static_cast<float>(G) + 0.114f * static_cast<float>(B);
  return cl(static_cast<int64_t>(std::nearbyint(v)));
}

// ---- inverse models: (Y, Cb, Cr) -> (R, G, B)
int s16(int64_t v) { return v < -32768 ? -32768 : v > 32767 ? 32767 : static_cast<int>(v); }
int round_away(int num, int den) {  // nearest integer to num/den, ties away from zero
  const int a = num < 0 ? -num : num, q = (2 * a + den) / (2 * den);
  return num < 0 ? -q : q;
}
Px inv_tbl(int Y, int Cb, int Cr) {
  return {cl(Y + round_away(1402 * (Cr - 128), 1000)), cl(Y + fl(-22554 * (Cb - 128) + 32768 - 46802 * (Cr - 128), 16)),
          cl(Y + round_away(1772 * (Cb - 128), 1000))};
}
Px inv_e(int x, int w, int Y, int Cb, int Cr) {
  if (x >= (w & ~3)) return inv_tbl(Y, Cb, Cr);
  return {cl(Y + s16(fl(22970 * Cr - 2932015, 14))), cl(Y + s16(fl(-5638 * Cb - 11700 * Cr + 2227566, 14))),
          cl(Y + s16(fl(29032 * Cb - 3708561, 14)))};
}
Px inv_e2(int x, int w, int Y, int Cb, int Cr) {
  if (x >= (w & ~3)) return inv_tbl(Y, Cb, Cr);
  return {cl(Y + fl(22970 * Cr - 2932015, 14)), cl(Y - fl(5638 * Cb + 11700 * Cr - 2211182, 14)),
          cl(Y + fl(29032 * Cb - 3708561, 14))};
}
Px inv_f(int Y, int Cb, int Cr) {
  return {cl(fl(65536 * Y + 91880 * Cr - 11727880, 16)), cl(fl(65536 * Y - 22553 * Cb - 46801 * Cr + 8910128, 16)),
          cl(fl(65536 * Y + 116128 * Cb - 14831618, 16))};
}

// Three planes of the same geometry (one shared step).
struct Planes {
  std::array<Image<uint8_t>, 3> p;
  Planes(int w, int h, int pad, int mis) : p{Image<uint8_t>(w, h, pad, mis), Image<uint8_t>(w, h, pad, mis), Image<uint8_t>(w, h, pad, mis)} {}
  std::array<uint8_t*, 3> ptrs() { return {p[0].data(), p[1].data(), p[2].data()}; }
  std::array<const uint8_t*, 3> cptrs() const { return {p[0].data(), p[1].data(), p[2].data()}; }
  int step() const { return p[0].step(); }
  bool guards() const { return p[0].guards_intact() && p[1].guards_intact() && p[2].guards_intact(); }
  void fill_random(Rng& r) {
    for (auto& q : p) q.fill_random(r);
  }
};

const char* kOrder[2] = {"RGB", "BGR"};

// ---------------------------------------------------------------- forward

using FwdC = VprStatus (*)(const Vpr8u*, int, Vpr8u**, int, VprRoiSize);

TEST(ColorForward, InterleavedToPlanesFollowsFamilyFormulas) {
  struct Case {
    FwdC f;
    int ch, ri, bi;
    char fam;
  };
  const Case cases[] = {{vpriRGBToYCbCr_JPEG_8u_C3P3R, 3, 0, 2, 'A'}, {vpriBGRToYCbCr_JPEG_8u_C3P3R, 3, 2, 0, 'A'},
                        {vpriRGBToYCbCr_JPEG_8u_C4P3R, 4, 0, 2, 'C'}, {vpriBGRToYCbCr_JPEG_8u_C4P3R, 4, 2, 0, 'C'}};
  Rng rng(1);
  for (const Case& c : cases)
    for (const auto& g : vprtest::geometries()) {
      SCOPED_TRACE(g.str() + " family " + c.fam + " channels " + std::to_string(c.ch) + " ri " + std::to_string(c.ri));
      Image<uint8_t> src(g.width * c.ch, g.height, g.pad, g.misalign);
      src.fill_random(rng);
      Planes dst(g.width, g.height, g.pad + 1, g.misalign + 3);
      auto d = dst.ptrs();
      ASSERT_EQ(c.f(src.data(), src.step(), d.data(), dst.step(), {g.width, g.height}), vprStatusOk);
      for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x) {
          const int R = src.get(c.ch * x + c.ri, y), G = src.get(c.ch * x + 1, y), B = src.get(c.ch * x + c.bi, y);
          const Px e = c.fam == 'A' ? fwd_a(x, g.width, R, G, B) : fwd_c(R, G, B);
          for (int k = 0; k < 3; ++k) ASSERT_EQ(dst.p[k].get(x, y), e[k]) << "x " << x << " y " << y << " plane " << k;
        }
      ASSERT_TRUE(dst.guards());
    }
}

TEST(ColorForward, PlanarAndLuminanceFollowFormulas) {
  Rng rng(2);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Planes src(g.width, g.height, g.pad, g.misalign);
    src.fill_random(rng);
    Planes dst(g.width, g.height, g.pad + 5, g.misalign + 1);
    auto s = src.cptrs();
    auto d = dst.ptrs();
    ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(s.data(), src.step(), d.data(), dst.step(), {g.width, g.height}), vprStatusOk);
    Image<uint8_t> yf(g.width, g.height, g.pad, g.misalign + 2);
    ASSERT_EQ(vpriRGBToY_JPEG_8u_P3C1R(s.data(), src.step(), yf.data(), yf.step(), {g.width, g.height}), vprStatusOk);
    Image<uint8_t> src3(g.width * 3, g.height, g.pad, g.misalign);
    src3.fill_with([&](int x, int y) { return src.p[x % 3].get(x / 3, y); });
    Image<uint8_t> y3[2] = {Image<uint8_t>(g.width, g.height, g.pad, g.misalign + 7), Image<uint8_t>(g.width, g.height, g.pad, g.misalign + 7)};
    ASSERT_EQ(vpriRGBToY_JPEG_8u_C3C1R(src3.data(), src3.step(), y3[0].data(), y3[0].step(), {g.width, g.height}), vprStatusOk);
    ASSERT_EQ(vpriBGRToY_JPEG_8u_C3C1R(src3.data(), src3.step(), y3[1].data(), y3[1].step(), {g.width, g.height}), vprStatusOk);
    for (int y = 0; y < g.height; ++y)
      for (int x = 0; x < g.width; ++x) {
        const int R = src.p[0].get(x, y), G = src.p[1].get(x, y), B = src.p[2].get(x, y);
        const Px e = fwd_b(x, g.width, R, G, B);
        for (int k = 0; k < 3; ++k) ASSERT_EQ(dst.p[k].get(x, y), e[k]) << "x " << x << " y " << y << " plane " << k;
        ASSERT_EQ(yf.get(x, y), y_float(R, G, B)) << "x " << x;
        ASSERT_EQ(y3[0].get(x, y), fwd_q15(R, G, B)[0]) << "x " << x;
        ASSERT_EQ(y3[1].get(x, y), fwd_q15(B, G, R)[0]) << "x " << x;
      }
    ASSERT_TRUE(dst.guards() && yf.guards_intact() && y3[0].guards_intact() && y3[1].guards_intact());
  }
}

using Fwd3 = VprStatus (*)(const Vpr8u*, int, Vpr8u**, int*, VprRoiSize);

TEST(ColorForward, SampledFormsFollowFormulasAndLeaveOddEdgeUnwritten) {
  Fwd3 fns[2][2][2] = {  // [411][C4][BGR]
      {{vpriRGBToYCbCr422_JPEG_8u_C3P3R, vpriBGRToYCbCr422_JPEG_8u_C3P3R},
       {vpriRGBToYCbCr422_JPEG_8u_C4P3R, vpriBGRToYCbCr422_JPEG_8u_C4P3R}},
      {{vpriRGBToYCbCr411_JPEG_8u_C3P3R, vpriBGRToYCbCr411_JPEG_8u_C3P3R},
       {vpriRGBToYCbCr411_JPEG_8u_C4P3R, vpriBGRToYCbCr411_JPEG_8u_C4P3R}}};
  Rng rng(3);
  for (int v2 = 0; v2 < 2; ++v2)
    for (int c4 = 0; c4 < 2; ++c4)
      for (int bgr = 0; bgr < 2; ++bgr)
        for (const auto& g : vprtest::geometries()) {
          if (g.width < 2 || g.height < 1 + v2) continue;
          SCOPED_TRACE(g.str() + (v2 ? " 411 " : " 422 ") + (c4 ? "C4 " : "C3 ") + kOrder[bgr]);
          const int ch = 3 + c4, ri = bgr ? 2 : 0, bi = 2 - ri;
          const int cw = g.width / 2, chh = v2 ? g.height / 2 : g.height;
          Image<uint8_t> src(g.width * ch, g.height, g.pad, g.misalign);
          src.fill_random(rng);
          Image<uint8_t> Y(g.width, g.height, g.pad, g.misalign + 1), Cb(cw, chh, g.pad + 9, g.misalign),
              Cr(cw, chh, 0, g.misalign + 5);
          Y.fill(0x5A);
          Vpr8u* d[3] = {Y.data(), Cb.data(), Cr.data()};
          int steps[3] = {Y.step(), Cb.step(), Cr.step()};
          const bool odd = (g.width & 1) || (v2 && (g.height & 1));
          ASSERT_EQ(fns[v2][c4][bgr](src.data(), src.step(), d, steps, {g.width, g.height}),
                    odd ? vprStatusOddSizeWarning : vprStatusOk);
          const int we = g.width & ~1, he = v2 ? g.height & ~1 : g.height;
          auto px = [&](int x, int y, int k) { return static_cast<int>(src.get(ch * x + k, y)); };
          for (int y = 0; y < g.height; ++y)
            for (int x = 0; x < g.width; ++x) {
              const int e = (x < we && y < he) ? y_q16(px(x, y, ri), px(x, y, 1), px(x, y, bi)) : 0x5A;
              ASSERT_EQ(Y.get(x, y), e) << "Y x " << x << " y " << y;
            }
          const int s = v2 ? 18 : 17;
          const int64_t bias = v2 ? 33521664 : 16760832;
          for (int cy = 0; cy < chh; ++cy)
            for (int j = 0; j < cw; ++j) {
              int64_t SR = 0, SG = 0, SB = 0;
              for (int dy = 0; dy <= v2; ++dy)
                for (int dx = 0; dx < 2; ++dx) {
                  const int x = 2 * j + dx, y = (v2 ? 2 * cy : cy) + dy;
                  SR += px(x, y, ri);
                  SG += px(x, y, 1);
                  SB += px(x, y, bi);
                }
              ASSERT_EQ(Cb.get(j, cy), lo8(32768 * SB - 21709 * SG - 11059 * SR - bias, s)) << j << "," << cy;
              ASSERT_EQ(Cr.get(j, cy), lo8(32768 * SR - 27439 * SG - 5329 * SB - bias, s)) << j << "," << cy;
            }
          ASSERT_TRUE(Y.guards_intact() && Cb.guards_intact() && Cr.guards_intact());
        }
}

TEST(ColorForward, HandComputedPixels) {
  // 1x1 white goes through the Q14 single-pixel path.
  uint8_t white[3] = {255, 255, 255}, y = 0, cb = 0, cr = 0;
  Vpr8u* d[3] = {&y, &cb, &cr};
  ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(white, 3, d, 1, {1, 1}), vprStatusOk);
  EXPECT_EQ(y, 255);
  EXPECT_EQ(cb, 128);
  EXPECT_EQ(cr, 128);
  // (0,5,119): Y is 16 in Q15 and 17 in Q14; (12,175,7): Cb 72 / 71;
  // (0,165,42): Cr 56 / 55.  Widths 9 (8 + 1), 12 (8 + 4), 7 (4 + 3), 16.
  const std::array<int, 3> colours[3] = {{0, 5, 119}, {12, 175, 7}, {0, 165, 42}};
  const int q15v[3] = {16, 72, 56}, q14v[3] = {17, 71, 55};
  for (int k = 0; k < 3; ++k)
    for (int w : {7, 9, 12, 16}) {
      std::vector<uint8_t> row(3 * w), out[3] = {std::vector<uint8_t>(w), std::vector<uint8_t>(w), std::vector<uint8_t>(w)};
      for (int x = 0; x < w; ++x)
        for (int c = 0; c < 3; ++c) row[3 * x + c] = static_cast<uint8_t>(colours[k][c]);
      Vpr8u* p[3] = {out[0].data(), out[1].data(), out[2].data()};
      ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(row.data(), 3 * w, p, w, {w, 1}), vprStatusOk);
      for (int x = 0; x < w; ++x) EXPECT_EQ(out[k][x], x < w / 8 * 8 ? q15v[k] : q14v[k]) << "w " << w << " x " << x;
    }
}

TEST(ColorForward, GreyGivesNeutralChromaInEveryFamily) {
  const int w = 256;
  std::vector<uint8_t> c3(3 * w), c4(4 * w), plane(w);
  for (int v = 0; v < w; ++v) {
    plane[v] = static_cast<uint8_t>(v);
    for (int k = 0; k < 3; ++k) c3[3 * v + k] = c4[4 * v + k] = static_cast<uint8_t>(v);
    c4[4 * v + 3] = static_cast<uint8_t>(255 - v);
  }
  // Pairs of equal grey pixels for the sampled forms.
  std::vector<uint8_t> c3p(3 * 2 * w), c4p(4 * 2 * w);
  for (int x = 0; x < 2 * w; ++x)
    for (int k = 0; k < 4; ++k) {
      if (k < 3) c3p[3 * x + k] = static_cast<uint8_t>(x / 2);
      c4p[4 * x + k] = static_cast<uint8_t>(x / 2);
    }
  std::vector<uint8_t> Y(2 * w * 2), Cb(w * 2), Cr(w * 2);
  Vpr8u* d[3] = {Y.data(), Cb.data(), Cr.data()};
  auto neutral = [&](int n) {
    for (int i = 0; i < n; ++i)
      if (Cb[i] != 128 || Cr[i] != 128) return false;
    return true;
  };
  ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(c3.data(), 3 * w, d, w, {w, 1}), vprStatusOk);
  EXPECT_TRUE(neutral(w));
  ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_C4P3R(c4.data(), 4 * w, d, w, {w, 1}), vprStatusOk);
  EXPECT_TRUE(neutral(w));
  const Vpr8u* pl[3] = {plane.data(), plane.data(), plane.data()};
  ASSERT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(pl, w, d, w, {w - 3, 1}), vprStatusOk);  // remainder of 1 via the table
  EXPECT_TRUE(neutral(w - 3));
  int steps[3] = {2 * w, w, w};
  ASSERT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(c3p.data(), 6 * w, d, steps, {2 * w, 1}), vprStatusOk);
  EXPECT_TRUE(neutral(w));
  std::vector<uint8_t> two(2 * c4p.size());
  std::copy(c4p.begin(), c4p.end(), two.begin());
  std::copy(c4p.begin(), c4p.end(), two.begin() + static_cast<long>(c4p.size()));
  ASSERT_EQ(vpriRGBToYCbCr411_JPEG_8u_C4P3R(two.data(), 8 * w, d, steps, {2 * w, 2}), vprStatusOk);
  EXPECT_TRUE(neutral(w));
}

// ---------------------------------------------------------------- inverse

TEST(ColorInverse, FullResolutionFollowsFamilyFormulas) {
  Rng rng(4);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Planes src(g.width, g.height, g.pad, g.misalign);
    src.fill_random(rng);
    auto s = src.cptrs();
    const VprRoiSize roi{g.width, g.height};
    Image<uint8_t> rgb(3 * g.width, g.height, g.pad, g.misalign + 1), bgr = rgb;
    Image<uint8_t> rgba(4 * g.width, g.height, g.pad + 2, g.misalign + 2), bgra = rgba;
    Planes pl(g.width, g.height, g.pad + 3, g.misalign);
    auto p = pl.ptrs();
    ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C3R(s.data(), src.step(), rgb.data(), rgb.step(), roi), vprStatusOk);
    ASSERT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C3R(s.data(), src.step(), bgr.data(), bgr.step(), roi), vprStatusOk);
    ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C4R(s.data(), src.step(), rgba.data(), rgba.step(), roi, 77), vprStatusOk);
    ASSERT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C4R(s.data(), src.step(), bgra.data(), bgra.step(), roi, 200), vprStatusOk);
    ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s.data(), src.step(), p.data(), pl.step(), roi), vprStatusOk);
    for (int y = 0; y < g.height; ++y)
      for (int x = 0; x < g.width; ++x) {
        const int Y = src.p[0].get(x, y), Cb = src.p[1].get(x, y), Cr = src.p[2].get(x, y);
        const Px e = inv_e(x, g.width, Y, Cb, Cr), e2 = inv_e2(x, g.width, Y, Cb, Cr), f = inv_f(Y, Cb, Cr);
        for (int k = 0; k < 3; ++k) {
          ASSERT_EQ(rgb.get(3 * x + k, y), e[k]) << "x " << x << " k " << k;
          ASSERT_EQ(bgr.get(3 * x + 2 - k, y), e[k]) << "x " << x << " k " << k;
          ASSERT_EQ(rgba.get(4 * x + k, y), f[k]) << "x " << x << " k " << k;
          ASSERT_EQ(bgra.get(4 * x + 2 - k, y), f[k]) << "x " << x << " k " << k;
          ASSERT_EQ(pl.p[k].get(x, y), e2[k]) << "x " << x << " k " << k;
        }
        ASSERT_EQ(rgba.get(4 * x + 3, y), 77);
        ASSERT_EQ(bgra.get(4 * x + 3, y), 200);
      }
    ASSERT_TRUE(rgb.guards_intact() && bgr.guards_intact() && rgba.guards_intact() && bgra.guards_intact() &&
                pl.guards());
  }
}

using Inv3 = VprStatus (*)(const Vpr8u* const*, int*, Vpr8u*, int, VprRoiSize);
using Inv4 = VprStatus (*)(const Vpr8u* const*, int*, Vpr8u*, int, VprRoiSize, Vpr8u);

TEST(ColorInverse, SampledFormsReplicateChroma) {
  Inv3 f3[2][2] = {{vpriYCbCr422ToRGB_JPEG_8u_P3C3R, vpriYCbCr422ToBGR_JPEG_8u_P3C3R},
                   {vpriYCbCr411ToRGB_JPEG_8u_P3C3R, vpriYCbCr411ToBGR_JPEG_8u_P3C3R}};
  Inv4 f4[2][2] = {{vpriYCbCr422ToRGB_JPEG_8u_P3C4R, vpriYCbCr422ToBGR_JPEG_8u_P3C4R},
                   {vpriYCbCr411ToRGB_JPEG_8u_P3C4R, vpriYCbCr411ToBGR_JPEG_8u_P3C4R}};
  Rng rng(5);
  for (int v2 = 0; v2 < 2; ++v2)
    for (int c4 = 0; c4 < 2; ++c4)
      for (int bgr = 0; bgr < 2; ++bgr)
        for (const auto& g : vprtest::geometries()) {
          if (g.width < 2 || g.height < 1 + v2) continue;
          SCOPED_TRACE(g.str() + (v2 ? " 411 " : " 422 ") + (c4 ? "C4 " : "C3 ") + kOrder[bgr]);
          const int ch = 3 + c4, cw = g.width / 2, chh = v2 ? g.height / 2 : g.height;
          Image<uint8_t> Y(g.width, g.height, g.pad, g.misalign), Cb(cw, chh, g.pad + 4, g.misalign + 1),
              Cr(cw, chh, 1, g.misalign + 2);
          Y.fill_random(rng);
          Cb.fill_random(rng);
          Cr.fill_random(rng);
          const Vpr8u* s[3] = {Y.data(), Cb.data(), Cr.data()};
          int steps[3] = {Y.step(), Cb.step(), Cr.step()};
          Image<uint8_t> dst(ch * g.width, g.height, g.pad + 6, g.misalign + 3);
          dst.fill(0x5A);
          const bool odd = (g.width & 1) || (v2 && (g.height & 1));
          const VprStatus st = c4 ? f4[v2][bgr](s, steps, dst.data(), dst.step(), {g.width, g.height}, 99)
                                  : f3[v2][bgr](s, steps, dst.data(), dst.step(), {g.width, g.height});
          ASSERT_EQ(st, odd ? vprStatusOddSizeWarning : vprStatusOk);
          const int we = g.width & ~1, he = v2 ? g.height & ~1 : g.height;
          for (int y = 0; y < g.height; ++y)
            for (int x = 0; x < g.width; ++x) {
              const bool in = x < we && y < he;
              const int cy = v2 ? y / 2 : y;
              const Px e = in ? inv_f(Y.get(x, y), Cb.get(x / 2, cy), Cr.get(x / 2, cy)) : Px{0x5A, 0x5A, 0x5A};
              for (int k = 0; k < 3; ++k) ASSERT_EQ(dst.get(ch * x + (bgr ? 2 - k : k), y), e[k]) << x << "," << y;
              if (c4) {
                ASSERT_EQ(dst.get(ch * x + 3, y), in ? 99 : 0x5A);
              }
            }
          ASSERT_TRUE(dst.guards_intact());
        }
}

TEST(ColorInverse, InterleavedC2UsesTablesPerPair) {
  Rng rng(6);
  for (const auto& g : vprtest::geometries()) {
    if (g.width < 2) continue;
    SCOPED_TRACE(g.str());
    Image<uint8_t> src(2 * g.width, g.height, g.pad, g.misalign);
    src.fill_random(rng);
    Image<uint8_t> dst(3 * g.width, g.height, g.pad + 1, g.misalign + 2);
    dst.fill(0x5A);
    ASSERT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(src.data(), src.step(), dst.data(), dst.step(), {g.width, g.height}),
              (g.width & 1) ? vprStatusOddSizeWarning : vprStatusOk);
    for (int y = 0; y < g.height; ++y)
      for (int x = 0; x < g.width; ++x) {
        const int j = x / 2;
        const Px e = x < (g.width & ~1) ? inv_tbl(src.get(4 * j + 2 * (x & 1), y), src.get(4 * j + 1, y), src.get(4 * j + 3, y))
                                        : Px{0x5A, 0x5A, 0x5A};
        for (int k = 0; k < 3; ++k) ASSERT_EQ(dst.get(3 * x + k, y), e[k]) << x << "," << y;
      }
    ASSERT_TRUE(dst.guards_intact());
  }
}

// Every (Cb, Cr) pair, one 65536-pixel row, through each inverse family.
TEST(ColorInverse, EveryChromaPair) {
  const int n = 65536;
  Rng rng(9);
  std::vector<uint8_t> Y(n), Cb(n), Cr(n), c2(2 * n), rgb(3 * n), rgba(4 * n), pr(n), pg(n), pb(n);
  for (int i = 0; i < n; ++i) {
    Y[i] = static_cast<uint8_t>(rng.uniform(0, 255));
    Cb[i] = static_cast<uint8_t>(i >> 8);
    Cr[i] = static_cast<uint8_t>(i & 255);
  }
  for (int j = 0; j < n / 2; ++j) {
    c2[4 * j] = Y[2 * j];
    c2[4 * j + 1] = Cb[2 * j];
    c2[4 * j + 2] = Y[2 * j + 1];
    c2[4 * j + 3] = Cr[2 * j];
  }
  const Vpr8u* s[3] = {Y.data(), Cb.data(), Cr.data()};
  Vpr8u* p[3] = {pr.data(), pg.data(), pb.data()};
  const VprRoiSize roi{n, 1};
  ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C3R(s, n, rgb.data(), 3 * n, roi), vprStatusOk);
  ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C4R(s, n, rgba.data(), 4 * n, roi, 1), vprStatusOk);
  ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s, n, p, n, roi), vprStatusOk);
  for (int x = 0; x < n; ++x) {
    const Px e = inv_e(x, n, Y[x], Cb[x], Cr[x]), e2 = inv_e2(x, n, Y[x], Cb[x], Cr[x]), f = inv_f(Y[x], Cb[x], Cr[x]);
    for (int k = 0; k < 3; ++k) {
      ASSERT_EQ(rgb[3 * x + k], e[k]) << x;
      ASSERT_EQ(rgba[4 * x + k], f[k]) << x;
    }
    ASSERT_TRUE(pr[x] == e2[0] && pg[x] == e2[1] && pb[x] == e2[2]) << x;
  }
  // C2: pair j carries Cb = Cb[2j], Cr = Cr[2j]; two runs cover odd Cr too.
  for (int shift = 0; shift < 2; ++shift) {
    for (int j = 0; j < n / 2; ++j) c2[4 * j + 3] = Cr[2 * j + shift];
    ASSERT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(c2.data(), 2 * n, rgb.data(), 3 * n, roi), vprStatusOk);
    for (int x = 0; x < n; ++x) {
      const Px e = inv_tbl(Y[x], Cb[x & ~1], Cr[(x & ~1) + shift]);
      for (int k = 0; k < 3; ++k) ASSERT_EQ(rgb[3 * x + k], e[k]) << x;
    }
  }
}

TEST(ColorTables, ExactValues) {
  EXPECT_EQ(vj::cr_r_tbl[0], -179);
  EXPECT_EQ(vj::cr_r_tbl[255], 178);
  EXPECT_EQ(vj::cb_b_tbl[0], -227);
  EXPECT_EQ(vj::cb_b_tbl[255], 225);
  EXPECT_EQ(vj::cb_b_tbl[3], -222);    // -221.5
  EXPECT_EQ(vj::cb_b_tbl[253], 222);   // 221.5
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(vj::cr_r_tbl[i], round_away(1402 * (i - 128), 1000)) << i;
    EXPECT_EQ(vj::cb_b_tbl[i], round_away(1772 * (i - 128), 1000)) << i;
    EXPECT_EQ(vj::cr_g_tbl[i], -46802 * (i - 128)) << i;
    EXPECT_EQ(vj::cb_g_tbl[i], -22554 * (i - 128) + 32768) << i;
    const int64_t T[8] = {19595LL * i, 38470LL * i, 7471LL * i + 32768, -11059LL * i,
                          -21709LL * i, 32768LL * i + 8421375, -27439LL * i, -5329LL * i};
    for (int k = 0; k < 8; ++k) EXPECT_EQ(vj::cc_table[256 * k + i], T[k]) << k << " " << i;
  }
}

// ---------------------------------------------------------------- argument checks

TEST(ColorArgs, FullResolutionChecksPointersThenStepsThenSize) {
  uint8_t buf[64] = {}, a[16], b[16], c[16];
  Vpr8u* d[3] = {a, b, c};
  Vpr8u* dn[3] = {a, nullptr, c};
  const Vpr8u* s[3] = {a, b, c};
  const Vpr8u* sn[3] = {a, b, nullptr};
  std::memset(a, 7, 16);
  std::memset(b, 7, 16);
  std::memset(c, 7, 16);
  const VprRoiSize ok{2, 2}, bad{0, 2}, badh{2, 0};
  // C3P3R: null destination with a bad source step is still -8.
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(nullptr, 6, d, 4, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(buf, 0, nullptr, 4, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(buf, -3, dn, 4, bad), vprStatusNullPointer);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C3P3R(buf, 0, d, 4, bad), vprStatusBadStep);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C3P3R(buf, 6, d, 0, bad), vprStatusBadStep);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C3P3R(buf, 6, d, 4, bad), vprStatusBadSize);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C3P3R(buf, 6, d, 4, badh), vprStatusBadSize);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(sn, 0, d, 4, bad), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(nullptr, 4, d, 4, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(s, 4, dn, 4, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(s, 4, d, -1, bad), vprStatusBadStep);
  EXPECT_EQ(vpriRGBToY_JPEG_8u_C3C1R(buf, 0, nullptr, 2, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriBGRToY_JPEG_8u_C3C1R(buf, 0, a, 2, bad), vprStatusBadStep);
  EXPECT_EQ(vpriRGBToY_JPEG_8u_C3C1R(buf, 6, a, 2, badh), vprStatusBadSize);
  EXPECT_EQ(vpriRGBToY_JPEG_8u_P3C1R(sn, 4, a, 2, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToY_JPEG_8u_P3C1R(s, 4, a, 0, ok), vprStatusBadStep);
  EXPECT_EQ(vpriRGBToY_JPEG_8u_P3C1R(s, 4, a, 2, bad), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C3R(sn, 0, buf, 6, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C3R(s, 0, nullptr, 6, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C3R(s, 4, buf, 0, bad), vprStatusBadStep);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C3R(s, 4, buf, 6, bad), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s, 0, dn, 4, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s, 0, d, 4, ok), vprStatusBadStep);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s, 4, d, 4, badh), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(nullptr, 4, buf, 6, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(buf, 4, nullptr, 6, {1, 1}), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(buf, 4, buf + 8, 6, {1, 1}), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_C2C3R(buf, 4, buf + 8, 6, badh), vprStatusBadSize);
  // No step check in the C4 forms (nor in the sampled ones).
  EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_C4P3R(nullptr, 0, d, 0, bad), vprStatusNullPointer);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C4P3R(buf, 0, dn, 0, ok), vprStatusNullPointer);
  EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C4P3R(buf, -5, d, -5, badh), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C4R(sn, 0, buf, 0, ok, 1), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C4R(s, -1, buf, -1, bad, 1), vprStatusBadSize);
  // Nothing was written by any failing call.
  for (int i = 0; i < 16; ++i) ASSERT_TRUE(a[i] == 7 && b[i] == 7 && c[i] == 7) << i;
  for (int i = 0; i < 64; ++i) ASSERT_EQ(buf[i], 0) << i;
}

TEST(ColorArgs, SampledChecksAndWarnings) {
  uint8_t buf[256] = {}, a[64], b[64], c[64];
  std::memset(a, 7, 64);
  std::memset(b, 7, 64);
  std::memset(c, 7, 64);
  Vpr8u* d[3] = {a, b, c};
  Vpr8u* dn[3] = {a, b, nullptr};
  int steps[3] = {8, 4, 4};
  const Vpr8u* s[3] = {a, b, c};
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(buf, 24, dn, steps, {1, 1}), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(buf, 24, d, nullptr, {2, 1}), vprStatusNullPointer);
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(nullptr, 24, d, steps, {2, 1}), vprStatusNullPointer);
  EXPECT_EQ(vpriBGRToYCbCr422_JPEG_8u_C3P3R(buf, 24, d, steps, {1, 1}), vprStatusBadSize);
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C4P3R(buf, 24, d, steps, {2, 0}), vprStatusBadSize);
  EXPECT_EQ(vpriRGBToYCbCr411_JPEG_8u_C3P3R(buf, 24, d, steps, {2, 1}), vprStatusBadSize);
  EXPECT_EQ(vpriBGRToYCbCr411_JPEG_8u_C4P3R(buf, 24, d, steps, {1, 2}), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_P3C3R(s, nullptr, buf, 24, {2, 1}), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCr422ToBGR_JPEG_8u_P3C4R(s, steps, nullptr, 24, {2, 1}, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriYCbCr411ToRGB_JPEG_8u_P3C3R(s, steps, buf, 24, {2, 1}), vprStatusBadSize);
  EXPECT_EQ(vpriYCbCr411ToBGR_JPEG_8u_P3C4R(s, steps, buf, 32, {1, 4}, 0), vprStatusBadSize);
  for (int i = 0; i < 64; ++i) ASSERT_TRUE(a[i] == 7 && b[i] == 7 && c[i] == 7) << i;
  for (int i = 0; i < 256; ++i) ASSERT_EQ(buf[i], 0) << i;
  // Widths 3 -> 35, odd height alone is fine for 422, not for 411.
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(buf, 24, d, steps, {3, 1}), vprStatusOddSizeWarning);
  EXPECT_EQ(vpriRGBToYCbCr422_JPEG_8u_C3P3R(buf, 24, d, steps, {2, 3}), vprStatusOk);
  EXPECT_EQ(vpriRGBToYCbCr411_JPEG_8u_C3P3R(buf, 24, d, steps, {2, 3}), vprStatusOddSizeWarning);
  EXPECT_EQ(vpriYCbCr422ToRGB_JPEG_8u_P3C3R(s, steps, buf, 24, {4, 3}), vprStatusOk);
  EXPECT_EQ(vpriYCbCr411ToRGB_JPEG_8u_P3C3R(s, steps, buf, 24, {4, 3}), vprStatusOddSizeWarning);
}

TEST(ColorArgs, FourChannelOutputAcceptsZeroStep) {
  uint8_t y = 100, cb = 128, cr = 128, out[8] = {};
  const Vpr8u* s[3] = {&y, &cb, &cr};
  ASSERT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C4R(s, 0, out, 0, {1, 3}, 0xEE), vprStatusOk);
  EXPECT_EQ(out[3], 0xEE);
  EXPECT_EQ(out[0], inv_f(100, 128, 128)[0]);
  EXPECT_EQ(out[4], 0);
}

// ---------------------------------------------------------------- SSE vs scalar kernels

struct KernelCase {
  const char* name;
  std::vector<int> in_bytes, out_bytes;  // bytes per pixel of each plane, negative: per pixel pair
  bool even;                             // width must be even
  std::function<void(bool, const uint8_t* const*, uint8_t* const*, int)> run;
};

int plane_bytes(int per, int w) { return per > 0 ? per * w : -per * (w / 2); }

std::vector<KernelCase> kernel_cases() {
  std::vector<KernelCase> v;
  v.push_back({"A rgb", {3}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_RGBToYCbCr_JPEG_8u_C3P3R : vj::ref::ownpj_RGBToYCbCr_JPEG_8u_C3P3R)(in[0], out[0], out[1], out[2], w);
               }});
  v.push_back({"A bgr", {3}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_BGRToYCbCr_JPEG_8u_C3P3R : vj::ref::ownpj_BGRToYCbCr_JPEG_8u_C3P3R)(in[0], out[0], out[1], out[2], w);
               }});
  v.push_back({"A y rgb", {3}, {1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_RGBToY_JPEG_8u_C3C1R : vj::ref::ownpj_RGBToY_JPEG_8u_C3C1R)(in[0], out[0], w);
               }});
  v.push_back({"A y bgr", {3}, {1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_BGRToY_JPEG_8u_C3C1R : vj::ref::ownpj_BGRToY_JPEG_8u_C3C1R)(in[0], out[0], w);
               }});
  v.push_back({"B", {1, 1, 1}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_RGBToYCbCr_JPEG_8u_P3R_opt : vj::ref::ownpj_RGBToYCbCr_JPEG_8u_P3R_opt)(in[0], in[1], in[2], out[0], out[1], out[2], w);
               }});
  v.push_back({"H", {1, 1, 1}, {1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_RGBToY_JPEG_8u_P3C1R_opt : vj::ref::ownpj_RGBToY_JPEG_8u_P3C1R_opt)(in[0], in[1], in[2], out[0], w);
               }});
  v.push_back({"E rgb", {1, 1, 1}, {3}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt : vj::ref::ownpj_YCbCrToRGB_JPEG_8u_P3C3R_opt)(in[0], in[1], in[2], out[0], w);
               }});
  v.push_back({"E bgr", {1, 1, 1}, {3}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt : vj::ref::ownpj_YCbCrToBGR_JPEG_8u_P3C3R_opt)(in[0], in[1], in[2], out[0], w);
               }});
  v.push_back({"E'", {1, 1, 1}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ownpj_YCbCrToRGB_JPEG_8u_P3R_opt : vj::ref::ownpj_YCbCrToRGB_JPEG_8u_P3R_opt)(in[0], in[1], in[2], out[0], out[1], out[2], w);
               }});
  v.push_back({"C rgb", {4}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::rgb_to_ycbcr_c4_q16_row : vj::ref::rgb_to_ycbcr_c4_q16_row)(in[0], out[0], out[1], out[2], w);
               }});
  v.push_back({"C bgr", {4}, {1, 1, 1}, false, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::bgr_to_ycbcr_c4_q16_row : vj::ref::bgr_to_ycbcr_c4_q16_row)(in[0], out[0], out[1], out[2], w);
               }});
  for (int ch = 3; ch <= 4; ++ch)
    for (int bgr = 0; bgr < 2; ++bgr) {
      v.push_back({"D 422", {ch}, {1, -1, -1}, true, [ch, bgr](bool s, auto in, auto out, int w) {
                     (s ? vj::sse::rgb_to_ycbcr422_q16_row : vj::ref::rgb_to_ycbcr422_q16_row)(in[0], out[0], out[1], out[2], w, ch, bgr);
                   }});
      v.push_back({"D 411", {ch, ch}, {1, 1, -1, -1}, true, [ch, bgr](bool s, auto in, auto out, int w) {
                     (s ? vj::sse::rgb_to_ycbcr411_q16_rows : vj::ref::rgb_to_ycbcr411_q16_rows)(in[0], in[1], out[0], out[1], out[2], out[3], w, ch, bgr);
                   }});
      v.push_back({"F 4:2:2", {1, -1, -1}, {ch}, true, [ch, bgr](bool s, auto in, auto out, int w) {
                     (s ? vj::sse::ycbcr_to_rgb_q16_row : vj::ref::ycbcr_to_rgb_q16_row)(in[0], in[1], in[2], out[0], w, 2, ch, bgr, 0xC3);
                   }});
    }
  for (int ch = 3; ch <= 4; ++ch)
    for (int bgr = 0; bgr < 2; ++bgr)
      v.push_back({"F 4:2:0 rows", {1, 1, -1, -1}, {ch, ch}, true, [ch, bgr](bool s, auto in, auto out, int w) {
                     (s ? vj::sse::ycbcr411_to_rgb_q16_rows : vj::ref::ycbcr411_to_rgb_q16_rows)(in[0], in[1], in[2], in[3], out[0], out[1], w, ch, bgr, 0x5C);
                   }});
  for (int bgr = 0; bgr < 2; ++bgr)
    v.push_back({"F full", {1, 1, 1}, {4}, false, [bgr](bool s, auto in, auto out, int w) {
                   (s ? vj::sse::ycbcr_to_rgb_q16_row : vj::ref::ycbcr_to_rgb_q16_row)(in[0], in[1], in[2], out[0], w, 1, 4, bgr, 0x3C);
                 }});
  v.push_back({"G", {2}, {3}, true, [](bool s, auto in, auto out, int w) {
                 (s ? vj::sse::ycbcr422_c2_to_rgb_tbl_row : vj::ref::ycbcr422_c2_to_rgb_tbl_row)(in[0], out[0], w);
               }});
  return v;
}

TEST(ColorKernels, SseMatchesScalarOnEveryGeometry) {
  Rng rng(7);
  auto geos = vprtest::geometries(3);
  for (const auto& g : vprtest::large_geometries())
    if (g.width * g.height <= 20000) geos.push_back(g);
  for (const KernelCase& kc : kernel_cases())
    for (const auto& g : geos) {
      const int w = kc.even ? g.width & ~1 : g.width;
      if (w < 1) continue;
      SCOPED_TRACE(std::string(kc.name) + " " + g.str());
      std::vector<Image<uint8_t>> in, a, b;
      for (size_t i = 0; i < kc.in_bytes.size(); ++i) {
        in.emplace_back(plane_bytes(kc.in_bytes[i], w), g.height, g.pad + static_cast<int>(i), g.misalign + static_cast<int>(i));
        in.back().fill_random(rng);
      }
      for (size_t i = 0; i < kc.out_bytes.size(); ++i) {
        a.emplace_back(plane_bytes(kc.out_bytes[i], w), g.height, g.pad, g.misalign + 2 * static_cast<int>(i) + 1);
        a.back().fill_random(rng);
      }
      b = a;
      for (int y = 0; y < g.height; ++y) {
        std::vector<const uint8_t*> ip;
        std::vector<uint8_t*> ap, bp;
        for (auto& im : in) ip.push_back(im.row(y));
        for (auto& im : a) ap.push_back(im.row(y));
        for (auto& im : b) bp.push_back(im.row(y));
        kc.run(false, ip.data(), ap.data(), w);
        kc.run(true, ip.data(), bp.data(), w);
      }
      for (size_t i = 0; i < a.size(); ++i) {
        ASSERT_TRUE(vprtest::same_region(a[i], b[i])) << "plane " << i;
        ASSERT_TRUE(b[i].guards_intact()) << "plane " << i;
      }
    }
}

// ---------------------------------------------------------------- threading

TEST(ColorThreads, SameBitsSerialAndParallel) {
  Rng rng(8);
  const VprRoiSize sizes[] = {{8192, 1}, {8193, 1}, {128, 64}, {91, 91}, {4097, 2}, {13, 631}};
  for (const VprRoiSize roi : sizes) {
    SCOPED_TRACE(std::to_string(roi.width) + "x" + std::to_string(roi.height));
    Planes p3(roi.width, roi.height, 5, 1);
    p3.fill_random(rng);
    Image<uint8_t> c3(3 * roi.width, roi.height, 2, 3), c2(2 * roi.width, roi.height, 0, 0);
    c3.fill_random(rng);
    c2.fill_random(rng);
    auto run_all = [&]() {
      std::vector<Image<uint8_t>> out;
      auto s = p3.cptrs();
      Planes a(roi.width, roi.height, 1, 0), b(roi.width, roi.height, 1, 0), c(roi.width, roi.height, 1, 0),
          e(roi.width, roi.height, 1, 0);
      auto ap = a.ptrs(), bp = b.ptrs(), cp = c.ptrs(), ep = e.ptrs();
      Image<uint8_t> y1(roi.width, roi.height), y2 = y1, y3 = y1, rgb(3 * roi.width, roi.height), bgr = rgb, c2o = rgb;
      EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_C3P3R(c3.data(), c3.step(), ap.data(), a.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriBGRToYCbCr_JPEG_8u_C3P3R(c3.data(), c3.step(), bp.data(), b.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriRGBToYCbCr_JPEG_8u_P3R(s.data(), p3.step(), cp.data(), c.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3R(s.data(), p3.step(), ep.data(), e.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriRGBToY_JPEG_8u_C3C1R(c3.data(), c3.step(), y1.data(), y1.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriBGRToY_JPEG_8u_C3C1R(c3.data(), c3.step(), y2.data(), y2.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriRGBToY_JPEG_8u_P3C1R(s.data(), p3.step(), y3.data(), y3.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriYCbCrToRGB_JPEG_8u_P3C3R(s.data(), p3.step(), rgb.data(), rgb.step(), roi), vprStatusOk);
      EXPECT_EQ(vpriYCbCrToBGR_JPEG_8u_P3C3R(s.data(), p3.step(), bgr.data(), bgr.step(), roi), vprStatusOk);
      vpriYCbCr422ToRGB_JPEG_8u_C2C3R(c2.data(), c2.step(), c2o.data(), c2o.step(), roi);
      for (auto* pl : {&a, &b, &c, &e})
        for (auto& im : pl->p) out.push_back(im);
      for (auto* im : {&y1, &y2, &y3, &rgb, &bgr, &c2o}) out.push_back(*im);
      return out;
    };
    std::vector<Image<uint8_t>> serial;
    {
      vprtest::ThreadCount tc(1);
      serial = run_all();
    }
    for (int threads : {2, 5}) {
      vprtest::ThreadCount tc(threads);
      auto par = run_all();
      for (size_t i = 0; i < serial.size(); ++i) ASSERT_TRUE(vprtest::same_region(serial[i], par[i])) << i << " threads " << threads;
    }
  }
}

}  // namespace
