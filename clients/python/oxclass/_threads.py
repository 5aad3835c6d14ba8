"""The thread to which an object belongs, and the release of objects on that thread.

An interface pointer is used and released on the thread that received it. Any thread may drop a proxy, and so may the
garbage collector: the object is then released at the next call on its own thread, or at once if that thread has ended.
"""
from __future__ import annotations

import atexit
import collections
import threading
import weakref
from typing import Any, Deque, Dict, Optional, Set

from . import _binary as binary
from ._errors import OBJECT_NOT_SET, RPC_E_WRONG_THREAD, Error, error_of


class Reference(weakref.ref):
    """One counted reference to an object. When its proxy is collected, the reference is released on its thread."""

    __slots__ = ("pointer", "owner")
    __eq__ = object.__eq__
    __hash__ = object.__hash__

    pointer: int
    owner: ThreadObjects

    def __new__(cls, proxy: Any, owner: ThreadObjects, pointer: int) -> Reference:
        reference = super().__new__(cls, proxy, _on_collected)
        reference.owner, reference.pointer = owner, pointer
        return reference

    def __init__(self, proxy: Any, owner: ThreadObjects, pointer: int) -> None:
        super().__init__(proxy, _on_collected)

    def here(self) -> int:
        """Returns the pointer for a call on this thread; raises on any other thread."""
        if self.owner is not current():
            raise error_of(RPC_E_WRONG_THREAD)
        if not self.pointer:
            raise Error(OBJECT_NOT_SET, "oxclass", "The program is ending, and its objects are released")
        if self.owner.pending:
            self.owner.release_pending()
        return self.pointer


class ThreadObjects:
    """The objects of one thread."""

    def __init__(self) -> None:
        self.references: Set[Reference] = set()
        self.latest: Dict[int, Reference] = {}
        self.pending: Deque[Reference] = collections.deque()  # their proxies are collected; to be released
        self.ended = False
        self.closed = False
        self.cancelled: Optional[BaseException] = None  # what a WillExecute of the current call raised
        self._releasing = threading.Lock()

    def proxy_of(self, pointer: int) -> Any:
        """Returns the living proxy of a pointer, or None."""
        reference = self.latest.get(pointer)
        return reference() if reference is not None else None

    def adopt(self, proxy: Any, pointer: int) -> Reference:
        """Makes `proxy` the owner of a reference that the caller owns."""
        reference = Reference(proxy, self, pointer)
        self.references.add(reference)
        self.latest[pointer] = reference
        return reference

    def release_pending(self) -> None:
        """Releases the pending references. Called on the own thread, or on any thread after that one has ended."""
        while self.pending and self._releasing.acquire(blocking=False):
            try:
                while self.pending:
                    self._release(self.pending.popleft())
            finally:
                self._releasing.release()
        if self.ended and not self.references:
            _all.discard(self)

    def end(self) -> None:
        """The thread ends: from now on a reference is released by the thread that drops it."""
        self.ended = True
        if not self.closed:
            self.release_pending()

    def close(self) -> None:
        """The program ends: releases all objects, also those that are still in use."""
        self.pending.clear()
        for reference in list(self.references):
            self._release(reference)

    def _release(self, reference: Reference) -> None:
        pointer, reference.pointer = reference.pointer, 0
        self.references.discard(reference)
        if self.latest.get(pointer) is reference:
            del self.latest[pointer]
        if pointer:
            binary.release(pointer)


def _on_collected(reference: Reference) -> None:
    owner = reference.owner
    if owner.closed:
        return
    owner.pending.append(reference)
    if owner.ended or owner is getattr(_local, "objects", None):
        owner.release_pending()


class _EndOfThread:
    """Held by the thread's local data only, so that its finalizer runs when the thread ends."""

    def __init__(self, objects: ThreadObjects) -> None:
        self.objects = objects

    def __del__(self) -> None:
        self.objects.end()


_all: Set[ThreadObjects] = set()
_local = threading.local()


def current() -> ThreadObjects:
    """Returns the objects of the calling thread."""
    try:
        return _local.objects
    except AttributeError:
        objects = ThreadObjects()
        _all.add(objects)
        _local.end = _EndOfThread(objects)
        _local.objects = objects
        return objects


def _at_exit() -> None:
    """Releases the objects before the interpreter shuts down; afterwards no call reaches the library."""
    mine = current()
    for objects in list(_all):
        objects.closed = True
        if objects is mine or objects.ended:
            objects.close()


atexit.register(_at_exit)
