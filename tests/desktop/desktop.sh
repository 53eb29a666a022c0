# shellcheck shell=bash
# Sourced with the program's path in `program`: a virtual X server, a home for one run, and the
# program's window.

set -euo pipefail

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

program=$(realpath "$program")
work=$(mktemp -d)
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data QT_QPA_PLATFORM=xcb
export SDL_AUDIODRIVER=dummy
export QT_NO_XDG_DESKTOP_PORTAL=1 # Qt 6.8 leaks its question to a portal that is not there
unset WAYLAND_DISPLAY
mkdir -p "$work/config/tarvelin"
cd "$work"
echo 'WelcomeShown = 1' >config/tarvelin/settings.toml # it would take the keys
# What the host's libraries keep until the program's end is not this program's leak.
printf 'leak:libdbus-1\nleak:libfontconfig\n' >lsan.supp
export LSAN_OPTIONS=suppressions=$work/lsan.supp:print_suppressions=0

# settings LINE...: of the settings file; silent, and with what screen needs
settings() {
    printf '%s\n' 'WelcomeShown = 1' 'SaveVideoRamWithScreenShots = 1' 'Sound = 0' "$@" \
        >config/tarvelin/settings.toml
}

clean_up() {
    kill ${program_pid:-} ${compositor_pid:-} ${server_pid:-} 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

# start_server [GEOMETRY]: it must outlive its first client, which may only set the layout
start_server() {
    mkfifo display
    Xvfb -displayfd 3 -screen 0 "${1:-1280x1024x24}" -nolisten tcp -noreset 3>display 2>/dev/null &
    server_pid=$!
    DISPLAY=:$(head -n 1 display)
    export DISPLAY
}

# start_window_manager: for what goes from one window to another
start_window_manager() {
    openbox >openbox.log 2>&1 &
    for _ in $(seq 50); do
        if xdotool get_desktop >/dev/null 2>&1; then break; fi # it is there
        sleep 0.1
    done
}

# find_window TITLE: the number of the program's window with such a title, once it is there
find_window() {
    local found
    for _ in $(seq 100); do
        found=$(xdotool search --all --onlyvisible --pid "$program_pid" --name "$1" 2>/dev/null |
            tail -n 1 || true)
        if [[ -n $found ]]; then
            echo "$found"
            return
        fi
        kill -0 "$program_pid" 2>/dev/null || fail "the program ended: $(cat program.log)"
        sleep 0.1
    done
    fail "no window $1: $(cat program.log)"
}

# start_program ARGUMENTS...: sets program_pid and window.
start_program() {
    "$program" "$@" >program.log 2>&1 &
    program_pid=$!
    window=$(find_window .)
    xdotool windowfocus --sync "$window"
}

# Processor time of the program, in 10 ms.
ticks() { awk '{print $14 + $15}' "/proc/$program_pid/stat"; }

# wait_for FILE
wait_for() {
    for _ in $(seq 100); do
        if [[ -s $1 ]]; then return; fi
        sleep 0.1
    done
    fail "$1 was not written"
}

# screen [NAME]: the text in the machine's memory. NAME is what screenshots are called.
screen() {
    local memory=${1:-Tarvelin}.v80
    rm -f "$memory"
    xdotool key F6
    wait_for "$memory"
    tr '\0' ' ' <"$memory" | fold -w 40
}

# shows TEXT [NAME]: on the screen within a few seconds?
shows() {
    for _ in $(seq 20); do
        if screen "${2:-Tarvelin}" | grep -qF "$1"; then return; fi
        sleep 0.2
    done
    return 1
}

# becomes WHAT EXPECTED COMMAND...: the command's output within a few seconds
becomes() {
    local what=$1 expected=$2
    shift 2
    for _ in $(seq 40); do
        if [[ $("$@") == "$expected" ]]; then return; fi
        sleep 0.1
    done
    fail "$what: $("$@"), not $expected"
}

# types TEXT EXPECTED: what the machine's first prompt makes of it
types() {
    shows "MEM SIZE?" || fail "the firmware did not start"
    xdotool key Return
    shows READY || fail "the firmware did not take the answer"
    # A busy host may miss a key that is down for a moment, hold one for so long that it repeats, or
    # see the SHIFT of one gone before the key: another line is another try.
    for _ in $(seq 8); do
        xdotool type --delay 120 "$1"
        if shows ">$2"; then return; fi
        xdotool key Return
        sleep 0.5
    done
    fail "expected >$2 on
$(screen)"
}
