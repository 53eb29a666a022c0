#!/usr/bin/env bash
# Checks what the compilers do not: that no folder of src includes what stands above it, that only
# what is made for Windows includes its headers, the format, and what clang-tidy finds, in two of the
# sanitizer build's compilations at a time. One that passed is not looked at again until a source in it,
# a header of the project or the configuration changes. Formatter and clang-tidy differ from version to version; of another than
# LLVM's known one they are left out.
# usage: scripts/lint.sh            after the sanitizer build
set -euo pipefail
cd "$(dirname "$0")/.."
known_llvm=14

# From the bottom up, as in docs/architecture.md.
mkdir -p build
cat >build/layers <<'LAYERS'
wall
firmware
files
media/basic
z80
cgenie/memory
cgenie/typing
sound
media
cgenie
core
platform
files/zip
media/files
sound/output
core/pacing
time
debugger
debugger_view
monitor
host/recording
host/settings
host/dialogs
host
platform/headless
platform/sdl
platform/qt
platform/win32
platform/web
apps
LAYERS
scripts/sources.sh 'src/*.cpp' 'src/*.h' | xargs awk '
    function folder(path) { sub("/[^/]*$", "", path); return path }
    FILENAME == "build/layers" { height[$1] = FNR; next }
    FNR == 1 { own = folder(substr(FILENAME, 5)) }
    FNR == 1 && !(own in height) { print FILENAME ": its folder is no layer"; failed = 1 }
    /^#include <(windows|windowsx|winsock2)\.h>/ && own !~ /^(files|platform\/win32)$/ {
        print FILENAME ":" FNR ": " own " does not know Windows"
        failed = 1
    }
    /^#include .*\.cpp[">]/ { print FILENAME ":" FNR ": a source is included"; failed = 1 }
    /^#include "/ {
        split($0, part, "\"")
        other = folder(part[2])
        if (other in height && height[other] <= height[own]) next
        print FILENAME ":" FNR ": " own " does not see " other
        failed = 1
    }
    END { exit failed }' build/layers

is_known() {
    if "$1" --version | grep -q "version $known_llvm\\."; then return 0; fi
    echo "left out: $1 is not of version $known_llvm"
    return 1
}

if is_known clang-format; then
    scripts/sources.sh '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
fi

if ! is_known clang-tidy; then exit; fi
build=build/sanitize
stamps=build/lint
mkdir -p "$stamps"
common=$(scripts/sources.sh '*.h' .clang-tidy '*CMakeLists.txt' | xargs cat | sha1sum | cut -d' ' -f1)

# In a unity build's file sources are included; elsewhere the check of the layers finds that.
lint_one() {
    local file=$1 sources=() stamp
    if [[ $file == */Unity/* ]]; then
        mapfile -t sources < <(sed -n 's/^#include "\(.*\)"/\1/p' "$file")
    fi
    stamp="$stamps/$(cat "$file" "${sources[@]}" <(echo "$common $file") | sha1sum | cut -d' ' -f1)"
    [[ -f $stamp ]] && return 0
    clang-tidy --quiet --checks=-bugprone-suspicious-include -p "$build" "$file" 2>/dev/null && touch "$stamp"
}
export -f lint_one
export build stamps common

# What the sanitizer build compiles; of a unity build that is files of many sources.
compiled=$(sed -n "s:^ *\"file\"\: \"$PWD/\(.*\)\".*:\1:p" "$build/compile_commands.json" |
    grep -E "^($build/)?(src|tools)/" | grep -v '/\.rcc/')
included=$(grep '/Unity/' <<<"$compiled" | xargs -r sed -n "s:^#include \"$PWD/\(.*\)\":\1:p")
# What it does not compile here, but for what is for Windows or a page alone.
others=$(scripts/sources.sh 'src/*.cpp' 'tools/*.cpp' |
    grep -v -e '^src/platform/win32/' -e '^src/apps/windows\.cpp$' -e '_windows\.cpp$' \
        -e '^src/platform/web/' -e '^src/apps/browser\.cpp$' -e '_web\.cpp$' |
    grep -vxF -e "$compiled" -e "$included" || true)
printf '%s\n' "$compiled" "$others" | xargs -P2 -I{} bash -c 'lint_one {}'
