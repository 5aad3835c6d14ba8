"""Runs the examples of all help texts of the program, for snippets_check.py.

Each example runs in a copy of one prepared clinic with the samples in ~/radiographs. Examples that need a server, a file of
another program or a folder outside of the home folder are counted and not run. A command without an example is a
failure.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

NOT_RUN = ("RIS@", "Provider=", "/srv/", "/mnt/", "libOXClass.so")
PARTLY_DONE = 3  # some samples can't be imported or drawn, on purpose
PREPARATION = """
oxclass init clinic.db --root images
oxclass import ~/radiographs
oxclass card new TEST-FMX18 Caries
oxclass card add IC1 26 27 28
oxclass comment 1 first && oxclass comment 1 second && oxclass comment 1 third
oxclass doctor new DrLastName=Ek
oxclass clinics && oxclass clinic new ClinicName=Nord
oxclass delete image 5
"""


def help_of(program, command):
    done = subprocess.run([program, *command, "--help"], capture_output=True, text=True, check=True)
    return done.stdout


def commands_of(program, command=()):
    """Yields all commands, as lists of words, with their help."""
    text = help_of(program, command)
    if command:
        yield list(command), text
    listed = re.search(r"^Subcommands:\n((?:  .*\n?)+)", text, re.M)
    for name in re.findall(r"^  (\S+)", listed.group(1), re.M) if listed else ():
        yield from commands_of(program, (*command, name))


def run(line, folder, environment):
    return subprocess.run(["sh", "-c", line], cwd=folder, env=environment, capture_output=True, text=True)


def run_example(line, prepared, environment):
    """Runs an example in a copy of the clinic, whose files are links to those of the prepared one."""
    copy = prepared + ".copy"
    shutil.copytree(prepared, copy, symlinks=True, copy_function=os.link)
    database = os.path.join(copy, "clinic.db")
    os.remove(database)
    shutil.copyfile(os.path.join(prepared, "clinic.db"), database)
    try:
        if line.startswith("oxclass init "):
            shutil.rmtree(os.path.join(copy, "images"))
            os.remove(database)
        return run(line, copy, environment)
    finally:
        shutil.rmtree(copy)


def prepare(folder, environment):
    clinic = os.path.join(folder, "work")
    os.makedirs(clinic)
    for line in PREPARATION.strip().splitlines():
        done = run(line, clinic, environment)
        if done.returncode not in (0, PARTLY_DONE):
            sys.exit(f"FAILED: {line}\n{done.stderr}")
    # The storage root of a copy is the folder of the same name beside its database.
    run("sqlite3 clinic.db \"UPDATE Root_T SET RootDirectory = 'images'; PRAGMA wal_checkpoint(TRUNCATE)\"", clinic, environment)
    return clinic


def check(program, samples):
    """Returns the number of failures."""
    failed = ran = left_out = 0
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(samples, os.path.join(folder, "radiographs"))
        os.makedirs(os.path.join(folder, "bin"))
        os.symlink(program, os.path.join(folder, "bin", "oxclass"))
        environment = dict(os.environ, HOME=folder, PATH=f"{folder}/bin:{os.environ['PATH']}", OXCLASS_DB="clinic.db",
                           OXCLASS_REGISTRY=os.path.join(folder, "classes.json"))
        clinic = prepare(folder, environment)
        for command, text in commands_of(program):
            examples = re.findall(r"^Example: (.*)$", text, re.M)
            if not examples and "\nSubcommands:" not in text:
                failed += 1
                print(f"FAILED: {' '.join(command)} has no example", file=sys.stderr)
            for line in examples:
                if any(mark in line for mark in NOT_RUN):
                    left_out += 1
                    continue
                done = run_example(line, clinic, environment)
                ran += 1
                if done.returncode not in (0, PARTLY_DONE):
                    failed += 1
                    print(f"FAILED: {line}\n{done.stderr}", file=sys.stderr)
    print(f"help: {ran} examples, {left_out} not run, {failed} failed")
    return failed
