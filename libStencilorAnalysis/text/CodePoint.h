#ifndef LIBSTENCILORANALYSIS_TEXT_CODEPOINT_H
#define LIBSTENCILORANALYSIS_TEXT_CODEPOINT_H

#include <cstddef>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// What malformed bytes are replaced by.
inline constexpr char32_t replacement = 0xFFFD;

/// One code point of a UTF-8 text.
struct CodePoint {
    char32_t value;
    std::size_t size; ///< how many bytes it takes
};

/// The code point that a text, which is not empty, begins with. Malformed bytes are the U+FFFD that
/// the engine replaces them by: one for each beginning of a sequence that is cut short, otherwise
/// one for each byte.
CodePoint firstCodePoint(std::string_view text);

std::size_t countCodePoints(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
