// Huffman table objects, bit writer/reader and baseline block coding:
// layouts, known answers with the JPEG standard's tables, every failure
// status with its position and state, fast and careful paths agreeing,
// round trips, reads that stop at srcLen.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "jpeg/huffman.h"
#include "test_huffman_tables.h"
#include "vprjp_jpeg_huffman.h"
#include "vprtest.h"

using namespace hufftest;
namespace vj = vpr::jpeg;

namespace {

using EncState = vj::EncodeHuffmanStateLayout;
using DecState = vj::DecodeHuffmanStateLayout;

VprEncodeHuffmanState* es(EncState* s) { return reinterpret_cast<VprEncodeHuffmanState*>(s); }
VprDecodeHuffmanState* ds(DecState* s) { return reinterpret_cast<VprDecodeHuffmanState*>(s); }
const vj::EncodeHuffmanSpecLayout* el(const uint8_t* p) { return reinterpret_cast<const vj::EncodeHuffmanSpecLayout*>(p); }
const vj::DecodeHuffmanSpecLayout* dl(const uint8_t* p) { return reinterpret_cast<const vj::DecodeHuffmanSpecLayout*>(p); }

uint32_t entry(const uint8_t* spec, int sym) { return el(spec)->entry[sym]; }
uint32_t e(const char* code) {
  uint32_t c = 0, n = 0;
  for (; *code; ++code, ++n) c = c * 2 + (*code == '1');
  return (n << 16) | c;
}

// A block of realistic quantised coefficients: energy falling off along
// the zig-zag order, many zeros; `big` allows the full 11-bit range.
void random_block(vprtest::Rng& rng, int16_t* blk, double density, bool big = false) {
  static const std::vector<int> zz = zigzag_order();
  std::memset(blk, 0, 128);
  blk[0] = static_cast<int16_t>(rng.uniform(-1024, 1023));
  for (int k = 1; k < 64; ++k) {
    if (!rng.coin(density * (1.0 - k / 80.0))) continue;
    int mag = big ? static_cast<int>(rng.uniform(1, 1023)) : static_cast<int>(rng.uniform(1, 1 + 200 / (k + 2)));
    if (big && rng.coin(0.5)) mag = static_cast<int>(rng.uniform(1, 3));
    blk[zz[k]] = static_cast<int16_t>(rng.coin() ? mag : -mag);
  }
}

struct Stream {
  std::vector<uint8_t> bytes;
  int pos = 0;
};

}  // namespace

// ------------------------------------------------------------------ objects

TEST(HuffmanObjects, SizesAndInit) {
  int size = -1;
  EXPECT_EQ(vpriEncodeHuffmanSpecGetBufSize_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanSpecGetBufSize_JPEG_8u(&size), vprStatusOk);
  EXPECT_EQ(size, 1024);
  EXPECT_EQ(vpriDecodeHuffmanSpecGetBufSize_JPEG_8u(&size), vprStatusOk);
  EXPECT_EQ(size, 1644);
  EXPECT_EQ(vpriEncodeHuffmanStateGetBufSize_JPEG_8u(&size), vprStatusOk);
  EXPECT_EQ(size, 1048);
  EXPECT_EQ(vpriDecodeHuffmanStateGetBufSize_JPEG_8u(&size), vprStatusOk);
  EXPECT_EQ(size, 24);
  EXPECT_EQ(vpriDecodeHuffmanSpecGetBufSize_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanStateGetBufSize_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanStateGetBufSize_JPEG_8u(nullptr), vprStatusNullPointer);

  std::vector<uint8_t> mem(1048 + 16, 0x5A);
  EXPECT_EQ(vpriEncodeHuffmanStateInit_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanStateInit_JPEG_8u(reinterpret_cast<VprEncodeHuffmanState*>(mem.data())), vprStatusOk);
  for (size_t i = 0; i < mem.size(); ++i) ASSERT_EQ(mem[i], i < 1048 ? 0 : 0x5A) << i;
  std::fill(mem.begin(), mem.end(), 0x5A);
  EXPECT_EQ(vpriDecodeHuffmanStateInit_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanStateInit_JPEG_8u(reinterpret_cast<VprDecodeHuffmanState*>(mem.data())), vprStatusOk);
  for (size_t i = 0; i < 32; ++i) ASSERT_EQ(mem[i], i < 24 ? 0 : 0x5A) << i;
}

TEST(HuffmanObjects, InitAllocFree) {
  VprEncodeHuffmanSpec* espec = nullptr;
  ASSERT_EQ(vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(kAcLuma.counts, kAcLuma.values.data(), &espec), vprStatusOk);
  alignas(64) uint8_t ref[1024];
  ASSERT_EQ(make_enc(kAcLuma, ref), vprStatusOk);
  EXPECT_EQ(std::memcmp(espec, ref, 1024), 0);
  EXPECT_EQ(vpriEncodeHuffmanSpecFree_JPEG_8u(espec), vprStatusOk);
  EXPECT_EQ(vpriEncodeHuffmanSpecFree_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(kAcLuma.counts, kAcLuma.values.data(), nullptr),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(nullptr, kAcLuma.values.data(), &espec), vprStatusNullPointer);

  VprDecodeHuffmanSpec* dspec = nullptr;
  ASSERT_EQ(vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(kDcLuma.counts, kDcLuma.values.data(), &dspec), vprStatusOk);
  alignas(64) uint8_t dref[1644];
  ASSERT_EQ(make_dec(kDcLuma, dref), vprStatusOk);
  EXPECT_EQ(std::memcmp(dspec, dref, 1644), 0);
  EXPECT_EQ(vpriDecodeHuffmanSpecFree_JPEG_8u(dspec), vprStatusOk);
  EXPECT_EQ(vpriDecodeHuffmanSpecFree_JPEG_8u(nullptr), vprStatusNullPointer);

  VprEncodeHuffmanState* est = nullptr;
  ASSERT_EQ(vpriEncodeHuffmanStateInitAlloc_JPEG_8u(&est), vprStatusOk);
  for (int i = 0; i < 1048; ++i) ASSERT_EQ(reinterpret_cast<uint8_t*>(est)[i], 0);
  EXPECT_EQ(vpriEncodeHuffmanStateFree_JPEG_8u(est), vprStatusOk);
  EXPECT_EQ(vpriEncodeHuffmanStateFree_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanStateInitAlloc_JPEG_8u(nullptr), vprStatusNullPointer);

  VprDecodeHuffmanState* dst = nullptr;
  ASSERT_EQ(vpriDecodeHuffmanStateInitAlloc_JPEG_8u(&dst), vprStatusOk);
  for (int i = 0; i < 24; ++i) ASSERT_EQ(reinterpret_cast<uint8_t*>(dst)[i], 0);
  EXPECT_EQ(vpriDecodeHuffmanStateFree_JPEG_8u(dst), vprStatusOk);
  EXPECT_EQ(vpriDecodeHuffmanStateFree_JPEG_8u(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanStateInitAlloc_JPEG_8u(nullptr), vprStatusNullPointer);

  // A failing build releases the memory and leaves the pointer alone.
  uint8_t bad[16] = {3};
  espec = reinterpret_cast<VprEncodeHuffmanSpec*>(0x40);
  EXPECT_EQ(vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(bad, kDcLuma.values.data(), &espec), vprStatusBadHuffTable);
  EXPECT_EQ(espec, reinterpret_cast<VprEncodeHuffmanSpec*>(0x40));
}

TEST(HuffmanObjects, AllocationFailureGivesNullPointerAndKeepsPointer) {
  auto* const sentinel = reinterpret_cast<void*>(0x1234);
  {
    vprtest::MallocFailure fail;
    auto* p = static_cast<VprEncodeHuffmanSpec*>(sentinel);
    EXPECT_EQ(vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(kDcLuma.counts, kDcLuma.values.data(), &p),
              vprStatusNullPointer);
    EXPECT_EQ(p, sentinel);
  }
  {
    vprtest::MallocFailure fail;
    auto* p = static_cast<VprDecodeHuffmanSpec*>(sentinel);
    EXPECT_EQ(vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(kDcLuma.counts, kDcLuma.values.data(), &p),
              vprStatusNullPointer);
    EXPECT_EQ(p, sentinel);
  }
  {
    vprtest::MallocFailure fail;
    auto* p = static_cast<VprEncodeHuffmanState*>(sentinel);
    EXPECT_EQ(vpriEncodeHuffmanStateInitAlloc_JPEG_8u(&p), vprStatusNullPointer);
    EXPECT_EQ(p, sentinel);
  }
  {
    vprtest::MallocFailure fail;
    auto* p = static_cast<VprDecodeHuffmanState*>(sentinel);
    EXPECT_EQ(vpriDecodeHuffmanStateInitAlloc_JPEG_8u(&p), vprStatusNullPointer);
    EXPECT_EQ(p, sentinel);
  }
}

// ------------------------------------------------------------------ table objects

TEST(HuffmanSpec, EncodeStandardTablesKnownCodes) {
  alignas(64) uint8_t dcl[1024], dcc[1024], acl[1024], acc[1024];
  ASSERT_EQ(make_enc(kDcLuma, dcl), vprStatusOk);
  ASSERT_EQ(make_enc(kDcChroma, dcc), vprStatusOk);
  ASSERT_EQ(make_enc(kAcLuma, acl), vprStatusOk);
  ASSERT_EQ(make_enc(kAcChroma, acc), vprStatusOk);
  const char* dcl_codes[12] = {"00",     "010",     "011",      "100",       "101",        "110",
                               "1110",   "11110",   "111110",   "1111110",   "11111110",   "111111110"};
  const char* dcc_codes[12] = {"00",      "01",       "10",        "110",        "1110",        "11110",
                               "111110",  "1111110",  "11111110",  "111111110",  "1111111110",  "11111111110"};
  for (int s = 0; s < 12; ++s) {
    EXPECT_EQ(entry(dcl, s), e(dcl_codes[s])) << s;
    EXPECT_EQ(entry(dcc, s), e(dcc_codes[s])) << s;
  }
  for (int s = 12; s < 256; ++s) EXPECT_EQ(entry(dcl, s), 0u) << s;
  EXPECT_EQ(entry(acl, 0x00), e("1010"));
  EXPECT_EQ(entry(acl, 0x01), e("00"));
  EXPECT_EQ(entry(acl, 0x02), e("01"));
  EXPECT_EQ(entry(acl, 0x03), e("100"));
  EXPECT_EQ(entry(acl, 0x04), e("1011"));
  EXPECT_EQ(entry(acl, 0x05), e("11010"));
  EXPECT_EQ(entry(acl, 0x06), e("1111000"));
  EXPECT_EQ(entry(acl, 0x08), e("1111110110"));
  EXPECT_EQ(entry(acl, 0x09), e("1111111110000010"));
  EXPECT_EQ(entry(acl, 0x0A), e("1111111110000011"));
  EXPECT_EQ(entry(acl, 0x11), e("1100"));
  EXPECT_EQ(entry(acl, 0x12), e("11011"));
  EXPECT_EQ(entry(acl, 0xF0), e("11111111001"));
  EXPECT_EQ(entry(acl, 0xFA), e("1111111111111110"));
  EXPECT_EQ(entry(acl, 0x10), 0u);  // run 1 size 0 has no code
  EXPECT_EQ(entry(acc, 0x00), e("00"));
  EXPECT_EQ(entry(acc, 0x01), e("01"));
  EXPECT_EQ(entry(acc, 0xF0), e("1111111010"));
  EXPECT_EQ(entry(acc, 0xFA), e("1111111111111110"));
  int n = 0;
  for (int s = 0; s < 256; ++s) n += entry(acl, s) != 0;
  EXPECT_EQ(n, 162);
}

TEST(HuffmanSpec, DecodeLayoutOfTheDcLuminanceTable) {
  alignas(64) uint8_t mem[1644];
  std::memset(mem, 0xCC, sizeof mem);
  ASSERT_EQ(make_dec(kDcLuma, mem), vprStatusOk);
  const auto* d = dl(mem);
  uint16_t w[822];
  std::memcpy(w, mem, sizeof w);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(w[i], i < 12 ? i : 0) << i;
  // fast lookup: 00xxxxxx -> (0, 2); 010xxxxx -> (1, 3); 1110xxxx -> (6, 4);
  // 11111110 -> (10, 8); 11111111 -> longer than 8 bits.
  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(w[256 + 2 * i], 0);
    EXPECT_EQ(w[257 + 2 * i], 2);
  }
  EXPECT_EQ(w[256 + 2 * 0x40], 1);
  EXPECT_EQ(w[257 + 2 * 0x5F], 3);
  EXPECT_EQ(w[256 + 2 * 0xC0], 5);  // 110
  EXPECT_EQ(w[256 + 2 * 0xE5], 6);
  EXPECT_EQ(w[257 + 2 * 0xE5], 4);
  EXPECT_EQ(w[256 + 2 * 0xFE], 10);
  EXPECT_EQ(w[257 + 2 * 0xFE], 8);
  EXPECT_EQ(w[256 + 2 * 0xFF], 0);
  EXPECT_EQ(w[257 + 2 * 0xFF], 0);
  const uint16_t minc[18] = {0, 0, 0, 2, 14, 30, 62, 126, 254, 510, 0, 0, 0, 0, 0, 0, 0, 0};
  const uint16_t maxc[18] = {0xFFFF, 0xFFFF, 0, 6, 14, 30, 62, 126, 254, 510,
                             0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  const uint16_t vidx[18] = {0, 0, 0, 1, 6, 7, 8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 0, 0};
  for (int l = 0; l < 18; ++l) {
    EXPECT_EQ(w[768 + l], minc[l]) << l;
    EXPECT_EQ(w[786 + l], maxc[l]) << l;
    EXPECT_EQ(w[804 + l], vidx[l]) << l;
    EXPECT_EQ(d->maxcode[l], maxc[l]);
  }
}

TEST(HuffmanSpec, CountLimitsAndCodeSpace) {
  alignas(64) uint8_t enc[1024], dec[1644];
  std::vector<uint8_t> values(256);
  for (int i = 0; i < 256; ++i) values[i] = static_cast<uint8_t>(255 - i);
  // Exactly 256 codes (all of length 9..16 fit; 256 codes of length 9 would
  // use the all-ones code, so spread them): accepted by both builders.
  uint8_t c256[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  c256[7] = 255;  // 255 codes of length 8: 0..254
  c256[8] = 1;    // then 111111110 (9 bits)
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(c256, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusOk);
  EXPECT_EQ(entry(enc, 255), e("00000000"));
  EXPECT_EQ(entry(enc, 0), e("111111110"));
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(c256, values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(dec)),
            vprStatusOk);
  // 257 codes: -64 from both; the encode object is left cleared, the decode
  // object untouched.
  uint8_t c257[16] = {};
  c257[8] = 255;
  c257[9] = 2;
  std::memset(enc, 0x11, sizeof enc);
  std::memset(dec, 0x22, sizeof dec);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(c257, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusBadHuffTable);
  for (uint8_t b : enc) ASSERT_EQ(b, 0);
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(c257, values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(dec)),
            vprStatusBadHuffTable);
  for (uint8_t b : dec) ASSERT_EQ(b, 0x22);
  // Three codes of length 1 overflow; two need the all-ones code "1".
  uint8_t three[16] = {3}, two[16] = {2}, one[16] = {1};
  std::memset(enc, 0x11, sizeof enc);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(three, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusBadHuffTable);
  for (uint8_t b : enc) ASSERT_EQ(b, 0);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(two, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusBadHuffTable);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(one, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusOk);
  EXPECT_EQ(entry(enc, 255), e("0"));
  // The decode builder does not check the code space, and its tables stay
  // safe: three 1-bit codes decode "0" and "1" to the first two symbols.
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(three, values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(dec)),
            vprStatusOk);
  EXPECT_EQ(dl(dec)->fast[0x00][0], 255);
  EXPECT_EQ(dl(dec)->fast[0x80][0], 254);
  EXPECT_EQ(dl(dec)->maxcode[1], 2);
  // Null pointers.
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(nullptr, values.data(), reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(one, nullptr, reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(one, values.data(), nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(nullptr, values.data(), reinterpret_cast<VprDecodeHuffmanSpec*>(dec)),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(one, nullptr, reinterpret_cast<VprDecodeHuffmanSpec*>(dec)),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanSpecInit_JPEG_8u(one, values.data(), nullptr), vprStatusNullPointer);
}

TEST(HuffmanSpec, ConstantTables) {
  for (int n = 0; n < 256; ++n) {
    int bl = 0;
    while ((n >> bl) != 0) ++bl;
    EXPECT_EQ(vj::own_pj_csize[n], bl) << n;
  }
  for (int t = 0; t < 16; ++t) EXPECT_EQ(vj::own_pj_lowest_coef[t], 1 - (1 << t));
  const std::vector<int> zz = zigzag_order();
  ASSERT_EQ(zz.size(), 64u);
  for (int k = 0; k < 64; ++k) EXPECT_EQ(vj::own_pj_izigzag_index[k], zz[k]) << k;
  for (int k = 64; k < 72; ++k) EXPECT_EQ(vj::own_pj_izigzag_index[k], 63);
  for (int v = -65535; v <= 65535; v += 7) {
    const int a = v < 0 ? -v : v;
    int bl = 0;
    while ((a >> bl) != 0) ++bl;
    ASSERT_EQ(vj::category_of(v), bl) << v;
  }
}

// ------------------------------------------------------------------ bit writer

TEST(HuffmanBits, WriterStuffsAndKeepsStateOnFullOutput) {
  EncState st{};
  uint8_t out[8] = {};
  int pos = 0;
  ASSERT_EQ(vj::ownpj_write_bits_jpeg(0x5, 3, out, 8, &pos, &st), vprStatusOk);  // 101
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(st.nbits, 3);
  EXPECT_EQ(st.acc, 0xA00000u);  // 101 in bits 23..21
  ASSERT_EQ(vj::ownpj_write_bits_jpeg(0x3FFF, 14, out, 8, &pos, &st), vprStatusOk);
  // 101 11111 111111111 -> A F, F F (bits 8..16), waiting "1"
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(out[0], 0xBF);
  EXPECT_EQ(out[1], 0xFF);
  EXPECT_EQ(out[2], 0x00);
  EXPECT_EQ(st.nbits, 1);
  EXPECT_EQ(st.acc, 0xFF800000u);  // last byte written in 24..31, "1" at bit 23
  // nBits 0: -64, nothing changes.
  EncState before = st;
  EXPECT_EQ(vj::ownpj_write_bits_jpeg(0, 0, out, 8, &pos, &st), vprStatusBadHuffTable);
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(std::memcmp(&before, &st, sizeof st), 0);

  // A byte 0xFF with exactly one free byte: the 0xFF is stored, the
  // position advanced, -62, state as before the call.
  EncState s2{};
  uint8_t small[2] = {0x11, 0x22};
  int p2 = 1;
  EXPECT_EQ(vj::ownpj_write_bits_jpeg(0xFF, 8, small, 2, &p2, &s2), vprStatusOutOfBuffer);
  EXPECT_EQ(p2, 2);
  EXPECT_EQ(small[1], 0xFF);
  EXPECT_EQ(s2.acc, 0u);
  EXPECT_EQ(s2.nbits, 0);
  // No room at all: -62, nothing stored.
  EncState s3{};
  s3.nbits = 4;
  s3.acc = 0x5A500000u;
  int p3 = 2;
  EXPECT_EQ(vj::ownpj_write_bits_jpeg(0x1234, 16, small, 2, &p3, &s3), vprStatusOutOfBuffer);
  EXPECT_EQ(p3, 2);
  EXPECT_EQ(s3.acc, 0x5A500000u);
  EXPECT_EQ(s3.nbits, 4);
  // Two bytes fit out of three: both stored, then -62, state unchanged.
  uint8_t three[2] = {};
  int p4 = 0;
  EncState s4{};
  s4.nbits = 7;
  s4.acc = 0x00FE0000u;  // waiting 1111111
  EXPECT_EQ(vj::ownpj_write_bits_jpeg(0x1FFFF, 17, three, 2, &p4, &s4), vprStatusOutOfBuffer);
  EXPECT_EQ(p4, 2);
  EXPECT_EQ(three[0], 0xFF);
  EXPECT_EQ(three[1], 0x00);
  EXPECT_EQ(s4.nbits, 7);
  EXPECT_EQ(s4.acc, 0x00FE0000u);
}

TEST(HuffmanBits, WriterTakesTwentyFourBitsAfterSevenWaiting) {
  EncState st{};
  std::vector<uint8_t> out(16);
  int pos = 0;
  ASSERT_EQ(vj::ownpj_write_bits_jpeg(0x55, 7, out.data(), 16, &pos, &st), vprStatusOk);
  ASSERT_EQ(vj::ownpj_write_bits_jpeg(0xABCDEF, 24, out.data(), 16, &pos, &st), vprStatusOk);
  Bits b;
  b.add(0x55, 7).add(0xABCDEF, 24);
  const std::vector<uint8_t> want = b.bytes(false);
  ASSERT_EQ(pos, static_cast<int>(want.size()));
  EXPECT_TRUE(vprtest::same_array(out.data(), want.data(), want.size()));
  EXPECT_EQ(st.nbits, 7);
  EXPECT_EQ(st.acc, (0x9Bu << 24) | (0x6Fu << 17));  // last byte 0x9B; waiting 1101111
}

TEST(HuffmanBits, FlushPadsWithOnesAndClearsState) {
  alignas(64) uint8_t st_mem[1048];
  auto* st = reinterpret_cast<EncState*>(st_mem);
  std::memset(st_mem, 0x3C, sizeof st_mem);
  st->nbits = 2;
  st->acc = 0x12400000u;  // "01" waiting
  uint8_t out[4] = {};
  int pos = 0;
  EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 4, &pos, nullptr, nullptr, nullptr, es(st), 1),
            vprStatusOk);
  EXPECT_EQ(pos, 1);
  EXPECT_EQ(out[0], 0x7F);
  for (uint8_t b : st_mem) ASSERT_EQ(b, 0);
  // Nothing waiting: nothing written.
  EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 4, &pos, nullptr, nullptr, nullptr, es(st), 1),
            vprStatusOk);
  EXPECT_EQ(pos, 1);
  // All-ones waiting: 0xFF 0x00.
  st->nbits = 3;
  st->acc = 0x00E00000u;
  EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 4, &pos, nullptr, nullptr, nullptr, es(st), 1),
            vprStatusOk);
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(out[1], 0xFF);
  EXPECT_EQ(out[2], 0x00);
  // Flush into a full buffer: -62, state cleared anyway.
  st->nbits = 1;
  st->acc = 0x00800000u;
  pos = 4;
  EXPECT_EQ(vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 4, &pos, nullptr, nullptr, nullptr, es(st), 1),
            vprStatusOutOfBuffer);
  EXPECT_EQ(pos, 4);
  EXPECT_EQ(st->nbits, 0);
  EXPECT_EQ(st->acc, 0u);
}

// ------------------------------------------------------------------ bit reader

TEST(HuffmanBits, ReaderStuffingFillAndMarkers) {
  {  // 0xFF 0x00 is a data byte.
    const uint8_t src[] = {0x12, 0xFF, 0x00, 0x34, 0x56, 0x78};
    DecState st{};
    int pos = 0, marker = 0;
    ASSERT_EQ(vj::ownpj_FillBitBuffer(src, 6, &pos, &marker, 0, &st), vprStatusOk);
    EXPECT_EQ(pos, 5);
    EXPECT_EQ(st.nbits, 32);
    EXPECT_EQ(st.acc, 0x12FF3456u);
    EXPECT_EQ(marker, 0);
  }
  {  // 0xFF 0xFF 0xFF 0xD9: marker D9, all consumed, nothing added.
    const uint8_t src[] = {0xA5, 0xFF, 0xFF, 0xFF, 0xD9, 0x77};
    DecState st{};
    int pos = 0, marker = 0;
    ASSERT_EQ(vj::ownpj_FillBitBuffer(src, 6, &pos, &marker, 16, &st), vprStatusOk);
    EXPECT_EQ(marker, 0xD9);
    EXPECT_EQ(pos, 5);
    EXPECT_EQ(st.nbits, 8);
    EXPECT_EQ(st.acc, 0xA5u);
    // With the marker pending nothing more is read: enough bits -> 0, more -> -63.
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 6, &pos, &marker, 8, &st), vprStatusOk);
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 6, &pos, &marker, 9, &st), vprStatusCodeRange);
    EXPECT_EQ(pos, 5);
    EXPECT_EQ(st.nbits, 8);
    // The caller clears the marker: reading resumes after it.
    marker = 0;
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 6, &pos, &marker, 9, &st), vprStatusOk);
    EXPECT_EQ(pos, 6);
    EXPECT_EQ(st.nbits, 16);
    EXPECT_EQ(st.acc, 0xA577u);
  }
  {  // End of input: 0 when the needed bits are there, -62 otherwise.
    const uint8_t src[] = {0x01, 0x02};
    DecState st{};
    int pos = 0, marker = 0;
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 2, &pos, &marker, 16, &st), vprStatusOk);
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(st.nbits, 16);
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 2, &pos, &marker, 17, &st), vprStatusOutOfBuffer);
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(st.nbits, 16);
    EXPECT_EQ(st.acc, 0x0102u);
  }
  {  // A trailing 0xFF (and fill bytes) run out: -62 with the position at the end.
    const uint8_t src[] = {0x33, 0xFF, 0xFF};
    DecState st{};
    int pos = 0, marker = 0;
    EXPECT_EQ(vj::ownpj_FillBitBuffer(src, 3, &pos, &marker, 0, &st), vprStatusOutOfBuffer);
    EXPECT_EQ(pos, 3);
    EXPECT_EQ(st.nbits, 8);
    EXPECT_EQ(st.acc, 0x33u);
    EXPECT_EQ(marker, 0);
  }
}

TEST(HuffmanBits, SymbolDecodingFastSlowAndLongCodes) {
  DecTables t = dec_tables(kDcLuma, kAcLuma);
  // 0xFA (16 bits, 1111111111111110) through the slow path; then 0/1 "00";
  // then EOB "1010" with the stream ending after it (fewer than 8 bits
  // left: the slow path from length 1 finds it).
  Bits b;
  b.add("1111111111111110").add("00").add("1010");
  std::vector<uint8_t> src = b.bytes(true);
  DecState st{};
  int pos = 0, marker = 0, sym = -1;
  ASSERT_EQ(vj::ownpj_DecodeHuffSymbol(src.data(), static_cast<int>(src.size()), &pos, &marker, &sym, dl(t.ac), &st),
            vprStatusOk);
  EXPECT_EQ(sym, 0xFA);
  ASSERT_EQ(vj::ownpj_DecodeHuffSymbol(src.data(), static_cast<int>(src.size()), &pos, &marker, &sym, dl(t.ac), &st),
            vprStatusOk);
  EXPECT_EQ(sym, 0x01);
  ASSERT_EQ(vj::ownpj_DecodeHuffSymbol(src.data(), static_cast<int>(src.size()), &pos, &marker, &sym, dl(t.ac), &st),
            vprStatusOk);
  EXPECT_EQ(sym, 0x00);
  EXPECT_EQ(st.nbits, 2);  // the two pad bits
  // Pad bits "11" alone match nothing and the input is exhausted: -62.
  EXPECT_EQ(vj::ownpj_DecodeHuffSymbol(src.data(), static_cast<int>(src.size()), &pos, &marker, &sym, dl(t.ac), &st),
            vprStatusOutOfBuffer);

  // All ones match nothing: -63 with symbol 0 after 17 bits.
  const uint8_t ones[] = {0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0x0F};
  DecState s2{};
  pos = 0;
  sym = -1;
  EXPECT_EQ(vj::ownpj_DecodeHuffSymbol(ones, 7, &pos, &marker, &sym, dl(t.ac), &s2), vprStatusCodeRange);
  EXPECT_EQ(sym, 0);
  EXPECT_EQ(pos, 7);
  EXPECT_EQ(s2.nbits, 32 - 17);

  // A code that continues past a marker: -63.
  const uint8_t mk[] = {0xFF, 0x00, 0xFF, 0xD0};
  DecState s3{};
  pos = 0;
  marker = 0;
  EXPECT_EQ(vj::ownpj_DecodeHuffSymbol(mk, 4, &pos, &marker, &sym, dl(t.ac), &s3), vprStatusCodeRange);
  EXPECT_EQ(marker, 0xD0);
  EXPECT_EQ(pos, 4);
}

// ------------------------------------------------------------------ block coding: known answers

namespace {

struct Coder {
  EncTables et = enc_tables(kDcLuma, kAcLuma);
  DecTables dt = dec_tables(kDcLuma, kAcLuma);
  alignas(64) EncState est{};
  std::vector<uint8_t> out = std::vector<uint8_t>(4096, 0xEE);
  int pos = 0;
  int16_t dc = 0;
  VprStatus enc(const int16_t* blk) {
    return vpriEncodeHuffman8x8_JPEG_16s1u_C1(blk, out.data(), static_cast<int>(out.size()), &pos, &dc, et.dcp(),
                                              et.acp(), es(&est), 0);
  }
  VprStatus flush() {
    return vpriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), static_cast<int>(out.size()), &pos, nullptr,
                                              nullptr, nullptr, es(&est), 1);
  }
  std::vector<uint8_t> bytes() const { return {out.begin(), out.begin() + pos}; }
};

std::vector<uint8_t> decode_all(const std::vector<uint8_t>& src, int nblocks, std::vector<int16_t>* coefs,
                                const DecTables& t) {
  DecState st{};
  int pos = 0, marker = 0;
  int16_t dc = 0;
  coefs->assign(static_cast<size_t>(nblocks) * 64, 0);
  for (int i = 0; i < nblocks; ++i) {
    const VprStatus s = vpriDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), static_cast<int>(src.size()), &pos,
                                                           coefs->data() + 64 * i, &dc, &marker, t.dcp(), t.acp(),
                                                           ds(&st));
    if (s != vprStatusOk) return {};
  }
  return {src.begin(), src.begin() + pos};
}

}  // namespace

TEST(HuffmanBlock, KnownAnswers) {
  const std::vector<int> zz = zigzag_order();
  {  // All zeros, last DC 0: DC code of 0 ("00") and EOB ("1010").
    Coder c;
    int16_t blk[64] = {};
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    ASSERT_EQ(c.flush(), vprStatusOk);
    EXPECT_EQ(c.bytes(), std::vector<uint8_t>({0x2B}));
  }
  {  // DC difference -1: category 1 "010", value bit "0", then EOB; exactly one byte.
    Coder c;
    int16_t blk[64] = {};
    blk[0] = -1;
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    EXPECT_EQ(c.pos, 1);
    EXPECT_EQ(c.out[0], 0x4A);
    EXPECT_EQ(c.est.nbits, 0);
    EXPECT_EQ(c.dc, -1);
    std::vector<int16_t> got;
    int16_t back[64];
    DecState st{};
    int pos = 0, marker = 0;
    int16_t dc = 0;
    ASSERT_EQ(vpriDecodeHuffman8x8_JPEG_1u16s_C1(c.out.data(), 1, &pos, back, &dc, &marker, c.dt.dcp(), c.dt.acp(),
                                                 ds(&st)),
              vprStatusOk);
    EXPECT_EQ(back[0], -1);
    EXPECT_EQ(dc, -1);
    for (int i = 1; i < 64; ++i) EXPECT_EQ(back[i], 0);
  }
  {  // Coefficient 63 non-zero: no EOB.  DC 5 (prev 3): "011" + "10".
    Coder c;
    c.dc = 3;
    int16_t blk[64] = {};
    blk[0] = 5;
    blk[63] = 1;  // run 62: three ZRL, then run 14 size 1 (0xE1)
    blk[zz[1]] = -2;  // 0/2 "01" + "01"
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    ASSERT_EQ(c.flush(), vprStatusOk);
    // Zeros between k = 1 and k = 63: 61, so three ZRL and run 13 size 1.
    Bits w;
    w.add("011").add("10").add("01").add("01");
    w.add("11111111001").add("11111111001").add("11111111001");
    alignas(64) uint8_t acl[1024];
    make_enc(kAcLuma, acl);
    const uint32_t d1 = entry(acl, 0xD1);
    w.add(d1 & 0xFFFF, static_cast<int>(d1 >> 16)).add("1");
    EXPECT_EQ(c.bytes(), w.bytes(true));
    EXPECT_EQ(c.dc, 5);
  }
  {  // A run of 33 zeros before a non-zero coefficient: ZRL ZRL then 1/1.
    Coder c;
    int16_t blk[64] = {};
    blk[zz[34]] = 1;
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    ASSERT_EQ(c.flush(), vprStatusOk);
    Bits w;
    w.add("00").add("11111111001").add("11111111001").add("1100").add("1").add("1010");
    EXPECT_EQ(c.bytes(), w.bytes(true));
  }
  {  // Negative AC values: -3 is category 2 with bits "00"; 255 category 8.
    Coder c;
    int16_t blk[64] = {};
    blk[zz[1]] = -3;
    blk[zz[2]] = 255;
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    ASSERT_EQ(c.flush(), vprStatusOk);
    Bits w;
    w.add("00").add("01").add("00").add("1111110110").add("11111111").add("1010");
    EXPECT_EQ(c.bytes(), w.bytes(true));
  }
}

TEST(HuffmanBlock, ArgumentChecksInOrder) {
  Coder c;
  int16_t blk[64] = {};
  int pos = 0;
  int16_t dc = 0;
  auto enc = [&](const int16_t* s, uint8_t* d, int len, int* p, int16_t* pdc, const VprEncodeHuffmanSpec* a,
                 const VprEncodeHuffmanSpec* b, VprEncodeHuffmanState* st, int flush) {
    return vpriEncodeHuffman8x8_JPEG_16s1u_C1(s, d, len, p, pdc, a, b, st, flush);
  };
  uint8_t* o = c.out.data();
  // pDst null beats dstLen; dstLen beats the position pointer.
  EXPECT_EQ(enc(blk, nullptr, 0, nullptr, &dc, c.et.dcp(), c.et.acp(), es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(enc(blk, o, 0, nullptr, &dc, c.et.dcp(), c.et.acp(), es(&c.est), 0), vprStatusBadSize);
  EXPECT_EQ(enc(blk, o, -5, &pos, &dc, c.et.dcp(), c.et.acp(), es(&c.est), 1), vprStatusBadSize);
  EXPECT_EQ(enc(blk, o, 10, nullptr, &dc, c.et.dcp(), c.et.acp(), es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(enc(blk, o, 10, &pos, &dc, c.et.dcp(), c.et.acp(), nullptr, 1), vprStatusNullPointer);
  // Without flush the block arguments are required.
  EXPECT_EQ(enc(nullptr, o, 10, &pos, &dc, c.et.dcp(), c.et.acp(), es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(enc(blk, o, 10, &pos, nullptr, c.et.dcp(), c.et.acp(), es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(enc(blk, o, 10, &pos, &dc, nullptr, c.et.acp(), es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(enc(blk, o, 10, &pos, &dc, c.et.dcp(), nullptr, es(&c.est), 0), vprStatusNullPointer);
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(c.out[0], 0xEE);

  DecState st{};
  int16_t dst[64];
  std::memset(dst, 0x77, sizeof dst);
  int marker = 0;
  const uint8_t src[4] = {0x2B};
  auto dec = [&](const uint8_t* s, int len, int* p, int16_t* d, int16_t* pdc, int* m, const VprDecodeHuffmanSpec* a,
                 const VprDecodeHuffmanSpec* b, VprDecodeHuffmanState* sst) {
    return vpriDecodeHuffman8x8_JPEG_1u16s_C1(s, len, p, d, pdc, m, a, b, sst);
  };
  EXPECT_EQ(dec(nullptr, -1, &pos, dst, &dc, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, -1, nullptr, dst, &dc, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusBadArg);
  EXPECT_EQ(dec(src, 4, nullptr, dst, &dc, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, nullptr, &dc, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, dst, nullptr, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, dst, &dc, nullptr, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, dst, &dc, &marker, nullptr, c.dt.acp(), ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, dst, &dc, &marker, c.dt.dcp(), nullptr, ds(&st)), vprStatusNullPointer);
  EXPECT_EQ(dec(src, 4, &pos, dst, &dc, &marker, c.dt.dcp(), c.dt.acp(), nullptr), vprStatusNullPointer);
  EXPECT_EQ(dst[0], 0x7777);
  EXPECT_EQ(pos, 0);
  // srcLen 0 is allowed: the stream is simply empty.
  EXPECT_EQ(dec(src, 0, &pos, dst, &dc, &marker, c.dt.dcp(), c.dt.acp(), ds(&st)), vprStatusOutOfBuffer);
}

// ------------------------------------------------------------------ block coding: failures

TEST(HuffmanBlock, EncoderFailuresLeaveExactState) {
  const std::vector<int> zz = zigzag_order();
  {  // -64: AC symbol without code (run 1 size 0 does not exist; category 11
     // at run 0 is not in the luminance table).  The DC is already updated,
     // the bytes of earlier symbols written.
    Coder c;
    int16_t blk[64] = {};
    blk[0] = 7;
    blk[zz[1]] = 1;
    blk[zz[2]] = 1500;  // category 11: symbol 0x0B has no code
    ASSERT_EQ(c.enc(blk), vprStatusBadHuffTable);
    EXPECT_EQ(c.dc, 7);
    // written: DC "100"+"111", 0/1 "00"+"1" = 9 bits -> one byte, 1 waiting
    EXPECT_EQ(c.pos, 1);
    EXPECT_EQ(c.out[0], 0x9C);
    EXPECT_EQ(c.est.nbits, 1);
    EXPECT_EQ(c.est.acc, 0x9C800000u);
  }
  {  // -62 at every possible buffer length; the fast and careful paths
     // agree with a plain writer-by-writer model of the block.
    vprtest::Rng rng(11);
    for (int trial = 0; trial < 40; ++trial) {
      int16_t blk[64];
      random_block(rng, blk, 0.6, trial % 2 == 1);
      Coder full;
      full.est.nbits = 3;
      full.est.acc = 0x11A00000u;
      full.dc = 9;
      ASSERT_EQ(full.enc(blk), vprStatusOk);
      for (int len = 1; len <= full.pos; ++len) {
        Coder c;
        c.est.nbits = 3;
        c.est.acc = 0x11A00000u;
        c.dc = 9;
        std::vector<uint8_t> out(len, 0xEE);
        const VprStatus s = vpriEncodeHuffman8x8_JPEG_16s1u_C1(blk, out.data(), len, &c.pos, &c.dc, c.et.dcp(),
                                                               c.et.acp(), es(&c.est), 0);
        if (len < full.pos) {
          ASSERT_EQ(s, vprStatusOutOfBuffer) << len;
          ASSERT_EQ(c.pos, len);  // bytes stored up to the end
        } else {
          ASSERT_EQ(s, vprStatusOk);
          ASSERT_EQ(std::memcmp(&c.est, &full.est, 20), 0);
        }
        ASSERT_EQ(c.dc, blk[0]);
        ASSERT_TRUE(vprtest::same_array(out.data(), full.out.data(), static_cast<size_t>(c.pos)));
      }
    }
  }
}

TEST(HuffmanBlock, DecoderFailuresLeaveExactState) {
  Coder c;
  const std::vector<int> zz = zigzag_order();
  {  // -2: runs that would place a coefficient past position 63.  DC 0, then
     // 15 x (run 3 size 1 "111111110101" + bit) reaches k = 61, then run 15
     // size 1 jumps to k = 76.
    alignas(64) uint8_t acl[1024];
    make_enc(kAcLuma, acl);
    Bits b;
    b.add("00");
    const uint32_t c31 = entry(acl, 0x31), cf1 = entry(acl, 0xF1);
    for (int i = 0; i < 15; ++i) b.add(c31 & 0xFFFF, static_cast<int>(c31 >> 16)).add("1");
    b.add(cf1 & 0xFFFF, static_cast<int>(cf1 >> 16)).add("1");
    std::vector<uint8_t> src = b.bytes(true);
    for (int path = 0; path < 2; ++path) {
      DecState st{};
      st.word3 = 99;
      int pos = 0, marker = 0;
      int16_t dc = 4, dst[64];
      const VprStatus s =
          path == 0 ? vpriDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), static_cast<int>(src.size()), &pos, dst, &dc,
                                                         &marker, c.dt.dcp(), c.dt.acp(), ds(&st))
                    : vj::ref::decode_block_8x8(src.data(), static_cast<int>(src.size()), &pos, dst, &dc, &marker,
                                                dl(c.dt.dc), dl(c.dt.ac), &st);
      EXPECT_EQ(s, vprStatusError);
      EXPECT_EQ(st.word3, 0);
      EXPECT_EQ(dc, 4);
      for (int i = 0; i < 15; ++i) EXPECT_EQ(dst[zz[4 * i + 4]], 1) << i;
      EXPECT_EQ(dst[63], 0);
    }
  }
  {  // -62 in the middle of a block: coefficients so far kept, the rest zero,
     // DC updated, position at the end.
    int16_t blk[64] = {};
    blk[0] = 100;
    blk[zz[1]] = 5;
    blk[zz[2]] = -7;
    blk[zz[9]] = 3;
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    ASSERT_EQ(c.flush(), vprStatusOk);
    const std::vector<uint8_t> full = c.bytes();
    for (size_t cut = 0; cut < full.size(); ++cut) {
      for (int path = 0; path < 2; ++path) {
        DecState st{};
        st.word3 = 5;
        int pos = 0, marker = 0;
        int16_t dc = 0, dst[64];
        const VprStatus s =
            path == 0 ? vpriDecodeHuffman8x8_JPEG_1u16s_C1(full.data(), static_cast<int>(cut), &pos, dst, &dc, &marker,
                                                           c.dt.dcp(), c.dt.acp(), ds(&st))
                      : vj::ref::decode_block_8x8(full.data(), static_cast<int>(cut), &pos, dst, &dc, &marker,
                                                  dl(c.dt.dc), dl(c.dt.ac), &st);
        ASSERT_EQ(s, vprStatusOutOfBuffer) << cut;
        EXPECT_EQ(pos, static_cast<int>(cut));
        EXPECT_EQ(st.word3, 0);
        // A lone 0xFF as the last byte ends the input before any bit is
        // used (its stuffed 0x00 was cut off).
        const bool lone_ff = cut > 0 && full[cut - 1] == 0xFF;
        if (cut >= 2 && !lone_ff) {
          EXPECT_EQ(dc, 100) << cut << " path " << path;
        }
        if (cut >= 4 && !lone_ff) {
          EXPECT_EQ(dst[zz[1]], 5) << cut;
        }
        for (int k = 10; k < 64; ++k) ASSERT_EQ(dst[zz[k]], 0);
      }
    }
  }
  {  // A marker inside a block: -63, marker reported, position after it.
    int16_t blk[64] = {};
    blk[zz[1]] = 1;
    blk[zz[20]] = -1;
    Coder m;
    ASSERT_EQ(m.enc(blk), vprStatusOk);
    ASSERT_EQ(m.flush(), vprStatusOk);
    std::vector<uint8_t> src = m.bytes();
    ASSERT_GE(src.size(), 3u);
    src.resize(1);
    src.push_back(0xFF);
    src.push_back(0xD3);
    src.push_back(0x00);
    for (int path = 0; path < 2; ++path) {
      DecState st{};
      int pos = 0, marker = 0;
      int16_t dc = 0, dst[64];
      const VprStatus s =
          path == 0 ? vpriDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), static_cast<int>(src.size()), &pos, dst, &dc,
                                                         &marker, m.dt.dcp(), m.dt.acp(), ds(&st))
                    : vj::ref::decode_block_8x8(src.data(), static_cast<int>(src.size()), &pos, dst, &dc, &marker,
                                                dl(m.dt.dc), dl(m.dt.ac), &st);
      EXPECT_EQ(s, vprStatusCodeRange);
      EXPECT_EQ(marker, 0xD3);
      EXPECT_EQ(pos, 3);
    }
  }
}

// ------------------------------------------------------------------ fast and careful paths

TEST(HuffmanBlock, FastAndCarefulEncodersAgree) {
  vprtest::Rng rng(21);
  EncTables tabs[2] = {enc_tables(kDcLuma, kAcLuma), enc_tables(kDcChroma, kAcChroma)};
  int declined = 0;
  for (int trial = 0; trial < 6000; ++trial) {
    int16_t blk[64];
    const int kind = trial % 4;
    random_block(rng, blk, kind == 0 ? 0.15 : kind == 1 ? 0.6 : 1.0, kind == 3);
    if (trial % 50 == 7) blk[63] = 1;
    const EncTables& t = tabs[trial % 2];
    EncState a{}, b{};
    a.nbits = b.nbits = static_cast<int>(rng.uniform(0, 7));
    const uint32_t top = static_cast<uint32_t>(rng.uniform(0, 255)) << 24;
    const uint32_t pend = a.nbits ? (static_cast<uint32_t>(rng.uniform(0, 127)) << (24 - a.nbits)) & 0xFFFFFF : 0;
    a.acc = b.acc = top | pend;
    std::vector<uint8_t> oa(1200, 0xEE), ob(1200, 0xEE);
    int pa = 3, pb = 3;
    int16_t dca = static_cast<int16_t>(rng.uniform(-1000, 1000)), dcb = dca;
    VprStatus sa = vj::sse::encode_block_8x8(blk, oa.data(), 1200, &pa, dca, el(t.dc), el(t.ac), &a);
    if (sa == vj::sse::kDeclined) {
      ++declined;
      sa = vj::ref::encode_block_8x8(blk, oa.data(), 1200, &pa, &dca, el(t.dc), el(t.ac), &a);
    }
    const VprStatus sb = vj::ref::encode_block_8x8(blk, ob.data(), 1200, &pb, &dcb, el(t.dc), el(t.ac), &b);
    ASSERT_EQ(sa, sb);
    ASSERT_EQ(pa, pb);
    ASSERT_TRUE(vprtest::same_array(oa.data(), ob.data(), oa.size()));
    ASSERT_EQ(std::memcmp(&a, &b, sizeof a), 0) << trial;
  }
  EXPECT_EQ(declined, 0);
  // Declines: little room, or a symbol without code.
  int16_t blk[64] = {};
  EncState st{};
  std::vector<uint8_t> o(600);
  int p = 100;
  EXPECT_EQ(vj::sse::encode_block_8x8(blk, o.data(), 600, &p, 0, el(tabs[0].dc), el(tabs[0].ac), &st),
            vj::sse::kDeclined);
  blk[1] = 2000;
  p = 0;
  EXPECT_EQ(vj::sse::encode_block_8x8(blk, o.data(), 600, &p, 0, el(tabs[0].dc), el(tabs[0].ac), &st),
            vj::sse::kDeclined);
  EXPECT_EQ(p, 0);
}

// The fast encoder reads the state's last data byte back from the output:
// blocks that write no byte, one byte, or end on a stuffed 0xFF (and on a
// 0x00 that follows a stuffed 0xFF) must leave the careful path's state.
TEST(HuffmanBlock, FastEncoderLastByteCases) {
  vprtest::Rng rng(77);
  EncTables tabs = enc_tables(kDcLuma, kAcLuma);
  int none = 0, one = 0, stuffed_last = 0, zero_after_ff = 0;
  for (int trial = 0; trial < 20000; ++trial) {
    int16_t blk[64] = {};
    blk[0] = static_cast<int16_t>(rng.uniform(-3, 3));
    const int nnz = static_cast<int>(rng.uniform(0, 3));
    for (int i = 0; i < nnz; ++i)
      blk[rng.uniform(1, 63)] = static_cast<int16_t>(rng.coin() ? rng.uniform(1, 1023) : -rng.uniform(1, 1023));
    EncState a{}, b{};
    a.nbits = b.nbits = static_cast<int>(rng.uniform(0, 7));
    const uint32_t top = static_cast<uint32_t>(rng.coin(0.3) ? 0xFF : rng.uniform(0, 255)) << 24;
    const uint32_t pend = a.nbits ? (static_cast<uint32_t>(rng.uniform(0, 127)) << (24 - a.nbits)) & 0xFFFFFF : 0;
    a.acc = b.acc = top | pend;
    std::vector<uint8_t> oa(700, 0xFF), ob(700, 0xFF);
    int pa = 5, pb = 5;
    const int16_t dc0 = static_cast<int16_t>(rng.uniform(-3, 3));
    int16_t dcb = dc0;
    ASSERT_EQ(vj::sse::encode_block_8x8(blk, oa.data(), 700, &pa, dc0, el(tabs.dc), el(tabs.ac), &a), vprStatusOk);
    ASSERT_EQ(vj::ref::encode_block_8x8(blk, ob.data(), 700, &pb, &dcb, el(tabs.dc), el(tabs.ac), &b), vprStatusOk);
    ASSERT_EQ(pa, pb);
    ASSERT_TRUE(vprtest::same_array(oa.data(), ob.data(), oa.size()));
    ASSERT_EQ(std::memcmp(&a, &b, sizeof a), 0) << trial;
    const int written = pb - 5;
    none += written == 0;
    one += written == 1;
    stuffed_last += written >= 2 && ob[pb - 2] == 0xFF && ob[pb - 1] == 0x00;
    zero_after_ff += written >= 3 && ob[pb - 1] == 0x00 && ob[pb - 2] == 0x00 && ob[pb - 3] == 0xFF;
  }
  EXPECT_GT(none, 0);
  EXPECT_GT(one, 0);
  EXPECT_GT(stuffed_last, 0);
  EXPECT_GT(zero_after_ff, 0);
}

TEST(HuffmanBlock, FastAndCarefulDecodersAgreeOnAnyBytes) {
  vprtest::Rng rng(31);
  Coder c;
  c.out.assign(300 * 300, 0);
  // A valid stream of 300 blocks, then damaged copies of it: flipped bits,
  // inserted markers and fill bytes, truncations.
  for (int i = 0; i < 300; ++i) {
    int16_t blk[64];
    random_block(rng, blk, i % 3 == 0 ? 0.9 : 0.3, i % 7 == 0);
    ASSERT_EQ(c.enc(blk), vprStatusOk);
    if (i % 40 == 39) {
      ASSERT_EQ(c.flush(), vprStatusOk);
    }
  }
  ASSERT_EQ(c.flush(), vprStatusOk);
  const std::vector<uint8_t> clean = c.bytes();
  for (int variant = 0; variant < 200; ++variant) {
    std::vector<uint8_t> src = clean;
    if (variant > 0) {
      const int edits = static_cast<int>(rng.uniform(1, 6));
      for (int k = 0; k < edits; ++k) {
        const size_t at = static_cast<size_t>(rng.uniform(0, static_cast<int64_t>(src.size()) - 1));
        switch (rng.uniform(0, 3)) {
          case 0: src[at] ^= static_cast<uint8_t>(1u << rng.uniform(0, 7)); break;
          case 1: src.insert(src.begin() + static_cast<long>(at), {0xFF, static_cast<uint8_t>(rng.uniform(0xC0, 0xFE))}); break;
          case 2: src.insert(src.begin() + static_cast<long>(at), {0xFF, 0xFF, 0xFF}); break;
          default: src.resize(at); break;
        }
      }
    }
    DecState sa{}, sb{};
    int pa = 0, pb = 0, ma = 0, mb = 0;
    int16_t dca = 0, dcb = 0;
    const int len = static_cast<int>(src.size());
    for (int blkno = 0; blkno < 320; ++blkno) {
      int16_t da[64], db[64];
      VprStatus ra = vj::sse::decode_block_8x8(src.data(), len, &pa, da, &dca, &ma, dl(c.dt.dc), dl(c.dt.ac), &sa);
      if (ra == vj::sse::kDeclined)
        ra = vj::ref::decode_block_8x8(src.data(), len, &pa, da, &dca, &ma, dl(c.dt.dc), dl(c.dt.ac), &sa);
      const VprStatus rb =
          vj::ref::decode_block_8x8(src.data(), len, &pb, db, &dcb, &mb, dl(c.dt.dc), dl(c.dt.ac), &sb);
      ASSERT_EQ(ra, rb) << variant << " block " << blkno;
      ASSERT_EQ(pa, pb);
      ASSERT_EQ(ma, mb);
      ASSERT_EQ(dca, dcb);
      ASSERT_EQ(std::memcmp(&sa, &sb, sizeof sa), 0);
      ASSERT_TRUE(vprtest::same_array(da, db, 64));
      if (ra == vprStatusOutOfBuffer) break;
      if (ma != 0 && rng.coin(0.7)) ma = mb = 0;  // the caller handles the marker
      if (ra != vprStatusOk) {  // resynchronise as a codec would: drop the bits
        sa.nbits = sb.nbits = 0;
      }
    }
  }
}

// ------------------------------------------------------------------ round trips

TEST(HuffmanBlock, RandomRoundTripThroughOneStateWithFlushes) {
  vprtest::Rng rng(41);
  Coder c;
  const int n = 2000;
  std::vector<int16_t> blocks(static_cast<size_t>(n) * 64);
  std::vector<int> restart_after;
  for (int i = 0; i < n; ++i) {
    random_block(rng, &blocks[64 * static_cast<size_t>(i)], (i % 5) * 0.25, i % 11 == 0);
  }
  c.out.assign(static_cast<size_t>(n) * 300, 0);
  std::vector<std::pair<int, int>> segments;  // [start, end) byte ranges
  int seg_start = 0, seg_first = 0;
  std::vector<int> seg_first_block;
  for (int i = 0; i < n; ++i) {
    ASSERT_EQ(c.enc(&blocks[64 * static_cast<size_t>(i)]), vprStatusOk);
    if (i % 97 == 96 || i == n - 1) {
      ASSERT_EQ(c.flush(), vprStatusOk);
      segments.push_back({seg_start, c.pos});
      seg_first_block.push_back(seg_first);
      seg_start = c.pos;
      seg_first = i + 1;
      c.dc = 0;  // a restart interval resets the prediction
    }
  }
  // Decode segment by segment (fresh state and DC per segment).
  for (size_t s = 0; s < segments.size(); ++s) {
    DecState st{};
    int pos = segments[s].first, marker = 0;
    int16_t dc = 0;
    const int last = s + 1 < segments.size() ? seg_first_block[s + 1] : n;
    for (int i = seg_first_block[s]; i < last; ++i) {
      int16_t got[64];
      ASSERT_EQ(vpriDecodeHuffman8x8_JPEG_1u16s_C1(c.out.data(), segments[s].second, &pos, got, &dc, &marker,
                                                   c.dt.dcp(), c.dt.acp(), ds(&st)),
                vprStatusOk)
          << i;
      ASSERT_TRUE(vprtest::same_array(got, &blocks[64 * static_cast<size_t>(i)], 64)) << "block " << i;
    }
    EXPECT_EQ(marker, 0);
  }
}

TEST(HuffmanBlock, ExtremeValuesRoundTrip) {
  // A table holding every DC category 0..16 and every AC symbol: DC
  // differences of +-32767 and AC values up to +-32767 round-trip.
  RawTable dc{{}, {}}, ac{{}, {}};
  for (int s = 0; s <= 16; ++s) dc.values.push_back(static_cast<uint8_t>(s));
  dc.counts[4] = 17;  // 17 codes of length 5
  for (int v = 0; v < 256; ++v) ac.values.push_back(static_cast<uint8_t>(v));
  ac.counts[7] = 255;  // 255 codes of length 8, one of 9
  ac.counts[8] = 1;
  Coder c;
  ASSERT_EQ(make_enc(dc, c.et.dc), vprStatusOk);
  ASSERT_EQ(make_enc(ac, c.et.ac), vprStatusOk);
  ASSERT_EQ(make_dec(dc, c.dt.dc), vprStatusOk);
  ASSERT_EQ(make_dec(ac, c.dt.ac), vprStatusOk);
  const std::vector<int> zz = zigzag_order();
  std::vector<int16_t> blocks;
  const int16_t specials[] = {-32767, 32767, -32767, 16384, -16384, 1, -1, 255, -256};
  for (int i = 0; i < 40; ++i) {
    int16_t b[64] = {};
    b[0] = static_cast<int16_t>(i % 2 ? 0 : 32767);
    for (int k = 1; k < 64; ++k)
      if ((k * 7 + i) % 5 < 2) b[zz[k]] = specials[(k + i) % 9];
    blocks.insert(blocks.end(), b, b + 64);
    ASSERT_EQ(c.enc(b), vprStatusOk) << i;
  }
  ASSERT_EQ(c.flush(), vprStatusOk);
  std::vector<int16_t> got;
  ASSERT_FALSE(decode_all(c.bytes(), 40, &got, c.dt).empty());
  EXPECT_TRUE(vprtest::same_array(got.data(), blocks.data(), blocks.size()));

  // AC -32768 is category 16: symbol run*16+16 and 16 value bits 0x7FFF.
  Coder d = c;
  d.pos = 0;
  d.dc = 0;
  std::memset(&d.est, 0, sizeof d.est);
  int16_t b[64] = {};
  b[zz[2]] = -32768;
  ASSERT_EQ(d.enc(b), vprStatusOk);
  ASSERT_EQ(d.flush(), vprStatusOk);
  alignas(64) uint8_t dce[1024], ace[1024];
  make_enc(dc, dce);
  make_enc(ac, ace);
  Bits w;
  w.add(entry(dce, 0) & 0xFFFF, 5).add(entry(ace, 0x20) & 0xFFFF, 8).add(0x7FFF, 16).add(entry(ace, 0) & 0xFFFF, 8);
  EXPECT_EQ(d.bytes(), w.bytes(true));
  // Run 15 with category 16 would be symbol 256: no code, -64.
  int16_t b2[64] = {};
  b2[zz[16]] = -32768;
  EXPECT_EQ(d.enc(b2), vprStatusBadHuffTable);
}

// ------------------------------------------------------------------ never past srcLen

TEST(HuffmanBlock, DecodingStopsAtTheEndOfAPage) {
  const long page = sysconf(_SC_PAGESIZE);
  void* mem = mmap(nullptr, static_cast<size_t>(2 * page), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mem, MAP_FAILED);
  ASSERT_EQ(mprotect(static_cast<uint8_t*>(mem) + page, static_cast<size_t>(page), PROT_NONE), 0);
  uint8_t* end = static_cast<uint8_t*>(mem) + page;
  vprtest::Rng rng(51);
  Coder c;
  for (int i = 0; i < 30; ++i) {
    int16_t blk[64];
    random_block(rng, blk, 0.5);
    ASSERT_EQ(c.enc(blk), vprStatusOk);
  }
  ASSERT_EQ(c.flush(), vprStatusOk);
  std::vector<uint8_t> stream = c.bytes();
  const std::vector<std::vector<uint8_t>> tails = {{}, {0xFF}, {0xFF, 0xFF}, {0xFF, 0x00}, {0xFF, 0xD9}};
  for (const auto& tail : tails) {
    for (size_t cut = 0; cut <= stream.size(); cut += 1 + cut / 8) {
      std::vector<uint8_t> s(stream.begin(), stream.begin() + static_cast<long>(cut));
      s.insert(s.end(), tail.begin(), tail.end());
      uint8_t* src = end - s.size();
      if (!s.empty()) std::memcpy(src, s.data(), s.size());
      DecState st{};
      int pos = 0, marker = 0;
      int16_t dc = 0, dst[64];
      for (int i = 0; i < 40; ++i) {
        const VprStatus r = vpriDecodeHuffman8x8_JPEG_1u16s_C1(src, static_cast<int>(s.size()), &pos, dst, &dc,
                                                               &marker, c.dt.dcp(), c.dt.acp(), ds(&st));
        ASSERT_LE(pos, static_cast<int>(s.size()));
        if (r != vprStatusOk) break;
      }
      // The direct decoder too, on the same bytes.
      int bitpos = 0;
      for (int i = 0; i < 40; ++i) {
        if (vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src, static_cast<int>(s.size()), &bitpos, dst, &dc, c.dt.dcp(),
                                                      c.dt.acp()) != vprStatusOk)
          break;
      }
      ASSERT_LE(bitpos, static_cast<int>(s.size()) * 8);
      // And the single-value decoder.
      DecState so{};
      int opos = 0, omarker = 0;
      for (int i = 0; i < 400; ++i) {
        int16_t v;
        const VprStatus r = vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, static_cast<int>(s.size()), &opos, &v, &omarker,
                                                               c.dt.acp(), ds(&so));
        ASSERT_LE(opos, static_cast<int>(s.size()));
        if (r != vprStatusOk) break;
      }
    }
  }
  munmap(mem, static_cast<size_t>(2 * page));
}
