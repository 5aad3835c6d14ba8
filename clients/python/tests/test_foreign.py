"""Objects of another program: stored, passed on, counted, and not called."""
import ctypes
import unittest
from ctypes import CFUNCTYPE, POINTER, c_int32, c_uint32, c_void_p

import oxclass
from oxclass._binary import GUID, IID_IDispatch
from oxclass._objects import wrap, wrap_unknown

S_OK, E_NOINTERFACE, E_NOTIMPL = 0, -2147467262, -2147467263


class Foreign:
    """An object that isn't the host's, made of Python functions. It counts its references."""

    def __init__(self, is_dispatch):
        self.references = 1
        count = CFUNCTYPE(c_uint32, c_void_p)
        query = CFUNCTYPE(c_int32, c_void_p, POINTER(GUID), POINTER(c_void_p))
        other = CFUNCTYPE(c_int32)

        def add(by):
            self.references += by
            return self.references

        def query_interface(this, identity, found):
            asked = bytes(identity.contents)
            known = [bytes(GUID(0, 0, 0, (0xC0, 0, 0, 0, 0, 0, 0, 0x46)))] + [bytes(IID_IDispatch)] * is_dispatch
            found[0] = this if asked in known else None
            return S_OK if asked in known and add(1) else E_NOINTERFACE

        self._functions = [query(query_interface), count(lambda this: add(1)), count(lambda this: add(-1))]
        self._functions += [other(lambda: E_NOTIMPL)] * 4
        self._table = (c_void_p * 7)(*(ctypes.cast(function, c_void_p).value for function in self._functions))
        self._pointer = c_void_p(ctypes.addressof(self._table))
        self.pointer = ctypes.addressof(self._pointer)


class ForeignObjects(unittest.TestCase):
    def test_a_plain_one(self):
        self.passes_through(Foreign(is_dispatch=False), wrap_unknown)

    def test_one_that_could_be_called(self):
        self.passes_through(Foreign(is_dispatch=True), wrap)

    def passes_through(self, foreign, wrapping):
        proxy = wrapping(foreign.pointer)
        self.assertEqual(foreign.references, 2)
        things = oxclass.CreateObject("Collection")
        things.Add(proxy, "key")
        self.assertIs(things("key"), proxy)
        self.assertFalse(hasattr(proxy, "Count"))
        del proxy
        self.assertGreater(foreign.references, 1)
        self.assertIsInstance(things("key"), oxclass.Object)
        things.Remove("key")
        self.assertEqual(foreign.references, 1)
