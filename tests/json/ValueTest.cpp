#include <gtest/gtest.h>
#include <libStencilorJson/Json.h>

#include <limits>
#include <string>

namespace kel::Stencilor {
namespace {

using Json = nlohmann::json;

std::string errorOf(const Json& json) {
    try {
        contextFromJson(json);
    } catch (const JsonError& error) {
        EXPECT_EQ(error.line(), 0u);
        EXPECT_EQ(error.column(), 0u);
        return error.what();
    }
    return "none";
}

/// What a template makes of a context, followed by the messages.
std::string rendered(const Json& json, const std::string& text) {
    String errors;
    const String output = buildOutput(text, *contextFromJson(json), errors);
    return output.str() + errors.str();
}

TEST(NlohmannValues, BecomeWhatTheirKindSays) {
    const auto context = contextFromJson({{"string", "a"},
                                          {"number", 1},
                                          {"boolean", false},
                                          {"array", {1, 2}},
                                          {"object", Json::object()},
                                          {"null", nullptr},
                                          {"truth", {{"$boolean", true}, {"a", 1}}}});
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context.get()), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context->find("string")), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context->find("number")), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context->find("boolean")), nullptr);
    EXPECT_NE(dynamic_cast<ContextIterable*>(context->find("array")), nullptr);
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context->find("object")), nullptr);
    EXPECT_TRUE(context->containsKey("null"));
    EXPECT_EQ(context->find("null"), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context->find("truth")), nullptr);
    EXPECT_TRUE(context->containsKey("truth.a"));
    EXPECT_FALSE(context->containsKey("truth.$boolean"));
    EXPECT_EQ(contextFromJson(nullptr), nullptr);
}

TEST(NlohmannValues, AreRendered) {
    const struct {
        const char* name;
        Json json;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a string", {{"a", "\u00E9\n"}}, "{{ a }}", "\u00E9\n"},
        {"a string up to its NUL", {{"a", std::string("b\0c", 3)}}, "{{ a }}", "b"},
        {"whole numbers",
         {{"a", -7}, {"b", 0}, {"c", 18446744073709551615u}},
         "{{a}} {{b}} {{c}}",
         "-7 0 18446744073709551615"},
        {"fractions in the fewest digits",
         {{"a", 0.1}, {"b", -2.0}, {"c", 1e300}},
         "{{a}} {{b}} {{c}}",
         "0.1 -2.0 1e+300"},
        {"true", {{"a", true}}, "{% if a %}yes{% else %}no{% endif %}", "yes"},
        {"false", {{"a", false}}, "{% if a %}yes{% else %}no{% endif %}", "no"},
        {"a list of objects",
         {{"a", {{{"n", "1"}}, {{"n", "2"}}}}},
         "{% for x in a %}{{ x.n }},{% endfor %}",
         "1,2,"},
        {"null, which is found nowhere",
         {{"n", nullptr}},
         "{{ n }}",
         "Could not find expected replacement named \"n\"\n"},
        {"a boolean with children",
         {{"n", "out"}, {"a", {{"$boolean", true}, {"n", "in"}}}},
         "{% if a %}{{ n }}{% endif %}",
         "in"},
        {"dotted names", {{"a", {{"b", {{"c", "x"}}}}}}, "{{ a.b.c }}", "x"},
        {"own names before dotted ones", {{"a.b", "own"}, {"a", {{"b", "x"}}}}, "{{ a.b }}", "own"},
    };
    for (const auto& [name, json, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(json, text), expected);
        const auto read = contextFromJsonText(json.dump());
        String errors;
        const String output = buildOutput(text, *read, errors);
        EXPECT_EQ(output.str() + errors.str(), expected) << "as text";
    }
}

TEST(NlohmannValues, MayKeepTheOrderOfMembers) {
    const auto json = nlohmann::ordered_json::parse(R"({"b":1.50,"a":{"c":"x"}})");
    EXPECT_EQ(rendered(json, "{{ b }}{{ a.c }}"), "1.5x");
}

Json nested(int levels) {
    Json json = Json::array();
    for (int i = 1; i < levels; ++i) {
        json = Json::array({json});
    }
    return json;
}

Json objects(int levels, Json innermost) {
    for (int i = 0; i < levels; ++i) {
        innermost = Json::object({{"a", std::move(innermost)}});
    }
    return innermost;
}

TEST(NlohmannValues, AreRefusedWithTheirPlace) {
    const double infinite = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        Json json;
        std::string expected;
    } cases[] = {
        {"malformed UTF-8 at the top", "\xFF", "malformed UTF-8"},
        {"malformed UTF-8 in a member", {{"a", {1, "\xC0\xAF"}}}, "/a/1: malformed UTF-8"},
        {"malformed UTF-8 in a name", {{"a", {{"\xFF", 1}}}}, "/a: malformed UTF-8"},
        {"a value behind another one", {{"a", {{1}, {"\xFF"}}}}, "/a/1/0: malformed UTF-8"},
        {"names with slashes and tildes", {{"a/b", {{"~", "\xFF"}}}}, "/a~1b/~0: malformed UTF-8"},
        {"an infinite number", {{"a", infinite}}, "/a: not a finite number"},
        {"what is not a number", {{"a", none}}, "/a: not a finite number"},
        {"binary data", {{"a", Json::binary({1, 2})}}, "/a: binary data, which JSON does not have"},
        {"what its parser gave up", Json::parse("{", nullptr, false), "a discarded value"},
        {"a boolean that is none",
         {{"a", {{"$boolean", 1}}}},
         "/a: expected true or false as the value of \"$boolean\""},
        {"a root that is no boolean",
         {{"$boolean", nullptr}},
         "expected true or false as the value of \"$boolean\""},
        {"a list as a boolean",
         {{"$boolean", Json::array()}},
         "expected true or false as the value of \"$boolean\""},
        {"512 levels", nested(512), "none"},
        {"a thousand lists side by side", std::vector<Json>(1000, Json::array()), "none"},
        {"many members at the top", {{"a", std::vector<int>(200'000)}}, "none"},
        {"a long list at the bottom", objects(511, std::vector<int>(200'000)),
         "the context is too large: the dotted names of its nested objects would take over 512 "
         "MiB"},
    };
    for (const auto& [name, json, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorOf(json), expected);
    }
}

TEST(NlohmannValues, AreRefusedWhereTheyAreNestedTooDeep) {
    std::string place;
    for (int i = 0; i < 512; ++i) {
        place += "/0";
    }
    EXPECT_EQ(errorOf(nested(513)), place + ": nested more than 512 levels deep");
}

JsonValue string(const char* text) {
    return {.kind = JsonValue::Kind::String, .text = text};
}

TEST(JsonValues, AreSetAndReplaced) {
    JsonValue object{.kind = JsonValue::Kind::Object};
    object.set("a", string("1"));
    object.set("b", string("2"));
    object.set("a", string("3"));
    EXPECT_EQ(object.names, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(buildOutput("{{ a }}{{ b }}", *contextFromJsonValue(object)).str(), "32");
}

TEST(JsonValues, MadeByHandAreRefusedWhereNoTextCouldSayThem) {
    JsonValue twice{.kind = JsonValue::Kind::Object};
    twice.names = {"a", "a"};
    twice.items = {string("1"), string("2")};
    JsonValue truth{.kind = JsonValue::Kind::Object};
    truth.set("$boolean", string("true"));
    const struct {
        const char* name;
        const JsonValue& value;
        std::string expected;
    } cases[] = {
        {"the same name twice", twice, "duplicate name \"a\""},
        {"a boolean that is none", truth, "expected true or false as the value of \"$boolean\""},
    };
    for (const auto& [name, value, expected] : cases) {
        SCOPED_TRACE(name);
        try {
            contextFromJsonValue(value);
            ADD_FAILURE() << "it was taken";
        } catch (const JsonError& error) {
            EXPECT_EQ(error.what(), expected);
        }
    }
}

} // namespace
} // namespace kel::Stencilor
