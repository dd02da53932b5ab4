#include "../support/PrescribedMessages.h"
#include "../support/TemporaryFolder.h"
#include "Rendering.h"

#include <libStencilor/Stencilor.h>

namespace support {
namespace {

using Kind = RenderMessage::Kind;
using kel::Stencilor::SyntaxExpectation;
using testing::IsEmpty;
using testing::SizeIs;

/// A value of each kind, and a null entry.
const Value& values() {
    static const Value instance{
        {"text", "t"}, {"yes", true}, {"list", Value::list({1, 2})}, {"row", {{"text", "r"}}}};
    return instance;
}

/// A source with one template for each answer.
class Answers : public MemoryTemplates {
  public:
    Answers() {
        add("rejected", "ok\n\u00E9 {{ }}");
        add("faulty", "\n  {{ gone }}");
    }

    Answer find(const kel::String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override {
        return path == "bad" ? Answer::Unreadable : MemoryTemplates::find(path, maxBytes, found);
    }
};

TEST(Messages, HaveAKindANameAndALocation) {
    const struct {
        const char* name;
        const char* input;
        Kind kind;
        const char* nameInTag;
        unsigned int begin;
        unsigned int line;
        unsigned int column;
        const char* english;
    } cases[] = {
        {"a substitution without a value", "{{ gone }}", Kind::ReplacementNotFound, "gone", 3, 1, 4,
         "there is no value named \"gone\""},
        {"a substitution that is a list", "a\nb{{list}}", Kind::ReplacementNotString, "list", 5, 2,
         4, "the value \"list\" is not a string"},
        {"a condition without a value", "\n\n{% if a.b %}{% endif %}", Kind::BooleanNotFound, "a.b",
         8, 3, 7, "there is no boolean named \"a.b\""},
        {"a condition that is a string", "\u00E9{% if text %}{% endif %}", Kind::NotBoolean, "text",
         8, 1, 8, "the value \"text\" is not a boolean"},
        {"a loop without a list", "\u20AC\r\U0001F4DA{% for x in gone %}{% endfor %}",
         Kind::ListNotFound, "gone", 20, 1, 16, "there is no list named \"gone\""},
        {"a loop over a string", "\r\n\t{% for x in text %}{% endfor %}", Kind::NotIterable, "text",
         15, 2, 14, "the value \"text\" is not a list"},
        {"an include without a template", "{% include \"gone\" %}", Kind::FileNotFound, "gone", 12,
         1, 13, "there is no template \"gone\""},
        {"an include that cannot be read", "{% include \"bad\" %}", Kind::FileNotLoaded, "bad", 12,
         1, 13, "the template \"bad\" cannot be read"},
        {"malformed bytes before it", "\xFF\x80\xC3{{ gone }}", Kind::ReplacementNotFound, "gone",
         6, 1, 6, "there is no value named \"gone\""},
    };
    Answers source;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const RenderResult result =
            Template(row.input, "page").render(values(), {.source = &source});
        EXPECT_EQ(result.status, RenderStatus::Complete);
        ASSERT_THAT(result.messages, SizeIs(1));
        const RenderMessage& message = result.messages[0];
        EXPECT_EQ(message.kind, row.kind);
        EXPECT_EQ(message.name, row.nameInTag);
        EXPECT_EQ(message.templateName, "page");
        EXPECT_EQ(message.range.begin, row.begin);
        EXPECT_EQ(textIn(row.input, message.range), row.nameInTag);
        EXPECT_EQ(message.line, row.line);
        EXPECT_EQ(message.column, row.column);
        EXPECT_EQ(message.text(), row.english);
        EXPECT_FALSE(message.fault.isPresent());
        EXPECT_THAT(message.includedFrom, IsEmpty());
    }
}

TEST(Messages, CorrespondToThoseOfBuildOutput) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeSparseFile("bad", 4ull << 30);
    folder.writeFile("rejected", "{{ }}");
    folder.writeFile("faulty", "{{ gone }}");
    const char* const inputs[] = {
        "{{ gone }}",
        "{{ list }}",
        "{% if gone %}{% endif %}",
        "{% if text %}{% endif %}",
        "{% for x in gone %}{% endfor %}",
        "{% for x in yes %}{% endfor %}",
        "{% include \"gone\" %}",
        "{% include \"bad\" %}",
        "{% include \"rejected\" %}",
        "{% include \"faulty\" %}",
        "a{{",
        "{{ gone }}{% for x in list %}{{ x.gone }}{% include \"gone\" %}{% endfor %}{{ yes }}",
    };
    const Context context(values());
    std::string together;
    for (const char* const input : inputs) {
        SCOPED_TRACE(input);
        kel::String errors;
        const kel::String text = kel::Stencilor::buildOutput(input, context, errors);
        const RenderResult result = Template(input).render(context);
        EXPECT_EQ(result.text, text);
        EXPECT_EQ(prescribedText(result), errors.str());
        together += errors.str();
    }
    for (const PrescribedMessage& row : prescribedMessages) {
        EXPECT_NE(together.find(row.before), std::string::npos) << row.before;
    }
}

TEST(Messages, OfATemplateThatIsNotWellFormedHaveItsFault) {
    const Template made("ok\n\u00E9 {{ }}", "page");
    EXPECT_FALSE(made.isWellFormed());
    EXPECT_EQ(made.fault().expected, SyntaxExpectation::SubstitutionName);
    const RenderResult result = made.render({});
    EXPECT_EQ(result.status, RenderStatus::Rejected);
    EXPECT_TRUE(result.text.empty());
    EXPECT_EQ(result.usage.steps, 0u);
    EXPECT_EQ(result.usage.messages, 1u);
    ASSERT_THAT(result.messages, SizeIs(1));
    const RenderMessage& message = result.messages[0];
    EXPECT_EQ(message.kind, Kind::TemplateRejected);
    EXPECT_EQ(message.name, "");
    EXPECT_EQ(message.templateName, "page");
    EXPECT_EQ(message.range.begin, made.fault().offset);
    EXPECT_TRUE(message.range.isEmpty());
    EXPECT_EQ(message.line, 2u);
    EXPECT_EQ(message.column, made.fault().offset - 3); // line 2, and a code point of two bytes
    EXPECT_EQ(message.fault.expected, SyntaxExpectation::SubstitutionName);
    EXPECT_EQ(message.fault.offset, made.fault().offset);
    EXPECT_EQ(message.text(), std::string("the template is not well formed: expected ") +
                                  kel::Stencilor::describe(SyntaxExpectation::SubstitutionName));
}

TEST(Messages, OfAnIncludeThatIsNotWellFormedHaveItsFaultAndTheInclude) {
    Answers source;
    const RenderResult result =
        Template("a\n{% include \"rejected\" %}b", "page").render(values(), {.source = &source});
    EXPECT_EQ(result.status, RenderStatus::Complete);
    EXPECT_EQ(result.text, "a\nb");
    ASSERT_THAT(result.messages, SizeIs(1));
    const RenderMessage& message = result.messages[0];
    EXPECT_EQ(message.kind, Kind::TemplateRejected);
    EXPECT_EQ(message.templateName, "rejected");
    EXPECT_EQ(message.line, 2u);
    EXPECT_EQ(message.fault.expected, SyntaxExpectation::SubstitutionName);
    ASSERT_THAT(message.includedFrom, SizeIs(1));
    EXPECT_EQ(message.includedFrom[0].templateName, "page");
    EXPECT_EQ(message.includedFrom[0].line, 2u);
    EXPECT_EQ(message.includedFrom[0].column, 13u);
}

TEST(Messages, NameTheOpenIncludesInnermostFirst) {
    MemoryTemplates source;
    source.add("outer", "\n{% include \"inner\" %}");
    source.add("inner", "\n\n {{ gone }}");
    const std::string page = "{% if yes %}\u00E9{% include \"outer\" %}{% endif %}{{ lost }}";
    const RenderResult result = Template(page, "page").render(values(), {.source = &source});
    ASSERT_THAT(result.messages, SizeIs(2));
    const RenderMessage& message = result.messages[0];
    EXPECT_EQ(message.name, "gone");
    EXPECT_EQ(message.templateName, "inner");
    EXPECT_EQ(message.line, 3u);
    EXPECT_EQ(message.column, 5u);
    ASSERT_THAT(message.includedFrom, SizeIs(2));
    const IncludeSite& inner = message.includedFrom[0];
    EXPECT_EQ(inner.templateName, "outer");
    EXPECT_EQ(textIn("\n{% include \"inner\" %}", inner.range), "inner");
    EXPECT_EQ(inner.line, 2u);
    EXPECT_EQ(inner.column, 13u);
    const IncludeSite& outer = message.includedFrom[1];
    EXPECT_EQ(outer.templateName, "page");
    EXPECT_EQ(textIn(page, outer.range), "outer");
    EXPECT_EQ(outer.line, 1u);
    EXPECT_EQ(outer.column, 26u);
    EXPECT_EQ(result.messages[1].name, "lost");
    EXPECT_THAT(result.messages[1].includedFrom, IsEmpty());
    EXPECT_EQ(result.usage.includeDepth, 2u);
}

TEST(Messages, DescribeWhatEndsARenderInOneLine) {
    const struct {
        Kind kind;
        const char* english;
    } cases[] = {
        {Kind::TemplateRejected,
         "the template is not well formed: expected \"{% endfor %}\" before the end"},
        {Kind::StepLimit, "the step limit was reached"},
        {Kind::OutputLimit, "the output size limit was reached"},
        {Kind::TemplateLimit, "the template size limit was reached"},
        {Kind::DepthLimit, "the include depth limit was reached"},
        {Kind::Stopped, "the host stopped the render"},
    };
    for (const auto& row : cases) {
        RenderMessage message{.kind = row.kind, .name = "n"};
        if (row.kind == Kind::TemplateRejected) {
            message.fault.expected = SyntaxExpectation::MissingEndFor;
        }
        EXPECT_EQ(message.text(), row.english);
    }
}

// Only a host can request such a path.
TEST(Messages, StayInOneLineWhateverThePath) {
    MemoryTemplates source;
    const RenderResult result =
        kel::Stencilor::renderFile("a\nb\r\x1B[2J", {}, {.source = &source});
    ASSERT_THAT(result.messages, SizeIs(1));
    EXPECT_EQ(result.messages[0].name, "a\nb\r\x1B[2J");
    EXPECT_EQ(result.messages[0].text(), "there is no template \"a\\u000ab\\u000d\\u001b[2J\"");
}

// Short strings are copied whole; only long ones have a block to share.
TEST(Messages, ShareTheNameThatTheyAreAbout) {
    std::string name;
    for (int dot = 0; dot < 30'000; ++dot) {
        name += "n.";
    }
    name += 'n';
    const std::string tag = "{{ " + name + " }}";
    const struct {
        const char* name;
        std::string input;
    } cases[] = {
        {"written twice", tag + tag},
        {"in a loop, tried without its variable first",
         "{% for n in list %}" + tag + "{% endfor %}"},
        {"a path", "{% for n in list %}{% include \"" + name + "\" %}{% endfor %}"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Template made(row.input);
        const char* const shared = made.render(values()).messages.at(0).name.view().data();
        const RenderResult result = made.render(values());
        ASSERT_THAT(result.messages, SizeIs(2));
        for (const RenderMessage& message : result.messages) {
            EXPECT_EQ(message.name, kel::String(name));
            EXPECT_EQ(message.name.view().data(), shared);
        }
    }
}

TEST(Messages, AreKeptUpToTheirLimitAndAllCounted) {
    const Template made("{% for x in list %}{{ gone }}{% endfor %}z");
    const struct {
        const char* name;
        unsigned int limit;
        std::size_t elements;
        std::size_t kept;
    } cases[] = {
        {"no limit", 0, 3000, 3000},
        {"one", 1, 3, 1},
        {"exactly at the limit", 3, 3, 3},
        {"one over the limit", 3, 4, 3},
        {"exactly at the default limit", RenderLimits().messages, 1000, 1000},
        {"one over the default limit", RenderLimits().messages, 1001, 1000},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const RenderResult result =
            made.render({{"list", listOfNulls(row.elements)}}, {.limits = {.messages = row.limit}});
        EXPECT_EQ(result.status, RenderStatus::Complete);
        EXPECT_EQ(result.text, "z");
        EXPECT_THAT(result.messages, SizeIs(row.kept));
        EXPECT_EQ(result.usage.messages, row.elements);
    }
}

TEST(Messages, OutliveTheTemplate) {
    RenderResult result;
    {
        const Template made(std::string("{{ ") + std::string(1000, 'n') + " }}",
                            kel::String(std::string(1000, 'p')));
        result = made.render({});
    }
    ASSERT_THAT(result.messages, SizeIs(1));
    EXPECT_EQ(result.messages[0].name, kel::String(std::string(1000, 'n')));
    EXPECT_EQ(result.messages[0].templateName, kel::String(std::string(1000, 'p')));
}

} // namespace
} // namespace support
