#include <libKel/Utf8.h>

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace kel {

namespace {

constexpr char32_t replacement = 0xFFFD;

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

/// How many bytes at the start of `text` are ASCII.
std::size_t asciiPrefix(std::string_view text) noexcept {
    std::size_t at = 0;
    while (text.size() - at >= 64 && areAscii<64>(text.data() + at)) {
        at += 64;
    }
    while (text.size() - at >= 8 && areAscii<8>(text.data() + at)) {
        at += 8;
    }
    if (at > 0 && text.size() - at < 8 && areAscii<8>(text.data() + text.size() - 8)) {
        return text.size(); // the last eight, some of them a second time
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

/// What may stand second in a sequence: table 3-7 of the standard narrows it for some lead bytes,
/// which rules out overlong forms, surrogates and what lies past U+10FFFF.
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

/// The length of a sequence that begins with `lead`; 1 for what begins none.
std::size_t sequenceLength(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

/// The length of the maximal malformed part that begins at `text`, which is not valid there: the
/// longest start of a sequence that could still have become valid, or else a single byte.
std::size_t malformedLength(std::string_view text) {
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

} // namespace

std::size_t validUtf8Prefix(std::string_view text) noexcept {
    std::size_t at = asciiPrefix(text);
    while (at < text.size()) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(text[at]));
        const std::string_view sequence = text.substr(at, length);
        if (length == 1 || sequence.size() < length || !utf8::is_valid(sequence)) {
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
        utf8::append(replacement, std::back_inserter(repaired));
        text.remove_prefix(malformedLength(text));
        valid = validUtf8Prefix(text);
    }
}

std::string utf8FromUtf16(std::u16string_view text) {
    std::string converted;
    converted.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t character = text[at];
        const bool paired = utf8::internal::is_lead_surrogate(text[at]) && at + 1 < text.size() &&
                            utf8::internal::is_trail_surrogate(text[at + 1]);
        if (paired) {
            character = 0x10000 + ((character - 0xD800) << 10) + (text[++at] - 0xDC00u);
        } else if (utf8::internal::is_surrogate(text[at])) {
            character = replacement;
        }
        utf8::append(character, std::back_inserter(converted));
    }
    return converted;
}

std::u16string utf16FromUtf8(std::string_view text) {
    const std::string valid = repairedUtf8(text, validUtf8Prefix(text));
    std::u16string converted;
    converted.reserve(valid.size());
    utf8::utf8to16(valid.begin(), valid.end(), std::back_inserter(converted));
    return converted;
}

} // namespace kel
