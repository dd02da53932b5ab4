"use strict";
// A headless editor: the client of vscode-languageserver-protocol, connected to the program.

const { spawn } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { pathToFileURL } = require("node:url");
const protocol = require("vscode-languageserver-protocol/node");

const PROGRAM = process.env.STENCILOR;

/** A server with its own folder, which contains the given files. */
class Client {
    constructor(files = {}) {
        this.folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "stencilor-")));
        for (const [name, text] of Object.entries(files)) {
            this.write(name, text);
        }
        this.server = spawn(PROGRAM, ["lsp", "--stdio"], { stdio: ["pipe", "pipe", "inherit"] });
        this.ended = new Promise((resolve) => this.server.on("exit", (status, signal) => resolve(status ?? signal)));
        this.connection = protocol.createProtocolConnection(
            new protocol.StreamMessageReader(this.server.stdout),
            new protocol.StreamMessageWriter(this.server.stdin)
        );
        this.published = new Map();
        this.waiting = [];
        this.shown = [];
        this.registered = [];
        this.versions = new Map();
        this.connection.onNotification(protocol.PublishDiagnosticsNotification.type, (params) => {
            this.published.set(params.uri, params);
            this.waiting = this.waiting.filter((check) => !check());
        });
        this.connection.onNotification(protocol.ShowMessageNotification.type, (params) => this.shown.push(params.message));
        this.connection.onRequest(protocol.RegistrationRequest.type, (params) => void this.registered.push(...params.registrations));
        this.connection.listen();
    }

    write(name, text) {
        const file = path.join(this.folder, name);
        fs.mkdirSync(path.dirname(file), { recursive: true });
        fs.writeFileSync(file, text);
    }

    uri(name) {
        return pathToFileURL(path.join(this.folder, name)).href;
    }

    async initialize(initializationOptions, capabilities = {}) {
        const result = await this.connection.sendRequest(protocol.InitializeRequest.type, {
            processId: process.pid,
            rootUri: this.uri(""),
            workspaceFolders: [{ uri: this.uri(""), name: "workspace" }],
            initializationOptions,
            capabilities,
        });
        await this.connection.sendNotification(protocol.InitializedNotification.type, {});
        return result;
    }

    /** Opens a text, in which a bar, if any, marks the cursor. Resolves when the text has been
     * checked. */
    async open(name, marked, languageId = "stencilor") {
        const text = marked.replace("|", "");
        this.cursor = positionOf(text, Math.max(marked.indexOf("|"), 0));
        this.versions.set(name, 1);
        const checked = this.diagnostics(name);
        await this.connection.sendNotification(protocol.DidOpenTextDocumentNotification.type, {
            textDocument: { uri: this.uri(name), languageId, version: 1, text },
        });
        return languageId === "json" ? [] : checked;
    }

    async change(name, ...contentChanges) {
        const version = this.versions.get(name) + 1;
        this.versions.set(name, version);
        const checked = this.diagnostics(name, version);
        await this.connection.sendNotification(protocol.DidChangeTextDocumentNotification.type, {
            textDocument: { uri: this.uri(name), version },
            contentChanges,
        });
        return checked;
    }

    /** The next diagnostics published for a version of a document. */
    diagnostics(name, version) {
        const uri = this.uri(name);
        const before = this.published.get(uri);
        return new Promise((resolve) => {
            this.waiting.push(() => {
                const last = this.published.get(uri);
                const isNew = last && last !== before && (version === undefined || last.version === version);
                if (isNew) {
                    resolve(last.diagnostics);
                }
                return isNew;
            });
        });
    }

    /** Sends a request about a document, at the cursor of the last opened one. */
    ask(type, name, more = {}) {
        return this.connection.sendRequest(type, {
            textDocument: { uri: this.uri(name) },
            position: this.cursor,
            ...more,
        });
    }

    /** Shuts the server down. Resolves with its exit status. */
    async close() {
        await this.connection.sendRequest(protocol.ShutdownRequest.type);
        await this.connection.sendNotification(protocol.ExitNotification.type);
        const status = await this.ended;
        this.dispose();
        return status;
    }

    dispose() {
        this.connection.dispose();
        fs.rmSync(this.folder, { recursive: true, force: true });
    }
}

function positionOf(text, offset) {
    const before = text.slice(0, offset).split("\n");
    return { line: before.length - 1, character: before.at(-1).length };
}

/** `LINE:CHARACTER-CHARACTER` of a range, which may end on another line: `LINE:CHARACTER-LINE:CHARACTER`. */
function show({ start, end }) {
    const last = end.line === start.line ? "" : end.line + ":";
    return `${start.line}:${start.character}-${last}${end.character}`;
}

/** A text after the edits of one document. */
function apply(text, edits) {
    const lines = text.split("\n");
    const offsetOf = ({ line, character }) =>
        lines.slice(0, line).reduce((sum, each) => sum + each.length + 1, 0) + character;
    return [...edits]
        .sort((one, other) => offsetOf(other.range.start) - offsetOf(one.range.start))
        .reduce(
            (result, { range, newText }) =>
                result.slice(0, offsetOf(range.start)) + newText + result.slice(offsetOf(range.end)),
            text
        );
}

module.exports = { Client, PROGRAM, apply, protocol, show };
