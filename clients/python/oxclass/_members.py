"""The described members of a class, and calls of them."""
from __future__ import annotations

import ctypes
from ctypes import c_int32
from typing import Any, Dict, List, NamedTuple, Optional, Sequence, Tuple

from . import _binary as binary
from ._binary import DISPPARAMS, EXCEPINFO, VARIANT
from ._errors import DISP_E_EXCEPTION, Error, error_of
from ._events import calling
from ._library import library
from ._values import ANY, ByRef, Missing, Returning, Type, fill, take

FLAGS = {
    "operation": binary.DISPATCH_METHOD,
    "get": binary.DISPATCH_PROPERTYGET,
    "put": binary.DISPATCH_PROPERTYPUT,
    "putref": binary.DISPATCH_PROPERTYPUTREF,
}


class Argument(NamedTuple):
    name: str
    type: Type
    by_reference: bool
    comes_back: bool
    optional: bool
    help: str


class Member(NamedTuple):
    """One member: an operation, or the get, put or putref of a property. A put's value is its last argument."""

    name: str
    kind: str
    id: int
    arguments: Tuple[Argument, ...]
    result: Type
    help: str
    position: int  # among the members of the class, from 0


def member_of(described: Dict[str, Any], position: int) -> Member:
    """Returns a member from its description by OxDescribe."""
    arguments = tuple(
        Argument(argument["name"], Type(argument["type"], argument.get("of", "")), argument["byReference"],
                 argument["comesBack"], argument["optional"], argument["help"]) for argument in described["arguments"])
    result = Type(described["result"], described.get("resultOf", ""))
    return Member(described["name"], described["kind"], c_int32(described["id"]).value, arguments, result,
                  described["help"], position)


def bind(member: Member, given: Tuple[Any, ...], named: Dict[str, Any]) -> Sequence[Any]:
    """Returns the arguments given by position and by name, in the member's order."""
    if not named:
        return given
    names = [argument.name.lower() for argument in member.arguments]
    bound: List[Any] = list(given)
    for name, value in named.items():
        if name.lower() not in names:
            known = ", ".join(argument.name for argument in member.arguments) or "none"
            raise TypeError(f"{member.name}() has no argument {name!r}; it takes: {known}")
        place = names.index(name.lower())
        bound.extend([Missing] * (place + 1 - len(bound)))
        if place < len(given) or bound[place] is not Missing:
            raise TypeError(f"{member.name}() got the argument {member.arguments[place].name!r} twice")
        bound[place] = value
    return bound


class _Arguments:
    """The variants of one call's arguments, the last argument first."""

    def __init__(self, member: Member, given: Sequence[Any]) -> None:
        self._variants = (VARIANT * len(given))()
        self._returning: List[Returning] = []
        self._named = c_int32(binary.DISPID_PROPERTYPUT)
        try:
            for place, value in enumerate(given):
                type = member.arguments[place].type if place < len(member.arguments) else ANY
                self._fill(self._variants[len(given) - 1 - place], value, type)
        except BaseException:
            self.clear()
            raise

    def _fill(self, variant: VARIANT, value: Any, type: Type) -> None:
        if isinstance(value, ByRef):
            self._returning.append(Returning(value, type, variant))
        else:
            fill(variant, value, type)

    def parameters(self, is_put: bool) -> DISPPARAMS:
        parameters = DISPPARAMS(rgvarg=self._variants, cArgs=len(self._variants))
        if is_put:
            parameters.rgdispidNamedArgs, parameters.cNamedArgs = ctypes.pointer(self._named), 1
        return parameters

    def come_back(self) -> None:
        for returning in self._returning:
            returning.come_back()

    def clear(self) -> None:
        clear = library().VariantClear
        for variant in self._variants:
            clear(variant)
        for returning in self._returning:
            returning.clear()


def _failure_of(code: int, info: EXCEPINFO) -> Error:
    functions = library()
    if code != DISP_E_EXCEPTION:
        return functions.recorded(code)
    functions.SysFreeString(info.bstrHelpFile)
    source, description = functions.take_text(info.bstrSource), functions.take_text(info.bstrDescription)
    return error_of(info.scode or info.wCode or code, source, description)


def invoke(target: Any, member: Member, given: Sequence[Any] = (), named: Optional[Dict[str, Any]] = None) -> Any:
    """Calls a member of an object; returns its result, and stores the new value in each ``ByRef``."""
    pointer = target._reference.here()
    arguments = _Arguments(member, bind(member, tuple(given), named or {}))
    result, info = VARIANT(), EXCEPINFO()
    try:
        with calling(target._reference.owner):
            code = binary.invoke(pointer, member.id, FLAGS[member.kind],
                                 arguments.parameters(member.kind in ("put", "putref")), result, info)
            if code < 0:
                raise _failure_of(code, info)
        arguments.come_back()
        return take(result, member.result)
    finally:
        if result.vt:
            library().VariantClear(result)  # a result that was stored although the call failed
        arguments.clear()
