#!/usr/bin/env bash
# Builds everything and runs every test, then once more under the sanitizers, then the checks of
# format and code. Ends with the first failure.
set -euo pipefail
cd "$(dirname "$0")"

step() { printf '\n== %s (%s s)\n' "$1" "$SECONDS"; }

scripts/dependencies.sh test

step "release build"
cmake --preset release -DBUILD_TESTING=ON -DTARVELIN_BENCH=ON >/dev/null
cmake --build build/release

step "sanitizer build"
cmake --preset sanitize >/dev/null
cmake --build build/sanitize

step "layers, format and lint"
scripts/lint.sh

step "tests under the sanitizers"
ctest --preset sanitize

step "tests"
ctest --preset release
