"""Measures the Python package alongside Jinja2, with workloads named like those of the benchmark.

    python3 bench/python/compare.py PACKAGE

PACKAGE is the folder that holds the package with its library. Both engines render the same templates
with the same data, in turns; the least time of each counts.
"""

import sys
import time

sys.path.insert(0, sys.argv[1])

import jinja2
import stencilor

PAGE = """<html><head><title>{{ title }}</title></head>
<body><h1>{{ title }}</h1>
<p>{% if admin %}You may edit.{% else %}You may look.{% endif %}</p>
<ul>
{% for item in items %}  <li class="row"><a href="{{ item.url }}">{{ item.name }}</a>\
{% if item.new %} <b>new</b>{% endif %}: {{ item.description }}</li>
{% endfor %}</ul></body></html>
"""
TABLE = """<table>
{% for row in rows %}<tr>{% for col in row.cells %}<td>{{ col.v }}</td>{% endfor %}</tr>
{% endfor %}</table>
"""
PROSE = "It was late in the year, and nobody had asked for a longer text than this one.\n"
TAGS = "{{ a }} {% if b %}x{% else %}y{% endif %}\n"
MEBIBYTE = 1 << 20


def page(count):
    rows = [
        {
            "url": f"/products/{number}",
            "name": f"Product {number}",
            "description": f"One of {count} things that nobody needs, in blue.",
            "new": number % 3 == 0,
        }
        for number in range(count)
    ]
    return PAGE, {"title": "Everything we sell", "admin": True, "items": rows}


def table():
    rows = [
        {"cells": [{"v": str(10 * row + column)} for column in range(10)]} for row in range(1000)
    ]
    return TABLE, {"rows": rows}


def prose():
    part = (PROSE * 100)[:4096]
    return (part + "{{ name }}") * (MEBIBYTE // len(part)), {"name": "Ada"}


WORKLOADS = {
    "W1": (
        "Hello, {{ name }}! You have {{ count }} new messages.",
        {"name": "Ada", "count": "12"},
    ),
    "W2-10": page(10),
    "W2-1000": page(1000),
    "W3": table(),
    "W4": prose(),
    "W5": (TAGS * (MEBIBYTE // len(TAGS)), {"a": "value", "b": True}),
}


def least_times(*renders):
    """Returns the minimum time of each in seconds, alternating every few milliseconds."""
    counts = []
    for render in renders:
        begin = time.perf_counter()
        render()
        counts.append(max(1, int(0.005 / (time.perf_counter() - begin))))
    least = [float("inf")] * len(renders)
    end = time.perf_counter() + 1.5
    while time.perf_counter() < end:
        for index, render in enumerate(renders):
            begin = time.perf_counter()
            for _ in range(counts[index]):
                render()
            least[index] = min(least[index], (time.perf_counter() - begin) / counts[index])
    return least


def main():
    print(f"{'Python':10}{'Jinja2 µs':>12}{'Stencilor µs':>14}{'of Jinja2':>11}{'with Context':>14}")
    for name, (text, values) in WORKLOADS.items():
        peer = jinja2.Environment(keep_trailing_newline=True).from_string(text)
        own = stencilor.Template(text)
        context = stencilor.Context(values)
        assert peer.render(values) == own.render(values) == own.render(context), name
        jinja, plain, ready = least_times(
            lambda: peer.render(values), lambda: own.render(values), lambda: own.render(context)
        )
        print(
            f"{name:10}{jinja * 1e6:12.1f}{plain * 1e6:14.1f}{plain / jinja:11.2f}{ready / jinja:14.2f}"
        )


main()
