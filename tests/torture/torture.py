#!/usr/bin/env python3
"""Runs the program and the library under conditions that no clinic should have, and checks what is left.

usage: torture.py --program OXCLASS --samples FOLDER --client FOLDER [--short] [--seed N] [--only CASE]

After every case the database is sound, every row has its file and every file its row, nothing is left over, and a
repeated import reaches the state of an undisturbed one. The library for the Python client is found through
OXCLASS_LIBRARY. Exit code 1: a case failed; the line says which, with the seed that repeats it.
"""

import argparse
import os
import sys
import tempfile
import time

from databases import Databases
from imports import Imports

# name: (group, method, arguments of the long form, of the short form)
CASES = {
    "kill": ("imports", "killed", (1075,), (6,)),
    "signals": ("imports", "stopped", (60,), (2,)),
    "at-once": ("imports", "at_once", (16,), (6,)),
    "any-order": ("imports", "in_any_order", (40,), (2,)),
    "lock-short": ("imports", "locked", (5,), (1,)),
    "lock-long": ("imports", "locked", (20,), None),
    "full-disk": ("imports", "full_disks", (120,), (3,)),
    "damaged-files": ("imports", "damaged_files", (17000,), (150,)),
    "damaged-databases": ("databases", "damaged", (), None),
    "changed-tables": ("databases", "changed_tables", (50,), (2,)),
    "hostile-texts": ("databases", "hostile_texts", (300000,), (1500,)),
    "random-calls": ("databases", "random_calls", (230000,), (400,)),
}


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "samples", "client"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--seed", type=int, default=None)
    parser.add_argument("--only", choices=CASES)
    options = parser.parse_args()
    seed = options.seed if options.seed is not None else int(time.time())
    failed = run = 0
    with tempfile.TemporaryDirectory(prefix="oxclass-torture-") as folder:
        groups = {
            "imports": Imports(os.path.abspath(options.program), os.path.abspath(options.samples), folder, seed),
            "databases": Databases(os.path.abspath(options.program), os.path.abspath(options.samples), folder, seed, options.client),
        }
        for name, (group, method, long, short) in CASES.items():
            arguments = short if options.short else long
            if arguments is None or (options.only and name != options.only):
                continue
            run += 1
            started = time.monotonic()
            try:
                told = getattr(groups[group], method)(*arguments)
                print(f"{name}: {told}, {time.monotonic() - started:.1f} s", flush=True)
            except AssertionError as failure:
                failed += 1
                print(f"{name}: FAILED with --seed {seed}: {failure}", flush=True)
    print(f"torture: {run - failed} passed, {failed} failed")
    return 1 if failed or not run else 0


if __name__ == "__main__":
    sys.exit(main())
