// Reversible 5/3 wavelet: hand-computed cases, an independent textbook
// oracle (mirror-indexed lifting in 64-bit), SSE kernels against the scalar
// twins, forward-then-inverse identity, the four-subband split, the row,
// column and column-lift forms against the whole-line transform, argument
// checks and buffer sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "jpeg2000/wavelet53.h"
#include "vprjp.h"
#include "vprtest.h"

namespace {

using vprtest::Image;
using vprtest::Rng;
namespace ref = vpr::j2k::ref;
namespace sse = vpr::j2k::sse;

// ---------------------------------------------------------------- oracle
// Symmetric (whole-sample) index of position i in a line of n samples.
int mirror(int i, int n) {
  if (n == 1) return 0;
  const int m = 2 * (n - 1);
  i = ((i % m) + m) % m;
  return i >= n ? m - i : i;
}

// Textbook forward lifting of a line starting at phase p: returns the low
// coefficients followed by the high ones.  Sums in 64 bits, every lifted
// value truncated to T (the library's 16-bit storage rule).
template <class T>
std::vector<T> oracle_fwd(const std::vector<T>& x, int p) {
  const int n = static_cast<int>(x.size());
  if (n == 1) return {static_cast<T>(p ? 2 * int64_t{x[0]} : x[0])};
  const int M = 6;
  std::vector<int64_t> y(n + 2 * M);
  auto Y = [&](int i) -> int64_t& { return y[i + M]; };
  for (int i = -M; i < n + M; ++i) Y(i) = x[mirror(i, n)];
  for (int i = -M + 1; i < n + M - 1; ++i)
    if ((i + p) & 1) Y(i) = static_cast<T>(Y(i) - ((Y(i - 1) + Y(i + 1)) >> 1));
  for (int i = -M + 2; i < n + M - 2; ++i)
    if (!((i + p) & 1)) Y(i) = static_cast<T>(Y(i) + ((Y(i - 1) + Y(i + 1) + 2) >> 2));
  std::vector<T> out;
  for (int i = 0; i < n; ++i)
    if (!((i + p) & 1)) out.push_back(static_cast<T>(Y(i)));
  for (int i = 0; i < n; ++i)
    if ((i + p) & 1) out.push_back(static_cast<T>(Y(i)));
  return out;
}

// The interleaved coefficient at absolute line index i (mirror-extended)
// of a line stored lows-first.
template <class T>
T coef_at(const std::vector<T>& c, int i, int p) {
  const int n = static_cast<int>(c.size());
  const int nL = (n + 1 - p) / 2;
  i = mirror(i, n);
  return ((i + p) & 1) ? c[nL + i / 2] : c[i / 2];
}

template <class T>
void oracle_2d(Image<T>& img, int px, int py) {
  const int w = img.width(), h = img.height();
  for (int x = 0; x < w; ++x) {
    std::vector<T> col(h);
    for (int y = 0; y < h; ++y) col[y] = img.get(x, y);
    col = oracle_fwd(col, py);
    for (int y = 0; y < h; ++y) img.set(x, y, col[y]);
  }
  for (int y = 0; y < h; ++y) {
    std::vector<T> row(w);
    for (int x = 0; x < w; ++x) row[x] = img.get(x, y);
    row = oracle_fwd(row, px);
    for (int x = 0; x < w; ++x) img.set(x, y, row[x]);
  }
}

// ---------------------------------------------------------------- typed plumbing
template <class T>
struct WT;
template <>
struct WT<int32_t> {
  static constexpr auto bufC1IR = vpriWTGetBufSize_B53_JPEG2K_32s_C1IR;
  static constexpr auto bufC1R = vpriWTGetBufSize_B53_JPEG2K_32s_C1R;
  static constexpr auto fwd = vpriWTFwd_B53_JPEG2K_32s_C1IR;
  static constexpr auto inv = vpriWTInv_B53_JPEG2K_32s_C1IR;
  static constexpr auto fwdR = vpriWTFwd_B53_JPEG2K_32s_C1R;
  static constexpr auto invR = vpriWTInv_B53_JPEG2K_32s_C1R;
  static constexpr auto fwdRow = vpriWTFwdRow_B53_JPEG2K_32s_C1R;
  static constexpr auto invRow = vpriWTInvRow_B53_JPEG2K_32s_C1R;
  static constexpr auto fwdCol = vpriWTFwdCol_B53_JPEG2K_32s_C1R;
  static constexpr auto invCol = vpriWTInvCol_B53_JPEG2K_32s_C1R;
  static constexpr auto fwdLift = vpriWTFwdColLift_B53_JPEG2K_32s_C1;
  static constexpr auto invLift = vpriWTInvColLift_B53_JPEG2K_32s_C1;
  static constexpr int64_t kSmall = (1 << 24) - 1;  // no 32-bit sum can wrap
};
template <>
struct WT<int16_t> {
  static constexpr auto bufC1IR = vpriWTGetBufSize_B53_JPEG2K_16s_C1IR;
  static constexpr auto bufC1R = vpriWTGetBufSize_B53_JPEG2K_16s_C1R;
  static constexpr auto fwd = vpriWTFwd_B53_JPEG2K_16s_C1IR;
  static constexpr auto inv = vpriWTInv_B53_JPEG2K_16s_C1IR;
  static constexpr auto fwdR = vpriWTFwd_B53_JPEG2K_16s_C1R;
  static constexpr auto invR = vpriWTInv_B53_JPEG2K_16s_C1R;
  static constexpr auto fwdRow = vpriWTFwdRow_B53_JPEG2K_16s_C1R;
  static constexpr auto invRow = vpriWTInvRow_B53_JPEG2K_16s_C1R;
  static constexpr auto fwdCol = vpriWTFwdCol_B53_JPEG2K_16s_C1R;
  static constexpr auto invCol = vpriWTInvCol_B53_JPEG2K_16s_C1R;
  static constexpr auto fwdLift = vpriWTFwdColLift_B53_JPEG2K_16s_C1;
  static constexpr auto invLift = vpriWTInvColLift_B53_JPEG2K_16s_C1;
  static constexpr int64_t kSmall = (1 << 14) - 1;  // 15 significant bits
};

// A work buffer of exactly the reported size, followed by guard bytes.
struct WorkBuf {
  std::vector<Vpr8u> mem;
  int size = 0;
  explicit WorkBuf(int bytes) : mem(static_cast<size_t>(bytes) + 64 + 16, 0xA5), size(bytes) {}
  Vpr8u* data() { return mem.data() + 16; }  // 16-byte offset inside an aligned vector
  bool guards_ok() const {
    for (size_t i = 16 + size; i < mem.size(); ++i)
      if (mem[i] != 0xA5) return false;
    for (size_t i = 0; i < 16; ++i)
      if (mem[i] != 0xA5) return false;
    return true;
  }
};

template <class T>
int c1ir_size(int w, int h) {
  VprRect r{0, 0, w, h};
  int32_t s = -1;
  EXPECT_EQ(WT<T>::bufC1IR(&r, &s), vprStatusOk);
  return s;
}

template <class T>
void fill_small(Image<T>& img, Rng& rng) {
  img.fill_random(rng, -double(WT<T>::kSmall) - 1, double(WT<T>::kSmall));
}

const int kHeights[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 33};

// ---------------------------------------------------------------- hand-computed
TEST(Wavelet53, HandComputedLine) {
  // 10 20 30 40, even start: extension 30 20 | 10 20 30 40 | 30.
  // H(-1) = 0, H1 = 20 - 20 = 0, H3 = 40 - 30 = 10; L0 = 10 + 0, L2 = 30 + 3.
  int32_t line[4] = {10, 20, 30, 40};
  VprRect r{0, 0, 4, 1};
  std::vector<Vpr8u> buf(static_cast<size_t>(c1ir_size<int32_t>(4, 1)));
  ASSERT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(line, 16, &r, buf.data()), vprStatusOk);
  EXPECT_EQ(line[0], 10);
  EXPECT_EQ(line[1], 33);
  EXPECT_EQ(line[2], 0);
  EXPECT_EQ(line[3], 10);
  ASSERT_EQ(vpriWTInv_B53_JPEG2K_32s_C1IR(line, 16, &r, buf.data()), vprStatusOk);
  EXPECT_EQ(line[0], 10);
  EXPECT_EQ(line[3], 40);
}

TEST(Wavelet53, SingleSampleAndPairs) {
  Vpr8u dummy[4] = {};
  for (int px = 0; px < 2; ++px)
    for (int py = 0; py < 2; ++py) {
      int16_t v = -7;
      VprRect r{px, 2 + py, 1, 1};
      ASSERT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1IR(&v, 2, &r, dummy), vprStatusOk);
      EXPECT_EQ(v, -7 * (1 + px) * (1 + py));
      ASSERT_EQ(vpriWTInv_B53_JPEG2K_16s_C1IR(&v, 2, &r, dummy), vprStatusOk);
      EXPECT_EQ(v, -7);
    }
  // w = 2, odd phase: H = x0 - x1, L = x1 + ((H + 1) >> 1), low first.
  int32_t p[2] = {5, 9};
  VprRect r{1, 0, 2, 1};
  ASSERT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(p, 8, &r, dummy), vprStatusOk);
  EXPECT_EQ(p[0], 9 + ((-4 + 1) >> 1));
  EXPECT_EQ(p[1], -4);
  ASSERT_EQ(vpriWTInv_B53_JPEG2K_32s_C1IR(p, 8, &r, dummy), vprStatusOk);
  EXPECT_EQ(p[0], 5);
  EXPECT_EQ(p[1], 9);
  // h = 2, even phase, one column: H = o - e, L = e + ((H + 1) >> 1).
  int32_t c[2] = {-3, 8};
  VprRect rc{0, 0, 1, 2};
  ASSERT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(c, 4, &rc, dummy), vprStatusOk);
  EXPECT_EQ(c[0], -3 + 6);
  EXPECT_EQ(c[1], 11);
}

// ---------------------------------------------------------------- oracle and twins
template <class T>
bool lossless_shape(int w, int h, int px, int py, bool full_range) {
  if (sizeof(T) == 4 && !full_range) return true;
  return !(w == 1 && px) && !(h == 1 && py);
}

template <class T>
void check_against_oracle_and_ref(Rng& rng, int w, int h, int px, int py, bool full_range) {
  SCOPED_TRACE(testing::Message() << w << "x" << h << " phase " << px << py);
  Image<T> src(w, h, 8, 3);
  if (full_range)
    src.fill_random(rng);
  else
    fill_small(src, rng);
  Image<T> a = src, b = src;
  const int bytes = c1ir_size<T>(w, h);
  WorkBuf wa(bytes), wb(bytes);
  VprRect r{px, 2 + py, w, h};
  ASSERT_EQ(WT<T>::fwd(b.data(), b.step(), &r, wb.data()), vprStatusOk);
  std::vector<T> rbuf(std::max(w, h) + 4);
  ref::wt_fwd_c1ir(a.data(), a.step(), w, h, px, py, rbuf.data());
  ASSERT_TRUE(vprtest::same_region(a, b));
  ASSERT_TRUE(vprtest::guards_ok(b));
  ASSERT_TRUE(wb.guards_ok());
  if (!full_range || sizeof(T) == 2) {  // the oracle sums in 64 bits
    Image<T> o = src;
    oracle_2d(o, px, py);
    ASSERT_TRUE(vprtest::same_region(o, b));
  }
  // Inverse: twins agree on the coefficients, and the pair is lossless.
  Image<T> ia = b;
  ASSERT_EQ(WT<T>::inv(b.data(), b.step(), &r, wb.data()), vprStatusOk);
  ref::wt_inv_c1ir(ia.data(), ia.step(), w, h, px, py, rbuf.data());
  ASSERT_TRUE(vprtest::same_region(ia, b));
  ASSERT_TRUE(vprtest::guards_ok(b));
  ASSERT_TRUE(wb.guards_ok());
  // Length-1 odd-phase lines double their coefficients, which can wrap
  // unless the samples are small 32s ones; every other shape is lossless
  // for any input (each lifting step is undone modulo the sample range).
  if (lossless_shape<T>(w, h, px, py, full_range)) {
    ASSERT_TRUE(vprtest::same_region(src, b));
  }
}

template <class T>
void all_shapes(bool full_range) {
  Rng rng(full_range ? 11 : 12);
  for (int w = 1; w <= 40; ++w)
    for (int h : kHeights)
      for (int ph = 0; ph < 4; ++ph) {
        check_against_oracle_and_ref<T>(rng, w, h, ph & 1, ph >> 1, full_range);
        check_against_oracle_and_ref<T>(rng, h, w, ph & 1, ph >> 1, full_range);
        if (testing::Test::HasFatalFailure()) return;
      }
  for (auto [w, h] : {std::pair{257, 131}, {1031, 3}, {3, 517}, {640, 41}})
    for (int ph = 0; ph < 4; ++ph) check_against_oracle_and_ref<T>(rng, w, h, ph & 1, ph >> 1, full_range);
}

TEST(Wavelet53, InPlace32sEveryShapeSmallRange) { all_shapes<int32_t>(false); }
TEST(Wavelet53, InPlace16sEveryShape15Bit) { all_shapes<int16_t>(false); }
TEST(Wavelet53, InPlace32sFullRangeTwins) { all_shapes<int32_t>(true); }
TEST(Wavelet53, InPlace16sFullRangeTwins) { all_shapes<int16_t>(true); }

// Full-amplitude 15-bit patterns push the 16-bit update sums past 16 bits;
// the 16-bit lanes must still equal the 32-bit-sum formulas, and a 1-D
// 16s transform of such data equals the 32s one (nothing wraps).
TEST(Wavelet53, FullAmplitude16s) {
  const int16_t hi = 16383, lo = -16384;
  for (int n : {3, 4, 5, 8, 9, 15, 16, 17, 31, 32, 33, 64, 65, 255, 256, 257})
    for (int pattern = 0; pattern < 4; ++pattern)
      for (int ph = 0; ph < 4; ++ph) {
        const int px = ph & 1, py = ph >> 1;
        SCOPED_TRACE(testing::Message() << "n " << n << " pattern " << pattern << " phase " << px << py);
        auto val = [&](int x, int y) -> int16_t {
          switch (pattern) {
            case 0: return ((x + y) & 1) ? hi : lo;
            case 1: return (x & 1) ? lo : hi;
            case 2: return ((x / 2 + y) & 1) ? hi : lo;
            default: return ((x * 7 + y * 3) % 5 < 2) ? hi : lo;
          }
        };
        Image<int16_t> a(n, 5), b(n, 5);
        a.fill_with(val);
        b.fill_with(val);
        VprRect r{px, py, n, 5};
        WorkBuf wb(c1ir_size<int16_t>(n, 5));
        std::vector<int16_t> rb(n + 9);
        ASSERT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1IR(b.data(), b.step(), &r, wb.data()), vprStatusOk);
        ref::wt_fwd_c1ir(a.data(), a.step(), n, 5, px, py, rb.data());
        ASSERT_TRUE(vprtest::same_region(a, b));
        // 1-D: one row, 16s equals 32s.
        Image<int16_t> r16(n, 1);
        Image<int32_t> r32(n, 1);
        r16.fill_with(val);
        r32.fill_with(val);
        VprRect r1{px, 0, n, 1};
        WorkBuf w16(c1ir_size<int16_t>(n, 1)), w32(c1ir_size<int32_t>(n, 1));
        ASSERT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1IR(r16.data(), r16.step(), &r1, w16.data()), vprStatusOk);
        ASSERT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(r32.data(), r32.step(), &r1, w32.data()), vprStatusOk);
        for (int x = 0; x < n; ++x) ASSERT_EQ(int32_t{r16.get(x, 0)}, r32.get(x, 0)) << "x " << x;
        ASSERT_EQ(vpriWTInv_B53_JPEG2K_16s_C1IR(r16.data(), r16.step(), &r1, w16.data()), vprStatusOk);
        for (int x = 0; x < n; ++x) ASSERT_EQ(r16.get(x, 0), val(x, 0));
      }
}

// The line helpers keep their layout: extension counts and lows-first order.
TEST(Wavelet53, LineHelpers) {
  const int32_t x[5] = {1, 2, 3, 4, 5};
  int32_t buf[9];
  std::fill(buf, buf + 9, -99);
  ownpj_ReadExt_Row_32s(x, 5, 0, buf);  // L = 2, R = 2
  const int32_t e0[9] = {3, 2, 1, 2, 3, 4, 5, 4, 3};
  EXPECT_TRUE(vprtest::same_array(buf, e0, 9));
  std::fill(buf, buf + 9, -99);
  ownpj_ReadExt_Row_32s(x, 5, 1, buf);  // L = 1, R = 1
  const int32_t e1[9] = {-99, 2, 1, 2, 3, 4, 5, 4, -99};
  EXPECT_TRUE(vprtest::same_array(buf, e1, 9));
  int32_t out[5];
  ownpj_WriteInterleave_Row_32s(e0, 5, 1, out);  // odd start: entries 1,3 low
  const int32_t w1[5] = {2, 4, 1, 3, 5};
  EXPECT_TRUE(vprtest::same_array(out, w1, 5));
  ownpj_ReadInterleaveExt_Row_32s(w1, 5, 1, buf);
  EXPECT_TRUE(vprtest::same_array(buf + 2, x, 5));
  EXPECT_EQ(buf[0], 3);
  EXPECT_EQ(buf[1], 2);
  EXPECT_EQ(buf[7], 4);
  EXPECT_EQ(buf[8], 3);
  int16_t c16[3 * 4];  // a column with a 4-sample step
  for (int i = 0; i < 12; ++i) c16[i] = static_cast<int16_t>(i);
  int16_t b16[7];
  ownpj_ReadExt_Col_16s(c16, 8, 3, 0, b16);
  EXPECT_EQ(b16[2], 0);
  EXPECT_EQ(b16[3], 4);
  EXPECT_EQ(b16[4], 8);
  EXPECT_EQ(b16[0], 8);
  EXPECT_EQ(b16[5], 4);
  ownpj_Write_Col_16s(b16, 3, c16 + 1, 8);
  EXPECT_EQ(c16[5], 4);
  EXPECT_EQ(c16[9], 8);
}

// ---------------------------------------------------------------- four subbands
template <class T>
void c1r_case(Rng& rng, int w, int h, int px, int py) {
  SCOPED_TRACE(testing::Message() << w << "x" << h << " phase " << px << py);
  Image<T> src(w, h, 4, 1);
  fill_small(src, rng);
  VprRect r{px, py, w, h};
  int32_t size = 0;
  ASSERT_EQ(WT<T>::bufC1R(&r, &size), vprStatusOk);
  WorkBuf wb(size);
  const int wl = (w + 1) / 2, wh = w / 2, hl = (h + 1) / 2, hh = h / 2;
  const int qw[4] = {wl, wl, wh, wh}, qh[4] = {hl, hh, hl, hh}, qx[4] = {0, 0, wl, wl}, qy[4] = {0, hl, 0, hl};
  std::vector<Image<T>> q;
  for (int i = 0; i < 4; ++i) q.emplace_back(std::max(qw[i], 1), std::max(qh[i], 1), 2 * i, i);
  std::vector<Image<T>> q0 = q;
  T* pd[4];
  int32_t sd[4];
  for (int i = 0; i < 4; ++i) {
    pd[i] = q[i].data();
    sd[i] = q[i].step();
  }
  ASSERT_EQ(WT<T>::fwdR(src.data(), src.step(), &r, pd, sd, wb.data()), vprStatusOk);
  ASSERT_TRUE(wb.guards_ok());
  Image<T> inplace = src;
  WorkBuf wi(c1ir_size<T>(w, h));
  ASSERT_EQ(WT<T>::fwd(inplace.data(), inplace.step(), &r, wi.data()), vprStatusOk);
  for (int i = 0; i < 4; ++i) {
    if (qw[i] == 0 || qh[i] == 0) {
      ASSERT_TRUE(vprtest::same_region(q[i], q0[i]));  // empty band: untouched
      continue;
    }
    for (int y = 0; y < qh[i]; ++y)
      for (int x = 0; x < qw[i]; ++x) ASSERT_EQ(q[i].get(x, y), inplace.get(qx[i] + x, qy[i] + y)) << "band " << i;
    ASSERT_TRUE(vprtest::guards_ok(q[i]));
  }
  Image<T> back(w, h, 12, 2);
  const T* ps[4] = {q[0].data(), q[1].data(), q[2].data(), q[3].data()};
  ASSERT_EQ(WT<T>::invR(ps, sd, back.data(), back.step(), &r, wb.data()), vprStatusOk);
  if (lossless_shape<T>(w, h, px, py, false)) {
    ASSERT_TRUE(vprtest::same_region(src, back));
  }
  ASSERT_TRUE(vprtest::guards_ok(back));
  ASSERT_TRUE(wb.guards_ok());
}

TEST(Wavelet53, FourSubbands) {
  Rng rng(21);
  for (int w : {1, 2, 3, 4, 5, 8, 13, 16, 31, 40})
    for (int h : {1, 2, 3, 6, 7, 17})
      for (int ph = 0; ph < 4; ++ph) {
        c1r_case<int32_t>(rng, w, h, ph & 1, ph >> 1);
        c1r_case<int16_t>(rng, w, h, ph & 1, ph >> 1);
        if (HasFatalFailure()) return;
      }
  c1r_case<int16_t>(rng, 301, 77, 0, 0);
  c1r_case<int32_t>(rng, 77, 301, 1, 1);
}

// ---------------------------------------------------------------- row / column forms
// Lines of 2w samples at phase p with mirror extension around them, their
// whole-line coefficients and the coefficient bands with extension.
template <class T>
struct LineCase {
  std::vector<T> x;       // 2w samples
  std::vector<T> coef;    // lows then highs (w each)
  std::vector<T> ext;     // x with 4 samples of extension on each side
  std::vector<T> lo, hi;  // bands with 2 samples of extension on each side
  LineCase(Rng& rng, int w, int p, bool full) {
    const int n = 2 * w;
    for (int i = 0; i < n; ++i)
      x.push_back(full ? rng.any<T>() : static_cast<T>(rng.uniform(-WT<T>::kSmall - 1, WT<T>::kSmall)));
    coef = oracle_fwd(x, p);
    for (int i = -4; i < n + 4; ++i) ext.push_back(x[mirror(i, n)]);
    for (int k = -2; k < w + 2; ++k) {
      lo.push_back(coef_at(coef, 2 * k + p, p));
      hi.push_back(coef_at(coef, 2 * k + 1 - p, p));
    }
  }
};

template <class T>
void row_forms(int w, int p) {
  SCOPED_TRACE(testing::Message() << "w " << w << " phase " << p);
  Rng rng(100 + w * 2 + p);
  const int rows = 3;
  std::vector<LineCase<T>> lines;
  for (int y = 0; y < rows; ++y) lines.emplace_back(rng, w, p, false);
  const int es = 2 * w + 8;
  std::vector<T> src(static_cast<size_t>(es) * rows), lo(static_cast<size_t>(w + 4) * rows),
      hi(static_cast<size_t>(w + 4) * rows);
  for (int y = 0; y < rows; ++y) {
    std::copy(lines[y].ext.begin(), lines[y].ext.end(), src.begin() + y * es);
    std::copy(lines[y].lo.begin(), lines[y].lo.end(), lo.begin() + y * (w + 4));
    std::copy(lines[y].hi.begin(), lines[y].hi.end(), hi.begin() + y * (w + 4));
  }
  const int bs = static_cast<int>(sizeof(T)) * (w + 4);
  // Forward row form, SSE and scalar twin, against the whole-line result.
  Image<T> dl(w, rows, 4, 1), dh(w, rows, 8, 2), rl = dl, rh = dh;
  ASSERT_EQ(WT<T>::fwdRow(src.data() + 4, es * sizeof(T), dl.data(), dl.step(), dh.data(), dh.step(), {w, rows}, p),
            vprStatusOk);
  ref::wt_fwd_row(src.data() + 4, es * sizeof(T), rl.data(), rl.step(), rh.data(), rh.step(), w, rows, p);
  ASSERT_TRUE(vprtest::same_region(dl, rl));
  ASSERT_TRUE(vprtest::same_region(dh, rh));
  ASSERT_TRUE(vprtest::guards_ok(dl));
  ASSERT_TRUE(vprtest::guards_ok(dh));
  for (int y = 0; y < rows; ++y)
    for (int k = 0; k < w; ++k) {
      ASSERT_EQ(dl.get(k, y), lines[y].coef[k]);
      ASSERT_EQ(dh.get(k, y), lines[y].coef[w + k]);
    }
  // Inverse row form from the extended bands.
  Image<T> out(2 * w, rows, 4, 3), rout = out;
  ASSERT_EQ(WT<T>::invRow(lo.data() + 2, bs, hi.data() + 2, bs, {w, rows}, out.data(), out.step(), p), vprStatusOk);
  ref::wt_inv_row(lo.data() + 2, bs, hi.data() + 2, bs, rout.data(), rout.step(), w, rows, p);
  ASSERT_TRUE(vprtest::same_region(out, rout));
  ASSERT_TRUE(vprtest::guards_ok(out));
  for (int y = 0; y < rows; ++y)
    for (int i = 0; i < 2 * w; ++i) ASSERT_EQ(out.get(i, y), lines[y].x[i]);
}

template <class T>
void col_forms(int h, int p, int cols) {
  SCOPED_TRACE(testing::Message() << "h " << h << " phase " << p << " cols " << cols);
  Rng rng(200 + h * 2 + p);
  std::vector<LineCase<T>> lines;
  for (int c = 0; c < cols; ++c) lines.emplace_back(rng, h, p, false);
  // Source columns with 4 extension rows above and below.
  Image<T> src(cols, 2 * h + 8, 6, 1), lo(cols, h + 4, 2, 0), hi(cols, h + 4, 0, 3);
  for (int c = 0; c < cols; ++c) {
    for (int i = 0; i < 2 * h + 8; ++i) src.set(c, i, lines[c].ext[i]);
    for (int k = 0; k < h + 4; ++k) {
      lo.set(c, k, lines[c].lo[k]);
      hi.set(c, k, lines[c].hi[k]);
    }
  }
  Image<T> dl(cols, h, 4, 1), dh(cols, h, 8, 2), rl = dl, rh = dh;
  ASSERT_EQ(WT<T>::fwdCol(src.row(4), src.step(), dl.data(), dl.step(), dh.data(), dh.step(), {cols, h}, p),
            vprStatusOk);
  ref::wt_fwd_col(src.row(4), src.step(), rl.data(), rl.step(), rh.data(), rh.step(), cols, h, p);
  ASSERT_TRUE(vprtest::same_region(dl, rl));
  ASSERT_TRUE(vprtest::same_region(dh, rh));
  ASSERT_TRUE(vprtest::guards_ok(dl));
  ASSERT_TRUE(vprtest::guards_ok(dh));
  for (int c = 0; c < cols; ++c)
    for (int k = 0; k < h; ++k) {
      ASSERT_EQ(dl.get(c, k), lines[c].coef[k]);
      ASSERT_EQ(dh.get(c, k), lines[c].coef[h + k]);
    }
  Image<T> out(cols, 2 * h, 4, 3), rout = out;
  ASSERT_EQ(WT<T>::invCol(lo.row(2), lo.step(), hi.row(2), hi.step(), {cols, h}, out.data(), out.step(), p),
            vprStatusOk);
  ref::wt_inv_col(lo.row(2), lo.step(), hi.row(2), hi.step(), rout.data(), rout.step(), cols, h, p);
  ASSERT_TRUE(vprtest::same_region(out, rout));
  ASSERT_TRUE(vprtest::guards_ok(out));
  for (int c = 0; c < cols; ++c)
    for (int i = 0; i < 2 * h; ++i) ASSERT_EQ(out.get(c, i), lines[c].x[i]);
}

TEST(Wavelet53, RowFormsEqualWholeLine) {
  for (int w = 1; w <= 40; ++w)
    for (int p = 0; p < 2; ++p) {
      row_forms<int32_t>(w, p);
      row_forms<int16_t>(w, p);
      if (HasFatalFailure()) return;
    }
  row_forms<int16_t>(517, 1);
  row_forms<int32_t>(1000, 0);
}

TEST(Wavelet53, ColFormsEqualWholeLine) {
  for (int h = 1; h <= 24; ++h)
    for (int p = 0; p < 2; ++p) {
      col_forms<int32_t>(h, p, 1 + h % 11);
      col_forms<int16_t>(h, p, 1 + (h * 5) % 19);
      if (HasFatalFailure()) return;
    }
  col_forms<int16_t>(40, 1, 37);
  col_forms<int32_t>(67, 0, 9);
}

// Random data everywhere (also in the extension samples): twins agree.
template <class T>
void row_col_twins_random() {
  Rng rng(300);
  for (int iter = 0; iter < 120; ++iter) {
    const int w = static_cast<int>(rng.uniform(1, 45)), h = static_cast<int>(rng.uniform(1, 5));
    const int p = static_cast<int>(rng.uniform(0, 1)) * static_cast<int>(rng.uniform(1, 3));
    SCOPED_TRACE(testing::Message() << w << "x" << h << " phase " << p);
    Image<T> src(2 * w + 8, 2 * h + 8, 4, 1);
    src.fill_random(rng);
    Image<T> a(w, h, 2, 0), b(w, h, 6, 1), c = a, d = b;
    ASSERT_EQ(WT<T>::fwdRow(src.row(1) + 4, src.step(), a.data(), a.step(), b.data(), b.step(), {w, h}, p),
              vprStatusOk);
    ref::wt_fwd_row(src.row(1) + 4, src.step(), c.data(), c.step(), d.data(), d.step(), w, h, p != 0);
    ASSERT_TRUE(vprtest::same_region(a, c));
    ASSERT_TRUE(vprtest::same_region(b, d));
    ASSERT_EQ(WT<T>::fwdCol(src.row(4) + 1, src.step(), a.data(), a.step(), b.data(), b.step(), {w, h}, p),
              vprStatusOk);
    ref::wt_fwd_col(src.row(4) + 1, src.step(), c.data(), c.step(), d.data(), d.step(), w, h, p != 0);
    ASSERT_TRUE(vprtest::same_region(a, c));
    ASSERT_TRUE(vprtest::same_region(b, d));
    Image<T> o1(2 * w, 2 * h, 3, 2), o2 = o1;
    ASSERT_EQ(WT<T>::invRow(src.row(1) + 2, src.step(), src.row(2) + 2, src.step(), {w, h}, o1.data(), o1.step(), p),
              vprStatusOk);
    ref::wt_inv_row(src.row(1) + 2, src.step(), src.row(2) + 2, src.step(), o2.data(), o2.step(), w, h, p != 0);
    ASSERT_TRUE(vprtest::same_region(o1, o2));
    ASSERT_EQ(WT<T>::invCol(src.row(2) + 1, src.step(), src.row(3) + 5, src.step(), {w, h}, o1.data(), o1.step(), p),
              vprStatusOk);
    ref::wt_inv_col(src.row(2) + 1, src.step(), src.row(3) + 5, src.step(), o2.data(), o2.step(), w, h, p != 0);
    ASSERT_TRUE(vprtest::same_region(o1, o2));
    ASSERT_TRUE(vprtest::guards_ok(o1));
    ASSERT_TRUE(vprtest::guards_ok(a));
    ASSERT_TRUE(vprtest::guards_ok(b));
  }
}
TEST(Wavelet53, RowColTwinsRandom32s) { row_col_twins_random<int32_t>(); }
TEST(Wavelet53, RowColTwinsRandom16s) { row_col_twins_random<int16_t>(); }

// A destination band that overlaps the source rows (bands written back into
// the image they came from) gives the same result as separate memory.
template <class T>
void col_overlap(int h, int p, int cols) {
  SCOPED_TRACE(testing::Message() << "h " << h << " phase " << p);
  Rng rng(400 + h);
  Image<T> img(cols, 2 * h + 8, 4, 0);
  fill_small(img, rng);
  Image<T> l(cols, h), hh(cols, h);
  const T* src = img.row(4);
  ASSERT_EQ(WT<T>::fwdCol(src, img.step(), l.data(), l.step(), hh.data(), hh.step(), {cols, h}, p), vprStatusOk);
  Image<T> same = img;
  ASSERT_EQ(WT<T>::fwdCol(same.row(4), same.step(), same.row(4), same.step(), same.row(4 + h), same.step(), {cols, h},
                          p),
            vprStatusOk);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < cols; ++x) {
      ASSERT_EQ(same.get(x, 4 + y), l.get(x, y));
      ASSERT_EQ(same.get(x, 4 + h + y), hh.get(x, y));
    }
  // Inverse written over its own band rows.
  Image<T> bands(cols, 2 * h + 8, 0, 1);
  fill_small(bands, rng);
  Image<T> out(cols, 2 * h);
  ASSERT_EQ(WT<T>::invCol(bands.row(2), bands.step(), bands.row(h + 5), bands.step(), {cols, h}, out.data(), out.step(),
                          p),
            vprStatusOk);
  ASSERT_EQ(WT<T>::invCol(bands.row(2), bands.step(), bands.row(h + 5), bands.step(), {cols, h}, bands.row(2),
                          bands.step(), p),
            vprStatusOk);
  for (int y = 0; y < 2 * h; ++y)
    for (int x = 0; x < cols; ++x) ASSERT_EQ(bands.get(x, 2 + y), out.get(x, y));
}
TEST(Wavelet53, ColOverlappingDestinations) {
  for (int p = 0; p < 2; ++p) {
    col_overlap<int32_t>(9, p, 13);
    col_overlap<int16_t>(16, p, 700);  // several strips
    col_overlap<int32_t>(1000, p, 40);
  }
  // Too tall for the strip path: refused, nothing written.
  Image<int32_t> img(2, 2 * 9000 + 4);
  img.fill(5);
  Image<int32_t> before = img;
  EXPECT_EQ(vpriWTFwdCol_B53_JPEG2K_32s_C1R(img.row(2), img.step(), img.row(2), img.step(), img.row(9002), img.step(),
                                            {2, 9000}, 0),
            vprStatusBadSize);
  EXPECT_TRUE(vprtest::same_region(img, before));
}

// Column-lifting steps: twins, and streaming them down a column reproduces
// the column form.
template <class T>
void col_lift() {
  Rng rng(500);
  for (int w : {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 100, 257}) {
    SCOPED_TRACE(w);
    Image<T> in(w, 4, 4, 1);
    in.fill_random(rng);
    Image<T> a(w, 2, 2, 3), b = a;
    ASSERT_EQ(WT<T>::fwdLift(in.row(0), in.row(1), in.row(2), a.row(0), in.row(3), a.row(1), w), vprStatusOk);
    ref::wt_fwd_col_lift(in.row(0), in.row(1), in.row(2), b.row(0), in.row(3), b.row(1), w);
    ASSERT_TRUE(vprtest::same_region(a, b));
    ASSERT_TRUE(vprtest::guards_ok(a));
    ASSERT_EQ(WT<T>::invLift(in.row(0), in.row(1), in.row(2), in.row(3), a.row(0), a.row(1), w), vprStatusOk);
    ref::wt_inv_col_lift(in.row(0), in.row(1), in.row(2), in.row(3), b.row(0), b.row(1), w);
    ASSERT_TRUE(vprtest::same_region(a, b));
    // Hand check of the first sample.
    const int32_t s0 = in.get(0, 0), s1 = in.get(0, 1), s2 = in.get(0, 2), s3 = in.get(0, 3);
    const T e = static_cast<T>(s0 - ((int64_t{s1} + s2 + 2) >> 2));
    if (sizeof(T) == 2) {  // 64-bit sums equal the 16-bit forms' sums
      EXPECT_EQ(a.get(0, 1), e);
      EXPECT_EQ(a.get(0, 0), static_cast<T>(s1 + ((int32_t{e} + s3) >> 1)));
    }
  }
  // Streaming: the caller keeps the last high row.
  const int w = 13, h = 9;
  Image<T> src(w, 2 * h + 3);
  fill_small(src, rng);
  Image<T> l(w, h), hh(w, h), sl(w, h), sh(w, h);
  ASSERT_EQ(WT<T>::fwdCol(src.row(2), src.step(), l.data(), l.step(), hh.data(), hh.step(), {w, h}, 0), vprStatusOk);
  std::vector<T> hprev(w);
  for (int x = 0; x < w; ++x)  // high row -1 from the extension rows
    hprev[x] = static_cast<T>(src.get(x, 1) - ((int32_t{src.get(x, 0)} + src.get(x, 2)) >> 1));
  for (int n = 0; n < h; ++n) {
    ASSERT_EQ(WT<T>::fwdLift(src.row(2 + 2 * n), src.row(3 + 2 * n), src.row(4 + 2 * n), sl.row(n), hprev.data(),
                             sh.row(n), w),
              vprStatusOk);
    for (int x = 0; x < w; ++x) hprev[x] = sh.get(x, n);
  }
  ASSERT_TRUE(vprtest::same_region(l, sl));
  ASSERT_TRUE(vprtest::same_region(hh, sh));
}
TEST(Wavelet53, ColLift32s) { col_lift<int32_t>(); }
TEST(Wavelet53, ColLift16s) { col_lift<int16_t>(); }

// ---------------------------------------------------------------- sizes and checks
TEST(Wavelet53, BufferSizes) {
  struct C {
    int w, h, s32, s16;
  };
  for (C c : {C{1, 1, 0, 0}, C{2, 2, 0, 0}, C{2, 1, 0, 0}, C{3, 1, 28, 14}, C{1, 3, 28, 14}, C{100, 7, 416, 208},
              C{7, 100, 416, 208}}) {
    VprRect r{5, 6, c.w, c.h};
    int32_t s = -1;
    ASSERT_EQ(vpriWTGetBufSize_B53_JPEG2K_32s_C1IR(&r, &s), vprStatusOk);
    EXPECT_EQ(s, c.s32);
    ASSERT_EQ(vpriWTGetBufSize_B53_JPEG2K_16s_C1IR(&r, &s), vprStatusOk);
    EXPECT_EQ(s, c.s16);
    ASSERT_EQ(vpriWTGetBufSize_B53_JPEG2K_32s_C1R(&r, &s), vprStatusOk);
    EXPECT_EQ(s, ((4 * c.w + 31) / 32 * 32) * c.h + c.s32);
    ASSERT_EQ(vpriWTGetBufSize_B53_JPEG2K_16s_C1R(&r, &s), vprStatusOk);
    EXPECT_EQ(s, ((2 * c.w + 31) / 32 * 32) * c.h + c.s16);
  }
  VprRect r{0, 0, 3, 3};
  int32_t s = 77;
  EXPECT_EQ(vpriWTGetBufSize_B53_JPEG2K_32s_C1IR(nullptr, &s), vprStatusNullPointer);
  EXPECT_EQ(vpriWTGetBufSize_B53_JPEG2K_16s_C1R(&r, nullptr), vprStatusNullPointer);
  EXPECT_EQ(s, 77);
  VprRect neg{0, 0, -4, 0};  // sizes are not validated
  EXPECT_EQ(vpriWTGetBufSize_B53_JPEG2K_16s_C1IR(&neg, &s), vprStatusOk);
  EXPECT_EQ(s, 0);
}

TEST(Wavelet53, InPlaceChecks) {
  int32_t v[16];
  for (int i = 0; i < 16; ++i) v[i] = i;
  Vpr8u buf[64];
  VprRect r{0, 0, 4, 4};
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(nullptr, 0, nullptr, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(v, 0, nullptr, nullptr), vprStatusBadStep);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_32s_C1IR(v, 16, nullptr, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_32s_C1IR(v, 16, &r, nullptr), vprStatusNullPointer);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(v[i], i);
  VprRect empty{0, 0, 0, 4};  // not checked: nothing happens
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_32s_C1IR(v, 16, &empty, buf), vprStatusOk);
  VprRect negh{0, 0, 4, -1};
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_32s_C1IR(v, 16, &negh, buf), vprStatusOk);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(v[i], i);
}

TEST(Wavelet53, FourSubbandChecks) {
  int16_t s[16] = {}, d0[4], d1[4], d2[4], d3[4];
  int16_t* pd[4] = {d0, d1, d2, d3};
  int32_t st[4] = {4, 4, 4, 4};
  Vpr8u buf[512];
  VprRect r{0, 0, 4, 4};
  for (int16_t* d : pd) std::fill(d, d + 4, int16_t{-1});
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(nullptr, 0, &r, pd, st, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &r, nullptr, st, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &r, pd, st, nullptr), vprStatusNullPointer);
  // srcStep is checked before the four band pointers.
  int16_t* pn[4] = {d0, nullptr, d2, d3};
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 0, &r, pn, st, buf), vprStatusBadStep);
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &r, pn, st, buf), vprStatusNullPointer);
  // All four band pointers before any band step.
  int32_t sb[4] = {4, 0, 4, 4};
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &r, pn, sb, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &r, pd, sb, buf), vprStatusBadStep);
  VprRect z{0, 0, 4, 0};
  EXPECT_EQ(vpriWTFwd_B53_JPEG2K_16s_C1R(s, 8, &z, pd, st, buf), vprStatusBadSize);
  for (int16_t* d : pd)
    for (int i = 0; i < 4; ++i) EXPECT_EQ(d[i], -1);
  // Inverse, mirrored roles.
  const int16_t* ps[4] = {d0, d1, d2, d3};
  const int16_t* psn[4] = {d0, d1, nullptr, d3};
  int16_t out[16];
  std::fill(out, out + 16, int16_t{9});
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(nullptr, st, out, 8, &r, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(ps, nullptr, out, 8, &r, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(psn, st, out, 0, &r, buf), vprStatusBadStep);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(psn, sb, out, 8, &r, buf), vprStatusNullPointer);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(ps, sb, out, 8, &r, buf), vprStatusBadStep);
  EXPECT_EQ(vpriWTInv_B53_JPEG2K_16s_C1R(ps, st, out, 8, &z, buf), vprStatusBadSize);
  for (int16_t o : out) EXPECT_EQ(o, 9);
}

TEST(Wavelet53, RowColChecks) {
  int32_t s[64] = {}, lo[8], hi[8];
  std::fill(lo, lo + 8, 3);
  std::fill(hi, hi + 8, 3);
  const VprRoiSize roi{2, 1};
  for (auto f : {vpriWTFwdRow_B53_JPEG2K_32s_C1R, vpriWTFwdCol_B53_JPEG2K_32s_C1R}) {
    EXPECT_EQ(f(nullptr, 0, lo, 8, hi, 8, roi, 0), vprStatusNullPointer);
    EXPECT_EQ(f(s + 8, 0, nullptr, 8, hi, 8, roi, 0), vprStatusBadStep);  // step before next pointer
    EXPECT_EQ(f(s + 8, 64, nullptr, 0, hi, 8, roi, 0), vprStatusNullPointer);
    EXPECT_EQ(f(s + 8, 64, lo, 0, nullptr, 8, roi, 0), vprStatusBadStep);
    EXPECT_EQ(f(s + 8, 64, lo, 8, nullptr, 8, roi, 0), vprStatusNullPointer);
    EXPECT_EQ(f(s + 8, 64, lo, 8, hi, 0, {0, 0}, 0), vprStatusBadStep);
    EXPECT_EQ(f(s + 8, 64, lo, 8, hi, 8, {0, 1}, 0), vprStatusBadSize);
    EXPECT_EQ(f(s + 8, 64, lo, 8, hi, 8, {1, 0}, 0), vprStatusBadSize);
  }
  int32_t out[8];
  std::fill(out, out + 8, 4);
  for (auto f : {vpriWTInvRow_B53_JPEG2K_32s_C1R, vpriWTInvCol_B53_JPEG2K_32s_C1R}) {
    EXPECT_EQ(f(nullptr, 8, hi, 8, roi, out, 8, 1), vprStatusNullPointer);
    EXPECT_EQ(f(lo + 2, 0, nullptr, 8, roi, out, 8, 1), vprStatusBadStep);
    EXPECT_EQ(f(lo + 2, 8, nullptr, 8, roi, out, 8, 1), vprStatusNullPointer);
    EXPECT_EQ(f(lo + 2, 8, hi + 2, 0, roi, nullptr, 8, 1), vprStatusBadStep);
    EXPECT_EQ(f(lo + 2, 8, hi + 2, 8, {0, 0}, nullptr, 8, 1), vprStatusNullPointer);  // size after pointers
    EXPECT_EQ(f(lo + 2, 8, hi + 2, 8, {0, 0}, out, 0, 1), vprStatusBadStep);
    EXPECT_EQ(f(lo + 2, 8, hi + 2, 8, {0, 1}, out, 8, 1), vprStatusBadSize);
  }
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(lo[i], 3);
    EXPECT_EQ(hi[i], 3);
    EXPECT_EQ(out[i], 4);
  }
  int16_t a[4] = {1, 2, 3, 4}, b[4] = {9, 9, 9, 9};
  EXPECT_EQ(vpriWTFwdColLift_B53_JPEG2K_16s_C1(a, a, a, b, nullptr, b, 4), vprStatusNullPointer);
  EXPECT_EQ(vpriWTFwdColLift_B53_JPEG2K_16s_C1(a, a, a, b, a, b, 0), vprStatusBadSize);
  EXPECT_EQ(vpriWTInvColLift_B53_JPEG2K_16s_C1(a, a, a, a, nullptr, b, 4), vprStatusNullPointer);
  EXPECT_EQ(vpriWTInvColLift_B53_JPEG2K_16s_C1(a, a, a, a, b, b, -3), vprStatusBadSize);
  for (int16_t v : b) EXPECT_EQ(v, 9);
}

}  // namespace
