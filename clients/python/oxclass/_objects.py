"""Objects as Python sees them: one proxy for each object that is in use on a thread."""
from __future__ import annotations

from ctypes import c_uint32
from typing import Any, Callable, Dict, NoReturn, Optional

from . import _binary as binary
from ._binary import VARIANT
from ._errors import no_member
from ._library import library
from ._threads import Reference, current

# Functions of the modules that are built on this one, which set them when they are imported.
class_of: Callable[[int], type]  # the Python class of an interface pointer (_classes)
take: Callable[[VARIANT], Any]  # the Python value of a variant, which is cleared (_values)
expose: Callable[[VARIANT, Any], None]  # stores an interface pointer of a Python object (_exposed)
original_of: Callable[[int], Any]  # the Python object of such a pointer, or None (_exposed)


class Object:
    """An object of the library, or of its host. ``CreateObject`` makes one, and operations return others.

    Properties are attributes and operations are methods; names are taken in any case. The same object is the same
    Python object as long as it is in use. It belongs to the thread that received it.
    """

    __module__ = "oxclass"
    __slots__ = ("_reference", "__weakref__")

    _reference: Reference
    _names: Dict[str, str] = {}  # the members' names by their lower case
    _puts: Dict[str, Callable[[Any, Any], None]] = {}  # the functions that assign the properties, by their names
    _variant_type = binary.VT_DISPATCH

    def __new__(cls, *arguments: Any, **keywords: Any) -> NoReturn:
        raise TypeError("objects are made by oxclass.CreateObject")

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError(f"a {type(self).__name__} can't be copied or pickled: it belongs to this process and thread")

    def __getattr__(self, name: str) -> Any:
        real = type(self)._names.get(name.lower(), name)
        if real == name:
            raise no_member(self, name)
        return getattr(self, real)

    def __setattr__(self, name: str, value: Any) -> None:
        put = type(self)._puts.get(name)
        if put is not None:
            return put(self, value)
        real = type(self)._names.get(name.lower())
        if real is None:
            raise no_member(self, name)
        attribute = getattr(type(self), real)
        if not isinstance(attribute, property):
            raise no_member(self, real, "can't be assigned at the operation")
        if attribute.fset is None:
            raise no_member(self, real, "can only be read at")
        attribute.fset(self, value)


def adopt(cls: type, pointer: int) -> Any:
    """Returns a new proxy, which owns the caller's reference."""
    proxy = object.__new__(cls)
    object.__setattr__(proxy, "_reference", current().adopt(proxy, pointer))
    return proxy


def wrap(pointer: Optional[int], cls: Optional[type] = None) -> Any:
    """Returns the proxy of an interface pointer, None for a null pointer. The caller keeps its reference."""
    if not pointer:
        return None
    known = current().proxy_of(pointer)
    if known is None:
        known = original_of(pointer)
    if known is not None:
        return known
    if cls is None:
        cls = class_of(pointer)
    binary.add_ref(pointer)
    return adopt(cls, pointer)


def wrap_owned(pointer: Optional[int], cls: Optional[type] = None) -> Any:
    """As ``wrap``, and releases the caller's reference."""
    try:
        return wrap(pointer, cls)
    finally:
        if pointer:
            binary.release(pointer)


class Iterator(Object):
    """An iterator over the members of a collection. Once it is exhausted, it stays exhausted."""

    __module__ = "oxclass"
    __slots__ = ("_at_end",)
    _variant_type = binary.VT_UNKNOWN

    def __getattr__(self, name: str) -> Any:
        return False if name == "_at_end" else super().__getattr__(name)

    def __iter__(self) -> Iterator:
        return self

    def __next__(self) -> Any:
        if self._at_end:
            raise StopIteration
        value, fetched = VARIANT(), c_uint32()
        code = binary.next_value(self._reference.here(), value, fetched)
        library().check(code)
        if not fetched.value:
            object.__setattr__(self, "_at_end", True)
            raise StopIteration
        return take(value)


class Opaque(Object):
    """An object without callable members: it can be stored and passed as an argument."""

    __module__ = "oxclass"
    __slots__ = ()
    _variant_type = binary.VT_UNKNOWN


def wrap_unknown(pointer: Optional[int]) -> Any:
    """Returns the proxy of an IUnknown pointer: an ``Iterator``, a described object, or an ``Opaque`` one."""
    if not pointer:
        return None
    for identity, cls in ((binary.IID_IEnumVARIANT, Iterator), (binary.IID_IDispatch, None)):
        found = binary.query_interface(pointer, identity)
        if found:
            return wrap_owned(found, cls)
    return wrap(pointer, Opaque)
