// Fast block coders: the bit accumulator lives in registers for the whole
// block.  They produce exactly the bytes, positions and states of the
// careful coders in huffman.cpp; the encoder declines (before anything
// observable changes) when the output might not hold the block or a symbol
// lacks a short enough code, the decoder declines when a marker is pending.
#include <cstring>

#include "core/simd.h"
#include "jpeg/huffman.h"

namespace vpr::jpeg::sse {

namespace {

inline uint32_t bswap32(uint32_t v) { return __builtin_bswap32(v); }

// True when some byte of w is 0xFF.
inline bool has_ff(uint32_t w) {
  const uint32_t x = ~w;
  return ((x - 0x01010101u) & ~x & 0x80808080u) != 0;
}

inline int bit_length(uint32_t a) { return a ? 32 - __builtin_clz(a) : 0; }

// kLowMask[n] = 2^n - 1 (a load is cheaper than a shift by a variable).
constexpr uint32_t kLowMask[33] = {
    0x0,      0x1,      0x3,      0x7,      0xF,       0x1F,      0x3F,      0x7F,      0xFF,
    0x1FF,    0x3FF,    0x7FF,    0xFFF,    0x1FFF,    0x3FFF,    0x7FFF,    0xFFFF,    0x1FFFF,
    0x3FFFF,  0x7FFFF,  0xFFFFF,  0x1FFFFF, 0x3FFFFF,  0x7FFFFF,  0xFFFFFF,  0x1FFFFFF, 0x3FFFFFF,
    0x7FFFFFF, 0xFFFFFFF, 0x1FFFFFFF, 0x3FFFFFFF, 0x7FFFFFFF, 0xFFFFFFFF};

// Local copies of the zig-zag order (natural position of zig-zag position k)
// and of the lowest value of each category: the shared tables would be
// reached through the GOT, one more load per coefficient.
struct ZigZagOrder {
  uint8_t nat[64];
};
constexpr ZigZagOrder make_zigzag_order() {
  ZigZagOrder z{};
  int k = 0;
  for (int s = 0; s < 15; ++s)  // anti-diagonals, alternating direction
    for (int i = 0; i < 8; ++i) {
      const int r = (s % 2 == 0) ? (s < 8 ? s - i : 7 - i) : (s < 8 ? i : s - 7 + i);
      const int c = s - r;
      if (r >= 0 && r < 8 && c >= 0 && c < 8) z.nat[k++] = static_cast<uint8_t>(r * 8 + c);
    }
  return z;
}
alignas(64) constexpr ZigZagOrder kZigZag = make_zigzag_order();
constexpr int32_t kLowestCoef[16] = {0,    -1,    -3,    -7,     -15,    -31,    -63,    -127,
                                     -255, -511, -1023, -2047, -4095, -8191, -16383, -32767};

// The encoder's constant tables behind one base register.
struct EncodeTables {
  uint64_t pow2[33];
  uint32_t lowmask[33];
  uint8_t zz[64];
};
constexpr EncodeTables make_encode_tables() {
  EncodeTables t{};
  for (int i = 0; i <= 32; ++i) {
    t.pow2[i] = uint64_t{1} << i;
    t.lowmask[i] = kLowMask[i];
  }
  for (int i = 0; i < 64; ++i) t.zz[i] = kZigZag.nat[i];
  return t;
}
alignas(64) constexpr EncodeTables kEnc = make_encode_tables();

// The decoder's constant tables behind one base register.
struct DecodeTables {
  uint32_t lowmask[16];
  uint32_t lowest[16];  // 1 - 2^t as unsigned
  uint32_t half[16];    // 2^(t-1): t value bits below it stand for a negative value
  uint8_t zz[64];
};
constexpr DecodeTables make_decode_tables() {
  DecodeTables t{};
  for (int i = 0; i < 16; ++i) {
    t.lowmask[i] = kLowMask[i];
    t.lowest[i] = static_cast<uint32_t>(kLowestCoef[i]);
    t.half[i] = i ? 1u << (i - 1) : 0u;
  }
  for (int i = 0; i < 64; ++i) t.zz[i] = kZigZag.nat[i];
  return t;
}
alignas(64) constexpr DecodeTables kDec = make_decode_tables();

// Worst case of one block with codes of at most 16 bits: 7 waiting bits,
// DC 16+16, 63 x (16+16), 3 ZRL, EOB = 2135 bits = 267 bytes, doubled by
// stuffing, plus the 4-byte store granularity.
constexpr int kEncodeRoom = 560;

// t[row][byte]: the zig-zag positions (as bits) of the non-zero
// coefficients of one row of the block given as an 8-bit column mask.
struct ZigZagBits {
  uint64_t t[8][256];
};
constexpr ZigZagBits make_zigzag_bits() {
  int zpos[64] = {};
  int k = 0;
  for (int s = 0; s < 15; ++s)  // anti-diagonals, alternating direction
    for (int i = 0; i < 8; ++i) {
      const int r = (s % 2 == 0) ? (s < 8 ? s - i : 7 - i) : (s < 8 ? i : s - 7 + i);
      const int c = s - r;
      if (r >= 0 && r < 8 && c >= 0 && c < 8) zpos[r * 8 + c] = k++;
    }
  ZigZagBits z{};
  for (int r = 0; r < 8; ++r)
    for (int m = 0; m < 256; ++m)
      for (int c = 0; c < 8; ++c)
        if (m & (1 << c)) z.t[r][m] |= uint64_t{1} << zpos[r * 8 + c];
  return z;
}
alignas(64) constexpr ZigZagBits kZigZagBits = make_zigzag_bits();

// The last data byte is not tracked while writing: it is read back from the
// output at the end (a 0x00 after a 0xFF there is the stuffed byte).
struct Writer {
  uint8_t* out;
  uint64_t bb;  // right-aligned; only the low n bits matter
  int n;

  inline void emit_byte(uint32_t b) {
    *out++ = static_cast<uint8_t>(b);
    if (b == 0xFF) *out++ = 0;
  }
  // Appends the low len bits of bits (len <= 32).  put_mul shifts the
  // accumulator with a multiply: in the AC loop the variable shifts and the
  // branches would compete for the same two ports.
  inline void put(uint32_t bits, int len) { put_shifted((bb << len) | bits, len); }
  inline void put_mul(uint32_t bits, unsigned len) { put_shifted(bb * kEnc.pow2[len] | bits, static_cast<int>(len)); }
  inline void put_shifted(uint64_t shifted, int len) {  // len <= 32
    bb = shifted;
    n += len;
    if (n >= 32) {
      n -= 32;
      const uint32_t w = static_cast<uint32_t>(bb >> n);
      if (__builtin_expect(!has_ff(w), 1)) {
        const uint32_t be = bswap32(w);
        std::memcpy(out, &be, 4);
        out += 4;
      } else {
        emit_byte(w >> 24);
        emit_byte((w >> 16) & 0xFFu);
        emit_byte((w >> 8) & 0xFFu);
        emit_byte(w & 0xFFu);
      }
    }
  }
};

}  // namespace

VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t prevDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state) {
  const int pos = *pDstPosition;
  if (pos < 0 || static_cast<int64_t>(dstLen) - pos < kEncodeRoom) return kDeclined;

  // Non-zero mask in zig-zag order: a natural-order mask from SSE compares,
  // then each row's byte mapped to its zig-zag bits through a table.
  const __m128i zero = _mm_setzero_si128();
  uint32_t rows[4];
  for (int i = 0; i < 4; ++i) {
    const __m128i a = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i)), zero);
    const __m128i b = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i + 8)), zero);
    rows[i] = ~static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(a, b))) & 0xFFFFu;
  }
  const ZigZagBits& zt = kZigZagBits;
  uint64_t nz = zt.t[0][rows[0] & 0xFF] | zt.t[1][rows[0] >> 8] | zt.t[2][rows[1] & 0xFF] | zt.t[3][rows[1] >> 8] |
                zt.t[4][rows[2] & 0xFF] | zt.t[5][rows[2] >> 8] | zt.t[6][rows[3] & 0xFF] | zt.t[7][rows[3] >> 8];
  nz &= ~uint64_t{1};

  const int c = state->nbits;
  Writer w{pDst + pos, c ? (state->acc >> (24 - c)) & ((1u << c) - 1u) : 0u, c};

  // DC
  const int32_t diff = static_cast<int32_t>(pSrc[0]) - prevDc;
  {
    const int32_t sgn = diff >> 31;
    const int s = bit_length(static_cast<uint32_t>((diff ^ sgn) - sgn));
    const uint32_t e = dc->entry[s];
    const int len = static_cast<int>(e >> 16);
    if (len - 1u > 15u) return kDeclined;
    const uint32_t bits = static_cast<uint32_t>(diff + sgn) & kLowMask[s];
    w.put(((e & kLowMask[len]) << s) | bits, len + s);
  }
  // AC
  const uint32_t zrl = ac->entry[0xF0];
  const uint32_t* const acTab = ac->entry;
  const EncodeTables& T = kEnc;
  unsigned next = 1;  // the zig-zag position after the last coded coefficient
  while (nz) {
    const unsigned k = static_cast<unsigned>(__builtin_ctzll(nz));
    nz &= nz - 1;
    unsigned run = k - next;
    next = k + 1;
    if (__builtin_expect(run > 15, 0)) {
      const unsigned zlen = zrl >> 16;
      if (zlen - 1u > 15u) return kDeclined;
      do {
        w.put(zrl & kLowMask[zlen], static_cast<int>(zlen));
        run -= 16;
      } while (run > 15);
    }
    const int32_t v = pSrc[T.zz[k]];
    const uint32_t sgn = static_cast<uint32_t>(v >> 31);
    const uint32_t t = static_cast<uint32_t>(v) + sgn;  // v, or v - 1 when negative
    const uint32_t a = t ^ sgn;                         // |v|, not 0
    const unsigned s = static_cast<unsigned>(31 ^ __builtin_clz(a)) + 1u;
    const unsigned sym = run * 16 + s;
    if (__builtin_expect(sym > 255, 0)) return kDeclined;
    const uint32_t e = acTab[sym];
    const unsigned len = e >> 16;
    if (__builtin_expect(len - 1u > 15u, 0)) return kDeclined;
    w.put_mul((e & T.lowmask[len]) * T.pow2[s] | (t & T.lowmask[s]), len + s);
  }
  if (next != 64) {
    const uint32_t e = ac->entry[0];
    const int len = static_cast<int>(e >> 16);
    if (len - 1u > 15u) return kDeclined;
    w.put(e & ((1u << len) - 1u), len);
  }
  while (w.n >= 8) {
    w.n -= 8;
    w.emit_byte(static_cast<uint32_t>(w.bb >> w.n) & 0xFFu);
  }
  const uint32_t pending = static_cast<uint32_t>(w.bb) & ((1u << w.n) - 1u);
  const uint8_t* const start = pDst + pos;
  uint32_t last = state->acc >> 24;
  if (w.out - start == 1)
    last = w.out[-1];
  else if (w.out - start >= 2)
    last = (w.out[-1] == 0 && w.out[-2] == 0xFF) ? 0xFFu : w.out[-1];
  state->acc = (last << 24) | (pending << (24 - w.n));
  state->nbits = w.n;
  *pDstPosition = static_cast<int>(w.out - pDst);
  return vprStatusOk;
}

namespace {

struct Reader {
  const uint8_t* src;
  int len;
  int pos;
  int* marker;
  uint32_t acc;
  int n;
  DecodeHuffmanStateLayout* st;
  bool marked;  // *marker != 0; only the careful routines can set it

  // The careful routines on the register copy.
  inline void spill() {
    st->acc = acc;
    st->nbits = n;
  }
  inline void reload() {
    acc = st->acc;
    n = st->nbits;
  }
  // Same effect as ownpj_FillBitBuffer (n < 25 on entry): whole bytes until
  // at least 25 bits are valid; four bytes at once when none is 0xFF.
  inline VprStatus fill(int need) {
    if (!marked && pos <= len - 4) {
      uint32_t w;
      std::memcpy(&w, src + pos, 4);
      w = bswap32(w);
      const int nb = (32 - n) >> 3;
      const uint32_t keep = nb == 4 ? 0xFFFFFFFFu : ~(0xFFFFFFFFu >> (8 * nb));
      if (!has_ff(w & keep)) {
        acc = static_cast<uint32_t>((static_cast<uint64_t>(acc) << (8 * nb)) | (w >> (32 - 8 * nb)));
        n += 8 * nb;
        pos += nb;
        return vprStatusOk;
      }
    }
    spill();
    int p = pos;  // (keeps pos itself out of memory)
    const VprStatus s = ownpj_FillBitBuffer(src, len, &p, marker, need, st);
    pos = p;
    reload();
    marked = *marker != 0;
    return s;
  }
  inline VprStatus need(int t) {
    if (n >= t) return vprStatusOk;
    const VprStatus s = fill(t);
    if (s < 0) return s;
    return n >= t ? vprStatusOk : vprStatusCodeRange;
  }
  inline uint32_t take(int t) {
    n -= t;
    return (acc >> n) & kLowMask[t];
  }
  // The symbol (>= 0) or a negative status.
  inline int slow(int L, const DecodeHuffmanSpecLayout* spec) {
    if (L == 9 && n >= 17) {
      // Every bit the search can read is here: the same search in registers.
      for (int l = 9; l <= 16; ++l) {
        const uint32_t code = (acc >> (n - l)) & kLowMask[l];
        const uint32_t mx = spec->maxcode[l];
        if (mx != 0xFFFF && code <= mx) {
          const int idx = spec->valindex[l] + static_cast<int>(code) - spec->mincode[l];
          n -= l;
          if (static_cast<unsigned>(idx) > 255u) return vprStatusCodeRange;
          return spec->symbols[idx];
        }
      }
      n -= 17;  // no match: the 17th bit is read before giving up
      return vprStatusCodeRange;
    }
    spill();
    int p = pos;
    int sym = 0;
    const VprStatus s = ownpj_DecodeHuffSymbolSlow(src, len, &p, marker, L, &sym, spec, st);
    pos = p;
    reload();
    marked = *marker != 0;
    return s < 0 ? s : sym;
  }
  // The symbol (>= 0; symbols are bytes) or a negative status.
  inline int symbol(const DecodeHuffmanSpecLayout* spec) {
    if (n < 8) {
      const VprStatus s = fill(0);
      if (s < 0) return s;
      if (n < 8) return slow(1, spec);
    }
    uint32_t pair;
    std::memcpy(&pair, spec->fast[(acc >> (n - 8)) & 0xFFu], 4);
    const int l = static_cast<int>(pair >> 16);
    if (l == 0) return slow(9, spec);
    n -= l;
    return static_cast<int>(pair & 0xFFFFu);
  }
};

}  // namespace

VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state) {
  if (*pMarker != 0) return kDeclined;
  clear_block(pDst);

  Reader r{pSrc, srcLen, *pSrcPosition, pMarker, state->acc, state->nbits, state, false};
  VprStatus st;
  int sym = r.symbol(dc);
  if (sym < 0) {
    st = sym;
    goto fail;
  }
  {
    int32_t v = 0;
    if (sym > 0) {
      const int t = sym & 15;
      st = r.need(t);
      if (st < 0) goto fail;
      v = t ? extend_bits(r.take(t), t) : 0;
    }
    *pPreviousDc = static_cast<int16_t>(static_cast<uint16_t>(*pPreviousDc + v));
    pDst[0] = *pPreviousDc;
  }
  {
    const DecodeTables& T = kDec;
    unsigned k = 1;
    for (;;) {
      sym = r.symbol(ac);
      if (sym < 0) {
        st = sym;
        goto fail;
      }
      const unsigned run = static_cast<unsigned>(sym) >> 4, t = static_cast<unsigned>(sym) & 15u;
      if (t != 0) {
        k += run;
        if (r.n < static_cast<int>(t)) {
          st = r.need(static_cast<int>(t));
          if (st < 0) goto fail;
        }
        r.n -= static_cast<int>(t);
        const uint32_t bits = (r.acc >> r.n) & T.lowmask[t];
        if (k > 63) {
          st = vprStatusError;
          goto fail;
        }
        // Sign extension without a branch: add 1 - 2^t when the top bit is 0.
        const uint32_t low = static_cast<uint32_t>(static_cast<int32_t>(bits - T.half[t]) >> 31);
        pDst[T.zz[k]] = static_cast<int16_t>(bits + (low & T.lowest[t]));
        if (++k > 63) break;
      } else if (run == 15) {
        k += 16;
        if (k > 63) break;
      } else {
        break;
      }
    }
  }
  r.spill();
  *pSrcPosition = r.pos;
  return vprStatusOk;
fail:
  r.spill();
  *pSrcPosition = r.pos;
  state->word3 = 0;
  return st;
}

}  // namespace vpr::jpeg::sse
