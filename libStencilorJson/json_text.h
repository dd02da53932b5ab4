#ifndef LIBSTENCILORJSON_JSON_TEXT_H
#define LIBSTENCILORJSON_JSON_TEXT_H

#include <libStencilorJson/JsonValue.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Where things stand in a JSON text.

namespace kel::Stencilor::internal {

/// The byte-order mark that a text may begin with.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Where the first malformed part of `text` begins, or its size where there is none.
std::size_t findMalformedUtf8(std::string_view text);

/// An error at a byte offset of `text`, which must be valid UTF-8 up to there.
JsonError errorAt(std::string_view text, std::size_t offset, const std::string& reason);

/// What makes `text` unreadable before it is looked at as JSON: malformed UTF-8, NUL characters,
/// too many bytes.
std::optional<JsonError> findEncodingError(std::string_view text);

/// Skips blanks and line breaks from `offset` on.
std::size_t skipJsonBlanks(std::string_view text, std::size_t offset);

/// Walks from token to token along with a parser that tells of each value and name, but not where
/// it stands. So it may rely on the tokens being well-formed, up to the one it is moved to.
class TokenCursor {
  public:
    explicit TokenCursor(std::string_view text);

    /// Moves to the next token; commas and colons are passed over.
    void next();

    std::size_t start() const { return start_; }
    std::size_t end() const { return end_; }
    std::string_view token() const { return text_.substr(start_, end_ - start_); }

  private:
    std::size_t findTokenEnd() const;
    std::size_t findNumberEnd() const;

    std::string_view text_;
    std::size_t start_ = 0;
    std::size_t end_ = 0;
};

} // namespace kel::Stencilor::internal

#endif
