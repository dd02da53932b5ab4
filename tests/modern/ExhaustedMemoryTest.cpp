#include "../support/ExhaustedMemory.h"

#include "../support/TemporaryFolder.h"
#include "Rendering.h"

namespace support {
namespace {

using kel::Stencilor::FileTemplates;
using kel::Stencilor::renderFile;

const std::string longText(300, 'x');

/// A template with everything that allocates memory.
std::string everything() {
    return "{% for x in list %}{{ x.value }}{{ x." + longText +
           " }}{% if yes %}{% include \"part\" %}{% endif %}{{ malformed }}{% endfor %}" +
           longText + "\u20AC{% include \"gone\" %}{% include \"rejected\" %}";
}

const Value& values() {
    static const Value instance{
        {"list", Value::list({longText, "<", 3})}, {"yes", true}, {"malformed", longText + '\xFF'}};
    return instance;
}

bool areEqual(const RenderResult& left, const RenderResult& right) {
    return left.status == right.status && left.text == right.text &&
           left.messages.size() == right.messages.size() && left.usage.steps == right.usage.steps;
}

class ExhaustedTemplates : public ExhaustedMemory {
  protected:
    ExhaustedTemplates() {
        source_.add("part", "\xE2{{ gone }}{{ malformed }}");
        source_.add("rejected", "{{");
    }

    /// Expects the same result after a failure as before it.
    template <typename Render>
    void sweep(Render render) {
        const RenderResult expected = render();
        failEachAllocation([] { return std::make_unique<std::optional<RenderResult>>(); },
                           [&](std::optional<RenderResult>& result) { result = render(); },
                           [&](std::optional<RenderResult>& result) {
                               EXPECT_FALSE(result.has_value() && !areEqual(*result, expected));
                               EXPECT_TRUE(areEqual(render(), expected));
                           });
    }

    MemoryTemplates source_;
    const Context context_{values()};
};

// A failure to shrink memory is harmless.
TEST_F(ExhaustedTemplates, AreCreatedCompletelyOrNotAtAll) {
    const RenderOptions options{.source = &source_};
    for (const std::string& text : {everything(), everything() + "{{", std::string()}) {
        const RenderResult expected = Template(text, longText).render(context_, options);
        failEachAllocation([] { return std::make_unique<std::optional<Template>>(); },
                           [&text](std::optional<Template>& made) {
                               made.emplace(kel::String(text), kel::String(longText));
                           },
                           [&](std::optional<Template>& made) {
                               EXPECT_TRUE(!made ||
                                           areEqual(made->render(context_, options), expected));
                           });
    }
}

TEST_F(ExhaustedTemplates, AreCopiedWithoutMemory) {
    const Template made(everything());
    const FailingAllocation failure(0);
    Template copy = made;
    copy = Template(copy);
    EXPECT_FALSE(failure.happened());
}

TEST_F(ExhaustedTemplates, RenderAgainWhenThereIsMemory) {
    const Template made(everything(), "page");
    for (const Escape& escape : {Escape::none(), Escape::html(), Escape::json()}) {
        const RenderOptions options{.escape = escape, .source = &source_};
        sweep([&] { return made.render(context_, options); });
    }
    const RenderOptions options{.source = &source_};
    sweep([&] { return made.render(values(), options); });
    sweep([&] { return Template("a{{").render(context_, options); });
    sweep([&] { return made.render(context_, {.source = &source_, .limits = {.steps = 20}}); });
}

TEST_F(ExhaustedTemplates, RenderPiecesAgainWhenThereIsMemory) {
    const Template made("{% for x in list %}{{ long }}{{ malformed }}{% endfor %}" + everything());
    Value more = values();
    more.set("long", std::string(40'000, 'l'));
    const Context context(more);
    const RenderOptions options{.escape = Escape::html(), .source = &source_};
    const std::string whole = made.render(context, options).text.str();
    sweep([&] {
        std::size_t at = 0; // the output is the beginning of the text
        return made.renderTo(
            context,
            [&](std::string_view piece) {
                EXPECT_TRUE(std::string_view(whole).substr(at, piece.size()) == piece);
                at += piece.size();
            },
            options);
    });
}

TEST_F(ExhaustedTemplates, AreRenderedFromMemory) {
    sweep([&] { return renderFile("part", context_, {.source = &source_}); });
    sweep([&] { return renderFile("gone", context_, {.source = &source_}); });
}

TEST_F(ExhaustedTemplates, LeaveThoseInMemoryAsTheyWere) {
    failEachAllocation(
        [] {
            auto source = std::make_unique<MemoryTemplates>();
            source->add("a", "former");
            return source;
        },
        [](MemoryTemplates& source) { source.add("a", kel::String(longText)); },
        [](MemoryTemplates& source) {
            EXPECT_EQ(renderFile("a", {}, {.source = &source}).text, "former");
        });
}

TEST_F(ExhaustedTemplates, AreEscapedCompletely) {
    failEachAllocation([] { return std::make_unique<kel::String>(); },
                       [](kel::String& text) {
                           text = kel::Stencilor::escapeHtml(longText + '<');
                           text = kel::Stencilor::escapeJson(longText + '<');
                       },
                       [](kel::String& text) {
                           EXPECT_TRUE(text.empty() || text == kel::String(longText + "&lt;"));
                       });
}

TEST_F(ExhaustedTemplates, DescribeTheirMessages) {
    const RenderMessage message{.name = kel::String(longText)};
    const kel::String expected = message.text();
    failEachAllocation([] { return std::make_unique<std::optional<kel::String>>(); },
                       [&message](std::optional<kel::String>& text) { text = message.text(); },
                       [](std::optional<kel::String>& text) { EXPECT_FALSE(text.has_value()); });
}

// On Windows, the base library reads files, and has its own allocation functions.
#ifndef _WIN32

TEST_F(ExhaustedTemplates, AreRenderedFromFiles) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("part", "\xE2{{ gone }}{{ malformed }}");
    folder.writeFile("rejected", "{{");
    folder.writeFile("kept", longText);
    last_write_time(std::filesystem::path(folder.path("kept")),
                    std::filesystem::file_time_type::clock::now() - std::chrono::seconds(100));
    const Template made(everything() + "{% include \"kept\" %}");
    sweep([&] { return made.render(context_); });
    sweep([&] {
        FileTemplates source(folder.path());
        return made.render(context_, {.source = &source});
    });
    FileTemplates source(folder.path());
    sweep([&] { return made.render(context_, {.source = &source}); });
    sweep([&] { return renderFile("kept", context_, {.source = &source}); });
}

#endif

} // namespace
} // namespace support
