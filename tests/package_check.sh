#!/bin/sh
# Unpacks the packages of ./dev package into empty folders and uses them there: a C++ program is built on the development
# package and run, the program makes a database, and Python reads from it, once by the package of the system and once by the wheel.
#
# Usage: package_check.sh ROOT-OF-THE-PROJECT FOLDER-OF-THE-PACKAGES. Exit code 0 when all of it works, otherwise 1.

set -eu
project=$1
packages=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $1" >&2
    exit 1
}

for name in liboxclass liboxclass-dev oxclass python3-oxclass; do
    package=$(find "$packages" -name "${name}_*.deb")
    [ -f "$package" ] || fail "there is no package $name"
    dpkg-deb -x "$package" "$work/root"
done
dpkg-deb -f "$packages"/oxclass_*.deb Depends | grep -q 'liboxclass (= ' || fail "oxclass does not require its library"
dpkg-deb -f "$packages"/liboxclass_*.deb Depends | grep -q 'libsqlite3-0' || fail "liboxclass does not require SQLite"

oxclass=$work/root/usr/bin/oxclass
"$oxclass" --version | grep -q 'SQLite' || fail "oxclass --version does not name its engines"
"$oxclass" init "$work/clinic.db" >"$work/log" || fail "oxclass init"

cp -r "$project/examples/first" "$work/first"
cmake -S "$work/first" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$work/root/usr" >"$work/log" &&
    cmake --build "$work/build" >"$work/log" || { cat "$work/log" >&2 && fail "the program on liboxclass-dev"; }
cd "$work"
build/first | grep -q 'Ek, Anna' || fail "the program on liboxclass-dev did not read back what it wrote"

cat >read.py <<'END'
import sys
import oxclass
con = oxclass.CreateObject("ADODB.Connection")
con.Open("Provider=SQLite;Data Source=clinic.db")
patient = oxclass.CreateObject("OXClass.cPatient")
assert patient.LoadOnPatientIDorPDBID(con, "19800131-1234", 0) and patient.LastName == "Ek"
from oxclass._library import library
assert oxclass.__file__.startswith(sys.argv[1]), oxclass.__file__
END
env -u OXCLASS_LIBRARY LD_LIBRARY_PATH="$work/root/usr/lib" PYTHONPATH="$work/root/usr/lib/python3/dist-packages" \
    /usr/bin/python3 -B read.py "$work/root" || fail "the package python3-oxclass"

/usr/bin/python3 -m venv --without-pip "$work/venv"
/usr/bin/python3 -m zipfile -e "$packages"/oxclass-*.whl "$(echo "$work"/venv/lib/python3*/site-packages)"
find "$work/root" "$work/venv" -name 'lib*.so' | grep -c . | grep -qx 4 || fail "the wheel does not carry both libraries"
rm -rf "$work/root"
env -u OXCLASS_LIBRARY -u PYTHONPATH "$work/venv/bin/python3" -B read.py "$work/venv" || fail "the wheel"

if [ -f "$(find "$packages" -name "oxclass-windows-*.zip")" ]; then
    /usr/bin/python3 -m zipfile -l "$packages"/oxclass-windows-*.zip | grep -q 'OXClass.dll' || fail "the package for Windows"
fi
echo "packages: unpacked in an empty folder, the program, the library, and Python with both packages work"
