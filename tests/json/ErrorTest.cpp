#include "../support/Test.h"

#include <libStencilorJson/JsonText.h>

namespace kel::Stencilor {
namespace {

/// The error as `LINE:COLUMN: REASON`.
std::string errorIn(const std::string& text) {
    try {
        valueFromJsonText(text);
    } catch (const JsonError& error) {
        return error.what();
    }
    return "none";
}

struct Case {
    const char* name;
    std::string text;
    std::string expected;
};

void expectErrors(std::span<const Case> cases) {
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text), expected);
    }
}

TEST(JsonErrors, ReportWhatWasExpectedAndWhere) {
    const Case cases[] = {
        {"an empty text", "", "1:1: expected a value, found the end of the text"},
        {"only whitespace", " \n ", "2:2: expected a value, found the end of the text"},
        {"only a byte-order mark", "\xEF\xBB\xBF",
         "1:1: expected a value, found the end of the text"},
        {"an open object", "{",
         "1:2: expected a name in quotation marks or '}', found the end of the text"},
        {"a name without quotation marks", "{a:1}",
         "1:2: expected a name in quotation marks or '}', found 'a'"},
        {"a number as a name", R"({ 1:2})",
         "1:3: expected a name in quotation marks or '}', found '1'"},
        {"a leading comma in an object", "{,}",
         "1:2: expected a name in quotation marks or '}', found ','"},
        {"no colon", R"({"a" 1})", "1:6: expected ':' after a name, found '1'"},
        {"a string instead of a colon", R"({"a"  "b"})",
         "1:7: expected ':' after a name, found '\"'"},
        {"a comma instead of a colon", R"({"a",1})", "1:5: expected ':' after a name, found ','"},
        {"the end instead of a colon", R"({"a" )",
         "1:6: expected ':' after a name, found the end of the text"},
        {"no value", R"({"a": })", "1:7: expected a value after ':', found '}'"},
        {"two colons", R"({"a"::1})", "1:6: expected a value after ':', found ':'"},
        {"no comma in an object", R"({"a":1 "b":2})",
         "1:8: expected ',' or '}' after an object member, found '\"'"},
        {"a bracket at the end of an object", R"({"a":1])",
         "1:7: expected ',' or '}' after an object member, found ']'"},
        {"an object cut short after a value", R"({"a":1)",
         "1:7: expected ',' or '}' after an object member, found the end of the text"},
        {"a trailing comma in an object", R"({"a":1,})",
         "1:8: expected a name in quotation marks after ',', found '}'"},
        {"two commas in an object", R"({"a":1,,"b":2})",
         "1:8: expected a name in quotation marks after ',', found ','"},
        {"an open array", "[", "1:2: expected a value or ']', found the end of the text"},
        {"a leading comma in an array", "[,1]", "1:2: expected a value or ']', found ','"},
        {"a brace at the start of an array", "[}", "1:2: expected a value or ']', found '}'"},
        {"no comma in an array", "[1 2]",
         "1:4: expected ',' or ']' after an array element, found '2'"},
        {"a colon in an array", R"(["a":1])",
         "1:5: expected ',' or ']' after an array element, found ':'"},
        {"a trailing comma in an array", "[1,]", "1:4: expected a value after ',', found ']'"},
        {"two commas in an array", "[1,,2]", "1:4: expected a value after ',', found ','"},
        {"an array cut short after a comma", "[1, ",
         "1:5: expected a value after ',', found the end of the text"},
        {"a leading zero", "[01]", "1:2: a number must not have leading zeros"},
        {"a sum", "[-1.5-2]", "1:6: expected ',' or ']' after an array element, found '-'"},
        {"a number with two decimal points", "[1.5.2]",
         "1:5: expected ',' or ']' after an array element, found '.'"},
        {"a number with two exponents", "[1e+5e6]",
         "1:6: expected ',' or ']' after an array element, found 'e6'"},
        {"text after the end", "{} x", "1:4: expected the end of the text, found 'x'"},
        {"a second value", "1 2", "1:3: expected the end of the text, found '2'"},
        {"a comma after the end", "{},", "1:3: expected the end of the text, found ','"},
        {"an extra brace", R"({"a":{}}})", "1:9: expected the end of the text, found '}'"},
        {"a misspelled literal", R"({"a": tru})", "1:7: expected a value after ':', found 'tru'"},
        {"a literal in capitals", R"([True])", "1:2: expected a value or ']', found 'True'"},
        {"a literal followed by letters", "[nulls]",
         "1:6: expected ',' or ']' after an array element, found 's'"},
        {"not a number", "[NaN]", "1:2: expected a value or ']', found 'NaN'"},
        {"a plus sign", "[1,+1]", "1:4: expected a value after ',', found '+'"},
        {"a string in single quotes", "['a']", "1:2: expected a value or ']', found \"'\""},
        {"a comment", "[1 // one\n]", "1:4: expected ',' or ']' after an array element, found '/'"},
    };
    expectErrors(cases);
}

TEST(JsonErrors, PointIntoStringsAndNumbers) {
    const Case cases[] = {
        {"a string without an end", R"(["abc)",
         "1:6: expected '\"' at the end of a string, found the end of the text"},
        {"a line break in a string", "[\"ab\nc\"]",
         "1:5: a control character in a string must be written as \\n"},
        {"a tab in a name", "{\"a\tb\":1}",
         "1:4: a control character in a string must be written as \\t"},
        {"an unknown escape", R"(["a\qb"])",
         "1:5: expected one of \" \\ / b f n r t u after '\\', found 'qb'"},
        {"too few digits in an escape", R"(["\u12G4"])",
         "1:7: expected 4 hexadecimal digits after '\\u', found 'G4'"},
        {"a leading surrogate before text", R"(["ab\ud83dxyz"])",
         "1:5: expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one"},
        {"a leading surrogate before another escape", R"(["\ud83d\n"])",
         "1:3: expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one"},
        {"a leading surrogate before another character", R"(["\ud83d\u0041"])",
         "1:3: expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one"},
        {"a leading surrogate at the end", R"(["\ud83d"])",
         "1:3: expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one"},
        {"a lone trailing surrogate", R"(["a\ude00"])",
         "1:4: expected a leading surrogate, \\uD800 to \\uDBFF, before a trailing one"},
        {"a lone sign", "[-]", "1:3: expected a digit after '-', found ']'"},
        {"a decimal point at the end", "[1.]", "1:4: expected a digit after '.', found ']'"},
        {"an exponent without digits", "[1e]", "1:4: expected a digit in the exponent, found ']'"},
        {"a number cut short", "1e+",
         "1:4: expected a digit in the exponent, found the end of the text"},
    };
    expectErrors(cases);
}

TEST(JsonErrors, CountLinesAndColumnsInCodePoints) {
    const Case cases[] = {
        {"the second line", "[\n x]", "2:2: expected a value or ']', found 'x'"},
        {"Windows line breaks", "[\r\n\r\n1,\r\nx]", "4:1: expected a value after ',', found 'x'"},
        {"characters of 2, 3 and 4 bytes before it", "[\"\u00E9\u20AC\U0001F600\" x]",
         "1:8: expected ',' or ']' after an array element, found 'x'"},
        {"the same characters on an earlier line", "[\"\u00E9\u20AC\U0001F600\",\nx]",
         "2:1: expected a value after ',', found 'x'"},
        {"after a byte-order mark", "\xEF\xBB\xBF[x]", "1:2: expected a value or ']', found 'x'"},
        {"inside a string after a byte-order mark", "\xEF\xBB\xBF[\"\\x\"]",
         "1:4: expected one of \" \\ / b f n r t u after '\\', found 'x'"},
        {"on a line after a byte-order mark", "\xEF\xBB\xBF\n[x]",
         "2:2: expected a value or ']', found 'x'"},
    };
    expectErrors(cases);
}

TEST(JsonErrors, QuoteLittleAndEscapeControlCharacters) {
    const std::string longName(1000, 'a');
    const Case cases[] = {
        {"a control character", "[\x1B", "1:2: expected a value or ']', found '\\u001B'"},
        {"a control character beyond ASCII", "[\u009B",
         "1:2: expected a value or ']', found '\\u009B'"},
        {"a character that changes the text direction", "[\u202E",
         "1:2: expected a value or ']', found '\\u202E'"},
        {"a zero-width character", "[\u200B", "1:2: expected a value or ']', found '\\u200B'"},
        {"the same characters in a name", "{\"\u009B\u2066\x7F\":1,\"\u009B\u2066\x7F\":1}",
         "1:10: duplicate name \"\\u009B\\u2066\\u007F\""},
        {"a letter of another script", "[\u00E9", "1:2: expected a value or ']', found '\u00E9'"},
        {"a character of four bytes", "[\U0001F600",
         "1:2: expected a value or ']', found '\U0001F600'"},
        {"a long word", "[" + longName,
         "1:2: expected a value or ']', found '" + std::string(40, 'a') + "...'"},
        {"a long name", "{\"" + longName + "\":1,\"" + longName + "\":1}",
         "1:1007: duplicate name \"" + std::string(40, 'a') + "...\""},
        {"malformed UTF-8", "[\xFF", "1:2: malformed UTF-8"},
        {"a control character in a string, without a short escape", "\"\x1B\"",
         "1:2: a control character in a string must be written as \\u001B"},
    };
    expectErrors(cases);
}

TEST(JsonErrors, HaveLineAndColumnAsNumbers) {
    try {
        valueFromJsonText("{\n  \"a\": x}");
        FAIL() << "this is no JSON";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.line(), 2u);
        EXPECT_EQ(error.column(), 8u);
        EXPECT_STREQ(error.what(), "2:8: expected a value after ':', found 'x'");
    }
}

TEST(JsonErrors, ReportMalformedUtf8) {
    const Case cases[] = {
        {"a byte that is never used", "[\"a\xFF\"]", "1:4: malformed UTF-8"},
        {"a lone continuation byte", "[\"a\x80\"]", "1:4: malformed UTF-8"},
        {"a sequence cut short by a quote", "[\"\xE2\x82\"]", "1:3: malformed UTF-8"},
        {"a sequence that resembles the replacement character", "[\"\xEF\xBF\"]",
         "1:3: malformed UTF-8"},
        {"a sequence cut short by the end", "\"ab\xEF\xBF", "1:4: malformed UTF-8"},
        {"an overlong form", "[\"\xC0\xAF\"]", "1:3: malformed UTF-8"},
        {"an encoded surrogate", "[\"\xED\xA0\x80\"]", "1:3: malformed UTF-8"},
        {"after valid characters and lines", "[\"\u20AC\",\n\"\u20AC\xFE\"]",
         "2:3: malformed UTF-8"},
        {"after a replacement character", "[\"\uFFFD\xFE\"]", "1:4: malformed UTF-8"},
        {"outside strings", "[1,\xFF]", "1:4: malformed UTF-8"},
        {"in a name", "{\"\xFF\":1}", "1:3: malformed UTF-8"},
        {"a text in UTF-16", std::string("\xFF\xFE{\0}\0", 6), "1:1: malformed UTF-8"},
        {"a NUL after the end", std::string("{}\0x", 4),
         "1:3: expected the end of the text, found '\\u0000'"},
        {"a NUL in a string", std::string("[\"\0\"]", 5),
         "1:3: a control character in a string must be written as \\u0000"},
        {"a NUL before malformed bytes", std::string("\0\xFF", 2),
         "1:1: expected a value, found '\\u0000'"},
        {"malformed bytes before a NUL", std::string("\xFF\0", 2), "1:1: malformed UTF-8"},
    };
    expectErrors(cases);
}

TEST(JsonErrors, ReportDuplicateNames) {
    const Case cases[] = {
        {"side by side", R"({"a":1,"a":2})", "1:8: duplicate name \"a\""},
        {"with others in between", "{\"a\":1,\"b\":{},\n  \"a\" : 2}", "2:3: duplicate name \"a\""},
        {"written differently", R"({"a":1,"\u0061":2})", R"(1:8: duplicate name "\u0061")"},
        {"after a number", R"({"a":-1.5e3 , "a":2})", "1:15: duplicate name \"a\""},
        {"after each literal", R"({"a":[true,false,null],"a":2})", "1:24: duplicate name \"a\""},
        {"after strings with escapes", R"({"a":"\\","b\"":"\"}","a":2})",
         "1:23: duplicate name \"a\""},
        {"in a nested object", R"({"a":{"b":1,"b":1}})", "1:13: duplicate name \"b\""},
        {"after multi-byte characters", "{\"\u20AC\":1,\"\u20AC\":2}",
         "1:8: duplicate name \"\u20AC\""},
        {"the boolean's member", R"({"$boolean":true,"$boolean":true})",
         "1:18: duplicate name \"$boolean\""},
    };
    expectErrors(cases);
}

TEST(JsonErrors, ReportInvalidBooleans) {
    for (const std::string value : {"\"true\"", "1", "null", "[]", "{\"$boolean\":true}"}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(errorIn("[{\"x\":1,\n \"$boolean\": " + value + "}]"),
                  "2:14: expected true or false as the value of \"$boolean\"");
    }
}

TEST(JsonErrors, ReportNestingOverTheLimit) {
    EXPECT_EQ(errorIn("[\n" + std::string(512, '[')), "2:512: nested more than 512 levels deep");
    const std::string arrays = std::string(512, '[') + std::string(512, ']');
    EXPECT_EQ(errorIn(arrays), "none");
    EXPECT_EQ(errorIn("[" + arrays + "]"), "1:513: nested more than 512 levels deep");
    EXPECT_EQ(errorIn("[[]," + std::string(511, '[') + std::string(511, ']') + "]"), "none");

    std::string objects = "1";
    Value expected = 1;
    for (int i = 0; i < 512; ++i) {
        objects = "{\"a\":" + objects + "}";
        Value around;
        around.set("a", std::move(expected));
        expected = std::move(around);
    }
    EXPECT_TRUE(valueFromJsonText(objects) == expected);
    EXPECT_EQ(errorIn("{\"a\":" + objects + "}"), "1:2561: nested more than 512 levels deep");
}

TEST(JsonErrors, HaveAnOffsetAndAReason) {
    try {
        valueFromJsonText("[\n\"\u20AC\", }");
        FAIL() << "it is accepted";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.offset(), 9u);
        EXPECT_EQ(error.reason(), "expected a value after ',', found '}'");
    }
    EXPECT_EQ(JsonError("why").reason(), "why");
    EXPECT_EQ(JsonError("why").offset(), 0u);
}

} // namespace
} // namespace kel::Stencilor
