#ifndef LIBKEL_UTF8_H
#define LIBKEL_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

// The conversions of text, apart from the string class. Not installed.

namespace kel {

/// One character and how many bytes it takes.
struct Utf8Character {
    char32_t character;
    std::size_t length;
};

/// The first character of valid UTF-8 that is not empty.
Utf8Character firstCharacter(std::string_view text) noexcept;

/// How many bytes at the start of `text` are valid UTF-8.
std::size_t validUtf8Prefix(std::string_view text) noexcept;

/// `text` with each maximal malformed part replaced by U+FFFD. The first `valid` bytes are known to
/// be valid.
std::string repairedUtf8(std::string_view text, std::size_t valid);

/// Between UTF-8 and UTF-16 in the machine's byte order; what is malformed becomes U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
std::u16string utf16FromUtf8(std::string_view text);

} // namespace kel

#endif
