#!/bin/sh
# Runs a compiled client on a new clinic database in a folder of its own.
#
# Usage: run_client.sh PROGRAM NEW-DATABASE FOLDER. Exit code: that of the program.
wine="$(cd "$(dirname "$0")" && pwd)/../../cmake/windows/wine.sh"
rm -rf "$3" && mkdir -p "$3" && cp "$2" "$3/clinic.db" && cd "$3" || exit 1
exec timeout 120 "$wine" "$1" clinic.db
