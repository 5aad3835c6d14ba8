"""Python objects as objects of the component model: the library calls their members by name."""
from __future__ import annotations

import ctypes
import inspect
from ctypes import CFUNCTYPE, POINTER, c_int32, c_uint16, c_uint32, c_void_p
from typing import Any, Dict, List, Optional

from . import _binary as binary
from . import _objects
from ._binary import DISPPARAMS, EXCEPINFO, GUID, VARIANT
from ._errors import (DISP_E_EXCEPTION, DISP_E_MEMBERNOTFOUND, DISP_E_UNKNOWNNAME, E_FAIL, E_NOINTERFACE, E_NOTIMPL,
                      OUT_OF_BOUNDS, S_OK, Error, code_of)
from ._library import library
from ._threads import current
from ._values import ByRef, Missing, Type, fill, read

IID_IUnknown = GUID(0, 0, 0, (0xC0, 0, 0, 0, 0, 0, 0, 0x46))


class Members:
    """The members of a list or tuple, where a ``Collection`` is required."""

    def __init__(self, items: Any) -> None:
        self.items = items

    @property
    def Count(self) -> int:
        return len(self.items)

    def Item(self, index: int) -> Any:
        if not isinstance(index, int) or not 1 <= index <= len(self.items):
            raise Error(OUT_OF_BOUNDS, "oxclass", f"The list has no member {index!r}")
        return self.items[index - 1]

    def Add(self, item: Any, *place: Any) -> None:
        if any(argument is not Missing for argument in place):
            raise Error(OUT_OF_BOUNDS, "oxclass", "A member of a list has no key, and is added at its end")
        self.items.append(item)

    def Remove(self, index: int) -> None:
        self.Item(index)
        del self.items[index - 1]


class Exposed:
    """One Python object with an interface pointer. It lives as long as the pointer is referenced."""

    def __init__(self, target: Any) -> None:
        self.original = target  # what Python code receives for the pointer
        self.target = Members(target) if isinstance(target, (list, tuple)) else target
        self.references = 0
        self._names: List[str] = []  # of the members that were asked for; the identifier of the first one is 1
        self._table = c_void_p(ctypes.addressof(_TABLE))
        self.pointer = ctypes.addressof(self._table)

    def id_of(self, name: str) -> Optional[int]:
        real = self._real(name)
        if real is None:
            return None
        if real not in self._names:
            self._names.append(real)
        return self._names.index(real) + 1

    def _real(self, name: str) -> Optional[str]:
        """Returns the name of a member, in the case that the object has; None if there is none."""
        known = dir(self.target)
        if name in known:
            return name
        for other in known:
            if other.lower() == name.lower():
                return other
        return name if hasattr(self.target, name) else None

    def invoke(self, member: int, flags: int, arguments: List[Any]) -> Any:
        """Calls, reads or assigns a member. Raises ``LookupError`` for an unknown identifier."""
        if flags & (binary.DISPATCH_PROPERTYPUT | binary.DISPATCH_PROPERTYPUTREF):
            return self._put(self._names[self._index(member)], arguments)
        if member == binary.DISPID_VALUE:
            return _applied(self.target, arguments)
        value = getattr(self.target, self._names[self._index(member)])
        if inspect.isroutine(value):
            return value(*arguments)
        return _applied(value, arguments) if arguments else value

    def _put(self, name: str, arguments: List[Any]) -> None:
        if len(arguments) == 1:
            setattr(self.target, name, arguments[0])
        else:
            getattr(self.target, name)[arguments[0]] = arguments[1]

    def _index(self, member: int) -> int:
        if not 1 <= member <= len(self._names):
            raise LookupError(member)
        return member - 1


def _applied(value: Any, arguments: List[Any]) -> Any:
    """Returns what the default member of an object returns."""
    if callable(value):
        return value(*arguments)
    if hasattr(value, "Item"):
        return value.Item(*arguments)
    return value[arguments[0]]


_by_pointer: Dict[int, Exposed] = {}
_by_target: Dict[int, Exposed] = {}


def expose(variant: VARIANT, value: Any) -> None:
    """Stores an interface pointer of a Python object in an empty variant, which then owns a reference."""
    exposed = _by_target.get(id(value))
    if exposed is None:
        exposed = Exposed(value)
        _by_pointer[exposed.pointer] = _by_target[id(value)] = exposed
    exposed.references += 1
    variant.pointer, variant.vt = exposed.pointer, binary.VT_DISPATCH


def original_of(pointer: int) -> Any:
    """Returns the Python object of an interface pointer; None if it is not one of these."""
    exposed = _by_pointer.get(pointer)
    return None if exposed is None else exposed.original


# ---- arguments and results ------------------------------------------------------------------------------------

_ANYTHING = Type("object")  # Python objects are exposed in turn


class _Arguments:
    """The arguments of one call: values, and a ``ByRef`` for each argument by reference."""

    def __init__(self, parameters: DISPPARAMS) -> None:
        self._variants = [parameters.rgvarg[i] for i in reversed(range(parameters.cArgs))]
        self.values: List[Any] = [self._value(variant) for variant in self._variants]
        while self.values and self.values[-1] is Missing:
            self.values.pop()

    @staticmethod
    def _value(variant: VARIANT) -> Any:
        if variant.vt == binary.VT_BYREF | binary.VT_VARIANT:
            return ByRef(read(VARIANT.from_address(variant.pointer)))
        return read(variant)

    def come_back(self) -> None:
        for variant, value in zip(self._variants, self.values):
            if isinstance(value, ByRef):
                inner = VARIANT.from_address(variant.pointer)
                library().VariantClear(inner)
                fill(inner, value.value, _ANYTHING)


def _fail(info: Any, failure: BaseException) -> int:
    """Stores the failure of a member as an exception of the component model."""
    if info:
        if isinstance(failure, Error):
            code, source, text = code_of(failure.Number), failure.Source, failure.Description
        else:
            code, source, text = E_FAIL, type(failure).__name__, str(failure)
        info[0].scode = code
        info[0].bstrSource = library().new_text(source)
        info[0].bstrDescription = library().new_text(text)
    return DISP_E_EXCEPTION


# ---- the functions of IDispatch -------------------------------------------------------------------------------


@CFUNCTYPE(c_int32, c_void_p, POINTER(GUID), POINTER(c_void_p))
def _query_interface(this: int, identity: Any, found: Any) -> int:
    known = bytes(identity[0]) in (bytes(IID_IUnknown), bytes(binary.IID_IDispatch))
    found[0] = this if known else None
    if not known:
        return E_NOINTERFACE
    _by_pointer[this].references += 1
    return S_OK


@CFUNCTYPE(c_uint32, c_void_p)
def _add_ref(this: int) -> int:
    exposed = _by_pointer[this]
    exposed.references += 1
    return exposed.references


@CFUNCTYPE(c_uint32, c_void_p)
def _release(this: int) -> int:
    exposed = _by_pointer[this]
    exposed.references -= 1
    if exposed.references == 0:
        del _by_pointer[this], _by_target[id(exposed.original)]
    return exposed.references


@CFUNCTYPE(c_int32, c_void_p, POINTER(c_uint32))
def _type_info_count(this: int, count: Any) -> int:
    count[0] = 0
    return S_OK


@CFUNCTYPE(c_int32, c_void_p, c_uint32, c_uint32, POINTER(c_void_p))
def _type_info(this: int, which: int, locale: int, info: Any) -> int:
    info[0] = None
    return E_NOTIMPL


@CFUNCTYPE(c_int32, c_void_p, POINTER(GUID), POINTER(c_void_p), c_uint32, c_uint32, POINTER(c_int32))
def _ids_of_names(this: int, identity: Any, names: Any, count: int, locale: int, ids: Any) -> int:
    for i in range(count):
        ids[i] = -1
    try:
        member = _by_pointer[this].id_of(_text_at(names[0]))
    except Exception:  # a property that fails while it is looked for
        member = None
    if member is None:
        return DISP_E_UNKNOWNNAME
    ids[0] = member
    return S_OK if count == 1 else DISP_E_UNKNOWNNAME


def _text_at(address: int) -> str:
    """Returns a null-terminated text of UTF-16 units."""
    length = 0
    while c_uint16.from_address(address + 2 * length).value:
        length += 1
    return ctypes.string_at(address, 2 * length).decode("utf-16-le", "replace")


@CFUNCTYPE(c_int32, c_void_p, c_int32, POINTER(GUID), c_uint32, c_uint16, POINTER(DISPPARAMS), POINTER(VARIANT),
           POINTER(EXCEPINFO), POINTER(c_uint32))
def _invoke(this: int, member: int, identity: Any, locale: int, flags: int, parameters: Any, result: Any, info: Any,
            wrong: Any) -> int:
    exposed = _by_pointer[this]
    try:
        arguments = _Arguments(parameters[0])
        try:
            value = exposed.invoke(member, flags, arguments.values)
        finally:
            arguments.come_back()
        if result:
            fill(result[0], value, _ANYTHING)
        return S_OK
    except LookupError as failure:
        return DISP_E_MEMBERNOTFOUND if failure.args == (member,) else _fail(info, failure)
    except Exception as failure:
        return _fail(info, failure)
    except BaseException as failure:  # such as KeyboardInterrupt: the call of the library raises it
        if current().cancelled is None:
            current().cancelled = failure
        return _fail(info, failure)


_FUNCTIONS = (_query_interface, _add_ref, _release, _type_info_count, _type_info, _ids_of_names, _invoke)
_TABLE = (c_void_p * len(_FUNCTIONS))(*(ctypes.cast(function, c_void_p).value for function in _FUNCTIONS))

_objects.expose, _objects.original_of = expose, original_of
