#!/usr/bin/env bash
# Builds everything, also for Windows and for browsers, checks format and code, and runs the tests under
# the sanitizers, as they are, under Wine, and in node and Chromium. Ends with the first failure.
set -euo pipefail
cd "$(dirname "$0")"

step() { printf '\n== %s (%s s)\n' "$1" "$SECONDS"; }

scripts/dependencies.sh test

step "release build"
cmake --preset release -DBUILD_TESTING=ON -DTARVELIN_BENCH=ON -DTARVELIN_UNITY_TESTS=ON >/dev/null
cmake --build build/release

step "sanitizer build"
cmake --preset sanitize >/dev/null
cmake --build build/sanitize

step "build for Windows"
cmake --preset windows -DBUILD_TESTING=ON >/dev/null
cmake --build build/windows --target package

step "build for browsers"
cmake --preset web -DBUILD_TESTING=ON >/dev/null
cmake --build build/web

step "layers, format and lint"
scripts/lint.sh

step "tests under the sanitizers"
ctest --preset sanitize

step "tests"
ctest --preset release

step "tests under Wine"
ctest --preset windows

step "tests in node and Chromium"
ctest --preset web
