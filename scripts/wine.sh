#!/usr/bin/env bash
# Runs a Windows program under Wine, with a prefix and a home of its own (WINEPREFIX, else in
# build/wine).
# usage: scripts/wine.sh PROGRAM [ARGUMENT...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
# Names of files beyond ASCII need the locale. The prefix gets no browser and no .NET, for which
# Wine would ask, and no entries in the desktop's menus.
export LC_ALL=C.UTF-8 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
mkdir -p "$WINEPREFIX"
# Wine's server ends some seconds after the last program, and refuses one that starts at that moment. A
# program that does nothing finds that out, and keeps it running for the one that is meant.
for _ in 1 2 3 4 5; do
    if /usr/lib/wine/wine64 cmd /c exit >/dev/null 2>&1; then break; fi
done
exec /usr/lib/wine/wine64 "$@"
