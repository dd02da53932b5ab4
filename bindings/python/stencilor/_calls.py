"""Calls of library functions that may call back."""

from __future__ import annotations

import atexit
import os
import threading
import time
from typing import Any, Callable, Optional, Set

from . import _library as library


class _Kept(threading.local):
    """The exception that ended the call on this thread."""

    error: Optional[BaseException] = None


_kept = _Kept()
_inside: Set[int] = set()  # the threads inside such a call
_ending = False


def call(function: Callable[..., int], *arguments: Any) -> int:
    """Calls a function of the library, and re-raises the exception of a callback."""
    thread = threading.get_ident()
    is_outermost = thread not in _inside
    _inside.add(thread)
    try:
        _park_at_end()
        status = function(*arguments)
    finally:
        if is_outermost:
            _inside.discard(thread)
    if status == library.STOPPED:
        error, _kept.error = _kept.error, None
        assert error is not None
        try:
            raise error
        finally:
            del error  # its traceback holds this frame
    return status


def guard(callback: Callable[..., None]) -> Callable[..., int]:
    """Makes a callback for the library. `call` re-raises its exceptions."""

    def guarded(*arguments: Any) -> int:
        _park_at_end()
        try:
            callback(*arguments)
        except BaseException as error:
            _kept.error = error
            return 1
        return 0

    return guarded


def _park_at_end() -> None:
    """Parks a daemon thread when the interpreter is about to exit. Otherwise, the thread would be ended inside
    the library, which aborts the process."""
    if _ending and threading.current_thread() is not threading.main_thread():
        _inside.discard(threading.get_ident())
        threading.Event().wait()


@atexit.register
def _end() -> None:
    global _ending
    _ending = True
    latest = time.monotonic() + 1  # a loader may wait for something that never comes
    while _inside and time.monotonic() < latest:
        time.sleep(0.001)


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_inside.clear)
