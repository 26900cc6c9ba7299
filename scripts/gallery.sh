#!/usr/bin/env bash
# Makes the pictures in docs/ again: the window, the twelve presets, the five colour modes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}"
cmake --preset release
cmake --build --preset release --target pendrix_gallery
scripts/on-virtual-display.sh build/release/tools/pendrix_gallery docs
