// DXT1: hand-computed blocks, SSE kernels against the scalar twins (blocks
// and whole images of every geometry), edge blocks, steps, argument checks.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "texture/dxt1.h"
#include "vprjp.h"
#include "vprtest.h"

namespace {

using namespace vpr::texture;
using Block = std::array<uint8_t, 64>;
using Coded = std::array<uint8_t, 8>;

Coded encode_ref(const Block& b) {
  Coded c;
  ref::encode_block_rgba_dxt1(b.data(), c.data());
  return c;
}
Coded encode_sse(const Block& b) {
  Coded c;
  sse::encode_block_rgba_dxt1(b.data(), c.data());
  return c;
}
Coded make_coded(uint16_t c0, uint16_t c1, uint32_t idx) {
  Coded c;
  std::memcpy(c.data(), &c0, 2);
  std::memcpy(c.data() + 2, &c1, 2);
  std::memcpy(c.data() + 4, &idx, 4);
  return c;
}
uint16_t color0(const Coded& c) { return static_cast<uint16_t>(c[0] | (c[1] << 8)); }
uint16_t color1(const Coded& c) { return static_cast<uint16_t>(c[2] | (c[3] << 8)); }
uint32_t index_word(const Coded& c) {
  return c[4] | (uint32_t(c[5]) << 8) | (uint32_t(c[6]) << 16) | (uint32_t(c[7]) << 24);
}
void set_px(Block& b, int i, int r, int g, int bl, int a = 255) {
  b[4 * i] = uint8_t(r), b[4 * i + 1] = uint8_t(g), b[4 * i + 2] = uint8_t(bl), b[4 * i + 3] = uint8_t(a);
}
::testing::AssertionResult px_is(const uint8_t* p, int r, int g, int b, int a = 255) {
  if (p[0] == r && p[1] == g && p[2] == b && p[3] == a) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "pixel (" << +p[0] << "," << +p[1] << "," << +p[2] << "," << +p[3]
                                       << ") expected (" << r << "," << g << "," << b << "," << a << ")";
}

// Both decoders on one block; checks they agree and returns the pixels.
Block decode_both(const Coded& c) {
  Block a, b;
  ref::decode_block_dxt1(c.data(), a.data());
  sse::decode_block_dxt1(c.data(), b.data());
  EXPECT_TRUE(vprtest::same_array(a.data(), b.data(), 64));
  return a;
}

// ------------------------------------------------------------------ hand-computed
TEST(Dxt1Encode, UniformBlockGivesEqualEndpointsAndZeroIndices) {
  Block b;
  for (int i = 0; i < 16; ++i) set_px(b, i, 200, 100, 50, i * 16);
  for (const Coded& c : {encode_ref(b), encode_sse(b)}) {
    EXPECT_EQ(color0(c), 0xCB26);  // (200>>3)<<11 | (100>>2)<<5 | (50>>3)
    EXPECT_EQ(color1(c), 0xCB26);
    EXPECT_EQ(index_word(c), 0u);
    const Block d = decode_both(c);
    for (int i = 0; i < 16; ++i) EXPECT_TRUE(px_is(&d[4 * i], 206, 101, 49));  // 565, bit-replicated
  }
}

TEST(Dxt1Encode, BlackWhiteBlockWithPaletteColours) {
  // min 0, max 255: inset 15 -> hi 240, lo 15 -> color0 0xF79E, color1 0x0861.
  // Search palette (247,243,247) (8,12,8) (167,166,167) (87,89,87).
  Block b;
  for (int i = 0; i < 16; ++i) set_px(b, i, 0, 0, 0);
  set_px(b, 1, 255, 255, 255);
  set_px(b, 2, 167, 166, 167);  // exactly c2
  set_px(b, 3, 87, 89, 87);     // exactly c3
  set_px(b, 9, 255, 255, 255, 0);
  for (const Coded& c : {encode_ref(b), encode_sse(b)}) {
    EXPECT_EQ(color0(c), 0xF79E);
    EXPECT_EQ(color1(c), 0x0861);
    // pixel 0: 1, pixel 1: 0, pixel 2: 2, pixel 3: 3, pixel 9: 0, others 1.
    EXPECT_EQ(index_word(c), 0x555155E1u);
  }
}

TEST(Dxt1Encode, IndexRuleOnTiesFollowsTheStrictCompares) {
  // A pixel whose channels are not uniform: the rule compares L1 sums, and a
  // tie d0 == d3 keeps bit 0 clear.  Endpoints from red 0..255 only.
  Block b;
  for (int i = 0; i < 16; ++i) set_px(b, i, 0, 0, 0);
  set_px(b, 15, 255, 0, 0);
  // palette: c0 (247,0,0) c1 (8,0,0) c2 (167,0,0) c3 (87,0,0)
  set_px(b, 4, 127, 0, 0);   // d2 = 40, d3 = 40: tie between c2 and c3 -> b4 false, b1 & b2 -> 2
  set_px(b, 5, 47, 0, 0);    // d1 = 39, d3 = 40 -> 1
  set_px(b, 6, 48, 0, 0);    // d1 = 40, d3 = 39 -> 3
  set_px(b, 7, 207, 0, 0);   // d0 = 40, d2 = 40: tie -> b2 false, b0 false -> 0
  set_px(b, 8, 208, 0, 0);   // d0 = 39, d2 = 41 -> 0
  const Coded c = encode_ref(b);
  EXPECT_EQ(color0(c), 0xF000);
  EXPECT_EQ(color1(c), 0x0800);
  const uint32_t w = index_word(c);
  auto idx = [&](int i) { return (w >> (2 * i)) & 3; };
  EXPECT_EQ(idx(15), 0u);
  EXPECT_EQ(idx(0), 1u);
  EXPECT_EQ(idx(4), 2u);
  EXPECT_EQ(idx(5), 1u);
  EXPECT_EQ(idx(6), 3u);
  EXPECT_EQ(idx(7), 0u);
  EXPECT_EQ(idx(8), 0u);
  EXPECT_EQ(encode_sse(b), c);
}

TEST(Dxt1Decode, FourColourPalette) {
  const Block d = decode_both(make_coded(0xF79E, 0x0861, 0xE4E4E4E4u));  // 0 1 2 3 per row
  for (int r = 0; r < 4; ++r) {
    EXPECT_TRUE(px_is(&d[16 * r + 0], 247, 243, 247));
    EXPECT_TRUE(px_is(&d[16 * r + 4], 8, 12, 8));
    EXPECT_TRUE(px_is(&d[16 * r + 8], 167, 166, 167));
    EXPECT_TRUE(px_is(&d[16 * r + 12], 87, 89, 87));
  }
  // Channel extremes: 0xFFFF / 0x0000.
  const Block e = decode_both(make_coded(0xFFFF, 0x0000, 0x000000E4u));
  EXPECT_TRUE(px_is(&e[0], 255, 255, 255));
  EXPECT_TRUE(px_is(&e[4], 0, 0, 0));
  EXPECT_TRUE(px_is(&e[8], 170, 170, 170));
  EXPECT_TRUE(px_is(&e[12], 85, 85, 85));
  EXPECT_TRUE(px_is(&e[16], 255, 255, 255));
}

TEST(Dxt1Decode, ThreeColourModeHasOpaqueWhiteFourthEntry) {
  // color0 < color1: entry 2 the average, entry 3 opaque white.
  const Block d = decode_both(make_coded(0x0861, 0xF79E, 0x1B1B1B1Bu));  // 3 2 1 0 per row
  EXPECT_TRUE(px_is(&d[0], 255, 255, 255, 255));
  EXPECT_TRUE(px_is(&d[4], 127, 127, 127));
  EXPECT_TRUE(px_is(&d[8], 247, 243, 247));
  EXPECT_TRUE(px_is(&d[12], 8, 12, 8));
  // color0 == color1 is three-colour mode as well.
  const Block e = decode_both(make_coded(0x0000, 0x0000, 0xFFFFFFFFu));
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(px_is(&e[4 * i], 255, 255, 255));
  const Block f = decode_both(make_coded(0x001F, 0xF800, 0x000000E4u));
  EXPECT_TRUE(px_is(&f[0], 0, 0, 255));
  EXPECT_TRUE(px_is(&f[4], 255, 0, 0));
  EXPECT_TRUE(px_is(&f[8], 127, 0, 127));
  EXPECT_TRUE(px_is(&f[12], 255, 255, 255));
}

TEST(Dxt1Decode, SignednessOfEndpointCompare) {
  // 0x8000 > 0x7FFF as unsigned: four-colour mode.
  const Block d = decode_both(make_coded(0x8000, 0x7FFF, 0x000000C0u));
  // c0 (132,0,0), c1 (123,255,255): c3 = ((132+246)/3, 510/3, 510/3)
  EXPECT_TRUE(px_is(&d[12], 126, 170, 170));
}

TEST(Dxt1, Every565ColourRoundTripsExactly) {
  // A uniform block of an expanded 565 colour codes to that colour and back.
  for (int r5 = 0; r5 < 32; ++r5)
    for (int g6 = 0; g6 < 64; ++g6)
      for (int b5 = 0; b5 < 32; b5 += 7) {
        const int r = (r5 << 3) | (r5 >> 2), g = (g6 << 2) | (g6 >> 4), bl = (b5 << 3) | (b5 >> 2);
        Block b;
        for (int i = 0; i < 16; ++i) set_px(b, i, r, g, bl, 7);
        const Coded c = encode_sse(b);
        ASSERT_EQ(color0(c), (r5 << 11) | (g6 << 5) | b5);
        ASSERT_EQ(c, encode_ref(b));
        const Block d = decode_both(c);
        ASSERT_TRUE(px_is(&d[20], r, g, bl));
      }
}

// ------------------------------------------------------------------ SSE vs scalar, blocks
Block random_block(vprtest::Rng& rng) {
  Block b;
  switch (rng.uniform(0, 4)) {
    case 0:  // white noise
      for (auto& v : b) v = uint8_t(rng.uniform(0, 255));
      break;
    case 1: {  // small range around a centre (insets of 0)
      const int c[3] = {int(rng.uniform(0, 255)), int(rng.uniform(0, 255)), int(rng.uniform(0, 255))};
      const int spread = int(rng.uniform(0, 20));
      for (int i = 0; i < 16; ++i)
        for (int k = 0; k < 4; ++k) {
          const int v = (k < 3 ? c[k] : 128) + int(rng.uniform(-spread, spread));
          b[4 * i + k] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : v);
        }
      break;
    }
    case 2: {  // two colours
      uint8_t a[4], z[4];
      for (int k = 0; k < 4; ++k) a[k] = uint8_t(rng.uniform(0, 255)), z[k] = uint8_t(rng.uniform(0, 255));
      for (int i = 0; i < 16; ++i) std::memcpy(&b[4 * i], rng.coin() ? a : z, 4);
      break;
    }
    case 3:  // extremes only
      for (auto& v : b) v = rng.coin() ? 255 : (rng.coin() ? 0 : uint8_t(rng.uniform(0, 255)));
      break;
    default: {  // a gradient along a random direction
      const double dir[3] = {rng.real(-60, 60), rng.real(-60, 60), rng.real(-60, 60)};
      const double base[3] = {rng.real(0, 255), rng.real(0, 255), rng.real(0, 255)};
      for (int i = 0; i < 16; ++i)
        for (int k = 0; k < 4; ++k) {
          const double t = (i % 4 + i / 4) / 6.0;
          const double v = k < 3 ? base[k] + dir[k] * t + rng.real(-3, 3) : 255.0;
          b[4 * i + k] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : int(v));
        }
    }
  }
  return b;
}

TEST(Dxt1Encode, SseBlockMatchesScalarOnRandomBlocks) {
  vprtest::Rng rng(11);
  for (int n = 0; n < 60000; ++n) {
    const Block b = random_block(rng);
    const Coded r = encode_ref(b);
    const Coded s = encode_sse(b);
    ASSERT_EQ(r, s) << "block " << n;
    // The encoder never swaps: color0 >= color1.
    ASSERT_GE(color0(r), color1(r));
    // Read in place from four rows of a wider image: same bits.
    uint8_t img[4][40];
    for (int y = 0; y < 4; ++y) std::memcpy(&img[y][3], &b[16 * y], 16);
    Coded t;
    sse::encode_block_rgba_dxt1_rows(&img[0][3], 40, t.data());
    ASSERT_EQ(r, t);
  }
}

TEST(Dxt1Decode, SseBlockMatchesScalarOnRandomBytes) {
  vprtest::Rng rng(12);
  for (int n = 0; n < 100000; ++n) {
    Coded c;
    const uint64_t w = rng.next();
    std::memcpy(c.data(), &w, 8);
    if (n % 4 == 0) c[2] = c[0], c[3] = c[1];  // equal endpoints
    Block a, b;
    ref::decode_block_dxt1(c.data(), a.data());
    sse::decode_block_dxt1(c.data(), b.data());
    ASSERT_TRUE(vprtest::same_array(a.data(), b.data(), 64)) << "block " << n;
  }
}

// ------------------------------------------------------------------ images
size_t coded_size(int w, int h) { return size_t(8) * size_t((w + 3) / 4) * size_t((h + 3) / 4); }

// The harness's geometries plus whole block rows of many widths (the
// harness's wide cases are 1-3 rows high) and the large cases.
std::vector<vprtest::Geometry> dxt_geometries() {
  std::vector<vprtest::Geometry> g = vprtest::geometries(11);
  int i = 0;
  for (int w = 61; w <= 80; ++w)
    for (int h : {4, 7, 8}) g.push_back({w, h, (i * 5) % 19, i % 7}), ++i;
  for (const auto& l : vprtest::large_geometries()) g.push_back(l);
  return g;
}

// Coded output buffer with guard bytes after the blocks.
struct CodedBuf {
  static constexpr size_t kGuard = 32;
  std::vector<uint8_t> buf;
  size_t n;
  explicit CodedBuf(size_t size) : buf(size + kGuard, 0xC3), n(size) {}
  uint8_t* data() { return buf.data(); }
  bool guard_ok() const {
    for (size_t i = n; i < buf.size(); ++i)
      if (buf[i] != 0xC3) return false;
    return true;
  }
};

TEST(Dxt1Image, EncodeSseMatchesScalarOnEveryGeometry) {
  vprtest::Rng rng(21);
  for (const auto& g : dxt_geometries()) {
    SCOPED_TRACE(g.str());
    vprtest::Image<uint8_t> src(4 * g.width, g.height, g.pad, g.misalign);
    if (rng.coin())
      src.fill_random(rng);
    else
      src.fill_with([&](int x, int y) { return (x * 7 + y * 13 + (x & 3) * 40) & 255; });
    const size_t n = coded_size(g.width, g.height);
    CodedBuf a(n), b(n), c(n);
    ref::encode_image_dxt1(src.data(), src.step(), g.width, g.height, a.data());
    sse::encode_image_dxt1(src.data(), src.step(), g.width, g.height, b.data());
    ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src.data(), src.step(), {g.width, g.height}, c.data()),
              vprStatusOk);
    ASSERT_TRUE(vprtest::same_array(a.data(), b.data(), n));
    ASSERT_TRUE(vprtest::same_array(a.data(), c.data(), n));
    ASSERT_TRUE(a.guard_ok() && b.guard_ok() && c.guard_ok());
  }
}

TEST(Dxt1Image, DecodeSseMatchesScalarOnEveryGeometry) {
  vprtest::Rng rng(22);
  for (const auto& g : dxt_geometries()) {
    SCOPED_TRACE(g.str());
    // Exactly sized source: ASan reports any read past the blocks.
    std::vector<uint8_t> coded(coded_size(g.width, g.height));
    for (auto& v : coded) v = uint8_t(rng.uniform(0, 255));
    vprtest::Image<uint8_t> a(4 * g.width, g.height, g.pad, g.misalign);
    vprtest::Image<uint8_t> b = a, c = a;
    ref::decode_image_dxt1(coded.data(), a.data(), a.step(), g.width, g.height);
    sse::decode_image_dxt1(coded.data(), b.data(), b.step(), g.width, g.height);
    ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), c.data(), c.step(), {g.width, g.height}),
              vprStatusOk);
    ASSERT_TRUE(vprtest::same_region(a, b));
    ASSERT_TRUE(vprtest::same_region(a, c));
    ASSERT_TRUE(vprtest::guards_ok(a));
    ASSERT_TRUE(vprtest::guards_ok(b));
    ASSERT_TRUE(vprtest::guards_ok(c));
  }
}

TEST(Dxt1Image, BlockLayoutAndDecodedPixelsMatchPerBlockForm) {
  // 13x9: 4x3 blocks; block (bx, by) is the 8 bytes at 8 * (by * 4 + bx) and
  // covers pixels 4bx..4bx+3, 4by..4by+3.
  const int w = 13, h = 9;
  vprtest::Rng rng(23);
  vprtest::Image<uint8_t> src(4 * w, h, 5, 1);
  src.fill_random(rng);
  std::vector<uint8_t> coded(coded_size(w, h));
  ASSERT_EQ(coded.size(), 8u * 4 * 3);
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src.data(), src.step(), {w, h}, coded.data()), vprStatusOk);
  vprtest::Image<uint8_t> dst(4 * w, h, 3, 2);
  ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), dst.data(), dst.step(), {w, h}), vprStatusOk);
  for (int by = 0; by < 3; ++by)
    for (int bx = 0; bx < 4; ++bx) {
      Block b;
      gather_block_rgba(src.row(4 * by) + 16 * bx, src.step(), std::min(4, w - 4 * bx), std::min(4, h - 4 * by),
                        b.data());
      Coded c;
      std::memcpy(c.data(), &coded[8 * (by * 4 + bx)], 8);
      ASSERT_EQ(encode_ref(b), c) << bx << "," << by;
      const Block d = decode_both(c);
      for (int y = 4 * by; y < std::min(h, 4 * by + 4); ++y)
        for (int x = 4 * bx; x < std::min(w, 4 * bx + 4); ++x)
          ASSERT_EQ(0, std::memcmp(dst.row(y) + 4 * x, &d[16 * (y - 4 * by) + 4 * (x - 4 * bx)], 4));
    }
  ASSERT_TRUE(vprtest::guards_ok(dst));
}

TEST(Dxt1Image, PartialBlocksRepeatTheEdgePixels) {
  // A 5x5 image gives 2x2 blocks; each block equals the block of the 8x8
  // image that repeats column 4 and row 4.
  vprtest::Rng rng(24);
  vprtest::Image<uint8_t> small(4 * 5, 5), big(4 * 8, 8);
  small.fill_random(rng);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) std::memcpy(big.row(y) + 4 * x, small.row(std::min(y, 4)) + 4 * std::min(x, 4), 4);
  CodedBuf a(32), b(32);
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(small.data(), small.step(), {5, 5}, a.data()), vprStatusOk);
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(big.data(), big.step(), {8, 8}, b.data()), vprStatusOk);
  EXPECT_TRUE(vprtest::same_array(a.data(), b.data(), 32));
  EXPECT_TRUE(a.guard_ok());
  // 1x1: a single block of one repeated pixel.
  CodedBuf c(8);
  const uint8_t px[4] = {10, 20, 30, 40};
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(px, 4, {1, 1}, c.data()), vprStatusOk);
  EXPECT_EQ(c.buf[0] | (c.buf[1] << 8), (1 << 11) | (5 << 5) | 3);
  EXPECT_EQ(c.buf[0] | (c.buf[1] << 8), c.buf[2] | (c.buf[3] << 8));
  EXPECT_TRUE(c.guard_ok());
}

TEST(Dxt1Image, NegativeStepAddressesRowsUpwards) {
  const int w = 11, h = 10;
  vprtest::Rng rng(25);
  vprtest::Image<uint8_t> img(4 * w, h, 8, 3);
  img.fill_random(rng);
  // The same image stored bottom-up: row y at last_row - y * step.
  vprtest::Image<uint8_t> flipped(4 * w, h, 8, 3);
  for (int y = 0; y < h; ++y) std::memcpy(flipped.row(h - 1 - y), img.row(y), 4 * w);
  const size_t n = coded_size(w, h);
  CodedBuf a(n), b(n);
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(img.data(), img.step(), {w, h}, a.data()), vprStatusOk);
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(flipped.row(h - 1), -flipped.step(), {w, h}, b.data()),
            vprStatusOk);
  ASSERT_TRUE(vprtest::same_array(a.data(), b.data(), n));

  vprtest::Image<uint8_t> up(4 * w, h, 8, 1), down(4 * w, h, 8, 1);
  ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(a.data(), up.data(), up.step(), {w, h}), vprStatusOk);
  ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(a.data(), down.row(h - 1), -down.step(), {w, h}),
            vprStatusOk);
  for (int y = 0; y < h; ++y) ASSERT_EQ(0, std::memcmp(up.row(y), down.row(h - 1 - y), 4 * w));
  ASSERT_TRUE(vprtest::guards_ok(down));
}

TEST(Dxt1Image, RoundTripQualityOnSmoothImage) {
  const int w = 64, h = 48;
  vprtest::Image<uint8_t> src(4 * w, h);
  src.fill_with([](int x, int y) {
    const int c = x & 3, px = x / 4;
    return c == 3 ? 0 : (px * (c + 1) + y * (3 - c)) / 2;
  });
  std::vector<uint8_t> coded(coded_size(w, h));
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src.data(), src.step(), {w, h}, coded.data()), vprStatusOk);
  vprtest::Image<uint8_t> dst(4 * w, h);
  ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), dst.data(), dst.step(), {w, h}), vprStatusOk);
  double se = 0;
  int worst = 0;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      for (int c = 0; c < 3; ++c) {
        const int e = int(dst.row(y)[4 * x + c]) - int(src.row(y)[4 * x + c]);
        se += e * e;
        worst = std::max(worst, std::abs(e));
      }
      ASSERT_EQ(dst.row(y)[4 * x + 3], 255);  // alpha is not coded: always opaque
    }
  const double psnr = 10 * std::log10(255.0 * 255.0 / (se / (3.0 * w * h)));
  EXPECT_GT(psnr, 35.0);
  EXPECT_LT(worst, 24);
}

// ------------------------------------------------------------------ argument checks
TEST(Dxt1Args, EncodeChecksInOrderAndWritesNothing) {
  uint8_t src[64] = {};
  CodedBuf dst(8);
  const VprRoiSize ok{4, 4}, bad{0, 4};
  auto untouched = [&] {
    for (uint8_t v : dst.buf)
      if (v != 0xC3) return false;
    return true;
  };
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(nullptr, 16, ok, dst.data()), vprStatusNullPointer);
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 16, ok, nullptr), vprStatusNullPointer);
  // Both pointers come before the step.
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 0, bad, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 0, bad, dst.data()), vprStatusBadStep);
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 16, VprRoiSize{4, 0}, dst.data()), vprStatusBadSize);
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 16, VprRoiSize{-1, 4}, dst.data()), vprStatusBadSize);
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 16, VprRoiSize{4, -7}, dst.data()), vprStatusBadSize);
  EXPECT_TRUE(untouched());
  EXPECT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src, 16, ok, dst.data()), vprStatusOk);
  EXPECT_FALSE(untouched());
  EXPECT_TRUE(dst.guard_ok());
}

TEST(Dxt1Args, DecodeChecksInOrderAndWritesNothing) {
  const uint8_t src[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  vprtest::Image<uint8_t> dst(16, 4);
  const vprtest::Image<uint8_t> before = dst;
  const VprRoiSize ok{4, 4}, bad{4, 0};
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(nullptr, dst.data(), 0, bad), vprStatusNullPointer);
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, nullptr, 0, bad), vprStatusNullPointer);
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, dst.data(), 0, bad), vprStatusBadStep);
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, dst.data(), 16, bad), vprStatusBadSize);
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, dst.data(), 16, VprRoiSize{0, 0}), vprStatusBadSize);
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, dst.data(), 16, VprRoiSize{INT32_MIN, 4}),
            vprStatusBadSize);
  EXPECT_TRUE(vprtest::same_region(dst, before));
  EXPECT_TRUE(vprtest::guards_ok(dst));
  EXPECT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src, dst.data(), 16, ok), vprStatusOk);
  EXPECT_TRUE(vprtest::guards_ok(dst));
}

}  // namespace
