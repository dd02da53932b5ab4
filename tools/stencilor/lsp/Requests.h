#ifndef TOOLS_STENCILOR_LSP_REQUESTS_H
#define TOOLS_STENCILOR_LSP_REQUESTS_H

#include <tools/stencilor/lsp/Session.h>

#include <string>
#include <string_view>
#include <vector>

namespace stencilor::lsp {

/// A request about a document, and the capability of the server that it belongs to.
struct RequestInfo {
    std::string_view method;
    Json (*answer)(Session& session, const Json& params);
    std::string capability; ///< empty if another request of the table has it
    Json options = true;
};

const std::vector<RequestInfo>& requests();

// The requests, one file for each group. They throw `ResponseError`, and what the JSON library
// throws, for invalid parameters.

Json documentSymbols(Session& session, const Json& params);
Json foldingRanges(Session& session, const Json& params);
Json selectionRanges(Session& session, const Json& params);
Json documentHighlights(Session& session, const Json& params);

Json semanticTokensLegend();
Json semanticTokens(Session& session, const Json& params);
Json semanticTokensInRange(Session& session, const Json& params);

Json definition(Session& session, const Json& params);
Json references(Session& session, const Json& params);
Json prepareRename(Session& session, const Json& params);
Json rename(Session& session, const Json& params);
Json documentLinks(Session& session, const Json& params);

Json hover(Session& session, const Json& params);
Json completion(Session& session, const Json& params);
Json codeActions(Session& session, const Json& params);

} // namespace stencilor::lsp

#endif
