#!/usr/bin/env bash
# The window under a Wayland compositor whose screen is a virtual X server's: characters of a German
# keyboard, full screen and back.
program=$1
source "$(dirname "$0")/desktop.sh"

# grey_screen: the compositor's screen, a byte for each pixel
grey_screen() {
    ffmpeg -loglevel error -f x11grab -video_size 1280x1024 -draw_mouse 0 -i "$DISPLAY" \
        -frames:v 1 -f rawvideo -pix_fmt gray -
}

# lit PIXELS: are so many of text and decoration light, but for a cursor that blinks?
light() { grey_screen | tr -cd '\320-\377' | wc -c; }
lit() { light | awk -v most="$1" '{print $1 < most - 600 ? "no" : "yes"}'; }

# covered PIXELS: do windows take so much of the compositor's screen, whose background is one grey?
covered() {
    grey_screen | tr -cd '\253' | wc -c |
        awk -v least="$1" '{print 1280 * 1024 - $1 < least ? "no" : "yes"}'
}
window=$((768 * 619)) everything=$((1280 * 1024 - 1000))

settings 'KeyMapping = 1'
cat >config/weston.ini <<SETTINGS
[core]
backend=x11-backend.so
use-pixman=true
idle-time=0
[shell]
panel-position=none
background-color=0xffababab
startup-animation=none
SETTINGS
start_server
setxkbmap de
# The drivers that Qt loads here keep memory until the end, and are gone when leaks are told.
export ASAN_OPTIONS=detect_leaks=0
export XDG_RUNTIME_DIR=$work WAYLAND_DISPLAY=compositor QT_QPA_PLATFORM=wayland
weston --socket=compositor --width=1280 --height=1024 >weston.log 2>&1 &
compositor_pid=$!
becomes "the compositor's screen" no covered 1000 # the mouse cursor is less
"$program" >program.log 2>&1 &
program_pid=$!
becomes "the window" yes covered $window
types 'zy-+#/"?*@' 'ZY-+#/"?*@'

light=$(light)
xdotool key alt+Return
becomes "full screen" yes covered $everything
xdotool key alt+Return
becomes "back from full screen" no covered $((2 * window))
becomes "the whole window again" yes lit "$light"
kill "$program_pid"
wait "$program_pid" || fail "the exit code is $?: $(cat program.log)"
