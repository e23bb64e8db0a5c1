// JPEG XR adaptive VLC state: tables, initialisation, table switching and
// the adaptive scan of DC-band blocks.
#include "jpegxr/vlc.h"

#include "core/simd.h"

#include <array>
#include <climits>
#include <cstring>

#include "vprjp_jpegxr.h"

namespace vpr::jxr {

const int32_t aAlphabet[kVlcTables] = {5, 4, 8, 7, 7, 12, 6, 6, 12, 6, 6, 7, 7, 12, 6, 6, 12, 6, 6, 7, 7};
//                                          0  1  2  3  4  5  6  7  8  9 10 11 12
const int32_t gSecondDisc[kVlcMaxAlphabet + 1] = {0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1};
const int32_t gMaxTables[kVlcMaxAlphabet + 1] = {0, 0, 0, 0, 1, 2, 4, 2, 2, 2, 0, 0, 5};

const int32_t kScanInitPositions[3][16] = {
    {0, 10, 2, 12, 5, 9, 4, 8, 1, 13, 6, 15, 14, 3, 11, 7},
    {0, 5, 10, 12, 1, 2, 8, 4, 6, 9, 3, 14, 13, 7, 11, 15},
    {0, 1, 4, 5, 2, 8, 6, 9, 3, 12, 10, 7, 13, 11, 14, 15},
};

const int32_t kScanCoords[16][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {3, 0}, {2, 0}, {3, 1}, {2, 1},
                                    {0, 3}, {1, 3}, {0, 2}, {1, 2}, {3, 3}, {2, 3}, {3, 2}, {2, 2}};

namespace {

// ---------------------------------------------------------------- code tables
// Built at compile time from the bit strings: {N, code, length, ...}.
template <class... S>
constexpr std::array<int32_t, 1 + 2 * sizeof...(S)> codes(S... bits) {
  std::array<int32_t, 1 + 2 * sizeof...(S)> t{};
  t[0] = static_cast<int32_t>(sizeof...(S));
  const char* list[] = {bits...};
  for (size_t i = 0; i < sizeof...(S); ++i) {
    int32_t v = 0, n = 0;
    for (const char* p = list[i]; *p; ++p, ++n) v = v * 2 + (*p - '0');
    t[1 + 2 * i] = v;
    t[2 + 2 * i] = n;
  }
  return t;
}

constexpr auto kCode4_0 = codes("1", "01", "000", "001");
constexpr auto kCode5_0 = codes("1", "01", "001", "0000", "0001");
constexpr auto kCode5_1 = codes("1", "000", "001", "010", "011");
constexpr auto kCode6_0 = codes("1", "00000", "001", "00001", "01", "0001");
constexpr auto kCode6_1 = codes("01", "0000", "10", "0001", "11", "001");
constexpr auto kCode6_2 = codes("0000", "0001", "01", "10", "11", "001");
constexpr auto kCode6_3 = codes("00000", "00001", "01", "1", "0001", "001");
constexpr auto kCode7_0 = codes("01", "10", "11", "001", "0001", "00000", "00001");
constexpr auto kCode7_1 = codes("1", "01", "001", "0001", "00001", "000000", "000001");
constexpr auto kCode8_0 = codes("10", "001", "00001", "0001", "11", "010", "00000", "011");
constexpr auto kCode8_1 = codes("001", "010", "0001", "011", "100", "101", "0000", "11");
constexpr auto kCode9_0 = codes("010", "00000", "0010", "00001", "00010", "1", "011", "00011", "0011");
constexpr auto kCode9_1 = codes("1", "001", "010", "0001", "000001", "011", "00001", "0000000", "0000001");
constexpr auto kCode12_0 = codes("00001", "000001", "0000000", "0000001", "00100", "010", "00101", "1", "00110",
                                 "0001", "00111", "011");
constexpr auto kCode12_1 = codes("0010", "00010", "000000", "000001", "0011", "010", "00011", "11", "011", "100",
                                 "00001", "101");
constexpr auto kCode12_2 = codes("11", "001", "0000000", "0000001", "00001", "010", "0000010", "011", "100", "101",
                                 "0000011", "0001");
constexpr auto kCode12_3 = codes("001", "11", "0000000", "00001", "00010", "010", "0000001", "011", "00011", "100",
                                 "000001", "101");
constexpr auto kCode12_4 = codes("010", "1", "0000001", "0001", "0000010", "011", "00000000", "0010", "0000011",
                                 "0011", "00000001", "00001");

// ---------------------------------------------------------------- delta tables
constexpr int32_t kDelta5_0[5] = {0, -1, 0, 1, 1};
constexpr int32_t kDelta6[3][6] = {{-1, 1, 1, 1, 0, 1}, {-2, 0, 0, 2, 0, 0}, {-1, -1, 0, 1, -2, 0}};
constexpr int32_t kDelta7_0[7] = {1, 0, -1, -1, -1, -1, -1};
constexpr int32_t kDelta9_0[9] = {2, 2, 1, 1, -1, -2, -2, -2, -3};
constexpr int32_t kDelta12[4][12] = {{1, 1, 1, 1, 1, 0, 0, -1, 2, 1, 0, 0},
                                     {2, 2, -1, -1, -1, 0, -2, -1, 0, 0, -2, -1},
                                     {-1, 1, 0, 2, 0, 0, 0, 0, -2, 0, 1, 1},
                                     {0, 1, 0, 1, -2, 0, -1, -1, -2, -1, -2, -2}};

// ---------------------------------------------------------------- lookups
struct Lut {
  VlcLutEntry first[32];
  VlcLutEntry second[8];
};

template <size_t K>
constexpr Lut make_lut(const std::array<int32_t, K>& code) {
  Lut l{};
  for (auto& e : l.first) e = {-1, 0};
  for (auto& e : l.second) e = {-1, 0};
  const int n = code[0];
  bool escape = false;
  for (int s = 0; s < n; ++s) {
    const int v = code[1 + 2 * s], len = code[2 + 2 * s];
    if (len <= 5) {
      const int lo = v << (5 - len), cnt = 1 << (5 - len);
      for (int i = 0; i < cnt; ++i) l.first[lo + i] = {static_cast<int16_t>(s), static_cast<int16_t>(len)};
    } else {  // starts with 00000
      escape = true;
      const int rest = v & ((1 << (len - 5)) - 1), extra = len - 5;
      const int lo = rest << (3 - extra), cnt = 1 << (3 - extra);
      for (int i = 0; i < cnt; ++i) l.second[lo + i] = {static_cast<int16_t>(s), static_cast<int16_t>(len)};
    }
  }
  if (escape) l.first[0] = {-1, 5};
  return l;
}

constexpr Lut kLut4_0 = make_lut(kCode4_0);
constexpr Lut kLut5[2] = {make_lut(kCode5_0), make_lut(kCode5_1)};
constexpr Lut kLut6[4] = {make_lut(kCode6_0), make_lut(kCode6_1), make_lut(kCode6_2), make_lut(kCode6_3)};
constexpr Lut kLut7[2] = {make_lut(kCode7_0), make_lut(kCode7_1)};
constexpr Lut kLut8[2] = {make_lut(kCode8_0), make_lut(kCode8_1)};
constexpr Lut kLut9[2] = {make_lut(kCode9_0), make_lut(kCode9_1)};
constexpr Lut kLut12[5] = {make_lut(kCode12_0), make_lut(kCode12_1), make_lut(kCode12_2), make_lut(kCode12_3),
                           make_lut(kCode12_4)};

const Lut* lut_of(int n, int index) {
  switch (n) {
    case 4: return index == 0 ? &kLut4_0 : nullptr;
    case 5: return index >= 0 && index < 2 ? &kLut5[index] : nullptr;
    case 6: return index >= 0 && index < 4 ? &kLut6[index] : nullptr;
    case 7: return index >= 0 && index < 2 ? &kLut7[index] : nullptr;
    case 8: return index >= 0 && index < 2 ? &kLut8[index] : nullptr;
    case 9: return index >= 0 && index < 2 ? &kLut9[index] : nullptr;
    case 12: return index >= 0 && index < 5 ? &kLut12[index] : nullptr;
    default: return nullptr;
  }
}

bool known_alphabet(int n) { return n >= 0 && n <= kVlcMaxAlphabet && gMaxTables[n] > 0; }

// Alphabet size read from a state: anything unknown maps to 0 (no tables).
int alphabet_of(const VlcState* s, int table) {
  const int n = s->rec[table].alphabet;
  return known_alphabet(n) ? n : 0;
}

// References for index t of alphabet n.
void select_tables(VlcTableRefs& r, int n, int t) {
  r = VlcTableRefs{};
  if (!known_alphabet(n)) return;
  if (t < 0) t = 0;
  if (t >= gMaxTables[n]) t = gMaxTables[n] - 1;  // only a corrupt state gets here
  switch (n) {
    case 4:
      r.code = vlc_code_table(4, 0);
      break;
    case 5:
    case 7:
    case 9:
      r.code = vlc_code_table(n, t);
      r.delta[0] = vlc_delta_table(n, 0);
      break;
    case 6:
      r.code = vlc_code_table(6, t);
      r.delta[0] = vlc_delta_table(6, t - 1 > 0 ? t - 1 : 0);
      r.delta[1] = vlc_delta_table(6, t < 2 ? t : 2);
      break;
    case 8:
      r.code = vlc_code_table(8, 0);
      break;
    case 12:
      r.code = vlc_code_table(12, t);
      r.delta[0] = vlc_delta_table(12, t - 1 > 0 ? t - 1 : 0);
      r.delta[1] = vlc_delta_table(12, t < 3 ? t : 3);
      break;
  }
  const int lut_index = n == 8 ? 0 : t;
  r.lut[0] = vlc_lut(n, lut_index, 0);
  r.lut[1] = vlc_lut(n, lut_index, 1);
}

}  // namespace

const int32_t* vlc_code_table(int n, int index) {
  static const int32_t* const k5[] = {kCode5_0.data(), kCode5_1.data()};
  static const int32_t* const k6[] = {kCode6_0.data(), kCode6_1.data(), kCode6_2.data(), kCode6_3.data()};
  static const int32_t* const k7[] = {kCode7_0.data(), kCode7_1.data()};
  static const int32_t* const k8[] = {kCode8_0.data(), kCode8_1.data()};
  static const int32_t* const k9[] = {kCode9_0.data(), kCode9_1.data()};
  static const int32_t* const k12[] = {kCode12_0.data(), kCode12_1.data(), kCode12_2.data(), kCode12_3.data(),
                                       kCode12_4.data()};
  if (!known_alphabet(n) || index < 0 || index >= gMaxTables[n]) return nullptr;
  switch (n) {
    case 4: return kCode4_0.data();
    case 5: return k5[index];
    case 6: return k6[index];
    case 7: return k7[index];
    case 8: return k8[index];
    case 9: return k9[index];
    default: return k12[index];
  }
}

const int32_t* vlc_delta_table(int n, int row) {
  switch (n) {
    case 5: return row == 0 ? kDelta5_0 : nullptr;
    case 6: return row >= 0 && row < 3 ? kDelta6[row] : nullptr;
    case 7: return row == 0 ? kDelta7_0 : nullptr;
    case 9: return row == 0 ? kDelta9_0 : nullptr;
    case 12: return row >= 0 && row < 4 ? kDelta12[row] : nullptr;
    default: return nullptr;
  }
}

const VlcLutEntry* vlc_lut(int n, int index, int level) {
  const Lut* l = lut_of(n, index);
  if (!l) return nullptr;
  if (level == 0) return l->first;
  if (level == 1 && (n == 7 || n == 9 || n == 12)) return l->second;
  return nullptr;
}

// ---------------------------------------------------------------- adaptation
void vlc_adapt_table(VlcState* s, int table) {
  VlcTableRecord& r = s->rec[table];
  int32_t* d = s->disc[table];
  const int n = alphabet_of(s, table);
  if (!r.initialised) {
    r.initialised = 1;
    d[0] = d[1] = 0;
    r.index = gSecondDisc[n];
  }
  const int32_t dl = d[0];
  const int32_t dh = gSecondDisc[n] ? d[1] : d[0];
  // (unsigned steps: a corrupt record cannot overflow)
  if (dl < r.lower) {
    r.index = static_cast<int32_t>(static_cast<uint32_t>(r.index) - 1u);
    d[0] = d[1] = 0;
  } else if (dh > r.upper) {
    r.index = static_cast<int32_t>(static_cast<uint32_t>(r.index) + 1u);
    d[0] = d[1] = 0;
  } else {
    for (int k = 0; k < 2; ++k) d[k] = d[k] < -64 ? -64 : d[k] > 64 ? 64 : d[k];
  }
  r.lower = r.index != 0 ? -8 : INT32_MIN;
  r.upper = r.index == gMaxTables[n] - 1 ? 0x40000000 : 8;
  select_tables(s->refs[table], n, r.index);
}

void vlc_adapt_group(VlcState* s, int group) {
  if (group == 0) {
    vlc_adapt_table(s, 0);
    for (int i = 5; i <= 12; ++i) vlc_adapt_table(s, i);
  } else {
    for (int i = 13; i <= 20; ++i) vlc_adapt_table(s, i);
  }
}

void vlc_init(VlcState* s) {
  for (int i = 0; i < kVlcTables; ++i) {
    s->rec[i] = VlcTableRecord{};
    s->rec[i].alphabet = aAlphabet[i];
    s->disc[i][0] = 0;
  }
  // Tables 1..4 are never adapted: give them index 0 outright.
  for (int i = 1; i <= 4; ++i) {
    s->disc[i][1] = 0;
    select_tables(s->refs[i], aAlphabet[i], 0);
  }
  vlc_adapt_group(s, 0);
  vlc_adapt_group(s, 1);
  s->current_scan = 2;
  s->pad0 = 0;
  for (int i = 0; i < kVlcTables; ++i) s->rec[i].initialised = 0;
  vlc_adapt_group(s, 0);
  vlc_adapt_group(s, 1);
  for (int k = 0; k < 3; ++k)
    for (int e = 0; e < 16; ++e) {
      VlcScanEntry& en = s->scan[k][e];
      const int pos = kScanInitPositions[k][e];
      en.position = pos;
      en.coord0 = kScanCoords[pos][0];
      en.coord1 = kScanCoords[pos][1];
    }
}

void vlc_scan_reset(VlcState* s, int scan) {
  VlcScanEntry* e = s->scan[scan];
  e[0].total = 32767;
  for (int k = 1; k < 16; ++k) e[k].total = 34 - 2 * k;
}

// ---------------------------------------------------------------- DC scan
namespace {

// Counts one level at entry k and lets the entry pass the one before it
// when its total is now strictly greater; the sentinel at 0 never moves.
inline void bump_total(VlcScanEntry* e, int k) {
  const int32_t total = static_cast<int32_t>(static_cast<uint32_t>(e[k].total) + 1u);
  e[k].total = total;
  if (k > 1 && total > e[k - 1].total) {
    const VlcScanEntry t = e[k];
    e[k] = e[k - 1];
    e[k - 1] = t;
  }
}

}  // namespace

namespace ref {

// Straight from the rule: visit entries 1..15, code, count, swap at once.
int vlc_scan4x4_dc(const int32_t* src, int b, int32_t* dst, int32_t* run_level, VlcState* s) {
  s->current_scan = 2;
  VlcScanEntry* e = s->scan[2];
  const uint32_t m = (1u << b) - 1u;
  int pairs = 0, run = 0;
  for (int k = 1; k < 16; ++k) {
    const int pos = e[k].position & 15;
    const int32_t c = src[pos];
    const uint32_t mag = c < 0 ? 0u - static_cast<uint32_t>(c) : static_cast<uint32_t>(c);
    if (mag <= m) {
      dst[pos] = c == 0 ? 0 : static_cast<int32_t>(4u * mag + (c > 0 ? 1u : 3u));
      ++run;
      continue;
    }
    dst[pos] = static_cast<int32_t>(2u * (mag & m));
    const uint32_t lv = mag >> b;
    run_level[2 * pairs] = run;
    run_level[2 * pairs + 1] = static_cast<int32_t>(c < 0 ? 0u - lv : lv);
    ++pairs;
    run = 0;
    bump_total(e, k);
  }
  return pairs;
}

}  // namespace ref

namespace sse {

// The coded values of all fifteen entries are computed four at a time;
// only the entries that carry a level are then walked (in order), which
// keeps the loop free of unpredictable branches.  Swaps move entries only
// into slots already visited, so the positions gathered up front are the
// visiting order.
int vlc_scan4x4_dc(const int32_t* src, int b, int32_t* dst, int32_t* run_level, VlcState* s) {
  s->current_scan = 2;
  VlcScanEntry* e = s->scan[2];
  alignas(16) int32_t c[16], out[16], lev[16];
  int pos[16];
  c[0] = 0;
  pos[0] = 0;
  for (int k = 1; k < 16; ++k) {
    pos[k] = e[k].position & 15;
    c[k] = src[pos[k]];
  }
  const __m128i m = _mm_set1_epi32(static_cast<int32_t>((1u << b) - 1u));
  const __m128i m1 = _mm_set1_epi32(static_cast<int32_t>(1u << b));
  const __m128i sh = _mm_cvtsi32_si128(b);
  uint32_t levels = 0;
  for (int q = 0; q < 4; ++q) {
    const __m128i v = _mm_load_si128(reinterpret_cast<const __m128i*>(c + 4 * q));
    const __m128i neg = _mm_srai_epi32(v, 31);
    const __m128i mag = _mm_abs_epi32(v);  // |INT32_MIN| reads as 2^31 unsigned
    const __m128i big = _mm_cmpeq_epi32(_mm_max_epu32(mag, m1), mag);  // mag > m
    const __m128i zero = _mm_cmpeq_epi32(v, _mm_setzero_si128());
    const __m128i small = _mm_andnot_si128(
        zero, _mm_sub_epi32(_mm_add_epi32(_mm_slli_epi32(mag, 2), _mm_set1_epi32(1)), _mm_add_epi32(neg, neg)));
    const __m128i coded = _mm_add_epi32(_mm_and_si128(mag, m), _mm_and_si128(mag, m));
    _mm_store_si128(reinterpret_cast<__m128i*>(out + 4 * q), _mm_blendv_epi8(small, coded, big));
    const __m128i lv = _mm_srl_epi32(mag, sh);
    _mm_store_si128(reinterpret_cast<__m128i*>(lev + 4 * q), _mm_sub_epi32(_mm_xor_si128(lv, neg), neg));
    levels |= static_cast<uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(big))) << (4 * q);
  }
  levels &= 0xfffeu;  // entry 0 is never visited
  for (int k = 1; k < 16; ++k) dst[pos[k]] = out[k];
  int pairs = 0, last = 0;
  while (levels) {
    const int k = __builtin_ctz(levels);
    levels &= levels - 1;
    run_level[2 * pairs] = k - last - 1;
    run_level[2 * pairs + 1] = lev[k];
    ++pairs;
    last = k;
    bump_total(e, k);
  }
  return pairs;
}

}  // namespace sse

}  // namespace vpr::jxr

// ---------------------------------------------------------------- entries
using vpr::jxr::VlcState;

extern "C" {

VPR_API VprStatus vpriVLCGetStateSize_JPEGXR(int* pSize) {
  if (!pSize) return vprStatusNullPointer;
  *pSize = vpr::jxr::kVlcStateSize;
  return vprStatusOk;
}

VPR_API VprStatus vpriVLCInit_JPEGXR(void* pState) {
  if (!pState) return vprStatusNullPointer;
  vpr::jxr::vlc_init(static_cast<VlcState*>(pState));
  return vprStatusOk;
}

VPR_API VprStatus vpriVLCAdapt_JPEGXR(void* pState, int group) {
  if (!pState) return vprStatusNullPointer;
  if (group != 0 && group != 1) return vprStatusOutOfRange;
  vpr::jxr::vlc_adapt_group(static_cast<VlcState*>(pState), group);
  return vprStatusOk;
}

VPR_API VprStatus vpriVLCScanSet_JPEGXR(void* pState, int scan) {
  if (!pState) return vprStatusNullPointer;
  if (scan < 0 || scan > 2) return vprStatusOutOfRange;
  static_cast<VlcState*>(pState)->current_scan = scan;
  return vprStatusOk;
}

VPR_API VprStatus vpriVLCScanReset_JPEGXR(void* pState, int scan) {
  if (!pState) return vprStatusNullPointer;
  if (scan < 0 || scan > 2) return vprStatusOutOfRange;
  vpr::jxr::vlc_scan_reset(static_cast<VlcState*>(pState), scan);
  return vprStatusOk;
}

VPR_API VprStatus vpriVLCScan4x4DC_JPEGXR_32s(const Vpr32s* pSrc, int modelBits, Vpr32s* pDst, Vpr32s* pRunLevel,
                                      int* pNumPairs, void* pState) {
  if (!pSrc || !pDst || !pRunLevel || !pNumPairs || !pState) return vprStatusNullPointer;
  if (modelBits < 0 || modelBits > 15) return vprStatusOutOfRange;
  *pNumPairs = vpr::jxr::sse::vlc_scan4x4_dc(pSrc, modelBits, pDst, pRunLevel, static_cast<VlcState*>(pState));
  return vprStatusOk;
}

}  // extern "C"
