"""Converts Python values to variants, and variants to Python values."""
from __future__ import annotations

import ctypes
import datetime
import decimal
import enum
from ctypes import c_int32, c_uint16, c_void_p
from typing import Any, Callable, Dict, Generic, List, NamedTuple, Tuple, TypeVar

from . import _binary as binary
from . import _enumerations, _objects
from ._binary import VARIANT
from ._errors import DISP_E_PARAMNOTFOUND, E_OUTOFMEMORY, OVERFLOW, TYPE_MISMATCH, Error, error_of
from ._library import library
from ._objects import Object, wrap, wrap_unknown

T = TypeVar("T")


class ByRef(Generic[T]):
    """An argument by reference: the operation reads ``value``, and ``value`` holds what it stored afterwards.

        setting = oxclass.ByRef("")
        if general.GetGLSetting(con, oxclass.gglID_DicomRootUID, setting):
            print(setting.value)
    """

    __module__ = "oxclass"

    def __init__(self, value: Any = None) -> None:
        self.value: Any = value

    def __repr__(self) -> str:
        return f"oxclass.ByRef({self.value!r})"


class NullType:
    """The type of ``Null``."""

    __module__ = "oxclass"
    __slots__ = ()

    def __repr__(self) -> str:
        return "oxclass.Null"

    def __bool__(self) -> bool:
        return False

    def __reduce__(self) -> str:
        return "Null"


class MissingType:
    """The type of ``Missing``."""

    __module__ = "oxclass"
    __slots__ = ()

    def __repr__(self) -> str:
        return "oxclass.Missing"

    def __reduce__(self) -> str:
        return "Missing"


#: The null of a database: an unknown value. ``None`` is an empty variant, or a null object reference.
Null = NullType()
#: An omitted argument that others follow.
Missing = MissingType()


class Type(NamedTuple):
    """The described type of an argument, a property or a result."""

    kind: str = "variant"  # none, boolean, short, long, single, double, date, text, variant, object, enumeration
    of: str = ""  # the class's or the enumeration's name


ANY = Type()

# ---- dates ----------------------------------------------------------------------------------------------------
# Days since 1899-12-30, the fraction being the time of day. Before day 0 the day counts down while the fraction
# still counts forward: -1.5 is noon of 1899-12-29.

_DAY_ZERO = datetime.datetime(1899, 12, 30)
_SECONDS_A_DAY = 86400


def datetime_of(days: float) -> datetime.datetime:
    """Returns the date of a number of days, rounded to the nearest second."""
    day = int(days)
    try:
        return _DAY_ZERO + datetime.timedelta(days=day, seconds=int(abs(days - day) * _SECONDS_A_DAY + 0.5))
    except OverflowError:
        raise Error(OVERFLOW, "oxclass", f"{days} days are a date that Python doesn't have") from None


def days_of(date: datetime.date) -> float:
    """Returns the number of days of a date without a time zone."""
    if not isinstance(date, datetime.datetime):
        date = datetime.datetime(date.year, date.month, date.day)
    if date.tzinfo is not None:
        raise TypeError(f"{date!r} has a time zone, and dates of the library have none: pass the local time, "
                        "such as date.astimezone().replace(tzinfo=None)")
    day = (date - _DAY_ZERO).days
    time = (date - _DAY_ZERO - datetime.timedelta(days=day)).total_seconds() / _SECONDS_A_DAY
    return day - time if day < 0 else day + time


# ---- into a variant -------------------------------------------------------------------------------------------

_TAKEN = ("None, Null, Missing, bool, int, float, Decimal, str, datetime, date, an object, ByRef, "
          "or a list or tuple of str")


def fill(variant: VARIANT, value: Any, type: Type = ANY) -> None:
    """Stores a value in an empty variant, which then owns it. Where an object is required, any Python object may be
    passed, and a list or tuple for a collection."""
    if type.kind == "object" and isinstance(value, (list, tuple)):
        return _objects.expose(variant, value)
    for kind, filler in _FILLERS:
        if isinstance(value, kind):
            filler(variant, value)
            return
    if value is None:
        variant.vt = binary.VT_DISPATCH if type.kind == "object" else binary.VT_EMPTY
    elif value is Null:
        variant.vt = binary.VT_NULL
    elif value is Missing:
        variant.scode, variant.vt = DISP_E_PARAMNOTFOUND, binary.VT_ERROR
    elif type.kind == "object":
        _objects.expose(variant, value)
    else:
        name = f"{value.__class__.__module__}.{value.__class__.__qualname__}".replace("builtins.", "")
        raise TypeError(f"a value of the type {name} can't be passed; accepted are {_TAKEN}")


def _fill_bool(variant: VARIANT, value: bool) -> None:
    variant.boolVal, variant.vt = -1 if value else 0, binary.VT_BOOL


def _fill_int(variant: VARIANT, value: int) -> None:
    if -0x80000000 <= value <= 0x7FFFFFFF:
        variant.lVal, variant.vt = value, binary.VT_I4
    elif -0x8000000000000000 <= value <= 0x7FFFFFFFFFFFFFFF:
        variant.llVal, variant.vt = value, binary.VT_I8
    else:
        raise Error(OVERFLOW, "oxclass", f"Overflow: {value} needs more than 64 bits")


def _fill_float(variant: VARIANT, value: Any) -> None:
    variant.dblVal, variant.vt = float(value), binary.VT_R8


def _fill_text(variant: VARIANT, value: str) -> None:
    variant.pointer, variant.vt = library().new_text(value), binary.VT_BSTR


def _fill_date(variant: VARIANT, value: datetime.date) -> None:
    variant.date, variant.vt = days_of(value), binary.VT_DATE


def _fill_object(variant: VARIANT, value: Object) -> None:
    pointer = value._reference.here()
    binary.add_ref(pointer)
    variant.pointer, variant.vt = pointer, value._variant_type


def _fill_array(variant: VARIANT, value: Any) -> None:
    for text in value:
        if not isinstance(text, str):
            raise TypeError(f"only texts can be passed in a list, and this one holds {text!r}")
    functions = library()
    array = functions.SafeArrayCreateVector(binary.VT_BSTR, 0, len(value))
    if not array:
        raise error_of(E_OUTOFMEMORY)
    variant.pointer, variant.vt = array, binary.VT_ARRAY | binary.VT_BSTR
    data = c_void_p()
    functions.check(functions.SafeArrayAccessData(array, data))
    try:
        elements = (c_void_p * len(value)).from_address(data.value or 0) if value else []
        for place, text in enumerate(value):
            elements[place] = functions.new_text(text)
    finally:
        functions.SafeArrayUnaccessData(array)


_FILLERS: Tuple[Tuple[Any, Callable[[VARIANT, Any], None]], ...] = (
    (str, _fill_text), (bool, _fill_bool), (int, _fill_int), (float, _fill_float), (Object, _fill_object),
    (datetime.date, _fill_date), (decimal.Decimal, _fill_float), ((list, tuple), _fill_array))

# ---- out of a variant -----------------------------------------------------------------------------------------


def read(variant: VARIANT, type: Type = ANY) -> Any:
    """Returns the value of a variant, which keeps ownership."""
    if variant.vt & binary.VT_ARRAY:
        return _read_array(variant.pointer) if variant.pointer else []
    reader = _READERS.get(variant.vt)
    if reader is None:
        raise Error(TYPE_MISMATCH, "oxclass", f"A variant of the type {variant.vt} has no form in Python")
    value = reader(variant)
    return enumerated(value, type.of) if type.kind == "enumeration" else value


def take(variant: VARIANT, type: Type = ANY) -> Any:
    """Returns the value of a variant, and clears the variant."""
    try:
        return read(variant, type)
    finally:
        library().VariantClear(variant)


def enumerated(value: Any, name: str) -> Any:
    """Returns a number as a value of an enumeration, or the number itself if the enumeration lacks it."""
    enumeration = enumeration_of(name)
    if enumeration is None or not isinstance(value, int):
        return value
    try:
        return enumeration(value)
    except ValueError:
        return value


def enumeration_of(name: str) -> Any:
    """Returns the documented enumeration of a name, or None."""
    found = getattr(_enumerations, name, None)
    return found if isinstance(found, enum.EnumMeta) else None


def _read_error(variant: VARIANT) -> Any:
    return Missing if variant.scode == DISP_E_PARAMNOTFOUND else variant.scode


def _read_decimal(variant: VARIANT) -> decimal.Decimal:
    digits = variant.wReserved2 << 64 | variant.wReserved3 << 80 | variant.ullVal
    scale, sign = variant.wReserved1 & 0xFF, variant.wReserved1 >> 8
    return decimal.Decimal((1 if sign else 0, tuple(map(int, str(digits))), -scale))


_READERS: Dict[int, Callable[[VARIANT], Any]] = {
    binary.VT_EMPTY: lambda variant: None,
    binary.VT_NULL: lambda variant: Null,
    binary.VT_BOOL: lambda variant: variant.boolVal != 0,
    binary.VT_I1: lambda variant: variant.cVal,
    binary.VT_UI1: lambda variant: variant.bVal,
    binary.VT_I2: lambda variant: variant.iVal,
    binary.VT_UI2: lambda variant: variant.uiVal,
    binary.VT_I4: lambda variant: variant.lVal,
    binary.VT_INT: lambda variant: variant.lVal,
    binary.VT_UI4: lambda variant: variant.ulVal,
    binary.VT_UINT: lambda variant: variant.ulVal,
    binary.VT_I8: lambda variant: variant.llVal,
    binary.VT_UI8: lambda variant: variant.ullVal,
    binary.VT_R4: lambda variant: variant.fltVal,
    binary.VT_R8: lambda variant: variant.dblVal,
    binary.VT_CY: lambda variant: decimal.Decimal(variant.llVal).scaleb(-4),
    binary.VT_DECIMAL: _read_decimal,
    binary.VT_DATE: lambda variant: datetime_of(variant.date),
    binary.VT_BSTR: lambda variant: library().text_of(variant.pointer),
    binary.VT_ERROR: _read_error,
    binary.VT_DISPATCH: lambda variant: wrap(variant.pointer),
    binary.VT_UNKNOWN: lambda variant: wrap_unknown(variant.pointer),
}


def _read_array(array: int) -> List[Any]:
    functions = library()
    kind, lower, upper, data = c_uint16(), c_int32(), c_int32(), c_void_p()
    functions.check(functions.SafeArrayGetVartype(array, kind))
    if functions.SafeArrayGetDim(array) != 1 or kind.value not in (binary.VT_BSTR, binary.VT_VARIANT):
        raise Error(TYPE_MISMATCH, "oxclass", "Only arrays of texts or variants, of one dimension, can be read")
    functions.check(functions.SafeArrayGetLBound(array, 1, lower))
    functions.check(functions.SafeArrayGetUBound(array, 1, upper))
    functions.check(functions.SafeArrayAccessData(array, data))
    try:
        return _elements(data.value or 0, kind.value, upper.value - lower.value + 1)
    finally:
        functions.SafeArrayUnaccessData(array)


def _elements(data: int, kind: int, count: int) -> List[Any]:
    if not count:
        return []
    if kind == binary.VT_VARIANT:
        return [read(element) for element in (VARIANT * count).from_address(data)]
    return [library().text_of(element) for element in (c_void_p * count).from_address(data)]


# ---- arguments by reference -----------------------------------------------------------------------------------


class Returning:
    """The variant of one ``ByRef`` during a call."""

    def __init__(self, argument: ByRef[Any], type: Type, variant: VARIANT) -> None:
        self._argument, self._type, self._inner = argument, type, VARIANT()
        fill(self._inner, argument.value, type)
        variant.pointer, variant.vt = ctypes.addressof(self._inner), binary.VT_BYREF | binary.VT_VARIANT

    def come_back(self) -> None:
        self._argument.value = read(self._inner, self._type)

    def clear(self) -> None:
        library().VariantClear(self._inner)


_objects.take = take
