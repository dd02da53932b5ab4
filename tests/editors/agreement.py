#!/usr/bin/env python3
"""Compares what the grammars take for a mistake with what the engine rejects.

    agreement.py GRAMMAR_FOLDER ACCEPTS

ACCEPTS is the program made of accepts.cpp. The plain grammar knows how blocks are nested: a template
must be free of illegal tags, and have no open block at its end, exactly where the engine accepts it.
The one for HTML knows tags only: a tag must be legal exactly where the engine accepts it in one of
the places in which a tag may stand.
"""

import itertools
import pathlib
import subprocess
import sys

import grammars

TAGS = [
    "{{ x }}", "{% if x %}", "{% else %}", "{% endif %}", "{% for x in y %}", "{% endfor %}",
    '{% include "x" %}',
]
# What tags are made of, and what must not stand in them.
PARTS = [
    "if", "else", "endif", "for", "in", "endfor", "include", "x", "Y_1", "1", ".", "/", '"', "-",
    "é", "{", "%", "}", " ", "\t", "\n", "\f",
]
# Around the tag that is tried stands what makes it complete.
PLACES = [
    ("", ""), ("", "{% endif %}"), ("", "{% endfor %}"), ("{% if x %}", "{% endif %}"),
    ("{% if x %}", ""), ("{% for x in y %}", ""),
]


def sequences(parts, longest):
    for length in range(longest + 1):
        yield from map("".join, itertools.product(parts, repeat=length))


def tags():
    for inside in sequences(PARTS, 3):
        yield "{{" + inside + "}}"
        yield "{%" + inside + "%}"
    for inside in sequences([" ", "x", "in", "infor", "\n", "-"], 5):
        yield "{% for" + inside + "%}"
    for inside in sequences([" ", '"', "x", "/", "'"], 5):
        yield "{% include" + inside + "%}"


def templates():
    yield from (template.read_text("utf-8") for template in grammars.templates())
    yield from sequences(TAGS + ["text"], 4)
    yield from sequences(TAGS[1:6], 6)
    yield from sequences(["{", "%", "}", "x", " ", "\n"], 5)


class Engine:
    def __init__(self, program):
        self.program = program

    def accepts(self, texts):
        """True or false for each of the texts."""
        given = "".join(text + "\0" for text in texts)
        answers = subprocess.run(
            [self.program], input=given.encode(), stdout=subprocess.PIPE, check=True
        ).stdout.decode().split()
        if len(answers) != len(texts) or not set(answers) <= {"accepted", "rejected"}:
            raise RuntimeError(f"{self.program}: {len(answers)} answers for {len(texts)} templates")
        return [answer == "accepted" for answer in answers]


def compare(what, texts, expected, looks_right):
    differing = [text for text, right in zip(texts, expected) if looks_right(text) != right]
    for text in differing[:10]:
        print(f"{what}: {'legal' if looks_right(text) else 'illegal'}, unlike the engine: {text!r}")
    print(f"{what}: {len(texts)} compared, {sum(expected)} accepted, {len(differing)} differ")
    return not differing and 0 < sum(expected) < len(texts)


def templates_are_what_their_names_say(engine):
    named = grammars.templates()
    accepted = engine.accepts([template.read_text("utf-8") for template in named])
    wrong = [
        template.name
        for template, is_accepted in zip(named, accepted)
        if is_accepted == template.name.startswith("rejected")
    ]
    for name in wrong:
        print(f"{name}: the engine does not say so")
    return bool(named) and not wrong


def main():
    tokenizer = grammars.load(pathlib.Path(sys.argv[1]))
    engine = Engine(sys.argv[2])

    def plain_is_legal(text):
        lines, still_open = tokenizer.tokenize(grammars.PLAIN, text)
        return not still_open and not grammars.has_illegal(lines)

    def html_is_legal(text):
        return not grammars.has_illegal(tokenizer.tokenize(grammars.HTML, text)[0])

    whole = list(dict.fromkeys(templates()))
    single = list(dict.fromkeys(tags()))
    placed = [engine.accepts([front + tag + back for tag in single]) for front, back in PLACES]
    right = templates_are_what_their_names_say(engine)
    right &= compare("templates", whole, engine.accepts(whole), plain_is_legal)
    right &= compare("tags in text", single, engine.accepts(single), plain_is_legal)
    right &= compare("tags in HTML", single, [any(places) for places in zip(*placed)], html_is_legal)
    return 0 if right else 1


if __name__ == "__main__":
    sys.exit(main())
