#!/usr/bin/env bash
# Times whole zivara processes on generated sheets of 1e4, 1e5 and 1e6 rows:
# the dot diagram with its pictures written (--graphs) and the product-limit
# analysis with its three text panes. Prints user+system CPU seconds, peak
# resident memory and the growth of both from one size to the next; for the
# dot diagram also the sizes of the SVG and PNG files. When R is installed,
# R's survfit and survdiff run on the same sheet and the ratio is printed.
#
# Usage: bench/whole_process.sh [BUILD_DIR] [ROWS...]
#   BUILD_DIR  a Release build holding bin/zivara (default build-rel)
#   ROWS       sheet sizes (default 10000 100000 1000000)
# Environment: ZV_SHEET_DIR, where the generated sheets are kept (default a
# folder under the temporary directory; sheets are made once, by
# bench/make_sheet.cpp, and reused).
set -euo pipefail

build="${1:-build-rel}"
shift || true
sizes=("$@")
[ ${#sizes[@]} -gt 0 ] || sizes=(10000 100000 1000000)
zivara="$build/bin/zivara"
if [ ! -x "$zivara" ] || [ ! -x "$build/bin/make_sheet" ]; then
  echo "whole_process: $zivara or $build/bin/make_sheet not found; build them first:" >&2
  echo "  cmake -S . -B build-rel -DCMAKE_BUILD_TYPE=Release -DZV_BUILD_TESTS=OFF" >&2
  echo "  cmake --build build-rel -j2 --target zivara make_sheet" >&2
  exit 2
fi
if [ ! -x /usr/bin/time ]; then
  echo "whole_process: /usr/bin/time is missing (apt-get install time)" >&2
  exit 2
fi
sheets="${ZV_SHEET_DIR:-${TMPDIR:-/tmp}/zv_whole_process}"
mkdir -p "$sheets"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# Runs a command under /usr/bin/time; sets cpu (seconds) and rss (MiB).
measure() {
  /usr/bin/time -f '%U %S %M' -o "$work/time" "$@" >"$work/out" 2>"$work/err" || {
    echo "whole_process: failed: $*" >&2
    cat "$work/err" >&2
    return 1
  }
  read -r user sys kib <"$work/time"
  cpu=$(awk -v u="$user" -v s="$sys" 'BEGIN { printf "%.2f", u + s }')
  rss=$(awk -v k="$kib" 'BEGIN { printf "%.1f", k / 1024 }')
}

growth() {  # growth NEW OLD: the factor, or "-" for the first size
  if [ -z "$2" ]; then echo "-"; else awk -v a="$1" -v b="$2" 'BEGIN { printf "x%.1f", (b > 0 ? a / b : 0) }'; fi
}

have_r=0
if command -v Rscript >/dev/null 2>&1 && Rscript -e 'quit(status = !requireNamespace("survival", quietly = TRUE))' >/dev/null 2>&1; then
  have_r=1
fi

printf '%-8s %-11s %8s %6s %9s %6s %9s %9s\n' rows run cpu_s growth rss_MiB growth svg_KiB png_KiB
declare -A last_cpu last_rss
for n in "${sizes[@]}"; do
  sheet="$sheets/sheet_$n.csv"
  [ -s "$sheet" ] || "$build/bin/make_sheet" "$n" "$sheet"

  rm -rf "$work/graphs" && mkdir -p "$work/graphs"
  measure "$zivara" run DotDiagram --sheet "$sheet" --var 1=X --graphs "$work/graphs"
  svg=$(( $(stat -c %s "$work/graphs/item8.svg") / 1024 ))
  png=$(( $(stat -c %s "$work/graphs/item8.png") / 1024 ))
  printf '%-8s %-11s %8s %6s %9s %6s %9s %9s\n' "$n" DotDiagram "$cpu" "$(growth "$cpu" "${last_cpu[dot]:-}")" \
    "$rss" "$(growth "$rss" "${last_rss[dot]:-}")" "$svg" "$png"
  last_cpu[dot]=$cpu last_rss[dot]=$rss

  measure "$zivara" run Life2 --sheet "$sheet" --var 1=time --var 2=censored --var 3=group \
    --pane 1 --pane 2 --pane 3
  life_cpu=$cpu
  printf '%-8s %-11s %8s %6s %9s %6s\n' "$n" Life2 "$cpu" "$(growth "$cpu" "${last_cpu[life]:-}")" \
    "$rss" "$(growth "$rss" "${last_rss[life]:-}")"
  last_cpu[life]=$cpu last_rss[life]=$rss

  if [ "$have_r" = 1 ]; then
    cat >"$work/life.R" <<RSCRIPT
suppressMessages(library(survival))
d <- read.csv("$sheet")
f <- survfit(Surv(time, 1 - censored) ~ group, data = d)
print(summary(f)\$table)
print(survdiff(Surv(time, 1 - censored) ~ group, data = d))
RSCRIPT
    measure Rscript "$work/life.R"
    printf '%-8s %-11s %8s %6s %9s %6s   zivara/R cpu %s\n' "$n" "R survfit" "$cpu" "" "$rss" "" \
      "$(awk -v a="$life_cpu" -v b="$cpu" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }')"
  fi
done
[ "$have_r" = 1 ] || echo "(R with the survival package not installed: the comparison with R is left out)"
