"""What the checks of a cluster and of a replica share: importers of the samples, and what must be stored in the end."""

import json
import os
import sqlite3
import subprocess
import sys
import tempfile
import time


class Importers:
    """The program, the samples, and a folder for all that is made."""

    def __init__(self, program, samples, folder):
        self.program = os.path.abspath(program)
        self.samples = os.path.abspath(samples)
        self.folder = folder
        self.root = os.path.join(folder, "images")

    def command(self, database, *arguments):
        return [self.program, "--db", database, *arguments]

    def run(self, database, *arguments, codes=(0,)):
        """One run of the program, which must end with one of these exit codes."""
        done = subprocess.run(
            self.command(database, *arguments), stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=300
        )
        assert done.returncode in codes, f"{arguments}: exit code {done.returncode}: {done.stdout} {done.stderr}"
        return done

    def folders(self, names):
        return [os.path.join(self.samples, name) for name in names]

    def start(self, database, names):
        """Starts an import of these sets of samples."""
        return subprocess.Popen(
            self.command(database, "import", *self.folders(names), "--jobs", "1", "--json"),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
        )

    def undisturbed(self, names):
        """The exit code, the numbers and the rows of an import into a new file that nothing disturbs."""
        database = os.path.join(self.folder, f"{'-'.join(names)}.db")
        self.run_init(database, os.path.join(self.folder, "images-" + "-".join(names)))
        done = self.run(database, "import", *self.folders(names), "--json", codes=(0, 3))
        return done.returncode, json.loads(done.stdout), state(database)

    def run_init(self, database, root):
        done = subprocess.run([self.program, "init", database, "--root", root], capture_output=True, text=True, timeout=120)
        assert done.returncode == 0, f"init: {done.stderr}"

    def copied(self, database, name):
        """The checksum of each table of a database, and its copy in a file."""
        file = os.path.join(self.folder, name)
        return json.loads(self.run(database, "copy", "--to", file, "--json").stdout), file

    def require_files(self, database):
        """Each row has its file, each file of the storage root its row, and no import left anything behind."""
        con = sqlite3.connect(database)
        named = {name for (name,) in con.execute("SELECT GraphicURL_NVC FROM ImageBild_T")}
        con.close()
        found = set()
        for folder, _, names in os.walk(self.root):
            found |= {os.path.relpath(os.path.join(folder, name), self.root).replace("/", "\\") for name in names}
        found.discard(".oxclass-root")
        assert named == found, f"rows without a file: {sorted(named - found)[:3]}, files without a row: {sorted(found - named)[:3]}"


def state(database):
    """All that an import stores, without keys and what is made of them: they depend on the order of arrival."""
    con = sqlite3.connect(database)
    rows = [
        con.execute(statement).fetchall()
        for statement in (
            "SELECT PersonNr_CH, LastName_NVC, FirstName_NVC, Birthdate_CH, Sex_CH FROM Patient_T ORDER BY 1, 2, 3",
            "SELECT StudyInstanceUID, PersonNr_CH FROM Study_T JOIN Patient_T USING (PatientID) ORDER BY 1",
            "SELECT SeriesInstanceUID, StudyInstanceUID, template_ID, NumberOfImages FROM Series_T JOIN Study_T "
            "USING (Study_ID) ORDER BY 1",
            "SELECT SOPInstanceUID_NVC, SeriesInstanceUID, PersonNr_CH, FrameNumber_INT, CRC FROM ImageBild_T JOIN Series_T "
            "USING (Series_ID) JOIN Patient_T USING (PatientID) ORDER BY 1",
        )
    ]
    con.close()
    return rows


def require_equal(found, expected):
    """Fails with the first rows in which two states differ."""
    for one, other in zip(found, expected):
        missing, surplus = [row for row in other if row not in one], [row for row in one if row not in other]
        assert one == other, f"missing: {missing[:2]}, surplus: {surplus[:2]}, {len(one)} rows instead of {len(other)}"


def wait_until(what, condition, seconds=120):
    """Waits for a condition; `what` tells it in the failure."""
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end, f"after {seconds} s still not: {what}"
        time.sleep(0.01)


def finished(run):
    """The exit code, the numbers and the messages of an import that was started."""
    out, err = run.communicate(timeout=300)
    return run.returncode, json.loads(out) if out.startswith("{") else {"stored": 0}, err


def run_check(name, script, check):
    """The whole program of a check: usage PROGRAM SAMPLES. `check` gets the folder of its servers, which `script` stops at the
    end, and the importers. Returns the exit code."""
    program, samples = sys.argv[1:3]
    with tempfile.TemporaryDirectory(prefix=f"oxclass-{name}-") as folder:
        os.chmod(folder, 0o755)
        servers = os.path.join(folder, "servers")
        try:
            check(servers, Importers(program, samples, folder))
        except AssertionError as failure:
            print(f"{name}: FAILED: {failure}", file=sys.stderr)
            return 1
        finally:
            subprocess.run([script, "stop", servers], check=False)
    print(f"{name}: all checks passed")
    return 0
