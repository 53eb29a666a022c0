# shellcheck shell=bash
# Sourced with the program's path in `program`: as desktop.sh, with the program under Wine in a prefix of
# its own.

source "$(dirname "${BASH_SOURCE[0]}")/../desktop/desktop.sh"
wine=$(realpath "$tests/../../scripts/wine.sh")
executable=$program
program=run_program
export WINEPREFIX=$work/wine HOME=$work
unset XDG_CONFIG_HOME XDG_DATA_HOME
echo 'pcm.!default { type null }' >.asoundrc # sound that nobody hears takes its time

run_program() { exec "$wine" "$executable" "$@"; }
start_wine() { "$wine" wineboot -i >wine.log 2>&1; }
# exported KEY: with all that is below it
exported() { "$wine" reg export "$1" keys.reg /y >/dev/null && iconv -f utf-16 -t utf-8 keys.reg; }

# settings LINE...: of the registry; no welcome, and with what screen needs
settings() {
    {
        printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Emulators\\Tarvelin]\n'
        printf '%s\n' 'WelcomeShown = 1' 'SaveVideoRamWithScreenShots = 1' "$@" |
            sed -E 's/(.*) = (.*)/"\1"=dword:\2/'
    } >settings.reg
    "$wine" reg import settings.reg >/dev/null
}

stop_wine() {
    /usr/lib/wine/wineserver64 -k || true
    clean_up
}
trap stop_wine EXIT
