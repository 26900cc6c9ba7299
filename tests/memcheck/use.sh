#!/usr/bin/env bash
# Operates the running program, for scripts/memcheck.sh: rows, an edit, drags, another size, copy, paste, reset and the
# about box. Fails if the rows, the boxes or the size are not as expected.
set -euo pipefail

# until_true COMMAND ...: waits up to a minute until the command succeeds; memcheck is slow.
until_true() {
  for _ in {1..240}; do
    ! "$@" || return 0
    sleep 0.25
  done
  echo "use.sh: no success within a minute: $*" >&2
  return 1
}

# copies_row NUMBER: copies the rows; succeeds if the first one begins with the number.
copies_row() {
  xdotool key ctrl+c
  sleep 0.5
  grep --quiet --fixed-strings --line-regexp "$1" <(timeout 20 xclip -selection clipboard -out | cut --fields=1 | head --lines=1)
}

other_size() { [[ $(xdotool getwindowgeometry "$window") == *900x700 ]]; }
visible_windows() { xdotool search --onlyvisible --class pendrix3d; }
has_menu() { [ "$(visible_windows | wc --lines)" -gt 1 ]; }
has_box() {
  box=$(xdotool getwindowfocus)
  [ "$box" != "$window" ] && visible_windows | grep --line-regexp "$box" > /dev/null
}
is_closed() { ! visible_windows | grep --line-regexp "$1" > /dev/null; }

# click X Y: clicks at a position in the window.
click() { xdotool mousemove --window "$window" "$1" "$2" click 1; }

# drag BUTTON: drags the curve.
drag() {
  xdotool mousemove --window "$window" 550 300 mousedown "$1"
  for x in 560 575 590 600; do
    xdotool mousemove --window "$window" "$x" $((x - 260))
  done
  xdotool mouseup "$1"
}

window=$(xdotool search --sync --onlyvisible --name '^Pendrix 3D$' | head --lines=1)
xdotool windowfocus --sync "$window"

# Select rows, edit the first cell.
click 80 95
for key in Down Down Right Page_Down Page_Up Home; do
  xdotool key "$key"
done
click 80 95
xdotool key ctrl+Home
xdotool type 7.25
xdotool key Return
until_true copies_row 7.25

drag 1
drag 3
xdotool windowsize "$window" 900 700
until_true other_size

# Paste rows from another program.
printf '%s\t2\t3\t0.25\t0.5\t4\n' {100..163} | xclip -selection clipboard -in
xdotool key ctrl+v
until_true copies_row 100

# Answer the boxes of the File menu: the first with OK, the second with Escape.
click 20 10
until_true has_menu
xdotool key Down Return
until_true has_box
xdotool key Left Return
until_true is_closed "$box"
xdotool windowfocus --sync "$window"
until_true copies_row 1

click 20 10
until_true has_menu
xdotool key Down Down Return
until_true has_box
xdotool key Escape
until_true is_closed "$box"
xdotool windowfocus --sync "$window"
