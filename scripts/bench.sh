#!/usr/bin/env bash
# Installs what is missing, builds Pendrix 3D and measures it: one table, with ratios of what was measured in this run.
#   scripts/bench.sh --short   checks that every benchmark runs; its figures are worth little
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
cmake --build --preset release
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
measure "$engine/DrawBenchmark"
measure "$on_display" "$app/WindowBenchmark"

{
  echo "Measured on$(sed -n 's/^model name[^:]*://p' /proc/cpuinfo | head -n 1), $(nproc) processors"
  awk '
    { time[$1] = $2 }
    function ratio(what, to) { return what in time ? sprintf("%.2f", time[what] / time[to]) : "-" }
    function modes(title, what,    mode) {
      printf "%-42s", title
      for (mode = 0; mode <= 5; ++mode)
        printf " %6s", ratio(what "/mode:" mode, "bareSines")
      print ""
    }
    function row(title, what) { printf "%-42s %6s\n", title, ratio(what, "bareSines") }
    END {
      printf "\nBare sines of a curve, C library: %.0f us. As a multiple of that:\n", time["bareSines"]
      row("sines times amplitudes, C library", "sinesAlone/library")
      row("  baseline (SSE2 on x86-64)", "sinesAlone/baseline")
      row("  AVX2", "sinesAlone/avx2")
      row("  AVX-512", "sinesAlone/avx512")
      print "\nA pass, as a multiple of the same"
      printf "%-42s %6d %6d %6d %6d %6d %6s\n", "by colour mode", 0, 1, 2, 3, 4, "other"
      modes("point by point, as it is defined", "pointByPoint")
      modes("by steps, sines from the C library", "pass/library")
      modes("  baseline (SSE2 on x86-64)", "pass/baseline")
      modes("  AVX2", "pass/avx2")
      modes("  AVX-512", "pass/avx512")
      printf "\nReady-made floats to entry points that do nothing: %.0f us. As a multiple of that:\n", time["readyMadeFloats"]
      printf "%-42s %6s\n", "draw", ratio("draw", "readyMadeFloats")
      printf "%-42s %6s\n", "draw, with colours changed from outside", ratio("drawChangedColors", "readyMadeFloats")
      print "\nBeside them, in us"
      printf "%-42s %6.0f\n", "palette of 512 colours", time["palette"]
      printf "%-42s %6.0f\n", "settings, load", time["loadSettings"]
      printf "%-42s %6.0f\n", "settings, save", time["saveSettings"]
      printf "%-42s %6.0f\n", "copy 64 rows", time["copyRows"]
      printf "%-42s %6.0f\n", "paste 64 rows", time["pasteRows"]
    }' "$figures"
  printf '\nThe program beside its window with nothing in it\n'
  "$on_display" benchmarks/app/start-and-frames.sh \
    build/release/pendrix3d "$app/pendrix_baseline" "$app/libpendrix_first_frame.so" "$starts"
  echo
  "$engine/SineErrorBenchmark" "$every"
} | tee build/release/bench.txt
