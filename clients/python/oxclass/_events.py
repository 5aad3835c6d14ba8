"""The callbacks of the host: the events of a connection, and text boxes."""
from __future__ import annotations

import atexit
import itertools
from ctypes import CFUNCTYPE, byref, c_uint32
from typing import Any, Callable, Dict, Optional

from . import _binary as binary
from ._errors import RPC_E_WRONG_THREAD, Error, error_of
from ._library import library, loaded
from ._objects import Object
from ._threads import ThreadObjects, current

# ---- events of a connection -----------------------------------------------------------------------------------


class Subscription:
    """A handler of a connection's events; ``close`` removes it. Also a context manager.

    The connection keeps the handler until then, or until the connection is released. Dropping this object doesn't
    remove the handler.
    """

    __module__ = "oxclass"

    def __init__(self, handler: Any, owner: ThreadObjects, pointer: int) -> None:
        self.handler, self._owner, self._pointer, self._cookie = handler, owner, pointer, 0

    def close(self) -> None:
        """Ends the subscription; does nothing if it has ended."""
        if not self._pointer:
            return
        if self._owner is not current():
            raise error_of(RPC_E_WRONG_THREAD)
        self._unadvise()

    def _unadvise(self) -> None:
        pointer, self._pointer = self._pointer, 0
        library().check(library().OxUnadvise(pointer, self._cookie))

    def close_at_exit(self) -> None:
        """Removes the handler before the interpreter shuts down, if the subscription belongs to this thread."""
        if self._pointer and self._owner is current():
            self._unadvise()

    def on_released(self) -> None:
        """The connection has released the handler."""
        self._pointer = 0

    def __enter__(self) -> Subscription:
        return self

    def __exit__(self, *failure: Any) -> None:
        self.close()


_subscriptions: Dict[int, Subscription] = {}
_numbers = itertools.count(1)


def WithEvents(connection: Any, handler: Any) -> Subscription:
    """Calls a handler before and after each statement that runs on a connection. The handler may have

        def WillExecute(self, source): ...
        def ExecuteComplete(self, source, records, seconds, error): ...

    The connection owns the handler. A handler that refers to the connection is a reference cycle, which only
    ``close`` ends. ``records`` is the number of rows that an action statement changed, -1 for a select; ``error`` is
    None or an ``Error``. An exception in ``WillExecute`` cancels the statement and is raised by the call that ran it;
    if several handlers raise, the first exception is.
    """
    if not isinstance(connection, Object):
        raise TypeError(f"the first argument is an ADODB.Connection, not {connection!r}")
    if not (hasattr(handler, "WillExecute") or hasattr(handler, "ExecuteComplete")):
        raise TypeError(f"{handler!r} has neither WillExecute nor ExecuteComplete")
    pointer, cookie, context = connection._reference.here(), c_uint32(), next(_numbers)
    subscription = _subscriptions[context] = Subscription(handler, current(), pointer)
    functions = library()
    code = functions.OxAdvise(pointer, byref(_EVENTS), context, cookie)
    if code < 0:
        _subscriptions.pop(context, None)
        raise functions.recorded(code)
    subscription._cookie = cookie.value
    return subscription


def _handler_of(context: Optional[int], name: str) -> Optional[Callable[..., Any]]:
    subscription = _subscriptions.get(context or 0)
    return getattr(subscription.handler, name, None) if subscription else None


@binary.WillExecuteHandler
def _will_execute(context: Optional[int], source: Optional[int]) -> int:
    try:
        handler = _handler_of(context, "WillExecute")
        if handler is not None:
            handler(library().text_of(source))
        return 0
    except BaseException as exception:
        objects = current()
        if objects.cancelled is None:
            objects.cancelled = exception
        else:
            _report(exception)
        return 1


# An exception in one of these goes to sys.unraisablehook, by ctypes.


@binary.ExecuteCompleteHandler
def _execute_complete(context: Optional[int], source: Optional[int], records: int, seconds: float, failure: int,
                      failure_source: Optional[int], failure_description: Optional[int]) -> None:
    handler = _handler_of(context, "ExecuteComplete")
    if handler is None:
        return
    text_of = library().text_of
    error = error_of(failure, text_of(failure_source), text_of(failure_description)) if failure else None
    handler(text_of(source), records, seconds, error)


@binary.ReleasedHandler
def _released(context: Optional[int]) -> None:
    subscription = _subscriptions.pop(context or 0, None)
    if subscription is not None:
        subscription.on_released()


_EVENTS = binary.OxConnectionEvents(_will_execute, _execute_complete, _released)


class calling:
    """Encloses a call: an exception with which a handler cancelled a statement replaces the call's error."""

    __slots__ = ("_objects", "_outer")

    def __init__(self, objects: ThreadObjects) -> None:
        self._objects = objects

    def __enter__(self) -> None:
        self._outer, self._objects.cancelled = self._objects.cancelled, None

    def __exit__(self, kind: Any, failure: Any, traceback: Any) -> None:
        cancelled, self._objects.cancelled = self._objects.cancelled, self._outer
        if cancelled is None:
            return
        try:
            if isinstance(failure, Error) or not isinstance(cancelled, Exception):
                raise cancelled from failure
            _report(cancelled)  # the operation ignored its failure
        finally:
            cancelled = failure = traceback = None  # ends the reference cycle of the exceptions and this frame


def _report(exception: BaseException) -> None:
    """Passes an exception that can't be raised to a caller to sys.unraisablehook."""

    @CFUNCTYPE(None)
    def WillExecute() -> None:
        raise exception

    WillExecute()


# ---- text boxes -----------------------------------------------------------------------------------------------

_on_msg_box: Optional[Callable[[str], Any]] = None


@binary.MsgBoxHandler
def _msg_box(context: Optional[int], prompt: Optional[int], buttons: int) -> None:
    handler = _on_msg_box
    if handler is not None:
        handler(library().text_of(prompt))


def OnMsgBox(handler: Optional[Callable[[str], Any]]) -> None:
    """Calls ``handler`` with the text of each text box, on the thread that shows it; the box then counts as
    dismissed. None restores the default, which writes the text to standard error."""
    global _on_msg_box
    if handler is not None and not callable(handler):
        raise TypeError(f"{handler!r} can't be called")
    functions = library()
    functions.check(functions.OxSetMsgBox(_msg_box if handler else binary.MsgBoxHandler(), None))
    _on_msg_box = handler


@atexit.register
def _at_exit() -> None:
    """Removes the callbacks before the interpreter shuts down."""
    if loaded() is None:
        return
    OnMsgBox(None)
    for subscription in list(_subscriptions.values()):
        subscription.close_at_exit()
