#!/usr/bin/env bash
# Runs the commands in the section Export of docs/MANUAL.md and in examples/web/README.md unchanged: each block in a
# new folder in build/recipes, with an empty settings folder. Fails if a command fails, if pendrix3d-export prints a
# warning, or if a file that a block names is missing or has another type than its extension says. Part of
# scripts/long-checks.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_run_recipes[@]}"
cmake --preset release
cmake --build --preset release --target pendrix3d-export

folder=$PWD/build/recipes
rm -rf "$folder"
mkdir -p "$folder"
export PATH=$PWD/build/release:$PATH XDG_CONFIG_HOME=$folder/settings XDG_CACHE_HOME=$folder/cache
export npm_config_audit=false npm_config_fund=false npm_config_update_notifier=false

# extract FILE HEADING PREFIX: writes the indented blocks of the section to PREFIX-1, PREFIX-2, ...
extract() {
  awk -v heading="$2" -v prefix="$3" '
    /^#/ {
      if (length($1) <= depth) depth = 0
      if ($0 == heading) depth = length($1)
    }
    depth && /^    / {
      if (!block) block = prefix "-" ++count
      print substr($0, 5) > block
      next
    }
    /./ { block = "" }
  ' "$1"
}

# run BLOCK: runs the block. Ends a local server as soon as it has sent the page and the curve.
run() {
  local server port address status=0
  if ! grep --quiet 'http\.server' "$1"; then
    bash -e "$1" < /dev/null
    return
  fi
  port=$(sed -En 's/.*http\.server.* ([0-9]+)$/\1/p' "$1")
  address=http://127.0.0.1:${port:-8000}
  ! curl --silent --output page "$address/" || { echo "a server runs at $address already" >&2; return 1; }
  timeout 120 bash -e "$1" < /dev/null & # timeout passes the signal to its process group
  server=$!
  curl --silent --show-error --fail --retry 60 --retry-delay 1 --retry-connrefused \
    --output page "$address/" --output served "$address/curve.glb" || status=1
  kill "$server" || status=1
  wait "$server" || :
  [ "$status" -eq 0 ] && grep --quiet 'curve\.glb' page && cmp served "$(path_of curve.glb)"
}

# path_of NAME: prints the path of the file, or of the first file that --frames writes.
path_of() {
  local name path
  for name in "${1/\%05d/00001}" "${1%.*}-00001.${1##*.}"; do
    path=$(find . -name node_modules -prune -o -type f -size +0 -path "*/$name" -print)
    [ -z "$path" ] || { printf '%s\n' "$path"; return; }
  done
  echo "$1 is missing or empty" >&2
  return 1
}

# check_type FILE: fails unless the file has the type of its extension, and a film the pixel format that players support.
check_type() {
  local type expected format
  case "${1##*.}" in
    csv) expected='CSV text' ;;
    glb) expected='glTF binary model, version 2,' ;;
    mp4) expected='ISO Media, MP4' ;;
    pdf) expected='PDF document' ;;
    ply) expected='PLY model' ;;
    png) expected='PNG image data' ;;
    svg) expected='SVG Scalable Vector Graphics image' ;;
    *) echo "recipes.sh: no type for $1" >&2; return 1 ;;
  esac
  type=$(file --brief "$1")
  [[ $type == "$expected"* ]] || { echo "$1 is of type: $type" >&2; return 1; }
  echo "  $1: $type"
  [ "${1##*.}" = mp4 ] || return 0
  format=$(ffprobe -loglevel error -select_streams v -count_frames -show_entries stream=pix_fmt,nb_read_frames \
    -of csv=p=0 "$1")
  [[ $format =~ ^yuv420p,[1-9][0-9]*$ ]] || { echo "$1 has pixel format and frames: $format" >&2; return 1; }
  echo "  $1: $format frames"
}

# check BLOCK: runs the block in the current folder and checks its files.
check() {
  local name names path
  sed 's/^/  $ /' "$1"
  run "$1" > output 2> errors || { tail --lines=20 output errors >&2; return 1; }
  ! grep '^pendrix3d-export: ' errors >&2 || return 1
  names=$(grep --only-matching --extended-regexp '[[:alnum:]_./%-]+\.(csv|glb|mp4|pdf|ply|png|svg)\b' "$1" | sort --unique)
  for name in $names; do
    path=$(path_of "$name") && check_type "$path" || return 1
  done
}

extract docs/MANUAL.md '## Export' "$folder/manual"
extract examples/web/README.md '# A curve on a web page' "$folder/web"
project=$PWD
failed=()
count=0
for block in $(find "$folder" -type f | sort --version-sort); do
  echo "${block##*/}:"
  mkdir "$block.files"
  cd "$block.files"
  case "$block" in
    */web-*) cp "$project"/examples/web/{index.html,package.json} . ;;
    *)
      ln --symbolic "$project/build" build
      mkdir --parents examples/web
      cp "$project"/examples/web/{index.html,package.json} examples/web
      ;;
  esac
  check "$block" || failed+=("${block##*/}")
  count=$((count + 1))
done
[ ${#failed[@]} -eq 0 ] || fail "these blocks failed: ${failed[*]}"
[ "$count" -ge 2 ] || fail "only $count blocks found"
echo "recipes.sh: $count blocks without problems"
