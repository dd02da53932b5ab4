#include <libKel/Utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kel {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

/// True if none of `Count` bytes, a multiple of eight, is over 127.
template <std::size_t Count>
bool areAscii(const char* bytes) noexcept {
    std::uint64_t all = 0;
    for (std::size_t at = 0; at < Count; at += sizeof(all)) {
        std::uint64_t word;
        std::memcpy(&word, bytes + at, sizeof(word));
        all |= word;
    }
    return (all & 0x8080808080808080u) == 0;
}

/// The number of ASCII bytes at the start of `text`.
std::size_t asciiPrefix(std::string_view text) noexcept {
    std::size_t at = 0;
    while (text.size() - at >= 64 && areAscii<64>(text.data() + at)) {
        at += 64;
    }
    while (text.size() - at >= 8 && areAscii<8>(text.data() + at)) {
        at += 8;
    }
    if (at > 0 && text.size() - at < 8 && areAscii<8>(text.data() + text.size() - 8)) {
        return text.size(); // the last eight bytes, some of them again
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

/// The range of the second byte in a sequence. Table 3-7 of the standard restricts it for some lead
/// bytes, which excludes overlong forms, surrogates and code points above U+10FFFF.
struct SecondByte {
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
};

SecondByte secondByteAfter(unsigned char lead) {
    switch (lead) {
    case 0xE0:
        return {0xA0, 0xBF};
    case 0xED:
        return {0x80, 0x9F};
    case 0xF0:
        return {0x90, 0xBF};
    case 0xF4:
        return {0x80, 0x8F};
    default:
        return {};
    }
}

/// The length of a sequence that begins with `lead`; 1 for an invalid lead byte.
std::size_t sequenceLength(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

/// The number of bytes that belong together at the start of a non-empty `text`: a character, the
/// longest prefix of a valid one, or a single byte.
std::size_t matchedLength(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const std::size_t most = std::min(sequenceLength(byte(0)), text.size());
    SecondByte allowed = secondByteAfter(byte(0));
    std::size_t length = 1;
    while (length < most && byte(length) >= allowed.lowest && byte(length) <= allowed.highest) {
        allowed = {};
        ++length;
    }
    return length;
}

void appendUtf8(std::string& text, char32_t character) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
        return;
    }
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            append(0xE0 | character >> 12);
        } else {
            append(0xF0 | character >> 18);
            append(0x80 | (character >> 12 & 0x3F));
        }
        append(0x80 | (character >> 6 & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

bool isLeadSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isTrailSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

} // namespace

Utf8Character firstCharacter(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = sequenceLength(lead);
    char32_t character = length == 1 ? lead : lead & (0xFFu >> (length + 1));
    for (std::size_t at = 1; at < length; ++at) {
        character = character << 6 | (static_cast<unsigned char>(text[at]) & 0x3F);
    }
    return {character, length};
}

std::size_t validUtf8Prefix(std::string_view text) noexcept {
    std::size_t at = asciiPrefix(text);
    while (at < text.size()) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(text[at]));
        if (length == 1 || matchedLength(text.substr(at)) < length) {
            return at;
        }
        at += length;
        at += asciiPrefix(text.substr(at));
    }
    return at;
}

std::string repairedUtf8(std::string_view text, std::size_t valid) {
    std::string repaired;
    repaired.reserve(text.size());
    while (true) {
        repaired.append(text.substr(0, valid));
        text.remove_prefix(valid);
        if (text.empty()) {
            return repaired;
        }
        repaired += replacement;
        text.remove_prefix(matchedLength(text));
        valid = validUtf8Prefix(text);
    }
}

std::string utf8FromUtf16(std::u16string_view text) {
    std::string converted;
    converted.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char32_t unit = text[at];
        if (!isLeadSurrogate(unit) && !isTrailSurrogate(unit)) {
            appendUtf8(converted, unit);
        } else if (isLeadSurrogate(unit) && at + 1 < text.size() &&
                   isTrailSurrogate(text[at + 1])) {
            appendUtf8(converted, 0x10000 + ((unit - 0xD800) << 10) + (text[++at] - 0xDC00u));
        } else {
            converted += replacement;
        }
    }
    return converted;
}

std::u16string utf16FromUtf8(std::string_view text) {
    const std::string valid = repairedUtf8(text, validUtf8Prefix(text));
    std::u16string converted;
    converted.reserve(valid.size());
    for (std::string_view rest = valid; !rest.empty();) {
        const Utf8Character next = firstCharacter(rest);
        if (next.character < 0x10000) {
            converted += static_cast<char16_t>(next.character);
        } else {
            const char32_t beyond = next.character - 0x10000;
            converted += static_cast<char16_t>(0xD800 + (beyond >> 10));
            converted += static_cast<char16_t>(0xDC00 + (beyond & 0x3FF));
        }
        rest.remove_prefix(next.length);
    }
    return converted;
}

} // namespace kel
