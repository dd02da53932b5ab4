"""A small tokenizer for TextMate grammars, to test ours with.

It is not a whole one. It knows what our grammars use: match, begin and end, captures, contentName,
patterns, include (#name, $self, $base, scope and scope#name), and injections at the left ("L:scope").
Whatever else stands in a grammar is an error, so that a test cannot pass by ignoring it. Expressions
are run by Python's `re`; those of the grammars are written in what it shares with Oniguruma.
"""

import json
import re

RULE_KEYS = {
    "comment", "name", "contentName", "match", "captures", "begin", "beginCaptures", "end",
    "endCaptures", "patterns", "include",
}
GRAMMAR_KEYS = {
    "comment", "name", "scopeName", "fileTypes", "patterns", "repository", "injections",
}
# Escapes that Oniguruma and `re` do not both know, classes inside classes, and what backtracks
# differently.
FOREIGN = re.compile(r"\\[hHGRXKpPzZAcCMQE]|\(\?[<P][A-Za-z]|\[\[|&&|\(\?[a-zA-Z-]+[:)]|[*+?}]\+")


class GrammarError(Exception):
    """A grammar holds what this tokenizer does not know."""


def check_keys(what, found, known):
    unknown = set(found) - known
    if unknown:
        raise GrammarError(f"{what} has unknown keys: {', '.join(sorted(unknown))}")


def compile_expression(text):
    if FOREIGN.search(text):
        raise GrammarError(f"not the same to all regular expressions: {text}")
    return re.compile(text)


def names(rule, key="name"):
    return rule.get(key, "").split()


class Frame:
    """A begin rule that is open."""

    def __init__(self, rule, grammar, end, outer, inner):
        self.rule = rule
        self.grammar = grammar
        self.end = end  # None for a grammar itself
        self.outer = outer  # the scopes of the begin and the end
        self.inner = inner  # the scopes in between


class Tokenizer:
    def __init__(self, files):
        """The grammars of all files may include each other."""
        self.grammars = {}
        self.expressions = {}
        self.flattened = {}
        for file in files:
            with open(file, encoding="utf-8") as stream:
                grammar = json.load(stream)
            check_keys(file, grammar, GRAMMAR_KEYS)
            self.grammars[grammar["scopeName"]] = grammar

    def tokenize(self, scope, text):
        """Returns the lines as lists of (text, scopes), and the frames that are open at the end."""
        grammar = self.grammars[scope]
        self.base = grammar
        injected = [
            {"patterns": injection["patterns"]} for injection in self.injections(grammar)
        ]
        self.injected = [rule for part in injected for rule in self.rules(part, grammar)]
        stack = [Frame(grammar, grammar, None, [scope], [scope])]
        lines = [self.tokenize_line(line, stack) for line in text.removesuffix("\n").split("\n")]
        return lines, stack[1:]

    @staticmethod
    def injections(grammar):
        for selector, injection in grammar.get("injections", {}).items():
            if selector != "L:" + grammar["scopeName"]:
                raise GrammarError(f"unknown selector: {selector}")
            yield injection

    def tokenize_line(self, line, stack):
        scopes_at = [None] * len(line)  # the scopes of each character
        line += "\n"  # as editors hand the lines over
        at = 0
        entered = []  # the rules that were entered where nothing has been consumed since
        while at < len(line):
            top = stack[-1]
            found, rule, grammar = self.first_match(line, at, top)
            if found is None:
                self.paint(scopes_at, at, len(line), top.inner)
                break
            self.paint(scopes_at, at, found.start(), top.inner)
            if found.end() > at:
                entered = []
            at = found.end()
            if rule is None:  # the end of the open rule
                self.paint_captures(scopes_at, found, top.outer, top.rule.get("endCaptures", {}))
                stack.pop()
                continue
            scopes = top.inner + names(rule)
            if "match" in rule:
                if found.end() == found.start():
                    raise GrammarError(f"matches nothing: {rule['match']}")
                self.paint_captures(scopes_at, found, scopes, rule.get("captures", {}))
                continue
            if found.end() == found.start() and rule in entered:
                raise GrammarError(f"begins again and again: {rule['begin']}")
            entered.append(rule)
            self.paint_captures(scopes_at, found, scopes, rule.get("beginCaptures", {}))
            end = self.expression(rule["end"])
            stack.append(Frame(rule, grammar, end, scopes, scopes + names(rule, "contentName")))
        return self.tokens(line, scopes_at)

    def first_match(self, line, at, top):
        """The leftmost match; of those at one place injections first, then the end, then in order."""
        best = None
        candidates = [(rule, self.base) for rule, _ in self.injected]
        if top.end is not None:
            candidates.append((None, top.grammar))
        candidates += self.rules(top.rule, top.grammar)
        for rule, grammar in candidates:
            expression = top.end if rule is None else self.expression(rule.get("match") or rule["begin"])
            found = expression.search(line, at)
            if found is not None and (best is None or found.start() < best[0].start()):
                best = (found, rule, grammar)
        return best or (None, None, None)

    def rules(self, parent, grammar):
        """The rules of the patterns of `parent`, with those that they include."""
        key = (id(parent), id(self.base))
        if key not in self.flattened:
            self.flattened[key] = []  # a rule that includes itself finds nothing new in it
            self.flattened[key] = list(self.flatten(parent.get("patterns", []), grammar, set()))
        return self.flattened[key]

    def flatten(self, patterns, grammar, seen):
        for rule in patterns:
            check_keys("a rule", rule, RULE_KEYS)
            if "include" in rule:
                target, home = self.included(rule["include"], grammar)
                if id(target) not in seen:
                    in_turn = [target] if {"match", "begin"} & set(target) else target["patterns"]
                    yield from self.flatten(in_turn, home, seen | {id(target)})
            elif "match" in rule or "begin" in rule:
                yield rule, grammar
            else:
                yield from self.flatten(rule["patterns"], grammar, seen)

    def included(self, name, grammar):
        if name == "$self":
            return grammar, grammar
        if name == "$base":
            return self.base, self.base
        scope, _, entry = name.partition("#")
        home = self.grammars[scope] if scope else grammar
        return (home["repository"][entry] if entry else home), home

    def expression(self, text):
        if text not in self.expressions:
            self.expressions[text] = compile_expression(text)
        return self.expressions[text]

    @staticmethod
    def paint(scopes_at, begin, end, scopes):
        for index in range(begin, min(end, len(scopes_at))):
            scopes_at[index] = list(scopes)

    def paint_captures(self, scopes_at, found, scopes, captures):
        self.paint(scopes_at, found.start(), found.end(), scopes)
        for number in sorted(captures, key=int):
            check_keys("a capture", captures[number], {"name"})
            begin, end = found.span(int(number))
            for index in range(max(begin, 0), min(end, len(scopes_at))):
                scopes_at[index] += names(captures[number])

    @staticmethod
    def tokens(line, scopes_at):
        result = []
        for character, scopes in zip(line, scopes_at):
            if result and result[-1][1] == scopes:
                result[-1] = (result[-1][0] + character, scopes)
            else:
                result.append((character, scopes))
        return result
