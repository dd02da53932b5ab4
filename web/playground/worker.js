// Renders and analyzes, off the page's thread.

import { load } from "stencilor";

const limits = { steps: 2_000_000, outputBytes: 8_000_000, templateBytes: 4_000_000 };
const limitTexts = {
  stepLimit: `It took more than ${limits.steps.toLocaleString("en")} steps.`,
  outputLimit: `The output is longer than ${limits.outputBytes.toLocaleString("en")} bytes.`,
  templateLimit: `The included templates are longer than ${limits.templateBytes.toLocaleString("en")} bytes.`,
  depthLimit: "Includes nest deeper than 100 levels.",
};
const mostFindings = 200;

const engine = await load().catch((error) => self.postMessage({ failure: String(error) }));

/** The objects created for the last job; most of them are the same in the next one. */
class Session {
  #templates = new Map();
  #context = null;

  /** The templates of `[path, text]` by path. */
  templatesOf(files) {
    const before = this.#templates;
    this.#templates = new Map();
    for (const [path, text] of files) {
      const known = before.get(path);
      const isSame = known?.text === text;
      this.#templates.set(path, isSame ? known : new engine.Template(text, { name: path }));
      if (isSame) {
        before.delete(path);
      }
    }
    before.forEach((template) => template.dispose());
    return this.#templates;
  }

  /** `{context, fault}`; if there is a fault, the context is empty. */
  contextOf(text, positions) {
    const last = this.#context;
    if (last?.text !== text || last.positions !== positions) {
      last?.context.dispose();
      this.#context = null;
      this.#context = { text, positions, ...makeContext(text, positions) };
    }
    return this.#context;
  }
}

function makeContext(text, positions) {
  try {
    return { context: engine.Context.fromJson(text, { positions }) };
  } catch (error) {
    const fault = { message: error.message, line: error.line ?? 1, column: error.column ?? 1 };
    return { context: new engine.Context(), fault };
  }
}

/** The results of the analysis; names and tree only if they are visible. */
function analyse(page, templates, context, view) {
  const findings = engine.check(page, { templates, context, limits: { steps: limits.steps } });
  const wellFormed = page.fault === null;
  return {
    findings: findings.slice(0, mostFindings),
    findingCount: findings.length,
    names: view === "names" && wellFormed ? engine.names(page, { templates }) : [],
    tree: view === "tree" && wellFormed ? engine.tree(page) : [],
  };
}

const session = new Session();

function work({ files, main, values, positions, escape, view }) {
  const start = performance.now();
  const templates = session.templatesOf(files);
  const page = templates.get(main);
  const { context, fault } = session.contextOf(values, positions);
  const { status, text, usage } = page.render(context, { templates, limits, escape });
  const time = performance.now() - start;
  // If the render was stopped, looking names up would take as long again.
  const known = fault || status !== "complete" ? undefined : context;
  const limit = limitTexts[status];
  return { view, status, text, usage, limit, fault, time, ...analyse(page, templates, known, view) };
}

self.addEventListener("message", ({ data: { id, job } }) => {
  try {
    self.postMessage({ id, ...work(job) });
  } catch (error) {
    self.postMessage({ id, failure: String(error) });
  }
});
if (engine) {
  self.postMessage({ ready: true });
}
