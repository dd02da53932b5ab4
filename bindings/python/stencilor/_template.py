"""Templates, and environments that find them."""

from __future__ import annotations

import json
from ctypes import byref, c_void_p
from dataclasses import dataclass
from typing import Any, List, Mapping, Optional, Tuple, Union

from . import _library as library
from ._errors import (
    LimitExceeded,
    Message,
    RenderError,
    Status,
    TemplateNotFound,
    TemplateSyntaxError,
    TemplateUnreadable,
    read_message,
)
from ._sources import Limits, Loader, Source
from ._values import Context, Dataclass, utf8

#: A mapping, a dataclass, or a context made from one.
Values = Union[Context, Mapping[str, Any], Dataclass]


@dataclass(frozen=True)
class Usage:
    """What a render used. `messages` includes those that were not kept."""

    steps: int
    output_bytes: int
    template_bytes: int
    include_depth: int
    messages: int


@dataclass(frozen=True)
class RenderResult:
    """What a render produced. The text is empty unless the status is `Status.OK`."""

    text: str
    status: Status
    messages: Tuple[Message, ...]
    usage: Usage

    def raise_for_status(self, *, strict: bool = False) -> None:
        """Raises `LimitExceeded` if a limit ended the render, and `RenderError` if `strict` is
        true and there are messages."""
        if self.status != Status.OK:
            raise LimitExceeded(self.status, self.messages)
        if strict and self.messages:
            raise RenderError(self.status, self.messages)


@dataclass(frozen=True)
class Place:
    """A location in a template. Lines and columns start at 1; columns count code points."""

    filename: str
    lineno: int
    column: int


@dataclass(frozen=True)
class Finding:
    """A problem, or possible problem, in a template."""

    rule: str  #: for example, "missing-name"
    severity: str  #: "error", "warning" or "note"
    message: str
    place: Place
    notes: Tuple[Tuple[str, Place], ...]

    def __str__(self) -> str:
        place = f"{self.place.filename or '<template>'}:{self.place.lineno}:{self.place.column}"
        return f"{place}: {self.severity}: {self.message}"


@dataclass(frozen=True)
class Name:
    """A name that a template looks up; `kind` is "string", "boolean" or "list"."""

    name: str
    kind: str
    loops: Tuple[Tuple[str, str], ...]  #: variable and list of the enclosing loops, innermost first
    places: Tuple[Place, ...]


def _place(described: Mapping[str, Any]) -> Place:
    return Place(described["file"], described["line"], described["column"])


def _render(
    parsed: library.Handle,
    values: Values,
    positions: bool,
    source: Source,
    options: library.Handle,
) -> Tuple[int, library.Handle]:
    context = values if isinstance(values, Context) else Context(values, positions=positions)
    pointer = c_void_p()
    try:
        status = source.call(
            library.template_render,
            parsed.pointer,
            context._handle.pointer,
            options.pointer,
            byref(pointer),
        )
    finally:
        result = library.Handle(pointer, library.result_free)
    if not pointer:
        library.fail(status)
    return status, result


def _read_result(status: int, result: library.Handle) -> RenderResult:
    pointer = result.pointer
    return RenderResult(
        library.read(library.result_text, pointer),
        Status(status),
        tuple(
            read_message(library.result_message(pointer, index))
            for index in range(library.result_message_count(pointer))
        ),
        Usage(*(library.result_usage(pointer, limit) for limit in range(5))),
    )


class Template:
    """A template that is parsed once. It never changes, and threads may share it.

    text: the template
    name: the name of the template in messages
    Raises `TemplateSyntaxError` if the template is not well formed.
    """

    __slots__ = ("_environment", "_handle")

    def __init__(self, text: Union[str, bytes], name: str = "") -> None:
        self._environment = _default
        self._handle = _parse(text, name)
        _raise_fault(self._handle)

    @classmethod
    def _of(cls, environment: Environment, handle: library.Handle) -> Template:
        made = cls.__new__(cls)
        made._environment = environment
        made._handle = handle
        _raise_fault(handle)
        return made

    @property
    def name(self) -> str:
        """The name of the template in messages."""
        return library.read(library.template_name, self._handle.pointer)

    @property
    def text(self) -> str:
        """The text that the template was parsed from, with U+FFFD in place of malformed bytes."""
        return library.read(library.template_text, self._handle.pointer)

    def __repr__(self) -> str:
        return f"<Template {self.name!r}>"

    def render(
        self,
        values: Values = {},
        *,
        escape: Optional[str] = None,
        limits: Optional[Limits] = None,
        strict: Optional[bool] = None,
        positions: Optional[bool] = None,
    ) -> str:
        """Renders to a string. Options that are not given default to those of the environment.

        values: a mapping, a dataclass or a `Context`
        escape: "none", "html" or "json"
        strict: raises `RenderError` if there are messages
        positions: adds `index`, `first` and `last` to list elements; ignored for a `Context`, which has
          its own setting
        Raises `LimitExceeded`, `TypeError` or `ValueError` for a value that cannot be converted (naming its
        path), and whatever the loader raises.
        """
        host = self._environment
        status, result = _render(
            self._handle,
            values,
            host.positions if positions is None else positions,
            host._source,
            host._source.options(
                host.escape if escape is None else escape, host.limits if limits is None else limits
            ),
        )
        strict = host.strict if strict is None else strict
        if status != library.OK or (strict and library.result_message_count(result.pointer)):
            _read_result(status, result).raise_for_status(strict=strict)
        return library.read(library.result_text, result.pointer)

    def render_result(
        self,
        values: Values = {},
        *,
        escape: Optional[str] = None,
        limits: Optional[Limits] = None,
        positions: Optional[bool] = None,
    ) -> RenderResult:
        """Like `render`, but returns a string, a status and messages."""
        host = self._environment
        return _read_result(
            *_render(
                self._handle,
                values,
                host.positions if positions is None else positions,
                host._source,
                host._source.options(
                    host.escape if escape is None else escape,
                    host.limits if limits is None else limits,
                ),
            )
        )

    def check(self, values: Optional[Values] = None) -> List[Finding]:
        """Finds what is wrong with the template and everything that it includes. Looks names up in
        `values`."""
        return self._environment._check(self._handle, values)

    def names(self) -> List[Name]:
        """Lists the names that the template and everything that it includes look up."""
        return self._environment._names(self._handle)


class Environment:
    """Where templates come from, and how they are rendered by default.

    loader: a folder, a mapping from paths to strings (which is copied), a function that returns
      the text or the `Template` at a path, or None if there is none; without a loader, no templates
      are found
    The options are those of `Template.render`. Threads may share an environment if its
    function allows that.
    """

    def __init__(
        self,
        loader: Optional[Loader] = None,
        *,
        escape: str = "none",
        limits: Limits = Limits(),
        strict: bool = False,
        positions: bool = False,
    ) -> None:
        self.escape = escape
        self.limits = limits
        self.strict = strict
        self.positions = positions
        self._source = Source(loader)
        self._source.options(escape, limits)  # rejects invalid ones early

    def from_string(self, text: Union[str, bytes], name: str = "") -> Template:
        """Parses a template. Its includes use the loader."""
        return Template._of(self, _parse(text, name))

    def get_template(self, path: str) -> Template:
        """Finds a template by its path, as written in include tags.

        Raises `TemplateNotFound`, `TemplateUnreadable`, `TemplateSyntaxError`, and whatever the
        loader raises.
        """
        return Template._of(self, self._find(path))

    def check(self, path: str, values: Optional[Values] = None) -> List[Finding]:
        """Finds what is wrong with a template, well formed or not, and everything that it
        includes."""
        return self._check(self._find(path), values)

    def names(self, path: str) -> List[Name]:
        """Lists the names that a template and everything that it includes look up."""
        return self.get_template(path).names()

    def _find(self, path: str) -> library.Handle:
        if self._source.handle is None:
            raise TemplateNotFound(path)
        pointer, data = c_void_p(), utf8(path)
        status = self._source.call(
            library.source_find, self._source.pointer, data, len(data), byref(pointer)
        )
        if status == library.NOT_FOUND:
            raise TemplateNotFound(path)
        if status == library.UNREADABLE:
            raise TemplateUnreadable(path)
        if not pointer:
            library.fail(status)
        return library.Handle(pointer, library.template_free)

    def _check(self, parsed: library.Handle, values: Optional[Values]) -> List[Finding]:
        if values is None or isinstance(values, Context):
            context = values
        else:
            context = Context(values, positions=self.positions)
        found = self._analyse(library.check, parsed, context and context._handle.pointer)
        return [
            Finding(
                each["rule"],
                each["severity"],
                each["message"],
                _place(each),
                tuple((note["message"], _place(note)) for note in each["notes"]),
            )
            for each in found["findings"]
        ]

    def _names(self, parsed: library.Handle) -> List[Name]:
        return [
            Name(
                each["name"],
                each["kind"],
                tuple((loop["variable"], loop["list"]) for loop in each["loops"]),
                tuple(map(_place, each["places"])),
            )
            for each in self._analyse(library.names, parsed)["names"]
        ]

    def _analyse(self, function: Any, parsed: library.Handle, *context: Any) -> Any:
        pointer = c_void_p()
        status = self._source.call(
            function, parsed.pointer, self._source.pointer, *context, byref(pointer)
        )
        if status != library.OK:
            library.fail(status)
        text = library.Handle(pointer, library.text_free)
        return json.loads(library.read(library.text_data, text.pointer))


def _parse(text: Union[str, bytes], name: str) -> library.Handle:
    data, label, pointer = utf8(text), utf8(name), c_void_p()
    status = library.template_parse(data, len(data), label, len(label), byref(pointer))
    if not pointer:
        library.fail(status)
    return library.Handle(pointer, library.template_free)


def _raise_fault(parsed: library.Handle) -> None:
    pointer = library.template_fault(parsed.pointer)
    if pointer is not None:
        fault = read_message(pointer)
        raise TemplateSyntaxError(fault.text, fault.lineno, fault.column, fault.filename)


def check(text: Union[str, bytes], values: Optional[Values] = None, name: str = "") -> List[Finding]:
    """Finds what is wrong with a template, well formed or not. Looks names up in `values`."""
    return _default._check(_parse(text, name), values)


_default = Environment()
