#include "../support/FailingAllocation.h"
#include "../support/SmallStackThread.h"
#include "../support/TemporaryFolder.h"
#include "Rendering.h"

#include <ctime>
#include <initializer_list>

namespace support {
namespace {

using kel::Stencilor::FileTemplates;
using testing::SizeIs;

constexpr std::size_t stackSize = 256 * 1024;
constexpr std::uint64_t stepLimit = 100'000;

/// The memory that a render may use: in proportion to its templates, its output, and its messages
/// with the includes around them. All of these have limits.
std::size_t memoryFor(const std::string& text, const RenderResult& result) {
    const std::size_t perMessage = 512 + 64 * result.usage.includeDepth;
    return 64 * 1024 + 16 * (text.size() + result.usage.templateBytes) +
           4 * result.usage.outputBytes + perMessage * result.messages.size();
}

/// Parses and renders in a thread with a small stack, within the allowed memory.
RenderResult renderWithSmallStack(const std::string& text, const Value& values,
                                  const RenderOptions& options) {
    const Context context(values);
    RenderResult result;
    runWithStack(stackSize, [&] {
        const AllocatedMemory memory;
        const Template made(text, "page");
        result = made.render(context, options);
        EXPECT_LE(memory.most(), memoryFor(text, result));
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

TEST(HostileTemplates, ThatRenderLongTextsEndAtTheOutputLimit) {
    const std::string text = "{% for x in many %}{% for y in many %}" + std::string(1000, 't') +
                             "{{ v }}{% endfor %}{% endfor %}";
    const Value values{{"many", listOfNulls(1000)}, {"v", std::string(1000, '<')}};
    const RenderOptions options{.escape = Escape::html(), .limits = {.outputBytes = 1'000'000}};
    const RenderResult result = renderWithSmallStack(text, values, options);
    EXPECT_EQ(result.status, RenderStatus::OutputLimit);
    EXPECT_EQ(result.usage.outputBytes, 1'000'000u);
}

TEST(HostileTemplates, ThatMissManyNamesKeepFewMessages) {
    constexpr std::size_t count = 100'000;
    const Value values{{"many", listOfNulls(count)}};
    for (const std::string& name : {std::string("gone"), "x." + std::string(10'000, 'n')}) {
        const RenderResult result =
            renderWithSmallStack("{% for x in many %}{{ " + name + " }}{% endfor %}", values, {});
        EXPECT_EQ(result.status, RenderStatus::Complete);
        EXPECT_THAT(result.messages, SizeIs(1000));
        EXPECT_EQ(result.usage.messages, count);
    }
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

/// A name with many dots, inside loops whose variables are its prefixes.
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
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    const std::string name = "x." + std::string(1000, 'n');
    MemoryTemplates inMemory;
    for (int file = 0; file < 100; ++file) {
        const std::string path = "f" + std::to_string(file);
        const std::string text = "{% if yes %}{% for x in one %}{% if yes %}{% for y in one %}{{ " +
                                 name + " }}{{ t }}" + include("f" + std::to_string(file + 1)) +
                                 "{% endfor %}{% endif %}{% endfor %}{% endif %}\xFF";
        folder.writeFile(path, text);
        inMemory.add(kel::String(path), text);
    }
    FileTemplates inFolder(folder.path());
    const Value values{{"yes", true}, {"one", Value::list({{{"t", "<\xE2\x82"}}})}};
    for (TemplateSource* const source :
         std::initializer_list<TemplateSource*>{&inMemory, &inFolder, nullptr}) {
        const RenderOptions options{
            .escape = Escape([](std::string_view value, std::string& out) { out = value; }),
            .source = source,
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
}

/// The processor time of a render that repeatedly includes an empty template.
double secondsToInclude(const std::string& path) {
    MemoryTemplates source;
    source.add(path, "");
    const Template made("{% for x in many %}" + include(path) + "{% endfor %}");
    const Context context(Value{{"many", listOfNulls(100'000)}});
    const std::clock_t start = std::clock();
    EXPECT_EQ(made.render(context, {.source = &source}).status, RenderStatus::Complete);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(HostileTemplates, ThatIncludeALongPathAreNotSlower) {
    EXPECT_LE(secondsToInclude(std::string(200'000, 'p')), 10 * secondsToInclude("p") + 0.2);
}

/// A source that parses templates on request.
class ParsedOnDemand : public TemplateSource {
  public:
    explicit ParsedOnDemand(std::string text) : text_(std::move(text)) {}

    Answer find(const kel::String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override {
        if (text_.size() > maxBytes) {
            return Answer::TooLarge;
        }
        found.emplace(text_, path);
        return Answer::Found;
    }

  private:
    const std::string text_;
};

TEST(HostileTemplates, ThatIncludeManyOthersEndAtTheTemplateLimit) {
    std::string text;
    for (int file = 0; file < 1000; ++file) {
        text += include("f" + std::to_string(file));
    }
    std::string loops;
    for (int loop = 0; loop < 500; ++loop) {
        loops += "{% for x in list %}{{ x.gone }}{% endfor %}";
    }
    ParsedOnDemand source(loops);
    const std::uint64_t limit = 10 * loops.size();
    const RenderResult result =
        renderWithSmallStack(text, {}, {.source = &source, .limits = {.templateBytes = limit}});
    EXPECT_EQ(result.status, RenderStatus::TemplateLimit);
    EXPECT_EQ(result.usage.templateBytes, limit);
}

} // namespace
} // namespace support
