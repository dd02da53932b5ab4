#ifndef LIBSTENCILOR_VALUE_NUMBER_TEXT_H
#define LIBSTENCILOR_VALUE_NUMBER_TEXT_H

#include <libKel/String.h>

#include <cstdint>
#include <string>

namespace kel::Stencilor::internal {

/// The number in decimal.
String numberText(std::int64_t number);
String numberText(std::uint64_t number);

/// The shortest digits that read back as the same number, laid out as JavaScript does. Throws
/// `std::invalid_argument` for what is not finite.
String numberText(float number);
String numberText(double number);

/// A number that is not negative is 0.DIGITS times ten to the power `point`.
struct decimal {
    std::string digits; ///< neither empty nor, but for 0 itself, with zeros at an end
    int point;
};

/// The number, laid out as JavaScript does.
std::string layOut(const decimal& number);

} // namespace kel::Stencilor::internal

#endif
