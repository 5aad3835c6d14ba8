#!/bin/sh
# Every C++ file of the project has the format that .clang-format describes. `./dev format` applies it.
#
# Usage: format_check.sh ROOT-OF-THE-PROJECT. Exit code 0 when all files do, otherwise 1.

cd "$1" || exit 1
find src clients tests fuzz bench samples examples \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -P 2 -n 40 clang-format --dry-run -Werror
