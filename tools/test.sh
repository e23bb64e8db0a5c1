#!/usr/bin/env bash
# The whole test suite: installs missing Debian packages, builds the Release
# and the ASan+UBSan configurations, and runs every test of both with CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install_deps.sh
cmake --preset release > /dev/null
cmake --build --preset release
cmake --preset asan > /dev/null
cmake --build --preset asan
echo "=== Release tests"
ctest --preset release
echo "=== ASan + UBSan tests"
ctest --preset asan
