// JPEG XR VLC state: layout and initialisation, code and lookup tables,
// table switching across every alphabet, scan orders and the DC scan.
#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "jpegxr/vlc.h"
#include "vprjp_jpegxr.h"
#include "vprtest.h"

namespace {

using namespace vpr::jxr;

struct alignas(16) StateMem {
  unsigned char bytes[kVlcStateSize];
  VlcState* s() { return reinterpret_cast<VlcState*>(bytes); }
};

const int kAlphabets[] = {4, 5, 6, 7, 8, 9, 12};

// The code tables as bit strings, written out independently of the library.
const std::vector<std::vector<std::vector<std::string>>>& code_strings() {
  static const std::vector<std::vector<std::vector<std::string>>> t = {
      {{"1", "01", "000", "001"}},
      {{"1", "01", "001", "0000", "0001"}, {"1", "000", "001", "010", "011"}},
      {{"1", "00000", "001", "00001", "01", "0001"},
       {"01", "0000", "10", "0001", "11", "001"},
       {"0000", "0001", "01", "10", "11", "001"},
       {"00000", "00001", "01", "1", "0001", "001"}},
      {{"01", "10", "11", "001", "0001", "00000", "00001"}, {"1", "01", "001", "0001", "00001", "000000", "000001"}},
      {{"10", "001", "00001", "0001", "11", "010", "00000", "011"},
       {"001", "010", "0001", "011", "100", "101", "0000", "11"}},
      {{"010", "00000", "0010", "00001", "00010", "1", "011", "00011", "0011"},
       {"1", "001", "010", "0001", "000001", "011", "00001", "0000000", "0000001"}},
      {{"00001", "000001", "0000000", "0000001", "00100", "010", "00101", "1", "00110", "0001", "00111", "011"},
       {"0010", "00010", "000000", "000001", "0011", "010", "00011", "11", "011", "100", "00001", "101"},
       {"11", "001", "0000000", "0000001", "00001", "010", "0000010", "011", "100", "101", "0000011", "0001"},
       {"001", "11", "0000000", "00001", "00010", "010", "0000001", "011", "00011", "100", "000001", "101"},
       {"010", "1", "0000001", "0001", "0000010", "011", "00000000", "0010", "0000011", "0011", "00000001",
        "00001"}},
  };
  return t;
}

int alphabet_slot(int n) { return static_cast<int>(std::find(std::begin(kAlphabets), std::end(kAlphabets), n) - std::begin(kAlphabets)); }

// ---------------------------------------------------------------- tables
TEST(VlcTables, ConstantArrays) {
  const int alph[21] = {5, 4, 8, 7, 7, 12, 6, 6, 12, 6, 6, 7, 7, 12, 6, 6, 12, 6, 6, 7, 7};
  EXPECT_TRUE(vprtest::same_array(aAlphabet, alph, 21));
  for (int n = 0; n <= 12; ++n) {
    const int sd = (n == 6 || n == 12) ? 1 : 0;
    const int mt = n == 4 ? 1 : n == 6 ? 4 : n == 12 ? 5 : (n == 5 || n == 7 || n == 8 || n == 9) ? 2 : 0;
    EXPECT_EQ(gSecondDisc[n], sd) << n;
    EXPECT_EQ(gMaxTables[n], mt) << n;
  }
}

TEST(VlcTables, CodeTablesMatchBitStrings) {
  for (int n : kAlphabets) {
    const auto& tabs = code_strings()[alphabet_slot(n)];
    ASSERT_EQ(static_cast<int>(tabs.size()), gMaxTables[n]);
    EXPECT_EQ(vlc_code_table(n, gMaxTables[n]), nullptr);
    for (int t = 0; t < gMaxTables[n]; ++t) {
      SCOPED_TRACE(::testing::Message() << "alphabet " << n << " table " << t);
      const int32_t* c = vlc_code_table(n, t);
      ASSERT_NE(c, nullptr);
      ASSERT_EQ(c[0], n);
      double kraft = 0;
      for (int s = 0; s < n; ++s) {
        const std::string& bits = tabs[t][s];
        EXPECT_EQ(c[2 + 2 * s], static_cast<int>(bits.size())) << s;
        EXPECT_EQ(c[1 + 2 * s], std::stoi(bits, nullptr, 2)) << s;
        kraft += 1.0 / (1 << bits.size());
        for (int o = 0; o < n; ++o) {  // prefix-free
          if (o != s) {
            EXPECT_NE(tabs[t][o].rfind(bits, 0), 0u) << bits << " prefixes " << tabs[t][o];
          }
        }
      }
      EXPECT_DOUBLE_EQ(kraft, 1.0);  // complete: every bit pattern decodes
    }
  }
}

TEST(VlcTables, DeltaRows) {
  const int32_t d5[] = {0, -1, 0, 1, 1};
  const int32_t d6[3][6] = {{-1, 1, 1, 1, 0, 1}, {-2, 0, 0, 2, 0, 0}, {-1, -1, 0, 1, -2, 0}};
  const int32_t d7[] = {1, 0, -1, -1, -1, -1, -1};
  const int32_t d9[] = {2, 2, 1, 1, -1, -2, -2, -2, -3};
  const int32_t d12[4][12] = {{1, 1, 1, 1, 1, 0, 0, -1, 2, 1, 0, 0},
                              {2, 2, -1, -1, -1, 0, -2, -1, 0, 0, -2, -1},
                              {-1, 1, 0, 2, 0, 0, 0, 0, -2, 0, 1, 1},
                              {0, 1, 0, 1, -2, 0, -1, -1, -2, -1, -2, -2}};
  EXPECT_TRUE(vprtest::same_array(vlc_delta_table(5, 0), d5, 5));
  for (int r = 0; r < 3; ++r) EXPECT_TRUE(vprtest::same_array(vlc_delta_table(6, r), d6[r], 6));
  EXPECT_TRUE(vprtest::same_array(vlc_delta_table(7, 0), d7, 7));
  EXPECT_TRUE(vprtest::same_array(vlc_delta_table(9, 0), d9, 9));
  for (int r = 0; r < 4; ++r) EXPECT_TRUE(vprtest::same_array(vlc_delta_table(12, r), d12[r], 12));
  EXPECT_EQ(vlc_delta_table(4, 0), nullptr);
  EXPECT_EQ(vlc_delta_table(8, 0), nullptr);
  EXPECT_EQ(vlc_delta_table(6, 3), nullptr);
  EXPECT_EQ(vlc_delta_table(12, 4), nullptr);
}

// Decoding with the lookups: every symbol's code, followed by random bits,
// decodes to that symbol and length.
TEST(VlcTables, LookupsDecodeEveryCode) {
  vprtest::Rng rng(4);
  for (int n : kAlphabets)
    for (int t = 0; t < gMaxTables[n]; ++t) {
      SCOPED_TRACE(::testing::Message() << "alphabet " << n << " table " << t);
      const VlcLutEntry* first = vlc_lut(n, t, 0);
      const VlcLutEntry* second = vlc_lut(n, t, 1);
      ASSERT_NE(first, nullptr);
      EXPECT_EQ(second != nullptr, n == 7 || n == 9 || n == 12);
      const auto& tabs = code_strings()[alphabet_slot(n)][t];
      for (int s = 0; s < n; ++s)
        for (int rep = 0; rep < 8; ++rep) {
          const std::string& bits = tabs[s];
          uint32_t window = static_cast<uint32_t>(std::stoi(bits, nullptr, 2)) << (16 - bits.size());
          window |= static_cast<uint32_t>(rng.uniform(0, 65535)) >> bits.size();
          VlcLutEntry e = first[window >> 11];
          if (e.symbol < 0) {
            ASSERT_EQ(e.length, 5);
            ASSERT_NE(second, nullptr);
            e = second[(window >> 8) & 7];
          }
          EXPECT_EQ(e.symbol, s) << bits;
          EXPECT_EQ(e.length, static_cast<int>(bits.size())) << bits;
        }
    }
}

// ---------------------------------------------------------------- state
TEST(VlcState, SizeAndChecks) {
  int size = -1;
  EXPECT_EQ(vpriVLCGetStateSize_JPEGXR(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCGetStateSize_JPEGXR(&size), vprStatusOk);
  EXPECT_EQ(size, 2208);
  StateMem m;
  std::memset(m.bytes, 0x5a, sizeof m.bytes);
  EXPECT_EQ(vpriVLCInit_JPEGXR(nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCAdapt_JPEGXR(nullptr, 0), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCAdapt_JPEGXR(nullptr, 7), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScanSet_JPEGXR(nullptr, 1), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScanReset_JPEGXR(nullptr, 1), vprStatusNullPointer);
  for (int bad : {-1, 2, 3, INT_MIN}) EXPECT_EQ(vpriVLCAdapt_JPEGXR(m.bytes, bad), vprStatusOutOfRange);
  for (int bad : {-1, 3, INT_MAX}) {
    EXPECT_EQ(vpriVLCScanSet_JPEGXR(m.bytes, bad), vprStatusOutOfRange);
    EXPECT_EQ(vpriVLCScanReset_JPEGXR(m.bytes, bad), vprStatusOutOfRange);
  }
  for (unsigned char b : m.bytes) ASSERT_EQ(b, 0x5a);  // failures write nothing
}

// Expected references of a table with alphabet n at index t.
void expect_refs(const VlcTableRefs& r, int n, int t) {
  SCOPED_TRACE(::testing::Message() << "alphabet " << n << " index " << t);
  EXPECT_EQ(r.code, vlc_code_table(n, n == 8 ? 0 : t));
  const int32_t* d0 = nullptr;
  const int32_t* d1 = nullptr;
  if (n == 5 || n == 7 || n == 9) d0 = vlc_delta_table(n, 0);
  if (n == 6) d0 = vlc_delta_table(6, std::max(t - 1, 0)), d1 = vlc_delta_table(6, std::min(t, 2));
  if (n == 12) d0 = vlc_delta_table(12, std::max(t - 1, 0)), d1 = vlc_delta_table(12, std::min(t, 3));
  EXPECT_EQ(r.delta[0], d0);
  EXPECT_EQ(r.delta[1], d1);
  EXPECT_EQ(r.lut[0], vlc_lut(n, n == 8 ? 0 : t, 0));
  EXPECT_EQ(r.lut[1], vlc_lut(n, n == 8 ? 0 : t, 1));
}

TEST(VlcState, InitialisedState) {
  StateMem m;
  std::memset(m.bytes, 0xab, sizeof m.bytes);
  ASSERT_EQ(vpriVLCInit_JPEGXR(m.bytes), vprStatusOk);
  VlcState& s = *m.s();
  EXPECT_EQ(s.current_scan, 2);
  for (int i = 0; i < 21; ++i) {
    SCOPED_TRACE(i);
    const int n = aAlphabet[i];
    const bool adapted = i == 0 || i >= 5;
    EXPECT_EQ(s.rec[i].alphabet, n);
    EXPECT_EQ(s.rec[i].index, (n == 6 || n == 12) ? 1 : 0);
    EXPECT_EQ(s.rec[i].initialised, adapted ? 1 : 0);
    EXPECT_EQ(s.disc[i][0], 0);
    EXPECT_EQ(s.disc[i][1], 0);
    if (adapted) {
      EXPECT_EQ(s.rec[i].lower, s.rec[i].index ? -8 : INT32_MIN);
      EXPECT_EQ(s.rec[i].upper, s.rec[i].index == gMaxTables[n] - 1 ? 0x40000000 : 8);
    } else {  // cleared record, never adapted
      EXPECT_EQ(s.rec[i].lower, 0);
      EXPECT_EQ(s.rec[i].upper, 0);
    }
    expect_refs(s.refs[i], n, s.rec[i].index);
  }
  const int pos[3][15] = {{10, 2, 12, 5, 9, 4, 8, 1, 13, 6, 15, 14, 3, 11, 7},
                          {5, 10, 12, 1, 2, 8, 4, 6, 9, 3, 14, 13, 7, 11, 15},
                          {1, 4, 5, 2, 8, 6, 9, 3, 12, 10, 7, 13, 11, 14, 15}};
  const int coord[16][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {3, 0}, {2, 0}, {3, 1}, {2, 1},
                            {0, 3}, {1, 3}, {0, 2}, {1, 2}, {3, 3}, {2, 3}, {3, 2}, {2, 2}};
  for (int k = 0; k < 3; ++k)
    for (int e = 0; e < 16; ++e) {
      const VlcScanEntry& en = s.scan[k][e];
      const int p = e == 0 ? 0 : pos[k][e - 1];
      EXPECT_EQ(en.position, p);
      EXPECT_EQ(en.coord0, coord[p][0]);
      EXPECT_EQ(en.coord1, coord[p][1]);
      EXPECT_EQ(static_cast<uint32_t>(en.total), 0xababababu);  // totals left to the reset
    }
  // Reset writes the totals, nothing else.
  StateMem before = m;
  ASSERT_EQ(vpriVLCScanReset_JPEGXR(m.bytes, 1), vprStatusOk);
  for (int e = 0; e < 16; ++e) {
    EXPECT_EQ(s.scan[1][e].total, e == 0 ? 32767 : 34 - 2 * e);
    before.s()->scan[1][e].total = s.scan[1][e].total;
  }
  EXPECT_EQ(std::memcmp(before.bytes, m.bytes, sizeof m.bytes), 0);
}

// Init twice gives the same bytes whatever the memory held (the totals
// aside); an initialised object copied byte for byte behaves the same.
TEST(VlcState, InitIsIndependentOfOldContents) {
  StateMem a, b;
  std::memset(a.bytes, 0x00, sizeof a.bytes);
  std::memset(b.bytes, 0xff, sizeof b.bytes);
  vpriVLCInit_JPEGXR(a.bytes);
  vpriVLCInit_JPEGXR(b.bytes);
  for (int k = 0; k < 3; ++k) {
    vpriVLCScanReset_JPEGXR(a.bytes, k);
    vpriVLCScanReset_JPEGXR(b.bytes, k);
  }
  // padding words differ only where nothing is stored
  a.s()->pad0 = b.s()->pad0 = 0;
  std::memset(a.bytes + 2204, 0, 4);
  std::memset(b.bytes + 2204, 0, 4);
  EXPECT_EQ(std::memcmp(a.bytes, b.bytes, sizeof a.bytes), 0);
}

TEST(VlcState, ScanSetSelects) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  for (int k : {0, 1, 2, 1}) {
    EXPECT_EQ(vpriVLCScanSet_JPEGXR(m.bytes, k), vprStatusOk);
    EXPECT_EQ(m.s()->current_scan, k);
  }
}

// ---------------------------------------------------------------- adaptation
// Drives one table (alphabet n) up to its last code table and back down,
// checking every switch, every bound and the table references.
void drive_table(VlcState& s, int table) {
  const int n = s.rec[table].alphabet;
  const int last = gMaxTables[n] - 1;
  const bool two = gSecondDisc[n] == 1;
  int32_t* d = s.disc[table];
  VlcTableRecord& r = s.rec[table];
  auto adapt = [&] { vlc_adapt_table(&s, table); };
  SCOPED_TRACE(::testing::Message() << "table " << table << " alphabet " << n);
  ASSERT_EQ(r.index, gSecondDisc[n]);
  // Up: the high discriminant (second for 6 and 12) above 8 switches.
  while (r.index < last) {
    const int t = r.index;
    d[0] = 0;
    d[two ? 1 : 0] = 8;  // exactly the bound: no switch
    adapt();
    ASSERT_EQ(r.index, t);
    EXPECT_EQ(d[two ? 1 : 0], 8);
    if (two) {  // the first discriminant alone does not switch up
      d[0] = 60;
      d[1] = 0;
      adapt();
      ASSERT_EQ(r.index, t);
      EXPECT_EQ(d[0], 60);
    }
    d[0] = two ? -3 : 9;
    d[1] = two ? 9 : 5;
    adapt();
    ASSERT_EQ(r.index, t + 1);
    EXPECT_EQ(d[0], 0);
    EXPECT_EQ(d[1], 0);
    EXPECT_EQ(r.lower, -8);
    EXPECT_EQ(r.upper, r.index == last ? 0x40000000 : 8);
    expect_refs(s.refs[table], n, r.index);
  }
  // At the last table the upper bound is 0x40000000: no discriminant a
  // coder can reach (they are clamped to +-64 and grow by small deltas)
  // switches further up.
  d[0] = 0;
  d[1] = 0x40000000;
  if (!two) std::swap(d[0], d[1]);
  adapt();
  EXPECT_EQ(r.index, last);
  EXPECT_EQ(d[two ? 1 : 0], 64);  // clamped
  // Down: the first discriminant below -8 switches.
  while (r.index > 0) {
    const int t = r.index;
    d[0] = -8;
    d[1] = 0;
    adapt();
    ASSERT_EQ(r.index, t);
    d[0] = -9;
    d[1] = 1000;  // the down test comes first
    adapt();
    ASSERT_EQ(r.index, t - 1);
    EXPECT_EQ(d[0], 0);
    EXPECT_EQ(d[1], 0);
    EXPECT_EQ(r.lower, r.index ? -8 : INT32_MIN);
    EXPECT_EQ(r.upper, r.index == last ? 0x40000000 : 8);
    expect_refs(s.refs[table], n, r.index);
  }
  // At index 0 nothing switches down; both discriminants clamp.
  d[0] = INT32_MIN;
  d[1] = -1000;
  adapt();
  EXPECT_EQ(r.index, 0);
  EXPECT_EQ(d[0], -64);
  EXPECT_EQ(d[1], -64);
  if (two) {  // a large first discriminant does not switch up: clamped
    d[0] = 1000;
    d[1] = 0;
    adapt();
    EXPECT_EQ(r.index, 0);
    EXPECT_EQ(d[0], 64);
  }
}

TEST(VlcAdapt, EveryAdaptiveTableAcrossItsSwitches) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  for (int i = 0; i < 21; ++i) {
    if (i >= 1 && i <= 4) {  // never adapted by a group: first-time branch
      m.s()->rec[i].initialised = 0;
      vlc_adapt_table(m.s(), i);
    }
    drive_table(*m.s(), i);
  }
}

// Alphabet 8 (table 2) switches its index but keeps code table 0.
TEST(VlcAdapt, AlphabetEightKeepsCodeTableZero) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  VlcState& s = *m.s();
  vlc_adapt_table(&s, 2);
  s.disc[2][0] = 9;
  vlc_adapt_table(&s, 2);
  EXPECT_EQ(s.rec[2].index, 1);
  EXPECT_EQ(s.refs[2].code, vlc_code_table(8, 0));
  EXPECT_EQ(s.refs[2].delta[0], nullptr);
  EXPECT_EQ(s.refs[2].lut[0], vlc_lut(8, 0, 0));
  EXPECT_EQ(s.refs[2].lut[1], nullptr);
}

// A group adapts exactly its tables: 0 and 5..12, or 13..20.
TEST(VlcAdapt, GroupsTouchTheirTablesOnly) {
  for (int group = 0; group < 2; ++group) {
    StateMem m;
    vpriVLCInit_JPEGXR(m.bytes);
    VlcState& s = *m.s();
    for (int i = 0; i < 21; ++i) s.disc[i][0] = s.disc[i][1] = 1000;  // would switch or clamp
    const StateMem before = m;
    ASSERT_EQ(vpriVLCAdapt_JPEGXR(m.bytes, group), vprStatusOk);
    for (int i = 0; i < 21; ++i) {
      const bool mine = group == 0 ? (i == 0 || (i >= 5 && i <= 12)) : i >= 13;
      const VlcState& b = *const_cast<StateMem&>(before).s();
      if (!mine) {
        EXPECT_EQ(std::memcmp(&s.rec[i], &b.rec[i], sizeof s.rec[i]), 0) << i;
        EXPECT_EQ(s.disc[i][0], 1000) << i;
      } else {
        const int n = aAlphabet[i];
        const bool up = b.rec[i].index < gMaxTables[n] - 1;  // 1000 > 8 switches up
        EXPECT_EQ(s.rec[i].index, b.rec[i].index + (up ? 1 : 0)) << i;
        EXPECT_EQ(s.disc[i][0], up ? 0 : 64) << i;
      }
    }
  }
}

// Alphabet 6 and 12 use the second discriminant for the upward test; all
// others the first.  Both are reset by a switch, clamped otherwise.
TEST(VlcAdapt, HandComputedSequence) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  VlcState& s = *m.s();
  // table 5, alphabet 12, index 1 after init: L = -8, U = 8
  EXPECT_EQ(s.rec[5].lower, -8);
  EXPECT_EQ(s.rec[5].upper, 8);
  s.disc[5][0] = 9;  // D1 high, D2 = 0: no switch (D2 decides up)
  vpriVLCAdapt_JPEGXR(m.bytes, 0);
  EXPECT_EQ(s.rec[5].index, 1);
  EXPECT_EQ(s.disc[5][0], 9);
  s.disc[5][1] = 70;  // up to 2
  vpriVLCAdapt_JPEGXR(m.bytes, 0);
  EXPECT_EQ(s.rec[5].index, 2);
  EXPECT_EQ(s.disc[5][0], 0);
  EXPECT_EQ(s.disc[5][1], 0);
  // table 0, alphabet 5, index 0: L = INT32_MIN, U = 8
  s.disc[0][0] = -100000;
  vpriVLCAdapt_JPEGXR(m.bytes, 0);
  EXPECT_EQ(s.rec[0].index, 0);
  EXPECT_EQ(s.disc[0][0], -64);
  s.disc[0][0] = 9;
  vpriVLCAdapt_JPEGXR(m.bytes, 0);
  EXPECT_EQ(s.rec[0].index, 1);
  EXPECT_EQ(s.rec[0].upper, 0x40000000);
  EXPECT_EQ(s.rec[0].lower, -8);
  EXPECT_EQ(s.refs[0].code, vlc_code_table(5, 1));
  EXPECT_EQ(s.refs[0].delta[0], vlc_delta_table(5, 0));
}

// ---------------------------------------------------------------- scans
// A model of the adaptive scan written from the rule: a list of
// (total, position) pairs, entry 0 fixed.
struct ScanModel {
  int total[16];
  int pos[16];
  void bump(int k) {
    ++total[k];
    if (k > 1 && total[k] > total[k - 1]) {
      std::swap(total[k], total[k - 1]);
      std::swap(pos[k], pos[k - 1]);
    }
  }
};

ScanModel model_of(const VlcState& s, int scan) {
  ScanModel m;
  for (int e = 0; e < 16; ++e) m.total[e] = s.scan[scan][e].total, m.pos[e] = s.scan[scan][e].position;
  return m;
}

void expect_state_matches(const VlcState& s, int scan, const ScanModel& m) {
  for (int e = 0; e < 16; ++e) {
    ASSERT_EQ(s.scan[scan][e].total, m.total[e]) << e;
    ASSERT_EQ(s.scan[scan][e].position, m.pos[e]) << e;
    ASSERT_EQ(s.scan[scan][e].coord0, kScanCoords[m.pos[e]][0]) << e;
    ASSERT_EQ(s.scan[scan][e].coord1, kScanCoords[m.pos[e]][1]) << e;
  }
}

TEST(VlcScan, ResetRestoresTotalsNotOrder) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  VlcState& s = *m.s();
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  int32_t src[16] = {0}, dst[16], rl[30], np = -1;
  src[kScanInitPositions[2][2]] = 100;  // entry 2 (position 4) twice: 30 -> 32 > 32? no; -> 31, then 32 = 32 (no swap), 33 > 32 swap
  for (int rep = 0; rep < 3; ++rep) ASSERT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 0, dst, rl, &np, m.bytes), vprStatusOk);
  EXPECT_EQ(s.scan[2][1].position, 4);
  EXPECT_EQ(s.scan[2][1].total, 33);
  EXPECT_EQ(s.scan[2][2].position, 1);
  EXPECT_EQ(s.scan[2][2].total, 32);
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  EXPECT_EQ(s.scan[2][1].position, 4);  // order kept
  EXPECT_EQ(s.scan[2][1].total, 32);
  EXPECT_EQ(s.scan[2][2].total, 30);
}

TEST(VlcScan, EqualTotalsDoNotSwap) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  VlcState& s = *m.s();
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  int32_t src[16] = {0}, dst[16], rl[30], np = -1;
  src[kScanInitPositions[2][5]] = -7;  // entry 5: 24 -> 25 -> 26 (= entry 4's 26: stays)
  vpriVLCScan4x4DC_JPEGXR_32s(src, 0, dst, rl, &np, m.bytes);
  vpriVLCScan4x4DC_JPEGXR_32s(src, 0, dst, rl, &np, m.bytes);
  EXPECT_EQ(s.scan[2][5].position, 8);
  EXPECT_EQ(s.scan[2][5].total, 26);
  vpriVLCScan4x4DC_JPEGXR_32s(src, 0, dst, rl, &np, m.bytes);
  EXPECT_EQ(s.scan[2][4].position, 8);
  EXPECT_EQ(s.scan[2][4].total, 27);
  EXPECT_EQ(s.scan[2][5].position, 2);
}

// Entry 1 never passes the sentinel, whatever its total.
TEST(VlcScan, SentinelNeverMoves) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  VlcState& s = *m.s();
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  s.scan[2][1].total = 40000;
  int32_t src[16], dst[16], rl[30], np = -1;
  for (int i = 0; i < 16; ++i) src[i] = 1000 + i;
  ASSERT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 3, dst, rl, &np, m.bytes), vprStatusOk);
  EXPECT_EQ(s.scan[2][0].position, 0);
  EXPECT_EQ(s.scan[2][0].total, 32767);
  EXPECT_EQ(s.scan[2][1].position, 1);
  EXPECT_EQ(s.scan[2][1].total, 40001);
  EXPECT_EQ(np, 15);
}

TEST(VlcScan, DcScanChecks) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  vpriVLCScanSet_JPEGXR(m.bytes, 0);
  int32_t src[16] = {1, 2, 3}, dst[16], rl[30];
  int np = -5;
  std::fill(std::begin(dst), std::end(dst), 77);
  const StateMem before = m;
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(nullptr, 99, dst, rl, &np, m.bytes), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 99, nullptr, rl, &np, m.bytes), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 99, dst, nullptr, &np, m.bytes), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 99, dst, rl, nullptr, m.bytes), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 99, dst, rl, &np, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 16, dst, rl, &np, m.bytes), vprStatusOutOfRange);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, -1, dst, rl, &np, m.bytes), vprStatusOutOfRange);
  EXPECT_EQ(np, -5);
  for (int v : dst) EXPECT_EQ(v, 77);
  EXPECT_EQ(std::memcmp(before.bytes, m.bytes, sizeof m.bytes), 0);
  EXPECT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 15, dst, rl, &np, m.bytes), vprStatusOk);
  EXPECT_EQ(m.s()->current_scan, 2);
}

// Hand-computed block with model bits 2 (m = 3), scan 2 in its initial
// order 1 4 5 2 8 6 9 3 12 10 7 13 11 14 15.
TEST(VlcScan, HandComputedBlock) {
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  vpriVLCScanReset_JPEGXR(m.bytes, 2);
  int32_t src[16] = {0};
  src[0] = 999;   // DC: never coded, output 0 untouched
  src[1] = 3;     // |c| <= 3: 4*3+1 = 13
  src[4] = -2;    // 4*2+3 = 11
  src[5] = 0;     // 0
  src[2] = 9;     // > 3: out 2*(9&3) = 2, level 9>>2 = 2, run 3 (entries 1..3)
  src[8] = -14;   // out 2*(14&3) = 4, level -(14>>2) = -3, run 0
  src[15] = 4;    // out 0, level 1, run 9 (entries 6..14)
  int32_t dst[16], rl[30];
  std::fill(std::begin(dst), std::end(dst), -1);
  int np = -1;
  ASSERT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 2, dst, rl, &np, m.bytes), vprStatusOk);
  const int32_t want[16] = {-1, 13, 2, 0, 11, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_TRUE(vprtest::same_array(dst, want, 16));
  ASSERT_EQ(np, 3);
  const int32_t want_rl[6] = {3, 2, 0, -3, 9, 1};
  EXPECT_TRUE(vprtest::same_array(rl, want_rl, 6));
  // entry 4 (position 2): 26 -> 27, not above entry 3's 28; entry 5
  // (position 8): 24 -> 25; entry 15: 4 -> 5.  No swap.
  const VlcState& s = *m.s();
  EXPECT_EQ(s.scan[2][4].total, 27);
  EXPECT_EQ(s.scan[2][5].total, 25);
  EXPECT_EQ(s.scan[2][15].total, 5);
  EXPECT_EQ(s.scan[2][4].position, 2);
  // Model bits 0: every non-zero value is a level, outputs all zero.
  std::fill(std::begin(dst), std::end(dst), -1);
  ASSERT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(src, 0, dst, rl, &np, m.bytes), vprStatusOk);
  for (int i = 1; i < 16; ++i) EXPECT_EQ(dst[i], 0) << i;
  EXPECT_EQ(dst[0], -1);
  ASSERT_EQ(np, 5);
  const int32_t want_rl0[10] = {0, 3, 0, -2, 1, 9, 0, -14, 9, 4};
  EXPECT_TRUE(vprtest::same_array(rl, want_rl0, 10));
  // totals: entry 1 33, entry 2 31, entry 4 28 (= entry 3: no swap),
  // entry 5 26, entry 15 6 (= entry 14: no swap)
  EXPECT_EQ(s.scan[2][1].total, 33);
  EXPECT_EQ(s.scan[2][2].total, 31);
  EXPECT_EQ(s.scan[2][4].total, 28);
  EXPECT_EQ(s.scan[2][4].position, 2);
  EXPECT_EQ(s.scan[2][15].total, 6);
  EXPECT_EQ(s.scan[2][15].position, 15);
}

// Many random blocks with random model bits against the model, with every
// scan state checked after each block; in place (pDst = pSrc) too.
TEST(VlcScan, AdaptsOverManyBlocks) {
  vprtest::Rng rng(31);
  StateMem m;
  vpriVLCInit_JPEGXR(m.bytes);
  for (int k = 0; k < 3; ++k) vpriVLCScanReset_JPEGXR(m.bytes, k);
  VlcState& s = *m.s();
  ScanModel model = model_of(s, 2);
  const ScanModel untouched0 = model_of(s, 0), untouched1 = model_of(s, 1);
  int swaps_seen = 0;
  for (int blk = 0; blk < 4000; ++blk) {
    const int b = static_cast<int>(rng.uniform(0, 15));
    int32_t src[16], dst[16], rl[30];
    const int density = static_cast<int>(rng.uniform(0, 100));
    for (int i = 0; i < 16; ++i) {
      if (rng.uniform(0, 99) >= density) {
        src[i] = 0;
      } else {
        const int kind = static_cast<int>(rng.uniform(0, 9));
        src[i] = kind == 0 ? INT32_MIN : kind == 1 ? INT32_MAX : static_cast<int32_t>(rng.uniform(-70000, 70000)) >> rng.uniform(0, 16);
      }
    }
    // position-skewed statistics so the order really moves
    if (rng.coin(0.7)) src[15] = static_cast<int32_t>(rng.uniform(40000, 80000));
    const bool in_place = rng.coin(0.3);
    int32_t expect_dst[16];
    std::fill(std::begin(dst), std::end(dst), 0x7777);
    std::copy(std::begin(dst), std::end(dst), std::begin(expect_dst));
    std::vector<int32_t> expect_rl;
    const uint32_t mask = (1u << b) - 1u;
    int run = 0;
    const int before_pos[16] = {model.pos[0], model.pos[1], model.pos[2], model.pos[3], model.pos[4], model.pos[5],
                                model.pos[6], model.pos[7], model.pos[8], model.pos[9], model.pos[10],
                                model.pos[11], model.pos[12], model.pos[13], model.pos[14], model.pos[15]};
    for (int k = 1; k < 16; ++k) {
      const int p = before_pos[k];
      const int64_t c = src[p];
      const uint64_t mag = static_cast<uint64_t>(c < 0 ? -c : c);
      if (mag <= mask) {
        expect_dst[p] = c == 0 ? 0 : static_cast<int32_t>(4 * mag + (c > 0 ? 1 : 3));
        ++run;
      } else {
        expect_dst[p] = static_cast<int32_t>(2 * (mag & mask));
        expect_rl.push_back(run);
        expect_rl.push_back(static_cast<int32_t>(c < 0 ? -static_cast<int64_t>(mag >> b) : static_cast<int64_t>(mag >> b)));
        run = 0;
        // swaps only move entries into slots already visited, so the
        // entry visited at k is still at k
        ASSERT_EQ(model.pos[k], p);
        model.bump(k);
        if (model.pos[k] != p) ++swaps_seen;
      }
    }
    int np = -1;
    int32_t* out = dst;
    if (in_place) {
      std::copy(std::begin(src), std::end(src), std::begin(dst));
      expect_dst[0] = src[0];
    }
    ASSERT_EQ(vpriVLCScan4x4DC_JPEGXR_32s(in_place ? dst : src, b, out, rl, &np, m.bytes), vprStatusOk);
    ASSERT_EQ(np * 2, static_cast<int>(expect_rl.size())) << blk;
    ASSERT_TRUE(vprtest::same_array(rl, expect_rl.data(), expect_rl.size())) << blk;
    ASSERT_TRUE(vprtest::same_array(dst, expect_dst, 16)) << blk;
    ASSERT_NO_FATAL_FAILURE(expect_state_matches(s, 2, model)) << blk;
  }
  EXPECT_GT(swaps_seen, 10);
  expect_state_matches(s, 0, untouched0);
  expect_state_matches(s, 1, untouched1);
}

// The SSE scan against its scalar twin: same outputs, same pairs, same
// state bytes after every block; nothing written past the pair count.
TEST(VlcScan, SseMatchesScalarTwin) {
  vprtest::Rng rng(77);
  StateMem a, b;
  vpriVLCInit_JPEGXR(a.bytes);
  for (int k = 0; k < 3; ++k) vpriVLCScanReset_JPEGXR(a.bytes, k);
  b = a;
  for (int blk = 0; blk < 3000; ++blk) {
    const int bits = static_cast<int>(rng.uniform(0, 15));
    int32_t src[16];
    const int density = static_cast<int>(rng.uniform(0, 100));
    for (int i = 0; i < 16; ++i) {
      const int64_t pick = rng.uniform(0, 99);
      src[i] = pick >= density ? 0
               : pick % 11 == 0 ? (rng.coin() ? INT32_MIN : INT32_MAX)
                                : static_cast<int32_t>(rng.uniform(-(1 << 20), 1 << 20)) >> rng.uniform(0, 20);
    }
    if (blk % 500 == 0) {  // totals near the sentinel and equal neighbours
      a.s()->scan[2][1].total = b.s()->scan[2][1].total = 32767;
      a.s()->scan[2][3].total = b.s()->scan[2][3].total = a.s()->scan[2][2].total;
    }
    int32_t da[16], db[16], ra[32], rb[32];
    std::fill(std::begin(da), std::end(da), 0x1234);
    std::fill(std::begin(db), std::end(db), 0x1234);
    std::fill(std::begin(ra), std::end(ra), -777);
    std::fill(std::begin(rb), std::end(rb), -777);
    const int na = ref::vlc_scan4x4_dc(src, bits, da, ra, a.s());
    const int nb = sse::vlc_scan4x4_dc(src, bits, db, rb, b.s());
    ASSERT_EQ(na, nb) << blk;
    ASSERT_TRUE(vprtest::same_array(da, db, 16)) << blk;
    ASSERT_TRUE(vprtest::same_array(ra, rb, 32)) << blk;
    for (int i = 2 * nb; i < 32; ++i) ASSERT_EQ(rb[i], -777) << blk;
    ASSERT_EQ(da[0], 0x1234);
    ASSERT_EQ(std::memcmp(a.bytes, b.bytes, sizeof a.bytes), 0) << blk;
  }
}

}  // namespace
