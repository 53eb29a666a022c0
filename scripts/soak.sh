#!/usr/bin/env bash
# Runs a busy machine for hours of its own time, as fast as the host can, and watches that nothing
# drifts, wraps or grows: a day takes some minutes.
# usage: scripts/soak.sh [HOURS] [line|beam]        a day in both engines without arguments
# BUILD_DIR names another build folder than build/release, for a run under the sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD_DIR:-build/release}
hours=${1:-24}
engines=${2:-line beam}

scripts/dependencies.sh test
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" >/dev/null
cmake -B "$build" -DBUILD_TESTING=ON >/dev/null
cmake --build "$build" --target soak

for engine in $engines; do
    echo "== $engine engine"
    "$build/tests/soak/soak" edges "$engine" 2> >(grep -v '^IMAGE' >&2)
    "$build/tests/soak/soak" day "$engine" "$(awk "BEGIN {print int($hours * 60 + 0.5)}")" \
        2> >(grep -v '^IMAGE\|^WAV' >&2)
done
