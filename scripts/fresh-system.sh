#!/usr/bin/env bash
# Tries ./test.sh and ./run.sh --screenshot in a fresh Debian 12 with nothing else in it, on the commit of this
# checkout. As root, with debootstrap; downloads some hundreds of MB and takes its time, so it is no part of .ci/run.
#   scripts/fresh-system.sh --base FOLDER   keeps the bare system in FOLDER, and starts from there the next time
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/fresh-system-functions.sh
begin_fresh "$@"

step "A fresh Debian 12"
make_system debian
clone_into debian
in_project() { in_system debian env --chdir=/root/pendrix3d "$@"; }

step "./test.sh"
SECONDS=0
in_project ./test.sh
tested=$SECONDS

step "./run.sh --screenshot"
SECONDS=0
in_project ./run.sh --screenshot /root/screenshot.png
shown=$SECONDS
colors=$(in_project build/release/tests/support/pendrix_vivid_colors /root/screenshot.png)
[ "$colors" -ge 100 ] || { echo "The picture is blank: $colors vivid colours." >&2; exit 1; }

printf '\nFresh system: passed. ./test.sh took %d s, ./run.sh %d s; its picture has %d vivid colours.\n' \
  "$tested" "$shown" "$colors"
