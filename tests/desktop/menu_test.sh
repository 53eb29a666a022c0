#!/usr/bin/env bash
# However the user walks through the menus by keyboard, afterwards the machine runs and takes keys.
program=$1
source "$(dirname "$0")/desktop.sh"

# has_keyboard: does the program take F6 for a screenshot?
has_keyboard() {
    rm -f Tarvelin*.v80
    xdotool key F6
    sleep 0.5
    [[ -s Tarvelin.v80 ]]
}

settings 'KeyMapping = 1'
start_server
start_window_manager
start_program
shows "MEM SIZE?" || fail "the firmware did not start"
xdotool key Return
keys=(alt+f alt+m alt+o alt+h alt alt+f Escape Escape Down Left Right)
RANDOM=17
for round in 1 2 3 4 5 6 7 8; do
    walk=()
    for _ in 1 2 3 4 5 6 7 8; do
        walk+=("${keys[RANDOM % ${#keys[@]}]}")
        xdotool key "${walk[-1]}"
        sleep 0.1
    done
    for _ in 1 2 3; do # a submenu, its menu, the menu bar
        if has_keyboard; then break; fi
        xdotool key Escape
        sleep 0.2
    done
    has_keyboard || fail "the keyboard is lost after ${walk[*]}"
    if [[ $(xdotool getwindowname "$window") == *"(Monitor)" ]]; then xdotool key Escape; fi
    xdotool key Return
    sleep 0.3
    xdotool type --delay 120 "rem $round"
    shows ">REM $round" || fail "nothing is typed after ${walk[*]}: $(screen)"
done
