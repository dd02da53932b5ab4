#include <gtest/gtest.h>
#include <libStencilorJson/JsonValue.h>

#include <string>

namespace kel::Stencilor {
namespace {

/// The value written as JSON again, in one way only.
std::string written(const JsonValue& value) {
    switch (value.kind) {
    case JsonValue::Kind::Null:
        return "null";
    case JsonValue::Kind::Boolean:
        return value.truth ? "true" : "false";
    case JsonValue::Kind::Number:
        return value.text;
    case JsonValue::Kind::String:
        return "\"" + value.text + "\"";
    case JsonValue::Kind::Array:
    case JsonValue::Kind::Object:
        break;
    }
    const bool isObject = value.kind == JsonValue::Kind::Object;
    std::string result;
    for (std::size_t i = 0; i < value.items.size(); ++i) {
        result += i > 0 ? "," : "";
        result += isObject ? value.names[i] + ":" : "";
        result += written(value.items[i]);
    }
    return isObject ? "{" + result + "}" : "[" + result + "]";
}

std::string parsed(const std::string& text) {
    try {
        return written(parseJson(text, JsonRoot::Any));
    } catch (const JsonError& error) {
        return std::string("error at ") + error.what();
    }
}

TEST(JsonDocument, HoldsWhatTheTextSays) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"an empty object", "{}", "{}"},
        {"an empty array", "[]", "[]"},
        {"members in their order", R"({"b":1,"a":[true,false,null]})", "{b:1,a:[true,false,null]}"},
        {"blanks of every kind", "\t{ \r\n \"a\" : [ 1 , 2 ] } \n", "{a:[1,2]}"},
        {"a byte-order mark", "\xEF\xBB\xBF{\"a\":1}", "{a:1}"},
        {"a byte-order mark before a number", "\xEF\xBB\xBF-0.50", "-0.50"},
        {"an empty name", R"({"":1})", "{:1}"},
        {"separators inside of strings", R"({",:":",:{}[]"})", "{,::\",:{}[]\"}"},
        {"escapes", R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\ude00")",
         "\"\"\\/\b\f\n\r\tA\u00E9\u20AC\U0001F600\""},
        {"an escaped NUL", R"("a\u0000b")", std::string("\"a\0b\"", 5)},
        {"a string that ends in an escaped backslash", R"(["\\","x"])", R"(["\","x"])"},
        {"a number behind a string that ends in an escaped quote", R"(["\"",7])", R"([""",7])"},
        {"the same name in different objects", R"({"a":{"a":1},"b":{"a":2}})", "{a:{a:1},b:{a:2}}"},
        {"a boolean with children", R"({"$boolean":true,"a":1})", "{$boolean:true,a:1}"},
        {"a string called like the boolean's member", R"(["$boolean"])", R"(["$boolean"])"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(parsed(text), expected);
    }
}

TEST(JsonDocument, KeepsNumbersAsTheyAreWritten) {
    const std::string numbers[] = {
        "0",
        "-0",
        "-0.0",
        "1.10",
        "0.10",
        "1E5",
        "1e+05",
        "1E-07",
        "100",
        "-12",
        "9223372036854775807",
        "-9223372036854775808",
        "18446744073709551615",
        "18446744073709551616",
        "123456789012345678901234567890",
        "-123456789012345678901234567890.1234567890123456789",
        "1e400",
        "-1e99999999999999999999",
        "1e-400",
        std::string(1000, '7'),
    };
    for (const std::string& number : numbers) {
        SCOPED_TRACE(number);
        EXPECT_EQ(parsed(number), number);
        EXPECT_EQ(parsed("[" + number + "," + number + " ]"), "[" + number + "," + number + "]");
        EXPECT_EQ(parsed("{\"a\":" + number + "}"), "{a:" + number + "}");
    }
}

TEST(JsonDocument, MayBeNested512LevelsDeep) {
    const std::string arrays = std::string(512, '[') + std::string(512, ']');
    EXPECT_EQ(parsed(arrays), arrays);
    EXPECT_EQ(parsed("[" + arrays + "]"), "error at 1:513: nested more than 512 levels deep");
    EXPECT_EQ(parsed("[[]," + std::string(511, '[') + std::string(511, ']') + "]"),
              "[[]," + std::string(511, '[') + std::string(511, ']') + "]");

    std::string objects = "1";
    std::string expected = "1";
    for (int i = 0; i < 512; ++i) {
        objects = "{\"a\":" + objects + "}";
        expected = "{a:" + expected + "}";
    }
    EXPECT_EQ(parsed(objects), expected);
    EXPECT_EQ(parsed("{\"a\":" + objects + "}"),
              "error at 1:2561: nested more than 512 levels deep");
}

TEST(JsonDocument, RefusesNestingOfAnyDepthWithoutExhaustingTheStack) {
    EXPECT_EQ(parsed(std::string(1'000'000, '[')),
              "error at 1:513: nested more than 512 levels deep");
}

} // namespace
} // namespace kel::Stencilor
