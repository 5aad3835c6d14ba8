#!/bin/sh
# Two library files with the same classes: the one that was registered last creates the objects, and unregistering one leaves the
# entries of the other.
#
# Usage: side_by_side_check.sh LIBRARY FOLDER. Exit code 0 when that holds, otherwise 1. The library must not be registered.
wine="$(cd "$(dirname "$0")" && pwd)/../../cmake/windows/wine.sh"
library=$1 folder=$2
rm -rf "$folder" && mkdir -p "$folder/one" "$folder/two" && cp "$library" "$folder/one" && cp "$library" "$folder/two" || exit 1
name=$(basename "$library")

# Registers or unregisters the file in a folder.
run() { # FOLDER [/u]
    (cd "$folder/$1" && "$wine" regsvr32 $2 /s "$name") && return
    echo "regsvr32 $2 failed in folder $1" >&2
    exit 1
}

# The value of a class and that of the type library end with the path of the file in this folder, or are missing.
expect() { # FOLDER, or "none"
    for key in 'HKCR\CLSID\{4B7F6647-8A1A-58A2-A42E-8A831CF71482}\InprocServer32' \
        'HKCR\CLSID\{AF08D789-E2F0-562B-9693-87A87DEC653A}\InprocServer32' \
        'HKCR\TypeLib\{E17BECE6-ABF0-53FF-AA05-E9EE705256DA}\1.1e\409\win64'; do
        value=$("$wine" reg query "$key" /ve 2>/dev/null | tr -d '\r' | sed -n "s/.*REG_SZ.*\\\\\\([a-z]*\\)\\\\$name\$/\\1/p")
        [ "${value:-none}" = "$1" ] && continue
        echo "$key names the file in folder ${value:-none}, expected $1" >&2
        exit 1
    done
}

run one && expect one
run two && expect two
run one /u && expect two
run one && expect one
run two /u && expect one
run one /u && expect none
