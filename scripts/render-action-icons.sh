#!/usr/bin/env bash
# Renders the program's icons from the drawings in icon-sources/:
# fifteen 32x32 PNG files, and clippaste.ico with one 32x32 bitmap.
set -euo pipefail

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../resources" && pwd)
sources=$here/icon-sources
icons=$here/Tessera/rsc/icons

pngs=(generate01 open add rand draw save clippaste01 export1 clipcopy01
    clipcopy random clear saveas append delete)

need() { # command, Debian package
  if ! command -v "$1" >/dev/null; then
    echo "render-action-icons.sh: $1 is missing; install the Debian package $2" >&2
    exit 1
  fi
}

render() { # icon name, PNG file to write
  rsvg-convert --format=png --width=32 --height=32 --output="$2" "$sources/$1.svg"
}

need rsvg-convert librsvg2-bin
need icotool icoutils

scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT

mkdir -p "$icons"
for name in "${pngs[@]}"; do
  render "$name" "$icons/$name.png"
done

render clippaste "$scratch/clippaste.png"
icotool --create --bit-depth=32 --output="$icons/clippaste.ico" "$scratch/clippaste.png"
