#!/usr/bin/env bash
# A machine that stands still uses no processor time, and does not catch up afterwards: paused, in
# the monitor, and while another window has the keyboard.
program=$1
source "$(dirname "$0")/desktop.sh"

title() { xdotool getwindowname "$window"; }

# stands_still WHY
stands_still() {
    local before used
    sleep 0.5
    before=$(ticks)
    sleep 2
    used=$(($(ticks) - before))
    ((used <= 3)) || fail "$1, the program used $used of 200 ticks"
}

# runs WHY: at full speed, as a report of every two seconds says; a busy host's come later
runs() {
    for _ in $(seq 8); do
        sleep 2.2
        if [[ $(title) =~ at\ (9[7-9]|10[0-3])% ]]; then return; fi
    done
    fail "$1, the title is $(title)"
}

start_server
start_program
runs "after the start"

xdotool key Pause
stands_still "paused"
[[ $(title) == "Tarvelin - (Suspended)" ]] || fail "paused, the title is $(title)"
xdotool key Pause
runs "after the pause"

xdotool key Escape
stands_still "in the monitor"
[[ $(title) == "Tarvelin - (Monitor)" ]] || fail "in the monitor, the title is $(title)"
xdotool key Escape
runs "after the monitor"

xdotool windowfocus "$(xwininfo -root | awk '/Window id/ {print $4}')"
stands_still "in the background"
xdotool windowfocus --sync "$window"
runs "back in the foreground"
