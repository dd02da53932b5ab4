#include <tools/stencilor/lsp/Requests.h>

namespace stencilor::lsp {

const std::vector<RequestInfo>& requests() {
    static const std::vector<RequestInfo> table = {
namespace {

template <Json (*Answer)(Session& session, const Json& params)>
std::string text(Session& session, const Json& params) {
    return write(Answer(session, params));
}

} // namespace

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

} // namespace stencilor::lsp
