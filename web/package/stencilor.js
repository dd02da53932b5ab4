// The interface of the package; stencilor.d.ts describes it.

import { Engine, Status } from "./engine.js";
import { Raw } from "./values.js";

// In the order of the engine's enumerators.
const statusNames = [
  "complete",
  "stopped",
  "rejected",
  "notFound",
  "unreadable",
  "stepLimit",
  "outputLimit",
  "templateLimit",
  "depthLimit",
];
const messageKinds = [
  "none",
  "valueNotFound",
  "valueNotText",
  "booleanNotFound",
  "notBoolean",
  "listNotFound",
  "notList",
  "templateNotFound",
  "templateUnreadable",
  "templateRejected",
  "stepLimit",
  "outputLimit",
  "templateLimit",
  "depthLimit",
  "stopped",
];
const limitNames = ["steps", "outputBytes", "templateBytes", "includeDepth", "messages"];
const escapeKinds = ["none", "html", "json"];

let loading;

/** Loads the engine on the first call. */
export function load() {
  loading ??= Engine.load().then(makeInterface);
  return loading;
}

function makeInterface(engine) {
  const { wasm } = engine;
  const forgotten = new FinalizationRegistry(({ free, handle }) => free(handle));

  /** Holds a handle of the engine until it is disposed of or collected. */
  class Owner {
    #handle;
    #what;

    constructor(what, handle, free) {
      this.#handle = handle;
      this.#what = what;
      this.free = () => free(handle);
      forgotten.register(this, { free, handle }, this);
    }

    get handle() {
      if (this.#handle === 0) {
        throw new Error(`the ${this.#what} was disposed of`);
      }
      return this.#handle;
    }

    dispose() {
      if (this.#handle !== 0) {
        forgotten.unregister(this);
        this.#handle = 0;
        this.free();
      }
    }
  }

  const owners = new WeakMap();
  const handleOf = (object) => owners.get(object).handle;

  function own(context, handle) {
    owners.set(context, new Owner("context", handle, wasm.stencilor_context_free));
    return context;
  }

  class Context {
    constructor(values = {}, { positions = false } = {}) {
      own(this, engine.makeContext(values, positions));
    }

    static fromJson(json, { positions = false } = {}) {
      return own(Object.create(Context.prototype), engine.makeContextOfJson(String(json), positions));
    }

    dispose() {
      owners.get(this).dispose();
    }
  }

  class Template {
    #name;
    #text;

    constructor(text, { name = "" } = {}) {
      this.#text = String(text);
      this.#name = String(name);
      const handle = parse(this.#text, this.#name);
      owners.set(this, new Owner("template", handle, wasm.stencilor_template_free));
    }

    get text() {
      return this.#text;
    }

    get name() {
      return this.#name;
    }

    get fault() {
      const fault = wasm.stencilor_template_fault(handleOf(this));
      return fault === 0 ? null : readMessage(fault);
    }

    render(values = {}, options = {}) {
      const handle = handleOf(this);
      return withContext(values, options, (context) =>
        withOptions(options, (rendering) => {
          const { status, handle: result } = engine.make((place) =>
            wasm.stencilor_template_render(handle, context, rendering, place),
          );
          return readResult(status, result);
        }),
      );
    }

    dispose() {
      owners.get(this).dispose();
    }
  }

  if (Symbol.dispose !== undefined) {
    for (const { prototype } of [Context, Template]) {
      Object.defineProperty(prototype, Symbol.dispose, { value: prototype.dispose });
    }
  }

  function parse(text, name) {
    const { status, handle } = engine.withText(text, (address, size) =>
      engine.withText(name, (nameAddress, nameSize) =>
        engine.make((place) =>
          wasm.stencilor_template_parse(address, size, nameAddress, nameSize, place),
        ),
      ),
    );
    if (status !== Status.Rejected) {
      engine.check(status);
    }
    return handle;
  }

  function withContext(values, { positions }, use) {
    if (values instanceof Context) {
      return use(handleOf(values));
    }
    const context = engine.makeContext(values, positions);
    try {
      return use(context);
    } finally {
      wasm.stencilor_context_free(context);
    }
  }

  /** Calls `use` with a handle of options, or with null for the defaults. */
  function withOptions(options, use) {
    const { escape = "none", templates, limits, keepGoing } = options;
    if (escape === "none" && templates === undefined && !limits && !keepGoing) {
      return use(0);
    }
    return withSource(templates, { escape, keepGoing }, (source, number) => {
      const made = engine.makeOrThrow((place) => wasm.stencilor_options_create(place));
      try {
        engine.check(wasm.stencilor_options_set_source(made, source));
        setEscape(made, escape, number);
        setLimits(made, limits ?? {});
        if (keepGoing) {
          engine.check(wasm.stencilor_web_set_poll(made, number));
        }
        return use(made);
      } finally {
        wasm.stencilor_options_free(made);
      }
    });
  }

  function setEscape(made, escape, number) {
    if (typeof escape === "function") {
      return engine.check(wasm.stencilor_web_set_escape(made, number));
    }
    engine.check(wasm.stencilor_options_set_escape(made, kindOfEscape(escape)));
  }

  function kindOfEscape(name) {
    const kind = escapeKinds.indexOf(name);
    if (kind < 0) {
      throw new TypeError(`unknown escape "${name}": expected ${escapeKinds.join(", ")}`);
    }
    return kind;
  }

  function setLimits(made, limits) {
    for (const [name, value] of Object.entries(limits)) {
      const limit = limitNames.indexOf(name);
      if (limit < 0) {
        throw new TypeError(`unknown limit "${name}": expected ${limitNames.join(", ")}`);
      }
      if (value !== undefined) {
        if (!Number.isSafeInteger(value) || value < 0) {
          throw new RangeError(`the limit "${name}" is not a non-negative integer`);
        }
        engine.check(wasm.stencilor_options_set_limit(made, limit, BigInt(value)));
      }
    }
  }

  /** Calls `use` with a source of templates, null if there are none, and with the number that
   * identifies the functions. */
  function withSource(templates, functions, use) {
    const find = (path, request) => answer(request, findTemplate(templates, path));
    return engine.withFunctions({ ...functions, find }, (number) => {
      if (templates === undefined) {
        return use(0, number);
      }
      const source = engine.makeOrThrow((place) => wasm.stencilor_web_source(number, place));
      try {
        return use(source, number);
      } finally {
        wasm.stencilor_source_free(source);
      }
    });
  }

  function findTemplate(templates, path) {
    if (typeof templates === "function") {
      return templates(path);
    }
    if (templates instanceof Map) {
      return templates.get(path);
    }
    return Object.hasOwn(templates, path) ? templates[path] : undefined;
  }

  function answer(request, found) {
    if (found === undefined || found === null) {
      return 0;
    }
    if (found instanceof Template) {
      return wasm.stencilor_request_set_template(request, handleOf(found));
    }
    if (typeof found !== "string") {
      throw new TypeError("a template is neither a string nor a Template");
    }
    return engine.withText(found, (address, size) =>
      wasm.stencilor_request_set_text(request, address, size),
    );
  }

  function readResult(status, result) {
    if (result === 0) {
      engine.check(status);
    }
    try {
      const { text, messageCount, usage } = engine.readResult(result);
      const messages = Array.from({ length: messageCount }, (_, index) =>
        readMessage(wasm.stencilor_result_message(result, index)),
      );
      return { status: statusNames[status], text, messages, usage };
    } finally {
      wasm.stencilor_result_free(result);
    }
  }

  function readMessage(message) {
    return {
      kind: messageKinds[wasm.stencilor_message_kind(message)],
      text: engine.textOf("stencilor_message_text", message),
      name: engine.textOf("stencilor_message_name", message),
      templateName: engine.textOf("stencilor_message_template_name", message),
      line: wasm.stencilor_message_line(message),
      column: wasm.stencilor_message_column(message),
      includedFrom: Array.from(
        { length: wasm.stencilor_message_include_count(message) },
        (_, index) => ({
          templateName: engine.textOf("stencilor_message_include_template_name", message, index),
          line: wasm.stencilor_message_include_line(message, index),
          column: wasm.stencilor_message_include_column(message, index),
        }),
      ),
    };
  }

  /** The results of an analysis, parsed from its JSON. */
  function readJson(call) {
    const text = engine.makeOrThrow(call);
    try {
      return JSON.parse(engine.textOf("stencilor_text_data", text));
    } finally {
      wasm.stencilor_text_free(text);
    }
  }

  function check(template, { templates, context, positions, limits, keepGoing } = {}) {
    const handle = handleOf(template);
    const options = { templates, keepGoing, limits: { messages: 0, ...limits } };
    const analyse = (values) =>
      withOptions(options, (checking) =>
        readJson((place) => wasm.stencilor_check_limited(handle, values, checking, place)),
      ).findings;
    return context === undefined ? analyse(0) : withContext(context, { positions }, analyse);
  }

  function names(template, { templates } = {}) {
    const handle = handleOf(template);
    return withSource(templates, {}, (source) =>
      readJson((place) => wasm.stencilor_names(handle, source, place)),
    ).names;
  }

  function tree(template) {
    return readJson((place) => wasm.stencilor_tree(handleOf(template), place)).files[0].nodes;
  }

  function escape(kind, text) {
    const escaped = engine.withText(String(text), (address, size) =>
      engine.makeOrThrow((place) => wasm.stencilor_escape(kindOfEscape(kind), address, size, place)),
    );
    try {
      return engine.textOf("stencilor_text_data", escaped);
    } finally {
      wasm.stencilor_text_free(escaped);
    }
  }

  return {
    Template,
    Context,
    check,
    names,
    tree,
    raw: (text) => new Raw(text),
    escapeHtml: (text) => escape("html", text),
    escapeJson: (text) => escape("json", text),
  };
}
