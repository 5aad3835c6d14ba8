"""Properties with a plain value, read and assigned by their slots in the vtable.

A call by slot passes the value itself. That is several times faster than a call by name, which passes variants. A get
or put of a plain value runs no statement, so no event handler is called during it.
"""
from __future__ import annotations

import ctypes
import datetime
from ctypes import CFUNCTYPE, POINTER, byref, c_double, c_float, c_int16, c_int32, c_void_p, string_at
from typing import Any, Callable, Dict, Optional

from ._library import library
from ._members import Member
from ._objects import Object
from ._values import days_of, datetime_of, enumeration_of

Getter = Callable[[Object], Any]
Setter = Callable[[Object, Any], None]

_FIRST_MEMBER = 7  # behind the functions of IUnknown and IDispatch

_NUMBERS: Dict[str, Any] = {
    "boolean": c_int16, "short": c_int16, "long": c_int32, "single": c_float, "double": c_double, "date": c_double,
    "enumeration": c_int32
}


def _function(table: int, member: Member, argument: Any) -> Any:
    place = table + (_FIRST_MEMBER + member.position) * ctypes.sizeof(c_void_p)
    return CFUNCTYPE(c_int32, c_void_p, argument)(c_void_p.from_address(place).value)


# ---- get ------------------------------------------------------------------------------------------------------


def _number_getter(function: Any, holder: Any) -> Getter:
    def get(self: Object) -> Any:
        place = holder()
        code = function(self._reference.here(), byref(place))
        if code < 0:
            raise library().recorded(code)
        return place.value

    return get


def _text_getter(function: Any) -> Getter:
    length, free = library().SysStringByteLen, library().SysFreeString

    def get(self: Object) -> str:
        place = c_void_p()
        code = function(self._reference.here(), byref(place))
        if code < 0:
            raise library().recorded(code)
        pointer = place.value
        if not pointer:
            return ""
        try:
            return string_at(pointer, length(pointer)).decode("utf-16-le", "replace")
        finally:
            free(pointer)

    return get


def _converted(get: Getter, convert: Callable[[Any], Any]) -> Getter:
    return lambda self: convert(get(self))


def getter(table: int, member: Member) -> Optional[Getter]:
    """Returns a function that reads a property, or None if its value isn't plain."""
    kind = member.result.kind
    if kind == "text":
        return _text_getter(_function(table, member, POINTER(c_void_p)))
    if kind not in _NUMBERS:
        return None
    holder = _NUMBERS[kind]
    get = _number_getter(_function(table, member, POINTER(holder)), holder)
    if kind == "boolean":
        return _converted(get, bool)
    if kind == "date":
        return _converted(get, datetime_of)
    if kind == "enumeration":
        known = {value.value: value for value in enumeration_of(member.result.of) or ()}
        return _converted(get, lambda number: known.get(number, number))
    return get


# ---- put ------------------------------------------------------------------------------------------------------
# Each takes values of one type; every other value goes by name, where the library converts it.


def _assign(function: Any, self: Object, value: Any) -> None:
    code = function(self._reference.here(), value)
    if code < 0:
        raise library().recorded(code)


def _long_setter(function: Any, by_name: Setter) -> Setter:
    def put(self: Object, value: Any) -> None:
        if type(value) is int and -0x80000000 <= value <= 0x7FFFFFFF:
            _assign(function, self, value)
        else:
            by_name(self, value)

    return put


def _text_setter(function: Any, by_name: Setter) -> Setter:
    def put(self: Object, value: Any) -> None:
        if type(value) is not str:
            return by_name(self, value)
        functions = library()
        text = functions.new_text(value)
        try:
            _assign(function, self, text)
        finally:
            functions.SysFreeString(text)

    return put


def _exact_setter(function: Any, by_name: Setter, taken: type, convert: Callable[[Any], Any]) -> Setter:
    def put(self: Object, value: Any) -> None:
        if type(value) is taken:
            _assign(function, self, convert(value))
        else:
            by_name(self, value)

    return put


def setter(table: int, member: Member, by_name: Setter) -> Setter:
    """Returns a function that assigns a property, which calls ``by_name`` for a value that isn't of its own type."""
    argument = member.arguments[-1]
    kind = argument.type.kind
    if member.kind != "put" or len(member.arguments) != 1 or argument.by_reference:
        return by_name
    if kind == "text":
        return _text_setter(_function(table, member, c_void_p), by_name)
    if kind == "long":
        return _long_setter(_function(table, member, c_int32), by_name)
    if kind == "boolean":
        return _exact_setter(_function(table, member, c_int16), by_name, bool, lambda value: -1 if value else 0)
    if kind == "double":
        return _exact_setter(_function(table, member, c_double), by_name, float, float)
    if kind == "date":
        return _exact_setter(_function(table, member, c_double), by_name, datetime.datetime, days_of)
    return by_name
