"use strict";
// Tests the extension for Visual Studio Code, unpacked from its package.

const assert = require("node:assert/strict");
const { execFileSync, spawnSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { startExtension } = require("./vscode.js");

const PROGRAM = process.env.STENCILOR;
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "extension-"));
const extension = path.join(folder, "extension");
let manifest;

before(() => {
    const file = path.join(process.env.STENCILOR_EXTENSION, "stencilor.vsix");
    execFileSync("python3", ["-m", "zipfile", "-e", file, folder]);
    manifest = read("package.json");
});

after(() => fs.rmSync(folder, { recursive: true }));

function read(name) {
    return JSON.parse(fs.readFileSync(path.join(extension, name), "utf8"));
}

test("every file that it refers to is in the package", () => {
    const { languages, grammars, snippets } = manifest.contributes;
    const named = [
        manifest.icon, manifest.main, ...languages.map((each) => each.configuration),
        ...[...grammars, ...snippets].map((each) => each.path), "LICENSE.txt", "README.md",
    ];
    for (const name of named) {
        assert.ok(fs.existsSync(path.join(extension, name)), name);
    }
});

test("its version is that of the engine", () => {
    assert.equal(manifest.version, process.env.STENCILOR_VERSION);
});

test("grammars and snippets belong to its languages, with matching scopes", () => {
    const { languages, grammars, snippets } = manifest.contributes;
    const ids = languages.map((language) => language.id);
    assert.deepEqual(grammars.map((grammar) => grammar.language), ids);
    assert.deepEqual(snippets.map((each) => each.language), ids);
    for (const { path: name, scopeName } of grammars) {
        assert.equal(read(name).scopeName, scopeName);
    }
});

test("the engine accepts the text of its snippets", () => {
    for (const [name, { body }] of Object.entries(read("snippets.json"))) {
        const text = body.replace(/\$\{\d:(\w+)\}/g, "$1").replace(/\$\d/g, "");
        const { status } = spawnSync(PROGRAM, ["tree", "-"], { input: text });
        assert.equal(status, 0, name);
    }
});

for (const name of ["language-configuration.json", "language-configuration-html.json"]) {
    test(`${name}: a word is a name`, () => {
        const words = "{{ user.name }} {%if _1%} a-b/c 2x".match(new RegExp(read(name).wordPattern, "g"));
        assert.deepEqual(words, ["user.name", "if", "_1", "a", "b/c", "x"]);
    });

    test(`${name}: folding begins and ends at tags whose block spans lines`, () => {
        const { markers } = read(name).folding;
        for (const [line, expected] of [
            ["{% if x %}", "start"],
            ["  <p>{%for x in y%}", "start"],
            ["{% endif %}", "end"],
            ["</p>{%endfor%}", "end"],
            ["{% if x %}yes{% endif %}", undefined],
            ["{% else %}", undefined],
            ['{% include "if" %}', undefined],
            ["{{ if }}", undefined],
        ]) {
            assert.equal(["start", "end"].find((kind) => new RegExp(markers[kind]).test(line)), expected, line);
        }
    });
}

test("the problem matcher finds the locations of a fault and its note", () => {
    const [{ pattern }] = manifest.contributes.problemMatchers;
    const { stdout } = spawnSync(PROGRAM, ["check", "--stdin-name", "page", "-"], { input: "text\n  {{ a-b }}\n" });
    const found = stdout.toString().split("\n").map((line) => line.match(pattern.regexp)).filter(Boolean);
    const places = found.map((match) => ["file", "line", "column", "severity"].map((key) => match[pattern[key]]));
    assert.deepEqual(places, [["page", "2", "7", "error"], ["page", "2", "3", "note"]]);
});

test("the settings and the task on its page exist", () => {
    const text = fs.readFileSync(path.join(extension, "README.md"), "utf8");
    const blocks = [...text.matchAll(/<!-- file: (\S+) -->\n```json\n(.*?)```\n/gs)];
    const files = Object.fromEntries(blocks.map(([, name, block]) => [name, JSON.parse(block)]));
    const { configuration, languages, problemMatchers } = manifest.contributes;
    for (const [name, value] of Object.entries(files["settings.json"])) {
        if (name === "files.associations") {
            assert.ok(Object.values(value).every((id) => languages.some((language) => language.id === id)));
        } else {
            assert.ok(name in configuration.properties, name);
        }
    }
    assert.equal(files["tasks.json"].tasks[0].problemMatcher, "$" + problemMatchers[0].name);
});

test("it starts the program in the setting, and sends it the other settings", async () => {
    const started = await startExtension(extension, { path: PROGRAM, context: "context.json", emptyLines: true });
    assert.deepEqual(started.errors, []);
    assert.equal(started.client.initializeResult.serverInfo.name, "stencilor");
    // Not the texts in version control that the editor compares a file with.
    const schemes = started.client.clientOptions.documentSelector.map((each) => each.scheme);
    assert.deepEqual([...new Set(schemes)].sort(), ["file", "untitled"]);
    assert.deepEqual(started.client.clientOptions.initializationOptions, {
        root: "", context: "context.json", positions: false, emptyLines: true,
    });
    await started.stop();
});

test("it reports a program that does not exist", async () => {
    const started = await startExtension(extension, { path: "/no/such/program" });
    assert.equal(started.errors.length, 1);
    assert.match(started.errors[0], /Cannot start "\/no\/such\/program"/);
    await started.stop();
});
