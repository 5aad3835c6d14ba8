"""The binary form of the component model, for ctypes: structures, vtables of the interfaces, texts.

Everything here has the layout and the names of ``platform/component/binary/ComponentModel.h``.
"""
from __future__ import annotations

import ctypes
import functools
from ctypes import (CFUNCTYPE, POINTER, Structure, Union, c_double, c_float, c_int8, c_int16, c_int32, c_int64, c_uint8,
                    c_uint16, c_uint32, c_uint64, c_void_p)
from typing import Any

VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R4, VT_R8, VT_CY, VT_DATE, VT_BSTR, VT_DISPATCH = range(10)
VT_ERROR, VT_BOOL, VT_VARIANT, VT_UNKNOWN, VT_DECIMAL = range(10, 15)
VT_I1, VT_UI1, VT_UI2, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT = range(16, 24)
VT_ARRAY, VT_BYREF = 0x2000, 0x4000

DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF = 1, 2, 4, 8
DISPID_VALUE, DISPID_PROPERTYPUT, DISPID_NEWENUM = 0, -3, -4


class GUID(Structure):
    _fields_ = [("Data1", c_uint32), ("Data2", c_uint16), ("Data3", c_uint16), ("Data4", c_uint8 * 8)]


IID_NULL = GUID()
IID_IDispatch = GUID(0x00020400, 0, 0, (0xC0, 0, 0, 0, 0, 0, 0, 0x46))
IID_IEnumVARIANT = GUID(0x00020404, 0, 0, (0xC0, 0, 0, 0, 0, 0, 0, 0x46))


class _Pair(Structure):
    _fields_ = [("pvRecord", c_void_p), ("pRecInfo", c_void_p)]


class _Value(Union):
    _fields_ = [
        ("llVal", c_int64), ("lVal", c_int32), ("bVal", c_uint8), ("iVal", c_int16), ("fltVal", c_float),
        ("dblVal", c_double), ("boolVal", c_int16), ("scode", c_int32), ("date", c_double), ("cVal", c_int8),
        ("uiVal", c_uint16), ("ulVal", c_uint32), ("ullVal", c_uint64), ("pointer", c_void_p), ("pair", _Pair),
    ]


class VARIANT(Structure):
    """``wReserved1`` to ``wReserved3`` hold the scale, the sign and the upper digits of a VT_DECIMAL."""

    _anonymous_ = ("value",)
    _fields_ = [("vt", c_uint16), ("wReserved1", c_uint16), ("wReserved2", c_uint16), ("wReserved3", c_uint16),
                ("value", _Value)]


class DISPPARAMS(Structure):
    _fields_ = [("rgvarg", POINTER(VARIANT)), ("rgdispidNamedArgs", POINTER(c_int32)), ("cArgs", c_uint32),
                ("cNamedArgs", c_uint32)]


class EXCEPINFO(Structure):
    _fields_ = [("wCode", c_uint16), ("wReserved", c_uint16), ("bstrSource", c_void_p), ("bstrDescription", c_void_p),
                ("bstrHelpFile", c_void_p), ("dwHelpContext", c_uint32), ("pvReserved", c_void_p),
                ("pfnDeferredFillIn", c_void_p), ("scode", c_int32)]


# ---- interfaces -----------------------------------------------------------------------------------------------

_RELEASE = CFUNCTYPE(c_uint32, c_void_p)
_QUERY_INTERFACE = CFUNCTYPE(c_int32, c_void_p, POINTER(GUID), POINTER(c_void_p))
_INVOKE = CFUNCTYPE(c_int32, c_void_p, c_int32, POINTER(GUID), c_uint32, c_uint16, POINTER(DISPPARAMS),
                    POINTER(VARIANT), POINTER(EXCEPINFO), POINTER(c_uint32))
_NEXT = CFUNCTYPE(c_int32, c_void_p, c_uint32, POINTER(VARIANT), POINTER(c_uint32))
_GET_TEXT = CFUNCTYPE(c_int32, c_void_p, POINTER(c_void_p))


def table_of(pointer: int) -> int:
    """Returns the address of an interface pointer's vtable."""
    return c_void_p.from_address(pointer).value or 0


@functools.lru_cache(maxsize=None)
def _function(prototype: Any, address: int) -> Any:
    return prototype(address)


def _slot(pointer: int, index: int, prototype: Any) -> Any:
    address = c_void_p.from_address(table_of(pointer) + index * ctypes.sizeof(c_void_p)).value
    return _function(prototype, address)


def query_interface(pointer: int, identity: GUID) -> int:
    """Returns another interface of an object, with a reference for the caller; 0 if it lacks the interface."""
    found = c_void_p()
    code = _slot(pointer, 0, _QUERY_INTERFACE)(pointer, identity, found)
    return found.value or 0 if code >= 0 else 0


def add_ref(pointer: int) -> None:
    _slot(pointer, 1, _RELEASE)(pointer)


def release(pointer: int) -> None:
    _slot(pointer, 2, _RELEASE)(pointer)


def invoke(pointer: int, member: int, flags: int, parameters: DISPPARAMS, result: VARIANT, failure: EXCEPINFO) -> int:
    """IDispatch::Invoke."""
    return _slot(pointer, 6, _INVOKE)(pointer, member, IID_NULL, 0, flags, parameters, result, failure, None)


def next_value(pointer: int, value: VARIANT, fetched: c_uint32) -> int:
    """IEnumVARIANT::Next for one value."""
    return _slot(pointer, 3, _NEXT)(pointer, 1, value, fetched)


def error_texts(record: int) -> Any:
    """Returns source and description of an IErrorInfo, as BSTRs that the caller frees."""
    source, description = c_void_p(), c_void_p()
    _slot(record, 4, _GET_TEXT)(record, source)
    _slot(record, 5, _GET_TEXT)(record, description)
    return source.value, description.value


# ---- callbacks of the host ------------------------------------------------------------------------------------

MsgBoxHandler = CFUNCTYPE(None, c_void_p, c_void_p, c_int32)
WillExecuteHandler = CFUNCTYPE(c_int32, c_void_p, c_void_p)
ExecuteCompleteHandler = CFUNCTYPE(None, c_void_p, c_void_p, c_int64, c_double, c_int32, c_void_p, c_void_p)
ReleasedHandler = CFUNCTYPE(None, c_void_p)


class OxConnectionEvents(Structure):
    _fields_ = [("WillExecute", WillExecuteHandler), ("ExecuteComplete", ExecuteCompleteHandler),
                ("Released", ReleasedHandler)]
