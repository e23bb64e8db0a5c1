#include <cstddef>
#include <cstring>
#include <string>

#include "vprjp.h"
#include "vprtest.h"

TEST(Version, RecordFieldsAndStrings) {
  const VprLibraryVersion* v = vprjGetLibVersion();
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->versionMajor, 7);
  EXPECT_EQ(v->versionMinor, 1);
  EXPECT_EQ(v->versionUpdate, 1);
  EXPECT_EQ(v->revision, 37466);
  EXPECT_EQ(std::memcmp(v->cpuTag, "m7\0\0", 4), 0);
  EXPECT_STREQ(v->libraryName, "vprJP SSE3 (m7)");
  EXPECT_STREQ(v->versionText, "7.1.1 (r37466)");
  EXPECT_STREQ(v->buildDateText, "Sep 24 2012");
}

TEST(Version, TextAgreesWithNumbers) {
  const VprLibraryVersion* v = vprjGetLibVersion();
  const std::string expect = std::to_string(v->versionMajor) + "." + std::to_string(v->versionMinor) + "." +
                             std::to_string(v->versionUpdate) + " (r" + std::to_string(v->revision) + ")";
  EXPECT_EQ(expect, v->versionText);
  const std::string name = v->libraryName;
  EXPECT_NE(name.find(std::string("(") + v->cpuTag + ")"), std::string::npos);
}

TEST(Version, SamePointerEveryCallAndFromEveryThread) {
  const VprLibraryVersion* first = vprjGetLibVersion();
  EXPECT_EQ(first, vprjGetLibVersion());
  const VprLibraryVersion* seen[8] = {};
#pragma omp parallel for num_threads(8)
  for (int i = 0; i < 8; ++i) seen[i] = vprjGetLibVersion();
  for (const auto* p : seen) EXPECT_EQ(p, first);
}

TEST(Version, RecordLayout) {
  // Four integers back to back, the 4-byte tag, then pointer-aligned strings.
  EXPECT_EQ(offsetof(VprLibraryVersion, versionMajor), 0u);
  EXPECT_EQ(offsetof(VprLibraryVersion, versionMinor), 4u);
  EXPECT_EQ(offsetof(VprLibraryVersion, versionUpdate), 8u);
  EXPECT_EQ(offsetof(VprLibraryVersion, revision), 12u);
  EXPECT_EQ(offsetof(VprLibraryVersion, cpuTag), 16u);
  EXPECT_EQ(offsetof(VprLibraryVersion, libraryName), 24u);
  EXPECT_EQ(offsetof(VprLibraryVersion, versionText), 32u);
  EXPECT_EQ(offsetof(VprLibraryVersion, buildDateText), 40u);
  EXPECT_EQ(sizeof(VprStatus), 4u);
  EXPECT_EQ(sizeof(VprRoiSize), 8u);
}

TEST(Status, CodesHaveTheirValues) {
  EXPECT_EQ(vprStatusOk, 0);
  EXPECT_EQ(vprStatusError, -2);
  EXPECT_EQ(vprStatusBadArg, -5);
  EXPECT_EQ(vprStatusBadSize, -6);
  EXPECT_EQ(vprStatusOutOfRange, -7);
  EXPECT_EQ(vprStatusNullPointer, -8);
  EXPECT_EQ(vprStatusNoMemory, -9);
  EXPECT_EQ(vprStatusBadStep, -14);
  EXPECT_EQ(vprStatusBadContext, -17);
  EXPECT_EQ(vprStatusOutOfBuffer, -62);
  EXPECT_EQ(vprStatusCodeRange, -63);
  EXPECT_EQ(vprStatusBadHuffTable, -64);
  EXPECT_EQ(vprStatusCodeBlockError, -112);
  EXPECT_EQ(vprStatusBadPassNumber, -113);
  EXPECT_EQ(vprStatusRunOverflow, -124);
  EXPECT_EQ(vprStatusNotAttached, -180);
  EXPECT_EQ(vprStatusDivByZeroWarning, 6);
  EXPECT_EQ(vprStatusOddSizeWarning, 35);
}
