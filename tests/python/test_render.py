import pickle

import pytest
from stencilor import (
    Environment,
    IncludeSite,
    LimitExceeded,
    Limits,
    MessageKind,
    RenderError,
    Status,
    Template,
    TemplateSyntaxError,
    check,
)


def test_escapes():
    page = Template("<{{ v }}>", "page")
    values = {"v": "<&\"'\n"}
    assert page.render(values) == page.render(values, escape="none") == "<<&\"'\n>"
    assert page.render(values, escape="html") == "<&lt;&amp;&quot;&#39;\n>"
    assert page.render(values, escape="json") == "<\\u003c\\u0026\\\"'\\n>"
    with pytest.raises(ValueError, match="'none', 'html', 'json', not 'xml'"):
        page.render(values, escape="xml")


def test_malformed_templates_raise_errors_with_locations():
    with pytest.raises(TemplateSyntaxError) as caught:
        Template("é\né {{ name", "page.html")
    error = caught.value
    assert (error.lineno, error.column, error.filename) == (2, 10, "page.html")
    assert 'expected "}}"' in error.message
    assert str(error) == f"page.html:2:10: {error.message}"
    assert str(pickle.loads(pickle.dumps(error))) == str(error)
    with pytest.raises(TemplateSyntaxError, match="^<template>:1:"):
        Template("{{")


def test_templates_are_texts_or_bytes():
    page = Template("Zoë\udc80{{ v }}", "né")
    assert (page.render({"v": 1}), page.name, page.text) == ("Zoë\ufffd1", "né", "Zoë\ufffd{{ v }}")
    assert repr(page) == "<Template 'né'>"
    assert Template("Zoë".encode()).render() == "Zoë"
    assert Template("").render() == ""
    assert Template("a\0b").render() == "a"


def test_results_have_messages_with_locations():
    parts = {"part": "\n{{ gone }}"}
    page = Environment(parts).from_string('{{ a }}{% include "part" %}', "page")
    result = page.render_result({"a": []})
    assert (result.text, result.status) == ("\n", Status.OK)
    first, second = result.messages
    assert (first.kind, first.name, first.filename) == (MessageKind.VALUE_NOT_TEXT, "a", "page")
    assert (first.lineno, first.column, first.included_from) == (1, 4, ())
    assert (second.kind, second.filename) == (MessageKind.VALUE_NOT_FOUND, "part")
    assert (second.lineno, second.column) == (2, 4)
    assert second.included_from == (IncludeSite("page", 1, 20),)
    assert str(second) == 'part:2:4: there is no value named "gone"'
    usage = result.usage
    assert (usage.steps, usage.output_bytes, usage.template_bytes) == (4, 1, 11)
    assert (usage.include_depth, usage.messages) == (1, 2)


def test_future_kinds_are_unknown():
    assert MessageKind(999) is MessageKind.UNKNOWN


@pytest.mark.parametrize(
    "limits, status",
    [
        (Limits(steps=2), Status.STEP_LIMIT),
        (Limits(output_bytes=4), Status.OUTPUT_LIMIT),
        (Limits(template_bytes=4), Status.TEMPLATE_LIMIT),
        (Limits(include_depth=1), Status.DEPTH_LIMIT),
    ],
)
def test_limits_end_a_render(limits, status):
    parts = {"a": 'text {% include "b" %}', "b": "more"}
    page = Environment(parts).from_string('{% include "a" %}', "page")
    assert page.render() == "text more"
    result = page.render_result(limits=limits)
    assert (result.text, result.status) == ("", status)
    with pytest.raises(LimitExceeded) as caught:
        page.render(limits=limits)
    assert caught.value.status == status
    assert caught.value.messages == result.messages
    assert str(caught.value).startswith(("page:1:", "a:1:"))
    assert pickle.loads(pickle.dumps(caught.value)).messages == result.messages


def test_messages_are_kept_up_to_the_limit():
    result = Template("{{ a }}{{ b }}{{ c }}").render_result(limits=Limits(messages=2))
    assert (len(result.messages), result.usage.messages) == (2, 3)


def test_limits_are_non_negative_integers():
    with pytest.raises(ValueError, match="not -1"):
        Limits(steps=-1)
    with pytest.raises(ValueError):
        Limits(steps=1 << 64)
    with pytest.raises(TypeError, match="not 1.5"):
        Limits(steps=1.5)  # type: ignore[arg-type]


def test_strict_renders_raise_their_messages():
    page = Template("{{ a }}{{ b }}", "page")
    assert page.render({"a": 1, "b": 2}, strict=True) == "12"
    assert page.render({"a": 1}) == "1"
    with pytest.raises(RenderError) as caught:
        page.render({}, strict=True)
    assert [message.name for message in caught.value.messages] == ["a", "b"]
    assert str(caught.value).splitlines()[1] == 'page:1:11: there is no value named "b"'


def test_calls_override_the_options_of_the_environment():
    host = Environment(
        escape="html", strict=True, positions=True, limits=Limits(output_bytes=100)
    )
    page = host.from_string("{% for e in v %}{{ e.index }}{{ e.value }}{% endfor %}{{ x }}")
    with pytest.raises(RenderError):
        page.render({"v": ["<"]})
    assert page.render({"v": ["<"], "x": ""}) == "1&lt;"
    assert page.render({"v": ["<"]}, escape="none", strict=False, positions=False) == "<"
    with pytest.raises(LimitExceeded):
        page.render({"v": ["<" * 100], "x": ""})
    assert len(page.render({"v": ["<" * 100], "x": ""}, limits=Limits())) == 401


def test_any_number_of_options_may_be_used():
    page = Template("{{ v }}")
    for steps in range(1, 500):
        assert page.render({"v": steps}, limits=Limits(steps=steps)) == str(steps)


def test_malformed_templates_are_checked_too():
    (finding,) = check("{{ titel }}", {"title": "T"}, "page")
    assert (finding.rule, finding.severity) == ("missing-name", "warning")
    assert (finding.place.filename, finding.place.lineno, finding.place.column) == ("page", 1, 4)
    assert 'did you mean "title"?' in str(finding)
    assert str(finding).startswith("page:1:4: warning: ")
    assert check("{{ titel }}") == []
    assert [each.rule for each in check("{{ a")] == ["syntax"]


def test_names_are_listed():
    page = Template("{% for row in rows %}{% if row.new %}{{ row.name }}{% endif %}{% endfor %}")
    assert [(name.name, name.kind) for name in page.names()] == [
        ("rows", "list"),
        ("row.new", "boolean"),
        ("row.name", "string"),
    ]
    assert page.names()[2].loops == (("row", "rows"),)
