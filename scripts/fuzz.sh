#!/usr/bin/env bash
# Builds the fuzz targets of the data sheet and of the statistical functions
# with clang and libFuzzer, then runs
# each for the given number of seconds (default 60), seeded from
# tests/data/failures and a corpus kept in the build folder. New crashing
# inputs land in the build folder's artifacts/; copy the ones worth keeping to
# tests/data/failures/ (csv-* for the CSV reader and the save path,
# expression-* for the parser, stats-* for the statistical functions).
#   scripts/fuzz.sh [seconds] [target...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-60}"
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(csv_fuzz save_fuzz expression_fuzz stats_fuzz)
build="${ZV_FUZZ_BUILD:-$root/build-fuzz}"

# libFuzzer comes with clang's runtime libraries.
for p in clang libclang-rt-14-dev; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || {
    SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "$p" >/dev/null
  }
done

cmake -S "$root/fuzz" -B "$build" -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build "$build" --target "${targets[@]}" -j2

declare -A seeds=([csv_fuzz]=csv- [save_fuzz]=csv- [expression_fuzz]=expression- [stats_fuzz]=stats-)
# Expressions longer than 127 characters are refused at once: no need to grow them.
# A statistics input is two bytes and four arguments of nine.
declare -A lengths=([csv_fuzz]=4096 [save_fuzz]=4096 [expression_fuzz]=160 [stats_fuzz]=38)
for target in "${targets[@]}"; do
  corpus="$build/corpus/$target"
  artifacts="$build/artifacts/$target/"
  mkdir -p "$corpus" "$artifacts"
  for seed in "$root"/tests/data/failures/"${seeds[$target]}"*; do
    [ -e "$seed" ] && cp "$seed" "$corpus/"
  done
  dictionary="$root/fuzz/${target%_fuzz}.dict"
  [ "$target" = save_fuzz ] && dictionary="$root/fuzz/csv.dict"
  dict=()
  [ -e "$dictionary" ] && dict=(-dict="$dictionary")
  echo "fuzz: $target for $seconds s"
  "$build/bin/$target" "$corpus" "${dict[@]}" -max_total_time="$seconds" -max_len="${lengths[$target]}" -timeout=10 \
    -artifact_prefix="$artifacts" -print_final_stats=1
done
