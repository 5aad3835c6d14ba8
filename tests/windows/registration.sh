#!/bin/sh
# Registers a library file in the registry of Windows, and unregisters it, as an installer does.
#
# Usage: registration.sh register|unregister LIBRARY FOLDER-FOR-WHAT-IS-COMPARED
# register: exit code 0 if regsvr32 succeeds, and a class, its program identifier and the type library are there.
# unregister: exit code 0 if regsvr32 succeeds, and the classes of the registry are those from before the registration.
own=$(cd "$(dirname "$0")" && pwd)
wine="$own/../../cmake/windows/wine.sh"
library=$2 folder=$3

fail() {
    echo "$1" >&2
    exit 1
}

# Writes all classes of the registry to a file of the folder.
classes() { # NAME
    cd "$folder" && "$wine" reg export 'HKLM\Software\Classes' all.reg /y >/dev/null &&
        iconv -f UTF-16 -t UTF-8 all.reg >"$1" && [ -s "$1" ]
}

requires() { # KEY
    "$wine" reg query "$1" >/dev/null 2>&1 || fail "$1 is missing"
}

cd "$(dirname "$library")" || exit 1
name=$(basename "$library")
case $1 in
    register)
        "$wine" regsvr32 /u /s "$name" || fail "what an earlier run has left can't be unregistered"
        # The script host enters a type library of its own at its first use.
        (cd "$folder" && echo 'WScript.Echo WScript.Arguments.Count' >first.vbs && "$wine" cscript //nologo first.vbs) >/dev/null
        (classes before.txt) || fail "the registry can't be exported"
        "$wine" regsvr32 /s "$name" || fail "regsvr32 returned $?"
        requires 'HKCR\OXClass.cPatient\CLSID'
        requires 'HKCR\CLSID\{4B7F6647-8A1A-58A2-A42E-8A831CF71482}\InprocServer32'
        requires 'HKCR\OXPlatform.Connection\CLSID'
        requires 'HKCR\TypeLib\{E17BECE6-ABF0-53FF-AA05-E9EE705256DA}\1.1e'
        requires 'HKCR\Interface\{3DC52B67-CCEE-53FE-9017-DBFB547BB273}'
        ;;
    unregister)
        "$wine" regsvr32 /u /s "$name" || fail "regsvr32 returned $?"
        (classes after.txt) || fail "the registry can't be exported"
        diff "$folder/before.txt" "$folder/after.txt" >"$folder/registry.diff" ||
            fail "the registry has changed: $(head -20 "$folder/registry.diff")"
        ;;
    *) exit 2 ;;
esac
