/* vprJP: JPEG MCU-level colour conversion and sampling.
 *
 * Each call converts exactly one minimum coded unit (MCU) between interleaved
 * 8-bit pixels and level-shifted 8x8 blocks of signed 16-bit samples (sample
 * minus 128, row-major, 64 values a block), doing colour transform, level
 * shift and chroma sampling in one pass.
 *
 *   MCU      pixels   blocks behind pMCU[0] (Y)          pMCU[1] (Cb), pMCU[2] (Cr)
 *   4:4:4    8x8      1                                  1 each
 *   4:2:2    16x8     2: columns 0-7, then 8-15          1 each (one sample per
 *                        (block 1 starts 64 samples on)    horizontal pixel pair)
 *   4:2:0    16x16    4: rows 0-7 cols 0-7, cols 8-15,   1 each (one sample per
 *   ("411")              then rows 8-15 likewise           2x2 pixel block)
 *
 * The Y blocks of one MCU are consecutive (block k at pMCU[0] + 64*k).
 * Blocks may be at any 2-byte aligned address; pixel rows at any address.
 *
 * Forward members: (pSrc, srcStep, pDstMCU[3]).  Checks, in this order:
 *   pSrc or pDstMCU NULL -> vprStatusNullPointer (-8); srcStep < 1 ->
 *   vprStatusBadStep (-14); any of pDstMCU[0..2] NULL -> -8.
 * Inverse members: (pSrcMCU[3], pDst, dstStep).  Checks, in this order:
 *   pSrcMCU NULL or any of pSrcMCU[0..2] NULL -> -8; pDst NULL -> -8;
 *   dstStep < 1 -> -14.
 * Nothing is written when a check fails.  All members run on the calling
 * thread.  In the formulas ">>" is a flooring shift of a 32-bit value.
 *
 * Forward colour conversion (RGB: bytes R,G,B; BGR: bytes B,G,R), Q14:
 *   Y'  = (4899 R + 9617 G + 1868 B - 2088960) >> 14      (= round(Y) - 128)
 *   Cb' = (-2764 R - 5428 G + 8192 B + 8192) >> 14
 *   Cr' = (8192 R - 6860 G - 1332 B + 8192) >> 14
 * 4:2:2 chroma from the pair sums SR, SG, SB of pixels 2j, 2j+1:
 *   Cb' = (-2764 SR - 5428 SG + 8192 SB + 16384) >> 15, Cr' likewise.
 * 4:2:0 chroma from the 2x2 sums: the same weights, + 32768, >> 16.
 * (The results always fit 16 bits; they are stored saturated.)
 *
 * Inverse colour conversion, 4:4:4, Q14 (the +128 folded into the chroma term):
 *   R = clamp(Y' + ((22970 Cr' + 2105344) >> 14))
 *   G = clamp(Y' + ((-5638 Cb' - 11700 Cr' + 2105344) >> 14))
 *   B = clamp(Y' + ((29032 Cb' + 2105344) >> 14))
 * Inverse, 4:2:2 and 4:2:0, Q13 for R and B, Q14 for G (may differ by one
 * from the 4:4:4 inverse on the same samples; both are intended):
 *   Rterm = (11485 Cr' + 1052672) >> 13, Bterm = (14516 Cb' + 1052672) >> 13,
 *   Gterm = (5638 Cb' + 11700 Cr' - 2088960) >> 14,
 *   R = clamp(Y' + Rterm), G = clamp(Y' - Gterm), B = clamp(Y' + Bterm).
 * Chroma is replicated, never interpolated: in 4:2:2 chroma sample j of a
 * row serves pixels 2j and 2j+1; in 4:2:0 (a choice of this library) it
 * serves the 2x2 pixel block (rows 2i, 2i+1, columns 2j, 2j+1), with the
 * 4:2:2 formulas.
 * The additions are 16-bit: each chroma term is saturated to 16 bits, added
 * to Y' with 16-bit saturation (subtracted for the 4:2:2/4:2:0 G), and the
 * result clamped to 0..255.  For samples an inverse DCT of 8-bit data can
 * produce (|value| < 2^12) no saturation occurs and the formulas are exact.
 *
 * SampleDown (three already converted components interleaved, c0 c1 c2 =
 * Y Cb Cr), level shift and box sampling with the rounding of the
 * conversions above (halves round up):
 *   4:4:4:  Y' = c0 - 128, Cb' = c1 - 128, Cr' = c2 - 128
 *   4:2:2:  Y' per pixel; Cb' = ((a + b + 1) >> 1) - 128 over the pair
 *   4:2:0:  Y' per pixel; Cb' = ((a + b + c + d + 2) >> 2) - 128 over the 2x2
 * SampleUp is the exact inverse layout: v = clamp(v' + 128) per component
 * (16-bit saturating add, then clamp), chroma replicated over the pixel pair
 * (4:2:2) or the 2x2 block (4:2:0), written as c0 c1 c2 = Y Cb Cr.
 *
 * Split422 (16x8 pixels as 8 rows of 8 groups Y0 Cb Y1 Cr, 32 bytes a row):
 *   Y' = Y - 128 into two Y blocks (columns 0-7, 8-15), Cb' = Cb - 128,
 *   Cr' = Cr - 128 (one per group).  Join422 is its inverse with
 *   clamp(v' + 128) as in SampleUp. */
#ifndef VPRJP_JPEG_MCU_H
#define VPRJP_JPEG_MCU_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* ---- forward: pixels -> level-shifted blocks ---- */
VPR_API VprStatus vpriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriSampleDown444LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriSampleDown422LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriSampleDown411LS_MCU_8u16s_C3P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);
VPR_API VprStatus vpriSplit422LS_MCU_8u16s_C2P3R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]);

/* ---- inverse: level-shifted blocks -> pixels ---- */
VPR_API VprStatus vpriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriSampleUp444LS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriSampleUp422LS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriSampleUp411LS_MCU_16s8u_P3C3R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);
VPR_API VprStatus vpriJoin422LS_MCU_16s8u_P3C2R(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_MCU_H */
