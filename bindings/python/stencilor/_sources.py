"""Where included templates come from, and the options of a render."""

from __future__ import annotations

import os
from ctypes import byref, c_void_p, string_at
from dataclasses import astuple, dataclass
from typing import TYPE_CHECKING, Any, Callable, Dict, Mapping, Optional, Tuple, Union

from . import _library as library
from ._calls import call, guard
from ._values import utf8

if TYPE_CHECKING:
    from ._template import Template

#: Returns the text of a template, a `Template`, or None if there is none.
LoaderFunction = Callable[[str], "Union[str, bytes, Template, None]"]
#: A folder, a mapping from paths to templates, or a function.
Loader = Union[str, "os.PathLike[str]", Mapping[str, Union[str, bytes]], LoaderFunction]

_escapes = {"none": 0, "html": 1, "json": 2}


@dataclass(frozen=True)
class Limits:
    """The limits of a render. 0 means no limit, except that an include depth of 0 means 100."""

    steps: int = 0  #: nodes visited, iterations, and every 64 names looked up
    output_bytes: int = 0
    template_bytes: int = 0  #: of included templates, each path counted once
    include_depth: int = 100  #: at most 100
    messages: int = 1000  #: messages kept; further ones are only counted

    def __post_init__(self) -> None:
        for value in astuple(self):
            if not isinstance(value, int):
                raise TypeError(f"a limit must be an int, not {value!r}")
            if not 0 <= value < 1 << 64:
                raise ValueError(f"a limit must be between 0 and 2**64 - 1, not {value}")


class Source:
    """The templates that includes find, and the options of the renders that use them."""

    def __init__(self, loader: Optional[Loader]) -> None:
        self.handle: Optional[library.Handle] = None
        self._options: Dict[Tuple[str, Limits], library.Handle] = {}
        self._find: Any = None  # the library may call it for as long as the handle exists
        if loader is None:
            return
        source = c_void_p()
        if isinstance(loader, Mapping):
            status = library.source_memory(byref(source))
        elif isinstance(loader, (str, os.PathLike)):
            path = os.fsencode(loader)
            status = library.source_folder(path, len(path), byref(source))
            if status == library.NOT_FOUND:
                raise NotADirectoryError(f"no such template folder: {os.fspath(loader)!r}")
        elif callable(loader):
            self._find = library.FindFunction(guard(_finder(loader)))
            status = library.source_callback(self._find, None, byref(source))
        else:
            raise TypeError(f"a loader must be a folder, a mapping or a function, not {loader!r}")
        if status != library.OK:
            library.fail(status)
        self.handle = library.Handle(source, library.source_free)
        if isinstance(loader, Mapping):
            for name, text in loader.items():
                self._add(utf8(name), utf8(text))

    def _add(self, path: bytes, text: bytes) -> None:
        assert self.handle is not None
        status = library.source_add(self.handle.pointer, path, len(path), text, len(text))
        if status != library.OK:
            library.fail(status)

    @property
    def pointer(self) -> Optional[c_void_p]:
        return None if self.handle is None else self.handle.pointer

    def call(self, function: Callable[..., int], *arguments: Any) -> int:
        """Calls a function of the library that may look up templates; passes on exceptions of
        the loader."""
        return function(*arguments) if self._find is None else call(function, *arguments)

    def options(self, escape: str, limits: Limits) -> library.Handle:
        """The options of a render, created once."""
        made = self._options.get((escape, limits))
        if made is None:
            made = self._make_options(escape, limits)
            if len(self._options) >= 64:
                self._options.clear()
            self._options[escape, limits] = made
        return made

    def _make_options(self, escape: str, limits: Limits) -> library.Handle:
        if escape not in _escapes:
            known = ", ".join(map(repr, _escapes))
            raise ValueError(f"escape must be one of {known}, not {escape!r}")
        pointer = c_void_p()
        if library.options_create(byref(pointer)) != library.OK:
            library.fail(library.OUT_OF_MEMORY)
        made = library.Handle(pointer, library.options_free)
        library.options_set_escape(pointer, _escapes[escape])
        for limit, value in enumerate(astuple(limits)):
            library.options_set_limit(pointer, limit, value)
        library.options_set_source(pointer, self.pointer)
        return made


def _finder(loader: LoaderFunction) -> Callable[..., None]:
    def find(_payload: Any, path: Any, size: int, request: Any) -> None:
        found = loader(string_at(path, size).decode("utf-8", "replace"))
        if found is None:
            return
        if isinstance(found, (str, bytes)):
            text = utf8(found)
            library.request_set_text(request, text, len(text))
            return
        handle = getattr(found, "_handle", None)
        if not isinstance(handle, library.Handle):
            raise TypeError(f"a loader must return a str, a Template or None, not {found!r}")
        library.request_set_template(request, handle.pointer)

    return find
