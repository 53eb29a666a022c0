#!/usr/bin/env bash
# Prints the names of the project's files that one of the patterns fits: of a clone what is in git, of
# a source archive, or where git does not open the clone, what is there.
# usage: scripts/sources.sh PATTERN...        such as 'src/*.cpp', in all folders below
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ -e .git ]] && git rev-parse >/dev/null 2>&1; then
    git ls-files -- "$@" | while read -r name; do if [[ -f $name ]]; then echo "$name"; fi; done
else
    fits=(-false)
    for pattern in "$@"; do fits+=(-o -path "./$pattern"); done
    find . -path ./build -prune -o -type f \( "${fits[@]}" \) -print | sed 's:^\./::' | sort
fi
