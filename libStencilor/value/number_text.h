#ifndef LIBSTENCILOR_VALUE_NUMBER_TEXT_H
#define LIBSTENCILOR_VALUE_NUMBER_TEXT_H

#include <libKel/String.h>

#include <cstdint>

namespace kel::Stencilor::internal {

/// The number in decimal.
String numberText(std::int64_t number);
String numberText(std::uint64_t number);

/// The shortest digits that read back as the same number, laid out as JavaScript does. Throws
/// `std::invalid_argument` for what is not finite.
String numberText(float number);
String numberText(double number);

} // namespace kel::Stencilor::internal

#endif
