// MQ coder throughput in decisions per second: recording plus coding (the
// encoder drained in 4 KiB pieces, as a rate-limited code-block coder would)
// and decoding, on two statistics:
//   skewed:  19 contexts with fixed LPS probabilities between 0.1% and 30%
//            (about 0.4 coded bits per decision, like the significance and
//            refinement passes of a typical code-block),
//   uniform: fair coin decisions (about one bit per decision, the worst case).
// The decoder as ISO/IEC 15444-1 C.3 writes it (ref) runs on the same bytes
// for comparison.
#include <cstdint>
#include <random>
#include <vector>

#include "bench_util.h"
#include "jpeg2000/mq.h"

namespace {

using namespace vpr::j2k;

constexpr int kDecisions = 1 << 20;

struct Input {
  std::vector<uint8_t> cx, d, coded;
};

const Input& input(int skewed) {
  static Input in[2];
  Input& r = in[skewed];
  if (!r.d.empty()) return r;
  std::mt19937 rng(skewed ? 11 : 12);
  double p[kMqContexts];
  for (int i = 0; i < kMqContexts; ++i) p[i] = skewed ? 0.001 + 0.3 * (i * 7 % kMqContexts) / kMqContexts : 0.5;
  std::uniform_real_distribution<double> u(0.0, 1.0);
  std::uniform_int_distribution<int> c(0, kMqContexts - 1);
  r.cx.resize(kDecisions);
  r.d.resize(kDecisions);
  for (int i = 0; i < kDecisions; ++i) {
    const int cx = c(rng);
    r.cx[i] = static_cast<uint8_t>(cx);
    r.d[i] = static_cast<uint8_t>((u(rng) < p[cx]) ^ (cx & 1));
  }
  std::vector<uint8_t> dec(kDecisions), cxs(kDecisions);
  MqEncoder e;
  mq_encoder_init(&e, kMqTermDefault, dec.data(), cxs.data(), kDecisions);
  for (int i = 0; i < kDecisions; ++i) mq_encoder_record(&e, r.cx[i], r.d[i]);
  uint8_t buf[4096];
  int32_t len;
  do {
    len = sizeof buf;
    const int32_t left = decEncoderMQEncode(&e, buf, &len);
    r.coded.insert(r.coded.end(), buf, buf + len);
    if (left == 0) break;
  } while (true);
  int32_t rc;
  do {
    len = sizeof buf;
    rc = decEncoderMQTerminate(&e, buf, &len);
    r.coded.insert(r.coded.end(), buf, buf + len);
  } while (rc != 0);
  return r;
}

void BM_MQ_Encode_vprjp(benchmark::State& s) {
  const Input& in = input(static_cast<int>(s.range(0)));
  std::vector<uint8_t> dec(kDecisions), cxs(kDecisions), out(in.coded.size() + 64);
  for (auto _ : s) {
    MqEncoder e;
    mq_encoder_init(&e, kMqTermDefault, dec.data(), cxs.data(), kDecisions);
    for (int i = 0; i < kDecisions; ++i) mq_encoder_record(&e, in.cx[i], in.d[i]);
    size_t pos = 0;
    int32_t len;
    for (;;) {
      len = 4096;
      const int32_t left = decEncoderMQEncode(&e, out.data() + pos, &len);
      pos += static_cast<size_t>(len);
      if (left == 0) break;
    }
    int32_t rc;
    do {
      len = 64;
      rc = decEncoderMQTerminate(&e, out.data() + pos, &len);
      pos += static_cast<size_t>(len);
    } while (rc != 0);
    benchmark::DoNotOptimize(out.data());
  }
  vprbench::set_items(s, kDecisions, "decisions/s");
  s.counters["bits/decision"] = 8.0 * static_cast<double>(in.coded.size()) / kDecisions;
}
BENCHMARK(BM_MQ_Encode_vprjp)->Arg(1)->Arg(0)->ArgName("skewed");

void BM_MQ_Decode_vprjp(benchmark::State& s) {
  const Input& in = input(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    MqDecoder d;
    mq_decoder_init(&d, in.coded.data(), static_cast<int32_t>(in.coded.size()));
    uint32_t acc = 0;
    for (int i = 0; i < kDecisions; ++i) acc += static_cast<uint32_t>(mq_decode(&d, in.cx[i]));
    benchmark::DoNotOptimize(acc);
  }
  vprbench::set_items(s, kDecisions, "decisions/s");
}
BENCHMARK(BM_MQ_Decode_vprjp)->Arg(1)->Arg(0)->ArgName("skewed");

void BM_MQ_Decode_ref(benchmark::State& s) {
  const Input& in = input(static_cast<int>(s.range(0)));
  for (auto _ : s) {
    ref::MqDecoderStd d;
    ref::mq_std_init(&d, in.coded.data(), static_cast<int32_t>(in.coded.size()));
    uint32_t acc = 0;
    for (int i = 0; i < kDecisions; ++i) acc += static_cast<uint32_t>(ref::mq_std_decode(&d, in.cx[i]));
    benchmark::DoNotOptimize(acc);
  }
  vprbench::set_items(s, kDecisions, "decisions/s");
}
BENCHMARK(BM_MQ_Decode_ref)->Arg(1)->Arg(0)->ArgName("skewed");

}  // namespace

namespace {

// Cost of a short code-word with its termination (a code-block coder that
// terminates every coding pass): 32 skewed decisions recorded, coded and
// terminated in each mode; ns per code-word.
void BM_MQ_CodeWord32_vprjp(benchmark::State& s) {
  const Input& in = input(1);
  const uint32_t mode = static_cast<uint32_t>(s.range(0));
  uint8_t dec[32], cxs[32], out[64];
  size_t at = 0;
  for (auto _ : s) {
    MqEncoder e;
    mq_encoder_init(&e, mode, dec, cxs, 32);
    for (int i = 0; i < 32; ++i) mq_encoder_record(&e, in.cx[at + i], in.d[at + i]);
    at = (at + 32) % (kDecisions - 32);
    int32_t len = 64;
    decEncoderMQEncode(&e, out, &len);
    int32_t rest = 64 - len;
    decEncoderMQTerminate(&e, out + len, &rest);
    benchmark::DoNotOptimize(out);
  }
  vprbench::set_ns_per_block(s, 1.0);
}
BENCHMARK(BM_MQ_CodeWord32_vprjp)->Arg(0)->Arg(1)->Arg(2)->ArgName("mode");

}  // namespace
