#ifndef LIBSTENCILORJSON_JSON_CURSOR_H
#define LIBSTENCILORJSON_JSON_CURSOR_H

#include <libStencilorJson/json_receiver.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// A position in a JSON text, which it borrows.
class JsonCursor {
  public:
    explicit JsonCursor(std::string_view text) : text_(text) {}

    std::size_t position() const { return position_; }
    bool isAtEnd() const { return position_ == text_.size(); }
    bool isAt(char character) const { return !isAtEnd() && text_[position_] == character; }
    bool isAtOneOf(std::string_view characters) const;

    /// The rest of the text.
    std::string_view rest() const { return text_.substr(position_); }
    /// The range since `begin`.
    JsonRange rangeFrom(std::size_t begin) const { return {begin, position_}; }
    std::string_view textFrom(std::size_t begin) const;

    /// The size of the next character; 0 for malformed UTF-8 and at the end.
    std::size_t characterSizeHere() const;

    void skip(std::size_t bytes) { position_ += bytes; }
    void skipWhitespace();
    /// `matches` takes a byte. Pass a lambda, which can be inlined.
    template <typename Predicate>
    void skipWhile(Predicate matches);

    /// Skips `expected` if it is next.
    bool literal(char expected);
    bool literal(std::string_view expected);

    [[noreturn]] void failExpecting(const std::string& expectation) const;
    [[noreturn]] void failAt(std::size_t offset, const std::string& reason) const;

  private:
    std::string found() const;

    std::string_view text_;
    std::size_t position_ = 0;
};

template <typename Predicate>
void JsonCursor::skipWhile(Predicate matches) {
    while (!isAtEnd() && matches(text_[position_])) {
        ++position_;
    }
}

inline bool JsonCursor::literal(char expected) {
    const bool isNext = isAt(expected);
    position_ += isNext ? 1u : 0u;
    return isNext;
}

} // namespace kel::Stencilor::internal

#endif
