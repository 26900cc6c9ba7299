#!/usr/bin/env bash
# Installs what is missing, builds Pendrix 3D and opens it. With no display at hand it takes a screenshot instead.
#   ./run.sh --screenshot FILE   takes a screenshot in any case, as FILE (PNG)
set -euo pipefail
picture=
case "$#:${1-}" in
  0:) ;;
  2:--screenshot) picture=$(realpath --canonicalize-missing "$2") ;;
  *) echo "usage: ./run.sh [--screenshot FILE]" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/packages.sh
install_missing "${to_build[@]}"
cmake --preset release
cmake --build --preset release --target pendrix3d pendrix_screenshot

# Without arguments the tool only tells whether a display can be reached.
if [ -z "$picture" ] && build/release/tools/pendrix_screenshot; then
  exec build/release/pendrix3d
fi
if [ -z "$picture" ]; then
  echo "There is no display at hand, so the program runs on a virtual one."
  picture=$PWD/build/release/screenshot.png
fi
scripts/on-virtual-display.sh build/release/tools/pendrix_screenshot build/release/pendrix3d "$picture"
echo "Screenshot: $picture"
