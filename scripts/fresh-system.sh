#!/usr/bin/env bash
# Tests ./run.sh --screenshot and ./test.sh of the current commit in a bare Debian system. Reports their times and the
# number of tests; fails on any warning. Requires root and debootstrap, and downloads several hundred MB.
#   scripts/fresh-system.sh [--base FOLDER] [--allow-expired] [--without-qt5] [SUITE]
# SUITE is bookworm (the default), trixie, sid, or bullseye. The CMake of bullseye is too old for the presets: the
# commands must report that without installing anything, and a build without presets must succeed.
# --base keeps the bare system in FOLDER for the next run. --allow-expired accepts an archive that is no longer updated,
# such as a snapshot of unstable. --without-qt5 hides the packages of Qt 5 from apt, so that the commands must use Qt 6.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/fresh-system-functions.sh
begin_fresh "$@"
log=$scratch/log

in_project() { in_system debian env --chdir=/root/pendrix3d "$@"; }
installed_packages() { in_system debian dpkg-query --show; }

# measure COMMAND ...: runs it in the project; prints its output, copies it to `log`, and sets `took`, its times.
measure() {
  local TIMEFORMAT="%R %U %S"
  { time in_project "$@" 2>&1; } 2> "$scratch/time" | tee "$log"
  took=$(awk '{ printf "%.0f s, processor time %.0f s", $1, $2 + $3 }' "$scratch/time")
}

# check_warnings FILE: fails if compiler, linker, CMake or apt printed a warning there.
check_warnings() {
  if grep --extended-regexp --ignore-case 'warning:|^CMake.* warning' "$1"; then
    echo "The above warnings were printed by $current." >&2
    exit 1
  fi
}

# check_failure EXPECTED COMMAND ...: fails unless the command fails in the project, prints EXPECTED, a regular
# expression, and installs nothing.
check_failure() {
  local before
  before=$(installed_packages)
  if in_project "${@:2}" > "$log" 2>&1; then
    cat "$log"
    echo "The command succeeded: ${*:2}" >&2
    exit 1
  fi
  cat "$log"
  grep --quiet --extended-regexp "$1" "$log"
  [ "$before" = "$(installed_packages)" ] || { echo "The command has installed packages: ${*:2}" >&2; exit 1; }
}

# check_screenshot FILE: fails if a picture in root's home is blank; sets `colors`, its number of vivid colours.
check_screenshot() {
  colors=$(in_project build/release/tests/support/pendrix_vivid_colors "/root/$1")
  [ "$colors" -ge 100 ] || { echo "The screenshot is blank: $colors vivid colours." >&2; exit 1; }
}

step "A bare Debian: $suite"
make_system debian
clone_into debian

if [ "$suite" = bullseye ]; then
  for command in ./run.sh ./test.sh; do
    step "$command"
    check_failure 'CMake is too old: 3\.21 or newer is required, and apt offers 3\.18\.4' "$command"
  done
  step "A build without presets"
  in_system debian apt-get -qq update
  # shellcheck disable=SC2016 # a script for the system
  mapfile -t packages < <(in_project bash -c '. scripts/packages.sh; missing_packages "${to_build[@]}"')
  in_system debian env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 \
    install --yes --no-install-recommends "${packages[@]}" > "$log" 2>&1 || { cat "$log" >&2; exit 1; }
  check_failure 'CMake is too old: 3\.21 or newer is required, and the installed version is 3\.18\.4' ./run.sh
  measure cmake -G Ninja -S . -B build/release -DCMAKE_BUILD_TYPE=Release
  check_warnings "$log"
  measure cmake --build build/release --target pendrix3d pendrix_screenshot pendrix_vivid_colors
  check_warnings "$log"
  in_project scripts/on-virtual-display.sh build/release/tools/pendrix_screenshot build/release/pendrix3d /root/plain.png
  check_screenshot plain.png
  printf '\nFresh system, %s: passed. The build took %s.\n' "$suite" "$took"
  exit
fi

step "./run.sh without root and sudo"
chmod o+x "$scratch/debian/root"
qt_package=$([ "$qt_major" = 5 ] && echo qtbase5-dev || echo qt6-base-dev)
check_failure "^apt-get install .*$qt_package" setpriv --reuid=65534 --regid=65534 --clear-groups ./run.sh

step "./run.sh --screenshot"
measure ./run.sh --screenshot /root/screenshot.png
run_took=$took
check_warnings "$log"
check_qt debian
if grep --ignore-case 'test\|benchmark\|wayland\|debconf\|invoke-rc' "$log"; then
  echo "The above lines do not concern a user of the program." >&2
  exit 1
fi

step "Installation and its removal"
in_project cmake --install build/release --prefix /usr/local > "$log"
[ -x "$scratch/debian/usr/local/bin/pendrix3d" ]
in_project cmake --build build/release --target uninstall > "$log"
left=$(find "$scratch/debian/usr/local" -type f)
[ -z "$left" ] || { printf 'Not removed: %s\n' "$left" >&2; exit 1; }

step "./test.sh"
measure ./test.sh
test_took=$took
check_warnings "$log"
check_warnings "$scratch/debian/root/pendrix3d/build/release/Testing/Temporary/LastTest.log"
tests=$(sed -n 's/^100% tests passed, 0 tests failed out of //p' "$log")
check_screenshot screenshot.png
for folder in .cache .config .local; do
  [ ! -e "$scratch/debian/root/$folder" ] || { echo "The tests have written to ~/$folder." >&2; exit 1; }
done

printf '\nFresh system, %s of %s, Qt %s: passed, without warnings.\n' \
  "$suite" "$(sed -n 's/^Date: //p' "$scratch"/debian/var/lib/apt/lists/*_dists_"$suite"_InRelease)" "$qt_major"
printf '%s: %s\n' "./run.sh --screenshot" "$run_took" "./test.sh, $tests tests" "$test_took" \
  "Vivid colours of the screenshot" "$colors"
