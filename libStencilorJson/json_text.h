#ifndef LIBSTENCILORJSON_JSON_TEXT_H
#define LIBSTENCILORJSON_JSON_TEXT_H

#include <libStencilorJson/JsonText.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Characters and positions of a JSON text.

namespace kel::Stencilor::internal {

/// The byte-order mark that a text may begin with.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// How many bytes the character at the start of `text` takes; 0 where it is malformed UTF-8. `text`
/// must not be empty.
std::size_t characterSize(std::string_view text);

void appendCharacter(std::string& text, std::uint32_t codePoint);

/// `text`, which must be valid UTF-8, for a message: without the characters that control a terminal
/// or the direction of writing, and no longer than a message should quote.
std::string quotable(std::string_view text);

/// Where a message points to; both are counted from 1.
struct JsonPosition {
    std::size_t line;
    std::size_t column; ///< in code points
};

/// The position at a byte offset of `text`, which must be valid UTF-8 up to there. Takes time in
/// proportion to the offset.
JsonPosition positionAt(std::string_view text, std::size_t offset);

/// An error at a byte offset, as above.
JsonError errorAt(std::string_view text, std::size_t offset, const std::string& reason);

} // namespace kel::Stencilor::internal

#endif
