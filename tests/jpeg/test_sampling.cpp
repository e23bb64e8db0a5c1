// Chroma sampling: whole-image and row functions against the formulas
// written here, hand-computed cases, the border contract of the up-samplers
// (exact-size buffers, so ASan sees any read past it), SSE vs scalar
// kernels, argument checks, threading.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "jpeg/sampling.h"
#include "vprjp.h"
#include "vprtest.h"

using vprtest::Image;
using vprtest::Rng;
namespace vj = vpr::jpeg;

namespace {

using Fn = VprStatus (*)(const Vpr8u*, int, VprRoiSize, Vpr8u*, int, VprRoiSize);

// A source with a one-sample border on every side, in one exact-size
// allocation; data() is the first sample of the region.
struct Bordered {
  int w, h, step;
  std::vector<uint8_t> buf;
  Bordered(int w_, int h_, Rng& r) : w(w_), h(h_), step(w_ + 2), buf(static_cast<size_t>(w_ + 2) * (h_ + 2)) {
    for (auto& v : buf) v = static_cast<uint8_t>(r.uniform(0, 255));
  }
  const uint8_t* data() const { return buf.data() + step + 1; }
  int at(int x, int y) const { return buf[static_cast<size_t>(y + 1) * step + x + 1]; }  // x, y from -1
};

TEST(SamplingImage, DownFollowsFormulas) {
  Rng rng(11);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    Image<uint8_t> src(2 * g.width, 2 * g.height, g.pad, g.misalign);
    src.fill_random(rng);
    Image<uint8_t> d1(g.width, 2 * g.height, g.pad + 1, g.misalign + 3), d2(g.width, g.height, g.pad + 2, g.misalign + 1);
    const VprRoiSize ss{2 * g.width, 2 * g.height};
    ASSERT_EQ(vpriSampleDownH2V1_JPEG_8u_C1R(src.data(), src.step(), ss, d1.data(), d1.step(), {g.width, 2 * g.height}),
              vprStatusOk);
    ASSERT_EQ(vpriSampleDownH2V2_JPEG_8u_C1R(src.data(), src.step(), ss, d2.data(), d2.step(), {g.width, g.height}),
              vprStatusOk);
    for (int y = 0; y < 2 * g.height; ++y)
      for (int j = 0; j < g.width; ++j) {
        ASSERT_EQ(d1.get(j, y), (src.get(2 * j, y) + src.get(2 * j + 1, y) + 1) >> 1) << j << "," << y;
        if (y < g.height) {
          const int s = src.get(2 * j, 2 * y) + src.get(2 * j + 1, 2 * y) + src.get(2 * j, 2 * y + 1) +
                        src.get(2 * j + 1, 2 * y + 1);
          ASSERT_EQ(d2.get(j, y), (s + 3) >> 2) << j << "," << y;
        }
      }
    ASSERT_TRUE(d1.guards_intact() && d2.guards_intact());
  }
}

TEST(SamplingImage, UpReadsOnlyTheDocumentedBorder) {
  Rng rng(12);
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    const int sw = (g.width + 1) / 2, sh = (g.height + 1) / 2;  // destination width may be odd
    Bordered src(sw, g.height, rng), src2(sw, sh, rng);
    Image<uint8_t> d1(g.width, g.height, g.pad, g.misalign), d2(g.width, g.height, g.pad + 3, g.misalign + 2);
    ASSERT_EQ(vpriSampleUpH2V1_JPEG_8u_C1R(src.data(), src.step, {sw, g.height}, d1.data(), d1.step(), {g.width, g.height}),
              vprStatusOk);
    ASSERT_EQ(vpriSampleUpH2V2_JPEG_8u_C1R(src2.data(), src2.step, {sw, sh}, d2.data(), d2.step(), {g.width, g.height}),
              vprStatusOk);
    for (int y = 0; y < g.height; ++y)
      for (int j = 0; j < g.width; ++j) {
        const int i = j / 2, side = (j & 1) ? 1 : -1;
        ASSERT_EQ(d1.get(j, y), (3 * src.at(i, y) + src.at(i + side, y) + ((j & 1) ? 2 : 1)) >> 2) << j << "," << y;
        const int n = y / 2, f = (y & 1) ? n + 1 : n - 1;
        auto t = [&](int x) { return 3 * src2.at(x, n) + src2.at(x, f); };
        ASSERT_EQ(d2.get(j, y), (3 * t(i) + t(i + side) + ((j & 1) ? 7 : 8)) >> 4) << j << "," << y;
      }
    ASSERT_TRUE(d1.guards_intact() && d2.guards_intact());
  }
}

TEST(SamplingRow, FollowFormulasWithinTheRow) {
  Rng rng(13);
  for (int n = 1; n <= 80; ++n) {
    SCOPED_TRACE(n);
    std::vector<uint8_t> a(n), b(n), down1(n / 2 + 1, 0xEE), down2(n / 2 + 1, 0xEE), up1(2 * n), up2(2 * n);
    for (int i = 0; i < n; ++i) {
      a[i] = static_cast<uint8_t>(rng.uniform(0, 255));
      b[i] = static_cast<uint8_t>(rng.uniform(0, 255));
    }
    ASSERT_EQ(vpriSampleDownRowH2V1_Box_JPEG_8u_C1(a.data(), n, down1.data()), vprStatusOk);
    ASSERT_EQ(vpriSampleDownRowH2V2_Box_JPEG_8u_C1(a.data(), b.data(), n, down2.data()), vprStatusOk);
    ASSERT_EQ(vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(a.data(), n, up1.data()), vprStatusOk);
    ASSERT_EQ(vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(a.data(), b.data(), n, up2.data()), vprStatusOk);
    for (int j = 0; j < n / 2; ++j) {
      ASSERT_EQ(down1[j], (a[2 * j] + a[2 * j + 1] + (j % 2 == 0 ? 1 : 0)) >> 1) << j;
      ASSERT_EQ(down2[j], (a[2 * j] + a[2 * j + 1] + b[2 * j] + b[2 * j + 1] + (j % 2 == 0 ? 1 : 2)) >> 2) << j;
    }
    ASSERT_EQ(down1[n / 2], 0xEE);
    ASSERT_EQ(down2[n / 2], 0xEE);
    auto x = [&](int i) { return static_cast<int>(a[i < 0 ? 0 : i >= n ? n - 1 : i]); };
    auto t = [&](int i) { return 3 * x(i) + b[i < 0 ? 0 : i >= n ? n - 1 : i]; };
    for (int i = 0; i < n; ++i) {
      ASSERT_EQ(up1[2 * i], (3 * x(i) + x(i - 1) + 1) >> 2) << i;
      ASSERT_EQ(up1[2 * i + 1], (3 * x(i) + x(i + 1) + 2) >> 2) << i;
      ASSERT_EQ(up2[2 * i], (3 * t(i) + t(i - 1) + 8) >> 4) << i;
      ASSERT_EQ(up2[2 * i + 1], (3 * t(i) + t(i + 1) + 7) >> 4) << i;
    }
  }
}

TEST(SamplingRow, HandComputedCases) {
  uint8_t blk0[2] = {0, 0}, blk1[2] = {0, 1}, out[4] = {};
  // Whole-image H2V2 of (0,0,0,1) rounds up to 1; of 255s gives 255.
  uint8_t img[4] = {0, 0, 0, 1};
  ASSERT_EQ(vpriSampleDownH2V2_JPEG_8u_C1R(img, 2, {2, 2}, out, 1, {1, 1}), vprStatusOk);
  EXPECT_EQ(out[0], 1);
  uint8_t white[4] = {255, 255, 255, 255};
  ASSERT_EQ(vpriSampleDownH2V2_JPEG_8u_C1R(white, 2, {2, 2}, out, 1, {1, 1}), vprStatusOk);
  EXPECT_EQ(out[0], 255);
  // The row form of the same block uses bias 1: (0 + 0 + 0 + 1 + 1) >> 2 = 0.
  ASSERT_EQ(vpriSampleDownRowH2V2_Box_JPEG_8u_C1(blk0, blk1, 2, out), vprStatusOk);
  EXPECT_EQ(out[0], 0);
  uint8_t alt[4] = {0, 1, 0, 1};
  ASSERT_EQ(vpriSampleDownRowH2V1_Box_JPEG_8u_C1(alt, 4, out), vprStatusOk);
  EXPECT_EQ(out[0], 1);
  EXPECT_EQ(out[1], 0);
  uint8_t one = 93;
  ASSERT_EQ(vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(&one, 1, out), vprStatusOk);
  EXPECT_EQ(out[0], 93);
  EXPECT_EQ(out[1], 93);
  uint8_t ramp[2] = {0, 255};
  ASSERT_EQ(vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(ramp, 2, out), vprStatusOk);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[1], 64);
  EXPECT_EQ(out[2], 191);
  EXPECT_EQ(out[3], 255);
  for (int v : {0, 1, 128, 254, 255}) {
    std::vector<uint8_t> c(37, static_cast<uint8_t>(v)), o(74);
    ASSERT_EQ(vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(c.data(), c.data(), 37, o.data()), vprStatusOk);
    for (int i = 0; i < 74; ++i) ASSERT_EQ(o[i], v) << i;
  }
}

TEST(SamplingArgs, CheckOrderAndNoWrite) {
  uint8_t src[64] = {}, dst[64];
  std::memset(dst, 0x77, sizeof dst);
  const VprRoiSize ok{4, 2}, bad{0, 2}, badh{4, 0};
  for (Fn f : {vpriSampleDownH2V1_JPEG_8u_C1R, vpriSampleDownH2V2_JPEG_8u_C1R, vpriSampleUpH2V1_JPEG_8u_C1R,
               vpriSampleUpH2V2_JPEG_8u_C1R}) {
    EXPECT_EQ(f(nullptr, 0, bad, nullptr, 0, bad), vprStatusNullPointer);
    EXPECT_EQ(f(src + 16, 0, bad, nullptr, 0, bad), vprStatusBadStep);
    EXPECT_EQ(f(src + 16, 8, bad, nullptr, 0, bad), vprStatusBadSize);
    EXPECT_EQ(f(src + 16, 8, badh, dst, 8, ok), vprStatusBadSize);
    EXPECT_EQ(f(src + 16, 8, ok, nullptr, 0, bad), vprStatusNullPointer);
    EXPECT_EQ(f(src + 16, 8, ok, dst, -8, bad), vprStatusBadStep);
    EXPECT_EQ(f(src + 16, 8, ok, dst, 8, bad), vprStatusBadSize);
    EXPECT_EQ(f(src + 16, 8, ok, dst, 8, badh), vprStatusBadSize);
  }
  EXPECT_EQ(vpriSampleDownRowH2V1_Box_JPEG_8u_C1(nullptr, 4, dst), vprStatusNullPointer);
  EXPECT_EQ(vpriSampleDownRowH2V1_Box_JPEG_8u_C1(src, 4, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriSampleDownRowH2V1_Box_JPEG_8u_C1(src, 0, dst), vprStatusBadSize);
  EXPECT_EQ(vpriSampleDownRowH2V2_Box_JPEG_8u_C1(src, nullptr, 0, dst), vprStatusNullPointer);
  EXPECT_EQ(vpriSampleDownRowH2V2_Box_JPEG_8u_C1(src, src, -1, dst), vprStatusBadSize);
  EXPECT_EQ(vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(src, 0, dst), vprStatusBadSize);
  EXPECT_EQ(vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(src, 4, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(nullptr, src, 4, dst), vprStatusNullPointer);
  EXPECT_EQ(vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(src, src, 0, dst), vprStatusBadSize);
  for (uint8_t v : dst) ASSERT_EQ(v, 0x77);
}

// ---------------------------------------------------------------- SSE vs scalar kernels

struct KernelCase {
  const char* name;
  int in_rows;                      // source rows per call
  std::function<int(int)> in_len;   // source samples a call needs for output width w (border excluded)
  int border;                       // samples readable before and after
  std::function<int(int)> out_len;  // destination samples for w
  std::function<void(bool, const uint8_t*, const uint8_t*, uint8_t*, int)> run;
};

TEST(SamplingKernels, SseMatchesScalarOnEveryGeometry) {
  namespace r = vj::ref;
  namespace s = vj::sse;
  const KernelCase cases[] = {
      {"down h2v1", 1, [](int w) { return 2 * w; }, 0, [](int w) { return w; },
       [](bool v, const uint8_t* a, const uint8_t*, uint8_t* d, int w) {
         (v ? s::ownpj_SampleDownH2V1_JPEG_8u_C1 : r::ownpj_SampleDownH2V1_JPEG_8u_C1)(a, d, w);
       }},
      {"down h2v2", 2, [](int w) { return 2 * w; }, 0, [](int w) { return w; },
       [](bool v, const uint8_t* a, const uint8_t* b, uint8_t* d, int w) {
         (v ? s::ownpj_SampleDownH2V2_JPEG_8u_C1 : r::ownpj_SampleDownH2V2_JPEG_8u_C1)(a, b, d, w);
       }},
      {"up h2v1", 1, [](int w) { return (w + 1) / 2; }, 1, [](int w) { return w; },
       [](bool v, const uint8_t* a, const uint8_t*, uint8_t* d, int w) {
         (v ? s::ownpj_SampleUpH2V1_JPEG_8u_C1 : r::ownpj_SampleUpH2V1_JPEG_8u_C1)(a, d, w);
       }},
      {"up h2v2", 2, [](int w) { return (w + 1) / 2; }, 1, [](int w) { return w; },
       [](bool v, const uint8_t* a, const uint8_t* b, uint8_t* d, int w) {
         (v ? s::ownpj_SampleUpH2V2_JPEG_8u_C1 : r::ownpj_SampleUpH2V2_JPEG_8u_C1)(a, b, d, w);
       }},
      {"row box h2v1", 1, [](int w) { return w; }, 0, [](int w) { return w / 2; },
       [](bool v, const uint8_t* a, const uint8_t*, uint8_t* d, int w) {
         (v ? s::ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1 : r::ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1)(a, w, d);
       }},
      {"row box h2v2", 2, [](int w) { return w; }, 0, [](int w) { return w / 2; },
       [](bool v, const uint8_t* a, const uint8_t* b, uint8_t* d, int w) {
         (v ? s::ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1 : r::ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1)(a, b, w, d);
       }},
      {"row triangle h2v1", 1, [](int w) { return w; }, 0, [](int w) { return 2 * w; },
       [](bool v, const uint8_t* a, const uint8_t*, uint8_t* d, int w) {
         (v ? s::ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1 : r::ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1)(a, w, d);
       }},
      {"row triangle h2v2", 2, [](int w) { return w; }, 0, [](int w) { return 2 * w; },
       [](bool v, const uint8_t* a, const uint8_t* b, uint8_t* d, int w) {
         (v ? s::ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1 : r::ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1)(a, b, w, d);
       }},
  };
  Rng rng(14);
  auto geos = vprtest::geometries(2);
  geos.push_back({4097, 1, 0, 5});
  for (const KernelCase& kc : cases)
    for (const auto& g : geos) {
      const int w = g.width, out_len = kc.out_len(w);
      if (out_len < 1) continue;
      SCOPED_TRACE(std::string(kc.name) + " " + g.str());
      // Exact-size source rows (ASan sees reads beyond the allowed border).
      std::vector<std::vector<uint8_t>> src(2);
      for (auto& row : src) {
        row.resize(static_cast<size_t>(kc.in_len(w) + 2 * kc.border + g.misalign));
        for (auto& v : row) v = static_cast<uint8_t>(rng.uniform(0, 255));
      }
      const uint8_t* a = src[0].data() + g.misalign + kc.border;
      const uint8_t* b = kc.in_rows == 2 ? src[1].data() + g.misalign + kc.border : nullptr;
      Image<uint8_t> da(out_len, 1, g.pad, g.misalign + 1);
      da.fill_random(rng);
      Image<uint8_t> db = da;
      kc.run(false, a, b, da.data(), w);
      kc.run(true, a, b, db.data(), w);
      ASSERT_TRUE(vprtest::same_region(da, db));
      ASSERT_TRUE(db.guards_intact());
    }
}

// ---------------------------------------------------------------- threading

TEST(SamplingThreads, SameBitsSerialAndParallel) {
  Rng rng(15);
  const VprRoiSize sizes[] = {{8192, 1}, {8193, 1}, {64, 128}, {91, 91}, {3, 2731}};
  for (const VprRoiSize d : sizes) {
    SCOPED_TRACE(std::to_string(d.width) + "x" + std::to_string(d.height));
    Image<uint8_t> src(2 * d.width + 2, 2 * d.height + 2, 3, 1);
    src.fill_random(rng);
    const uint8_t* s = src.row(1) + 1;
    auto run_all = [&]() {
      std::vector<Image<uint8_t>> out(4, Image<uint8_t>(d.width, d.height, 1, 2));
      EXPECT_EQ(vpriSampleDownH2V1_JPEG_8u_C1R(s, src.step(), {2 * d.width, d.height}, out[0].data(), out[0].step(), d), vprStatusOk);
      EXPECT_EQ(vpriSampleDownH2V2_JPEG_8u_C1R(s, src.step(), {2 * d.width, 2 * d.height}, out[1].data(), out[1].step(), d), vprStatusOk);
      EXPECT_EQ(vpriSampleUpH2V1_JPEG_8u_C1R(s, src.step(), {d.width, d.height}, out[2].data(), out[2].step(), d), vprStatusOk);
      EXPECT_EQ(vpriSampleUpH2V2_JPEG_8u_C1R(s, src.step(), {d.width, d.height}, out[3].data(), out[3].step(), d), vprStatusOk);
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
      for (size_t i = 0; i < serial.size(); ++i) {
        ASSERT_TRUE(vprtest::same_region(serial[i], par[i])) << i << " threads " << threads;
        ASSERT_TRUE(par[i].guards_intact());
      }
    }
  }
}

}  // namespace
