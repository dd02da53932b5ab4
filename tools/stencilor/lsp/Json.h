#ifndef TOOLS_STENCILOR_LSP_JSON_H
#define TOOLS_STENCILOR_LSP_JSON_H

#include <nlohmann/json.hpp>

namespace stencilor::lsp {

/// A JSON value of the protocol. Copying and writing one recurses, so values that are sent have a
/// bounded depth, and of received values only identifiers are copied.
using Json = nlohmann::json;

} // namespace stencilor::lsp

#endif
