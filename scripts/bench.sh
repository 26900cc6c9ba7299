#!/usr/bin/env bash
# Installs missing packages, builds Pendrix 3D, runs the benchmarks and prints a table of durations and ratios.
#   scripts/bench.sh --short   checks that every benchmark runs; its figures are not meaningful
set -euo pipefail
export LC_ALL=C # a dot in numbers
repetitions=9 seconds=0.1 starts=11 every=1
case "$#:${1-}" in
  0:) ;;
  1:--short) repetitions=1 seconds=0.01 starts=1 every=1000 ;;
  *) echo "usage: scripts/bench.sh [--short]" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
install_missing "${to_build[@]}" "${to_measure[@]}"
cmake --preset release
cmake --build --preset release --target pendrix3d benchmarks
on_display=scripts/on-virtual-display.sh
engine=build/release/benchmarks/engine
app=build/release/benchmarks/app
figures=$(mktemp)
messages=$(mktemp)
trap 'rm -f "$figures" "$messages"' EXIT

# measure COMMAND ...: runs it as a benchmark and adds lines "NAME MICROSECONDS", medians of processor time.
measure() {
  "$@" --benchmark_format=csv --benchmark_min_time="$seconds" --benchmark_repetitions="$repetitions" 2> "$messages" |
    awk -F, -v repetitions="$repetitions" '
      { gsub(/"/, "", $1) }
      $5 == "us" && (repetitions == 1 || sub(/_median$/, "", $1)) { print $1, $4 }' >> "$figures" || {
    cat "$messages" >&2
    return 1
  }
}
measure "$engine/CurveBenchmark"
measure "$on_display" "$app/WindowBenchmark"

{
  echo "Measured on$(sed -n 's/^model name[^:]*://p' /proc/cpuinfo | head -n 1), $(nproc) processors"
  awk '
    {
      time[$1] = $2
      if (match($1, /mode:[0-9]+/) && substr($1, RSTART + 5, RLENGTH - 5) + 0 > other)
        other = substr($1, RSTART + 5, RLENGTH - 5) + 0 # the mode after the last one
    }
    function ratio(what) { return what in time ? sprintf("%.2f", time[what] / time["bareSines"]) : "-" }
    function row(title, what) { printf "%-42s %6s\n", title, ratio(what) }
    function modes(title, what,    mode) {
      printf "%-42s", title
      for (mode = 0; mode <= other; ++mode)
        printf " %6s", ratio(what "mode:" mode)
      print ""
    }
    function methods(what,    mode) {
      printf "\n%-42s", "by colour mode"
      for (mode = 0; mode < other; ++mode)
        printf " %6d", mode
      printf " %6s\n", "other"
      modes("sines by libm", what "/method:0/")
      modes("baseline (SSE2 on x86-64)", what "/method:1/")
      modes("AVX2", what "/method:2/")
      modes("AVX-512", what "/method:3/")
    }
    END {
      printf "\nMultiples of the bare sines of a curve by libm, which take %.0f us\n\n", time["bareSines"]
      row("damped sines by libm", "dampedSinesOnly/method:0")
      row("baseline (SSE2 on x86-64)", "dampedSinesOnly/method:1")
      row("AVX2", "dampedSinesOnly/method:2")
      row("AVX-512", "dampedSinesOnly/method:3")
      row("draw, entry points that do nothing", "draw")
      row("the same calls with ready-made floats", "drawFloats")
      print "\nA pass. Required: 0.55 or less for the baseline, 0.30 or less for AVX2 and AVX-512"
      methods("pass")
      modes("point by point, the reference of the tests", "pointByPoint/")
      print "\nA pass and draw. Required: less than 1.00 for the baseline, 0.70 for AVX2 and AVX-512"
      methods("passAndDraw")
      print "\nOther durations, in us"
      printf "%-42s %6.0f\n", "palette of 512 colours", time["palette"]
      printf "%-42s %6.0f\n", "settings, load", time["loadSettings"]
      printf "%-42s %6.0f\n", "settings, save", time["saveSettings"]
      printf "%-42s %6.0f\n", "copy 64 rows", time["copyRows"]
      printf "%-42s %6.0f\n", "paste 64 rows", time["pasteRows"]
    }' "$figures"
  printf '\nThe program compared with its form and a static curve. Required: 1.05 or less for memory and processor per frame\n'
  "$on_display" benchmarks/app/start-and-frames.sh \
    build/release/pendrix3d "$app/pendrix_skeleton" "$app/libpendrix_first_frame.so" "$starts"
  echo
  "$engine/SineErrorBenchmark" "$every"
} | tee build/release/bench.txt
