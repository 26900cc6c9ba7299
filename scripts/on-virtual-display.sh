#!/usr/bin/env bash
# Runs a command on a virtual X display with software OpenGL: on-virtual-display.sh COMMAND [ARGUMENT ...]
# Settings and caches go to temporary folders, never to the user's. Exits with the status of the command.
# VIRTUAL_SCREEN is the size of the display in pixels, 1280x1024 by default.
set -euo pipefail

# In memory where possible, so that programs that save settings do not wait for the disk.
scratch=$(mktemp --directory --tmpdir=/dev/shm 2> /dev/null || mktemp --directory)
Xvfb -displayfd 3 -screen 0 "${VIRTUAL_SCREEN:-1280x1024}x24" -nolisten tcp 3> "$scratch/display" 2> "$scratch/messages" &
server=$!
trap 'kill "$server" 2> /dev/null || :; wait "$server" 2> /dev/null || :; rm -rf "$scratch"' EXIT

# Wait until the server accepts connections: it then writes the number of its display.
for _ in {1..400}; do
  [ ! -s "$scratch/display" ] || break
  kill -0 "$server" 2> /dev/null || break
  sleep 0.05
done
if [ ! -s "$scratch/display" ]; then
  echo "on-virtual-display.sh: the virtual display did not start:" >&2
  cat "$scratch/messages" >&2
  exit 1
fi

DISPLAY=:$(< "$scratch/display")
export DISPLAY LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$scratch
export XDG_CONFIG_HOME=$scratch/settings XDG_CACHE_HOME=$scratch/cache TMPDIR=$scratch
# Mesa reports a cache folder that it cannot create, for example after a change of the user id.
export MESA_SHADER_CACHE_DISABLE=true
unset WAYLAND_DISPLAY XAUTHORITY
# The same appearance on every system: Qt's own style and a fixed font resolution, which otherwise depends on Qt's
# version.
export QT_FONT_DPI=96
unset QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE XDG_CURRENT_DESKTOP
"$@"
