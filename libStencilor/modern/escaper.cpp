#include <libStencilor/modern/escaper.h>
#include <libStencilor/render/text_sink.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace kel::Stencilor {

namespace {

using internal::escaper;

constexpr std::uint64_t ones = 0x0101010101010101u;
constexpr std::uint64_t highBits = 0x8080808080808080u;

/// Sets the high bit of each byte of `word` that equals `byte`. It may also be set for bytes that
/// follow one, and for bytes over 127.
constexpr std::uint64_t bytesEqual(std::uint64_t word, unsigned char byte) {
    return (word ^ ones * byte) - ones;
}

/// False only if none of eight bytes is escaped in HTML. '"' and '&' differ in one bit, as do '<'
/// and '>'.
constexpr bool mayEscapeHtml(std::uint64_t word) {
    const std::uint64_t found = bytesEqual(word & ~(ones * 4), '"') | bytesEqual(word, '\'') |
                                bytesEqual(word & ~(ones * 2), '<');
    return (found & highBits) != 0;
}

/// The HTML form of a byte, with room for copying a whole word.
struct html_escape {
    char text[8] = {};
    std::uint8_t size = 0; // 0: the byte stays as it is
};

constexpr std::array<html_escape, 128> htmlEscapes = [] {
    std::array<html_escape, 128> escapes{};
    const auto add = [&escapes](char byte, std::string_view text) {
        html_escape& escape = escapes[static_cast<unsigned char>(byte)];
        std::copy(text.begin(), text.end(), escape.text);
        escape.size = static_cast<std::uint8_t>(text.size());
    };
    add('&', "&amp;");
    add('<', "&lt;");
    add('>', "&gt;");
    add('"', "&quot;");
    add('\'', "&#39;");
    return escapes;
}();

constexpr std::string_view htmlEscape(char byte) {
    const auto index = static_cast<unsigned char>(byte);
    return index < htmlEscapes.size()
               ? std::string_view(htmlEscapes[index].text, htmlEscapes[index].size)
               : std::string_view();
}

constexpr std::size_t wordSize = sizeof(std::uint64_t);

std::uint64_t wordAt(const char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, wordSize);
    return word;
}

/// False only if no byte of `text` is escaped in HTML.
bool mayEscapeHtml(std::string_view text) {
    if (text.size() < wordSize) {
        return std::any_of(text.begin(), text.end(),
                           [](char byte) { return !htmlEscape(byte).empty(); });
    }
    for (std::size_t at = 0; at + wordSize < text.size(); at += wordSize) {
        if (mayEscapeHtml(wordAt(text.data() + at))) {
            return true;
        }
    }
    return mayEscapeHtml(wordAt(text.data() + text.size() - wordSize));
}

constexpr std::size_t longestEscape = 6;

/// Writes the escaped `text`, which may take `longestEscape` times its size. Returns the end.
char* writeHtml(std::string_view text, char* out) {
    while (!text.empty()) {
        const std::string_view few = text.substr(0, wordSize);
        text.remove_prefix(few.size());
        if (few.size() == wordSize && !mayEscapeHtml(wordAt(few.data()))) {
            out = std::copy_n(few.data(), wordSize, out);
            continue;
        }
        for (const char byte : few) {
            const std::string_view escape = htmlEscape(byte);
            *out = byte;
            out = escape.empty() ? out + 1 : std::copy(escape.begin(), escape.end(), out);
        }
    }
    return out;
}

void appendHtml(std::string_view text, std::string& out) {
    std::array<char, 64 * longestEscape> escaped;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, escaped.size() / longestEscape);
        out.append(escaped.data(), writeHtml(part, escaped.data()));
        text.remove_prefix(part.size());
    }
}

void appendUnicodeEscape(unsigned int unit, std::string& out) {
    constexpr const char* digits = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        out += digits[unit >> shift & 0xF];
    }
}

/// U+2028 and U+2029 (E2 80 A8 and E2 80 A9) end a line in scripts.
bool beginsLineSeparator(std::string_view text) {
    return text.starts_with("\xE2\x80\xA8") || text.starts_with("\xE2\x80\xA9");
}

void appendJsonEscape(char byte, std::string& out) {
    constexpr std::string_view shortForms = "\"\"\\\\\bb\ff\nn\rr\tt";
    for (std::size_t at = 0; at < shortForms.size(); at += 2) {
        if (shortForms[at] == byte) {
            out += '\\';
            out += shortForms[at + 1];
            return;
        }
    }
    appendUnicodeEscape(static_cast<unsigned char>(byte), out);
}

bool isJsonEscaped(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || std::strchr("\"\\<>&", byte) != nullptr;
}

void appendJson(std::string_view text, std::string& out) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (beginsLineSeparator(text.substr(at))) {
            appendUnicodeEscape(text[at + 2] == '\xA8' ? 0x2028 : 0x2029, out);
            at += 2;
        } else if (isJsonEscaped(text[at])) {
            appendJsonEscape(text[at], out);
        } else {
            out += text[at];
        }
    }
}

} // namespace

Escape::Escape(Kind kind) : kind_(kind) {}

Escape::Escape(std::function<void(std::string_view value, std::string& out)> function)
    : kind_(Kind::Function), function_(std::make_shared<const Function>(std::move(function))) {}

Escape::Escape(const Escape& other) = default;
Escape::Escape(Escape&& other) noexcept : Escape(std::as_const(other)) {}
Escape& Escape::operator=(const Escape& other) = default;
Escape& Escape::operator=(Escape&& other) noexcept {
    return *this = std::as_const(other);
}
Escape::~Escape() = default;

Escape Escape::none() {
    return Escape(Kind::None);
}

Escape Escape::html() {
    return Escape(Kind::Html);
}

Escape Escape::json() {
    return Escape(Kind::Json);
}

char* escaper::writePlainHtml(std::string_view value, char* out) noexcept {
    static_assert(mostHtml(0) >= sizeof(html_escape::text));
    const char* at = value.data();
    const char* const end = at + value.size();
    while (at != end) {
        const std::size_t few = std::min<std::size_t>(wordSize, static_cast<std::size_t>(end - at));
        if (few == wordSize) {
            const std::uint64_t word = wordAt(at);
            if (internal::notPlainBits(word) != 0) {
                return nullptr;
            }
            if (!mayEscapeHtml(word)) {
                std::memcpy(out, at, wordSize);
                out += wordSize;
                at += wordSize;
                continue;
            }
        }
        for (const char* const stop = at + few; at != stop; ++at) {
            const auto byte = static_cast<unsigned char>(*at);
            if (byte - 1u >= htmlEscapes.size() - 1) {
                return nullptr;
            }
            const html_escape& escape = htmlEscapes[byte];
            if (escape.size == 0) {
                *out++ = *at;
            } else {
                std::memcpy(out, escape.text, sizeof(escape.text));
                out += escape.size;
            }
        }
    }
    return out;
}

std::string_view escaper::escape(std::string_view value) {
    const Escape::Kind kind = escape_.kind_;
    if (kind == Escape::Kind::None || (kind == Escape::Kind::Html && !mayEscapeHtml(value))) {
        return value;
    }
    escaped_.clear();
    if (kind == Escape::Kind::Html) {
        appendHtml(value, escaped_);
    } else if (kind == Escape::Kind::Json) {
        appendJson(value, escaped_);
    } else {
        (*escape_.function_)(value, escaped_);
    }
    return std::string_view(escaped_).substr(0, escaped_.find('\0'));
}

String escapeHtml(std::string_view text) {
    std::string escaped;
    appendHtml(text, escaped);
    return escaped;
}

String escapeJson(std::string_view text) {
    std::string escaped;
    appendJson(text, escaped);
    return escaped;
}

} // namespace kel::Stencilor
