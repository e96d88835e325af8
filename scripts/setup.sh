#!/usr/bin/env bash
# Installs the Debian packages the build needs, once. Safe to run again.
# With --tests it also installs what only the tests use: the headless browser
# that checks the HTML pages (large, so the demo does not ask for it) and
# clang-format for the formatting check.
set -euo pipefail
packages=(cmake g++ libgtest-dev libgmock-dev libbenchmark-dev libcairo2-dev libcli11-dev
          nlohmann-json3-dev libfmt-dev libboost-math-dev libboost-dev binutils
          libexpat1-dev libfontconfig-dev time)
test_packages=(chromium clang-format)
if [ "${1:-}" = "--tests" ]; then packages+=("${test_packages[@]}"); fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi
