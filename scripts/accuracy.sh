#!/usr/bin/env bash
# Holds the processor against public exercisers and per-instruction cases, as docs/accuracy.html has
# them. They are not part of the project.
# usage: scripts/accuracy.sh EXERCISERS CASES
# EXERCISERS is a folder with zexdoc.com and zexall.com, such as a checkout of agn453/ZEXALL, and
# CASES the folder v1 of SingleStepTests/z80. BUILD_DIR names another build folder than
# build/release.
set -euo pipefail
exercisers=$(realpath "$1")
cases=$(realpath "$2")
cd "$(dirname "$0")/.."
build=${BUILD_DIR:-build/release}
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" >/dev/null
cmake --build "$build" --target run_com run_steps >/dev/null
told=$(mktemp -d)
trap 'rm -rf "$told"' EXIT

failed=0
for name in zexdoc zexall; do
    "$build/tests/support/run_com" "$exercisers/$name.com" >"$told/$name" &
done
wait
for name in zexdoc zexall; do
    grep -a ERROR "$told/$name" && failed=1
    groups=$(grep -ac '\.  OK' "$told/$name") || true
    grep -aq 'Tests complete' "$told/$name" && [[ $groups -gt 0 ]] || failed=1
    echo "$name: $groups OK, $(tail -n 1 "$told/$name")"
done
"$build/tests/support/run_steps" "$cases" || failed=1
exit $failed
