#ifndef TOOLS_STENCILOR_JSON_OUTPUT_H
#define TOOLS_STENCILOR_JSON_OUTPUT_H

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace stencilor {

/// A JSON document with a line break at its end. Malformed UTF-8 becomes U+FFFD.
std::string printJson(const nlohmann::ordered_json& document);

/// `text` as a string of JSON, in one line. Malformed UTF-8 becomes U+FFFD.
std::string printJsonString(std::string_view text);

} // namespace stencilor

#endif
