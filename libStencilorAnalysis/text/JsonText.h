#ifndef LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// A JSON document with a line break at its end. Malformed UTF-8 becomes U+FFFD.
std::string jsonDocument(const nlohmann::ordered_json& document);

/// `text` as a string of JSON, in one line. Malformed UTF-8 becomes U+FFFD.
std::string jsonString(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
