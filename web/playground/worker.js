// Renders and analyses, away from the page.

import { load } from "stencilor";

const limits = { steps: 2_000_000, outputBytes: 8_000_000, templateBytes: 4_000_000 };
const limitTexts = {
  stepLimit: `It takes more than ${limits.steps.toLocaleString("en")} steps.`,
  outputLimit: `The output is longer than ${limits.outputBytes.toLocaleString("en")} bytes.`,
  templateLimit: `The included templates are longer than ${limits.templateBytes.toLocaleString("en")} bytes.`,
  depthLimit: "Includes nest deeper than 100 levels.",
};
const mostFindings = 200;

const engine = await load();

function contextOf(text, positions) {
  try {
    return { context: engine.Context.fromJson(text, { positions }) };
  } catch (error) {
    const fault = { message: error.message, line: error.line ?? 1, column: error.column ?? 1 };
    return { context: new engine.Context(), fault };
  }
}

function analyse(page, templates, context) {
  const options = { templates, context };
  const findings = engine.check(page, options);
  const wellFormed = page.fault === null;
  return {
    findings: findings.slice(0, mostFindings),
    findingCount: findings.length,
    names: wellFormed ? engine.names(page, { templates }) : [],
    tree: wellFormed ? engine.tree(page) : [],
  };
}

function work({ files, main, values, positions, escape }) {
  const start = performance.now();
  const templates = new Map(files);
  const page = new engine.Template(templates.get(main), { name: main });
  const { context, fault } = contextOf(values, positions);
  try {
    const { status, text, usage } = page.render(context, { templates, limits, escape });
    const time = performance.now() - start;
    // The analysis of a render that is stopped would go on for longer than that.
    const known = fault || status !== "complete" ? undefined : context;
    return { status, text, usage, limit: limitTexts[status], fault, time, ...analyse(page, templates, known) };
  } finally {
    context.dispose();
    page.dispose();
  }
}

self.addEventListener("message", ({ data: { id, job } }) => {
  try {
    self.postMessage({ id, ...work(job) });
  } catch (error) {
    self.postMessage({ id, status: "failed", text: "", limit: String(error), findings: [], names: [], tree: [] });
  }
});
self.postMessage({ ready: true });
