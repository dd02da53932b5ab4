// The playground in a real browser, as people use it.
//
// STENCILOR_PLAYGROUND is the folder of the page, STENCILOR_MODULES that of the modules of npm, and
// STENCILOR_SCRATCH one for screenshots. UPDATE_PICTURE writes one to the documents.

import assert from "node:assert/strict";
import { copyFileSync, mkdirSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";

import { openBrowser, require, serve } from "./browser.mjs";

const { STENCILOR_DOCUMENTS, STENCILOR_PLAYGROUND, STENCILOR_SCRATCH } = process.env;
const pictures = join(STENCILOR_SCRATCH, "pictures");
const axe = require.resolve("axe-core");

let browser, server;
before(async () => {
  mkdirSync(pictures, { recursive: true });
  server = await serve(STENCILOR_PLAYGROUND);
  browser = await openBrowser();
});
after(async () => {
  await browser?.close();
  server?.close();
});

/** Opens the page as a first-time visitor. Any error in it fails the test. */
async function open(t, { fragment = "", prepare = () => {}, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, ...options });
  const page = await context.newPage();
  const faults = [];
  page.on("pageerror", (error) => faults.push(String(error)));
  t.after(async () => {
    await context.close();
    assert.deepEqual(faults, []);
  });
  await prepare(page);
  await page.goto(server.address + fragment);
  await page.waitForFunction(() => document.body.dataset.rendered);
  return page;
}

async function type(page, editor, text) {
  await page.click(`#${editor} .cm-content`);
  await page.keyboard.press("Control+A");
  await page.keyboard.insertText(text);
}

const seeText = (page, text) =>
  page.waitForFunction((expected) => document.getElementById("text").textContent === expected, text);
const seeMessage = (page, text) => page.locator("#findings", { hasText: text }).waitFor();
const choose = (page, title) => page.selectOption("#example", title);

test("what is typed is rendered", async (t) => {
  const page = await open(t);
  await seeText(page, "Hello, Ada! You have 12 new messages.\n");
  await type(page, "template", "<{{ name }}>");
  await seeText(page, "<Ada>");
  await type(page, "context", '{ "name": "Zoë" }');
  await seeText(page, "<Zoë>");
});

test("a fault is underlined, and its text is shown", async (t) => {
  const page = await open(t);
  await type(page, "template", "{{ nmae }}");
  await seeMessage(page, 'did you mean "name"?');
  await page.waitForFunction(() => document.querySelector("#template .cm-lintRange")?.textContent === "nmae");
  await page.hover("#template .cm-lintRange");
  await page.locator(".cm-tooltip-lint", { hasText: 'did you mean "name"?' }).waitFor();
});

test("faults in the values are underlined", async (t) => {
  const page = await open(t);
  await type(page, "context", '{\n  "name" 1\n}');
  await page.waitForSelector("#context .cm-lintRange-error");
  await seeMessage(page, "values:2:");
});

test("tags are highlighted by the grammar of the editor extension", async (t) => {
  const page = await open(t);
  await type(page, "template", "{% for a in b %}{{ a.c }}{% endfor %}{% include \"d\" %}{% x %}");
  const partsOf = (style) => page.locator(`#template .${style}`).allTextContents();
  assert.deepEqual(await partsOf("tok-keyword"), ["for", "in", "endfor", "include"]);
  assert.deepEqual(await partsOf("tok-name"), ["b", "a.c"]);
  assert.deepEqual(await partsOf("tok-parameter"), ["a"]);
  assert.deepEqual(await partsOf("tok-invalid"), ["{%"]);
});

test("names of the values are completed", async (t) => {
  const page = await open(t);
  await choose(page, "Loops and prefixes");
  await type(page, "template", "{% for t in teas %}{{ ");
  await page.keyboard.type("t.p");
  await page.locator(".cm-tooltip-autocomplete", { hasText: "t.price" }).waitFor();
  await page.waitForTimeout(200); // for its first 75 ms, the list ignores keys that may be meant for the text
  await page.keyboard.press("Enter");
  await page.keyboard.insertText(" }}{% endfor %}");
  await seeText(page, "4.506.00");
});

test("each example renders, and only the second-to-last is stopped", async (t) => {
  const page = await open(t);
  const titles = await page.locator("#example option:not([value=''])").allTextContents();
  assert.ok(titles.length >= 12, `${titles.length} examples`);
  for (const title of titles) {
    const before = await page.evaluate(() => document.body.dataset.rendered);
    await choose(page, title);
    await page.waitForFunction((id) => document.body.dataset.rendered !== id, before);
    const stopped = await page.locator("#output.stopped").count();
    assert.equal(stopped === 1, title === "A template that never ends", title);
    assert.notEqual(await page.locator("#lesson").textContent(), "");
  }
});

test("included templates are added, renamed and deleted", async (t) => {
  const page = await open(t);
  await type(page, "template", '[{% include "row.txt" %}]');
  await seeMessage(page, "row.txt");
  await page.click("#add");
  await page.fill("#ask-path", "no way");
  await page.keyboard.press("Enter");
  await page.locator("#ask-fault", { hasText: "starts with a letter" }).waitFor();
  await page.fill("#ask-path", "line.txt");
  await page.keyboard.press("Enter");
  await type(page, "template", "{{ name }}");
  await page.click("#rename");
  await page.fill("#ask-path", "row.txt");
  await page.keyboard.press("Enter");
  await seeText(page, "[Ada]");
  await page.click("#delete");
  await seeText(page, "[]");
});

test("a message leads to its place in another template", async (t) => {
  const page = await open(t);
  await choose(page, "Includes see bare names");
  await page.locator("#findings button", { hasText: "wrong.txt" }).first().click();
  await page.locator("#files [aria-selected=true]", { hasText: "wrong.txt" }).waitFor();
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute("aria-label")), "Template");
});

test("a link holds everything", async (t) => {
  const page = await open(t);
  await choose(page, "Escaping");
  await type(page, "template", "{{ title }} – geteilt");
  await page.click("#tab-text");
  await seeText(page, "Tea &amp; cake – geteilt");
  await page.click("#share");
  await page.waitForFunction(() => location.hash.length > 10);
  const fragment = await page.evaluate(() => location.hash);
  const other = await open(t, { fragment });
  await seeText(other, "Tea &amp; cake – geteilt");
  assert.equal(await other.inputValue("#escape"), "html");
});

test("what is typed after sharing is kept, and a link does not replace it before it is changed", async (t) => {
  const page = await open(t);
  await type(page, "template", "shared");
  await page.click("#share");
  await page.waitForFunction(() => location.hash.length > 10);
  const fragment = await page.evaluate(() => location.hash);
  await type(page, "template", "later");
  await page.reload();
  await seeText(page, "later");
  await page.goto(server.address + fragment);
  await page.reload();
  await seeText(page, "shared");
  await page.goto(`${server.address}?again`);
  await seeText(page, "later");
});

test("the page opens even with a damaged link", async (t) => {
  const page = await open(t, { fragment: "#eJxnonsense" });
  await seeText(page, "Hello, Ada! You have 12 new messages.\n");
});

test("the last state is kept", async (t) => {
  const page = await open(t);
  await type(page, "template", "kept");
  await seeText(page, "kept");
  await page.waitForFunction(() => localStorage.getItem("stencilor-playground")?.includes("kept"));
  await page.reload();
  await seeText(page, "kept");
});

test("a template that would run forever reports the limit that it reached", async (t) => {
  const page = await open(t);
  const loop = "{% for i in l %}".repeat(9) + "x" + "{% endfor %}".repeat(9);
  await type(page, "context", `{ "l": [${Array(20).fill(1)}] }`);
  await type(page, "template", loop);
  await page.locator("#text", { hasText: "more than 2,000,000 steps" }).waitFor();
  await type(page, "template", "alive");
  await seeText(page, "alive");
});

const broken = [
  ["a missing worker", (route) => route.fulfill({ status: 404 })],
  [
    "an engine that the browser rejects",
    async (route) => {
      const response = await route.fetch();
      const refusal = 'WebAssembly.instantiate = () => Promise.reject(new Error("refused"));';
      return route.fulfill({ response, body: refusal + (await response.text()) });
    },
  ],
];
for (const [name, answer] of broken) {
  test(`the page reports ${name}`, async (t) => {
    const page = await open(t, { prepare: (page) => page.route("**/worker.js", answer) });
    await seeMessage(page, "The engine cannot be loaded.");
    await page.locator("#text", { hasText: "The engine cannot be loaded." }).waitFor();
  });
}

test("an engine that fails is replaced", async (t) => {
  const page = await open(t, {
    prepare: (page) =>
      page.addInitScript(() => {
        const { postMessage } = Worker.prototype;
        Worker.prototype.postMessage = function (message) {
          const isBad = message.job.files[0][1] === "bad";
          postMessage.call(this, isBad ? { ...message, job: { ...message.job, files: null } } : message);
        };
      }),
  });
  await type(page, "template", "bad");
  await seeMessage(page, "stopped");
  await type(page, "template", "good");
  await seeText(page, "good");
});

test("1 MiB of output is shown", async (t) => {
  const page = await open(t);
  await type(page, "context", `{ "l": [${Array(1024).fill(1)}], "a": "${"x".repeat(1023)}" }`);
  await type(page, "template", "{% for i in l %}{{ a }}\n{% endfor %}");
  await page.waitForFunction(() => document.getElementById("text").textContent.length === 1024 * 1024);
  await type(page, "template", "short");
  await seeText(page, "short");
});

test("the output is a page that runs no script", async (t) => {
  const page = await open(t);
  await type(page, "template", "<h1>{{ name }}</h1><script>document.body.textContent = 'ran'</script>");
  await page.click("#tab-page");
  await page.frameLocator("#page").locator("h1", { hasText: "Ada" }).waitFor();
  assert.equal(await page.getAttribute("#page", "sandbox"), "");
});

test("the names and the tree of the template are listed", async (t) => {
  const page = await open(t);
  await page.click("#tab-names");
  assert.deepEqual(await page.locator("#view-names td:first-child").allTextContents(), ["name", "count"]);
  await page.click("#tab-tree");
  await page.locator("#view-tree .node", { hasText: "substitution count" }).waitFor();
});

test("everything can be reached by keyboard", async (t) => {
  const page = await open(t);
  const reached = new Set();
  for (let count = 0; count < 40; ++count) {
    await page.keyboard.press("Tab");
    reached.add(await page.evaluate(() => document.activeElement.id || document.activeElement.getAttribute("aria-label")));
  }
  for (const each of ["example", "share", "theme", "file-0", "add", "rename", "Template", "positions", "Values", "tab-text", "escape", "view-text", "findings"]) {
    assert.ok(reached.has(each), `${each} is not among ${[...reached].join(", ")}`);
  }
  await page.focus("#tab-text");
  await page.keyboard.press("ArrowRight");
  assert.equal(await page.evaluate(() => document.activeElement.id), "tab-page");
  assert.ok(await page.isVisible("#view-page"));
  await page.focus("#template .cm-content");
  await page.keyboard.press("Control+End");
  await page.keyboard.type("more");
  await page.click("#tab-text");
  await page.locator("#text", { hasText: "more" }).waitFor();
});

const looks = [
  ["light", { colorScheme: "light" }],
  ["dark", { colorScheme: "dark" }],
  ["narrow", { colorScheme: "light", viewport: { width: 400, height: 800 } }],
  ["narrow dark", { colorScheme: "dark", viewport: { width: 400, height: 800 } }],
];
for (const [name, options] of looks) {
  test(`everything is accessible: ${name}`, async (t) => {
    const page = await open(t, options);
    await choose(page, "Loops and prefixes");
    await seeMessage(page, 'write "tag.value"');
    await page.locator("#template .cm-lintRange").first().waitFor();
    const file = join(pictures, `${name.replace(" ", "-")}.png`);
    await page.screenshot({ path: file, fullPage: name.startsWith("narrow") });
    if (name === "light" && process.env.UPDATE_PICTURE) {
      copyFileSync(file, join(STENCILOR_DOCUMENTS, "playground.png"));
    }
    const width = await page.evaluate(() => document.documentElement.scrollWidth);
    assert.ok(width <= (options.viewport?.width ?? 1280), `${width} pixels wide`);
    for (const tab of ["text", "names", "tree", "page"]) {
      await page.click(`#tab-${tab}`);
      await page.addScriptTag({ path: axe });
      const { violations } = await page.evaluate(() => globalThis.axe.run());
      assert.deepEqual(violations.map(({ id, nodes }) => [id, nodes.map((node) => node.html)]), []);
    }
  });
}
