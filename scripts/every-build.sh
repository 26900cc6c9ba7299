#!/usr/bin/env bash
# Builds with g++ and clang++, each with -O0, -O2 and -O3 -march=native, with g++ and Qt 6, and with g++ for emulated
# 64-bit Arm. Fails unless all builds compute the same curves and colours, bit for bit. Then runs the default tests in
# each build, on Arm only those of numerics, color and engine.
#   scripts/every-build.sh [--digests-only] [BUILD ...]
# --digests-only skips the tests. BUILD ... selects builds from those of `select_names` below.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
with_tests=yes
if [ "${1-}" = --digests-only ]; then
  with_tests=
  shift
fi
. scripts/select-names.sh
select_names "scripts/every-build.sh [--digests-only] [BUILD ...]" \
  "g++-O0 g++-O2 g++-O3 clang++-O0 clang++-O2 clang++-O3 qt6 arm64" "$@"

. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_check[@]}"
[[ " ${selected[*]} " != *" qt6 "* ]] || install_missing "${qt6[@]}"

folder=$PWD/build/every
sysroot=$folder/arm64-sysroot

step() { printf '\n==> %s\n' "$*"; }

# Unpacks Debian's packages for Arm to `sysroot`, from the system's package sources. Does not change the system's
# package lists, packages and architectures.
prepare_sysroot() {
  local state=$folder/arm64-packages package link options
  rm -rf "$sysroot"
  mkdir -p "$sysroot" "$state/lists/partial" "$state/cache/archives/partial"
  : > "$state/status"
  options=(
    -o APT::Architecture=arm64 -o APT::Architectures=arm64 -o APT::Sandbox::User=
    -o "Dir::State=$state" -o "Dir::State::status=$state/status" -o "Dir::Cache=$state/cache"
  )
  apt-get "${options[@]}" -qq update
  apt-get "${options[@]}" -qq install --yes --download-only --no-install-recommends \
    qtbase5-dev libx11-dev libstdc++-12-dev
  for package in "$state"/cache/archives/*.deb; do
    dpkg-deb --extract "$package" "$sysroot"
  done
  # Absolute links would point outside the folder.
  find "$sysroot" -lname '/*' | while IFS= read -r link; do
    ln --symbolic --force --no-dereference "$sysroot$(readlink "$link")" "$link"
  done
  # moc, rcc and uic run during the build: use the native programs.
  rm -r "$sysroot/usr/lib/qt5/bin"
  ln --symbolic "$(qmake -query QT_HOST_BINS)" "$sysroot/usr/lib/qt5/bin"
  touch "$sysroot/complete"
}

# configure BUILD: BUILD is COMPILER-OPTIMISATION, qt6 or arm64.
configure() {
  local options flags
  case "$1" in
    arm64)
      flags=-O2
      options=(
        -DCMAKE_CXX_COMPILER=aarch64-linux-gnu-g++
        -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 -DCMAKE_LIBRARY_ARCHITECTURE=aarch64-linux-gnu
        "-DCMAKE_SYSROOT=$sysroot" "-DCMAKE_CROSSCOMPILING_EMULATOR=qemu-aarch64;-L;$sysroot"
        -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY
        -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY
      )
      ;;
    qt6)
      flags=-O2
      options=(-DCMAKE_CXX_COMPILER=g++ -DPENDRIX_QT=6)
      ;;
    *)
      flags=-${1#*-}
      options=("-DCMAKE_CXX_COMPILER=${1%%-*}")
      ;;
  esac
  [ "${1#*-}" != O3 ] || flags="-O3 -march=native"
  cmake -S . -B "$folder/$1" -G Ninja -DCMAKE_BUILD_TYPE= "-DCMAKE_CXX_FLAGS=$flags" \
    "${options[@]}" > "$folder/$1.log"
}

# digest BUILD: writes the output of CurveDigest to BUILD.digests.
digest() {
  local program=("$folder/$1/tests/engine/CurveDigest")
  [ "$1" != arm64 ] || program=(qemu-aarch64 -L "$sysroot" "${program[@]}")
  cmake --build "$folder/$1" --target CurveDigest > "$folder/$1.log" || {
    cat "$folder/$1.log"
    return 1
  }
  "${program[@]}" > "$folder/$1.digests"
}

# run_tests BUILD: fails if a test fails.
run_tests() {
  local targets=(all) selection=()
  if [ "$1" = arm64 ]; then
    targets=(tests/numerics/all tests/color/all tests/engine/all)
    selection=(--tests-regex '^(numerics|color|engine)/')
  fi
  if cmake --build "$folder/$1" --target "${targets[@]}" > "$folder/$1.tests" &&
    ctest --test-dir "$folder/$1" --output-on-failure --no-tests=error --label-exclude exhaustive "${selection[@]}" > "$folder/$1.tests"; then
    tail --lines=4 "$folder/$1.tests"
  else
    cat "$folder/$1.tests"
    return 1
  fi
}

mkdir -p "$folder"
if [[ " ${selected[*]} " == *" arm64 "* ]]; then
  install_missing "${to_build_for_arm[@]}"
  if [ ! -e "$sysroot/complete" ]; then
    step "Packages for Arm"
    prepare_sysroot
  fi
fi

failed=()
for build in "${selected[@]}"; do
  step "Digests: $build"
  configure "$build"
  digest "$build"
  if [ "$build" = "${selected[0]}" ]; then
    cat "$folder/$build.digests" # the reference for the others
  elif diff "$folder/${selected[0]}.digests" "$folder/$build.digests"; then
    echo "The same as ${selected[0]}"
  else
    failed+=("digests of $build")
  fi
done

if [ -n "$with_tests" ]; then
  for build in "${selected[@]}"; do
    step "Tests: $build"
    run_tests "$build" || failed+=("tests of $build")
  done
fi

step "All builds"
if [ ${#failed[@]} -gt 0 ]; then
  printf 'Failed: %s\n' "${failed[@]}" >&2
  exit 1
fi
echo "${#selected[@]} builds compute the same results."
