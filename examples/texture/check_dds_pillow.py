#!/usr/bin/env python3
"""Writes DXT1 .dds files with vprjp_dds and opens them with Pillow's DDS
reader: the size must match, the test card's colours must come back close to
the originals, and Pillow's pixels must equal vprJP's own decoding.

    check_dds_pillow.py VPRJP_DDS WORKDIR
"""
import os
import subprocess
import sys

from PIL import Image


def read_ppm(path):
    with open(path, "rb") as f:
        data = f.read()
    parts = data.split(maxsplit=4)
    assert parts[0] == b"P6" and parts[3] == b"255", "not a P6 PPM"
    w, h = int(parts[1]), int(parts[2])
    return w, h, parts[4][: 3 * w * h]


def check(tool, workdir, w, h):
    dds = os.path.join(workdir, "card_%dx%d.dds" % (w, h))
    ppm = os.path.join(workdir, "card_%dx%d.ppm" % (w, h))
    subprocess.run([tool, "-d", ppm, "pattern:%dx%d" % (w, h), dds], check=True)
    im = Image.open(dds)
    im.load()
    assert im.size == (w, h), "size %r, expected %r" % (im.size, (w, h))
    rgb = im.convert("RGB")
    if min(w, h) >= 16:
        check_colours(rgb, w, h)
    # Pillow reads exactly what vprJP decodes.
    pw, ph, ours = read_ppm(ppm)
    assert (pw, ph) == (w, h)
    assert rgb.tobytes() == ours, "Pillow's pixels differ from vprJP's decoding"
    print("%s: %dx%d opened by Pillow, pixels agree with vprJP's decoding" % (dds, w, h))


def check_colours(rgb, w, h):
    # Quadrant centres of the test card.
    expected = {
        (w // 4, h // 4): (220, 30, 30),
        (3 * w // 4, h // 4): (30, 200, 40),
        (w // 4, 3 * h // 4): (20, 40, 210),
    }
    for (x, y), want in expected.items():
        got = rgb.getpixel((x, y))
        assert all(abs(g - e) <= 10 for g, e in zip(got, want)), "pixel %r: %r, expected about %r" % (
            (x, y), got, want)
    ramp = [rgb.getpixel((x, 3 * h // 4))[0] for x in range(w // 2 + 4, w, 4)]
    assert ramp == sorted(ramp), "grey ramp not increasing: %r" % ramp


def main():
    tool, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    for w, h in ((64, 32), (70, 45), (5, 5)):
        check(tool, workdir, w, h)
    # A PPM as input (with a comment in its header): the decoded card.
    src = os.path.join(workdir, "input.ppm")
    w, h, pixels = read_ppm(os.path.join(workdir, "card_70x45.ppm"))
    with open(src, "wb") as f:
        f.write(b"P6\n# test card\n%d %d\n255\n" % (w, h) + pixels)
    dds = os.path.join(workdir, "input.dds")
    subprocess.run([tool, src, dds], check=True)
    im = Image.open(dds)
    im.load()
    assert im.size == (w, h)
    check_colours(im.convert("RGB"), w, h)


if __name__ == "__main__":
    main()
