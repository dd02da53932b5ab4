#include "../support/Environment.h"
#include "../support/Test.h"
#include "../support/oracles/Random.h"

#include <libStencilor/Value.h>
#include <libStencilor/value/scientific_text.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace kel::Stencilor {
namespace {

TEST(FloatingPoint, IsWrittenAsJavaScriptDoes) {
    const struct {
        double number;
        const char* expected;
    } cases[] = {
        {0.0, "0"},
        {-0.0, "0"},
        {1.0, "1"},
        {-1.5, "-1.5"},
        {0.1, "0.1"},
        {1.0 / 3, "0.3333333333333333"},
        {100.0, "100"},
        {123456.789, "123456.789"},
        {1e6, "1000000"},
        {0.001, "0.001"},
        {1e-6, "0.000001"},
        {1.5e-6, "0.0000015"},
        {9.99e-7, "9.99e-7"},
        {1e-7, "1e-7"},
        {-1.25e-7, "-1.25e-7"},
        {1e20, "100000000000000000000"},
        {999999999999999900000.0, "999999999999999900000"},
        {123456789012345680000.0, "123456789012345680000"},
        {1e21, "1e+21"},
        {-1.5e21, "-1.5e+21"},
        {1e22, "1e+22"},
        {1e23, "1e+23"},
        {9007199254740993.0, "9007199254740992"},
        {4294967296.0, "4294967296"},
        {5e-324, "5e-324"},
        {2.2250738585072014e-308, "2.2250738585072014e-308"},
        {1.7976931348623157e308, "1.7976931348623157e+308"},
    };
    for (const auto& [number, expected] : cases) {
        EXPECT_EQ(Value(number).text(), expected);
    }
}

TEST(FloatingPoint, OfOneWidthHasItsOwnShortestDigits) {
    EXPECT_EQ(Value(0.1f).text(), "0.1");
    EXPECT_EQ(Value(static_cast<double>(0.1f)).text(), "0.10000000149011612");
    EXPECT_EQ(Value(16777216.0f).text(), "16777216");
    EXPECT_EQ(Value(3.4028235e38f).text(), "3.4028235e+38");
    EXPECT_EQ(Value(1e-45f).text(), "1e-45");
    EXPECT_EQ(Value(-0.0f).text(), "0");
    EXPECT_EQ(Value(0.1L).text(), "0.1");
    EXPECT_EQ(Value(-0.0L).text(), "0");
}

template <typename Number>
void expectRefusalOfWhatIsNotFinite() {
    const Number infinite = std::numeric_limits<Number>::infinity();
    EXPECT_THROW(Value{infinite}, std::invalid_argument);
    EXPECT_THROW(Value{-infinite}, std::invalid_argument);
    EXPECT_THROW(Value{std::numeric_limits<Number>::quiet_NaN()}, std::invalid_argument);
}

TEST(FloatingPoint, IsRejectedIfItIsNotFinite) {
    expectRefusalOfWhatIsNotFinite<float>();
    expectRefusalOfWhatIsNotFinite<double>();
    expectRefusalOfWhatIsNotFinite<long double>();
    if (std::numeric_limits<long double>::max() > std::numeric_limits<double>::max()) {
        EXPECT_THROW(Value{std::numeric_limits<long double>::max()}, std::invalid_argument);
    }
}

/// Reads a number exactly, which the C library on Windows and some C++ libraries cannot do.
template <typename Number>
Number read(const std::string& text) {
#ifdef _WIN32
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
#else
    return sizeof(Number) == sizeof(float)
               ? std::strtof(text.c_str(), nullptr)
               : static_cast<Number>(std::strtod(text.c_str(), nullptr));
#endif
}

/// The rule in other words: the fewest digits from `printf` that read back as the number.
std::string obviousText(double number) {
    char written[64];
    int precision = 0;
    do {
        std::snprintf(written, sizeof(written), "%.*e", precision++, std::abs(number));
    } while (read<double>(written) != std::abs(number));
    const std::string text = written;
    const int exponent = std::stoi(text.substr(text.find('e') + 1));
    std::string digits = text.substr(0, text.find('e'));
    if (digits.size() > 1) {
        digits.erase(1, 1); // the point
    }
    const std::string sign = number < 0 ? "-" : "";
    if (exponent < -6 || exponent >= 21) {
        const std::string fraction = digits.size() > 1 ? "." + digits.substr(1) : "";
        return sign + digits[0] + fraction + "e" + (exponent < 0 ? "" : "+") +
               std::to_string(exponent);
    }
    for (int i = 0; i > exponent; --i) {
        digits.insert(0, "0");
    }
    while (static_cast<int>(digits.size()) <= exponent) {
        digits += "0";
    }
    const std::size_t whole = exponent < 0 ? 1 : static_cast<std::size_t>(exponent) + 1;
    return sign + digits.substr(0, whole) +
           (digits.size() > whole ? "." + digits.substr(whole) : "");
}

TEST(FloatingPoint, FollowsTheRuleForRandomNumbers) {
    support::Random random(1);
    const int count = support::thorough() ? 20'000 : 2'000;
    for (int i = 0; i < count; ++i) {
        const std::uint64_t bits = random.below(std::numeric_limits<std::uint64_t>::max());
        const auto any = std::bit_cast<double>(bits);
        // Of any size, and of common sizes.
        for (const double number : {any, std::ldexp(static_cast<double>(bits >> 11), -60),
                                    static_cast<double>(random.below(1'000'000'000)) / 1000}) {
            if (std::isfinite(number) && number != 0) {
                const std::string text = Value(number).text().str();
                EXPECT_EQ(text, obviousText(number));
                EXPECT_EQ(read<double>(text), number);
            }
        }
    }
}

// There, the digits of `printf` are not always the fewest, because the next lower number is closer.
TEST(FloatingPoint, ReadsBackAtPowersOfTwo) {
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        const double number = std::ldexp(1.0, exponent);
        const std::string text = Value(number).text().str();
        EXPECT_EQ(read<double>(text), number);
        EXPECT_LE(text.size(), obviousText(number).size());
    }
}

TEST(FloatingPoint, OfOneWidthReadsBack) {
    support::Random random(2);
    for (int i = 0; i < 20'000; ++i) {
        const auto number =
            std::bit_cast<float>(static_cast<std::uint32_t>(random.below(1ull << 32)));
        if (std::isfinite(number)) {
            const std::string text = Value(number).text().str();
            EXPECT_EQ(read<float>(text), number);
            EXPECT_LE(text.size(), Value(static_cast<double>(number)).text().size());
        }
    }
}

// As where the standard library has no function for it.
TEST(FloatingPoint, HasTheSameDigitsByTrial) {
    support::Random random(3);
    for (int i = 0; i < 20'000; ++i) {
        const auto number = std::bit_cast<double>(
            static_cast<std::uint64_t>(random.below(std::numeric_limits<std::int64_t>::max())));
        if (std::isfinite(number)) {
            char text[64];
            const std::string tried(text,
                                    internal::writeScientificByTrial(text, text + 64, number));
            EXPECT_EQ(tried, std::string(text, internal::writeScientific(text, text + 64, number)));
        }
    }
}

} // namespace
} // namespace kel::Stencilor
