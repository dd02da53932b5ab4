#include "../support/Test.h"
#include "../support/oracles/Random.h"

#include <libKel/String.h>
#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/ShownText.h>

namespace kel::Stencilor::Analysis {
namespace {

/// Bytes that begin, continue and break off sequences.
std::string randomBytes(support::Random& random) {
    static constexpr std::string_view bytes = "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0"
                                              "\xE1\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    std::string text;
    for (std::size_t size = random.below(12); size > 0; --size) {
        text += bytes[random.below(bytes.size())];
    }
    return text;
}

std::string repaired(const std::string& text) {
    kel::String result;
    result.UTF8Decode(text.data(), static_cast<unsigned int>(text.size()), false);
    return result.str();
}

// The engine's output and the displayed text agree on malformed bytes.
TEST(CodePoint, IsReplacedAsByTheEngine) {
    support::Random random(1);
    for (int turn = 0; turn < 20'000 && !testing::Test::HasFailure(); ++turn) {
        const std::string text = randomBytes(random);
        const std::string expected = repaired(text);
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(countCodePoints(text), countCodePoints(expected));
        EXPECT_EQ(showText(text), showText(expected));
        EXPECT_EQ(repaired(showText(text)), showText(text));
    }
}

TEST(CodePoint, HasItsValueAndItsSize) {
    const struct {
        std::string_view text;
        char32_t value;
    } cases[] = {
        {"a", U'a'}, {"\u00E9", U'\u00E9'}, {"\u20AC", U'\u20AC'}, {"\U0001F600", U'\U0001F600'}};
    for (const auto& [text, value] : cases) {
        const CodePoint point = firstCodePoint(std::string(text) + "b");
        EXPECT_EQ(point.value, value);
        EXPECT_EQ(point.size, text.size());
    }
}

} // namespace
} // namespace kel::Stencilor::Analysis
