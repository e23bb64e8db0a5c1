/* vprjp_dds: compresses an RGB image to a DXT1 .dds file with vprJP, and
 * optionally writes the texture decoded back by vprJP as a PPM.
 *
 *   vprjp_dds [-d decoded.ppm] INPUT OUTPUT.dds
 *
 * INPUT is a binary PPM (P6, maxval 255) or "pattern:WxH", a generated test
 * card: red, green and blue quadrants on top and bottom-left, a grey ramp
 * bottom-right.  Any size works; partial edge blocks are coded by the
 * library's edge rule.  Exit status 0 on success. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vprjp.h"

static int fail(const char* what) {
  fprintf(stderr, "vprjp_dds: %s\n", what);
  return 1;
}

static void put32(uint8_t* p, uint32_t v) {
  p[0] = (uint8_t)v;
  p[1] = (uint8_t)(v >> 8);
  p[2] = (uint8_t)(v >> 16);
  p[3] = (uint8_t)(v >> 24);
}

/* Skips blanks and '#' comments of a PPM header, then reads an integer. */
static int ppm_int(FILE* f, int* v) {
  int c = fgetc(f);
  for (;;) {
    while (c == ' ' || c == '\t' || c == '\n' || c == '\r') c = fgetc(f);
    if (c != '#') break;
    while (c != '\n' && c != EOF) c = fgetc(f);
  }
  if (c < '0' || c > '9') return 0;
  *v = 0;
  while (c >= '0' && c <= '9') {
    if (*v > 100000) return 0;
    *v = *v * 10 + (c - '0');
    c = fgetc(f);
  }
  return 1; /* the single blank after the integer has been consumed */
}

/* Loads a P6 PPM into RGBA (alpha 255). */
static uint8_t* load_ppm(const char* path, int* w, int* h) {
  FILE* f = fopen(path, "rb");
  int maxval;
  uint8_t* rgba = NULL;
  if (!f) return NULL;
  if (fgetc(f) == 'P' && fgetc(f) == '6' && ppm_int(f, w) && ppm_int(f, h) && ppm_int(f, &maxval) &&
      maxval == 255 && *w > 0 && *h > 0) {
    const size_t n = (size_t)*w * (size_t)*h;
    rgba = (uint8_t*)malloc(4 * n);
    if (rgba) {
      size_t i;
      for (i = 0; i < n; ++i) {
        if (fread(rgba + 4 * i, 1, 3, f) != 3) break;
        rgba[4 * i + 3] = 255;
      }
      if (i != n) {
        free(rgba);
        rgba = NULL;
      }
    }
  }
  fclose(f);
  return rgba;
}

static uint8_t* make_pattern(int w, int h) {
  uint8_t* rgba = (uint8_t*)malloc(4 * (size_t)w * (size_t)h);
  int x, y;
  if (!rgba) return NULL;
  for (y = 0; y < h; ++y)
    for (x = 0; x < w; ++x) {
      uint8_t* p = rgba + 4 * ((size_t)y * w + x);
      const int right = 2 * x >= w, bottom = 2 * y >= h;
      if (!bottom && !right) p[0] = 220, p[1] = 30, p[2] = 30;
      else if (!bottom) p[0] = 30, p[1] = 200, p[2] = 40;
      else if (!right) p[0] = 20, p[1] = 40, p[2] = 210;
      else {
        const int v = w > 1 ? 255 * x / (w - 1) : 255;
        p[0] = p[1] = p[2] = (uint8_t)v;
      }
      p[3] = 255;
    }
  return rgba;
}

static int write_dds(const char* path, int w, int h, const uint8_t* blocks, size_t size) {
  uint8_t hdr[128];
  FILE* f;
  int ok;
  memset(hdr, 0, sizeof hdr);
  memcpy(hdr, "DDS ", 4);
  put32(hdr + 4, 124);                             /* header size */
  put32(hdr + 8, 0x1 | 0x2 | 0x4 | 0x1000 | 0x80000); /* caps, height, width, pixel format, linear size */
  put32(hdr + 12, (uint32_t)h);
  put32(hdr + 16, (uint32_t)w);
  put32(hdr + 20, (uint32_t)size);                 /* linear size of the top level */
  put32(hdr + 76, 32);                             /* pixel format size */
  put32(hdr + 80, 0x4);                            /* four-character code follows */
  memcpy(hdr + 84, "DXT1", 4);
  put32(hdr + 108, 0x1000);                        /* a plain texture */
  f = fopen(path, "wb");
  if (!f) return 0;
  ok = fwrite(hdr, 1, sizeof hdr, f) == sizeof hdr && fwrite(blocks, 1, size, f) == size;
  return fclose(f) == 0 && ok;
}

static int write_ppm(const char* path, int w, int h, const uint8_t* rgba) {
  FILE* f = fopen(path, "wb");
  size_t i, n = (size_t)w * (size_t)h;
  int ok;
  if (!f) return 0;
  ok = fprintf(f, "P6\n%d %d\n255\n", w, h) > 0;
  for (i = 0; ok && i < n; ++i) ok = fwrite(rgba + 4 * i, 1, 3, f) == 3;
  return fclose(f) == 0 && ok;
}

int main(int argc, char** argv) {
  const char* decoded = NULL;
  int w = 0, h = 0, a = 1;
  uint8_t *rgba, *blocks, *back;
  size_t size;
  VprRoiSize roi;
  if (argc > 2 && strcmp(argv[1], "-d") == 0) decoded = argv[2], a = 3;
  if (argc - a != 2) {
    fprintf(stderr, "usage: vprjp_dds [-d decoded.ppm] INPUT.ppm|pattern:WxH OUTPUT.dds\n");
    return 2;
  }
  if (strncmp(argv[a], "pattern:", 8) == 0) {
    if (sscanf(argv[a] + 8, "%dx%d", &w, &h) != 2 || w < 1 || h < 1 || w > 16384 || h > 16384)
      return fail("bad pattern size");
    rgba = make_pattern(w, h);
  } else {
    rgba = load_ppm(argv[a], &w, &h);
  }
  if (!rgba) return fail("cannot read the input image (binary PPM, maxval 255)");

  size = 8 * (size_t)((w + 3) / 4) * (size_t)((h + 3) / 4);
  blocks = (uint8_t*)malloc(size);
  if (!blocks) return fail("out of memory");
  roi.width = w;
  roi.height = h;
  if (vpriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(rgba, 4 * w, roi, blocks) != vprStatusOk)
    return fail("encoding failed");
  if (!write_dds(argv[a + 1], w, h, blocks, size)) return fail("cannot write the .dds file");
  if (decoded) {
    back = (uint8_t*)malloc(4 * (size_t)w * (size_t)h);
    if (!back) return fail("out of memory");
    if (vpriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(blocks, back, 4 * w, roi) != vprStatusOk)
      return fail("decoding failed");
    if (!write_ppm(decoded, w, h, back)) return fail("cannot write the decoded image");
    free(back);
  }
  printf("%s: %dx%d, %zu bytes of DXT1 blocks\n", argv[a + 1], w, h, size);
  free(blocks);
  free(rgba);
  return 0;
}
