#!/usr/bin/env bash
# Runs a command on a virtual X display of its own with software OpenGL: on-virtual-display.sh COMMAND [ARGUMENT ...]
# The command has a settings folder of its own, too, so that the user's is left alone. Ends with its exit status.
# VIRTUAL_SCREEN is the size of the display in pixels, 1280x1024 unless given.
set -euo pipefail

scratch=$(mktemp --directory)
Xvfb -displayfd 3 -screen 0 "${VIRTUAL_SCREEN:-1280x1024}x24" -nolisten tcp 3> "$scratch/display" 2> "$scratch/messages" &
server=$!
trap 'kill "$server" 2> /dev/null || :; wait "$server" 2> /dev/null || :; rm -rf "$scratch"' EXIT

# Once it can be used, the server writes the number of the free display that it took.
for _ in {1..400}; do
  [ ! -s "$scratch/display" ] || break
  kill -0 "$server" 2> /dev/null || break
  sleep 0.05
done
if [ ! -s "$scratch/display" ]; then
  echo "The virtual display did not start:" >&2
  cat "$scratch/messages" >&2
  exit 1
fi

DISPLAY=:$(< "$scratch/display")
export DISPLAY LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$scratch XDG_CONFIG_HOME=$scratch/settings
unset WAYLAND_DISPLAY XAUTHORITY
# The look is the toolkit's own, whatever the desktop.
unset QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE XDG_CURRENT_DESKTOP
"$@"
