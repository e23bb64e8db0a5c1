// vprjp_demo: encodes an image with the example codec built on vprJP,
// decodes it back, writes the .jpg, and compares size, PSNR and speed with
// libjpeg-turbo (TurboJPEG) on the same image.
//
//   vprjp_demo [image.ppm|image.pgm|image.jpg] [-q quality] [-s 444|422|420]
//              [-O] [-r restart_mcus] [-o out.jpg]
//
// Without an image a built-in test picture (1920x1080) is used.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "jpeg_codec.h"
#include "vprjp.h"

#if VPR_HAVE_TURBOJPEG
#include <turbojpeg.h>
#endif

namespace {

using vprjpeg::Image;
using vprjpeg::Sampling;

// A synthetic scene: sky gradient, a sun, rolling hills with texture,
// sharp-edged bars and a colour checker, plus mild noise.
Image builtin_image(int w, int h) {
  Image img;
  img.width = w, img.height = h, img.channels = 3;
  img.pixels.resize(static_cast<size_t>(w) * h * 3);
  uint32_t seed = 12345;
  auto noise = [&seed]() {
    seed = seed * 1664525u + 1013904223u;
    return static_cast<int>((seed >> 24) % 9) - 4;
  };
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const double fx = double(x) / w, fy = double(y) / h;
      double r = 90 + 100 * fy, g = 140 + 80 * fy, b = 235 - 40 * fy;  // sky
      const double dx = fx - 0.75, dy = fy - 0.22;
      if (dx * dx * 3.2 + dy * dy < 0.006) r = 255, g = 236, b = 150;  // sun
      const double hill = 0.62 + 0.08 * std::sin(fx * 9.0) + 0.03 * std::sin(fx * 31.0 + 1.0);
      if (fy > hill) {  // grass with texture
        const double t = std::sin(x * 0.9) * std::sin(y * 1.3) * 18 + std::sin(x * 0.07 + y * 0.05) * 25;
        r = 60 + t + 40 * (fy - hill), g = 130 + t, b = 50 + t * 0.5;
      }
      if (fy > 0.30 && fy < 0.55 && fx > 0.08 && fx < 0.40) {  // bars and checker
        const int cx = static_cast<int>((fx - 0.08) * 40), cy = static_cast<int>((fy - 0.30) * 40);
        if (fx < 0.22) {
          const bool on = ((x / 3) % 4) == 0;
          r = g = b = on ? 20 : 235;
        } else {
          static const int pal[6][3] = {{220, 40, 40}, {40, 200, 60}, {40, 70, 220},
                                        {230, 210, 40}, {200, 60, 200}, {40, 200, 210}};
          const int* c = pal[(cx + cy) % 6];
          r = c[0], g = c[1], b = c[2];
        }
      }
      uint8_t* p = &img.pixels[(static_cast<size_t>(y) * w + x) * 3];
      const double v[3] = {r, g, b};
      for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(std::clamp(static_cast<int>(v[c]) + noise(), 0, 255));
    }
  return img;
}

// Best wall time in seconds of fn() over repeated runs (at least 3 runs and
// about 0.3 s in total).
double best_time(const std::function<void()>& fn) {
  using clock = std::chrono::steady_clock;
  double best = 1e30, total = 0;
  for (int i = 0; i < 3 || (total < 0.3 && i < 200); ++i) {
    const auto t0 = clock::now();
    fn();
    const double s = std::chrono::duration<double>(clock::now() - t0).count();
    best = std::min(best, s);
    total += s;
  }
  return best;
}

const char* sampling_name(Sampling s) { return s == Sampling::k444 ? "4:4:4" : s == Sampling::k422 ? "4:2:2" : "4:2:0"; }

struct Row {
  size_t bytes = 0;
  double psnr = 0, enc_mpix = 0, dec_mpix = 0;
};

Row run_ours(const Image& img, const vprjpeg::EncodeOptions& opt, std::vector<uint8_t>& jpeg, Image& back) {
  Row r;
  std::string err = vprjpeg::encode(img, opt, jpeg);
  if (!err.empty()) {
    std::fprintf(stderr, "encode: %s\n", err.c_str());
    std::exit(1);
  }
  err = vprjpeg::decode(jpeg, back);
  if (!err.empty()) {
    std::fprintf(stderr, "decode: %s\n", err.c_str());
    std::exit(1);
  }
  const double mpix = double(img.width) * img.height / 1e6;
  std::vector<uint8_t> tmp;
  Image tmpi;
  r.enc_mpix = mpix / best_time([&] { vprjpeg::encode(img, opt, tmp); });
  r.dec_mpix = mpix / best_time([&] { vprjpeg::decode(jpeg, tmpi); });
  r.bytes = jpeg.size();
  r.psnr = vprjpeg::psnr(img, back);
  return r;
}

#if VPR_HAVE_TURBOJPEG
int tj_samp(const Image& img, Sampling s) {
  if (img.channels == 1) return TJSAMP_GRAY;
  return s == Sampling::k444 ? TJSAMP_444 : s == Sampling::k422 ? TJSAMP_422 : TJSAMP_420;
}

Row run_turbo(const Image& img, const vprjpeg::EncodeOptions& opt, double* cross_psnr, const std::vector<uint8_t>& ours) {
  Row r;
  tjhandle c = tjInitCompress(), d = tjInitDecompress();
  const int pf = img.channels == 3 ? TJPF_RGB : TJPF_GRAY;
  const int flags = 0;  // defaults: accurate integer DCT, fancy upsampling
  std::vector<uint8_t> buf(tjBufSize(img.width, img.height, tj_samp(img, opt.sampling)));
  unsigned long size = 0;
  auto compress = [&] {
    unsigned char* p = buf.data();
    size = buf.size();
    if (tjCompress2(c, img.pixels.data(), img.width, 0, img.height, pf, &p, &size, tj_samp(img, opt.sampling),
                    opt.quality, flags | TJFLAG_NOREALLOC) != 0) {
      std::fprintf(stderr, "TurboJPEG: %s\n", tjGetErrorStr2(c));
      std::exit(1);
    }
  };
  compress();
  Image back = img;
  auto decompress = [&](const uint8_t* j, size_t n, Image& out) {
    if (tjDecompress2(d, j, n, out.pixels.data(), img.width, 0, img.height, pf, 0) != 0) {
      std::fprintf(stderr, "TurboJPEG: %s\n", tjGetErrorStr2(d));
      std::exit(1);
    }
  };
  decompress(buf.data(), size, back);
  const double mpix = double(img.width) * img.height / 1e6;
  r.enc_mpix = mpix / best_time(compress);
  Image tmp = img;
  r.dec_mpix = mpix / best_time([&] { decompress(buf.data(), size, tmp); });
  r.bytes = size;
  r.psnr = vprjpeg::psnr(img, back);
  Image cross = img;
  decompress(ours.data(), ours.size(), cross);
  *cross_psnr = vprjpeg::psnr(img, cross);
  tjDestroy(c);
  tjDestroy(d);
  return r;
}
#endif

void usage() {
  std::fprintf(stderr,
               "usage: vprjp_demo [image.ppm|image.pgm|image.jpg] [-q quality] [-s 444|422|420] [-O]\n"
               "                  [-r restart_mcus] [-o out.jpg]\n");
  std::exit(2);
}

}  // namespace

int main(int argc, char** argv) {
  vprjpeg::EncodeOptions opt;
  std::string in, out = "vprjp_demo.jpg";
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) usage();
      return argv[++i];
    };
    if (a == "-q") opt.quality = std::atoi(value().c_str());
    else if (a == "-s") {
      const std::string s = value();
      opt.sampling = s == "444" ? Sampling::k444 : s == "422" ? Sampling::k422 : s == "420" ? Sampling::k420 : (usage(), Sampling::k420);
    } else if (a == "-O") opt.optimize_huffman = true;
    else if (a == "-r") opt.restart_interval = std::atoi(value().c_str());
    else if (a == "-o") out = value();
    else if (a == "-h" || a == "--help" || a[0] == '-') usage();
    else in = a;
  }

  const VprLibraryVersion* v = vprjGetLibVersion();
  std::printf("vprJP %s: baseline JPEG codec demo (examples/jpeg)\n\n", v->versionText);
  Image img;
  if (in.empty()) {
    img = builtin_image(1920, 1080);
    std::printf("image     built-in test picture, %dx%d RGB\n", img.width, img.height);
  } else {
    std::string err;
    const size_t dot = in.rfind('.');
    const std::string ext = dot == std::string::npos ? "" : in.substr(dot + 1);
    if (ext == "jpg" || ext == "jpeg" || ext == "JPG") {
      std::vector<uint8_t> bytes;
      err = vprjpeg::read_file(in, bytes);
      if (err.empty()) err = vprjpeg::decode(bytes, img);
    } else {
      err = vprjpeg::read_pnm(in, img);
    }
    if (!err.empty()) {
      std::fprintf(stderr, "%s: %s\n", in.c_str(), err.c_str());
      return 1;
    }
    std::printf("image     %s, %dx%d %s\n", in.c_str(), img.width, img.height, img.channels == 3 ? "RGB" : "grey");
  }
  std::printf("settings  quality %d, %s, %s Huffman tables, restart interval %d MCUs\n", opt.quality,
              img.channels == 3 ? sampling_name(opt.sampling) : "greyscale",
              opt.optimize_huffman ? "optimised" : "standard", opt.restart_interval);
  std::printf("timing    single thread, best of several runs\n\n");

  std::vector<uint8_t> jpeg;
  Image back;
  const Row ours = run_ours(img, opt, jpeg, back);
  if (std::string err = vprjpeg::write_file(out, jpeg); !err.empty()) {
    std::fprintf(stderr, "%s\n", err.c_str());
    return 1;
  }
  const double raw = double(img.width) * img.height;
  std::printf("%-22s %12s %8s %9s %15s %15s\n", "", "size (bytes)", "bits/px", "PSNR (dB)", "encode (MPix/s)",
              "decode (MPix/s)");
  auto print = [&](const char* who, const Row& r) {
    std::printf("%-22s %12zu %8.3f %9.2f %15.1f %15.1f\n", who, r.bytes, 8.0 * r.bytes / raw, r.psnr, r.enc_mpix,
                r.dec_mpix);
  };
  print("vprJP example codec", ours);
#if VPR_HAVE_TURBOJPEG
  double cross = 0;
  const Row tj = run_turbo(img, opt, &cross, jpeg);
  print("libjpeg-turbo (TJ)", tj);
  std::printf("\nspeed ratio (vprJP / libjpeg-turbo): encode %.2fx, decode %.2fx\n", ours.enc_mpix / tj.enc_mpix,
              ours.dec_mpix / tj.dec_mpix);
  std::printf("our file decoded by libjpeg-turbo: PSNR %.2f dB (our decoder: %.2f dB)\n", cross, ours.psnr);
  if (opt.optimize_huffman || opt.restart_interval > 0)
    std::printf("(libjpeg-turbo row: standard tables, no restart markers)\n");
  if (img.channels == 3) {
    std::printf("\nspeed by chroma sampling, quality %d (MPix/s, vprJP / libjpeg-turbo):\n", opt.quality);
    for (Sampling s : {Sampling::k444, Sampling::k422, Sampling::k420}) {
      vprjpeg::EncodeOptions o = opt;
      o.sampling = s;
      std::vector<uint8_t> j;
      Image b;
      double c = 0;
      const Row a = run_ours(img, o, j, b), t = run_turbo(img, o, &c, j);
      std::printf("  %s  encode %7.1f / %7.1f = %.2fx   decode %7.1f / %7.1f = %.2fx\n", sampling_name(s),
                  a.enc_mpix, t.enc_mpix, a.enc_mpix / t.enc_mpix, a.dec_mpix, t.dec_mpix, a.dec_mpix / t.dec_mpix);
    }
  }
#else
  std::printf("\n(libjpeg-turbo not found: no comparison)\n");
#endif
  std::printf("\nwrote %s (%zu bytes)\n", out.c_str(), jpeg.size());
  return 0;
}
