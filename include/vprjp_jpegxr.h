/* vprJP: JPEG XR photo core transform and VLC state.
 *
 * Photo core transform (PCT)
 * --------------------------
 * The reversible integer 4x4 block transform of JPEG XR, applied in place
 * to every 4x4 block of a region.  Inside a block the sixteen values are
 * named row by row  a b c d / e f g h / i j k l / m n o p.
 *
 *   forward:  H2(a,d,m,p;0) H2(b,c,n,o;0) H2(e,h,i,l;0) H2(f,g,j,k;0),
 *             then H2(a,b,e,f;1) Odd(c,d,g,h) Odd(i,m,j,n) OddOdd(k,l,o,p)
 *   inverse:  OddInv(c,d,g,h) OddInv(i,m,j,n) OddOddInv(k,l,o,p) H2(a,b,e,f;1),
 *             then the four H2 of the first forward stage (r = 0)
 *
 * with the lifting steps (all shifts arithmetic, i.e. floor divisions):
 *   H2(A,B,C,D;r):  A+=D; B-=C; t=(A-B+r)>>1; C1=t-D; D1=t-C;
 *                   A-=D1; B+=C1; C=C1; D=D1            (its own inverse)
 *   Odd:      B-=C; A+=D; C+=(B+1)>>1; D=((A+1)>>1)-D;
 *             B-=(3A+4)>>3; A+=(3B+4)>>3; D-=(3C+4)>>3; C+=(3D+4)>>3;
 *             D+=B>>1; C-=(A+1)>>1; B-=D; A+=C
 *   OddInv:   B+=D; A-=C; D-=B>>1; C+=(A+1)>>1;
 *             A-=(3B+4)>>3; B+=(3A+4)>>3; C-=(3D+4)>>3; D+=(3C+4)>>3;
 *             C-=(B+1)>>1; D=((A+1)>>1)-D; B+=C; A-=D
 *   OddOdd:   B=-B; C=-C; D+=A; C-=B; t1=D>>1; A-=t1; t2=C>>1; B+=t2;
 *             A+=(3B+4)>>3; B-=(3A+3)>>2; A+=(3B+3)>>3;
 *             B-=t2; A+=t1; C+=B; D-=A
 *   OddOddInv: D+=A; C-=B; t1=D>>1; A-=t1; t2=C>>1; B+=t2;
 *             A-=(3B+3)>>3; B+=(3A+3)>>2; A-=(3B+4)>>3;
 *             B-=t2; A+=t1; C+=B; D-=A; B=-B; C=-C
 *
 * Arithmetic of the element types:
 *   16s  every single assignment above (each X = expression, including the
 *        compound ones) is evaluated exactly in 32-bit arithmetic from the
 *        current 16-bit values and stored back truncated to 16 bits
 *        (wrap-around, no saturation).  Values inside one expression are
 *        exact: (3A+4)>>3 of A = 32767 is 12288.
 *   32s  every operation wraps in 32-bit two's complement, including the
 *        values inside one expression (3A+4 wraps before the shift).
 *   32f  the same steps in single precision with each shift-and-round
 *        replaced by a multiplication and the rounding terms dropped:
 *        (A-B+r)>>1, (x+1)>>1, x>>1 -> 0.5*x (H2: 0.5f*(A-B));
 *        (3x+4)>>3, (3x+3)>>3 -> 0.375f*x;  (3x+3)>>2 -> 0.75f*x;
 *        -x -> 0.0f-x.  Forward and inverse are inverses up to rounding.
 * The integer forms are lossless: the inverse undoes the forward exactly
 * for any input (16s wrap-around included).  A block of sixteen equal
 * values c becomes 4c at a (when 4c fits the type) and zeros elsewhere;
 * zeros stay zeros.  The 32s forms, and the 16s forms wherever no value
 * leaves 16 bits, give exactly the values of the JPEG XR reference
 * software's 4x4 core transform.
 *
 * No second-stage (DC) transform and no overlap filtering: a codec gathers
 * the DC values itself (sixteen DC values form a 4x4 region that
 * vpriPCTFwd_JPEGXR_* transforms).
 *
 * Whole-region forms (pSrcDst, srcDstStep in bytes, roiSize) check, in this
 * order:  pSrcDst NULL -> -8;  width < 1 or height < 1 -> -6;
 * srcDstStep taken as an unsigned 32-bit value below width x element size
 * (the product taken exactly) -> -14;  width or height not a multiple of 4
 * -> -6.  (Width 6 with a too small step reports -14.)  A negative step
 * passes the step check as a large unsigned value and then walks the rows
 * upwards in memory; rows must not overlap.
 *
 * Fixed-size forms (pSrcDst, srcDstStep) check pSrcDst NULL -> -8, then
 * srcDstStep taken as unsigned below one row of the block (16x16: 32 bytes
 * for 16s, 64 for 32s/32f; 8x16 and 8x8: 16 bytes for 16s, 32 for
 * 32s/32f) -> -14.  Block grids: 16x16 = 4x4 blocks, 8x16 = 2 blocks wide
 * and 4 high, 8x8 = 2x2 blocks.
 *
 * All forms run on the calling thread and never fail after the checks.
 *
 * VLC state
 * ---------
 * One caller-owned block of exactly 2208 bytes holding the 21 adaptive VLC
 * tables of the block and DC coders (alphabets 5 4 8 7 7 | 12 6 6 12 6 6 7 7
 * | 12 6 6 12 6 6 7 7), each with its current code table, discriminant delta
 * tables, decoder lookup tables, index, bounds and discriminants, and three
 * adaptive scan orders of 16 entries (total, position, two coordinates).
 * The memory must be aligned to 8 bytes (as any malloc result is).  The
 * object holds no pointer into itself (the current scan is an index), so it
 * may be copied byte for byte within a process (it does point to the
 * library's constant code tables).
 *
 * A discriminant is checked against the bounds of its table: a first
 * discriminant below the lower bound (-8; none at index 0) switches to the
 * previous code table, otherwise the upward discriminant above the upper
 * bound (8; 0x40000000 at the last index, out of reach of discriminants
 * that are clamped to -64..64 and grow by the small deltas) switches to the
 * next.  The block and DC coders add the delta of each coded symbol to the
 * discriminants of its table.
 */
#ifndef VPRJP_JPEGXR_H
#define VPRJP_JPEGXR_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* ---------------------------------------------------------- PCT, regions */
VPR_API VprStatus vpriPCTFwd_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriPCTFwd_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriPCTFwd_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriPCTInv_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriPCTInv_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep, VprRoiSize roiSize);
VPR_API VprStatus vpriPCTInv_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep, VprRoiSize roiSize);

/* ------------------------------------------------- PCT, fixed-size blocks */
VPR_API VprStatus vpriPCTFwd16x16_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd16x16_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd16x16_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv16x16_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv16x16_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv16x16_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);

VPR_API VprStatus vpriPCTFwd8x16_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd8x16_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd8x16_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x16_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x16_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x16_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);

VPR_API VprStatus vpriPCTFwd8x8_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd8x8_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTFwd8x8_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x8_JPEGXR_16s_C1IR(Vpr16s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x8_JPEGXR_32s_C1IR(Vpr32s* pSrcDst, int srcDstStep);
VPR_API VprStatus vpriPCTInv8x8_JPEGXR_32f_C1IR(Vpr32f* pSrcDst, int srcDstStep);

/* ------------------------------------------------------------- VLC state */

/* Stores the size of the VLC state, 2208 bytes.  pSize NULL -> -8. */
VPR_API VprStatus vpriVLCGetStateSize_JPEGXR(int* pSize);

/* Initialises a state in caller memory of at least 2208 bytes.
 * pState NULL -> -8.  Every table gets its alphabet, discriminants 0 and
 * its first-time adaptation (alphabets 6 and 12 start at code table 1, all
 * others at 0; bounds and table references set).  Tables 1..4, which no
 * adaptation touches, get the tables of index 0.  Scan 2 becomes current.
 * The three scan orders get their initial positions and coordinates; their
 * totals are NOT written: call vpriVLCScanReset_JPEGXR for each scan before
 * first use. */
VPR_API VprStatus vpriVLCInit_JPEGXR(void* pState);

/* Adapts one group of tables.  pState NULL -> -8; group not 0 or 1 -> -7.
 * Group 0: table 0, then 5..12; group 1: tables 13..20.  Per table with
 * alphabet N, index t, discriminants D1 (D2 used for N = 6 and 12), bounds
 * L and U: a first adaptation sets D1 = D2 = 0 and t = 1 for N = 6, 12,
 * else 0.  Then if D1 < L: t-1 and D1 = D2 = 0; else if (D2 for N = 6, 12,
 * else D1) > U: t+1 and D1 = D2 = 0; else both are clamped to -64..64.
 * L becomes -8 (t > 0) or INT32_MIN (t = 0); U becomes 0x40000000 (t last)
 * or 8; the tables of index t are selected (alphabet 8 always uses code
 * table 0). */
VPR_API VprStatus vpriVLCAdapt_JPEGXR(void* pState, int group);

/* Makes scan 0, 1 or 2 the current scan.  pState NULL -> -8; scan outside
 * 0..2 -> -7. */
VPR_API VprStatus vpriVLCScanSet_JPEGXR(void* pState, int scan);

/* Resets the totals of one scan: entry 0 (the DC sentinel) 32767, entries
 * 1..15 32, 30, ..., 4.  The order of the entries is kept.  pState NULL ->
 * -8; scan outside 0..2 -> -7. */
VPR_API VprStatus vpriVLCScanReset_JPEGXR(void* pState, int scan);

/* Scans a 4x4 block of DC-band coefficients in the current order of scan 2
 * (and makes scan 2 current).  Arguments: pSrc (16 coefficients, natural
 * order), modelBits b, pDst (16 outputs), pRunLevel (room for 15 pairs
 * run, level; only the first 2 x *pNumPairs values are written),
 * pNumPairs, pState.  Checks: pSrc, pDst, pRunLevel, pNumPairs,
 * pState NULL -> -8 (in this order); b above 15 -> -7 (negative b -> -7 as
 * well: no mask exists for it).
 *
 * Entries 1..15 of scan 2 are visited in order (entry 0, the DC sentinel at
 * position 0, is never coded or moved).  With m = 2^b - 1 and c the
 * coefficient at the entry's position:
 *   |c| <= m:  pDst[pos] = 0 (c = 0), 4|c|+1 (c > 0), 4|c|+3 (c < 0);
 *   |c| >  m:  pDst[pos] = 2(|c| & m), and the pair (run, level) is
 *              appended, run = number of visited entries since the previous
 *              level (or since entry 1), level = |c| >> b with the sign of
 *              c; the entry's total is incremented and, when it is now
 *              strictly above the total of the entry before it, the two
 *              entries swap at once (the visiting order of this block does
 *              not change; the next block sees the new order; entry 1
 *              never swaps with the sentinel, whatever its total).
 * |c| is taken as an unsigned 32-bit value (|INT32_MIN| = 2^31).
 * With b = 0 every non-zero coefficient becomes a level equal to the
 * coefficient itself, so all fifteen outputs are 0; the totals adapt
 * exactly as above.  pDst[0] is never written; pDst may equal pSrc.
 * *pNumPairs receives the number of pairs (0..15). */
VPR_API VprStatus vpriVLCScan4x4DC_JPEGXR_32s(const Vpr32s* pSrc, int modelBits, Vpr32s* pDst,
                                              Vpr32s* pRunLevel, int* pNumPairs, void* pState);

VPR_EXTERN_C_END

#endif /* VPRJP_JPEGXR_H */
