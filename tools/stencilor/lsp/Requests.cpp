#include <tools/stencilor/lsp/Requests.h>

namespace stencilor::lsp {

const std::vector<RequestInfo>& requests() {
    static const std::vector<RequestInfo> table = {
        {"textDocument/completion",
         completion,
         "completionProvider",
         {{"triggerCharacters", {"{", "%", " ", ".", "\"", "/"}}}},
        {"textDocument/hover", hover, "hoverProvider"},
        {"textDocument/definition", definition, "definitionProvider"},
        {"textDocument/references", references, "referencesProvider"},
        {"textDocument/documentHighlight", documentHighlights, "documentHighlightProvider"},
        {"textDocument/documentSymbol", documentSymbols, "documentSymbolProvider"},
        {"textDocument/codeAction",
         codeActions,
         "codeActionProvider",
         {{"codeActionKinds", {"quickfix"}}}},
        {"textDocument/documentLink",
         documentLinks,
         "documentLinkProvider",
         {{"resolveProvider", false}}},
        {"textDocument/foldingRange", foldingRanges, "foldingRangeProvider"},
        {"textDocument/selectionRange", selectionRanges, "selectionRangeProvider"},
        {"textDocument/rename", rename, "renameProvider", {{"prepareProvider", true}}},
        {"textDocument/prepareRename", prepareRename, ""},
        {"textDocument/semanticTokens/full",
         semanticTokens,
         "semanticTokensProvider",
         {{"legend", semanticTokensLegend()}, {"full", true}, {"range", true}}},
        {"textDocument/semanticTokens/range", semanticTokensInRange, ""},
    };
    return table;
}

} // namespace stencilor::lsp
