#!/usr/bin/env bash
# Fails unless CHECKER, the library built from OpenGLErrorCheck.cpp, has every OpenGL entry point that the libraries call:
# checked-entry-points.sh CHECKER LIBRARY ...
set -euo pipefail

checker=$1
shift
called=$(nm --undefined-only --format=just-symbols "$@" | grep '^gl[A-Z]' | sort --unique)
offered=$(nm --dynamic --defined-only --format=just-symbols "$checker" | grep '^gl[A-Z]' | sort --unique)
missing=$(comm -23 <(echo "$called") <(echo "$offered"))
if [ -n "$missing" ]; then
  printf 'checked-entry-points.sh: missing in OpenGLEntryPoints.h:\n%s\n' "$missing" >&2
  exit 1
fi
echo "$(wc --lines <<< "$called") entry points are called and checked"
