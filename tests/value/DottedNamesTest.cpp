#include "../support/Test.h"
#include "Cases.h"

namespace kel::Stencilor {
namespace {

TEST(DottedNames, LeadToTheMembersOfNestedDictionaries) {
    const Case cases[] = {
        {"a member", {{"user", {{"name", "x"}}}}, "{{ user.name }}", "x"},
        {"a member of a member",
         {{"user", {{"address", {{"city", "x"}}}}}},
         "{{ user.address.city }}",
         "x"},
        {"no part of the path",
         {{"user", {{"name", "x"}}}},
         "{{ name }}",
         "Could not find expected replacement named \"name\"\n"},
        {"a boolean", {{"user", {{"is", true}}}}, "{% if user.is %}yes{% endif %}", "yes"},
        {"a raw text", {{"a", {{"b", Value::raw("<b>")}}}}, "{{ a.b }}", "<b>"},
        {"a list",
         {{"user", {{"tags", Value::list({{{"t", "1"}}, {{"t", "2"}}})}}}},
         "{% for x in user.tags %}{{ x.t }}{% endfor %}",
         "12"},
        {"a list of texts",
         {{"user", {{"tags", Value::list({"1", "2"})}}}},
         "{% for x in user.tags %}{{ x.value }}{% endfor %}",
         "12"},
        {"a dictionary, which is not a text",
         {{"a", {{"b", Value{}}}}},
         "{{ a.b }}",
         "The replacement is not of type String for \"a.b\""},
        {"null",
         {{"a", {{"b", nullptr}}}},
         "{{ a.b }}",
         "Could not find expected replacement named \"a.b\"\n"},
        {"within an element",
         {{"l", Value::list({{{"user", {{"name", "x"}}}}})}},
         "{% for e in l %}{{ e.user.name }}{{ user.name }}{% endfor %}",
         "xx"},
        {"nothing within a list",
         {{"l", Value::list({{{"name", "x"}}})}},
         "{{ l.name }}",
         "Could not find expected replacement named \"l.name\"\n"},
        {"keys that contain dots", {{"a", {{"b.c", "1"}}}}, "{{ a.b.c }}", "1"},
        {"an empty key", {{"a", {{"", "1"}}}}, "{{ a. }}", "1"},
    };
    expectRendered(cases);
}

TEST(DottedNames, GiveWayToKeys) {
    const struct {
        const char* name;
        Value value;
        std::string expected;
    } cases[] = {
        {"the name itself", {{"a.b.c", "key"}, {"a", {{"b", {{"c", "nested"}}}}}}, "key"},
        {"the name itself, one level down",
         {{"a", {{"b", {{"c", "nested"}}}, {"b.c", "key"}}}},
         "key"},
        {"a longer key", {{"a.b", {{"c", "longer"}}}, {"a", {{"b.c", "shorter"}}}}, "longer"},
        {"a longer key before a nested one",
         {{"a", {{"b", {{"c", "shorter"}}}}}, {"a.b", {{"c", "longer"}}}},
         "longer"},
        {"a longer key with others between them",
         {{"a", {{"b.c", "shorter"}}}, {"a!", {{"b.c", "other"}}}, {"a.b", {{"c", "longer"}}}},
         "longer"},
    };
    for (const auto& [name, value, expected] : cases) {
        EXPECT_EQ(rendered(value, "{{ a.b.c }}"), expected) << name;
    }
    EXPECT_EQ(rendered({{"a", {{"b", "nested"}}}, {"a.b", Value::list({"key"})}}, "{{ a.b }}"),
              "The replacement is not of type String for \"a.b\"");
    EXPECT_EQ(rendered({{"a", {{"b", "nested"}}}, {"a.b", nullptr}}, "{{ a.b }}"),
              "Could not find expected replacement named \"a.b\"\n");
}

TEST(DottedNames, AreInEveryDictionaryAbove) {
    const Context made(
        Value{{"user", {{"address", {{"city", "x"}, {"tags", Value::list({1, 2})}}}}}});
    const ContextBase& context = made;
    const ContextBase* const user = context.find("user");
    ASSERT_NE(user, nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(user->find("address.city")), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context.find("user.address.city")), nullptr);
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context.find("user.address")), nullptr);
    auto* const tags = dynamic_cast<ContextIterable*>(context.find("user.address.tags"));
    ASSERT_NE(tags, nullptr);
    EXPECT_EQ(tags->size(), 2u);
    EXPECT_FALSE(context.containsKey("address.city"));
}

TEST(DottedNames, KeepRawTextRaw) {
    const Context made(Value{{"a", {{"raw", Value::raw("<b>")}, {"plain", "<b>"}}}});
    const ContextBase& context = made;
    EXPECT_NE(dynamic_cast<ContextRawString*>(context.find("a.raw")), nullptr);
    EXPECT_EQ(dynamic_cast<ContextRawString*>(context.find("a.plain")), nullptr);
}

Value nested(unsigned int levels, Value innermost, bool boolean = false) {
    for (unsigned int i = 0; i < levels; ++i) {
        Value around;
        around.set("a", std::move(innermost));
        if (boolean) {
            around.set("$boolean", true);
        }
        innermost = std::move(around);
    }
    return innermost;
}

TEST(DottedNames, ReachToTheDeepestLevel) {
    std::string name = "a";
    for (unsigned int i = 1; i < Value::deepest; ++i) {
        name += ".a";
    }
    EXPECT_EQ(rendered(nested(Value::deepest, "x"), "{{ " + name + " }}"), "x");
}

/// Alternating dictionaries and lists. If each list were copied for each dictionary around it, the
/// copies would double with every level.
TEST(DottedNames, OfListsWithinListsAreNotCopied) {
    Value value{{"n", "x"}};
    std::string text = "{{ n }}";
    for (int i = 0; i < 100; ++i) {
        value = {{"a", {{"b", {{"c", Value::list({value})}}}}}};
        text = "{% for e in a.b.c %}" + text + "{% endfor %}";
    }
    EXPECT_EQ(rendered(value, text), "x");
}

Value members(int count) {
    Value result;
    for (int i = 0; i < count; ++i) {
        result.set(String(std::to_string(i)), "");
    }
    return result;
}

TEST(DottedNames, AreRejectedIfTheyNeedTooMuchMemory) {
    constexpr std::size_t mebibyte = 1024 * 1024;
    const std::string longText(60 * mebibyte, 'x'); // shared, so that it exists once
    const struct {
        const char* name;
        Value value;
        bool isRefused;
    } cases[] = {
        {"many members at the top", members(5'000), false},
        {"many members a few levels down", nested(4, members(5'000)), false},
        {"few members on every level", nested(200, members(1)), false},
        {"a long list at the top", nested(1, std::vector<bool>(200'000)), false},
        {"many members a few booleans down", nested(4, members(5'000), true), false},
        {"a long text a few levels down", nested(9, longText), false},
        {"a long text more levels down", nested(10, longText), true},
    };
    for (const auto& [name, value, isRefused] : cases) {
        SCOPED_TRACE(name);
        if (isRefused) {
            EXPECT_THROW(Context{value}, std::length_error);
        } else {
            EXPECT_NO_THROW(Context{value});
        }
    }
}

} // namespace
} // namespace kel::Stencilor
