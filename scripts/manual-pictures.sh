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

source tests/desktop/desktop.sh
# Nothing of the user's own look gets in.
export HOME=$work LC_ALL=C.UTF-8
unset XDG_CURRENT_DESKTOP

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

# listing NAME SECONDS [KEYS]: an example in BASIC, with keys that are typed behind its RUN
listing() {
    { cat "$examples/$1.txt" && printf '%s' "${3:-}"; } >"$1.txt"
    machine "$1" "$2" "$1.txt"
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

# enter TEXT: typed, and the key Enter
enter() {
    xdotool type --delay 120 "$1"
    xdotool key Return
    sleep 0.3
}

cp "$examples/colours.cmd" "$examples/bounce.cmd" .
# The manual's own listing, so that it shows what it draws.
sed -n '/<pre id="listing">/,/<\/pre>/p' "$manual" | sed 's/<[^>]*>//g' >listing.bas
machine colours 4 colours.cmd
cp "$build"/sdk/{vine/vine,solids/solids}.cmd .
machine vine 30 vine.cmd
machine solids 25 solids.cmd
machine graphics 40 listing.bas
listing raiders 58 ' '
listing maze 58 ' '
listing prelude 70
listing bell 60 $'n\nw\ntake lamp\ntake bread\nhelp\n'
listing sketch 60 ' '
listing glyphs 60

start_server 1280x1024x24
start_window_manager
xdotool mousemove 0 0 # marks nothing

: >config/tarvelin/settings.toml
start_program
sleep 4
dialog=$(find_window Welcome)
xdotool windowfocus --sync "$dialog"
xdotool key alt+t # as is recommended
picture welcome "$dialog"
xdotool key Escape
kill "$program_pid"
wait "$program_pid"

settings 'KeyMapping = 1'
start_program
sleep 5 # MEM SIZE? is answered
picture ready "$window"
enter '10 print "hello, world"'
enter '20 goto 10'
enter run
sleep 1
xdotool key End
picture hello "$window"

cat "$examples"/{bounce,colours,tune}.cas >demos.cas
xdotool key alt+t
find_window 'Attach CAS' >/dev/null
enter "$work/demos.cas"
xdotool key alt+m
sleep 0.3
xdotool key Right s
picture cassette "$(find_window Cassette)"
xdotool key Escape

"$build/tools/tarvelin-disk" create games.dsk
for example in raiders maze catch sketch; do
    "$build/tools/tarvelin-disk" put games.dsk "$examples/$example.bas"
done
xdotool key alt+0
find_window 'Attach disk image' >/dev/null
enter "$work/games.dsk"
sleep 1
xdotool key Return # with the disk ROM
sleep 5
enter dir
picture disk "$window"
xdotool key alt+f
sleep 0.3
xdotool key y
picture directory "$(find_window 'Disk directory')"
kill "$program_pid"
wait "$program_pid"

settings
start_program bounce.cmd
sleep 6 # the title shows the speed, and the program runs
picture window "$window"

# tube LETTER: of its item in the menu
tube() {
    xdotool key alt+o
    sleep 0.3
    xdotool key u "$1"
}
tube t
sleep 2
picture tube "$window"
tube o

xdotool key alt+f
picture menu "$window"
press_until '(Monitor)' Escape
xdotool key F4
picture monitor "$window"
xdotool key F4 F2 # the breakpoint off again
picture memory "$window"
press_until '(Restarting)' Escape

xdotool key alt+d
debugger=$(find_window 'Tarvelin debugger')
xdotool windowsize "$debugger" 1000 700
sleep 1
xdotool key F6 ctrl+g
xdotool type --delay 50 'new_statement'
xdotool key Return F9 F5
sleep 2
xdotool key F11 F10
picture debugger "$debugger"
xdotool key F9 alt+F4

xdotool key alt+q
dialog=$(find_window 'Machine configuration')
xdotool key alt+c space # two controls have that letter: it only leads there
picture configuration "$dialog"
xdotool key Escape

xdotool key alt+o
sleep 0.3
xdotool key p
picture pad "$(find_window 'Game pad keys')"
xdotool key Escape

xdotool key alt+o
sleep 0.3
xdotool key k w
picture keyboard "$(find_window 'Colour Genie keyboard')"
xdotool key alt+o
sleep 0.3
xdotool key k w

for _ in 1 2 3; do
    xdotool key alt+s
    sleep 1
    xdotool key alt+equal
    sleep 1
done
xdotool key alt+p
picture states "$(find_window States)"
xdotool key Escape

xdotool key alt+o
sleep 0.3
xdotool key d d Return # the second of two items with that letter
dialog=$(find_window 'Video setup')
picture video-setup "$dialog"
kill "$program_pid"
wait "$program_pid"

start_program bounce.cmd /v film.avi
picture compression "$(find_window 'Video Compression')"
