#!/usr/bin/env bash
# Builds the Huffman decoder fuzzer with clang (libFuzzer + ASan + UBSan)
# from the sources it needs and runs it for a short while.
#   run_huffman_fuzz.sh <source dir> <work dir> <seconds>
# Exit 77 (skipped) when clang or libFuzzer is not available.
set -euo pipefail
src=$1
work=$2
secs=${3:-25}
cxx=${CLANG_CXX:-clang++}
command -v "$cxx" > /dev/null || { echo "no $cxx: skipped"; exit 77; }
mkdir -p "$work/corpus"
probe="$work/probe.cpp"
printf '#include <cstdint>\n#include <cstddef>\nextern "C" int LLVMFuzzerTestOneInput(const uint8_t*, size_t) { return 0; }\n' > "$probe"
if ! "$cxx" -fsanitize=fuzzer "$probe" -o "$work/probe" 2> /dev/null; then
  echo "clang without libFuzzer: skipped"
  exit 77
fi
"$cxx" -std=c++20 -O1 -g -msse4.1 -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined \
  -I "$src/include" -I "$src/src" \
  "$src/tests/fuzz/fuzz_huffman_decode.cpp" "$src/src/jpeg/huffman.cpp" "$src/src/jpeg/huffman_sse.cpp" \
  -o "$work/fuzz_huffman_decode"
# Seeds: standard-table streams of typical blocks, a marker, fill bytes.
printf '\x00\x2b\x4a\xff\x00\x12\x34' > "$work/corpus/seed_blocks"
printf '\x02\x12\xff\xd0\x56\xff\xff\xff\xd9\x00' > "$work/corpus/seed_marker"
printf '\x01\x00\x01\x05\x01\x01\x01\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x00\x02\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x01\x02\x00\x33\x77' \
  > "$work/corpus/seed_tables"
exec "$work/fuzz_huffman_decode" -max_total_time="$secs" -seed=1 -rss_limit_mb=1024 \
  -print_final_stats=1 "$work/corpus"
