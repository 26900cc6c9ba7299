# shellcheck shell=bash
# Sourced by the scripts: lists of Debian packages, and install_missing, which installs them.

# Each entry is a Debian package and, after a colon, a probe for systems without dpkg. The entries `qt` and `qt-wayland`
# stand for the packages of one version of Qt; see selected_qt.
qt5=("qtbase5-dev:modules Qt5Widgets Qt5Test")
qt6=("qt6-base-dev:modules Qt6Widgets Qt6Test" "libqt6opengl6-dev:modules Qt6OpenGL")
qt5_wayland=("qtwayland5:nothing")
qt6_wayland=("qt6-wayland:nothing")

# To build and run the program, with or without a display.
# shellcheck disable=SC2034 # used by the scripts
to_build=(
  "g++:program c++"
  "cmake:program cmake"
  "ninja-build:program ninja"
  qt
  "libgl-dev:modules gl"
  "libx11-dev:modules x11"
  "libgl1-mesa-dri:nothing"
  "fonts-dejavu-core:nothing"
  "xvfb:program Xvfb"
)

# shellcheck disable=SC2034
to_test=(
  "libxres-dev:modules xres"
  "libsm-dev:modules sm ice"
  "xclip:program xclip"
  "xdotool:program xdotool"
  "openbox:program openbox"
)

# shellcheck disable=SC2034
to_check=(
  "desktop-file-utils:program desktop-file-validate"
  "appstream:program appstreamcli"
  "mandoc:program mandoc"
  "clang:program clang++"
  "libclang-rt-dev:nothing"
  "clang-format:program clang-format"
  "clang-tidy:program clang-tidy"
  "clazy:program clazy-standalone"
  "cppcheck:program cppcheck"
  "shellcheck:program shellcheck"
  "codespell:program codespell"
  "weston:program weston"
  qt-wayland
  "librsvg2-bin:program rsvg-convert"
  "poppler-utils:program pdftoppm"
)

# To render the icons and the pictures of the documents.
# shellcheck disable=SC2034
to_render=(
  "librsvg2-bin:program rsvg-convert"
  "icoutils:program icotool"
)

# shellcheck disable=SC2034
to_cover=(
  "gcovr:program gcovr"
)

# shellcheck disable=SC2034
to_measure=(
  "libbenchmark-dev:modules benchmark"
)

# shellcheck disable=SC2034
to_check_memory=(
  "valgrind:program valgrind"
)

# shellcheck disable=SC2034
to_build_for_arm=(
  "g++-aarch64-linux-gnu:program aarch64-linux-gnu-g++"
  "qemu-user:program qemu-aarch64"
)

# shellcheck disable=SC2034
to_package=(
  "dpkg-dev:program dpkg-shlibdeps"
  "file:program file"
)

# shellcheck disable=SC2034
to_check_web=(
  "nodejs:program node"
  "chromium:program chromium"
)
# shellcheck disable=SC2034
to_run_recipes=(
  "nodejs:program node"
  "python3:program python3"
  "curl:program curl"
  "ffmpeg:program ffmpeg"
  "gnuplot-nox:program gnuplot"
  "file:program file"
)
# Some packages of Node.js contain npm and conflict with Debian's npm.
command -v npm > /dev/null || {
  to_check_web+=("npm:program npm")
  to_run_recipes+=("npm:program npm")
}

# fail PROBLEM: prints it as an error of the script and exits.
fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# install_missing ENTRY ...: installs the missing packages of the entries; exits with an error message if it cannot.
install_missing() {
  local packages as_root=() output
  check_cmake
  mapfile -t packages < <(missing_packages "$@")
  [ ${#packages[@]} -gt 0 ] || return 0

  command -v apt-get > /dev/null ||
    fail "packages are missing, and there is no apt-get to install them. Their names in Debian: ${packages[*]}"
  local install=(install --yes --no-install-recommends)
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo > /dev/null ||
      fail "packages are missing, and only root can install them. Ask an administrator to run:
apt-get ${install[*]} ${packages[*]}"
    as_root=(sudo)
  fi
  apt_get update
  check_cmake
  mapfile -t packages < <(missing_packages "$@") # apt may now offer another Qt
  install+=("${packages[@]}")
  apt_get --simulate "${install[@]}"
  echo "Installing $(grep --count '^Inst ' <<< "$output") packages, which can take several minutes."
  apt_get "${install[@]}"
}

# missing_packages ENTRY ...: prints the packages of the entries that are not installed, one per line.
missing_packages() {
  local entry qt installed="" entries=()
  qt=$(selected_qt)
  for entry in "$@"; do
    case "$entry:$qt" in
      qt:5) entries+=("${qt5[@]}") ;;
      qt:6) entries+=("${qt6[@]}") ;;
      qt-wayland:5) entries+=("${qt5_wayland[@]}") ;;
      qt-wayland:6) entries+=("${qt6_wayland[@]}") ;;
      *) entries+=("$entry") ;;
    esac
  done
  if command -v dpkg-query > /dev/null; then
    # The names of all installed packages, and those that they provide.
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}, ${Provides}\n' |
      sed -n 's/^installed //p' | tr ', ' '\n')
  fi
  for entry in "${entries[@]}"; do
    is_present "$entry" || printf '%s\n' "${entry%%:*}"
  done
}

# Prints the major version of Qt to build with: 6 if apt offers Qt 6 but not Qt 5, else 5. Without apt, 6 if only Qt 6 is
# installed.
selected_qt() {
  local is_available=apt_offers
  command -v apt-cache > /dev/null || is_available=has_modules
  if ! $is_available qtbase5-dev Qt5Widgets && $is_available qt6-base-dev Qt6Widgets; then echo 6; else echo 5; fi
}

# For selected_qt, with a package and a module.
apt_offers() { LC_ALL=C apt-cache policy "$1" | grep '^ *Candidate: [0-9]' > /dev/null; }
has_modules() { command -v pkg-config > /dev/null && pkg-config --exists "$2"; }

# apt_get ARGUMENT ...: runs apt-get for install_missing; prints its output only if it fails.
apt_get() {
  output=$("${as_root[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get --option Dpkg::Use-Pty=0 "$@" 2>&1) || {
    printf '%s\n' "$output" >&2
    fail "this command failed: apt-get $*"
  }
}

# Exits with an error message if CMake is too old for the presets: the installed one or, without one, apt's candidate.
check_cmake() {
  local required found found_by
  required=$(sed -En 's/.*"cmakeMinimumRequired".*"major": ([0-9]+), "minor": ([0-9]+).*/\1.\2/p' CMakePresets.json)
  if command -v cmake > /dev/null; then
    found=$(cmake --version | sed -En '1s/^cmake version //p')
    found_by="the installed version is"
  elif command -v apt-cache > /dev/null; then
    found=$(LC_ALL=C apt-cache policy cmake | sed -En 's/^ *Candidate: ([0-9.]+).*/\1/p')
    found_by="apt offers"
  fi
  [ -z "${found-}" ] || printf '%s\n' "$required" "$found" | sort --check=quiet --version-sort ||
    fail "CMake is too old: $required or newer is required, and $found_by $found."
}

# The probes of the lists.
probe_program() { command -v "$1"; }
# Without pkg-config, assumes that the modules are present; otherwise CMake reports them.
probe_modules() { ! command -v pkg-config || pkg-config --exists "$@"; }
probe_nothing() { :; }

# is_present ENTRY: for missing_packages.
is_present() {
  if [ -n "$installed" ]; then
    grep --quiet --line-regexp --fixed-strings -e "${1%%:*}" <<< "$installed"
  else
    # shellcheck disable=SC2086 # the probe and its arguments
    probe_${1#*:} > /dev/null
  fi
}
