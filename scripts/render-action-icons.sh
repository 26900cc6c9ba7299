#!/usr/bin/env bash
# Renders the action icons from resources/icon-sources/: fifteen PNG files of 32x32 pixels, and clippaste.ico with one
# bitmap of the same size.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_render[@]}"
cd resources
icons=Tessera/rsc/icons

pngs=(generate01 open add rand draw save clippaste01 export1 clipcopy01 clipcopy random clear saveas append delete)

# render NAME FILE: renders the drawing NAME to the PNG file FILE.
render() { rsvg-convert --format=png --width=32 --height=32 --output="$2" "icon-sources/$1.svg"; }

mkdir -p "$icons"
for name in "${pngs[@]}"; do
  render "$name" "$icons/$name.png"
done

bitmap=$(mktemp --suffix=.png)
trap 'rm "$bitmap"' EXIT
render clippaste "$bitmap"
icotool --create --bit-depth=32 --output="$icons/clippaste.ico" "$bitmap"
