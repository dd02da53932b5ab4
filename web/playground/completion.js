// Completion inside tags: names of values, keywords and paths.

const longestList = 500;

/** The members of an element of a list, as a loop sees them. */
function membersOf(list) {
  const element = list.find((item) => item !== null && typeof item === "object" && !Array.isArray(item));
  return element ?? (list.length > 0 ? { value: list[0] } : {});
}

function kindOf(value) {
  if (Array.isArray(value)) {
    return "list";
  }
  if (typeof value === "boolean" || (value && typeof value === "object" && "$boolean" in value)) {
    return "boolean";
  }
  return value && typeof value === "object" ? "dictionary" : "string";
}

/** Adds the names in `values`, including dotted ones, to a map of values by name. */
function collect(values, prefix, found) {
  for (const [key, value] of Object.entries(values)) {
    if (found.size > longestList) {
      return;
    }
    if (/^[A-Za-z_][\w./]*$/.test(prefix + key)) {
      found.set(prefix + key, value);
      if (kindOf(value) === "dictionary") {
        collect(value, `${prefix}${key}.`, found);
      }
    }
  }
}

/** The loops that are open at the end of the text: `[variable, list]`, the outermost first. */
function openLoops(text) {
  const open = [];
  const tag = /\{%[ \t]*(?:for[ \t]*([\w./]+)[ \t]*in[ \t]*([\w./]+)|(endfor))[ \t]*%\}/g;
  for (const [, variable, list, end] of text.matchAll(tag)) {
    if (end) {
      open.pop();
    } else {
      open.push([variable, list]);
    }
  }
  return open;
}

/** The names in scope after `text`. */
function namesAfter(text, values) {
  const names = new Map();
  collect(values, "", names);
  for (const [variable, list] of openLoops(text)) {
    const found = names.get(list);
    if (Array.isArray(found)) {
      collect(membersOf(found), `${variable}.`, names);
    }
  }
  return names;
}

const keywords = ["if", "else", "endif", "for", "endfor", "include"];

/** What can be completed after `text`: kinds of values, or words. */
function expectedAfter(line) {
  const tag = line.slice(Math.max(line.lastIndexOf("{{"), line.lastIndexOf("{%")));
  if (/^\{\{[ \t]*[\w./]*$/.test(tag)) {
    return { kinds: ["string"] };
  }
  if (/^\{%[ \t]*if[ \t]+[\w./]*$/.test(tag)) {
    return { kinds: ["boolean"] };
  }
  if (/^\{%[ \t]*for[ \t]+[\w./]+[ \t]+in[ \t]+[\w./]*$/.test(tag)) {
    return { kinds: ["list"] };
  }
  if (/^\{%[ \t]*include[ \t]*"[ \t]*[\w./]*$/.test(tag)) {
    return { paths: true };
  }
  return /^\{%[ \t]*\w*$/.test(tag) ? { words: keywords } : {};
}

/** A source of completions for an editor; `values` and `paths` return the current values and
 * paths. */
export function completeFrom({ values, paths }) {
  return (context) => {
    const line = context.state.doc.lineAt(context.pos);
    const before = line.text.slice(0, context.pos - line.from);
    const { kinds, paths: wantsPaths, words } = expectedAfter(before);
    const typed = context.matchBefore(/[\w./]*/);
    const from = typed?.from ?? context.pos;
    if (words || wantsPaths) {
      return { from, options: (words ?? paths()).map((label) => ({ label, type: "keyword" })) };
    }
    if (!kinds) {
      return null;
    }
    const names = namesAfter(context.state.sliceDoc(0, context.pos), values());
    const options = [...names].map(([label, value]) => ({
      label,
      detail: kindOf(value),
      boost: kinds.includes(kindOf(value)) ? 1 : -1,
      type: "variable",
    }));
    return { from, options, validFor: /^[\w./]*$/ };
  };
}
