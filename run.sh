#!/usr/bin/env bash
# Builds the program and starts it with the arguments given, or with a demonstration. Without a
# display it runs the same headless and says where it wrote the picture.
# With --web it builds the browser's page and hands it out on this computer; a port may follow.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

if [[ ${1:-} == --web ]]; then
    "$here/scripts/dependencies.sh" web
    cd "$here"
    [[ -f build/web/build.ninja ]] || cmake --preset web -DBUILD_TESTING=OFF >/dev/null
    cmake --build build/web --target web >&2
    exec scripts/serve.py build/web/site "${@:2}"
fi

"$here/scripts/dependencies.sh" run
(
    cd "$here"
    [[ -f build/release/build.ninja ]] || cmake --preset release -DBUILD_TESTING=OFF >/dev/null
    cmake --build build/release --target tarvelin examples
) >&2

program=$here/build/release/src/tarvelin
if [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
    if [[ $# -gt 0 ]]; then exec "$program" "$@"; fi
    exec "$program" "$here/build/release/examples/colours.cmd"
fi
if [[ $# -gt 0 ]]; then exec "$program" --headless "$@"; fi

# The demonstration: an example program for five seconds of machine time.
work=$(mktemp -d)
cp "$here/build/release/examples/colours.cmd" "$work/"
"$program" --headless /w /s 4 /t 5 "$work/colours.cmd" >/dev/null 2>&1
echo "There is no display. The picture of the demonstration is in $work/colours0000.gif"
