"""The Python class of each described class, built when its first object arrives.

Its members are real properties and functions with signatures, so that ``dir``, ``help`` and editors show them.
"""
from __future__ import annotations

import datetime
import inspect
import json
import threading
from ctypes import c_void_p
from typing import Any, Callable, Dict, Iterable, List, Optional

from . import _binary as binary
from . import _objects, _slots
from ._errors import E_NOINTERFACE, no_member
from ._library import library
from ._members import Argument, Member, invoke, member_of
from ._objects import Object, Opaque
from ._values import Missing, Type, enumeration_of

_PYTHON_TYPES: Dict[str, Any] = {
    "none": None, "boolean": bool, "short": int, "long": int, "single": float, "double": float,
    "date": datetime.datetime, "text": str, "variant": Any
}

# ---- what help shows ------------------------------------------------------------------------------------------


def _annotation(type: Type) -> Any:
    if type.kind == "enumeration":
        return enumeration_of(type.of) or int
    return _PYTHON_TYPES[type.kind] if type.kind in _PYTHON_TYPES else type.of or "Object"


def _word(type: Type) -> str:
    annotation = _annotation(type)
    return annotation if isinstance(annotation, str) else getattr(annotation, "__name__", str(annotation))


def _signature(member: Member, of_method: bool = True) -> inspect.Signature:
    kind = inspect.Parameter.POSITIONAL_OR_KEYWORD
    parameters = [inspect.Parameter("self", kind)] if of_method else []
    behind_optional = False
    for argument in member.arguments:
        behind_optional = behind_optional or argument.optional
        default = Missing if behind_optional else inspect.Parameter.empty
        parameters.append(inspect.Parameter(argument.name, kind, default=default,
                                            annotation=_annotation(argument.type)))
    return inspect.Signature(parameters, return_annotation=_annotation(member.result))


def _argument_line(argument: Argument) -> str:
    notes = [_word(argument.type)]
    if argument.comes_back:
        notes.append("comes back in a ByRef")
    if argument.optional:
        notes.append("may be left out")
    return f"    {argument.name} ({', '.join(notes)}): {argument.help}\n"


def _documentation(member: Member) -> str:
    """The help text of a member and of its arguments."""
    if not member.arguments:
        return member.help
    return f"{member.help}\n\nArguments:\n" + "".join(map(_argument_line, member.arguments))


# ---- members --------------------------------------------------------------------------------------------------


class Indexed:
    """A property with arguments, of one object: call it, or index it."""

    __module__ = "oxclass"

    def __init__(self, owner: Object, member: Member, put: Optional[Member]) -> None:
        self._owner, self._member, self._put, self.__name__ = owner, member, put, member.name
        self.__doc__, self.__signature__ = _documentation(member), _signature(member, of_method=False)

    def __call__(self, *arguments: Any, **keywords: Any) -> Any:
        return invoke(self._owner, self._member, arguments, keywords)

    def __getitem__(self, key: Any) -> Any:
        return self(*key) if isinstance(key, tuple) else self(key)

    def __setitem__(self, key: Any, value: Any) -> None:
        if self._put is None:
            raise no_member(self._owner, self._member.name, "can only be read at")
        invoke(self._owner, self._put, (*key, value) if isinstance(key, tuple) else (key, value))

    def __repr__(self) -> str:
        return f"<property {self._member.name} of {self._owner!r}>"


def _operation(member: Member) -> Callable[..., Any]:
    def call(self: Object, *arguments: Any, **keywords: Any) -> Any:
        return invoke(self, member, arguments, keywords)

    call.__name__ = call.__qualname__ = member.name
    call.__doc__ = _documentation(member)
    call.__signature__ = _signature(member)  # type: ignore[attr-defined]
    return call


def _getter(member: Member, put: Optional[Member], table: int) -> Callable[[Object], Any]:
    if member.arguments:
        return lambda self: Indexed(self, member, put)
    return _slots.getter(table, member) or (lambda self: invoke(self, member))


def _no_getter(name: str) -> Callable[[Object], Any]:
    def get(self: Object) -> Any:
        raise no_member(self, name, "can only be assigned at")

    return get


def _setter(puts: Dict[str, Member], table: int) -> Callable[[Object, Any], None]:
    by_value, by_reference = puts.get("put"), puts.get("putref")

    def put(self: Object, value: Any) -> None:
        member = by_reference if by_value is None or (by_reference and isinstance(value, Object)) else by_value
        assert member is not None
        invoke(self, member, (value,))

    return _slots.setter(table, by_value, put) if by_value and not by_reference else put


def _property(name: str, kinds: Dict[str, Member], table: int) -> property:
    get = kinds.get("get")
    puts = {kind: member for kind, member in kinds.items() if kind in ("put", "putref")}
    if get is not None and get.arguments:
        text = f"{name}{_signature(get, of_method=False)}\n\n{_documentation(get)}"
    else:
        shown = get or next(iter(puts.values()))
        type = get.result if get else shown.arguments[-1].type
        text = f"{shown.help} ({_word(type)}{'' if puts and get else ', assigned only' if puts else ', read only'})"
    first_put = next(iter(puts.values()), None)
    return property(_getter(get, first_put, table) if get else _no_getter(name),
                    _setter(puts, table) if puts else None, doc=text)


# ---- special methods ------------------------------------------------------------------------------------------


def _default(member: Member) -> Callable[..., Any]:
    """Calling an object calls its default member; where that takes no arguments, the default member of its result."""

    def call(self: Object, *arguments: Any, **keywords: Any) -> Any:
        if member.arguments or not (arguments or keywords):
            return invoke(self, member, arguments, keywords)
        return invoke(self, member)(*arguments, **keywords)

    call.__name__, call.__doc__ = "__call__", f"The default member: {member.name}."
    if member.arguments:
        call.__signature__ = _signature(member)  # type: ignore[attr-defined]
    return call


def _index(call: Callable[..., Any], member: Member) -> Callable[[Object, Any], Any]:
    def __getitem__(self: Object, key: Any) -> Any:
        return call(self, *key) if isinstance(key, tuple) else call(self, key)

    __getitem__.__doc__ = f"By position, from 1, or by key: as {member.name}."
    return __getitem__


def _length(count: Member) -> Callable[[Object], int]:
    def __len__(self: Object) -> int:
        return invoke(self, count)

    return __len__


def _iterate(iterate: Member) -> Callable[[Object], Any]:
    def __iter__(self: Object) -> Any:
        return invoke(self, iterate)

    return __iter__


def _reversed(self: Object) -> Any:
    """The members from the last to the first."""
    return reversed(list(self))


def _find(members: Iterable[Member], kinds: str, name: str = "", id: Optional[int] = None) -> Optional[Member]:
    for member in members:
        if member.kind in kinds.split() and (member.id == id if id is not None else member.name == name):
            return member
    return None


def _protocols(members: List[Member]) -> Dict[str, Any]:
    """Calling, indexing, ``len`` and ``for``, as far as the members have them."""
    readable = "get operation"
    found: Dict[str, Any] = {"__iter__": None, "__reversed__": None}
    default = _find(members, readable, id=binary.DISPID_VALUE)
    if default is not None:
        found["__call__"] = _default(default)
        if default.arguments or default.result.kind == "object":
            found["__getitem__"] = _index(found["__call__"], default)
    item = _find(members, readable, name="Item")
    if default is None and item is not None:
        found["__getitem__"] = _index(_default(item), item)
    count, iterate = _find(members, readable, name="Count"), _find(members, readable, id=binary.DISPID_NEWENUM)
    if count is not None and not count.arguments:
        found["__len__"] = _length(count)
    if iterate is not None:
        found["__iter__"], found["__reversed__"] = _iterate(iterate), _reversed
    return found


# ---- classes --------------------------------------------------------------------------------------------------


def build(description: Dict[str, Any], table: int) -> type:
    """Returns the Python class for the description of an object by OxDescribe, whose vtable is ``table``."""
    members = [member_of(described, position) for position, described in enumerate(description["members"])]
    by_name: Dict[str, Dict[str, Member]] = {}
    for member in members:
        by_name.setdefault(member.name, {})[member.kind] = member
    space: Dict[str, Any] = {
        "__module__": "oxclass", "__slots__": (), "__doc__": description["help"],
        "_names": {name.lower(): name for name in by_name}
    }
    for name, kinds in by_name.items():
        space[name] = _operation(kinds["operation"]) if "operation" in kinds else _property(name, kinds, table)
    space["_puts"] = {name: member.fset for name, member in space.items() if isinstance(member, property) and member.fset}
    space.update(_protocols(members))
    return type(description["class"], (Object,), space)


_lock = threading.Lock()
_by_table: Dict[int, type] = {}


def class_of(pointer: int) -> type:
    """Returns the Python class of an object. All objects of a class share one vtable, which never changes."""
    table = binary.table_of(pointer)
    found = _by_table.get(table)
    if found is not None:
        return found
    described, functions = c_void_p(), library()
    code = functions.OxDescribe(pointer, described)
    if code == E_NOINTERFACE:
        return Opaque  # an object of another program
    functions.check(code)
    description = json.loads(functions.take_text(described.value))
    with _lock:
        if table not in _by_table:
            _by_table[table] = build(description, table)
        return _by_table[table]


_objects.class_of = class_of
