"""The exception class of the package, and the conversion of return codes to it."""
from __future__ import annotations

from typing import Any, Dict

S_OK = 0
E_NOTIMPL = -2147467263
E_NOINTERFACE = -2147467262
E_FAIL = -2147467259
E_OUTOFMEMORY = -2147024882
DISP_E_EXCEPTION = -2147352567
DISP_E_MEMBERNOTFOUND = -2147352573
DISP_E_UNKNOWNNAME = -2147352570
DISP_E_PARAMNOTFOUND = -2147352572
RPC_E_WRONG_THREAD = -2147417842

OVERFLOW = 6
OUT_OF_BOUNDS = 9
TYPE_MISMATCH = 13
LIBRARY_UNUSABLE = 48
FILE_NOT_FOUND = 53
CANNOT_CREATE = 429
OBJECT_NOT_SET = 91
NO_SUCH_MEMBER = 438

_OF_THE_RUNTIME = 0x800A0000

#: Standard return codes that have a short number of the runtime.
_SHORT_NUMBERS: Dict[int, int] = {
    0x80020003: NO_SUCH_MEMBER,  # no member of this number and kind
    0x80020005: TYPE_MISMATCH,
    0x80020006: NO_SUCH_MEMBER,  # no member of this name
    0x80020008: TYPE_MISMATCH,  # a variant of a type that isn't taken
    0x8002000A: OVERFLOW,
    0x8002000E: 450,
    0x8002000F: 449,
    0x8007000E: 7,
}

_TEXTS: Dict[int, str] = {
    OVERFLOW: "Overflow",
    7: "Out of memory",
    TYPE_MISMATCH: "Type mismatch",
    429: "There is no class of this name, or its library can't be loaded",
    NO_SUCH_MEMBER: "The object has no such member",
    449: "An argument that may not be left out is missing",
    450: "Wrong number of arguments, or a property that can only be read",
    RPC_E_WRONG_THREAD: "An object is used only on the thread that made it. Make another object on this thread",
}


class Error(Exception):
    """A failure of an object, of the database layer or of an engine.

    ``Number`` is short for failures of the runtime (6 overflow, 13 type mismatch, 94 null) and of the database
    layer (3265 no such column, 3704 closed), and the full signed number for what a database engine reports
    (-2147217865, no such table). ``Source`` names the class or layer that failed, ``Description`` the failure.
    """

    __module__ = "oxclass"

    def __init__(self, Number: int = 0, Source: str = "", Description: str = "") -> None:
        super().__init__(Number, Source, Description)
        self.Number = Number
        self.Source = Source
        self.Description = Description

    def __str__(self) -> str:
        where = f", {self.Source}" if self.Source else ""
        return f"{self.Description} (error {self.Number}{where})"


class MemberError(Error, AttributeError):
    """A name that an object doesn't have, or that can't be set: an ``Error`` with the number 438, and an
    ``AttributeError`` so that ``hasattr`` and ``getattr`` with a default work."""


def number_of(code: int) -> int:
    """Returns the number that clients read for a return code."""
    unsigned = code & 0xFFFFFFFF
    if unsigned & 0xFFFF0000 == _OF_THE_RUNTIME:
        return unsigned & 0xFFFF
    if unsigned in _SHORT_NUMBERS:
        return _SHORT_NUMBERS[unsigned]
    return unsigned - 0x100000000 if unsigned & 0x80000000 else unsigned


def code_of(number: int) -> int:
    """Returns the return code of a number that clients read."""
    if number < 0:
        return number
    return (_OF_THE_RUNTIME | number) - 0x100000000 if 0 < number <= 0xFFFF else E_FAIL


def error_of(code: int, source: str = "", description: str = "") -> Error:
    """Returns the ``Error`` for a return code. An empty description is replaced by the standard text of the number."""
    number = number_of(code)
    if not description:
        description = _TEXTS.get(number, f"The call failed with the return code 0x{code & 0xFFFFFFFF:08X}")
    return Error(number, source or "oxclass", description)


def no_member(owner: Any, name: str, what: str = "has no member") -> MemberError:
    """Returns the ``Error`` for a name that an object's class doesn't have."""
    return MemberError(NO_SUCH_MEMBER, type(owner).__name__, f"{type(owner).__name__} {what} {name!r}")
