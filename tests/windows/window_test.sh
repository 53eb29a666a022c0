#!/usr/bin/env bash
# The real tarvelin.exe under Wine, on a virtual X server: settings in the registry, every dialog, a file
# saved and opened, full screen, a disk written back; and the same pictures, sound and film as from
# tarvelin-headless on this computer.
# usage: window_test.sh TARVELIN.EXE TARVELIN-HEADLESS EXAMPLES
tests=$(realpath "$(dirname "$0")")
program=$1
headless=$(realpath "$2") || exit 77
examples=$(realpath "$3")
source "$tests/windows.sh"

key='HKCU\Software\Emulators\Tarvelin'
# opens KEYS... : TITLE: the window is there, and gone after Escape
opens() {
    local keys=() key dialog
    while [[ $1 != : ]]; do
        keys+=("$1")
        shift
    done
    for key in "${keys[@]}"; do xdotool key "$key" sleep 0.1; done
    dialog=$(find_window "^${*:2}")
    xdotool windowfocus --sync "$dialog" key Escape
    for _ in $(seq 50); do
        xdotool search --all --onlyvisible --pid "$program_pid" --name "^${*:2}" >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    fail "${*:2} does not close"
}

start_server
start_window_manager
start_wine

# The first start: a welcome, and the settings with their first values.
start_program
opens : "Welcome"
exported "$key" | "$tests/look.py" settings "$tests/settings.txt" 0 || fail "after the first start"
xdotool key alt+F4
wait "$program_pid" || fail "the exit code is $?"
exported "$key" | "$tests/look.py" settings "$tests/settings.txt" 1 || fail "after the first exit"

# A run from power-on, in the window and without a display.
# record NAME COMMAND...
record() { "${@:2}" /s 4 /t 5 --wav "$1.wav" /v "$1.avi" tune.cmd >"$1.log" 2>&1; }
cp "$examples"/{tune,colours}.cmd .
record expected "$headless" || fail "the film without a display"
mv tune0000.gif expected.gif
record window exec "$wine" "$executable" &
program_pid=$!
xdotool windowfocus --sync "$(find_window 'Video Compression')" key Return
wait "$program_pid" || fail "the run ended with $?"
cmp expected.gif tune0000.gif
cmp expected.wav window.wav
for film in expected window; do "$tests/look.py" film $film.avi >$film.chunks; done
diff expected.chunks window.chunks || fail "the films differ"

# What the file holds is what is on the screen.
settings 'FixedWindow = 1' 'KeyMapping = 1'
start_program "$PWD/colours.cmd"
sleep 2 # it has drawn itself
xdotool key Pause
rm -f colours*.gif
xdotool key F6
wait_for colours0000.gif
sleep 0.5
ffmpeg -loglevel error -i colours0000.gif -frames:v 1 file.ppm
ffmpeg -loglevel error -f x11grab -video_size 1280x1024 -draw_mouse 0 -i "$DISPLAY" -frames:v 1 screen.ppm
"$tests/look.py" picture screen.ppm file.ppm
xdotool key Pause

# Full screen and back, and a snapshot by the dialog for files.
size() { xdotool getwindowgeometry "$window" | awk '/Geometry/ {print $2}'; }
normal=$(size)
xdotool key alt+Return
becomes "full screen" 1280x1024 size
xdotool key alt+Return
becomes "back from full screen" "$normal" size
xdotool key alt+f sleep 0.1 key v
xdotool windowfocus --sync "$(find_window '^Save emulator snapshot')" type --delay 30 saved
xdotool key Return
wait_for saved.jzs
[[ $(head -c 4 saved.jzs) == JZ01 ]] || fail "no snapshot was saved"

while IFS= read -r line; do
    # shellcheck disable=SC2086
    [[ $line == \#* ]] || opens $line
done <"$tests/dialogs.txt"

# The debugger's window has keys of its own: F10 leads to no menu, and Alt with F4 closes it alone.
debuggers() { xdotool search --all --onlyvisible --pid "$program_pid" --name 'debugger$' 2>/dev/null | wc -l; }
xdotool key alt+d
xdotool windowfocus --sync "$(find_window 'debugger$')" sleep 0.5 key F10 sleep 0.3 key alt+F4
becomes "the debugger's window" 0 debuggers

# A program is typed, and saved to a disk whose name is beyond ASCII. It outlives a kill, and is in the
# file after the question at the end.
kill "$program_pid"
wait "$program_pid" 2>/dev/null || true
settings 'ActiveConfig = 4' 'CustomRomExpansion = 0' 'KeyMapping = 1'
cp "$examples/bootdisk.dsk" Übung.dsk
start_program "$PWD/Übung.dsk"
shows READY Übung || fail "the disk did not start"
xdotool type --delay 120 'save"a"'
xdotool key Return sleep 2
kill -KILL "$program_pid"
wait "$program_pid" 2>/dev/null && fail "the program was not killed"
start_program "$PWD/Übung.dsk"
xdotool windowfocus --sync "$(find_window '^Warning$')" key alt+t # takes what was not saved
xdotool windowfocus --sync "$(find_window '^Tarvelin')" sleep 1 key alt+F4
xdotool windowfocus --sync "$(find_window '^Warning$')" key alt+y
wait "$program_pid" || fail "the exit code is $?: $(cat program.log)"
grep -q 'A          ' Übung.dsk || fail "the program is not on the disk"
