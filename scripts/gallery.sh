#!/usr/bin/env bash
# Renders the pictures in docs/ except export-svg.png: window, presets, colour modes and PNG example.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}"
cmake --preset release
cmake --build --preset release --target pendrix_gallery
scripts/on-virtual-display.sh build/release/tools/pendrix_gallery docs
