#!/usr/bin/env bash
# Builds everything under AddressSanitizer and UndefinedBehaviorSanitizer, with
# movable blocks that move at every unlock, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh --tests
build=${ZV_TEST_BUILD_DIR:-build-test}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DZV_SANITIZE=ON -DZV_MOVE_BLOCKS=ON \
      -DZV_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j"$(nproc)"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" --timeout 300
