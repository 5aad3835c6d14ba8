#!/bin/sh
# The library file exports four functions and nothing else, and needs no file that does not belong to Windows.
#
# Usage: exports_check.sh OBJDUMP LIBRARY. Exit code 0 when that holds, otherwise 1.
"$1" -p "$2" >"$2.txt" || exit 1
printf 'DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer\n' >"$2.expected"
sed -n 's/^\t\[ *[0-9]*\] \([A-Za-z_]*\)$/\1/p' "$2.txt" | diff "$2.expected" - || exit 1
needed=$(sed -n 's/^\tDLL Name: //p' "$2.txt" | grep -viE '^(advapi32|kernel32|msvcrt|odbc32|ole32|oleaut32|user32)\.dll$')
[ -z "$needed" ] || {
    echo "needs $needed" >&2
    exit 1
}
