#include "../support/TemporaryFolder.h"
#include "Rendering.h"

#include <libStencilor/Stencilor.h>

namespace support {
namespace {

using Kind = RenderMessage::Kind;
using Answer = TemplateSource::Answer;
using kel::Stencilor::renderFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

/// A source that calls a function, and records the requests.
class Scripted : public TemplateSource {
  public:
    using Script = std::function<Answer(const std::string&, std::optional<Template>&)>;

    explicit Scripted(Script script) : script_(std::move(script)) {}

    Answer find(const kel::String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override {
        asked.emplace_back(path.str(), maxBytes);
        return script_(path.str(), found);
    }

    std::vector<std::pair<std::string, std::uint64_t>> asked;

  private:
    Script script_;
};

const Template allPaths("{% include \"a\" %}{% include \"b\" %}{% include \"a\" %}"
                        "{% include \"b\" %}",
                        "page");

TEST(Sources, AreAskedOncePerPathAndRender) {
    Scripted source([](const std::string& path, std::optional<Template>& found) {
        if (path == "b") {
            return Answer::Missing;
        }
        found.emplace("{% include \"b\" %}12345", path);
        return Answer::Found;
    });
    const RenderResult result = allPaths.render({}, {.source = &source});
    EXPECT_EQ(result.text, "1234512345");
    EXPECT_THAT(result.messages, SizeIs(4)); // each time it is missing
    EXPECT_THAT(source.asked, ElementsAre(Pair("a", unlimited), Pair("b", unlimited)));
    allPaths.render({}, {.source = &source});
    EXPECT_THAT(source.asked, SizeIs(4));
    source.asked.clear();
    renderFile("a", {}, {.source = &source});
    EXPECT_THAT(source.asked, ElementsAre(Pair("a", unlimited), Pair("b", unlimited)));
}

TEST(Sources, ReceiveTheRemainingBytes) {
    Scripted source([](const std::string& path, std::optional<Template>& found) {
        found.emplace(path == "a" ? "12345" : "", path);
        return Answer::Found;
    });
    RenderOptions options{.source = &source, .limits = {.templateBytes = 7}};
    EXPECT_EQ(allPaths.render({}, options).status, RenderStatus::Complete);
    EXPECT_THAT(source.asked, ElementsAre(Pair("a", 7u), Pair("b", 2u)));
    source.asked.clear();
    options.limits.templateBytes = 5;
    EXPECT_EQ(allPaths.render({}, options).status, RenderStatus::Complete);
    EXPECT_THAT(source.asked, ElementsAre(Pair("a", 5u), Pair("b", 0u)));
}

TEST(Sources, AreCheckedAgainstTheLimit) {
    Scripted source([](const std::string& path, std::optional<Template>& found) {
        found.emplace("12345", path);
        return Answer::Found;
    });
    const RenderResult result =
        allPaths.render({}, {.source = &source, .limits = {.templateBytes = 9}});
    EXPECT_EQ(result.status, RenderStatus::TemplateLimit);
    EXPECT_EQ(result.usage.templateBytes, 5u);
}

TEST(Sources, HaveAnAnswerForEachCase) {
    const struct {
        const char* name;
        Answer answer;
        const char* text; // null: none
        RenderStatus status;
        RenderStatus ofFile;
        std::optional<Kind> message;
    } cases[] = {
        {"found", Answer::Found, "text", RenderStatus::Complete, RenderStatus::Complete, {}},
        {"found but rejected", Answer::Found, "{{", RenderStatus::Complete, RenderStatus::Rejected,
         Kind::TemplateRejected},
        {"found without a template", Answer::Found, nullptr, RenderStatus::Complete,
         RenderStatus::Unreadable, Kind::FileNotLoaded},
        {"missing", Answer::Missing, nullptr, RenderStatus::Complete, RenderStatus::NotFound,
         Kind::FileNotFound},
        {"missing with a template", Answer::Missing, "text", RenderStatus::Complete,
         RenderStatus::NotFound, Kind::FileNotFound},
        {"unreadable", Answer::Unreadable, nullptr, RenderStatus::Complete,
         RenderStatus::Unreadable, Kind::FileNotLoaded},
        {"too large", Answer::TooLarge, nullptr, RenderStatus::TemplateLimit,
         RenderStatus::TemplateLimit, Kind::TemplateLimit},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Scripted source([&row](const std::string& path, std::optional<Template>& found) {
            if (row.text != nullptr) {
                found.emplace(row.text, path);
            }
            return row.answer;
        });
        const RenderOptions options{.source = &source};
        const RenderResult included = Template("{% include \"a\" %}").render({}, options);
        const RenderResult rendered = renderFile("a", {}, options);
        EXPECT_EQ(included.status, row.status);
        EXPECT_EQ(rendered.status, row.ofFile);
        ASSERT_THAT(included.messages, SizeIs(row.message ? 1 : 0));
        ASSERT_THAT(rendered.messages, SizeIs(row.message ? 1 : 0));
        if (row.message) {
            EXPECT_EQ(included.messages[0].kind, *row.message);
            EXPECT_EQ(rendered.messages[0].kind, *row.message);
            EXPECT_EQ(rendered.usage.messages, 1u);
        } else {
            EXPECT_EQ(included.text, "text");
            EXPECT_EQ(rendered.text, "text");
        }
    }
}

TEST(Sources, LeaveTheMessageOfARenderedFileWithoutAPlace) {
    MemoryTemplates source;
    const RenderResult result = renderFile("gone", {}, {.source = &source});
    EXPECT_EQ(result.status, RenderStatus::NotFound);
    ASSERT_THAT(result.messages, SizeIs(1));
    EXPECT_EQ(result.messages[0].name, "gone");
    EXPECT_EQ(result.messages[0].templateName, "");
    EXPECT_EQ(result.messages[0].line, 0u);
    EXPECT_EQ(result.messages[0].column, 0u);
    EXPECT_TRUE(result.messages[0].range.isEmpty());
}

TEST(Sources, MayThrow) {
    Scripted source([](const std::string&, std::optional<Template>&) -> Answer {
        throw std::runtime_error("no connection");
    });
    EXPECT_THROW(allPaths.render({}, {.source = &source}), std::runtime_error);
    EXPECT_THROW(renderFile("a", {}, {.source = &source}), std::runtime_error);
    EXPECT_EQ(Template("a").render({}, {.source = &source}).text, "a");
}

TEST(Sources, MayRender) {
    RenderOptions options;
    int depth = 0;
    Scripted source([&](const std::string& path, std::optional<Template>& found) {
        found.emplace(++depth < 4 ? allPaths.render({}, options).text : "x", path);
        return Answer::Found;
    });
    options.source = &source;
    const RenderResult result = allPaths.render({}, options);
    EXPECT_EQ(result.status, RenderStatus::Complete);
    EXPECT_GT(result.text.size(), 4u);
}

TEST(Sources, MayReturnTheRenderedTemplate) {
    const Template self("a{% include \"self\" %}", "self");
    Scripted source([&self](const std::string&, std::optional<Template>& found) {
        found = self;
        return Answer::Found;
    });
    const RenderResult result = self.render({}, {.source = &source, .limits = {.includeDepth = 3}});
    EXPECT_EQ(result.status, RenderStatus::DepthLimit);
    EXPECT_EQ(result.usage.templateBytes, self.text().size());
}

TEST(Sources, RenderTheirTemplatesWithScopesButNoLoopVariables) {
    MemoryTemplates source;
    source.add("part", "{{ x.value }}{{ value }}");
    const RenderResult result =
        Template("{% for x in l %}{{ x.value }}{% include \"part\" %}{% endfor %}")
            .render({{"l", Value::list({1})}}, {.source = &source});
    EXPECT_EQ(result.text, "11");
    ASSERT_THAT(result.messages, SizeIs(1));
    EXPECT_EQ(result.messages[0].name, "x.value");
}

TEST(MemoryTemplates, AreReplaced) {
    MemoryTemplates source;
    source.add("a", "first");
    EXPECT_EQ(renderFile("a", {}, {.source = &source}).text, "first");
    source.add("a", "second");
    source.add("b", "{{");
    EXPECT_EQ(renderFile("a", {}, {.source = &source}).text, "second");
    EXPECT_EQ(renderFile("b", {}, {.source = &source}).status, RenderStatus::Rejected);
    EXPECT_EQ(renderFile("b", {}, {.source = &source}).messages[0].templateName, "b");
    EXPECT_EQ(renderFile("A", {}, {.source = &source}).status, RenderStatus::NotFound);
}

TEST(MemoryTemplates, MayBeAddedToByARender) {
    MemoryTemplates source;
    source.add("a", "old");
    const Escape adding([&source](std::string_view, std::string& out) {
        source.add("a", "new");
        out = "-";
    });
    const Template made("{% include \"a\" %}{{ v }}{% include \"a\" %}");
    const RenderOptions options{.escape = adding, .source = &source};
    EXPECT_EQ(made.render({{"v", "v"}}, options).text, "old-old"); // one version for each render
    EXPECT_EQ(made.render({{"v", "v"}}, options).text, "new-new");
}

TEST(MemoryTemplates, AnswerToTheByte) {
    MemoryTemplates source;
    source.add("a", "12345");
    source.add("empty", "");
    std::optional<Template> found;
    EXPECT_EQ(source.find("a", 4, found), Answer::TooLarge);
    EXPECT_FALSE(found);
    EXPECT_EQ(source.find("a", 0, found), Answer::TooLarge);
    EXPECT_EQ(source.find("empty", 0, found), Answer::Found);
    EXPECT_EQ(source.find("a", 5, found), Answer::Found);
    EXPECT_EQ(found->name(), "a");
    EXPECT_EQ(source.find("gone", 0, found), Answer::Missing);
}

TEST(RendersWithoutASource, FindTheFilesOfBuildOutput) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("a", "[{{ v }}]");
    folder.makeFolder("b");
    const Value values{{"v", "V"}};
    kel::String errors;
    const kel::String text = kel::Stencilor::buildOutput(allPaths.text(), Context(values), errors);
    const RenderResult result = allPaths.render(values);
    EXPECT_EQ(text, "[V][V]");
    EXPECT_EQ(result.text, text);
    EXPECT_THAT(result.messages, SizeIs(2));
    EXPECT_EQ(result.usage.templateBytes, 9u);
    EXPECT_EQ(renderFile("a", values).text, "[V]");
    EXPECT_EQ(renderFile("b", values).status, RenderStatus::NotFound);
    const RenderOptions few{.limits = {.templateBytes = 8}};
    EXPECT_EQ(renderFile("a", values, few).status, RenderStatus::TemplateLimit);
    EXPECT_EQ(allPaths.render(values, few).status, RenderStatus::TemplateLimit);
}

TEST(RendersWithoutASource, RejectTooLargeTemplates) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeSparseFile("huge", 4ull << 30);
    EXPECT_EQ(renderFile("huge", {}).status, RenderStatus::Unreadable);
    const RenderOptions few{.limits = {.templateBytes = 1000}};
    EXPECT_EQ(renderFile("huge", {}, few).status, RenderStatus::TemplateLimit);
}

} // namespace
} // namespace support
