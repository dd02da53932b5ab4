#ifndef TOOLS_STENCILOR_LSP_JSON_H
#define TOOLS_STENCILOR_LSP_JSON_H

#include <nlohmann/json.hpp>

#include <string>

namespace stencilor::lsp {

/// A JSON value of the protocol. Copying and writing one recurses, so values that are sent have a
/// bounded depth, and of received values only identifiers are copied.
using Json = nlohmann::json;

/// Writes a value as it is sent. Malformed UTF-8, as in the name of a file, becomes U+FFFD.
inline std::string write(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace stencilor::lsp

#endif
