#ifndef TOOLS_STENCILOR_LSP_INDEXEDTEXT_H
#define TOOLS_STENCILOR_LSP_INDEXEDTEXT_H

#include <tools/stencilor/lsp/Json.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor::lsp {

/// The units in which characters of a line are counted.
enum class Encoding { Utf8, Utf16 };

/// A position in the protocol; both numbers count from 0.
struct TextPosition {
    std::size_t line = 0;
    std::size_t character = 0;

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// Text with the lines and characters in it, which change with it. Lines end with LF, CR LF or a
/// lone CR. A malformed byte counts as a character if it does not look like the rest of one.
///
/// Cost: a position is found in logarithmic time once the text before it has been indexed. After a
///   change, only the text after it is indexed again, so many changes from the last to the first
///   take no longer than one.
class IndexedText {
  public:
    explicit IndexedText(Encoding encoding, std::string text = {});

    const std::string& text() const { return text_; }

    /// An offset after the end is the end.
    TextPosition positionOf(std::size_t offset) const;

    /// A line after the last one is the end of the text, a character after the last one the end of
    /// its line. A position inside a character is its beginning.
    std::size_t offsetOf(TextPosition position) const;

    void replace(std::size_t begin, std::size_t end, std::string_view text);

  private:
    static constexpr std::size_t blockSize = 256;

    std::size_t unitsOf(char byte) const;
    void indexTo(std::size_t offset) const;
    void indexBlock() const;
    std::size_t unitsBetween(std::size_t begin, std::size_t end) const;
    std::size_t unitsBefore(std::size_t offset) const;
    std::size_t endOfLine(std::size_t line) const;

    Encoding encoding_;
    std::string text_;
    mutable std::vector<std::size_t> lines_{0}; // the offsets of known lines
    mutable std::vector<std::size_t> units_{0}; // before each block
    mutable std::size_t indexed_ = 0;           // up to here
};

Json toJson(TextPosition position);

/// The same as text.
void append(std::string& json, TextPosition position);

/// Negative numbers count as 0.
/// Errors: throws `ResponseError`, and what the JSON library throws, if it is not a position.
TextPosition positionFrom(const Json& json);

} // namespace stencilor::lsp

#endif
