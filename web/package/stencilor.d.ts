/** A value for templates: a string, a number, a boolean, nothing, a list or a dictionary. An object
 * with `toJSON`, such as a `Date`, becomes what that method returns; any other iterable becomes a
 * list. */
export type Value =
  | string
  | number
  | bigint
  | boolean
  | null
  | undefined
  | Raw
  | Date
  | Iterable<unknown>
  | ReadonlyMap<string, unknown>
  | { readonly [key: string]: unknown };

/** The values that a template is rendered with, by name. */
export type Values = ReadonlyMap<string, unknown> | object;

/** A string that renders never escape; created by `raw`. */
export interface Raw {
  readonly text: string;
}

/** How values are escaped. A function receives the text of a value. */
export type Escape = "none" | "html" | "json" | ((text: string) => string);

/** Where included templates come from: a mapping from paths, or a function. A parsed template can
 * be included many times without being parsed again. */
export type Templates =
  | ReadonlyMap<string, string | Template>
  | { readonly [path: string]: string | Template }
  | ((path: string) => string | Template | null | undefined);

/** The limits of a render. 0 means no limit, except for `includeDepth`. */
export interface Limits {
  /** Nodes visited, iterations, and every 64 keys looked up. */
  steps?: number;
  /** Bytes of text in UTF-8. */
  outputBytes?: number;
  /** Bytes of included templates, each path counted once. */
  templateBytes?: number;
  /** Nested includes: 1 to 100 (the default). */
  includeDepth?: number;
  /** Messages kept, 1,000 by default. Further ones are only counted. */
  messages?: number;
}

export interface ContextOptions {
  /** Adds `index` (from 1), `first` and `last` to each list element. */
  positions?: boolean;
}

/** How to render. */
export interface RenderOptions extends ContextOptions {
  escape?: Escape;
  templates?: Templates;
  limits?: Limits;
  /** Called after every 1,024 steps; returning `false` stops the render. */
  keepGoing?: () => boolean;
}

/** How a render ended. Only a `complete` render has text. */
export type Status =
  | "complete"
  | "rejected"
  | "stepLimit"
  | "outputLimit"
  | "templateLimit"
  | "depthLimit"
  | "stopped";

export type MessageKind =
  | "valueNotFound"
  | "valueNotText"
  | "booleanNotFound"
  | "notBoolean"
  | "listNotFound"
  | "notList"
  | "templateNotFound"
  | "templateUnreadable"
  | "templateRejected"
  | "stepLimit"
  | "outputLimit"
  | "templateLimit"
  | "depthLimit"
  | "stopped";

/** A location in a template. Lines and columns start at 1; columns count code points. */
export interface Site {
  readonly templateName: string;
  readonly line: number;
  readonly column: number;
}

/** Something that could not be rendered, or the reason that a render ended. */
export interface Message extends Site {
  readonly kind: MessageKind;
  /** The message in English, without its location. */
  readonly text: string;
  /** The name or path in the tag; empty if there is none. */
  readonly name: string;
  /** The include tags that led to the location, innermost first. */
  readonly includedFrom: readonly Site[];
}

/** What a render produced. */
export interface RenderResult {
  readonly status: Status;
  readonly text: string;
  readonly messages: readonly Message[];
  /** How much of each limit the render used. */
  readonly usage: Required<Limits>;
}

/** Values prepared once, to be rendered many times. */
export interface Context {
  /** Frees its memory. This also happens when nothing refers to it anymore. */
  dispose(): void;
}

/** A template that is parsed once. */
export interface Template {
  readonly text: string;
  readonly name: string;
  /** Why the template is rejected; null if it is well formed. */
  readonly fault: Message | null;
  render(values?: Values | Context, options?: RenderOptions): RenderResult;
  /** Frees its memory. This also happens when nothing refers to it anymore. */
  dispose(): void;
}

export type Severity = "error" | "warning" | "note";

export interface Range {
  readonly file: string;
  readonly line: number;
  readonly column: number;
  readonly endLine: number;
  readonly endColumn: number;
}

export interface Note extends Range {
  readonly message: string;
}

/** A problem in a template, with notes that explain it. */
export interface Finding extends Note {
  readonly rule: string;
  readonly severity: Severity;
  readonly notes: readonly Note[];
}

/** How to check. */
export interface CheckOptions extends ContextOptions {
  templates?: Templates;
  context?: Values | Context;
  /** `steps` limits the search for names, by default to 100,000,000; a finding with the rule `limit`
   * reports where it ended. `messages` limits the findings. Throws if included templates are longer
   * than `templateBytes`. */
  limits?: Pick<Limits, "steps" | "templateBytes" | "messages">;
  /** Called after every 1,024 steps; `false` ends the call, which throws. */
  keepGoing?: () => boolean;
}

/** A name that a template looks up. */
export interface Name {
  readonly name: string;
  readonly kind: "string" | "boolean" | "list";
  readonly loops: readonly { readonly variable: string; readonly list: string }[];
  readonly moreLoops: number;
  readonly places: readonly { readonly file: string; readonly line: number; readonly column: number }[];
  readonly includedAt: readonly { readonly file: string; readonly line: number; readonly column: number }[];
  readonly moreInclusions: number;
}

/** A node of the syntax tree. */
export interface Node {
  readonly line: number;
  readonly column: number;
  readonly depth: number;
  readonly kind: "text" | "substitution" | "if" | "else" | "for" | "include";
  readonly text?: string;
  readonly name?: string;
  readonly variable?: string;
  readonly list?: string;
  readonly path?: string;
}

/** The engine. */
export interface Stencilor {
  readonly Template: new (text: string, options?: { name?: string }) => Template;
  readonly Context: {
    new (values?: Values, options?: ContextOptions): Context;
    /** Creates a context from JSON text, whose numbers keep their digits. Throws a `SyntaxError`
     * with `line` and `column`, which start at 1. */
    fromJson(json: string, options?: ContextOptions): Context;
  };
  /** Finds what is wrong with a template and everything that it includes. With a context, also
   * reports names that it lacks. */
  check(template: Template, options?: CheckOptions): Finding[];
  /** Lists the names that a template and everything that it includes look up. Throws if the
   * template is rejected. */
  names(template: Template, options?: { templates?: Templates }): Name[];
  /** Lists the nodes of a template. Throws if the template is rejected. */
  tree(template: Template): Node[];
  /** Marks a string as safe where it is inserted, so that renders never escape it. */
  raw(text: string): Raw;
  escapeHtml(text: string): string;
  /** Escapes a string for the inside of a JSON string, also within HTML. */
  escapeJson(text: string): string;
}

/** Loads the engine on the first call. */
export function load(): Promise<Stencilor>;
