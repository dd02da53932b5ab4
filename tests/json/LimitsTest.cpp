#include "../support/Environment.h"
#include "../support/Memory.h"

#include <gtest/gtest.h>
#include <libStencilorJson/JsonValue.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kel::Stencilor {
namespace {

constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32;

// Takes long: the preset "exhaustive" has STENCILOR_SIZE at 100.
TEST(JsonLimits, AreThoseOfContextsOnly) {
    if (support::numberFromEnvironment("STENCILOR_SIZE", 10) < 100 || !support::hasMemory(10)) {
        GTEST_SKIP() << "takes ten gigabytes of memory, and time to fill them";
    }
    std::string text(fourGiB + 4, 'x');
    text.front() = text[fourGiB + 1] = '"';
    text[fourGiB + 2] = ' ';
    const std::string_view value = std::string_view(text).substr(0, fourGiB + 2);
    EXPECT_THROW(contextFromJsonText(value, JsonRoot::Any), std::length_error);
    try {
        parseJson(text, JsonRoot::Any);
        ADD_FAILURE() << "it was accepted";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.column(), fourGiB + 4);
    }
}

} // namespace
} // namespace kel::Stencilor
