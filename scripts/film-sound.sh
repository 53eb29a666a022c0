#!/usr/bin/env bash
# Measures the sound of a film of a steady tone, of a film with a WAV recording beside it, and of that
# recording: splices a second, offset, energy off the harmonics.
# usage: scripts/film-sound.sh [SECONDS]        twenty without an argument
# BUILD_DIR names another build folder than build/release.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD_DIR:-build/release}
seconds=$((${1:-20} + 3)) # with the start

scripts/dependencies.sh test
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" >/dev/null
cmake --build "$build" --target tarvelin-headless tarvelin_mkcmd
program=$(realpath "$build/src/tarvelin-headless") mkcmd=$(realpath "$build/tools/mkcmd") root=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work
pasmo --bin -I "$root/examples" "$root/tests/soak/tone.asm" tone.bin
"$mkcmd" tone.cmd 5800 5800 tone.bin
record() {
    "$program" --setting VideoCodec=rle /t "$seconds" "$@" tone.cmd 2>messages ||
        { cat messages; exit 1; }
}
record /v film.avi
record /v beside-wav.avi --wav sound.wav
python3 "$root/scripts/harmonics.py" 440 film.avi beside-wav.avi sound.wav
