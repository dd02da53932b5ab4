#include "../support/LogRecorder.h"
#include "../support/TemporaryFolder.h"
#include "Rendering.h"

#include <libStencilor/Stencilor.h>

namespace support {
namespace {

using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

TEST(Template, RendersAnyNumberOfTimes) {
    const Template made("{% for x in l %}{{ x.value }},{% endfor %}{{ t }}");
    EXPECT_EQ(made.render({{"l", Value::list({1, 2})}, {"t", "a"}}).text, "1,2,a");
    EXPECT_EQ(made.render({{"l", Value::list({3})}, {"t", "b"}}).text, "3,b");
    const Context context({{"l", Value::list({})}, {"t", "c"}});
    EXPECT_EQ(made.render(context).text, "c");
    EXPECT_EQ(made.render(context).text, "c");
}

TEST(Template, IsRenderedWithAContextAValueOrBraces) {
    const Template made("[{{ t }}]");
    const Value value{{"t", "v"}};
    const Context context(value);
    std::string joined;
    const auto write = [&joined](std::string_view piece) { joined += piece; };
    EXPECT_EQ(made.render(context).text, "[v]");
    EXPECT_EQ(made.render(value).text, "[v]");
    EXPECT_EQ(made.render({{"t", "v"}}).text, "[v]");
    EXPECT_EQ(made.render({}).text, "[]");
    made.renderTo(context, write);
    made.renderTo(value, write);
    made.renderTo({{"t", "v"}}, write);
    made.renderTo({}, write);
    EXPECT_EQ(joined, "[v][v][v][]");
    MemoryTemplates source;
    source.add("t", "[{{ t }}]");
    const RenderOptions options{.source = &source};
    EXPECT_EQ(kel::Stencilor::renderFile("t", context, options).text, "[v]");
    EXPECT_EQ(kel::Stencilor::renderFile("t", value, options).text, "[v]");
    EXPECT_EQ(kel::Stencilor::renderFile("t", {{"t", "v"}}, options).text, "[v]");
    EXPECT_EQ(kel::Stencilor::renderFile("t", {}, options).text, "[]");
}

TEST(Template, ReportsThatItIsWellFormed) {
    const Template made("a{{ b }}", "name");
    EXPECT_TRUE(made.isWellFormed());
    EXPECT_FALSE(made.fault().isPresent());
    EXPECT_EQ(made.name(), "name");
    EXPECT_EQ(made.text(), "a{{ b }}");
    EXPECT_EQ(Template("").name(), "");
    EXPECT_EQ(Template("").render({}).status, RenderStatus::Complete);
}

TEST(Template, EndsAtItsFirstNulAndKeepsItsText) {
    const kel::String text("a{{ b }}c\0{{ d", 14);
    const Template made(text);
    EXPECT_TRUE(made.isWellFormed());
    EXPECT_EQ(made.text(), text);
    EXPECT_EQ(made.text().size(), 14u);
    EXPECT_EQ(made.render({{"b", "B"}}).text, "aBc");
    EXPECT_TRUE(Template(kel::String("\0{{", 3)).isWellFormed());
    EXPECT_EQ(Template(kel::String("\0{{", 3)).render({}).text, "");
    EXPECT_FALSE(Template(kel::String("{{\0}}", 5)).isWellFormed());
}

TEST(Template, SharesEverythingWithItsCopies) {
    std::optional<Template> original(std::in_place, "a{{ b }}{{ gone }}", "name");
    const Template copy = *original;
    EXPECT_EQ(copy.text().view().data(), original->text().view().data());
    original.reset();
    EXPECT_EQ(copy.name(), "name");
    EXPECT_EQ(copy.render({{"b", "B"}}).text, "aB");
    ASSERT_THAT(copy.render({}).messages, SizeIs(2));
    EXPECT_EQ(copy.render({}).messages[1].name, "gone");
}

TEST(Template, CanAlwaysBeAssigned) {
    Template first("first");
    Template second("{{ rejected");
    Template taken = std::move(first);
    EXPECT_EQ(taken.render({}).text, "first");
    first = second; // it was moved from
    EXPECT_FALSE(first.isWellFormed());
    second = std::move(taken);
    EXPECT_EQ(second.render({}).text, "first");
    taken = Template("third");
    EXPECT_EQ(taken.render({}).text, "third");
    Template& same = taken;
    taken = same;
    EXPECT_EQ(taken.render({}).text, "third");
    const Template destroyed = std::move(second); // and the rest is destroyed
}

TEST(Template, PropagatesExceptionsOfTheContext) {
    EXPECT_THROW(Template("").render(Value("no dictionary")), std::invalid_argument);
    EXPECT_THROW(Template("").renderTo(Value::list({}), [](std::string_view) {}),
                 std::invalid_argument);
}

class TemplateLog : public testing::Test {
  protected:
    TemplateLog() {
        folder_.writeFile("part", "{{ gone }}{% if yes %}{{ text }}{% endif %}");
        folder_.writeFile("rejected", "{{");
    }

    const TemporaryFolder folder_;
    const WorkingFolder working_{folder_.path()};
    const Context context_{{{"yes", true}, {"text", "t"}, {"list", Value::list({1, 2})}}};
};

const char* const loggedInputs[] = {
    "",
    "a",
    "{{",
    "{{ text }}{{ gone }}",
    "{% for x in list %}{{ x.value }}{% include \"part\" %}{% endfor %}",
    "{% if yes %}{% if yes %}{% for x in list %}{% endfor %}{% else %}{% endif %}{% endif %}",
    "{% include \"gone\" %}{% include \"rejected\" %}{% include \"part\" %}",
};

TEST_F(TemplateLog, HasTheTracesOfBuildOutputAndNoMessages) {
    for (const char* const input : loggedInputs) {
        SCOPED_TRACE(input);
        const Template made(input);
        LogRecorder recorder(kel::LoggerPriority::PRIORITY_TRACE);
        kel::Stencilor::buildOutput(input, context_);
        std::vector<std::string> expected = recorder.takeLines();
        std::erase_if(expected, [](const std::string& line) {
            return line.find("> ") == line.npos && line.find("< ") == line.npos;
        });
        EXPECT_THAT(expected, Not(IsEmpty()));
        made.render(context_);
        EXPECT_EQ(recorder.takeLines(), expected);
        made.renderTo(context_, [](std::string_view) {});
        EXPECT_EQ(recorder.takeLines(), expected);
    }
}

TEST_F(TemplateLog, ClosesEveryScopeIfALimitEndsTheRender) {
    const Template made(loggedInputs[4]);
    for (std::uint64_t limit = 1; limit <= made.render(context_).usage.steps; ++limit) {
        LogRecorder recorder(kel::LoggerPriority::PRIORITY_TRACE);
        made.render(context_, {.limits = {.steps = limit}});
        std::vector<std::string> open;
        for (const std::string& line : recorder.takeLines()) {
            const std::size_t at = line.find_first_not_of(' ');
            if (line[at] == '>') {
                open.push_back(line.substr(0, at) + line.substr(at + 1));
            } else {
                ASSERT_FALSE(open.empty());
                EXPECT_EQ(open.back(), line.substr(0, at) + line.substr(at + 1));
                open.pop_back();
            }
        }
        EXPECT_THAT(open, IsEmpty());
    }
}

} // namespace
} // namespace support
