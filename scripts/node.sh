#!/usr/bin/env bash
# Runs a program that Emscripten has made for node, which else takes fetch for a browser's.
# usage: scripts/node.sh PROGRAM.js [ARGUMENT...]
exec node --no-experimental-fetch "$@"
