// The examples in the documents, and random templates, are rendered as by the native build.
//
// STENCILOR_PACKAGE is the folder of the package, STENCILOR_DOCUMENTS that of the documents, and
// STENCILOR_WEB_CASES a program that prints a given number of random cases.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

const { STENCILOR_PACKAGE, STENCILOR_DOCUMENTS, STENCILOR_WEB_CASES } = process.env;
const { load } = await import(pathToFileURL(join(STENCILOR_PACKAGE, "stencilor.js")));
const { Template, Context, check } = await load();

/** The fenced blocks of a document: `{kind, argument, text, line}`. */
function blocksOf(document) {
  const blocks = [];
  let block = null;
  document.split("\n").forEach((line, index) => {
    if (block === null && line.startsWith("```")) {
      const [kind, argument] = line.replace(/^`+/, "").split(" ");
      block = { kind, argument, text: "", line: index + 1 };
      blocks.push(block);
    } else if (line === "```") {
      block = null;
    } else if (block !== null) {
      block.text += line + "\n";
    }
  });
  return blocks;
}

/** The first lines of messages: `page.txt:1:2: warning: ...`. */
const headings = (messages) => messages.split("\n").filter((line) => /^[\w./]+:\d+:\d+: /.test(line));

function compare(page, values, output, messages, templates) {
  const parsed = new Template(page, { name: "page.txt" });
  const context = values ? Context.fromJson(values) : new Context();
  assert.equal(parsed.render(context, { templates }).text, output);
  const faults = check(parsed, { templates, context }).filter(({ severity }) => severity !== "note");
  for (const heading of headings(messages)) {
    const found = faults.map((each) => `${each.file}:${each.line}:${each.column}: ${each.severity}: ${each.message}`);
    assert.ok(found.includes(heading), `${heading}\nis not among\n${found.join("\n")}`);
  }
}

let count = 0;
for (const name of readdirSync(STENCILOR_DOCUMENTS).filter((each) => each.endsWith(".md"))) {
  const blocks = blocksOf(readFileSync(join(STENCILOR_DOCUMENTS, name), "utf8"));
  const templates = new Map();
  blocks.forEach(({ kind, argument, text, line }, index) => {
    if (kind === "template" && argument) {
      templates.set(argument, text);
    } else if (kind === "template") {
      const known = new Map(templates);
      const following = blocks.slice(index + 1);
      const take = (wanted) => (following[0]?.kind === wanted ? following.shift().text : "");
      const [values, output, messages] = [take("json"), take("output"), take("messages")];
      count += 1;
      test(`${name}:${line}`, () => compare(text, values, output, messages, known));
    }
  });
}

test("the documents have cases", () => assert.ok(count > 15, `${count}`));

test("the report of the examples", () => {
  const folder = join(STENCILOR_DOCUMENTS, "../examples/report");
  const read = (path) => readFileSync(join(folder, path), "utf8");
  const page = new Template(read("report.html"), { name: "report.html" });
  const { text, messages } = page.render(Context.fromJson(read("context.json")), { escape: "html", templates: read });
  assert.deepEqual(messages, []);
  assert.equal(text, read("expected.html"));
});

function comparable({ status, text, messages, usage }) {
  return {
    isComplete: status === "complete",
    text,
    messages: messages.map((each) => [
      each.text,
      each.name,
      each.templateName,
      each.line,
      each.column,
      each.includedFrom.map((site) => [site.templateName, site.line, site.column]),
    ]),
    usage: [usage.steps, usage.outputBytes, usage.templateBytes, usage.includeDepth, usage.messages],
  };
}

test("20,000 random templates", async () => {
  const cases = 20_000;
  const native = spawn(STENCILOR_WEB_CASES, [String(cases)], { stdio: ["ignore", "pipe", "inherit"] });
  let [compared, complete] = [0, 0];
  for await (const line of createInterface({ input: native.stdout })) {
    const { seed, text, values, templates, positions, escape, steps, result } = JSON.parse(line);
    const { isComplete, text: output, messages, usage } = result; // in the order used by `comparable`
    const page = new Template(text, { name: "page" });
    const options = { templates, positions, escape, limits: { steps, includeDepth: 8 } };
    const found = comparable(page.render(values, options));
    if (JSON.stringify(found) !== JSON.stringify({ isComplete, text: output, messages, usage })) {
      assert.deepEqual(found, result, `seed ${seed}`);
    }
    page.dispose();
    compared += 1;
    complete += result.isComplete && result.text !== "" ? 1 : 0;
  }
  assert.equal(compared, cases);
  assert.ok(complete > cases / 4, `only ${complete} rendered something`);
});
