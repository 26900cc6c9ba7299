#!/usr/bin/env bash
# Starts the program of the debug build under valgrind's memcheck on a virtual display, uses it from outside, closes it,
# and fails if memcheck finds an error or a block that is definitely lost. Takes a few minutes, and is no part of .ci/run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_check_memory[@]}"
cmake --preset debug
cmake --build --preset debug --target pendrix3d pendrix_screenshot
scripts/on-virtual-display.sh build/debug/tools/pendrix_screenshot \
  tests/memcheck/program.sh build/debug/memcheck.png tests/memcheck/use.sh
echo "Memcheck has found nothing. The window at the end: build/debug/memcheck.png"
