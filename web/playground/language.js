// Syntax highlighting, from the grammar of the editor extension.

import { RangeSetBuilder } from "@codemirror/state";
import { Decoration, ViewPlugin } from "@codemirror/view";
import grammar from "../../editors/vscode/syntaxes/stencilor.tmLanguage.json";

/** The styles of the scopes of the grammar; the first prefix that matches applies. */
const styles = [
  ["punctuation.section.embedded", "tok-tag"],
  ["keyword", "tok-keyword"],
  ["variable.parameter", "tok-parameter"],
  ["variable", "tok-name"],
  ["string", "tok-string"],
  ["invalid", "tok-invalid"],
].map(([name, style]) => [name, Decoration.mark({ class: style })]);

function styleOf(name = "") {
  return styles.find(([begin]) => name.startsWith(begin))?.[1];
}

/** The patterns for single tags, with the patterns that they include. */
function tagPatterns({ patterns }) {
  return patterns.flatMap((pattern) => {
    const included = pattern.include && grammar.repository[pattern.include.slice(1)];
    return included ? (included.patterns ? tagPatterns(included) : [included]) : [pattern];
  });
}

const tags = tagPatterns(grammar.repository.tag).map(({ match, name, captures = {} }) => ({
  expression: new RegExp(match, "dy"),
  style: styleOf(name),
  captures: Object.entries(captures).map(([group, capture]) => [group, styleOf(capture.name)]),
}));

/** The parts of a line that have a style, as `[from, to, style]`. */
function* partsOf(line) {
  for (let at = line.indexOf("{"); at >= 0; at = line.indexOf("{", at)) {
    let end = at + 1;
    for (const { expression, style, captures } of tags) {
      expression.lastIndex = at;
      const found = expression.exec(line);
      if (found) {
        end = expression.lastIndex;
        if (style) {
          yield [at, end, style];
        }
        for (const [group, capture] of captures) {
          if (capture && found.indices[group]) {
            yield [...found.indices[group], capture];
          }
        }
        break;
      }
    }
    at = end;
  }
}

function decorate(view) {
  const builder = new RangeSetBuilder();
  for (const { from, to } of view.visibleRanges) {
    for (let at = from; at <= to; ) {
      const line = view.state.doc.lineAt(at);
      for (const [begin, end, style] of partsOf(line.text.slice(0, 5000))) {
        builder.add(line.from + begin, line.from + end, style);
      }
      at = line.to + 1;
    }
  }
  return builder.finish();
}

export const templateColours = ViewPlugin.define(
  (view) => ({
    decorations: decorate(view),
    update(update) {
      if (update.docChanged || update.viewportChanged) {
        this.decorations = decorate(update.view);
      }
    },
  }),
  { decorations: (plugin) => plugin.decorations },
);
