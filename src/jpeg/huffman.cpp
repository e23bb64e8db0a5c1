// Huffman table objects, bit writer and reader, the careful block coders and
// the exported entries.
#include "jpeg/huffman.h"

#include <cstring>

#include "core/state.h"

namespace vpr::jpeg {

// ------------------------------------------------------------ constant tables
#define VPR_CS4(n) n, n, n, n
#define VPR_CS8(n) VPR_CS4(n), VPR_CS4(n)
#define VPR_CS16(n) VPR_CS8(n), VPR_CS8(n)
#define VPR_CS32(n) VPR_CS16(n), VPR_CS16(n)
#define VPR_CS64(n) VPR_CS32(n), VPR_CS32(n)
alignas(64) const int32_t own_pj_csize[256] = {
    0, 1, 2, 2, VPR_CS4(3), VPR_CS8(4), VPR_CS16(5), VPR_CS32(6), VPR_CS64(7), VPR_CS64(8), VPR_CS64(8)};
#undef VPR_CS4
#undef VPR_CS8
#undef VPR_CS16
#undef VPR_CS32
#undef VPR_CS64

alignas(64) const int32_t own_pj_lowest_coef[16] = {0,     -1,    -3,    -7,     -15,    -31,    -63,    -127,
                                                    -255,  -511,  -1023, -2047,  -4095,  -8191,  -16383, -32767};

// ------------------------------------------------------------ builders
VprStatus build_encode_spec(const uint8_t* counts, const uint8_t* values, EncodeHuffmanSpecLayout* spec) {
  std::memset(spec, 0, sizeof *spec);
  uint8_t lengths[257];
  int total = 0;
  for (int l = 1; l <= 16; ++l) {
    for (int i = 0; i < counts[l - 1]; ++i) {
      if (total >= 256) return vprStatusBadHuffTable;
      lengths[total++] = static_cast<uint8_t>(l);
    }
  }
  lengths[total] = 0;
  uint32_t codes[256];
  uint32_t code = 0;
  int p = 0;
  int len = lengths[0];
  while (lengths[p] != 0) {
    while (lengths[p] == len) codes[p++] = code++;
    if (code >= (1u << len)) return vprStatusBadHuffTable;
    code <<= 1;
    ++len;
  }
  for (int k = 0; k < total; ++k)
    spec->entry[values[k]] = (static_cast<uint32_t>(lengths[k]) << 16) | codes[k];
  return vprStatusOk;
}

VprStatus build_decode_spec(const uint8_t* counts, const uint8_t* values, DecodeHuffmanSpecLayout* spec) {
  int total = 0;
  for (int l = 0; l < 16; ++l) total += counts[l];
  if (total > 256) return vprStatusBadHuffTable;
  std::memset(spec, 0, sizeof *spec);
  for (int k = 0; k < total; ++k) spec->symbols[k] = values[k];
  for (int l = 0; l < 18; ++l) spec->maxcode[l] = 0xFFFF;
  uint32_t code = 0;
  int p = 0;
  for (int l = 1; l <= 16; ++l) {
    const int n = counts[l - 1];
    if (n > 0) {
      spec->valindex[l] = static_cast<uint16_t>(p);
      spec->mincode[l] = static_cast<uint16_t>(code);
      spec->maxcode[l] = static_cast<uint16_t>(code + n - 1);
      for (int i = 0; i < n; ++i, ++code, ++p) {
        if (l > 8) continue;
        const uint32_t span = 1u << (8 - l);
        const uint32_t first = code << (8 - l);
        if (first + span > 256) continue;  // the code does not fit its length
        for (uint32_t j = 0; j < span; ++j) {
          spec->fast[first + j][0] = values[p];
          spec->fast[first + j][1] = static_cast<uint16_t>(l);
        }
      }
    }
    code <<= 1;
  }
  return vprStatusOk;
}

// Optimal code lengths from counts, following the JPEG standard's Annex K.2
// (code sizes by repeated merging, length limit 16, sorted symbol list).
VprStatus build_optimal_table(const int* pCounts, uint8_t* pCodeLengthCounts, uint8_t* pCodeValues) {
  int64_t freq[257];
  int codesize[257];
  int others[257];
  for (int i = 0; i < 256; ++i) freq[i] = pCounts[i] > 0 ? pCounts[i] : 0;
  freq[256] = 1;  // reserved code point: no code of all 1-bits
  for (int i = 0; i < 257; ++i) {
    codesize[i] = 0;
    others[i] = -1;
  }
  for (;;) {
    int c1 = -1, c2 = -1;
    for (int i = 0; i < 257; ++i)  // least frequency, ties to the larger symbol
      if (freq[i] > 0 && (c1 < 0 || freq[i] <= freq[c1])) c1 = i;
    for (int i = 0; i < 257; ++i)
      if (freq[i] > 0 && i != c1 && (c2 < 0 || freq[i] <= freq[c2])) c2 = i;
    if (c2 < 0) break;
    freq[c1] += freq[c2];
    freq[c2] = 0;
    ++codesize[c1];
    while (others[c1] >= 0) {
      c1 = others[c1];
      ++codesize[c1];
    }
    others[c1] = c2;
    ++codesize[c2];
    while (others[c2] >= 0) {
      c2 = others[c2];
      ++codesize[c2];
    }
  }
  int bits[33] = {};
  for (int i = 0; i < 257; ++i) {
    if (codesize[i] == 0) continue;
    if (codesize[i] > 32) return vprStatusBadHuffTable;
    ++bits[codesize[i]];
  }
  for (int i = 32; i > 16; --i) {
    while (bits[i] > 0) {
      int j = i - 2;
      while (bits[j] == 0) --j;
      bits[i] -= 2;
      bits[i - 1] += 1;
      bits[j + 1] += 2;
      bits[j] -= 1;
    }
  }
  int top = 16;
  while (top > 0 && bits[top] == 0) --top;
  if (top > 0) --bits[top];  // drop the reserved code point
  for (int l = 1; l <= 16; ++l) pCodeLengthCounts[l - 1] = static_cast<uint8_t>(bits[l]);
  int p = 0;
  for (int size = 1; size <= 32; ++size)
    for (int v = 0; v < 256; ++v)
      if (codesize[v] == size) pCodeValues[p++] = static_cast<uint8_t>(v);
  for (; p < 256; ++p) pCodeValues[p] = 0;
  return vprStatusOk;
}

// ------------------------------------------------------------ bit writer
// The 32-bit accumulator is widened to 64 bits (shifted up by 32) so that
// up to 24 new bits always fit next to 7 waiting ones; the byte taken is
// bits 16..23 of the 32-bit view, and the state gets the 32-bit view back.
VprStatus ownpj_write_bits_jpeg(uint32_t code, int nBits, uint8_t* pDst, int dstLen, int* pDstPosition,
                                EncodeHuffmanStateLayout* pEncodeState) {
  if (nBits <= 0 || nBits > 24) return vprStatusBadHuffTable;
  int n = pEncodeState->nbits + nBits;
  uint64_t acc = static_cast<uint64_t>(pEncodeState->acc) << 32;
  acc |= static_cast<uint64_t>(code & ((1u << nBits) - 1u)) << (56 - n);
  int pos = *pDstPosition;
  while (n >= 8) {
    const uint8_t b = static_cast<uint8_t>(acc >> 48);
    if (pos >= dstLen) {
      *pDstPosition = pos;
      return vprStatusOutOfBuffer;
    }
    pDst[pos++] = b;
    if (b == 0xFF) {
      if (pos >= dstLen) {
        *pDstPosition = pos;
        return vprStatusOutOfBuffer;
      }
      pDst[pos++] = 0;
    }
    acc <<= 8;
    n -= 8;
  }
  pEncodeState->acc = static_cast<uint32_t>(acc >> 32);
  pEncodeState->nbits = n;
  *pDstPosition = pos;
  return vprStatusOk;
}

VprStatus ownpj_flush_jpeg(uint8_t* pDst, int dstLen, int* pDstPosition, EncodeHuffmanStateLayout* pEncodeState) {
  const VprStatus st = ownpj_write_bits_jpeg(0x7F, 7, pDst, dstLen, pDstPosition, pEncodeState);
  std::memset(pEncodeState, 0, sizeof *pEncodeState);
  return st;
}

// ------------------------------------------------------------ bit reader
VprStatus ownpj_FillBitBuffer(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int nBitsNeeded,
                              DecodeHuffmanStateLayout* pDecodeState) {
  int n = pDecodeState->nbits;
  if (*pMarker != 0) return nBitsNeeded > n ? vprStatusCodeRange : vprStatusOk;
  uint32_t acc = pDecodeState->acc;
  int pos = *pSrcPosition;
  VprStatus st = vprStatusOk;
  while (n < 25) {
    if (pos >= srcLen) {
      st = nBitsNeeded > n ? vprStatusOutOfBuffer : vprStatusOk;
      break;
    }
    const uint32_t b = pSrc[pos++];
    if (b == 0xFF) {
      uint32_t c;
      do {
        if (pos >= srcLen) {
          st = vprStatusOutOfBuffer;
          goto done;
        }
        c = pSrc[pos++];
      } while (c == 0xFF);
      if (c != 0) {
        *pMarker = static_cast<int>(c);
        goto done;
      }
    }
    acc = (acc << 8) | b;
    n += 8;
  }
done:
  pDecodeState->acc = acc;
  pDecodeState->nbits = n;
  *pSrcPosition = pos;
  return st;
}

VprStatus ownpj_DecodeHuffSymbolSlow(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int L,
                                     int* pSymbol, const DecodeHuffmanSpecLayout* spec,
                                     DecodeHuffmanStateLayout* st) {
  if (st->nbits < L) {
    const VprStatus s = ownpj_FillBitBuffer(pSrc, srcLen, pSrcPosition, pMarker, L, st);
    if (s < 0) return s;
    if (st->nbits < L) return vprStatusCodeRange;  // the bits lie beyond a marker
  }
  st->nbits -= L;
  uint32_t code = (st->acc >> st->nbits) & ((1u << L) - 1u);
  for (int l = L; l <= 16; ++l) {
    const uint32_t mx = spec->maxcode[l];
    if (mx != 0xFFFF && code <= mx) {
      const int idx = spec->valindex[l] + static_cast<int>(code) - spec->mincode[l];
      if (idx < 0 || idx > 255) break;
      *pSymbol = spec->symbols[idx];
      return vprStatusOk;
    }
    if (st->nbits == 0) {
      const VprStatus s = ownpj_FillBitBuffer(pSrc, srcLen, pSrcPosition, pMarker, 1, st);
      if (s < 0) return s;
      if (st->nbits == 0) return vprStatusCodeRange;
    }
    st->nbits -= 1;
    code = (code << 1) | ((st->acc >> st->nbits) & 1u);
  }
  *pSymbol = 0;
  return vprStatusCodeRange;
}

VprStatus ownpj_DecodeHuffSymbol(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int* pMarker, int* pSymbol,
                                 const DecodeHuffmanSpecLayout* spec, DecodeHuffmanStateLayout* st) {
  if (st->nbits < 8) {
    const VprStatus s = ownpj_FillBitBuffer(pSrc, srcLen, pSrcPosition, pMarker, 0, st);
    if (s < 0) return s;
    if (st->nbits < 8)
      return ownpj_DecodeHuffSymbolSlow(pSrc, srcLen, pSrcPosition, pMarker, 1, pSymbol, spec, st);
  }
  const uint32_t peek = (st->acc >> (st->nbits - 8)) & 0xFFu;
  const int len = spec->fast[peek][1];
  if (len != 0) {
    st->nbits -= len;
    *pSymbol = spec->fast[peek][0];
    return vprStatusOk;
  }
  return ownpj_DecodeHuffSymbolSlow(pSrc, srcLen, pSrcPosition, pMarker, 9, pSymbol, spec, st);
}

namespace {

inline uint32_t read_bits_raw(const uint8_t* p, int64_t pos, int n) {
  // n <= 16 bits at bit offset pos; the caller made sure they exist.
  uint32_t v = 0;
  const int64_t first = pos >> 3, last = (pos + n - 1) >> 3;
  for (int64_t i = first; i <= last; ++i) v = (v << 8) | p[i];
  const int have = static_cast<int>(last - first + 1) * 8;
  const int skip = static_cast<int>(pos & 7);
  return (v >> (have - skip - n)) & ((1u << n) - 1u);
}

}  // namespace

VprStatus ownpj_DecodeLongBits(const uint8_t* pSrc, int64_t srcBits, int64_t* pBitPosition, int L, int* pSymbol,
                               const DecodeHuffmanSpecLayout* spec) {
  int64_t pos = *pBitPosition;
  if (pos + 16 <= srcBits) {  // all 16 bits at hand: search them at once
    const uint32_t w = read_bits_raw(pSrc, pos, 16);
    for (int l = L; l <= 16; ++l) {
      const uint32_t code = w >> (16 - l);
      const uint32_t mx = spec->maxcode[l];
      if (mx != 0xFFFF && code <= mx) {
        const int idx = spec->valindex[l] + static_cast<int>(code) - spec->mincode[l];
        if (idx < 0 || idx > 255) return vprStatusCodeRange;
        *pSymbol = spec->symbols[idx];
        *pBitPosition = pos + l;
        return vprStatusOk;
      }
    }
    return vprStatusCodeRange;
  }
  if (pos + L > srcBits) return vprStatusOutOfBuffer;
  uint32_t code = read_bits_raw(pSrc, pos, L);
  pos += L;
  for (int l = L;; ++l) {
    const uint32_t mx = spec->maxcode[l];
    if (mx != 0xFFFF && code <= mx) {
      const int idx = spec->valindex[l] + static_cast<int>(code) - spec->mincode[l];
      if (idx < 0 || idx > 255) return vprStatusCodeRange;
      *pSymbol = spec->symbols[idx];
      *pBitPosition = pos;
      return vprStatusOk;
    }
    if (l == 16) return vprStatusCodeRange;
    if (pos >= srcBits) return vprStatusOutOfBuffer;
    code = (code << 1) | read_bits_raw(pSrc, pos, 1);
    ++pos;
  }
}

// ------------------------------------------------------------ careful block coders
namespace ref {

namespace {

inline VprStatus put_symbol(const EncodeHuffmanSpecLayout* spec, uint32_t symbol, uint8_t* pDst, int dstLen,
                            int* pPos, EncodeHuffmanStateLayout* st) {
  const uint32_t e = symbol < 256 ? spec->entry[symbol] : 0u;
  return ownpj_write_bits_jpeg(e & 0xFFFFu, static_cast<int>(e >> 16), pDst, dstLen, pPos, st);
}

inline VprStatus need_bits(const uint8_t* pSrc, int srcLen, int* pPos, int* pMarker, int t,
                           DecodeHuffmanStateLayout* st) {
  if (st->nbits >= t) return vprStatusOk;
  const VprStatus s = ownpj_FillBitBuffer(pSrc, srcLen, pPos, pMarker, t, st);
  if (s < 0) return s;
  return st->nbits >= t ? vprStatusOk : vprStatusCodeRange;
}

inline uint32_t take_bits(DecodeHuffmanStateLayout* st, int t) {
  if (t == 0) return 0;
  st->nbits -= t;
  return (st->acc >> st->nbits) & ((1u << t) - 1u);
}

}  // namespace

VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t* pPreviousDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state) {
  const int32_t diff = static_cast<int32_t>(pSrc[0]) - *pPreviousDc;
  *pPreviousDc = pSrc[0];
  int s = category_of(diff);
  VprStatus st = put_symbol(dc, static_cast<uint32_t>(s), pDst, dstLen, pDstPosition, state);
  if (st != vprStatusOk) return st;
  if (s > 0) {
    st = ownpj_write_bits_jpeg(value_bits(diff, s), s, pDst, dstLen, pDstPosition, state);
    if (st != vprStatusOk) return st;
  }
  int run = 0;
  for (int k = 1; k < 64; ++k) {
    const int32_t v = pSrc[own_pj_izigzag_index[k]];
    if (v == 0) {
      ++run;
      continue;
    }
    while (run > 15) {
      st = put_symbol(ac, 0xF0, pDst, dstLen, pDstPosition, state);
      if (st != vprStatusOk) return st;
      run -= 16;
    }
    s = category_of(v);
    st = put_symbol(ac, static_cast<uint32_t>(run * 16 + s), pDst, dstLen, pDstPosition, state);
    if (st != vprStatusOk) return st;
    st = ownpj_write_bits_jpeg(value_bits(v, s), s, pDst, dstLen, pDstPosition, state);
    if (st != vprStatusOk) return st;
    run = 0;
  }
  if (run > 0) return put_symbol(ac, 0x00, pDst, dstLen, pDstPosition, state);
  return vprStatusOk;
}

VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state) {
  std::memset(pDst, 0, 64 * sizeof(int16_t));
  VprStatus st;
  int sym = 0;
  st = ownpj_DecodeHuffSymbol(pSrc, srcLen, pSrcPosition, pMarker, &sym, dc, state);
  if (st < 0) goto fail;
  {
    int32_t v = 0;
    if (sym > 0) {
      const int t = sym & 15;
      st = need_bits(pSrc, srcLen, pSrcPosition, pMarker, t, state);
      if (st < 0) goto fail;
      v = extend_bits(take_bits(state, t), t);
    }
    *pPreviousDc = static_cast<int16_t>(static_cast<uint16_t>(*pPreviousDc + v));
    pDst[0] = *pPreviousDc;
  }
  for (int k = 1; k < 64;) {
    st = ownpj_DecodeHuffSymbol(pSrc, srcLen, pSrcPosition, pMarker, &sym, ac, state);
    if (st < 0) goto fail;
    const int r = sym >> 4, t = sym & 15;
    if (t != 0) {
      k += r;
      st = need_bits(pSrc, srcLen, pSrcPosition, pMarker, t, state);
      if (st < 0) goto fail;
      const int32_t v = extend_bits(take_bits(state, t), t);
      if (k > 63) {
        st = vprStatusError;
        goto fail;
      }
      pDst[own_pj_izigzag_index[k]] = static_cast<int16_t>(v);
      ++k;
    } else if (r == 15) {
      k += 16;
    } else {
      break;
    }
  }
  return vprStatusOk;
fail:
  state->word3 = 0;
  return st;
}

}  // namespace ref

VprStatus encode_block_8x8(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstPosition, int16_t* pPreviousDc,
                           const EncodeHuffmanSpecLayout* dc, const EncodeHuffmanSpecLayout* ac,
                           EncodeHuffmanStateLayout* state) {
  const VprStatus st = sse::encode_block_8x8(pSrc, pDst, dstLen, pDstPosition, *pPreviousDc, dc, ac, state);
  if (st != sse::kDeclined) {
    *pPreviousDc = pSrc[0];
    return st;
  }
  return ref::encode_block_8x8(pSrc, pDst, dstLen, pDstPosition, pPreviousDc, dc, ac, state);
}

VprStatus decode_block_8x8(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int16_t* pPreviousDc,
                           int* pMarker, const DecodeHuffmanSpecLayout* dc, const DecodeHuffmanSpecLayout* ac,
                           DecodeHuffmanStateLayout* state) {
  const VprStatus st = sse::decode_block_8x8(pSrc, srcLen, pSrcPosition, pDst, pPreviousDc, pMarker, dc, ac, state);
  if (st != sse::kDeclined) return st;
  return ref::decode_block_8x8(pSrc, srcLen, pSrcPosition, pDst, pPreviousDc, pMarker, dc, ac, state);
}

// ------------------------------------------------------------ direct coders
namespace {

// Plain MSB-first bit packer into a local buffer.
struct BitPacker {
  uint8_t* out;
  int bytes = 0;
  uint64_t acc = 0;  // right-aligned
  int n = 0;
  void put(uint32_t bits, int len) {
    acc = (acc << len) | (bits & ((len >= 32) ? 0xFFFFFFFFu : ((1u << len) - 1u)));
    n += len;
    while (n >= 8) {
      n -= 8;
      out[bytes++] = static_cast<uint8_t>(acc >> n);
    }
  }
};

constexpr int64_t kMaxDirectBytes = (int64_t{1} << 28) - 1;

}  // namespace

VprStatus encode_block_8x8_direct(const int16_t* pSrc, uint8_t* pDst, int dstLen, int* pDstBitPosition,
                                  int16_t* pPreviousDc, const EncodeHuffmanSpecLayout* dc,
                                  const EncodeHuffmanSpecLayout* ac) {
  const int64_t pos = *pDstBitPosition;
  const int skip = static_cast<int>(pos & 7);
  const int64_t limit = dstLen < kMaxDirectBytes ? dstLen : kMaxDirectBytes;
  if ((pos + 7) >> 3 > limit || (skip && (pos >> 3) >= limit)) return vprStatusOutOfBuffer;
  uint8_t buf[600];
  BitPacker bp{buf};
  if (skip) bp.put(static_cast<uint32_t>(pDst[pos >> 3] >> (8 - skip)), skip);
  auto sym = [&](const EncodeHuffmanSpecLayout* spec, uint32_t s) {
    const uint32_t e = s < 256 ? spec->entry[s] : 0u;
    const int len = static_cast<int>(e >> 16);
    if (len < 1 || len > 24) return false;
    bp.put(e & 0xFFFFu, len);
    return true;
  };
  const int32_t diff = static_cast<int32_t>(pSrc[0]) - *pPreviousDc;
  int s = category_of(diff);
  if (!sym(dc, static_cast<uint32_t>(s))) return vprStatusBadHuffTable;
  if (s > 0) bp.put(value_bits(diff, s), s);
  int run = 0;
  for (int k = 1; k < 64; ++k) {
    const int32_t v = pSrc[own_pj_izigzag_index[k]];
    if (v == 0) {
      ++run;
      continue;
    }
    for (; run > 15; run -= 16)
      if (!sym(ac, 0xF0)) return vprStatusBadHuffTable;
    s = category_of(v);
    if (!sym(ac, static_cast<uint32_t>(run * 16 + s))) return vprStatusBadHuffTable;
    bp.put(value_bits(v, s), s);
    run = 0;
  }
  if (run > 0 && !sym(ac, 0x00)) return vprStatusBadHuffTable;
  const int64_t endBits = (pos - skip) + static_cast<int64_t>(bp.bytes) * 8 + bp.n;
  const int tail = bp.n;
  if (tail) bp.put(0, 8 - tail);
  if ((pos >> 3) + bp.bytes > limit) return vprStatusOutOfBuffer;
  std::memcpy(pDst + (pos >> 3), buf, static_cast<size_t>(bp.bytes));
  *pDstBitPosition = static_cast<int>(endBits);
  *pPreviousDc = pSrc[0];
  return vprStatusOk;
}

VprStatus decode_block_8x8_direct(const uint8_t* pSrc, int srcLen, int* pSrcBitPosition, int16_t* pDst,
                                  int16_t* pPreviousDc, const DecodeHuffmanSpecLayout* dc,
                                  const DecodeHuffmanSpecLayout* ac) {
  clear_block(pDst);
  const int64_t srcBits = (srcLen < kMaxDirectBytes ? srcLen : kMaxDirectBytes) * 8;
  int64_t pos = *pSrcBitPosition;
  // n (<= 16) bits at pos, which exist: one 8-byte load away from the end
  // of the input, byte by byte near it.
  const int64_t wideEnd = srcBits / 8 - 8;
  auto bits_at = [&](int n) -> uint32_t {
    if ((pos >> 3) <= wideEnd) {
      uint64_t w;
      std::memcpy(&w, pSrc + (pos >> 3), 8);
      w = __builtin_bswap64(w) << (pos & 7);
      return static_cast<uint32_t>(w >> (64 - n));
    }
    return read_bits_raw(pSrc, pos, n);
  };
  auto symbol = [&](const DecodeHuffmanSpecLayout* spec, int* out) -> VprStatus {
    if (pos + 8 <= srcBits) {
      const uint32_t peek = bits_at(8);
      const int len = spec->fast[peek][1];
      if (len) {
        pos += len;
        *out = spec->fast[peek][0];
        return vprStatusOk;
      }
      return ownpj_DecodeLongBits(pSrc, srcBits, &pos, 9, out, spec);
    }
    return ownpj_DecodeLongBits(pSrc, srcBits, &pos, 1, out, spec);
  };
  auto value = [&](int t, int32_t* out) -> VprStatus {
    if (pos + t > srcBits) return vprStatusOutOfBuffer;
    *out = t ? extend_bits(bits_at(t), t) : 0;
    pos += t;
    return vprStatusOk;
  };
  if (pos > srcBits) return vprStatusOutOfBuffer;
  int sym = 0;
  int32_t v = 0;
  VprStatus st = symbol(dc, &sym);
  if (st < 0) return st;
  if (sym > 0) {
    st = value(sym & 15, &v);
    if (st < 0) return st;
  }
  const int16_t newDc = static_cast<int16_t>(static_cast<uint16_t>(*pPreviousDc + v));
  pDst[0] = newDc;
  for (int k = 1; k < 64;) {
    st = symbol(ac, &sym);
    if (st < 0) return st;
    const int r = sym >> 4, t = sym & 15;
    if (t != 0) {
      k += r;
      st = value(t, &v);
      if (st < 0) return st;
      if (k > 63) return vprStatusError;
      pDst[own_pj_izigzag_index[k]] = static_cast<int16_t>(v);
      ++k;
    } else if (r == 15) {
      k += 16;
    } else {
      break;
    }
  }
  *pPreviousDc = newDc;
  *pSrcBitPosition = static_cast<int>(pos);
  return vprStatusOk;
}

// ------------------------------------------------------------ single values
VprStatus encode_one(int16_t value, uint8_t* pDst, int dstLen, int* pDstPosition,
                     const EncodeHuffmanSpecLayout* spec, EncodeHuffmanStateLayout* state) {
  const int s = category_of(value);
  const uint32_t e = spec->entry[s];
  VprStatus st = ownpj_write_bits_jpeg(e & 0xFFFFu, static_cast<int>(e >> 16), pDst, dstLen, pDstPosition, state);
  if (st != vprStatusOk || s == 0 || s == 16) return st;
  return ownpj_write_bits_jpeg(value_bits(value, s), s, pDst, dstLen, pDstPosition, state);
}

VprStatus decode_one(const uint8_t* pSrc, int srcLen, int* pSrcPosition, int16_t* pDst, int* pMarker,
                     const DecodeHuffmanSpecLayout* spec, DecodeHuffmanStateLayout* state) {
  int sym = 0;
  VprStatus st = ownpj_DecodeHuffSymbol(pSrc, srcLen, pSrcPosition, pMarker, &sym, spec, state);
  if (st >= 0) {
    if (sym == 0) {
      *pDst = 0;
      return vprStatusOk;
    }
    if (sym == 16) {
      *pDst = -32768;
      return vprStatusOk;
    }
    if (sym > 16) {
      st = vprStatusCodeRange;
    } else {
      st = ref::need_bits(pSrc, srcLen, pSrcPosition, pMarker, sym, state);
      if (st >= 0) {
        *pDst = static_cast<int16_t>(extend_bits(ref::take_bits(state, sym), sym));
        return vprStatusOk;
      }
    }
  }
  state->word3 = 0;
  return st;
}

}  // namespace vpr::jpeg

// ------------------------------------------------------------ exported entries
using namespace vpr::jpeg;

extern "C" {

VPR_API VprStatus vpriEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) {
  return vpr::state_get_buf_size(vpr::kEncodeHuffmanSpecSize, pSize);
}
VPR_API VprStatus vpriEncodeHuffmanSpecInit_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                    VprEncodeHuffmanSpec* pEncodeSpec) {
  if (!pCodeLengthCounts || !pCodeValues || !pEncodeSpec) return vprStatusNullPointer;
  return build_encode_spec(pCodeLengthCounts, pCodeValues, reinterpret_cast<EncodeHuffmanSpecLayout*>(pEncodeSpec));
}
VPR_API VprStatus vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                         VprEncodeHuffmanSpec** ppEncodeSpec) {
  if (!pCodeLengthCounts || !pCodeValues) return vprStatusNullPointer;
  return vpr::state_init_alloc(ppEncodeSpec, vpr::kEncodeHuffmanSpecSize, vpr::AllocFailure::kNullPointerKeep,
                               [&](VprEncodeHuffmanSpec* p) {
                                 return vpriEncodeHuffmanSpecInit_JPEG_8u(pCodeLengthCounts, pCodeValues, p);
                               });
}
VPR_API VprStatus vpriEncodeHuffmanSpecFree_JPEG_8u(VprEncodeHuffmanSpec* pEncodeSpec) {
  return vpr::state_free(pEncodeSpec);
}

VPR_API VprStatus vpriDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) {
  return vpr::state_get_buf_size(vpr::kDecodeHuffmanSpecSize, pSize);
}
VPR_API VprStatus vpriDecodeHuffmanSpecInit_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                    VprDecodeHuffmanSpec* pDecodeSpec) {
  if (!pCodeLengthCounts || !pCodeValues || !pDecodeSpec) return vprStatusNullPointer;
  return build_decode_spec(pCodeLengthCounts, pCodeValues, reinterpret_cast<DecodeHuffmanSpecLayout*>(pDecodeSpec));
}
VPR_API VprStatus vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                         VprDecodeHuffmanSpec** ppDecodeSpec) {
  if (!pCodeLengthCounts || !pCodeValues) return vprStatusNullPointer;
  return vpr::state_init_alloc(ppDecodeSpec, vpr::kDecodeHuffmanSpecSize, vpr::AllocFailure::kNullPointerKeep,
                               [&](VprDecodeHuffmanSpec* p) {
                                 return vpriDecodeHuffmanSpecInit_JPEG_8u(pCodeLengthCounts, pCodeValues, p);
                               });
}
VPR_API VprStatus vpriDecodeHuffmanSpecFree_JPEG_8u(VprDecodeHuffmanSpec* pDecodeSpec) {
  return vpr::state_free(pDecodeSpec);
}

VPR_API VprStatus vpriEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) {
  return vpr::state_get_buf_size(vpr::kEncodeHuffmanStateSize, pSize);
}
VPR_API VprStatus vpriEncodeHuffmanStateInit_JPEG_8u(VprEncodeHuffmanState* pEncodeState) {
  return vpr::state_init_clear(pEncodeState, vpr::kEncodeHuffmanStateSize);
}
VPR_API VprStatus vpriEncodeHuffmanStateInitAlloc_JPEG_8u(VprEncodeHuffmanState** ppEncodeState) {
  return vpr::state_init_alloc(ppEncodeState, vpr::kEncodeHuffmanStateSize, vpr::AllocFailure::kNullPointerKeep,
                               [](VprEncodeHuffmanState* p) { return vpriEncodeHuffmanStateInit_JPEG_8u(p); });
}
VPR_API VprStatus vpriEncodeHuffmanStateFree_JPEG_8u(VprEncodeHuffmanState* pEncodeState) {
  return vpr::state_free(pEncodeState);
}

VPR_API VprStatus vpriDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) {
  return vpr::state_get_buf_size(vpr::kDecodeHuffmanStateSize, pSize);
}
VPR_API VprStatus vpriDecodeHuffmanStateInit_JPEG_8u(VprDecodeHuffmanState* pDecodeState) {
  return vpr::state_init_clear(pDecodeState, vpr::kDecodeHuffmanStateSize);
}
VPR_API VprStatus vpriDecodeHuffmanStateInitAlloc_JPEG_8u(VprDecodeHuffmanState** ppDecodeState) {
  return vpr::state_init_alloc(ppDecodeState, vpr::kDecodeHuffmanStateSize, vpr::AllocFailure::kNullPointerKeep,
                               [](VprDecodeHuffmanState* p) { return vpriDecodeHuffmanStateInit_JPEG_8u(p); });
}
VPR_API VprStatus vpriDecodeHuffmanStateFree_JPEG_8u(VprDecodeHuffmanState* pDecodeState) {
  return vpr::state_free(pDecodeState);
}

VPR_API VprStatus vpriEncodeHuffmanRawTableInit_JPEG_8u(const int* pCounts, Vpr8u* pCodeLengthCounts,
                                                        Vpr8u* pCodeValues) {
  if (!pCounts || !pCodeLengthCounts || !pCodeValues) return vprStatusNullPointer;
  uint8_t counts[16], values[256];
  const VprStatus st = build_optimal_table(pCounts, counts, values);
  if (st != vprStatusOk) return st;
  std::memcpy(pCodeLengthCounts, counts, sizeof counts);
  std::memcpy(pCodeValues, values, sizeof values);
  return vprStatusOk;
}

VPR_API VprStatus vpriEncodeHuffman8x8_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen, int* pDstPosition,
                                                     Vpr16s* pPreviousDc, const VprEncodeHuffmanSpec* pDcSpec,
                                                     const VprEncodeHuffmanSpec* pAcSpec,
                                                     VprEncodeHuffmanState* pEncodeState, int flushFlag) {
  if (!pDst) return vprStatusNullPointer;
  if (dstLen < 1) return vprStatusBadSize;
  if (!pDstPosition || !pEncodeState) return vprStatusNullPointer;
  if (flushFlag) return ownpj_flush_jpeg(pDst, dstLen, pDstPosition, layout(pEncodeState));
  if (!pSrc || !pPreviousDc || !pDcSpec || !pAcSpec) return vprStatusNullPointer;
  return encode_block_8x8(pSrc, pDst, dstLen, pDstPosition, pPreviousDc, layout(pDcSpec), layout(pAcSpec),
                          layout(pEncodeState));
}

VPR_API VprStatus vpriDecodeHuffman8x8_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcPosition, Vpr16s* pDst,
                                                     Vpr16s* pPreviousDc, int* pMarker,
                                                     const VprDecodeHuffmanSpec* pDcSpec,
                                                     const VprDecodeHuffmanSpec* pAcSpec,
                                                     VprDecodeHuffmanState* pDecodeState) {
  if (!pSrc) return vprStatusNullPointer;
  if (srcLen < 0) return vprStatusBadArg;
  if (!pSrcPosition || !pDst || !pPreviousDc || !pMarker || !pDcSpec || !pAcSpec || !pDecodeState)
    return vprStatusNullPointer;
  return decode_block_8x8(pSrc, srcLen, pSrcPosition, pDst, pPreviousDc, pMarker, layout(pDcSpec), layout(pAcSpec),
                          layout(pDecodeState));
}

VPR_API VprStatus vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen,
                                                            int* pDstBitPosition, Vpr16s* pPreviousDc,
                                                            const VprEncodeHuffmanSpec* pDcSpec,
                                                            const VprEncodeHuffmanSpec* pAcSpec) {
  if (!pSrc || !pDst) return vprStatusNullPointer;
  if (dstLen < 1) return vprStatusBadSize;
  if (!pDstBitPosition || !pPreviousDc || !pDcSpec || !pAcSpec) return vprStatusNullPointer;
  if (*pDstBitPosition < 0) return vprStatusBadArg;
  return encode_block_8x8_direct(pSrc, pDst, dstLen, pDstBitPosition, pPreviousDc, layout(pDcSpec),
                                 layout(pAcSpec));
}

VPR_API VprStatus vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcBitPosition,
                                                            Vpr16s* pDst, Vpr16s* pPreviousDc,
                                                            const VprDecodeHuffmanSpec* pDcSpec,
                                                            const VprDecodeHuffmanSpec* pAcSpec) {
  if (!pSrc) return vprStatusNullPointer;
  if (srcLen < 0) return vprStatusBadArg;
  if (!pSrcBitPosition || !pDst || !pPreviousDc || !pDcSpec || !pAcSpec) return vprStatusNullPointer;
  if (*pSrcBitPosition < 0) return vprStatusBadArg;
  return decode_block_8x8_direct(pSrc, srcLen, pSrcBitPosition, pDst, pPreviousDc, layout(pDcSpec),
                                 layout(pAcSpec));
}

VPR_API VprStatus vpriEncodeHuffmanOne_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen, int* pDstPosition,
                                                     const VprEncodeHuffmanSpec* pEncodeSpec,
                                                     VprEncodeHuffmanState* pEncodeState, int flushFlag) {
  if (!pDst) return vprStatusNullPointer;
  if (dstLen < 1) return vprStatusBadSize;
  if (!pDstPosition || !pEncodeState) return vprStatusNullPointer;
  if (flushFlag) return ownpj_flush_jpeg(pDst, dstLen, pDstPosition, layout(pEncodeState));
  if (!pSrc || !pEncodeSpec) return vprStatusNullPointer;
  return encode_one(*pSrc, pDst, dstLen, pDstPosition, layout(pEncodeSpec), layout(pEncodeState));
}

VPR_API VprStatus vpriDecodeHuffmanOne_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcPosition, Vpr16s* pDst,
                                                     int* pMarker, const VprDecodeHuffmanSpec* pDecodeSpec,
                                                     VprDecodeHuffmanState* pDecodeState) {
  if (!pSrc) return vprStatusNullPointer;
  if (srcLen < 0) return vprStatusBadArg;
  if (!pSrcPosition || !pDst || !pMarker || !pDecodeSpec || !pDecodeState) return vprStatusNullPointer;
  return decode_one(pSrc, srcLen, pSrcPosition, pDst, pMarker, layout(pDecodeSpec), layout(pDecodeState));
}

}  // extern "C"
