#!/usr/bin/env bash
# Kills a program while it saves, and looks at what is left: the old or the new file as a whole, and
# nothing else after the next start; of a disk, what its journal has.
# Then a full disk, a folder without permission, the longest name.
# usage: scripts/kills.sh [TIMES] [KIND...]         300 times each kind without arguments
# BUILD_DIR names another build folder than build/release, which must be built; programs for Windows run
# under Wine, where neither disks nor the folder are looked at. The full disk needs
# root for a small file system, the folder without permission another user; else they are left out.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${BUILD_DIR:-build/release}")
times=${1:-300}
kinds=("${@:2}")
[[ ${#kinds[@]} -gt 0 ]] || kinds=(snapshot export screenshot bitmap disk)
save=("$build/tests/support/save_loop")
start=("$build/src/tarvelin-headless")
rest=(0.01 0.02 0.03 0.04) # before a kill
if [[ ! -x ${save[0]} && ! -x ${save[0]}.exe ]]; then cmake --build "$build" --target save_loop tarvelin-headless >/dev/null; fi

work=$(mktemp -d)
mkdir "$work/reference" # a memory export holds the name of its file
full=$work/full
clean_up() {
    [[ -z ${WINEPREFIX:-} ]] || /usr/lib/wine/wineserver64 -k || true
    ! mountpoint -q "$full" || umount "$full"
    rm -rf "$work"
}
trap clean_up EXIT
export XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config
data=$XDG_DATA_HOME/tarvelin
windows=
if [[ -x ${save[0]}.exe ]]; then
    windows=1
    read -ra kinds <<<"${kinds[*]/disk/}"
    save=("$PWD/scripts/wine.sh" "${save[0]}.exe")
    start=("$PWD/scripts/wine.sh" "${start[0]}.exe")
    rest=(0.3 0.4 0.5 0.6)
    export WINEPREFIX=$work/wine
    "${start[0]}" wineboot -i >/dev/null 2>&1
    data=$WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Tarvelin
fi
failed=0

complain() {
    echo "FAILED: $*"
    failed=1
}
start() { (cd "$work" && "${start[@]}" /w /t 1 >/dev/null 2>&1); }
sum() { cksum <"$1"; }
reference() { # KIND: the sums of its two contents
    "${save[@]}" "$1" "$work/reference/file" 1 && first=$(sum "$work/reference/file")
    "${save[@]}" "$1" "$work/reference/file" 2 && second=$(sum "$work/reference/file")
}
is_whole() { [[ $(sum "$1") == "$first" || $(sum "$1") == "$second" ]]; }

# What is written bit by bit has a test of its own: BASIC writes to a disk all the time, and the
# journal must have what it held in the last second.
declare -A tests=([disk]='host *KilledAtAny*')
files=()
for kind in "${kinds[@]}"; do
    read -r folder filter <<<"${tests[$kind]:-}"
    if [[ -z $folder ]]; then
        files+=("$kind")
        continue
    fi
    cmake --build "$build" --target "test_$folder" >/dev/null
    TARVELIN_KILLS=$times "$build/tests/$folder/test_$folder" --gtest_filter="$filter" \
        >"$work/told" 2>&1 || complain "$kind: $(grep -v IMAGE "$work/told")"
    echo "$kind: killed $times times"
done
kinds=("${files[@]}")

for kind in "${kinds[@]}"; do
    reference "$kind"
    for names in one two; do
        folder=$work/$kind-$names
        mkdir "$folder"
        "${save[@]}" "$kind" "$folder/file" 1
        [[ $names == one ]] || ln "$folder/file" "$folder/other"
        left=0 offered=0
        for ((n = 0; n < times; ++n)); do
            "${save[@]}" "$kind" "$folder/file" &
            sleep "${rest[RANDOM % 4]}$((RANDOM % 10))"
            kill -KILL $! && wait $! 2>/dev/null || true
            left=$((left + $(find "$folder" -name '.tarvelin-*' | wc -l)))
            start
            copies=("$data"/rescue/*)
            if [[ $names == two && -e ${copies[0]} ]]; then # the file may be old, new or damaged
                is_whole "${copies[-1]}" || complain "$kind, $names: the copy is not whole"
                offered=$((offered + 1))
                rm -r "$data" # as after the answer
                "${save[@]}" "$kind" "$folder/file" 1
            elif ! is_whole "$folder/file"; then
                complain "$kind, $names: neither old nor new"
            fi
        done 2>/dev/null
        expected=$([[ $names == one ]] && echo file || printf 'file\nother')
        [[ $(ls -A "$folder") == "$expected" ]] || complain "$kind: $(ls -A "$folder") are left"
        [[ ! -e $data ]] || complain "$kind: $(find "$data") are left"
        rm -rf "$data"
        echo "$kind, names: $names: killed $times times, left until the next start: $left, offered: $offered"
    done

    name=file.$(printf 'n%.0s' {1..250})
    "${save[@]}" "$kind" "$work/$name" 2 && [[ $(sum "$work/$name") == "$second" ]] ||
        complain "$kind: a name of 255 bytes"
done

if [[ $(id -u) -eq 0 ]]; then
    mkdir "$full"
    for kind in "${kinds[@]}"; do
        reference "$kind"
        size=$(($(stat -c %s "$work/reference/file") / 1024 + 4))
        mount -t tmpfs -o "size=$((size + size / 2))k" none "$full" || break
        "${save[@]}" "$kind" "$full/file" 1
        ! "${save[@]}" "$kind" "$full/file" 2 2>"$work/told" || complain "$kind: a full disk is not noticed"
        grep -q 'No space left' "$work/told" || complain "$kind: $(cat "$work/told")"
        [[ $(sum "$full/file") == "$first" && $(ls -A "$full") == file ]] || complain "$kind: cut"
        umount "$full"
    done
    echo "full disk: done"
    [[ -z $windows ]] || exit $failed

    chmod 755 "$work"
    mkdir "$work/closed" "$work/home"
    chown nobody "$work/home"
    setpriv --reuid=nobody --clear-groups test -x "${save[@]}" || kinds=() # out of that user's reach
    for kind in "${kinds[@]}"; do
        reference "$kind"
        "${save[@]}" "$kind" "$work/closed/file" 1
        chown nobody "$work/closed/file"
        user=(setpriv --reuid=nobody --clear-groups env "XDG_DATA_HOME=$work/home" "${save[@]}" "$kind")
        "${user[@]}" "$work/closed/file" 2 || complain "$kind: not written in place"
        [[ $(sum "$work/closed/file") == "$second" ]] || complain "$kind: in place"
        ! "${user[@]}" "$work/closed/new" 1 2>/dev/null || complain "$kind: written without permission"
        chmod 444 "$work/closed/file"
        ! "${user[@]}" "$work/closed/file" 1 2>/dev/null || complain "$kind: protected, but written"
        rm "$work/closed/file"
    done
    [[ -z $(ls -A "$work/home") ]] || complain "left in the data directory"
    echo "folder without permission: done"
fi
exit $failed
