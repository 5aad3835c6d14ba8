#!/usr/bin/env python3
"""Makes the enumerations and the typed stubs of the package from the type description of the library.

    oxclass idl --json > OXClass.json
    python3 generate.py OXClass.json           # writes the files, all or none
    python3 generate.py OXClass.json --check   # writes nothing; fails and names the files that differ
"""
from __future__ import annotations

import argparse
import json
import keyword
import os
import sys
import tempfile
from pathlib import Path
from typing import Any, Dict, Iterable, List

PACKAGE = Path(__file__).resolve().parent / "oxclass"
MADE = "# Made by generate.py from the type description of the library; changes by hand get lost.\n"
PUBLIC = ("ByRef", "CreateObject", "Error", "Global", "Missing", "Null", "Object", "OnMsgBox", "Subscription",
          "WithEvents")
#: Classes of the host that CreateObject makes, by the name that it takes.
HOST_NAMES = {"Connection": "ADODB.Connection", "Recordset": "ADODB.Recordset", "Collection": "Collection"}

Description = Dict[str, Any]


def enumerations_of(description: Description) -> List[Description]:
    return description["enumerations"] + description["host"]["enumerations"]


# ---- names ----------------------------------------------------------------------------------------------------


def python_name(name: str) -> str:
    return name + "_" if keyword.iskeyword(name) else name


def check_names(description: Description) -> None:
    """Enumerations and their values are in one module: rejects a name with two meanings."""
    seen = {name: "a name of the package" for name in PUBLIC}
    for enumeration in enumerations_of(description):
        names = {enumeration["name"]: "an enumeration"}
        names.update({value["name"]: f"a value of {enumeration['name']}" for value in enumeration["values"]})
        for name, what in names.items():
            if name in seen:
                raise SystemExit(f"{name} would be both {seen[name]} and {what}")
            if hasattr(int, name) or name in ("name", "value", "mro"):
                raise SystemExit(f"{name}, {what}, would hide an attribute of int")
        seen.update(names)


# ---- _enumerations.py -----------------------------------------------------------------------------------------


def enumeration_text(enumeration: Description) -> str:
    name = python_name(enumeration["name"])
    values = [(python_name(value["name"]), value["value"]) for value in enumeration["values"]]
    text = f"\n\nclass {name}(enum.IntEnum):\n"
    text += "".join(f"    {value} = {number}\n" for value, number in values) + "\n\n"
    return text + "".join(f"{value} = {name}.{value}\n" for value, _ in values)


def enumerations_text(description: Description) -> str:
    names = []
    for enumeration in enumerations_of(description):
        names += [enumeration["name"]] + [value["name"] for value in enumeration["values"]]
    text = '"""The documented enumerations, and their values by name."""\n' + MADE + "import enum\n\n__all__ = [\n"
    text += "".join(f'    "{python_name(name)}",\n' for name in names) + "]\n"
    return text + "".join(map(enumeration_text, enumerations_of(description)))


# ---- _described.pyi -------------------------------------------------------------------------------------------
# Classes and built-in types are qualified with their modules, since members have such names, too.

HEAD = '''"""The classes of the library and of its host, for editors and type checkers."""
''' + MADE + '''import builtins
import datetime
import typing

from . import _described as classes
from . import _enumerations as enumerations
from . import ByRef, Object
'''

TYPES = {"none": "None", "boolean": "builtins.bool", "short": "builtins.int", "long": "builtins.int",
         "single": "builtins.float", "double": "builtins.float", "date": "datetime.datetime", "text": "builtins.str",
         "variant": "typing.Any"}


class Stubs:
    """The stub text of the classes."""

    def __init__(self, description: Description) -> None:
        self.all = description["classes"] + description["host"]["classes"]
        self.names = {described["class"] for described in self.all}

    def type(self, kind: str, of: str) -> str:
        if kind in TYPES:
            return TYPES[kind]
        if kind == "enumeration":
            return f"enumerations.{of}"
        if of == "Enumerator":
            return "typing.Iterator[typing.Any]"
        return f"classes.{of}" if of in self.names else "typing.Any"

    def taken(self, kind: str, of: str) -> str:
        """The type of a value that is passed: a day for a date, a number for an enumeration, None for an object."""
        if kind == "date":
            return "datetime.date"
        if kind == "enumeration":
            return f"typing.Union[enumerations.{of}, builtins.int]"
        type = "Object" if of == "Collection" else self.type(kind, of)  # every collection is accepted as a plain one
        return f"typing.Optional[{type}]" if kind == "object" and type != "typing.Any" else type

    def argument(self, argument: Description, has_default: bool) -> str:
        kind, of = argument["type"], argument.get("of", "")
        type = self.taken(kind, of)
        if argument["comesBack"]:
            type = f"typing.Union[{type}, ByRef[{self.type(kind, of)}]]"
        return f"{python_name(argument['name'])}: {type}" + (" = ..." if has_default else "")

    def arguments(self, member: Description) -> str:
        texts, behind_optional = ["self"], False
        for argument in member["arguments"]:
            behind_optional = behind_optional or argument["optional"]
            texts.append(self.argument(argument, behind_optional))
        return ", ".join(texts)

    def result(self, member: Description) -> str:
        return self.type(member["result"], member.get("resultOf", ""))

    @staticmethod
    def documentation(member: Description) -> str:
        """The help text of a member and of its arguments, as a docstring."""
        if not member["arguments"]:
            return f'        """{member["help"]}"""\n'
        lines = "".join(f"            {argument['name']}: {argument['help']}\n" for argument in member["arguments"])
        return f'        """{member["help"]}\n\n        Arguments:\n{lines}        """\n'

    def operation(self, member: Description, name: str = "") -> str:
        head = f"    def {name or member['name']}({self.arguments(member)}) -> {self.result(member)}:"
        return f"{head}\n{self.documentation(member)}"

    def property(self, name: str, kinds: Dict[str, Description]) -> str:
        if "get" in kinds and kinds["get"]["arguments"]:
            return self.operation(kinds["get"])
        put = kinds.get("put") or kinds.get("putref")
        value = put["arguments"][-1] if put else {}
        type = self.result(kinds["get"]) if "get" in kinds else self.type(value["type"], value.get("of", ""))
        help = (kinds.get("get") or put)["help"]
        text = f'    @builtins.property\n    def {name}(self) -> {type}:\n        """{help}"""\n'
        if put:
            taken = self.taken(value["type"], value.get("of", ""))
            text += f"    @{name}.setter\n    def {name}(self, Value: {taken}) -> None: ...\n"
        return text

    def default_of(self, described: Description) -> Any:
        """The member that calling an object calls, through objects whose default takes no arguments."""
        for member in described["members"]:
            if member["id"] == 0 and member["kind"] in ("get", "operation"):
                inner = [other for other in self.all if other["class"] == member.get("resultOf")]
                if not member["arguments"] and inner:
                    return self.default_of(inner[0])
                return member
        return None

    def protocols(self, described: Description) -> str:
        text, default = "", self.default_of(described)
        item = next((member for member in described["members"] if member["name"] == "Item"), None)
        if default:
            text += self.operation(default, "__call__")
        if (default or item) and (default or item)["arguments"]:
            text += f"    def __getitem__(self, key: typing.Any) -> {self.result(default or item)}: ...\n"
        if any(member["name"] == "Count" for member in described["members"]):
            text += "    def __len__(self) -> builtins.int: ...\n"
        if any(member["id"] == -4 for member in described["members"]):
            item_type = self.result(item) if item else "typing.Any"
            text += f"    def __iter__(self) -> typing.Iterator[{item_type}]: ...\n"
        return text

    def class_text(self, described: Description) -> str:
        by_name: Dict[str, Dict[str, Description]] = {}
        for member in described["members"]:
            by_name.setdefault(member["name"], {})[member["kind"]] = member
        text = ""
        for name, kinds in by_name.items():
            text += self.operation(kinds["operation"]) if "operation" in kinds else self.property(name, kinds)
        text += self.protocols(described)
        return f"\n\nclass {described['class']}(Object):\n    \"\"\"{described['help']}\"\"\"\n{text}"

    def text(self) -> str:
        return HEAD + "".join(map(self.class_text, self.all))


# ---- __init__.pyi ---------------------------------------------------------------------------------------------

PUBLIC_STUB = '''

_T = typing.TypeVar("_T")


class Error(Exception):
    Number: int
    Source: str
    Description: str

    def __init__(self, Number: int = ..., Source: str = ..., Description: str = ...) -> None: ...


class ByRef(typing.Generic[_T]):
    value: _T

    def __init__(self, value: _T = ...) -> None: ...


class Object: ...


class Subscription:
    handler: typing.Any

    def close(self) -> None: ...
    def __enter__(self) -> Subscription: ...
    def __exit__(self, *failure: typing.Any) -> None: ...


Null: typing.Any
Missing: typing.Any
__version__: str


def OnMsgBox(handler: typing.Optional[typing.Callable[[str], typing.Any]]) -> None: ...
def WithEvents(connection: Connection, handler: typing.Any) -> Subscription: ...
'''


def creators_text(function: str, classes: Dict[str, str]) -> str:
    text = "\n\n"
    for name, type in classes.items():
        text += f'@typing.overload\ndef {function}(name: typing.Literal["{name}"]) -> {type}: ...\n'
    return text + f"@typing.overload\ndef {function}(name: str) -> typing.Any: ...\n"


def package_stub(description: Description) -> str:
    own = {described["name"]: described["class"] for described in description["classes"]}
    shared = {described["name"]: described["class"] for described in description["classes"] if described["global"]}
    host = [described["class"] for described in description["host"]["classes"]]
    made = {HOST_NAMES[name]: name for name in host if name in HOST_NAMES}
    text = MADE + "import typing\n\nfrom ._enumerations import *\n"
    text += "".join(f"from ._described import {name} as {name}\n"
                    for name in list(own.values()) + host if name not in PUBLIC)
    return text + PUBLIC_STUB + creators_text("CreateObject", {**made, **own}) + creators_text("Global", shared)


# ---- files ----------------------------------------------------------------------------------------------------


def files_of(description: Description) -> Dict[str, str]:
    check_names(description)
    return {"_enumerations.py": enumerations_text(description), "_described.pyi": Stubs(description).text(),
            "__init__.pyi": package_stub(description)}


def differing(files: Dict[str, str]) -> Iterable[str]:
    for name, text in files.items():
        path = PACKAGE / name
        if not path.is_file() or path.read_text(encoding="utf-8") != text:
            yield name


def write(files: Dict[str, str]) -> None:
    """Writes all files to a temporary folder, then moves them to their places."""
    with tempfile.TemporaryDirectory(dir=PACKAGE.parent) as folder:
        for name, text in files.items():
            (Path(folder) / name).write_text(text, encoding="utf-8")
        for name in files:
            os.replace(Path(folder) / name, PACKAGE / name)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("description", help="what `oxclass idl --json` printed")
    parser.add_argument("--check", action="store_true", help="write nothing, and fail if a file would change")
    given = parser.parse_args()
    files = files_of(json.loads(Path(given.description).read_text(encoding="utf-8")))
    if not given.check:
        write(files)
        return 0
    different = list(differing(files))
    for name in different:
        print(f"{PACKAGE / name} differs from the type description: run generate.py", file=sys.stderr)
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
