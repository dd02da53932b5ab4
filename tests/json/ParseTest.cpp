#include "../support/Test.h"

#include <libStencilorJson/JsonText.h>

namespace kel::Stencilor {
namespace {

TEST(JsonText, ConvertsToValues) {
    const struct {
        const char* name;
        std::string text;
        Value expected;
    } cases[] = {
        {"an empty object", "{}", Value{}},
        {"an empty array", "[]", Value::list()},
        {"literals", "[true,false,null]", Value::list({true, false, nullptr})},
        {"only a string", R"("a")", "a"},
        {"only a literal", "null", nullptr},
        {"members", R"({"b":1,"a":["2"]})", {{"a", Value::list({"2"})}, {"b", "1"}}},
        {"whitespace of every kind",
         "\t{ \r\n \"a\" : [ 1 , 2 ] } \n",
         {{"a", Value::list({1, 2})}}},
        {"a byte-order mark", "\xEF\xBB\xBF{\"a\":1}", {{"a", 1}}},
        {"a byte-order mark before a number", "\xEF\xBB\xBF-0.50", "-0.50"},
        {"an empty name", R"({"":1})", {{"", 1}}},
        {"separators inside strings", R"({",:":",:{}[]"})", {{",:", ",:{}[]"}}},
        {"escapes", R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\ude00")",
         "\"\\/\b\f\n\r\tA\u00E9\u20AC\U0001F600"},
        {"an escaped NUL", R"("a\u0000b")", std::string("a\0b", 3)},
        {"a string that ends in an escaped backslash", R"(["\\","x"])", Value::list({"\\", "x"})},
        {"a number after a string that ends in an escaped quote", R"(["\"",7])",
         Value::list({"\"", 7})},
        {"arrays in arrays", "[[],[[1]],2]",
         Value::list({Value::list(), Value::list({Value::list({1})}), 2})},
        {"the same name in different objects",
         R"({"a":{"a":1},"b":{"a":2}})",
         {{"a", {{"a", 1}}}, {"b", {{"a", 2}}}}},
        {"an object in an array in an object",
         R"({"a":[{"b":{}},{}],"c":1})",
         {{"a", Value::list({{{"b", Value{}}}, Value{}})}, {"c", 1}}},
        {"a boolean with members", R"({"$boolean":true,"a":1})", {{"$boolean", true}, {"a", 1}}},
        {"a string with the name of the boolean's member", R"(["$boolean",1])",
         Value::list({"$boolean", 1})},
    };
    for (const auto& [name, text, expected] : cases) {
        EXPECT_TRUE(valueFromJsonText(text) == expected) << name;
    }
}

TEST(JsonText, KeepsNumbersAsTheyAreWritten) {
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
        EXPECT_EQ(valueFromJsonText(number).text().str(), number);
        EXPECT_EQ(valueFromJsonText("[1," + number + " ]").at(1).text().str(), number);
        EXPECT_EQ(valueFromJsonText("{\"a\":" + number + "}").find("a")->text().str(), number);
    }
}

} // namespace
} // namespace kel::Stencilor
