// The package as users call it. STENCILOR_PACKAGE is the folder that build-package.mjs wrote.

import assert from "node:assert/strict";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import { join } from "node:path";

const { load } = await import(pathToFileURL(join(process.env.STENCILOR_PACKAGE, "stencilor.js")));
const { Template, Context, check, names, tree, raw, escapeHtml, escapeJson } = await load();

const render = (text, values, options) => new Template(text).render(values, options);

const rendered = [
  ["a string", "{{ a }}", { a: "x" }, "x"],
  ["other letters", "{{ a }}", { a: "Zoë 日本 😀" }, "Zoë 日本 😀"],
  ["a long text", "{{ a }}", { a: "é".repeat(100_000) }, "é".repeat(100_000)],
  ["half of a character", "{{ a }}", { a: "\ud800" }, "\ufffd"],
  ["a byte-order mark", "\ufeff{{ a }}", { a: "x" }, "\ufeffx"],
  ["numbers", "{{ a }} {{ b }} {{ c }} {{ d }}", { a: 0.1, b: -0, c: 1e21, d: 2n ** 70n }, `0.1 0 1e+21 ${2n ** 70n}`],
  ["booleans", "{% if a %}1{% endif %}{% if b %}{% else %}2{% endif %}", { a: true, b: false }, "12"],
  ["wrapped values", "{{ a }}{% if b %}1{% endif %}", { a: new String("x"), b: new Boolean(true) }, "x1"],
  ["dotted names", "{{ a.b.c }}", { a: { b: { c: "x" } } }, "x"],
  ["a list of strings", "{% for i in a %}{{ i.value }}{% endfor %}", { a: ["x", "y"] }, "xy"],
  ["a Set", "{% for i in a %}{{ i.value }}{% endfor %}", { a: new Set([1, 2]) }, "12"],
  ["a typed array", "{% for i in a %}{{ i.value }}{% endfor %}", { a: new Uint8Array([1, 2]) }, "12"],
  ["a Map", "{{ a.b }}", new Map([["a", new Map([["b", "x"]])]]), "x"],
  ["a date", "{{ a }}", { a: new Date(0) }, "1970-01-01T00:00:00.000Z"],
  ["null and undefined", "{{ a }}{{ b }}", { a: null, b: undefined }, ""],
  ["a boolean with members", "{% if a %}{{ b }}{% endif %}", { a: { $boolean: true, b: "x" } }, "x"],
  ["the members of a boolean in an object", "{% if a.b %}{{ c }}{{ d.e }}{% endif %}", { a: { b: { c: 1, $boolean: true, d: { e: 2 } } } }, "12"],
  ["objects whose keys are equal in UTF-8", "{{ a }}", { "\ud800": { b: 1 }, "\udc00": { b: 2 }, a: 3 }, "3"],
  ["lists of all kinds", "{% for i in a %}<{{ i.value }}{{ i.b }}>{% endfor %}", { a: ["x", null, { b: "y" }, 1] }, "<x><><y><1>"],
  ["lists in lists", "{% for i in a %}{% for j in i.value %}{{ j.value }}{% endfor %};{% endfor %}", { a: [[1, 2], [], [3]] }, "12;;3;"],
  ["a key that objects inherit", "{{ constructor }}{{ toString }}", {}, ""],
];
for (const [name, text, values, expected] of rendered) {
  test(`renders ${name}`, () => assert.equal(render(text, values).text, expected));
}

test("renders what a generator yields", () => {
  const values = {
    *a() {},
    b: (function* () {
      yield { n: 1 };
      yield { n: 2 };
    })(),
  };
  delete values.a;
  assert.equal(render("{% for i in b %}{{ i.n }}{% endfor %}", values).text, "12");
});

const refused = [
  ["NaN", { a: NaN }, /NaN is not a value \(key "a"\)/],
  ["a function", { a: () => 1 }, /a function is not a value \(key "a"\)/],
  ["a symbol", { a: Symbol() }, /a symbol is not a value/],
  ["a key that is not a string", { a: new Map([[1, 2]]) }, /key of a Map is not a string/],
  ["a list as the root", [], /not an object/],
  ["a string as the root", "x", /not an object/],
  ["a $boolean that is not a boolean", { a: { $boolean: 1 } }, /\$boolean/],
];
for (const [name, values, message] of refused) {
  test(`refuses ${name}`, () => assert.throws(() => render("", values), message));
}

test("refuses values that contain themselves", () => {
  const values = {};
  values.a = values;
  assert.throws(() => render("", values), RangeError);
});

test("nests 511 levels and no more", () => {
  const nest = (levels) => (levels === 0 ? 1 : [nest(levels - 1)]);
  assert.equal(render("x", { a: nest(511) }).text, "x");
  assert.throws(() => render("x", { a: nest(512) }), RangeError);
});

test("passes on what a getter throws, and works afterwards", () => {
  const values = {
    get a() {
      throw new Error("getter");
    },
  };
  assert.throws(() => render("", values), /getter/);
  assert.equal(render("{{ a }}", { a: 1 }).text, "1");
});

test("renders inside a getter", () => {
  const values = {
    get a() {
      return render("<{{ b }}>", { b: 2 }).text;
    },
    c: 3,
  };
  assert.equal(render("{{ a }}{{ c }}", values).text, "<2>3");
});

test("reports what is missing, with its location", () => {
  const { status, messages, usage } = new Template("x\n é {{ b }}", { name: "page" }).render({});
  assert.equal(status, "complete");
  assert.equal(messages.length, 1);
  const { kind, text, ...place } = messages[0];
  assert.equal(kind, "valueNotFound");
  assert.match(text, /"b"/);
  assert.deepEqual(place, { name: "b", templateName: "page", line: 2, column: 7, includedFrom: [] });
  assert.equal(usage.messages, 1);
});

test("says why a template is rejected", () => {
  const page = new Template("{{ a b }}");
  assert.equal(page.fault.column, 6);
  assert.equal(page.render({}).status, "rejected");
  assert.equal(new Template("").fault, null);
  assert.throws(() => names(page), /not well formed/);
});

test("escapes", () => {
  const values = { a: '<&"', b: raw("<b>") };
  assert.equal(render("<{{ a }}{{ b }}", values, { escape: "html" }).text, "<&lt;&amp;&quot;<b>");
  assert.equal(render("{{ a }}", values, { escape: "json" }).text, '\\u003c\\u0026\\"');
  assert.equal(render("{{ a }}", values, { escape: (text) => `[${text}]` }).text, '[<&"]');
  assert.equal(escapeHtml("'"), "&#39;");
  assert.equal(escapeJson("\n"), "\\n");
  assert.throws(() => render("", {}, { escape: "xml" }), /none, html, json/);
  const fail = () => {
    throw new Error("escape");
  };
  assert.throws(() => render("{{ a }}", values, { escape: fail }), /escape/);
});

const sources = [
  ["an object", { row: "[{{ a }}]" }],
  ["a Map", new Map([["row", "[{{ a }}]"]])],
  ["a function", (path) => (path === "row" ? "[{{ a }}]" : null)],
  ["a template", { row: new Template("[{{ a }}]") }],
];
for (const [name, templates] of sources) {
  test(`includes from ${name}`, () => {
    const { text, messages } = render('{% include "row" %}{% include "none" %}', { a: 1 }, { templates });
    assert.equal(text, "[1]");
    assert.deepEqual(messages.map(({ kind }) => kind), ["templateNotFound"]);
  });
}

test("does not include what objects inherit", () => {
  const { messages } = render('{% include "toString" %}', {}, { templates: {} });
  assert.equal(messages[0].kind, "templateNotFound");
});

test("passes on what a source throws, and refuses what is not a template", () => {
  const templates = () => {
    throw new RangeError("source");
  };
  assert.throws(() => render('{% include "a" %}', {}, { templates }), RangeError);
  assert.throws(() => check(new Template('{% include "a" %}'), { templates }), RangeError);
  assert.throws(() => render('{% include "a" %}', {}, { templates: { a: 1 } }), TypeError);
});

test("renders inside a source", () => {
  const templates = (path) => (path === "a" ? render("{{ x }}", { x: "{{ y }}" }).text : null);
  assert.equal(render('{% include "a" %}', { y: 5 }, { templates }).text, "5");
});

const self = { templates: { page: '{% include "page" %}' } };
const many = { a: Array.from({ length: 1000 }, (_, n) => n) };
const loop = "{% for i in a %}{% for j in a %}{{ j.value }}{% endfor %}{% endfor %}";
const limited = [
  ["stepLimit", loop, many, { limits: { steps: 1000 } }],
  ["outputLimit", loop, many, { limits: { outputBytes: 1000 } }],
  ["templateLimit", '{% include "page" %}', {}, { ...self, limits: { templateBytes: 5 } }],
  ["depthLimit", '{% include "page" %}', {}, self],
  ["stopped", loop, many, { keepGoing: () => false }],
];
for (const [status, text, values, options] of limited) {
  test(`ends with ${status}`, () => {
    const result = render(text, values, options);
    assert.equal(result.status, status);
    assert.equal(result.text, "");
    assert.equal(result.messages.at(-1).kind, status);
  });
}

test("refuses invalid limits", () => {
  assert.throws(() => render("", {}, { limits: { step: 1 } }), /steps, outputBytes/);
  assert.throws(() => render("", {}, { limits: { steps: -1 } }), RangeError);
});

test("gives positions to elements of all kinds", () => {
  const values = { a: ["x", null, { b: "y", index: "own" }] };
  const text = "{% for i in a %}{{ i.index }}{% if i.first %}first{% endif %}{% if i.last %}last{% endif %} {% endfor %}";
  assert.equal(render(text, values, { positions: true }).text, "1first 2 ownlast ");
});

test("keeps a context for many renders", () => {
  const context = new Context({ a: ["x"] }, { positions: true });
  assert.equal(render("{% for i in a %}{{ i.index }}{% endfor %}", context).text, "1");
  context.dispose();
  context.dispose();
  assert.throws(() => render("", context), /disposed/);
});

test("keeps the digits of JSON numbers, and says where JSON is wrong", () => {
  assert.equal(render("{{ a }}", Context.fromJson('{"a": 1.50}')).text, "1.50");
  assert.throws(() => Context.fromJson('{\n "a" 1}'), (error) => error instanceof SyntaxError && error.line === 2);
  assert.throws(() => Context.fromJson("[]"), TypeError);
});

test("explains templates", () => {
  const page = new Template('{{ nmae }}{% include "row" %}', { name: "page" });
  const templates = { row: "{% if" };
  const findings = check(page, { templates, context: { name: 1 } });
  assert.ok(findings.some(({ message }) => /did you mean "name"/.test(message)));
  assert.ok(findings.some(({ rule, file }) => rule === "syntax" && file === "row"));
  assert.equal(check(page, { templates }).some(({ rule }) => rule === "missing-name"), false);
  assert.deepEqual(names(page, { templates }).map(({ name, kind }) => [name, kind]), [["nmae", "string"]]);
  assert.deepEqual(tree(page).map(({ kind }) => kind), ["substitution", "include"]);
});

test("checks within limits", () => {
  const many = "{% for i in a %}{% for j in a %}{% for k in a %}{{ x }}{{ y }}{% endfor %}{% endfor %}{% endfor %}";
  const page = new Template(many + '{% include "row" %}');
  const options = { templates: { row: "{{ z }}" }, context: { a: Array(30).fill(1) } };
  const rulesOf = (limits) => check(page, { ...options, limits }).map(({ rule }) => rule);
  assert.ok(!rulesOf({}).includes("limit"));
  assert.ok(rulesOf({ steps: 100 }).includes("limit"));
  assert.equal(rulesOf({ messages: 1 }).length, 1);
  assert.throws(() => rulesOf({ templateBytes: 3 }), /limit/);
  assert.throws(() => check(page, { ...options, keepGoing: () => false }), /callback ended the call/);
});

test("frees contexts that nothing refers to", { skip: !globalThis.gc }, async () => {
  const text = "x".repeat(1_000_000);
  for (let count = 0; count < 1100; ++count) {
    new Context({ text }); // together more memory than the engine may have at once
    if (count % 100 === 0) {
      globalThis.gc();
      await new Promise((resolve) => setTimeout(resolve));
    }
  }
});

test("survives exhausted memory", () => {
  const values = { a: "x".repeat(100_000_000), list: Array.from({ length: 20 }, () => ({})) };
  assert.throws(() => render("{% for i in list %}{{ a }}{% endfor %}", values), /memory/);
  assert.equal(render("{{ a }}", { a: 1 }).text, "1");
});
