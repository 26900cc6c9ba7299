#!/usr/bin/env bash
# Runs the soak test and the program of the debug build under valgrind's memcheck on a virtual display. SIGTERM ends the
# program after a minute, and the program saves its settings. Fails if memcheck finds an error or a definite leak. Takes
# several minutes. Part of scripts/long-checks.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_test[@]}" "${to_check_memory[@]}"
cmake --preset debug
cmake --build --preset debug --target pendrix3d Soak

# The software renderer compiles its shaders at run time: limit it to vectors that valgrind supports and to one thread.
# GLib allocates from libc, without pools that would hide leaks. Memcheck replaces the allocator that the variable
# GLIBC_TUNABLES configures, but the soak test restarts itself if it is not set.
export LP_NATIVE_VECTOR_WIDTH=128 LP_NUM_THREADS=0 G_SLICE=always-malloc GLIBC_TUNABLES=glibc.malloc.tcache_count=0
# Keep the function names of unloaded libraries: suppressions refer to them.
valgrind=(
  valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
  --suppressions=tests/memcheck.supp --error-exitcode=99
  --keep-debuginfo=yes --num-callers=60 --child-silent-after-fork=yes
)
scripts/on-virtual-display.sh "${valgrind[@]}" build/debug/tests/soak/Soak
scripts/on-virtual-display.sh timeout --signal=TERM --preserve-status 60 "${valgrind[@]}" build/debug/pendrix3d
echo "memcheck.sh: no errors"
