#!/usr/bin/env python3
"""Checks that the modules of src depend on lower modules only, and that clients include public headers only.

usage: layers_check.py SOURCE-FOLDER [OBJECT-FOLDER]

A module is a folder of src. Its includes are read from the sources; with OBJECT-FOLDER (of a build), what it links is read
from the compiled objects, so that a declaration without an include is noticed as well. Exit code 1: a dependency points
upwards, files of different modules form a cycle, or a client includes an internal header.
"""

import os
import re
import subprocess
import sys

# From the lowest to the highest. A module may use the modules of the lines above it, none of its own line.
LAYERS = [
    ["platform/runtime"],
    ["platform/component/binary"],
    ["platform/component/dispatch"],
    ["platform/component/registry"],
    ["platform/adodb"],
    ["platform"],
    ["frame"],
    ["people", "anatomy"],
    ["images", "worklist"],
    ["cards"],
    ["series"],
    ["cardlist"],
    ["library"],
]
RANK = {module: rank for rank, modules in enumerate(LAYERS) for module in modules}
CLASSES = ["frame", "people", "anatomy", "worklist", "images", "cards", "series", "cardlist", "library"]
ENGINE_HEADERS = re.compile(r"sqlite3\.h|libpq-fe\.h|sql\.h|sqlext\.h|platform/adodb/providers/")


def module_of(path):
    """The module that a file of src belongs to: the longest listed folder that contains it."""
    folder = os.path.dirname(path)
    while folder and folder not in RANK:
        folder = os.path.dirname(folder)
    return folder


def files_of(folder):
    for where, _, names in os.walk(folder):
        for name in sorted(names):
            if name.endswith((".h", ".cpp")):
                yield os.path.relpath(os.path.join(where, name), folder)


def includes_of(path):
    with open(path, encoding="utf-8") as file:
        return re.findall(r'^#include [<"]([^>"]+)[>"]', file.read(), re.M)


def unit_of(path):
    return os.path.splitext(path)[0]


class Check:
    def __init__(self, source):
        self.source = source
        self.failures = 0
        self.uses = {}  # unit: the units that it includes or links

    def fail(self, text):
        self.failures += 1
        print(f"FAILED: {text}", file=sys.stderr)

    def dependency(self, user, used, how):
        """Records that a file of src uses another one, which must be in the same module or in a lower one."""
        self.uses.setdefault(unit_of(user), set()).add(unit_of(used))
        above, below = module_of(user), module_of(used)
        if above != below and RANK[above] <= RANK[below]:
            self.fail(f"src/{user} {how} src/{used}, but {above} is not above {below}")

    def includes(self):
        src = os.path.join(self.source, "src")
        for path in files_of(src):
            if not module_of(path):
                self.fail(f"src/{path} belongs to no module of the list")
                continue
            for used in includes_of(os.path.join(src, path)):
                if module_of(path) in CLASSES or path.endswith(".h") and "/providers/" not in path:
                    if ENGINE_HEADERS.match(used) and not used.endswith("providers/Provider.h"):
                        self.fail(f"src/{path} includes {used}, which belongs to a database engine")
                if os.path.exists(os.path.join(src, used)):
                    self.dependency(path, used, "includes")
                elif used.startswith(("clients/", "tests/", "console/", "kit/")):
                    self.fail(f"src/{path} includes {used}, which is not part of the library")

    def clients(self):
        with open(os.path.join(self.source, "src", "CMakeLists.txt"), encoding="utf-8") as file:
            public = set(re.findall(r"^\s+(\S+\.h)\)?$", file.read(), re.M))
        for folder in ("clients", "examples", "samples"):
            for path in files_of(os.path.join(self.source, folder)):
                for used in includes_of(os.path.join(self.source, folder, path)):
                    if os.path.exists(os.path.join(self.source, "src", used)) and used not in public:
                        self.fail(f"{folder}/{path} includes {used}, which is not a public header")

    def objects(self, folder):
        """Reads which object defines and which one needs each symbol. Inline functions are left out."""
        defined, needed = {}, []
        found = 0
        for where, _, names in os.walk(folder):
            for name in names:
                path = os.path.join(where, name)
                part = self.source_of(path)
                if not part:
                    continue
                found += 1
                for line in subprocess.run(["nm", "-P", path], capture_output=True, text=True, check=True).stdout.splitlines():
                    symbol, kind = line.split()[:2]
                    if kind in "TDBRS":
                        defined[symbol] = part
                    elif kind == "U":
                        needed.append((part, symbol))
        if not found:
            self.fail(f"{folder} has no objects of src")
        for user, symbol in needed:
            if symbol in defined and defined[symbol] != user:
                self.dependency(user, defined[symbol], f"links {symbol} of")

    def source_of(self, path):
        """The file of src that an object was compiled from; "folder/*" if it was several files of a folder together."""
        src = os.path.join(os.path.abspath(self.source), "src")
        together = re.search(r"^(.*/Unity/.+\.cxx)\.o$", path)
        if not together:
            alone = re.search(r"\.dir/(.+\.cpp)\.o$", path)
            return alone.group(1) if alone and os.path.exists(os.path.join(src, alone.group(1))) else None
        files = [os.path.relpath(file, src) for file in includes_of(together.group(1))]
        modules = {module_of(file) for file in files}
        if len(modules) > 1:
            self.fail(f"{path} is compiled from several modules: " + ", ".join(sorted(modules)))
        return os.path.join(os.path.dirname(files[0]), "*")

    def cycles(self):
        """Reports each cycle of units that are not all of one module."""
        index, low, stack, on_stack, counter = {}, {}, [], set(), [0]

        def visit(unit):
            index[unit] = low[unit] = counter[0]
            counter[0] += 1
            stack.append(unit)
            on_stack.add(unit)
            for used in self.uses.get(unit, ()):
                if used not in index:
                    visit(used)
                    low[unit] = min(low[unit], low[used])
                elif used in on_stack:
                    low[unit] = min(low[unit], index[used])
            if low[unit] == index[unit]:
                members = []
                while not members or members[-1] != unit:
                    members.append(stack.pop())
                    on_stack.discard(members[-1])
                if len({module_of(member) for member in members}) > 1:
                    self.fail("a cycle of files: " + ", ".join(sorted(members)))

        for unit in list(self.uses):
            if unit not in index:
                visit(unit)


def main():
    sys.setrecursionlimit(10000)
    check = Check(sys.argv[1])
    check.includes()
    check.clients()
    if len(sys.argv) > 2:
        check.objects(sys.argv[2])
    check.cycles()
    if check.failures == 0:
        print(f"layers: {len(check.uses)} units, no dependency upwards, no cycle between modules")
    return 1 if check.failures else 0


if __name__ == "__main__":
    sys.exit(main())
