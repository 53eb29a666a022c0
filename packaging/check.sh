#!/usr/bin/env bash
# Checks what an installation brings besides the program: each file by the tool of its kind, and
# that they agree with each other and with the program.
# usage: packaging/check.sh PROGRAM TARVELIN-BAS TARVELIN-DISK
set -euo pipefail
program=$(realpath "$1")
bas=$(realpath "$2")
disk=$(realpath "$3")
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failures=0
fail() {
    printf 'packaging: %s\n' "$*" >&2
    failures=$((failures + 1))
}
# Runs a tool that must succeed and have nothing to say.
silent() {
    local output
    output=$("$@" 2>&1) || fail "$1 failed"
    [[ -z $output ]] || fail "$1: $output"
}
same() {
    local difference
    difference=$(diff "$work/$2" "$work/$3") || fail "$1: $difference"
}

silent desktop-file-validate tarvelin.desktop
# Its later versions also warn of what there is not, such as a home page.
if ! appstreamcli validate --no-net tarvelin.metainfo.xml >"$work/told" && grep -q '^E:' "$work/told"; then
    fail "appstreamcli: $(cat "$work/told")"
fi
silent xmllint --noout --nonet tarvelin-mime.xml icons/*.svg ../docs/*.html

# The desktop finds the types by name and content, and the program for each.
mkdir -p "$work/mime/packages"
cp tarvelin-mime.xml "$work/mime/packages/"
export XDG_DATA_DIRS=$work # else the tool remarks that nobody looks there
silent update-mime-database "$work/mime"
sed -n 's/.*mime-type type="\([^"]*\)".*/\1/p' tarvelin-mime.xml | sort >"$work/types"
sed -n 's/^MimeType=//p' tarvelin.desktop | tr ';' '\n' | sed '/^$/d' | sort >"$work/opened"
sed -n 's:.*<mediatype>\(.*\)</mediatype>.*:\1:p' tarvelin.metainfo.xml | sort >"$work/provided"
same "types of tarvelin.desktop" types opened
same "types of tarvelin.metainfo.xml" types provided
for extension in cas cgt cmd bas jzs tvr tvs dsk cgd; do
    grep -q ":application/x-colour-genie-[a-z]*:\*\.$extension\$" "$work/mime/globs2" ||
        fail "no type for .$extension"
done

for size in 16 22 24 32 48 64 128 256 512; do
    # Width and height stand behind the PNG header, eight bytes of signature and eight of chunk.
    read -r width height < <(od -An -j16 -N8 -tu4 --endian=big "icons/tarvelin-$size.png")
    [[ $width == "$size" && $height == "$size" ]] || fail "tarvelin-$size.png: $width x $height"
done

# The present version is released, and the manual pages know all the programs' options.
version=$("$program" --version | cut -d' ' -f2)
grep -q "<release version=\"$version\"" tarvelin.metainfo.xml || fail "no release $version"
[[ $(head -n1 changelog) == "tarvelin ($version) "* ]] || fail "changelog does not begin with $version"
explained() {
    silent groff -t -ww -man -Tutf8 -z "$2"
    groff -t -man -Tascii -P-c -P-b -P-u "$2" >"$work/page"
    "$1" --help | sed -nE 's/^  (--[a-z-]+|\/[a-z]N?|[a-z]+ ).*/\1/p' >"$work/options"
    [[ -s $work/options ]] || fail "$1 --help lists no options"
    while read -r option; do
        grep -qE -- "^ +$option( |\$)" "$work/page" || fail "$2 does not explain $option"
    done <"$work/options"
}
explained "$program" tarvelin.1
explained "$bas" tarvelin-bas.1
explained "$disk" tarvelin-disk.1

exit $((failures > 0))
