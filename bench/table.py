#!/usr/bin/env python3
"""Writes the table of the README from the baseline of the benchmarks.

usage: table.py README BASELINE [--check]

Replaces the table that begins with "| | library | by hand | ratio |". With --check nothing is written; exit code 1 if the
README has another table.
"""

import json
import sys

HEAD = "| | library | by hand | ratio |\n|---|---|---|---|\n"


def time(microseconds):
    digits = 3 if microseconds < 0.1 else 2 if microseconds < 1 else 1 if microseconds < 20 else 0
    return f"{microseconds:.{digits}f} µs" if microseconds else ""


def table(rows):
    lines = []
    for row in rows:
        unit = "" if row["unit"] == "whole" else f" {row['unit']}"
        ratio = f"{row['ratio']:.2f}" if row["ratio"] else ""
        lines.append(f"| {row['what']} | {time(row['library_us'])}{unit} | {time(row['by_hand_us'])} | {ratio} |\n")
    return HEAD + "".join(lines)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        readme = file.read()
    with open(sys.argv[2], encoding="utf-8") as file:
        wanted = table(json.load(file))
    start = readme.index(HEAD)
    end = readme.index("\n\n", start) + 1
    if "--check" in sys.argv:
        if readme[start:end] != wanted:
            sys.exit("README.md has another table of speed than bench/baseline.json; run bench/table.py README.md bench/baseline.json")
        return
    with open(sys.argv[1], "w", encoding="utf-8") as file:
        file.write(readme[:start] + wanted + readme[end:])


main()
