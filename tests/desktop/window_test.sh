#!/usr/bin/env bash
# The window under a window manager: sizes, full screen and back, a menu, the close button, a signal.
program=$1
source "$(dirname "$0")/desktop.sh"

geometry() { xdotool getwindowgeometry "$window" | tr -s ' \n' ' ' | cut -d' ' -f4-; }
size() { geometry | sed 's/.*Geometry: \([0-9x]*\).*/\1/'; }

status=0
DISPLAY=:nowhere "$program" 2>display.log || status=$?
[[ $status == 1 && $(wc -l <display.log) == 1 ]] || fail "without a display: $status, $(cat display.log)"

start_server
start_window_manager
start_program
sleep 0.5
first=$(geometry)
normal=$(size)
[[ $normal == 768x* ]] || fail "the window is $normal"

xdotool key alt+Return
becomes "full screen" 1280x1024 size
xdotool key alt+Return
becomes "back from full screen" "$first" geometry

xdotool key alt+F2
becomes "giant screen" 1152x$((${normal#*x} + 288)) size
xdotool key alt+F2
becomes "normal screen" "$normal" size

xdotool key alt+o # opens the menu, where the program stands still
# A running machine uses several ticks in every second; what the host does besides comes and goes.
for _ in 1 2 3 4 5; do
    before=$(ticks)
    sleep 1
    used=$(($(ticks) - before))
    if ((used <= 1)); then break; fi
done
((used <= 1)) || fail "with a menu open, the program used $used of 100 ticks"
xdotool key g # Giant screen
becomes "giant screen by menu" 1152x$((${normal#*x} + 288)) size
xdotool windowsize "$window" 900 700
becomes "sized by the user" 900x700 size

xdotool key alt+F4 # the window manager's close
wait "$program_pid" || fail "the exit code is $?"
grep -q 'GiantScreen = 1' config/tarvelin/settings.toml || fail "the settings were not kept"

# A signal does not wait for the user to leave a dialog.
start_program
becomes "the size is remembered" 900x700 size
xdotool key alt+q
find_window 'Machine configuration' >/dev/null
kill "$program_pid"
wait "$program_pid" || fail "the exit code after a signal is $?"

settings 'FixedWindow = 1'
# Nor for the boxes that wait behind the first one.
start_program /s x /t x
find_window '^Tarvelin$' >/dev/null
window=$(find_window "^Tarvelin -")
[[ $(size) == 392x* ]] || fail "the fixed window is $(size)"
kill "$program_pid"
wait "$program_pid" || fail "the exit code after a signal is $?"
