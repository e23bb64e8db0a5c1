// MQ coder: table, known answer, round trips over every termination and
// drain size, stream invariants, the complemented decoder against the
// standard one, and reads confined to the input (guard page).
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "jpeg2000/mq.h"
#include "vprtest.h"

namespace {

using namespace vpr::j2k;

struct Symbols {
  std::vector<uint8_t> cx, d;
  size_t size() const { return d.size(); }
};

// Drains an encoder with the given room sizes (cycled) and terminates it.
std::vector<uint8_t> drain(MqEncoder& e, const std::vector<int32_t>& rooms) {
  std::vector<uint8_t> out;
  uint8_t buf[4096];
  size_t r = 0;
  for (;;) {
    int32_t len = rooms[r++ % rooms.size()];
    std::memset(buf, 0xEE, sizeof buf);
    const int32_t room = len;
    const int32_t left = decEncoderMQEncode(&e, buf, &len);
    EXPECT_GE(len, 0);
    EXPECT_LE(len, room);
    for (int32_t i = len; i < static_cast<int32_t>(sizeof buf); ++i) EXPECT_EQ(buf[i], 0xEE) << "wrote past *pLen";
    out.insert(out.end(), buf, buf + len);
    // B is a byte register: a carry must not leave C's carry bit in it.
    EXPECT_LE(e.B, 0xFFu);
    EXPECT_LT(e.A, 0x10000u);
    EXPECT_GE(e.A, 0x8000u);
    if (left == 0) break;
    EXPECT_GT(len, 0) << "no progress with room " << room;
  }
  for (int guard = 0;; ++guard) {
    int32_t len = rooms[r++ % rooms.size()];
    const int32_t room = len;
    std::memset(buf, 0xEE, sizeof buf);
    const int32_t rc = decEncoderMQTerminate(&e, buf, &len);
    EXPECT_LE(len, room);
    for (int32_t i = len; i < static_cast<int32_t>(sizeof buf); ++i) EXPECT_EQ(buf[i], 0xEE);
    out.insert(out.end(), buf, buf + len);
    if (rc == 0) break;
    EXPECT_EQ(rc, 1);
    if (guard > 100000) {
      ADD_FAILURE() << "termination does not finish";
      break;
    }
  }
  EXPECT_EQ(e.total_delivered, out.size());
  return out;
}

std::vector<uint8_t> encode(const Symbols& s, uint32_t mode, const std::vector<int32_t>& rooms = {4096}) {
  std::vector<uint8_t> dec(s.size() + 1), cxs(s.size() + 1);
  MqEncoder e;
  mq_encoder_init(&e, mode, dec.data(), cxs.data(), static_cast<int32_t>(s.size()));
  for (size_t i = 0; i < s.size(); ++i) EXPECT_TRUE(mq_encoder_record(&e, s.cx[i], s.d[i]));
  return drain(e, rooms);
}

// Decodes with both decoders; true when they agree with each other and the
// symbols.
::testing::AssertionResult decodes(const uint8_t* data, size_t n, const Symbols& s, size_t extra = 0) {
  MqDecoder d;
  ref::MqDecoderStd r;
  mq_decoder_init(&d, data, static_cast<int32_t>(n));
  ref::mq_std_init(&r, data, static_cast<int32_t>(n));
  for (size_t i = 0; i < s.size() + extra; ++i) {
    const int cx = i < s.size() ? s.cx[i] : static_cast<int>(i % kMqContexts);
    const int a = mq_decode(&d, cx);
    const int b = ref::mq_std_decode(&r, cx);
    if (a != b) return ::testing::AssertionFailure() << "decoders differ at decision " << i;
    if (i < s.size() && a != s.d[i])
      return ::testing::AssertionFailure() << "decision " << i << " of " << s.size() << ": " << a;
  }
  if (d.pos >= static_cast<int32_t>(std::max<size_t>(n, 1)))
    return ::testing::AssertionFailure() << "position past the data";
  return ::testing::AssertionSuccess();
}

::testing::AssertionResult stream_ok(const std::vector<uint8_t>& out) {
  for (size_t i = 0; i + 1 < out.size(); ++i)
    if (out[i] == 0xFF && out[i + 1] > 0x8F)
      return ::testing::AssertionFailure() << "0xFF followed by " << +out[i + 1] << " at " << i;
  if (!out.empty() && out.back() == 0xFF) return ::testing::AssertionFailure() << "ends in 0xFF";
  return ::testing::AssertionSuccess();
}

// Statistics of a test sequence.
enum class Stats { kUniform, kSkewed, kVerySkewed, kAllZero, kAllOne, kAlternating, kUniformContext };

Symbols make(vprtest::Rng& rng, size_t n, Stats st) {
  Symbols s;
  s.cx.resize(n);
  s.d.resize(n);
  double p[kMqContexts];
  for (double& v : p) v = rng.real(0.0, 1.0);
  for (size_t i = 0; i < n; ++i) {
    const int cx = static_cast<int>(rng.uniform(0, kMqContexts - 1));
    s.cx[i] = static_cast<uint8_t>(cx);
    int d = 0;
    switch (st) {
      case Stats::kUniform: d = rng.coin() ? 1 : 0; break;
      case Stats::kSkewed: d = rng.coin(p[cx] * p[cx]) ? 1 : 0; break;
      case Stats::kVerySkewed: d = rng.coin(0.002) ? 1 - (cx & 1) : (cx & 1); break;
      case Stats::kAllZero: d = 0; break;
      case Stats::kAllOne: d = 1; break;
      case Stats::kAlternating: d = static_cast<int>(i & 1); break;
      case Stats::kUniformContext:
        s.cx[i] = 0;
        d = rng.coin() ? 1 : 0;
        break;
    }
    s.d[i] = static_cast<uint8_t>(d);
  }
  return s;
}

// Two pages, the second one inaccessible; place() puts bytes at the very
// end of the first.
class GuardPage {
 public:
  GuardPage() {
    page_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void* p = mmap(nullptr, 2 * page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) return;
    base_ = static_cast<uint8_t*>(p);
    mprotect(base_ + page_, page_, PROT_NONE);
  }
  ~GuardPage() {
    if (base_) munmap(base_, 2 * page_);
  }
  bool ok() const { return base_ != nullptr; }
  size_t capacity() const { return page_; }
  const uint8_t* place(const uint8_t* data, size_t n) {
    uint8_t* dst = base_ + page_ - n;
    if (n) std::memcpy(dst, data, n);
    return dst;
  }

 private:
  size_t page_ = 0;
  uint8_t* base_ = nullptr;
};

}  // namespace

TEST(MqTables, EstimatorAndInitialStates) {
  const MqEstimatorRow* t = owniEstimator_JPEG2K;
  EXPECT_EQ(t[0].qe, 0x5601u);
  EXPECT_EQ(t[5].qe, 0x0221u);
  EXPECT_EQ(t[5].nmps, 38u);
  EXPECT_EQ(t[13].nmps, 29u);
  EXPECT_EQ(t[45].qe, 0x0001u);
  EXPECT_EQ(t[45].nmps, 45u);
  EXPECT_EQ(t[46].qe, 0x5601u);
  EXPECT_EQ(t[46].nmps, 46u);
  EXPECT_EQ(t[46].nlps, 46u);
  for (int i = 0; i < kMqStates; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(t[i].swtch, (i == 0 || i == 6 || i == 14) ? 1u : 0u);
    EXPECT_LT(t[i].nmps, 47u);
    EXPECT_LT(t[i].nlps, 47u);
    EXPECT_EQ(t[i].qe & 1u, 1u);
    EXPECT_LT(t[i].qe, 0x8000u);
  }
  MqContext ctx[kMqContexts];
  mq_reset_contexts(ctx);
  EXPECT_EQ(ctx[0].index, 46);
  EXPECT_EQ(ctx[1].index, 3);
  EXPECT_EQ(ctx[2].index, 4);
  for (int i = 3; i < kMqContexts; ++i) EXPECT_EQ(ctx[i].index, 0);
  for (int i = 0; i < kMqContexts; ++i) EXPECT_EQ(ctx[i].mps, 0);
}

// The test sequence of the MQ coder published with ITU-T T.88 (H.2): 256
// decisions in one context starting in state 0 with MPS 0.  The coded bytes
// are followed there by the marker 0xFF 0xAC.
TEST(MqKnownAnswer, PublishedTestSequence) {
  const uint8_t data[32] = {0x00, 0x02, 0x00, 0x51, 0x00, 0x00, 0x00, 0xC0, 0x03, 0x52, 0x87,
                            0x2A, 0xAA, 0xAA, 0xAA, 0xAA, 0x82, 0xC0, 0x20, 0x00, 0xFC, 0xD7,
                            0x9E, 0xF6, 0xBF, 0x7F, 0xED, 0x90, 0x4F, 0x46, 0xA3, 0xBF};
  const uint8_t coded[30] = {0x84, 0xC7, 0x3B, 0xFC, 0xE1, 0xA1, 0x43, 0x04, 0x02, 0x20,
                             0x00, 0x00, 0x41, 0x0D, 0xBB, 0x86, 0xF4, 0x31, 0x7F, 0xFF,
                             0x88, 0xFF, 0x37, 0x47, 0x1A, 0xDB, 0x6A, 0xDF, 0xFF, 0xAC};
  Symbols s;
  for (int i = 0; i < 256; ++i) {
    s.cx.push_back(3);
    s.d.push_back(static_cast<uint8_t>((data[i / 8] >> (7 - i % 8)) & 1));
  }
  EXPECT_TRUE(decodes(coded, sizeof coded, s));
  const std::vector<uint8_t> out = encode(s, kMqTermDefault);
  ASSERT_EQ(out.size(), 28u);
  EXPECT_TRUE(vprtest::same_array(out.data(), coded, 28));
  // Byte at a time gives the same bytes.
  EXPECT_EQ(encode(s, kMqTermDefault, {1}), out);
}

// Hand-worked: three MPS decisions in the uniform context (state 46, Qe
// 0x5601, no adaptation).  The first one takes the conditional exchange
// (A - Qe = 0x29FF < Qe: A = Qe, C stays 0), the next two add Qe to C; each
// renormalises once: A = 0xAC02, C = (0x5601 * 2 + 0x5601) * 2 = 0x20406,
// CT = 9.
TEST(MqKnownAnswer, HandWorkedUniformContext) {
  Symbols s;
  for (int i = 0; i < 3; ++i) {
    s.cx.push_back(0);
    s.d.push_back(0);
  }
  std::vector<uint8_t> dec(3), cxs(3);
  MqEncoder e;
  mq_encoder_init(&e, kMqTermDefault, dec.data(), cxs.data(), 3);
  for (int i = 0; i < 3; ++i) mq_encoder_record(&e, 0, 0);
  uint8_t buf[8];
  int32_t len = 8;
  EXPECT_EQ(decEncoderMQEncode(&e, buf, &len), 0);
  EXPECT_EQ(len, 0);
  EXPECT_EQ(e.A, 0xAC02u);
  EXPECT_EQ(e.CT, 9u);
  EXPECT_EQ(e.C, 0x20406u);
  // FLUSH: TEMPC = C + A = 0x2B008; C | 0xFFFF = 0x2FFFF >= TEMPC, so C =
  // 0x27FFF.  C << 9 = 0x4FFFE00: the dummy is staged, B = 0x9F, C = 0x7FE00,
  // CT = 8.  (C | 0x7FFF) << 8 = 0x7FFFF00: 0x9F staged, B = 0xFF, which
  // ends the code-word.
  len = 8;
  EXPECT_EQ(decEncoderMQTerminate(&e, buf, &len), 0);
  ASSERT_EQ(len, 1);
  EXPECT_EQ(buf[0], 0x9F);
  EXPECT_TRUE(decodes(buf, 1, s));
}

TEST(MqRoundTrip, EveryModeStatisticsAndDrainSize) {
  vprtest::Rng rng(71);
  const std::vector<std::vector<int32_t>> rooms = {{1}, {2}, {3}, {1, 7, 2}, {5}, {16}, {64}, {4096}};
  const Stats stats[] = {Stats::kUniform, Stats::kSkewed,      Stats::kVerySkewed,    Stats::kAllZero,
                         Stats::kAllOne,  Stats::kAlternating, Stats::kUniformContext};
  const size_t lengths[] = {0, 1, 2, 3, 5, 17, 100, 1000, 20000};
  for (Stats st : stats)
    for (size_t n : lengths) {
      const Symbols s = make(rng, n, st);
      std::vector<uint8_t> out[3];
      for (uint32_t mode = 0; mode < 3; ++mode) {
        SCOPED_TRACE(::testing::Message() << "stats " << static_cast<int>(st) << " n " << n << " mode " << mode);
        out[mode] = encode(s, mode);
        EXPECT_TRUE(stream_ok(out[mode]));
        EXPECT_TRUE(decodes(out[mode].data(), out[mode].size(), s, 64));
        for (const auto& r : rooms) {
          if (n > 1000 && r[0] < 16 && r.size() == 1 && r[0] != 1) continue;
          EXPECT_EQ(encode(s, mode, r), out[mode]);
        }
      }
      EXPECT_LE(out[1].size(), out[0].size());
    }
}

TEST(MqRoundTrip, LongSequences) {
  vprtest::Rng rng(5);
  for (Stats st : {Stats::kUniform, Stats::kSkewed, Stats::kVerySkewed}) {
    const Symbols s = make(rng, 400000, st);
    for (uint32_t mode = 0; mode < 3; ++mode) {
      SCOPED_TRACE(::testing::Message() << "stats " << static_cast<int>(st) << " mode " << mode);
      const std::vector<uint8_t> out = encode(s, mode, {1, 1000, 3});
      EXPECT_TRUE(stream_ok(out));
      EXPECT_TRUE(decodes(out.data(), out.size(), s));
    }
  }
}

// The shortest termination: never longer than the default one, and no
// shorter truncation of it decodes every decision.
TEST(MqTermination, ShortestIsShortest) {
  vprtest::Rng rng(99);
  int shorter = 0;
  for (int iter = 0; iter < 3000; ++iter) {
    const size_t n = static_cast<size_t>(rng.uniform(0, 60));
    const Symbols s = make(rng, n, iter % 2 ? Stats::kUniform : Stats::kSkewed);
    const std::vector<uint8_t> m0 = encode(s, kMqTermDefault);
    const std::vector<uint8_t> m1 = encode(s, kMqTermShortest);
    ASSERT_LE(m1.size(), m0.size());
    shorter += m1.size() < m0.size();
    ASSERT_TRUE(decodes(m1.data(), m1.size(), s));
    if (!m1.empty()) {
      // Dropping the last byte (the decoder feeds 1-bits instead) loses a
      // decision.
      MqDecoder d;
      mq_decoder_init(&d, m1.data(), static_cast<int32_t>(m1.size() - 1));
      bool all = true;
      for (size_t i = 0; i < n; ++i) all &= mq_decode(&d, s.cx[i]) == s.d[i];
      EXPECT_FALSE(all) << "iteration " << iter << ": " << m1.size() - 1 << " bytes suffice";
    }
  }
  EXPECT_GT(shorter, 50);  // about one code-word in twenty saves bytes
}

// Exhaustively: for short code-words of the shortest termination, no byte
// string of one byte less decodes every decision.
TEST(MqTermination, ShortestBeatsEveryShorterString) {
  vprtest::Rng rng(123);
  auto decodes_all = [](const uint8_t* p, int32_t n, const Symbols& s) {
    MqDecoder d;
    mq_decoder_init(&d, p, n);
    for (size_t i = 0; i < s.size(); ++i)
      if (mq_decode(&d, s.cx[i]) != s.d[i]) return false;
    return true;
  };
  int checked[4] = {0, 0, 0, 0};
  for (int iter = 0; iter < 4000 && std::min({checked[1], checked[2], checked[3]}) < 4; ++iter) {
    const Symbols s = make(rng, static_cast<size_t>(rng.uniform(1, 24)), Stats::kUniform);
    const std::vector<uint8_t> m1 = encode(s, kMqTermShortest);
    const size_t len = m1.size();
    if (len == 0 || len > 3 || checked[len] >= 4) continue;
    ++checked[len];
    uint8_t cand[2] = {0, 0};
    const uint32_t total = len == 1 ? 1u : len == 2 ? 256u : 65536u;
    for (uint32_t v = 0; v < total; ++v) {
      cand[0] = static_cast<uint8_t>(len == 3 ? v >> 8 : v);
      cand[1] = static_cast<uint8_t>(v);
      ASSERT_FALSE(decodes_all(cand, static_cast<int32_t>(len - 1), s)) << "iteration " << iter << ", " << len - 1 << " bytes";
    }
  }
  EXPECT_GT(checked[1], 0);
  EXPECT_GT(checked[2], 0);
  EXPECT_GT(checked[3], 0);
}

TEST(MqTermination, EmptyCodeWord) {
  const Symbols s;
  EXPECT_EQ(encode(s, kMqTermDefault), (std::vector<uint8_t>{0xFF, 0x7F}));
  EXPECT_TRUE(encode(s, kMqTermShortest).empty());
  EXPECT_TRUE(encode(s, kMqTermPredictable).empty());
}

TEST(MqTermination, ReturnValuesAndStaging) {
  vprtest::Rng rng(3);
  const Symbols s = make(rng, 500, Stats::kUniform);
  const std::vector<uint8_t> whole = encode(s, kMqTermDefault);
  std::vector<uint8_t> dec(500), cxs(500);
  MqEncoder e;
  mq_encoder_init(&e, kMqTermDefault, dec.data(), cxs.data(), 500);
  for (size_t i = 0; i < 500; ++i) mq_encoder_record(&e, s.cx[i], s.d[i]);
  uint8_t buf[1024];
  int32_t len = 0;
  // No room: nothing happens.
  EXPECT_EQ(decEncoderMQEncode(&e, buf, &len), 500);
  EXPECT_EQ(len, 0);
  EXPECT_EQ(decEncoderMQTerminate(&e, buf, &len), 1);
  EXPECT_EQ(len, 0);
  EXPECT_EQ(e.next, 0);
  EXPECT_EQ(e.term_pending, 1u);
  // Terminate also codes what is left, a few bytes at a time.
  std::vector<uint8_t> out;
  int calls = 0;
  int32_t rc;
  do {
    len = 3;
    rc = decEncoderMQTerminate(&e, buf, &len);
    out.insert(out.end(), buf, buf + len);
    ++calls;
  } while (rc == 1 && calls < 10000);
  EXPECT_EQ(rc, 0);
  EXPECT_EQ(out, whole);
  len = 100;
  EXPECT_EQ(decEncoderMQTerminate(&e, buf, &len), 0);
  EXPECT_EQ(len, 0);
  len = 100;
  EXPECT_EQ(decEncoderMQEncode(&e, buf, &len), 0);
  EXPECT_EQ(len, 0);
  // Recording stops at the capacity.
  EXPECT_FALSE(mq_encoder_record(&e, 0, 1));
  EXPECT_EQ(e.count, 500);
}

// Each code-word after a restart keeps the contexts and decodes on its own.
TEST(MqTermination, RestartKeepsContexts) {
  vprtest::Rng rng(8);
  const Symbols s = make(rng, 3000, Stats::kSkewed);
  std::vector<uint8_t> dec(3000), cxs(3000);
  MqEncoder e;
  mq_encoder_init(&e, kMqTermShortest, dec.data(), cxs.data(), 3000);
  const size_t cut[] = {0, 700, 701, 1900, 3000};
  std::vector<std::vector<uint8_t>> words;
  for (int w = 0; w < 4; ++w) {
    if (w) mq_encoder_restart(&e, static_cast<uint32_t>(w % 3));
    for (size_t i = cut[w]; i < cut[w + 1]; ++i) mq_encoder_record(&e, s.cx[i], s.d[i]);
    words.push_back(drain(e, {w == 2 ? 1 : 33}));
  }
  MqDecoder d;
  for (int w = 0; w < 4; ++w) {
    if (w == 0)
      mq_decoder_init(&d, words[0].data(), static_cast<int32_t>(words[0].size()));
    else
      mq_decoder_restart(&d, words[w].data(), static_cast<int32_t>(words[w].size()));
    for (size_t i = cut[w]; i < cut[w + 1]; ++i) ASSERT_EQ(mq_decode(&d, s.cx[i]), s.d[i]) << i;
  }
}

// Arbitrary bytes: both decoders agree decision by decision, keep going past
// the end, and never touch the byte after the data.
TEST(MqDecoder, ArbitraryBytesAtThePageEnd) {
  GuardPage page;
  ASSERT_TRUE(page.ok());
  vprtest::Rng rng(12);
  for (int iter = 0; iter < 400; ++iter) {
    const size_t n = static_cast<size_t>(rng.uniform(0, 48));
    std::vector<uint8_t> bytes(n);
    for (auto& b : bytes) {
      const int64_t k = rng.uniform(0, 9);
      b = static_cast<uint8_t>(k == 0 ? 0xFF : k == 1 ? rng.uniform(0x80, 0x8F) : k == 2 ? 0x7F : rng.uniform(0, 255));
    }
    // The two decoders can only agree on streams a coder could make: a
    // 0xFF is followed by a marker or a stuffed byte below 0x80.
    bool codable = true;
    for (size_t i = 0; i + 1 < n; ++i) codable &= !(bytes[i] == 0xFF && bytes[i + 1] >= 0x80 && bytes[i + 1] <= 0x8F);
    const uint8_t* p = page.place(bytes.data(), n);
    MqDecoder d;
    ref::MqDecoderStd r;
    mq_decoder_init(&d, n ? p : nullptr, static_cast<int32_t>(n));
    ref::mq_std_init(&r, p, static_cast<int32_t>(n));
    for (int i = 0; i < 2000; ++i) {
      const int cx = static_cast<int>(rng.uniform(0, kMqContexts - 1));
      const int a = mq_decode(&d, cx);
      ASSERT_TRUE(a == 0 || a == 1);
      if (codable) {
        ASSERT_EQ(a, ref::mq_std_decode(&r, cx)) << "iteration " << iter << " decision " << i;
      }
    }
    EXPECT_EQ(d.marker, 1u);
    EXPECT_LE(d.pos, static_cast<int32_t>(n));
  }
}

TEST(MqDecoder, CodedStreamsAtThePageEnd) {
  GuardPage page;
  ASSERT_TRUE(page.ok());
  vprtest::Rng rng(13);
  for (int iter = 0; iter < 60; ++iter) {
    const Symbols s = make(rng, static_cast<size_t>(rng.uniform(1, 5000)), iter % 3 ? Stats::kSkewed : Stats::kUniform);
    const std::vector<uint8_t> out = encode(s, static_cast<uint32_t>(iter % 3));
    ASSERT_LE(out.size(), page.capacity());
    const uint8_t* p = page.place(out.data(), out.size());
    EXPECT_TRUE(decodes(p, out.size(), s, 3000));
  }
  // A stream ending in 0xFF, and one ending in 0xFF plus a marker byte.
  const uint8_t tail_ff[] = {0x12, 0x34, 0xFF};
  const uint8_t tail_marker[] = {0x12, 0x34, 0xFF, 0x90};
  for (const auto& [bytes, n] : {std::pair{tail_ff, sizeof tail_ff}, std::pair{tail_marker, sizeof tail_marker}}) {
    const uint8_t* p = page.place(bytes, n);
    MqDecoder d;
    mq_decoder_init(&d, p, static_cast<int32_t>(n));
    ref::MqDecoderStd r;
    ref::mq_std_init(&r, p, static_cast<int32_t>(n));
    for (int i = 0; i < 500; ++i) ASSERT_EQ(mq_decode(&d, i % kMqContexts), ref::mq_std_decode(&r, i % kMqContexts));
    EXPECT_EQ(d.pos, 2);  // input stops at the 0xFF: nothing after it is consumed
  }
}
