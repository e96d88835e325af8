#!/usr/bin/env bash
# Fails when a C++ file that git tracks differs from what clang-format makes
# of it with the repository's .clang-format. Fix with: clang-format -i FILE...
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h')
bad=$(clang-format --dry-run "${files[@]}" 2>&1 | grep -E ': warning: ' | cut -d: -f1 | sort -u || true)
if [ -n "$bad" ]; then
  echo "format: these files differ from .clang-format (clang-format -i FILE fixes them):"
  printf '  %s\n' $bad
  exit 1
fi
echo "format: ${#files[@]} files as .clang-format has them"
