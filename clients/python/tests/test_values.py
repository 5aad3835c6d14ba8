"""Values in both directions, through a collection, which stores each unchanged."""
import copy
import datetime
import decimal
import enum
import math
import pickle
import unittest

import oxclass
from oxclass._binary import VARIANT
from oxclass._library import library
from oxclass._values import Type, fill


def there_and_back(value):
    collection = oxclass.CreateObject("Collection")
    collection.Add(value)
    return collection(1)


class Plain(unittest.TestCase):
    def same(self, value):
        back = there_and_back(value)
        self.assertEqual(back, value)
        self.assertIs(type(back), type(value))

    def test_numbers(self):
        for number in (0, 1, -1, 2**31 - 1, -2**31, 2**31, -2**31 - 1, 2**63 - 1, -2**63, 0.0, -1.5, 1e300, math.inf):
            with self.subTest(number):
                self.same(number)
        self.assertTrue(math.isnan(there_and_back(math.nan)))

    def test_booleans(self):
        self.assertIs(there_and_back(True), True)
        self.assertIs(there_and_back(False), False)

    def test_texts(self):
        for text in ("", "Åkesson", "Ελένη", "山田\U0001F9B7", "a\0b", "\0", "x" * 70000):
            with self.subTest(text[:20]):
                self.same(text)

    def test_an_unpaired_surrogate_becomes_the_replacement_character(self):
        self.assertEqual(there_and_back("a\ud83db"), "a\ufffdb")
        self.assertEqual(there_and_back("\udc00"), "\ufffd")
        self.assertEqual(there_and_back("\ud83e\uddb7"), "\U0001F9B7")

    def test_nothing_and_null(self):
        self.assertIsNone(there_and_back(None))
        self.assertIs(there_and_back(oxclass.Null), oxclass.Null)

    def test_enumerations_are_numbers(self):
        back = there_and_back(oxclass.imggTypeNone)
        self.assertEqual((back, type(back)), (32000, int))

    def test_decimals(self):
        self.assertEqual(there_and_back(decimal.Decimal("2.5")), 2.5)

    def test_lists_of_texts(self):
        self.same(["a", "", "ö\0", "\U0001F9B7"])
        self.same([])
        self.assertEqual(there_and_back(("a", "b")), ["a", "b"])

    def test_objects(self):
        tooth = oxclass.CreateObject("OXClass.cTooth")
        self.assertIs(there_and_back(tooth), tooth)

    def test_a_number_beyond_64_bits_overflows(self):
        for number in (2**63, -2**63 - 1):
            with self.assertRaises(oxclass.Error) as caught:
                there_and_back(number)
            self.assertEqual(caught.exception.Number, 6)

    def test_other_types_are_refused(self):
        for value in (b"bytes", object(), {}, [1], ["a", None], 1j, datetime.time(12)):
            with self.subTest(value), self.assertRaisesRegex(TypeError, "str|texts"):
                there_and_back(value)

    def test_the_host_raises_for_what_it_cannot_convert(self):
        tooth = oxclass.CreateObject("OXClass.cTooth")
        for value, number in (("no number", 13), (40000, 6), (oxclass.Null, 94), (tooth, 13)):
            with self.subTest(value), self.assertRaises(oxclass.Error) as caught:
                tooth.TNumber = value
            self.assertEqual(caught.exception.Number, number)


class Crossing(unittest.TestCase):
    """The types of the variants, which the results don't show, since the host accepts several types."""

    def type_of(self, value, kind="variant"):
        variant = VARIANT()
        fill(variant, value, Type(kind))
        try:
            return variant.vt
        finally:
            library().VariantClear(variant)

    def test_each_value_has_its_type(self):
        for value, type in ((None, 0), (oxclass.Null, 1), (True, 11), (1, 3), (2**31, 20), (oxclass.ctseries, 3),
                            (1.0, 5), (decimal.Decimal(1), 5), ("", 8), (datetime.datetime(2024, 1, 1), 7),
                            (datetime.date(2024, 1, 1), 7), ([], 0x2008), (oxclass.Missing, 10),
                            (oxclass.CreateObject("Collection"), 9)):
            with self.subTest(value):
                self.assertEqual(self.type_of(value), type)

    def test_none_for_an_object_is_a_null_reference(self):
        self.assertEqual(self.type_of(None, "object"), 9)


class Dates(unittest.TestCase):
    def patient_born(self, date):
        patient = oxclass.CreateObject("OXClass.cPatient")
        patient.BirthDate = date
        return patient.BirthDate

    def test_every_second_survives(self):
        start = datetime.datetime(2024, 2, 28, 23, 0, 0)
        for second in range(0, 2 * 86400, 997):
            date = start + datetime.timedelta(seconds=second)
            self.assertEqual(there_and_back(date), date)

    def test_before_day_zero_the_time_still_counts_forward(self):
        for date in (datetime.datetime(1899, 12, 29, 12), datetime.datetime(1899, 12, 29, 0, 0, 1),
                     datetime.datetime(1850, 6, 1, 23, 59, 59), datetime.datetime(100, 1, 1, 18, 30)):
            self.assertEqual(there_and_back(date), date)
        collection = oxclass.CreateObject("Collection")
        collection.Add(datetime.datetime(1899, 12, 29, 12))
        template = oxclass.CreateObject("OXClass.cTemplate")
        template.TCWidth = collection(1)  # a date as a number of days
        self.assertEqual(template.TCWidth, -1.5)

    def test_the_zero_date(self):
        patient = oxclass.CreateObject("OXClass.cPatient")
        self.assertEqual(patient.BirthDate, datetime.datetime(1899, 12, 30))
        patient.BirthDate = 2.25
        self.assertEqual(patient.BirthDate, datetime.datetime(1900, 1, 1, 6))

    def test_the_nearest_second(self):
        noon = datetime.datetime(2024, 3, 11, 12)
        self.assertEqual(self.patient_born(noon + datetime.timedelta(milliseconds=400)), noon)
        self.assertEqual(self.patient_born(noon + datetime.timedelta(milliseconds=600)),
                         noon + datetime.timedelta(seconds=1))
        midnight = datetime.datetime(2024, 3, 12)
        self.assertEqual(self.patient_born(midnight - datetime.timedelta(milliseconds=100)), midnight)

    def test_days_alone(self):
        self.assertEqual(self.patient_born(datetime.date(1980, 1, 31)), datetime.datetime(1980, 1, 31))

    def test_a_time_zone_is_refused(self):
        with self.assertRaisesRegex(TypeError, "time zone"):
            there_and_back(datetime.datetime(2024, 1, 1, tzinfo=datetime.timezone.utc))

    def test_the_range_of_years(self):
        last = datetime.datetime(9999, 12, 31, 23, 59, 59)
        self.assertEqual(there_and_back(last), last)
        with self.assertRaises(oxclass.Error) as caught:
            there_and_back(datetime.datetime(99, 12, 31))
        self.assertEqual(caught.exception.Number, 6)


class Singletons(unittest.TestCase):
    def test_null(self):
        self.assertEqual(repr(oxclass.Null), "oxclass.Null")
        self.assertFalse(oxclass.Null)
        self.assertIs(copy.deepcopy(oxclass.Null), oxclass.Null)

    def test_missing(self):
        self.assertEqual(repr(oxclass.Missing), "oxclass.Missing")
        self.assertIs(copy.copy(oxclass.Missing), oxclass.Missing)


class Enumerations(unittest.TestCase):
    def test_documented_ones_are_int_enums(self):
        self.assertTrue(issubclass(oxclass.ManipulationType, enum.IntEnum))
        self.assertIs(oxclass.ManRotate, oxclass.ManipulationType.ManRotate)
        self.assertEqual((oxclass.imggTypeSC, oxclass.ctseries, oxclass.adtAll), (0, 2, 999))

    def test_properties_return_them(self):
        image = oxclass.CreateObject("OXClass.cImage")
        image.ImageType = oxclass.imggTypeDXPanoramic
        self.assertIs(image.ImageType, oxclass.xigImageTypes.imggTypeDXPanoramic)
        image.ImageType = 1
        self.assertIs(image.ImageType, oxclass.imggTypeDXIntraOral)

    def test_a_number_that_the_enumeration_lacks_stays_one(self):
        image = oxclass.CreateObject("OXClass.cImage")
        image.ImageType = 77
        self.assertEqual((image.ImageType, type(image.ImageType)), (77, int))

    def test_they_pickle(self):
        self.assertIs(pickle.loads(pickle.dumps(oxclass.ManRotate)), oxclass.ManRotate)
