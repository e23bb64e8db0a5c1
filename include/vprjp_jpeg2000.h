/* vprJP: JPEG 2000 primitives - reversible 5/3 wavelet and the component
 * transforms (RCT, ICT).
 *
 * ======================================================================
 * Reversible 5/3 wavelet (one decomposition level, ISO/IEC 15444-1 lifting
 * with whole-sample symmetric extension)
 * ======================================================================
 *
 * Lifting, on a line X at absolute positions (>> is an arithmetic shift):
 *   forward  predict  Y(2k+1) = X(2k+1) - ((X(2k) + X(2k+2)) >> 1)
 *            update   Y(2k)   = X(2k)   + ((Y(2k-1) + Y(2k+1) + 2) >> 2)
 *   inverse           Y(2k)   = X(2k)   - ((X(2k-1) + X(2k+1) + 2) >> 2)
 *                     Y(2k+1) = X(2k+1) + ((Y(2k) + Y(2k+2)) >> 1)
 * Samples at even absolute positions become low-pass coefficients, samples
 * at odd positions high-pass ones.  A VprRect's x and y (absolute
 * coordinates of the first sample) only contribute their parity, the phase.
 * With phase p a line of n samples has nL = (n + 1 - p) / 2 low and
 * nH = n - nL high coefficients.
 *
 * Arithmetic.  Every lifting step's output is stored as a sample before
 * the next step reads it.
 *   32s: 32-bit two's-complement arithmetic (sums wrap on overflow; no
 *        input of at most 30 significant bits comes near that).
 *   16s: sums are formed exactly (as in 32 bits, from sign-extended
 *        samples) and each result is stored truncated to 16 bits
 *        (wrap-around, no saturation).  The vector kernels compute the
 *        halved sums with overflow-free 16-bit identities
 *        ((a & b) + ((a ^ b) >> 1) = floor((a + b) / 2), and
 *        floor((a + b + 2) / 4) = m - (m >> 1) with m that average), so they
 *        equal the 32-bit-sum formulas for EVERY 16-bit input, not only for
 *        the 15-bit samples the 16s forms are meant for (for samples of at
 *        most 15 significant bits no result wraps and the forward/inverse
 *        pair is lossless).
 *
 * Buffers.  pBuffer (work memory, bytes) must be aligned to the sample size
 * (4 bytes for 32s, 2 for 16s), like the sample rows themselves.
 *
 * Argument checks: see each group below; nothing is written on failure.
 */
#ifndef VPRJP_JPEG2000_H
#define VPRJP_JPEG2000_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* ---------------------------------------------------------------- sizes
 * Work-buffer sizes in bytes, w = rect->width, h = rect->height:
 *   C1IR 32s: 0 when w < 3 and h < 3, else max(4w + 16, 4h + 16)
 *   C1IR 16s: 0 when w < 3 and h < 3, else max(2w + 8, 2h + 8)
 *   C1R:      rowBytes * h + the C1IR size, rowBytes = the row length in
 *             bytes rounded up to a multiple of 32 ((4w + 31) & ~31 for 32s,
 *             (2w + 31) & ~31 for 16s).  The C1R forms keep a copy of the
 *             image at the start of the buffer and the line buffer after it.
 * Checks: rect NULL -8, pSize NULL -8.  w and h are not validated (the
 * formulas are evaluated in 64 bits and stored truncated to 32 bits).
 */
VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_32s_C1IR(const VprRect* rect, int32_t* pSize);
VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_16s_C1IR(const VprRect* rect, int32_t* pSize);
VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_32s_C1R(const VprRect* rect, int32_t* pSize);
VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_16s_C1R(const VprRect* rect, int32_t* pSize);

/* ---------------------------------------------------------------- 2-D, in place
 * Forward: vertical pass first (every column), then horizontal (every row).
 * Lines of length >= 3 use symmetric extension; length 2 gives
 * H = o - e, L = e + ((H + 1) >> 1) with the low coefficient always first;
 * length 1 multiplies the sample by (1 + phase) (an odd-phase single sample
 * is the high coefficient 2x).  Result: rows 0..nLv-1 hold the vertically
 * low half, and in each row the horizontally low half comes first (even
 * phases: LL top-left, HL top-right, LH bottom-left, HH bottom-right).
 * Inverse: horizontal pass first, then vertical; length 2 gives
 * e = L - ((H + 1) >> 1), o = H + e; length 1 divides by (1 + phase)
 * truncating toward zero.
 * Checks: pSrcDst NULL -8, step < 1 -14, rect NULL -8, pBuffer NULL -8.
 * The size is not checked: a width or height below 1 does nothing.
 */
VPR_API VprStatus vpriWTFwd_B53_JPEG2K_32s_C1IR(Vpr32s* pSrcDst, int32_t step, const VprRect* rect,
                                                Vpr8u* pBuffer);
VPR_API VprStatus vpriWTFwd_B53_JPEG2K_16s_C1IR(Vpr16s* pSrcDst, int32_t step, const VprRect* rect,
                                                Vpr8u* pBuffer);
VPR_API VprStatus vpriWTInv_B53_JPEG2K_32s_C1IR(Vpr32s* pSrcDst, int32_t step, const VprRect* rect,
                                                Vpr8u* pBuffer);
VPR_API VprStatus vpriWTInv_B53_JPEG2K_16s_C1IR(Vpr16s* pSrcDst, int32_t step, const VprRect* rect,
                                                Vpr8u* pBuffer);

/* ---------------------------------------------------------------- 2-D, four subbands
 * pDst / pSrc arrays: [0] LL, [1] LH (low horizontally, high vertically),
 * [2] HL, [3] HH.  Forward: copies the source into pBuffer, runs the
 * in-place forward there and copies the quadrants out: LL {(w+1)>>1,
 * (h+1)>>1} from the origin, LH {(w+1)>>1, h>>1} from row (h+1)>>1, HL
 * {w>>1, (h+1)>>1} from column (w+1)>>1, HH {w>>1, h>>1} from both.  The
 * inverse fills the same positions from the four sources, runs the
 * in-place inverse and copies w x h to pDst.  The quadrant sizes are
 * ceil/floor of half whatever the rect's phases; the transform honours the
 * phases, so an odd-origin rect splits consistently only in the in-place
 * form.
 * Forward checks: pSrc, pDst, dstStep, rect, pBuffer NULL -8; srcStep < 1
 * -14; any pDst[i] NULL -8; any dstStep[i] < 1 -14; width or height < 1 -6.
 * Inverse checks: pSrc, srcStep, pDst, rect, pBuffer NULL -8; dstStep < 1
 * -14; any pSrc[i] NULL -8; any srcStep[i] < 1 -14; width or height < 1 -6.
 */
VPR_API VprStatus vpriWTFwd_B53_JPEG2K_32s_C1R(const Vpr32s* pSrc, int32_t srcStep, const VprRect* rect,
                                               Vpr32s* pDst[4], int32_t dstStep[4], Vpr8u* pBuffer);
VPR_API VprStatus vpriWTFwd_B53_JPEG2K_16s_C1R(const Vpr16s* pSrc, int32_t srcStep, const VprRect* rect,
                                               Vpr16s* pDst[4], int32_t dstStep[4], Vpr8u* pBuffer);
VPR_API VprStatus vpriWTInv_B53_JPEG2K_32s_C1R(const Vpr32s* pSrc[4], int32_t srcStep[4], Vpr32s* pDst,
                                               int32_t dstStep, const VprRect* rect, Vpr8u* pBuffer);
VPR_API VprStatus vpriWTInv_B53_JPEG2K_16s_C1R(const Vpr16s* pSrc[4], int32_t srcStep[4], Vpr16s* pDst,
                                               int32_t dstStep, const VprRect* rect, Vpr8u* pBuffer);

/* ---------------------------------------------------------------- rows
 * Forward: each of roi.height source rows (2 * roi.width samples) gives
 * roi.width low and roi.width high coefficients.  No buffer: the caller
 * supplies the extension samples around each source row.
 *   phase 0: s[0] is even; reads s[-2 .. 2w].
 *            high[n] = s[2n+1] - ((s[2n] + s[2n+2]) >> 1)
 *            low[n]  = s[2n] + ((high[n-1] + high[n] + 2) >> 2),
 *            high[-1] formed on the fly from s[-2..0].
 *   phase != 0: s[0] is odd; reads s[-1 .. 2w+1].
 *            high[n] = s[2n] - ((s[2n-1] + s[2n+1]) >> 1)
 *            low[n]  = s[2n+1] + ((high[n] + high[n+1] + 2) >> 2),
 *            high[w] formed on the fly from s[2w-1..2w+1], not stored.
 * Inverse: 2 * roi.width output samples per row from roi.width low and
 * roi.width high coefficients; the caller supplies the band extensions.
 *   phase 0: reads low[0 .. w], high[-1 .. w]; out[2n] = even n,
 *            out[2n+1] = odd n, with the even sample n = w (from low[w])
 *            formed on the fly.
 *   phase != 0 (out[0] odd): reads low[-1 .. w-1], high[-1 .. w];
 *            out[2n] = high[n] + ((even(n-1) + even(n)) >> 1),
 *            out[2n+1] = even(n) = low[n] - ((high[n] + high[n+1] + 2) >> 2),
 *            even(-1) formed on the fly from low[-1], high[-1], high[0].
 * With symmetric extension supplied by the caller, the results equal those
 * of the whole-line transform.
 * Checks (argument order): pSrc NULL -8, srcStep < 1 -14, pDstLow NULL -8,
 * dstLowStep < 1 -14, pDstHigh NULL -8, dstHighStep < 1 -14, then the
 * size (< 1 -6).  Inverse: pSrcLow, srcLowStep, pSrcHigh, srcHighStep,
 * pDst, dstStep, then srcRoiSize.
 */
VPR_API VprStatus vpriWTFwdRow_B53_JPEG2K_32s_C1R(const Vpr32s* pSrc, int32_t srcStep, Vpr32s* pDstLow,
                                                  int32_t dstLowStep, Vpr32s* pDstHigh, int32_t dstHighStep,
                                                  VprRoiSize dstRoiSize, int32_t phase);
VPR_API VprStatus vpriWTFwdRow_B53_JPEG2K_16s_C1R(const Vpr16s* pSrc, int32_t srcStep, Vpr16s* pDstLow,
                                                  int32_t dstLowStep, Vpr16s* pDstHigh, int32_t dstHighStep,
                                                  VprRoiSize dstRoiSize, int32_t phase);
VPR_API VprStatus vpriWTInvRow_B53_JPEG2K_32s_C1R(const Vpr32s* pSrcLow, int32_t srcLowStep,
                                                  const Vpr32s* pSrcHigh, int32_t srcHighStep,
                                                  VprRoiSize srcRoiSize, Vpr32s* pDst, int32_t dstStep,
                                                  int32_t phase);
VPR_API VprStatus vpriWTInvRow_B53_JPEG2K_16s_C1R(const Vpr16s* pSrcLow, int32_t srcLowStep,
                                                  const Vpr16s* pSrcHigh, int32_t srcHighStep,
                                                  VprRoiSize srcRoiSize, Vpr16s* pDst, int32_t dstStep,
                                                  int32_t phase);

/* ---------------------------------------------------------------- columns
 * The row arithmetic down the columns: roi.height output rows per band
 * from 2 * roi.height source rows (forward), or 2 * roi.height output rows
 * (inverse); the caller supplies the extension rows (forward phase 0: rows
 * -2 and 2h; phase != 0: rows -1, 2h and 2h+1; inverse: band rows as for
 * the row forms).  Forward low row n uses high row n-1 read back from the
 * high destination (row -1 of phase 0 is formed on the fly, never read
 * from outside the destination); the inverse reads back the even output
 * row it has just written.
 * Overlap: when a destination's byte range meets the source's, the call
 * runs on a separate path that copies strips of source columns to the
 * stack first, so the result is as if the whole source had been read
 * before anything was written, provided each destination row only covers
 * the source columns at the same x (bands written back into the image
 * they came from).  That path holds at most 16384 (32s) / 32768 (16s)
 * samples of one column: a taller overlapping call returns
 * vprStatusBadSize (-6) and writes nothing.
 * Checks as for the row forms.
 */
VPR_API VprStatus vpriWTFwdCol_B53_JPEG2K_32s_C1R(const Vpr32s* pSrc, int32_t srcStep, Vpr32s* pDstLow,
                                                  int32_t dstLowStep, Vpr32s* pDstHigh, int32_t dstHighStep,
                                                  VprRoiSize dstRoiSize, int32_t phase);
VPR_API VprStatus vpriWTFwdCol_B53_JPEG2K_16s_C1R(const Vpr16s* pSrc, int32_t srcStep, Vpr16s* pDstLow,
                                                  int32_t dstLowStep, Vpr16s* pDstHigh, int32_t dstHighStep,
                                                  VprRoiSize dstRoiSize, int32_t phase);
VPR_API VprStatus vpriWTInvCol_B53_JPEG2K_32s_C1R(const Vpr32s* pSrcLow, int32_t srcLowStep,
                                                  const Vpr32s* pSrcHigh, int32_t srcHighStep,
                                                  VprRoiSize srcRoiSize, Vpr32s* pDst, int32_t dstStep,
                                                  int32_t phase);
VPR_API VprStatus vpriWTInvCol_B53_JPEG2K_16s_C1R(const Vpr16s* pSrcLow, int32_t srcLowStep,
                                                  const Vpr16s* pSrcHigh, int32_t srcHighStep,
                                                  VprRoiSize srcRoiSize, Vpr16s* pDst, int32_t dstStep,
                                                  int32_t phase);

/* ---------------------------------------------------------------- column lifting steps
 * One vertical step over three rows, for a caller streaming rows:
 *   forward: pDstHigh[x] = pSrc1[x] - ((pSrc0[x] + pSrc2[x]) >> 1)
 *            pDstLow[x]  = pSrc0[x] + ((pDstHigh[x] + pSrcHighPrev[x] + 2) >> 2)
 *            (pSrc0 = even row 2k, pSrc1 = odd row 2k+1, pSrc2 = row 2k+2)
 *   inverse: pDstEven[x] = pSrcLow[x] - ((pSrcHighPrev[x] + pSrcHigh[x] + 2) >> 2)
 *            pDstOdd[x]  = pSrcHighPrev[x] + ((pDstEven[x] + pSrcEvenPrev[x]) >> 1)
 * The caller keeps the last high row (and, inverse, the last even row).
 * Outputs may not overlap the inputs except where the output is also the
 * input of the same formula at the same x.
 * Checks: any of the six pointers NULL -8 (argument order), width < 1 -6.
 */
VPR_API VprStatus vpriWTFwdColLift_B53_JPEG2K_32s_C1(const Vpr32s* pSrc0, const Vpr32s* pSrc1, const Vpr32s* pSrc2,
                                                     Vpr32s* pDstLow, const Vpr32s* pSrcHighPrev, Vpr32s* pDstHigh,
                                                     int32_t width);
VPR_API VprStatus vpriWTFwdColLift_B53_JPEG2K_16s_C1(const Vpr16s* pSrc0, const Vpr16s* pSrc1, const Vpr16s* pSrc2,
                                                     Vpr16s* pDstLow, const Vpr16s* pSrcHighPrev, Vpr16s* pDstHigh,
                                                     int32_t width);
VPR_API VprStatus vpriWTInvColLift_B53_JPEG2K_32s_C1(const Vpr32s* pSrcLow, const Vpr32s* pSrcHighPrev,
                                                     const Vpr32s* pSrcHigh, const Vpr32s* pSrcEvenPrev,
                                                     Vpr32s* pDstOdd, Vpr32s* pDstEven, int32_t width);
VPR_API VprStatus vpriWTInvColLift_B53_JPEG2K_16s_C1(const Vpr16s* pSrcLow, const Vpr16s* pSrcHighPrev,
                                                     const Vpr16s* pSrcHigh, const Vpr16s* pSrcEvenPrev,
                                                     Vpr16s* pDstOdd, Vpr16s* pDstEven, int32_t width);

/* ======================================================================
 * Component transforms (three components: 0 = R -> Y, 1 = G -> Cb/U,
 * 2 = B -> Cr/V; the inverses map back in the same order)
 * ======================================================================
 * Layouts: P3IR  (sample* pSrcDst[3], int32 step, VprRoiSize roi), three
 *                planes in place, one step;
 *          C3P3R (const sample* pSrc, srcStep, sample* pDst[3], dstStep, roi),
 *                interleaved R,G,B to planes;
 *          P3C3R (const sample* pSrc[3], srcStep, sample* pDst, dstStep, roi).
 * Checks in argument order: a pointer array NULL or any of its three
 * planes NULL -8, the other pointer NULL -8, each step right after its
 * pointer(s) (< 1 -14), then width or height < 1 -6.  (C3P3R: pSrc,
 * srcStep, pDst/pDst[i], dstStep, roi.)  Nothing is written on failure.
 * Rows are processed 4 or 8 samples at a time with 128-bit vectors; the
 * vector and scalar paths give identical results.  These functions run on
 * the calling thread.
 *
 * RCT (>> arithmetic; 32s arithmetic wraps like 32-bit hardware):
 *   forward  Y = (R + 2G + B) >> 2,  U = B - G,  V = R - G
 *   inverse  G = Y - ((U + V) >> 2),  R = V + G,  B = U + G
 *   16s forward: 32-bit sums, results stored truncated to 16 bits.
 *   16s inverse: G, R and B are formed in 32 bits and each is stored with
 *   signed saturation to [-32768, 32767] (never reached for data produced
 *   by the forward RCT from samples of at most 15 significant bits).
 *
 * ICT 32f (single-precision constants, evaluated left to right, no fused
 * multiply-add):
 *   Y  =  0.299 R + 0.587 G + 0.114 B
 *   Cb = -0.16875 R - 0.33126 G + 0.5 B
 *   Cr =  0.5 R - 0.41869 G - 0.08131 B
 *   R = Y + 1.402 Cr,  G = Y - 0.34413 Cb - 0.71414 Cr,  B = Y + 1.772 Cb
 * (the Cb row sums to -0.00001: grey input gives Cb = -0.00001 v.)
 *
 * ICT 32s (14 fraction bits, + 8192 then >> 14, no clamping, 32-bit
 * wrapping arithmetic):
 *   Y  = ( 4899 R + 9617 G + 1868 B + 8192) >> 14
 *   Cb = (-2765 R - 5427 G + 8192 B + 8192) >> 14
 *   Cr = ( 8192 R - 6860 G - 1332 B + 8192) >> 14
 *   R = Y + ((22970 Cr + 8192) >> 14)
 *   G = Y + ((-5638 Cb - 11700 Cr + 8192) >> 14)
 *   B = Y + ((29032 Cb + 8192) >> 14)
 *
 * ICT 16s forward (products in 32 bits):
 *   S = 4899 R + 9617 G + 1868 B;  Y = clamp16((S + 8192) >> 14)
 *   DB = ((B << 14) - S + 8192) >> 14,  DR = ((R << 14) - S + 8192) >> 14,
 *   each kept as its low 16 bits (a signed 16-bit value; out-of-range
 *   differences wrap)
 *   Cb = clamp16((DB * 9246 + 8192) >> 14),  Cr = clamp16((DR * 11686 + 8192) >> 14)
 * ICT 16s inverse (this library's design): the 32s inverse formulas above,
 * formed in 32 bits from the sign-extended samples, each result clamped to
 * [-32768, 32767]:
 *   R = clamp16(Y + ((22970 Cr + 8192) >> 14))
 *   G = clamp16(Y + ((-5638 Cb - 11700 Cr + 8192) >> 14))
 *   B = clamp16(Y + ((29032 Cb + 8192) >> 14))
 * It inverts the 16s forward to within rounding: for samples of up to 15
 * significant bits every reconstructed component is within 3 of the
 * original (the same bound as the 32s pair, whose products must stay in
 * 32 bits: components up to about 2^16 in magnitude).
 */
VPR_API VprStatus vpriRCTFwd_JPEG2K_16s_C3P3R(const Vpr16s* pSrc, int32_t srcStep, Vpr16s* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriRCTFwd_JPEG2K_32s_C3P3R(const Vpr32s* pSrc, int32_t srcStep, Vpr32s* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriRCTFwd_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriRCTFwd_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize);

VPR_API VprStatus vpriRCTInv_JPEG2K_16s_P3C3R(const Vpr16s* pSrc[3], int32_t srcStep, Vpr16s* pDst, int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriRCTInv_JPEG2K_32s_P3C3R(const Vpr32s* pSrc[3], int32_t srcStep, Vpr32s* pDst, int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriRCTInv_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriRCTInv_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize);

VPR_API VprStatus vpriICTFwd_JPEG2K_32f_C3P3R(const Vpr32f* pSrc, int32_t srcStep, Vpr32f* pDst[3], int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriICTFwd_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriICTFwd_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriICTFwd_JPEG2K_32f_P3IR(Vpr32f* pSrcDst[3], int32_t step, VprRoiSize roiSize);

VPR_API VprStatus vpriICTInv_JPEG2K_32f_P3C3R(const Vpr32f* pSrc[3], int32_t srcStep, Vpr32f* pDst, int32_t dstStep,
                                              VprRoiSize roiSize);
VPR_API VprStatus vpriICTInv_JPEG2K_16s_P3IR(Vpr16s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriICTInv_JPEG2K_32s_P3IR(Vpr32s* pSrcDst[3], int32_t step, VprRoiSize roiSize);
VPR_API VprStatus vpriICTInv_JPEG2K_32f_P3IR(Vpr32f* pSrcDst[3], int32_t step, VprRoiSize roiSize);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG2000_H */
