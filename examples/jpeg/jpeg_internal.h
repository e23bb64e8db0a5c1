// Shared helpers of the example codec (not part of its interface).
#pragma once

#include <memory>
#include <string>

#include "vprjp.h"

namespace vprjpeg::detail {

// Owning handles for the library's Huffman objects.
struct SpecFree {
  void operator()(VprEncodeHuffmanSpec* p) const { vpriEncodeHuffmanSpecFree_JPEG_8u(p); }
  void operator()(VprDecodeHuffmanSpec* p) const { vpriDecodeHuffmanSpecFree_JPEG_8u(p); }
  void operator()(VprEncodeHuffmanState* p) const { vpriEncodeHuffmanStateFree_JPEG_8u(p); }
  void operator()(VprDecodeHuffmanState* p) const { vpriDecodeHuffmanStateFree_JPEG_8u(p); }
};
using EncodeSpec = std::unique_ptr<VprEncodeHuffmanSpec, SpecFree>;
using DecodeSpec = std::unique_ptr<VprDecodeHuffmanSpec, SpecFree>;
using EncodeState = std::unique_ptr<VprEncodeHuffmanState, SpecFree>;
using DecodeState = std::unique_ptr<VprDecodeHuffmanState, SpecFree>;

inline std::string status_text(const char* what, VprStatus st) {
  return std::string(what) + " failed (status " + std::to_string(st) + ")";
}

}  // namespace vprjpeg::detail
