"""What the tests share: a clinic's database with imported samples, and programs in a Python of their own.

The environment names what is tested: OXCLASS_LIBRARY the folder of the libraries, OXCLASS_PROGRAM the program
``oxclass``, OXCLASS_SAMPLES a folder of radiographs.
"""
import atexit
import functools
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import oxclass

PACKAGE = Path(oxclass.__file__).resolve().parent
SOURCES = PACKAGE.parents[2]
FULL_MOUTH = "TEST-FMX18"


def given(variable):
    """Returns a path that the environment must name."""
    value = os.environ.get(variable)
    if not value:
        raise RuntimeError(f"set {variable}: {__doc__}")
    return Path(value).resolve()


def library_folder():
    path = given("OXCLASS_LIBRARY")
    return path if path.is_dir() else path.parent


def program(*arguments, allowed=(0,)):
    """Runs ``oxclass``; returns its output."""
    done = subprocess.run([str(given("OXCLASS_PROGRAM")), *map(str, arguments)], capture_output=True, text=True)
    if done.returncode not in allowed:
        raise RuntimeError(f"oxclass {arguments} ended with {done.returncode}: {done.stderr}")
    return done.stdout


@functools.lru_cache(maxsize=None)
def _folder():
    folder = Path(tempfile.mkdtemp(prefix="oxclass-python-"))
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return folder


@functools.lru_cache(maxsize=None)
def _database(imported):
    file = _folder() / f"imported-{imported}.db"
    program("init", file, "--root", _folder() / f"images-{imported}")
    if imported:
        program("--db", file, "import", given("OXCLASS_SAMPLES"), allowed=(0, 3))
    return file


def open_database(file):
    connection = oxclass.CreateObject("ADODB.Connection")
    connection.Open(f"Provider=SQLite;Data Source={file}")
    return connection


class DatabaseTest(unittest.TestCase):
    """Each test has a database of its own, opened by the library (``con``) and by Python (``rows``)."""

    imported = False

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(dir=_folder()))
        self.file = self.folder / "clinic.db"
        shutil.copyfile(_database(self.imported), self.file)
        self.con = open_database(self.file)

    def tearDown(self):
        if self.con.State == oxclass.adStateOpen:
            self.con.Close()

    def rows(self, statement, *values):
        """Returns the rows that Python's own sqlite3 reads from the file."""
        reader = sqlite3.connect(self.file)
        try:
            reader.row_factory = sqlite3.Row
            return reader.execute(statement, values).fetchall()
        finally:
            reader.close()

    def row(self, statement, *values):
        rows = self.rows(statement, *values)
        self.assertEqual(len(rows), 1, statement)
        return rows[0]


class ClinicTest(DatabaseTest):
    """The database holds the imported samples."""

    imported = True


def run_python(code, package=PACKAGE, **environment):
    """Runs a program in a Python of its own; a variable that is None is unset."""
    merged = {**os.environ, "PYTHONPATH": str(package.parent), "PYTHONDONTWRITEBYTECODE": "1", **environment}
    variables = {name: str(value) for name, value in merged.items() if value is not None}
    return subprocess.run([sys.executable, "-c", code], env=variables, cwd="/", capture_output=True, text=True,
                          timeout=120)
