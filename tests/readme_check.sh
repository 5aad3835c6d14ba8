#!/bin/sh
# The first program in the README is the one that is compiled and run, and its table of speed is that of the baseline.
#
# Usage: readme_check.sh ROOT-OF-THE-PROJECT. Exit code 0 when both are the same, otherwise 1.

cd "$1" || exit 1
/usr/bin/python3 -B bench/table.py README.md bench/baseline.json --check || exit 1
sed -n '/^```cpp$/,/^```$/p' README.md | sed '1d;$d' | diff - examples/first/first.cpp && exit 0
echo "FAILED: README.md shows another program than examples/first/first.cpp" >&2
exit 1
