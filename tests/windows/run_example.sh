#!/bin/sh
# Runs the example client in C on a clinic database.
#
# Usage: run_example.sh FOLDER-OF-THE-LIBRARIES NEW-DATABASE FOLDER. Exit code 0 if it lists what the database holds, and names the
# reason if the library file is missing or is another file.
own=$(cd "$(dirname "$0")" && pwd)
libraries=$1 folder=$3
rm -rf "$folder" && mkdir -p "$folder" && cp "$2" "$folder/clinic.db" && cd "$folder" || exit 1
sqlite3 clinic.db "INSERT INTO Patient_T (PersonNr_CH, LastName_NVC) VALUES ('19800101-1234', 'Ek'), ('19790101-1234', 'Alm')" \
    "INSERT INTO Doctor_T (DrLastName_NVC) VALUES ('Berg')" || exit 1

# expect LIBRARY, with the expected output as standard input
expect() {
    timeout 120 "$own/../../cmake/windows/wine.sh" "$libraries/client_in_c.exe" "$1" clinic.db 2>errors.txt | tr -d '\r' >output.txt
    diff - output.txt && return
    cat errors.txt >&2
    exit 1
}

printf '19790101-1234 Alm\n19800101-1234 Ek\n1 doctors\n' | expect "$libraries/OXClass.dll"
echo 'missing.dll failed with 0x800401F8: missing.dll can'"'"'t be loaded: Module not found' | expect missing.dll
echo 'kernel32.dll failed with 0x800401F9: kernel32.dll is not a library of classes: it does not export DllGetClassObject' |
    expect kernel32.dll
