"use strict";
// Compares the grammars with snapshots, and with what the engine rejects.

const assert = require("node:assert/strict");
const { spawnSync } = require("node:child_process");
const fs = require("node:fs");
const { before, test } = require("node:test");
const { hasIllegal, load, templates, tokenize } = require("./grammars.js");

let grammars;
before(async () => {
    grammars = await load();
});

/** Each line after ">", and below it, after "#", the scopes of its characters except that of the
 * whole text. "[" and "]" mark a scope that has ".begin" or ".end" in its name, a digit says how
 * many times a character has one.
 */
function snapshot(lines) {
    const result = [];
    for (const tokens of lines) {
        result.push(">" + tokens.map(([text]) => text).join(""));
        let column = 0;
        const marks = new Map();
        for (const [text, scopes] of tokens) {
            for (const scope of new Set(scopes.slice(1))) {
                const count = scopes.filter((each) => each === scope).length;
                const edge = scope.includes(".begin.") ? "[" : scope.includes(".end.") ? "]" : "^";
                const kind = scope.replace(/\.(begin|end)\./, ".");
                const mark = count > 1 ? String(count) : edge;
                marks.set(kind, (marks.get(kind) ?? "").padEnd(column) + mark.repeat(text.length));
            }
            column += text.length;
        }
        for (const [kind, mark] of marks) {
            result.push(`#${mark} ${kind}`);
        }
    }
    return result.join("\n") + "\n";
}

for (const template of templates()) {
    test(`snapshot of ${template.name}`, () => {
        const { lines } = tokenize(template.isHtml ? grammars.html : grammars.plain, template.text);
        const made = snapshot(lines);
        if (process.env.UPDATE_SNAPSHOTS === "1") {
            fs.writeFileSync(template.file + ".snap", made);
        }
        assert.equal(made, fs.readFileSync(template.file + ".snap", "utf8"));
    });
}

const TAGS = ["{{ x }}", "{% if x %}", "{% else %}", "{% endif %}", "{% for x in y %}", "{% endfor %}", '{% include "x" %}'];
// The elements of tags, and things that tags must not contain.
const PARTS = [
    "if", "else", "endif", "for", "in", "endfor", "include", "x", "Y_1", "1", ".", "/", '"', "-", "é", "{", "%", "}", " ",
    "\t", "\n", "\f",
];
// Completions for the tag under test.
const PLACES = [
    ["", ""], ["", "{% endif %}"], ["", "{% endfor %}"], ["{% if x %}", "{% endif %}"], ["{% if x %}", ""],
    ["{% for x in y %}", ""],
];

/** All sequences of parts, up to a maximum length. */
function sequences(parts, longest) {
    let last = [""];
    const all = [...last];
    for (let length = 1; length <= longest; ++length) {
        last = last.flatMap((text) => parts.map((part) => text + part));
        all.push(...last);
    }
    return all;
}

function tags() {
    const around = (before, texts, after) => texts.map((text) => before + text + after);
    const inside = sequences(PARTS, 3);
    return new Set([
        ...around("{{", inside, "}}"),
        ...around("{%", inside, "%}"),
        ...around("{% for", sequences([" ", "x", "in", "infor", "\n", "-"], 5), "%}"),
        ...around("{% include", sequences([" ", '"', "x", "/", "'"], 5), "%}"),
    ]);
}

function wholeTemplates() {
    return new Set([
        ...templates().map((template) => template.text),
        ...sequences([...TAGS, "text"], 4),
        ...sequences(TAGS.slice(1, 6), 6),
        ...sequences(["{", "%", "}", "x", " ", "\n"], 5),
    ]);
}

/** Whether the engine accepts each of the texts. */
function askEngine(texts) {
    const input = [...texts].map((text) => text + "\0").join("");
    const { stdout, status } = spawnSync(process.env.STENCILOR_ACCEPTS, { input, maxBuffer: 1 << 28 });
    assert.equal(status, 0);
    const answers = stdout.toString().trim().split("\n");
    assert.equal(answers.length, texts.length);
    return answers.map((answer) => answer === "accepted");
}

function expectAgreement(texts, accepted, looksRight) {
    const differing = texts.filter((text, i) => looksRight(text) !== accepted[i]);
    assert.deepEqual(differing.slice(0, 10), []);
    assert.ok(accepted.includes(true) && accepted.includes(false));
}

function isLegal(text) {
    const { lines, isOpen } = tokenize(grammars.plain, text);
    return !isOpen && !hasIllegal(lines);
}

test("templates have no illegal tags or open blocks if the engine accepts them", () => {
    const texts = [...wholeTemplates()];
    expectAgreement(texts, askEngine(texts), isLegal);
});

test("tags in text are legal if the engine accepts them", () => {
    const texts = [...tags()];
    expectAgreement(texts, askEngine(texts), isLegal);
});

test("tags in HTML are legal if the engine accepts them in some block", () => {
    const texts = [...tags()];
    const places = PLACES.map(([front, back]) => askEngine(texts.map((text) => front + text + back)));
    const accepted = texts.map((_, i) => places.some((place) => place[i]));
    expectAgreement(texts, accepted, (text) => !hasIllegal(tokenize(grammars.html, text).lines));
});

test("templates are valid or invalid as their names say", () => {
    const all = templates();
    const accepted = askEngine(all.map((template) => template.text));
    for (const [i, { name }] of all.entries()) {
        assert.equal(accepted[i], !name.startsWith("rejected"), name);
    }
});
