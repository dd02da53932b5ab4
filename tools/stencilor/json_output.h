#ifndef TOOLS_STENCILOR_JSON_OUTPUT_H
#define TOOLS_STENCILOR_JSON_OUTPUT_H

#include <nlohmann/json.hpp>

#include <string>

namespace stencilor {

/// A JSON document with a line break at its end. Malformed UTF-8, which paths may have, becomes
/// U+FFFD.
inline std::string printJson(const nlohmann::ordered_json& document) {
    return document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace stencilor

#endif
