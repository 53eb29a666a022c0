#!/usr/bin/env bash
# state_symbols_test.sh LIBRARY LAYOUT LIST: every writable object of the machine's library is a
# record of the layout, a medium, or named in the list.
set -euo pipefail
media="drive_contents cas typing_text"

# Constants with addresses in them stand in .data.rel.ro.
objdump -tC "$1" |
    awk '/ O / && $0 ~ /\.(data|bss|tdata|tbss)/ && $0 !~ /\.data\.rel\.ro|DW\.ref/ { print $NF }' |
    sed 's/.*:://; s/\[abi.*//' | sort -u >writable.txt
{
    awk '{ print $3 }' "$2" | cut -d. -f1
    printf '%s\n' $media
    grep -v '^#' "$3" | cut -d' ' -f1
} | sort -u >named.txt

unknown=$(comm -23 writable.txt named.txt)
[[ -z $unknown ]] || { echo "FAILED: state outside of the records: $unknown" >&2; exit 1; }
gone=$(comm -13 writable.txt <(grep -v '^#' "$3" | cut -d' ' -f1 | sort -u))
[[ -z $gone ]] || { echo "FAILED: named, but not there: $gone" >&2; exit 1; }
