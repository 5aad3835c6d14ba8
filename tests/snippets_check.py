#!/usr/bin/env python3
"""Runs the commands and the Python examples of the documents.

usage: snippets_check.py OXCLASS SAMPLES

The commands are the indented lines of the README that begin with one of COMMANDS, the Python examples the blocks marked as
such in the README and in the README of the Python client. They run in a new folder, in their order, with the samples in
~/radiographs and with the build and the examples of the project. The library for Python is found through OXCLASS_LIBRARY.
The examples of the help texts run too (help_check.py). Exit code 1: one failed, a document has none, or the first Python
example did not change its patient.
"""

import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile

import help_check

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
README, PYTHON_README = os.path.join(ROOT, "README.md"), os.path.join(ROOT, "clients", "python", "README.md")
NEEDS_A_SERVER = ("RIS@", "Provider=PostgreSQL", "Provider=MSDASQL")
PARTLY_IMPORTED = 3  # some samples can't be imported, on purpose
COMMANDS = ("oxclass", "export", "cmake", "cc", "./client")


def text_of(file):
    with open(file, encoding="utf-8") as document:
        return document.read()


def commands_of(file):
    return re.findall(rf"^    ((?:{'|'.join(COMMANDS)}) .*)$", text_of(file), re.M)


def examples_of(file):
    return re.findall(r"^```python\n(.*?)^```$", text_of(file), re.M | re.S)


def run_commands(commands, environment):
    failed = 0
    for command in commands:
        if command.startswith("export "):
            name, value = command[len("export "):].split("=", 1)
            environment[name] = value
            continue
        if any(mark in command for mark in NEEDS_A_SERVER):
            continue
        done = subprocess.run(["sh", "-c", command], env=environment, capture_output=True, text=True)
        if done.returncode not in ((0, PARTLY_IMPORTED) if " import " in command else (0,)):
            failed += 1
            print(f"FAILED: {command}\n{done.stderr}", file=sys.stderr)
    return failed


def run_examples(file, environment):
    examples = examples_of(file)
    script = "\n".join(examples)
    done = subprocess.run(["/usr/bin/python3", "-B", "-c", script], env=environment, capture_output=True, text=True)
    if done.returncode != 0 or not examples:
        print(f"FAILED: the examples of {os.path.relpath(file, ROOT)}\n{done.stderr}", file=sys.stderr)
        return len(examples), 1
    return len(examples), 0


def changed_patient():
    """Whether the patient of the first Python example has the name that the example stores."""
    rows = sqlite3.connect("clinic.db").execute("SELECT LastName_NVC FROM Patient_T WHERE PersonNr_CH = '19800131-1234'")
    return rows.fetchall() == [("Åkesson",)]


def main():
    program, samples = (os.path.abspath(argument) for argument in sys.argv[1:3])
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(samples, os.path.join(folder, "radiographs"))
        os.makedirs(os.path.join(folder, "bin"))
        os.symlink(program, os.path.join(folder, "bin", "oxclass"))
        environment = dict(os.environ, HOME=folder, PATH=f"{folder}/bin:{os.environ['PATH']}",
                           OXCLASS_REGISTRY=os.path.join(folder, "classes.json"),
                           OXCLASS_LIBRARY=os.path.abspath(os.environ["OXCLASS_LIBRARY"]),
                           PYTHONPATH=os.path.join(ROOT, "clients", "python"))
        for given in ("build", "examples"):
            os.symlink(os.path.join(ROOT, given), os.path.join(folder, given))
        environment["CMAKE_GENERATOR"] = "Ninja"
        os.chdir(folder)
        commands = commands_of(README)
        failed = run_commands(commands, environment) + (not commands)
        examples = 0
        for file in (README, PYTHON_README):
            count, bad = run_examples(file, environment)
            examples += count
            failed += bad
        if not changed_patient():
            failed += 1
            print("FAILED: the first Python example did not change its patient", file=sys.stderr)
    failed += help_check.check(program, samples)
    print(f"snippets: {len(commands)} commands and {examples} Python examples, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
