#!/usr/bin/env bash
# Runs clang-tidy over the project's sources, two at a time. A source that passed is not looked at
# again until it, a header of the project or the configuration changes.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/sanitize
stamps=build/lint
mkdir -p "$stamps"
common=$(git ls-files -co --exclude-standard '*.h' .clang-tidy '*CMakeLists.txt' |
    xargs cat | sha1sum | cut -d' ' -f1)

lint_one() {
    local source=$1
    local stamp
    stamp="$stamps/$(cat "$source" <(echo "$common $source") | sha1sum | cut -d' ' -f1)"
    [[ -f $stamp ]] && return 0
    clang-tidy --quiet -p "$build" "$source" 2>/dev/null && touch "$stamp"
}
export -f lint_one
export build stamps common

git ls-files -co --exclude-standard 'src/*.cpp' 'tools/*.cpp' |
    xargs -P2 -I{} bash -c 'lint_one {}'
