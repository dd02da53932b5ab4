#!/usr/bin/env python3
"""Compares how the grammars take the templates apart with the snapshots beside them.

    snapshots.py GRAMMAR_FOLDER

A snapshot shows each line after ">", and below it, after "#", which characters have which scopes
besides that of the whole text. "[" and "]" mark a scope that has ".begin" or ".end" in its name, and a
digit says how many times a character has the scope.
With UPDATE_SNAPSHOTS=1 in the environment the snapshots are updated.
"""

import difflib
import os
import pathlib
import re
import sys

import grammars


def snapshot(lines):
    for tokens in lines:
        yield ">" + "".join(text for text, _ in tokens)
        column = 0
        marks = {}
        for text, scopes in tokens:
            for scope in dict.fromkeys(scopes[1:]):
                mark = "[" if ".begin." in scope else "]" if ".end." in scope else "^"
                if scopes.count(scope) > 1:
                    mark = str(scopes.count(scope))
                kind = re.sub(r"\.(begin|end)\.", ".", scope)
                marks[kind] = marks.get(kind, "").ljust(column) + mark * len(text)
            column += len(text)
        for kind, mark in marks.items():
            yield "#" + mark + " " + kind


def differs(template, tokenizer):
    lines, _ = tokenizer.tokenize(grammars.scope_of(template), template.read_text("utf-8"))
    made = "\n".join(snapshot(lines)) + "\n"
    kept = template.with_name(template.name + ".snap")
    if os.environ.get("UPDATE_SNAPSHOTS") == "1":
        kept.write_text(made, "utf-8")
    expected = kept.read_text("utf-8")
    sys.stdout.writelines(
        difflib.unified_diff(
            expected.splitlines(True), made.splitlines(True), kept.name, "as tokenized now"
        )
    )
    return made != expected


def main():
    tokenizer = grammars.load(pathlib.Path(sys.argv[1]))
    templates = grammars.templates()
    failures = sum(differs(template, tokenizer) for template in templates)
    print(f"{len(templates)} snapshots, {failures} differ")
    return 0 if templates and failures == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
