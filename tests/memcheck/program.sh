#!/usr/bin/env bash
# The program under memcheck, for memcheck.sh. Ends with 99 if memcheck finds anything.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

# The software renderer compiles its shaders while it runs: for vectors that valgrind knows, in one thread, and without
# the disk. Memory is taken from the C library directly, so that nothing hides in pools.
export LP_NATIVE_VECTOR_WIDTH=128 LP_NUM_THREADS=0 MESA_SHADER_CACHE_DISABLE=true G_SLICE=always-malloc
# Names of functions in libraries that the program has let go are kept: suppressions go by them.
exec valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
  --suppressions=tests/memcheck/valgrind.supp --error-exitcode=99 \
  --keep-debuginfo=yes --num-callers=60 --child-silent-after-fork=yes build/debug/pendrix3d
