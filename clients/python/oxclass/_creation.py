"""Objects by the names of their classes."""
from __future__ import annotations

import ctypes
from ctypes import c_void_p
from typing import Any

from ._errors import CANNOT_CREATE, Error
from ._library import library
from ._objects import wrap_owned


def _made(make: Any, name: str) -> Any:
    if not isinstance(name, str):
        raise TypeError(f"the name of a class is a text such as 'OXClass.cPatient', not {name!r}")
    if "\0" in name:
        raise Error(CANNOT_CREATE, "oxclass", f"no class has a zero character in its name: {name!r}")
    functions, made = library(), c_void_p()
    text = ctypes.create_string_buffer(name.encode("utf-16-le", "replace") + b"\0\0")
    functions.check(make(functions)(text, made))
    return wrap_owned(made.value)


def CreateObject(name: str) -> Any:
    """Makes an object of a class: "OXClass.cPatient" and the other classes of the library, "ADODB.Connection",
    "ADODB.Recordset", or "Collection" for a plain keyed collection. Names are taken in any case. Raises ``Error``
    429 for a name that no class has."""
    return _made(lambda functions: functions.OxCreateObject, name)


def Global(name: str) -> Any:
    """Returns the one object of a global class on this thread, such as "OXClass.cGlobalList". Raises ``Error``
    429 for a class that isn't global."""
    return _made(lambda functions: functions.OxGlobal, name)
