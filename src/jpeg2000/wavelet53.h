// Reversible 5/3 wavelet kernels.
//
// ref::  scalar twins written straight from the lifting formulas.  The 2-D
//        ref kernels work line by line through the work buffer with the
//        ownpj_ extension / interleave helpers (below).
// sse::  the kernels the exported entries call.  The 2-D sse kernels lift
//        whole rows at a time (vertical pass), de-interleave the rows by
//        following the permutation's cycles with one row of the work
//        buffer, and lift each row in split (low / high) form.
//
// Arithmetic (both): every lifting output is stored as a sample of T before
// the next step reads it; 32s sums wrap like 32-bit hardware, 16s sums are
// exact and results are truncated to 16 bits.
#pragma once

#include <cstdint>

#include "vprjp_types.h"

// ---------------------------------------------------------------- line helpers
// Work-buffer line layout: the n samples of a line sit at buf[2 .. n+1],
// two free slots in front.  Forward read: left extension of 2 - phase
// samples (buf[2-k] = x[k]), right extension of ((n + phase) & 1) + 1
// samples (buf[n+1+k] = x[n-1-k]).  The inverse read interleaves the low
// half (x[0 .. nL)) and the high half (x[nL .. n)) by phase (low
// coefficients to even absolute positions) and extends by two samples on
// each side, so the inverse lifting reads the even neighbours of both end
// samples without special cases (the buffer holds n + 4 samples).
// Lines must have n >= 3 samples.  Col helpers walk a column with a byte
// step.
void ownpj_ReadExt_Row_32s(const Vpr32s* pSrc, int n, int phase, Vpr32s* buf);
void ownpj_ReadExt_Row_16s(const Vpr16s* pSrc, int n, int phase, Vpr16s* buf);
void ownpj_ReadExt_Col_32s(const Vpr32s* pSrc, int step, int n, int phase, Vpr32s* buf);
void ownpj_ReadExt_Col_16s(const Vpr16s* pSrc, int step, int n, int phase, Vpr16s* buf);
// Lifted buffer -> line with the low coefficients first (nL of them, in
// order) and the high ones after them.
void ownpj_WriteInterleave_Row_32s(const Vpr32s* buf, int n, int phase, Vpr32s* pDst);
void ownpj_WriteInterleave_Row_16s(const Vpr16s* buf, int n, int phase, Vpr16s* pDst);
void ownpj_WriteInterleave_Col_32s(const Vpr32s* buf, int n, int phase, Vpr32s* pDst, int step);
void ownpj_WriteInterleave_Col_16s(const Vpr16s* buf, int n, int phase, Vpr16s* pDst, int step);
void ownpj_ReadInterleaveExt_Row_32s(const Vpr32s* pSrc, int n, int phase, Vpr32s* buf);
void ownpj_ReadInterleaveExt_Row_16s(const Vpr16s* pSrc, int n, int phase, Vpr16s* buf);
void ownpj_ReadInterleaveExt_Col_32s(const Vpr32s* pSrc, int step, int n, int phase, Vpr32s* buf);
void ownpj_ReadInterleaveExt_Col_16s(const Vpr16s* pSrc, int step, int n, int phase, Vpr16s* buf);
// Reconstructed buffer -> line in natural order.
void ownpj_Write_Row_32s(const Vpr32s* buf, int n, Vpr32s* pDst);
void ownpj_Write_Row_16s(const Vpr16s* buf, int n, Vpr16s* pDst);
void ownpj_Write_Col_32s(const Vpr32s* buf, int n, Vpr32s* pDst, int step);
void ownpj_Write_Col_16s(const Vpr16s* buf, int n, Vpr16s* pDst, int step);

namespace vpr::j2k {

// Band sizes of a line of n samples starting at phase p (0 even, 1 odd).
inline int low_count(int n, int p) { return (n + 1 - p) / 2; }

// Work-buffer sizes in bytes (int64: the entries narrow them).
int64_t wt_buf_size_c1ir(int w, int h, int sample_bytes);
int64_t wt_buf_size_c1r(int w, int h, int sample_bytes);

#define VPR_J2K_WT_KERNELS(T)                                                                                    \
  void wt_fwd_c1ir(T* p, int step, int w, int h, int px, int py, T* buf);                                        \
  void wt_inv_c1ir(T* p, int step, int w, int h, int px, int py, T* buf);                                        \
  void wt_fwd_row(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase);     \
  void wt_inv_row(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase); \
  void wt_fwd_col(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase);     \
  void wt_inv_col(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase); \
  void wt_fwd_col_lift(const T* s0, const T* s1, const T* s2, T* lo, const T* hiPrev, T* hi, int w);            \
  void wt_inv_col_lift(const T* lo, const T* hiPrev, const T* hi, const T* evPrev, T* odd, T* even, int w);

namespace ref {
VPR_J2K_WT_KERNELS(int32_t)
VPR_J2K_WT_KERNELS(int16_t)
// 1-D lifting of one extended line in the work buffer (b = buf + 2).
void lift_fwd_line(int32_t* b, int n, int phase);
void lift_fwd_line(int16_t* b, int n, int phase);
void lift_inv_line(int32_t* b, int n, int phase);
void lift_inv_line(int16_t* b, int n, int phase);
}  // namespace ref

namespace sse {
VPR_J2K_WT_KERNELS(int32_t)
VPR_J2K_WT_KERNELS(int16_t)
// The 2-D kernels without the row (de-)interleave: for h >= 3 the rows stay
// in interleaved order (row r is vertically low when (r + py) is even);
// regions of one or two rows are laid out as by wt_fwd_c1ir.
void wt_fwd_c1ir_interleaved(int32_t* p, int step, int w, int h, int px, int py, int32_t* buf);
void wt_fwd_c1ir_interleaved(int16_t* p, int step, int w, int h, int px, int py, int16_t* buf);
void wt_inv_c1ir_interleaved(int32_t* p, int step, int w, int h, int px, int py, int32_t* buf);
void wt_inv_c1ir_interleaved(int16_t* p, int step, int w, int h, int px, int py, int16_t* buf);
}  // namespace sse

#undef VPR_J2K_WT_KERNELS

}  // namespace vpr::j2k
