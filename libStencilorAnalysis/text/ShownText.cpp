#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <iterator>

namespace kel::Stencilor::Analysis {

namespace {

constexpr std::size_t longestQuotation = 200;

struct Range {
    char32_t first;
    char32_t last;
};

/// Escaped characters beyond ASCII.
constexpr Range escaped[] = {
    {0x7F, 0x9F},       // control characters
    {0x061C, 0x061C},   // a direction mark
    {0x200B, 0x200B},   // a zero-width space
    {0x200E, 0x200F},   // direction marks
    {0x2028, 0x202E},   // separators and direction controls
    {0x2060, 0x206F},   // zero-width joiners, isolates
    {0xFEFF, 0xFEFF},   // a byte-order mark inside text
    {0xFFF9, 0xFFFB},   // annotations
    {0xE0000, 0xE007F}, // tags
};

bool isEscaped(char32_t point) {
    return (point < 0x20 && point != '\t') ||
           std::any_of(std::begin(escaped), std::end(escaped), [point](const Range& range) {
               return range.first <= point && point <= range.last;
           });
}

std::string hexadecimal(char32_t value, std::size_t digits) {
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value >>= 4) {
        *digit = "0123456789ABCDEF"[value & 15];
    }
    return text;
}

std::string escapeForReaders(char32_t point) {
    switch (point) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    default:
        return point < 0x80      ? "\\x" + hexadecimal(point, 2)
               : point < 0x10000 ? "\\u" + hexadecimal(point, 4)
                                 : "\\U" + hexadecimal(point, 8);
    }
}

std::string escapeForJson(char32_t point) {
    if (point < 0x10000) {
        return "\\u" + hexadecimal(point, 4);
    }
    const char32_t rest = point - 0x10000; // JSON uses two UTF-16 units for these
    return "\\u" + hexadecimal(0xD800 + (rest >> 10), 4) + "\\u" +
           hexadecimal(0xDC00 + (rest & 0x3FF), 4);
}

} // namespace

ShownPoint showFirst(std::string_view text) {
    const CodePoint point = firstCodePoint(text);
    if (isEscaped(point.value)) {
        const std::string escape = escapeForReaders(point.value);
        return {escape, escape.size(), point.size};
    }
    const bool malformed = point.value == replacement;
    return {malformed ? "\uFFFD" : std::string(text.substr(0, point.size)), 1, point.size};
}

std::string showText(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const ShownPoint point = showFirst(text);
        shown += point.text;
        text.remove_prefix(point.size);
    }
    return shown;
}

std::string shorten(std::string_view text) {
    std::size_t size = 0;
    for (std::size_t count = 0; size < text.size() && count < longestQuotation; ++count) {
        size += firstCodePoint(text.substr(size)).size;
    }
    return std::string(text.substr(0, size)) + (size < text.size() ? "..." : "");
}

std::string quote(std::string_view text) {
    return "\"" + showText(shorten(text)) + "\"";
}

std::string showJson(std::string_view document) {
    std::string shown;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < document.size();) {
        const CodePoint point = firstCodePoint(document.substr(at));
        // ASCII control characters are already escaped, except for line breaks between values.
        if (point.value >= 0x7F && isEscaped(point.value)) {
            shown.append(document, copied, at - copied);
            shown += escapeForJson(point.value);
            copied = at + point.size;
        }
        at += point.size;
    }
    return shown.append(document, copied);
}

} // namespace kel::Stencilor::Analysis
