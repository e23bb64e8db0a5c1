// The state-object quartet helpers, with a stand-in kind.
#include <cstdint>
#include <cstring>

#include "core/alloc.h"
#include "core/state.h"
#include "vprcore.h"
#include "vprtest.h"

namespace {

constexpr int32_t kSize = 40;

VprStatus fake_init(int fill, uint8_t* p) {
  if (!p) return vprStatusNullPointer;
  if (fill < 0) return vprStatusBadHuffTable;
  std::memset(p, fill, kSize);
  return fill == 6 ? vprStatusDivByZeroWarning : vprStatusOk;
}

}  // namespace

TEST(State, GetBufSize) {
  int32_t size = -1;
  EXPECT_EQ(vpr::state_get_buf_size(kSize, nullptr), vprStatusNullPointer);
  EXPECT_EQ(vpr::state_get_buf_size(kSize, &size), vprStatusOk);
  EXPECT_EQ(size, kSize);
  EXPECT_EQ(vpr::kDecodeHuffmanSpecSize, 1644);
  EXPECT_EQ(vpr::kDecodeHuffmanStateSize, 24);
  EXPECT_EQ(vpr::kEncodeHuffmanSpecSize, 1024);
  EXPECT_EQ(vpr::kEncodeHuffmanStateSize, 1048);
}

TEST(State, InitClearsInPlace) {
  uint8_t mem[kSize];
  std::memset(mem, 0x77, sizeof mem);
  EXPECT_EQ(vpr::state_init_clear(nullptr, kSize), vprStatusNullPointer);
  EXPECT_EQ(vpr::state_init_clear(mem, kSize), vprStatusOk);
  for (uint8_t b : mem) EXPECT_EQ(b, 0);
}

TEST(State, InitAllocSucceedsAndFrees) {
  uint8_t* obj = nullptr;
  auto init = [](uint8_t* p) { return fake_init(3, p); };
  EXPECT_EQ(vpr::state_init_alloc<uint8_t>(nullptr, kSize, vpr::AllocFailure::kNullPointerKeep, init),
            vprStatusNullPointer);
  ASSERT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNullPointerKeep, init), vprStatusOk);
  ASSERT_NE(obj, nullptr);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(obj) % 64, 0u);
  for (int i = 0; i < kSize; ++i) EXPECT_EQ(obj[i], 3);
  EXPECT_EQ(vpr::state_free(obj), vprStatusOk);
  EXPECT_EQ(vpr::state_free(nullptr), vprStatusNullPointer);
}

TEST(State, InitAllocPassesWarningsAndFailures) {
  uint8_t* obj = nullptr;
  EXPECT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNullPointerKeep,
                                  [](uint8_t* p) { return fake_init(6, p); }),
            vprStatusDivByZeroWarning);
  ASSERT_NE(obj, nullptr);
  vpr::state_free(obj);
  uint8_t* const sentinel = reinterpret_cast<uint8_t*>(0x1234);
  obj = sentinel;
  const long before = vprtest::malloc_calls();
  EXPECT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNullPointerKeep,
                                  [](uint8_t* p) { return fake_init(-1, p); }),
            vprStatusBadHuffTable);
  EXPECT_EQ(obj, sentinel);  // init failed: memory released, pointer untouched
  EXPECT_EQ(vprtest::malloc_calls(), before + 1);
}

TEST(State, AllocationFailureModes) {
  auto init = [](uint8_t* p) { return fake_init(1, p); };
  uint8_t* const sentinel = reinterpret_cast<uint8_t*>(0x1234);
  {
    // Huffman kinds: -8 and the caller's pointer unchanged.
    vprtest::MallocFailure fail;
    uint8_t* obj = sentinel;
    EXPECT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNullPointerKeep, init),
              vprStatusNullPointer);
    EXPECT_EQ(obj, sentinel);
  }
  {
    // JPEG 2000 kinds: -9 and a null pointer stored.
    vprtest::MallocFailure fail;
    uint8_t* obj = sentinel;
    EXPECT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNoMemoryStoreNull, init),
              vprStatusNoMemory);
    EXPECT_EQ(obj, nullptr);
  }
  // The double only fails the call it was asked to.
  uint8_t* obj = nullptr;
  EXPECT_EQ(vpr::state_init_alloc(&obj, kSize, vpr::AllocFailure::kNullPointerKeep, init), vprStatusOk);
  vpr::state_free(obj);
}

TEST(State, TagCheck) {
  uint32_t obj[4] = {0x4A32424Bu, 0, 0, 0};
  EXPECT_TRUE(vpr::state_has_tag(obj, 0x4A32424Bu));
  EXPECT_FALSE(vpr::state_has_tag(obj, 0x4A32424Cu));
}

TEST(Core, MallocAlignmentAndThreadCount) {
  for (size_t n : {1u, 7u, 64u, 1000u, 1u << 20}) {
    void* p = vprMalloc(n);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % VPRCORE_ALIGNMENT, 0u);
    std::memset(p, 0, n);
    vprFree(p);
  }
  EXPECT_EQ(vprMalloc(0), nullptr);
  vprFree(nullptr);
  const int def = ownGetNumThreads();
  EXPECT_GE(def, 1);
  EXPECT_EQ(vprSetNumThreads(3), 3);
  EXPECT_EQ(ownGetNumThreads(), 3);
  EXPECT_EQ(vprGetNumThreads(), 3);
  EXPECT_EQ(vprSetNumThreads(0), def);
  EXPECT_EQ(vprSetNumThreads(-5), def);
}
