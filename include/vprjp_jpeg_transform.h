/* vprJP: JPEG level shift, quantisation tables and the fused 8x8 DCT.
 *
 * Blocks
 * ------
 *   An 8x8 block is 64 Vpr16s values in natural (row-major) order, 128
 *   bytes, any 2-byte aligned address.  "LS" functions read or write a pixel
 *   region instead: 8 rows of 8 samples, row r at pSrc/pDst + r * step bytes.
 *
 * Quantisation tables (all in natural order, 64 entries)
 * ------------------------------------------------------
 *   raw table      Vpr8u, zig-zag order, as in a JPEG DQT segment;
 *   forward table  Vpr16u reciprocals: round(32768 / q);
 *   inverse table  Vpr16u quantisers q (the raw values widened, reordered);
 *   forward float  Vpr32f reciprocals 1.0f / q, for the 12-bit forward DCT
 *   table          (vpriQuantFwdTableInit_JPEG_8u32f builds it).
 *
 * The fixed-point transforms
 * --------------------------
 *   Separable AP-922-style transform: row passes multiply-accumulate pairs of
 *   coefficients with per-row-pair tables into 32-bit sums (wrapping), column
 *   passes use 16-bit saturating butterflies and high-half products with the
 *   tangent constants.  The SSE kernels and their scalar twins give the same
 *   bits for every input, aligned or not, in place or not.
 *   Inverse: row pass (sum + rounder of the row) >> 11 packed with signed
 *   saturation; column pass; >> 6.  The row rounders are 65536, 2901, 2260,
 *   1704, 1024, 455, 512, 373 (rows 0..7); besides rounding they correct the
 *   bias of the truncating column pass.  Rows 1..7 whose (dequantised)
 *   coefficients are all zero are skipped: they contribute nothing, their
 *   rounder included.  Row 0 always carries its rounder (65536, the
 *   rounding offset of the column pass).  Consequently a block holding only
 *   a DC value d (after dequantisation) gives d/8 rounded half up,
 *   (8 d + 32) >> 6 with the row pass saturated to 16 bits, in every sample,
 *   and the sparse inverses below are exact.
 *   Forward: inputs << 3, column pass, row pass (sum + 2^19) >> 20 packed
 *   with signed saturation, then quantisation
 *     out = sign(c) * min((|c| * r + 16384) >> 15, 32767)
 *   i.e. c * r / 32768 rounded to nearest, halves away from zero.  Intended
 *   for level-shifted 8-bit samples (-128..127); the 16-bit column sums
 *   saturate for large inputs (a flat block beyond +-511).
 *   Dequantisation in the 8-bit inverses is the 16-bit product c * q
 *   (low 16 bits kept, wrapping).
 *
 * Argument checks
 * ---------------
 *   In argument order as everywhere, with one deviation: the forward LS
 *   functions (pSrc, srcStep, pDst, table) check both block pointers before
 *   the step: pSrc or pDst NULL -8, then srcStep < 1 -14, then table NULL -8.
 *   Nothing is written when a check fails. */
#ifndef VPRJP_JPEG_TRANSFORM_H
#define VPRJP_JPEG_TRANSFORM_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* ------------------------------------------------------------ level shift */

/* dst = src - 128 (exact, 16-bit).  Row-parallel.
 * Checks: pSrc NULL -8; srcStep < 1 -14; pDst NULL -8; dstStep < 1 -14;
 * width or height < 1 -6. */
VPR_API VprStatus vpriSub128_JPEG_8u16s_C1R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDst, int dstStep,
                                            VprRoiSize roiSize);

/* dst = clamp(src +sat 128, 0, 255) (16-bit saturating add, then clamp: any
 * src <= -128 gives 0, any src >= 127 gives 255).  Row-parallel.  Checks as
 * vpriSub128_JPEG_8u16s_C1R. */
VPR_API VprStatus vpriAdd128_JPEG_16s8u_C1R(const Vpr16s* pSrc, int srcStep, Vpr8u* pDst, int dstStep,
                                            VprRoiSize roiSize);

/* ------------------------------------------------------ quantisation tables */

/* Scales a raw (zig-zag) table in place by a quality factor:
 * scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
 * entry = clamp((entry * scale + 50) / 100, 1, 255) (division truncates).
 * Quality 50 keeps the table, 100 and above give all ones.
 * Checks: table NULL -8; quality < 1 -5. */
VPR_API VprStatus vpriQuantFwdRawTableInit_JPEG_8u(Vpr8u* pRawQuantTable, int quality);

/* Forward table: natural order, entry = round(32768 / q).  A zero raw entry
 * stores 0 (every coefficient of that position quantises to 0), the other
 * entries are still built, and the warning vprStatusDivByZeroWarning (6) is
 * returned; such a table is not meant for use.  Checks: either pointer NULL -8. */
VPR_API VprStatus vpriQuantFwdTableInit_JPEG_8u16u(const Vpr8u* pRawQuantTable, Vpr16u* pFwdQuantTable);

/* Forward float table for vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R: natural
 * order, entry = 1.0f / q (single precision).  A zero raw entry stores 0.0f
 * and returns the warning 6 after building the others.
 * Checks: either pointer NULL -8. */
VPR_API VprStatus vpriQuantFwdTableInit_JPEG_8u32f(const Vpr8u* pRawQuantTable, Vpr32f* pFwdQuantTable);

/* Inverse table: the raw values widened to 16 bits and reordered to natural
 * order, not scaled (a zero stays zero).  Checks: either pointer NULL -8. */
VPR_API VprStatus vpriQuantInvTableInit_JPEG_8u16u(const Vpr8u* pRawQuantTable, Vpr16u* pInvQuantTable);

/* ------------------------------------------------- single-block quantisation */

/* In place: c = ((((c << 3) as 16 bits) * (r >> 1)) >> 16) + 1) >> 1, i.e.
 * c * r / 32768 rounded, halves up.  c must lie in -4096..4095 (larger values
 * wrap in the 16-bit shift).  Checks: either pointer NULL -8. */
VPR_API VprStatus vpriQuantFwd8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pFwdQuantTable);

/* In place: c = c * q, low 16 bits kept.  Checks: either pointer NULL -8. */
VPR_API VprStatus vpriQuantInv8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pInvQuantTable);

/* ------------------------------------------------------------ forward DCT */

/* Forward DCT of 64 coefficients, then quantisation with a forward table.
 * pSrc and pDst may be the same block.  Checks: any pointer NULL -8. */
VPR_API VprStatus vpriDCTQuantFwd8x8_JPEG_16s_C1(const Vpr16s* pSrc, Vpr16s* pDst, const Vpr16u* pFwdQuantTable);
VPR_API VprStatus vpriDCTQuantFwd8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pFwdQuantTable);

/* 8x8 samples (0..255) minus 128, forward DCT, quantisation.  Same bits as
 * vpriSub128 followed by vpriDCTQuantFwd8x8_JPEG_16s_C1.
 * Checks: pSrc or pDst NULL -8; srcStep < 1 -14; table NULL -8. */
VPR_API VprStatus vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Vpr8u* pSrc, int srcStep, Vpr16s* pDst,
                                                      const Vpr16u* pFwdQuantTable);

/* 12-bit samples (0..4095; other values are taken as they are) minus 2048,
 * single-precision forward DCT with the JPEG scaling
 *   F(v,u) = C(u) C(v) / 4 * sum f(y,x) cos((2x+1)u pi/16) cos((2y+1)v pi/16)
 * (C(0) = 1/sqrt(2), else 1), evaluated as unnormalised 8-point even/odd
 * butterflies with a fixed order of operations, columns first, then
 * multiplied by C(u) C(v) / 4 (exactly 1/8 at DC, so flat blocks are exact),
 * then
 *   out = saturate16(round_to_nearest_even(F * t))
 * with the float table t (normally 1/q in natural order, built by
 * vpriQuantFwdTableInit_JPEG_8u32f; any table is accepted; products beyond
 * the 16-bit range saturate, NaN gives -32768).
 * Checks: pSrc or pDst NULL -8; srcStep < 1 -14; table NULL -8. */
VPR_API VprStatus vpriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Vpr16u* pSrc, int srcStep, Vpr16s* pDst,
                                                       const Vpr32f* pFwdQuantTable);

/* ------------------------------------------------------------ inverse DCT */

/* Dequantise (16-bit products) and inverse DCT, results as 16-bit values
 * (no level shift).  Checks: any pointer NULL -8. */
VPR_API VprStatus vpriDCTQuantInv8x8_JPEG_16s_C1(const Vpr16s* pSrc, Vpr16s* pDst, const Vpr16u* pInvQuantTable);
VPR_API VprStatus vpriDCTQuantInv8x8_JPEG_16s_C1I(Vpr16s* pSrcDst, const Vpr16u* pInvQuantTable);

/* Dequantise, inverse DCT, add 128 and clamp to 0..255, write 8 rows of 8.
 * Same bits as vpriDCTQuantInv8x8_JPEG_16s_C1 followed by vpriAdd128.
 * Checks: pSrc or pDst NULL -8; dstStep < 1 -14; table NULL -8. */
VPR_API VprStatus vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                      const Vpr16u* pInvQuantTable);

/* 12-bit output: dequantise in 32 bits (c * q, no wrap), scale by
 * C(u) C(v) / 4 in single precision, unnormalised 8-point inverse
 * butterflies (rows first, fixed order of operations), add 2048, clamp to
 * 0..4095, round to nearest even.  Same quantiser table as the 8-bit inverse.
 * Checks as vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R. */
VPR_API VprStatus vpriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const Vpr16s* pSrc, Vpr16u* pDst, int dstStep,
                                                       const Vpr16u* pInvQuantTable);

/* Sparse inverses: only the top-left 1x1, 2x2 or 4x4 coefficients are read
 * (the others are taken as zero); the full 8x8 output is exactly that of
 * vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R on the block with the other
 * coefficients zeroed.  Checks as vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R. */
VPR_API VprStatus vpriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                          const Vpr16u* pInvQuantTable);
VPR_API VprStatus vpriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                          const Vpr16u* pInvQuantTable);
VPR_API VprStatus vpriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                          const Vpr16u* pInvQuantTable);

/* Scaled decoding (1/2 and 1/4): reads the top-left 4x4 (2x2) coefficients,
 * dequantised as 16-bit products, and writes a 4x4 (2x2) block of samples:
 * the 8x8 inverse DCT series truncated to those frequencies, sampled at the
 * centres of the 2x2 (4x4) pixel groups the output samples stand for.
 *   To4x4: s(i,j) = sum_{u,v<4} C(u) C(v) / 4 * F(v,u) cos((2j+1)u pi/8)
 *          cos((2i+1)v pi/8), single precision (coefficients scaled by
 *          C(u) C(v) / 4 first, then rows, then columns, ordered sums);
 *          out = clamp(s + 128, 0, 255) rounded to nearest even.
 *   To2x2: s(i,j) = F00 + sj F01 + si F10 + si sj F11 with s0 = 1, s1 = -1
 *          (exact integers); out = clamp(((s + 4) >> 3) + 128, 0, 255).
 * A DC-only block gives DC/8 + 128 in both.  Writes 4 (2) rows of 4 (2)
 * samples.  Checks as vpriDCTQuantInv8x8LS_JPEG_16s8u_C1R. */
VPR_API VprStatus vpriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                           const Vpr16u* pInvQuantTable);
VPR_API VprStatus vpriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const Vpr16s* pSrc, Vpr8u* pDst, int dstStep,
                                                           const Vpr16u* pInvQuantTable);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_TRANSFORM_H */
