// Measures the npm package in Node.js alongside three other engines, and a keystroke in the
// playground. Each engine parses its template beforehand and receives its values with each call.
//
// Uses the environment variables of the tests in tests/. Engines take turns of a few milliseconds,
// so that disturbances affect all of them alike. Each time is the median over the turns.

import assert from "node:assert/strict";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

import { openBrowser, require, serve } from "./tests/browser.mjs";

const { load } = await import(pathToFileURL(join(process.env.STENCILOR_PACKAGE, "stencilor.js")));
const { Template } = await load();
const Handlebars = require("handlebars");
const Mustache = require("mustache");
const nunjucks = require("nunjucks");

// Written once, with tags that are translated into each language.
const greeting = "Hello, [name]! You have [count] new messages.";
const productPage =
  "<html><head><title>[title]</title></head>\n<body><h1>[title]</h1>\n" +
  "<p>[if admin]You may edit.[else admin]You may look.[endif admin]</p>\n<ul>\n[for item in items]" +
  '  <li class="row"><a href="[item.url]">[item.name]</a>' +
  "[if item.new] <b>new</b>[endif item.new]: [item.description]</li>\n[endfor items]</ul></body></html>\n";
const table =
  "<table>\n[for row in rows]<tr>[for col in row.cells]<td>[col.v]</td>[endfor row.cells]" +
  "</tr>\n[endfor rows]</table>\n";

function products(count) {
  const items = Array.from({ length: count }, (_, number) => ({
    url: `/products/${number}`,
    name: `Product ${number}`,
    description: `One of ${count} things that nobody needs, in blue.`,
    new: number % 3 === 0,
  }));
  return { title: "Everything we sell", admin: true, items };
}

function cells() {
  const row = (_, r) => ({ cells: Array.from({ length: 10 }, (_, c) => ({ v: String(r * 10 + c) })) });
  return { rows: Array.from({ length: 1000 }, row) };
}

const workloads = [
  ["W1", greeting, { name: "Ada", count: "12" }],
  ["W2-10", productPage, products(10)],
  ["W2-1000", productPage, products(1000)],
  ["W3", table, cells()],
];

/** Translates a template into another language: `forms` has the form of each kind of tag. */
function translate(text, forms) {
  return text.replace(/\[(?:(if|else|endif|for \w+ in|endfor) )?([\w.]+)\]/g, (tag, word, name) => {
    const form = forms[word?.startsWith("for ") ? "for" : (word ?? "name")];
    return form(name, word?.split(" ")[1]);
  });
}

const last = (name) => name.split(".").at(-1); // members of an element are in scope without a prefix
// Stencilor and Nunjucks write these tags alike.
const sharedTags = {
  name: (name) => `{{ ${name} }}`,
  if: (name) => `{% if ${name} %}`,
  else: () => "{% else %}",
  endif: () => "{% endif %}",
  for: (name, variable) => `{% for ${variable} in ${name} %}`,
  endfor: () => "{% endfor %}",
};
const engines = {
  Stencilor: (text) => {
    const page = new Template(translate(text, sharedTags));
    return (values) => page.render(values).text;
  },
  Handlebars: (text) =>
    Handlebars.compile(
      translate(text, {
        name: (name) => `{{${last(name)}}}`,
        if: (name) => `{{#if ${last(name)}}}`,
        else: () => "{{else}}",
        endif: () => "{{/if}}",
        for: (name) => `{{#each ${last(name)}}}`,
        endfor: () => "{{/each}}",
      }),
      { noEscape: true },
    ),
  Mustache: (text) => {
    const page = translate(text, {
      name: (name) => `{{{${last(name)}}}}`,
      if: (name) => `{{#${last(name)}}}`,
      else: (name) => `{{/${last(name)}}}{{^${last(name)}}}`,
      endif: (name) => `{{/${last(name)}}}`,
      for: (name) => `{{#${last(name)}}}`,
      endfor: (name) => `{{/${last(name)}}}`,
    });
    Mustache.parse(page); // and kept
    return (values) => Mustache.render(page, values);
  },
  Nunjucks: (text) => {
    const page = new nunjucks.Template(
      translate(text, sharedTags),
      new nunjucks.Environment(null, { autoescape: false }),
      "page",
      true,
    );
    return (values) => page.render(values);
  },
};

/** Calls `render` and returns the milliseconds of the processor that one call took, with those of
 * the garbage that it left. */
function time(render, values, calls) {
  const start = process.cpuUsage();
  for (let call = 0; call < calls; ++call) {
    render(values);
  }
  const { user, system } = process.cpuUsage(start);
  return (user + system) / 1000 / calls;
}

/** The number of calls that take the given time. */
const callsIn = (milliseconds, { render }, values) => Math.ceil(milliseconds / time(render, values, 5));

const quantile = (times, part) => times.sort((a, b) => a - b)[Math.floor(times.length * part)];

/** The name of each engine and the nanoseconds of its render. All render the same bytes. */
function measure(text, values) {
  const renderers = Object.entries(engines).map(([name, make]) => ({ name, render: make(text), times: [] }));
  for (const each of renderers) {
    assert.equal(each.render(values), renderers[0].render(values), each.name);
    time(each.render, values, callsIn(1000, each, values)); // until it is JIT-compiled
    each.calls = callsIn(5, each, values);
  }
  for (let turn = 0; turn < 41; ++turn) {
    for (const { times, render, calls } of renderers) {
      times.push(time(render, values, calls));
    }
  }
  return renderers.map(({ name, times }) => [name, quantile(times, 0.5) * 1e6]);
}

const shown = (nanoseconds) =>
  nanoseconds < 1e4 ? `${Math.round(nanoseconds)} ns` : nanoseconds < 1e7 ? `${(nanoseconds / 1e3).toFixed(0)} µs` : `${(nanoseconds / 1e6).toFixed(1)} ms`;

console.log("npm package in Node.js".padEnd(24) + Object.keys(engines).map((name) => name.padStart(12)).join("") + "   of the best other");
for (const [name, text, values] of workloads) {
  const times = measure(text, values);
  const best = Math.min(...times.slice(1).map(([, time]) => time));
  const row = times.map(([, time]) => shown(time).padStart(12)).join("");
  console.log(name.padEnd(24) + row + (times[0][1] / best).toFixed(2).padStart(15));
}

/** The time from a key press to the change of the page, in milliseconds. */
async function measureKeystroke() {
  const server = await serve(process.env.STENCILOR_PLAYGROUND);
  const browser = await openBrowser();
  try {
    const page = await browser.newPage();
    await page.goto(server.address);
    await page.waitForFunction(() => document.body.dataset.rendered);
    const before = await page.evaluate(() => document.body.dataset.rendered);
    await page.selectOption("#example", "A report");
    await page.waitForFunction((id) => document.body.dataset.rendered !== id, before);
    await page.click("#tab-text");
    await page.focus("#template .cm-content");
    await page.evaluate(() => {
      globalThis.times = [];
      let start;
      addEventListener("keydown", () => (start = performance.now()), true);
      new MutationObserver(() => globalThis.times.push(performance.now() - start)).observe(document.body, {
        attributeFilter: ["data-rendered"],
      });
    });
    for (let count = 0; count < 60; ++count) {
      await page.keyboard.press("x");
      await page.waitForTimeout(50);
    }
    return await page.evaluate(() => globalThis.times.slice(10));
  } finally {
    await browser.close();
    server.close();
  }
}

const times = await measureKeystroke();
const inMilliseconds = (part) => `${quantile(times, part).toFixed(1)} ms`;
console.log(`keystroke in the playground's largest example: median ${inMilliseconds(0.5)}, 9 of 10 under ${inMilliseconds(0.9)} (a frame has 16 ms)`);
