#!/usr/bin/env bash
# Builds the current commit twice, in folders of different names and with files of different ages. Fails unless the
# programs and the Debian packages are identical.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_package[@]}"

scratch=$(mktemp --directory)
trap 'rm -rf "$scratch"' EXIT
committed=$(git log --max-count=1 --format=%ct)

# build FOLDER DATE: clones the commit to FOLDER of `scratch`, sets the dates of its files, and builds the package.
build() {
  local folder=$scratch/$1
  git clone --quiet --no-local . "$folder"
  find "$folder" -exec touch --no-dereference --date="$2" {} +
  cmake -G Ninja -S "$folder" -B "$folder/build/release" \
    -DCMAKE_BUILD_TYPE=Release -DPENDRIX_BUILD_TESTS=OFF > /dev/null
  cmake --build "$folder/build/release" --target pendrix3d pendrix3d-export > /dev/null
  # Only the package depends on SOURCE_DATE_EPOCH.
  (cd "$folder/build/release" && SOURCE_DATE_EPOCH=$committed cpack -G DEB > cpack.log 2>&1) || {
    cat "$folder/build/release/cpack.log" >&2
    return 1
  }
}
build one yesterday
build elsewhere/and/two "a year ago"

for file in pendrix3d "pendrix3d_*.deb"; do
  # shellcheck disable=SC2086 # the version is left to the pattern
  cmp "$scratch"/one/build/release/$file "$scratch"/elsewhere/and/two/build/release/$file
done
echo "Both builds produced the same programs and the same package."
