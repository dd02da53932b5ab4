#include "../support/FailingAllocation.h"

#include <libStencilorC/stencilor.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace {

using stencilor::Context;
using stencilor::Error;
using stencilor::Options;
using stencilor::Request;
using stencilor::Result;
using stencilor::Source;
using stencilor::Template;
using stencilor::Value;

std::string render(std::string_view text, const Value& values, const Options& options = {}) {
    return std::string(Template(text).render(Context(values), options).text());
}

/// The status of the error that a function throws.
template <typename Function>
int statusOf(Function function) {
    try {
        function();
    } catch (const Error& error) {
        EXPECT_EQ(std::string(error.what()).empty(), false);
        return error.status();
    }
    return STENCILOR_OK;
}

static_assert(std::is_nothrow_move_constructible_v<Value>);
static_assert(std::is_nothrow_default_constructible_v<Options>);
static_assert(!std::is_constructible_v<Value, wchar_t> &&
              !std::is_constructible_v<Value, char16_t> &&
              !std::is_constructible_v<Value, char32_t> && !std::is_constructible_v<Value, void*>);
static_assert(!std::is_copy_constructible_v<Template> && !std::is_copy_constructible_v<Result>);

TEST(Hpp, ConvertsStandardTypesToValues) {
    Value values;
    values.set("text", "t").set("string", std::string("s")).set("view", std::string_view("v"));
    values.set("int", -1).set("unsigned", 18446744073709551615ull).set("double", 0.5f);
    values.set("true", true).set("char", 'c').set("null", nullptr).set("raw", Value::raw("<"));
    values.set("list", Value::list().add(1).add("two").add(Value().set("a", 3)));
    Options options;
    options.setEscape(STENCILOR_ESCAPE_HTML);
    EXPECT_EQ(render("{{ text }}{{ string }}{{ view }} {{ int }} {{ unsigned }} {{ double }} "
                     "{% if true %}yes{% endif %}{{ char }}{{ raw }}"
                     "{% for i in list %}{{ i.value }}{{ i.a }},{% endfor %}",
                     values, options),
              "tsv -1 18446744073709551615 0.5 yesc<1,two,3,");
}

TEST(Hpp, GivesFloatsTheirOwnDigits) {
    const std::pair<float, const char*> cases[] = {
        {0.1f, "0.1"},           {-0.0f, "0"},      {16777216.0f, "16777216"},
        {4.35f, "4.35"},         {1e-45f, "1e-45"}, {3.4028235e38f, "3.4028235e+38"},
        {1.0f / 3, "0.33333334"}};
    for (const auto& [number, text] : cases) {
        EXPECT_EQ(render("{{ n }}", Value().set("n", number)), text);
    }
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(statusOf([&] { Value(infinity - infinity); }), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(statusOf([&] { Value(-infinity); }), STENCILOR_INVALID_ARGUMENT);
}

TEST(Hpp, CopiesAndMovesValues) {
    Value original = Value::fromJson(R"({"a": [1, 2]})");
    const Value copy = original;
    original.set("a", "changed");
    EXPECT_EQ(render("{% for i in a %}{{ i.value }}{% endfor %}", copy), "12");
    Value taken = std::move(original);
    EXPECT_EQ(render("{{ a }}", taken), "changed");
    taken = copy;
    EXPECT_EQ(taken.kind(), STENCILOR_KIND_DICTIONARY);
}

TEST(Hpp, ThrowsStatuses) {
    EXPECT_EQ(statusOf([] { Value("text").add(1); }), STENCILOR_WRONG_KIND);
    EXPECT_EQ(statusOf([] { Value(1e308 * 10); }), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(statusOf([] { Context{Value::list()}; }), STENCILOR_WRONG_KIND);
    EXPECT_EQ(statusOf([] { Source::folder("/no/such/folder"); }), STENCILOR_NOT_FOUND);
    EXPECT_EQ(statusOf([] { stencilor::names(Template("{{")); }), STENCILOR_REJECTED);
    try {
        Value::fromJson("[\n1,]");
        FAIL() << "it is accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.line(), 2u);
        EXPECT_EQ(error.column(), 3u);
        EXPECT_EQ(error.offset(), 4u);
    }
}

TEST(Hpp, ReportsMessages) {
    const Template page("{{ gone }}", "page");
    const Result result = page.render(Context(Value()));
    ASSERT_EQ(result.messages().size(), 1u);
    const stencilor::Message message = result.messages()[0];
    EXPECT_EQ(message.kind(), STENCILOR_MESSAGE_VALUE_NOT_FOUND);
    EXPECT_EQ(message.text(), "there is no value named \"gone\"");
    EXPECT_EQ(message.name(), "gone");
    EXPECT_EQ(message.templateName(), "page");
    EXPECT_EQ(message.line(), 1u);
    EXPECT_EQ(message.column(), 4u);
    EXPECT_EQ(result.usage(STENCILOR_LIMIT_MESSAGES), 1u);

    const Template rejected("{{");
    EXPECT_FALSE(rejected.isWellFormed());
    EXPECT_EQ(rejected.fault().kind(), STENCILOR_MESSAGE_TEMPLATE_REJECTED);
    EXPECT_EQ(rejected.render(Context(Value())).status(), STENCILOR_REJECTED);
}

TEST(Hpp, IncludesFromEverySource) {
    Options options;
    {
        Source memory = Source::memory();
        memory.add("p", "memory");
        options.setSource(memory);
    } // the options keep it
    EXPECT_EQ(render("{% include \"p\" %}", Value(), options), "memory");

    const Template kept("kept");
    options.setSource(Source::callback([&kept](std::string_view path, const Request& request) {
        if (path == "text") {
            request.setText("text");
        } else if (path == "kept") {
            request.setTemplate(kept);
        } else if (path == "bad") {
            request.setUnreadable();
        }
    }));
    EXPECT_EQ(render("{% include \"text\" %}{% include \"kept\" %}{% include \"bad\" %}", Value(),
                     options),
              "textkept");
    EXPECT_EQ(stencilor::renderPath("kept", Context(Value()), options).text(), "kept");
}

TEST(Hpp, PassesOnExceptionsOfCallbacks) {
    struct Thrown {};
    const Template page("{{ a }}{% include \"p\" %}");
    const Context context(Value().set("a", "b"));
    EXPECT_THROW(page.renderTo(context, [](std::string_view) { throw Thrown(); }), Thrown);
    Options escaping;
    escaping.setEscape([](std::string_view) -> std::string { throw Thrown(); });
    EXPECT_THROW(page.render(context, escaping), Thrown);
    Options finding;
    finding.setSource(Source::callback([](std::string_view, const Request&) { throw Thrown(); }));
    EXPECT_THROW(page.render(context, finding), Thrown);
    EXPECT_EQ(page.render(context).text(), "b") << "the exception is not kept";
}

TEST(Hpp, ForgetsWhatIsThrownInCallsMadeFromC) {
    Options options;
    options.setEscape([](std::string_view) -> std::string { throw std::runtime_error("stop"); });
    const Template page("{{ a }}");
    const Context context(Value().set("a", "b"));
    EXPECT_EQ(stencilor_template_render(page.get(), context.get(), options.get(), nullptr),
              STENCILOR_STOPPED);
    EXPECT_NO_THROW(Value("text"));
    EXPECT_EQ(page.render(context).text(), "b");
}

TEST(Hpp, KeepsItsSourceWhenMemoryIsExhausted) {
    const auto source = [](const char* text) {
        return Source::callback(
            [text](std::string_view, const Request& request) { request.setText(text); });
    };
    Options options;
    options.setSource(source("old"));
    {
        const Source other = source("new");
        const support::FailingAllocation failure(0);
        EXPECT_THROW(options.setSource(other), std::bad_alloc);
    }
    EXPECT_EQ(render("{% include \"p\" %}", Value(), options), "old");
}

TEST(Hpp, CallsFunctionsOfTheHost) {
    Options options;
    options.setEscape([](std::string_view text) { return "[" + std::string(text) + "]"; });
    EXPECT_EQ(render("{{ a }}", Value().set("a", "b"), options), "[b]");
    options.setPoll([] { return false; });
    Value values;
    values.set("l", Value::list());
    const std::string text = [] {
        std::string tags;
        for (int tag = 0; tag < 1100; ++tag) {
            tags += "{{ l }}";
        }
        return tags;
    }();
    const Result stopped = Template(text).render(Context(values), options);
    EXPECT_EQ(stopped.status(), STENCILOR_STOPPED);
    options.setPoll([]() -> bool { throw std::runtime_error("stop"); });
    EXPECT_THROW(Template(text).render(Context(values), options), std::runtime_error);
    options.setPoll({});
    EXPECT_EQ(Template(text).render(Context(values), options).status(), STENCILOR_OK);

    std::string written;
    Template("{{ a }}").renderTo(Context(Value().set("a", "b")),
                                 [&written](std::string_view piece) { written += piece; });
    EXPECT_EQ(written, "b");
}

TEST(Hpp, Analyses) {
    Source source = Source::memory();
    source.add("p", "{{ titel }}");
    const Context context(Value().set("title", ""));
    const Template page("{% include \"p\" %}");
    EXPECT_NE(stencilor::check(page, &source, &context).find("did you mean"), std::string::npos);
    EXPECT_NE(stencilor::check(page).find("missing-include"), std::string::npos);
    Options options;
    options.setSource(source);
    EXPECT_EQ(stencilor::check(page, &context, options), stencilor::check(page, &source, &context));
    EXPECT_NE(stencilor::names(page, &source).find("titel"), std::string::npos);
    EXPECT_EQ(stencilor::escape(STENCILOR_ESCAPE_HTML, "<"), "&lt;");
}

} // namespace
