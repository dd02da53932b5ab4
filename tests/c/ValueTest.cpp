#include "../support/Test.h"
#include "Handles.h"

namespace support {
namespace {

constexpr std::size_t whole = STENCILOR_NUL_TERMINATED;

std::string renderValue(const std::string& text, const stencilor_value* root, int flags = 0) {
    return textOf(render(parse(text), contextOf(root, flags)));
}

ValueHandle dictionary() {
    ValueHandle made;
    EXPECT_EQ(stencilor_value_dictionary(out(made)), STENCILOR_OK);
    return made;
}

ValueHandle list() {
    ValueHandle made;
    EXPECT_EQ(stencilor_value_list(out(made)), STENCILOR_OK);
    return made;
}

TEST(CValue, IsBuiltMemberByMember) {
    const ValueHandle root = dictionary();
    EXPECT_EQ(stencilor_value_set_text(root.get(), "text", 4, "a<b", 3), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_raw_text(root.get(), "raw", whole, "<b>", whole), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_integer(root.get(), "integer", whole, INT64_MIN), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_double(root.get(), "double", whole, 0.1), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_boolean(root.get(), "yes", whole, 2), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_boolean(root.get(), "no", whole, 0), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_null(root.get(), "null", whole), STENCILOR_OK);
    const OptionsHandle options = makeOptions();
    stencilor_options_set_escape(options.get(), STENCILOR_ESCAPE_HTML);
    const ResultHandle result =
        render(parse("{{ text }} {{ raw }} {{ integer }} {{ double }}"
                     "{% if yes %} yes{% endif %}{% if no %} no{% endif %}{{ null }}"),
               contextOf(root.get()), options.get());
    EXPECT_EQ(textOf(result), "a&lt;b <b> -9223372036854775808 0.1 yes");
    EXPECT_EQ(stencilor_result_message_count(result.get()), 1u) << "null is not found";
}

TEST(CValue, IsBuiltItemByItem) {
    const ValueHandle items = list();
    EXPECT_EQ(stencilor_value_add_text(items.get(), "text", whole), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_add_raw_text(items.get(), "raw", 3), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_add_integer(items.get(), -1), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_add_double(items.get(), 1e300), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_add_boolean(items.get(), 1), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_add_null(items.get()), STENCILOR_OK);
    const ValueHandle root = dictionary();
    EXPECT_EQ(stencilor_value_set(root.get(), "items", whole, items.get()), STENCILOR_OK);
    EXPECT_EQ(renderValue("{% for i in items %}{{ i.value }},{% endfor %}", root.get()),
              "text,raw,-1,1e+300,,,");
}

TEST(CValue, IsMovedOutOfItsHandle) {
    const ValueHandle root = dictionary();
    const ValueHandle member = valueOf("{\"a\": 1}");
    EXPECT_EQ(stencilor_value_set(root.get(), "m", 1, member.get()), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_kind(member.get()), STENCILOR_KIND_NULL);
    EXPECT_EQ(renderValue("{{ m.a }}", root.get()), "1");

    const ValueHandle text = valueOf("\"t\"");
    EXPECT_EQ(stencilor_value_add(text.get(), root.get()), STENCILOR_WRONG_KIND);
    EXPECT_EQ(stencilor_value_kind(root.get()), STENCILOR_KIND_NULL) << "even if the call fails";
}

TEST(CValue, IsNotAddedToItself) {
    const ValueHandle items = valueOf("[1]");
    EXPECT_EQ(stencilor_value_add(items.get(), items.get()), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(stencilor_value_kind(items.get()), STENCILOR_KIND_LIST);
    const ValueHandle root = dictionary();
    EXPECT_EQ(stencilor_value_set(root.get(), "a", 1, root.get()), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(stencilor_value_kind(root.get()), STENCILOR_KIND_DICTIONARY);
}

TEST(CValue, HasAKind) {
    const struct {
        const char* json;
        int kind;
    } cases[] = {{"null", STENCILOR_KIND_NULL}, {"true", STENCILOR_KIND_BOOLEAN},
                 {"1", STENCILOR_KIND_TEXT},    {"\"\"", STENCILOR_KIND_TEXT},
                 {"[]", STENCILOR_KIND_LIST},   {"{}", STENCILOR_KIND_DICTIONARY}};
    for (const auto& [json, kind] : cases) {
        EXPECT_EQ(stencilor_value_kind(valueOf(json).get()), kind) << json;
    }
    ValueHandle made;
    EXPECT_EQ(stencilor_value_raw_text("x", 1, out(made)), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_kind(made.get()), STENCILOR_KIND_RAW_TEXT);
}

TEST(CValue, IsCopiedDeeply) {
    const ValueHandle original = valueOf("{\"l\": [1, {\"a\": \"b\"}]}");
    ValueHandle copy;
    EXPECT_EQ(stencilor_value_copy(original.get(), out(copy)), STENCILOR_OK);
    EXPECT_EQ(stencilor_value_set_text(original.get(), "l", 1, "other", whole), STENCILOR_OK);
    EXPECT_EQ(renderValue("{% for i in l %}{{ i.value }}{{ i.a }}{% endfor %}", copy.get()), "1b");
}

TEST(CValue, RejectsNumbersThatAreNotFinite) {
    for (const double number :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        ValueHandle made;
        EXPECT_EQ(stencilor_value_double(number, out(made)), STENCILOR_INVALID_ARGUMENT);
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(stencilor_value_set_double(dictionary().get(), "a", 1, number),
                  STENCILOR_INVALID_ARGUMENT);
    }
}

TEST(CValue, NestsAtMost512Levels) {
    ValueHandle inner = list();
    for (int depth = 1; depth < 512; ++depth) {
        ValueHandle outer = list();
        ASSERT_EQ(stencilor_value_add(outer.get(), inner.get()), STENCILOR_OK) << depth;
        inner = std::move(outer);
    }
    EXPECT_EQ(stencilor_value_add(list().get(), inner.get()), STENCILOR_TOO_LARGE);
}

TEST(CValue, ReportsTheLocationOfJsonErrors) {
    const std::string json = "{\n \"\u20AC\": 1,}";
    ValueHandle made;
    ErrorHandle error;
    EXPECT_EQ(stencilor_value_parse_json(json.data(), json.size(), out(made), out(error)),
              STENCILOR_BAD_JSON);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(stencilor_error_status(error.get()), STENCILOR_BAD_JSON);
    EXPECT_EQ(textOf(stencilor_error_text, error.get()),
              "expected a name in quotation marks after ',', found '}'");
    EXPECT_EQ(stencilor_error_offset(error.get()), 12u);
    EXPECT_EQ(stencilor_error_line(error.get()), 2u);
    EXPECT_EQ(stencilor_error_column(error.get()), 9u);
}

TEST(CValue, KeepsTheDigitsOfJson) {
    EXPECT_EQ(renderValue("{{ n }}", valueOf("{\"n\": 1.50}").get()), "1.50");
}

/// What a member `n` of a JSON text renders as, escaped.
std::string renderJson(const std::string& json, int flags, std::string_view rawMark) {
    ContextHandle context;
    EXPECT_EQ(stencilor_context_parse_json(json.data(), json.size(), flags, rawMark.data(),
                                           rawMark.size(), out(context), nullptr),
              STENCILOR_OK);
    const OptionsHandle options = makeOptions();
    stencilor_options_set_escape(options.get(), STENCILOR_ESCAPE_HTML);
    return textOf(render(parse("{{ n }}"), context, options.get()));
}

TEST(CContext, LaysOutTheNumbersOfJsonOnRequest) {
    const struct {
        const char* written;
        const char* laidOut;
    } cases[] = {
        {"0", "0"},
        {"-0", "-0"},
        {"12345678901234567890123", "12345678901234567890123"},
        {"0.0", "0"},
        {"-0.0", "0"},
        {"0e5", "0"},
        {"1.0", "1"},
        {"-1.50", "-1.5"},
        {"100.0", "100"},
        {"120.25", "120.25"},
        {"0.001", "0.001"},
        {"1e-06", "0.000001"},
        {"1e-07", "1e-7"},
        {"1.25E+16", "12500000000000000"},
        {"1e+20", "100000000000000000000"},
        {"1e+21", "1e+21"},
        {"5e-324", "5e-324"},
        {"1.7976931348623157e+308", "1.7976931348623157e+308"},
        {"1e99999999999", "1e99999999999"},
    };
    for (const auto& [written, laidOut] : cases) {
        const std::string json = std::string("{\"n\": ") + written + "}";
        EXPECT_EQ(renderJson(json, STENCILOR_CONTEXT_SHORT_NUMBERS, ""), laidOut) << written;
        EXPECT_EQ(renderJson(json, 0, ""), written);
    }
}

TEST(CContext, TurnsMarkedJsonStringsIntoRawTexts) {
    EXPECT_EQ(renderJson(R"({"n": "\u0001<b>"})", 0, "\x01"), "<b>");
    EXPECT_EQ(renderJson(R"({"n": "\u0001"})", 0, "\x01"), "");
    EXPECT_EQ(renderJson(R"({"n": "<\u0001>"})", 0, "\x01"), "&lt;\x01&gt;");
    EXPECT_EQ(renderJson(R"({"n": "<b>"})", 0, ""), "&lt;b&gt;");
}

TEST(CContext, ReportsWhyJsonIsRejected) {
    const struct {
        const char* json;
        int flags;
        int status;
        const char* reason;
    } cases[] = {
        {"{,}", 0, STENCILOR_BAD_JSON, "expected a name in quotation marks or '}', found ','"},
        {R"({"$boolean": 1})", 0, STENCILOR_BAD_JSON,
         "expected true or false as the value of \"$boolean\""},
        {"[]", 0, STENCILOR_WRONG_KIND, ""},
        {"{}", 4, STENCILOR_INVALID_ARGUMENT, ""},
    };
    for (const auto& [json, flags, status, reason] : cases) {
        ContextHandle context;
        ErrorHandle error;
        EXPECT_EQ(stencilor_context_parse_json(json, whole, flags, "", 0, out(context), out(error)),
                  status);
        EXPECT_EQ(textOf(stencilor_error_text, error.get()), reason) << json;
        EXPECT_EQ(context, nullptr);
    }
}

TEST(CContext, AddsPositionsToElementsOnRequest) {
    const ValueHandle root = valueOf("{\"l\": [\"a\", \"b\"]}");
    const char* const text = "{% for i in l %}{{ i.index }}{{ i.value }}{% endfor %}";
    EXPECT_EQ(renderValue(text, root.get()), "ab");
    EXPECT_EQ(renderValue(text, root.get(), STENCILOR_CONTEXT_POSITIONS), "1a2b");
}

TEST(CContext, IsOnlyCreatedFromDictionaries) {
    ContextHandle made;
    ErrorHandle error;
    EXPECT_EQ(stencilor_context_create(valueOf("[]").get(), 0, out(made), out(error)),
              STENCILOR_WRONG_KIND);
    EXPECT_EQ(stencilor_context_create(valueOf("{}").get(), STENCILOR_CONTEXT_SHORT_NUMBERS,
                                       out(made), out(error)),
              STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(error, nullptr);
}

TEST(CContext, ReportsWhyAValueIsRejected) {
    const ValueHandle root = dictionary();
    stencilor_value_set_text(root.get(), "$boolean", whole, "yes", whole);
    ContextHandle made;
    ErrorHandle error;
    EXPECT_EQ(stencilor_context_create(root.get(), 0, out(made), out(error)),
              STENCILOR_INVALID_ARGUMENT);
    EXPECT_NE(textOf(stencilor_error_text, error.get()).find("$boolean"), std::string::npos);
    EXPECT_EQ(stencilor_error_line(error.get()), 0u);
}

} // namespace
} // namespace support
