/* vprJP: JPEG colour conversion and chroma sampling of whole images and rows.
 *
 * Colour conversion
 * -----------------
 * RGB/BGR <-> YCbCr with the JFIF matrix (Y 0.299 0.587 0.114; Cb -0.16874
 * -0.33126 0.5; Cr 0.5 -0.41869 -0.08131; inverse 1.402, 0.34414, 0.71414,
 * 1.772), chroma centred on 128.  The functions do NOT share one fixed-point
 * scheme: each precision family below has its own weights, rounding and
 * clamping, and two functions may differ by one on the same pixel.  The
 * constants are part of each function's contract.
 *
 *   A  RGB/BGRToYCbCr C3P3R: per row, groups of 8 pixels use Q15
 *        Y  = clamp(( 9798 R + 19235 G +  3736 B +   16266) >> 15)
 *        Cb = clamp((-5529 R - 10855 G + 16384 B + 4210688) >> 15)
 *        Cr = clamp((16384 R - 13720 G -  2664 B + 4210704) >> 15)
 *      then one group of 4 (if 4 remain) and single pixels use Q14
 *        Y  = clamp(( 4899 R +  9617 G + 1868 B +    8192) >> 14)
 *        Cb = clamp((-2764 R -  5428 G + 8192 B + 2105344) >> 14)
 *        Cr = clamp(( 8192 R -  6860 G - 1332 B + 2105344) >> 14)
 *      RGB/BGRToY C3C1R: the Q15 Y for every pixel.
 *   B  RGBToYCbCr P3R: the first (width & ~3) pixels of a row
 *        Y  = clamp((19595 R + 38470 G + 7471 B + 32768) >> 16)
 *        Cb = clamp(((B - Y) * 18491 + 4210688) >> 15)
 *        Cr = clamp(((R - Y) * 23373 + 4210688) >> 15)
 *      the last (width & 3) pixels through the internal table cc_table of
 *      eight 256-entry sub-tables: T0 = 19595 i, T1 = 38470 i,
 *      T2 = 7471 i + 32768, T3 = -11059 i, T4 = -21709 i,
 *      T5 = 32768 i + 8421375, T6 = -27439 i, T7 = -5329 i;
 *        Y = (T0[R] + T1[G] + T2[B]) >> 16, Cb = (T3[R] + T4[G] + T5[B]) >> 16,
 *        Cr = (T5[R] + T6[G] + T7[B]) >> 16.
 *   C  RGB/BGRToYCbCr C4P3R (4th byte ignored), Q16, no clamp:
 *        Y  = (19595 R + 38470 G + 7471 B + 32768) >> 16
 *        Cb = low byte of ((32768 B - 21709 G - 11059 R - 8372224) >> 16)
 *        Cr = low byte of ((32768 R - 27439 G -  5329 B - 8372224) >> 16)
 *      (a chroma rounding bias of 1/4, kept on purpose).
 *   D  4:2:2 / "411" (2x2) forward: Y as in C; chroma once per pair / 2x2
 *      block from the channel sums SR, SG, SB:
 *        422: low byte of ((32768 SB - 21709 SG - 11059 SR - 16760832) >> 17),
 *             low byte of ((32768 SR - 27439 SG -  5329 SB - 16760832) >> 17)
 *        411: the same with -33521664 and >> 18.
 *   E  YCbCrToRGB/BGR P3C3R, Q14:
 *        R = clamp(Y + sat16((22970 Cr - 2932015) >> 14))
 *        G = clamp(Y + sat16((-5638 Cb - 11700 Cr + 2227566) >> 14))
 *        B = clamp(Y + sat16((29032 Cb - 3708561) >> 14))
 *      on the first (width & ~3) pixels; the last (width & 3) use method G.
 *   E' YCbCrToRGB P3R: R and B as in E,
 *        G = clamp(Y - ((5638 Cb + 11700 Cr - 2211182) >> 14));
 *      the last (width & 3) pixels use method G.
 *   F  P3C4R and the 4:2:2 / 2x2 inverses, Q16:
 *        R = clamp((65536 Y + 91880 Cr - 11727880) >> 16)
 *        G = clamp((65536 Y - 22553 Cb - 46801 Cr + 8910128) >> 16)
 *        B = clamp((65536 Y + 116128 Cb - 14831618) >> 16)
 *      chroma replicated (no interpolation) over the pair / 2x2 block.
 *   G  YCbCr422ToRGB C2C3R and the remainders of E and E': tables
 *        R = clamp(Y + cr_r_tbl[Cr]); B = clamp(Y + cb_b_tbl[Cb]);
 *        G = clamp(Y + ((cb_g_tbl[Cb] + cr_g_tbl[Cr]) >> 16))
 *      with cr_r_tbl[i] = 1.402 (i - 128) and cb_b_tbl[i] = 1.772 (i - 128)
 *      rounded to the nearest integer (-179..178 and -227..225; the exact
 *      ties 1.772 * +-125 = +-221.5 round away from zero, to +-222, as
 *      (116130 d + 32768) >> 16 does), cr_g_tbl[i] = -46802 (i - 128),
 *      cb_g_tbl[i] = -22554 (i - 128) + 32768.  The C2C3R chroma pair
 *      serves both pixels of the pair.
 *   H  RGBToY P3C1R: single precision, Y = 0.299f R + 0.587f G + 0.114f B
 *      (products and sums in float, in this order), rounded to nearest with
 *      ties to even, saturated to 0..255.
 *   ">>" is an arithmetic (flooring) shift of a 32-bit value.
 *
 * Layouts: C3 = 3 bytes per pixel in the named order; C4 = 4 bytes, colour in
 * the first three; C2 = Y0 Cb Y1 Cr per pixel pair; P3 = an array of three
 * plane pointers (R,G,B or Y,Cb,Cr).  Steps are in bytes.  Full-resolution
 * functions take one step shared by the three planes; the 422/411 functions
 * take an array of three steps (Y, Cb, Cr).  roiSize is the full-resolution
 * (luminance) size.  "411" means one chroma sample per 2x2 block (4:2:0).
 *
 * Argument checks (colour conversion checks ALL pointers first):
 *   full resolution, one step each (C3P3R, P3R, P3C3R, C3C1R, P3C1R):
 *     any pointer (including each plane pointer) NULL -> -8; then srcStep < 1
 *     or dstStep < 1 -> -14; then width < 1 or height < 1 -> -6.
 *   C4P3R and P3C4R: pointers -> -8, then size -> -6 (steps are not checked).
 *   422 (including YCbCr422ToRGB C2C3R): pointers (the step arrays included)
 *     -> -8, then width < 2 or height < 1 -> -6; steps are not checked.
 *   411: pointers -> -8, then width < 2 or height < 2 -> -6.
 *   422/411 with an odd width (422) or an odd width or height (411) return
 *   vprStatusOddSizeWarning (35): the even part (width & ~1 columns, and for
 *   411 height & ~1 rows) is converted and the last column / row is left
 *   unwritten.  An odd height alone is not a warning for 422.
 * Nothing is written when a check fails.
 *
 * Row-parallel (see vprjp_types.h): the full-resolution C3P3R, P3R, P3C3R,
 * C3C1R, P3C1R conversions and YCbCr422ToRGB C2C3R.  The C4 forms and the
 * planar 422/411 forms run on the calling thread.
 *
 * Chroma sampling
 * ---------------
 * Whole images (arguments: source, step, source size, destination, step,
 * destination size).  Checks in order: pSrc NULL -> -8, srcStep < 1 -> -14,
 * source width/height < 1 -> -6, pDst NULL -> -8, dstStep < 1 -> -14,
 * destination width/height < 1 -> -6.  The destination size drives the
 * loops; the source size is only checked for being positive, and the caller
 * guarantees the source holds what the destination needs.
 *   SampleDownH2V1: d(r,j) = (s(r,2j) + s(r,2j+1) + 1) >> 1
 *   SampleDownH2V2: d(r,j) = (sum of the 2x2 block at (2r,2j) + 3) >> 2
 *   SampleUpH2V1:   d(r,2i)   = (3 x[i] + x[i-1] + 1) >> 2,
 *                   d(r,2i+1) = (3 x[i] + x[i+1] + 2) >> 2   (x = source row r)
 *   SampleUpH2V2:   destination row d: N = source row d>>1, F = the source
 *                   row above N (d even) or below N (d odd); t = 3 N + F;
 *                   out(2i) = (3 t[i] + t[i-1] + 8) >> 4,
 *                   out(2i+1) = (3 t[i] + t[i+1] + 7) >> 4.
 * BORDER CONTRACT of the whole-image up-samplers: they read one sample
 * before and one after each source row they use (x[-1] and x[n], n = the
 * number of source samples a destination row needs, (dstWidth + 1) / 2),
 * and SampleUpH2V2 also reads the source row above the first (at
 * pSrc - srcStep) and, when the last destination row is odd, the row below
 * the last source row used (source rows used: (dstHeight + 1) / 2).  The
 * caller provides that border (edge replication is the usual choice).
 * Row-parallel: SampleDownH2V1, SampleDownH2V2, SampleUpH2V2 (by destination
 * rows); SampleUpH2V1 runs on the calling thread.
 *
 * Row functions (single row, calling thread; pointers NULL -> -8, then
 * width < 1 -> -6):
 *   SampleDownRowH2V1_Box: out[j] = (in[2j] + in[2j+1] + (j even ? 1 : 0)) >> 1
 *   SampleDownRowH2V2_Box: out[j] = (2x2 sum + (j even ? 1 : 2)) >> 2
 *     srcWidth is the number of SOURCE samples; srcWidth / 2 outputs are
 *     written (an odd last source sample is not used).
 *   SampleUpRowH2V1_Triangle: 2 * srcWidth outputs, the formulas of
 *     SampleUpH2V1 with the missing neighbour at each end replaced by the end
 *     sample (out[0] = x[0], out[2n-1] = x[n-1]); nothing outside the row is
 *     read.
 *   SampleUpRowH2V2_Triangle(near, far, ...): t = 3 near + far, the formulas
 *     of SampleUpH2V2 with t[-1] = t[0] and t[n] = t[n-1]
 *     (out[0] = (4 t[0] + 8) >> 4, out[2n-1] = (4 t[n-1] + 7) >> 4).
 */
#ifndef VPRJP_JPEG_COLOR_H
#define VPRJP_JPEG_COLOR_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* ---------------------------------------------------------------- forward */

/* Family A; row-parallel. */
VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize);
/* Family B; row-parallel. */
VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_P3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst[3],
                                             int dstStep, VprRoiSize roiSize);
/* Family C; no step check; calling thread. */
VPR_API VprStatus vpriRGBToYCbCr_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3], int dstStep,
                                               VprRoiSize roiSize);
/* Family A, Y only, Q15 for every pixel; row-parallel. */
VPR_API VprStatus vpriRGBToY_JPEG_8u_C3C1R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToY_JPEG_8u_C3C1R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize);
/* Family H (float); row-parallel. */
VPR_API VprStatus vpriRGBToY_JPEG_8u_P3C1R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst, int dstStep,
                                           VprRoiSize roiSize);

/* Family D, 2x1 chroma (Cb, Cr planes width/2 wide); steps: Y, Cb, Cr. */
VPR_API VprStatus vpriRGBToYCbCr422_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr422_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriRGBToYCbCr422_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr422_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
/* Family D, 2x2 chroma (Cb, Cr planes width/2 x height/2). */
VPR_API VprStatus vpriRGBToYCbCr411_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr411_JPEG_8u_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriRGBToYCbCr411_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);
VPR_API VprStatus vpriBGRToYCbCr411_JPEG_8u_C4P3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst[3],
                                                  int dstStep[3], VprRoiSize roiSize);

/* ---------------------------------------------------------------- inverse */

/* Family E; row-parallel. */
VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriYCbCrToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize);
/* Family E'; row-parallel. */
VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst[3],
                                             int dstStep, VprRoiSize roiSize);
/* Family F, fourth byte = aval; no step check; calling thread. */
VPR_API VprStatus vpriYCbCrToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize, Vpr8u aval);
VPR_API VprStatus vpriYCbCrToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep, Vpr8u* pDst,
                                               int dstStep, VprRoiSize roiSize, Vpr8u aval);
/* Family F with 2x1 chroma replicated; source steps: Y, Cb, Cr. */
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriYCbCr422ToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval);
VPR_API VprStatus vpriYCbCr422ToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval);
/* Family F with 2x2 chroma replicated (two output rows per chroma row). */
VPR_API VprStatus vpriYCbCr411ToRGB_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriYCbCr411ToBGR_JPEG_8u_P3C3R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriYCbCr411ToRGB_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval);
VPR_API VprStatus vpriYCbCr411ToBGR_JPEG_8u_P3C4R(const Vpr8u* const pSrc[3], int srcStep[3], Vpr8u* pDst,
                                                  int dstStep, VprRoiSize roiSize, Vpr8u aval);
/* Family G: Y0 Cb Y1 Cr groups -> RGB; 422 checks (width >= 2, odd width ->
 * 35 with the last column unwritten, steps not checked); row-parallel. */
VPR_API VprStatus vpriYCbCr422ToRGB_JPEG_8u_C2C3R(const Vpr8u* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                                  VprRoiSize roiSize);

/* ---------------------------------------------------------------- sampling */

VPR_API VprStatus vpriSampleDownH2V1_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                                 int dstStep, VprRoiSize dstSize);
VPR_API VprStatus vpriSampleDownH2V2_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                                 int dstStep, VprRoiSize dstSize);
VPR_API VprStatus vpriSampleUpH2V1_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                               int dstStep, VprRoiSize dstSize);
VPR_API VprStatus vpriSampleUpH2V2_JPEG_8u_C1R(const Vpr8u* pSrc, int srcStep, VprRoiSize srcSize, Vpr8u* pDst,
                                               int dstStep, VprRoiSize dstSize);

VPR_API VprStatus vpriSampleDownRowH2V1_Box_JPEG_8u_C1(const Vpr8u* pSrc, int srcWidth, Vpr8u* pDst);
VPR_API VprStatus vpriSampleDownRowH2V2_Box_JPEG_8u_C1(const Vpr8u* pSrc1, const Vpr8u* pSrc2, int srcWidth,
                                                       Vpr8u* pDst);
VPR_API VprStatus vpriSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Vpr8u* pSrc, int srcWidth, Vpr8u* pDst);
VPR_API VprStatus vpriSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Vpr8u* pSrcNear, const Vpr8u* pSrcFar,
                                                          int srcWidth, Vpr8u* pDst);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_COLOR_H */
