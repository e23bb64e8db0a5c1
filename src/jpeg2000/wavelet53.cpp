// Reversible 5/3 wavelet: exported entries, the ownpj_ line helpers and the
// scalar reference kernels.
#include "jpeg2000/wavelet53.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "jpeg2000/wavelet53_lift.h"
#include "vprjp_jpeg2000.h"

namespace {

using vpr::j2k::low_count;
namespace lift = vpr::j2k::lift;

// Element i of a line with a byte stride.
template <class T>
inline T& at(T* p, std::ptrdiff_t stride, int i) {
  return *reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(p) + stride * i);
}
template <class T>
inline const T& at(const T* p, std::ptrdiff_t stride, int i) {
  return *reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(p) + stride * i);
}

template <class T>
void read_ext(const T* src, std::ptrdiff_t stride, int n, int phase, T* buf) {
  T* b = buf + 2;
  for (int i = 0; i < n; ++i) b[i] = at(src, stride, i);
  const int L = 2 - phase, R = ((n + phase) & 1) + 1;
  for (int k = 1; k <= L; ++k) b[-k] = b[k];
  for (int k = 1; k <= R; ++k) b[n - 1 + k] = b[n - 1 - k];
}

template <class T>
void write_interleave(const T* buf, int n, int phase, T* dst, std::ptrdiff_t stride) {
  const T* b = buf + 2;
  const int nL = low_count(n, phase);
  for (int i = 0; i < n; ++i) {
    const bool low = ((i + phase) & 1) == 0;
    at(dst, stride, low ? i / 2 : nL + i / 2) = b[i];
  }
}

template <class T>
void read_interleave_ext(const T* src, std::ptrdiff_t stride, int n, int phase, T* buf) {
  T* b = buf + 2;
  const int nL = low_count(n, phase);
  for (int i = 0; i < n; ++i) {
    const bool low = ((i + phase) & 1) == 0;
    b[i] = at(src, stride, low ? i / 2 : nL + i / 2);
  }
  for (int k = 1; k <= 2; ++k) {
    b[-k] = b[k];
    b[n - 1 + k] = b[n - 1 - k];
  }
}

template <class T>
void write_line(const T* buf, int n, T* dst, std::ptrdiff_t stride) {
  for (int i = 0; i < n; ++i) at(dst, stride, i) = buf[2 + i];
}

template <class T>
void lift_fwd(T* b, int n, int p) {
  const int L = 2 - p, R = ((n + p) & 1) + 1;
  for (int i = -L + 1; i <= n - 2 + R; ++i)
    if ((i + p) & 1) b[i] = lift::predict(b[i], b[i - 1], b[i + 1]);
  for (int i = 0; i < n; ++i)
    if (((i + p) & 1) == 0) b[i] = lift::update(b[i], b[i - 1], b[i + 1]);
}

template <class T>
void lift_inv(T* b, int n, int p) {
  for (int i = -1; i <= n; ++i)
    if (((i + p) & 1) == 0) b[i] = lift::unupdate(b[i], b[i - 1], b[i + 1]);
  for (int i = 0; i < n; ++i)
    if ((i + p) & 1) b[i] = lift::unpredict(b[i], b[i - 1], b[i + 1]);
}

template <class T>
T* row_at(T* p, int step, int y) {
  return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(p) + static_cast<std::ptrdiff_t>(step) * y);
}
template <class T>
const T* row_at(const T* p, int step, int y) {
  return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(p) + static_cast<std::ptrdiff_t>(step) * y);
}

// One 1-D pass over `count` lines of length n (line j starts at p + j*lineStride
// bytes, samples `stride` bytes apart).
template <class T>
void pass_fwd(T* p, std::ptrdiff_t lineStride, std::ptrdiff_t stride, int count, int n, int phase, T* buf) {
  for (int j = 0; j < count; ++j) {
    T* line = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(p) + lineStride * j);
    if (n >= 3) {
      read_ext(line, stride, n, phase, buf);
      lift_fwd(buf + 2, n, phase);
      write_interleave(buf, n, phase, line, stride);
    } else if (n == 2) {
      T L, H;
      lift::fwd2(at(line, stride, phase), at(line, stride, 1 - phase), L, H);
      at(line, stride, 0) = L;
      at(line, stride, 1) = H;
    } else {
      at(line, stride, 0) = lift::fwd1(at(line, stride, 0), phase);
    }
  }
}

template <class T>
void pass_inv(T* p, std::ptrdiff_t lineStride, std::ptrdiff_t stride, int count, int n, int phase, T* buf) {
  for (int j = 0; j < count; ++j) {
    T* line = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(p) + lineStride * j);
    if (n >= 3) {
      read_interleave_ext(line, stride, n, phase, buf);
      lift_inv(buf + 2, n, phase);
      write_line(buf, n, line, stride);
    } else if (n == 2) {
      T e, o;
      lift::inv2(at(line, stride, 0), at(line, stride, 1), e, o);
      at(line, stride, phase) = e;
      at(line, stride, 1 - phase) = o;
    } else {
      at(line, stride, 0) = lift::inv1(at(line, stride, 0), phase);
    }
  }
}

template <class T>
void ref_fwd_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) {
  if (w < 1 || h < 1) return;
  pass_fwd(p, sizeof(T), step, w, h, py, buf);
  pass_fwd(p, step, sizeof(T), h, w, px, buf);
}

template <class T>
void ref_inv_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) {
  if (w < 1 || h < 1) return;
  pass_inv(p, step, sizeof(T), h, w, px, buf);
  pass_inv(p, sizeof(T), step, w, h, py, buf);
}

// Row / column forms: `along` is the byte distance between consecutive
// samples of one line, `across` between lines.
template <class T>
void ref_fwd_lines(const T* s, std::ptrdiff_t sAlong, std::ptrdiff_t sAcross, T* lo, std::ptrdiff_t loAlong,
                   std::ptrdiff_t loAcross, T* hi, std::ptrdiff_t hiAlong, std::ptrdiff_t hiAcross, int n, int count,
                   int phase) {
  for (int j = 0; j < count; ++j) {
    const T* t = reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(s) + sAcross * j);
    T* l = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(lo) + loAcross * j);
    T* hh = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(hi) + hiAcross * j);
    if (phase == 0) {
      T hprev = lift::predict(at(t, sAlong, -1), at(t, sAlong, -2), at(t, sAlong, 0));
      for (int k = 0; k < n; ++k) {
        const T hk = lift::predict(at(t, sAlong, 2 * k + 1), at(t, sAlong, 2 * k), at(t, sAlong, 2 * k + 2));
        at(hh, hiAlong, k) = hk;
        at(l, loAlong, k) = lift::update(at(t, sAlong, 2 * k), hk, hprev);
        hprev = hk;
      }
    } else {
      T hprev = lift::predict(at(t, sAlong, 0), at(t, sAlong, -1), at(t, sAlong, 1));
      at(hh, hiAlong, 0) = hprev;
      for (int k = 0; k < n; ++k) {
        const T hk = lift::predict(at(t, sAlong, 2 * k + 2), at(t, sAlong, 2 * k + 1), at(t, sAlong, 2 * k + 3));
        if (k + 1 < n) at(hh, hiAlong, k + 1) = hk;
        at(l, loAlong, k) = lift::update(at(t, sAlong, 2 * k + 1), hprev, hk);
        hprev = hk;
      }
    }
  }
}

template <class T>
void ref_inv_lines(const T* lo, std::ptrdiff_t loAlong, std::ptrdiff_t loAcross, const T* hi, std::ptrdiff_t hiAlong,
                   std::ptrdiff_t hiAcross, T* d, std::ptrdiff_t dAlong, std::ptrdiff_t dAcross, int n, int count,
                   int phase) {
  for (int j = 0; j < count; ++j) {
    const T* l = reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(lo) + loAcross * j);
    const T* hh = reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(hi) + hiAcross * j);
    T* o = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(d) + dAcross * j);
    if (phase == 0) {
      T ev = lift::unupdate(at(l, loAlong, 0), at(hh, hiAlong, -1), at(hh, hiAlong, 0));
      for (int k = 0; k < n; ++k) {
        const T ev1 = lift::unupdate(at(l, loAlong, k + 1), at(hh, hiAlong, k), at(hh, hiAlong, k + 1));
        at(o, dAlong, 2 * k) = ev;
        at(o, dAlong, 2 * k + 1) = lift::unpredict(at(hh, hiAlong, k), ev, ev1);
        ev = ev1;
      }
    } else {
      T ev = lift::unupdate(at(l, loAlong, -1), at(hh, hiAlong, -1), at(hh, hiAlong, 0));
      for (int k = 0; k < n; ++k) {
        const T ev1 = lift::unupdate(at(l, loAlong, k), at(hh, hiAlong, k), at(hh, hiAlong, k + 1));
        at(o, dAlong, 2 * k) = lift::unpredict(at(hh, hiAlong, k), ev, ev1);
        at(o, dAlong, 2 * k + 1) = ev1;
        ev = ev1;
      }
    }
  }
}

}  // namespace

// ---------------------------------------------------------------- ownpj_ helpers
void ownpj_ReadExt_Row_32s(const Vpr32s* pSrc, int n, int phase, Vpr32s* buf) { read_ext(pSrc, 4, n, phase, buf); }
void ownpj_ReadExt_Row_16s(const Vpr16s* pSrc, int n, int phase, Vpr16s* buf) { read_ext(pSrc, 2, n, phase, buf); }
void ownpj_ReadExt_Col_32s(const Vpr32s* pSrc, int step, int n, int phase, Vpr32s* buf) {
  read_ext(pSrc, step, n, phase, buf);
}
void ownpj_ReadExt_Col_16s(const Vpr16s* pSrc, int step, int n, int phase, Vpr16s* buf) {
  read_ext(pSrc, step, n, phase, buf);
}
void ownpj_WriteInterleave_Row_32s(const Vpr32s* buf, int n, int phase, Vpr32s* pDst) {
  write_interleave(buf, n, phase, pDst, 4);
}
void ownpj_WriteInterleave_Row_16s(const Vpr16s* buf, int n, int phase, Vpr16s* pDst) {
  write_interleave(buf, n, phase, pDst, 2);
}
void ownpj_WriteInterleave_Col_32s(const Vpr32s* buf, int n, int phase, Vpr32s* pDst, int step) {
  write_interleave(buf, n, phase, pDst, step);
}
void ownpj_WriteInterleave_Col_16s(const Vpr16s* buf, int n, int phase, Vpr16s* pDst, int step) {
  write_interleave(buf, n, phase, pDst, step);
}
void ownpj_ReadInterleaveExt_Row_32s(const Vpr32s* pSrc, int n, int phase, Vpr32s* buf) {
  read_interleave_ext(pSrc, 4, n, phase, buf);
}
void ownpj_ReadInterleaveExt_Row_16s(const Vpr16s* pSrc, int n, int phase, Vpr16s* buf) {
  read_interleave_ext(pSrc, 2, n, phase, buf);
}
void ownpj_ReadInterleaveExt_Col_32s(const Vpr32s* pSrc, int step, int n, int phase, Vpr32s* buf) {
  read_interleave_ext(pSrc, step, n, phase, buf);
}
void ownpj_ReadInterleaveExt_Col_16s(const Vpr16s* pSrc, int step, int n, int phase, Vpr16s* buf) {
  read_interleave_ext(pSrc, step, n, phase, buf);
}
void ownpj_Write_Row_32s(const Vpr32s* buf, int n, Vpr32s* pDst) { write_line(buf, n, pDst, 4); }
void ownpj_Write_Row_16s(const Vpr16s* buf, int n, Vpr16s* pDst) { write_line(buf, n, pDst, 2); }
void ownpj_Write_Col_32s(const Vpr32s* buf, int n, Vpr32s* pDst, int step) { write_line(buf, n, pDst, step); }
void ownpj_Write_Col_16s(const Vpr16s* buf, int n, Vpr16s* pDst, int step) { write_line(buf, n, pDst, step); }

namespace vpr::j2k {

int64_t wt_buf_size_c1ir(int w, int h, int sample_bytes) {
  if (w < 3 && h < 3) return 0;
  const int64_t m = std::max<int64_t>(w, h);
  return sample_bytes * m + 4 * sample_bytes;
}

int64_t wt_buf_size_c1r(int w, int h, int sample_bytes) {
  const int64_t rowBytes = (int64_t{sample_bytes} * w + 31) & ~int64_t{31};
  return rowBytes * h + wt_buf_size_c1ir(w, h, sample_bytes);
}

namespace ref {

#define VPR_J2K_REF_KERNELS(T)                                                                                      \
  void wt_fwd_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) { ref_fwd_c1ir(p, step, w, h, px, py, buf); } \
  void wt_inv_c1ir(T* p, int step, int w, int h, int px, int py, T* buf) { ref_inv_c1ir(p, step, w, h, px, py, buf); } \
  void wt_fwd_row(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase) {       \
    ref_fwd_lines(src, sizeof(T), srcStep, lo, sizeof(T), loStep, hi, sizeof(T), hiStep, w, h, phase);             \
  }                                                                                                                 \
  void wt_inv_row(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase) { \
    ref_inv_lines(lo, sizeof(T), loStep, hi, sizeof(T), hiStep, dst, sizeof(T), dstStep, w, h, phase);             \
  }                                                                                                                 \
  void wt_fwd_col(const T* src, int srcStep, T* lo, int loStep, T* hi, int hiStep, int w, int h, int phase) {       \
    ref_fwd_lines(src, srcStep, sizeof(T), lo, loStep, sizeof(T), hi, hiStep, sizeof(T), h, w, phase);             \
  }                                                                                                                 \
  void wt_inv_col(const T* lo, int loStep, const T* hi, int hiStep, T* dst, int dstStep, int w, int h, int phase) { \
    ref_inv_lines(lo, loStep, sizeof(T), hi, hiStep, sizeof(T), dst, dstStep, sizeof(T), h, w, phase);             \
  }                                                                                                                 \
  void wt_fwd_col_lift(const T* s0, const T* s1, const T* s2, T* lo, const T* hiPrev, T* hi, int w) {              \
    for (int x = 0; x < w; ++x) {                                                                                   \
      const T hv = lift::predict(s1[x], s0[x], s2[x]);                                                              \
      hi[x] = hv;                                                                                                   \
      lo[x] = lift::update(s0[x], hv, hiPrev[x]);                                                                   \
    }                                                                                                               \
  }                                                                                                                 \
  void wt_inv_col_lift(const T* lo, const T* hiPrev, const T* hi, const T* evPrev, T* odd, T* even, int w) {      \
    for (int x = 0; x < w; ++x) {                                                                                   \
      const T ev = lift::unupdate(lo[x], hiPrev[x], hi[x]);                                                         \
      even[x] = ev;                                                                                                 \
      odd[x] = lift::unpredict(hiPrev[x], ev, evPrev[x]);                                                           \
    }                                                                                                               \
  }                                                                                                                 \
  void lift_fwd_line(T* b, int n, int phase) { lift_fwd(b, n, phase); }                                             \
  void lift_inv_line(T* b, int n, int phase) { lift_inv(b, n, phase); }

VPR_J2K_REF_KERNELS(int32_t)
VPR_J2K_REF_KERNELS(int16_t)
#undef VPR_J2K_REF_KERNELS

}  // namespace ref
}  // namespace vpr::j2k

// ---------------------------------------------------------------- exported entries
namespace {

using namespace vpr::j2k;

template <class T>
VprStatus get_buf_size_c1ir(const VprRect* rect, int32_t* pSize) {
  if (!rect || !pSize) return vprStatusNullPointer;
  *pSize = static_cast<int32_t>(static_cast<uint32_t>(wt_buf_size_c1ir(rect->width, rect->height, sizeof(T))));
  return vprStatusOk;
}

template <class T>
VprStatus get_buf_size_c1r(const VprRect* rect, int32_t* pSize) {
  if (!rect || !pSize) return vprStatusNullPointer;
  *pSize = static_cast<int32_t>(static_cast<uint32_t>(wt_buf_size_c1r(rect->width, rect->height, sizeof(T))));
  return vprStatusOk;
}

template <class T>
VprStatus fwd_c1ir(T* p, int32_t step, const VprRect* rect, Vpr8u* pBuffer) {
  if (!p) return vprStatusNullPointer;
  if (step < 1) return vprStatusBadStep;
  if (!rect || !pBuffer) return vprStatusNullPointer;
  sse::wt_fwd_c1ir(p, step, rect->width, rect->height, rect->x & 1, rect->y & 1, reinterpret_cast<T*>(pBuffer));
  return vprStatusOk;
}

template <class T>
VprStatus inv_c1ir(T* p, int32_t step, const VprRect* rect, Vpr8u* pBuffer) {
  if (!p) return vprStatusNullPointer;
  if (step < 1) return vprStatusBadStep;
  if (!rect || !pBuffer) return vprStatusNullPointer;
  sse::wt_inv_c1ir(p, step, rect->width, rect->height, rect->x & 1, rect->y & 1, reinterpret_cast<T*>(pBuffer));
  return vprStatusOk;
}

template <class T>
void copy_plane(const T* src, int srcStep, T* dst, int dstStep, int w, int h) {
  for (int y = 0; y < h; ++y) std::memcpy(row_at(dst, dstStep, y), row_at(src, srcStep, y), sizeof(T) * w);
}

// Quadrant origins and sizes inside the in-place layout: LL, LH, HL, HH.
struct Quad {
  int x, y, w, h;
};
inline void quadrants(int w, int h, Quad q[4]) {
  const int wl = (w + 1) >> 1, wh = w >> 1, hl = (h + 1) >> 1, hh = h >> 1;
  q[0] = {0, 0, wl, hl};
  q[1] = {0, hl, wl, hh};
  q[2] = {wl, 0, wh, hl};
  q[3] = {wl, hl, wh, hh};
}

// Physical row of layout row d when the vertical pass leaves the rows of
// an h >= 3 region interleaved (the four-subband forms skip the in-place
// row de-interleave and read / write the quadrants through this map).
inline int interleaved_row(int d, int h, int py) {
  if (h < 3) return d;
  const int nL = low_count(h, py);
  return d < nL ? 2 * d + py : 2 * (d - nL) + 1 - py;
}

template <class T>
VprStatus fwd_c1r(const T* pSrc, int32_t srcStep, const VprRect* rect, T* pDst[4], int32_t dstStep[4],
                  Vpr8u* pBuffer) {
  if (!pSrc || !pDst || !dstStep || !rect || !pBuffer) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  for (int i = 0; i < 4; ++i)
    if (!pDst[i]) return vprStatusNullPointer;
  for (int i = 0; i < 4; ++i)
    if (dstStep[i] < 1) return vprStatusBadStep;
  const int w = rect->width, h = rect->height, py = rect->y & 1;
  if (w < 1 || h < 1) return vprStatusBadSize;
  const int rowBytes = static_cast<int>((int64_t{sizeof(T)} * w + 31) & ~int64_t{31});
  T* img = reinterpret_cast<T*>(pBuffer);
  copy_plane(pSrc, srcStep, img, rowBytes, w, h);
  sse::wt_fwd_c1ir_interleaved(img, rowBytes, w, h, rect->x & 1, py,
                               reinterpret_cast<T*>(pBuffer + static_cast<std::ptrdiff_t>(rowBytes) * h));
  Quad q[4];
  quadrants(w, h, q);
  for (int i = 0; i < 4; ++i)
    for (int y = 0; y < q[i].h && q[i].w > 0; ++y)
      std::memcpy(row_at(pDst[i], dstStep[i], y), row_at(img, rowBytes, interleaved_row(q[i].y + y, h, py)) + q[i].x,
                  sizeof(T) * q[i].w);
  return vprStatusOk;
}

template <class T>
VprStatus inv_c1r(const T* pSrc[4], int32_t srcStep[4], T* pDst, int32_t dstStep, const VprRect* rect,
                  Vpr8u* pBuffer) {
  if (!pSrc || !srcStep || !pDst || !rect || !pBuffer) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  for (int i = 0; i < 4; ++i)
    if (!pSrc[i]) return vprStatusNullPointer;
  for (int i = 0; i < 4; ++i)
    if (srcStep[i] < 1) return vprStatusBadStep;
  const int w = rect->width, h = rect->height, py = rect->y & 1;
  if (w < 1 || h < 1) return vprStatusBadSize;
  const int rowBytes = static_cast<int>((int64_t{sizeof(T)} * w + 31) & ~int64_t{31});
  T* img = reinterpret_cast<T*>(pBuffer);
  Quad q[4];
  quadrants(w, h, q);
  for (int i = 0; i < 4; ++i)
    for (int y = 0; y < q[i].h && q[i].w > 0; ++y)
      std::memcpy(row_at(img, rowBytes, interleaved_row(q[i].y + y, h, py)) + q[i].x, row_at(pSrc[i], srcStep[i], y),
                  sizeof(T) * q[i].w);
  sse::wt_inv_c1ir_interleaved(img, rowBytes, w, h, rect->x & 1, py,
                               reinterpret_cast<T*>(pBuffer + static_cast<std::ptrdiff_t>(rowBytes) * h));
  copy_plane(static_cast<const T*>(img), rowBytes, pDst, dstStep, w, h);
  return vprStatusOk;
}

template <class T>
VprStatus check_fwd_lines(const T* pSrc, int32_t srcStep, T* pLo, int32_t loStep, T* pHi, int32_t hiStep,
                          VprRoiSize roi) {
  if (!pSrc) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (!pLo) return vprStatusNullPointer;
  if (loStep < 1) return vprStatusBadStep;
  if (!pHi) return vprStatusNullPointer;
  if (hiStep < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  return vprStatusOk;
}

template <class T>
VprStatus check_inv_lines(const T* pLo, int32_t loStep, const T* pHi, int32_t hiStep, VprRoiSize roi, T* pDst,
                          int32_t dstStep) {
  if (!pLo) return vprStatusNullPointer;
  if (loStep < 1) return vprStatusBadStep;
  if (!pHi) return vprStatusNullPointer;
  if (hiStep < 1) return vprStatusBadStep;
  if (!pDst) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  if (roi.width < 1 || roi.height < 1) return vprStatusBadSize;
  return vprStatusOk;
}

// Byte range [first row r0 .. last row r1] x w samples of a region.
struct Span {
  uintptr_t lo, hi;
};
template <class T>
Span span_of(const T* p, int step, int r0, int r1, int w) {
  const uintptr_t base = reinterpret_cast<uintptr_t>(p);
  return {base + static_cast<std::ptrdiff_t>(step) * r0, base + static_cast<std::ptrdiff_t>(step) * r1 + sizeof(T) * w};
}
inline bool meets(Span a, Span b) { return a.lo < b.hi && b.lo < a.hi; }

// Column strips of overlapping column calls go through this much stack.
constexpr int kStripBytes = 65536;

template <class T>
VprStatus fwd_col(const T* pSrc, int32_t srcStep, T* pLo, int32_t loStep, T* pHi, int32_t hiStep, VprRoiSize roi,
                  int32_t phase) {
  if (const VprStatus st = check_fwd_lines(pSrc, srcStep, pLo, loStep, pHi, hiStep, roi)) return st;
  const int w = roi.width, h = roi.height, p = phase != 0;
  const int r0 = p ? -1 : -2, r1 = p ? 2 * h + 1 : 2 * h;
  const Span s = span_of(pSrc, srcStep, r0, r1, w);
  if (!meets(s, span_of(pLo, loStep, 0, h - 1, w)) && !meets(s, span_of(pHi, hiStep, 0, h - 1, w))) {
    sse::wt_fwd_col(pSrc, srcStep, pLo, loStep, pHi, hiStep, w, h, p);
    return vprStatusOk;
  }
  const int rows = r1 - r0 + 1;
  const int64_t colBytes = int64_t{rows} * sizeof(T);
  if (colBytes > kStripBytes) return vprStatusBadSize;
  alignas(16) uint8_t scratch[kStripBytes];
  const int strip = static_cast<int>(std::min<int64_t>(w, kStripBytes / colBytes));
  for (int x0 = 0; x0 < w; x0 += strip) {
    const int sw = std::min(strip, w - x0);
    T* tmp = reinterpret_cast<T*>(scratch);
    const int tstep = static_cast<int>(sizeof(T)) * sw;
    copy_plane(row_at(pSrc, srcStep, r0) + x0, srcStep, tmp, tstep, sw, rows);
    sse::wt_fwd_col(row_at(static_cast<const T*>(tmp), tstep, -r0), tstep, pLo + x0, loStep, pHi + x0, hiStep, sw, h,
                    p);
  }
  return vprStatusOk;
}

template <class T>
VprStatus inv_col(const T* pLo, int32_t loStep, const T* pHi, int32_t hiStep, VprRoiSize roi, T* pDst,
                  int32_t dstStep, int32_t phase) {
  if (const VprStatus st = check_inv_lines(pLo, loStep, pHi, hiStep, roi, pDst, dstStep)) return st;
  const int w = roi.width, h = roi.height, p = phase != 0;
  const int l0 = p ? -1 : 0, l1 = p ? h - 1 : h;
  const Span d = span_of(pDst, dstStep, 0, 2 * h - 1, w);
  if (!meets(d, span_of(pLo, loStep, l0, l1, w)) && !meets(d, span_of(pHi, hiStep, -1, h, w))) {
    sse::wt_inv_col(pLo, loStep, pHi, hiStep, pDst, dstStep, w, h, p);
    return vprStatusOk;
  }
  const int lrows = l1 - l0 + 1, hrows = h + 2;
  const int64_t colBytes = int64_t{lrows + hrows} * sizeof(T);
  if (colBytes > kStripBytes) return vprStatusBadSize;
  alignas(16) uint8_t scratch[kStripBytes];
  const int strip = static_cast<int>(std::min<int64_t>(w, kStripBytes / colBytes));
  for (int x0 = 0; x0 < w; x0 += strip) {
    const int sw = std::min(strip, w - x0);
    const int tstep = static_cast<int>(sizeof(T)) * sw;
    T* tl = reinterpret_cast<T*>(scratch);
    T* th = row_at(tl, tstep, lrows);
    copy_plane(row_at(pLo, loStep, l0) + x0, loStep, tl, tstep, sw, lrows);
    copy_plane(row_at(pHi, hiStep, -1) + x0, hiStep, th, tstep, sw, hrows);
    sse::wt_inv_col(row_at(static_cast<const T*>(tl), tstep, -l0), tstep, row_at(static_cast<const T*>(th), tstep, 1),
                    tstep, pDst + x0, dstStep, sw, h, p);
  }
  return vprStatusOk;
}

}  // namespace

#define VPR_J2K_WT_ENTRIES(T, S)                                                                                     \
  VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_##S##_C1IR(const VprRect* rect, int32_t* pSize) {                            \
    return get_buf_size_c1ir<T>(rect, pSize);                                                                        \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTGetBufSize_B53_JPEG2K_##S##_C1R(const VprRect* rect, int32_t* pSize) {                             \
    return get_buf_size_c1r<T>(rect, pSize);                                                                         \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTFwd_B53_JPEG2K_##S##_C1IR(T* pSrcDst, int32_t step, const VprRect* rect, Vpr8u* pBuffer) {          \
    return fwd_c1ir(pSrcDst, step, rect, pBuffer);                                                                   \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTInv_B53_JPEG2K_##S##_C1IR(T* pSrcDst, int32_t step, const VprRect* rect, Vpr8u* pBuffer) {          \
    return inv_c1ir(pSrcDst, step, rect, pBuffer);                                                                   \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTFwd_B53_JPEG2K_##S##_C1R(const T* pSrc, int32_t srcStep, const VprRect* rect, T* pDst[4],          \
                                           int32_t dstStep[4], Vpr8u* pBuffer) {                                     \
    return fwd_c1r(pSrc, srcStep, rect, pDst, dstStep, pBuffer);                                                     \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTInv_B53_JPEG2K_##S##_C1R(const T* pSrc[4], int32_t srcStep[4], T* pDst, int32_t dstStep,           \
                                           const VprRect* rect, Vpr8u* pBuffer) {                                    \
    return inv_c1r(pSrc, srcStep, pDst, dstStep, rect, pBuffer);                                                     \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTFwdRow_B53_JPEG2K_##S##_C1R(const T* pSrc, int32_t srcStep, T* pDstLow, int32_t dstLowStep,        \
                                              T* pDstHigh, int32_t dstHighStep, VprRoiSize dstRoiSize,               \
                                              int32_t phase) {                                                       \
    if (const VprStatus st = check_fwd_lines(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep, dstRoiSize)) \
      return st;                                                                                                     \
    sse::wt_fwd_row(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep, dstRoiSize.width, dstRoiSize.height,  \
                    phase != 0);                                                                                     \
    return vprStatusOk;                                                                                              \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTInvRow_B53_JPEG2K_##S##_C1R(const T* pSrcLow, int32_t srcLowStep, const T* pSrcHigh,               \
                                              int32_t srcHighStep, VprRoiSize srcRoiSize, T* pDst, int32_t dstStep,  \
                                              int32_t phase) {                                                       \
    if (const VprStatus st = check_inv_lines(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep)) \
      return st;                                                                                                     \
    sse::wt_inv_row(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, pDst, dstStep, srcRoiSize.width, srcRoiSize.height,  \
                    phase != 0);                                                                                     \
    return vprStatusOk;                                                                                              \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTFwdCol_B53_JPEG2K_##S##_C1R(const T* pSrc, int32_t srcStep, T* pDstLow, int32_t dstLowStep,        \
                                              T* pDstHigh, int32_t dstHighStep, VprRoiSize dstRoiSize,               \
                                              int32_t phase) {                                                       \
    return fwd_col(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);                    \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTInvCol_B53_JPEG2K_##S##_C1R(const T* pSrcLow, int32_t srcLowStep, const T* pSrcHigh,               \
                                              int32_t srcHighStep, VprRoiSize srcRoiSize, T* pDst, int32_t dstStep,  \
                                              int32_t phase) {                                                       \
    return inv_col(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);                    \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTFwdColLift_B53_JPEG2K_##S##_C1(const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pDstLow,         \
                                                 const T* pSrcHighPrev, T* pDstHigh, int32_t width) {                \
    if (!pSrc0 || !pSrc1 || !pSrc2 || !pDstLow || !pSrcHighPrev || !pDstHigh) return vprStatusNullPointer;           \
    if (width < 1) return vprStatusBadSize;                                                                          \
    sse::wt_fwd_col_lift(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);                               \
    return vprStatusOk;                                                                                              \
  }                                                                                                                  \
  VPR_API VprStatus vpriWTInvColLift_B53_JPEG2K_##S##_C1(const T* pSrcLow, const T* pSrcHighPrev, const T* pSrcHigh,         \
                                                 const T* pSrcEvenPrev, T* pDstOdd, T* pDstEven, int32_t width) {    \
    if (!pSrcLow || !pSrcHighPrev || !pSrcHigh || !pSrcEvenPrev || !pDstOdd || !pDstEven) return vprStatusNullPointer; \
    if (width < 1) return vprStatusBadSize;                                                                          \
    sse::wt_inv_col_lift(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);                   \
    return vprStatusOk;                                                                                              \
  }

VPR_EXTERN_C_BEGIN
VPR_J2K_WT_ENTRIES(Vpr32s, 32s)
VPR_J2K_WT_ENTRIES(Vpr16s, 16s)
VPR_EXTERN_C_END
