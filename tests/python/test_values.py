import collections
import enum
import types
from dataclasses import dataclass, field
from datetime import date
from decimal import Decimal
from typing import Any, List

import pytest
import stencilor
from stencilor import Context, Raw, Template


@dataclass
class Item:
    name: str
    price: Any = None
    tags: List[Any] = field(default_factory=list)


class Colour(str, enum.Enum):
    RED = "red"


class Level(enum.IntEnum):
    HIGH = 3


def shown(value, **options):
    return Template("{{ v }}").render({"v": value}, **options)


def listed(value):
    return Template("{% for e in v %}[{{ e.value }}]{% endfor %}").render({"v": value})


@pytest.mark.parametrize(
    "value, text",
    [
        ("Zoë 日本 \U0001f375", "Zoë 日本 \U0001f375"),
        ('"\\\x01\x7f\u2028/', '"\\\x01\x7f\u2028/'),
        ("before\0after", "before"),
        ("lone \ud83d and \udc80", "lone \ufffd and \ufffd"),
        (Colour.RED, "red"),
        ("Zoë".encode(), "Zoë"),
        (b"\xff<", "\ufffd<"),
        (bytearray(b"ab"), "ab"),
        (memoryview(b"ab"), "ab"),
        (0, "0"),
        (-(10**30), "-1" + 30 * "0"),
        (Level.HIGH, "3"),
        (1.0, "1"),
        (-0.0, "0"),
        (4.5, "4.5"),
        (0.1 + 0.2, "0.30000000000000004"),
        (1e16, "10000000000000000"),
        (1e-5, "0.00001"),
        (1e-7, "1e-7"),
        (1e21, "1e+21"),
        (5e-324, "5e-324"),
        (1.7976931348623157e308, "1.7976931348623157e+308"),
        (Decimal("4.50"), "4.50"),
        (Decimal("1E+3"), "1E+3"),
    ],
)
def test_texts_and_numbers_become_texts(value, text):
    assert shown(value) == text


@pytest.mark.parametrize(
    "value",
    [
        ["a", 1, True],
        ("a", 1, True),
        collections.deque(["a", 1, True]),
        collections.UserList(["a", 1, True]),
        collections.namedtuple("Row", "a b c")("a", 1, True),
    ],
)
def test_sequences_become_lists(value):
    assert listed(value) == "[a][1][]"


@pytest.mark.parametrize(
    "value",
    [
        {"name": "Tea", "price": 4.5},
        collections.OrderedDict(name="Tea", price=4.5),
        collections.ChainMap({"name": "Tea"}, {"price": 4.5}),
        types.MappingProxyType({"name": "Tea", "price": 4.5}),
        Item("Tea", 4.5),
    ],
)
def test_mappings_and_dataclasses_become_dictionaries(value):
    assert Template("{{ v.name }} {{ v.price }}").render({"v": value}) == "Tea 4.5"
    assert Template("{{ name }} {{ price }}").render(value) == "Tea 4.5"


def test_booleans_are_tested_and_none_is_missing():
    page = Template("{% if yes %}yes{% endif %}{% if no %}{% else %}no{% endif %}{{ none }}")
    result = page.render_result({"yes": True, "no": False, "none": None})
    assert result.text == "yesno"
    assert [message.name for message in result.messages] == ["none"]


def test_raw_texts_are_not_escaped():
    page = Template("{{ plain }}{{ raw }}{% for e in list %}{{ e.value }}{% endfor %}")
    values = {"plain": "<i>", "raw": Raw("<b>é"), "list": [Raw("<u>"), "<s>"]}
    assert page.render(values, escape="html") == "&lt;i&gt;<b>é<u>&lt;s&gt;"
    assert Raw("a") == Raw("a") != Raw("b") and str(Raw("a")) == "a"
    assert hash(Raw("a")) == hash(Raw("a")) and repr(Raw("a")) == "Raw('a')"
    with pytest.raises(TypeError):
        Raw(b"<b>")  # type: ignore[arg-type]
    with pytest.raises(TypeError):
        "<" + Raw("b")  # type: ignore[operator]


def test_keys_that_json_accepts_become_texts():
    values = {1: "a", "v": {2.5: "b", True: "c", None: "d"}}
    page = "{{ v.2.5 }}{{ v.true }}{{ v.null }}"
    assert Template(page).render(values) == "bcd"


def test_elements_have_positions_on_request():
    page = Template("{% for e in v %}{{ e.index }}{{ e.value }}{% endfor %}")
    assert page.render({"v": "ab"}) == ""
    assert page.render({"v": ["a", "b"]}, positions=True) == "1a2b"
    assert page.render(Context({"v": ["a", "b"]}, positions=True)) == "1a2b"


def inside_itself():
    values: List[Any] = [1]
    values.append({"again": values})
    return values


def nested(levels):
    value: Any = "deep"
    for _ in range(levels):
        value = [value]
    return value


class Failing(collections.abc.Mapping):
    def __getitem__(self, key):
        raise KeyError(key)

    def __iter__(self):
        return iter(["key"])

    def __len__(self):
        return 1


@pytest.mark.parametrize(
    "values, kind, text",
    [
        ([1], TypeError, "values must be a mapping or a dataclass, not list"),
        ("text", TypeError, "values must be a mapping or a dataclass, not str"),
        (Item, TypeError, "values must be a mapping or a dataclass, not type"),
        ({"a": {1, 2}}, TypeError, "a: set cannot be converted to a template value"),
        ({"a": date(2026, 1, 1)}, TypeError, "a: datetime.date cannot be"),
        ({"items": [{}, {}, {}, Item("x", object())]}, TypeError, "items[3].price: object cannot be"),
        ({"items": ({"price": 1j},)}, TypeError, "items[0].price: complex cannot be"),
        ({"first name": [{"$boolean": True, "x": 1j}]}, TypeError, "['first name'][0].x: complex"),
        (collections.ChainMap({"a": [1j]}), TypeError, "a[0]: complex cannot be"),
        ({"a": {"b": (x for x in "ab")}}, TypeError, "a.b: generator cannot be"),
        ({"a": {(1, 2): 3}}, TypeError, "a[(1, 2)]: a key must be a str, not tuple"),
        ({"a": {b"k": 3}}, TypeError, "a[b'k']: a key must be a str, not bytes"),
        ({"a": {1: 3, "1": 4}}, ValueError, "a['1']: more than one key becomes '1'"),
        ({"a": {"$boolean": 1}}, TypeError, "a['$boolean']: must be True or False, not int"),
        ({"a": [float("nan")]}, ValueError, "a[0]: nan is not a finite number"),
        ({"a": Item("x", float("-inf"))}, ValueError, "a.price: -inf is not a finite number"),
        ({"a": Decimal("NaN")}, ValueError, "a: NaN is not a finite number"),
        ({"a": inside_itself()}, ValueError, "a[1].again: contains itself"),
        ({"a": nested(512)}, ValueError, "...: values nest deeper than 512 levels"),
    ],
)
def test_other_values_are_rejected_with_their_path(values, kind, text):
    for make in (Context, Template("").render, Template("").check):
        with pytest.raises(kind) as caught:
            make(values)
        assert text in str(caught.value)
        assert caught.type is kind


def test_values_nest_up_to_512_levels():
    assert Template("{% for x in a %}x{% endfor %}").render({"a": nested(511)}) == "x"


def test_errors_of_values_reach_the_caller():
    with pytest.raises(KeyError, match="key"):
        Context({"a": Failing()})


def test_one_value_in_many_places_is_not_a_cycle():
    shared = ["s"]
    assert Template("{% for e in b %}{{ e.value }}{% endfor %}").render({"a": shared, "b": shared}) == "s"
    with pytest.raises(TypeError, match="c"):
        Context({"a": shared, "b": [shared, shared], "c": 1j})


def test_a_context_is_a_copy():
    values = {"v": ["a"]}
    context = Context(values)
    values["v"].append("b")
    page = Template("{% for e in v %}{{ e.value }}{% endfor %}")
    assert page.render(context) == page.render(context) == "a"


def test_dotted_names_that_take_too_much_memory_are_rejected():
    deep: Any = {str(number): "" for number in range(50)}
    for level in range(100):
        deep = {"x" * 4000: deep}
    with pytest.raises(ValueError, match="512"):
        Context(deep)


def test_the_version_is_that_of_the_library():
    assert stencilor.__version__.count(".") == 2
