#ifndef LIBKEL_UTF8_H
#define LIBKEL_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

// Conversions of text, independent of the string class. Not installed.

namespace kel {

/// One character and its size in bytes.
struct Utf8Character {
    char32_t character;
    std::size_t length;
};

/// The first character of non-empty, valid UTF-8.
Utf8Character firstCharacter(std::string_view text) noexcept;

/// The number of bytes at the start of `text` that are valid UTF-8.
std::size_t validUtf8Prefix(std::string_view text) noexcept;

/// Replaces each maximal malformed part of `text` by U+FFFD. The first `valid` bytes are known to
/// be valid.
std::string repairedUtf8(std::string_view text, std::size_t valid);

/// Convert between UTF-8 and UTF-16 in the machine's byte order. Malformed parts become U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
std::u16string utf16FromUtf8(std::string_view text);

} // namespace kel

#endif
