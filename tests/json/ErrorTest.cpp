#include <gtest/gtest.h>
#include <libStencilorJson/JsonValue.h>

#include <string>

namespace kel::Stencilor {
namespace {

/// The error as `LINE:COLUMN: REASON`.
std::string errorIn(const std::string& text, JsonRoot root) {
    try {
        contextFromJsonText(text, root);
    } catch (const JsonError& error) {
        return error.what();
    }
    return "none";
}

TEST(JsonErrors, TellWhatWasExpectedAndWhere) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"an empty text", "", "1:1: expected a value, found the end of the text"},
        {"blanks only", " \n ", "2:2: expected a value, found the end of the text"},
        {"a byte-order mark only", "\xEF\xBB\xBF",
         "1:1: expected a value, found the end of the text"},
        {"an open object", "{",
         "1:2: expected a name in quotation marks or '}', found the end of the text"},
        {"a name without quotation marks", "{a:1}",
         "1:2: expected a name in quotation marks or '}'"},
        {"a number as a name", R"({ 1:2})", "1:3: expected a name in quotation marks or '}'"},
        {"a comma first in an object", "{,}", "1:2: expected a name in quotation marks or '}'"},
        {"no colon", R"({"a" 1})", "1:6: expected ':'"},
        {"a string instead of a colon", R"({"a"  "b"})", "1:7: expected ':'"},
        {"a comma instead of a colon", R"({"a",1})", "1:5: expected ':'"},
        {"the end instead of a colon", R"({"a" )", "1:6: expected ':', found the end of the text"},
        {"no value", R"({"a": })", "1:7: expected a value"},
        {"two colons", R"({"a"::1})", "1:6: expected a value"},
        {"no comma in an object", R"({"a":1 "b":2})", "1:8: expected ',' or '}'"},
        {"a bracket at the end of an object", R"({"a":1])", "1:7: expected ',' or '}'"},
        {"an object cut short behind a value", R"({"a":1)",
         "1:7: expected ',' or '}', found the end of the text"},
        {"a comma last in an object", R"({"a":1,})", "1:8: expected a name in quotation marks"},
        {"two commas in an object", R"({"a":1,,"b":2})", "1:8: expected a name in quotation marks"},
        {"an open array", "[", "1:2: expected a value or ']', found the end of the text"},
        {"a comma first in an array", "[,1]", "1:2: expected a value or ']'"},
        {"a brace at the start of an array", "[}", "1:2: expected a value or ']'"},
        {"no comma in an array", "[1 2]", "1:4: expected ',' or ']'"},
        {"a colon in an array", R"(["a":1])", "1:5: expected ',' or ']'"},
        {"a comma last in an array", "[1,]", "1:4: expected a value"},
        {"two commas in an array", "[1,,2]", "1:4: expected a value"},
        {"an array cut short behind a comma", "[1, ",
         "1:5: expected a value, found the end of the text"},
        {"a leading zero", "[01]", "1:3: expected ',' or ']'"},
        {"a sum", "[-1.5-2]", "1:6: expected ',' or ']'"},
        {"a number with two points", "[1.5.2]", "1:5: expected ',' or ']'"},
        {"a number with two exponents", "[1e+5e6]", "1:6: expected ',' or ']'"},
        {"text behind the end", "{} x", "1:4: expected the end of the text"},
        {"a second value", "1 2", "1:3: expected the end of the text"},
        {"a comma behind the end", "{},", "1:3: expected the end of the text"},
        {"a brace too many", R"({"a":{}}})", "1:9: expected the end of the text"},
        {"a misspelt literal", R"({"a": tru})", "1:7: expected a value"},
        {"a literal in capitals", R"([True])", "1:2: expected a value or ']'"},
        {"a word that goes on", "[nulls]", "1:6: expected ',' or ']'"},
        {"not a number", "[NaN]", "1:2: expected a value or ']'"},
        {"a plus sign", "[1,+1]", "1:4: expected a value"},
        {"a string in single quotes", "['a']", "1:2: expected a value or ']'"},
        {"a comment", "[1 // one\n]", "1:4: expected ',' or ']'"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Any), expected);
    }
}

TEST(JsonErrors, PointIntoStringsAndNumbers) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a string without an end", R"(["abc)", "1:6: invalid string: missing closing quote"},
        {"a line break in a string", "[\"ab\nc\"]",
         "1:5: invalid string: control character U+000A (LF) must be escaped to \\u000A or \\n"},
        {"a tab in a name", "{\"a\tb\":1}",
         "1:4: invalid string: control character U+0009 (HT) must be escaped to \\u0009 or \\t"},
        {"an unknown escape", R"(["a\qb"])",
         "1:5: invalid string: forbidden character after backslash"},
        {"too few digits in an escape", R"(["\u12G4"])",
         "1:7: invalid string: '\\u' must be followed by 4 hex digits"},
        {"a leading surrogate before text", R"(["ab\ud83dxyz"])",
         "1:5: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
        {"a leading surrogate before another escape", R"(["\ud83d\n"])",
         "1:3: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
        {"a leading surrogate before another character", R"(["\ud83d\u0041"])",
         "1:9: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
        {"a leading surrogate at the end", R"(["\ud83d"])",
         "1:3: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
        {"a trailing surrogate alone", R"(["a\ude00"])",
         "1:4: invalid string: surrogate U+DC00..U+DFFF must follow U+D800..U+DBFF"},
        {"a sign alone", "[-]", "1:3: invalid number; expected digit after '-'"},
        {"a point at the end", "[1.]", "1:4: invalid number; expected digit after '.'"},
        {"an exponent without digits", "[1e]",
         "1:4: invalid number; expected '+', '-', or digit after exponent"},
        {"a number cut short", "1e+", "1:4: invalid number; expected digit after exponent sign"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Any), expected);
    }
}

TEST(JsonErrors, CountLinesAndColumnsInCodePoints) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"the second line", "[\n x]", "2:2: expected a value or ']'"},
        {"line breaks of Windows", "[\r\n\r\n1,\r\nx]", "4:1: expected a value"},
        {"characters of 2, 3 and 4 bytes before it", "[\"\u00E9\u20AC\U0001F600\" x]",
         "1:8: expected ',' or ']'"},
        {"such characters on an earlier line", "[\"\u00E9\u20AC\U0001F600\",\nx]",
         "2:1: expected a value"},
        {"behind a byte-order mark", "\xEF\xBB\xBF[x]", "1:2: expected a value or ']'"},
        {"inside of a string behind a byte-order mark", "\xEF\xBB\xBF[\"\\x\"]",
         "1:4: invalid string: forbidden character after backslash"},
        {"on the line behind a byte-order mark", "\xEF\xBB\xBF\n[x]",
         "2:2: expected a value or ']'"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Any), expected);
    }
}

TEST(JsonErrors, HaveLineAndColumnAsNumbers) {
    try {
        contextFromJsonText("{\n  \"a\": x}");
        FAIL() << "this is no JSON";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.line(), 2u);
        EXPECT_EQ(error.column(), 8u);
        EXPECT_STREQ(error.what(), "2:8: expected a value");
    }
}

TEST(JsonErrors, TellOfMalformedUtf8) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a byte that is never used", "[\"a\xFF\"]", "1:4: malformed UTF-8"},
        {"a continuation byte alone", "[\"a\x80\"]", "1:4: malformed UTF-8"},
        {"a sequence cut short by a quote", "[\"\xE2\x82\"]", "1:3: malformed UTF-8"},
        {"a sequence that looks like the replacement", "[\"\xEF\xBF\"]", "1:3: malformed UTF-8"},
        {"a sequence cut short by the end", "\"ab\xEF\xBF", "1:4: malformed UTF-8"},
        {"an overlong form", "[\"\xC0\xAF\"]", "1:3: malformed UTF-8"},
        {"an encoded surrogate", "[\"\xED\xA0\x80\"]", "1:3: malformed UTF-8"},
        {"behind good characters and lines", "[\"\u20AC\",\n\"\u20AC\xFE\"]",
         "2:3: malformed UTF-8"},
        {"behind a replacement character", "[\"\uFFFD\xFE\"]", "1:4: malformed UTF-8"},
        {"outside of strings", "[1,\xFF]", "1:4: malformed UTF-8"},
        {"in a name", "{\"\xFF\":1}", "1:3: malformed UTF-8"},
        {"a text in UTF-16", std::string("\xFF\xFE{\0}\0", 6), "1:1: malformed UTF-8"},
        {"a NUL behind the end", std::string("{}\0x", 4),
         "1:3: a NUL character must be written as \\u0000"},
        {"a NUL in a string", std::string("[\"\0\"]", 5),
         "1:3: a NUL character must be written as \\u0000"},
        {"a NUL before malformed bytes", std::string("\0\xFF", 2),
         "1:1: a NUL character must be written as \\u0000"},
        {"malformed bytes before a NUL", std::string("\xFF\0", 2), "1:1: malformed UTF-8"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Any), expected);
    }
}

TEST(JsonErrors, TellOfNamesThatOccurTwice) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"side by side", R"({"a":1,"a":2})", "1:8: duplicate name \"a\""},
        {"with others between", "{\"a\":1,\"b\":{},\n  \"a\" : 2}", "2:3: duplicate name \"a\""},
        {"written differently", R"({"a":1,"\u0061":2})", R"(1:8: duplicate name "\u0061")"},
        {"behind a number", R"({"a":-1.5e3 , "a":2})", "1:15: duplicate name \"a\""},
        {"behind each literal", R"({"a":[true,false,null],"a":2})", "1:24: duplicate name \"a\""},
        {"behind strings with escapes", R"({"a":"\\","b\"":"\"}","a":2})",
         "1:23: duplicate name \"a\""},
        {"in an object within", R"({"a":{"b":1,"b":1}})", "1:13: duplicate name \"b\""},
        {"behind characters of several bytes", "{\"\u20AC\":1,\"\u20AC\":2}",
         "1:8: duplicate name \"\u20AC\""},
        {"the boolean's member", R"({"$boolean":true,"$boolean":true})",
         "1:18: duplicate name \"$boolean\""},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Any), expected);
    }
}

TEST(JsonErrors, TellOfBooleansThatAreNone) {
    const struct {
        const char* name;
        std::string value;
    } cases[] = {
        {"a string", "\"true\""},
        {"a number", "1"},
        {"null", "null"},
        {"an array", "[]"},
        {"an object", "{\"$boolean\":true}"},
    };
    for (const auto& [name, value] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn("[{\"x\":1,\n \"$boolean\": " + value + "}]", JsonRoot::Any),
                  "2:14: expected true or false as the value of \"$boolean\"");
    }
}

TEST(JsonErrors, TellWhereItIsNestedTooDeep) {
    EXPECT_EQ(errorIn("[\n" + std::string(512, '['), JsonRoot::Any),
              "2:512: nested more than 512 levels deep");
    EXPECT_EQ(errorIn(std::string(511, '[') + "{\"a\": {", JsonRoot::Any),
              "1:518: nested more than 512 levels deep");
}

TEST(JsonErrors, TellOfARootThatIsNoObject) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"an array", " [{}]", "1:2: expected an object"},
        {"a string", "\n\"{}\"", "2:1: expected an object"},
        {"a number", "7", "1:1: expected an object"},
        {"a literal", "null", "1:1: expected an object"},
        {"nothing", "", "1:1: expected an object, found the end of the text"},
        {"what is no JSON", "hello", "1:1: expected an object"},
        {"an object", "{}", "none"},
        {"an object that holds others", R"({"a":[1],"b":"c"})", "none"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorIn(text, JsonRoot::Object), expected);
        try {
            contextFromJsonText(text); // what it takes where nothing else is asked for
            EXPECT_EQ(expected, "none");
        } catch (const JsonError& error) {
            EXPECT_EQ(error.what(), expected);
        }
    }
}

} // namespace
} // namespace kel::Stencilor
