// DXT1 decoding against libsquish's decoder: identical pixels on every
// four-colour block; on three-colour blocks identical entries 0-2, while
// entry 3 is our opaque white where libsquish gives transparent black.
#include <squish.h>

#include <cstring>

#include "texture/dxt1.h"
#include "vprjp.h"
#include "vprtest.h"

namespace {

using namespace vpr::texture;

TEST(Dxt1Squish, FourColourBlocksDecodeIdentically) {
  vprtest::Rng rng(31);
  for (int n = 0; n < 50000; ++n) {
    uint8_t blk[8];
    uint64_t w = rng.next();
    std::memcpy(blk, &w, 8);
    uint16_t c0, c1;
    std::memcpy(&c0, blk, 2);
    std::memcpy(&c1, blk + 2, 2);
    if (c0 == c1) continue;
    if (c0 < c1) std::memcpy(blk, &c1, 2), std::memcpy(blk + 2, &c0, 2);
    uint8_t ours[64], sse[64], theirs[64];
    ref::decode_block_dxt1(blk, ours);
    sse::decode_block_dxt1(blk, sse);
    squish::Decompress(theirs, blk, squish::kDxt1);
    ASSERT_TRUE(vprtest::same_array(ours, theirs, 64)) << "block " << n;
    ASSERT_TRUE(vprtest::same_array(sse, theirs, 64)) << "block " << n;
  }
}

TEST(Dxt1Squish, ThreeColourBlocksDifferOnlyInEntryThree) {
  vprtest::Rng rng(32);
  for (int n = 0; n < 20000; ++n) {
    uint8_t blk[8];
    uint64_t w = rng.next();
    std::memcpy(blk, &w, 8);
    uint16_t c0, c1;
    std::memcpy(&c0, blk, 2);
    std::memcpy(&c1, blk + 2, 2);
    if (n % 8 == 0) c1 = c0;
    if (c0 > c1) std::swap(c0, c1);
    std::memcpy(blk, &c0, 2);
    std::memcpy(blk + 2, &c1, 2);
    uint8_t ours[64], theirs[64];
    sse::decode_block_dxt1(blk, ours);
    squish::Decompress(theirs, blk, squish::kDxt1);
    for (int i = 0; i < 16; ++i) {
      const uint32_t k = (w >> (32 + 2 * i)) & 3;
      if (k == 3) {
        const uint8_t white[4] = {255, 255, 255, 255};
        ASSERT_EQ(0, std::memcmp(ours + 4 * i, white, 4));
      } else {
        ASSERT_EQ(0, std::memcmp(ours + 4 * i, theirs + 4 * i, 4)) << "block " << n << " pixel " << i;
      }
    }
  }
}

TEST(Dxt1Squish, SquishDecodesOurImagesLikeWeDo) {
  // Our encoder never emits index 3 in three-colour mode, so any DXT1
  // decoder reads our files exactly as we do.
  const int w = 37, h = 23;
  vprtest::Rng rng(33);
  vprtest::Image<uint8_t> src(4 * w, h);
  src.fill_with([&](int x, int y) { return ((x / 4) * 5 + y * 3 + (x & 3) * 50 + int(rng.uniform(0, 9))) & 255; });
  std::vector<uint8_t> coded(8 * ((w + 3) / 4) * ((h + 3) / 4));
  ASSERT_EQ(vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(src.data(), src.step(), {w, h}, coded.data()), vprStatusOk);
  std::vector<uint8_t> ours(4 * w * h), theirs(4 * w * h);
  ASSERT_EQ(vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(coded.data(), ours.data(), 4 * w, {w, h}), vprStatusOk);
  squish::DecompressImage(theirs.data(), w, h, coded.data(), squish::kDxt1);
  ASSERT_TRUE(vprtest::same_array(ours.data(), theirs.data(), ours.size()));
}

}  // namespace
