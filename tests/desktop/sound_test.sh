#!/usr/bin/env bash
# The machine sounds the same whether it is seen or not: two runs of a tune without a display and
# one in the window record the same bytes.
program=$1
tune=$2
source "$(dirname "$0")/desktop.sh"

record() { "$program" --wav "$1" /t 4 "${@:2}" "$tune" >program.log 2>&1; }

record first.wav --headless
record second.wav --headless
cmp first.wav second.wav || fail "two runs without a display differ"
# The reader's own judgement of the file, and that it is no silence.
report=$(ffmpeg -hide_banner -i first.wav -af volumedetect -f null - 2>&1)
[[ $report == *"pcm_s16le"*"48000 Hz, "* ]] || fail "$report"
[[ $report =~ max_volume:\ -?([0-9]+) && ${BASH_REMATCH[1]} -lt 12 ]] || fail "too quiet: $report"
[[ $report =~ Duration:\ 00:00:0[34] ]] || fail "too short: $report"

start_server
start_program --wav window.wav /t 4 "$tune"
wait "$program_pid" || fail "the program ended badly: $(cat program.log)"
cmp first.wav window.wav || fail "the window sounds different"
