// Per-pixel formulas of the JPEG 2000 component transforms, shared by the
// scalar reference rows and the scalar tails of the SSE rows.  In and out
// are component 0, 1, 2 (R, G, B on the forward side).
#pragma once

#include <cstdint>

namespace vpr::j2k::ct {

inline int32_t wadd(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
inline int32_t wsub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
inline int32_t wmul(int32_t a, int32_t c) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(c)); }
inline int16_t sat16(int32_t v) { return static_cast<int16_t>(v < -32768 ? -32768 : v > 32767 ? 32767 : v); }

// RCT forward: Y = (R + 2G + B) >> 2, U = B - G, V = R - G (16s: stored truncated).
template <class T>
inline void rct_fwd(T r, T g, T b, T& y, T& u, T& v) {
  y = static_cast<T>(wadd(wadd(r, wadd(g, g)), b) >> 2);
  u = static_cast<T>(wsub(b, g));
  v = static_cast<T>(wsub(r, g));
}

// RCT inverse: G = Y - ((U + V) >> 2), R = V + G, B = U + G.
inline void rct_inv(int32_t y, int32_t u, int32_t v, int32_t& r, int32_t& g, int32_t& b) {
  g = wsub(y, wadd(u, v) >> 2);
  r = wadd(v, g);
  b = wadd(u, g);
}
// 16s: formed in 32 bits, stored with signed saturation.
inline void rct_inv(int16_t y, int16_t u, int16_t v, int16_t& r, int16_t& g, int16_t& b) {
  const int32_t g32 = y - ((u + v) >> 2);
  r = sat16(v + g32);
  g = sat16(g32);
  b = sat16(u + g32);
}

// ICT, single precision, evaluated left to right.
inline void ict_fwd(float r, float g, float b, float& y, float& cb, float& cr) {
  y = 0.299f * r + 0.587f * g + 0.114f * b;
  cb = -0.16875f * r - 0.33126f * g + 0.5f * b;
  cr = 0.5f * r - 0.41869f * g - 0.08131f * b;
}
inline void ict_inv(float y, float cb, float cr, float& r, float& g, float& b) {
  r = y + 1.402f * cr;
  g = y - 0.34413f * cb - 0.71414f * cr;
  b = y + 1.772f * cb;
}

// ICT, 32-bit integer, 14 fraction bits.
inline void ict_fwd(int32_t r, int32_t g, int32_t b, int32_t& y, int32_t& cb, int32_t& cr) {
  y = wadd(wadd(wadd(wmul(4899, r), wmul(9617, g)), wmul(1868, b)), 8192) >> 14;
  cb = wadd(wadd(wadd(wmul(-2765, r), wmul(-5427, g)), wmul(8192, b)), 8192) >> 14;
  cr = wadd(wadd(wadd(wmul(8192, r), wmul(-6860, g)), wmul(-1332, b)), 8192) >> 14;
}
inline void ict_inv(int32_t y, int32_t cb, int32_t cr, int32_t& r, int32_t& g, int32_t& b) {
  r = wadd(y, wadd(wmul(22970, cr), 8192) >> 14);
  g = wadd(y, wadd(wadd(wmul(-5638, cb), wmul(-11700, cr)), 8192) >> 14);
  b = wadd(y, wadd(wmul(29032, cb), 8192) >> 14);
}

// ICT, 16-bit: the forward works through the rounded luma differences.
inline void ict_fwd(int16_t r, int16_t g, int16_t b, int16_t& y, int16_t& cb, int16_t& cr) {
  const int32_t s = 4899 * r + 9617 * g + 1868 * b;
  y = sat16((s + 8192) >> 14);
  const int16_t db = static_cast<int16_t>((b * 16384 - s + 8192) >> 14);
  const int16_t dr = static_cast<int16_t>((r * 16384 - s + 8192) >> 14);
  cb = sat16((db * 9246 + 8192) >> 14);
  cr = sat16((dr * 11686 + 8192) >> 14);
}
inline void ict_inv(int16_t y, int16_t cb, int16_t cr, int16_t& r, int16_t& g, int16_t& b) {
  r = sat16(y + ((22970 * cr + 8192) >> 14));
  g = sat16(y + ((-5638 * cb - 11700 * cr + 8192) >> 14));
  b = sat16(y + ((29032 * cb + 8192) >> 14));
}

// The transforms as types, for the layout drivers.
struct RctFwd {
  template <class T>
  static void px(T a, T b, T c, T& x, T& y, T& z) {
    rct_fwd(a, b, c, x, y, z);
  }
};
struct RctInv {
  template <class T>
  static void px(T a, T b, T c, T& x, T& y, T& z) {
    rct_inv(a, b, c, x, y, z);
  }
};
struct IctFwd {
  template <class T>
  static void px(T a, T b, T c, T& x, T& y, T& z) {
    ict_fwd(a, b, c, x, y, z);
  }
};
struct IctInv {
  template <class T>
  static void px(T a, T b, T c, T& x, T& y, T& z) {
    ict_inv(a, b, c, x, y, z);
  }
};

}  // namespace vpr::j2k::ct
