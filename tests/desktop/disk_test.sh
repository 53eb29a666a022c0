#!/usr/bin/env bash
# A disk given to the program as a double click gives it: the machine starts from it and shows the
# same picture as without a display. A program saved to it outlives a kill, and is in the file after
# the question at the window's end.
program=$1
image=$(realpath "$2")
source "$(dirname "$0")/desktop.sh"

settings 'ActiveConfig = 4' 'CustomRomExpansion = 0' 'KeyMapping = 1'
cp "$image" disk.dsk
"$program" --headless --setting ActiveConfig=4 --setting CustomRomExpansion=0 /w /s 6 /t 7 \
    disk.dsk 2>headless.log || fail "$(cat headless.log)"
mv disk0000.gif expected.gif

start_server
start_window_manager
start_program "$PWD/disk.dsk"
shows READY disk || fail "the disk did not start"
# The cursor blinks.
for _ in $(seq 40); do
    sleep 0.23
    rm -f disk0*.gif
    xdotool key F6
    wait_for disk0000.gif
    sleep 0.1
    if cmp -s disk0000.gif expected.gif; then break; fi
done
cmp disk0000.gif expected.gif || fail "not the picture of a machine started from the disk"

xdotool type --delay 120 'save"a"'
xdotool key Return
sleep 2
kill -KILL "$program_pid"
wait "$program_pid" 2>/dev/null && fail "the program was not killed"
start_program "$PWD/disk.dsk"
question=$(find_window '^Warning$') # whether to take what was not saved
while xdotool search --all --onlyvisible --pid "$program_pid" --name '^Warning$' >/dev/null; do
    xdotool windowfocus --sync "$question" key alt+t || true # it may just have gone
    sleep 0.3
done
xdotool windowfocus --sync "$(find_window '^Tarvelin')"
xdotool key alt+F4 # the window manager's close
question=$(find_window '^Warning$') # whether to save the disk
cmp -s "$image" disk.dsk || fail "the file changed before the answer"
xdotool windowfocus --sync "$question" key alt+y
wait "$program_pid" || fail "the exit code is $?: $(cat program.log)"
[[ $(stat -c %s disk.dsk) == $(stat -c %s "$image") ]] || fail "the file has another size"
grep -q 'A          ' disk.dsk || fail "the program is not on the disk"
