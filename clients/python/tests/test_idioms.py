"""What Python programs expect of any object."""
import gc
import os
import pickle
import subprocess
import sys
import weakref
from unittest import mock

import oxclass

from .kit import SOURCES, DatabaseTest, open_database, program, run_python


def collection_of(*values):
    things = oxclass.CreateObject("Collection")
    for value in values:
        things.Add(value)
    return things


class Iteration(DatabaseTest):
    def test_backwards(self):
        self.assertEqual(list(reversed(collection_of(1, 2, 3))), [3, 2, 1])
        rows = self.con.Execute("SELECT 1 AS a, 2 AS b")
        self.assertEqual([field.Name for field in reversed(rows.Fields)], ["b", "a"])
        with self.assertRaises(TypeError):
            reversed(oxclass.CreateObject("OXClass.cPatient"))

    def test_an_exhausted_iterator_stays_exhausted(self):
        things = collection_of(1)
        iterator = iter(things)
        self.assertEqual(list(iterator), [1])
        things.Add(2)
        self.assertEqual(list(iterator), [])
        self.assertEqual(list(things), [1, 2])


class Failures(DatabaseTest):
    def test_they_can_be_pickled(self):
        for failing in (lambda: self.con.Execute("SELECT * FROM nowhere"), lambda: self.con.Nobody):
            with self.assertRaises(oxclass.Error) as caught:
                failing()
            again = pickle.loads(pickle.dumps(caught.exception))
            self.assertEqual((type(again), again.Number, again.Source, again.Description),
                             (type(caught.exception), caught.exception.Number, caught.exception.Source,
                              caught.exception.Description))

    def test_a_name_with_a_zero_is_refused(self):
        with self.assertRaises(oxclass.Error) as caught:
            oxclass.CreateObject("Collection\0more")
        self.assertEqual(caught.exception.Number, 429)

    def test_a_keyboard_interrupt_passes_an_operation_that_ignores_errors(self):
        class Interrupting:
            def WillExecute(self, source):
                raise KeyboardInterrupt

        entries = oxclass.CreateObject("OXClass.cUniCards")
        oxclass.OnMsgBox(lambda text: None)
        try:
            with oxclass.WithEvents(self.con, Interrupting()), self.assertRaises(KeyboardInterrupt):
                entries.GetICAndSEList4Patient(self.con, "X", 0)
        finally:
            oxclass.OnMsgBox(None)

    def test_the_first_exception_of_several_handlers_is_raised(self):
        class Interrupting:
            def WillExecute(self, source):
                raise KeyboardInterrupt

        class Forbidding:
            def WillExecute(self, source):
                raise PermissionError(source)

        caught = []
        with mock.patch.object(sys, "unraisablehook", lambda unraisable: caught.append(unraisable.exc_type)):
            with oxclass.WithEvents(self.con, Interrupting()), oxclass.WithEvents(self.con, Forbidding()):
                with self.assertRaises(KeyboardInterrupt):
                    self.con.Execute("SELECT 1")
        self.assertEqual(caught, [PermissionError])

    def test_a_cancelled_statement_keeps_nothing_alive(self):
        class Forbidding:
            def WillExecute(self, source):
                raise PermissionError(source)

        gc.disable()
        try:
            con = open_database(self.file)
            with oxclass.WithEvents(con, Forbidding()):
                try:
                    con.Execute("SELECT 1")
                except PermissionError:
                    pass
            gone = weakref.ref(con)
            del con
            self.assertIsNone(gone(), "the connection is released without the garbage collector")
        finally:
            gc.enable()


class Ends(DatabaseTest):
    def test_a_subscription_of_a_thread_that_ended(self):
        done = run_python(f"""
import threading, oxclass
class Watch:
    def WillExecute(self, source): pass
kept = []
def work():
    con = oxclass.CreateObject("ADODB.Connection")
    con.Open("Provider=SQLite;Data Source={self.file}")
    kept.append((con, oxclass.WithEvents(con, Watch())))
worker = threading.Thread(target=work)
worker.start()
worker.join()
here = oxclass.CreateObject("ADODB.Connection")
kept.append(oxclass.WithEvents(here, Watch()))
""")
        self.assertEqual((done.returncode, done.stderr), (0, ""))


class Package(DatabaseTest):
    def test_its_version_is_the_type_librarys(self):
        self.assertIn(f'"version": "{oxclass.__version__}"', program("idl", "--json"))

    def test_the_example_prints_its_usage(self):
        example = SOURCES / "examples" / "patients_and_series.py"
        done = subprocess.run([sys.executable, str(example), "--help"], capture_output=True, text=True,
                              env={**os.environ, "PYTHONPATH": str(SOURCES / "clients" / "python")})
        self.assertIn("patients_and_series.py clinic.db", done.stderr)
