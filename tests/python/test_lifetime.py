"""Threads, forks, reference cycles, and the exit of the interpreter."""

import copy
import gc
import os
import pickle
import subprocess
import sys
import threading
import weakref

import pytest
from stencilor import Context, Environment, Template


def run_threads(count, action):
    errors = []

    def run(number):
        try:
            action(number)
        except BaseException as error:
            errors.append(error)

    threads = [threading.Thread(target=run, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert errors == []


def run_program(text):
    return subprocess.run(
        [sys.executable, "-c", text], capture_output=True, text=True, timeout=100
    )


@pytest.mark.parametrize("loader", [{"part": "{{ v }}"}, lambda path: "{{ v }}"])
def test_threads_share_templates_and_contexts(loader):
    page = Environment(loader).from_string('{% for e in list %}{% include "part" %}{% endfor %}')
    shared = Context({"list": [{"v": "s"}] * 100})

    def render(number):
        for _ in range(50):
            assert page.render({"list": [{"v": number}] * 100}) == str(number) * 100
            assert page.render(shared) == "s" * 100

    run_threads(8, render)


def test_each_thread_receives_its_own_error():
    def loader(path):
        raise RuntimeError(threading.get_ident())

    page = Environment(loader).from_string('{% include "part" %}')

    def render(number):
        for _ in range(100):
            with pytest.raises(RuntimeError) as caught:
                page.render()
            assert caught.value.args == (threading.get_ident(),)

    run_threads(8, render)


def test_other_threads_run_during_a_render():
    inside, done = threading.Event(), threading.Event()

    def loader(path):
        inside.set()
        assert done.wait(60)
        return "text"

    page = Environment(loader).from_string('{% include "part" %}')
    thread = threading.Thread(target=page.render)
    thread.start()
    assert inside.wait(60)
    assert Template("also").render() == "also"
    done.set()
    thread.join()


def test_long_renders_release_the_interpreter():
    loops = 3
    page = Template("{% for a in l %}" * loops + "." + "{% endfor %}" * loops)
    context = Context({"l": [{}] * 200})
    ticks, stopped = [0], threading.Event()

    def tick():
        while not stopped.wait(0.001):
            ticks[0] += 1

    thread = threading.Thread(target=tick)
    thread.start()
    before = ticks[0]
    page.render(context)
    passed = ticks[0] - before
    stopped.set()
    thread.join()
    assert passed > 5


@pytest.mark.parametrize("loader", [os.path.dirname(__file__), lambda path: path])
def test_forked_processes_render(loader):
    name = os.path.basename(__file__)
    page = Environment(loader).from_string(f'{{% include "{name}" %}}')
    expected = page.render()
    stopped = threading.Event()

    def render():
        while not stopped.is_set():
            page.render()

    thread = threading.Thread(target=render)
    thread.start()
    try:
        for _ in range(20):
            child = os.fork()
            if child == 0:
                os._exit(0 if page.render() == expected else 1)
            assert os.waitpid(child, 0)[1] == 0
    finally:
        stopped.set()
        thread.join()


def test_cycles_are_collected():
    class Loader:
        def __init__(self):
            self.host = Environment(self.find)
            self.page = self.host.from_string('{% include "part" %}')

        def find(self, path):
            return "text"

    loader = Loader()
    assert loader.page.render() == "text"
    gone = weakref.ref(loader)
    del loader
    gc.collect()
    assert gone() is None


def test_environments_live_as_long_as_their_templates():
    page = Environment(lambda path: "text").from_string('{% include "part" %}')
    gc.collect()
    assert page.render() == "text"


def test_nothing_is_leaked():
    def resident():
        with open("/proc/self/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")

    def work(times):
        for _ in range(times):
            host = Environment({"part": "x" * 10_000})
            page = host.from_string('{% include "part" %}{{ gone }}{{ v }}' + "y" * 10_000)
            page.render_result({"v": "z" * 10_000})
            page.check()
            with pytest.raises(TypeError):
                Context({"v": "z" * 10_000, "w": 1j})
        gc.collect()

    work(300)
    before = resident()
    work(1000)
    assert resident() - before < 5_000_000


def test_handles_are_neither_copied_nor_pickled():
    for made in (Template("x"), Context({}), Environment({})):
        for action in (copy.copy, copy.deepcopy, pickle.dumps):
            with pytest.raises((TypeError, AttributeError)):
                action(made._handle if hasattr(made, "_handle") else made._source.handle)


@pytest.mark.parametrize(
    "text",
    [
        "page = Template('x'); context = Context({}); page.render(context)",
        "import builtins; builtins.kept = Environment(lambda path: 'x').from_string('{% include \"p\" %}')",
        "pages = [Template('x')]; pages.append(pages)",
        "import atexit; page = Environment(lambda path: 'x').from_string('{% include \"p\" %}')\n"
        "atexit.register(lambda: print(page.render()))",
    ],
)
def test_the_interpreter_exits_with_live_objects(text):
    ended = run_program("from stencilor import *\n" + text)
    assert (ended.returncode, ended.stderr) == (0, "")


@pytest.mark.parametrize("loader", ["None", "lambda path: 'x' * 1000"])
def test_the_interpreter_exits_while_daemons_render(loader):
    ended = run_program(
        f"""
import threading, time
from stencilor import Environment
page = Environment({loader}).from_string(
    "".join('{{% include "x' + str(n) + '" %}}' for n in range(1000)))
def work():
    while True:
        page.render()
for _ in range(4):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.2)
"""
    )
    assert (ended.returncode, ended.stderr) == (0, "")
