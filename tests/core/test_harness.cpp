// The test harness itself must catch what it is meant to catch.
#include <set>

#include "vprtest.h"

TEST(Harness, GuardsCatchWritesOutsideTheRegion) {
  for (const auto& g : vprtest::geometries()) {
    SCOPED_TRACE(g.str());
    vprtest::Image<int16_t> img(g.width, g.height, g.pad, g.misalign);
    img.fill(5);
    EXPECT_TRUE(img.guards_intact());
    // One element past the end of the last row.
    int16_t* p = img.row(g.height - 1) + g.width;
    const int16_t saved = *p;
    *p = static_cast<int16_t>(saved ^ 1);
    EXPECT_FALSE(img.guards_intact());
    *p = saved;
    // One byte before the first row.
    uint8_t* b = reinterpret_cast<uint8_t*>(img.data()) - 1;
    *b ^= 0xFF;
    EXPECT_FALSE(img.guards_intact());
    *b ^= 0xFF;
    // Padding between rows.
    if (g.pad > 0 && g.height > 1) {
      uint8_t* q = reinterpret_cast<uint8_t*>(img.row(0) + g.width);
      *q ^= 1;
      EXPECT_FALSE(img.guards_intact());
      *q ^= 1;
    }
    EXPECT_TRUE(img.guards_intact());
  }
}

TEST(Harness, GeometriesCoverEveryRemainderAndMisalignment) {
  std::set<int> rem16, mis;
  bool padded = false, odd = false;
  for (const auto& g : vprtest::geometries()) {
    rem16.insert(g.width % 16);
    mis.insert(g.misalign % 16);
    padded |= g.pad > 0;
    odd |= (g.width & 1) != 0;
  }
  EXPECT_EQ(rem16.size(), 16u);
  EXPECT_GE(mis.size(), 4u);
  EXPECT_TRUE(padded);
  EXPECT_TRUE(odd);
}

TEST(Harness, CopiesKeepGeometryAndBytes) {
  vprtest::Rng rng(1);
  vprtest::Image<uint8_t> a(37, 5, 3, 7);
  a.fill_random(rng);
  vprtest::Image<uint8_t> b = a;
  EXPECT_EQ(reinterpret_cast<uintptr_t>(b.data()) % 64, 7u);
  EXPECT_TRUE(vprtest::same_region(a, b));
  b.set(36, 4, static_cast<uint8_t>(b.get(36, 4) + 1));
  EXPECT_FALSE(vprtest::same_region(a, b));
}
