"""Threads: objects of their own, module data of their own, and objects that are dropped elsewhere."""
import gc
import os
import queue
import shutil
import threading

import oxclass
from tests.kit import FULL_MOUTH, ClinicTest, open_database

WRONG_THREAD = -2147417842


class Worker:
    """A thread that runs the calls that it receives, one after the other."""

    def __init__(self):
        self._work, self._done = queue.Queue(), queue.Queue()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self):
        for call in iter(self._work.get, None):
            try:
                self._done.put((call(), None))
            except BaseException as failure:
                self._done.put((None, failure))
            del call

    def do(self, call):
        self._work.put(call)
        del call
        result, failure = self._done.get(timeout=60)
        if failure is not None:
            raise failure
        return result

    def end(self):
        self._work.put(None)
        self._thread.join(60)
        assert not self._thread.is_alive()


def open_files(path):
    """Counts the open descriptors of a file in this process: a connection that is released closes its own."""
    found = 0
    for number in os.listdir("/proc/self/fd"):
        try:
            found += os.path.samefile(f"/proc/self/fd/{number}", path)
        except OSError:
            continue
    return found


class OwnObjects(ClinicTest):
    def test_threads_work_beside_each_other(self):
        names = [row["PersonNr_CH"] for row in self.rows("SELECT * FROM Patient_T")]
        expected = {row["PersonNr_CH"]: row["n"] for row in self.rows(
            "SELECT PersonNr_CH, COUNT(*) AS n FROM Patient_T JOIN ImageBild_T USING (PatientID) GROUP BY 1")}
        found, failures = [], []

        def count():
            try:
                con = open_database(self.file)
                for _ in range(5):
                    counts = {}
                    for name in names:
                        patient, images = (oxclass.CreateObject(f"OXClass.{name}") for name in ("cPatient", "cImages"))
                        patient.LoadOnPatientIDorPDBID(con, name, 0)
                        counts[name] = images.LoadAll4Object(con, oxclass.iootPatient, patient.ID)
                        assert counts[name] == len(list(images)) == len({image.ID for image in images})
                    found.append(counts)
                con.Close()
            except BaseException as failure:
                failures.append(failure)

        threads = [threading.Thread(target=count) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join(120)
        self.assertEqual(failures, [])
        self.assertEqual(found, [expected] * 20)

    def test_the_root_of_identifiers_is_each_threads_own(self):
        workers, roots = [Worker() for _ in range(3)], [f"1.2.840.{number}" for number in (11, 22, 33)]

        def first_identifier(root):
            file = self.folder / f"{root}.db"
            shutil.copyfile(self.file, file)
            con, general = open_database(file), oxclass.CreateObject("OXClass.Class1")
            general.SaveGLSetting(con, oxclass.gglID_DicomRootUID, root, True)
            return general.GetInstanceUID(con)

        def identifier():
            return oxclass.CreateObject("OXClass.Class1").GetInstanceUID(None)

        for worker, root in zip(workers, roots):
            self.assertTrue(worker.do(lambda: first_identifier(root)).startswith(root + "."))
        for worker, root in zip(workers, roots):
            uid = worker.do(identifier)
            self.assertTrue(uid.startswith(root + "."), uid)
            worker.end()

    def test_globals_are_each_threads_own(self):
        worker = Worker()
        series = oxclass.Global("OXClass.cSerie")
        series.SeriesName = "here"

        def there():
            other = oxclass.Global("OXClass.cSerie")
            before, other.SeriesName = other.SeriesName, "there"
            return before, other is oxclass.Global("OXClass.cSerie")

        self.assertEqual(worker.do(there), ("", True))
        self.assertEqual(series.SeriesName, "here")
        worker.end()


class ForeignObjects(ClinicTest):
    def setUp(self):
        super().setUp()
        self.worker = Worker()
        self.addCleanup(self.worker.end)

    def refused(self, call):
        with self.assertRaises(oxclass.Error) as caught:
            self.worker.do(call)
        self.assertEqual(caught.exception.Number, WRONG_THREAD)
        self.assertIn("only on the thread that made it", caught.exception.Description)

    def test_calls_are_refused(self):
        patient, teeth = oxclass.CreateObject("OXClass.cPatient"), oxclass.CreateObject("OXClass.cTeeth")
        teeth.Add(True, 11)
        iterator = iter(teeth)
        self.refused(lambda: patient.LastName)
        self.refused(lambda: setattr(patient, "LastName", "Ek"))
        self.refused(lambda: patient.Save(None))
        self.refused(lambda: teeth(1))
        self.refused(lambda: len(teeth))
        self.refused(lambda: next(iterator))
        self.assertEqual((patient.LastName, len(list(iterator))), ("", 1))

    def test_as_an_argument_it_is_refused_too(self):
        con = self.con
        self.refused(lambda: oxclass.CreateObject("OXClass.cPatient").LoadOnPatientIDorPDBID(con, FULL_MOUTH, 0))
        self.refused(lambda: oxclass.CreateObject("Collection").Add(oxclass.ByRef(con)))
        self.refused(lambda: oxclass.WithEvents(con, self.FakeHandler()))

    class FakeHandler:
        def WillExecute(self, source):
            raise AssertionError("there is no subscription")

    def test_subscriptions_are_closed_where_they_were_made(self):
        subscription = oxclass.WithEvents(self.con, self.FakeHandler())
        self.refused(subscription.close)
        subscription.close()
        self.assertFalse(self.con.Execute("SELECT 1").EOF)

    def test_after_its_thread_ended_it_stays_refused(self):
        worker = Worker()
        patient = worker.do(lambda: oxclass.CreateObject("OXClass.cPatient"))
        worker.end()
        self.refused(lambda: patient.LastName)
        with self.assertRaises(oxclass.Error) as caught:
            patient.LastName
        self.assertEqual(caught.exception.Number, WRONG_THREAD)


class Dropped(ClinicTest):
    def setUp(self):
        super().setUp()
        self.con.Close()
        self.assertEqual(open_files(self.file), 0)

    def open(self):
        """A connection in a cycle, so that only the garbage collector drops it."""
        held = [open_database(self.file)]
        held.append(held)
        return held

    def test_elsewhere_it_is_released_at_the_next_call_of_its_thread(self):
        worker = Worker()
        held, theirs = [worker.do(self.open)], worker.do(lambda: oxclass.CreateObject("OXClass.cPatient"))
        self.assertEqual(open_files(self.file), 1)
        held.clear()
        gc.collect()
        self.assertEqual(open_files(self.file), 1)
        patient = oxclass.CreateObject("OXClass.cPatient")
        patient.LastName = "a call of another thread"
        self.assertEqual(open_files(self.file), 1)
        worker.do(lambda: theirs.LastName)
        self.assertEqual(open_files(self.file), 0)
        worker.end()

    def test_elsewhere_it_is_released_when_its_thread_ends(self):
        worker = Worker()
        held = [worker.do(self.open)]
        held.clear()
        gc.collect()
        self.assertEqual(open_files(self.file), 1)
        worker.end()
        self.assertEqual(open_files(self.file), 0)

    def test_after_the_end_of_its_thread_it_is_released_at_once(self):
        worker = Worker()
        held = [worker.do(self.open)]
        worker.end()
        self.assertEqual(open_files(self.file), 1)
        held.clear()
        gc.collect()
        self.assertEqual(open_files(self.file), 0)

    def test_here_it_is_released_at_once(self):
        held = [open_database(self.file)]
        held.clear()
        self.assertEqual(open_files(self.file), 0)

    def test_many_dropped_by_each_other(self):
        """Each thread drops what the other one made, while both make more."""
        there, back, failures = queue.Queue(), queue.Queue(), []

        def swap(give, take):
            try:
                for number in range(2000):
                    teeth = oxclass.CreateObject("OXClass.cTeeth")
                    give.put((teeth, teeth.Add(True, number % 50)))
                    del teeth
                    take.get(timeout=60)
            except BaseException as failure:
                failures.append(failure)

        threads = [threading.Thread(target=swap, args=way) for way in ((there, back), (back, there))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join(120)
        self.assertEqual(failures, [])
