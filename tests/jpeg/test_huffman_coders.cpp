// The Direct (bit-position) block coders, the single-value coders and the
// optimal-table builder.
#include <algorithm>
#include <cstring>
#include <functional>
#include <queue>
#include <vector>

#include "jpeg/huffman.h"
#include "test_huffman_tables.h"
#include "vprjp_jpeg_huffman.h"
#include "vprtest.h"

using namespace hufftest;

namespace {

void random_block(vprtest::Rng& rng, int16_t* blk, double density) {
  static const std::vector<int> zz = zigzag_order();
  std::memset(blk, 0, 128);
  blk[0] = static_cast<int16_t>(rng.uniform(-1024, 1023));
  for (int k = 1; k < 64; ++k)
    if (rng.coin(density)) blk[zz[k]] = static_cast<int16_t>(rng.uniform(-300, 300));
}

}  // namespace

// ------------------------------------------------------------------ Direct

TEST(HuffmanDirect, KnownAnswerWithoutStuffingAndKeepsEarlierBits) {
  EncTables t = enc_tables(kDcLuma, kAcLuma);
  // Start at bit 3 of a byte whose first three bits (101) must survive.
  uint8_t out[8];
  std::memset(out, 0xFF, sizeof out);
  out[0] = 0xB7;
  int bitpos = 3;
  int16_t dc = 0;
  int16_t blk[64] = {};
  blk[1] = 1;  // 0/1 "00" "1"
  // DC 0 "00", 0/1 "001", EOB "1010": 9 bits after the 3 kept ones.
  ASSERT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, out, 8, &bitpos, &dc, t.dcp(), t.acp()), vprStatusOk);
  EXPECT_EQ(bitpos, 12);
  Bits w;
  w.add("101").add("00").add("001").add("1010");
  const std::vector<uint8_t> want = w.bytes(false, false);
  EXPECT_EQ(out[0], want[0]);
  EXPECT_EQ(out[1], 0xA0);  // "1010" then zero bits
  EXPECT_EQ(out[2], 0xFF);  // untouched
  // A block whose bits contain 0xFF gets no stuffing.
  uint8_t o2[8] = {};
  int p2 = 0;
  dc = 0;
  int16_t b2[64] = {};
  b2[0] = 2047;  // category 11 "111111110" + 11111111111
  ASSERT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b2, o2, 8, &p2, &dc, t.dcp(), t.acp()), vprStatusOk);
  EXPECT_EQ(p2, 9 + 11 + 4);
  EXPECT_EQ(o2[0], 0xFF);
  EXPECT_EQ(o2[1], 0x7F);
  EXPECT_EQ(o2[2], 0xFA);
}

TEST(HuffmanDirect, RoundTripAndFailuresChangeNothing) {
  EncTables et = enc_tables(kDcChroma, kAcChroma);
  DecTables dt = dec_tables(kDcChroma, kAcChroma);
  vprtest::Rng rng(7);
  const int n = 400;
  std::vector<int16_t> blocks(64 * n);
  for (int i = 0; i < n; ++i) random_block(rng, &blocks[64 * i], (i % 4) * 0.3);
  std::vector<uint8_t> out(n * 200, 0);
  int bitpos = 0;
  int16_t dc = 0;
  for (int i = 0; i < n; ++i) {
    // Every block first with a buffer one byte too small: -62, nothing
    // written, nothing advanced.
    std::vector<uint8_t> trial = out;
    int end = bitpos;
    int16_t tdc = dc;
    ASSERT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[64 * i], trial.data(), static_cast<int>(trial.size()),
                                                        &end, &tdc, et.dcp(), et.acp()),
              vprStatusOk);
    const int need = (end + 7) / 8;
    if (need > 1) {
      const std::vector<uint8_t> before(out.begin(), out.begin() + need + 8);
      int p = bitpos;
      int16_t d = dc;
      ASSERT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[64 * i], out.data(), need - 1, &p, &d, et.dcp(),
                                                          et.acp()),
                vprStatusOutOfBuffer);
      ASSERT_EQ(p, bitpos);
      ASSERT_EQ(d, dc);
      ASSERT_TRUE(std::equal(before.begin(), before.end(), out.begin()));
    }
    ASSERT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[64 * i], out.data(), static_cast<int>(out.size()),
                                                        &bitpos, &dc, et.dcp(), et.acp()),
              vprStatusOk);
    ASSERT_EQ(dc, blocks[64 * i]);
  }
  const int bytes = (bitpos + 7) / 8;
  int rpos = 0;
  int16_t rdc = 0;
  for (int i = 0; i < n; ++i) {
    int16_t got[64];
    ASSERT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(out.data(), bytes, &rpos, got, &rdc, dt.dcp(), dt.acp()),
              vprStatusOk)
        << i;
    ASSERT_TRUE(vprtest::same_array(got, &blocks[64 * i], 64)) << i;
  }
  EXPECT_EQ(rpos, bitpos);
  // Past the end: -62, position and DC unchanged.
  int16_t got[64];
  const int16_t keep = rdc;
  rpos = bytes * 8;  // (the zero pad bits would decode as a block of zeros)
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(out.data(), bytes, &rpos, got, &rdc, dt.dcp(), dt.acp()),
            vprStatusOutOfBuffer);
  EXPECT_EQ(rpos, bytes * 8);
  EXPECT_EQ(rdc, keep);
  // Truncations anywhere inside the last block: -62, nothing advanced.
  int lastStart = 0;
  {
    int p = 0;
    int16_t d = 0;
    for (int i = 0; i < n - 1; ++i)
      vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(out.data(), bytes, &p, got, &d, dt.dcp(), dt.acp());
    lastStart = p;
    for (int len = lastStart / 8; len < bytes; ++len) {
      int q = p;
      int16_t dd = d;
      if ((bitpos + 7) / 8 <= len) break;
      EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(out.data(), len, &q, got, &dd, dt.dcp(), dt.acp()),
                vprStatusOutOfBuffer);
      EXPECT_EQ(q, p);
      EXPECT_EQ(dd, d);
    }
  }
  // All-ones bits match no code: -63.
  const uint8_t ones[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  int p = 0;
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(ones, 4, &p, got, &rdc, dt.dcp(), dt.acp()),
            vprStatusCodeRange);
  EXPECT_EQ(p, 0);
}

TEST(HuffmanDirect, ArgumentChecks) {
  EncTables et = enc_tables(kDcLuma, kAcLuma);
  DecTables dt = dec_tables(kDcLuma, kAcLuma);
  int16_t blk[64] = {};
  uint8_t buf[64] = {};
  int pos = 0;
  int16_t dc = 0;
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(nullptr, buf, 0, &pos, &dc, et.dcp(), et.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, nullptr, 0, &pos, &dc, et.dcp(), et.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 0, nullptr, &dc, et.dcp(), et.acp()),
            vprStatusBadSize);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, nullptr, &dc, et.dcp(), et.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, &pos, nullptr, et.dcp(), et.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, &pos, &dc, nullptr, et.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, &pos, &dc, et.dcp(), nullptr),
            vprStatusNullPointer);
  pos = -1;
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, &pos, &dc, et.dcp(), et.acp()), vprStatusBadArg);
  // A position past the buffer: -62 without touching memory.
  pos = 64 * 8 + 3;
  EXPECT_EQ(vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, 64, &pos, &dc, et.dcp(), et.acp()),
            vprStatusOutOfBuffer);
  pos = 0;
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(nullptr, -1, &pos, blk, &dc, dt.dcp(), dt.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, -1, nullptr, blk, &dc, dt.dcp(), dt.acp()),
            vprStatusBadArg);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, nullptr, blk, &dc, dt.dcp(), dt.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, &pos, nullptr, &dc, dt.dcp(), dt.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, &pos, blk, nullptr, dt.dcp(), dt.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, &pos, blk, &dc, nullptr, dt.acp()),
            vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, &pos, blk, &dc, dt.dcp(), nullptr),
            vprStatusNullPointer);
  pos = -8;
  EXPECT_EQ(vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, 4, &pos, blk, &dc, dt.dcp(), dt.acp()), vprStatusBadArg);
}

// ------------------------------------------------------------------ One

TEST(HuffmanOne, RoundTripOfEveryValueKind) {
  // DC-style table with categories 0..16.
  RawTable t{{}, {}};
  for (int s = 0; s <= 16; ++s) t.values.push_back(static_cast<uint8_t>(s));
  t.counts[4] = 17;
  alignas(64) uint8_t enc[1024], dec[1644];
  ASSERT_EQ(make_enc(t, enc), vprStatusOk);
  ASSERT_EQ(make_dec(t, dec), vprStatusOk);
  const auto* es = reinterpret_cast<const VprEncodeHuffmanSpec*>(enc);
  const auto* dsp = reinterpret_cast<const VprDecodeHuffmanSpec*>(dec);
  alignas(64) uint8_t est[1048] = {};
  alignas(64) uint8_t dst[24] = {};
  std::vector<int16_t> values = {0, 1, -1, 2, -2, 3, -3, 255, -255, 1023, -1024, 16383, -16384, 32767, -32767, -32768};
  vprtest::Rng rng(3);
  for (int i = 0; i < 500; ++i) values.push_back(static_cast<int16_t>(rng.uniform(-32768, 32767)));
  std::vector<uint8_t> out(8192);
  int pos = 0;
  for (int16_t v : values)
    ASSERT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out.data(), 8192, &pos, es,
                                                 reinterpret_cast<VprEncodeHuffmanState*>(est), 0),
              vprStatusOk);
  ASSERT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, out.data(), 8192, &pos, nullptr,
                                               reinterpret_cast<VprEncodeHuffmanState*>(est), 1),
            vprStatusOk);
  // Known bits of the first values: 0 -> code 0 (00000), 1 -> code 1 + "1".
  EXPECT_EQ(out[0], 0x00);  // 00000 00001 ...
  int rpos = 0, marker = 0;
  for (size_t i = 0; i < values.size(); ++i) {
    int16_t got = 12345;
    ASSERT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(out.data(), pos, &rpos, &got, &marker, dsp,
                                                 reinterpret_cast<VprDecodeHuffmanState*>(dst)),
              vprStatusOk)
        << i;
    ASSERT_EQ(got, values[i]) << i;
  }
  // Symbols above 16 are no category: -63, *pDst untouched, word 3 cleared.
  RawTable bad{{1}, {17}};
  alignas(64) uint8_t dbad[1644];
  ASSERT_EQ(make_dec(bad, dbad), vprStatusOk);
  const uint8_t zero[2] = {0x00, 0x00};
  std::memset(dst, 0, sizeof dst);
  dst[12] = 9;
  int p = 0;
  int16_t got = 77;
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(zero, 2, &p, &got, &marker,
                                               reinterpret_cast<const VprDecodeHuffmanSpec*>(dbad),
                                               reinterpret_cast<VprDecodeHuffmanState*>(dst)),
            vprStatusCodeRange);
  EXPECT_EQ(got, 77);
  EXPECT_EQ(dst[12], 0);
}

TEST(HuffmanOne, ArgumentChecks) {
  alignas(64) uint8_t enc[1024], dec[1644], est[1048] = {}, dst[24] = {};
  make_enc(kDcLuma, enc);
  make_dec(kDcLuma, dec);
  auto* es = reinterpret_cast<VprEncodeHuffmanState*>(est);
  auto* ds = reinterpret_cast<VprDecodeHuffmanState*>(dst);
  const auto* ep = reinterpret_cast<const VprEncodeHuffmanSpec*>(enc);
  const auto* dp = reinterpret_cast<const VprDecodeHuffmanSpec*>(dec);
  int16_t v = 5;
  uint8_t out[16];
  int pos = 0, marker = 0;
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, nullptr, 0, &pos, ep, es, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out, 0, nullptr, ep, es, 0), vprStatusBadSize);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out, 16, nullptr, ep, es, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out, 16, &pos, ep, nullptr, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, out, 16, &pos, ep, es, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out, 16, &pos, nullptr, es, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, out, 16, &pos, nullptr, es, 1), vprStatusOk);
  EXPECT_EQ(pos, 0);
  // Category 12 is not in the luminance DC table: -64.
  v = 4000;
  EXPECT_EQ(vpriEncodeHuffmanOne_JPEG_16s1u_C1(&v, out, 16, &pos, ep, es, 0), vprStatusBadHuffTable);
  const uint8_t src[2] = {};
  int16_t got;
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(nullptr, 2, &pos, &got, &marker, dp, ds), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, -1, nullptr, &got, &marker, dp, ds), vprStatusBadArg);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, 2, nullptr, &got, &marker, dp, ds), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, 2, &pos, nullptr, &marker, dp, ds), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, 2, &pos, &got, nullptr, dp, ds), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, 2, &pos, &got, &marker, nullptr, ds), vprStatusNullPointer);
  EXPECT_EQ(vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, 2, &pos, &got, &marker, dp, nullptr), vprStatusNullPointer);
}

// ------------------------------------------------------------------ optimal tables

namespace {

// Total coded length of a Huffman code built by a plain priority queue,
// with the reserved extra symbol of count 1 (unlimited lengths).
int64_t plain_huffman_cost(const std::vector<int64_t>& counts) {
  std::priority_queue<int64_t, std::vector<int64_t>, std::greater<int64_t>> q;
  for (int64_t c : counts)
    if (c > 0) q.push(c);
  q.push(1);
  int64_t cost = 0;
  while (q.size() > 1) {
    const int64_t a = q.top();
    q.pop();
    const int64_t b = q.top();
    q.pop();
    cost += a + b;
    q.push(a + b);
  }
  return cost;
}

}  // namespace

TEST(HuffmanRawTable, OptimalLengthsAndValidTables) {
  vprtest::Rng rng(5);
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<int> counts(256, 0);
    const int used = static_cast<int>(rng.uniform(1, 256));
    for (int i = 0; i < used; ++i) counts[rng.uniform(0, 255)] = static_cast<int>(rng.uniform(1, trial % 2 ? 50 : 100000));
    uint8_t bits[16], vals[256];
    std::memset(vals, 0xAB, sizeof vals);
    ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
    // Every used symbol listed exactly once, then zeros.
    int total = 0;
    for (int l = 0; l < 16; ++l) total += bits[l];
    int present = 0;
    for (int c : counts) present += c > 0;
    ASSERT_EQ(total, present);
    std::vector<int> len_of(256, 0);
    int p = 0;
    for (int l = 1; l <= 16; ++l)
      for (int i = 0; i < bits[l - 1]; ++i) len_of[vals[p++]] = l;
    for (int v = 0; v < 256; ++v) ASSERT_EQ(len_of[v] > 0, counts[v] > 0) << v;
    for (int i = total; i < 256; ++i) ASSERT_EQ(vals[i], 0);
    // A valid table (no all-ones code).
    alignas(64) uint8_t enc[1024];
    ASSERT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(bits, vals, reinterpret_cast<VprEncodeHuffmanSpec*>(enc)),
              vprStatusOk);
    // Optimal whenever the unlimited code needs no more than 16 bits: cost
    // equals the plain Huffman cost minus the reserved symbol's share.
    std::vector<int64_t> c64(counts.begin(), counts.end());
    int64_t cost = 0;
    int maxlen = 0;
    for (int v = 0; v < 256; ++v) {
      cost += static_cast<int64_t>(counts[v]) * len_of[v];
      maxlen = std::max(maxlen, len_of[v]);
    }
    if (maxlen <= 14) {
      // No length limiting happened: an optimal code over the symbols plus
      // the reserved one (count 1), minus the reserved leaf's length.
      const int64_t plain = plain_huffman_cost(c64);
      EXPECT_LE(cost, plain - 1);
      EXPECT_GE(cost, plain - 32);
    }
  }
}

TEST(HuffmanRawTable, KnownCasesAndLimits) {
  uint8_t bits[16], vals[256];
  std::vector<int> counts(256, 0);
  // Nothing used: all zero.
  std::memset(bits, 0xAA, sizeof bits);
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
  for (uint8_t b : bits) EXPECT_EQ(b, 0);
  // One symbol: one code of length 1 ("0"; "1" is the reserved point).
  counts[42] = 1000;
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
  EXPECT_EQ(bits[0], 1);
  EXPECT_EQ(vals[0], 42);
  // Frequencies 8,4,2,1 (+ reserved 1): lengths 1,2,3,4 and the reserved 4.
  counts.assign(256, 0);
  counts[10] = 8;
  counts[11] = 4;
  counts[12] = 2;
  counts[13] = 1;
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
  const uint8_t want_bits[16] = {1, 1, 1, 1};
  EXPECT_EQ(std::memcmp(bits, want_bits, 16), 0);
  EXPECT_EQ(vals[0], 10);
  EXPECT_EQ(vals[1], 11);
  EXPECT_EQ(vals[2], 12);
  EXPECT_EQ(vals[3], 13);
  // Ties go to the larger symbol: four equal counts give four codes of
  // length... 2,2,3,3 with the reserved leaf; the larger symbols are merged
  // first and end up longer.
  counts.assign(256, 0);
  for (int s = 0; s < 4; ++s) counts[s] = 5;
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
  EXPECT_EQ(bits[0], 0);
  EXPECT_EQ(bits[1], 3);
  EXPECT_EQ(bits[2], 1);
  EXPECT_EQ(vals[3], 3);
  // Fibonacci counts 1, 2, 3, 5, ... (with the reserved 1 in front) make a
  // tree as deep as there are symbols: 30 of them are limited to 16 bits.
  counts.assign(256, 0);
  int64_t f1 = 1, f2 = 2;
  for (int s = 0; s < 30; ++s) {
    counts[s] = static_cast<int>(f1);
    const int64_t f3 = f1 + f2;
    f1 = f2;
    f2 = f3;
  }
  ASSERT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusOk);
  int total = 0;
  for (uint8_t b : bits) total += b;
  EXPECT_EQ(total, 30);
  alignas(64) uint8_t enc[1024];
  EXPECT_EQ(vpriEncodeHuffmanSpecInit_JPEG_8u(bits, vals, reinterpret_cast<VprEncodeHuffmanSpec*>(enc)), vprStatusOk);
  // 45 Fibonacci counts need more than 32 bits before the limit: -64, and
  // nothing is written.
  counts.assign(256, 0);
  f1 = 1;
  f2 = 2;
  for (int s = 0; s < 45; ++s) {
    counts[s] = static_cast<int>(f1);
    const int64_t f3 = f1 + f2;
    f1 = f2;
    f2 = f3;
  }
  std::memset(bits, 0x5C, sizeof bits);
  std::memset(vals, 0x5C, sizeof vals);
  EXPECT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, vals), vprStatusBadHuffTable);
  for (uint8_t b : bits) EXPECT_EQ(b, 0x5C);
  for (uint8_t b : vals) EXPECT_EQ(b, 0x5C);
  EXPECT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(nullptr, bits, vals), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), nullptr, vals), vprStatusNullPointer);
  EXPECT_EQ(vpriEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits, nullptr), vprStatusNullPointer);
}
