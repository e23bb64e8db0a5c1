// MCU-level conversion: exported entries and the scalar reference kernels.
#include "jpeg/mcu.h"

#include "vprjp_jpeg_mcu.h"

#include <algorithm>
#include <cstddef>

namespace vpr::jpeg::ref {
namespace {

using namespace vpr::jpeg::mcu;

inline int16_t sat16(int32_t v) { return static_cast<int16_t>(std::clamp<int32_t>(v, -32768, 32767)); }
inline uint8_t clamp8(int32_t v) { return static_cast<uint8_t>(std::clamp<int32_t>(v, 0, 255)); }
inline const uint8_t* src_row(const uint8_t* p, int step, int y) { return p + static_cast<ptrdiff_t>(y) * step; }
inline uint8_t* dst_row(uint8_t* p, int step, int y) { return p + static_cast<ptrdiff_t>(y) * step; }

// Index of pixel (x, y) of a 16-wide MCU in its consecutive Y blocks.
inline int yblock_index(int x, int y) { return ((y >> 3) * 2 + (x >> 3)) * 64 + (y & 7) * 8 + (x & 7); }

// ---- forward colour conversion.  RI/BI: byte offsets of R and B.
inline int16_t fwd_y(int r, int g, int b) { return sat16((kYR * r + kYG * g + kYB * b + kYBias) >> 14); }
inline int16_t fwd_cb(int32_t r, int32_t g, int32_t b, int32_t bias, int shift) {
  return sat16((kCbR * r + kCbG * g + kCbB * b + bias) >> shift);
}
inline int16_t fwd_cr(int32_t r, int32_t g, int32_t b, int32_t bias, int shift) {
  return sat16((kCrR * r + kCrG * g + kCrB * b + bias) >> shift);
}

template <int RI, int BI>
void fwd444(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  for (int r = 0; r < 8; ++r) {
    const uint8_t* p = src_row(s, step, r);
    for (int c = 0; c < 8; ++c, p += 3) {
      const int R = p[RI], G = p[1], B = p[BI];
      y[r * 8 + c] = fwd_y(R, G, B);
      cb[r * 8 + c] = fwd_cb(R, G, B, 8192, 14);
      cr[r * 8 + c] = fwd_cr(R, G, B, 8192, 14);
    }
  }
}

// Sampled forward: W x H pixels (16x8 or 16x16), chroma from (16/8) x (H/8)
// pixel groups.  4:2:2: pair sums, + 16384, >> 15; 4:2:0: 2x2 sums, + 32768, >> 16.
template <int RI, int BI, int H>
void fwd_sampled(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  constexpr int vy = H / 8;  // pixel rows per chroma row
  constexpr int shift = vy == 1 ? 15 : 16;
  constexpr int32_t bias = vy == 1 ? 16384 : 32768;
  for (int r = 0; r < H; ++r) {
    const uint8_t* p = src_row(s, step, r);
    for (int c = 0; c < 16; ++c) y[yblock_index(c, r)] = fwd_y(p[3 * c + RI], p[3 * c + 1], p[3 * c + BI]);
  }
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) {
      int32_t sr = 0, sg = 0, sb = 0;
      for (int dy = 0; dy < vy; ++dy) {
        const uint8_t* p = src_row(s, step, i * vy + dy) + 6 * j;
        for (int dx = 0; dx < 2; ++dx) {
          sr += p[3 * dx + RI];
          sg += p[3 * dx + 1];
          sb += p[3 * dx + BI];
        }
      }
      cb[i * 8 + j] = fwd_cb(sr, sg, sb, bias, shift);
      cr[i * 8 + j] = fwd_cr(sr, sg, sb, bias, shift);
    }
}

// SampleDown: components already converted; level shift and box average
// with halves rounded up.
template <int H>
void sample_down(const uint8_t* s, int step, int16_t* y, int16_t* cb, int16_t* cr) {
  constexpr int vy = H / 8;
  constexpr int n = 2 * vy;  // samples per chroma value
  for (int r = 0; r < H; ++r) {
    const uint8_t* p = src_row(s, step, r);
    for (int c = 0; c < 16; ++c) y[yblock_index(c, r)] = static_cast<int16_t>(p[3 * c] - 128);
  }
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) {
      int sc = 0, sr = 0;
      for (int dy = 0; dy < vy; ++dy) {
        const uint8_t* p = src_row(s, step, i * vy + dy) + 6 * j;
        sc += p[1] + p[4];
        sr += p[2] + p[5];
      }
      cb[i * 8 + j] = static_cast<int16_t>((sc + n / 2) / n - 128);
      cr[i * 8 + j] = static_cast<int16_t>((sr + n / 2) / n - 128);
    }
}

// ---- inverse colour conversion.  RI/BI: byte offsets of R and B.
template <int RI, int BI>
void inv444(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  for (int r = 0; r < 8; ++r) {
    uint8_t* p = dst_row(d, step, r);
    for (int c = 0; c < 8; ++c, p += 3) {
      const int k = r * 8 + c;
      const int32_t Y = y[k], Cb = cb[k], Cr = cr[k];
      const int32_t rt = sat16((kRCr * Cr + kInvBias) >> 14);
      const int32_t gt = sat16((kGCb * Cb + kGCr * Cr + kInvBias) >> 14);
      const int32_t bt = sat16((kBCb * Cb + kInvBias) >> 14);
      p[RI] = clamp8(sat16(Y + rt));
      p[1] = clamp8(sat16(Y + gt));
      p[BI] = clamp8(sat16(Y + bt));
    }
  }
}

// 4:2:2 (H = 8) and 4:2:0 (H = 16): Q13/Q14 terms per chroma sample,
// replicated over the pixel pair or the 2x2 block.
template <int RI, int BI, int H>
void inv_sampled(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  constexpr int vy = H / 8;
  for (int r = 0; r < H; ++r) {
    uint8_t* p = dst_row(d, step, r);
    for (int c = 0; c < 16; ++c, p += 3) {
      const int k = (r / vy) * 8 + c / 2;
      const int32_t Y = y[yblock_index(c, r)], Cb = cb[k], Cr = cr[k];
      const int32_t rt = sat16((kRCr13 * Cr + kBias13) >> 13);
      const int32_t bt = sat16((kBCb13 * Cb + kBias13) >> 13);
      const int32_t gt = sat16((kGCb14 * Cb + kGCr14 * Cr + kGBias14) >> 14);
      p[RI] = clamp8(sat16(Y + rt));
      p[1] = clamp8(sat16(Y - gt));
      p[BI] = clamp8(sat16(Y + bt));
    }
  }
}

inline uint8_t up(int32_t v) { return clamp8(sat16(v + 128)); }

template <int H>
void sample_up(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int step) {
  constexpr int vy = H / 8;
  for (int r = 0; r < H; ++r) {
    uint8_t* p = dst_row(d, step, r);
    for (int c = 0; c < 16; ++c, p += 3) {
      const int k = (r / vy) * 8 + c / 2;
      p[0] = up(y[yblock_index(c, r)]);
      p[1] = up(cb[k]);
      p[2] = up(cr[k]);
    }
  }
}

}  // namespace

void ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd444<0, 2>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd444<2, 0>(s, st, y, cb, cr); }
void ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd_sampled<0, 2, 8>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd_sampled<2, 0, 8>(s, st, y, cb, cr); }
void ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd_sampled<0, 2, 16>(s, st, y, cb, cr); }
void ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { fwd_sampled<2, 0, 16>(s, st, y, cb, cr); }

void ownpj_SampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) {
  for (int r = 0; r < 8; ++r) {
    const uint8_t* p = src_row(s, st, r);
    for (int c = 0; c < 8; ++c) {
      y[r * 8 + c] = static_cast<int16_t>(p[3 * c] - 128);
      cb[r * 8 + c] = static_cast<int16_t>(p[3 * c + 1] - 128);
      cr[r * 8 + c] = static_cast<int16_t>(p[3 * c + 2] - 128);
    }
  }
}
void ownpj_SampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { sample_down<8>(s, st, y, cb, cr); }
void ownpj_SampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) { sample_down<16>(s, st, y, cb, cr); }

void ownpj_Split422LS_MCU_8u16s_C2P3R(const uint8_t* s, int st, int16_t* y, int16_t* cb, int16_t* cr) {
  for (int r = 0; r < 8; ++r) {
    const uint8_t* p = src_row(s, st, r);
    for (int j = 0; j < 8; ++j, p += 4) {
      y[yblock_index(2 * j, r)] = static_cast<int16_t>(p[0] - 128);
      y[yblock_index(2 * j + 1, r)] = static_cast<int16_t>(p[2] - 128);
      cb[r * 8 + j] = static_cast<int16_t>(p[1] - 128);
      cr[r * 8 + j] = static_cast<int16_t>(p[3] - 128);
    }
  }
}

void ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv444<0, 2>(y, cb, cr, d, st); }
void ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv444<2, 0>(y, cb, cr, d, st); }
void ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<0, 2, 8>(y, cb, cr, d, st); }
void ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<2, 0, 8>(y, cb, cr, d, st); }
void ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<0, 2, 16>(y, cb, cr, d, st); }
void ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { inv_sampled<2, 0, 16>(y, cb, cr, d, st); }

void ownpj_SampleUp444LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) {
  for (int r = 0; r < 8; ++r) {
    uint8_t* p = dst_row(d, st, r);
    for (int c = 0; c < 8; ++c, p += 3) {
      p[0] = up(y[r * 8 + c]);
      p[1] = up(cb[r * 8 + c]);
      p[2] = up(cr[r * 8 + c]);
    }
  }
}
void ownpj_SampleUp422LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { sample_up<8>(y, cb, cr, d, st); }
void ownpj_SampleUp411LS_MCU_16s8u_P3C3R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) { sample_up<16>(y, cb, cr, d, st); }

void ownpj_Join422LS_MCU_16s8u_P3C2R(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* d, int st) {
  for (int r = 0; r < 8; ++r) {
    uint8_t* p = dst_row(d, st, r);
    for (int j = 0; j < 8; ++j, p += 4) {
      p[0] = up(y[yblock_index(2 * j, r)]);
      p[1] = up(cb[r * 8 + j]);
      p[2] = up(y[yblock_index(2 * j + 1, r)]);
      p[3] = up(cr[r * 8 + j]);
    }
  }
}

}  // namespace vpr::jpeg::ref

// ------------------------------------------------------------------ entries
namespace {

using FwdKernel = void (*)(const uint8_t*, int, int16_t*, int16_t*, int16_t*);
using InvKernel = void (*)(const int16_t*, const int16_t*, const int16_t*, uint8_t*, int);

// Source pointer or block array, source step, then the three blocks.
inline VprStatus forward(FwdKernel k, const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]) {
  if (pSrc == nullptr || pDstMCU == nullptr) return vprStatusNullPointer;
  if (srcStep < 1) return vprStatusBadStep;
  if (pDstMCU[0] == nullptr || pDstMCU[1] == nullptr || pDstMCU[2] == nullptr) return vprStatusNullPointer;
  k(pSrc, srcStep, pDstMCU[0], pDstMCU[1], pDstMCU[2]);
  return vprStatusOk;
}

// Block array and its three blocks, destination pointer, destination step.
inline VprStatus inverse(InvKernel k, const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep) {
  if (pSrcMCU == nullptr || pSrcMCU[0] == nullptr || pSrcMCU[1] == nullptr || pSrcMCU[2] == nullptr)
    return vprStatusNullPointer;
  if (pDst == nullptr) return vprStatusNullPointer;
  if (dstStep < 1) return vprStatusBadStep;
  k(pSrcMCU[0], pSrcMCU[1], pSrcMCU[2], pDst, dstStep);
  return vprStatusOk;
}

}  // namespace

#define VPR_MCU_FWD_ENTRY(name)                                                       \
  VPR_API VprStatus vpri##name(const Vpr8u* pSrc, int srcStep, Vpr16s* pDstMCU[3]) { \
    return forward(vpr::jpeg::sse::ownpj_##name, pSrc, srcStep, pDstMCU);             \
  }
#define VPR_MCU_INV_ENTRY(name)                                                              \
  VPR_API VprStatus vpri##name(const Vpr16s* pSrcMCU[3], Vpr8u* pDst, int dstStep) { \
    return inverse(vpr::jpeg::sse::ownpj_##name, pSrcMCU, pDst, dstStep);                    \
  }

extern "C" {
VPR_MCU_FWD_ENTRY(RGBToYCbCr444LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(RGBToYCbCr422LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(RGBToYCbCr411LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(BGRToYCbCr444LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(BGRToYCbCr422LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(BGRToYCbCr411LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(SampleDown444LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(SampleDown422LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(SampleDown411LS_MCU_8u16s_C3P3R)
VPR_MCU_FWD_ENTRY(Split422LS_MCU_8u16s_C2P3R)
VPR_MCU_INV_ENTRY(YCbCr444ToRGBLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(YCbCr422ToRGBLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(YCbCr411ToRGBLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(YCbCr444ToBGRLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(YCbCr422ToBGRLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(YCbCr411ToBGRLS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(SampleUp444LS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(SampleUp422LS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(SampleUp411LS_MCU_16s8u_P3C3R)
VPR_MCU_INV_ENTRY(Join422LS_MCU_16s8u_P3C2R)
}
