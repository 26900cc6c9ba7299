#!/usr/bin/env bash
# Builds with --coverage, runs the default tests and prints the line coverage of the program's folders.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_cover[@]}"

folder=build/coverage
cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS=-O1 --coverage" > /dev/null
cmake --build "$folder"
find "$folder" -name '*.gcda' -delete
ctest --test-dir "$folder" --label-exclude exhaustive --output-on-failure --parallel "$(nproc)"
gcovr --root . --object-directory "$folder" --filter '(app|color|engine|export|numerics|table|view)/' \
  --exclude '.*/tests/.*' --exclude-directories '.*/CMakeFiles/[0-9.]+' --print-summary
