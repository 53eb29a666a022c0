#!/usr/bin/env bash
# usage: scripts_test.sh PROGRAM SOURCE EXAMPLES
# Scripts print and end as the files beside them say; two runs write the same; all commands are used and in the manual.
set -euo pipefail
program=$(realpath "$1") source=$(realpath "$2") examples=$(realpath "$3")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$source"/tests/host/scripts/* "$source/examples/ci" "$examples"/bounce.{cas,cmd,sym} "$work"
cd "$work"
export XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work
fail() { echo "FAILED: $*"; exit 1; }
run() { # SCRIPT OPTION...
    local status=0
    timeout 100 "$program" --script "$@" >out 2>err || status=$?
    { cat out; grep -Ev '^(IMAGE|No |Number |Block|unsupported|start address|load from)' err || true; echo "status $status"; } >result
}
scripts() { # each in the same folder
    for script in *.tvscript; do
        cp "$examples/bootdisk.dsk" .
        run "$script" --setting ActiveConfig=4 --setting CustomRomExpansion=0
        if [[ -v TARVELIN_UPDATE_GOLDEN ]]; then
            cp result "$source/tests/host/scripts/${script%.tvscript}.txt"
            continue
        fi
        diff "${script%.tvscript}.txt" result || fail "$script"
    done
}
scripts
mkdir first
mv same.* first
scripts
for file in first/*; do cmp "$file" "${file#first/}" || fail "two runs differ"; done

while IFS='|' read -r lines status text; do
    run - < <(printf '%b\n' "$lines")
    [[ $(tail -n 1 result) == "status $status" ]] || fail "$lines: $(cat result)"
    grep -qxF -- "$text" result || fail "$lines: $(cat result), not $text"
done <<'END'
assert 1 == 2 "no"|1|-:1: 1 == 2 does not hold: no
\nprint 1\nprint nothing\nprint 2|1|-:3: in {nothing}: column 1: "nothing" is no register and no symbol
boot\nuntil text "NEVER" within 9 frames|1|-:2: "NEVER" has not come
boot\nuntil a == 256 within 9 frames|1|READY
until text "MEM"\nassert no text "MEM"|1|-:2: "MEM" is on the screen
until text "MEM SIZE?"\nassert text "READY"|1|MEM SIZE?
assert screen gone.txt|1|-:1: gone.txt: cannot be read; what it shows is in gone.actual.txt
start gone.cmd|1|-:1: gone.cmd: no such file
load-state gone.tvs|1|-:1: gone.tvs: no such file
exit 7\necho no|7|status 7
run 100 cycles\nassert cycle >= 100 && cycle < 130|0|status 0
END
run gone.tvscript
[[ $(cat result) == $'gone.tvscript: cannot be read\nstatus 2' ]] || fail "a script that is not there"

echo help >help
run help
for name in $(sed -n 's/^\([a-z-]*\).*/\1/p' out | sort -u); do
    grep -q "^$name\b" ./*.tvscript ci/*.tvscript || fail "$name is in no script"
done
sed 's/^ *//; s/ *$//; s/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g' out | grep -v '^$' >lines
while read -r line; do
    grep -qF -- "$line" "$source/docs/debugger.html" || fail "not in the manual: $line"
done <lines

TARVELIN=$program ci/run.sh >out 2>&1 || fail "the examples: $(cat out)"
[[ $(grep -c ^passed out) == 2 ]] || fail "$(cat out)"
