#include <libStencilor/value/number_text.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

namespace {

// The longest texts are those of a number of 17 digits with a sign, a point and an exponent.
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

/// A number without its sign is 0.DIGITS times ten to the power `point`.
struct Decimal {
    std::string digits;
    int point;
};

/// The shortest digits of a number that is not negative.
template <typename Number>
Decimal findShortestDigits(Number number) {
    Characters characters;
    char* const begin = characters.data();
    const char* const end =
        std::to_chars(begin, begin + characters.size(), number, std::chars_format::scientific).ptr;
    const std::string_view text(begin, static_cast<std::size_t>(end - begin));
    const std::size_t exponentMark = text.find('e');
    Decimal result{std::string(text.substr(0, 1)), 0};
    if (exponentMark > 1) {
        result.digits += text.substr(2, exponentMark - 2);
    }
    const std::size_t sign = text[exponentMark + 1] == '+' ? 1 : 0; // `from_chars` takes no plus
    std::from_chars(begin + exponentMark + 1 + sign, end, result.point);
    ++result.point;
    return result;
}

std::string layOutWithExponent(const Decimal& decimal) {
    std::string result = decimal.digits.substr(0, 1);
    if (decimal.digits.size() > 1) {
        result += "." + decimal.digits.substr(1);
    }
    const int exponent = decimal.point - 1;
    return result + (exponent < 0 ? "e" : "e+") + std::to_string(exponent);
}

std::string layOut(const Decimal& decimal) {
    const auto count = static_cast<int>(decimal.digits.size());
    if (decimal.point < -5 || decimal.point > 21) {
        return layOutWithExponent(decimal);
    }
    if (decimal.point <= 0) {
        return "0." + std::string(static_cast<std::size_t>(-decimal.point), '0') + decimal.digits;
    }
    if (decimal.point >= count) {
        return decimal.digits + std::string(static_cast<std::size_t>(decimal.point - count), '0');
    }
    std::string result = decimal.digits;
    return result.insert(static_cast<std::size_t>(decimal.point), 1, '.');
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
