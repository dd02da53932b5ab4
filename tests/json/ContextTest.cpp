#include <gtest/gtest.h>
#include <libStencilorJson/JsonValue.h>
#include <libStencilorJson/measure_names.h>

#include <string>

namespace kel::Stencilor {
namespace {

std::unique_ptr<ContextBase> contextOf(const std::string& json) {
    return contextFromJsonText(json, JsonRoot::Any);
}

/// What a template makes of a context, followed by the messages.
std::string rendered(const std::string& json, const std::string& text) {
    String errors;
    const String output = buildOutput(text, *contextOf(json), errors);
    return output.str() + errors.str();
}

TEST(JsonContext, GivesEachKindOfValueItsClass) {
    const auto context = contextOf(R"({"string":"a","number":1,"boolean":false,"array":[1],
                                       "object":{},"null":null,"truth":{"$boolean":true}})");
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context.get()), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context->find("string")), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context->find("number")), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context->find("boolean")), nullptr);
    EXPECT_NE(dynamic_cast<ContextIterable*>(context->find("array")), nullptr);
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context->find("object")), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context->find("truth")), nullptr);
    EXPECT_TRUE(context->containsKey("null"));
    EXPECT_EQ(context->find("null"), nullptr);
    EXPECT_EQ(dynamic_cast<ContextDictionary&>(*context).size(), 7u);
}

TEST(JsonContext, IsOfTheClassOfTheOutermostValue) {
    EXPECT_NE(dynamic_cast<ContextString*>(contextOf("1.50").get()), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(contextOf("true").get()), nullptr);
    EXPECT_NE(dynamic_cast<ContextIterable*>(contextOf("[]").get()), nullptr);
    EXPECT_NE(dynamic_cast<ContextDictionary*>(contextOf("{}").get()), nullptr);
    EXPECT_EQ(contextOf("null"), nullptr);
}

TEST(JsonContext, RendersItsValues) {
    const struct {
        const char* name;
        std::string json;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a string", R"({"a":"\u00e9\n"})", "{{ a }}", "\u00E9\n"},
        {"numbers as they are written", R"({"a":1.10,"b":-0,"c":1E5})", "{{a}} {{b}} {{c}}",
         "1.10 -0 1E5"},
        {"true", R"({"a":true})", "{% if a %}yes{% else %}no{% endif %}", "yes"},
        {"false", R"({"a":false})", "{% if a %}yes{% else %}no{% endif %}", "no"},
        {"a list of objects", R"({"a":[{"n":"1"},{"n":"2"}]})",
         "{% for x in a %}{{ x.n }},{% endfor %}", "1,2,"},
        {"lists in lists", R"({"a":[{"b":[{"n":"1"},{"n":"2"}]},{"b":[]},{"b":[{"n":"3"}]}]})",
         "{% for x in a %}[{% for y in x.b %}{{ n }}{% endfor %}]{% endfor %}", "[12][][3]"},
        {"null in a list, through which outer names are seen",
         R"({"n":"out","a":[{"n":"in"},null]})", "{% for x in a %}{{ n }} {% endfor %}", "in out "},
        {"null, which does not hide an outer name", R"({"n":"out","a":[{"n":null}]})",
         "{% for x in a %}{{ n }}{% endfor %}", "out"},
        {"null, which is found nowhere", R"({"n":null})", "{{ n }}",
         "Could not find expected replacement named \"n\"\n"},
        {"a true boolean with children", R"({"n":"out","a":{"$boolean":true,"n":"in"}})",
         "{% if a %}{{ n }}{% endif %}", "in"},
        {"a false boolean with children", R"({"a":{"n":"in","$boolean":false}})",
         "{% if a %}{% else %}{{ n }}{% endif %}", "in"},
        {"a boolean's member, which is no name", R"({"a":{"$boolean":true,"b":1}})",
         "{% if a %}{{ b }}{% endif %}", "1"},
        {"booleans with children in a list", R"({"a":[{"$boolean":true,"n":"1"}]})",
         "{% for x in a %}{{ x.n }}{% endfor %}", "1"},
        {"a root that is a boolean", R"({"$boolean":true,"a":"1"})", "{{ a }}", "1"},
    };
    for (const auto& [name, json, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(json, text), expected);
    }
}

TEST(JsonContext, HasNoChildForTheBooleansMember) {
    const auto context = contextOf(R"({"a":{"$boolean":true,"b":1},"$boolean":false})");
    EXPECT_FALSE(context->containsKey("$boolean"));
    EXPECT_FALSE(context->containsKey("a.$boolean"));
    EXPECT_FALSE(context->find("a")->containsKey("$boolean"));
    EXPECT_TRUE(context->containsKey("a.b"));
}

TEST(DottedNames, LeadToTheMembersOfNestedObjects) {
    const struct {
        const char* name;
        std::string json;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a member", R"({"user":{"name":"x"}})", "{{ user.name }}", "x"},
        {"a member of a member", R"({"user":{"address":{"city":"x"}}})", "{{ user.address.city }}",
         "x"},
        {"no part of the path", R"({"user":{"name":"x"}})", "{{ name }}",
         "Could not find expected replacement named \"name\"\n"},
        {"a boolean", R"({"user":{"is":true}})", "{% if user.is %}yes{% endif %}", "yes"},
        {"a list", R"({"user":{"tags":[{"t":"1"},{"t":"2"}]}})",
         "{% for x in user.tags %}{{ x.t }}{% endfor %}", "12"},
        {"a list and its original", R"({"a":{"b":{"c":[{"t":"1"}]}},"l":[{"t":"2"}]})",
         "{% for x in a.b.c %}{{ t }}{% endfor %}{% for x in l %}{{ t }}{% endfor %}", "12"},
        {"a boolean with children", R"({"a":{"b":{"$boolean":true,"c":"1"}}})",
         "{% if a.b %}{{ c }}{% endif %}{{ a.b.c }}", "11"},
        {"an object, which is no string", R"({"a":{"b":{}}})", "{{ a.b }}",
         "The replacement is not of type String for \"a.b\""},
        {"null", R"({"a":{"b":null}})", "{{ a.b }}",
         "Could not find expected replacement named \"a.b\"\n"},
        {"within an element", R"({"l":[{"user":{"name":"x"}}]})",
         "{% for e in l %}{{ e.user.name }}{{ user.name }}{% endfor %}", "xx"},
        {"within a boolean's children", R"({"a":{"$boolean":true,"b":{"c":"1"}}})",
         "{% if a %}{{ b.c }}{% endif %}", "1"},
        {"nothing within an array", R"({"l":[{"name":"x"}]})", "{{ l.name }}",
         "Could not find expected replacement named \"l.name\"\n"},
        {"members with dots in their names", R"({"a":{"b.c":"1"}})", "{{ a.b.c }}", "1"},
        {"an empty name", R"({"a":{"":"1"}})", "{{ a. }}", "1"},
    };
    for (const auto& [name, json, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(json, text), expected);
    }
}

TEST(DottedNames, GiveWayToOwnNames) {
    const struct {
        const char* name;
        std::string json;
        std::string expected;
    } cases[] = {
        {"an own name in front", R"({"a.b.c":"own","a":{"b":{"c":"nested"}}})", "own"},
        {"an own name behind", R"({"a":{"b":{"c":"nested"}},"a.b.c":"own"})", "own"},
        {"an own name one level down", R"({"a":{"b":{"c":"nested"},"b.c":"own"}})", "own"},
        {"an object of a longer own name in front",
         R"({"a.b":{"c":"longer"},"a":{"b.c":"shorter"}})", "longer"},
        {"an object of a longer own name behind",
         R"({"a":{"b":{"c":"shorter"}},"a.b":{"c":"longer"}})", "longer"},
    };
    for (const auto& [name, json, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(json, "{{ a.b.c }}"), expected);
    }
    EXPECT_EQ(rendered(R"({"a":{"b":"nested"},"a.b":["own"]})", "{{ a.b }}"),
              "The replacement is not of type String for \"a.b\"");
}

TEST(DottedNames, StandInEveryObjectAbove) {
    const auto context = contextOf(R"({"user":{"address":{"city":"x","tags":[1,2]}}})");
    const ContextBase* const user = context->find("user");
    ASSERT_NE(user, nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(user->find("address.city")), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context->find("user.address.city")), nullptr);
    auto* const tags = dynamic_cast<ContextIterable*>(context->find("user.address.tags"));
    ASSERT_NE(tags, nullptr);
    EXPECT_EQ(tags->size(), 2u);
    EXPECT_FALSE(context->containsKey("address.city"));
}

std::string nested(int levels, std::string innermost) {
    for (int i = 0; i < levels; ++i) {
        innermost = "{\"a\":" + innermost + "}";
    }
    return innermost;
}

TEST(DottedNames, ReachToTheDeepestLevel) {
    std::string name = "a";
    for (int i = 1; i < 512; ++i) {
        name += ".a";
    }
    EXPECT_EQ(rendered(nested(512, "\"x\""), "{{ " + name + " }}"), "x");
}

/// Objects and arrays in turn, in which copies of each list for each object around it would double
/// with every level.
TEST(DottedNames, OfListsWithinListsTakeNoCopies) {
    std::string json = R"({"n":"x"})";
    std::string text = "{{ n }}";
    for (int i = 0; i < 100; ++i) {
        json = R"({"a":{"b":{"c":[)" + json + "]}}}";
        text = "{% for e in a.b.c %}" + text + "{% endfor %}";
    }
    EXPECT_EQ(rendered(json, text), "x");
}

std::string members(int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":\"\"";
    }
    return "{" + result + "}";
}

std::string list(int count) {
    std::string result = "[0";
    for (int i = 1; i < count; ++i) {
        result += ",0";
    }
    return result + "]";
}

std::string nestedBooleans(int levels, std::string innermost) {
    for (int i = 0; i < levels; ++i) {
        innermost = R"({"$boolean":true,"a":)" + innermost + "}";
    }
    return innermost;
}

constexpr const char* tooLarge = "the context is too large: the dotted names of its nested objects "
                                 "would take over 512 MiB";

std::string errorOf(const std::string& json) {
    try {
        contextOf(json);
    } catch (const JsonError& error) {
        EXPECT_EQ(error.line(), 0u); // it has no place
        return error.what();
    }
    return "";
}

TEST(DottedNames, AreRefusedWhereTheyWouldTakeTooMuch) {
    const struct {
        const char* name;
        std::string json;
        bool isRefused;
    } cases[] = {
        {"many members at the top", members(5'000), false},
        {"many members a few levels down", nested(4, members(5'000)), false},
        {"few members on every level", nested(200, members(1)), false},
        {"many members at the bottom", nested(511, members(5'000)), true},
        {"a long list at the bottom", nested(511, list(200'000)), true},
        {"a long list at the top", nested(1, list(200'000)), false},
        {"many members at the bottom of booleans", nestedBooleans(200, members(5'000)), true},
        {"many members a few booleans down", nestedBooleans(4, members(5'000)), false},
    };
    for (const auto& [name, json, isRefused] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorOf(json), isRefused ? tooLarge : "");
    }
}

TEST(DottedNames, AreMeasured) {
    const auto measured = [](const std::string& json) {
        return internal::measureDottedNames(parseJson(json, JsonRoot::Any));
    };
    EXPECT_EQ(measured(members(100)), 0u);
    EXPECT_EQ(measured(R"({"a":[{"b":1},{"c":[]}]})"), 0u);
    const std::uint64_t one = measured(R"({"a":{"b":""}})");
    EXPECT_GT(one, 0u);
    EXPECT_EQ(measured(R"([{"a":{"b":""}},{"a":{"b":""}}])"), 2 * one);
    EXPECT_EQ(measured(R"({"a":{"b":"1234567"}})"), one + 7);
    EXPECT_EQ(measured(R"({"a":{"1234567b":""}})"), one + 7);
    EXPECT_EQ(measured(R"({"1234567a":{"b":""}})"), one + 7);
    EXPECT_EQ(measured(R"({"a":{"b":[1,2,3]}})"), one + 3 * sizeof(void*));
}

} // namespace
} // namespace kel::Stencilor
