#!/usr/bin/env bash
# Builds the module and the zivara command, then runs every procedure on the
# bundled sample sheets; the folder with the panes and graphs is printed.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
build=${ZV_BUILD_DIR:-build}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZV_BUILD_TESTS=OFF -DZV_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target zivara zvkeel4
"$build/bin/zivara" demo "$@"
