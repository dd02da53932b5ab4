#ifndef LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// A JSON document with a line break at its end. Malformed UTF-8 becomes U+FFFD.
std::string jsonDocument(const nlohmann::ordered_json& document);

/// The same for a document whose last member, at any depth, is the empty list `member`. Puts in the
/// elements one by one, since many would take much memory as a document.
std::string jsonDocument(const nlohmann::ordered_json& document, std::string_view member,
                         std::size_t count,
                         const std::function<nlohmann::ordered_json(std::size_t)>& elementAt);

/// `text` as a string of JSON, in one line. Malformed UTF-8 becomes U+FFFD.
std::string jsonString(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
