// Our integer photo core transform against jxrlib's 4x4 core transform
// (the first-stage block transform of its encoder and decoder).  jxrlib
// keeps a block's sixteen values in its own order: position (row y,
// column x) of our natural order lives at index kJxrIndex[4y + x] of its
// array, on input and output alike.
#include <cstring>

#include "jpegxr/pct.h"
#include "vprjp_jpegxr.h"
#include "vprtest.h"

extern "C" {
// jxrlib (libjpegxr) internal entry points; PixelI is a 32-bit int there.
void strDCT4x4Stage1(int* p);
void strIDCT4x4Stage1(int* p);
}

namespace {

constexpr int kJxrIndex[16] = {0, 1, 5, 4, 2, 3, 7, 6, 10, 11, 15, 14, 8, 9, 13, 12};

void to_jxr(const int32_t* ours, int* theirs) {
  for (int i = 0; i < 16; ++i) theirs[kJxrIndex[i]] = ours[i];
}
void from_jxr(const int* theirs, int32_t* ours) {
  for (int i = 0; i < 16; ++i) ours[i] = theirs[kJxrIndex[i]];
}

// Sample ranges: pixel-like, coefficient-like, and wide (no 32-bit
// overflow inside jxrlib's arithmetic, whose C code does not wrap).
constexpr int kRanges[3] = {255, 4095, 1 << 24};

TEST(PctPeer, ForwardMatchesJxrlib) {
  vprtest::Rng rng(2024);
  for (int range : kRanges)
    for (int rep = 0; rep < 3000; ++rep) {
      int32_t ours[16];
      for (auto& v : ours) v = static_cast<int32_t>(rng.uniform(-range, range));
      int theirs[16];
      to_jxr(ours, theirs);
      strDCT4x4Stage1(theirs);
      ASSERT_EQ(vpriPCTFwd_JPEGXR_32s_C1IR(ours, 16, {4, 4}), vprStatusOk);
      int32_t back[16];
      from_jxr(theirs, back);
      ASSERT_TRUE(vprtest::same_array(ours, back, 16)) << "range " << range;
    }
}

TEST(PctPeer, InverseMatchesJxrlib) {
  vprtest::Rng rng(99);
  for (int range : kRanges)
    for (int rep = 0; rep < 3000; ++rep) {
      int32_t ours[16];
      for (auto& v : ours) v = static_cast<int32_t>(rng.uniform(-range, range));
      int theirs[16];
      to_jxr(ours, theirs);
      strIDCT4x4Stage1(theirs);
      ASSERT_EQ(vpriPCTInv_JPEGXR_32s_C1IR(ours, 16, {4, 4}), vprStatusOk);
      int32_t back[16];
      from_jxr(theirs, back);
      ASSERT_TRUE(vprtest::same_array(ours, back, 16)) << "range " << range;
    }
}

// The 16s forms agree with jxrlib wherever nothing leaves 16 bits.
TEST(PctPeer, SixteenBitFormsMatchJxrlibInRange) {
  vprtest::Rng rng(5);
  for (int rep = 0; rep < 3000; ++rep) {
    int16_t ours[16];
    int32_t wide[16];
    for (int i = 0; i < 16; ++i) wide[i] = ours[i] = static_cast<int16_t>(rng.uniform(-4096, 4095));
    int theirs[16];
    to_jxr(wide, theirs);
    strDCT4x4Stage1(theirs);
    ASSERT_EQ(vpriPCTFwd_JPEGXR_16s_C1IR(ours, 8, {4, 4}), vprStatusOk);
    from_jxr(theirs, wide);
    for (int i = 0; i < 16; ++i) ASSERT_EQ(ours[i], wide[i]) << i;
    // and back
    strIDCT4x4Stage1(theirs);
    ASSERT_EQ(vpriPCTInv_JPEGXR_16s_C1IR(ours, 8, {4, 4}), vprStatusOk);
    from_jxr(theirs, wide);
    for (int i = 0; i < 16; ++i) ASSERT_EQ(ours[i], wide[i]) << i;
  }
}

}  // namespace
