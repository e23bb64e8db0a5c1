#!/usr/bin/env bash
# The main job: builds the library (Release) and runs the JPEG demo.
#   tools/demo.sh [image.ppm|image.pgm|image.jpg] [-q quality] [-s 444|422|420] [-O] [-r mcus]
# Without an image a built-in test picture is encoded with the example codec
# built on vprJP (examples/jpeg), decoded back, written to
# build/release/vprjp_demo.jpg, and compared with libjpeg-turbo.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install_deps.sh
cmake --preset release > /dev/null
cmake --build --preset release --target vprjp_demo
build/release/examples/jpeg/vprjp_demo -o build/release/vprjp_demo.jpg "$@"
