// The page: editors on one side, the engine's output and messages on the other.

import { contextState, goTo, makeEditor, showFindings, templateState } from "./editor.js";
import { examples } from "./examples.js";
import { fromFragment, restore, save, toFragment } from "./state.js";
import { askForPath } from "./dialogs.js";
import { Renderer } from "./renderer.js";
import { fillTabs, makeTabs } from "./tabs.js";
import { replaceText, showFindingList, showNames, showTree } from "./views.js";

const element = (id) => document.getElementById(id);
const views = ["text", "page", "names", "tree"];

let files = []; // the path and editor state of each; the first file is rendered
let active = 0;
let view = "text";
let title = "";
let last = { findings: [], names: [], tree: [], text: "" };
let shown = ""; // the messages in the list
let contextValues = {};

const hooks = {
  changed: () => update(),
  values: readValues,
  paths: () => files.map(({ path }) => path),
};
const templateEditor = makeEditor(element("template"), templateState("", hooks));
const contextEditor = makeEditor(element("context"), contextState("", hooks));
const renderer = new Renderer(showResult);

function textOf(index) {
  const state = index === active ? templateEditor.state : files[index].state;
  return state.doc.toString();
}

function currentState() {
  return {
    files: files.map(({ path }, index) => [path, textOf(index)]),
    values: contextEditor.state.doc.toString(),
    positions: element("positions").checked,
    escape: element("escape").value,
    view,
    title,
  };
}

/** Called after each change. */
function update() {
  if (files.length > 0) {
    render();
    keep();
  }
}

function render() {
  const state = currentState();
  renderer.render({ ...state, main: state.files[0][0] });
}

/** The values for completion: the last ones without a fault. */
function readValues() {
  try {
    contextValues = JSON.parse(contextEditor.state.doc.toString()) ?? {};
  } catch {
    // The previous ones are good enough.
  }
  return contextValues;
}

let saving = null;
/** Keeps what there is locally. A link does not have it, so a reload must not go back to that. */
function keep() {
  if (location.hash) {
    history.replaceState(null, "", location.pathname + location.search);
  }
  clearTimeout(saving);
  saving = setTimeout(saveNow, 300);
}

function saveNow() {
  if (saving !== null) {
    clearTimeout(saving);
    saving = null;
    save(currentState());
  }
}

function apply(state) {
  files = state.files.map(([path, text]) => ({ path, state: templateState(text, hooks) }));
  active = 0;
  title = state.title ?? "";
  element("positions").checked = state.positions === true;
  element("escape").value = state.escape ?? "none";
  contextEditor.setState(contextState(state.values, hooks));
  templateEditor.setState(files[0].state);
  chooseView(state.view ?? "text");
  showFiles();
  showLesson();
  render();
}

function showLesson() {
  const example = examples.find((each) => each.title === title);
  element("example").value = example ? title : "";
  element("lesson").textContent =
    example?.lesson ?? "Type a template and values; the output and the messages update as you type.";
}

function showFiles() {
  fillTabs(element("files"), files, active, (path) => faultyFiles().has(path));
  element("template").setAttribute("aria-labelledby", `file-${active}`);
  element("delete").disabled = files.length === 1;
}

function faultyFiles() {
  return new Set(last.findings.filter(({ severity }) => severity !== "note").map(({ file }) => file));
}

function openFile(index) {
  files[active].state = templateEditor.state;
  active = index;
  templateEditor.setState(files[active].state);
  showFiles();
  underline();
}

function chooseView(name) {
  view = name;
  for (const each of views) {
    const isChosen = each === name;
    element(`tab-${each}`).setAttribute("aria-selected", isChosen);
    element(`tab-${each}`).tabIndex = isChosen ? 0 : -1;
    element(`view-${each}`).hidden = !isChosen;
  }
  showView();
}

/** Only the visible view is filled, with the worker's data for it. */
function showView() {
  if (view === "text") {
    const stopped = last.status === "error" ? "" : "The render was stopped. ";
    replaceText(element("text"), last.limit ? stopped + last.limit : last.text);
  } else if (view === "page") {
    showPage(last.text);
  } else if (view === last.view && view === "names") {
    showNames(element("view-names"), last.names, openPlace);
  } else if (view === last.view) {
    showTree(element("view-tree"), last.tree);
  }
}

/** An unchanged page keeps its scroll position. */
function showPage(text) {
  if (element("page").srcdoc !== text) {
    element("page").srcdoc = text;
  }
}

function showResult(result) {
  last = result;
  element("output").classList.toggle("stopped", Boolean(result.limit));
  showView();
  showMessages();
  element("status").textContent = describe(result);
  underline();
  document.body.dataset.rendered = result.id;
}

/** Most key presses do not change the messages. */
function showMessages() {
  const { findings, findingCount, fault, limit } = last;
  const messages = JSON.stringify([findings, findingCount, fault, limit]);
  if (messages !== shown) {
    shown = messages;
    showFindingList(element("findings"), last, openPlace);
    showFiles();
  }
}

const inEnglish = new Intl.NumberFormat("en"); // creating one takes longer than a render

function describe({ status, usage, time, findings, findingCount }) {
  const count = findingCount ?? findings.length;
  const found = count === 0 ? "nothing to report" : count === 1 ? "1 message" : `${count} messages`;
  if (status !== "complete") {
    return found;
  }
  const size = `${inEnglish.format(usage.outputBytes)} ${usage.outputBytes === 1 ? "byte" : "bytes"}`;
  return `${found} · ${size} in ${time < 10 ? time.toFixed(1) : Math.round(time)} ms`;
}

function underline() {
  const path = files[active].path;
  showFindings(templateEditor, last.findings.filter(({ file }) => file === path));
  showFindings(contextEditor, last.fault ? [{ ...last.fault, severity: "error" }] : []);
}

/** Moves the cursor to a location in a template, or in the values if it is not in a file. */
function openPlace({ file, line, column }) {
  if (file === undefined) {
    goTo(contextEditor, line, column);
    return;
  }
  const index = files.findIndex(({ path }) => path === file);
  if (index >= 0) {
    if (index !== active) {
      openFile(index);
    }
    goTo(templateEditor, line, column);
  }
}

async function addFile() {
  const path = await askForPath("Path of the new template, as written in include tags", "part.txt", hooks.paths());
  if (path) {
    files.push({ path, state: templateState("", hooks) });
    openFile(files.length - 1);
    templateEditor.focus();
    update();
  }
}

async function renameFile() {
  const { path } = files[active];
  const others = hooks.paths().filter((each) => each !== path);
  const renamed = await askForPath("New path of this template", path, others);
  if (renamed) {
    files[active].path = renamed;
    showFiles();
    update();
  }
}

function deleteFile() {
  files.splice(active, 1);
  active = Math.min(active, files.length - 1);
  templateEditor.setState(files[active].state);
  showFiles();
  update();
}

async function share() {
  const link = `${location.origin}${location.pathname}#${await toFragment(currentState())}`;
  history.replaceState(null, "", link);
  const copied = await navigator.clipboard?.writeText(link).then(
    () => true,
    () => false,
  );
  element("status").textContent = copied ? "Link copied." : "The link is in the address bar.";
}

function setTheme(theme) {
  document.documentElement.dataset.theme = theme;
}

function startTheme() {
  const kept = localStorage.getItem("stencilor-theme");
  setTheme(kept ?? (matchMedia("(prefers-color-scheme: dark)").matches ? "dark" : "light"));
  element("theme").addEventListener("click", () => {
    const other = document.documentElement.dataset.theme === "dark" ? "light" : "dark";
    setTheme(other);
    localStorage.setItem("stencilor-theme", other);
  });
}

function startControls() {
  const choices = [new Option("Choose…", ""), ...examples.map((each) => new Option(each.title))];
  element("example").append(...choices);
  element("example").addEventListener("change", ({ target }) => {
    const example = examples.find((each) => each.title === target.value);
    if (example) {
      apply(example);
      keep();
    }
  });
  makeTabs(element("files"), (tab) => openFile(Number(tab.dataset.index)));
  makeTabs(element("views"), (tab) => {
    chooseView(tab.id.slice("tab-".length));
    update();
  });
  element("positions").addEventListener("change", update);
  element("escape").addEventListener("change", update);
  element("add").addEventListener("click", addFile);
  element("rename").addEventListener("click", renameFile);
  element("delete").addEventListener("click", deleteFile);
  element("share").addEventListener("click", share);
}

startTheme();
startControls();
addEventListener("pagehide", saveNow);
addEventListener("hashchange", async () => apply((await fromFragment(location.hash.slice(1))) ?? currentState()));
apply((await fromFragment(location.hash.slice(1))) ?? restore() ?? examples[0]);
