import os
import pathlib

import pytest
from stencilor import (
    Environment,
    LimitExceeded,
    Limits,
    MessageKind,
    Status,
    Template,
    TemplateNotFound,
    TemplateSyntaxError,
    TemplateUnreadable,
)

TEXTS = {"page": 'Dear {{ name }}{% include "dir/end" %}', "dir/end": "!", "bad": "{{ name"}


@pytest.fixture(params=["mapping", "path", "folder", "function"])
def host(request, tmp_path):
    for path, text in TEXTS.items():
        file = tmp_path / "files" / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
    loaders = {
        "mapping": TEXTS,
        "path": tmp_path / "files",
        "folder": str(tmp_path / "files"),
        "function": TEXTS.get,
    }
    return Environment(loaders[request.param])


def test_loaders_find_templates(host):
    page = host.get_template("page")
    assert (page.name, page.render({"name": "Zoë"})) == ("page", "Dear Zoë!")
    assert host.from_string('{% include "page" %}').render({"name": 1}) == "Dear 1!"
    assert [name.name for name in host.names("page")] == ["name"]
    assert host.check("page", {"name": "Zoë"}) == []
    assert [finding.rule for finding in host.check("page", {})] == ["missing-name"]


def test_loaders_report_missing_templates(host):
    with pytest.raises(TemplateNotFound, match="there is no template 'gone'") as caught:
        host.get_template("gone")
    assert isinstance(caught.value, LookupError) and caught.value.name == "gone"
    with pytest.raises(TemplateNotFound):
        host.check("gone")
    with pytest.raises(TemplateSyntaxError, match="^bad:1:8: "):
        host.get_template("bad")
    with pytest.raises(TemplateSyntaxError):
        host.names("bad")
    assert [finding.rule for finding in host.check("bad")] == ["syntax"]
    result = host.from_string('{% include "bad" %}{% include "gone" %}', "page").render_result()
    assert [message.kind for message in result.messages] == [
        MessageKind.TEMPLATE_REJECTED,
        MessageKind.TEMPLATE_NOT_FOUND,
    ]


def test_without_a_loader_there_are_no_templates():
    with pytest.raises(TemplateNotFound):
        Environment().get_template("page")
    assert len(Template('{% include "page" %}').render_result().messages) == 1


def test_files_outside_a_folder_are_not_found(tmp_path):
    (tmp_path / "secret").write_text("secret")
    (tmp_path / "folder").mkdir()
    (tmp_path / "folder" / "link").symlink_to(tmp_path / "secret")
    host = Environment(tmp_path / "folder")
    for path in ("../secret", str(tmp_path / "secret"), "link"):
        with pytest.raises((TemplateNotFound, TemplateUnreadable)):
            host.get_template(path)


def test_a_folder_must_exist(tmp_path):
    with pytest.raises(NotADirectoryError, match="gone"):
        Environment(tmp_path / "gone")


def test_paths_may_hold_any_bytes(tmp_path):
    folder = os.fsdecode(os.fsencode(tmp_path) + b"/\xff")
    os.mkdir(folder)
    pathlib.Path(folder, "page").write_text("text")
    assert Environment(folder).get_template("page").render() == "text"


def test_files_that_change_are_read_again(tmp_path):
    host = Environment(tmp_path)
    for text in ("old", "new text"):
        (tmp_path / "part").write_text(text)
        assert host.from_string('{% include "part" %}').render() == text


def test_functions_return_texts_or_templates():
    found = {"str": "a{{ v }}", "bytes": b"b{{ v }}", "template": Template("c{{ v }}", "own name")}
    host = Environment(found.get)
    page = host.from_string("".join(f'{{% include "{path}" %}}' for path in found))
    assert page.render({"v": 1}) == "a1b1c1"
    assert host.get_template("template").name == "own name"


def test_functions_are_called_once_per_path_and_render():
    asked = []
    host = Environment(lambda path: asked.append(path) or "")
    page = host.from_string('{% include "a" %}{% include "a" %}{% include "b" %}')
    page.render()
    assert asked == ["a", "b"]


class Trouble(BaseException):
    pass


@pytest.mark.parametrize("error", [ValueError("own"), Trouble("own"), KeyboardInterrupt()])
def test_what_a_function_raises_reaches_the_caller(error):
    def loader(path):
        raise error

    host = Environment(loader)
    page = host.from_string('before {% include "part" %}')
    calls = (page.render, page.render_result, page.check, page.names)
    for call in (*calls, lambda: host.get_template("part")):
        with pytest.raises(type(error)) as caught:
            call()
        assert caught.value is error
        assert caught.traceback[-1].name == "loader"
    assert Template("works").render() == "works"


def test_functions_that_return_something_else_are_reported():
    page = Environment(lambda path: 5).from_string('{% include "part" %}')
    with pytest.raises(TypeError, match="a str, a Template or None, not 5"):
        page.render()


def test_functions_may_render():
    inner = Environment({"x": "{{ v }}"})

    def loader(path):
        with pytest.raises(ZeroDivisionError):
            Environment(lambda path: 1 // 0).from_string('{% include "y" %}').render()
        return inner.get_template("x").render({"v": "made of " + path})

    assert Environment(loader).from_string('{% include "part" %}').render() == "made of part"


def test_long_answers_of_functions_end_a_limited_render():
    page = Environment(lambda path: "x" * 100).from_string('{% include "part" %}')
    assert page.render_result(limits=Limits(template_bytes=99)).status == Status.TEMPLATE_LIMIT
    with pytest.raises(LimitExceeded):
        page.render(limits=Limits(template_bytes=99))


def test_mappings_are_copied():
    texts = {"a": "old"}
    host = Environment(texts)
    texts["a"] = "new"
    assert host.get_template("a").render() == "old"


@pytest.mark.parametrize("loader", [5, ["a"]])
def test_other_loaders_are_rejected(loader):
    with pytest.raises(TypeError, match="a folder, a mapping or a function"):
        Environment(loader)


def test_invalid_options_are_rejected_early():
    with pytest.raises(ValueError, match="'xml'"):
        Environment(escape="xml")
