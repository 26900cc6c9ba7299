#!/usr/bin/env bash
# Builds with Qt 5 and with Qt 6, and fails unless both programs compute, print and save the same: digests of curves,
# texts of table and clipboard, exported files, and 100 settings files that both open and save in turn.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${qt5[@]}" "${qt6[@]}"

# A copy of the presets `release` and `qt6`, whose folders may have been configured for other checks.
for qt in 5 6; do
  cmake -S . -B "build/compare/qt$qt" -G Ninja -DCMAKE_BUILD_TYPE=Release "-DPENDRIX_QT=$qt" > /dev/null
  cmake --build "build/compare/qt$qt" --target pendrix3d-export CurveDigest CompareQt pendrix_plain_settings > /dev/null
done
scratch=$(mktemp --directory)
trap 'rm -rf "$scratch"' EXIT

# with QT PROGRAM [ARGUMENT ...]: runs a program of the build with this version of Qt; PROGRAM is relative to its folder.
with() { "build/compare/qt$1/$2" "${@:3}"; }
with_display() { scripts/on-virtual-display.sh "build/compare/qt$1/$2" "${@:3}"; }

# same FILE FILE
same() { cmp "$1" "$2" || { echo "Qt 5 and Qt 6 differ." >&2; exit 1; }; }

for qt in 5 6; do
  with "$qt" tests/engine/CurveDigest > "$scratch/digests$qt"
  with_display "$qt" tests/app/CompareQt texts > "$scratch/texts$qt"
done
same "$scratch/digests5" "$scratch/digests6"
echo "Digests of curves: the same"
same "$scratch/texts5" "$scratch/texts6"
echo "Texts of table, editor and clipboard, and values of texts: the same ($(wc -l < "$scratch/texts5") lines)"

# The formats whose bytes are fixed. A PDF has the date, and the name of Qt's version.
files=0
for format in png svg ply csv glb; do
  for preset in {1..12}; do
    variants=("" "--frame=50")
    [[ "$format" != @(png|svg) ]] || variants+=("--turn=20,30,40 --line-width=3 --smooth --margin=5")
    for options in "${variants[@]}"; do
      for qt in 5 6; do
        # shellcheck disable=SC2086 # several options
        with "$qt" pendrix3d-export "--preset=$preset" $options "$scratch/export$qt.$format"
      done
      same "$scratch/export5.$format" "$scratch/export6.$format"
      files=$((files + 1))
    done
  done
done
echo "Exported files: the same ($files files)"

# lines FOLDER NUMBER: prints the lines of the settings file that do not describe the window.
lines() { LC_ALL=C grep --text --invert-match '^\(geometry\|windowState\)=' "$1/$2/quillmoss/pdx3.conf"; }

geometry() { LC_ALL=C grep --text '^geometry=' "$1/$2/quillmoss/pdx3.conf"; }

# Each file is created by one Qt, then opened and saved by the other, then by the first again.
for first in 5 6; do
  second=$((11 - first))
  step=$scratch/settings$first
  mkdir "$step"
  with_display "$first" tests/app/CompareQt create "$step"/now/{001..100}
  cp --archive "$step/now" "$step/created"
  with_display "$second" tests/app/CompareQt visit "$step"/now/{001..100}
  cp --archive "$step/now" "$step/second"
  with_display "$first" tests/app/CompareQt visit "$step"/now/{001..100}
  identical=0
  for number in {001..100}; do
    LC_ALL=C grep --text --quiet '^paramList="\{0,1\}@Variant(.*QVector<QVector<float> >' "$step/created/$number/quillmoss/pdx3.conf"
    for visit in second now; do
      same <(lines "$step/created" "$number") <(lines "$step/$visit" "$number")
    done
    ! cmp --quiet <(geometry "$step/created" "$number") <(geometry "$step/now" "$number") || identical=$((identical + 1))
  done
  echo "Settings files of Qt $first, after Qt $second and Qt $first: the same rows, widths and foreign lines (100 files)," \
    "$identical with the same geometry"
done

# A file that plain QSettings of either version has written is read by both programs.
folder=$scratch/plain
with_display 5 tests/app/CompareQt create "$folder"
round=0
for plain in 6 5 6; do
  round=$((round + 1))
  XDG_CONFIG_HOME=$folder with "$plain" tests/app/pendrix_plain_settings $round > "$scratch/printed"
  [ "$round" -eq 1 ] || grep --quiet "^$((round - 1)) " "$scratch/printed"
  with_display $((11 - plain)) tests/app/CompareQt visit "$folder"
done
echo "Files of plain QSettings: read"
