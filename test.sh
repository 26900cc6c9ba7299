#!/usr/bin/env bash
# Installs missing packages, builds everything and runs all tests. Passes its arguments to CMake's configure step.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}"
cmake --preset release "$@"
cmake --build --preset release
ctest --preset release --parallel "$(nproc)"
