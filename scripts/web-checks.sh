#!/usr/bin/env bash
# Checks glTF files of all presets with Khronos' validator, and opens each with the page examples/web in headless
# Chromium. Fails if the validator reports an error, warning, info or hint, or if the page does not show the curve of the
# PNG picture, before and after a drag with the mouse. Leaves files and screenshots in build/web-checks. Part of
# scripts/long-checks.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_check_web[@]}"
cmake --preset release
cmake --build --preset release --target pendrix3d-export

folder=$PWD/build/web-checks
rm -rf "$folder"
mkdir -p "$folder/site" "$folder/figures"
export XDG_CONFIG_HOME=$folder/settings XDG_CACHE_HOME=$folder/cache

# npm_install FOLDER [PACKAGE ...]: installs the packages, or those of the folder's package.json.
npm_install() { npm install --prefix "$1" --no-package-lock --no-audit --no-fund "${@:2}"; }
cp examples/web/index.html examples/web/package.json "$folder/site"
npm_install "$folder/site"
npm_install "$folder" gltf-validator@2.0.0-dev.3.10 playwright-core@1.56.1 pngjs@7.0.0

presets=({1..12})
for preset in "${presets[@]}"; do
  export_figure() { build/release/pendrix3d-export --preset "$preset" "${@:2}" "$folder/figures/$preset$1"; }
  export_figure .glb
  # The page draws lines of one pixel. A drag by 60 of 720 pixels is a twelfth of a turn.
  export_figure .png --size 960x720 --line-width 1
  export_figure -rotated.png --size 960x720 --line-width 1 --turn 0,-30,0
done
cd "$folder"
node ../../scripts/web-checks.mjs site figures "${presets[@]}"
echo "web-checks.sh: no problems"
