#!/usr/bin/env bash
# Setup.exe under Wine: what it brings starts, the start menu and the file types have it, and after the
# removal registry and files are as before, but for what is the user's.
# usage: setup_test.sh BUILD-FOLDER
build=$(realpath "$1")
program=$build/src/tarvelin.exe
tests=$(realpath "$(dirname "$0")")
source "$tests/windows.sh"

home=wine/drive_c/users/$(id -un)/AppData
folder=$home/Local/Programs/Tarvelin
classes='HKCU\Software\Classes'
value() { "$wine" reg query "$@" 2>/dev/null | tr -d '\r' | sed -n 's/.* REG_SZ *//p'; }
# what_there_is: of the program, and all types of files
what_there_is() {
    find wine/drive_c -iname '*tarvelin*'
    exported "$classes"
    for root in HKCU HKLM; do exported $root | grep -i tarvelin || true; done
}

start_server
start_wine
"$wine" reg add "$classes\\.dsk" /ve /d Other.Disk >/dev/null
mkdir "$home/Roaming/Tarvelin"
what_there_is >before

cpack --config "$build/CPackConfig.cmake" -G NSIS -B "$work/package" >cpack.log || fail "$(cat cpack.log)"
for round in first again; do "$wine" package/Tarvelin-*-Setup.exe /S || fail "$round: $?"; done
[[ -s $home/Roaming/Microsoft/Windows/Start\ Menu/Programs/Tarvelin/Tarvelin.lnk ]] || fail "no start menu"
[[ $("$wine" "$folder/tarvelin.exe" --version) == "Tarvelin "* ]] || fail "it does not start"
# A build folder has no such place: the examples of an installation are beside the program.
[[ -s $folder/examples/bounce.cmd && -s $folder/doc/windows.html ]] || fail "examples or manual are missing"
[[ $(value "$classes\\.cas" /ve) == Tarvelin.Cassette ]] || fail ".cas: $(value "$classes\\.cas" /ve)"
[[ $(value "$classes\\.dsk" /ve) == Other.Disk ]] || fail "another program's type was taken"
[[ -z $(value "$classes\\.cmd" /ve) ]] || fail ".cmd was taken"
command=$(value "$classes\\Tarvelin.Disk\\shell\\open\\command" /ve)
[[ $command == *'\Tarvelin\tarvelin.exe" "%1"' ]] || fail "a disk is opened by $command"

"$wine" "$folder/uninstall.exe" /CurrentUser /S
for _ in $(seq 50); do [[ ! -e $folder ]] && break || sleep 0.1; done
sleep 0.5 # the registry comes last
what_there_is >after
diff before after || fail "the removal left or took something"
