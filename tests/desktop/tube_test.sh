#!/usr/bin/env bash
# The picture tube by OpenGL, which needs an X server: the tests of the Qt layer that are left out
# without one.
program=$1
source "$(dirname "$0")/desktop.sh"

export ASAN_OPTIONS=detect_leaks=0 # what a graphics driver keeps is not this program's leak
start_server
"$program" --gtest_filter='QtTubeTest.*' >tube.log 2>&1 || fail "$(cat tube.log)"
if grep -q "NOT TESTED" tube.log; then
    echo "no OpenGL here: $(grep -m 1 "NOT TESTED" tube.log)"
    exit 77
fi
