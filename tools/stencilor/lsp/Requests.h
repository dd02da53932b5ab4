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
    std::string (*answer)(Session& session, const Json& params); ///< returns JSON
    std::string capability; ///< empty if another request of the table has it
    Json options = true;
};

const std::vector<RequestInfo>& requests();

/// Describes edits of a document, for clients that support it with the version of the text, so that
/// they are not applied to a later one.
Json editDocument(const Client& client, const Document& document, Json edits);

// The requests, one file for each group. Those with thousands of places in their results, which
// editors send after each change, write text; a document would take ten times as long.
// They throw `ResponseError`, and what the JSON library throws, for invalid parameters.

std::string documentSymbols(Session& session, const Json& params);
std::string foldingRanges(Session& session, const Json& params);
Json selectionRanges(Session& session, const Json& params);
std::string documentHighlights(Session& session, const Json& params);

Json semanticTokensLegend();
std::string semanticTokens(Session& session, const Json& params);
std::string semanticTokensInRange(Session& session, const Json& params);

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
