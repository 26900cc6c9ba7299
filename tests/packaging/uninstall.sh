#!/usr/bin/env bash
# Tests the target `uninstall` in a new build folder: uninstall.sh SOURCE FOLDER PROGRAM PROGRAM CMAKE_OPTION ...
# Installs the two programs instead of building them. FOLDER is removed first.
set -euo pipefail
source=$1 folder=$2 programs=("$3" "$4")
shift 4
manifest=$folder/build/install_manifest.txt

# expect WHAT COMMAND ...: fails unless the command succeeds.
expect() { "${@:2}" || { echo "uninstall.sh: failed: $1" >&2; exit 1; }; }
has_no_files() { [ -z "$(find "$1" -type f)" ]; }
files_of() { find "$1" -type f | sort; }
uninstall() { cmake --build "$folder/build" --target uninstall; }

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
cmake -S "$source" -B build -DPENDRIX_BUILD_TESTS=OFF "$@" > log
cp "${programs[@]}" build/
ln -s /nonexistent/manifest "$manifest" # cannot be written, like the manifest of another user

DESTDIR=root cmake --install build --prefix /usr > log
expect "the manifest lists the files with DESTDIR" diff <(sort "$manifest") <(files_of "$folder/root")

cp "$manifest" manifest
cmake --install build --component pendrix3d --prefix "$folder/component" > log
(cd build && cpack -G TGZ) > log
expect "a component and a package leave the manifest alone" cmp "$manifest" manifest
expect "the component is the whole program" [ "$(files_of component | wc -l)" -eq "$(wc -l <<< "$(< manifest)")" ]
expect "the package is the whole program" \
  [ "$(tar --list --file="$(echo build/*.tar.gz)" | grep --count '[^/]$')" -eq "$(files_of component | wc -l)" ]

uninstall > log
expect "uninstall removes all files" has_no_files root
expect "uninstall removes the folder of the documents" [ ! -e root/usr/share/doc/pendrix3d ]
expect "uninstall removes nothing else" [ -x component/bin/pendrix3d ]

expect "without a manifest uninstall fails" eval '! uninstall > log'
expect "uninstall reports a missing manifest" grep --quiet "uninstall: nothing is installed" log

cmake --install build --prefix "$folder/préfixe à part" > log
uninstall > log
expect "uninstall removes files that were installed without DESTDIR" has_no_files "préfixe à part"
