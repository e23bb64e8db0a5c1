// Huffman table objects, bit-stream states and baseline block coding:
// internal layouts, constant tables, the bit writer and reader, and the two
// block-coding paths (ref: the careful path that checks the buffer on every
// byte; sse: the fast path with the accumulator in registers, which declines
// when it cannot finish the block on its own and produces the same bytes
// and states as the careful path).
#pragma once

#include <cstdint>

#include "core/simd.h"
#include "jpeg/zigzag.h"
#include "vprjp_jpeg_huffman.h"

namespace vpr::jpeg {

// ------------------------------------------------------------ layouts
struct EncodeHuffmanSpecLayout {
  uint32_t entry[256];  // (length << 16) | code, indexed by symbol
};

struct DecodeHuffmanSpecLayout {
  uint16_t symbols[256];
  uint16_t fast[256][2];  // (symbol, length) by the next 8 bits
  uint16_t mincode[18];
  uint16_t maxcode[18];   // 0xFFFF: no code of that length
  uint16_t valindex[18];
};

struct DecodeHuffmanStateLayout {
  uint32_t acc;     // valid bits are the low `nbits` bits
  int32_t nbits;    // 0..32
  int32_t eobrun;   // end-of-band run (progressive AC)
  int32_t word3;    // progressive refinement; cleared by failing decodes
  int32_t word4;
  int32_t unused;
};

struct EncodeHuffmanStateLayout {
  uint32_t acc;    // waiting bits in 23..24-nbits; 24..31: last byte written
  int32_t nbits;   // 0..7
  int32_t eobrun;
  int32_t word3;
  int32_t word4;
  uint8_t correction[1024];
  uint8_t unused[4];
};

static_assert(sizeof(EncodeHuffmanSpecLayout) == 1024);
static_assert(sizeof(DecodeHuffmanSpecLayout) == 1644);
static_assert(sizeof(DecodeHuffmanStateLayout) == 24);
static_assert(sizeof(EncodeHuffmanStateLayout) == 1048);

inline const EncodeHuffmanSpecLayout* layout(const VprEncodeHuffmanSpec* p) {
  return reinterpret_cast<const EncodeHuffmanSpecLayout*>(p);
}
inline const DecodeHuffmanSpecLayout* layout(const VprDecodeHuffmanSpec* p) {
  return reinterpret_cast<const DecodeHuffmanSpecLayout*>(p);
}
inline EncodeHuffmanStateLayout* layout(VprEncodeHuffmanState* p) {
  return reinterpret_cast<EncodeHuffmanStateLayout*>(p);
}
inline DecodeHuffmanStateLayout* layout(VprDecodeHuffmanState* p) {
  return reinterpret_cast<DecodeHuffmanStateLayout*>(p);
}

// ------------------------------------------------------------ constant tables
// own_pj_csize[n]: bit length of n (the magnitude category of |v| < 256).
extern const int32_t own_pj_csize[256];
// own_pj_lowest_coef[t]: lowest value of category t, 1 - 2^t (t = 0..15);
// added to t value bits whose top bit is 0.
extern const int32_t own_pj_lowest_coef[16];

// Magnitude category of a value whose magnitude is below 65536.
inline int category_of(int32_t v) {
  const uint32_t a = static_cast<uint32_t>(v < 0 ? -static_cast<int64_t>(v) : v);
  return a < 256 ? own_pj_csize[a] : 8 + own_pj_csize[a >> 8];
}
// The s value bits of v: v for v >= 0, the low s bits of v - 1 otherwise.
inline uint32_t value_bits(int32_t v, int s) {
  const uint32_t u = v < 0 ? static_cast<uint32_t>(v) - 1u : static_cast<uint32_t>(v);
  return s >= 32 ? u : (u & ((1u << s) - 1u));
}
// Sign extension of t value bits (t = 0..15).
inline int32_t extend_bits(uint32_t v, int t) {
  if (t == 0) return 0;
  const uint32_t low = (v >> (t - 1)) - 1u;  // all ones when the top bit is 0
  return static_cast<int32_t>(v + (low & static_cast<uint32_t>(own_pj_lowest_coef[t])));
}

// Zeroes the 64 coefficients of a block with eight plain stores (a memset
// there becomes a `rep stos`, whose start-up cost is that of a whole block).
inline void clear_block(int16_t* p) {
  __m128i zero = _mm_setzero_si128();
  __asm__("" : "+x"(zero));
  for (int i = 0; i < 8; ++i) _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 8 * i), zero);
}

// ------------------------------------------------------------ builders
VprStatus build_encode_spec(const uint8_t* counts, const uint8_t* values, EncodeHuffmanSpecLayout* spec);
VprStatus build_decode_spec(const uint8_t* counts, const uint8_t* values, DecodeHuffmanSpecLayout* spec);
VprStatus build_optimal_table(const int* pCounts, uint8_t* pCodeLengthCounts, uint8_t* pCodeValues);

// ------------------------------------------------------------ bit writer / reader
// Appends the low nBits (1..24) bits of code.  0 bits: -64 (symbol without
// code); more than 24: -64.  -62 when the output is full: stored bytes and
// the advanced position stay, the state keeps its value from before.
VprStatus ownpj_write_bits_jpeg(uint32_t code, int nBits, uint8_t* pDst, int dstLen, int* pDstPosition,
                                EncodeHuffmanStateLayout* pEncodeState);
// Seven 1-bits through the writer, then the whole state cleared.
VprStatus ownpj_flush_jpeg(uint8_t* pDst, int dstLen, int* pDstPosition, EncodeHuffmanStateLayout* pEncodeState);
// Tops the accumulator up to at least 25 bits (byte stuffing, fill bytes,
// markers into *pMarker).
VprStatus ownpj_FillBitBuffer(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int nBitsNeeded,
                              DecodeHuffmanStateLayout* pDecodeState);
// Reads one Huffman-coded symbol.
VprStatus ownpj_DecodeHuffSymbol(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int* pSymbol,
                                 const DecodeHuffmanSpecLayout* pDecodeSpec, DecodeHuffmanStateLayout* pDecodeState);
// Slow search of the stateful reader from code length L (1 or 9).
VprStatus ownpj_DecodeHuffSymbolSlow(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int L,
                                     int* pSymbol, const DecodeHuffmanSpecLayout* pDecodeSpec,
                                     DecodeHuffmanStateLayout* pDecodeState);
// The slow search on a plain bit string (no stuffing, no markers): the code
// is the L bits at *pBitPosition, extended bit by bit up to 16 bits.
// srcBits is the number of bits available.  -62 past the end, -63 no match;
// the position advances only on success.
VprStatus ownpj_DecodeLongBits(const uint8_t* pSrc, int64_t srcBits, int64_t* pBitPosition, int L, int* pSymbol,
                               const DecodeHuffmanSpecLayout* pDecodeSpec);

// ------------------------------------------------------------ block coders
// Arguments already checked.  prevDc is the caller's last DC; both paths
// store pSrc[0] into it first.
namespace ref {
VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t* pPreviousDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state);
VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state);
}  // namespace ref

namespace sse {
// Fast paths.  Return kDeclined (positive, never a library status) when
// they leave the block to the careful path; then nothing observable changed
// (bytes they wrote past the position are rewritten identically).
inline constexpr VprStatus kDeclined = 0x7FFF;
VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t prevDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state);
VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state);
}  // namespace sse

// The exported block coders' work after the checks: fast path, then the
// careful path if it declined.
VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t* pPreviousDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state);
VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state);

}  // namespace vpr::jpeg
