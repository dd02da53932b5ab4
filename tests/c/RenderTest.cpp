#include "../support/Test.h"
#include "Handles.h"

namespace support {
namespace {

TEST(CTemplate, IsRenderedManyTimes) {
    const TemplateHandle page = parse("Hello, {{ name }}!");
    EXPECT_EQ(textOf(render(page, contextOf(R"({"name": "world"})"))), "Hello, world!");
    EXPECT_EQ(textOf(render(page, contextOf(R"({"name": "<you>"})"))), "Hello, <you>!");
    EXPECT_EQ(textOf(stencilor_template_name, page.get()), "page");
    EXPECT_EQ(textOf(stencilor_template_text, page.get()), "Hello, {{ name }}!");
    EXPECT_EQ(stencilor_template_fault(page.get()), nullptr);
}

TEST(CTemplate, IsCreatedEvenIfItIsNotWellFormed) {
    TemplateHandle made;
    EXPECT_EQ(
        stencilor_template_parse("a\n\u20AC {{ b", STENCILOR_NUL_TERMINATED, "page", 4, out(made)),
        STENCILOR_REJECTED);
    const stencilor_message* const fault = stencilor_template_fault(made.get());
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(stencilor_message_kind(fault), STENCILOR_MESSAGE_TEMPLATE_REJECTED);
    EXPECT_EQ(stencilor_message_line(fault), 2u);
    EXPECT_EQ(textOf(stencilor_message_template_name, fault), "page");
    EXPECT_NE(textOf(fault).find("expected"), std::string::npos);

    const ResultHandle result = render(made, contextOf("{}"));
    EXPECT_EQ(stencilor_result_status(result.get()), STENCILOR_REJECTED);
    ASSERT_EQ(stencilor_result_message_count(result.get()), 1u);
    EXPECT_EQ(textOf(stencilor_result_message(result.get(), 0)), textOf(fault));
}

TEST(COptions, EscapeAsRequested) {
    const TemplateHandle page = parse("{{ a }}");
    const ContextHandle context = contextOf(R"({"a": "<\""})");
    const OptionsHandle options = makeOptions();
    const struct {
        int kind;
        const char* text;
    } cases[] = {{STENCILOR_ESCAPE_NONE, "<\""},
                 {STENCILOR_ESCAPE_HTML, "&lt;&quot;"},
                 {STENCILOR_ESCAPE_JSON, "\\u003c\\\""}};
    for (const auto& [kind, text] : cases) {
        EXPECT_EQ(stencilor_options_set_escape(options.get(), kind), STENCILOR_OK);
        EXPECT_EQ(textOf(render(page, context, options.get())), text);
        TextHandle escaped;
        EXPECT_EQ(stencilor_escape(kind, "<\"", 2, out(escaped)), STENCILOR_OK);
        EXPECT_EQ(textOf(escaped), text);
    }
    TextHandle escaped;
    EXPECT_EQ(stencilor_escape(3, "a", 1, out(escaped)), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(stencilor_options_set_escape(options.get(), 3), STENCILOR_INVALID_ARGUMENT);
}

TEST(COptions, LimitRenders) {
    const TemplateHandle page = parse("{{ a }}{% include \"p\" %}{{ gone }}{{ gone }}");
    const ContextHandle context = contextOf(R"({"a": "12345"})");
    const SourceHandle source = makeMemory();
    add(source, "p", "{% include \"q\" %}");
    add(source, "q", "-");
    const struct {
        int limit;
        std::uint64_t value;
        int status;
        int kind;
    } cases[] = {
        {STENCILOR_LIMIT_STEPS, 2, STENCILOR_STEP_LIMIT, STENCILOR_MESSAGE_STEP_LIMIT},
        {STENCILOR_LIMIT_OUTPUT_BYTES, 5, STENCILOR_OUTPUT_LIMIT, STENCILOR_MESSAGE_OUTPUT_LIMIT},
        {STENCILOR_LIMIT_TEMPLATE_BYTES, 17, STENCILOR_TEMPLATE_LIMIT,
         STENCILOR_MESSAGE_TEMPLATE_LIMIT},
        {STENCILOR_LIMIT_INCLUDE_DEPTH, 1, STENCILOR_DEPTH_LIMIT, STENCILOR_MESSAGE_DEPTH_LIMIT},
        {STENCILOR_LIMIT_MESSAGES, 1, STENCILOR_OK, STENCILOR_MESSAGE_VALUE_NOT_FOUND}};
    for (const auto& [limit, value, status, kind] : cases) {
        SCOPED_TRACE(limit);
        const OptionsHandle options = makeOptions();
        stencilor_options_set_source(options.get(), source.get());
        EXPECT_EQ(stencilor_options_set_limit(options.get(), limit, value), STENCILOR_OK);
        const ResultHandle result = render(page, context, options.get());
        EXPECT_EQ(stencilor_result_status(result.get()), status);
        EXPECT_EQ(textOf(result), status == STENCILOR_OK ? "12345-" : "");
        ASSERT_EQ(stencilor_result_message_count(result.get()), 1u);
        EXPECT_EQ(stencilor_message_kind(stencilor_result_message(result.get(), 0)), kind);
    }
    EXPECT_EQ(stencilor_options_set_limit(makeOptions().get(), 5, 1), STENCILOR_INVALID_ARGUMENT);
}

TEST(CResult, ReportsWhatARenderUsed) {
    const OptionsHandle options = makeOptions();
    const SourceHandle source = makeMemory();
    add(source, "p", "123");
    stencilor_options_set_source(options.get(), source.get());
    const ResultHandle result =
        render(parse("ab{% include \"p\" %}{{ gone }}"), contextOf("{}"), options.get());
    const std::uint64_t expected[] = {4, 5, 3, 1, 1, 0};
    for (int limit = 0; limit < 6; ++limit) {
        EXPECT_EQ(stencilor_result_usage(result.get(), limit), expected[limit]) << limit;
    }
}

TEST(CMessage, HasALocationAndItsIncludes) {
    const SourceHandle source = makeMemory();
    add(source, "p", "\n\u20AC{{ gone }}");
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    const ResultHandle result =
        render(parse("{{ list }}{% include \"p\" %}"), contextOf(R"({"list": []})"), options.get());
    ASSERT_EQ(stencilor_result_message_count(result.get()), 2u);

    const stencilor_message* const first = stencilor_result_message(result.get(), 0);
    EXPECT_EQ(stencilor_message_kind(first), STENCILOR_MESSAGE_VALUE_NOT_TEXT);
    EXPECT_EQ(textOf(first), "the value \"list\" is not a string");
    EXPECT_EQ(stencilor_message_include_count(first), 0u);

    const stencilor_message* const second = stencilor_result_message(result.get(), 1);
    EXPECT_EQ(stencilor_message_kind(second), STENCILOR_MESSAGE_VALUE_NOT_FOUND);
    EXPECT_EQ(textOf(stencilor_message_name, second), "gone");
    EXPECT_EQ(textOf(stencilor_message_template_name, second), "p");
    EXPECT_EQ(stencilor_message_line(second), 2u);
    EXPECT_EQ(stencilor_message_column(second), 5u);
    EXPECT_EQ(stencilor_message_begin(second), 7u);
    EXPECT_EQ(stencilor_message_end(second), 11u);
    ASSERT_EQ(stencilor_message_include_count(second), 1u);
    EXPECT_EQ(textOf(stencilor_message_include_template_name, second, 0u), "page");
    EXPECT_EQ(stencilor_message_include_line(second, 0), 1u);
    EXPECT_EQ(stencilor_message_include_column(second, 0), 23u);
    EXPECT_EQ(stencilor_message_include_begin(second, 0), 22u);
    EXPECT_EQ(stencilor_message_include_end(second, 0), 23u);
    EXPECT_EQ(textOf(stencilor_message_include_template_name, second, 1u), "");
    EXPECT_EQ(stencilor_result_message(result.get(), 2), nullptr);
}

TEST(CMessage, HasEachKind) {
    const SourceHandle source = makeMemory();
    add(source, "bad", "{{");
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    const ContextHandle context = contextOf(R"({"text": "", "list": []})");
    const struct {
        const char* text;
        int kind;
    } cases[] = {
        {"{{ gone }}", STENCILOR_MESSAGE_VALUE_NOT_FOUND},
        {"{{ list }}", STENCILOR_MESSAGE_VALUE_NOT_TEXT},
        {"{% if gone %}{% endif %}", STENCILOR_MESSAGE_BOOLEAN_NOT_FOUND},
        {"{% if text %}{% endif %}", STENCILOR_MESSAGE_NOT_BOOLEAN},
        {"{% for i in gone %}{% endfor %}", STENCILOR_MESSAGE_LIST_NOT_FOUND},
        {"{% for i in text %}{% endfor %}", STENCILOR_MESSAGE_NOT_LIST},
        {"{% include \"gone\" %}", STENCILOR_MESSAGE_TEMPLATE_NOT_FOUND},
        {"{% include \"bad\" %}", STENCILOR_MESSAGE_TEMPLATE_REJECTED},
    };
    for (const auto& [text, kind] : cases) {
        const ResultHandle result = render(parse(text), context, options.get());
        ASSERT_EQ(stencilor_result_message_count(result.get()), 1u) << text;
        EXPECT_EQ(stencilor_message_kind(stencilor_result_message(result.get(), 0)), kind) << text;
    }
}

TEST(CLibrary, HasAVersion) {
    EXPECT_STREQ(stencilor_version(), STENCILOR_TEST_VERSION);
    EXPECT_EQ(stencilor_abi_version(), STENCILOR_ABI_VERSION);
}

TEST(CLibrary, DescribesEachStatus) {
    for (int status = STENCILOR_OK; status <= STENCILOR_INTERNAL_ERROR; ++status) {
        EXPECT_STRNE(stencilor_status_text(status), "unknown status") << status;
    }
    EXPECT_STREQ(stencilor_status_text(STENCILOR_INTERNAL_ERROR + 1), "unknown status");
    EXPECT_STREQ(stencilor_status_text(-1), "unknown status");
}

} // namespace
} // namespace support
