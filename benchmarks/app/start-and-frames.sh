#!/usr/bin/env bash
# Compares the program with pendrix_skeleton: start-and-frames.sh PROGRAM SKELETON PRELOAD [N]
# Starts PROGRAM and SKELETON alternately, N times each, with PRELOAD (libpendrix_first_frame.so), which measures their
# frames. Prints medians and quartiles. N is 11 by default; a start takes about seven seconds.
# Requires a display: scripts/on-virtual-display.sh benchmarks/app/start-and-frames.sh ...
set -euo pipefail
export LC_ALL=C # a dot in numbers

if [ $# -lt 3 ] || [ $# -gt 4 ]; then
  sed -n '2,5s/^# //p' "${BASH_SOURCE[0]}" >&2
  exit 2
fi
program=$(realpath "$1")
skeleton=$(realpath "$2")
preload=$(realpath "$3")
rounds=${4:-11}

pid=
scratch=$(mktemp --directory)
trap '[ -z "$pid" ] || kill "$pid" 2> /dev/null || :; rm -rf "$scratch"' EXIT
mkfifo "$scratch/report"
exec 3<> "$scratch/report"

# measure NAME PROGRAM: starts PROGRAM without settings and adds NAME and its report to the figures.
measure() {
  local report
  rm -rf "$scratch/settings"
  (
    # All runs share a cache of compiled shaders with each other only.
    export XDG_CONFIG_HOME=$scratch/settings XDG_CACHE_HOME=$scratch/cache QT_XCB_GL_INTEGRATION=xcb_glx
    export LD_PRELOAD=$preload FIRST_FRAME_REPORT=$scratch/report FIRST_FRAME_START=$EPOCHREALTIME
    exec "$2"
  ) &
  pid=$!
  if ! read -r -t 120 -u 3 report; then
    echo "start-and-frames.sh: no report within 120 s: $2" >&2
    exit 1
  fi
  kill "$pid" 2> /dev/null || :
  wait "$pid" 2> /dev/null || :
  pid=
  echo "$1 $report" >> "$scratch/figures"
}

# Fill the caches: do not count the first start of each program.
measure program "$program"
measure skeleton "$skeleton"
: > "$scratch/figures"
for ((round = 0; round < rounds; ++round)); do
  if ((round % 2 == 0)); then
    measure program "$program"
    measure skeleton "$skeleton"
  else
    measure skeleton "$skeleton"
    measure program "$program"
  fi
done

awk '
  function note(what, value) { figures[$1, what, ++count[$1, what]] = value }

  # Returns the quantile PART, 0 to 1, of the figures WHAT of NAME.
  function quantile(name, what, part,    n, i, j, place, low, sorted) {
    n = count[name, what]
    for (i = 1; i <= n; ++i) {
      for (j = i; j > 1 && sorted[j - 1] > figures[name, what, i]; --j)
        sorted[j] = sorted[j - 1]
      sorted[j] = figures[name, what, i]
    }
    place = 1 + part * (n - 1)
    low = int(place)
    return low == n ? sorted[n] : sorted[low] + (place - low) * (sorted[low + 1] - sorted[low])
  }

  function column(name, what) {
    printf " %8.2f  %7.2f .. %7.2f", quantile(name, what, 0.5), quantile(name, what, 0.25), quantile(name, what, 0.75)
  }

  function line(title, what) {
    printf "%-28s", title
    column("program", what)
    printf "  "
    column("skeleton", what)
    printf "  %6.3f\n", quantile("program", what, 0.5) / quantile("skeleton", what, 0.5)
  }

  {
    note("first", $2 * 1000)
    note("work", $3 * 1000)
    note("memory", $4 / 1024)
    note("rate", $5 / $6)
    note("processor", $7 / $5 * 1000)
    note("later", $8 / 1024)
  }

  END {
    printf "%-28s %8s  %18s   %8s  %18s  %6s\n", "", "program", "quartiles", "skeleton", "quartiles", "ratio"
    line("start to first frame, ms", "first")
    line("processor until then, ms", "work")
    line("resident then, MB", "memory")
    line("resident after 6 s, MB", "later")
    line("processor per frame, ms", "processor")
    line("frames per second", "rate")
  }' "$scratch/figures"
