// Zig-zag order of the 8x8 block (JPEG scan order).
//   zigzag_index_Fwd[n]      natural position n -> zig-zag position
//   own_pj_izigzag_index[k]  zig-zag position k -> natural position; entries
//                            64..71 are 63, so a decoder that runs up to
//                            eight places past the block still indexes
//                            inside it.
#pragma once

#include <cstdint>

namespace vpr::jpeg {

extern const int32_t zigzag_index_Fwd[64];
extern const int32_t own_pj_izigzag_index[72];

}  // namespace vpr::jpeg
