"""Renders the examples of the documents through Python."""

import json
import pathlib
import re
import subprocess

import pytest
from stencilor import Environment, Template, TemplateSyntaxError

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Block:
    def __init__(self, folder, line):
        number, self.kind, self.line, self.argument, *_ = line.split("\t")
        self.text = (folder / f"{number}.{self.kind}").read_text()


def blocks_of(document, folder):
    extract = ["awk", "-f", ROOT / "tests/docs/extract.awk", "-v", f"document={document}"]
    listed = subprocess.run(
        [*extract, "-v", f"folder={folder}", ROOT / "docs" / document],
        check=True,
        capture_output=True,
        text=True,
    )
    return [Block(folder, line) for line in listed.stdout.splitlines()]


def places_of(messages):
    return re.findall(r"^([^ :]+):(\d+):(\d+): warning: (?!malformed)", messages, re.MULTILINE)


@pytest.mark.parametrize("document", ["language.md", "messages.md", "recipes.md"])
def test_examples_render_as_documented(document, tmp_path):
    blocks = blocks_of(document, tmp_path)
    (tmp_path / "root").mkdir()
    host = Environment(tmp_path / "root")
    rendered = 0
    for at, block in enumerate(blocks):
        if block.kind == "template" and block.argument != "-":
            file = tmp_path / "root" / block.argument
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(block.text)
        elif block.kind == "template":
            following = iter(blocks[at + 1 :] + [None])
            after = next(following)
            values = {}
            if after and after.kind == "json":
                # JSON numbers keep their digits.
                values = json.loads(after.text, parse_float=str)
                after = next(following)
            result = host.from_string(block.text, "page.txt").render_result(values)
            assert after and after.kind == "output"
            assert result.text == after.text, f"{document}:{block.line}"
            after = next(following)
            messages = after.text if after and after.kind == "messages" else ""
            places = [(m.filename, str(m.lineno), str(m.column)) for m in result.messages]
            places = list(dict.fromkeys(places))  # the program reports each place once
            assert places == places_of(messages), f"{document}:{block.line}"
            rendered += 1
    assert rendered > 0


def test_what_is_documented_as_rejected_is_rejected(tmp_path):
    lines = [
        line
        for block in blocks_of("language.md", tmp_path)
        if block.kind == "rejected"
        for line in block.text.splitlines()
    ]
    assert len(lines) > 5
    for line in lines:
        with pytest.raises(TemplateSyntaxError):
            Template(line)
