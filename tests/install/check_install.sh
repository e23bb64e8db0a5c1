#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds a C program against it
# twice: with find_package(vprjp) and with pkg-config.  Runs both.
set -euo pipefail
build="$1"; here="$2"
work=$(mktemp -d); trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" > "$work/install.log"
mkdir -p "$work/src"
cp "$here/consumer.c" "$work/src/"
cp "$here/CMakeLists.txt.consumer" "$work/src/CMakeLists.txt"
cmake -S "$work/src" -B "$work/cm" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" > "$work/cm.log"
cmake --build "$work/cm" > "$work/cmb.log"
LD_LIBRARY_PATH="$work/prefix/lib" "$work/cm/consumer"
libdir=$(ls -d "$work"/prefix/lib*/pkgconfig | head -1)
export PKG_CONFIG_PATH="$libdir"
cc -std=c99 -Wall -Werror "$here/consumer.c" -o "$work/pc_consumer" $(pkg-config --cflags --libs vprjp)
LD_LIBRARY_PATH="$(dirname "$libdir")" "$work/pc_consumer"
echo "installed package consumed through CMake and pkg-config"
