#!/usr/bin/env bash
# Runs the checks that take too long for .ci/run, and ends with a summary line for each section.
#   scripts/long-checks.sh [SECTION ...]   runs only these sections; see `select_names` below
# FUZZ_SECONDS is the duration of each fuzzer's run, 1800 by default. The section fresh-systems requires root and passes
# the words of FRESH_OPTIONS to its scripts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# check SECTION
check() {
  case "$1" in
    exhaustive) # large samples, all scale factors, Wayland, the embedding example; once more under the sanitizers
      configure_and_build release &&
        run_exhaustive_tests release &&
        configure_and_build asan &&
        run_exhaustive_tests asan
      ;;
    opengl-errors) # the tests of the debug build check for an OpenGL error after each call
      configure_and_build debug && ctest --preset debug
      ;;
    clang) configure_and_build clang && ctest --preset clang ;;
    fuzz) configure_and_build fuzz && scripts/fuzz.sh "${FUZZ_SECONDS-1800}" ;;
    reproducible) scripts/reproducible-build.sh ;;
    every-build) scripts/every-build.sh ;;
    compare-qt) scripts/compare-qt.sh ;;
    memcheck) scripts/memcheck.sh ;;
    web) scripts/web-checks.sh ;;
    recipes) scripts/recipes.sh ;;
    fresh-systems)
      # shellcheck disable=SC2086 # words
      scripts/fresh-system.sh ${FRESH_OPTIONS-} && scripts/fresh-install.sh ${FRESH_OPTIONS-}
      ;;
  esac
}

configure_and_build() { cmake --preset "$1" && cmake --build --preset "$1"; }

run_exhaustive_tests() {
  ctest --test-dir "build/$1" --label-regex exhaustive --output-on-failure --no-tests=error
}

. scripts/select-names.sh
select_names "scripts/long-checks.sh [SECTION ...]" \
  "exhaustive opengl-errors clang fuzz reproducible every-build compare-qt memcheck web recipes fresh-systems" "$@"

. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_check[@]}"
export CTEST_PARALLEL_LEVEL
CTEST_PARALLEL_LEVEL=$(nproc)
summary=
status=0
for section in "${selected[@]}"; do
  printf '\n==> %s\n' "$section"
  SECONDS=0
  result=passed
  check "$section" || { result=FAILED; status=1; }
  printf -v line '%-14s %s in %d min %02d s\n' "$section" "$result" $((SECONDS / 60)) $((SECONDS % 60))
  summary+=$line
done
printf '\nLong checks of commit %s:\n%s' "$(git describe --always --dirty)" "$summary"
exit "$status"
