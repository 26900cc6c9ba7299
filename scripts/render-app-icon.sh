#!/usr/bin/env bash
# Renders the program's icon in packaging/hicolor: the SVG file and the PNG files in the usual sizes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
id=example.quillmoss.Pendrix3D

. scripts/packages.sh
install_missing "${to_build[@]}" "${to_render[@]}"
cmake --preset release
cmake --build --preset release --target pendrix_icon

scratch=$(mktemp --directory)
trap 'rm -rf "$scratch"' EXIT
draw() { build/release/tools/pendrix_icon "$1"; }

mkdir --parents packaging/hicolor/scalable/apps
draw 512 > "packaging/hicolor/scalable/apps/$id.svg"
for size in 16 22 24 32 48 64 128 256 512; do
  mkdir --parents "packaging/hicolor/${size}x$size/apps"
  draw "$size" > "$scratch/icon.svg"
  rsvg-convert --format=png --width="$size" --height="$size" \
    --output="packaging/hicolor/${size}x$size/apps/$id.png" "$scratch/icon.svg"
done
