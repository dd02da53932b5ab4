#ifndef LIBSTENCILOR_VALUE_SCIENTIFIC_TEXT_H
#define LIBSTENCILOR_VALUE_SCIENTIFIC_TEXT_H

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <version>

namespace kel::Stencilor::internal {

/// Writes the fewest digits that read back as the same number, found by trial.
/// @return the end; there must be room for a sign, 17 digits, a point and an exponent, and a NUL
template <typename Number>
char* writeScientificByTrial(char* begin, char* end, Number number) {
    for (int digits = 0; digits < std::numeric_limits<Number>::max_digits10; ++digits) {
        const int length = std::snprintf(begin, static_cast<std::size_t>(end - begin), "%.*e",
                                         digits, static_cast<double>(number));
        if (static_cast<Number>(std::strtod(begin, nullptr)) == number) {
            return begin + length;
        }
    }
    return begin;
}

/// Writes a non-negative number as `1.5e-07`, with the fewest digits that read back as the same
/// number. Returns the end.
template <typename Number>
char* writeScientific(char* begin, char* end, Number number) {
#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 14000 // std::to_chars only for integers
    return writeScientificByTrial(begin, end, number);
#else
    return std::to_chars(begin, end, number, std::chars_format::scientific).ptr;
#endif
}

} // namespace kel::Stencilor::internal

#endif
