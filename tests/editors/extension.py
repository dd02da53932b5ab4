#!/usr/bin/env python3
"""Tests the files of the extension for VS Code.

    extension.py EXTENSION_FOLDER VERSION STENCILOR
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

FOLDER = pathlib.Path(sys.argv[1]).resolve()
VERSION = sys.argv[2]
PROGRAM = sys.argv[3]


def read(path):
    with open(FOLDER / path, encoding="utf-8") as stream:
        return json.load(stream)


PACKAGE = read("package.json")
CONTRIBUTED = PACKAGE["contributes"]
CONFIGURATION = read("language-configuration.json")


class Package(unittest.TestCase):
    def test_every_file_that_it_names_exists(self):
        named = [language["configuration"] for language in CONTRIBUTED["languages"]]
        named += [grammar["path"] for grammar in CONTRIBUTED["grammars"]]
        for path in named:
            self.assertTrue(path.startswith("./") and (FOLDER / path).is_file(), path)

    def test_every_grammar_is_named_with_the_scope_that_it_has(self):
        named = {grammar["path"]: grammar["scopeName"] for grammar in CONTRIBUTED["grammars"]}
        found = {
            "./syntaxes/" + path.name: read(path)["scopeName"]
            for path in (FOLDER / "syntaxes").iterdir()
        }
        self.assertEqual(named, found)

    def test_every_grammar_belongs_to_a_language_and_the_other_way_round(self):
        languages = [language["id"] for language in CONTRIBUTED["languages"]]
        self.assertEqual(languages, [grammar["language"] for grammar in CONTRIBUTED["grammars"]])

    def test_it_has_the_version_of_the_engine(self):
        self.assertEqual(PACKAGE["version"], VERSION)


class Readme(unittest.TestCase):
    def setUp(self):
        text = (FOLDER / "README.md").read_text("utf-8")
        blocks = re.findall(r"<!-- file: (\S+) -->\n```json\n(.*?)```\n", text, re.DOTALL)
        self.files = {name: json.loads(block) for name, block in blocks}

    def test_the_settings_name_a_language_that_there_is(self):
        languages = [language["id"] for language in CONTRIBUTED["languages"]]
        for language in self.files["settings.json"]["files.associations"].values():
            self.assertIn(language, languages)

    def test_the_task_names_the_problem_matcher(self):
        matchers = ["$" + matcher["name"] for matcher in CONTRIBUTED["problemMatchers"]]
        for task in self.files["tasks.json"]["tasks"]:
            self.assertIn(task["problemMatcher"], matchers)


class LanguageConfiguration(unittest.TestCase):
    def test_a_word_is_a_name(self):
        words = re.findall(CONFIGURATION["wordPattern"], "{{ user.name }} {%if _1%} a-b/c 2x")
        self.assertEqual(words, ["user.name", "if", "_1", "a", "b/c", "x"])

    def test_folding_begins_and_ends_where_a_block_stays_open_over_the_line(self):
        markers = CONFIGURATION["folding"]["markers"]
        table = [
            ("{% if x %}", "start"),
            ("  <p>{%for x in y%}", "start"),
            ("{% endif %}", "end"),
            ("</p>{%endfor%}", "end"),
            ("{% if x %}yes{% endif %}", None),
            ("{% else %}", None),
            ('{% include "if" %}', None),
            ("{{ if }}", None),
        ]
        for line, expected in table:
            found = [kind for kind in ("start", "end") if re.search(markers[kind], line)]
            self.assertEqual(found, [expected] if expected else [], line)

    def test_pairs_are_those_of_the_language(self):
        pairs = [["{{", "}}"], ["{%", "%}"]]
        self.assertEqual(CONFIGURATION["brackets"], pairs)
        closing = [[pair["open"], pair["close"]] for pair in CONFIGURATION["autoClosingPairs"]]
        self.assertEqual(closing, [*pairs, ['"', '"']])


class ProblemMatcher(unittest.TestCase):
    def found_in(self, text):
        """What the matcher finds in what `stencilor check` prints of a template."""
        pattern = CONTRIBUTED["problemMatchers"][0]["pattern"]
        with tempfile.TemporaryDirectory() as folder:
            template = pathlib.Path(folder) / "page.stencilor"
            template.write_text(text, "utf-8")
            checked = subprocess.run(
                [PROGRAM, "check", template.name],
                cwd=folder,
                stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                text=True,
            )
        matches = [re.search(pattern["regexp"], line) for line in checked.stdout.splitlines()]
        keys = ("file", "line", "column", "severity")
        return [tuple(match.group(pattern[key]) for key in keys) for match in matches if match]

    def test_it_finds_the_places_of_a_mistake_and_of_its_note(self):
        self.assertEqual(
            self.found_in("text\n  {{ a-b }}\n"),
            [("page.stencilor", "2", "7", "error"), ("page.stencilor", "2", "3", "note")],
        )

    def test_it_finds_nothing_where_nothing_is_wrong(self):
        self.assertEqual(self.found_in("{{ x }}\n"), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
