// The row-parallel policy: threshold, partition, nesting, and bit-identical
// results whatever the thread count.
#include <omp.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <vector>

#include "core/parallel.h"
#include "vprtest.h"

namespace {

// A row kernel with enough arithmetic that a wrong row mapping shows:
// dst = (3 * src + x + 7 * y) mod 256, row by row.
void mix_rows(const vprtest::Image<uint8_t>& src, vprtest::Image<uint8_t>& dst, int width, int height) {
  vpr::parallel_rows(width, height, height, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
      const uint8_t* s = src.row(y);
      uint8_t* d = dst.row(y);
      for (int x = 0; x < width; ++x) d[x] = static_cast<uint8_t>(3 * s[x] + x + 7 * y);
    }
  });
}

struct Record {
  std::vector<int> thread_of_row;
  std::vector<int> calls_of_row;
  int calls = 0;
};

Record record_rows(int width, int height, int rows) {
  Record r;
  r.thread_of_row.assign(rows, -1);
  r.calls_of_row.assign(rows, 0);
  std::atomic<int> calls{0};
  vpr::parallel_rows(width, height, rows, [&](int y0, int y1) {
    ++calls;
    for (int y = y0; y < y1; ++y) {
      r.thread_of_row[y] = omp_get_thread_num() + (omp_in_parallel() ? 1000 : 0);
      r.calls_of_row[y]++;
    }
  });
  r.calls = calls.load();
  return r;
}

}  // namespace

TEST(Parallel, RowBlocksAreContiguousAndBalanced) {
  for (int rows : {1, 2, 7, 64, 1000, 1001}) {
    for (int n : {1, 2, 3, 8, 13, 2000}) {
      int next = 0, minb = rows, maxb = 0;
      for (int t = 0; t < n; ++t) {
        int a, b;
        vpr::parallel_row_block(rows, t, n, &a, &b);
        EXPECT_EQ(a, next) << rows << " rows, " << n << " threads";
        next = b;
        minb = std::min(minb, b - a);
        maxb = std::max(maxb, b - a);
      }
      EXPECT_EQ(next, rows);
      EXPECT_LE(maxb - minb, 1);
    }
  }
}

TEST(Parallel, AtMost8192SamplesRunsSeriallyInOneCall) {
  vprtest::ThreadCount tc(4);
  for (auto [w, h] : {std::pair{8192, 1}, {4096, 2}, {64, 128}, {1, 8192}, {1, 1}}) {
    const Record r = record_rows(w, h, h);
    EXPECT_EQ(r.calls, 1) << w << "x" << h;
    for (int t : r.thread_of_row) EXPECT_EQ(t, 0);  // calling thread, no region
  }
}

TEST(Parallel, Above8192SamplesSplitsRowsOverTheThreads) {
  vprtest::ThreadCount tc(4);
  const Record r = record_rows(8193, 8, 8);
  EXPECT_EQ(r.calls, 4);
  for (int y = 0; y < 8; ++y) {
    EXPECT_EQ(r.calls_of_row[y], 1);
    EXPECT_EQ(r.thread_of_row[y], 1000 + y / 2);  // thread t takes rows 2t, 2t+1
  }
  // More threads than rows: every row exactly once, idle threads skip.
  vprtest::ThreadCount many(16);
  const Record m = record_rows(9000, 3, 3);
  EXPECT_EQ(m.calls, 3);
  for (int y = 0; y < 3; ++y) EXPECT_EQ(m.calls_of_row[y], 1);
  // A sampling function's output rows differ from the image height.
  const Record s = record_rows(200, 100, 50);
  for (int y = 0; y < 50; ++y) EXPECT_EQ(s.calls_of_row[y], 1);
}

TEST(Parallel, InsideAParallelRegionStaysSerial) {
  vprtest::ThreadCount tc(4);
  std::vector<int> calls(2, 0);
#pragma omp parallel num_threads(2)
  {
    const Record r = record_rows(100000, 64, 64);
    calls[omp_get_thread_num()] = r.calls;
  }
  EXPECT_EQ(calls[0], 1);
  EXPECT_EQ(calls[1], 1);
}

TEST(Parallel, SameBitsSeriallyAndWithAnyThreadCount) {
  vprtest::Rng rng(7);
  // 8192 samples (serial) and 8193 (parallel), and larger padded/misaligned
  // images; 1, 2 and more threads than rows.
  std::vector<vprtest::Geometry> cases = {{8192, 1, 0, 0}, {8193, 1, 0, 3}, {4096, 2, 5, 1},
                                          {2731, 3, 0, 0}, {8193, 2, 9, 7}};
  for (const auto& g : vprtest::large_geometries()) cases.push_back(g);
  for (const auto& g : cases) {
    SCOPED_TRACE(g.str());
    vprtest::Image<uint8_t> src(g.width, g.height, g.pad, g.misalign);
    src.fill_random(rng);
    vprtest::Image<uint8_t> ref(g.width, g.height, g.pad, g.misalign + 1);
    {
      vprtest::ThreadCount one(1);
      mix_rows(src, ref, g.width, g.height);
    }
    for (int threads : {1, 2, 3, g.height + 5}) {
      vprtest::ThreadCount tc(threads);
      vprtest::Image<uint8_t> out(g.width, g.height, g.pad, g.misalign + 1);
      mix_rows(src, out, g.width, g.height);
      EXPECT_TRUE(vprtest::same_region(ref, out)) << threads << " threads";
      EXPECT_TRUE(vprtest::guards_ok(out));
    }
  }
}
