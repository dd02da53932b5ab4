#include "../support/Environment.h"
#include "../support/Memory.h"
#include "../support/Test.h"

#include <libStencilorJson/JsonText.h>

namespace kel::Stencilor {
namespace {

constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32;

// Slow; the preset "exhaustive" sets STENCILOR_SIZE to 100.
TEST(JsonLimits, AreThoseOfValuesOnly) {
    if (support::numberFromEnvironment("STENCILOR_SIZE", 10) < 100 || !support::hasMemory(10)) {
        GTEST_SKIP() << "takes ten gigabytes of memory, and time to fill them";
    }
    std::string text(fourGiB + 2, 'x');
    text.front() = text.back() = '"';
    EXPECT_THROW(valueFromJsonText(text), std::length_error);
    text.assign(fourGiB, ' ');
    text += "[1]x";
    try {
        valueFromJsonText(text);
        ADD_FAILURE() << "it was accepted";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.column(), fourGiB + 4);
    }
}

} // namespace
} // namespace kel::Stencilor
