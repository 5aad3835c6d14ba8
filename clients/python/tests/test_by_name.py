"""Connections, recordsets and collections of the program, passed to the classes."""
import datetime
import gc
import inspect
import os
import shutil
import sqlite3
import subprocess
import sys
import unittest
from pathlib import Path

import oxclass
from oxclass import _exposed
from tests.kit import FULL_MOUTH, PACKAGE, SOURCES, ClinicTest, DatabaseTest, library_folder

EXAMPLE = SOURCES / "examples" / "database_of_the_program.py"
sys.path.insert(0, str(EXAMPLE.parent))
import database_of_the_program as program  # noqa: E402


LAYER = ("Connection", "Recordset", "Fields", "Field", "Errors", "Error")


def forwarded(value):
    """Returns an object of the database layer as one of another component; any other value as it is."""
    return Forwarded(value) if type(value).__name__ in LAYER else value


class Forwarded:
    """An object of another component: it passes every member on to an object of the library."""

    def __init__(self, inner):
        object.__setattr__(self, "inner", inner)

    def __getattr__(self, name):
        value = forwarded(getattr(self.inner, name))
        if not inspect.isroutine(value):
            return value
        return lambda *arguments: forwarded(value(*arguments))

    def __setattr__(self, name, value):
        setattr(self.inner, name, value)

    def __call__(self, *arguments):
        return forwarded(self.inner(*arguments))


class Log:
    def __init__(self):
        self.statements = []

    def WillExecute(self, source):
        self.statements.append(source)


def life_of_a_clinic(con):
    """Saves and loads an object of most classes; returns what was loaded."""
    doctor = oxclass.CreateObject("OXClass.cDoctor")
    doctor.DrLastName = "Åsa"
    doctor.SaveDoctor(con)
    doctor.DrFirstName = "Ek"
    doctor.SaveDoctor(con)
    patient = oxclass.CreateObject("OXClass.cPatient")
    patient.PatientID, patient.LastName = "P-1", "O'Hara"
    patient.BirthDate = datetime.datetime(1980, 1, 31)
    patient.Save(con)
    study = oxclass.CreateObject("OXClass.cStudy")
    study.PatientID, study.InstanceUID = patient.ID, "1.2.3"
    study.savestudy(False, con)
    study.Delete(con)
    setting = oxclass.CreateObject("OXClass.cGlobalList")
    setting.ListID, setting.ListText = 77, "text"
    setting.Save(con)
    again = oxclass.CreateObject("OXClass.cPatient")
    found = again.LoadOnPatientIDorPDBID(con, "P-1", 0)
    doctors = oxclass.CreateObject("OXClass.cDoctors")
    doctors.GetAllDoctors(con)
    return [found, again.LastName, again.BirthDate, doctor.drID, study.ID, setting.GlobalListID,
            [(each.drID, each.DrFirstName, each.DrLastName) for each in doctors]]


class ConnectionOfTheProgram(DatabaseTest):
    def test_the_library_s_own_connection_by_name_runs_the_same_statements(self):
        log = Log()
        with oxclass.WithEvents(self.con, log):
            by_name = life_of_a_clinic(Forwarded(self.con))
        self.tearDown()
        self.setUp()
        expected = Log()
        with oxclass.WithEvents(self.con, expected):
            self.assertEqual(by_name, life_of_a_clinic(self.con))
        self.assertEqual(log.statements, expected.statements)
        self.assertEqual(len(log.statements), len(expected.statements))
        self.assertGreater(len(expected.statements), 10)

    def test_an_open_connection_of_sqlite3(self):
        expected = life_of_a_clinic(self.con)
        self.tearDown()
        self.setUp()
        database = sqlite3.connect(self.file, isolation_level=None)
        self.assertEqual(life_of_a_clinic(program.Connection(database)), expected)
        database.close()

    def test_a_transaction_of_the_program_is_the_one_of_the_classes(self):
        database = sqlite3.connect(self.file, isolation_level=None)
        database.execute("BEGIN")
        patient = oxclass.CreateObject("OXClass.cPatient")
        patient.PatientID = "P-2"
        patient.Save(program.Connection(database))
        database.execute("ROLLBACK")
        database.close()
        self.assertEqual(self.rows("SELECT * FROM Patient_T"), [])

    def test_a_failure_keeps_its_number_source_and_text(self):
        class Failing:
            def Execute(self, text):
                raise oxclass.Error(-2147217900, "engine", f"not understood: {text}")

        setting = oxclass.CreateObject("OXClass.cGlobalList")
        setting.GlobalListID = 5
        with self.assertRaises(oxclass.Error) as raised:
            setting.GetGL(Failing(), 5)
        self.assertEqual(raised.exception.Number, -2147217900)
        self.assertIn("engine", raised.exception.Source)
        self.assertIn("not understood: SELECT", raised.exception.Description)

    def test_an_exception_of_python_is_a_failure_with_its_text(self):
        class Failing:
            def Execute(self, text):
                raise sqlite3.OperationalError("database is locked")

        with self.assertRaisesRegex(oxclass.Error, "database is locked") as raised:
            oxclass.CreateObject("OXClass.cDoctors").GetAllDoctors(Failing())
        self.assertEqual(raised.exception.Number, -2147467259)

    def test_an_interruption_is_raised_by_the_call(self):
        class Interrupted(program.Connection):
            def Execute(self, text):
                raise KeyboardInterrupt

        self.addCleanup(oxclass.OnMsgBox, None)
        oxclass.OnMsgBox(lambda text: None)
        database = sqlite3.connect(self.file, isolation_level=None)
        with self.assertRaises(KeyboardInterrupt):
            oxclass.CreateObject("OXClass.cPatient").LoadOnPatientIDorPDBID(Interrupted(database), "P-1", 0)
        database.close()

    def test_an_object_without_the_members_is_a_type_mismatch(self):
        for other in (object(), {}, sqlite3, [1]):
            with self.assertRaises(oxclass.Error) as raised:
                oxclass.CreateObject("OXClass.cPatient").Save(other)
            self.assertEqual(raised.exception.Number, 13, other)

    def test_nothing_is_kept(self):
        connection = Forwarded(self.con)
        life_of_a_clinic(connection)
        gc.collect()
        self.assertEqual(_exposed._by_pointer, {})
        self.assertEqual(_exposed._by_target, {})

    def test_a_closed_connection(self):
        self.con.Close()
        with self.assertRaises(oxclass.Error) as raised:
            oxclass.CreateObject("OXClass.cDoctors").GetAllDoctors(Forwarded(self.con))
        self.assertEqual(raised.exception.Number, 3709)

    def test_the_example(self):
        done = subprocess.run([sys.executable, str(EXAMPLE), str(self.file), "P-9", "Ek", "Eva"],
                              env={**os.environ, "PYTHONPATH": str(PACKAGE.parent)}, capture_output=True,
                              encoding="utf-8", timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        row = self.row("SELECT PatientID, LastName_NVC FROM Patient_T WHERE PersonNr_CH = 'P-9'")
        self.assertEqual((done.stdout, row["LastName_NVC"]), (f"P-9 is patient {row['PatientID']}\n", "Ek"))

    def test_the_example_keeps_the_rest_of_a_known_patient(self):
        self.con.Execute("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, Birthdate_CH, Address_NVC) "
                         "VALUES ('P-9', 'Before', '1980-01-31', 'Main 1')")
        subprocess.run([sys.executable, str(EXAMPLE), str(self.file), "P-9", "Ek", "Eva"], check=True,
                       env={**os.environ, "PYTHONPATH": str(PACKAGE.parent)}, stdout=subprocess.DEVNULL, timeout=60)
        row = self.row("SELECT * FROM Patient_T")
        self.assertEqual((row["LastName_NVC"], row["Birthdate_CH"], row["Address_NVC"]), ("Ek", "1980-01-31", "Main 1"))


class ConnectionOfAnotherCopy(DatabaseTest):
    @unittest.skipIf("asan" in os.environ.get("LD_PRELOAD", ""), "the sanitizers can't load a second copy")
    def test_the_classes_run_on_it(self):
        copy = self.folder / "liboxplatform.so"
        shutil.copyfile(library_folder() / "liboxplatform.so", copy)
        done = subprocess.run([sys.executable, str(Path(__file__).with_name("second_copy.py")), str(copy), str(self.file)],
                              env={**os.environ, "PYTHONPATH": str(PACKAGE.parent), "PYTHONIOENCODING": "utf-8"},
                              capture_output=True, encoding="utf-8", timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        stored = self.row("SELECT (SELECT PatientID FROM Patient_T), drID, DrName_NVC, GlobalListID FROM Doctor_T, "
                          "GlobalList_T WHERE ListID = 77")
        self.assertEqual(done.stdout, f"{stored[0]} {stored['drID']} ['Åsa'] {stored['GlobalListID']}\n")
        self.assertEqual(stored["DrName_NVC"], "Åsa")


class CollectionOfTheProgram(ClinicTest):
    def hung(self, collection_of):
        series_id = self.row("SELECT Series_ID FROM Series_T JOIN Study_T USING (Study_ID) JOIN Patient_T "
                             "USING (PatientID) WHERE PersonNr_CH = ?", FULL_MOUTH)["Series_ID"]
        images = oxclass.CreateObject("OXClass.cImages")
        images.LoadAll4Object(self.con, oxclass.iootSeries, series_id)
        series = oxclass.CreateObject("OXClass.cSerie")
        series.loadSeries(str(series_id), self.con)
        for image in images:
            image.FrameNumber = 0
        series.HangSeries(collection_of(images), self.con)
        return [image.FrameNumber for image in images]

    def test_a_list_of_images_is_hung_as_the_library_s_own_collection(self):
        expected = self.hung(lambda images: images)
        self.assertGreater(len(set(expected)), 10)
        self.assertEqual(self.hung(list), expected)
        self.assertEqual(self.hung(tuple), expected)
        self.assertEqual(self.hung(Forwarded), expected)

    def test_a_list_is_returned_as_itself(self):
        card = oxclass.CreateObject("OXClass.cImagecard")
        placed = [oxclass.CreateObject("OXClass.cImagecardAttribute")]
        card.ImagecardAttributes = placed
        self.assertIs(card.ImagecardAttributes, placed)


class ListOfAPatient(ClinicTest):
    def listed(self, con):
        entries = oxclass.CreateObject("OXClass.cUniCards")
        entries.GetICAndSEList4Patient(con, FULL_MOUTH, 0)
        return [(entry.Key, entry.CardType, entry.SortDate) for entry in entries]

    def test_it_sets_where_the_connection_keeps_rows(self):
        self.assertNotEqual(self.con.CursorLocation, oxclass.adUseClient)
        by_name = self.listed(Forwarded(self.con))
        self.assertEqual(self.con.CursorLocation, oxclass.adUseClient)
        self.assertEqual(by_name, self.listed(self.con))
        self.assertGreater(len(by_name), 0)

    def test_an_open_connection_of_sqlite3(self):
        database = sqlite3.connect(self.file, isolation_level=None)
        connection = program.Connection(database)
        connection.CursorLocation = oxclass.adUseServer
        self.assertEqual(self.listed(connection), self.listed(self.con))
        self.assertEqual(connection.CursorLocation, oxclass.adUseClient)
        database.close()


class RecordsetOfTheProgram(ClinicTest):
    def test_an_image_is_read_from_its_row(self):
        text = "SELECT * FROM ImageBild_T ORDER BY ImageBildID"
        rows = self.con.Execute(text)
        expected, image = (oxclass.CreateObject("OXClass.cImage") for _ in range(2))
        expected.GetFromRecord(rows)
        image.GetFromRecord(Forwarded(self.con.Execute(text)))
        self.assertEqual((image.ID, image.sTeeth, image.PatID), (expected.ID, expected.sTeeth, expected.PatID))
        self.assertGreater(image.ID, 0)


if __name__ == "__main__":
    unittest.main()
