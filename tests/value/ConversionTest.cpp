#include "../support/Test.h"

#include <libStencilor/Value.h>

#include <deque>
#include <forward_list>
#include <list>
#include <unordered_map>

namespace kel::Stencilor {
namespace {

/// Converts to a string like types of other libraries.
struct Name {
    operator std::string_view() const { return "name"; }
};

TEST(Conversion, ConvertsTextsToTexts) {
    char characters[] = "array";
    char* const pointer = characters;
    const struct {
        const char* name;
        Value value;
        std::string expected;
    } cases[] = {
        {"a literal", "literal", "literal"},
        {"a pointer to characters", pointer, "array"},
        {"a pointer to constant characters", static_cast<const char*>(pointer), "array"},
        {"an array of characters", characters, "array"},
        {"a null pointer to characters", static_cast<const char*>(nullptr), ""},
        {"a standard string", std::string("string"), "string"},
        {"a standard string with NUL", std::string("a\0b", 3), std::string("a\0b", 3)},
        {"a view", std::string_view("view").substr(1), "iew"},
        {"our string", String("ours"), "ours"},
        {"a type that converts to a view", Name(), "name"},
        {"a character", 'c', "c"},
        {"the character NUL", '\0', std::string(1, '\0')},
        {"malformed UTF-8, unchanged", "\xFF", "\xFF"},
        {"an empty text", "", ""},
    };
    for (const auto& [name, value, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(value.kind(), Value::Kind::Text);
        EXPECT_EQ(value.text().str(), expected);
    }
}

TEST(Conversion, ConvertsIntegersToTexts) {
    const struct {
        const char* name;
        Value value;
        const char* expected;
    } cases[] = {
        {"zero", 0, "0"},
        {"a negative number", -7, "-7"},
        {"a signed character", static_cast<signed char>('A'), "65"},
        {"an unsigned character", static_cast<unsigned char>(255), "255"},
        {"a short number", static_cast<short>(-300), "-300"},
        {"an unsigned short number", static_cast<unsigned short>(65535), "65535"},
        {"an unsigned number", 4294967295u, "4294967295"},
        {"a long number", 2147483647L, "2147483647"},
        {"an unsigned long number", 2147483648UL, "2147483648"},
        {"the smallest number", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
        {"the largest signed number", std::numeric_limits<long long>::max(), "9223372036854775807"},
        {"the largest number", std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
    };
    for (const auto& [name, value, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(value.kind(), Value::Kind::Text);
        EXPECT_EQ(value.text(), expected);
    }
}

TEST(Conversion, ConvertsBooleansToBooleans) {
    EXPECT_EQ(Value(true).kind(), Value::Kind::Boolean);
    EXPECT_TRUE(Value(true).isTrue());
    EXPECT_EQ(Value(false).kind(), Value::Kind::Boolean);
    EXPECT_FALSE(Value(false).isTrue());
}

TEST(Conversion, ConvertsAbsentValuesToNull) {
    EXPECT_EQ(Value(nullptr).kind(), Value::Kind::Null);
    EXPECT_EQ(Value(std::nullopt).kind(), Value::Kind::Null);
    EXPECT_EQ(Value(std::optional<int>()).kind(), Value::Kind::Null);
    EXPECT_EQ(Value(std::optional<int>(5)), Value(5));
    EXPECT_EQ(Value(std::optional<std::optional<bool>>(true)), Value(true));
    EXPECT_EQ(Value(std::optional<Value>(Value::list())), Value::list());
}

TEST(Conversion, ConvertsRangesToLists) {
    const int array[] = {1, 2};
    const std::vector<int> vector = {1, 2};
    const struct {
        const char* name;
        Value value;
    } cases[] = {
        {"an array", array},
        {"a standard array", std::array{1, 2}},
        {"a vector", vector},
        {"a list", std::list<int>{1, 2}},
        {"a forward list", std::forward_list<long>{1, 2}},
        {"a deque", std::deque<unsigned char>{1, 2}},
        {"a set", std::set<int>{2, 1}},
        {"a span", std::span(vector)},
        {"an initializer list", std::initializer_list<int>{1, 2}},
        {"a vector of texts", std::vector<std::string>{"1", "2"}},
        {"a vector of floating-point numbers", std::vector<double>{1, 2}},
        {"a vector of values", std::vector<Value>{1, 2}},
        {"a vector of optional numbers", std::vector<std::optional<int>>{1, 2}},
    };
    for (const auto& [name, value] : cases) {
        EXPECT_EQ(value, Value::list({1, 2})) << name;
    }
    EXPECT_EQ(Value(std::vector<bool>{true, false}), Value::list({true, false}));
    EXPECT_EQ(Value(std::vector<std::vector<int>>{{1}, {}}),
              Value::list({Value::list({1}), Value::list()}));
    EXPECT_EQ(Value(std::vector<int>()), Value::list());
}

TEST(Conversion, ConvertsMapsToDictionaries) {
    const Value expected{{"a", 1}, {"b", 2}};
    EXPECT_EQ(Value(std::map<std::string, int>{{"a", 1}, {"b", 2}}), expected);
    EXPECT_EQ(Value(std::unordered_map<std::string, int>{{"b", 2}, {"a", 1}}), expected);
    EXPECT_EQ(Value(std::map<String, Value>{{"a", 1}, {"b", 2}}), expected);
    EXPECT_EQ(Value(std::map<std::string_view, long>{{"a", 1}, {"b", 2}}), expected);
    EXPECT_EQ(Value(std::multimap<std::string, int>{{"a", 3}, {"a", 1}, {"b", 2}}), expected);
    EXPECT_EQ(Value(std::map<std::string, std::vector<bool>>{{"a", {true}}}),
              (Value{{"a", Value::list({true})}}));
    EXPECT_EQ(Value(std::map<std::string, int>()), Value());
}

TEST(Conversion, AcceptsAnyTextAsAKey) {
    const std::string string = "string";
    EXPECT_EQ((Value{{string, 1}, {std::string_view("view"), 2}, {String("ours"), 3}, {Name(), 4}}),
              (Value{{"string", 1}, {"view", 2}, {"ours", 3}, {"name", 4}}));
}

TEST(Conversion, NestsBraces) {
    const Value value{{"a", Value{{"b", {{"c", 1}}}}}, {"list", Value::list({{{"d", 2}}, {}})}};
    EXPECT_EQ(value.find("a")->find("b")->find("c")->text(), "1");
    EXPECT_EQ(value.find("list")->at(0).find("d")->text(), "2");
    EXPECT_EQ(value.find("list")->at(1), Value());
}

/// Moves each level into the next one. Copying would take quadratic time.
TEST(Conversion, CopiesNoBraces) {
    const Value inner{{"x", 1}};
    Value moved = inner;
    const Value* const address = moved.find("x");
    const Value value{{"a", {{"b", {{"c", std::move(moved)}}}}}};
    EXPECT_EQ(value.find("a")->find("b")->find("c")->find("x"), address);
}

} // namespace
} // namespace kel::Stencilor
