// MCU-level conversion: SSE kernels against their scalar twins, hand-computed
// values, layout, round trips and the exported entries' argument checks.
#include <array>
#include <string>
#include <vector>

#include "jpeg/mcu.h"
#include "vprjp.h"
#include "vprtest.h"

namespace {

namespace ref = vpr::jpeg::ref;
namespace sse = vpr::jpeg::sse;

using FwdK = void (*)(const uint8_t*, int, int16_t*, int16_t*, int16_t*);
using InvK = void (*)(const int16_t*, const int16_t*, const int16_t*, uint8_t*, int);
using FwdApi = VprStatus (*)(const Vpr8u*, int, Vpr16s*[3]);
using InvApi = VprStatus (*)(const Vpr16s*[3], Vpr8u*, int);

struct Member {
  const char* name;
  int row_bytes;  // bytes of one pixel row of the MCU
  int rows;       // pixel rows of the MCU
  int y_blocks;   // Y blocks of the MCU
};

struct FwdMember : Member {
  FwdK r, s;
  FwdApi api;
};
struct InvMember : Member {
  InvK r, s;
  InvApi api;
};

#define FWD(name, rb, rows, yb) \
  FwdMember{{#name, rb, rows, yb}, ref::ownpj_##name, sse::ownpj_##name, vpri##name}
#define INV(name, rb, rows, yb) \
  InvMember{{#name, rb, rows, yb}, ref::ownpj_##name, sse::ownpj_##name, vpri##name}

const std::vector<FwdMember>& fwd_members() {
  static const std::vector<FwdMember> m = {
      FWD(RGBToYCbCr444LS_MCU_8u16s_C3P3R, 24, 8, 1), FWD(RGBToYCbCr422LS_MCU_8u16s_C3P3R, 48, 8, 2),
      FWD(RGBToYCbCr411LS_MCU_8u16s_C3P3R, 48, 16, 4), FWD(BGRToYCbCr444LS_MCU_8u16s_C3P3R, 24, 8, 1),
      FWD(BGRToYCbCr422LS_MCU_8u16s_C3P3R, 48, 8, 2),  FWD(BGRToYCbCr411LS_MCU_8u16s_C3P3R, 48, 16, 4),
      FWD(SampleDown444LS_MCU_8u16s_C3P3R, 24, 8, 1), FWD(SampleDown422LS_MCU_8u16s_C3P3R, 48, 8, 2),
      FWD(SampleDown411LS_MCU_8u16s_C3P3R, 48, 16, 4), FWD(Split422LS_MCU_8u16s_C2P3R, 32, 8, 2)};
  return m;
}
const std::vector<InvMember>& inv_members() {
  static const std::vector<InvMember> m = {
      INV(YCbCr444ToRGBLS_MCU_16s8u_P3C3R, 24, 8, 1), INV(YCbCr422ToRGBLS_MCU_16s8u_P3C3R, 48, 8, 2),
      INV(YCbCr411ToRGBLS_MCU_16s8u_P3C3R, 48, 16, 4), INV(YCbCr444ToBGRLS_MCU_16s8u_P3C3R, 24, 8, 1),
      INV(YCbCr422ToBGRLS_MCU_16s8u_P3C3R, 48, 8, 2),  INV(YCbCr411ToBGRLS_MCU_16s8u_P3C3R, 48, 16, 4),
      INV(SampleUp444LS_MCU_16s8u_P3C3R, 24, 8, 1),   INV(SampleUp422LS_MCU_16s8u_P3C3R, 48, 8, 2),
      INV(SampleUp411LS_MCU_16s8u_P3C3R, 48, 16, 4),  INV(Join422LS_MCU_16s8u_P3C2R, 32, 8, 2)};
  return m;
}

// The three block arrays of one MCU, each guarded.
struct Blocks {
  vprtest::Image<int16_t> y, cb, cr;
  Blocks(int y_blocks, int misalign) : y(64 * y_blocks, 1, 0, misalign), cb(64, 1, 0, misalign + 3), cr(64, 1, 0, misalign + 5) {}
  void fill(int16_t v) { y.fill(v), cb.fill(v), cr.fill(v); }
  void fill_random(vprtest::Rng& r, int lo, int hi) { y.fill_random(r, lo, hi), cb.fill_random(r, lo, hi), cr.fill_random(r, lo, hi); }
  ::testing::AssertionResult same(const Blocks& o) const {
    for (auto pr : {std::pair(&y, &o.y), std::pair(&cb, &o.cb), std::pair(&cr, &o.cr)}) {
      auto res = vprtest::same_region(*pr.first, *pr.second);
      if (!res) return res;
    }
    return ::testing::AssertionSuccess();
  }
  ::testing::AssertionResult guards() const {
    for (auto* b : {&y, &cb, &cr}) {
      auto res = vprtest::guards_ok(*b);
      if (!res) return res;
    }
    return ::testing::AssertionSuccess();
  }
  int16_t Y(int k) const { return y.get(k, 0); }
  int16_t Cb(int k) const { return cb.get(k, 0); }
  int16_t Cr(int k) const { return cr.get(k, 0); }
};

void run_fwd(FwdK k, const vprtest::Image<uint8_t>& src, Blocks& b) {
  k(src.data(), src.step(), b.y.data(), b.cb.data(), b.cr.data());
}
void run_inv(InvK k, const Blocks& b, vprtest::Image<uint8_t>& dst) {
  k(b.y.data(), b.cb.data(), b.cr.data(), dst.data(), dst.step());
}

// Index of pixel (x, y) of a 16-wide MCU in its Y blocks.
int yidx(int x, int y) { return ((y >> 3) * 2 + (x >> 3)) * 64 + (y & 7) * 8 + (x & 7); }

// ------------------------------------------------------------ SSE == scalar
TEST(McuForward, SseMatchesScalarOnRandomPixelsStepsAndAlignments) {
  vprtest::Rng rng(11);
  for (const auto& m : fwd_members()) {
    SCOPED_TRACE(m.name);
    for (int it = 0; it < 60; ++it) {
      const int pad = static_cast<int>(rng.uniform(0, 3) == 0 ? 0 : rng.uniform(1, 70));
      const int mis = static_cast<int>(rng.uniform(0, 15));
      vprtest::Image<uint8_t> src(m.row_bytes, m.rows, pad, mis);
      if (it % 4 == 0) {  // extremes: saturation-prone corners of the cube
        src.fill_with([&](int, int) { return rng.coin() ? 255 : 0; });
      } else {
        src.fill_random(rng);
      }
      Blocks a(m.y_blocks, static_cast<int>(rng.uniform(0, 7))), b = a;
      run_fwd(m.r, src, a);
      run_fwd(m.s, src, b);
      ASSERT_TRUE(a.same(b)) << "iteration " << it;
      ASSERT_TRUE(b.guards());
    }
  }
}

TEST(McuInverse, SseMatchesScalarOnRandomBlocksStepsAndAlignments) {
  vprtest::Rng rng(12);
  for (const auto& m : inv_members()) {
    SCOPED_TRACE(m.name);
    for (int it = 0; it < 60; ++it) {
      const int pad = static_cast<int>(rng.uniform(0, 3) == 0 ? 0 : rng.uniform(1, 70));
      const int mis = static_cast<int>(rng.uniform(0, 15));
      Blocks blk(m.y_blocks, static_cast<int>(rng.uniform(0, 7)));
      switch (it % 3) {
        case 0: blk.fill_random(rng, -32768, 32767); break;  // saturation everywhere
        case 1: blk.fill_random(rng, -1100, 1100); break;    // what an inverse DCT gives
        default: blk.fill_random(rng, -140, 140); break;     // mostly in range
      }
      vprtest::Image<uint8_t> a(m.row_bytes, m.rows, pad, mis), b = a;
      run_inv(m.r, blk, a);
      run_inv(m.s, blk, b);
      ASSERT_TRUE(vprtest::same_region(a, b)) << "iteration " << it;
      ASSERT_TRUE(vprtest::guards_ok(b));
      ASSERT_TRUE(blk.guards());
    }
  }
}

// ------------------------------------------------------------ hand-computed values
TEST(McuForward, GreyGivesShiftedLumaAndCentredChromaInEveryMode) {
  for (const auto& m : fwd_members()) {
    SCOPED_TRACE(m.name);
    for (int v : {0, 1, 77, 128, 200, 254, 255}) {
      vprtest::Image<uint8_t> src(m.row_bytes, m.rows);
      src.fill(static_cast<uint8_t>(v));
      Blocks b(m.y_blocks, 0);
      Vpr16s* dst[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      ASSERT_EQ(m.api(src.data(), src.step(), dst), vprStatusOk);
      for (int k = 0; k < 64 * m.y_blocks; ++k) ASSERT_EQ(b.Y(k), v - 128) << "v=" << v << " k=" << k;
      // SampleDown and Split take converted components: chroma v - 128.
      const bool converted = std::string(m.name).find("YCbCr") == std::string::npos;
      const int c = converted ? v - 128 : 0;
      for (int k = 0; k < 64; ++k) {
        ASSERT_EQ(b.Cb(k), c) << "v=" << v;
        ASSERT_EQ(b.Cr(k), c) << "v=" << v;
      }
    }
  }
}

TEST(McuForward, KnownPixelValues) {
  // White: Y' = 127.  Pure red: Y' = (4899*255 - 2088960) >> 14 = -52,
  // Cb' = (-2764*255 + 8192) >> 14 = -43, Cr' = (8192*255 + 8192) >> 14 = 128.
  struct Case { uint8_t r, g, b; int y, cb, cr; };
  for (const Case& c : {Case{255, 255, 255, 127, 0, 0}, Case{255, 0, 0, -52, -43, 128},
                        Case{0, 0, 255, -99, 128, -21}, Case{0, 255, 0, 22, -84, -107},
                        Case{10, 20, 30, -110, 7, -6}}) {
    uint8_t rgb[8 * 24], bgr[8 * 24];
    for (int i = 0; i < 64; ++i) {
      rgb[3 * i] = c.r, rgb[3 * i + 1] = c.g, rgb[3 * i + 2] = c.b;
      bgr[3 * i] = c.b, bgr[3 * i + 1] = c.g, bgr[3 * i + 2] = c.r;
    }
    int16_t y[64], cb[64], cr[64], y2[64], cb2[64], cr2[64];
    Vpr16s* d1[3] = {y, cb, cr};
    Vpr16s* d2[3] = {y2, cb2, cr2};
    ASSERT_EQ(vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R(rgb, 24, d1), vprStatusOk);
    ASSERT_EQ(vpriBGRToYCbCr444LS_MCU_8u16s_C3P3R(bgr, 24, d2), vprStatusOk);
    for (int k = 0; k < 64; ++k) {
      ASSERT_EQ(y[k], c.y) << +c.r << "," << +c.g << "," << +c.b;
      ASSERT_EQ(cb[k], c.cb);
      ASSERT_EQ(cr[k], c.cr);
      ASSERT_EQ(y2[k], c.y);
      ASSERT_EQ(cb2[k], c.cb);
      ASSERT_EQ(cr2[k], c.cr);
    }
  }
}

TEST(McuForward, SampledChromaRoundsThePairAndBlockAverages) {
  // 4:2:2 pair (255,0,0),(0,0,0): SR = 255 -> Cb' = (-2764*255 + 16384) >> 15 = -22,
  // Cr' = (8192*255 + 16384) >> 15 = 64.  4:2:0 with one red pixel of four:
  // Cb' = (-704820 + 32768) >> 16 = -11, Cr' = (2088960 + 32768) >> 16 = 32.
  std::vector<uint8_t> px(48 * 16, 0);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; x += 2) px[y * 48 + 3 * x] = (y % 2 == 0) ? 255 : 0;
  int16_t yb[256], cb[64], cr[64];
  Vpr16s* d[3] = {yb, cb, cr};
  ASSERT_EQ(vpriRGBToYCbCr422LS_MCU_8u16s_C3P3R(px.data(), 48 * 2, d), vprStatusOk);  // even rows only
  for (int k = 0; k < 64; ++k) { ASSERT_EQ(cb[k], -22); ASSERT_EQ(cr[k], 64); }
  ASSERT_EQ(vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R(px.data(), 48, d), vprStatusOk);
  for (int k = 0; k < 64; ++k) { ASSERT_EQ(cb[k], -11); ASSERT_EQ(cr[k], 32); }
  // SampleDown rounds halves up: pair (0, 1) -> 1 - 128, block (0,0,0,1) -> 0 - 128,
  // block (0,0,1,1) -> 1 - 128.
  std::vector<uint8_t> c3(48 * 16, 0);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      c3[y * 48 + 3 * x + 1] = (x % 2 == 1) ? 1 : 0;                // Cb: pair (0,1)
      c3[y * 48 + 3 * x + 2] = (x % 2 == 1 && y % 2 == 1) ? 1 : 0;  // Cr: block (0,0,0,1)
    }
  ASSERT_EQ(vpriSampleDown422LS_MCU_8u16s_C3P3R(c3.data(), 48, d), vprStatusOk);
  for (int k = 0; k < 64; ++k) ASSERT_EQ(cb[k], -127);
  ASSERT_EQ(vpriSampleDown411LS_MCU_8u16s_C3P3R(c3.data(), 48, d), vprStatusOk);
  for (int k = 0; k < 64; ++k) { ASSERT_EQ(cb[k], -127); ASSERT_EQ(cr[k], -128); }
}

TEST(McuInverse, ZeroBlocksGiveMidGreyInEveryMode) {
  for (const auto& m : inv_members()) {
    SCOPED_TRACE(m.name);
    Blocks b(m.y_blocks, 1);
    b.fill(0);
    vprtest::Image<uint8_t> dst(m.row_bytes, m.rows, 5, 3);
    const Vpr16s* src[3] = {b.y.data(), b.cb.data(), b.cr.data()};
    ASSERT_EQ(m.api(src, dst.data(), dst.step()), vprStatusOk);
    for (int y = 0; y < m.rows; ++y)
      for (int x = 0; x < m.row_bytes; ++x) ASSERT_EQ(dst.get(x, y), 128) << x << "," << y;
    ASSERT_TRUE(vprtest::guards_ok(dst));
  }
}

TEST(McuInverse, KnownValuesAndTheTwoPrecisions) {
  // Cr' = 100, Cb' = -50, Y' = 0 in 4:4:4 (Q14):
  //   R = (22970*100 + 2105344) >> 14 = 268 -> 255
  //   G = 0 + ((5638*50 - 11700*100 + 2105344) >> 14) = 74
  //   B = (29032*-50 + 2105344) >> 14 = 39
  // and in 4:2:2 (Q13 R/B, Q14 G subtracted):
  //   Rterm = (11485*100 + 1052672) >> 13 = 268, Bterm = (-725800 + 1052672) >> 13 = 39,
  //   Gterm = (-281900 + 1170000 - 2088960) >> 14 = -74 -> G = 74.
  int16_t y[256] = {}, cb[64], cr[64];
  for (int k = 0; k < 64; ++k) cb[k] = -50, cr[k] = 100;
  const Vpr16s* s[3] = {y, cb, cr};
  uint8_t out[48 * 16];
  ASSERT_EQ(vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(s, out, 24), vprStatusOk);
  EXPECT_EQ(out[0], 255); EXPECT_EQ(out[1], 74); EXPECT_EQ(out[2], 39);
  ASSERT_EQ(vpriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(s, out, 24), vprStatusOk);
  EXPECT_EQ(out[0], 39); EXPECT_EQ(out[1], 74); EXPECT_EQ(out[2], 255);
  ASSERT_EQ(vpriYCbCr422ToRGBLS_MCU_16s8u_P3C3R(s, out, 48), vprStatusOk);
  EXPECT_EQ(out[45], 255); EXPECT_EQ(out[46], 74); EXPECT_EQ(out[47], 39);
  // R and B agree between the schemes (11485 = 22970/2, 14516 = 29032/2);
  // G differs by one where 5638 Cb' + 11700 Cr' = 8192 (mod 16384), e.g.
  // Cb' = -294, Cr' = 253, Y' = 0:
  //   4:4:4 G = (1657572 - 2960100 + 2105344) >> 14 = 49
  //   4:2:2 G = -((-1657572 + 2960100 - 2088960) >> 14) = 48
  for (int k = 0; k < 64; ++k) cb[k] = -294, cr[k] = 253;
  ASSERT_EQ(vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(s, out, 24), vprStatusOk);
  EXPECT_EQ(out[1], 49);
  ASSERT_EQ(vpriYCbCr422ToRGBLS_MCU_16s8u_P3C3R(s, out, 48), vprStatusOk);
  EXPECT_EQ(out[1], 48);
  ASSERT_EQ(vpriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(s, out, 48), vprStatusOk);
  EXPECT_EQ(out[15 * 48 + 46], 48);
  // Saturation: Y' = 32767 with a positive term stays 255, Y' = -32768 gives 0.
  for (int k = 0; k < 64; ++k) y[k] = (k % 2) ? 32767 : -32768, cb[k] = 32767, cr[k] = -32768;
  ASSERT_EQ(vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(s, out, 24), vprStatusOk);
  EXPECT_EQ(out[0], 0); EXPECT_EQ(out[1], 0); EXPECT_EQ(out[2], 0);
  EXPECT_EQ(out[3], 0); EXPECT_EQ(out[4], 255); EXPECT_EQ(out[5], 255);
}

TEST(McuOrder, BgrMembersAreTheRgbMembersWithRAndBSwapped) {
  vprtest::Rng rng(8);
  struct Pair { FwdApi rgb, bgr; InvApi irgb, ibgr; int row_bytes, rows, yb; };
  for (const Pair& p : {Pair{vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R, vpriBGRToYCbCr444LS_MCU_8u16s_C3P3R,
                             vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R, vpriYCbCr444ToBGRLS_MCU_16s8u_P3C3R, 24, 8, 1},
                        Pair{vpriRGBToYCbCr422LS_MCU_8u16s_C3P3R, vpriBGRToYCbCr422LS_MCU_8u16s_C3P3R,
                             vpriYCbCr422ToRGBLS_MCU_16s8u_P3C3R, vpriYCbCr422ToBGRLS_MCU_16s8u_P3C3R, 48, 8, 2},
                        Pair{vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R, vpriBGRToYCbCr411LS_MCU_8u16s_C3P3R,
                             vpriYCbCr411ToRGBLS_MCU_16s8u_P3C3R, vpriYCbCr411ToBGRLS_MCU_16s8u_P3C3R, 48, 16, 4}}) {
    SCOPED_TRACE(p.yb);
    for (int it = 0; it < 10; ++it) {
      vprtest::Image<uint8_t> rgb(p.row_bytes, p.rows), bgr(p.row_bytes, p.rows);
      rgb.fill_random(rng);
      for (int y = 0; y < p.rows; ++y)
        for (int x = 0; x < p.row_bytes; x += 3)
          bgr.set(x, y, rgb.get(x + 2, y)), bgr.set(x + 1, y, rgb.get(x + 1, y)), bgr.set(x + 2, y, rgb.get(x, y));
      Blocks a(p.yb, 0), b(p.yb, 1);
      Vpr16s* da[3] = {a.y.data(), a.cb.data(), a.cr.data()};
      Vpr16s* db[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      ASSERT_EQ(p.rgb(rgb.data(), rgb.step(), da), vprStatusOk);
      ASSERT_EQ(p.bgr(bgr.data(), bgr.step(), db), vprStatusOk);
      ASSERT_TRUE(a.same(b));
      // Inverse: the same blocks give the same pixels, R and B swapped.
      a.fill_random(rng, -200, 200);
      const Vpr16s* sa[3] = {a.y.data(), a.cb.data(), a.cr.data()};
      ASSERT_EQ(p.irgb(sa, rgb.data(), rgb.step()), vprStatusOk);
      ASSERT_EQ(p.ibgr(sa, bgr.data(), bgr.step()), vprStatusOk);
      for (int y = 0; y < p.rows; ++y)
        for (int x = 0; x < p.row_bytes; x += 3) {
          ASSERT_EQ(bgr.get(x, y), rgb.get(x + 2, y));
          ASSERT_EQ(bgr.get(x + 1, y), rgb.get(x + 1, y));
          ASSERT_EQ(bgr.get(x + 2, y), rgb.get(x, y));
        }
    }
  }
}

// ------------------------------------------------------------ layout
TEST(McuLayout, YBlocksFollowColumnsThenRows) {
  // Each pixel's grey level encodes its position; the Y block sample of
  // pixel (x, y) must sit at block ((y/8)*2 + x/8), row y%8, column x%8.
  for (const auto& m : fwd_members()) {
    if (m.y_blocks == 1) continue;
    SCOPED_TRACE(m.name);
    const bool c2 = std::string(m.name).find("C2") != std::string::npos;
    vprtest::Image<uint8_t> src(m.row_bytes, m.rows, 9, 1);
    auto level = [](int x, int y) { return (x * 7 + y * 13) % 256; };
    for (int y = 0; y < m.rows; ++y)
      for (int x = 0; x < 16; ++x) {
        if (c2) {
          src.set((x / 2) * 4 + (x % 2) * 2, y, static_cast<uint8_t>(level(x, y)));
          src.set((x / 2) * 4 + 1, y, 128), src.set((x / 2) * 4 + 3, y, 128);
        } else {
          for (int c = 0; c < 3; ++c) src.set(3 * x + c, y, static_cast<uint8_t>(level(x, y)));
        }
      }
    Blocks b(m.y_blocks, 0);
    Vpr16s* d[3] = {b.y.data(), b.cb.data(), b.cr.data()};
    ASSERT_EQ(m.api(src.data(), src.step(), d), vprStatusOk);
    for (int y = 0; y < m.rows; ++y)
      for (int x = 0; x < 16; ++x) ASSERT_EQ(b.Y(yidx(x, y)), level(x, y) - 128) << x << "," << y;
  }
}

TEST(McuLayout, InverseReadsTheSameLayoutAndReplicatesChroma) {
  // Y' levels encode position; chroma sample k encodes its index.
  vprtest::Rng rng(3);
  for (const auto& m : inv_members()) {
    if (m.y_blocks == 1) continue;
    SCOPED_TRACE(m.name);
    const bool c2 = std::string(m.name).find("C2") != std::string::npos;
    const bool up = std::string(m.name).find("SampleUp") != std::string::npos || c2;
    Blocks b(m.y_blocks, 2);
    for (int k = 0; k < 64 * m.y_blocks; ++k) b.y.set(k, 0, static_cast<int16_t>(rng.uniform(-128, 127)));
    for (int k = 0; k < 64; ++k) b.cb.set(k, 0, static_cast<int16_t>(k - 30)), b.cr.set(k, 0, static_cast<int16_t>(40 - k));
    vprtest::Image<uint8_t> dst(m.row_bytes, m.rows, 4, 2);
    const Vpr16s* s[3] = {b.y.data(), b.cb.data(), b.cr.data()};
    ASSERT_EQ(m.api(s, dst.data(), dst.step()), vprStatusOk);
    const int vy = m.rows / 8;
    for (int y = 0; y < m.rows; ++y)
      for (int x = 0; x < 16; ++x) {
        const int k = (y / vy) * 8 + x / 2;
        if (c2) {
          ASSERT_EQ(dst.get((x / 2) * 4 + (x % 2) * 2, y), b.Y(yidx(x, y)) + 128);
          ASSERT_EQ(dst.get((x / 2) * 4 + 1, y), k - 30 + 128);
          ASSERT_EQ(dst.get((x / 2) * 4 + 3, y), 40 - k + 128);
        } else if (up) {
          ASSERT_EQ(dst.get(3 * x, y), b.Y(yidx(x, y)) + 128) << x << "," << y;
          ASSERT_EQ(dst.get(3 * x + 1, y), k - 30 + 128);
          ASSERT_EQ(dst.get(3 * x + 2, y), 40 - k + 128);
        } else {
          // Pixels sharing a chroma sample differ only through Y'.
          const int partner_x = x ^ 1;
          if (b.Y(yidx(x, y)) == b.Y(yidx(partner_x, y))) {
            for (int c = 0; c < 3; ++c) ASSERT_EQ(dst.get(3 * x + c, y), dst.get(3 * partner_x + c, y));
          }
        }
      }
  }
}

// ------------------------------------------------------------ round trips
TEST(McuRoundTrip, SamplingAndSplitAreExactInverses) {
  vprtest::Rng rng(5);
  for (int it = 0; it < 20; ++it) {
    // 4:4:4: any pixels.  4:2:2 / 4:2:0: chroma constant over its pair / block.
    vprtest::Image<uint8_t> p444(24, 8), p422(48, 8), p411(48, 16), c2(32, 8);
    p444.fill_random(rng);
    c2.fill_random(rng);
    std::array<std::array<uint8_t, 2>, 64> ch{};
    for (auto& c : ch) c = {static_cast<uint8_t>(rng.uniform(0, 255)), static_cast<uint8_t>(rng.uniform(0, 255))};
    for (int y = 0; y < 16; ++y)
      for (int x = 0; x < 16; ++x) {
        const uint8_t yy = static_cast<uint8_t>(rng.uniform(0, 255));
        if (y < 8) {
          const auto& c = ch[y * 8 + x / 2];
          p422.set(3 * x, y, yy), p422.set(3 * x + 1, y, c[0]), p422.set(3 * x + 2, y, c[1]);
        }
        const auto& c = ch[(y / 2) * 8 + x / 2];
        p411.set(3 * x, y, yy), p411.set(3 * x + 1, y, c[0]), p411.set(3 * x + 2, y, c[1]);
      }
    struct Pair { vprtest::Image<uint8_t>* img; FwdApi f; InvApi i; int yb; };
    for (const Pair& p : {Pair{&p444, vpriSampleDown444LS_MCU_8u16s_C3P3R, vpriSampleUp444LS_MCU_16s8u_P3C3R, 1},
                          Pair{&p422, vpriSampleDown422LS_MCU_8u16s_C3P3R, vpriSampleUp422LS_MCU_16s8u_P3C3R, 2},
                          Pair{&p411, vpriSampleDown411LS_MCU_8u16s_C3P3R, vpriSampleUp411LS_MCU_16s8u_P3C3R, 4},
                          Pair{&c2, vpriSplit422LS_MCU_8u16s_C2P3R, vpriJoin422LS_MCU_16s8u_P3C2R, 2}}) {
      Blocks b(p.yb, 0);
      Vpr16s* d[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      const Vpr16s* s[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      ASSERT_EQ(p.f(p.img->data(), p.img->step(), d), vprStatusOk);
      vprtest::Image<uint8_t> back(p.img->width(), p.img->height(), 3, 1);
      ASSERT_EQ(p.i(s, back.data(), back.step()), vprStatusOk);
      ASSERT_TRUE(vprtest::same_region(*p.img, back));
    }
  }
}

TEST(McuRoundTrip, ColourConversionComesBackWithinTwoLevels) {
  vprtest::Rng rng(6);
  for (int it = 0; it < 30; ++it) {
    vprtest::Image<uint8_t> px(48, 16);
    // chroma-flat blocks of 2x2 so the sampled modes can be compared too
    for (int y = 0; y < 16; y += 2)
      for (int x = 0; x < 16; x += 2) {
        const int r = static_cast<int>(rng.uniform(20, 235)), g = static_cast<int>(rng.uniform(20, 235)),
                  b = static_cast<int>(rng.uniform(20, 235));
        for (int dy = 0; dy < 2; ++dy)
          for (int dx = 0; dx < 2; ++dx)
            px.set(3 * (x + dx), y + dy, static_cast<uint8_t>(r)), px.set(3 * (x + dx) + 1, y + dy, static_cast<uint8_t>(g)),
                px.set(3 * (x + dx) + 2, y + dy, static_cast<uint8_t>(b));
      }
    struct Pair { FwdApi f; InvApi i; int yb; int w; int h; };
    for (const Pair& p : {Pair{vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R, vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R, 1, 8, 8},
                          Pair{vpriRGBToYCbCr422LS_MCU_8u16s_C3P3R, vpriYCbCr422ToRGBLS_MCU_16s8u_P3C3R, 2, 16, 8},
                          Pair{vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R, vpriYCbCr411ToRGBLS_MCU_16s8u_P3C3R, 4, 16, 16}}) {
      Blocks b(p.yb, 0);
      Vpr16s* d[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      const Vpr16s* s[3] = {b.y.data(), b.cb.data(), b.cr.data()};
      ASSERT_EQ(p.f(px.data(), px.step(), d), vprStatusOk);
      vprtest::Image<uint8_t> back(48, 16);
      ASSERT_EQ(p.i(s, back.data(), back.step()), vprStatusOk);
      for (int y = 0; y < p.h; ++y)
        for (int x = 0; x < 3 * p.w; ++x) ASSERT_NEAR(back.get(x, y), px.get(x, y), 2) << x << "," << y;
    }
  }
}

// ------------------------------------------------------------ argument checks
TEST(McuArguments, ForwardChecksInOrderAndWritesNothing) {
  uint8_t px[48 * 16] = {};
  for (const auto& m : fwd_members()) {
    SCOPED_TRACE(m.name);
    Blocks b(m.y_blocks, 0);
    b.fill(777);
    const Blocks before = b;
    Vpr16s* d[3] = {b.y.data(), b.cb.data(), b.cr.data()};
    EXPECT_EQ(m.api(nullptr, 48, d), vprStatusNullPointer);
    EXPECT_EQ(m.api(px, 48, nullptr), vprStatusNullPointer);
    EXPECT_EQ(m.api(px, 0, d), vprStatusBadStep);
    EXPECT_EQ(m.api(px, -48, d), vprStatusBadStep);
    for (int i = 0; i < 3; ++i) {
      Vpr16s* dn[3] = {d[0], d[1], d[2]};
      dn[i] = nullptr;
      EXPECT_EQ(m.api(px, 48, dn), vprStatusNullPointer);
      EXPECT_EQ(m.api(px, 0, dn), vprStatusBadStep) << "the step is checked before the blocks";
    }
    EXPECT_EQ(m.api(nullptr, 0, d), vprStatusNullPointer);
    EXPECT_TRUE(b.same(before));
    EXPECT_EQ(m.api(px, 48, d), vprStatusOk);
  }
}

TEST(McuArguments, InverseChecksInOrderAndWritesNothing) {
  for (const auto& m : inv_members()) {
    SCOPED_TRACE(m.name);
    Blocks b(m.y_blocks, 0);
    b.fill(0);
    vprtest::Image<uint8_t> dst(m.row_bytes, m.rows);
    dst.fill(9);
    const vprtest::Image<uint8_t> before = dst;
    const Vpr16s* s[3] = {b.y.data(), b.cb.data(), b.cr.data()};
    EXPECT_EQ(m.api(nullptr, dst.data(), dst.step()), vprStatusNullPointer);
    for (int i = 0; i < 3; ++i) {
      const Vpr16s* sn[3] = {s[0], s[1], s[2]};
      sn[i] = nullptr;
      EXPECT_EQ(m.api(sn, dst.data(), 0), vprStatusNullPointer) << "blocks are checked before the step";
    }
    EXPECT_EQ(m.api(s, nullptr, dst.step()), vprStatusNullPointer);
    EXPECT_EQ(m.api(s, nullptr, 0), vprStatusNullPointer);
    EXPECT_EQ(m.api(s, dst.data(), 0), vprStatusBadStep);
    EXPECT_EQ(m.api(s, dst.data(), -1), vprStatusBadStep);
    EXPECT_TRUE(vprtest::same_region(dst, before));
    EXPECT_EQ(m.api(s, dst.data(), dst.step()), vprStatusOk);
    EXPECT_TRUE(vprtest::guards_ok(dst));
  }
}

}  // namespace
