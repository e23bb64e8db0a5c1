// Photo core transform kernels.  Each kernel transforms every 4x4 block of
// a region whose width and height (in elements) are multiples of 4, in
// place; `step` is the row step in bytes (negative allowed).  Kernels do no
// argument checks.
//   ref::  scalar twins written straight from the lifting formulas,
//   sse::  the SSE4.1 kernels the exported entries call.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vpr::jxr {

namespace ref {
void pct_fwd_16s(int16_t* p, std::ptrdiff_t step, int width, int height);
void pct_inv_16s(int16_t* p, std::ptrdiff_t step, int width, int height);
void pct_fwd_32s(int32_t* p, std::ptrdiff_t step, int width, int height);
void pct_inv_32s(int32_t* p, std::ptrdiff_t step, int width, int height);
void pct_fwd_32f(float* p, std::ptrdiff_t step, int width, int height);
void pct_inv_32f(float* p, std::ptrdiff_t step, int width, int height);
}  // namespace ref

namespace sse {
void pct_fwd_16s(int16_t* p, std::ptrdiff_t step, int width, int height);
void pct_inv_16s(int16_t* p, std::ptrdiff_t step, int width, int height);
void pct_fwd_32s(int32_t* p, std::ptrdiff_t step, int width, int height);
void pct_inv_32s(int32_t* p, std::ptrdiff_t step, int width, int height);
void pct_fwd_32f(float* p, std::ptrdiff_t step, int width, int height);
void pct_inv_32f(float* p, std::ptrdiff_t step, int width, int height);
}  // namespace sse

}  // namespace vpr::jxr
