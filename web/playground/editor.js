// The editors for templates and values.

import { autocompletion, closeBrackets, closeBracketsKeymap, completionKeymap } from "@codemirror/autocomplete";
import { defaultKeymap, history, historyKeymap } from "@codemirror/commands";
import { json } from "@codemirror/lang-json";
import { HighlightStyle, bracketMatching, indentUnit, syntaxHighlighting } from "@codemirror/language";
import { diagnosticCount, lintGutter, setDiagnostics } from "@codemirror/lint";
import { EditorState } from "@codemirror/state";
import {
  EditorView,
  drawSelection,
  highlightActiveLine,
  highlightActiveLineGutter,
  keymap,
  lineNumbers,
} from "@codemirror/view";
import { tags } from "@lezer/highlight";

import { completeFrom } from "./completion.js";
import { templateColours } from "./language.js";

const jsonColours = HighlightStyle.define([
  { tag: tags.propertyName, class: "tok-name" },
  { tag: tags.string, class: "tok-string" },
  { tag: [tags.number, tags.bool, tags.null], class: "tok-parameter" },
]);

function common(label, changed) {
  return [
    lineNumbers(),
    highlightActiveLine(),
    highlightActiveLineGutter(),
    history(),
    drawSelection(),
    indentUnit.of("  "),
    lintGutter(),
    EditorView.lineWrapping,
    EditorView.contentAttributes.of({ "aria-label": label, spellcheck: "false" }),
    EditorView.updateListener.of((update) => update.docChanged && changed()),
    // Tab leaves the editor, so that the keyboard reaches everything.
    keymap.of([...closeBracketsKeymap, ...completionKeymap, ...historyKeymap, ...defaultKeymap]),
  ];
}

export function templateState(text, { changed, values, paths }) {
  return EditorState.create({
    doc: text,
    extensions: [
      common("Template", changed),
      templateColours,
      autocompletion({ override: [completeFrom({ values, paths })] }),
    ],
  });
}

export function contextState(text, { changed }) {
  return EditorState.create({
    doc: text,
    extensions: [
      common("Values", changed),
      json(),
      syntaxHighlighting(jsonColours),
      bracketMatching(),
      closeBrackets(),
    ],
  });
}

export function makeEditor(parent, state) {
  return new EditorView({ parent, state });
}

/** The offset of a line and a column, counted in code points. */
function offsetOf(doc, line, column) {
  const found = doc.line(Math.min(Math.max(line, 1), doc.lines));
  const before = [...found.text.slice(0, column * 2)].slice(0, column - 1).join("");
  return found.from + Math.min(before.length, found.length);
}

/** Underlines findings; each has a message, a severity, and a location with or without an end. */
export function showFindings(view, findings) {
  const { doc } = view.state;
  if (findings.length === 0 && diagnosticCount(view.state) === 0) {
    return;
  }
  const diagnostics = findings.map(({ severity, message, notes = [], ...place }) => {
    const from = offsetOf(doc, place.line, place.column);
    const to = place.endLine ? offsetOf(doc, place.endLine, place.endColumn) : from + 1;
    return {
      from,
      to: Math.min(Math.max(to, from + 1), doc.length),
      severity: severity === "note" ? "info" : severity,
      message: [message, ...notes.map((note) => note.message)].join("\n"),
    };
  });
  for (const diagnostic of diagnostics) {
    diagnostic.from = Math.min(diagnostic.from, diagnostic.to);
  }
  view.dispatch(setDiagnostics(view.state, diagnostics));
}

export function goTo(view, line, column) {
  const at = offsetOf(view.state.doc, line, column);
  view.dispatch({ selection: { anchor: at }, scrollIntoView: true });
  view.focus();
}
