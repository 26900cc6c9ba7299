# shellcheck shell=bash
# Sourced by the scripts: installs what they need on Debian, elsewhere says what is missing.

# A requirement is Debian's package and, after a colon, how to see that it is there on a system without dpkg.
# shellcheck disable=SC2034 # used by those who source this file
to_build=(
  "g++:command -v c++"
  "cmake:command -v cmake"
  "ninja-build:command -v ninja"
  "qtbase5-dev:pkg-config --exists Qt5Widgets Qt5Test"
  "libgl-dev:pkg-config --exists gl"
  "libx11-dev:pkg-config --exists x11"
  "libgl1-mesa-dri:true"
  "fonts-dejavu-core:true"
  "xvfb:command -v Xvfb"
)
# shellcheck disable=SC2034
to_check=(
  "clang:command -v clang++"
  "clang-format:command -v clang-format"
  "clang-tidy:command -v clang-tidy"
  "clazy:command -v clazy-standalone"
  "libbenchmark-dev:pkg-config --exists benchmark"
  "shellcheck:command -v shellcheck"
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

is_present() {
  if command -v dpkg-query > /dev/null; then
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "${1%%:*}" 2> /dev/null)" = installed ]
  else
    bash -c "${1#*:}" > /dev/null 2>&1
  fi
}
