#!/usr/bin/env bash
# Installs what is missing, builds Nomen and runs every test: the normal
# build, the same tests under AddressSanitizer and UndefinedBehaviorSanitizer,
# and a short bounded run of each fuzz target.
#   NOMEN_FUZZ_SECONDS  seconds per fuzz target (default 10)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh

echo "== build and test"
scripts/build.sh build
ctest --test-dir build --output-on-failure -j "$(nproc)"

echo "== address and undefined-behaviour sanitizers"
scripts/build.sh build-sanitize -DNOMEN_SANITIZE=ON -DNOMEN_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug
ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-sanitize --output-on-failure -j "$(nproc)"

echo "== fuzz targets, bounded"
scripts/build.sh build-fuzz -DNOMEN_FUZZ=ON -DNOMEN_TESTS=OFF -DNOMEN_BENCH=OFF \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang
seconds=${NOMEN_FUZZ_SECONDS:-10}
for target in build-fuzz/fuzz/fuzz_*; do
  [[ -f "$target" && -x "$target" ]] || continue
  corpus="build-fuzz/corpus/$(basename "$target")"
  mkdir -p "$corpus"
  echo "-- $(basename "$target") for ${seconds}s"
  ASAN_OPTIONS=detect_leaks=0 "$target" -max_total_time="$seconds" -max_len=512 -print_final_stats=0 \
    "$corpus" fuzz/seeds 2>&1 | tail -n 2
done
echo "all tests passed"
