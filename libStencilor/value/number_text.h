#ifndef LIBSTENCILOR_VALUE_NUMBER_TEXT_H
#define LIBSTENCILOR_VALUE_NUMBER_TEXT_H

#include <libKel/String.h>

#include <cstdint>
#include <string>

namespace kel::Stencilor::internal {

/// The number in decimal.
String numberText(std::int64_t number);
String numberText(std::uint64_t number);

/// The shortest digits that read back as the same number, in the format of JavaScript. Throws
/// `std::invalid_argument` if the number is not finite.
String numberText(float number);
String numberText(double number);

/// A non-negative number, which is 0.DIGITS times ten to the power of `point`.
struct decimal {
    std::string digits; ///< not empty; without leading or trailing zeros, except for 0 itself
    int point;
};

/// The number in the format of JavaScript.
std::string layOut(const decimal& number);

} // namespace kel::Stencilor::internal

#endif
