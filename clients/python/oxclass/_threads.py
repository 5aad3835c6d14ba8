"""Whose thread an object is, and letting objects go on it.

An interface pointer is used and released on the thread that got it. A proxy may be dropped anywhere, by the garbage
collector too: it is then released at the next call on its own thread, or at once if that thread has ended.
"""
from __future__ import annotations

import atexit
import collections
import threading
import weakref
from typing import Any, Deque, Dict, Optional, Set

from . import _binary as binary
from ._errors import OBJECT_NOT_SET, RPC_E_WRONG_THREAD, Error, error_of


class Hold(weakref.ref):
    """One reference to an object: dies with the proxy, and is let go on the right thread then."""

    __slots__ = ("pointer", "home")
    __eq__ = object.__eq__
    __hash__ = object.__hash__

    pointer: int
    home: Home

    def __new__(cls, proxy: Any, home: Home, pointer: int) -> Hold:
        hold = super().__new__(cls, proxy, _dropped)
        hold.home, hold.pointer = home, pointer
        return hold

    def __init__(self, proxy: Any, home: Home, pointer: int) -> None:
        super().__init__(proxy, _dropped)

    def here(self) -> int:
        """The pointer, for a call on this thread; raises on any other thread."""
        if self.home is not current():
            raise error_of(RPC_E_WRONG_THREAD)
        if not self.pointer:
            raise Error(OBJECT_NOT_SET, "oxclass", "The program is ending, and its objects are gone")
        if self.home.left:
            self.home.drain()
        return self.pointer


class Home:
    """The objects of one thread."""

    def __init__(self) -> None:
        self.holds: Set[Hold] = set()
        self.latest: Dict[int, Hold] = {}
        self.left: Deque[Hold] = collections.deque()
        self.ended = False
        self.closed = False
        self.cancelled: Optional[BaseException] = None  # what a WillExecute of the call under way raised
        self._draining = threading.Lock()

    def proxy_of(self, pointer: int) -> Any:
        """The living proxy of a pointer, or nothing."""
        hold = self.latest.get(pointer)
        return hold() if hold is not None else None

    def adopt(self, proxy: Any, pointer: int) -> Hold:
        """Makes `proxy` the holder of a reference that the caller owns."""
        hold = Hold(proxy, self, pointer)
        self.holds.add(hold)
        self.latest[pointer] = hold
        return hold

    def drain(self) -> None:
        """Releases what was dropped. On the home's thread, or on any once that thread has ended."""
        while self.left and self._draining.acquire(blocking=False):
            try:
                while self.left:
                    self._let_go(self.left.popleft())
            finally:
                self._draining.release()
        if self.ended and not self.holds:
            _homes.discard(self)

    def end(self) -> None:
        """The thread ends: from now on what is dropped is released where it is dropped."""
        self.ended = True
        if not self.closed:
            self.drain()

    def close(self) -> None:
        """The program ends: lets all objects go, also those that somebody still holds."""
        self.left.clear()
        for hold in list(self.holds):
            self._let_go(hold)

    def _let_go(self, hold: Hold) -> None:
        pointer, hold.pointer = hold.pointer, 0
        self.holds.discard(hold)
        if self.latest.get(pointer) is hold:
            del self.latest[pointer]
        if pointer:
            binary.release(pointer)


def _dropped(hold: Hold) -> None:
    home = hold.home
    if home.closed:
        return
    home.left.append(hold)
    if home.ended or home is getattr(_here, "home", None):
        home.drain()


class _Keeper:
    """Lives in a thread's own data, and so ends with the thread."""

    def __init__(self, home: Home) -> None:
        self.home = home

    def __del__(self) -> None:
        self.home.end()


_homes: Set[Home] = set()
_here = threading.local()


def current() -> Home:
    """The home of the calling thread."""
    try:
        return _here.home
    except AttributeError:
        home = Home()
        _homes.add(home)
        _here.keeper = _Keeper(home)
        _here.home = home
        return home


def _leave() -> None:
    """Before the interpreter goes: nothing is called in a half-gone interpreter."""
    mine = current()
    for home in list(_homes):
        home.closed = True
        if home is mine or home.ended:
            home.close()


atexit.register(_leave)
