#!/usr/bin/env python3
"""Fails if a function of the library is used by nothing: not by the library, a client, a benchmark, a fuzz target or a test.

usage: unused_check.py ROOT-OF-THE-PROJECT FOLDER-FOR-WHAT-IS-KNOWN-OF-UNCHANGED-FILES

A function that only a test uses counts as used. cppcheck finds the functions. It doesn't see a function that is named as a
template argument, as in the interface tables, or called with template arguments, and it can't see the callers of the exported C
functions, nor of a function that an interface of the system declares.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(sys.argv[1])
FOLDERS = ("src", "clients", "samples", "examples", "tests", "fuzz", "bench")
EXPORTED = ("src/library/Exports_posix.cpp", "src/library/Exports_windows.cpp", "src/platform/component/dispatch/ClassInfo_windows.cpp",
            "src/platform/oxplatform.cpp")


def sources():
    return sorted(str(file.relative_to(ROOT)) for folder in FOLDERS for file in (ROOT / folder).rglob("*")
                  if file.suffix in (".h", ".cpp"))


def main():
    files = sources()
    Path(sys.argv[2]).mkdir(parents=True, exist_ok=True)
    done = subprocess.run(["cppcheck", "--enable=unusedFunction", f"--cppcheck-build-dir={Path(sys.argv[2]).resolve()}", "--library=googletest", "--std=c++20", "--language=c++",
                           "--quiet", "--template={file}:{line}:{message}", *files], cwd=ROOT, capture_output=True, text=True)
    found = re.findall(r"^(src/[^:]+):(\d+):The function '(\w+)' is never used", done.stderr, re.M)
    if not found or done.returncode != 0:
        sys.exit("cppcheck found nothing, not even the exported functions:\n" + done.stderr)
    text = "\n".join((ROOT / file).read_text(encoding="utf-8") for file in files)
    unused = [(file, line, name) for file, line, name in found
              if file not in EXPORTED and not re.search(rf"[<,] *&?(\w+::)*{name}[,>]|\b{name}<", text)]
    for file, line, name in unused:
        print(f"{file}:{line}: {name} is used by nothing", file=sys.stderr)
    sys.exit(1 if unused else 0)


main()
