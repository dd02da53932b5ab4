"use strict";
// A stand-in for the module `vscode`, which only exists inside the editor: enough for the extension
// and its client to start.

const Module = require("node:module");
const path = require("node:path");

/** Whatever is asked of it: a class, a function, an enumeration. */
function anything() {
    const members = new Map([["prototype", {}]]);
    return new Proxy(class {}, {
        get(target, key) {
            if (key === "then" || typeof key === "symbol") {
                return undefined;
            }
            if (key === "prototype") {
                return target.prototype;
            }
            if (!members.has(key)) {
                members.set(key, anything());
            }
            return members.get(key);
        },
        apply: () => anything(),
    });
}

/** An object with the given members, and a placeholder for all others. */
function withRest(members) {
    const rest = anything();
    return new Proxy(members, { get: (target, key) => (key in target ? target[key] : rest[key]) });
}

class EventEmitter {
    listeners = new Set();
    event = (listener) => {
        this.listeners.add(listener);
        return { dispose: () => this.listeners.delete(listener) };
    };
    fire(event) {
        this.listeners.forEach((listener) => listener(event));
    }
    dispose() {}
}

class CancellationTokenSource {
    token = { isCancellationRequested: false, onCancellationRequested: new EventEmitter().event };
    cancel() {}
    dispose() {}
}

class Disposable {
    constructor(dispose = () => {}) {
        this.dispose = dispose;
    }
}

function makeModule(configuration, errors) {
    const never = new EventEmitter().event;
    const subscribe = new Proxy({}, { get: () => never });
    const events = (members) =>
        new Proxy(members, {
            get: (target, key) => target[key] ?? (/^on[A-Z]/.test(String(key)) ? subscribe[key] : undefined),
        });
    const channel = withRest({ append() {}, appendLine() {}, show() {}, dispose() {} });
    return withRest({
        version: "1.82.0",
        EventEmitter,
        CancellationTokenSource,
        Disposable,
        env: { appName: "stand-in", language: "en" },
        Uri: { file: (name) => ({ scheme: "file", fsPath: name, toString: () => "file://" + name }), parse: (uri) => ({ toString: () => uri }) },
        workspace: events({
            textDocuments: [],
            workspaceFolders: undefined,
            notebookDocuments: [],
            getConfiguration: () => ({ ...configuration, get: (key) => configuration[key] }),
            createFileSystemWatcher: () => events({ dispose() {} }),
        }),
        window: events({
            visibleTextEditors: [],
            tabGroups: events({ all: [] }),
            createOutputChannel: () => channel,
            showErrorMessage: async (message) => void errors.push(message),
            showInformationMessage: async () => {},
        }),
        languages: new Proxy({}, {
            get: (_, key) =>
                key === "createDiagnosticCollection"
                    ? () => ({ set() {}, delete() {}, clear() {}, dispose() {} })
                    : key === "match" ? () => 0 : () => new Disposable(),
        }),
        commands: { registerCommand: () => new Disposable(), executeCommand: async () => {} },
    });
}

/** Activates the extension in a folder with some settings. */
async function startExtension(folder, settings) {
    const errors = [];
    const configuration = { root: "", context: "", positions: false, emptyLines: false, ...settings };
    const vscode = makeModule(configuration, errors);
    const load = Module._load;
    Module._load = (name, ...more) => (name === "vscode" ? vscode : load(name, ...more));
    try {
        const main = path.join(folder, "extension.js");
        const clientModule = require.resolve("vscode-languageclient/node", { paths: [folder] });
        const { LanguageClient } = require(clientModule);
        let client;
        const startClient = LanguageClient.prototype.start;
        LanguageClient.prototype.start = function () {
            client = this;
            return startClient.call(this);
        };
        delete require.cache[main];
        const extension = require(main);
        await extension.activate({ subscriptions: [] });
        LanguageClient.prototype.start = startClient;
        return { client, errors, stop: extension.deactivate };
    } finally {
        Module._load = load;
    }
}

module.exports = { startExtension };
