// Benchmark helpers: every benchmark states its unit.
//   set_mpix(state, pixels)   "MPix/s"  — pixels processed per iteration
//   set_bytes(state, bytes)   "bytes_per_second" (shown as GB/s etc.)
//   set_ns_per_block(state, blocks)  "ns/block"
//   set_items(state, n, name) "<name>/s" — e.g. decisions, samples, blocks
// Peers (libjpeg-turbo, stb_dxt, libsquish, ...) are benchmarked in the same
// binary on the same input, under names "<Family>/<Op>/<who>", so the ratio
// can be read off one run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

namespace vprbench {

inline void set_mpix(benchmark::State& s, double pixels_per_iter) {
  s.counters["MPix/s"] = benchmark::Counter(pixels_per_iter * static_cast<double>(s.iterations()) / 1e6,
                                            benchmark::Counter::kIsRate);
}
inline void set_bytes(benchmark::State& s, double bytes_per_iter) {
  s.SetBytesProcessed(static_cast<int64_t>(bytes_per_iter * static_cast<double>(s.iterations())));
}
inline void set_ns_per_block(benchmark::State& s, double blocks_per_iter) {
  s.counters["ns/block"] = benchmark::Counter(blocks_per_iter * static_cast<double>(s.iterations()) / 1e9,
                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
inline void set_items(benchmark::State& s, double items_per_iter, const char* name) {
  s.counters[name] = benchmark::Counter(items_per_iter * static_cast<double>(s.iterations()),
                                        benchmark::Counter::kIsRate);
}

// Deterministic test image: smooth gradients plus mild noise (compresses
// like a photograph, not like white noise).  Interleaved, `channels` bytes
// per pixel, rows contiguous.
inline std::vector<uint8_t> photo_like(int width, int height, int channels, uint32_t seed = 1) {
  std::vector<uint8_t> img(static_cast<size_t>(width) * height * channels);
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> noise(-6, 6);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (int c = 0; c < channels; ++c) {
        const int base = (x * (c + 1) * 255 / (width + 1) + y * (3 - c) * 255 / (height + 1)) / 2;
        const int wave = ((x / 37 + y / 23 + c) & 1) ? 20 : -20;
        int v = base + wave + noise(rng);
        img[(static_cast<size_t>(y) * width + x) * channels + c] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
      }
  return img;
}

// Sets the library's thread count for one benchmark (0 = default: all).
void use_threads(int n);

}  // namespace vprbench
