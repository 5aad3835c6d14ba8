"""Memory: objects that are made and dropped are freed."""
import ctypes
import os
import unittest

import oxclass

try:
    # AddressSanitizer keeps freed memory for a while, but counts exactly what is not freed.
    ALLOCATED = ctypes.CDLL(None).__sanitizer_get_current_allocated_bytes
    ALLOCATED.restype = ctypes.c_size_t
except AttributeError:
    ALLOCATED = None

TEXT = "Åkesson" * 60  # 420 units: 840 bytes as a BSTR
OBJECTS = 1000 if ALLOCATED else 4000
LEAKED_TEXTS = OBJECTS * 2 * len(TEXT)


def resident():
    """The memory of this process."""
    if ALLOCATED:
        return ALLOCATED()
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


class Growth(unittest.TestCase):
    def assert_no_growth(self, use):
        """After a warm-up, the memory grows by less than a quarter of a text for each use."""
        for _ in range(OBJECTS // 5):
            use()
        before = resident()
        for _ in range(OBJECTS):
            use()
        self.assertLess(resident() - before, LEAKED_TEXTS // 4)

    def test_objects_with_texts(self):
        def use():
            patient = oxclass.CreateObject("OXClass.cPatient")
            patient.LastName = TEXT
            self.assertEqual(patient.LastName, TEXT)

        self.assert_no_growth(use)

    def test_arguments_by_reference(self):
        things = oxclass.CreateObject("Collection")

        def use():
            items = oxclass.CreateObject("OXClass.OtherPatIDs")
            given = oxclass.ByRef(TEXT)
            items.Add(given, oxclass.ByRef(1), TEXT)
            things.Add([TEXT, TEXT])
            self.assertEqual((things(1)[1], items[TEXT].str), (TEXT, TEXT.upper()))
            things.Remove(1)

        self.assert_no_growth(use)

    def test_failures(self):
        things = oxclass.CreateObject("Collection")
        con = oxclass.CreateObject("ADODB.Connection")
        con.Open("Provider=SQLite;Data Source=:memory:")

        def use():
            with self.assertRaisesRegex(oxclass.Error, TEXT):
                con.Execute("SELECT * FROM " + TEXT)
            with self.assertRaises(TypeError):
                things.Add(TEXT, object())
            with self.assertRaises(oxclass.Error):
                oxclass.CreateObject("OXClass." + TEXT)

        self.assert_no_growth(use)

    def test_iteration(self):
        things = oxclass.CreateObject("Collection")
        things.Add(TEXT)
        things.Add(oxclass.CreateObject("OXClass.cTooth"))
        self.assert_no_growth(lambda: list(things))

    def test_events(self):
        class Handler:
            text = ""

            def WillExecute(self, source):
                self.text = source

        con = oxclass.CreateObject("ADODB.Connection")
        con.Open("Provider=SQLite;Data Source=:memory:")
        statement = f"SELECT '{TEXT}' AS t"

        def use():
            with oxclass.WithEvents(con, Handler()) as subscription:
                rs = con.Execute(statement)
                self.assertEqual((subscription.handler.text, rs("t").Value), (statement, TEXT))

        self.assert_no_growth(use)
