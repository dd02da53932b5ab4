// The tarball, in a project outside this repository.
//
// STENCILOR_PACKAGE is the folder of the package, STENCILOR_MODULES that of the npm modules, and
// STENCILOR_SCRATCH one to write to.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, before, test } from "node:test";

import { openBrowser, serve } from "./browser.mjs";

const { STENCILOR_PACKAGE, STENCILOR_MODULES, STENCILOR_SCRATCH } = process.env;
const folder = join(STENCILOR_SCRATCH, "consumer");
const run = (command, ...args) => execFileSync(command, args, { cwd: folder, encoding: "utf8" });

let tarball;
before(() => {
  rmSync(folder, { recursive: true, force: true });
  mkdirSync(folder, { recursive: true });
  writeFileSync(join(folder, "package.json"), '{ "private": true, "type": "module" }');
  const packed = JSON.parse(run("npm", "pack", STENCILOR_PACKAGE, "--json", "--ignore-scripts"));
  tarball = Array.isArray(packed) ? packed[0] : Object.values(packed)[0];
  run("npm", "install", "--offline", "--no-audit", "--no-fund", join(folder, tarball.filename));
});

test("the tarball has only what is needed, in 100 KB", () => {
  assert.deepEqual(tarball.files.map(({ path }) => path).sort(), [
    "LICENSE",
    "LICENSES.txt",
    "README.md",
    "engine.js",
    "package.json",
    "stencilor.d.ts",
    "stencilor.js",
    "values.js",
    "wasm.js",
  ]);
  const modules = ["engine.js", "stencilor.js", "values.js", "wasm.js"];
  const packed = execFileSync("gzip", ["-9c", ...modules], { cwd: STENCILOR_PACKAGE });
  assert.ok(packed.length <= 100_000, `${packed.length} bytes`);
  assert.ok(statSync(join(folder, tarball.filename)).size < 120_000);
});

test("the README example prints what it says", () => {
  const readme = readFileSync(join(STENCILOR_PACKAGE, "README.md"), "utf8");
  const [, example] = /```js\n(import[^]*?)```/.exec(readme);
  const [, expected] = /console\.log\(.*\/\/ (.*)/.exec(example);
  writeFileSync(join(folder, "example.js"), example);
  assert.equal(run(process.execPath, "example.js"), `${expected}\n\n`);
});

test("the types are right", () => {
  writeFileSync(
    join(folder, "types.ts"),
    `import { load, type RenderResult } from "stencilor";
const { Template, Context, check, raw } = await load();
const page = new Template("{{ a }}", { name: "page" });
const result: RenderResult = page.render({ a: raw("x"), list: [1, { b: null }] }, { escape: "html", limits: { steps: 5 } });
page.render(new Map([["a", 1]]), { templates: (path: string) => path, escape: (text) => text.trim() });
page.render(Context.fromJson("{}", { positions: true }));
const line: number = result.messages[0]!.line + check(page, { context: {} })[0]!.notes.length;
// @ts-expect-error: there is no such escape
page.render({}, { escape: "xml" });
// @ts-expect-error: there is no such limit
page.render({}, { limits: { step: line } });
`,
  );
  const compiler = join(STENCILOR_MODULES, ".bin", "tsc");
  run(compiler, "--noEmit", "--strict", "--target", "es2022", "--module", "nodenext", "types.ts");
});

let browser, server;
after(async () => {
  await browser?.close();
  server?.close();
});

test("bundled by esbuild, it renders in the browser", async () => {
  const { buildSync } = createRequire(join(STENCILOR_MODULES, "consumer.js"))("esbuild");
  writeFileSync(
    join(folder, "app.js"),
    `import { load } from "stencilor";
const { Template } = await load();
document.body.textContent = new Template("Hello, {{ name }}!").render({ name: "Zoë" }).text;`,
  );
  const out = join(folder, "site");
  buildSync({ absWorkingDir: folder, entryPoints: ["app.js"], bundle: true, format: "esm", minify: true, outdir: out });
  writeFileSync(join(out, "index.html"), '<!doctype html><meta charset="utf-8"><script type="module" src="app.js"></script><body></body>');
  server = await serve(out);
  browser = await openBrowser();
  const page = await browser.newPage();
  await page.goto(server.address);
  await page.waitForFunction(() => document.body.textContent === "Hello, Zoë!");
});
