"""Damaged databases, tables that change under an open connection, and hostile texts, through the Python client."""

import os
import random
import sqlite3
import sys

from clinic import Clinic

HOSTILE = (
    "'", "''", "';", "'; DELETE FROM Patient_T; --", "' OR '1'='1", "\\", "\\'", "\0", "%", "_", "--", "/*", "*/", "\"", "[x]",
    "x' || (SELECT 1) || '", "0; DROP TABLE Series_T", "1e999", "-1", "NULL", "\u2019", "\U0001F9B7", "é" * 300, "\r\n", "{{", "${x}",
)


class Databases:
    """The cases of databases. Each raises an AssertionError for what must not be."""

    def __init__(self, program, samples, folder, seed, client):
        self.program = program
        self.samples = samples
        self.folder = folder
        self.random = random.Random(seed)
        self.made = 0
        sys.path.insert(0, client)
        import oxclass

        self.oxclass = oxclass

    def clinic(self):
        self.made += 1
        clinic = Clinic(self.program, os.path.join(self.folder, f"base{self.made}"))
        clinic.run("import", os.path.join(self.samples, "bitewings4"), check=True)
        return clinic

    def open(self, clinic):
        con = self.oxclass.CreateObject("ADODB.Connection")
        con.Open(f"Provider=SQLite;Data Source={clinic.database}")
        return con

    def damaged(self):
        """The root page of each table is overwritten: every command says that the file is damaged, or works."""
        tables = [name for (name,) in self.clinic().rows("SELECT name FROM sqlite_schema WHERE type = 'table' AND rootpage > 0")]
        commands = [
            ("hang", "1"), ("series",), ("series", "1"), ("images",), ("patients",), ("studies",), ("cards", "#1"), ("comment", "1"),
            ("layouts",), ("doctors",), ("clinics",), ("import", os.path.join(self.samples, "bitewings2")), ("check",),
        ]
        told = 0
        for table in tables:
            clinic = self.clinic()
            page_size = clinic.rows("PRAGMA page_size")[0][0]
            root = clinic.rows(f"SELECT rootpage FROM sqlite_schema WHERE name = '{table}'")[0][0]
            con = clinic.connect()
            con.execute("PRAGMA wal_checkpoint(TRUNCATE)")
            con.close()
            with open(clinic.database, "r+b") as file:
                file.seek((root - 1) * page_size)
                file.write(b"\xaa" * page_size)
            for command in commands:
                done = clinic.run(*command)
                text = done.stdout + done.stderr
                assert "not an error" not in text and "no such table column" not in text, f"{table}, {command}: {text}"
                if done.returncode != 0:
                    assert "malformed" in text or "damaged" in text, f"{table}, {command}: {text}"
                    told += 1
            clinic.remove()
        assert told > 0
        return f"{len(tables)} tables, {told} refusals"

    def changed_tables(self, count):
        """Another program adds, renames and removes columns between the statements of an open connection."""
        for _ in range(count):
            clinic = self.clinic()
            con = self.open(clinic)
            other = sqlite3.connect(clinic.database, timeout=30, isolation_level=None)
            for step in range(20):
                image = self.oxclass.CreateObject("OXClass.cImage")
                change = self.random.choice((
                    f"ALTER TABLE ImageBild_T ADD COLUMN Extra{step} TEXT",
                    f"CREATE TABLE Other{step} (a, b)",
                    "ALTER TABLE Series_T RENAME COLUMN Modality TO Modality2",
                    "ALTER TABLE Series_T RENAME COLUMN Modality2 TO Modality",
                ))
                try:
                    other.execute(change)
                except sqlite3.OperationalError:
                    pass
                assert image.GetImage(con, 1) and image.instanceUID, "an image can't be read after a change of the tables"
                try:
                    series = self.oxclass.CreateObject("OXClass.cSerie")
                    series.loadSeries("1", con)
                except self.oxclass.Error as failure:
                    assert "not an error" not in str(failure), failure
            con.Close()
            other.close()
            clinic.remove()
        return f"{count} databases, 20 changes each"

    def hostile_texts(self, count):
        """Texts that try to end their literals: no statement but the documented ones runs, no other row changes."""
        clinic = self.clinic()
        con = self.open(clinic)
        guard = clinic.connect()
        guard.execute("CREATE TABLE Guard (a)")
        guard.execute("INSERT INTO Guard VALUES (1)")
        watched = "SELECT (SELECT count(*) FROM Series_T), (SELECT count(*) FROM TemplateCard_T), (SELECT count(*) FROM Guard), " \
                  "(SELECT total(PatientID) FROM Patient_T WHERE PersonNr_CH = 'TEST-BITEWINGS4'), " \
                  "(SELECT group_concat(PriStructure || SOPInstanceUID_NVC) FROM ImageBild_T WHERE PatientID = 1)"
        before = tuple(guard.execute(watched).fetchone())
        raised = 0
        for i in range(count):
            text = "".join(self.random.choice(HOSTILE) for _ in range(self.random.randrange(1, 4)))
            raised += self.hostile_call(con, i, text)
            if i % 500 == 0:
                assert tuple(guard.execute(watched).fetchone()) == before, f"a row of others was changed by {text!r}"
        assert tuple(guard.execute(watched).fetchone()) == before
        con.Close()
        guard.close()
        assert clinic.rows("PRAGMA integrity_check") == [("ok",)]
        clinic.remove()
        return f"{count} calls, {raised} raised"

    def hostile_call(self, con, number, text):
        create = self.oxclass.CreateObject
        try:
            kind = number % 6
            if kind == 0:
                patient = create("OXClass.cPatient")
                patient.PatientID = "H" + text
                for name in ("LastName", "FirstName", "Sex", "Comments", "IDImg", "EMail", "TelOne"):
                    setattr(patient, name, text)
                patient.Save(con)
            elif kind == 1:
                create("OXClass.cPatient").LoadOnPatientIDorPDBID(con, "H" + text, 0)
            elif kind == 2:
                image = create("OXClass.cImage")
                image.PatID = 2_000_000
                for name in ("URL", "sTeeth", "RespPerson", "CapturePerson", "CRC", "Laterality", "AnaRegion", "instanceUID"):
                    setattr(image, name, text)
                image.SaveEx(False, con)
            elif kind == 3:
                doctor = create("OXClass.cDoctor")
                doctor.DrLastName = doctor.DrFirstName = doctor.DrEMail = text
                doctor.SaveDoctor(con)
            elif kind == 4:
                clinic = create("OXClass.cClinic")
                clinic.ClinicName = clinic.City = text
                clinic.SaveClinic(con)
            else:
                create("OXClass.cStudy").loadStudy("1." + text, con)
        except self.oxclass.Error:
            return 1
        return 0

    def random_calls(self, count):
        """Members of all classes with arguments of any kind: errors are raised, nothing crashes."""
        clinic = self.clinic()
        con = self.open(clinic)
        names = [f"OXClass.{name}" for name in self.oxclass.ClassNames()] if hasattr(self.oxclass, "ClassNames") else [
            "OXClass.cImage", "OXClass.cImages", "OXClass.cSerie", "OXClass.cStudy", "OXClass.cPatient", "OXClass.cDoctor",
            "OXClass.cDoctors", "OXClass.cClinic", "OXClass.cClinics", "OXClass.cTemplate", "OXClass.cImagecard", "OXClass.cUniCards",
            "OXClass.cUniCard", "OXClass.cTeeth", "OXClass.cTooth", "OXClass.cMWLItem", "OXClass.cGlobalList", "OXClass.cGlobalLists",
            "OXClass.Class1", "OXClass.OtherPatIDs", "OXClass.cStringItem", "OXClass.cComments", "OXClass.cAnatomicDescription",
        ]
        con.BeginTrans()
        raised = 0
        for _ in range(count):
            thing = self.oxclass.CreateObject(self.random.choice(names))
            members = [name for name in dir(thing) if not name.startswith("_")]
            for _ in range(10):
                if not members:
                    break
                name = self.random.choice(members)
                arguments = [
                    self.random.choice((con, None, 0, -1, 1, 2**31 - 1, 2**40, 1.5, "", "1", "'", True, thing, [1, "x"]))
                    for _ in range(self.random.randrange(4))
                ]
                try:
                    member = getattr(thing, name)
                    if callable(member):
                        member(*arguments)
                    elif arguments:
                        setattr(thing, name, arguments[0])
                except Exception:  # every error but a crash is an answer
                    raised += 1
        try:
            con.RollbackTrans()
        except self.oxclass.Error:
            pass
        clinic.remove()
        return f"{count * 10} calls, {raised} raised"
