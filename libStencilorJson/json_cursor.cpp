#include <libStencilorJson/json_cursor.h>
#include <libStencilorJson/json_text.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

bool isInWord(char byte) {
    const char lower = static_cast<char>(byte | 0x20);
    return (lower >= 'a' && lower <= 'z') || (byte >= '0' && byte <= '9');
}

} // namespace

bool JsonCursor::isAtOneOf(std::string_view characters) const {
    return !isAtEnd() && characters.find(text_[position_]) != std::string_view::npos;
}

std::string_view JsonCursor::textFrom(std::size_t begin) const {
    return text_.substr(begin, position_ - begin);
}

std::size_t JsonCursor::characterSizeHere() const {
    return isAtEnd() ? 0 : characterSize(rest());
}

void JsonCursor::skipWhitespace() {
    skipWhile([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

bool JsonCursor::literal(std::string_view expected) {
    const bool isNext = rest().starts_with(expected);
    position_ += isNext ? expected.size() : 0;
    return isNext;
}

void JsonCursor::failExpecting(const std::string& expectation) const {
    if (!isAtEnd() && characterSizeHere() == 0) {
        failAt(position_, "malformed UTF-8");
    }
    failAt(position_, "expected " + expectation + ", found " + found());
}

void JsonCursor::failAt(std::size_t offset, const std::string& reason) const {
    throw errorAt(text_, offset, reason);
}

/// The next word or character, for a message.
std::string JsonCursor::found() const {
    if (isAtEnd()) {
        return "the end of the text";
    }
    const auto word = std::find_if_not(rest().begin(), rest().end(), isInWord) - rest().begin();
    const std::size_t size = std::max(static_cast<std::size_t>(word), characterSizeHere());
    const std::string quoted = quotable(rest().substr(0, size));
    return quoted == "'" ? "\"'\"" : "'" + quoted + "'";
}

} // namespace kel::Stencilor::internal
