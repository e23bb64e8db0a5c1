// Test support shared by every family's tests:
//   - Rng: a seeded generator with the pickers tests need,
//   - Image<T>: a region with a byte step, padded rows, a chosen misalignment
//     and guard bytes around and between the rows, so a test can tell that a
//     kernel wrote exactly its region,
//   - geometry lists covering every width remainder of 16/8/4, odd widths,
//     padded steps and misaligned rows,
//   - comparison helpers that report the first differing sample,
//   - ThreadCount (RAII thread count) and MallocFailure (make vprMalloc fail).
//
// The SIMD-vs-scalar check of a kernel then reads:
//
//   for (const auto& g : vprtest::geometries()) {
//     SCOPED_TRACE(g.str());
//     vprtest::Image<uint8_t> src(g.width * 3, g.height, g.pad, g.misalign);
//     src.fill_random(rng);
//     vprtest::Image<uint8_t> a(g.width, g.height, g.pad, g.misalign + 1), b = a;
//     ref::kernel(src.data(), src.step(), a.data(), a.step(), g.width, g.height);
//     sse::kernel(src.data(), src.step(), b.data(), b.step(), g.width, g.height);
//     ASSERT_TRUE(vprtest::same_region(a, b));
//     ASSERT_TRUE(b.guards_intact());
//   }
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace vprtest {

// ------------------------------------------------------------------ Rng
class Rng {
 public:
  explicit Rng(uint64_t seed = 0x5eed1234abcdULL) : g_(seed) {}
  uint64_t next() { return g_(); }
  // Uniform integer in [lo, hi].
  int64_t uniform(int64_t lo, int64_t hi) {
    return std::uniform_int_distribution<int64_t>(lo, hi)(g_);
  }
  double real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g_); }
  bool coin(double p = 0.5) { return real(0.0, 1.0) < p; }
  // Any value of T (integers: full range; floats: [-1000, 1000]).
  template <class T>
  T any() {
    if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(real(-1000.0, 1000.0));
    } else {
      return static_cast<T>(uniform(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
  }
  // A width that exercises SIMD bodies and tails: mostly small, sometimes
  // a multiple of 16 plus any remainder, sometimes large.
  int pick_width(int max_large = 1000) {
    switch (uniform(0, 3)) {
      case 0: return static_cast<int>(uniform(1, 40));
      case 1: return static_cast<int>(16 * uniform(1, 8) + uniform(0, 15));
      case 2: return static_cast<int>(uniform(41, max_large));
      default: return static_cast<int>(uniform(1, 16));
    }
  }
  std::mt19937_64& engine() { return g_; }

 private:
  std::mt19937_64 g_;
};

// ------------------------------------------------------------------ Image
// A 2-D region of T with a byte step.  Layout in memory:
//   [guard 64 bytes][misalign bytes][row 0][pad][row 1][pad]...[row h-1][guard 64 bytes]
// Everything outside the rows holds a guard pattern; guards_intact()
// verifies none of it changed.  Copies keep the geometry and the bytes.
template <class T>
class Image {
 public:
  static constexpr int kGuard = 64;

  Image() = default;
  // width in T elements per row (channels included), pad_bytes extra bytes
  // per row, misalign in elements added to the 64-aligned start of row 0.
  // Rows of multi-byte samples stay aligned to the sample size (the
  // library's contract): the pad is rounded up to a multiple of sizeof(T)
  // and the misalignment is counted in elements (mod 64 bytes).
  Image(int width, int height, int pad_bytes = 0, int misalign = 0)
      : width_(width), height_(height), misalign_(static_cast<int>((misalign * sizeof(T)) % 64)) {
    pad_bytes = static_cast<int>((pad_bytes + sizeof(T) - 1) / sizeof(T) * sizeof(T));
    step_ = static_cast<int>(width * sizeof(T)) + pad_bytes;
    const size_t bytes = kGuard + misalign_ + static_cast<size_t>(step_) * (height > 0 ? height : 0) + kGuard;
    buf_.assign(bytes + 64, 0);
    base_ = align64();
    for (size_t i = 0; i < bytes; ++i) base_[i] = guard_byte(i);
  }
  Image(const Image& o) { *this = o; }
  Image& operator=(const Image& o) {
    if (this == &o) return *this;
    width_ = o.width_;
    height_ = o.height_;
    misalign_ = o.misalign_;
    step_ = o.step_;
    buf_.assign(o.buf_.size(), 0);
    base_ = align64();
    std::memcpy(base_, o.base_, total_bytes());
    return *this;
  }

  T* data() { return reinterpret_cast<T*>(base_ + kGuard + misalign_); }
  const T* data() const { return reinterpret_cast<const T*>(base_ + kGuard + misalign_); }
  int step() const { return step_; }  // bytes
  int width() const { return width_; }
  int height() const { return height_; }
  T* row(int y) { return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(data()) + static_cast<ptrdiff_t>(y) * step_); }
  const T* row(int y) const {
    return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(data()) + static_cast<ptrdiff_t>(y) * step_);
  }
  T get(int x, int y) const {
    T v;
    std::memcpy(&v, row(y) + x, sizeof v);
    return v;
  }
  void set(int x, int y, T v) { std::memcpy(row(y) + x, &v, sizeof v); }

  void fill(T v) {
    for (int y = 0; y < height_; ++y)
      for (int x = 0; x < width_; ++x) set(x, y, v);
  }
  void fill_random(Rng& r) {
    for (int y = 0; y < height_; ++y)
      for (int x = 0; x < width_; ++x) set(x, y, r.any<T>());
  }
  // Uniform integers in [lo, hi] (or reals for float T).
  void fill_random(Rng& r, double lo, double hi) {
    for (int y = 0; y < height_; ++y)
      for (int x = 0; x < width_; ++x) {
        if constexpr (std::is_floating_point_v<T>)
          set(x, y, static_cast<T>(r.real(lo, hi)));
        else
          set(x, y, static_cast<T>(r.uniform(static_cast<int64_t>(lo), static_cast<int64_t>(hi))));
      }
  }
  template <class F>
  void fill_with(F&& f) {  // f(x, y) -> T
    for (int y = 0; y < height_; ++y)
      for (int x = 0; x < width_; ++x) set(x, y, static_cast<T>(f(x, y)));
  }

  // True when no byte outside the region changed.
  bool guards_intact() const { return first_guard_damage() < 0; }
  // Offset (from the start of the guard) of the first damaged byte, or -1.
  long first_guard_damage() const {
    const size_t row_bytes = static_cast<size_t>(width_) * sizeof(T);
    const size_t start = kGuard + misalign_;
    for (size_t i = 0; i < total_bytes(); ++i) {
      bool inside = false;
      if (i >= start && height_ > 0) {
        const size_t off = i - start;
        const size_t y = off / step_;
        inside = y < static_cast<size_t>(height_) && off % step_ < row_bytes;
      }
      if (!inside && base_[i] != guard_byte(i)) return static_cast<long>(i);
    }
    return -1;
  }

 private:
  static uint8_t guard_byte(size_t i) { return static_cast<uint8_t>(0xA5 ^ (i * 29)); }
  uint8_t* align64() {
    const uintptr_t p = reinterpret_cast<uintptr_t>(buf_.data());
    return buf_.data() + ((64 - (p & 63)) & 63);
  }
  size_t total_bytes() const {
    return kGuard + misalign_ + static_cast<size_t>(step_) * (height_ > 0 ? height_ : 0) + kGuard;
  }

  int width_ = 0, height_ = 0, misalign_ = 0, step_ = 0;
  std::vector<uint8_t> buf_;
  uint8_t* base_ = nullptr;
};

// ------------------------------------------------------------------ geometry
struct Geometry {
  int width;     // samples (pixels) per row
  int height;    // rows
  int pad;       // extra bytes per row in the step
  int misalign;  // elements added to a 64-aligned first row
  std::string str() const {
    std::ostringstream s;
    s << width << "x" << height << " pad " << pad << " misalign " << misalign;
    return s.str();
  }
};

// The standard list: every width 1..40, widths 16k+r for every r in 0..15,
// a few large ones; heights 1..4 and a few more; padded and unpadded steps;
// aligned and misaligned first rows.  Deterministic.
std::vector<Geometry> geometries(int max_height = 9);
// Fewer, larger cases (e.g. for the threading path).
std::vector<Geometry> large_geometries();

// ------------------------------------------------------------------ compare
// Compares the regions of two images element by element (bitwise for floats).
template <class T>
::testing::AssertionResult same_region(const Image<T>& a, const Image<T>& b) {
  if (a.width() != b.width() || a.height() != b.height())
    return ::testing::AssertionFailure() << "geometry differs";
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const T va = a.get(x, y), vb = b.get(x, y);
      if (std::memcmp(&va, &vb, sizeof(T)) != 0)
        return ::testing::AssertionFailure()
               << "first difference at x=" << x << " y=" << y << ": " << +va << " vs " << +vb;
    }
  return ::testing::AssertionSuccess();
}

template <class T>
::testing::AssertionResult guards_ok(const Image<T>& img) {
  const long d = img.first_guard_damage();
  if (d < 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "write outside the region at guard byte offset " << d;
}

// Compares two arrays element by element.
template <class T>
::testing::AssertionResult same_array(const T* a, const T* b, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (std::memcmp(&a[i], &b[i], sizeof(T)) != 0)
      return ::testing::AssertionFailure() << "first difference at index " << i << ": " << +a[i] << " vs " << +b[i];
  return ::testing::AssertionSuccess();
}

// ------------------------------------------------------------------ environment
// Sets the library's thread count for the scope (vprSetNumThreads).
class ThreadCount {
 public:
  explicit ThreadCount(int n);
  ~ThreadCount();
  ThreadCount(const ThreadCount&) = delete;
  ThreadCount& operator=(const ThreadCount&) = delete;
};

// Makes the nth later vprMalloc call of this process fail (1 = the next
// one) for the scope; counts calls.  Works for code linked statically into
// the test and for libvprjp.so alike (the test double interposes vprMalloc).
class MallocFailure {
 public:
  explicit MallocFailure(int nth = 1);
  ~MallocFailure();
  MallocFailure(const MallocFailure&) = delete;
  MallocFailure& operator=(const MallocFailure&) = delete;
};
// Number of vprMalloc calls seen so far (failed ones included).
long malloc_calls();

}  // namespace vprtest
