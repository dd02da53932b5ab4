// The engine's results, as elements of the page.

const mostNodes = 2000;

function make(tag, properties = {}, ...children) {
  const made = Object.assign(document.createElement(tag), properties);
  made.append(...children);
  return made;
}

/** Sets the text of an element in blocks of lines, so that only changed blocks are laid out
 * again. */
export function replaceText(element, text) {
  const lines = text.match(/(?:[^\n]*\n){1,50}|[^\n]+/g) ?? [];
  const blocks = [...element.children];
  const isSame = (block, line) => block.textContent === line;
  const fewest = Math.min(blocks.length, lines.length);
  let begin = 0;
  while (begin < fewest && isSame(blocks[begin], lines[begin])) {
    ++begin;
  }
  let end = 0;
  while (end < fewest - begin && isSame(blocks.at(-1 - end), lines.at(-1 - end))) {
    ++end;
  }
  const made = lines.slice(begin, lines.length - end).map((textContent) => make("div", { textContent }));
  const next = blocks[blocks.length - end] ?? null;
  blocks.slice(begin, blocks.length - end).forEach((block) => block.remove());
  made.forEach((block) => element.insertBefore(block, next));
}

function placeText({ file, line, column }) {
  return `${file ?? "values"}:${line}:${column}`;
}

function findingItem(finding, open) {
  const { severity, message, notes = [] } = finding;
  const button = make(
    "button",
    { type: "button" },
    make("span", { className: severity, textContent: severity }),
    ` ${message} `,
    make("span", { className: "place", textContent: placeText(finding) }),
  );
  button.addEventListener("click", () => open(finding));
  const item = make("li", {}, button);
  if (notes.length > 0) {
    item.append(make("ul", {}, ...notes.map((note) => make("li", { textContent: note.message }))));
  }
  return item;
}

export function showFindingList(list, { status, findings, findingCount, fault, limit }, open) {
  const items = findings.map((finding) => findingItem(finding, open));
  if (fault) {
    items.unshift(findingItem({ ...fault, severity: "error" }, open));
  }
  if (limit) {
    const label = make("span", { className: "error", textContent: status === "error" ? "error" : "stopped" });
    items.unshift(make("li", {}, label, ` ${limit}`));
  }
  if (findingCount > findings.length) {
    items.push(make("li", { className: "none", textContent: `and ${findingCount - findings.length} more` }));
  }
  if (items.length === 0) {
    items.push(make("li", { className: "none", textContent: "Nothing to report." }));
  }
  list.replaceChildren(...items);
}

export function showNames(view, names, open) {
  if (names.length === 0) {
    view.replaceChildren(make("p", { className: "empty", textContent: "This template needs no values." }));
    return;
  }
  const rows = names.map(({ name, kind, loops, places }) => {
    const place = make("button", { type: "button", textContent: placeText(places[0]) });
    place.addEventListener("click", () => open(places[0]));
    const around = loops.map(({ variable, list }) => `${variable} in ${list}`).join(", ");
    return make(
      "tr",
      {},
      ...[name, kind, around].map((textContent) => make("td", { textContent })),
      make("td", {}, place),
    );
  });
  const titles = ["Name", "Kind", "Inside loops", "First use"];
  const head = make("tr", {}, ...titles.map((textContent) => make("th", { scope: "col", textContent })));
  view.replaceChildren(make("table", {}, make("thead", {}, head), make("tbody", {}, ...rows)));
}

function describeNode(node) {
  switch (node.kind) {
    case "text":
      return JSON.stringify(node.text);
    case "for":
      return `${node.variable} in ${node.list}`;
    default:
      return node.name ?? node.path ?? "";
  }
}

export function showTree(view, nodes) {
  const lines = nodes.slice(0, mostNodes).map((node) =>
    make(
      "div",
      { className: "node" },
      "  ".repeat(Math.min(node.depth, 40)),
      make("b", { textContent: node.kind }),
      ` ${describeNode(node)} `,
      make("i", { textContent: `${node.line}:${node.column}` }),
    ),
  );
  if (nodes.length > mostNodes) {
    lines.push(make("p", { className: "empty", textContent: `and ${nodes.length - mostNodes} more` }));
  }
  if (lines.length === 0) {
    lines.push(make("p", { className: "empty", textContent: "A rejected template has no tree." }));
  }
  view.replaceChildren(...lines);
}
