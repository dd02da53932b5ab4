"""Converts Python values to template values.

They are passed as JSON: its encoder runs at the speed of C, while a library call for each value would
not. `_plain` converts what JSON cannot represent. The encoder does not report where it found a value
that cannot be converted, so `_find_fault` looks for it afterwards.
"""

from __future__ import annotations

import dataclasses
import json
import math
import re
import secrets
from ctypes import byref, c_void_p
from decimal import Decimal
from typing import (
    Any,
    ClassVar,
    Dict,
    Iterator,
    List,
    Mapping,
    Optional,
    Protocol,
    Sequence,
    Tuple,
    Union,
)

from . import _library as library

_DEEPEST = 512

# Marks raw strings in the JSON. It is random, so no other text begins with it.
_RAW_MARK = secrets.token_hex(16)
_RAW_MARK_BYTES = _RAW_MARK.encode()

_surrogates = re.compile("[\ud800-\udfff]")


class Raw:
    """A string that is never escaped: for text known to be safe where it is inserted.

    It is not a `str`, so that joining it with other text does not accidentally make that text raw.
    """

    __slots__ = ("text",)

    def __init__(self, text: str) -> None:
        if not isinstance(text, str):
            raise TypeError(f"a raw text must be made from a str, not {_type_name(text)}")
        self.text = str(text)

    def __str__(self) -> str:
        return self.text

    def __repr__(self) -> str:
        return f"Raw({self.text!r})"

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Raw) and self.text == other.text

    def __hash__(self) -> int:
        return hash((Raw, self.text))


def utf8(text: Union[str, bytes]) -> bytes:
    """Encodes a string for the library. Lone surrogates become U+FFFD, as malformed bytes do."""
    if isinstance(text, bytes):
        return text
    try:
        return text.encode()
    except UnicodeEncodeError:
        return _surrogates.sub("\ufffd", text).encode()


class Dataclass(Protocol):
    """An instance of a dataclass."""

    __dataclass_fields__: ClassVar[Dict[str, Any]]


class Context:
    """The values of a render, converted once to be rendered many times. It never changes.

    values: a mapping or a dataclass, which is copied.
    positions: adds `index` (from 1), `first` and `last` to list elements.
    """

    __slots__ = ("_handle",)

    def __init__(self, values: Union[Mapping[str, Any], Dataclass], *, positions: bool = False) -> None:
        try:
            text = _encoder.encode(values)
        except (TypeError, ValueError, RecursionError) as error:
            raise _find_fault(values) or error from None
        data = utf8(text)
        flags = library.SHORT_NUMBERS | (library.POSITIONS if positions else 0)
        context, error_handle = c_void_p(), c_void_p()
        status = library.context_parse_json(
            data,
            len(data),
            flags,
            _RAW_MARK_BYTES,
            len(_RAW_MARK_BYTES),
            byref(context),
            byref(error_handle),
        )
        if status != library.OK:
            reason = library.read(library.error_text, error_handle)
            library.error_free(error_handle)
            fault = _find_fault(values)
            if fault is not None:
                raise fault
            library.fail(status, reason)
        self._handle = library.Handle(context, library.context_free)


def _type_name(value: object) -> str:
    kind = type(value)
    return kind.__qualname__ if kind.__module__ == "builtins" else f"{kind.__module__}.{kind.__qualname__}"


def _plain(value: object) -> Any:
    """Converts a value that JSON cannot represent to one that it can."""
    if isinstance(value, Raw):
        return _RAW_MARK + value.text
    if isinstance(value, (bytes, bytearray, memoryview)):
        return bytes(value).decode("utf-8", "replace")
    if isinstance(value, Decimal):
        if not value.is_finite():
            raise ValueError(f"{value} is not a finite number")
        return str(value)
    if dataclasses.is_dataclass(value) and not isinstance(value, type):
        return {field.name: getattr(value, field.name) for field in dataclasses.fields(value)}
    if isinstance(value, Mapping):
        return dict(value)
    if isinstance(value, Sequence):
        return list(value)
    raise TypeError(f"{_type_name(value)} cannot be converted to a template value")


_encoder = json.JSONEncoder(
    ensure_ascii=False, allow_nan=False, separators=(",", ":"), default=_plain
)


class _Level:
    """A dictionary or list that is being searched, with its path."""

    def __init__(self, value: object, path: str, holder: Union[Mapping[Any, Any], Sequence[Any]]) -> None:
        self.value = value
        self.path = path
        self.keys: set[str] = set()
        self.parts: Iterator[Tuple[Any, Any]] = iter(
            holder.items() if isinstance(holder, Mapping) else enumerate(holder)
        )
        self.is_list = not isinstance(holder, Mapping)

    def path_of(self, part: Any) -> str:
        if self.is_list or not (isinstance(part, str) and part.isidentifier()):
            return f"{self.path}[{part!r}]"
        return f"{self.path}.{part}" if self.path else part

    def fault_of_key(self, key: Any) -> Optional[Exception]:
        if self.is_list:
            return None
        if not (key is None or isinstance(key, (str, int, float))):
            return TypeError(f"{self.path_of(key)}: a key must be a str, not {_type_name(key)}")
        text = key if isinstance(key, str) else json.dumps(key)
        if text in self.keys:
            return ValueError(f"{self.path_of(key)}: more than one key becomes {text!r}")
        self.keys.add(text)
        return None


def _find_fault(values: Any) -> Optional[Exception]:
    """Returns the error for the first value that cannot be converted, or None if all can."""
    opened = _open(values)
    if not isinstance(opened, Mapping):
        return TypeError(f"values must be a mapping or a dataclass, not {_type_name(values)}")
    levels: List[_Level] = [_Level(values, "", opened)]
    while levels:
        level = levels[-1]
        for part, value in level.parts:
            path = level.path_of(part)
            fault = level.fault_of_key(part)
            opened = value if fault else _open(value)
            fault = fault or _fault_of(part, opened, path)
            if any(value is outer.value for outer in levels):
                fault = ValueError(f"{path}: contains itself")
            if fault:
                return fault
            if isinstance(opened, (dict, list, tuple)):
                if len(levels) == _DEEPEST:
                    return ValueError(f"{path[:80]}...: values nest deeper than {_DEEPEST} levels")
                levels.append(_Level(value, path, opened))
                break
        else:
            levels.pop()
    return None


def _open(value: Any) -> Any:
    """The value in a form that JSON can represent, or the error that prevents that."""
    if value is None or isinstance(value, (str, int, float, dict, list, tuple)):
        return value
    try:
        return _plain(value)
    except (TypeError, ValueError) as error:
        return error


def _fault_of(part: Any, opened: Any, path: str) -> Optional[Exception]:
    if isinstance(opened, Exception):
        kind = TypeError if isinstance(opened, TypeError) else ValueError
        return kind(f"{path}: {opened}")
    if part == "$boolean" and not isinstance(opened, bool):
        return TypeError(f"{path}: must be True or False, not {_type_name(opened)}")
    if isinstance(opened, float) and not math.isfinite(opened):
        return ValueError(f"{path}: {opened} is not a finite number")
    return None
