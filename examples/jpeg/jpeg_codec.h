// A small baseline JFIF codec built on vprJP.
//
// All numeric work (colour conversion and chroma sampling per MCU, level
// shift, DCT and quantisation, Huffman table building and block coding)
// is done by the library's exported functions; this code handles only the
// file format: markers, headers, tables, restart intervals and the padding
// of partial MCUs at the right and bottom edges.
//
// Encoder: greyscale or RGB, 4:4:4, 4:2:2 or 4:2:0, quality 1..100 with the
// standard tables, optional optimised Huffman tables, optional restart
// interval.  Decoder: baseline (and 8-bit extended) sequential Huffman
// JPEG, one interleaved scan, greyscale or YCbCr at 4:4:4, 4:2:2 or 4:2:0,
// restart markers.  Progressive, arithmetic-coded, lossless, hierarchical
// and 12-bit files are reported as unsupported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vprjpeg {

enum class Sampling { k444, k422, k420 };

struct EncodeOptions {
  int quality = 90;                    // 1..100
  Sampling sampling = Sampling::k420;  // ignored for greyscale images
  bool optimize_huffman = false;       // two passes: tables fitted to the image
  int restart_interval = 0;            // MCUs per restart interval, 0 = none
};

struct Image {
  int width = 0, height = 0;
  int channels = 0;             // 1 (grey) or 3 (R, G, B)
  std::vector<uint8_t> pixels;  // height rows of width * channels bytes
};

// Each returns an empty string on success, otherwise a readable reason.
std::string encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg);
std::string decode(const uint8_t* data, size_t size, Image& image);
inline std::string decode(const std::vector<uint8_t>& data, Image& image) {
  return decode(data.data(), data.size(), image);
}

// Binary PPM (P6) / PGM (P5) with maxval 255.
std::string read_pnm(const std::string& path, Image& image);
std::string write_pnm(const std::string& path, const Image& image);
std::string read_file(const std::string& path, std::vector<uint8_t>& bytes);
std::string write_file(const std::string& path, const std::vector<uint8_t>& bytes);

// Peak signal-to-noise ratio in dB over all samples (99 when identical).
double psnr(const Image& a, const Image& b);

}  // namespace vprjpeg
