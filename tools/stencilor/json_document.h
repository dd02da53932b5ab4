#ifndef TOOLS_STENCILOR_JSON_DOCUMENT_H
#define TOOLS_STENCILOR_JSON_DOCUMENT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace stencilor {

/// A value of a JSON text.
///
/// Numbers stay text: what is rendered is what was written, to the last digit.
struct JsonValue {
    enum class Kind { Null, Boolean, Number, String, Array, Object };

    Kind kind = Kind::Null;
    bool truth = false;               ///< of a boolean
    std::string text{};               ///< of a string, UTF-8; of a number as it was written
    std::vector<std::string> names{}; ///< of an object's items, in their order; each occurs once
    std::vector<JsonValue> items{};   ///< of an array or an object
};

/// The member that makes an object a boolean; its value is always `Kind::Boolean`.
inline constexpr std::string_view booleanMember = "$boolean";

/// How deep arrays and objects may stand in each other, the outermost being 1 deep.
inline constexpr std::size_t deepestJson = 512;

/// Why a text was refused, and where. Lines and columns count from 1, columns in code points.
struct JsonError {
    std::size_t line;
    std::size_t column;
    std::string message;
};

/// What the outermost value may be.
enum class JsonRoot { Object, Any };

/// Reads `text`, UTF-8 that may begin with a byte-order mark. Beside what JSON itself forbids, the
/// same name twice in an object, `$boolean` with a value other than true and false, and more than
/// `deepestJson` levels are refused.
std::variant<JsonValue, JsonError> parseJson(std::string_view text, JsonRoot root);

} // namespace stencilor

#endif
