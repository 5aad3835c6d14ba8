"""What the host calls: the events of a connection, and text boxes."""
from __future__ import annotations

import atexit
import itertools
from ctypes import CFUNCTYPE, byref, c_uint32
from typing import Any, Callable, Dict, Optional

from . import _binary as binary
from ._errors import RPC_E_WRONG_THREAD, Error, error_of
from ._library import library, loaded
from ._objects import Object
from ._threads import Home, current

# ---- events of a connection -----------------------------------------------------------------------------------


class Subscription:
    """A handler of a connection's events; ``close`` takes it out. Also a context manager.

    The connection holds the handler until then, or until it ends itself: letting this object go changes nothing.
    """

    __module__ = "oxclass"

    def __init__(self, handler: Any, home: Home, pointer: int) -> None:
        self.handler, self._home, self._pointer, self._cookie = handler, home, pointer, 0

    def close(self) -> None:
        """Ends the subscription; nothing happens if it has ended."""
        if not self._pointer:
            return
        if self._home is not current():
            raise error_of(RPC_E_WRONG_THREAD)
        self._unadvise()

    def _unadvise(self) -> None:
        pointer, self._pointer = self._pointer, 0
        library().check(library().OxUnadvise(pointer, self._cookie))

    def leave(self) -> None:
        """Before the interpreter goes: takes the handler out where that is this thread's to do."""
        if self._pointer and self._home is current():
            self._unadvise()

    def ended(self) -> None:
        """The connection let go of it."""
        self._pointer = 0

    def __enter__(self) -> Subscription:
        return self

    def __exit__(self, *failure: Any) -> None:
        self.close()


_subscriptions: Dict[int, Subscription] = {}
_numbers = itertools.count(1)


def WithEvents(connection: Any, handler: Any) -> Subscription:
    """Tells a handler of each statement that runs on a connection. It may have

        def WillExecute(self, source): ...
        def ExecuteComplete(self, source, records, seconds, error): ...

    The connection keeps the handler: one that keeps the connection in turn lives until ``close``. ``records`` is
    the number of rows that an action statement hit, -1 for a select; ``error`` is None or an ``Error``. An exception
    in ``WillExecute`` cancels the statement, and whoever ran it gets that exception; of several, the first.
    """
    if not isinstance(connection, Object):
        raise TypeError(f"the first argument is an ADODB.Connection, not {connection!r}")
    if not (hasattr(handler, "WillExecute") or hasattr(handler, "ExecuteComplete")):
        raise TypeError(f"{handler!r} has neither WillExecute nor ExecuteComplete")
    pointer, cookie, context = connection._hold.here(), c_uint32(), next(_numbers)
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
        home = current()
        if home.cancelled is None:
            home.cancelled = exception
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
        subscription.ended()


_EVENTS = binary.OxConnectionEvents(_will_execute, _execute_complete, _released)


class calling:
    """A call under way: what a handler raised to cancel its statement is raised in place of the call's failure."""

    __slots__ = ("_home", "_outer")

    def __init__(self, home: Home) -> None:
        self._home = home

    def __enter__(self) -> None:
        self._outer, self._home.cancelled = self._home.cancelled, None

    def __exit__(self, kind: Any, failure: Any, traceback: Any) -> None:
        cancelled, self._home.cancelled = self._home.cancelled, self._outer
        if cancelled is None:
            return
        try:
            if isinstance(failure, Error) or not isinstance(cancelled, Exception):
                raise cancelled from failure
            _report(cancelled)  # the operation swallowed its failure
        finally:
            cancelled = failure = traceback = None  # what they hold goes with the last who catches them


def _report(exception: BaseException) -> None:
    """Gives an exception that no caller is left for to sys.unraisablehook."""

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
    """Gives the text of each text box to ``handler``, on the thread that it comes up on; the box counts as
    dismissed then. None brings back the usual way, which writes it to standard error."""
    global _on_msg_box
    if handler is not None and not callable(handler):
        raise TypeError(f"{handler!r} can't be called")
    functions = library()
    functions.check(functions.OxSetMsgBox(_msg_box if handler else binary.MsgBoxHandler(), None))
    _on_msg_box = handler


@atexit.register
def _leave() -> None:
    """Before the interpreter goes: nothing calls into it from now on."""
    if loaded() is None:
        return
    OnMsgBox(None)
    for subscription in list(_subscriptions.values()):
        subscription.leave()
