#!/usr/bin/env bash
# Builds the module and the zivara command quietly (the log is shown only
# when the build fails), then runs every procedure on the bundled sample
# sheets: one line per procedure, and the folder with an HTML index of every
# analysis at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
build=${ZV_BUILD_DIR:-build}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "demo: building the module and zivara in $build/ ..."
if ! { cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZV_BUILD_TESTS=OFF -DZV_BUILD_BENCH=OFF &&
       cmake --build "$build" -j"$(nproc)" --target zivara zvkeel4; } >"$log" 2>&1; then
  cat "$log"
  echo "demo: the build failed; its log is above" >&2
  exit 1
fi
"$build/bin/zivara" demo "$@"
