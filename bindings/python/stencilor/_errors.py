"""Messages of renders, and exceptions."""

from __future__ import annotations

from dataclasses import dataclass
from enum import IntEnum
from typing import Any, Tuple

from . import _library as library


class Status(IntEnum):
    """How a render ended."""

    OK = 0
    NOT_FOUND = 3
    UNREADABLE = 4
    STEP_LIMIT = 5
    OUTPUT_LIMIT = 6
    TEMPLATE_LIMIT = 7
    DEPTH_LIMIT = 8


class MessageKind(IntEnum):
    """What a message is about."""

    UNKNOWN = -1
    VALUE_NOT_FOUND = 1
    VALUE_NOT_TEXT = 2
    BOOLEAN_NOT_FOUND = 3
    NOT_BOOLEAN = 4
    LIST_NOT_FOUND = 5
    NOT_LIST = 6
    TEMPLATE_NOT_FOUND = 7
    TEMPLATE_UNREADABLE = 8
    TEMPLATE_REJECTED = 9
    STEP_LIMIT = 10
    OUTPUT_LIMIT = 11
    TEMPLATE_LIMIT = 12
    DEPTH_LIMIT = 13

    @classmethod
    def _missing_(cls, value: object) -> MessageKind:
        return cls.UNKNOWN


@dataclass(frozen=True)
class IncludeSite:
    """An include tag: the template that contains it, and the location of its path."""

    filename: str
    lineno: int
    column: int


@dataclass(frozen=True)
class Message:
    """Something that could not be rendered, or the reason that a render ended.

    Lines and columns start at 1; columns count code points.
    """

    kind: MessageKind
    text: str
    name: str  #: the name or path in the tag; empty if there is none
    filename: str  #: the name of the template
    lineno: int
    column: int
    included_from: Tuple[IncludeSite, ...]  #: the include tags that led here, innermost first

    def __str__(self) -> str:
        return f"{self.filename or '<template>'}:{self.lineno}:{self.column}: {self.text}"


def read_message(pointer: Any) -> Message:
    """Reads a message of the library."""
    sites = tuple(
        IncludeSite(
            library.read(library.message_include_template_name, pointer, index),
            library.message_include_line(pointer, index),
            library.message_include_column(pointer, index),
        )
        for index in range(library.message_include_count(pointer))
    )
    return Message(
        MessageKind(library.message_kind(pointer)),
        library.read(library.message_text, pointer),
        library.read(library.message_name, pointer),
        library.read(library.message_template_name, pointer),
        library.message_line(pointer),
        library.message_column(pointer),
        sites,
    )


class TemplateError(Exception):
    """The base of all exceptions caused by templates."""


class TemplateSyntaxError(TemplateError):
    """A template is not well formed."""

    def __init__(self, message: str, lineno: int, column: int, filename: str) -> None:
        super().__init__(message, lineno, column, filename)
        self.message = message
        self.lineno = lineno  #: from 1
        self.column = column  #: in code points, from 1
        self.filename = filename  #: the name of the template

    def __str__(self) -> str:
        return f"{self.filename or '<template>'}:{self.lineno}:{self.column}: {self.message}"


class TemplateNotFound(TemplateError, LookupError):
    """The loader has no template with this name."""

    def __init__(self, name: str) -> None:
        super().__init__(name)
        self.name = name

    def __str__(self) -> str:
        return f"there is no template {self.name!r}"


class TemplateUnreadable(TemplateError):
    """The loader has the template, but it cannot be read."""

    def __init__(self, name: str) -> None:
        super().__init__(name)
        self.name = name

    def __str__(self) -> str:
        return f"the template {self.name!r} cannot be read"


class RenderError(TemplateError):
    """A strict render produced messages."""

    def __init__(self, status: Status, messages: Tuple[Message, ...]) -> None:
        super().__init__(status, messages)
        self.status = status
        self.messages = messages

    def __str__(self) -> str:
        return "\n".join(map(str, self.messages))


class LimitExceeded(RenderError):
    """A render reached one of its limits; the last message says where."""
