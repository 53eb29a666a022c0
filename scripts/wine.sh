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
exec /usr/lib/wine/wine64 "$@"
