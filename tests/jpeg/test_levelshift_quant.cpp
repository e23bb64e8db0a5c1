// Level shift of regions, quantisation tables, zig-zag tables and
// single-block quantisation.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "jpeg/levelshift_quant.h"
#include "jpeg/zigzag.h"
#include "vprjp_jpeg_transform.h"
#include "vprtest.h"

using namespace vpr::jpeg;
using vprtest::Image;

namespace {

// The luminance table of the JPEG standard's example, zig-zag order.
const uint8_t kLumaZigzag[64] = {16, 11, 12, 14, 12, 10, 16, 14, 13, 14, 18, 17, 16, 19, 24, 40,
                                 26, 24, 22, 22, 24, 49, 35, 37, 29, 40, 58, 51, 61, 60, 57, 51,
                                 56, 55, 64, 72, 92, 78, 64, 68, 87, 69, 55, 56, 80, 109, 81, 87,
                                 95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};

// ------------------------------------------------------------ zig-zag tables

TEST(ZigZag, TablesAreInversePermutations) {
  const int32_t first_row[8] = {0, 1, 5, 6, 14, 15, 27, 28};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(zigzag_index_Fwd[i], first_row[i]);
  const int32_t first_scan[8] = {0, 1, 8, 16, 9, 2, 3, 10};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(own_pj_izigzag_index[i], first_scan[i]);
  for (int n = 0; n < 64; ++n) EXPECT_EQ(own_pj_izigzag_index[zigzag_index_Fwd[n]], n);
  for (int k = 64; k < 72; ++k) EXPECT_EQ(own_pj_izigzag_index[k], 63);
  // Walk the anti-diagonals: every step moves to a neighbouring diagonal
  // position, alternating direction.
  for (int k = 1; k < 64; ++k) {
    const int a = own_pj_izigzag_index[k - 1], b = own_pj_izigzag_index[k];
    const int da = a / 8 + a % 8, db = b / 8 + b % 8;
    EXPECT_TRUE(db == da || db == da + 1) << k;
  }
}

// ------------------------------------------------------------ level shift

TEST(LevelShift, HandValues) {
  const uint8_t s8[4] = {0, 1, 128, 255};
  int16_t d16[4];
  ASSERT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 4, d16, 8, {4, 1}), vprStatusOk);
  EXPECT_EQ(d16[0], -128);
  EXPECT_EQ(d16[1], -127);
  EXPECT_EQ(d16[2], 0);
  EXPECT_EQ(d16[3], 127);
  const int16_t s16[9] = {-32768, -129, -128, -127, -1, 0, 126, 127, 32767};
  const uint8_t want[9] = {0, 0, 0, 1, 127, 128, 254, 255, 255};
  uint8_t d8[9];
  ASSERT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16, 18, d8, 9, {9, 1}), vprStatusOk);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(d8[i], want[i]) << s16[i];
}

TEST(LevelShift, SseMatchesScalarOverGeometries) {
  vprtest::Rng rng(31);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Image<uint8_t> s8(g.width, g.height, g.pad, g.misalign);
    s8.fill_random(rng);
    Image<int16_t> a(g.width, g.height, g.pad, g.misalign + 1), b = a;
    ref::sub128_rows(s8.data(), s8.step(), a.data(), a.step(), g.width, g.height);
    sse::sub128_rows(s8.data(), s8.step(), b.data(), b.step(), g.width, g.height);
    ASSERT_TRUE(vprtest::same_region(a, b));
    ASSERT_TRUE(vprtest::guards_ok(b));

    Image<int16_t> s16(g.width, g.height, g.pad, g.misalign);
    s16.fill_random(rng);
    if (rng.coin()) s16.fill_random(rng, -300, 300);
    Image<uint8_t> c(g.width, g.height, g.pad + 3, g.misalign + 5), d = c;
    ref::add128_rows(s16.data(), s16.step(), c.data(), c.step(), g.width, g.height);
    sse::add128_rows(s16.data(), s16.step(), d.data(), d.step(), g.width, g.height);
    ASSERT_TRUE(vprtest::same_region(c, d));
    ASSERT_TRUE(vprtest::guards_ok(d));
  }
}

TEST(LevelShift, ArgumentChecksInOrderAndNoWrite) {
  uint8_t s8[16] = {};
  int16_t s16[16] = {};
  int16_t d16[16];
  uint8_t d8[16];
  std::memset(d16, 0x5a, sizeof d16);
  std::memset(d8, 0x5a, sizeof d8);
  const VprRoiSize roi{4, 2}, bad{0, 2}, bad_h{4, 0};
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(nullptr, 8, d16, 16, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 0, nullptr, 16, roi), vprStatusBadStep);  // step before dst
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, -8, d16, 16, roi), vprStatusBadStep);
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 8, nullptr, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 8, d16, 0, bad), vprStatusBadStep);
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 8, d16, 16, bad), vprStatusBadSize);
  EXPECT_EQ(vpriSub128_JPEG_8u16s_C1R(s8, 8, d16, 16, bad_h), vprStatusBadSize);
  EXPECT_EQ(vpriAdd128_JPEG_16s8u_C1R(nullptr, 8, d8, 8, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16, 0, nullptr, 8, roi), vprStatusBadStep);
  EXPECT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16, 16, nullptr, 0, roi), vprStatusNullPointer);
  EXPECT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16, 16, d8, -1, bad), vprStatusBadStep);
  EXPECT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16, 16, d8, 8, {-3, 1}), vprStatusBadSize);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(d16[i], 0x5a5a);
    EXPECT_EQ(d8[i], 0x5a);
  }
}

// Serial (at most 8192 samples) and parallel paths give the same bits.
TEST(LevelShift, ThreadCountDoesNotChangeResult) {
  vprtest::Rng rng(7);
  const VprRoiSize sizes[] = {{128, 64}, {8193, 1}, {97, 85}, {1, 8193}, {333, 97}};
  for (const VprRoiSize roi : sizes) {
    SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height);
    Image<uint8_t> s8(roi.width, roi.height, 5, 3);
    s8.fill_random(rng);
    Image<int16_t> s16(roi.width, roi.height, 6, 1);
    s16.fill_random(rng, -400, 400);
    Image<int16_t> r16(roi.width, roi.height, 2, 0);
    Image<uint8_t> r8(roi.width, roi.height, 1, 0);
    ref::sub128_rows(s8.data(), s8.step(), r16.data(), r16.step(), roi.width, roi.height);
    ref::add128_rows(s16.data(), s16.step(), r8.data(), r8.step(), roi.width, roi.height);
    for (int threads : {1, 2, 3, 4}) {
      vprtest::ThreadCount tc(threads);
      Image<int16_t> d16(roi.width, roi.height, 2, 0);
      Image<uint8_t> d8(roi.width, roi.height, 1, 0);
      ASSERT_EQ(vpriSub128_JPEG_8u16s_C1R(s8.data(), s8.step(), d16.data(), d16.step(), roi), vprStatusOk);
      ASSERT_EQ(vpriAdd128_JPEG_16s8u_C1R(s16.data(), s16.step(), d8.data(), d8.step(), roi), vprStatusOk);
      ASSERT_TRUE(vprtest::same_region(r16, d16)) << threads;
      ASSERT_TRUE(vprtest::same_region(r8, d8)) << threads;
      ASSERT_TRUE(vprtest::guards_ok(d16));
      ASSERT_TRUE(vprtest::guards_ok(d8));
    }
  }
}

// ------------------------------------------------------------ tables

TEST(QuantTables, RawQualityScaling) {
  uint8_t t[64];
  std::memcpy(t, kLumaZigzag, 64);
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 50), vprStatusOk);
  EXPECT_EQ(0, std::memcmp(t, kLumaZigzag, 64));
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 100), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(t[i], 1);
  std::memcpy(t, kLumaZigzag, 64);
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 1), vprStatusOk);  // x50, clamped
  for (int i = 0; i < 64; ++i) EXPECT_EQ(t[i], std::min(255, kLumaZigzag[i] * 50)) << i;
  std::memcpy(t, kLumaZigzag, 64);
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 75), vprStatusOk);  // scale 50
  EXPECT_EQ(t[0], 8);    // (16*50+50)/100 = 8
  EXPECT_EQ(t[1], 6);    // (11*50+50)/100 = 6
  EXPECT_EQ(t[63], 50);  // (99*50+50)/100 = 50
  std::memcpy(t, kLumaZigzag, 64);
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 30), vprStatusOk);  // scale 5000/30 = 166
  EXPECT_EQ(t[0], (16 * 166 + 50) / 100);
  EXPECT_EQ(t[63], 164);  // (99*166+50)/100 = 164.84, truncated
  std::memcpy(t, kLumaZigzag, 64);
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 250), vprStatusOk);  // negative scale -> 1
  for (int i = 0; i < 64; ++i) EXPECT_EQ(t[i], 1);
  // 0 entries stay at least 1
  uint8_t z[64] = {};
  ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(z, 50), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(z[i], 1);
  // checks
  std::memcpy(t, kLumaZigzag, 64);
  EXPECT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(nullptr, 50), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(nullptr, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, 0), vprStatusBadArg);
  EXPECT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(t, -5), vprStatusBadArg);
  EXPECT_EQ(0, std::memcmp(t, kLumaZigzag, 64));
}

TEST(QuantTables, ForwardInverseAndFloat) {
  uint16_t fwd[64], inv[64];
  float f32[64];
  ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(kLumaZigzag, fwd), vprStatusOk);
  ASSERT_EQ(vpriQuantInvTableInit_JPEG_8u16u(kLumaZigzag, inv), vprStatusOk);
  ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u32f(kLumaZigzag, f32), vprStatusOk);
  // natural order: the standard table's first row and column
  const uint16_t row0[8] = {16, 11, 10, 16, 24, 40, 51, 61};
  const uint16_t col0[8] = {16, 12, 14, 14, 18, 24, 49, 72};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(inv[i], row0[i]);
    EXPECT_EQ(inv[i * 8], col0[i]);
  }
  EXPECT_EQ(inv[63], 99);
  for (int n = 0; n < 64; ++n) {
    const uint32_t q = inv[n];
    EXPECT_EQ(fwd[n], (32768 + q / 2) / q) << n;
    EXPECT_EQ(f32[n], 1.0f / static_cast<float>(q)) << n;
  }
  EXPECT_EQ(fwd[0], 2048);  // 32768 / 16
  EXPECT_EQ(fwd[1], 2979);  // 32768 / 11 = 2978.9
  uint8_t ones[64];
  std::memset(ones, 1, 64);
  ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(ones, fwd), vprStatusOk);
  for (int n = 0; n < 64; ++n) EXPECT_EQ(fwd[n], 32768);
  uint8_t r255[64];
  std::memset(r255, 255, 64);
  ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(r255, fwd), vprStatusOk);
  EXPECT_EQ(fwd[5], 129);  // 128.5 -> 129

  // A zero entry: warning 6, every other entry still built.
  uint8_t raw[64];
  std::memcpy(raw, kLumaZigzag, 64);
  raw[2] = 0;  // zig-zag 2 = natural 8
  std::memset(fwd, 0xee, sizeof fwd);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(raw, fwd), vprStatusDivByZeroWarning);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u32f(raw, f32), vprStatusDivByZeroWarning);
  EXPECT_EQ(vpriQuantInvTableInit_JPEG_8u16u(raw, inv), vprStatusOk);
  EXPECT_EQ(inv[8], 0);
  EXPECT_EQ(fwd[63], (32768 + 49) / 99);
  EXPECT_EQ(fwd[0], 2048);

  // checks, nothing written
  uint16_t keep[64];
  float keepf[64];
  std::memset(keep, 0x77, sizeof keep);
  std::memset(keepf, 0x77, sizeof keepf);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(nullptr, keep), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(raw, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantInvTableInit_JPEG_8u16u(nullptr, keep), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantInvTableInit_JPEG_8u16u(raw, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u32f(nullptr, keepf), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwdTableInit_JPEG_8u32f(raw, nullptr), vprStatusNullPointer);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(keep[i], 0x7777);
}

// ------------------------------------------------------------ block quantisation

TEST(QuantBlock, HandValues) {
  uint16_t fwd[64], inv[64];
  for (int i = 0; i < 64; ++i) fwd[i] = 16384;  // quantiser 2
  int16_t b[64] = {};
  b[0] = -1;
  b[1] = 1;
  b[2] = 3;    // 1.5 -> 2
  b[3] = -3;   // -1.5 -> -1 (halves up)
  b[4] = 4095;
  b[5] = -4096;
  ASSERT_EQ(vpriQuantFwd8x8_JPEG_16s_C1I(b, fwd), vprStatusOk);
  EXPECT_EQ(b[0], 0);
  EXPECT_EQ(b[1], 1);
  EXPECT_EQ(b[2], 2);
  EXPECT_EQ(b[3], -1);
  EXPECT_EQ(b[4], 2048);
  EXPECT_EQ(b[5], -2048);
  // quantiser 10 (reciprocal 3277): 100 -> 10, -55 -> -5 (-5.5 rounds up)
  for (int i = 0; i < 64; ++i) fwd[i] = 3277;
  int16_t c[64] = {100, -55, 54, 0};
  ASSERT_EQ(vpriQuantFwd8x8_JPEG_16s_C1I(c, fwd), vprStatusOk);
  EXPECT_EQ(c[0], 10);
  EXPECT_EQ(c[1], -5);
  EXPECT_EQ(c[2], 5);
  EXPECT_EQ(c[3], 0);

  for (int i = 0; i < 64; ++i) inv[i] = static_cast<uint16_t>(i == 0 ? 300 : 7);
  int16_t d[64] = {};
  d[0] = 300;  // 90000 -> low 16 bits 24464
  d[1] = -5;
  d[2] = 32767;
  ASSERT_EQ(vpriQuantInv8x8_JPEG_16s_C1I(d, inv), vprStatusOk);
  EXPECT_EQ(d[0], static_cast<int16_t>(90000 - 65536));
  EXPECT_EQ(d[1], -35);
  EXPECT_EQ(d[2], static_cast<int16_t>(static_cast<uint16_t>(32767 * 7)));
}

TEST(QuantBlock, SseMatchesScalarAnyAlignment) {
  vprtest::Rng rng(99);
  for (int it = 0; it < 300; ++it) {
    Image<int16_t> blk(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    Image<uint16_t> tab(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    tab.fill_random(rng);
    if (it % 2) blk.fill_random(rng, -4096, 4095); else blk.fill_random(rng);
    int16_t a[64];
    for (int i = 0; i < 64; ++i) a[i] = blk.get(i, 0);
    Image<int16_t> b = blk;
    if (it % 3 == 0) {
      ref::quant_inv_8x8(a, tab.data());
      ASSERT_EQ(vpriQuantInv8x8_JPEG_16s_C1I(b.data(), tab.data()), vprStatusOk);
    } else {
      ref::quant_fwd_8x8(a, tab.data());
      ASSERT_EQ(vpriQuantFwd8x8_JPEG_16s_C1I(b.data(), tab.data()), vprStatusOk);
    }
    for (int i = 0; i < 64; ++i) ASSERT_EQ(a[i], b.get(i, 0)) << i;
    ASSERT_TRUE(vprtest::guards_ok(b));
  }
  int16_t blk[64] = {5};
  uint16_t tab[64] = {1};
  EXPECT_EQ(vpriQuantFwd8x8_JPEG_16s_C1I(nullptr, tab), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantFwd8x8_JPEG_16s_C1I(blk, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantInv8x8_JPEG_16s_C1I(nullptr, tab), vprStatusNullPointer);
  EXPECT_EQ(vpriQuantInv8x8_JPEG_16s_C1I(blk, nullptr), vprStatusNullPointer);
  EXPECT_EQ(blk[0], 5);
}

}  // namespace
