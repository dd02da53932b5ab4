// Lays out the npm package: its sources, the engine as a module, and the licenses of everything in
// it.
//
//   node build-package.mjs WASM VERSION OUT

import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

const [wasm, version, out] = process.argv.slice(2);
const web = fileURLToPath(new URL(".", import.meta.url));
const root = join(web, "..");

/** The paragraphs of a list of licenses that begin with one of `beginnings`; each of them must
 * occur. */
function paragraphsOf(list, beginnings) {
  const paragraphs = readFileSync(list, "utf8").split(/\n\n+/);
  return beginnings.map((beginning) => {
    const found = paragraphs.find((each) => each.replace(/\s+/g, " ").startsWith(beginning));
    if (!found) {
      throw new Error(`${list} has no paragraph that begins with "${beginning}"`);
    }
    return found.replace(/^ \.?/gm, "").trim();
  });
}

/** The Boost license, from a list of the licenses of every file. */
function boostLicence() {
  const list = readFileSync("/usr/share/doc/libboost1.74-dev/copyright", "utf8");
  const begin = list.indexOf("\n Boost Software License - Version 1.0");
  const end = list.indexOf("\n\n", begin);
  if (begin < 0 || end < 0) {
    throw new Error("the Boost license is not where it is expected");
  }
  return list.slice(begin, end).replace(/^ \.?/gm, "").trim();
}

const libraries = ["compiler-rt", "libcxx", "libcxxabi", "libunwind"];
const licences = {
  "Boost (Variant, Container and their dependencies)": boostLicence(),
  "musl, the C library": readFileSync("/usr/share/emscripten/system/lib/libc/musl/COPYRIGHT", "utf8"),
  "emscripten, and libraries of LLVM": paragraphsOf("/usr/share/doc/emscripten/copyright", [
    "Files: * ",
    ...libraries.map((library) => `Files: system/lib/${library}/* `),
    "License: Expat ",
  ]).join("\n\n"),
};

rmSync(out, { recursive: true, force: true });
mkdirSync(out, { recursive: true });
for (const file of ["engine.js", "stencilor.d.ts", "stencilor.js", "values.js", "README.md"]) {
  cpSync(join(web, "package", file), join(out, file));
}
cpSync(join(root, "LICENSE"), join(out, "LICENSE"));
const compressed = execFileSync("zopfli", ["--zlib", "-c", wasm]).toString("base64"); // 5% smaller than with zlib
writeFileSync(join(out, "wasm.js"), `// The engine, compressed.\nexport const compressed =\n  "${compressed}";\n`);
const description = JSON.parse(readFileSync(join(web, "package", "package.json"), "utf8"));
writeFileSync(join(out, "package.json"), JSON.stringify({ ...description, version }, null, 2) + "\n");
const chapters = Object.entries(licences).map(([name, text]) => `${name}\n${"=".repeat(name.length)}\n\n${text.trim()}\n`);
writeFileSync(join(out, "LICENSES.txt"), `What the engine in wasm.js contains, besides Stencilor itself.\n\n${chapters.join("\n\n")}`);
