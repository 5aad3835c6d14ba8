#!/bin/sh
# Arrows run downwards only: no room includes a room above it, no room of the classes knows a database
# engine, and a public header includes no engine's header.
#
# Usage: layers_check.sh ROOT-OF-THE-PROJECT. Exit code 0 when all holds, otherwise 1.

cd "$1/src" || exit 1
failed=0

# forbid ROOM-OR-FILE PATTERN: no file of the room may have an include line that matches.
forbid() {
    found=$(grep -rnHE "#include [<\"]($2)" "$1")
    [ -z "$found" ] && return
    echo "FAILED: $1 must not include $2:" >&2
    echo "$found" >&2
    failed=1
}

classes='frame|people|anatomy|images|cards|series|worklist|library'
forbid platform "($classes)/"
forbid platform/runtime 'platform/(component|adodb)/'
forbid platform/component 'platform/adodb/'
forbid frame '(people|anatomy|images|cards|series|worklist)/'
forbid people '(anatomy|images|cards|series|worklist)/'
forbid anatomy '(people|images|cards|series|worklist)/'
forbid images '(cards|series|worklist)/'
# A series is stored as a card, and an entry of the card list holds a series: the list stands above both.
forbid series '(cards/cUniCard|worklist/)'
for file in cards/*; do
    case $file in cards/cUniCard*) ;; *) forbid "$file" '(series/|cards/cUniCard|worklist/)' ;; esac
done
forbid worklist '(anatomy|images|cards|series)/'
for room in frame people anatomy images cards series worklist; do
    forbid $room 'library/'
done
for room in frame people anatomy images cards series worklist library; do
    forbid $room '(sqlite3|libpq|sql|platform/adodb/providers)'
done
forbid . '(clients|tests)/'
for header in $(find . -name '*.h'); do
    if grep -qE '#include <(sqlite3|libpq-fe|sql)\.h>' "$header"; then
        echo "FAILED: $header includes a database engine's header" >&2
        failed=1
    fi
done
exit $failed
