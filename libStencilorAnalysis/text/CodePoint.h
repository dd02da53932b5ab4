#ifndef LIBSTENCILORANALYSIS_TEXT_CODEPOINT_H
#define LIBSTENCILORANALYSIS_TEXT_CODEPOINT_H

#include <cstddef>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// The replacement for malformed bytes.
inline constexpr char32_t replacement = 0xFFFD;

/// One code point of UTF-8 text.
struct CodePoint {
    char32_t value;
    std::size_t size; ///< its size in bytes
};

/// The first code point of a non-empty text. Malformed bytes count as U+FFFD, as in the engine: one
/// for each truncated sequence, otherwise one for each byte.
CodePoint firstCodePoint(std::string_view text);

std::size_t countCodePoints(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
