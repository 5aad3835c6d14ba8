"""Finding and loading the two libraries, on first use.

``libOXClass.so`` has the classes; ``liboxplatform.so`` in the same folder has the component model and the
database layer. The search ends at the first place that has them:

1. ``OXCLASS_LIBRARY``, a file or a folder. If it is set, nothing else is searched.
2. Beside the package: its own folder, the folder above, and the ``lib`` folders of the installation that it is
   part of.
3. The system: what the loader finds by name, then the usual library folders.
"""
from __future__ import annotations

import ctypes
import os
import sysconfig
import threading
from ctypes import POINTER, c_char_p, c_int32, c_uint32, c_void_p
from pathlib import Path
from typing import Any, Iterator, List, NoReturn, Optional, Tuple

from . import _binary as binary
from ._errors import E_OUTOFMEMORY, FILE_NOT_FOUND, LIBRARY_UNUSABLE, Error, error_of

CLASSES = "libOXClass.so"
PLATFORM = "liboxplatform.so"
VARIABLE = "OXCLASS_LIBRARY"


class Library:
    """The functions of the loaded libraries."""

    def __init__(self, platform: ctypes.CDLL) -> None:
        def function(name: str, result: Any, *arguments: Any) -> Any:
            found = getattr(platform, name)
            found.restype, found.argtypes = result, arguments
            return found

        text, out, variant = c_void_p, POINTER(c_void_p), POINTER(binary.VARIANT)
        self.OxCreateObject = function("OxCreateObject", c_int32, c_void_p, out)
        self.OxGlobal = function("OxGlobal", c_int32, c_void_p, out)
        self.OxUseLibrary = function("OxUseLibrary", c_int32, c_char_p)
        self.OxDescribe = function("OxDescribe", c_int32, c_void_p, out)
        self.OxSetMsgBox = function("OxSetMsgBox", c_int32, binary.MsgBoxHandler, c_void_p)
        self.OxAdvise = function("OxAdvise", c_int32, c_void_p, POINTER(binary.OxConnectionEvents), c_void_p,
                                 POINTER(c_uint32))
        self.OxUnadvise = function("OxUnadvise", c_int32, c_void_p, c_uint32)
        self.GetErrorInfo = function("GetErrorInfo", c_int32, c_uint32, out)
        self.SysAllocStringLen = function("SysAllocStringLen", text, ctypes.c_char_p, c_uint32)
        self.SysFreeString = function("SysFreeString", None, text)
        self.SysStringByteLen = function("SysStringByteLen", c_uint32, text)
        self.VariantClear = function("VariantClear", c_int32, variant)
        self.SafeArrayCreateVector = function("SafeArrayCreateVector", c_void_p, ctypes.c_uint16, c_int32, c_uint32)
        self.SafeArrayDestroy = function("SafeArrayDestroy", c_int32, c_void_p)
        self.SafeArrayAccessData = function("SafeArrayAccessData", c_int32, c_void_p, out)
        self.SafeArrayUnaccessData = function("SafeArrayUnaccessData", c_int32, c_void_p)
        self.SafeArrayGetDim = function("SafeArrayGetDim", c_uint32, c_void_p)
        self.SafeArrayGetLBound = function("SafeArrayGetLBound", c_int32, c_void_p, c_uint32, POINTER(c_int32))
        self.SafeArrayGetUBound = function("SafeArrayGetUBound", c_int32, c_void_p, c_uint32, POINTER(c_int32))
        self.SafeArrayGetVartype = function("SafeArrayGetVartype", c_int32, c_void_p, POINTER(ctypes.c_uint16))

    # ---- texts --------------------------------------------------------------------------------------

    def new_text(self, text: str) -> int:
        """Returns a BSTR, which the caller frees. An unpaired surrogate becomes U+FFFD."""
        try:
            units = text.encode("utf-16-le")
        except UnicodeEncodeError:
            units = text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace").encode("utf-16-le")
        made = self.SysAllocStringLen(units, len(units) // 2)
        if not made:
            raise error_of(E_OUTOFMEMORY)
        return made

    def text_of(self, pointer: Optional[int]) -> str:
        """Returns the text of a BSTR, which the caller keeps."""
        if not pointer:
            return ""
        units = ctypes.string_at(pointer, self.SysStringByteLen(pointer))
        return units.decode("utf-16-le", "replace")

    def take_text(self, pointer: Optional[int]) -> str:
        """Returns the text of a BSTR, and frees the BSTR."""
        try:
            return self.text_of(pointer)
        finally:
            self.SysFreeString(pointer)

    # ---- failures -----------------------------------------------------------------------------------

    def check(self, code: int) -> None:
        """Raises the thread's error record if a return code is a failure."""
        if code < 0:
            raise self.recorded(code)

    def recorded(self, code: int) -> Error:
        """Returns the ``Error`` for a return code with the texts of the thread's error record, which it clears."""
        record = c_void_p()
        if self.GetErrorInfo(0, record) != 0 or not record.value:
            return error_of(code)
        try:
            source, description = binary.error_texts(record.value)
        finally:
            binary.release(record.value)
        return error_of(code, self.take_text(source), self.take_text(description))


# ---- places ---------------------------------------------------------------------------------------------------


def _multiarch() -> str:
    return sysconfig.get_config_var("MULTIARCH") or ""


def _library_folders(prefix: Path) -> List[Path]:
    folders = [prefix / "lib", prefix / "lib64"]
    if _multiarch():
        folders.insert(1, prefix / "lib" / _multiarch())
    return folders


def _beside() -> List[Path]:
    """The package's folder, the one above, and the ``lib`` folders of PREFIX for PREFIX/share/oxclass/python."""
    package = Path(__file__).resolve().parent
    folders = [package, package.parent]
    if package.parts[-4:-1] == ("share", "oxclass", "python"):
        folders += _library_folders(package.parents[3])
    return folders


def _system() -> List[Path]:
    return _library_folders(Path("/usr/local")) + _library_folders(Path("/usr"))


def _named() -> Optional[Path]:
    """Returns the file that OXCLASS_LIBRARY names, or None if it isn't set."""
    given = os.environ.get(VARIABLE, "")
    if not given:
        return None
    path = Path(given)
    return path / CLASSES if path.is_dir() else path


# ---- loading --------------------------------------------------------------------------------------------------


def _use(platform: str, classes: str) -> Library:
    """Loads both libraries; raises the loader's error."""
    try:
        library = Library(ctypes.CDLL(platform))
    except AttributeError as missing:
        raise OSError(f"{platform} is of another version: {missing}") from missing
    library.check(library.OxUseLibrary(os.fsencode(classes)))
    return library


def _load_file(classes: Path) -> Library:
    classes = classes.absolute()
    try:
        return _use(str(classes.with_name(PLATFORM)), str(classes))
    except (OSError, Error) as failure:
        why = failure.Description if isinstance(failure, Error) else str(failure)
        raise Error(LIBRARY_UNUSABLE, "oxclass", f"{classes} can't be loaded: {why}. It needs {PLATFORM} of the same "
                    f"build in the same folder, and a Python for the same machine architecture") from failure


def _load_by_name() -> Optional[Library]:
    """Loads the libraries that the loader finds by name; returns None if it finds none."""
    try:
        ctypes.CDLL(CLASSES)
    except OSError as failure:
        if "No such file" in str(failure) and CLASSES in str(failure).split(":")[0]:
            return None
        raise Error(LIBRARY_UNUSABLE, "oxclass", f"{CLASSES} of the system can't be loaded: {failure}") from failure
    try:
        return _use(PLATFORM, CLASSES)
    except OSError as failure:
        raise Error(LIBRARY_UNUSABLE, "oxclass", f"{PLATFORM} of the system can't be loaded: {failure}") from failure


def _places() -> Iterator[Tuple[str, Optional[Path]]]:
    """Yields the places to search after OXCLASS_LIBRARY: a name, and the file, or None for the loader's search."""
    for folder in _beside():
        yield str(folder), folder / CLASSES
    yield "the loader's search by name", None
    for folder in _system():
        yield str(folder), folder / CLASSES


def _not_found(places: List[str]) -> NoReturn:
    raise Error(FILE_NOT_FOUND, "oxclass",
                f"{CLASSES} was not found. Looked in:\n" + "".join(f"  {place}\n" for place in places) +
                f"Set {VARIABLE} to the folder that has {CLASSES} and {PLATFORM}, or install the library")


def _find() -> Library:
    named = _named()
    if named is not None:
        if not named.is_file():
            raise Error(FILE_NOT_FOUND, "oxclass",
                        f"{VARIABLE} is {os.environ[VARIABLE]!r}, and there is no file {named}. Set it to "
                        f"{CLASSES} or to the folder that has it, or unset it to have the usual places searched")
        return _load_file(named)
    looked = []
    for name, file in _places():
        looked.append(name)
        if file is not None:
            if file.is_file():
                return _load_file(file)
            continue
        found = _load_by_name()
        if found is not None:
            return found
    _not_found(looked)


_lock = threading.Lock()
_loaded: Optional[Library] = None


def library() -> Library:
    """The loaded libraries; loads them at the first call, and tries again after a failure."""
    global _loaded
    if _loaded is None:
        with _lock:
            if _loaded is None:
                _loaded = _find()
    return _loaded


def loaded() -> Optional[Library]:
    """The libraries if they are loaded already."""
    return _loaded
