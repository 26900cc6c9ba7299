#!/usr/bin/env bash
# Installs what is missing, builds Pendrix 3D and runs every test. Arguments go to CMake's configure step.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/packages.sh
install_missing "${to_build[@]}"
cmake --preset release "$@"
cmake --build --preset release
ctest --preset release
