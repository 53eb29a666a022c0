#!/usr/bin/env bash
# usage: embed_test.sh EXAMPLE SCREEN SOURCE [BUILD COMPILER]
# The machine in another program prints its screen. With BUILD also as another project gets it: what
# that build installs is built against, and the source is taken as a folder, which looks for no package.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
example=$1 screen=$2 source=$3

prints_the_screen() { "$1" | sed 's/ *$//' | diff - "$screen"; }
prints_the_screen "$example"
if [[ $# -lt 5 ]]; then exit; fi

outside() { cmake -S "$source/examples/embed" -B "$work/$1" -DCMAKE_CXX_COMPILER="$compiler" "${@:2}"; }
compiler=$5
cmake --install "$4" --component development --prefix "$work/prefix" >/dev/null
outside installed -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/installed" >/dev/null
prints_the_screen "$work/installed/embed"
outside folder -DTARVELIN_SOURCE="$source" -DCMAKE_DISABLE_FIND_PACKAGE_{Qt6,SDL2,PkgConfig,GTest}=ON >/dev/null
