#include <libKel/String.h>

#include <libStencilorJson/json_text.h>

#include <algorithm>
#include <limits>

namespace kel::Stencilor::internal {

namespace {

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

} // namespace

std::size_t findMalformedUtf8(std::string_view text) {
    kel::String repaired;
    repaired.UTF8Decode(text.data(), static_cast<unsigned int>(text.size()), false);
    const std::string_view valid = repaired.view();
    const auto difference = std::mismatch(text.begin(), text.end(), valid.begin(), valid.end());
    if (difference.second == valid.end()) {
        return text.size();
    }
    // A part that was cut short may share its first bytes with the U+FFFD that replaces it.
    auto offset = static_cast<std::size_t>(difference.second - valid.begin());
    while (continuesCharacter(valid[offset])) {
        --offset;
    }
    return offset;
}

JsonError errorAt(std::string_view text, std::size_t offset, const std::string& reason) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBreak = before.rfind('\n');
    std::string_view line = before.substr(lineBreak == std::string_view::npos ? 0 : lineBreak + 1);
    if (lineBreak == std::string_view::npos && line.starts_with(byteOrderMark)) {
        line.remove_prefix(byteOrderMark.size());
    }
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const auto columns =
        line.size() -
        static_cast<std::size_t>(std::count_if(line.begin(), line.end(), continuesCharacter));
    return {static_cast<std::size_t>(lines) + 1, columns + 1, reason};
}

std::optional<JsonError> findEncodingError(std::string_view text) {
    if (text.size() > std::numeric_limits<unsigned int>::max()) {
        return errorAt(text, 0, "the text is longer than 4 GiB - 1 byte");
    }
    const std::size_t malformed = findMalformedUtf8(text);
    const std::size_t nul = text.find('\0');
    if (nul < malformed) {
        return errorAt(text, nul, "a NUL character must be written as \\u0000");
    }
    if (malformed < text.size()) {
        return errorAt(text, malformed, "malformed UTF-8");
    }
    return std::nullopt;
}

std::size_t skipJsonBlanks(std::string_view text, std::size_t offset) {
    return std::min(text.find_first_not_of(" \t\r\n", offset), text.size());
}

TokenCursor::TokenCursor(std::string_view text)
    : text_(text), end_(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0) {}

void TokenCursor::next() {
    start_ = text_.find_first_not_of(" \t\r\n,:", end_);
    end_ = findTokenEnd();
}

std::size_t TokenCursor::findTokenEnd() const {
    switch (text_[start_]) {
    case '{':
    case '}':
    case '[':
    case ']':
        return start_ + 1;
    case '"': {
        std::size_t end = start_ + 1;
        while (text_[end] != '"') {
            end += text_[end] == '\\' ? 2u : 1u;
        }
        return end + 1;
    }
    case 'n':
    case 't':
        return start_ + 4;
    case 'f':
        return start_ + 5;
    default:
        return findNumberEnd();
    }
}

std::size_t TokenCursor::findNumberEnd() const {
    const auto skipDigits = [this](std::size_t offset) {
        return std::min(text_.find_first_not_of("0123456789", offset), text_.size());
    };
    const auto isOneOf = [this](std::string_view characters, std::size_t offset) {
        return offset < text_.size() && characters.find(text_[offset]) != std::string_view::npos;
    };
    std::size_t end = isOneOf("-", start_) ? start_ + 1 : start_;
    end = isOneOf("0", end) ? end + 1 : skipDigits(end);
    if (isOneOf(".", end)) {
        end = skipDigits(end + 1);
    }
    if (isOneOf("eE", end)) {
        end = skipDigits(isOneOf("+-", end + 1) ? end + 2 : end + 1);
    }
    return end;
}

} // namespace kel::Stencilor::internal
