#!/usr/bin/env bash
# Measures the desktop program at normal speed while it plays a tone on a virtual X server: speed by
# the clock, gaps in the sound, processor time, and processor time while it is paused. Then, without a
# window, the time from the write of a sound register to the device at three settings of SoundLatency,
# and beside four busy processes.
# usage: scripts/pacing.sh [MINUTES]        of each run; ten without an argument
# BUILD_DIR names another build folder than build/release. The host should have nothing else to do.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD_DIR:-build/release}
minutes=${1:-10}

scripts/dependencies.sh test
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" >/dev/null
cmake --build "$build" --target tarvelin tarvelin_mkcmd sound_device sound_latency
program=$build/src/tarvelin
tone=$PWD/tests/soak/sound_steps.asm examples=$PWD/examples
mkcmd=$(realpath "$build/tools/mkcmd")
soak=$(realpath "$build/tests/soak")
source tests/desktop/desktop.sh
trap 'kill -9 ${program_pid:-} ${busy_pids:-} 2>/dev/null || true; clean_up' EXIT

stolen() { awk '/^cpu /{print $9 / 100}' /proc/stat; } # seconds that a virtual host did not run
now() { awk '{print $1}' /proc/uptime; }
of_core() { awk "BEGIN {printf \"%.2f\", ($2 - $1) / ($4 - $3)}"; } # ticks, ticks, then, now: %
problems=0
# row WHAT MEASURED UNIT LEAST MOST
row() {
    local verdict=ok
    awk "BEGIN {exit !($2 >= $4 && $2 <= $5)}" || verdict=FAILED
    [[ $verdict == ok ]] || problems=1
    printf '%-34s %10s %-4s %7s to %-7s %s\n' "$1" "$2" "$3" "$4" "$5" "$verdict"
}

seconds=$(awk "BEGIN {print int($minutes * 60)}")
first=5 # second of machine time where measuring begins
pasmo --bin -I "$examples" "$tone" tone.bin
"$mkcmd" tone.cmd 5800 5800 tone.bin
start_server
export SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=by-the-clock SDL_DISKAUDIODELAY=0

LD_PRELOAD=$soak/sound_device.so SOUND_DEVICE_LOG=device.log start_program /s "$first" /t $((first + seconds)) tone.cmd
wait_for tone0000.gif
used=$(ticks) then=$(now) stolen=$(stolen)
slow=0
while kill -0 "$program_pid" 2>/dev/null; do
    used_last=$(ticks 2>/dev/null || echo "${used_last:-0}") last=$(now)
    title=$(xdotool getwindowname "$window" 2>/dev/null || true)
    if [[ $title == *" at "* && ! $title =~ at\ (99|100|101)% ]]; then slow=$((slow + 1)); fi
    sleep 1
done
wait "$program_pid" || fail "the program ended badly: $(cat program.log)"
stolen=$(awk "BEGIN {print $(stolen) - $stolen}")
# The settings are written as soon as the machine stops.
took=$(awk "BEGIN {print $(stat -c %.6Y config/tarvelin/settings.toml) - $(stat -c %.6Y tone0000.gif)}")
read -r played late gaps <device.log

unset SDL_DISKAUDIOFILE SDL_DISKAUDIODELAY
export SDL_AUDIODRIVER=dummy
start_program tone.cmd
sleep 3
xdotool key Pause
sleep 1
paused=$(ticks) paused_at=$(now)
sleep 10
paused_load=$(of_core "$paused" "$(ticks)" "$paused_at" "$(now)")
[[ $(xdotool getwindowname "$window") == *Suspended* ]] || fail "the Pause key did not pause"

echo "$minutes minutes of machine time"
row "speed by the clock" "$(awk "BEGIN {printf \"%.3f\", 100 * $seconds / $took}")" % 99.5 100.5
row "reports of another speed" "$slow" "" 0 0
row "sound played" "$played" s $((seconds)) $((seconds + 60))
row "gaps in the sound" "$gaps" "" 0 0
row "sound later than 50 ms" "$late" "" 0 0
row "processor time" "$(of_core "$used" "$used_last" "$then" "$last")" % 0 15
row "processor time while paused" "$paused_load" % 0 1
sed 1d device.log
if [[ $gaps != 0 ]]; then echo "  a virtual host stood still for $stolen s in all, which may be why"; fi

unset SDL_AUDIODRIVER
# latency SETTING: what is said of a run, into latency.log
latency() { "$soak/sound_latency" "$minutes" "$1" >latency.log 2>messages.log; }
median() { sed -n 's/.*median \([0-9.]*\).*/\1/p' latency.log; }
# gaps_after SECONDS
gaps_after() { awk -v after="$1" '$2 == "gap" && $(NF - 1) >= after' latency.log | wc -l; }
for setting in 30 60 150; do
    latency "$setting"
    row "latency set to $setting ms" "$(median)" ms $((setting * 9 / 10)) $((setting * 11 / 10))
    row "gaps" "$(gaps_after 0)" "" 0 $((seconds / 600 + 1))
done
busy_pids=
for _ in 1 2 3 4; do
    timeout "$((seconds + 60))" sh -c 'while :; do :; done' &
    busy_pids+=" $!"
done
latency 60
row "latency beside busy processes" "$(median)" ms 54 300
grep -o 'Sound latency raised to [0-9]* ms' messages.log | sed 's/^/  /' || true
row "gaps in the second half" "$(gaps_after $((seconds / 2)))" "" 0 0
exit "$problems"
