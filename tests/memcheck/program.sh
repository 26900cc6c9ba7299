#!/usr/bin/env bash
# Runs the program under memcheck, for scripts/memcheck.sh. Exits with 99 if memcheck finds an error.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

# The software renderer compiles its shaders at run time: limit it to vectors that valgrind supports and to one thread.
# GLib allocates from libc, without pools that would hide leaks.
export LP_NATIVE_VECTOR_WIDTH=128 LP_NUM_THREADS=0 MESA_SHADER_CACHE_DISABLE=true G_SLICE=always-malloc
# Keep the function names of unloaded libraries: suppressions refer to them.
exec valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
  --suppressions=tests/memcheck/valgrind.supp --error-exitcode=99 \
  --keep-debuginfo=yes --num-callers=60 --child-silent-after-fork=yes build/debug/pendrix3d
