/* vprJP: block texture compression (DXT1 / BC1).
 *
 * DXT1 block (8 bytes, little-endian)
 * -----------------------------------
 *   bytes 0-1  color0, RGB565 (red bits 15-11, green 10-5, blue 4-0)
 *   bytes 2-3  color1, RGB565
 *   bytes 4-7  32-bit index word: pixel i of the block (row-major,
 *              i = 4 * row + column) in bits 2i..2i+1.
 *   565 -> 8 bit by bit replication: v5 -> (v5 << 3) | (v5 >> 2),
 *   v6 -> (v6 << 2) | (v6 >> 4).
 *
 * Compressed image: blocks in row-major block order, ceil(width / 4) blocks
 * per block row, ceil(height / 4) block rows, no padding between block rows
 * (so 8 * ceil(width / 4) * ceil(height / 4) bytes).  Pixels are RGBA, four
 * bytes R, G, B, A per pixel.
 *
 * Steps
 * -----
 *   Unlike most of the library, these two functions reject only a step of
 *   0 (vprStatusBadStep).  A negative step is accepted and addresses row y
 *   at base + y * step (a bottom-up image whose first row is the top one).
 *   A step smaller than 4 * width is accepted too; the rows then overlap
 *   and where they do, which decoded row ends up in memory is not defined.
 *
 * Threads: both functions run on the calling thread. */
#ifndef VPRJP_TEXTURE_H
#define VPRJP_TEXTURE_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* Decodes a DXT1 image into RGBA pixels.
 *   pSrc     compressed blocks (8 * ceil(w/4) * ceil(h/4) bytes; nothing
 *            beyond them is read, and any byte values are valid)
 *   pDst     first RGBA pixel of the destination region
 *   dstStep  destination row step in bytes
 *   roiSize  image size in pixels
 * Checks, in order: pSrc or pDst NULL -> vprStatusNullPointer (-8);
 * dstStep == 0 -> vprStatusBadStep (-14); width or height < 1 ->
 * vprStatusBadSize (-6).  Nothing is written when a check fails.
 *
 * Per block: palette entries 0 and 1 are color0 and color1 expanded to
 * 8 bits, alpha 255.  If color0 > color1 (as unsigned 16-bit values):
 * entry 2 = (2*c0 + c1) / 3, entry 3 = (c0 + 2*c1) / 3 per channel, rounded
 * down.  Otherwise (three-colour mode, color0 == color1 included): entry 2 =
 * (c0 + c1) >> 1 per channel and entry 3 = opaque WHITE (255, 255, 255, 255)
 * -- deliberately not the transparent black other decoders produce.  Every
 * pixel written has alpha 255.
 *
 * Partial blocks (width or height not a multiple of 4): the block is
 * decoded completely and only its pixels inside the region are written;
 * nothing outside the w x h region is touched. */
VPR_API VprStatus vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Vpr8u* pSrc, Vpr8u* pDst,
                                                           int dstStep, VprRoiSize roiSize);

/* Encodes RGBA pixels into a DXT1 image (alpha is ignored).
 *   pSrc     first RGBA pixel of the source region
 *   srcStep  source row step in bytes
 *   roiSize  image size in pixels
 *   pDst     compressed blocks (8 * ceil(w/4) * ceil(h/4) bytes are written)
 * Checks, in order: pSrc or pDst NULL -> vprStatusNullPointer (-8) (both
 * pointers are checked before the step); srcStep == 0 -> vprStatusBadStep
 * (-14); width or height < 1 -> vprStatusBadSize (-6).  Nothing is written
 * when a check fails.
 *
 * Every block is coded by the same fast bounding-box encoder (no search):
 *   1. per channel R, G, B the min and max over the 16 pixels;
 *   2. inset i = (max - min) >> 4; lo = min + i, hi = max - i;
 *   3. color0 = RGB565(hi), color1 = RGB565(lo), both by truncation (top 5 /
 *      6 / 5 bits).  No swap: color0 >= color1 always, and equal endpoints
 *      give a three-colour block whose indices are all 0;
 *   4. search palette: c0, c1 expanded by bit replication, c2 = (2*c0 + c1)
 *      / 3, c3 = (c0 + 2*c1) / 3 per channel, rounded down;
 *   5. per pixel the L1 (sum of absolute RGB differences) distances d0..d3
 *      to c0..c3; with b0 = d0 > d3, b1 = d1 > d2, b2 = d0 > d2,
 *      b3 = d1 > d3, b4 = d2 > d3: index bit 0 = b0 & b4, index bit 1 =
 *      (b1 & b2) | (b0 & b3).
 *
 * Partial blocks at the right and bottom edges: the missing pixels are
 * filled by repeating the last column / last row of the region (edge
 * clamping), so a partial block is coded exactly as the 4x4 block that
 * repeats its edge pixels, and its endpoints come from the real pixels
 * only.  Nothing outside the region is read. */
VPR_API VprStatus vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Vpr8u* pSrc, int srcStep,
                                                             VprRoiSize roiSize, Vpr8u* pDst);

VPR_EXTERN_C_END

#endif /* VPRJP_TEXTURE_H */
