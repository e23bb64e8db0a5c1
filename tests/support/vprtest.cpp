#include "vprtest.h"

#include "vprcore.h"

namespace vprtest {

std::vector<Geometry> geometries(int max_height) {
  std::vector<Geometry> out;
  int i = 0;
  auto add = [&](int w, int h) {
    // Rotate through padding and misalignment so each width meets several.
    static const int pads[] = {0, 3, 16, 1, 64, 7};
    static const int mis[] = {0, 1, 3, 8, 15, 2, 5};
    out.push_back({w, h, pads[i % 6], mis[i % 7]});
    ++i;
  };
  for (int w = 1; w <= 40; ++w) add(w, 1 + (w % max_height));
  for (int r = 0; r < 16; ++r) add(64 + r, 1 + (r % 3));
  for (int r = 0; r < 16; ++r) add(112 + r, 2);
  for (int w : {255, 256, 257, 641, 1023, 1031}) add(w, 3);
  for (int h = 1; h <= max_height; ++h) add(17, h);
  return out;
}

std::vector<Geometry> large_geometries() {
  return {{1920, 64, 0, 0}, {1921, 33, 5, 3}, {4096, 3, 0, 1}, {8192, 1, 0, 0},
          {8193, 1, 32, 7}, {91, 91, 1, 2}, {128, 64, 0, 0}, {129, 64, 16, 9}};
}

ThreadCount::ThreadCount(int n) { vprSetNumThreads(n); }
ThreadCount::~ThreadCount() { vprSetNumThreads(0); }

}  // namespace vprtest
