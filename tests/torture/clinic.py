"""A clinic under test: its database, its storage root, and what must hold for both after every case."""

import hashlib
import os
import shutil
import sqlite3
import subprocess

IMAGE_COLUMNS = (
    "SOPInstanceUID_NVC, FrameNumber_INT, PriStructure, Laterality, AnaRegion, AnaRegionMod, ImageType, CRC, "
    "GraphicURL_NVC, DateCaptured_SD"
)


class Clinic:
    """A database with its storage root in a folder of its own."""

    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.database = os.path.join(folder, "clinic.db")
        self.root = os.path.join(folder, "images")
        os.makedirs(folder)
        self.run("init", self.database, check=True)

    def command(self, *arguments):
        return [self.program, "--db", self.database, *arguments]

    def run(self, *arguments, check=False, **options):
        """One run of the program to its end."""
        done = subprocess.run(
            self.command(*arguments), stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", timeout=600,
            **options
        )
        if check and done.returncode != 0:
            raise AssertionError(f"{arguments}: exit code {done.returncode}: {done.stderr}")
        if done.returncode < 0 or "Sanitizer" in done.stderr or "runtime error" in done.stderr:
            raise AssertionError(f"{arguments}: crashed: {done.returncode} {done.stderr[-3000:]}")
        return done

    def start(self, *arguments, **options):
        """Starts a run and does not wait for its end."""
        return subprocess.Popen(
            self.command(*arguments), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            errors="replace", **options
        )

    def connect(self):
        con = sqlite3.connect(self.database, timeout=30, isolation_level=None)
        con.row_factory = sqlite3.Row
        return con

    def rows(self, statement):
        con = self.connect()
        try:
            return [tuple(row) for row in con.execute(statement)]
        finally:
            con.close()

    def files(self):
        """The files below the root by their stored names, with their checksums; other entries of the root too."""
        found = {}
        for folder, _, names in os.walk(self.root):
            for name in names:
                path = os.path.join(folder, name)
                with open(path, "rb") as file:
                    digest = hashlib.sha256(file.read()).hexdigest()
                found[os.path.relpath(path, self.root).replace("/", "\\")] = digest
        return found

    def require_sound(self):
        """Integrity, a file for every row, a row for every file, no image twice, nothing left over."""
        assert self.rows("PRAGMA integrity_check") == [("ok",)], "the database is damaged"
        named = self.rows("SELECT GraphicURL_NVC, CRC, SOPInstanceUID_NVC FROM ImageBild_T")
        uids = [uid for _, _, uid in named]
        assert len(uids) == len(set(uids)), "an image is stored twice"
        files = self.files()
        files.pop(".oxclass-root", None)
        for name, checksum, _ in named:
            assert name in files, f"the file of a row is missing: {name}"
            assert files.pop(name) == checksum, f"a file differs from its row: {name}"
        assert not files, f"files without a row: {sorted(files)}"
        entries = [name for name in os.listdir(self.root) if name.startswith(".oxclass-import")]
        assert not entries, f"left over: {entries}"

    def state(self):
        """All that an import stores, without keys: they depend on the order of arrival."""
        patients = self.rows(
            "SELECT PersonNr_CH, LastName_NVC, FirstName_NVC, Birthdate_CH, Sex_CH, OtherIDs FROM Patient_T ORDER BY 1, 2"
        )
        studies = self.rows(
            "SELECT StudyInstanceUID, PersonNr_CH, StudyDateTime, Studydesc FROM Study_T JOIN Patient_T USING (PatientID) ORDER BY 1"
        )
        series = self.rows(
            "SELECT SeriesInstanceUID, StudyInstanceUID, template_ID, NumberOfImages, Modality, SeriesDescription FROM Series_T "
            "JOIN Study_T USING (Study_ID) ORDER BY 1"
        )
        images = self.rows(
            f"SELECT SeriesInstanceUID, PersonNr_CH, {IMAGE_COLUMNS} FROM ImageBild_T JOIN Series_T USING (Series_ID) "
            "JOIN Patient_T USING (PatientID) ORDER BY SOPInstanceUID_NVC"
        )
        return patients, studies, series, images

    def remove(self):
        shutil.rmtree(self.folder)


def require_equal(state, expected):
    """Fails with the first row in which two states differ."""
    for part, (one, other) in zip(("patients", "studies", "series", "images"), zip(state, expected)):
        if one != other:
            missing = [row for row in other if row not in one]
            surplus = [row for row in one if row not in other]
            raise AssertionError(f"{part} differ: missing {missing[:2]}, surplus {surplus[:2]}")
