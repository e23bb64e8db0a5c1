// Fused 8x8 DCT: SSE kernels against their scalar twins, the LS forms
// against level shift + block form, sparse inverses against the full
// inverse, hand-computed cases, IEEE 1180-1990 accuracy of the inverse and
// the forward transform against a double-precision DCT.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include "jpeg/dct.h"
#include "jpeg/levelshift_quant.h"
#include "vprjp_jpeg_transform.h"
#include "vprtest.h"

using namespace vpr::jpeg;
using vprtest::Image;

namespace {

const uint8_t kLumaZigzag[64] = {16, 11, 12, 14, 12, 10, 16, 14, 13, 14, 18, 17, 16, 19, 24, 40,
                                 26, 24, 22, 22, 24, 49, 35, 37, 29, 40, 58, 51, 61, 60, 57, 51,
                                 56, 55, 64, 72, 92, 78, 64, 68, 87, 69, 55, 56, 80, 109, 81, 87,
                                 95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};

// ------------------------------------------------------------ double DCT

double basis(int k, int n) {
  const double c = k == 0 ? std::sqrt(0.5) : 1.0;
  return c / 2.0 * std::cos((2 * n + 1) * k * M_PI / 16.0);
}

struct Basis {
  double b[8][8];
  Basis() {
    for (int k = 0; k < 8; ++k)
      for (int n = 0; n < 8; ++n) b[k][n] = basis(k, n);
  }
};
const Basis kBasis;

void fdct_double(const double* f, double* F) {
  const auto& b = kBasis.b;
  double tmp[64];
  for (int v = 0; v < 8; ++v)
    for (int x = 0; x < 8; ++x) {
      double s = 0;
      for (int y = 0; y < 8; ++y) s += b[v][y] * f[y * 8 + x];
      tmp[v * 8 + x] = s;
    }
  for (int v = 0; v < 8; ++v)
    for (int u = 0; u < 8; ++u) {
      double s = 0;
      for (int x = 0; x < 8; ++x) s += tmp[v * 8 + x] * b[u][x];
      F[v * 8 + u] = s;
    }
}

void idct_double(const double* F, double* f) {
  const auto& b = kBasis.b;
  double tmp[64];
  for (int v = 0; v < 8; ++v)
    for (int x = 0; x < 8; ++x) {
      double s = 0;
      for (int u = 0; u < 8; ++u) s += F[v * 8 + u] * b[u][x];
      tmp[v * 8 + x] = s;
    }
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      double s = 0;
      for (int v = 0; v < 8; ++v) s += tmp[v * 8 + x] * b[v][y];
      f[y * 8 + x] = s;
    }
}

std::vector<uint16_t> unit_table() { return std::vector<uint16_t>(64, 1); }
std::vector<uint16_t> unit_fwd_table() { return std::vector<uint16_t>(64, 32768); }

// Random coefficient block: realistic (dequantised DCT range), sparse, or any 16-bit value.
void random_coeffs(vprtest::Rng& rng, int16_t* c, int kind) {
  for (int i = 0; i < 64; ++i) {
    switch (kind) {
      case 0: c[i] = static_cast<int16_t>(rng.any<int16_t>()); break;
      case 1: c[i] = static_cast<int16_t>(rng.uniform(-1024, 1023)); break;
      default: c[i] = rng.coin(0.15) ? static_cast<int16_t>(rng.uniform(-300, 300)) : 0; break;
    }
  }
}

// ------------------------------------------------------------ constant tables

// Every row-table entry is round(S * sqrt(2) * cos(k pi/16)) with the row
// pair's scale S, in the documented layout; the float bases are the cosines.
TEST(DctTables, EntriesFollowFromTheCosines) {
  const double scale[4] = {16384.0, 16384.0 * std::sqrt(2.0) * std::cos(M_PI / 16),
                           16384.0 * std::sqrt(2.0) * std::cos(2 * M_PI / 16),
                           16384.0 * std::sqrt(2.0) * std::cos(3 * M_PI / 16)};
  const int16_t* inv[4] = {tab_i_04, tab_i_17, tab_i_26, tab_i_35};
  const int16_t* fwd[4] = {tab_f_04, tab_f_17, tab_f_26, tab_f_35};
  // +-k: coefficient Ck with sign; 4 stands for C4 = S
  const int inv_layout[32] = {4, 2, 4, 6, -4, 2, 4, -6, 4, -6, 4, -2, 4, 6, -4, -2,
                              1, 3, 3, -7, 7, 3, 3, -1, 5, -1, 7, -5, 5, 7, -1, -5};
  const int fwd_layout[32] = {4, 4, 1, 3, -6, -2, -1, -5, 4, 4, 5, 7, 2, 6, 3, -7,
                              4, -4, 5, -1, 2, -6, 3, -1, -4, 4, 7, 3, 6, -2, 7, -5};
  for (int p = 0; p < 4; ++p)
    for (int i = 0; i < 32; ++i) {
      auto coef = [&](int k) {
        const int a = std::abs(k);
        const double v = std::floor(scale[p] * std::sqrt(2.0) * std::cos(a * M_PI / 16) + 0.5);
        return static_cast<int>(k < 0 ? -v : v);
      };
      EXPECT_EQ(inv[p][i], coef(inv_layout[i])) << p << " " << i;
      EXPECT_EQ(fwd[p][i], coef(fwd_layout[i])) << p << " " << i;
    }
  EXPECT_EQ(tab_i_17[1], 29692);
  EXPECT_EQ(tab_i_17[3], 12299);
  const int rows[8] = {0, 1, 2, 3, 0, 3, 2, 1};
  for (int r = 0; r < 8; ++r) {
    EXPECT_EQ(tab_i_row[r], inv[rows[r]]);
    EXPECT_EQ(tab_f_row[r], fwd[rows[r]]);
  }
  const float ck[8] = {1.0f, kC1, kC2, kC3, kC4, kC5, kC6, kC7};
  for (int k = 1; k < 8; ++k) EXPECT_EQ(ck[k], static_cast<float>(std::cos(k * M_PI / 16))) << k;
  for (int k = 0; k < 8; ++k)
    for (int n = 0; n < 8; ++n) {
      const float c = static_cast<float>((k ? 1.0 : std::sqrt(0.5)) * (n ? 1.0 : std::sqrt(0.5)) / 4.0);
      EXPECT_EQ(dct_norm_8[k][n], c);
    }
  for (int j = 0; j < 4; ++j)
    for (int u = 0; u < 4; ++u) {
      EXPECT_EQ(dct_cos_4[j][u], static_cast<float>(std::cos((2 * j + 1) * u * M_PI / 8)));
      EXPECT_EQ(dct_cos_4t[u][j], dct_cos_4[j][u]);
    }
}

// ------------------------------------------------------------ SSE vs scalar

using InvLs8 = void (*)(const int16_t*, uint8_t*, int, const uint16_t*);

struct InvLsKernel {
  const char* name;
  InvLs8 r, s;
  int rows, cols;
};

const InvLsKernel kInvLs[] = {
    {"ls", ref::dct_quant_inv_8x8_ls_16s8u, sse::dct_quant_inv_8x8_ls_16s8u, 8, 8},
    {"1x1", ref::dct_quant_inv_8x8_ls_1x1_16s8u, sse::dct_quant_inv_8x8_ls_1x1_16s8u, 8, 8},
    {"2x2", ref::dct_quant_inv_8x8_ls_2x2_16s8u, sse::dct_quant_inv_8x8_ls_2x2_16s8u, 8, 8},
    {"4x4", ref::dct_quant_inv_8x8_ls_4x4_16s8u, sse::dct_quant_inv_8x8_ls_4x4_16s8u, 8, 8},
    {"to2x2", ref::dct_quant_inv_8x8_to2x2_ls_16s8u, sse::dct_quant_inv_8x8_to2x2_ls_16s8u, 2, 2},
    {"to4x4", ref::dct_quant_inv_8x8_to4x4_ls_16s8u, sse::dct_quant_inv_8x8_to4x4_ls_16s8u, 4, 4},
};

TEST(DctKernels, InverseSseMatchesScalar) {
  vprtest::Rng rng(1180);
  for (int it = 0; it < 1500; ++it) {
    const int kind = it % 3;
    Image<int16_t> src(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    random_coeffs(rng, src.data(), kind);
    Image<uint16_t> q(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    if (kind == 0) q.fill_random(rng); else if (it % 2) q.fill_random(rng, 1, 4); else q.fill(1);

    // 16-bit block form, out of place and in place
    Image<int16_t> a(64, 1, 0, static_cast<int>(rng.uniform(0, 7))), b = a;
    ref::dct_quant_inv_8x8_16s(src.data(), a.data(), q.data());
    sse::dct_quant_inv_8x8_16s(src.data(), b.data(), q.data());
    ASSERT_TRUE(vprtest::same_region(a, b)) << it;
    ASSERT_TRUE(vprtest::guards_ok(b));
    Image<int16_t> c = src;
    ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1I(c.data(), q.data()), vprStatusOk);
    ASSERT_TRUE(vprtest::same_region(a, c));
    ASSERT_TRUE(vprtest::guards_ok(c));
    // no dequantisation
    int16_t r0[64], s0[64];
    ref::dct_8x8_inv_16s(src.data(), r0);
    sse::dct_8x8_inv_16s(src.data(), s0);
    ASSERT_TRUE(vprtest::same_array(r0, s0, 64));

    // LS forms into regions with odd steps and any alignment
    const int pad = static_cast<int>(rng.uniform(0, 9)), mis = static_cast<int>(rng.uniform(0, 15));
    for (const auto& k : kInvLs) {
      SCOPED_TRACE(k.name);
      Image<uint8_t> ra(k.cols, k.rows, pad, mis), rb = ra;
      k.r(src.data(), ra.data(), ra.step(), q.data());
      k.s(src.data(), rb.data(), rb.step(), q.data());
      ASSERT_TRUE(vprtest::same_region(ra, rb)) << it;
      ASSERT_TRUE(vprtest::guards_ok(rb));
    }
    Image<uint16_t> ua(8, 8, pad * 2, mis), ub = ua;
    ref::dct_quant_inv_8x8_ls_16s16u(src.data(), ua.data(), ua.step(), q.data());
    sse::dct_quant_inv_8x8_ls_16s16u(src.data(), ub.data(), ub.step(), q.data());
    ASSERT_TRUE(vprtest::same_region(ua, ub)) << it;
    ASSERT_TRUE(vprtest::guards_ok(ub));
  }
}

// Blocks whose rows from some row on are zero (DC only, rows 4..7 zero, ...)
// take shorter paths in the SSE inverse; a coefficient whose 16-bit product
// with its quantiser wraps to zero counts as zero.
TEST(DctKernels, InverseSseMatchesScalarOnBlocksWithZeroRows) {
  vprtest::Rng rng(404);
  for (int it = 0; it < 4000; ++it) {
    int16_t src[64];
    random_coeffs(rng, src, it % 3 == 0 ? 0 : 1);
    const int first_zero = 1 + it % 7;  // rows first_zero..7 are zero
    for (int i = first_zero * 8; i < 64; ++i) src[i] = 0;
    if (it % 5 == 0) src[8 * (first_zero + it % (8 - first_zero))] = 0;  // make sure a partly zero row occurs
    std::vector<uint16_t> q(64);
    for (auto& v : q) v = static_cast<uint16_t>(rng.uniform(1, it % 2 ? 4 : 255));
    if (it % 7 == 0) {  // a wrapped-to-zero product in the zero rows
      const int i = first_zero * 8 + static_cast<int>(rng.uniform(0, 8 * (8 - first_zero) - 1));
      src[i] = 4096;
      q[i] = 16;
    }
    if (it % 11 == 0) src[0] = 0;  // an all-zero block now and then
    if (it % 13 == 0)
      for (int i = 1; i < 8; ++i) src[i] = 0;  // DC alone

    int16_t a[64], b[64];
    ref::dct_quant_inv_8x8_16s(src, a, q.data());
    sse::dct_quant_inv_8x8_16s(src, b, q.data());
    ASSERT_TRUE(vprtest::same_array(a, b, 64)) << it;
    ref::dct_8x8_inv_16s(src, a);
    sse::dct_8x8_inv_16s(src, b);
    ASSERT_TRUE(vprtest::same_array(a, b, 64)) << it;
    for (const auto& k : kInvLs) {  // the full LS form and the corner forms
      SCOPED_TRACE(k.name);
      Image<uint8_t> ra(k.cols, k.rows, 3, it % 16), rb = ra;
      k.r(src, ra.data(), ra.step(), q.data());
      k.s(src, rb.data(), rb.step(), q.data());
      ASSERT_TRUE(vprtest::same_region(ra, rb)) << it;
      ASSERT_TRUE(vprtest::guards_ok(rb));
    }
  }
}

TEST(DctKernels, ForwardSseMatchesScalar) {
  vprtest::Rng rng(1990);
  for (int it = 0; it < 1500; ++it) {
    const int kind = it % 3;
    Image<int16_t> src(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    if (kind == 0) src.fill_random(rng); else if (kind == 1) src.fill_random(rng, -128, 127); else src.fill_random(rng, -2048, 2047);
    Image<uint16_t> q(64, 1, 0, static_cast<int>(rng.uniform(0, 7)));
    if (it % 2) q.fill_random(rng); else q.fill_random(rng, 128, 32768);

    Image<int16_t> a(64, 1, 0, static_cast<int>(rng.uniform(0, 7))), b = a;
    ref::dct_quant_fwd_8x8_16s(src.data(), a.data(), q.data());
    sse::dct_quant_fwd_8x8_16s(src.data(), b.data(), q.data());
    ASSERT_TRUE(vprtest::same_region(a, b)) << it;
    ASSERT_TRUE(vprtest::guards_ok(b));
    Image<int16_t> c = src;
    ASSERT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1I(c.data(), q.data()), vprStatusOk);
    ASSERT_TRUE(vprtest::same_region(a, c));
    int16_t r0[64], s0[64];
    ref::dct_8x8_fwd_16s(src.data(), r0);
    sse::dct_8x8_fwd_16s(src.data(), s0);
    ASSERT_TRUE(vprtest::same_array(r0, s0, 64));

    const int pad = static_cast<int>(rng.uniform(0, 9)), mis = static_cast<int>(rng.uniform(0, 15));
    Image<uint8_t> px(8, 8, pad, mis);
    px.fill_random(rng);
    Image<int16_t> d1(64, 1, 0, mis % 8), d2 = d1;
    ref::dct_quant_fwd_8x8_ls_8u16s(px.data(), px.step(), d1.data(), q.data());
    sse::dct_quant_fwd_8x8_ls_8u16s(px.data(), px.step(), d2.data(), q.data());
    ASSERT_TRUE(vprtest::same_region(d1, d2)) << it;
    ASSERT_TRUE(vprtest::guards_ok(d2));

    Image<uint16_t> p16(8, 8, pad * 2, mis);
    if (kind == 0) p16.fill_random(rng); else p16.fill_random(rng, 0, 4095);
    Image<float> ft(64, 1, 0, mis % 4);
    for (int i = 0; i < 64; ++i)
      ft.set(i, 0, kind == 0 ? static_cast<float>(rng.real(-3.0, 3.0)) : 1.0f / static_cast<float>(rng.uniform(1, 255)));
    Image<int16_t> e1(64, 1, 0, mis % 8), e2 = e1;
    ref::dct_quant_fwd_8x8_ls_16u16s(p16.data(), p16.step(), e1.data(), ft.data());
    sse::dct_quant_fwd_8x8_ls_16u16s(p16.data(), p16.step(), e2.data(), ft.data());
    ASSERT_TRUE(vprtest::same_region(e1, e2)) << it;
    ASSERT_TRUE(vprtest::guards_ok(e2));
  }
}

// ------------------------------------------------------------ LS = block form + level shift

TEST(DctForms, LsEqualsBlockFormWithLevelShift) {
  vprtest::Rng rng(5);
  uint16_t fwd[64], inv[64];
  ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(kLumaZigzag, fwd), vprStatusOk);
  ASSERT_EQ(vpriQuantInvTableInit_JPEG_8u16u(kLumaZigzag, inv), vprStatusOk);
  for (int it = 0; it < 300; ++it) {
    Image<uint8_t> px(8, 8, 3, 1);
    px.fill_random(rng);
    int16_t shifted[64], a[64], b[64];
    ASSERT_EQ(vpriSub128_JPEG_8u16s_C1R(px.data(), px.step(), shifted, 16, {8, 8}), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1(shifted, a, fwd), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px.data(), px.step(), b, fwd), vprStatusOk);
    ASSERT_TRUE(vprtest::same_array(a, b, 64));

    int16_t coef[64], spatial[64];
    random_coeffs(rng, coef, 1 + it % 2);
    if (it % 2) std::memcpy(coef, a, sizeof coef);
    ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(coef, spatial, inv), vprStatusOk);
    Image<uint8_t> o1(8, 8, 0, 0), o2(8, 8, 5, 3);
    ASSERT_EQ(vpriAdd128_JPEG_16s8u_C1R(spatial, 16, o1.data(), o1.step(), {8, 8}), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(coef, o2.data(), o2.step(), inv), vprStatusOk);
    ASSERT_TRUE(vprtest::same_region(o1, o2));
    ASSERT_TRUE(vprtest::guards_ok(o2));
  }
}

// ------------------------------------------------------------ sparse inverses

TEST(DctInverse, SparseFormsEqualFullInverse) {
  vprtest::Rng rng(44);
  using InvEntry = VprStatus (*)(const Vpr16s*, Vpr8u*, int, const Vpr16u*);
  const std::pair<int, InvEntry> forms[] = {{1, vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R},
                                          {2, vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R},
                                          {4, vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R}};
  for (int it = 0; it < 3000; ++it) {
    std::vector<uint16_t> q(64);
    for (auto& v : q) v = static_cast<uint16_t>(it % 4 == 0 ? 1 : rng.uniform(1, it % 4 == 3 ? 65535 : 100));
    for (const auto& [n, fn] : forms) {
      int16_t blk[64] = {}, full[64];
      for (int r = 0; r < n; ++r)
        for (int c = 0; c < n; ++c)
          blk[r * 8 + c] = static_cast<int16_t>(it % 5 == 0 ? rng.any<int16_t>() : rng.uniform(-200, 200));
      if (it % 3 == 1)  // a zero row inside the corner (its rounder is dropped)
        for (int c = 0; c < n; ++c) blk[(it / 3 % n) * 8 + c] = 0;
      std::memcpy(full, blk, sizeof full);
      // garbage outside the corner is not read by the sparse form
      int16_t dirty[64];
      std::memcpy(dirty, blk, sizeof dirty);
      for (int i = 0; i < 64; ++i)
        if (i / 8 >= n || i % 8 >= n) dirty[i] = static_cast<int16_t>(rng.any<int16_t>());
      Image<uint8_t> a(8, 8, 2, 1), b(8, 8, 0, 7);
      ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(full, a.data(), a.step(), q.data()), vprStatusOk);
      ASSERT_EQ(fn(dirty, b.data(), b.step(), q.data()), vprStatusOk);
      ASSERT_TRUE(vprtest::same_region(a, b)) << n << "x" << n << " it " << it;
      ASSERT_TRUE(vprtest::guards_ok(b));
    }
  }
  // every DC value
  std::vector<uint16_t> ones = unit_table();
  for (int d = -32768; d <= 32767; d += 3) {
    int16_t blk[64] = {};
    blk[0] = static_cast<int16_t>(d);
    uint8_t a[64], b[64];
    sse::dct_quant_inv_8x8_ls_16s8u(blk, a, 8, ones.data());
    sse::dct_quant_inv_8x8_ls_1x1_16s8u(blk, b, 8, ones.data());
    ASSERT_TRUE(vprtest::same_array(a, b, 64)) << d;
  }
}

// A DC-only block: every sample d/8 rounded half up (rows 1..7 are all zero
// and skipped, so only row 0's rounding offset reaches the columns).
TEST(DctInverse, DcOnlyBlocks) {
  std::vector<uint16_t> ones = unit_table();
  for (int d = -4088; d <= 4087; ++d) {
    int16_t blk[64] = {}, out[64];
    blk[0] = static_cast<int16_t>(d);
    ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(blk, out, ones.data()), vprStatusOk);
    const int want = static_cast<int>(std::floor((d + 4) / 8.0));
    for (int i = 0; i < 64; ++i) ASSERT_EQ(out[i], want) << "d=" << d << " at " << i;
  }
  // a zero row 1 between non-zero rows 0 and 2 adds nothing; a non-zero one
  // (here a single coefficient that dequantises to 0 mod 65536) counts as zero
  int16_t a[64] = {}, b[64] = {}, oa[64], ob[64];
  a[0] = b[0] = 100;
  a[16] = b[16] = -12;
  b[8] = 4096;
  std::vector<uint16_t> q = ones;
  q[8] = 16;  // 4096 * 16 = 65536 -> 0
  ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(a, oa, ones.data()), vprStatusOk);
  ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(b, ob, q.data()), vprStatusOk);
  EXPECT_TRUE(vprtest::same_array(oa, ob, 64));
  int16_t zero[64] = {};
  uint8_t px[64];
  ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(zero, px, 8, ones.data()), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(px[i], 128);
  // DC 800 with quantiser 2 -> 1600/8 = 200 -> 328 clamps to 255; -1600 -> 0
  std::vector<uint16_t> twos(64, 2);
  int16_t dc[64] = {800};
  ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(dc, px, 8, twos.data()), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(px[i], 255);
  dc[0] = -800;
  ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(dc, px, 8, twos.data()), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(px[i], 0);
  dc[0] = 40;  // 80 / 8 = 10
  ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(dc, px, 8, twos.data()), vprStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(px[i], 138);
}

// ------------------------------------------------------------ IEEE 1180-1990

// The random generator of the IEEE 1180 test procedure.
class Ieee1180Rand {
 public:
  int32_t next(int32_t L, int32_t H) {
    randx_ = randx_ * 1103515245u + 12345u;
    const uint32_t i = randx_ & 0x7ffffffeu;
    double x = static_cast<double>(i) / static_cast<double>(0x7fffffff);
    x *= (L + H + 1);
    return static_cast<int32_t>(x) - L;
  }

 private:
  uint32_t randx_ = 1;
};

struct Ieee1180Stats {
  int peak = 0;
  double pmse_max = 0, omse = 0, pme_max = 0, ome = 0;
  bool zero_ok = true;
};

Ieee1180Stats run_ieee1180(int L, int H, int sign, int blocks) {
  Ieee1180Rand rnd;
  std::vector<uint16_t> ones = unit_table();
  double sum_err[64] = {}, sum_sq[64] = {};
  int peak = 0;
  for (int b = 0; b < blocks; ++b) {
    double f[64], F[64], ref[64];
    for (int i = 0; i < 64; ++i) f[i] = sign * rnd.next(L, H);
    fdct_double(f, F);
    int16_t coef[64];
    double Fi[64];
    for (int i = 0; i < 64; ++i) {
      double v = std::floor(F[i] + 0.5);
      v = std::min(2047.0, std::max(-2048.0, v));
      coef[i] = static_cast<int16_t>(v);
      Fi[i] = v;
    }
    idct_double(Fi, ref);
    int16_t out[64];
    vpriDCTQuantInv8x8_JPEG_16s_C1(coef, out, ones.data());
    for (int i = 0; i < 64; ++i) {
      const int r = std::min(255, std::max(-256, static_cast<int>(std::floor(ref[i] + 0.5))));
      const int t = std::min(255, std::max(-256, static_cast<int>(out[i])));
      const int e = t - r;
      peak = std::max(peak, std::abs(e));
      sum_err[i] += e;
      sum_sq[i] += e * e;
    }
  }
  Ieee1180Stats s;
  s.peak = peak;
  for (int i = 0; i < 64; ++i) {
    s.pmse_max = std::max(s.pmse_max, sum_sq[i] / blocks);
    s.pme_max = std::max(s.pme_max, std::fabs(sum_err[i] / blocks));
    s.omse += sum_sq[i];
    s.ome += sum_err[i];
  }
  s.omse /= 64.0 * blocks;
  s.ome = std::fabs(s.ome / (64.0 * blocks));
  int16_t zero[64] = {}, out[64];
  vpriDCTQuantInv8x8_JPEG_16s_C1(zero, out, ones.data());
  for (int i = 0; i < 64; ++i) s.zero_ok = s.zero_ok && out[i] == 0;
  return s;
}

TEST(DctInverse, Ieee1180Accuracy) {
  const int ranges[3][2] = {{256, 255}, {5, 5}, {300, 300}};
  for (const auto& rg : ranges)
    for (int sign : {1, -1}) {
      const Ieee1180Stats s = run_ieee1180(rg[0], rg[1], sign, 10000);
      SCOPED_TRACE(testing::Message() << "L=" << rg[0] << " H=" << rg[1] << " sign " << sign << ": peak " << s.peak
                                      << " pmse " << s.pmse_max << " omse " << s.omse << " pme " << s.pme_max
                                      << " ome " << s.ome);
      std::printf("IEEE 1180 L=%d H=%d sign %+d: peak %d, pmse %.4f, omse %.4f, pme %.4f, ome %.5f\n", rg[0], rg[1],
                  sign, s.peak, s.pmse_max, s.omse, s.pme_max, s.ome);
      EXPECT_LE(s.peak, 1);
      EXPECT_LE(s.pmse_max, 0.06);
      EXPECT_LE(s.omse, 0.02);
      EXPECT_LE(s.pme_max, 0.015);
      EXPECT_LE(s.ome, 0.0015);
      EXPECT_TRUE(s.zero_ok);
    }
}

// Decoder-like sparse blocks (smooth content quantised with the standard
// luminance table at several qualities, most rows all zero): the same
// criteria, except the per-position mean error, which structured content
// makes systematic (0.022 here; 0.034 if zero rows were not skipped).
TEST(DctInverse, SparseBlockAccuracy) {
  vprtest::Rng rng(9);
  std::vector<uint16_t> ones = unit_table();
  double sum_err[64] = {}, sum_sq[64] = {};
  int peak = 0, zero_rows = 0;
  const int blocks = 6000;
  for (int b = 0; b < blocks; ++b) {
    uint8_t raw[64];
    std::memcpy(raw, kLumaZigzag, 64);
    vpriQuantFwdRawTableInit_JPEG_8u(raw, 10 + static_cast<int>(rng.uniform(0, 85)));
    uint16_t inv[64];
    vpriQuantInvTableInit_JPEG_8u16u(raw, inv);
    double f[64], F[64], ref[64];
    const double gx = rng.real(-12, 12), gy = rng.real(-12, 12), base = rng.real(-100, 100);
    for (int i = 0; i < 64; ++i) f[i] = base + gx * (i % 8) + gy * (i / 8) + rng.real(-6, 6);
    fdct_double(f, F);
    int16_t coef[64];
    for (int i = 0; i < 64; ++i) {
      coef[i] = static_cast<int16_t>(std::round(F[i] / inv[i]) * inv[i]);
      F[i] = coef[i];
    }
    for (int r = 1; r < 8; ++r) {
      bool z = true;
      for (int c = 0; c < 8; ++c) z = z && coef[r * 8 + c] == 0;
      zero_rows += z;
    }
    idct_double(F, ref);
    int16_t out[64];
    ASSERT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(coef, out, ones.data()), vprStatusOk);
    for (int i = 0; i < 64; ++i) {
      const int e = out[i] - static_cast<int>(std::floor(ref[i] + 0.5));
      peak = std::max(peak, std::abs(e));
      sum_err[i] += e;
      sum_sq[i] += e * e;
    }
  }
  double omse = 0, ome = 0, pmse = 0, pme = 0;
  for (int i = 0; i < 64; ++i) {
    pmse = std::max(pmse, sum_sq[i] / blocks);
    pme = std::max(pme, std::fabs(sum_err[i] / blocks));
    omse += sum_sq[i] / (64.0 * blocks);
    ome += sum_err[i] / (64.0 * blocks);
  }
  std::printf("sparse blocks (%.1f zero rows of 7): peak %d, pmse %.4f, omse %.4f, pme %.4f, ome %.5f\n",
              zero_rows / double(blocks), peak, pmse, omse, pme, std::fabs(ome));
  EXPECT_GT(zero_rows, blocks * 2);
  EXPECT_LE(peak, 1);
  EXPECT_LE(pmse, 0.06);
  EXPECT_LE(omse, 0.02);
  EXPECT_LE(pme, 0.03);
  EXPECT_LE(std::fabs(ome), 0.0015);
}

// ------------------------------------------------------------ forward accuracy

void fill_pattern(vprtest::Rng& rng, uint8_t* px, int kind) {
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      int v;
      switch (kind) {
        case 0: v = static_cast<int>(rng.uniform(0, 255)); break;
        case 1: v = ((x + y) & 1) ? 255 : 0; break;                     // checkerboard
        case 2: v = (x < 4) != (y < 4) ? 255 : 0; break;                // quadrants
        case 3: v = rng.coin() ? 255 : 0; break;                        // extremes
        default: v = 128 + static_cast<int>(rng.uniform(-20, 20)) + 10 * x - 8 * y; break;  // smooth
      }
      px[y * 8 + x] = static_cast<uint8_t>(std::min(255, std::max(0, v)));
    }
}

TEST(DctForward, WithinOneOfDoublePrecision) {
  vprtest::Rng rng(2024);
  std::vector<uint16_t> unit = unit_fwd_table();
  std::vector<float> unitf(64, 1.0f);
  int worst = 0, worst12 = 0, off12 = 0;
  double sum_err = 0;
  const int blocks = 6000;
  for (int b = 0; b < blocks; ++b) {
    uint8_t px[64];
    fill_pattern(rng, px, b % 5);
    if (b == 0) std::memset(px, 0, 64);
    if (b == 1) std::memset(px, 255, 64);
    double f[64], F[64];
    for (int i = 0; i < 64; ++i) f[i] = px[i] - 128.0;
    fdct_double(f, F);
    int16_t out[64];
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, out, unit.data()), vprStatusOk);
    for (int i = 0; i < 64; ++i) {
      const double e = out[i] - F[i];
      worst = std::max(worst, static_cast<int>(std::fabs(out[i] - std::floor(F[i] + 0.5))));
      sum_err += e;
      ASSERT_LE(std::fabs(e), 1.0) << "block " << b << " coefficient " << i << ": " << out[i] << " vs " << F[i];
    }
    // 12-bit float form on the same block scaled to 12 bits
    uint16_t p12[64];
    for (int i = 0; i < 64; ++i) p12[i] = static_cast<uint16_t>(px[i] * 16 + (b % 16));
    for (int i = 0; i < 64; ++i) f[i] = p12[i] - 2048.0;
    fdct_double(f, F);
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(p12, 16, out, unitf.data()), vprStatusOk);
    for (int i = 0; i < 64; ++i) {
      const double e = std::fabs(out[i] - F[i]);
      const int d12 = static_cast<int>(std::fabs(out[i] - std::floor(F[i] + 0.5)));
      worst12 = std::max(worst12, d12);
      off12 += d12 != 0;
      ASSERT_LE(e, 1.0) << "12-bit block " << b << " coefficient " << i;
    }
  }
  EXPECT_LE(worst, 1);
  // single precision: rounds like the exact value except at near-ties
  EXPECT_LE(worst12, 1);
  EXPECT_LT(off12, blocks * 64 / 1000);
  EXPECT_LT(std::fabs(sum_err / (64.0 * blocks)), 0.02);
}

TEST(DctInverse, TwelveBitWithinOneOfDoublePrecision) {
  vprtest::Rng rng(12);
  std::vector<uint16_t> q(64);
  for (int b = 0; b < 3000; ++b) {
    for (auto& v : q) v = static_cast<uint16_t>(rng.uniform(1, 8));
    int16_t coef[64];
    double F[64], f[64];
    for (int i = 0; i < 64; ++i) {
      coef[i] = static_cast<int16_t>(i == 0 ? rng.uniform(-4000, 4000) : rng.uniform(-400, 400) / (1 + i / 8));
      F[i] = static_cast<double>(coef[i]) * q[i];
    }
    idct_double(F, f);
    uint16_t out[64];
    ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(coef, out, 16, q.data()), vprStatusOk);
    for (int i = 0; i < 64; ++i) {
      const double want = std::min(4095.0, std::max(0.0, f[i] + 2048.0));
      ASSERT_LE(std::fabs(out[i] - want), 0.5 + 1e-3) << b << " " << i;
    }
  }
}

// The quantisation step alone: every 16-bit coefficient against every
// reciprocal the table builder produces (quantisers 0..255), the values
// around 16384 and 32768 and the largest ones, in uniform and mixed tables
// (a table with one reciprocal above 32767 takes the general path).
TEST(DctForward, QuantisationOfEveryCoefficient) {
  std::vector<uint16_t> recips;
  for (int q = 0; q < 256; ++q) {
    uint8_t raw[64];
    std::memset(raw, q, 64);
    uint16_t fwd[64];
    vpriQuantFwdTableInit_JPEG_8u16u(raw, fwd);
    recips.push_back(fwd[0]);
  }
  for (int r : {16383, 16385, 32766, 32767, 32769, 49152, 65534, 65535}) recips.push_back(static_cast<uint16_t>(r));
  vprtest::Rng rng(32768);
  for (size_t k = 0; k < recips.size(); ++k) {
    uint16_t fwd[64];
    for (int i = 0; i < 64; ++i) fwd[i] = recips[k];
    // every third table mixes in other reciprocals of the list
    if (k % 3 == 1)
      for (int i = 0; i < 64; i += 5) fwd[i] = recips[rng.uniform(0, static_cast<int>(recips.size()) - 1)];
    for (int c0 = -32768; c0 < 32768; c0 += 64) {
      int16_t coef[64], a[64], b[64];
      for (int i = 0; i < 64; ++i) coef[i] = static_cast<int16_t>(c0 + i);
      ref::quant_coefs_8x8(coef, a, fwd);
      sse::quant_coefs_8x8(coef, b, fwd);
      ASSERT_TRUE(vprtest::same_array(a, b, 64)) << "r " << recips[k] << " c0 " << c0;
    }
  }
  // hand-computed: ties round away from zero, the largest results saturate
  uint16_t fwd[64];
  int16_t coef[64] = {1, -1, 3, -3, -32768, 32767, -32768, 32767}, out[64];
  for (int i = 0; i < 64; ++i) fwd[i] = i < 4 ? 16384 : i < 6 ? 32768 : 16384;
  sse::quant_coefs_8x8(coef, out, fwd);
  const int16_t want[8] = {1, -1, 2, -2, -32767, 32767, -16384, 16384};
  EXPECT_TRUE(vprtest::same_array(out, want, 8));
}

// Quantisation after the forward transform: c * r / 32768 rounded, halves
// away from zero.
TEST(DctForward, QuantisationRounding) {
  std::vector<uint16_t> q16(64, 2048);  // quantiser 16
  struct Case {
    uint8_t px;
    int16_t dc;
  } cases[] = {{255, 64}, {0, -64}, {129, 1}, {127, -1}, {128, 0}, {130, 1}, {136, 4}};
  // flat 255: DC = 127 * 8 = 1016 -> 63.5 -> 64; flat 129: DC 8 -> 0.5 -> 1; flat 127: -0.5 -> -1
  for (const auto& c : cases) {
    uint8_t px[64];
    std::memset(px, c.px, 64);
    int16_t out[64];
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, out, q16.data()), vprStatusOk);
    EXPECT_EQ(out[0], c.dc) << +c.px;
    for (int i = 1; i < 64; ++i) ASSERT_EQ(out[i], 0) << +c.px << " " << i;
  }
  // reciprocal 32768 leaves the transform as it is: flat blocks give exactly
  // their DC, 8 * (v - 128), and no AC (8-bit and 12-bit forms)
  std::vector<uint16_t> unit = unit_fwd_table();
  std::vector<float> unitf(64, 1.0f);
  for (int v = 0; v < 256; ++v) {
    uint8_t flat[64];
    uint16_t flat12[64];
    std::memset(flat, v, 64);
    for (auto& p : flat12) p = static_cast<uint16_t>(v * 16 + 5);
    int16_t o8[64], o12[64];
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(flat, 8, o8, unit.data()), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(flat12, 16, o12, unitf.data()), vprStatusOk);
    ASSERT_EQ(o8[0], 8 * (v - 128));
    ASSERT_EQ(o12[0], 8 * (v * 16 + 5 - 2048));
    for (int i = 1; i < 64; ++i) {
      ASSERT_EQ(o8[i], 0) << v << " " << i;
      ASSERT_EQ(o12[i], 0) << v << " " << i;
    }
  }
  uint8_t px[64];
  std::memset(px, 200, 64);
  int16_t out[64];
  ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, out, unit.data()), vprStatusOk);
  EXPECT_EQ(out[0], 576);  // 72 * 8
  // 12-bit: flat 4095 -> DC (4095 - 2048) * 8 = 16376; 1/16 -> 1023.5 -> 1024 (ties to even)
  uint16_t p12[64];
  for (auto& v : p12) v = 4095;
  std::vector<float> t16(64, 1.0f / 16.0f);
  ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(p12, 16, out, t16.data()), vprStatusOk);
  EXPECT_EQ(out[0], 1024);
  for (int i = 1; i < 64; ++i) EXPECT_EQ(out[i], 0);
  std::vector<float> big(64, 1000.0f);
  ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(p12, 16, out, big.data()), vprStatusOk);
  EXPECT_EQ(out[0], 32767);  // saturates
}

// ------------------------------------------------------------ round trips

// Quantised round trips stay as close to the source as a double-precision
// codec with the same tables (rounded quotients, rounded and clamped output).
TEST(DctRoundTrip, EightAndTwelveBit) {
  vprtest::Rng rng(77);
  uint16_t fwd[64], inv[64];
  float fwdf[64];
  std::vector<uint16_t> unit = unit_fwd_table(), ones = unit_table();
  for (int quality : {100, 90, 50, 10}) {
    uint8_t raw[64];
    std::memcpy(raw, kLumaZigzag, 64);
    ASSERT_EQ(vpriQuantFwdRawTableInit_JPEG_8u(raw, quality), vprStatusOk);
    ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u16u(raw, fwd), vprStatusOk);
    ASSERT_EQ(vpriQuantInvTableInit_JPEG_8u16u(raw, inv), vprStatusOk);
    ASSERT_EQ(vpriQuantFwdTableInit_JPEG_8u32f(raw, fwdf), vprStatusOk);
    double se = 0, se_ref = 0, se12 = 0, se12_ref = 0;
    for (int b = 0; b < 400; ++b) {
      uint8_t px[64], back[64];
      fill_pattern(rng, px, b % 5);
      int16_t coef[64];
      ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, coef, fwd), vprStatusOk);
      ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(coef, back, 8, inv), vprStatusOk);
      uint16_t p12[64], back12[64];
      for (int i = 0; i < 64; ++i) p12[i] = static_cast<uint16_t>(px[i] * 16 + (b & 15));
      ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(p12, 16, coef, fwdf), vprStatusOk);
      ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(coef, back12, 16, inv), vprStatusOk);
      // double-precision codec
      for (int pass = 0; pass < 2; ++pass) {
        const double shift = pass ? 2048.0 : 128.0, hi = pass ? 4095.0 : 255.0;
        double f[64], F[64], r[64];
        for (int i = 0; i < 64; ++i) f[i] = (pass ? p12[i] : px[i]) - shift;
        fdct_double(f, F);
        for (int i = 0; i < 64; ++i) F[i] = std::round(F[i] / inv[i]) * inv[i];
        idct_double(F, r);
        for (int i = 0; i < 64; ++i) {
          const double v = std::min(hi, std::max(0.0, std::floor(r[i] + shift + 0.5)));
          const double e = v - (pass ? p12[i] : px[i]);
          (pass ? se12_ref : se_ref) += e * e;
        }
      }
      for (int i = 0; i < 64; ++i) {
        const int e = back[i] - px[i];
        se += e * e;
        const double e12 = back12[i] - p12[i];
        se12 += e12 * e12;
      }
    }
    SCOPED_TRACE(testing::Message() << "quality " << quality << ": mse " << se / 25600 << " (double codec "
                                    << se_ref / 25600 << "), 12-bit " << se12 / 25600 << " (" << se12_ref / 25600
                                    << ")");
    EXPECT_LE(se, se_ref * 1.05 + 0.3 * 25600);
    EXPECT_LE(se12, se12_ref * 1.01 + 0.01 * 25600);
  }
  // unit tables: 8-bit round trip within one
  for (int b = 0; b < 500; ++b) {
    uint8_t px[64], back[64];
    fill_pattern(rng, px, b % 5);
    int16_t coef[64];
    ASSERT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, coef, unit.data()), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(coef, back, 8, ones.data()), vprStatusOk);
    for (int i = 0; i < 64; ++i) ASSERT_LE(std::abs(back[i] - px[i]), 1) << b;
  }
}

// ------------------------------------------------------------ scaled inverses

TEST(DctInverse, ScaledToSmallerBlocks) {
  vprtest::Rng rng(3);
  std::vector<uint16_t> ones = unit_table();
  // DC only: DC/8 + 128
  for (int d : {0, 8, -8, 400, -400, 2000, -2000, 3}) {
    int16_t blk[64] = {};
    blk[0] = static_cast<int16_t>(d);
    uint8_t o2[4], o4[16];
    ASSERT_EQ(vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(blk, o2, 2, ones.data()), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(blk, o4, 4, ones.data()), vprStatusOk);
    const int want = std::min(255, std::max(0, static_cast<int>(std::floor(d / 8.0 + 0.5)) + 128));
    for (int i = 0; i < 4; ++i) EXPECT_EQ(o2[i], want) << d;
    for (int i = 0; i < 16; ++i) EXPECT_EQ(o4[i], want) << d;
  }
  // To2x2 by hand: F00 = 80, F01 = 16, F10 = -24, F11 = 8
  int16_t blk[64] = {};
  blk[0] = 80;
  blk[1] = 16;
  blk[8] = -24;
  blk[9] = 8;
  uint8_t o2[2 * 5];
  ASSERT_EQ(vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(blk, o2, 5, ones.data()), vprStatusOk);
  EXPECT_EQ(o2[0], 128 + (80 + 16 - 24 + 8 + 4) / 8);   // 80/8 = 10
  EXPECT_EQ(o2[1], 128 + (80 - 16 - 24 - 8 + 4) / 8);   // 32 -> 4 (+4>>3 = 4)
  EXPECT_EQ(o2[5], 128 + (80 + 16 + 24 - 8 + 4) / 8);   // 112 -> 14
  EXPECT_EQ(o2[6], 128 + (80 - 16 + 24 + 8 + 4) / 8);   // 96 -> 12
  // To4x4 against the double formula and against box averages of the full inverse
  for (int it = 0; it < 500; ++it) {
    int16_t c[64] = {};
    for (int v = 0; v < 4; ++v)
      for (int u = 0; u < 4; ++u) c[v * 8 + u] = static_cast<int16_t>(rng.uniform(-300, 300) / (1 + u + v));
    uint8_t o4[16], full[64];
    ASSERT_EQ(vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(c, o4, 4, ones.data()), vprStatusOk);
    ASSERT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(c, full, 8, ones.data()), vprStatusOk);
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 4; ++j) {
        double s = 0;
        for (int v = 0; v < 4; ++v)
          for (int u = 0; u < 4; ++u)
            s += (v ? 1.0 : std::sqrt(0.5)) * (u ? 1.0 : std::sqrt(0.5)) / 4.0 * c[v * 8 + u] *
                 std::cos((2 * j + 1) * u * M_PI / 8) * std::cos((2 * i + 1) * v * M_PI / 8);
        const double want = std::min(255.0, std::max(0.0, s + 128.0));
        ASSERT_LE(std::fabs(o4[i * 4 + j] - want), 0.5 + 1e-3) << it;
        // the 2x2 group of the full-size output it stands for: same within a few units
        const double avg = (full[(2 * i) * 8 + 2 * j] + full[(2 * i) * 8 + 2 * j + 1] +
                            full[(2 * i + 1) * 8 + 2 * j] + full[(2 * i + 1) * 8 + 2 * j + 1]) / 4.0;
        ASSERT_LE(std::fabs(o4[i * 4 + j] - avg), 12.0) << it;
      }
  }
}

// ------------------------------------------------------------ argument checks

TEST(DctEntries, ArgumentChecksInOrderAndNoWrite) {
  int16_t blk[64] = {};
  uint16_t t16[64];
  float tf[64];
  for (int i = 0; i < 64; ++i) {
    t16[i] = 1;
    tf[i] = 1.0f;
  }
  uint8_t px[64] = {};
  uint16_t px16[64] = {};
  int16_t out[64];
  uint8_t out8[64];
  uint16_t out16[64];
  std::memset(out, 0x3c, sizeof out);
  std::memset(out8, 0x3c, sizeof out8);
  std::memset(out16, 0x3c, sizeof out16);
  const int N = vprStatusNullPointer, S = vprStatusBadStep;

  EXPECT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1(nullptr, out, t16), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1(blk, nullptr, t16), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1(blk, out, nullptr), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1I(nullptr, t16), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8_JPEG_16s_C1I(out, nullptr), N);
  // forward LS: both block pointers, then the step, then the table
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(nullptr, 0, out, t16), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 0, nullptr, t16), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 0, out, nullptr), S);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, -8, out, t16), S);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, out, nullptr), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(nullptr, 0, out, tf), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(px16, 0, nullptr, tf), N);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(px16, 0, out, nullptr), S);
  EXPECT_EQ(vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(px16, 16, out, nullptr), N);

  EXPECT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(nullptr, out, t16), N);
  EXPECT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(blk, nullptr, t16), N);
  EXPECT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1(blk, out, nullptr), N);
  EXPECT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1I(nullptr, t16), N);
  EXPECT_EQ(vpriDCTQuantInv8x8_JPEG_16s_C1I(out, nullptr), N);

  using Inv8 = VprStatus (*)(const Vpr16s*, Vpr8u*, int, const Vpr16u*);
  const Inv8 inv8[] = {vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R,     vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R,
                       vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R,
                       vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R};
  for (const Inv8 f : inv8) {
    EXPECT_EQ(f(nullptr, out8, 0, t16), N);
    EXPECT_EQ(f(blk, nullptr, 0, t16), N);
    EXPECT_EQ(f(blk, out8, 0, nullptr), S);
    EXPECT_EQ(f(blk, out8, -1, t16), S);
    EXPECT_EQ(f(blk, out8, 8, nullptr), N);
  }
  EXPECT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(nullptr, out16, 16, t16), N);
  EXPECT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(blk, nullptr, 0, t16), N);
  EXPECT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(blk, out16, 0, nullptr), S);
  EXPECT_EQ(vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(blk, out16, 16, nullptr), N);
  for (int i = 0; i < 64; ++i) {
    ASSERT_EQ(out[i], 0x3c3c);
    ASSERT_EQ(out8[i], 0x3c);
    ASSERT_EQ(out16[i], 0x3c3c);
  }
}

}  // namespace
