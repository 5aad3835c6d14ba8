"""Properties, operations, arguments, failures, and what dir and help show."""
import contextlib
import copy
import inspect
import io
import pickle
import pydoc
import unittest

import oxclass
from tests.kit import DatabaseTest


def number_of(call):
    try:
        call()
    except oxclass.Error as failure:
        return failure.Number
    return None


class Names(unittest.TestCase):
    def setUp(self):
        self.patient = oxclass.CreateObject("OXClass.cPatient")

    def test_in_any_case(self):
        self.patient.lastname = "Ek"
        self.assertEqual(self.patient.LASTNAME, "Ek")
        self.assertEqual(oxclass.CreateObject("oxclass.CPATIENT").LastName, "")

    def test_unknown_ones_raise_and_make_no_attribute(self):
        self.assertEqual(number_of(lambda: setattr(self.patient, "Surname", "Ek")), 438)
        self.assertEqual(number_of(lambda: self.patient.Surname), 438)
        self.assertFalse(hasattr(self.patient, "Surname"))
        self.assertEqual(getattr(self.patient, "Surname", "none"), "none")

    def test_operations_and_read_only_properties_are_not_assigned(self):
        self.assertEqual(number_of(lambda: setattr(self.patient, "Save", 1)), 438)
        images = oxclass.CreateObject("OXClass.cImages")
        self.assertEqual(number_of(lambda: setattr(images, "Count", 1)), 438)

    def test_unknown_classes(self):
        for name in ("OXClass.cNobody", "", "OXClass", "OXClass.cPatient.1x", "\0"):
            with self.subTest(name), self.assertRaises(oxclass.Error) as caught:
                oxclass.CreateObject(name)
            self.assertEqual(caught.exception.Number, 429)
        with self.assertRaises(TypeError):
            oxclass.CreateObject(1)

    def test_objects_cannot_be_copied_or_made_by_their_class(self):
        for attempt in (copy.copy, copy.deepcopy, pickle.dumps):
            with self.subTest(attempt), self.assertRaises(TypeError):
                attempt(self.patient)
        with self.assertRaisesRegex(TypeError, "CreateObject"):
            type(self.patient)()

    def test_globals_are_shared(self):
        lists = oxclass.Global("OXClass.cGlobalLists")
        self.assertIs(oxclass.Global("OXClass.cGlobalLists"), lists)
        self.assertIsNot(oxclass.CreateObject("OXClass.cGlobalLists"), lists)
        self.assertEqual(number_of(lambda: oxclass.Global("OXClass.cPatient")), 429)


class Identity(unittest.TestCase):
    def test_one_object_is_one_proxy(self):
        patient = oxclass.CreateObject("OXClass.cPatient")
        self.assertIs(patient.OtherIDs, patient.OtherIDs)
        self.assertEqual(len({patient.OtherIDs, patient.OtherIDs}), 1)
        self.assertNotEqual(oxclass.CreateObject("OXClass.cPatient"), patient)

    def test_its_class_has_its_name(self):
        patient = oxclass.CreateObject("OXClass.cPatient")
        self.assertEqual(type(patient).__name__, "cPatient")
        self.assertIs(type(oxclass.CreateObject("OXClass.cPatient")), type(patient))
        self.assertIsInstance(patient, oxclass.Object)

    def test_objects_are_assigned_and_removed(self):
        card = oxclass.CreateObject("OXClass.cUniCard")
        self.assertIsNone(card.Series)
        series = oxclass.CreateObject("OXClass.cSerie")
        card.Series = series
        self.assertIs(card.Series, series)
        card.Series = None
        self.assertIsNone(card.Series)


class Arguments(unittest.TestCase):
    def setUp(self):
        self.teeth = oxclass.CreateObject("OXClass.cTeeth")

    def test_by_position_and_by_name(self):
        self.teeth.Add(True, 11)
        self.teeth.Add(True, TNumber=12, skey="B")
        self.teeth.Add(sKey="C", selected=False, tnumber=13)
        self.assertEqual([(tooth.TNumber, tooth.Selected) for tooth in self.teeth],
                         [(11, True), (12, True), (13, False)])
        self.assertEqual(self.teeth("C").TNumber, 13)

    def test_left_out_in_the_middle(self):
        things = oxclass.CreateObject("Collection")
        things.Add("b")
        things.Add("a", oxclass.Missing, 1)
        things.Add("c", After=2)
        self.assertEqual(list(things), ["a", "b", "c"])

    def test_wrong_names(self):
        with self.assertRaisesRegex(TypeError, "Nobody.*Selected, TNumber, sKey"):
            self.teeth.Add(True, 11, Nobody=1)
        with self.assertRaisesRegex(TypeError, "Selected.*twice"):
            self.teeth.Add(True, TNumber=11, Selected=True)

    def test_wrong_numbers_of_them(self):
        self.assertEqual(number_of(lambda: self.teeth.Add(True)), 449)
        self.assertEqual(number_of(lambda: self.teeth.Add(TNumber=1)), 449)
        self.assertEqual(number_of(lambda: self.teeth.Add(True, 11, "K", 4)), 450)
        self.assertEqual(len(self.teeth), 0)


class ByReference(DatabaseTest):
    def test_a_by_ref_holds_the_stored_value(self):
        general = oxclass.CreateObject("OXClass.Class1")
        general.SaveGLSetting(self.con, oxclass.gglID_ImageFormat, "jpeg", True)
        setting, lists = oxclass.ByRef("old"), oxclass.ByRef()
        self.assertIs(general.GetGLSetting(self.con, oxclass.gglID_ImageFormat, setting, lists), True)
        self.assertEqual(setting.value, "jpeg")
        self.assertEqual([(row.ListText, row.ListID) for row in lists.value],
                         [("jpeg", oxclass.gglID_ImageFormat)])

    def test_a_plain_value_is_taken_and_its_change_is_lost(self):
        general = oxclass.CreateObject("OXClass.Class1")
        text = "old"
        self.assertIs(general.GetGLSetting(self.con, oxclass.gglID_ImageFormat, text), False)
        self.assertEqual(text, "old")

    def test_an_object_can_be_replaced_by_none(self):
        images, image = oxclass.CreateObject("OXClass.cImages"), oxclass.CreateObject("OXClass.cImage")
        given = oxclass.ByRef(image)
        self.assertIs(images.AddObject(given, "K1"), image)
        self.assertIsNone(given.value)
        self.assertIs(images["K1"], image)

    def test_after_a_failure_the_value_is_unchanged(self):
        general, setting = oxclass.CreateObject("OXClass.Class1"), oxclass.ByRef("old")
        self.con.Close()
        self.assertEqual(number_of(lambda: general.GetGLSetting(self.con, 4, setting)), 3709)
        self.assertEqual(setting.value, "old")


class Failures(DatabaseTest):
    def test_numbers_sources_and_texts(self):
        with self.assertRaises(oxclass.Error) as caught:
            self.con.Execute("SELECT * FROM Nowhere")
        failure = caught.exception
        self.assertEqual((failure.Number, failure.Source), (-2147217865, "SQLite"))
        self.assertEqual(failure.Description, "no such table: Nowhere")
        self.assertEqual(str(failure), "no such table: Nowhere (error -2147217865, SQLite)")
        self.assertIsInstance(failure, Exception)
        self.assertEqual(pickle.loads(pickle.dumps(failure)).Number, failure.Number)

    def test_the_class_that_failed_is_in_the_source(self):
        series = oxclass.CreateObject("OXClass.cSerie")
        with self.assertRaises(oxclass.Error) as caught:
            series.loadSeries("no number", self.con)
        self.assertEqual(caught.exception.Number, -2147217900)
        self.assertTrue(caught.exception.Source.startswith("cSerie.loadseries, "), caught.exception.Source)

    def test_short_numbers(self):
        things = oxclass.CreateObject("Collection")
        things.Add("a", "key")
        self.assertEqual(number_of(lambda: things.Add("b", "KEY")), 457)
        self.assertEqual(number_of(lambda: things(2)), 9)
        self.assertEqual(number_of(lambda: things("other")), 5)
        self.assertEqual(number_of(lambda: things(oxclass.CreateObject("OXClass.cTooth"))), 438)
        self.assertEqual(number_of(lambda: self.con.Execute("SELECT 1")("other")), 3265)
        self.con.Close()
        self.assertEqual(number_of(self.con.Close), 3704)


class Shown(unittest.TestCase):
    def setUp(self):
        self.patient = oxclass.CreateObject("OXClass.cPatient")

    def test_dir(self):
        names = dir(self.patient)
        for name in ("LastName", "BirthDate", "OtherIDs", "Save", "LoadOnPatientIDorPDBID"):
            self.assertIn(name, names)

    def test_help(self):
        shown = io.StringIO()
        with contextlib.redirect_stdout(shown):
            pydoc.doc(self.patient)
        text = pydoc.plain(shown.getvalue())
        self.assertIn("class cPatient", text)
        self.assertIn("LoadOnPatientIDorPDBID(self, Con: 'Connection', PatientID: str, PDBID: int) -> int", text)
        self.assertRegex(text, r"BirthDate\s+\|\s+The date of birth.*\(datetime\)")

    def test_help_of_classes_operations_and_arguments(self):
        self.assertEqual(type(self.patient).__doc__, "A patient. The text PatientID decides which row a save writes.")
        self.assertEqual(self.patient.LoadOnPatientIDorPDBID.__doc__.splitlines()[0], 
                         "Loads a patient. Returns 1, or 0 if there is none; a failure shows a message and returns 0.")
        self.assertRegex(self.patient.Save.__doc__, r"\n    Con \(Connection\): The open connection to the database\.\n")

    def test_signatures_show_references_and_optional_arguments(self):
        general = oxclass.CreateObject("OXClass.Class1")
        signature = inspect.signature(general.GetGLSetting)
        self.assertEqual(list(signature.parameters), ["Con", "GLId", "sFirstSetting", "cAllGLs"])
        self.assertIs(signature.parameters["GLId"].annotation, oxclass.gGlobalListIDs)
        self.assertIs(signature.parameters["cAllGLs"].default, oxclass.Missing)
        self.assertIs(signature.return_annotation, bool)
        self.assertRegex(general.GetGLSetting.__doc__, r"sFirstSetting \(str, comes back in a ByRef\): Receives the text")
        self.assertRegex(general.GetGLSetting.__doc__, r"cAllGLs \(cGlobalLists, .*may be left out\): ")
        self.assertNotRegex(general.GetGLSetting.__doc__, r"GLId \(.*comes back")

    def test_properties_show_their_types(self):
        described = type(oxclass.CreateObject("OXClass.cImage"))
        self.assertIsInstance(described.URL, property)
        self.assertRegex(described.URL.__doc__, r"^The path of the image file.*\. \(str\)$")
        self.assertRegex(described.ImageType.__doc__, r"\. \(xigImageTypes\)$")
        self.assertEqual(type(oxclass.CreateObject("OXClass.cImages")).Count.__doc__,
                         "The number of images in the collection. (int, read only)")
