#include "ObviousUtf8.h"

#include <algorithm>

namespace support {

namespace {

struct Range {
    unsigned char lowest;
    unsigned char highest;
};

struct Row {
    std::size_t length;
    Range bytes[4];
};

// The Unicode Standard 15.0, table 3-7, Well-Formed UTF-8 Byte Sequences.
constexpr Row rows[] = {
    {1, {{0x00, 0x7F}}},
    {2, {{0xC2, 0xDF}, {0x80, 0xBF}}},
    {3, {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}}},
    {3, {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {3, {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}}},
    {3, {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {4, {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}},
};

/// The number of bytes at the start of `text` that match `row`.
std::size_t matchedBy(const Row& row, std::string_view text) {
    std::size_t matched = 0;
    while (matched < row.length && matched < text.size() &&
           static_cast<unsigned char>(text[matched]) >= row.bytes[matched].lowest &&
           static_cast<unsigned char>(text[matched]) <= row.bytes[matched].highest) {
        ++matched;
    }
    return matched;
}

} // namespace

std::string obviouslyRepairedUtf8(std::string_view text) {
    std::string repaired;
    while (!text.empty()) {
        std::size_t matched = 1; // an invalid lead byte counts alone
        bool whole = false;
        for (const Row& row : rows) {
            const std::size_t length = matchedBy(row, text);
            matched = std::max(matched, length);
            whole = whole || length == row.length;
        }
        repaired += whole ? text.substr(0, matched) : std::string_view("\xEF\xBF\xBD");
        text.remove_prefix(matched);
    }
    return repaired;
}

} // namespace support
