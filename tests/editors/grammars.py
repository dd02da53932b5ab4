"""The grammars and the templates that they are tested with."""

import pathlib

import textmate

HERE = pathlib.Path(__file__).parent
PLAIN = "text.stencilor"
HTML = "text.html.stencilor"


def load(folder):
    """A tokenizer with our grammars and the stand-in for that of HTML."""
    return textmate.Tokenizer([*sorted(folder.glob("*.tmLanguage.json")), HERE / "html.tmLanguage.json"])


def templates():
    return sorted((HERE / "templates").glob("*.stencilor"))


def scope_of(template):
    return HTML if template.name.endswith(".html.stencilor") else PLAIN


def has_illegal(lines):
    return any(
        scope.startswith("invalid.") for tokens in lines for _, scopes in tokens for scope in scopes
    )
