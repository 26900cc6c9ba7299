#!/usr/bin/env bash
# Runs both fuzzers of the preset fuzz, which must be built, for SECONDS: fuzz.sh SECONDS
# Reports the number of inputs. Fails if a fuzzer finds an error, and keeps the input in build/fuzz/findings. The seed
# is fixed, so that every run tries the same inputs in the same order.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ $# -eq 1 ] || { echo "usage: scripts/fuzz.sh SECONDS" >&2; exit 2; }

# fuzz NAME CORPUS MAX_LENGTH SECONDS
fuzz() {
  local log=build/fuzz/$1.log found=build/fuzz/found/$2
  rm -rf "$found"
  mkdir -p build/fuzz/findings "$found"
  # The corpus tests check for leaks.
  if ASAN_OPTIONS=detect_leaks=0 "build/fuzz/tests/fuzz/$1" -seed=1 "-max_total_time=$4" "-max_len=$3" -timeout=30 \
    -rss_limit_mb=2048 -artifact_prefix=build/fuzz/findings/ "-dict=tests/fuzz/$2.dict" \
    "$found" "tests/fuzz/corpus/$2" > "$log" 2>&1; then
    printf '%s: %s\n' "$1" "$(tail --lines=1 "$log")"
  else
    cat "$log" >&2
    return 1
  fi
}

fuzz SettingsFuzz settings 8192 "$1" &
settings=$!
fuzz ClipboardFuzz clipboard 4096 "$1" &
status=0
wait "$settings" || status=1
wait $! || status=1
[ "$status" -eq 0 ] || echo "fuzz.sh: a fuzzer found an error: see build/fuzz/findings" >&2
exit "$status"
