# shellcheck shell=bash
# Sourced by the scripts: installs what they need on Debian, elsewhere says what is missing.

# A requirement is Debian's package and, after a colon, the probe that tells on a system without dpkg.
# shellcheck disable=SC2034 # used by those who source this file
to_build=(
  "g++:program c++"
  "cmake:program cmake"
  "ninja-build:program ninja"
  "qtbase5-dev:modules Qt5Widgets Qt5Test"
  "libgl-dev:modules gl"
  "libx11-dev:modules x11"
  "libxres-dev:modules xres"
  "libgl1-mesa-dri:nothing"
  "fonts-dejavu-core:nothing"
  "xvfb:program Xvfb"
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
  "weston:program weston"
  "qtwayland5:nothing"
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

# install_missing REQUIREMENT ...: makes them present, or stops the script with a word on what is missing.
install_missing() {
  local requirement missing=()
  for requirement in "$@"; do
    is_present "$requirement" || missing+=("${requirement%%:*}")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  if ! command -v apt-get > /dev/null; then
    echo "Missing, by Debian's names: ${missing[*]}" >&2
    echo "There is no apt-get on this system. Please install them by its own means and start again." >&2
    exit 1
  fi
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo > /dev/null; then
      echo "Missing: ${missing[*]}" >&2
      echo "Only root can install them, and there is no sudo. Please have them installed and start again." >&2
      exit 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}"
  "${as_root[@]}" apt-get -qq update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq -o Dpkg::Use-Pty=0 install --yes --no-install-recommends "${missing[@]}" > /dev/null
}

probe_program() { command -v "$1"; }

# Without pkg-config nothing can be said, and CMake will tell.
probe_modules() { ! command -v pkg-config || pkg-config --exists "$@"; }

probe_nothing() { :; }

is_present() {
  if command -v dpkg-query > /dev/null; then
    dpkg-query --show --showformat='${db:Status-Status}\n' "${1%%:*}" 2> /dev/null | grep --quiet --line-regexp installed
  else
    # shellcheck disable=SC2086 # the probe and its arguments
    probe_${1#*:} > /dev/null
  fi
}
