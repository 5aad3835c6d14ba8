"""Properties by slot: the same values and failures as by name."""
import datetime
import gc
import json
import os
import subprocess
import threading
import unittest

import oxclass
from oxclass import _members
from oxclass._classes import _by_table
from tests.kit import DatabaseTest
from tests.test_memory import resident

#: Values for each kind of property: some of the kind's own type, some that are converted, some that fail.
GIVEN = {
    "text": ["", "Ek", "Åsa \U0001f9b7", "a\0b", 5, 1.5, True, None, datetime.datetime(2024, 3, 4)],
    "long": [0, 1, -1, 2**31 - 1, -(2**31), 2**31, 1.5, 2.5, "7", "seven", True, None],
    "short": [0, 32767, -32768, 32768, 2.5, "7", True],
    "boolean": [True, False, 0, 2, "True", "maybe"],
    "double": [0.0, -1.5, 1e300, 3, "2.5", "x"],
    "single": [0.0, -1.5, 3, "2.5", 1e300],
    "date": [datetime.datetime(2024, 3, 4, 5, 6, 7), datetime.datetime(1899, 12, 29, 12), 1.5, "2024-03-04", "never"],
    "enumeration": [0, 1, 77, "1", "one"],
}


def outcome_of(call):
    try:
        return call()
    except oxclass.Error as failure:
        return type(failure), failure.Number, failure.Source, failure.Description
    except TypeError as failure:
        return TypeError, str(failure)


def plain_properties(there):
    """The members of an object's class that have a plain value: by name, the get and the put."""
    code = subprocess.run([os.environ["OXCLASS_PROGRAM"], "idl", "--json"], capture_output=True, text=True, check=True)
    for described in json.loads(code.stdout)["classes"]:
        if described["class"] != type(there).__name__:
            continue
        kinds = {}
        for position, member in enumerate(described["members"]):
            member = _members.member_of(member, position)
            kinds.setdefault(member.name, {})[member.kind] = member
        for name, members in kinds.items():
            get = members.get("get")
            if get and not get.arguments and get.result.kind in GIVEN:
                yield name, get, members.get("put")


def described_classes():
    code = subprocess.run([os.environ["OXCLASS_PROGRAM"], "idl", "--json"], capture_output=True, text=True, check=True)
    return [described["name"] for described in json.loads(code.stdout)["classes"]]


class Equal(unittest.TestCase):
    def test_a_value_is_the_same_by_slot_and_by_name(self):
        seen = 0
        for name in described_classes():
            there, other = oxclass.CreateObject(name), oxclass.CreateObject(name)
            for property, get, put in list(plain_properties(there)):
                with self.subTest(name, property=property):
                    self.assertEqual(getattr(there, property), _members.invoke(other, get))
                    self.assertIs(type(getattr(there, property)), type(_members.invoke(other, get)))
                    seen += 1
                for value in GIVEN[get.result.kind] if put else ():
                    with self.subTest(name, property=property, value=value):
                        self.assertEqual(outcome_of(lambda: setattr(there, property, value)),
                                         outcome_of(lambda: _members.invoke(other, put, (value,))))
                        self.assertEqual(outcome_of(lambda: getattr(there, property)),
                                         outcome_of(lambda: _members.invoke(there, get)))
                        self.assertEqual(outcome_of(lambda: getattr(there, property)),
                                         outcome_of(lambda: _members.invoke(other, get)))
        self.assertGreater(seen, 150)

    def test_another_vtable_of_the_same_class_has_a_class_of_its_own(self):
        patient = oxclass.CreateObject("OXClass.cPatient")
        tables = [table for table, cls in _by_table.items() if cls is type(patient)]
        self.assertEqual(len(tables), 1)


class Failures(DatabaseTest):
    def test_a_get_that_raises(self):
        self.con.Execute("INSERT INTO ImageBild_T (DateCaptured_SD, PatientID, FrameNumber_INT, RootId, ImageType, "
                         "Brightness_INT, Contrast_INT, Invert_BT) "
                         "VALUES ('2024-01-01 00:00:00', 1, 'no number', 1, 1, 0, 0, 0)")
        key = int(self.row("SELECT MAX(ImageBildID) AS newest FROM ImageBild_T")["newest"])
        image = oxclass.CreateObject("OXClass.cImage")
        image.GetImage(self.con, key)
        with self.assertRaises(oxclass.Error) as raised:
            image.FrameNumber
        self.assertEqual(raised.exception.Number, 13)

    def test_a_closed_object(self):
        rs = oxclass.CreateObject("ADODB.Recordset")
        with self.assertRaises(oxclass.Error) as raised:
            rs.EOF
        self.assertEqual((raised.exception.Number, raised.exception.Source), (3704, "ADODB.Recordset"))

    def test_another_thread(self):
        patient, numbers = oxclass.CreateObject("OXClass.cPatient"), []

        def use():
            for call in (lambda: patient.LastName, lambda: setattr(patient, "LastName", "Ek")):
                try:
                    call()
                except oxclass.Error as failure:
                    numbers.append(failure.Number)

        thread = threading.Thread(target=use)
        thread.start()
        thread.join()
        self.assertEqual(numbers, [-2147417842, -2147417842])
        self.assertEqual(patient.LastName, "")

    def test_texts_are_freed(self):
        patient = oxclass.CreateObject("OXClass.cPatient")
        patient.LastName = "x" * 100_000

        for _ in range(20):
            patient.LastName = patient.LastName
        gc.collect()
        before = resident()
        for _ in range(300):
            patient.LastName = patient.LastName
        self.assertLess(resident() - before, 20_000_000)


if __name__ == "__main__":
    unittest.main()
