#include "../support/Build.h"
#include "../support/SmallStackThread.h"
#include "Rendering.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace support {
namespace {

using testing::SizeIs;

constexpr std::size_t stackSize = 256 * 1024;
constexpr std::uint64_t stepLimit = slow ? 100'000 : 1'000'000;

/// Parses and renders in a thread that has a small stack.
RenderResult renderWithSmallStack(const std::string& text, const Value& values,
                                  const RenderOptions& options) {
    RenderResult result;
    runWithStack(stackSize, [&] {
        const Template made(text, "page");
        result = made.render(values, options);
    });
    return result;
}

std::string include(const std::string& path) {
    return "{% include \"" + path + "\" %}";
}

void expectStepLimit(const RenderResult& result) {
    EXPECT_EQ(result.status, RenderStatus::StepLimit);
    EXPECT_EQ(result.usage.steps, stepLimit);
    EXPECT_TRUE(result.text.empty());
}

TEST(HostileTemplates, ThatIncludeThemselvesEndAtTheDepthLimit) {
    MemoryTemplates source;
    source.add("self", "a" + include("self"));
    const RenderResult result = renderWithSmallStack(include("self"), {}, {.source = &source});
    EXPECT_EQ(result.status, RenderStatus::DepthLimit);
    EXPECT_EQ(result.usage.includeDepth, 100u);
    ASSERT_THAT(result.messages, SizeIs(1));
    EXPECT_THAT(result.messages[0].includedFrom, SizeIs(100));
}

TEST(HostileTemplates, ThatIncludeTheNextTwiceEndAtTheStepLimit) {
    MemoryTemplates source;
    for (int file = 0; file < 40; ++file) {
        const std::string next = include("f" + std::to_string(file + 1));
        source.add("f" + std::to_string(file), next + next);
    }
    source.add("f40", "");
    const RenderResult result = renderWithSmallStack(
        include("f0"), {}, {.source = &source, .limits = {.steps = stepLimit}});
    expectStepLimit(result);
    EXPECT_EQ(result.usage.includeDepth, 41u);
}

TEST(HostileTemplates, ThatNestLoopsOverThousandsEndAtTheStepLimit) {
    std::string text;
    for (int loop = 0; loop < 8; ++loop) {
        text += "{% for x in many %}";
    }
    text += "{{ many.gone }}";
    for (int loop = 0; loop < 8; ++loop) {
        text += "{% endfor %}";
    }
    const RenderResult result =
        renderWithSmallStack(text, {{"many", listOfNulls(1000)}}, {.limits = {.steps = stepLimit}});
    expectStepLimit(result);
    EXPECT_THAT(result.messages, SizeIs(1001)) << "those that are kept, and the limit";
}

TEST(HostileTemplates, ThatMissManyNamesKeepFewMessages) {
    constexpr std::size_t count = slow ? 100'000 : 1'000'000;
    const RenderResult result = renderWithSmallStack("{% for x in many %}{{ gone }}{% endfor %}",
                                                     {{"many", listOfNulls(count)}}, {});
    EXPECT_EQ(result.status, RenderStatus::Complete);
    EXPECT_THAT(result.messages, SizeIs(1000));
    EXPECT_EQ(result.usage.messages, count);
}

TEST(HostileTemplates, ThatNestThousandsOfLoopsRenderOrEnd) {
    constexpr int depth = 40'000;
    std::string text;
    for (int loop = 0; loop < depth; ++loop) {
        text += "{% for x in list %}";
    }
    text += "{{ x.gone }}";
    for (int loop = 0; loop < depth; ++loop) {
        text += "{% endfor %}";
    }
    const RenderOptions options{.limits = {.steps = stepLimit}};
    const RenderResult once = renderWithSmallStack(text, {{"list", listOfNulls(1)}}, options);
    EXPECT_EQ(once.status, RenderStatus::Complete);
    EXPECT_EQ(once.usage.messages, 1u);
    const Value rows{{"list", Value::list({{{"a", 1}}, {{"a", 2}}})}};
    expectStepLimit(renderWithSmallStack(text, rows, options));
}

/// A name of so many dots inside loops whose variables it begins with.
std::string longNames(std::size_t dots, std::size_t loops) {
    std::string text;
    std::string variable = "a";
    for (std::size_t loop = 0; loop < loops; ++loop, variable += ".a") {
        text += "{% for " + variable + " in list %}";
    }
    std::string name = "a";
    for (std::size_t dot = 0; dot < dots; ++dot) {
        name += ".a";
    }
    text += "{{ " + name + " }}";
    for (std::size_t loop = 0; loop < loops; ++loop) {
        text += "{% endfor %}";
    }
    return text;
}

TEST(HostileTemplates, ThatTryLongNamesInManyWaysEndAtTheStepLimit) {
    for (const std::size_t loops : {1u, 30u, 300u}) {
        SCOPED_TRACE(loops);
        const std::string text = longNames(30'000, loops);
        const RenderResult once = renderWithSmallStack(text, {{"list", listOfNulls(1)}}, {});
        EXPECT_EQ(once.status, RenderStatus::Complete);
        EXPECT_EQ(once.usage.messages, 1u);
        const RenderOptions options{.limits = {.steps = stepLimit}};
        const Value rows{{"list", Value::list({{{"b", 1}}, {{"b", 2}}, nullptr})}};
        const RenderResult many = renderWithSmallStack(text, rows, options);
        EXPECT_EQ(many.status, loops == 1 ? RenderStatus::Complete : RenderStatus::StepLimit);
    }
}

TEST(HostileTemplates, ThatIncludeEachOtherFromBlocksNeedLittleStack) {
    const std::string name = "x." + std::string(1000, 'n');
    MemoryTemplates source;
    for (int file = 0; file < 100; ++file) {
        source.add("f" + std::to_string(file),
                   "{% if yes %}{% for x in one %}{% if yes %}{% for y in one %}{{ " + name +
                       " }}{{ t }}" + include("f" + std::to_string(file + 1)) +
                       "{% endfor %}{% endif %}{% endfor %}{% endif %}\xFF");
    }
    const Value values{{"yes", true}, {"one", Value::list({{{"t", "<\xE2\x82"}}})}};
    const RenderOptions options{
        .escape = Escape([](std::string_view value, std::string& out) { out = value; }),
        .source = &source,
        .keepGoing = [] { return true; }};
    const RenderResult result = renderWithSmallStack(include("f0"), values, options);
    EXPECT_EQ(result.status, RenderStatus::Complete);
    EXPECT_EQ(result.usage.includeDepth, 100u);
    EXPECT_EQ(result.usage.messages, 101u);
    std::string joined;
    runWithStack(stackSize, [&] {
        Template(include("f0"))
            .renderTo(
                values, [&joined](std::string_view piece) { joined += piece; }, options);
    });
    EXPECT_EQ(joined, result.text.str());
}

} // namespace
} // namespace support
