#!/usr/bin/env bash
# Makes the pictures of the examples for the welcome anew, by running each without a display: a
# scene of the program, without most of the border. They go to examples/pictures.
# usage: scripts/example-pictures.sh [BUILD-FOLDER]      without: build/release
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/dependencies.sh pictures
build=$(realpath "${1:-build/release}")
pictures=$PWD/examples/pictures
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$pictures"
cd "$work"

# scene NAME SECONDS FILE
scene() {
    "$build/src/tarvelin-headless" /w /s "$2" /t $(($2 + 1)) "$3" >program.log 2>&1 ||
        { cat program.log && exit 1; }
    convert "${3%.*}0000.gif" -gravity center -crop 336x252+0+2 +repage -strip \
        -define png:exclude-chunks=date,time -define png:compression-level=9 "PNG8:$pictures/$1.png"
    printf '%-16s %6d bytes\n' "$1.png" "$(stat -c %s "$pictures/$1.png")"
}

# module NAME SECONDS
module() {
    cp "$build/examples/$1.cmd" .
    scene "$1" "$2" "$1.cmd"
}

# listing NAME SECONDS [KEYS]: as text, with keys that are typed behind its RUN
listing() {
    { cat "$build/examples/$1.txt" && printf '%s' "${3:-}"; } >"$1.txt"
    scene "$1" "$2" "$1.txt"
}

module bounce 12
module colours 6
module sticks 6
module tune 15
listing bell 60 $'n\nw\ntake lamp\ntake bread\nhelp\n'
listing catch 27 ' '
listing glyphs 60 ' '
listing graphics 28
listing maze 62 ' '
listing music 40
listing prelude 80
listing raiders 64 ' '
listing sketch 60 ' '
