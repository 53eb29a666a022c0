#!/bin/sh
# Assembles the program and runs the scripts of this folder. Its status is 0 when all have passed.
# TARVELIN is the program to run them with, if it is not found by its name.
set -u
tarvelin=${TARVELIN:-tarvelin-headless}
cd "$(dirname "$0")" || exit 2

pasmo --bin collect.asm collect.bin collect.sym || exit 2

failed=0
for script in *.tvscript; do
    if "$tarvelin" --script "$script"; then
        echo "passed: $script"
    else
        echo "FAILED: $script" >&2
        failed=1
    fi
done
exit $failed
