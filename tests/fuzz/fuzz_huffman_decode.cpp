// libFuzzer target for the Huffman block decoders: arbitrary bytes as the
// table segments and the entropy-coded data.  Checks, besides the
// sanitizers' memory checks, that the fast and careful decoders agree on
// every status, position, state, marker and coefficient, and that no
// decoder moves past its input.
//
// Input: byte 0 flags (bit 0: tables from the input, bit 1: clear markers,
// bit 2: start at a non-zero position), then optionally two table
// segments (16 counts + values each, as in a DHT segment), then the data.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "jpeg/huffman.h"

// The fuzzer links only the Huffman sources: supply the two dependencies
// from the rest of the library here.
namespace vpr {
void* ownMalloc(std::size_t size) { return std::malloc(size); }
void ownFree(void* p) { std::free(p); }
namespace jpeg {
namespace {
struct ZigZag {
  int32_t v[72];
  ZigZag() {
    int k = 0;
    for (int s = 0; s < 15; ++s)
      for (int i = 0; i < 8; ++i) {
        const int r = (s % 2 == 0) ? (s < 8 ? s - i : 7 - i) : (s < 8 ? i : s - 7 + i);
        const int c = s - r;
        if (r < 0 || r > 7 || c < 0 || c > 7) continue;
        v[k++] = r * 8 + c;
      }
    for (; k < 72; ++k) v[k] = 63;
  }
};
const ZigZag kZigZag;
}  // namespace
extern const int32_t own_pj_izigzag_index[72];
}  // namespace jpeg
}  // namespace vpr
const int32_t vpr::jpeg::own_pj_izigzag_index[72] = {
#define Z(i) vpr::jpeg::kZigZag.v[i]
    Z(0),  Z(1),  Z(2),  Z(3),  Z(4),  Z(5),  Z(6),  Z(7),  Z(8),  Z(9),  Z(10), Z(11), Z(12), Z(13), Z(14),
    Z(15), Z(16), Z(17), Z(18), Z(19), Z(20), Z(21), Z(22), Z(23), Z(24), Z(25), Z(26), Z(27), Z(28), Z(29),
    Z(30), Z(31), Z(32), Z(33), Z(34), Z(35), Z(36), Z(37), Z(38), Z(39), Z(40), Z(41), Z(42), Z(43), Z(44),
    Z(45), Z(46), Z(47), Z(48), Z(49), Z(50), Z(51), Z(52), Z(53), Z(54), Z(55), Z(56), Z(57), Z(58), Z(59),
    Z(60), Z(61), Z(62), Z(63), Z(64), Z(65), Z(66), Z(67), Z(68), Z(69), Z(70), Z(71)};
#undef Z

namespace {

namespace vj = vpr::jpeg;

const uint8_t kDcCounts[16] = {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0};
const uint8_t kDcValues[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
// A small AC table with short and 16-bit codes and ZRL.
const uint8_t kAcCounts[16] = {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 2};
const uint8_t kAcValues[40] = {0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51,
                               0x61, 0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42, 0xb1, 0xc1,
                               0x15, 0x52, 0xd1, 0xf0, 0x24, 0x33, 0x62, 0x72, 0xf1, 0xfa, 0x0a, 0x1a};

// Takes one table segment from the input when it is complete.
bool take_table(const uint8_t*& p, const uint8_t* end, vj::DecodeHuffmanSpecLayout* spec) {
  if (end - p < 16) return false;
  int n = 0;
  for (int i = 0; i < 16; ++i) n += p[i];
  if (n > 256 || end - p < 16 + n) return false;
  const bool ok = vj::build_decode_spec(p, p + 16, spec) == vprStatusOk;
  p += 16 + n;
  return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint8_t flags = data[0];
  const uint8_t* p = data + 1;
  const uint8_t* end = data + size;
  vj::DecodeHuffmanSpecLayout dc, ac;
  vj::build_decode_spec(kDcCounts, kDcValues, &dc);
  vj::build_decode_spec(kAcCounts, kAcValues, &ac);
  if (flags & 1) {
    if (!take_table(p, end, &dc)) return 0;
    if (!take_table(p, end, &ac)) return 0;
  }
  // The data in a buffer of exactly its size, so any read past it is caught.
  const int len = static_cast<int>(end - p);
  std::vector<uint8_t> buf(p, end);
  const uint8_t* src = buf.empty() ? reinterpret_cast<const uint8_t*>(&flags) : buf.data();
  const int start = (flags & 4) && len > 0 ? (flags >> 3) % (len + 1) : 0;

  vj::DecodeHuffmanStateLayout sa{}, sb{};
  int pa = start, pb = start, ma = 0, mb = 0;
  int16_t dca = 0, dcb = 0;
  for (int blk = 0; blk < 256; ++blk) {
    int16_t da[64], db[64];
    VprStatus ra = vj::decode_block_8x8(src, len, &pa, da, &dca, &ma, &dc, &ac, &sa);
    VprStatus rb = vj::ref::decode_block_8x8(src, len, &pb, db, &dcb, &mb, &dc, &ac, &sb);
    if (ra != rb || pa != pb || ma != mb || dca != dcb || std::memcmp(&sa, &sb, sizeof sa) != 0 ||
        std::memcmp(da, db, sizeof da) != 0 || pa > len || sa.nbits < 0 || sa.nbits > 32)
      std::abort();
    if (ra == vprStatusOutOfBuffer) break;
    if (ma != 0 && (flags & 2)) ma = mb = 0;
    if (ra != vprStatusOk) sa.nbits = sb.nbits = 0;
    if (ra != vprStatusOk && ma != 0) break;
  }
  // The single-value decoder on the same bytes.
  vj::DecodeHuffmanStateLayout so{};
  int po = 0, mo = 0;
  for (int i = 0; i < 256; ++i) {
    int16_t v;
    const VprStatus r = vpriDecodeHuffmanOne_JPEG_1u16s_C1(src, len, &po, &v, &mo,
                                                           reinterpret_cast<const VprDecodeHuffmanSpec*>(&dc),
                                                           reinterpret_cast<VprDecodeHuffmanState*>(&so));
    if (po > len) std::abort();
    if (r != vprStatusOk) break;
  }
  // The Direct decoder: plain bits, never past len bytes.
  int bit = 0;
  for (int i = 0; i < 256; ++i) {
    int16_t d[64];
    int16_t pdc = 0;
    const int before = bit;
    const VprStatus r = vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
        src, len, &bit, d, &pdc, reinterpret_cast<const VprDecodeHuffmanSpec*>(&dc),
        reinterpret_cast<const VprDecodeHuffmanSpec*>(&ac));
    if (bit > len * 8 || (r != vprStatusOk && bit != before)) std::abort();
    if (r != vprStatusOk) break;
  }
  return 0;
}
