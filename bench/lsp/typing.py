"""Measures how long the language server takes to answer while someone types.

    python3 bench/lsp/typing.py PROGRAM

Types some lines into a template of 200 KiB, with the pauses of a person, and sends after each key
what Visual Studio Code sends. Prints the 99th percentile of the times until an answer.
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import threading
import time

TARGET = 20  # milliseconds
SIZE = 200 << 10
ROW = """<tr class="row">{% if row.new %}<td>{{ row.name }}</td>{% else %}<td>-</td>{% endif %}</tr>
"""
TYPED = """<tr>{% for tag in row.tags %}
  {% if tag.shown %}<td class="tag">{{ tag.text }}, {{ row.name }}</td>{% else %}-{% endif %}
{% endfor %}</tr>
<p>{{ title }}: {{ row.price }}</p>
"""
PAUSES = (90, 120, 70, 150, 60, 110, 240, 80, 130, 65, 400)  # milliseconds, in turns
CAPABILITIES = {
    "textDocument": {
        "codeAction": {"codeActionLiteralSupport": {"codeActionKind": {"valueSet": ["quickfix"]}}},
        "documentSymbol": {"hierarchicalDocumentSymbolSupport": True},
        "publishDiagnostics": {"relatedInformation": True},
    }
}
REQUESTS = (
    "completion",
    "semanticTokens/full",
    "documentHighlight",
    "codeAction",
    "documentSymbol",
    "foldingRange",
    "documentLink",
)


class Client:
    """Sends messages, and notes when the answers arrive."""

    def __init__(self, program):
        self.server = subprocess.Popen([program, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.sent = {}
        self.times = []  # in milliseconds
        self.published = None
        self.failed = False
        threading.Thread(target=self.read, daemon=True).start()

    def send(self, message):
        content = json.dumps({"jsonrpc": "2.0", **message}).encode()
        self.server.stdin.write(b"Content-Length: %d\r\n\r\n%b" % (len(content), content))
        self.server.stdin.flush()

    def notify(self, method, params):
        self.send({"method": method, "params": params})

    def request(self, method, params):
        identifier = len(self.sent)
        self.sent[identifier] = time.perf_counter()
        self.send({"id": identifier, "method": method, "params": params})

    def read(self):
        stream = self.server.stdout
        while header := stream.readline():
            size = int(header.split(b":")[1])
            stream.readline()
            content = stream.read(size)
            arrival = time.perf_counter()
            # Parsing a long answer would delay the next one.
            answer = re.search(rb'"id":(\d+)', content[:40])
            if answer and b'"error"' not in content[:60]:
                self.times.append((arrival - self.sent[int(answer[1])]) * 1000)
            elif b"publishDiagnostics" in content:
                self.published = json.loads(content)["params"]
            else:
                print(f"typing: {content[:200]}", file=sys.stderr)
                self.failed = True

    def wait(self, condition):
        end = time.perf_counter() + 10
        while not condition():
            if self.failed or time.perf_counter() > end:
                sys.exit("typing: the server does not answer")
            time.sleep(0.001)


def type_text(client, uri, text, line):
    start = text.index(ROW) + len(ROW) * line
    character = 0
    line = text.count("\n", 0, start)
    for index, key in enumerate(TYPED):
        time.sleep(PAUSES[index % len(PAUSES)] / 1000)
        at = {"line": line, "character": character}
        document = {"uri": uri, "version": index + 2}
        change = {"range": {"start": at, "end": at}, "text": key}
        client.notify(
            "textDocument/didChange", {"textDocument": document, "contentChanges": [change]}
        )
        line, character = (line + 1, 0) if key == "\n" else (line, character + 1)
        at = {"line": line, "character": character}
        for method in REQUESTS:
            params = {"textDocument": {"uri": uri}, "position": at}
            if method == "codeAction":
                params |= {"range": {"start": at, "end": at}, "context": {"diagnostics": []}}
            client.request("textDocument/" + method, params)


def main():
    rows = [
        {"name": f"Product {number}", "new": number % 3 == 0, "price": "1", "tags": [{"text": "x", "shown": True}]}
        for number in range(20)
    ]
    text = "<table>\n{% for row in rows %}\n" + ROW * (SIZE // len(ROW)) + "{% endfor %}</table>\n"
    with tempfile.TemporaryDirectory() as folder:
        page = os.path.join(folder, "page.html")
        with open(page + ".context.json", "w", encoding="utf-8") as context:
            json.dump({"title": "Everything we sell", "rows": rows}, context)
        client = Client(sys.argv[1])
        client.request("initialize", {"capabilities": CAPABILITIES, "rootUri": "file://" + folder})
        client.wait(lambda: client.times)
        client.times.clear()
        client.notify("initialized", {})
        document = {"uri": "file://" + page, "languageId": "stencilor", "version": 1, "text": text}
        client.notify("textDocument/didOpen", {"textDocument": document})
        client.wait(lambda: client.published)
        type_text(client, document["uri"], text, SIZE // len(ROW) // 2)
        client.wait(lambda: len(client.times) == len(TYPED) * len(REQUESTS))
        client.wait(lambda: client.published["version"] == len(TYPED) + 1)
        if client.published["diagnostics"]:
            sys.exit(f"typing: {client.published['diagnostics'][0]['message']}")
        client.server.stdin.close()
        client.server.wait()
    times = sorted(client.times)
    figure = times[len(times) * 99 // 100]
    verdict = "reached" if figure <= TARGET else "MISSED"
    what = f"lsp: typing in {SIZE >> 10} KiB, 99th percentile of {len(times)} answers, ms"
    print(f"| {what:66} | {figure:6.2f} | at most {TARGET:5.2f} {verdict:7} |")


main()
