/* vprJP: JPEG Huffman table objects, bit-stream states and baseline block coding.
 *
 * Objects
 * -------
 * Four kinds of caller-owned objects, each with GetBufSize / Init / InitAlloc
 * / Free functions.  Sizes are fixed and so are the layouts (little-endian
 * words; callers may inspect them):
 *
 *   VprEncodeHuffmanSpec   1024 bytes: Vpr32u entry[256] indexed by symbol,
 *                          entry = (code length << 16) | code; length 0 means
 *                          the symbol has no code.
 *   VprDecodeHuffmanSpec   1644 bytes = 822 Vpr16u words:
 *                            [0..255]    symbols in code order (the code
 *                                        values copied, the rest 0)
 *                            [256..767]  fast lookup: 256 pairs (symbol,
 *                                        length) indexed by the next 8 bits
 *                                        of the stream; length 0 = the code
 *                                        is longer than 8 bits
 *                            [768..785]  min code[l], l = 0..17
 *                            [786..803]  max code[l]; 0xFFFF (read as -1)
 *                                        when there is no code of length l
 *                            [804..821]  value index[l]: index in the symbol
 *                                        list of the first code of length l
 *                          Entries 0 and 17 of the three per-length arrays
 *                          hold min 0, max 0xFFFF, index 0.
 *   VprDecodeHuffmanState  24 bytes: Vpr32u accumulator (the valid bits are
 *                          its low `count` bits; higher bits are the older
 *                          bytes read), Vpr32s count (0..32), Vpr32s
 *                          end-of-band run, Vpr32s fourth word, Vpr32s fifth
 *                          word (both for the progressive decoders), 4 unused
 *                          bytes.  Init zeroes all of it.
 *   VprEncodeHuffmanState  1048 bytes: Vpr32u accumulator (the `count`
 *                          waiting bits left-aligned below bit 24, i.e. in
 *                          bits 23..24-count; bits 24..31 hold the last byte
 *                          written), Vpr32s count (0..7), three Vpr32s
 *                          counters of the progressive coders (the first is
 *                          the end-of-band run), then a 1024-byte buffer of
 *                          held-back correction bits at byte offset 20, then
 *                          4 unused bytes.  Init zeroes all of it.
 *
 * Objects never point to each other and may be copied byte for byte.  An
 * InitAlloc that cannot allocate returns vprStatusNullPointer (-8) and leaves
 * the caller's pointer unchanged (callers may rely on the -8).
 *
 * Bit streams
 * -----------
 * The stateful coders read and write JPEG entropy-coded segments: a data
 * byte 0xFF is followed by a stuffed 0x00.  The encoder state holds at most
 * 7 waiting bits between calls; a call with flushFlag set pads them with
 * 1-bits to a whole byte, writes it and clears the state (the seven 1-bits
 * go through the normal writer, so 0xFF gets its 0x00).  Positions are byte
 * offsets into the caller's buffer and must lie in 0..len.
 *
 * The decoder reads only bytes at positions below srcLen.  0xFF 0x00 is a
 * data byte 0xFF, further 0xFF bytes are fill and are skipped, 0xFF followed
 * by any other byte c is a marker: c is stored in the caller's marker cell
 * (*pMarker), the position is left just after c, and no further byte is read
 * while the cell is non-zero (the caller clears it after handling the
 * marker).  Bits that would lie beyond a marker give -63; bits beyond srcLen
 * give -62 (an 0xFF as the very last byte of the input also gives -62).
 *
 * Failure statuses of the coding functions:
 *   -62 vprStatusOutOfBuffer  input exhausted / output full.  Encoder: the
 *       bytes stored so far and the advanced position stay, the state keeps
 *       its value from before the failing write.  Decoder: the position stays
 *       at the end of the input, the accumulator keeps the bytes it took.
 *   -63 vprStatusCodeRange    no code matches (a slow search reads 17 bits
 *       before giving up), bits beyond a marker, or (decoding with a
 *       hand-edited decode table object) a code that indexes outside the
 *       symbol list.
 *   -64 vprStatusBadHuffTable a symbol to encode has no code (or, in a
 *       hand-edited encode table object, a code longer than 24 bits; an AC
 *       symbol above 255, which run 15 with category 16 would make).
 *   -2  vprStatusError        a decoded run would place a coefficient past
 *       zig-zag position 63 (the check is on the position itself, before
 *       the zig-zag table is indexed).
 * The decoders clear the fourth word of their state on every failure.
 */
#ifndef VPRJP_JPEG_HUFFMAN_H
#define VPRJP_JPEG_HUFFMAN_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

typedef struct VprEncodeHuffmanSpec VprEncodeHuffmanSpec;
typedef struct VprDecodeHuffmanSpec VprDecodeHuffmanSpec;
typedef struct VprEncodeHuffmanState VprEncodeHuffmanState;
typedef struct VprDecodeHuffmanState VprDecodeHuffmanState;

/* ------------------------------------------------------------ table objects */

/* Encode table object, 1024 bytes. */
VPR_API VprStatus vpriEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
/* Builds the encode table object from a table segment's 16 code-length
 * counts (entry l-1 = number of codes of length l) and its symbols (as many
 * as the counts add up to; no more are read).  Canonical codes: the first
 * code of length 1 is 0, codes of one length count up by 1, the next length
 * doubles.  Checks: any pointer NULL -8.  Then the object is cleared and
 * built; -64 (object left all zero) when the counts add up to more than 256
 * or when a code of all 1-bits would be needed (after the codes of a length
 * the next code must still be below 2^length: 2 codes of length 1 give -64,
 * as in the JPEG standard no code may consist of 1-bits only). */
VPR_API VprStatus vpriEncodeHuffmanSpecInit_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                    VprEncodeHuffmanSpec* pEncodeSpec);
VPR_API VprStatus vpriEncodeHuffmanSpecInitAlloc_JPEG_8u(const Vpr8u* pCodeLengthCounts,
                                                         const Vpr8u* pCodeValues,
                                                         VprEncodeHuffmanSpec** ppEncodeSpec);
VPR_API VprStatus vpriEncodeHuffmanSpecFree_JPEG_8u(VprEncodeHuffmanSpec* pEncodeSpec);

/* Decode table object, 1644 bytes.  Checks: any pointer NULL -8; counts
 * adding up to more than 256: -64 (object untouched).  The code space is not
 * checked: codes that do not fit their length are unreachable (they get no
 * fast-lookup entries; the slow search cannot index outside the symbols). */
VPR_API VprStatus vpriDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
VPR_API VprStatus vpriDecodeHuffmanSpecInit_JPEG_8u(const Vpr8u* pCodeLengthCounts, const Vpr8u* pCodeValues,
                                                    VprDecodeHuffmanSpec* pDecodeSpec);
VPR_API VprStatus vpriDecodeHuffmanSpecInitAlloc_JPEG_8u(const Vpr8u* pCodeLengthCounts,
                                                         const Vpr8u* pCodeValues,
                                                         VprDecodeHuffmanSpec** ppDecodeSpec);
VPR_API VprStatus vpriDecodeHuffmanSpecFree_JPEG_8u(VprDecodeHuffmanSpec* pDecodeSpec);

/* ------------------------------------------------------------ states */

/* Encode state, 1048 bytes; Init zeroes it (start of a scan or restart
 * interval). */
VPR_API VprStatus vpriEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
VPR_API VprStatus vpriEncodeHuffmanStateInit_JPEG_8u(VprEncodeHuffmanState* pEncodeState);
VPR_API VprStatus vpriEncodeHuffmanStateInitAlloc_JPEG_8u(VprEncodeHuffmanState** ppEncodeState);
VPR_API VprStatus vpriEncodeHuffmanStateFree_JPEG_8u(VprEncodeHuffmanState* pEncodeState);

/* Decode state, 24 bytes; Init zeroes it. */
VPR_API VprStatus vpriDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
VPR_API VprStatus vpriDecodeHuffmanStateInit_JPEG_8u(VprDecodeHuffmanState* pDecodeState);
VPR_API VprStatus vpriDecodeHuffmanStateInitAlloc_JPEG_8u(VprDecodeHuffmanState** ppDecodeState);
VPR_API VprStatus vpriDecodeHuffmanStateFree_JPEG_8u(VprDecodeHuffmanState* pDecodeState);

/* ------------------------------------------------------------ optimal tables */

/* Builds optimal code-length counts and symbols from symbol counts with the
 * JPEG standard's procedure (Annex K.2): one reserved code point so that no
 * code is all 1-bits, ties between equal frequencies broken towards the
 * larger symbol, lengths limited to 16 by the standard's adjustment, symbols
 * listed by increasing (unadjusted) length then by value.
 *   pCounts            256 counts; counts <= 0 mean "symbol absent".
 *   pCodeLengthCounts  out: 16 counts (entry l-1 = codes of length l).
 *   pCodeValues        out: 256 bytes, the symbols, then zeros.
 * Checks: any pointer NULL -8.  -64 when a code would need more than 32 bits
 * before the limit is applied (possible only with extreme, Fibonacci-like
 * counts); nothing is written then.  All counts absent gives all-zero
 * output and 0. */
VPR_API VprStatus vpriEncodeHuffmanRawTableInit_JPEG_8u(const int* pCounts, Vpr8u* pCodeLengthCounts,
                                                        Vpr8u* pCodeValues);

/* ------------------------------------------------------------ 8x8 blocks */

/* Huffman-codes one block of 64 quantised coefficients (natural order):
 * the DC difference from *pPreviousDc, then the AC coefficients in zig-zag
 * order as run/size symbols, ZRL for runs of 16 zeros, EOB unless
 * coefficient 63 is non-zero.
 * Checks: pDst NULL -8; dstLen < 1 -6; pDstPosition or pEncodeState NULL -8.
 * flushFlag != 0: flush (seven 1-bits through the writer, then the state is
 * cleared whatever the writer returned) and return the writer's status;
 * pSrc, pPreviousDc and the tables are not looked at and may be NULL.
 * Otherwise pSrc, pPreviousDc, pDcSpec, pAcSpec NULL -8.
 * *pPreviousDc becomes pSrc[0] before anything is written, also when the
 * call then fails (-62, -64).  Categories are not limited: a category
 * without a code in the table fails with -64. */
VPR_API VprStatus vpriEncodeHuffman8x8_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen, int* pDstPosition,
                                                     Vpr16s* pPreviousDc, const VprEncodeHuffmanSpec* pDcSpec,
                                                     const VprEncodeHuffmanSpec* pAcSpec,
                                                     VprEncodeHuffmanState* pEncodeState, int flushFlag);

/* Decodes one block into pDst (64 coefficients, natural order; cleared
 * first, so coefficients after a failure stay zero).
 * Checks: pSrc NULL -8; srcLen < 0 -5; pSrcPosition, pDst, pPreviousDc,
 * pMarker, pDcSpec, pAcSpec, pDecodeState NULL -8 (in that order).
 * The DC category is the low 4 bits of the DC symbol; *pPreviousDc += the
 * decoded difference (wrapping in 16 bits) and pDst[0] = *pPreviousDc, so a
 * failure in the AC part leaves *pPreviousDc updated. */
VPR_API VprStatus vpriDecodeHuffman8x8_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcPosition, Vpr16s* pDst,
                                                     Vpr16s* pPreviousDc, int* pMarker,
                                                     const VprDecodeHuffmanSpec* pDcSpec,
                                                     const VprDecodeHuffmanSpec* pAcSpec,
                                                     VprDecodeHuffmanState* pDecodeState);

/* Direct coders: the same block coding without a state object, on a plain
 * bit string (most significant bit first, NO byte stuffing, no markers; for
 * containers that carry raw Huffman bits).  The caller keeps the position as
 * a BIT offset from pDst / pSrc.  Lengths are in bytes; at most 2^28 - 1
 * bytes are used (longer buffers act as that long).
 *
 * Encoder checks: pSrc, pDst NULL -8; dstLen < 1 -6; pDstBitPosition,
 * pPreviousDc, pDcSpec, pAcSpec NULL -8; *pDstBitPosition < 0 -5.
 * The block's bits are written from bit *pDstBitPosition on: the bits of the
 * byte before that position are kept, the unused low bits of the last byte
 * written are 0.  On success *pDstBitPosition advances and *pPreviousDc =
 * pSrc[0].  On failure (-62 the bits do not fit in dstLen bytes, -64 a
 * symbol without code) nothing at all is written and neither the position
 * nor *pPreviousDc changes, so the block can be coded again. */
VPR_API VprStatus vpriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen,
                                                            int* pDstBitPosition, Vpr16s* pPreviousDc,
                                                            const VprEncodeHuffmanSpec* pDcSpec,
                                                            const VprEncodeHuffmanSpec* pAcSpec);

/* Direct decoder checks: pSrc NULL -8; srcLen < 0 -5; pSrcBitPosition,
 * pDst, pPreviousDc, pDcSpec, pAcSpec NULL -8; *pSrcBitPosition < 0 -5.
 * Reads only bytes below srcLen.  On success the position advances and
 * *pPreviousDc is updated; on failure (-62 bits beyond srcLen, -63 no code
 * matches within 16 bits, -2 a run past position 63) pDst holds what was
 * decoded so far (the rest zero) and neither the position nor *pPreviousDc
 * changes. */
VPR_API VprStatus vpriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcBitPosition,
                                                            Vpr16s* pDst, Vpr16s* pPreviousDc,
                                                            const VprDecodeHuffmanSpec* pDcSpec,
                                                            const VprDecodeHuffmanSpec* pAcSpec);

/* ------------------------------------------------------------ single values */

/* Codes one DC-style value *pSrc (no prediction: pass the difference):
 * the code of its category s, then s value bits (v, or v - 1 for v < 0).
 * Category 16 (only -32768, i.e. a difference of 32768 modulo 2^16) has no
 * value bits, as in lossless JPEG.  Same stream, state and flush as the
 * 8x8 encoder.  Checks: pDst NULL -8; dstLen < 1 -6; pDstPosition or
 * pEncodeState NULL -8; flushFlag != 0: flush and return (pSrc and
 * pEncodeSpec may be NULL); otherwise pSrc, pEncodeSpec NULL -8. */
VPR_API VprStatus vpriEncodeHuffmanOne_JPEG_16s1u_C1(const Vpr16s* pSrc, Vpr8u* pDst, int dstLen, int* pDstPosition,
                                                     const VprEncodeHuffmanSpec* pEncodeSpec,
                                                     VprEncodeHuffmanState* pEncodeState, int flushFlag);

/* Decodes one DC-style value into *pDst (written only on success): symbol
 * 0 gives 0, 1..15 read that many value bits, 16 gives -32768; a symbol
 * above 16 gives -63.  Same stream and state as the 8x8 decoder.
 * Checks: pSrc NULL -8; srcLen < 0 -5; pSrcPosition, pDst, pMarker,
 * pDecodeSpec, pDecodeState NULL -8. */
VPR_API VprStatus vpriDecodeHuffmanOne_JPEG_1u16s_C1(const Vpr8u* pSrc, int srcLen, int* pSrcPosition, Vpr16s* pDst,
                                                     int* pMarker, const VprDecodeHuffmanSpec* pDecodeSpec,
                                                     VprDecodeHuffmanState* pDecodeState);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_HUFFMAN_H */
