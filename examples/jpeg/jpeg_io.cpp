// Image and file I/O of the example codec: binary PPM/PGM and whole files.
#include <cmath>
#include <cstdio>
#include <memory>

#include "jpeg_codec.h"

namespace vprjpeg {
namespace {

struct FileClose {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileClose>;

// Next header integer of a PNM file, skipping blanks and # comments.
bool pnm_int(std::FILE* f, int& v) {
  int c = std::fgetc(f);
  for (;;) {
    if (c == '#') {
      while (c != EOF && c != '\n') c = std::fgetc(f);
    } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      c = std::fgetc(f);
    } else {
      break;
    }
  }
  if (c < '0' || c > '9') return false;
  long x = 0;
  while (c >= '0' && c <= '9') {
    x = x * 10 + (c - '0');
    if (x > 1000000) return false;
    c = std::fgetc(f);
  }
  v = static_cast<int>(x);
  return true;  // the one blank after the number has been consumed
}

}  // namespace

std::string read_pnm(const std::string& path, Image& image) {
  File f(std::fopen(path.c_str(), "rb"));
  if (!f) return "cannot open " + path;
  char magic[2];
  if (std::fread(magic, 1, 2, f.get()) != 2 || magic[0] != 'P' || (magic[1] != '5' && magic[1] != '6'))
    return path + ": not a binary PPM (P6) or PGM (P5) file";
  int w = 0, h = 0, maxval = 0;
  if (!pnm_int(f.get(), w) || !pnm_int(f.get(), h) || !pnm_int(f.get(), maxval)) return path + ": bad PNM header";
  if (w < 1 || h < 1 || w > 65535 || h > 65535) return path + ": unsupported image size";
  if (maxval != 255) return path + ": only 8-bit PNM files (maxval 255) are supported";
  image.width = w, image.height = h, image.channels = magic[1] == '6' ? 3 : 1;
  image.pixels.resize(static_cast<size_t>(w) * h * image.channels);
  if (std::fread(image.pixels.data(), 1, image.pixels.size(), f.get()) != image.pixels.size())
    return path + ": truncated PNM file";
  return {};
}

std::string write_pnm(const std::string& path, const Image& image) {
  File f(std::fopen(path.c_str(), "wb"));
  if (!f) return "cannot create " + path;
  std::fprintf(f.get(), "P%c\n%d %d\n255\n", image.channels == 3 ? '6' : '5', image.width, image.height);
  if (std::fwrite(image.pixels.data(), 1, image.pixels.size(), f.get()) != image.pixels.size())
    return "cannot write " + path;
  return {};
}

std::string read_file(const std::string& path, std::vector<uint8_t>& bytes) {
  File f(std::fopen(path.c_str(), "rb"));
  if (!f) return "cannot open " + path;
  bytes.clear();
  uint8_t buf[65536];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f.get())) > 0) bytes.insert(bytes.end(), buf, buf + n);
  return {};
}

std::string write_file(const std::string& path, const std::vector<uint8_t>& bytes) {
  File f(std::fopen(path.c_str(), "wb"));
  if (!f) return "cannot create " + path;
  if (std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) return "cannot write " + path;
  return {};
}

double psnr(const Image& a, const Image& b) {
  if (a.pixels.size() != b.pixels.size() || a.pixels.empty()) return 0.0;
  double se = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    const double d = double(a.pixels[i]) - double(b.pixels[i]);
    se += d * d;
  }
  if (se == 0) return 99.0;
  return 10.0 * std::log10(255.0 * 255.0 * double(a.pixels.size()) / se);
}

}  // namespace vprjpeg
