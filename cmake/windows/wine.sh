#!/bin/sh
# Runs a Windows program under Wine, in the prefix that OXCLASS_WINEPREFIX names (default: build/windows-prefix), which is made
# at the first use. It needs no display. Usage: wine.sh PROGRAM [ARGUMENT...]
export WINEPREFIX="${OXCLASS_WINEPREFIX:-$(cd "$(dirname "$0")/../.." && pwd)/build/windows-prefix}"
export WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=d"
unset DISPLAY WAYLAND_DISPLAY
if [ ! -f "$WINEPREFIX/.made" ]; then
    mkdir -p "$WINEPREFIX"
    (
        flock 9
        [ -f "$WINEPREFIX/.made" ] || { wine wineboot --init >/dev/null 2>&1 && wineserver -w && touch "$WINEPREFIX/.made"; }
    ) 9>"$WINEPREFIX/.lock" || exit 1
fi
exec wine "$@"
