#include <libStencilor/value/number_text.h>
#include <libStencilor/value/scientific_text.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

namespace {

// The longest text has 17 digits, a sign, a point and an exponent.
using Characters = std::array<char, 32>;

String toString(std::string_view bytes) {
    return String(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

template <typename Number>
String integerText(Number number) {
    Characters characters;
    char* const begin = characters.data();
    const char* const end = std::to_chars(begin, begin + characters.size(), number).ptr;
    return String(begin, static_cast<unsigned int>(end - begin));
}

/// The shortest digits of a non-negative number.
template <typename Number>
decimal findShortestDigits(Number number) {
    Characters characters;
    char* const begin = characters.data();
    const char* const end = writeScientific(begin, begin + characters.size(), number);
    const std::string_view text(begin, static_cast<std::size_t>(end - begin));
    const std::size_t exponentMark = text.find('e');
    decimal result{std::string(text.substr(0, 1)), 0};
    if (exponentMark > 1) {
        result.digits += text.substr(2, exponentMark - 2);
    }
    const std::size_t sign =
        text[exponentMark + 1] == '+' ? 1 : 0; // `from_chars` does not accept a plus sign
    std::from_chars(begin + exponentMark + 1 + sign, end, result.point);
    ++result.point;
    return result;
}

std::string layOutWithExponent(const decimal& number) {
    std::string result = number.digits.substr(0, 1);
    if (number.digits.size() > 1) {
        result += "." + number.digits.substr(1);
    }
    const int exponent = number.point - 1;
    return result + (exponent < 0 ? "e" : "e+") + std::to_string(exponent);
}

template <typename Number>
String floatingText(Number number) {
    if (!std::isfinite(number)) {
        throw std::invalid_argument("a number that is not finite has no text");
    }
    const std::string text = layOut(findShortestDigits(std::abs(number)));
    return toString(number < 0 ? "-" + text : text); // -0 is 0
}

} // namespace

std::string layOut(const decimal& number) {
    const auto count = static_cast<int>(number.digits.size());
    if (number.point < -5 || number.point > 21) {
        return layOutWithExponent(number);
    }
    if (number.point <= 0) {
        return "0." + std::string(static_cast<std::size_t>(-number.point), '0') + number.digits;
    }
    if (number.point >= count) {
        return number.digits + std::string(static_cast<std::size_t>(number.point - count), '0');
    }
    std::string result = number.digits;
    return result.insert(static_cast<std::size_t>(number.point), 1, '.');
}

String numberText(std::int64_t number) {
    return integerText(number);
}

String numberText(std::uint64_t number) {
    return integerText(number);
}

String numberText(float number) {
    return floatingText(number);
}

String numberText(double number) {
    return floatingText(number);
}

} // namespace kel::Stencilor::internal
