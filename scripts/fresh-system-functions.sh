# shellcheck shell=bash
# Sourced by the scripts that try the project in a Debian 12 system with nothing else in it. They run as root.

# Both are set by begin_fresh: the folder that everything is made in and that goes at the end, and the base system.
scratch=
base=
current="the start"

# begin_fresh [--base FOLDER]: reads the arguments of the script and makes `scratch`. At the end of the script, however
# that comes, the folder is removed and the outcome is said.
begin_fresh() {
  case "$#:${1-}" in
    0:) ;;
    2:--base) base=$(realpath --canonicalize-missing "$2") ;;
    *) echo "usage: $0 [--base FOLDER]" >&2; exit 2 ;;
  esac
  if [ "$(id -u)" -ne 0 ]; then
    echo "Only root can make a system in a folder." >&2
    exit 1
  fi
  local program
  for program in debootstrap unshare git; do
    command -v "$program" > /dev/null || { echo "Missing: $program" >&2; exit 1; }
  done
  scratch=$(mktemp --directory)
  trap end_fresh EXIT
  trap 'exit 130' INT TERM
}

end_fresh() {
  local status=$?
  # Nothing is ever mounted there but in namespaces that are gone by now; in doubt, leave other file systems alone.
  rm --recursive --force --one-file-system "$scratch"
  [ "$status" -eq 0 ] || printf '\n%s: FAILED at: %s\n' "${0##*/}" "$current" >&2
}

# step WHAT: says what comes now.
step() {
  current=$*
  printf '\n==> %s\n' "$current"
}

# bootstrap FOLDER: a minimal Debian 12, by debootstrap, from the mirror that it takes by itself.
bootstrap() {
  # What debootstrap mounts on the way vanishes with its namespace, even if it is stopped.
  unshare --mount --pid --fork --kill-child \
    debootstrap --variant=minbase bookworm "$1" > "$scratch/debootstrap.log" 2>&1 < /dev/null ||
    { tail --lines=20 "$scratch/debootstrap.log" >&2; return 1; }
}

# make_system NAME: a fresh system in the folder NAME of `scratch`; a copy of the base, if the user keeps one.
make_system() {
  if [ -z "$base" ]; then
    bootstrap "$scratch/$1"
    return
  fi
  if [ ! -e "$base" ]; then
    rm --recursive --force --one-file-system "$base.part" # of a script that was stopped
    bootstrap "$base.part"
    mv "$base.part" "$base"
  fi
  [ -e "$base/etc/debian_version" ] || { echo "There is no Debian system in $base." >&2; exit 1; }
  cp --archive "$base" "$scratch/$1"
}

# in_system NAME COMMAND [ARGUMENT ...]: runs a command there, as root, in root's home. Its processes and what it mounts
# end with it.
in_system() {
  local root=$scratch/$1
  shift
  unshare --mount --pid --fork --kill-child --root="$root" --mount-proc --wd=/root \
    /usr/bin/env --ignore-environment HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@" < /dev/null
}

# clone_into NAME: the commit of this checkout, as pendrix3d in root's home there.
clone_into() {
  local checkout
  checkout=$(git rev-parse --show-toplevel)
  [ -z "$(git status --porcelain)" ] || echo "What is not committed does not take part."
  git clone --quiet --no-local "$checkout" "$scratch/$1/root/pendrix3d"
}
