#!/bin/sh
# Runs a script of a client under the script host of Windows, behind the kit of its language. The host ends in silence at an error
# that no script handles; so the last line must be the one that the kit prints at the end.
#
# Usage: run_script.sh SCRIPT NEW-DATABASE FOLDER. Exit code 0 if the script has run to its end and all its checks have passed.
script=$1 database=$2 folder=$3
own=$(cd "$(dirname "$0")" && pwd)
wine="$own/../../cmake/windows/wine.sh"
language=${script##*.}

rm -rf "$folder" && mkdir -p "$folder" && cp "$database" "$folder/clinic.db" || exit 1
cat "$own/scripts/kit.$language" "$script" >"$folder/script.$language" || exit 1
cd "$folder" || exit 1
timeout 120 "$wine" cscript //nologo "script.$language" >output.txt 2>errors.txt
code=$?
tr -d '\r' <output.txt
if [ $code -ne 0 ]; then
    echo "the script host returned $code" >&2
elif grep -q '^FAILED' output.txt || ! tail -1 output.txt | grep -qE '^done: [1-9][0-9]* checks'; then
    echo "the script failed, or stopped before its end" >&2
else
    exit 0
fi
cat errors.txt >&2
exit 1
