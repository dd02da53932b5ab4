"use strict";
// Starts the language server, `stencilor lsp`, and connects the editor to it.

const vscode = require("vscode");
const { LanguageClient, TransportKind } = require("vscode-languageclient/node");

let client;

function settings() {
    const { root, context, positions, emptyLines } = vscode.workspace.getConfiguration("stencilor");
    return { root, context, positions, emptyLines };
}

/** Templates that can be edited, and other files whose unsaved contents matter when templates are checked. */
function documents() {
    const { context } = settings();
    const patterns = ["**/stencilor.json", "**/*.context.json", ...(context ? ["**/" + context.split(/[\\/]/).pop()] : [])];
    return [
        ...["stencilor", "stencilor-html"].flatMap((language) =>
            ["file", "untitled"].map((scheme) => ({ scheme, language }))
        ),
        ...patterns.map((pattern) => ({ scheme: "file", pattern })),
    ];
}

async function start() {
    const command = vscode.workspace.getConfiguration("stencilor").get("path") || "stencilor";
    client = new LanguageClient(
        "stencilor",
        "Stencilor",
        { command, args: ["lsp"], transport: TransportKind.stdio },
        {
            documentSelector: documents(),
            initializationOptions: settings(),
        }
    );
    try {
        await client.start();
    } catch (error) {
        const answer = await vscode.window.showErrorMessage(
            `Cannot start "${command}" as a language server: ${error.message}`,
            "Open Settings"
        );
        if (answer) {
            await vscode.commands.executeCommand("workbench.action.openSettings", "stencilor.path");
        }
    }
}

async function stop() {
    const running = client;
    client = undefined;
    if (running && running.needsStop()) {
        await running.stop();
    }
}

async function changeSettings(event) {
    if (event.affectsConfiguration("stencilor.path") || event.affectsConfiguration("stencilor.context")) {
        await stop();
        await start();
    } else if (event.affectsConfiguration("stencilor") && client && client.isRunning()) {
        await client.sendNotification("workspace/didChangeConfiguration", { settings: { stencilor: settings() } });
    }
}

async function activate(context) {
    context.subscriptions.push(
        vscode.workspace.onDidChangeConfiguration(changeSettings),
        vscode.commands.registerCommand("stencilor.restart", async () => {
            await stop();
            await start();
        })
    );
    await start();
}

module.exports = { activate, deactivate: stop };
