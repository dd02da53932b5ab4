"""Text templates: every missing name is reported with its line and column.

>>> Template("Hello, {{ name }}!").render({"name": "<Zoë>"}, escape="html")
'Hello, &lt;Zoë&gt;!'
"""

from ._errors import (
    IncludeSite,
    LimitExceeded,
    Message,
    MessageKind,
    RenderError,
    Status,
    TemplateError,
    TemplateNotFound,
    TemplateSyntaxError,
    TemplateUnreadable,
)
from ._library import version as _version
from ._sources import Limits
from ._template import (
    Environment,
    Finding,
    Name,
    Place,
    RenderResult,
    Template,
    Usage,
    check,
)
from ._values import Context, Raw

__version__: str = _version().decode()

__all__ = [
    "Context",
    "Environment",
    "Finding",
    "IncludeSite",
    "LimitExceeded",
    "Limits",
    "Message",
    "MessageKind",
    "Name",
    "Place",
    "Raw",
    "RenderError",
    "RenderResult",
    "Status",
    "Template",
    "TemplateError",
    "TemplateNotFound",
    "TemplateSyntaxError",
    "TemplateUnreadable",
    "Usage",
    "check",
]
