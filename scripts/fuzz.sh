#!/usr/bin/env bash
# Builds the fuzz target (preset "fuzz": clang, libFuzzer, ASan + UBSan),
# replays the seed corpus, then fuzzes every function of the header for
# SECONDS (default 120). New inputs gather in build/fuzz/corpus-work; a
# finding stops the run and leaves crash-* beside it (add it to fuzz/corpus
# once fixed, as a regression case).
#   scripts/fuzz.sh 3600     # an hour
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-120}
cmake --workflow --preset fuzz
work=build/fuzz/corpus-work
mkdir -p "$work"
cd build/fuzz
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  fuzz/rvpcv_fuzz -max_total_time="$seconds" -timeout=30 -rss_limit_mb=4096 -max_len=128 -print_final_stats=1 \
  corpus-work ../../fuzz/corpus
