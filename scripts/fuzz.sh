#!/bin/sh
# scripts/fuzz.sh [seconds]: builds the diag statistics dispatch fuzz target
# with clang's libFuzzer, AddressSanitizer and UBSan in build-fuzz, and runs
# it for the given time (default 20 s) from the seed corpus.  Exits non-zero
# when the fuzzer found a crash; the input is left in build-fuzz/artifacts.
# Aborts the code is required to make are listed in docs/modem_stats_fuzz.md.
set -e
secs="${1:-20}"
cd "$(dirname "$0")/.."
dir=build-fuzz
if [ ! -f "$dir/CMakeCache.txt" ]; then
    CC=clang-14 CXX=clang++-14 cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DRLK_SANITIZE=ON -DRLK_FUZZ=ON \
        -DCMAKE_C_FLAGS=-fsanitize=fuzzer-no-link -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >&2
fi
cmake --build "$dir" -j2 --target fuzz_stats_dispatch >&2
mkdir -p "$dir/corpus/stats_dispatch" "$dir/artifacts"
# Standard output carries the parsers' lines: closed (-close_fd_mask=1).
UBSAN_OPTIONS=abort_on_error=1:print_stacktrace=1 \
    "$dir/tests/fuzz/fuzz_stats_dispatch" -max_total_time="$secs" -close_fd_mask=1 \
    -artifact_prefix="$dir/artifacts/" "$dir/corpus/stats_dispatch" tests/fuzz/corpus/stats_dispatch
