#!/usr/bin/env bash
# Installs missing packages, builds Pendrix 3D and starts it. Without a display, takes a screenshot on a virtual one.
#   ./run.sh --screenshot FILE   always takes a screenshot, as FILE (PNG)
set -euo pipefail
screenshot=
case "$#:${1-}" in
  0:) ;;
  2:--screenshot) screenshot=$(realpath --canonicalize-missing "$2") ;;
  *) echo "usage: ./run.sh [--screenshot FILE]" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/packages.sh
install_missing "${to_build[@]}"
# Warnings and errors only: the checks for tests and benchmarks do not concern a user of the program.
cmake --preset release --log-level=NOTICE
cmake --build --preset release --target pendrix3d pendrix3d-export pendrix_screenshot

# Without arguments, pendrix_screenshot only checks for a display.
if [ -z "$screenshot" ] && build/release/tools/pendrix_screenshot; then
  exec build/release/pendrix3d
fi
if [ -z "$screenshot" ]; then
  echo "There is no display, so the program runs on a virtual one."
  screenshot=$PWD/build/release/screenshot.png
fi
scripts/on-virtual-display.sh build/release/tools/pendrix_screenshot build/release/pendrix3d "$screenshot"
echo "Screenshot: $screenshot"
