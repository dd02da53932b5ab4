#ifndef LIBSTENCILORJSON_JSON_TEXT_H
#define LIBSTENCILORJSON_JSON_TEXT_H

#include <libStencilorJson/JsonText.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Characters and positions of a JSON text.

namespace kel::Stencilor::internal {

/// The optional byte-order mark at the beginning of JSON text.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The size of the first character of `text`, which must not be empty; 0 for malformed UTF-8.
std::size_t characterSize(std::string_view text);

void appendCharacter(std::string& text, std::uint32_t codePoint);

/// Prepares `text`, which must be valid UTF-8, for a message: escapes characters that control a
/// terminal or the text direction, and shortens it.
std::string quotable(std::string_view text);

/// A position in a message; both numbers start at 1.
struct JsonPosition {
    std::size_t line;
    std::size_t column; ///< in code points
};

/// The position of a byte offset in `text`, which must be valid UTF-8 up to there. Takes linear
/// time.
JsonPosition positionAt(std::string_view text, std::size_t offset);

/// An error at a byte offset of `text`.
JsonError errorAt(std::string_view text, std::size_t offset, const std::string& reason);

} // namespace kel::Stencilor::internal

#endif
