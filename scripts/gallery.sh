#!/usr/bin/env bash
# Renders the pictures in docs/. The picture of the window has twice its size.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_render[@]}"
cmake --preset release
cmake --build --preset release --target pendrix_gallery pendrix3d-export
VIRTUAL_SCREEN=2560x1440 QT_SCALE_FACTOR=2 scripts/on-virtual-display.sh build/release/tools/pendrix_gallery docs

drawing=$(mktemp --suffix=.svg)
trap 'rm "$drawing"' EXIT
build/release/pendrix3d-export --preset 4 --turn 30,25,0 --color black --background white "$drawing"
rsvg-convert --width=480 --height=480 --background-color=white --output=docs/export-svg.png "$drawing"
