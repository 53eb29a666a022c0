#!/usr/bin/env bash
# Makes every picture of the manual anew by running the program: the machine's own pictures without
# a display, the window and its dialogs on a virtual X server. The pictures go to docs/images.
# usage: scripts/manual-pictures.sh [BUILD-FOLDER]      without: build/release
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/dependencies.sh pictures
build=$(realpath "${1:-build/release}")
program=$build/src/tarvelin
examples=$build/examples
manual=$PWD/docs/manual.html
images=$PWD/docs/images
mkdir -p "$images"

work=$(mktemp -d)
program_pid=''
window=''
dialog=''
clean_up() {
    # shellcheck disable=SC2046 # one process each
    kill $program_pid ${manager_pid:-} ${server_pid:-} 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT
export HOME=$work XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data QT_QPA_PLATFORM=xcb
export SDL_AUDIODRIVER=dummy LC_ALL=C.UTF-8
unset WAYLAND_DISPLAY XDG_CURRENT_DESKTOP
cd "$work"

fail() {
    echo "manual-pictures: $*" >&2
    exit 1
}

# store NAME FILE [OPTIONS...]: as small as it gets, without the time
store() {
    convert "$2" "${@:3}" -strip +dither -colors 255 -define png:exclude-chunks=date,time \
        -define png:compression-level=9 "PNG8:$images/$1.png"
    printf '%-16s %6d bytes\n' "$1.png" "$(stat -c %s "$images/$1.png")"
}

# machine NAME SECONDS FILE: what the machine shows after so much time, twice as large
machine() {
    "$program" --headless /w /s "$2" /t $(($2 + 1)) "$3" >program.log 2>&1 ||
        fail "$3: $(cat program.log)"
    store "$1" "${3%.*}0000.gif" -sample 200%
}

# start ARGUMENTS...: the program, and the main window's number in `window`
start() {
    "$program" "$@" >program.log 2>&1 &
    program_pid=$!
    find_window window .
    xdotool windowactivate --sync "$window"
}
stop() {
    kill "$program_pid"
    wait "$program_pid" || true
    program_pid=
}

# find_window VARIABLE TITLE: the number of the program's window with such a title
find_window() {
    local -n found=$1
    for _ in $(seq 100); do
        found=$(xdotool search --all --onlyvisible --pid "$program_pid" --name "$2" 2>/dev/null |
            tail -n 1 || true)
        if [[ -n $found ]]; then return; fi
        sleep 0.1
    done
    fail "no window $2: $(cat program.log)"
}

# picture NAME WINDOW: the window with its frame, and what stands in front of it
picture() {
    sleep 0.7 # drawn to the end
    local area # the window, and the edges that the window manager has added to it
    area=$({
        xprop -id "$2" _NET_FRAME_EXTENTS
        xwininfo -id "$2"
    } | awk -F'[:=,] *' '/_NET_FRAME_EXTENTS/ {left = $2; right = $3; top = $4; bottom = $5}
        /Absolute upper-left X/ {x = $2 - left}
        /Absolute upper-left Y/ {y = $2 - top}
        / Width:/ {w = $2 + left + right}
        / Height:/ {h = $2 + top + bottom}
        END {print w "x" h "+" x "+" y}')
    import -silent -window root -crop "$area" +repage picture.png
    store "$1" picture.png
}

# press_until TITLE KEY: until the main window has the title; a menu may take the first press
press_until() {
    for _ in 1 2 3 4 5; do
        xdotool key "$2"
        sleep 0.7
        if [[ $(xdotool getwindowname "$window") == *"$1"* ]]; then return; fi
    done
    fail "the title is $(xdotool getwindowname "$window"), not $1"
}

cp "$examples/colours.cmd" "$examples/bounce.cmd" .
# The manual's own listing, so that it shows what it draws.
sed -n '/<pre id="listing">/,/<\/pre>/p' "$manual" | sed 's/<[^>]*>//g' >listing.bas
machine colours 2 colours.cmd
machine graphics 40 listing.bas

mkfifo display
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset 3>display 2>/dev/null &
server_pid=$!
DISPLAY=:$(head -n 1 display)
export DISPLAY
openbox >openbox.log 2>&1 &
manager_pid=$!
for _ in $(seq 50); do
    if xdotool get_desktop >/dev/null 2>&1; then break; fi
    sleep 0.1
done

start bounce.cmd
sleep 6 # the title shows the speed, and the program runs
picture window "$window"

xdotool key alt+f
picture menu "$window"
press_until '(Monitor)' Escape
xdotool key F4
picture monitor "$window"
xdotool key F4 F2 # the breakpoint off again
picture memory "$window"
press_until '(Restarting)' Escape

xdotool key alt+q
find_window dialog 'Machine configuration'
xdotool key alt+c space # two controls have that letter: it only leads there
picture configuration "$dialog"
xdotool key Escape

xdotool key alt+o
sleep 0.3
xdotool key d d Return # the second of two items with that letter
find_window dialog 'Video setup'
picture video-setup "$dialog"
stop

start bounce.cmd /v film.avi
find_window dialog 'Video Compression'
picture compression "$dialog"
