#!/usr/bin/env bash
# Measures clean sound: records a tone of 440 Hz and one of 8660 Hz with and without it, and tells the
# level of each recording and its energy off the harmonics.
# usage: scripts/clean-sound.sh
# BUILD_DIR names another build folder than build/release.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD_DIR:-build/release}

scripts/dependencies.sh test
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" >/dev/null
cmake --build "$build" --target tarvelin-headless
program=$(realpath "$build/src/tarvelin-headless") root=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work
for period in 315 16; do # of 16 clocks each
    echo "SOUND 0,$((period % 256)):SOUND 1,$((period / 256)):SOUND 7,62:SOUND 8,15" >tone.bas
    for clean in 0 1; do
        "$program" /t 16 --setting CleanSound=$clean --wav "period-$period-clean-$clean.wav" \
            tone.bas 2>messages || { cat messages; exit 1; }
    done
    python3 "$root/scripts/harmonics.py" $((2216750 / 16 / period)) "period-$period"-clean-{0,1}.wav
done
