#ifndef TOOLS_STENCILOR_LSP_REQUESTS_H
#define TOOLS_STENCILOR_LSP_REQUESTS_H

#include <tools/stencilor/lsp/Session.h>

#include <string_view>
#include <vector>

namespace stencilor::lsp {

/// A request about a document, and the capability of the server that belongs to it.
struct RequestInfo {
    std::string_view method;
    Json (*answer)(Session& session, const Json& params);
    const char* capability; ///< empty if another request of the table names it
    Json options;
};

const std::vector<RequestInfo>& requests();

// The requests, one file for each group. They throw `ResponseError`, and what the JSON library
// throws, where the parameters are not as they must be.

} // namespace stencilor::lsp

#endif
