#!/usr/bin/env bash
# usage: exit_status_test.sh PROGRAM MANUAL BOOTDISK
# Broken input ends as the manual page's table has it: exit status, and the standard error stream.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
program=$(realpath "$1") manual=$(realpath "$2") disk=$(realpath "$3")
cd "$work"
export XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work

mkdir -p folder.cmd tarvelin/printer.txt
mkfifo pipe.cmd
printf '\1\2' | tee secret.cmd text.doc >cut.cmd
chmod a= secret.cmd
truncate -s 17M large.cmd
truncate -s 1000 odd.dsk
true >empty.cas
printf JZ01 >short.jzs
printf 'Tarvelin replay\n\1\0\0' >short.tvr
printf 'Tarvelin state\n\32\1' >short.tvs
printf 'SAVE"A"\n' >save.bas
cp "$disk" work.dsk

rows=0
sed -n '/^\.TS/,/^\.TE/p' "$manual" | sed 's/\\-/-/g; s/\\(dq/"/g; s/^\\&$//' |
    awk '/^T{$/ {
             getline; arguments = $0
             getline; split($0, part, ";")
             getline; print arguments ";" part[2] ";" $0
             getline
         }' >table
# No library of a display, and no libavcodec but for films, which do without one that is broken.
! ldd "$program" | grep -E 'avcodec|avutil|swscale' || exit 1
[[ $program == *tarvelin ]] || ! ldd "$program" | grep -E 'Qt|SDL|X11|xcb|xkb|wayland' || exit 1
mkdir broken
touch broken/libavcodec.so.{57..70}
printf '%s\n' '--setting VideoCodec=ffv1 /v a.avi;1;Could not create video stream!: a.avi: there is no codec "ffv1"' >>table

while IFS=';' read -r arguments status text; do
    rows=$((rows + 1))
    if [[ $arguments == secret.cmd && -r secret.cmd ]]; then continue; fi # the superuser
    read -ra words <<<"$arguments"
    found=0
    LD_LIBRARY_PATH=$PWD/broken timeout 60 "$program" --headless /w /t 5 "${words[@]}" </dev/null >out 2>err || found=$?
    [[ $found == "$status" && $(sed -n "s|$work|~/.local/share|; s/^tarvelin: //p" err) == "$text" ]] && continue
    echo "FAILED: $arguments: $found, not $status; $(cat err), not $text"
    exit 1
done <table
((rows >= 28)) || { echo "FAILED: the table has $rows rows"; exit 1; }
! cmp -s "$disk" work.dsk || { echo "FAILED: the changed disk was not saved"; exit 1; }
