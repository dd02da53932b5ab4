// Bundles the playground into a folder of static files.
//
//   node build-playground.mjs PACKAGE MODULES OUT
//
//   PACKAGE  the npm package, as laid out by build-package.mjs
//   MODULES  the node_modules folder with the packages to bundle

import { cpSync, mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const [packageFolder, modules, out] = process.argv.slice(2).map((path) => resolve(path));
const { build } = createRequire(join(modules, "playground.js"))("esbuild");
const source = fileURLToPath(new URL("playground", import.meta.url));

/** `import text from "file?text"` */
const asText = {
  name: "as text",
  setup({ onResolve, onLoad }) {
    onResolve({ filter: /\?text$/ }, ({ path, resolveDir }) => ({
      path: join(resolveDir, path.slice(0, -"?text".length)),
      namespace: "text",
    }));
    onLoad({ filter: /./, namespace: "text" }, ({ path }) => ({ contents: readFileSync(path), loader: "text" }));
  },
};

/** The licenses of the packages in a bundle. */
function licencesOf({ inputs }) {
  const names = Object.keys(inputs).map((path) => /node_modules\/((?:@[^/]+\/)?[^/]+)\//.exec(path)?.[1]);
  return [...new Set(names.filter(Boolean))].sort().map((name) => {
    const file = readdirSync(join(modules, name)).find((each) => /^licen[cs]e/i.test(each));
    if (!file) {
      throw new Error(`the package ${name} has no license`);
    }
    return `${name}\n${"=".repeat(name.length)}\n\n${readFileSync(join(modules, name, file), "utf8").trim()}\n`;
  });
}

rmSync(out, { recursive: true, force: true });
mkdirSync(out, { recursive: true });
for (const file of ["index.html", "style.css", "icon.svg"]) {
  cpSync(join(source, file), join(out, file));
}
const { metafile } = await build({
  entryPoints: ["main.js", "worker.js"].map((file) => join(source, file)),
  outdir: out,
  bundle: true,
  format: "esm",
  target: "es2022",
  minify: true,
  legalComments: "none",
  metafile: true,
  nodePaths: [modules],
  alias: { stencilor: join(packageFolder, "stencilor.js") },
  plugins: [asText],
  logLevel: "warning",
});
const engine = readFileSync(join(packageFolder, "LICENSE"), "utf8") + "\n" + readFileSync(join(packageFolder, "LICENSES.txt"), "utf8");
writeFileSync(join(out, "LICENSES.txt"), [engine, ...licencesOf(metafile)].join("\n\n"));
