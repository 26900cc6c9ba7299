#!/usr/bin/env bash
# Runs the program of the debug build under valgrind's memcheck on a virtual display, operates it and closes it. Fails
# if memcheck finds an error or a definite leak. Takes a few minutes. Part of scripts/long-checks.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_check_memory[@]}"
cmake --preset debug
cmake --build --preset debug --target pendrix3d pendrix_screenshot
scripts/on-virtual-display.sh build/debug/tools/pendrix_screenshot \
  tests/memcheck/program.sh build/debug/memcheck.png tests/memcheck/use.sh
echo "memcheck.sh: no errors. Screenshot before the window was closed: build/debug/memcheck.png"
