#!/usr/bin/env bash
# Makes the icon's pictures anew from its drawings, after a change of those. The small sizes have
# drawings of their own.
# usage: scripts/icons.sh
set -euo pipefail
cd "$(dirname "$0")/../packaging/icons"

../../scripts/dependencies.sh pictures
for size in 16 22 24 32 48 64 128 256 512; do
    drawing=tarvelin-$size.svg
    [[ -e $drawing ]] || drawing=tarvelin.svg
    rsvg-convert --width "$size" --height "$size" "$drawing" --output picture.png
    convert picture.png -strip -define png:exclude-chunks=date,time -define png:compression-level=9 \
        "tarvelin-$size.png"
done
# For telephones, which cut a shape of their own out of it.
rsvg-convert --width 340 tarvelin.svg --output picture.png
convert -size 512x512 xc:'#1d2440' picture.png -gravity center -composite -strip \
    -define png:exclude-chunks=date,time -define png:compression-level=9 tarvelin-maskable.png
rm picture.png
# Windows scales the largest down to sizes in between.
convert tarvelin-{16,24,32,48,64,256}.png -strip tarvelin.ico
