#ifndef TOOLS_STENCILOR_JSON_OUTPUT_H
#define TOOLS_STENCILOR_JSON_OUTPUT_H

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace stencilor {

// Malformed UTF-8, which paths may have, becomes U+FFFD.

/// A JSON document with a line break at its end.
std::string printJson(const nlohmann::ordered_json& document);

/// A string of JSON, in one line.
std::string printJsonString(std::string_view text);

} // namespace stencilor

#endif
