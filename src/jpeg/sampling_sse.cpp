// JPEG chroma down- and up-sampling: SSE4.1 row kernels.
#include "core/simd.h"
#include "jpeg/sampling.h"

namespace vpr::jpeg::sse {

void ownpj_SampleDownH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int w) { ref::ownpj_SampleDownH2V1_JPEG_8u_C1(src, dst, w); }
void ownpj_SampleDownH2V2_JPEG_8u_C1(const uint8_t* s0, const uint8_t* s1, uint8_t* dst, int w) { ref::ownpj_SampleDownH2V2_JPEG_8u_C1(s0, s1, dst, w); }
void ownpj_SampleUpH2V1_JPEG_8u_C1(const uint8_t* src, uint8_t* dst, int w) { ref::ownpj_SampleUpH2V1_JPEG_8u_C1(src, dst, w); }
void ownpj_SampleUpH2V2_JPEG_8u_C1(const uint8_t* n, const uint8_t* f, uint8_t* dst, int w) { ref::ownpj_SampleUpH2V2_JPEG_8u_C1(n, f, dst, w); }
void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* src, int w, uint8_t* dst) { ref::ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(src, w, dst); }
void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* a, const uint8_t* b, int w, uint8_t* dst) { ref::ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(a, b, w, dst); }
void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* src, int w, uint8_t* dst) { ref::ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(src, w, dst); }
void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* n, const uint8_t* f, int w, uint8_t* dst) { ref::ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(n, f, w, dst); }

}  // namespace vpr::jpeg::sse
