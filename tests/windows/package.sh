#!/bin/sh
# Unpacks the package for Windows into an empty folder whose name has a blank, installs it with its own script, runs a script that
# uses the classes, and removes it again, after which no class can be created.
#
# Usage: package.sh PACKAGE NEW-DATABASE FOLDER. Exit code 0 if all of it works.
package=$1 database=$2 folder=$3
own=$(cd "$(dirname "$0")" && pwd)
wine="$own/../../cmake/windows/wine.sh"

fail() {
    echo "$1" >&2
    exit 1
}

rm -rf "$folder" && mkdir -p "$folder/Program Files" && cd "$folder/Program Files" || exit 1
"${CMAKE:-cmake}" -E tar xf "$package" || fail "the package can't be unpacked"
cd oxclass-windows-* || fail "the package has no folder"
"$own/run_script.sh" "$own/scripts/people.vbs" "$database" "$folder/before" >/dev/null 2>&1 && fail "the classes are registered already"
"$wine" cmd /c install.cmd >"$folder/install.txt" || fail "install.cmd failed: $(cat "$folder/install.txt")"
"$own/run_script.sh" "$own/scripts/people.vbs" "$database" "$folder/installed" || fail "the installed classes don't work"
"$wine" cmd /c uninstall.cmd >"$folder/uninstall.txt" || fail "uninstall.cmd failed: $(cat "$folder/uninstall.txt")"
"$own/run_script.sh" "$own/scripts/people.vbs" "$database" "$folder/after" >/dev/null 2>&1 && fail "the classes are still registered"
exit 0
