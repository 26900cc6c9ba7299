# shellcheck shell=bash
# Sourced by the scripts that run all of their sections or builds, or only those named on the command line.

# select_names USAGE NAMES [NAME ...]: sets `selected` to each NAME or, without one, to all words of NAMES. Prints USAGE
# and exits with 2 if a NAME is not one of NAMES.
select_names() {
  local usage=$1 names=$2 name
  shift 2
  for name in "$@"; do
    if [[ " $names " != *" $name "* ]]; then
      echo "usage: $usage; names: $names" >&2
      exit 2
    fi
  done
  # shellcheck disable=SC2034 # used by the scripts
  if [ $# -gt 0 ]; then selected=("$@"); else read -ra selected <<< "$names"; fi
}
