#!/usr/bin/env bash
# The main job: builds the library (Release) and runs the demo.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install_deps.sh
cmake --preset release > /dev/null
cmake --build --preset release --target vprjp_version vprjp_bench
build/release/examples/vprjp_version
echo
echo "Benchmarks (short run):"
build/release/bench/vprjp_bench --benchmark_min_time=0.1 "$@"
