#!/bin/sh
# scripts/fuzz.sh [seconds]: builds the fuzz targets (diag statistics
# dispatch, capture reader) with clang's libFuzzer, AddressSanitizer and UBSan
# in build-fuzz, and runs each for the given time (default 20 s) from its
# seed corpus.  Exits non-zero when the fuzzer found a crash; the input is
# left in build-fuzz/artifacts.
# Aborts the code is required to make are listed in docs/modem_stats_fuzz.md.
set -e
secs="${1:-20}"
cd "$(dirname "$0")/.."
dir=build-fuzz
if [ ! -f "$dir/CMakeCache.txt" ]; then
    CC=clang-14 CXX=clang++-14 cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DRLK_SANITIZE=ON -DRLK_FUZZ=ON -DRLK_LINE_TABLES=ON \
        -DCMAKE_C_FLAGS=-fsanitize=fuzzer-no-link -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >&2
fi
for target in stats_dispatch capture_reader; do
    cmake --build "$dir" -j2 --target "fuzz_$target" >&2
    mkdir -p "$dir/corpus/$target" "$dir/artifacts"
    # Standard output carries the parsers' lines: closed (-close_fd_mask=1).
    UBSAN_OPTIONS=abort_on_error=1:print_stacktrace=1 \
        "$dir/tests/fuzz/fuzz_$target" -max_total_time="$secs" -close_fd_mask=1 \
        -artifact_prefix="$dir/artifacts/" "$dir/corpus/$target" "tests/fuzz/corpus/$target"
done
