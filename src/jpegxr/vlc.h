// JPEG XR adaptive VLC state: layout, constant tables and the adaptation
// kernels shared by the exported entries and the block/DC coders.
//
// Layout of the 2208-byte state (8-byte aligned memory; the object holds
// no pointer into itself, so it can be copied byte for byte):
//   offset    0  int32 current scan (0..2) + 4 bytes padding
//   offset    8  21 x VlcTableRefs   (code table, delta tables, lookups)
//   offset  848  21 x VlcTableRecord (alphabet, index, initialised, upper, lower)
//   offset 1268  21 x 2 int32 discriminants
//   offset 1436  3 x 16 x VlcScanEntry (total, position, coord0, coord1)
//   offset 2204  4 bytes padding
//
// Code tables: int32 {count N, code0, length0, code1, length1, ...}, the
// code value being the bit string read as a binary number (first bit most
// significant).
//
// Decoder lookup tables: the first table is indexed by the next 5 bits of
// the stream (first bit most significant); an entry gives the symbol and
// the code length.  Codes longer than 5 bits all start with 00000: the
// entry for 00000 then has symbol -1 (escape), and the second table,
// indexed by the 3 bits after those five, gives the symbol and the total
// code length (6..8).  Alphabets 4, 5, 6 and 8 need one table; 7, 9 and 12
// carry both (the second unused where an index has no code above 5 bits).
#pragma once

#include <cstddef>
#include <cstdint>

namespace vpr::jxr {

inline constexpr int kVlcStateSize = 2208;
inline constexpr int kVlcTables = 21;
inline constexpr int kVlcMaxAlphabet = 12;

struct VlcLutEntry {
  int16_t symbol;  // -1: escape to the second table
  int16_t length;  // total code length in bits
};

struct VlcTableRefs {
  const int32_t* code;        // current code table
  const int32_t* delta[2];    // discriminant delta rows (null where none)
  const VlcLutEntry* lut[2];  // decoder lookups (second null for 4, 5, 6, 8)
};

struct VlcTableRecord {
  int32_t alphabet;
  int32_t index;
  int32_t initialised;
  int32_t upper;
  int32_t lower;
};

struct VlcScanEntry {
  int32_t total;
  int32_t position;  // 0..15, index into a 16-element block
  int32_t coord0;
  int32_t coord1;
};

struct VlcState {
  int32_t current_scan;
  int32_t pad0;
  VlcTableRefs refs[kVlcTables];
  VlcTableRecord rec[kVlcTables];
  int32_t disc[kVlcTables][2];
  VlcScanEntry scan[3][16];
};

static_assert(sizeof(VlcState) == kVlcStateSize, "VLC state layout");
static_assert(offsetof(VlcState, refs) == 8 && offsetof(VlcState, rec) == 848 &&
                  offsetof(VlcState, disc) == 1268 && offsetof(VlcState, scan) == 1436,
              "VLC state offsets");

// Constant tables.
extern const int32_t aAlphabet[kVlcTables];
extern const int32_t gSecondDisc[kVlcMaxAlphabet + 1];
extern const int32_t gMaxTables[kVlcMaxAlphabet + 1];
extern const int32_t kScanInitPositions[3][16];
extern const int32_t kScanCoords[16][2];

// Code table `index` of alphabet n (null if none).
const int32_t* vlc_code_table(int n, int index);
// Delta row of alphabet n (null if none).
const int32_t* vlc_delta_table(int n, int row);
// Decoder lookup `level` (0 first, 1 second) of code table `index` of
// alphabet n (null if none).
const VlcLutEntry* vlc_lut(int n, int index, int level);

// Kernels (no argument checks).
void vlc_init(VlcState* s);
void vlc_adapt_table(VlcState* s, int table);
void vlc_adapt_group(VlcState* s, int group);
void vlc_scan_reset(VlcState* s, int scan);

// DC-band scan of one block (returns the pair count): the scalar twin and
// the SSE kernel the entry calls.
namespace ref {
int vlc_scan4x4_dc(const int32_t* src, int model_bits, int32_t* dst, int32_t* run_level, VlcState* s);
}
namespace sse {
int vlc_scan4x4_dc(const int32_t* src, int model_bits, int32_t* dst, int32_t* run_level, VlcState* s);
}

}  // namespace vpr::jxr
