#!/usr/bin/env bash
# Checks the formatting, builds everything under AddressSanitizer and
# UndefinedBehaviorSanitizer (with every header compiled on its own, and
# movable blocks that move at every unlock; the benchmarks are built, not
# run), and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh --tests
scripts/check_format.sh
build=${ZV_TEST_BUILD_DIR:-build-test}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DZV_SANITIZE=ON -DZV_MOVE_BLOCKS=ON \
      -DZV_BUILD_BENCH=ON >/dev/null
cmake --build "$build" -j"$(nproc)"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" --timeout 300
