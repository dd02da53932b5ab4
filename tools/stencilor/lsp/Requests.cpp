#include <tools/stencilor/lsp/Requests.h>

#include <utility>

namespace stencilor::lsp {

namespace {

template <Json (*Answer)(Session& session, const Json& params)>
std::string text(Session& session, const Json& params) {
    return write(Answer(session, params));
}

} // namespace

const std::vector<RequestInfo>& requests() {
    static const std::vector<RequestInfo> table = {
        {"textDocument/completion",
         text<completion>,
         "completionProvider",
         {{"triggerCharacters", {"{", "%", " ", ".", "\"", "/"}}}},
        {"textDocument/hover", text<hover>, "hoverProvider"},
        {"textDocument/definition", text<definition>, "definitionProvider"},
        {"textDocument/references", text<references>, "referencesProvider"},
        {"textDocument/documentHighlight", documentHighlights, "documentHighlightProvider"},
        {"textDocument/documentSymbol", documentSymbols, "documentSymbolProvider"},
        {"textDocument/codeAction",
         text<codeActions>,
         "codeActionProvider",
         {{"codeActionKinds", {"quickfix"}}}},
        {"textDocument/documentLink",
         text<documentLinks>,
         "documentLinkProvider",
         {{"resolveProvider", false}}},
        {"textDocument/foldingRange", foldingRanges, "foldingRangeProvider"},
        {"textDocument/selectionRange", text<selectionRanges>, "selectionRangeProvider"},
        {"textDocument/rename", text<rename>, "renameProvider", {{"prepareProvider", true}}},
        {"textDocument/prepareRename", text<prepareRename>, ""},
        {"textDocument/semanticTokens/full",
         semanticTokens,
         "semanticTokensProvider",
         {{"legend", semanticTokensLegend()}, {"full", true}, {"range", true}}},
        {"textDocument/semanticTokens/range", semanticTokensInRange, ""},
    };
    return table;
}

Json editDocument(const Client& client, const Document& document, Json edits) {
    if (!client.takesVersionedEdits) {
        return {{"changes", {{document.uri, std::move(edits)}}}};
    }
    const Json change = {
        {"textDocument", {{"uri", document.uri}, {"version", document.version}}},
        {"edits", std::move(edits)},
    };
    return {{"documentChanges", Json::array({change})}};
}

} // namespace stencilor::lsp
