# shellcheck shell=bash
# Sourced by the scripts that test the project in a bare Debian system. They run as root.

# Set by begin_fresh: the temporary folder, the folder of the base system or nothing, the Debian suite, `yes` if the
# archive may have expired, and the major version of Qt that the system must use.
scratch=
base=
suite=bookworm
allow_expired=
qt_major=5
current="the start"

# begin_fresh [--base FOLDER] [--allow-expired] [--without-qt5] [SUITE]: parses the arguments of the script and creates
# `scratch`. When the script exits, the folder is removed, and a failure is reported.
begin_fresh() {
  while [ $# -gt 0 ]; do
    case "$#:$1" in
      1:--base) break ;;
      *:--base) base=$(realpath --canonicalize-missing "$2"); shift ;;
      *:--allow-expired) allow_expired=yes ;;
      *:--without-qt5) qt_major=6 ;;
      1:[a-z]*) suite=$1 ;;
      *) break ;;
    esac
    shift
  done
  [ $# -eq 0 ] || { echo "usage: $0 [--base FOLDER] [--allow-expired] [--without-qt5] [SUITE]" >&2; exit 2; }
  if [ "$(id -u)" -ne 0 ]; then
    echo "${0##*/}: must be run as root" >&2
    exit 1
  fi
  local program
  for program in debootstrap unshare git; do
    command -v "$program" > /dev/null || { echo "${0##*/}: missing program: $program" >&2; exit 1; }
  done
  scratch=$(mktemp --directory)
  trap end_fresh EXIT
  trap 'exit 130' INT TERM
}

end_fresh() {
  local status=$?
  # All mounts were in namespaces that no longer exist; --one-file-system is a second safeguard.
  rm --recursive --force --one-file-system "$scratch"
  [ "$status" -eq 0 ] || printf '\n%s: FAILED at: %s\n' "${0##*/}" "$current" >&2
}

# step TITLE: begins a step and prints its title.
step() {
  current=$*
  printf '\n==> %s\n' "$current"
}

# bootstrap FOLDER: creates a minimal system of the suite with debootstrap, from its default mirror. Fails if it cannot
# verify the archive's signature; an older Debian may require a newer debian-archive-keyring.
bootstrap() {
  # The namespace also removes the mounts of an interrupted debootstrap.
  unshare --mount --pid --fork --kill-child \
    debootstrap --force-check-gpg --variant=minbase "$suite" "$1" > "$scratch/debootstrap.log" 2>&1 < /dev/null ||
    { tail --lines=20 "$scratch/debootstrap.log" >&2; return 1; }
}

# make_system NAME: creates a bare system in the folder NAME of `scratch`, as a copy of the base system if there is one.
make_system() {
  if [ -z "$base" ]; then
    bootstrap "$scratch/$1"
  else
    if [ ! -e "$base" ]; then
      rm --recursive --force --one-file-system "$base.part" # from an interrupted run
      bootstrap "$base.part"
      mv "$base.part" "$base"
    fi
    grep --quiet --word-regexp "$suite" "$base/etc/apt/sources.list" ||
      { echo "${0##*/}: not a Debian system of the suite $suite: $base" >&2; exit 1; }
    cp --archive "$base" "$scratch/$1"
  fi
  if [ -n "$allow_expired" ]; then
    echo "apt accepts an expired archive; it still verifies the signatures."
    echo 'Acquire::Check-Valid-Until "false";' > "$scratch/$1/etc/apt/apt.conf.d/allow-expired"
  fi
  if [ "$qt_major" = 6 ]; then
    printf 'Package: qtbase5-dev libqt5*\nPin: release *\nPin-Priority: -1\n' \
      > "$scratch/$1/etc/apt/preferences.d/without-qt5"
  fi
}

# in_system NAME COMMAND [ARGUMENT ...]: runs a command in the system as root, in root's home, with /proc and pseudo
# terminals. Its processes and mounts end with it.
in_system() {
  local root=$scratch/$1
  shift
  unshare --mount --pid --fork --kill-child --root="$root" --mount-proc --wd=/root \
    /usr/bin/env --ignore-environment HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb LANG=C.UTF-8 \
    sh -c 'mount -t devpts -o newinstance,ptmxmode=0666 devpts /dev/pts && exec "$@"' sh "$@" < /dev/null
}

# check_qt NAME: fails unless the programs in the folder build/release of the system's clone use the expected Qt.
check_qt() {
  in_system "$1" ldd pendrix3d/build/release/pendrix3d pendrix3d/build/release/pendrix3d-export > "$scratch/libraries"
  if ! grep --quiet "libQt${qt_major}Core" "$scratch/libraries" || grep "libQt[^$qt_major]" "$scratch/libraries"; then
    echo "The programs do not use Qt $qt_major." >&2
    return 1
  fi
  echo "The programs use Qt $qt_major."
}

# clone_into NAME: clones the current commit to pendrix3d in root's home in the system.
clone_into() {
  local checkout
  checkout=$(git rev-parse --show-toplevel)
  [ -z "$(git status --porcelain)" ] || echo "Uncommitted changes are ignored."
  git clone --quiet --no-local "$checkout" "$scratch/$1/root/pendrix3d"
}
