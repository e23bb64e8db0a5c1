// Tables of the JPEG file format: zig-zag order and the example tables of
// the JPEG standard (Annex K) used as the defaults of the encoder.
#pragma once

#include <cstdint>

namespace vprjpeg::tables {

// Natural (row-major) index of the coefficient at zig-zag position k.
extern const uint8_t kZigzag[64];

// Quantisation tables in natural order.
extern const uint8_t kLumaQuant[64];
extern const uint8_t kChromaQuant[64];

// Huffman tables as they stand in a DHT segment: 16 code-length counts,
// then the symbols.
struct Huffman {
  uint8_t counts[16];
  uint8_t symbols[256];
};
extern const Huffman kDcLuma, kDcChroma, kAcLuma, kAcChroma;

}  // namespace vprjpeg::tables
