"""The functions of the C library, and objects that own its handles."""

from __future__ import annotations

import sys
from ctypes import (
    CDLL,
    CFUNCTYPE,
    POINTER,
    PyDLL,
    byref,
    c_char_p,
    c_int,
    c_size_t,
    c_ssize_t,
    c_uint64,
    c_void_p,
    py_object,
    pythonapi,
    string_at,
)
from pathlib import Path
from typing import Any, Callable

_ABI_VERSION = 0

OK, STOPPED, REJECTED, NOT_FOUND, UNREADABLE = range(5)
OUT_OF_MEMORY, TOO_LARGE, BAD_JSON = 10, 11, 12

POSITIONS, SHORT_NUMBERS = 1, 2


def _open() -> CDLL:
    name = "stencilor_c.dll" if sys.platform == "win32" else "libstencilor_c.so.0"
    carried = Path(__file__).with_name(name)
    try:
        library = CDLL(str(carried) if carried.exists() else name)
        version = library.stencilor_abi_version()
    except (OSError, AttributeError) as error:
        raise ImportError(f"stencilor: cannot load the C library: {error}") from error
    if version != _ABI_VERSION:
        raise ImportError(
            f"stencilor: {name} has version {version} of the binary interface, not {_ABI_VERSION}"
        )
    return library


# Functions that may take long, or that call back, release the interpreter lock. For the others,
# releasing it would take longer than the call itself.
_releasing = _open()
_holding = PyDLL(_releasing._name, handle=_releasing._handle)

_pointers = POINTER(c_void_p)
FindFunction = CFUNCTYPE(c_int, c_void_p, c_void_p, c_size_t, c_void_p)


def _declare(library: CDLL, name: str, result: Any, *arguments: Any) -> Callable[..., Any]:
    function: Callable[..., Any] = getattr(library, "stencilor_" + name)
    function.restype = result  # type: ignore[attr-defined]
    function.argtypes = arguments  # type: ignore[attr-defined]
    return function


_text = (c_char_p, c_size_t)

version = _declare(_holding, "version", c_char_p)
status_text = _declare(_holding, "status_text", c_char_p, c_int)
error_text = _declare(_holding, "error_text", c_void_p, c_void_p, POINTER(c_size_t))
error_free = _declare(_holding, "error_free", None, c_void_p)
text_data = _declare(_holding, "text_data", c_void_p, c_void_p, POINTER(c_size_t))
text_free = _declare(_holding, "text_free", None, c_void_p)

context_parse_json = _declare(
    _releasing, "context_parse_json", c_int, *_text, c_int, *_text, _pointers, _pointers
)
context_free = _declare(_holding, "context_free", None, c_void_p)

template_parse = _declare(_releasing, "template_parse", c_int, *_text, *_text, _pointers)
template_name = _declare(_holding, "template_name", c_void_p, c_void_p, POINTER(c_size_t))
template_text = _declare(_holding, "template_text", c_void_p, c_void_p, POINTER(c_size_t))
template_fault = _declare(_holding, "template_fault", c_void_p, c_void_p)
template_render = _declare(
    _releasing, "template_render", c_int, c_void_p, c_void_p, c_void_p, _pointers
)
template_free = _declare(_holding, "template_free", None, c_void_p)

options_create = _declare(_holding, "options_create", c_int, _pointers)
options_set_escape = _declare(_holding, "options_set_escape", c_int, c_void_p, c_int)
options_set_limit = _declare(_holding, "options_set_limit", c_int, c_void_p, c_int, c_uint64)
options_set_source = _declare(_holding, "options_set_source", c_int, c_void_p, c_void_p)
options_free = _declare(_holding, "options_free", None, c_void_p)

source_memory = _declare(_holding, "source_memory", c_int, _pointers)
source_add = _declare(_holding, "source_add", c_int, c_void_p, *_text, *_text)
source_folder = _declare(_holding, "source_folder", c_int, *_text, _pointers)
source_callback = _declare(_holding, "source_callback", c_int, FindFunction, c_void_p, _pointers)
source_find = _declare(_releasing, "source_find", c_int, c_void_p, *_text, _pointers)
source_free = _declare(_holding, "source_free", None, c_void_p)
request_set_text = _declare(_holding, "request_set_text", c_int, c_void_p, *_text)
request_set_template = _declare(_holding, "request_set_template", c_int, c_void_p, c_void_p)

result_text = _declare(_holding, "result_text", c_void_p, c_void_p, POINTER(c_size_t))
result_usage = _declare(_holding, "result_usage", c_uint64, c_void_p, c_int)
result_message_count = _declare(_holding, "result_message_count", c_size_t, c_void_p)
result_message = _declare(_holding, "result_message", c_void_p, c_void_p, c_size_t)
result_free = _declare(_holding, "result_free", None, c_void_p)

message_kind = _declare(_holding, "message_kind", c_int, c_void_p)
message_text = _declare(_holding, "message_text", c_void_p, c_void_p, POINTER(c_size_t))
message_name = _declare(_holding, "message_name", c_void_p, c_void_p, POINTER(c_size_t))
message_template_name = _declare(
    _holding, "message_template_name", c_void_p, c_void_p, POINTER(c_size_t)
)
message_line = _declare(_holding, "message_line", c_size_t, c_void_p)
message_column = _declare(_holding, "message_column", c_size_t, c_void_p)
message_include_count = _declare(_holding, "message_include_count", c_size_t, c_void_p)
message_include_template_name = _declare(
    _holding,
    "message_include_template_name",
    c_void_p,
    c_void_p,
    c_size_t,
    POINTER(c_size_t),
)
message_include_line = _declare(_holding, "message_include_line", c_size_t, c_void_p, c_size_t)
message_include_column = _declare(_holding, "message_include_column", c_size_t, c_void_p, c_size_t)

check = _declare(_releasing, "check", c_int, c_void_p, c_void_p, c_void_p, _pointers)
names = _declare(_releasing, "names", c_int, c_void_p, c_void_p, _pointers)


class Handle:
    """Owns a handle of the library, and frees it."""

    __slots__ = ("_free", "pointer")

    def __init__(self, pointer: c_void_p, free: Callable[..., Any]) -> None:
        self.pointer = pointer
        self._free = free  # kept here: the module may be gone when the interpreter exits

    def __del__(self) -> None:
        self._free(self.pointer)

    def __reduce__(self) -> Any:
        raise TypeError("templates, contexts and environments cannot be copied or pickled")


def _make_decoder() -> Callable[..., Any]:
    if sys.implementation.name != "cpython":
        return lambda text, size, _errors: string_at(text, size).decode()
    decode = pythonapi.PyUnicode_DecodeUTF8  # without a copy of the bytes
    decode.restype = py_object
    decode.argtypes = (c_void_p, c_ssize_t, c_char_p)
    return decode


_decode = _make_decoder()


def read(function: Callable[..., Any], *arguments: Any) -> str:
    """Calls a function that returns a string."""
    size = c_size_t()
    text = function(*arguments, byref(size))
    decoded: str = _decode(text, size.value, None)
    return decoded


def fail(status: int, reason: str = "") -> None:
    """Raises the exception for a status that has no exception class of its own."""
    text = reason or status_text(status).decode()
    if status == OUT_OF_MEMORY:
        raise MemoryError(text)
    raise ValueError(text)
