#include <libStencilorJson/json_text.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

constexpr std::size_t longestQuote = 40; // in characters

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

/// Characters that must be escaped: those that control a terminal or the text direction, line
/// breaks, and invisible ones.
constexpr Range unshown[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB},
};

unsigned int byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

/// The size of a character according to its first byte; 0 for an invalid first byte.
std::size_t announcedSize(unsigned int first) {
    return first < 0x80   ? 1
           : first < 0xC2 ? 0
           : first < 0xE0 ? 2
           : first < 0xF0 ? 3
           : first < 0xF5 ? 4
                          : 0;
}

/// True if `second` makes the code point too small for its size, a surrogate, or too large.
bool isOutsideUnicode(unsigned int first, unsigned int second) {
    return (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
           (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
}

/// The code point of a well-formed character.
std::uint32_t codePointOf(std::string_view character) {
    std::uint32_t result = byteAt(character, 0);
    if (character.size() > 1) {
        result &= 0x7Fu >> character.size();
    }
    for (const char byte : character.substr(1)) {
        result = result << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    }
    return result;
}

std::string escaped(std::uint32_t codePoint) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result = "\\u";
    for (const unsigned int shift : {12u, 8u, 4u, 0u}) {
        result += digits[codePoint >> shift & 0xFu];
    }
    return result;
}

bool isShown(std::uint32_t codePoint) {
    return std::none_of(std::begin(unshown), std::end(unshown), [codePoint](const Range& range) {
        return range.first <= codePoint && codePoint <= range.last;
    });
}

} // namespace

std::size_t characterSize(std::string_view text) {
    const unsigned int first = byteAt(text, 0);
    const std::size_t size = announcedSize(first);
    if (size < 2) {
        return size;
    }
    const std::string_view rest = text.substr(1, size - 1);
    const bool isComplete =
        rest.size() == size - 1 && std::all_of(rest.begin(), rest.end(), continuesCharacter);
    return isComplete && !isOutsideUnicode(first, byteAt(rest, 0)) ? size : 0;
}

void appendCharacter(std::string& text, std::uint32_t codePoint) {
    const auto add = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto addRest = [&](unsigned int shift) { add(0x80u | (codePoint >> shift & 0x3Fu)); };
    if (codePoint < 0x80) {
        add(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        add(0xC0u | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            add(0xE0u | codePoint >> 12);
        } else {
            add(0xF0u | codePoint >> 18);
            addRest(12);
        }
        addRest(6);
    }
    addRest(0);
}

std::string quotable(std::string_view text) {
    std::string result;
    for (std::size_t characters = 0; !text.empty(); ++characters) {
        if (characters == longestQuote) {
            return result + "...";
        }
        const std::string_view character = text.substr(0, characterSize(text));
        const std::uint32_t codePoint = codePointOf(character);
        result += isShown(codePoint) ? std::string(character) : escaped(codePoint);
        text.remove_prefix(character.size());
    }
    return result;
}

JsonPosition positionAt(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBreak = before.rfind('\n');
    std::string_view line = before.substr(lineBreak == std::string_view::npos ? 0 : lineBreak + 1);
    if (lineBreak == std::string_view::npos && line.starts_with(byteOrderMark)) {
        line.remove_prefix(byteOrderMark.size());
    }
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const auto columns = std::count_if(line.begin(), line.end(),
                                       [](char byte) { return !continuesCharacter(byte); });
    return {static_cast<std::size_t>(lines) + 1, static_cast<std::size_t>(columns) + 1};
}

JsonError errorAt(std::string_view text, std::size_t offset, const std::string& reason) {
    const JsonPosition position = positionAt(text, offset);
    return {position.line, position.column, reason, offset};
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        if (size == 0) {
            return false;
        }
        text.remove_prefix(size);
    }
    return true;
}

std::string pointerPart(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '~' || character == '/') {
            result += character == '~' ? "~0" : "~1";
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace kel::Stencilor::internal
