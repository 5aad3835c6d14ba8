"""Collections: positions from 1, keys, len, for, and the plain keyed one."""
import unittest

import oxclass


def teeth_of(*numbers):
    teeth = oxclass.CreateObject("OXClass.cTeeth")
    for number in numbers:
        teeth.Add(True, number, f"T{number}")
    return teeth


class OfTheLibrary(unittest.TestCase):
    def test_positions_and_keys(self):
        teeth = teeth_of(11, 12, 13)
        self.assertEqual([teeth(1).TNumber, teeth[3].TNumber, teeth("t12").TNumber, teeth["T13"].TNumber],
                         [11, 13, 12, 13])
        self.assertIs(teeth.Item(1), teeth(1))
        self.assertIs(teeth.Item["T11"], teeth[1])
        self.assertIs(teeth.Item[2], teeth["T12"])

    def test_a_position_before_the_first_is_none(self):
        teeth = teeth_of(11, 12)
        for position in (0, -1, 3):
            with self.subTest(position):
                self.assertIsNone(teeth(position))

    def test_length_and_truth(self):
        self.assertEqual(len(teeth_of(11, 12)), 2)
        self.assertFalse(teeth_of())
        self.assertEqual(teeth_of(11).Count, 1)

    def test_iteration(self):
        teeth = teeth_of(11, 12, 13)
        self.assertEqual([tooth.TNumber for tooth in teeth], [11, 12, 13])
        self.assertEqual([(a.TNumber, b.TNumber) for a, b in zip(teeth, teeth)], [(11, 11), (12, 12), (13, 13)])
        self.assertIn(teeth(2), teeth)
        self.assertEqual([next(iter(teeth)).TNumber, len(list(teeth.NewEnum))], [11, 3])

    def test_members_can_be_removed_during_an_iteration(self):
        teeth = teeth_of(11, 12, 13)
        for tooth in teeth:
            teeth.Remove(f"T{tooth.TNumber}")
        self.assertEqual(len(teeth), 0)

    def test_an_iterator_outlives_its_collection(self):
        self.assertEqual([tooth.TNumber for tooth in iter(teeth_of(21, 22))], [21, 22])

    def test_an_object_that_is_not_a_collection(self):
        tooth = teeth_of(11)(1)
        for thing in (tooth, oxclass.CreateObject("ADODB.Recordset")):
            with self.assertRaises(TypeError):
                iter(thing)
        with self.assertRaises(TypeError):
            len(tooth)
        with self.assertRaises(TypeError):
            tooth(1)
        with self.assertRaises(TypeError):
            tooth[1]

    def test_without_a_default_member_the_item_is_indexed(self):
        lists = oxclass.CreateObject("OXClass.cGlobalLists")
        row = lists.Add("K1")
        self.assertIs(lists["K1"], row)
        self.assertIs(lists.Item(1), row)


class Plain(unittest.TestCase):
    def test_any_values(self):
        things = oxclass.CreateObject("Collection")
        tooth = teeth_of(11)(1)
        for thing in ("a", 1, None, oxclass.Null, tooth):
            things.Add(thing)
        self.assertEqual(list(things), ["a", 1, None, oxclass.Null, tooth])
        things.Remove(1)
        self.assertEqual(things(1), 1)
        self.assertEqual(things.Count, 4)

    def test_missing_positions_raise(self):
        things = oxclass.CreateObject("Collection")
        things.Add("a")
        for position in (0, -1, 2):
            with self.subTest(position):
                with self.assertRaises(oxclass.Error) as caught:
                    things(position)
                self.assertEqual(caught.exception.Number, 9)
