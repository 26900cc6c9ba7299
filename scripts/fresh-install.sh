#!/usr/bin/env bash
# Tests the packages of the current commit in bare Debian systems: builds the Debian package and the source package in
# one system; installs, uses and removes the Debian package in another. Requires root and debootstrap, and downloads
# several hundred MB.
#   scripts/fresh-install.sh [--base FOLDER] [--allow-expired] [--without-qt5] [SUITE]
# SUITE is bookworm by default. --base keeps the bare system in FOLDER for the next run. --allow-expired accepts an
# archive that is no longer updated, such as a snapshot of unstable. --without-qt5 hides the packages of Qt 5 from apt.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/fresh-system-functions.sh
begin_fresh "$@"
id=example.quillmoss.Pendrix3D
SECONDS=0

# install NAME PACKAGE ...: installs packages and their dependencies in the system NAME.
install() {
  in_system "$1" env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq -o Dpkg::Use-Pty=0 install --yes --no-install-recommends "${@:2}" > "$scratch/apt.log" 2>&1 ||
    { cat "$scratch/apt.log" >&2; return 1; }
}

# check_file FILE: fails unless the user's system has the file and it is not empty.
check_file() { [ -s "$scratch/user$1" ] || { echo "$1 is missing" >&2; return 1; }; }

step "A bare Debian builds the packages: $suite"
make_system builder
clone_into builder
in_project() { in_system builder env --chdir=/root/pendrix3d "$@"; }
# shellcheck disable=SC2016 # a script for the system
in_project bash -c '. scripts/packages.sh; install_missing "${to_build[@]}" "${to_package[@]}"'
in_project cmake --preset release > /dev/null
in_project cmake --build --preset release --target pendrix3d pendrix3d-export tools/all tests/support/all > /dev/null
check_qt builder
in_project env --chdir=build/release cpack -G DEB
in_project env --chdir=build/release cpack --config CPackSourceConfig.cmake

step "lintian"
install builder lintian
# The suppressed tag requires the number of a bug report in Debian.
in_project bash -c 'lintian --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs build/release/*.deb'

step "The source package builds, and its tests of colours and curves pass"
mv "$scratch/builder/root/pendrix3d" "$scratch/checkout" # so that the build cannot use it
built=$scratch/checkout/build/release
mkdir "$scratch/builder/root/source"
tar --extract --file="$(echo "$built"/pendrix3d-*.tar.xz)" --directory="$scratch/builder/root/source" --strip-components=1
in_source() { in_system builder env --chdir=/root/source "$@"; }
in_source cmake --preset release > /dev/null
in_source cmake --build --preset release --target pendrix3d \
  tests/numerics/all tests/color/all tests/engine/all > /dev/null
in_source ctest --preset release --tests-regex '^(numerics|color|engine)/'

step "A bare Debian installs the package"
make_system user
cp "$built"/pendrix3d_*.deb "$scratch/user/root/pendrix3d.deb"
in_system user apt-get -qq update
before=$(in_system user dpkg-query --show | wc -l)
install user /root/pendrix3d.deb
after=$(in_system user dpkg-query --show | wc -l)
echo "It has $((after - before - 1)) dependencies that were not installed."
in_system user dpkg --verify pendrix3d
in_system user bash -c "ldd /usr/bin/pendrix3d /usr/lib/*/qt$qt_major/plugins/platforms/libqxcb.so" > "$scratch/libraries"
if grep "not found" "$scratch/libraries"; then
  exit 1
fi

step "Menu entry, icon, manual pages"
check_file "/usr/share/applications/$id.desktop"
check_file "/usr/share/metainfo/$id.metainfo.xml"
check_file /usr/share/man/man1/pendrix3d.1.gz
check_file /usr/share/man/man1/pendrix3d-export.1.gz
# Packages for the following checks only.
install user desktop-file-utils hicolor-icon-theme mandoc xvfb
in_system user desktop-file-validate "/usr/share/applications/$id.desktop"
in_system user mandoc /usr/share/man/man1/pendrix3d.1.gz > "$scratch/manual"
grep --quiet "curves of three pendulums" "$scratch/manual"
cp "$built/tests/support/pendrix_find_icon" "$built/tests/support/pendrix_vivid_colors" \
  "$built/tools/pendrix_screenshot" scripts/on-virtual-display.sh "$scratch/user/root/"
icon=$(sed -n 's/^Icon=//p' "$scratch/user/usr/share/applications/$id.desktop")
sizes=$(in_system user ./on-virtual-display.sh ./pendrix_find_icon "$icon" | sort --numeric-sort)
printf 'Sizes of the icon: %s.\n' "${sizes//$'\n'/, }"

step "The programs run"
program=$(sed -n 's/^Exec=//p' "$scratch/user/usr/share/applications/$id.desktop")
in_system user ./on-virtual-display.sh ./pendrix_screenshot "$program" /root/screenshot.png
colors=$(in_system user ./pendrix_vivid_colors screenshot.png)
[ "$colors" -ge 100 ] || { echo "The screenshot is blank: $colors vivid colours." >&2; exit 1; }
echo "The screenshot has $colors vivid colours."
in_system user pendrix3d-export --preset 6 exported.png
colors=$(in_system user ./pendrix_vivid_colors exported.png)
[ "$colors" -ge 100 ] || { echo "The exported picture is blank: $colors vivid colours." >&2; exit 1; }

step "The package is removed"
in_system user env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 purge --yes pendrix3d > /dev/null
rm -r "$scratch/user/root"
left=$(find "$scratch/user" -xdev \( -iname '*pendrix*' -o -iname '*quillmoss*' \))
[ -z "$left" ] || { printf 'Left over: %s\n' "$left" >&2; exit 1; }

printf '\nFresh installation: passed, in %d s.\n' "$SECONDS"
