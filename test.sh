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

step "format"
git ls-files -co --exclude-standard '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

step "lint"
scripts/lint.sh

step "tests under the sanitizers"
ctest --test-dir build/sanitize --output-on-failure -j2

step "tests"
ctest --test-dir build/release --output-on-failure -j2
