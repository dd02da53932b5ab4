// Lays out the npm package: its sources, the engine inside a module, and the licences of all of it.
//
//   node build-package.mjs WASM VERSION OUT

import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { deflateSync } from "node:zlib";

const [wasm, version, out] = process.argv.slice(2);
const web = fileURLToPath(new URL(".", import.meta.url));
const root = join(web, "..");
const system = "/usr/share/emscripten/system/lib";

/** The licence of Boost, out of a list that names that of every file. */
function boostLicence() {
  const list = readFileSync("/usr/share/doc/libboost1.74-dev/copyright", "utf8");
  const begin = list.indexOf("\n Boost Software License - Version 1.0");
  const end = list.indexOf("\n\n", begin);
  if (begin < 0 || end < 0) {
    throw new Error("the package of Boost does not have its licence where it is looked for");
  }
  return list.slice(begin, end).replace(/^ \.?/gm, "").trim();
}

const licences = {
  "Boost (Variant, Container and what they use)": boostLicence(),
  "musl, the C library": readFileSync(`${system}/libc/musl/COPYRIGHT`, "utf8"),
  "libc++, libc++abi, libunwind and compiler-rt of LLVM": readFileSync("/usr/share/doc/libc++-16-dev/copyright", "utf8"),
  "nlohmann-json": readFileSync("/usr/share/doc/nlohmann-json3-dev/copyright", "utf8"),
  "emscripten, and dlmalloc with it": readFileSync("/usr/share/doc/emscripten/copyright", "utf8"),
};

rmSync(out, { recursive: true, force: true });
mkdirSync(out, { recursive: true });
for (const file of ["engine.js", "stencilor.d.ts", "stencilor.js", "values.js", "README.md"]) {
  cpSync(join(web, "package", file), join(out, file));
}
cpSync(join(root, "LICENSE"), join(out, "LICENSE"));
const compressed = deflateSync(readFileSync(wasm), { level: 9 }).toString("base64");
writeFileSync(join(out, "wasm.js"), `// The engine, compressed.\nexport const compressed =\n  "${compressed}";\n`);
const description = JSON.parse(readFileSync(join(web, "package", "package.json"), "utf8"));
writeFileSync(join(out, "package.json"), JSON.stringify({ ...description, version }, null, 2) + "\n");
const chapters = Object.entries(licences).map(([name, text]) => `${name}\n${"=".repeat(name.length)}\n\n${text.trim()}\n`);
writeFileSync(join(out, "LICENSES.txt"), `What the engine in wasm.js was made of, besides Stencilor itself.\n\n${chapters.join("\n\n")}`);
