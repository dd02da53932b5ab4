"use strict";
// The grammars, loaded with the engine that Visual Studio Code uses.

const fs = require("node:fs");
const path = require("node:path");
const oniguruma = require("vscode-oniguruma");
const textmate = require("vscode-textmate");

const PLAIN = "text.stencilor";
const HTML = "text.html.stencilor";
const FOLDER = path.join(__dirname, "../../editors/vscode/syntaxes");
const TEMPLATES = path.join(__dirname, "templates");

/** Our grammars, and a stand-in for the HTML grammar, by scope. */
async function load() {
    const wasm = fs.readFileSync(require.resolve("vscode-oniguruma/release/onig.wasm"));
    await oniguruma.loadWASM(wasm.buffer);
    const files = fs.readdirSync(FOLDER).map((name) => path.join(FOLDER, name));
    const grammars = new Map();
    for (const file of [...files, path.join(__dirname, "html.tmLanguage.json")]) {
        const grammar = textmate.parseRawGrammar(fs.readFileSync(file, "utf8"), file);
        grammars.set(grammar.scopeName, grammar);
    }
    const registry = new textmate.Registry({
        onigLib: {
            createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
            createOnigString: (text) => new oniguruma.OnigString(text),
        },
        loadGrammar: async (scope) => grammars.get(scope) ?? null,
    });
    return { plain: await registry.loadGrammar(PLAIN), html: await registry.loadGrammar(HTML) };
}

/** The lines of a text as lists of `[text, scopes]`, and whether a block is open at its end. */
function tokenize(grammar, text) {
    let stack = textmate.INITIAL;
    const lines = text.replace(/\n$/, "").split("\n").map((line) => {
        const result = grammar.tokenizeLine(line, stack);
        stack = result.ruleStack;
        return result.tokens
            .map((token) => [line.slice(token.startIndex, token.endIndex), token.scopes])
            .filter(([part]) => part !== "");
    });
    return { lines, isOpen: stack.depth > 1 };
}

function hasIllegal(lines) {
    return lines.some((tokens) => tokens.some(([, scopes]) => scopes.some((scope) => scope.startsWith("invalid."))));
}

function templates() {
    return fs
        .readdirSync(TEMPLATES)
        .filter((name) => name.endsWith(".stencilor"))
        .sort()
        .map((name) => {
            const file = path.join(TEMPLATES, name);
            return { name, file, text: fs.readFileSync(file, "utf8"), isHtml: name.endsWith(".html.stencilor") };
        });
}

module.exports = { hasIllegal, load, templates, tokenize };
