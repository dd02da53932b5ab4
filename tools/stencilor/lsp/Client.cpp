#include <tools/stencilor/lsp/Client.h>

#include <algorithm>

namespace stencilor::lsp {

namespace {

/// A nested member; null if there is none.
const Json& at(const Json& json, std::initializer_list<const char*> path) {
    static const Json nothing;
    const Json* found = &json;
    for (const char* const name : path) {
        if (!found->is_object() || !found->contains(name)) {
            return nothing;
        }
        found = &found->at(name);
    }
    return *found;
}

bool has(const Json& json, std::initializer_list<const char*> path) {
    return at(json, path) == true;
}

} // namespace

Client clientOf(const Json& capabilities) {
    Client client;
    const Json& encodings = at(capabilities, {"general", "positionEncodings"});
    if (std::find(encodings.begin(), encodings.end(), "utf-8") != encodings.end()) {
        client.encoding = Encoding::Utf8;
    }
    client.showsRelatedInformation =
        has(capabilities, {"textDocument", "publishDiagnostics", "relatedInformation"});
    client.watchesFiles =
        has(capabilities, {"workspace", "didChangeWatchedFiles", "dynamicRegistration"});
    client.showsTree =
        has(capabilities, {"textDocument", "documentSymbol", "hierarchicalDocumentSymbolSupport"});
    client.takesLiteralActions =
        at(capabilities, {"textDocument", "codeAction", "codeActionLiteralSupport"}).is_object();
    client.takesSnippets =
        has(capabilities, {"textDocument", "completion", "completionItem", "snippetSupport"});
    client.preparesRename = has(capabilities, {"textDocument", "rename", "prepareSupport"});
    client.takesVersionedEdits =
        has(capabilities, {"workspace", "workspaceEdit", "documentChanges"});
    return client;
}

} // namespace stencilor::lsp
