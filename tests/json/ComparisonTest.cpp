#include "../support/Environment.h"
#include "../support/Test.h"
#include "../support/oracles/JsonComparison.h"
#include "../support/oracles/RandomJson.h"

namespace support {
namespace {

TEST(JsonReader, AgreesWithAnotherReaderOnRandomTexts) {
    const std::uint64_t texts = numberFromEnvironment("STENCILOR_CASES", 10'000);
    Random random(11);
    std::uint64_t accepted = 0;
    for (std::uint64_t i = 0; i < texts && !testing::Test::HasFailure(); ++i) {
        std::string text = randomJson(random);
        for (std::uint64_t mutations = i % 3; mutations > 0; --mutations) {
            text = mutatedJson(random, std::move(text));
        }
        const JsonComparison result = compareJsonReaders(text);
        accepted += result.accepted ? 1 : 0;
        EXPECT_EQ(result.difference, "") << text;
    }
    EXPECT_GT(accepted, texts / 3);
    EXPECT_LT(accepted, texts * 2 / 3);
}

TEST(JsonReader, AgreesWithAnotherReaderOnAllShortTexts) {
    constexpr std::string_view characters = "[]{}\",:\\u-0e.1 n\xC3\xA9";
    std::string text;
    const auto tryAll = [&](const auto& self, int left) -> void {
        EXPECT_EQ(compareJsonReaders(text).difference, "") << text;
        for (std::size_t i = 0; left > 0 && i < characters.size(); ++i) {
            text += characters[i];
            self(self, left - 1);
            text.pop_back();
        }
    };
    tryAll(tryAll, thorough() ? 4 : 3);
}

} // namespace
} // namespace support
