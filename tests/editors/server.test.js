"use strict";
// Every request and notification of the language server, sent by a third-party client.

const assert = require("node:assert/strict");
const { spawn, spawnSync } = require("node:child_process");
const { after, test } = require("node:test");
const { Client, PROGRAM, apply, protocol, show } = require("./client.js");

const context = JSON.stringify(
    { title: "Teas", open: true, items: [{ name: "Assam", new: true, tags: ["black"] }], user: { name: "Ann" } },
    null,
    1
);
const clients = [];

async function start(files = {}, options = { context: "context.json" }, capabilities = {}) {
    const client = new Client({ "context.json": context, ...files });
    clients.push(client);
    client.capabilities = (await client.initialize(options, capabilities)).capabilities;
    return client;
}

after(() => {
    for (const client of clients) {
        client.server.kill();
        client.dispose();
    }
});

test("every capability of the server is tested here", async () => {
    const client = await start();
    assert.deepEqual(Object.keys(client.capabilities).sort(), [
        "codeActionProvider", "completionProvider", "definitionProvider", "documentHighlightProvider",
        "documentLinkProvider", "documentSymbolProvider", "foldingRangeProvider", "hoverProvider",
        "positionEncoding", "referencesProvider", "renameProvider", "selectionRangeProvider",
        "semanticTokensProvider", "textDocumentSync", "workspace",
    ]);
    assert.equal(client.capabilities.positionEncoding, "utf-16");
    assert.equal(await client.close(), 0);
});

test("diagnostics follow the text while it is typed", async () => {
    const client = await start();
    const [fault] = await client.open("a.txt", "Hello, {{ title }!\n");
    assert.equal(show(fault.range), "0:16-17");
    assert.equal(fault.severity, protocol.DiagnosticSeverity.Error);
    assert.equal(fault.code, "syntax");
    const at = { line: 0, character: 17 };
    assert.deepEqual(await client.change("a.txt", { range: { start: at, end: at }, text: "}" }), []);
    const [name] = await client.change("a.txt", { text: "\u{1F375} {{ titel }}" });
    assert.equal(show(name.range), "0:6-11");
    assert.match(name.message, /did you mean "title"\?/);
});

test("related places are sent to clients that show them", async () => {
    const capabilities = { textDocument: { publishDiagnostics: { relatedInformation: true } } };
    const client = await start({}, {}, capabilities);
    const [fault] = await client.open("a.txt", "{% if open %}\ntext");
    assert.equal(fault.relatedInformation[0].message, "opened here");
    assert.equal(show(fault.relatedInformation[0].location.range), "0:0-13");
});

test("characters are bytes if the client offers that", async () => {
    const client = await start({}, { context: "context.json" }, { general: { positionEncodings: ["utf-8"] } });
    assert.equal(client.capabilities.positionEncoding, "utf-8");
    const [name] = await client.open("a.txt", "\u{1F375} {{ titel }}");
    assert.equal(show(name.range), "0:8-13");
});

test("a file that changes outside the editor is read again", async () => {
    const watching = { workspace: { didChangeWatchedFiles: { dynamicRegistration: true } } };
    const client = await start({}, { context: "context.json" }, watching);
    const [missing] = await client.open("a.txt", '{% include "part.txt" %}');
    assert.equal(missing.code, "missing-include");
    assert.equal(client.registered[0].method, "workspace/didChangeWatchedFiles");
    client.write("part.txt", "fine");
    const checked = client.diagnostics("a.txt");
    await client.connection.sendNotification(protocol.DidChangeWatchedFilesNotification.type, {
        changes: [{ uri: client.uri("part.txt"), type: protocol.FileChangeType.Created }],
    });
    assert.deepEqual(await checked, []);
});

test("an include is read from its buffer", async () => {
    const client = await start({ "part.txt": "{{ nowhere }}" });
    const inPart = client.diagnostics("part.txt");
    await client.open("a.txt", '{% include "part.txt" %}');
    assert.equal((await inPart)[0].code, "missing-name");
    assert.deepEqual(await client.open("part.txt", "{{ title }}"), []);
    const closed = client.diagnostics("part.txt");
    await client.connection.sendNotification(protocol.DidCloseTextDocumentNotification.type, {
        textDocument: { uri: client.uri("part.txt") },
    });
    assert.equal((await closed)[0].code, "missing-name");
});

test("settings may change", async () => {
    const client = await start({}, {});
    assert.deepEqual(await client.open("a.txt", "{{ nowhere }}"), []);
    const checked = client.diagnostics("a.txt");
    await client.connection.sendNotification(protocol.DidChangeConfigurationNotification.type, {
        settings: { stencilor: { context: "context.json" } },
    });
    assert.equal((await checked)[0].code, "missing-name");
});

test("folders of the workspace may change", async () => {
    const client = await start({ "more/stencilor.json": '{"root": "missing"}' }, {});
    await client.connection.sendNotification(protocol.DidChangeWorkspaceFoldersNotification.type, {
        event: { added: [{ uri: client.uri("more"), name: "more" }], removed: [{ uri: client.uri(""), name: "" }] },
    });
    await client.open("more/a.txt", "text");
    assert.equal(client.shown.length, 1);
    assert.match(client.shown[0], /root ".*missing" is not a folder/);
});

const completions = [
    ["names of strings", "{{ |", ["title", "user.name"]],
    ["after what has been typed", "{{ ti|tle }}", ["title", "user.name"]],
    ["members of a loop's variable first", "{% for i in items %}{{ |", ["i.name", "title", "user.name"]],
    ["names of booleans", "{% if | %}", ["open"]],
    ["names of lists", "{% for x in | %}", ["items"]],
    ["lists inside lists", "{% for i in items %}{% for t in | %}", ["i.tags", "items"]],
    ["an element that is a string", "{% for i in items %}{% for t in i.tags %}{{ |", ["t.value", "i.name", "title", "user.name"]],
    ["in", "{% for x | %}", ["in"]],
    ["keywords", "{% | %}", ["if", "for", "include"]],
    ["the tags of a condition", "{% if open %}{% |", ["endif", "else", "if", "for", "include"]],
    ["the end after an else", "{% if open %}{% else %}{% |", ["endif", "if", "for", "include"]],
    ["the end of a loop", "{% for x in items %}{% end| %}", ["endfor", "if", "for", "include"]],
    ["files and folders", '{% include "|" %}', ["a.txt", "context.json", "parts/"]],
    ["the contents of a folder", '{% include "parts/|" %}', ["parts/b.txt"]],
    ["nothing outside the root", '{% include "parts/../../|" %}', []],
    ["nothing in text", "text |", []],
    ["nothing after a tag", "{{ title }} |", []],
    ["nothing for a variable", "{% for | %}", []],
];

for (const [name, text, expected] of completions) {
    test("completion: " + name, async () => {
        const client = await start({ "a.txt": "", "parts/b.txt": "", "parts/-.txt": "" });
        await client.open("a.txt", text);
        const { items } = await client.ask(protocol.CompletionRequest.type, "a.txt");
        assert.deepEqual(items.map((item) => item.label), expected);
    });
}

test("completion: the inserted text completes the tag", async () => {
    const client = await start();
    const complete = async (marked, label) => {
        await client.open("a.txt", marked);
        const { items } = await client.ask(protocol.CompletionRequest.type, "a.txt");
        const item = items.find((each) => each.label === label);
        return apply(marked.replace("|", ""), [item.textEdit]);
    };
    assert.equal(await complete("{{ ti|t }}", "title"), "{{ title }}");
    assert.equal(await complete("{% if open %}{% en|", "endif"), "{% if open %}{% endif %}");
    assert.equal(await complete("{% if open %}{% en| %}", "endif"), "{% if open %}{% endif %}");
    assert.equal(await complete('{% include "con|', "context.json"), '{% include "context.json" %}');
    assert.equal(await complete('{% include "con|" %}', "context.json"), '{% include "context.json" %}');
});

test("completion: whole blocks for clients that support snippets", async () => {
    const capabilities = { textDocument: { completion: { completionItem: { snippetSupport: true } } } };
    const client = await start({}, {}, capabilities);
    await client.open("a.txt", "{% |");
    const { items } = await client.ask(protocol.CompletionRequest.type, "a.txt");
    assert.equal(items[0].textEdit.newText, "if ${1:name} %}$0{% endif %}");
    assert.equal(items[0].insertTextFormat, protocol.InsertTextFormat.Snippet);
});

test("completion: without a context, the names in other tags", async () => {
    const client = await start({}, {});
    await client.open("a.txt", "{% for i in list %}{{ i.one }}{{ | }}{% endfor %}{{ two }}{% if three %}{% endif %}");
    const { items } = await client.ask(protocol.CompletionRequest.type, "a.txt");
    assert.deepEqual(items.map((item) => item.label), ["i.", "i.one", "two"]);
});

const hovers = [
    ["a value", "{{ tit|le }}", /\*\*`title`\*\* string `"Teas"`\n\nFound as `title` in the context\./],
    ["a member", "{% for i in items %}{{ i.n|ame }}{% endfor %}",
        /string `"Assam"`\n\nFound as `name` in element 1 of 1 of `items`, the list of `{% for i in items %}`, line 1\./],
    ["a boolean", "{% if op|en %}{% endif %}", /boolean `true`/],
    ["a list", "{% for i in it|ems %}{% endfor %}", /list of 1 element/],
    ["a variable", "{% for |i in items %}{% endfor %}", /variable of the loop over `items`/],
    ["an unknown name", "{{ nowhe|re }}", /The context has no value with this name here/],
    ["a path", '{% include "cont|ext.json" %}', /Includes `.*context.json`/],
];

for (const [name, text, expected] of hovers) {
    test("hover: " + name, async () => {
        const client = await start();
        await client.open("a.txt", text);
        const result = await client.ask(protocol.HoverRequest.type, "a.txt");
        assert.match(result.contents.value, expected);
    });
}

test("hover: nothing in text", async () => {
    const client = await start();
    await client.open("a.txt", "te|xt");
    assert.equal(await client.ask(protocol.HoverRequest.type, "a.txt"), null);
});

const definitions = [
    ["an included file", '{% include "context|.json" %}', "context.json", "0:0-0"],
    ["a missing file", '{% include "missi|ng.txt" %}', null],
    ["a name of the context", "{{ tit|le }}", "context.json", "1:1-8"],
    ["a dotted name", "{{ user.na|me }}", "context.json", "13:2-8"],
    ["a member of an element", "{% for i in items %}{{ i.na|me }}{% endfor %}", "context.json", "5:3-9"],
    ["a variable", "{% for item in items %}{{ it|em.name }}{% endfor %}", "a.txt", "0:7-11"],
    ["a member that the context does not have", "{% for i in items %}{{ i.nowhe|re }}{% endfor %}", "a.txt", "0:7-8"],
    ["an unknown name", "{{ nowhe|re }}", null],
];

for (const [name, text, file, range] of definitions) {
    test("definition: " + name, async () => {
        const client = await start();
        await client.open("a.txt", text);
        const found = await client.ask(protocol.DefinitionRequest.type, "a.txt");
        assert.equal(found && found.uri, file && client.uri(file));
        assert.equal(found && show(found.range), range ?? null);
    });
}

test("definition: a name in an included file, by the loop around the include", async () => {
    const client = await start({ "row.txt": "" });
    await client.open("a.txt", '{% for i in items %}{% include "row.txt" %}{% endfor %}');
    await client.open("row.txt", "{{ na|me }}");
    const found = await client.ask(protocol.DefinitionRequest.type, "row.txt");
    assert.equal(show(found.range), "5:3-9");
});

const loops = "{% for i in items %}{{ i.name }}{% for t in i.tags %}{{ i.new }}{% endfor %}{% endfor %}{{ i.name }}";

test("references: of a loop's variable, with and without its binding", async () => {
    const client = await start();
    await client.open("a.txt", loops.replace("{{ i.", "{{ |i."));
    const find = async (includeDeclaration) =>
        (await client.ask(protocol.ReferencesRequest.type, "a.txt", { context: { includeDeclaration } })).map((each) =>
            show(each.range)
        );
    assert.deepEqual(await find(true), ["0:7-8", "0:23-24", "0:44-45", "0:56-57"]);
    assert.deepEqual(await find(false), ["0:23-24", "0:44-45", "0:56-57"]);
});

test("rename: a loop's variable", async () => {
    const client = await start();
    await client.open("a.txt", loops.replace("for i", "for |i"));
    const prepared = await client.ask(protocol.PrepareRenameRequest.type, "a.txt");
    assert.deepEqual([show(prepared.range), prepared.placeholder], ["0:7-8", "i"]);
    const { changes } = await client.ask(protocol.RenameRequest.type, "a.txt", { newName: "item" });
    assert.equal(
        apply(loops, changes[client.uri("a.txt")]),
        "{% for item in items %}{{ item.name }}{% for t in item.tags %}{{ item.new }}{% endfor %}{% endfor %}{{ i.name }}"
    );
});

test("rename: rejected if names would mean something else", async () => {
    const client = await start();
    await client.open("a.txt", "{% for |i in items %}{{ x.a }}{% for t in i.tags %}{{ i.new }}{% endfor %}{% endfor %}");
    for (const [newName, message] of [
        ["a-b", /is not a name/],
        ["t", /would belong to an inner loop/],
        ["x", /is already used inside the loop/],
    ]) {
        await assert.rejects(client.ask(protocol.RenameRequest.type, "a.txt", { newName }), { message });
    }
    await client.open("a.txt", "{{ tit|le }}");
    await assert.rejects(client.ask(protocol.PrepareRenameRequest.type, "a.txt"), { message: /only loop variables/ });
});

const highlights = [
    ["the tags of a block", "{% if| open %}a{% else %}b{% endif %}", ["0:0-13", "0:14-24", "0:25-36"]],
    ["from its closing tag", "{% for i in items %}{% end|for %}", ["0:0-20", "0:20-32"]],
    ["a variable", "{% for i in items %}{{ |i.name }}{% endfor %}", ["0:7-8", "0:23-24"]],
    ["the same name", "{{ tit|le }}{{ title }}", ["0:3-8", "0:14-19"]],
];

for (const [name, text, expected] of highlights) {
    test("highlights: " + name, async () => {
        const client = await start();
        await client.open("a.txt", text);
        const found = await client.ask(protocol.DocumentHighlightRequest.type, "a.txt");
        assert.deepEqual(found.map((each) => show(each.range)), expected);
    });
}

test("symbols: blocks and includes, nested if the client supports it", async () => {
    const text = '{% for i in items %}\n{% if i.new %}{% include "a" %}{% endif %}\n{% endfor %}{% include "b" %}';
    const tree = await start({}, {}, { textDocument: { documentSymbol: { hierarchicalDocumentSymbolSupport: true } } });
    await tree.open("a.txt", text);
    const [loop, include] = await tree.ask(protocol.DocumentSymbolRequest.type, "a.txt");
    assert.equal(loop.name, "for i in items");
    assert.equal(show(loop.range), "0:0-2:12");
    assert.deepEqual(loop.children.map((each) => each.name), ["if i.new"]);
    assert.deepEqual(loop.children[0].children.map((each) => each.name), ["include a"]);
    assert.equal(include.name, "include b");
    const flat = await start();
    await flat.open("a.txt", text);
    const names = (await flat.ask(protocol.DocumentSymbolRequest.type, "a.txt")).map((each) => each.name);
    assert.deepEqual(names, ["for i in items", "if i.new", "include a", "include b"]);
});

test("folding: both parts of a condition, up to the line before the next tag", async () => {
    const client = await start();
    await client.open("a.txt", "{% if open %}\na\nb\n{% else %}\nc\nd\n{% endif %}\n{% if open %}\n{% endif %}");
    const folds = await client.ask(protocol.FoldingRangeRequest.type, "a.txt");
    assert.deepEqual(folds.map((each) => [each.startLine, each.endLine]), [[0, 2], [3, 5]]);
});

test("selection: from the name to the block to the whole text", async () => {
    const client = await start();
    await client.open("a.txt", "x{% for i in items %} {{ |i.name }} {% endfor %}");
    let [range] = await client.ask(protocol.SelectionRangeRequest.type, "a.txt", { positions: [client.cursor] });
    const found = [];
    for (; range; range = range.parent) {
        found.push(show(range.range));
    }
    assert.deepEqual(found, ["0:25-26", "0:25-31", "0:22-34", "0:21-35", "0:1-47", "0:0-47"]);
});

test("semantic tokens: of the whole text, and of a range", async () => {
    const client = await start();
    await client.open("a.txt", '{% for i in items %}\n{{ i.name }}{{ title }}{% endfor %}{% include "a" %}');
    const { tokenTypes } = client.capabilities.semanticTokensProvider.legend;
    const decode = ({ data }) => {
        const tokens = [];
        let line = 0;
        let character = 0;
        for (let i = 0; i < data.length; i += 5) {
            line += data[i];
            character = data[i] === 0 ? character + data[i + 1] : data[i + 1];
            tokens.push(`${line}:${character}+${data[i + 2]} ${tokenTypes[data[i + 3]]}`);
        }
        return tokens;
    };
    const all = decode(await client.ask(protocol.SemanticTokensRequest.type, "a.txt"));
    assert.deepEqual(all, [
        "0:3+3 keyword", "0:7+1 parameter", "0:9+2 keyword", "0:12+5 variable", "1:3+1 parameter", "1:5+4 property",
        "1:15+5 variable", "1:26+6 keyword", "1:38+7 keyword", "1:47+1 string",
    ]);
    const range = { start: { line: 1, character: 0 }, end: { line: 1, character: 12 } };
    const some = decode(await client.ask(protocol.SemanticTokensRangeRequest.type, "a.txt", { range }));
    assert.deepEqual(some, ["1:3+1 parameter", "1:5+4 property"]);
});

test("links: to the included files that exist", async () => {
    const client = await start();
    await client.open("a.txt", '{% include "context.json" %}{% include "missing" %}');
    const links = await client.ask(protocol.DocumentLinkRequest.type, "a.txt");
    assert.deepEqual(links.map((each) => [show(each.range), each.target]), [["0:12-24", client.uri("context.json")]]);
});

const fixes = [
    ["a misspelled name", "{{ titel }}", "{{ title }}"],
    ["an element that is a string", "{% for i in items %}{% for t in i.tags %}{{ t }}{% endfor %}{% endfor %}",
        "{% for i in items %}{% for t in i.tags %}{{ t.value }}{% endfor %}{% endfor %}"],
    ["trim signs", "{{- title -}}", "{{ title }}"],
    ["three braces", "{{{ title }}}", "{{ title }}"],
    ["an ampersand", "{{& title }}", "{{ title }}"],
    ["a partial", "{{> context.json }}", '{% include "context.json" %}'],
    ["single quotation marks", "{% include 'context.json' %}", '{% include "context.json" %}'],
    ["a path that begins with ./", '{% include "./context.json" %}', '{% include "context.json" %}'],
    ["capital letters", "{% IF open %}{% endif %}", "{% if open %}{% endif %}"],
    ["a misspelled keyword", "{% if open %}{% endfi %}", "{% if open %}{% endif %}"],
    ["a foreign keyword", "{% foreach i in items %}{% endfor %}", "{% for i in items %}{% endfor %}"],
    ["an end tag without a kind", "{% if open %}{% end %}", "{% if open %}{% endif %}"],
    ["a keyword that runs together with a name", "{% ifopen %}{% endif %}", "{% if open %}{% endif %}"],
    ["nothing for an ambiguous tag", "{% if a == b %}{% endif %}", null],
    ["nothing for a filter", "{{ title | upper }}", null],
];

for (const [name, text, expected] of fixes) {
    test("quick fix: " + name, async () => {
        const literal = { codeActionLiteralSupport: { codeActionKind: { valueSet: ["quickfix"] } } };
        const client = await start({}, { context: "context.json" }, { textDocument: { codeAction: literal } });
        const diagnostics = await client.open("a.txt", text);
        assert.equal(diagnostics.length, 1);
        const [{ range }] = diagnostics;
        const actions = await client.ask(protocol.CodeActionRequest.type, "a.txt", { range, context: { diagnostics } });
        assert.equal(actions.length, expected ? 1 : 0);
        if (expected) {
            assert.equal(apply(text, actions[0].edit.changes[client.uri("a.txt")]), expected);
            assert.deepEqual(actions[0].diagnostics, diagnostics);
        }
    });
}

const projects = [
    ["its context", '{"context": "context.json"}', "{{ titel }}", /a.txt:1:4: warning: .*did you mean "title"/],
    ["its root", '{"root": "parts"}', '{% include "b.txt" %}', ""],
    ["patterns of other files", '{"context": "context.json", "files": ["*.html"]}', "{{ titel }}", ""],
    ["patterns of this file", '{"context": "context.json", "files": ["m*/*"]}', "{{ titel }}", /a.txt:1:4: warning/],
    ["a root outside", '{"root": ".."}', "text", /stencilor.json: the root ".." is outside/],
    ["a misspelt member", '{"rot": ".."}', "text", /"rot" is unknown/],
];

for (const [name, project, text, expected] of projects) {
    test("stencilor.json in check: " + name, async () => {
        const client = await start({ "stencilor.json": project, "mails/a.txt": text, "parts/b.txt": "" });
        const { stdout, stderr } = spawnSync(PROGRAM, ["check", "mails/a.txt"], { cwd: client.folder });
        if (expected === "") {
            assert.equal(String(stdout) + stderr, "");
        } else {
            assert.match(String(stdout) + stderr, expected);
        }
        const given = spawnSync(PROGRAM, ["check", "mails/a.txt", "--root", "mails"], { cwd: client.folder });
        const isOutside = name === "its root";
        assert.equal(/is outside "mails"/.test(given.stderr), isOutside);
    });
}

test("a request that is cancelled is answered all the same", async () => {
    const client = await start();
    await client.open("a.txt", "{{ title }}\n".repeat(20000));
    const source = new protocol.CancellationTokenSource();
    const types = Array(50).fill(protocol.SemanticTokensRequest.type);
    const params = { textDocument: { uri: client.uri("a.txt") } };
    const answers = types.map((type) => client.connection.sendRequest(type, params, source.token));
    source.cancel();
    const settled = await Promise.allSettled(answers);
    const codes = settled.map((each) => (each.status === "rejected" ? each.reason.code : 0));
    assert.ok(codes.includes(protocol.LSPErrorCodes.RequestCancelled), String(codes));
    assert.equal(await client.close(), 0);
});

test("a document of 10 MiB is checked, and can be edited", async () => {
    const client = await start({}, {});
    await client.open("a.txt", "{{ title }} and text\n".repeat(500000));
    const start10 = { line: 250000, character: 3 };
    const end = { line: 250000, character: 8 };
    const [fault] = await client.change("a.txt", { range: { start: start10, end }, text: "-" });
    assert.equal(fault.range.start.line, 250000);
    assert.equal(await client.close(), 0);
});

test("the program ends when the client is gone", async () => {
    const gone = new Client();
    clients.push(gone);
    await gone.initialize();
    gone.server.stdin.end();
    assert.equal(await gone.ended, 1);
    const cut = spawn(PROGRAM, ["lsp"], { stdio: ["pipe", "pipe", "inherit"] });
    cut.stdin.end("Content-Length: 100\r\n\r\n{");
    assert.equal(await new Promise((resolve) => cut.on("exit", resolve)), 1);
});

test("the program ends when nobody reads its answers", async () => {
    const server = spawn(PROGRAM, ["lsp"], { stdio: ["pipe", "pipe", "ignore"] });
    server.stdout.destroy();
    server.stdin.on("error", () => {});
    const body = '{"jsonrpc": "2.0", "id": 1, "method": "no/such"}';
    const timer = setInterval(() => server.stdin.write(`Content-Length: ${body.length}\r\n\r\n${body}`), 10);
    const [status, signal] = await new Promise((resolve) => server.on("exit", (...how) => resolve(how)));
    clearInterval(timer);
    assert.ok(status === 2 || signal === "SIGPIPE", `${status} ${signal}`);
});

