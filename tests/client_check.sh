#!/bin/sh
# The client in C lists what a database holds, and tells a failure by its error record.
#
# Usage: client_check.sh CLIENT LIBRARY OXCLASS. Exit code 0 when all holds, otherwise 1.

folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $1" >&2
    exit 1
}

"$3" init "$folder/clinic.db" >/dev/null || fail "no database"
"$3" --db "$folder/clinic.db" doctor new DrLastName=Ek >/dev/null || fail "no doctor"
"$3" --db "$folder/clinic.db" doctor new DrLastName=Alm >/dev/null || fail "no doctor"
sqlite3 "$folder/clinic.db" "INSERT INTO Patient_T (PersonNr_CH, LastName_NVC) VALUES ('19800101-1234', 'Ek'),
    ('19790101-1234', 'Alm')" || fail "no patients"

"$1" "$2" "$folder/clinic.db" >"$folder/out" || fail "the client ended with $?: $(cat "$folder/out")"
printf '19790101-1234 Alm\n19800101-1234 Ek\n2 doctors\n' | diff - "$folder/out" || fail "another list"

ASAN_OPTIONS=detect_leaks=0 "$1" "$2" "$folder/none/clinic.db" >"$folder/out" && fail "a missing database was opened"
echo 'Open failed with 0x80020009: unable to open database file' | diff - "$folder/out" || fail "another failure"
