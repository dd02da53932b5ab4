#ifndef TOOLS_STENCILOR_LSP_JSON_H
#define TOOLS_STENCILOR_LSP_JSON_H

#include <nlohmann/json.hpp>

namespace stencilor::lsp {

/// A JSON value as the protocol has it. Copying and writing one recurses, so what is sent nests
/// only a fixed number of levels, and nothing that was received is copied but identifiers.
using Json = nlohmann::json;

} // namespace stencilor::lsp

#endif
