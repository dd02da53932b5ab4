#include "../support/Test.h"

#include <libStencilorJson/Json.h>

namespace kel::Stencilor {
namespace {

using Json = nlohmann::json;

static_assert(!std::is_constructible_v<Value, Json> && !std::is_convertible_v<Json, Value>);
static_assert(!std::is_constructible_v<Value, std::vector<Json>>);

std::string errorOf(const Json& json) {
    try {
        valueFromJson(json);
    } catch (const JsonError& error) {
        EXPECT_EQ(error.line(), 0u);
        EXPECT_EQ(error.column(), 0u);
        return error.what();
    }
    return "none";
}

TEST(NlohmannValues, ConvertToTheSameValues) {
    const struct {
        const char* name;
        Json json;
        Value expected;
    } cases[] = {
        {"null", nullptr, nullptr},
        {"a string", "\u00E9\n", "\u00E9\n"},
        {"a string with NUL", std::string("b\0c", 3), std::string("b\0c", 3)},
        {"true", true, true},
        {"false", false, false},
        {"an integer", -7, "-7"},
        {"the smallest integer", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
        {"the largest integer", 18446744073709551615u, "18446744073709551615"},
        {"a fraction", 0.1, "0.1"},
        {"a fraction without digits, as values write it", -2.0, "-2"},
        {"a large number", 1e300, "1e+300"},
        {"an empty array", Json::array(), Value::list()},
        {"an array", {1, "two", Json::array({3})}, Value::list({1, "two", Value::list({3})})},
        {"an empty object", Json::object(), Value{}},
        {"an object", {{"b", {{"c", 1}}}, {"a", 2}}, {{"a", 2}, {"b", {{"c", 1}}}}},
        {"a boolean with members", {{"$boolean", true}, {"a", 1}}, {{"$boolean", true}, {"a", 1}}},
    };
    for (const auto& [name, json, expected] : cases) {
        EXPECT_TRUE(valueFromJson(json) == expected) << name;
    }
}

TEST(NlohmannValues, MayKeepTheOrderOfMembers) {
    const auto json = nlohmann::ordered_json::parse(R"({"b":1.50,"a":{"c":"x"}})");
    EXPECT_TRUE(valueFromJson(json) == (Value{{"a", {{"c", "x"}}}, {"b", 1.5}}));
}

Json nested(int levels) {
    Json json = Json::array();
    for (int i = 1; i < levels; ++i) {
        json = Json::array({json});
    }
    return json;
}

TEST(NlohmannValues, AreRejectedWithTheirPointer) {
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
        {"a value after another one", {{"a", {{1}, {"\xFF"}}}}, "/a/1/0: malformed UTF-8"},
        {"names with slashes and tildes", {{"a/b", {{"~", "\xFF"}}}}, "/a~1b/~0: malformed UTF-8"},
        {"an infinite number", {{"a", infinite}}, "/a: not a finite number"},
        {"not a number", {{"a", none}}, "/a: not a finite number"},
        {"binary data", {{"a", Json::binary({1, 2})}}, "/a: binary data, which JSON does not have"},
        {"a value that its parser discarded", Json::parse("{", nullptr, false),
         "a discarded value"},
        {"512 levels", nested(512), "none"},
        {"a thousand lists side by side", std::vector<Json>(1000, Json::array()), "none"},
    };
    for (const auto& [name, json, expected] : cases) {
        EXPECT_EQ(errorOf(json), expected) << name;
    }
}

TEST(NlohmannValues, AreRejectedIfNestedTooDeeply) {
    std::string place;
    for (int i = 0; i < 512; ++i) {
        place += "/0";
    }
    EXPECT_EQ(errorOf(nested(513)), place + ": nested more than 512 levels deep");
}

} // namespace
} // namespace kel::Stencilor
