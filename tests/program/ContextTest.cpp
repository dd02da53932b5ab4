#include "ProgramTest.h"

namespace program {
namespace {

using ContextTest = ProgramTest;

TEST_F(ContextTest, ComesFromAJsonFileAndDefinitions) {
    const struct {
        const char* name;
        std::string text;
        std::string json;
        std::vector<std::string> definitions;
        std::string expected;
    } cases[] = {
        {"a string", "{{ a }}", "{}", {"a=x"}, "x"},
        {"a string that replaces one", "{{ a }}", R"({"a":"old"})", {"a=new"}, "new"},
        {"an empty string", "[{{ a }}]", R"({"a":"old"})", {"a="}, "[]"},
        {"a string with an equals sign", "{{ a }}", "{}", {"a=b=c"}, "b=c"},
        {"a string that looks like JSON", "{{ a }}", "{}", {"a={\"b\":1}"}, "{\"b\":1}"},
        {"a string with spaces, quotes and backslashes",
         "{{ a }}",
         "{}",
         {R"(a= "b" \"c\\ )"},
         R"( "b" \"c\\ )"},
        {"a non-ASCII string", "{{ a }}", "{}", {"a=\u20AC\U0001F600"}, "\u20AC\U0001F600"},
        {"a number", "{{ a }}", "{}", {"a:=1.10"}, "1.10"},
        {"a boolean", "{% if a %}yes{% endif %}", "{}", {"a:=true"}, "yes"},
        {"a list",
         "{% for x in a %}{{ x.n }}{% endfor %}",
         "{}",
         {R"(a:=[{"n":1},{"n":2}])"},
         "12"},
        {"an object", "{{ a.b }}", "{}", {R"(a:={"b":"x"})"}, "x"},
        {"null that replaces a value in an object",
         "{% for x in l %}{{ a }}{% endfor %}{{ b }}",
         R"({"l":[],"a":1,"b":2})",
         {"a:=null"},
         "2"},
        {"the last definition of a name wins", "{{ a }}", "{}", {"a=1", "a:=2", "a=3"}, "3"},
        {"the last definition of a name wins, even as JSON",
         "{{ a }}",
         "{}",
         {"a=1", "a=3", "a:=2"},
         "2"},
        {"a dotted name, which wins over a nested member",
         "{{ user.name }}",
         R"({"user":{"name":"old"}})",
         {"user.name=new"},
         "new"},
        {"an object that replaces another, with its dotted names",
         "{{ user.name }}",
         R"({"user":{"name":"old","first":"old"}})",
         {R"(user:={"name":"new"})"},
         "new"},
        {"a dotted name before the object", "{{ a.b }}", "{}", {"a.b=own", R"(a:={"b":1})"}, "own"},
        {"the root's boolean", "{{ a }}", R"({"a":"x"})", {"$boolean:=false"}, "x"},
    };
    for (const auto& [name, text, json, definitions, expected] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        folder.writeFile("values.json", json);
        std::vector<std::string> arguments = {"render", "page.txt", "values.json"};
        for (const std::string& definition : definitions) {
            arguments.push_back("-D");
            arguments.push_back(definition);
        }
        expectOutcome(runStencilor(arguments), 0, expected, "");
    }
}

TEST_F(ContextTest, LosesTheDottedNamesOfAReplacedObject) {
    folder.writeFile("page.txt", "{{ user.first }}");
    folder.writeFile("values.json", R"({"user":{"first":"old"}})");
    expectOutcome(
        runStencilor({"render", "page.txt", "values.json", "-D", R"(user:={"name":"x"})"}), 1, "",
        "page.txt:1:4: warning: no string is named \"user.first\"\n"
        "{{ user.first }}\n   ^~~~~~~~~~\n");
}

TEST_F(ContextTest, IsEmptyByDefault) {
    folder.writeFile("page.txt", "[{{ a }}]");
    expectOutcome(runStencilor("render page.txt"), 1, "[]",
                  "page.txt:1:5: warning: no string is named \"a\"\n[{{ a }}]\n    ^\n");
    expectOutcome(runStencilor("render page.txt -D a=x"), 0, "[x]", "");
}

TEST_F(ContextTest, AcceptsDefinitionsWhereverOptionsAre) {
    folder.writeFile("page.txt", "{{ a }}{{ b }}");
    folder.writeFile("values.json", R"({"a":"1"})");
    expectOutcome(runStencilor("render -Db=2 page.txt values.json"), 0, "12", "");
    expectOutcome(runStencilor("render -D b=2 page.txt -D a=3 values.json"), 0, "32", "");
}

TEST_F(ContextTest, ReportsFileLineAndColumnOfErrors) {
    folder.writeFile("page.txt", "text");
    const struct {
        const char* name;
        std::string json;
        std::string message;
    } cases[] = {
        {"an empty file", "", "1:1: expected a value, found the end of the text"},
        {"a root that is not an object", "\n [1]",
         " expected an object, whose members the template can name"},
        {"malformed JSON", "{\n  \"a\": 1,\n}",
         "3:1: expected a name in quotation marks after ',', found '}'"},
        {"malformed UTF-8", "{\"\u00E9\": \"\xFF\"}", "1:8: malformed UTF-8"},
        {"a duplicate key", "{\"a\":1,\n\"a\":2}", "2:1: duplicate name \"a\""},
        {"nesting", "{\"a\":" + std::string(512, '['), "1:517: nested more than 512 levels deep"},
        {"a boolean that is not true or false", R"({"a":{"$boolean":1}})",
         "1:18: expected true or false as the value of \"$boolean\""},
    };
    for (const auto& [name, json, message] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("values.json", json);
        expectOutcome(runStencilor("render page.txt values.json"), 2, "",
                      "stencilor: values.json:" + message + "\n");
        expectOutcome(runStencilor("render page.txt -", {.input = json}), 2, "",
                      "stencilor: <stdin>:" + message + "\n");
    }
}

TEST_F(ContextTest, NamesTheWrongDefinition) {
    folder.writeFile("page.txt", "text");
    const struct {
        const char* name;
        std::string definition;
        std::string message;
    } cases[] = {
        {"no value", "a", "-D a: expected NAME=VALUE or NAME:=JSON"},
        {"no name", "=x", "-D =x: expected NAME=VALUE or NAME:=JSON"},
        {"no name before JSON", ":=1", "-D :=1: expected NAME=VALUE or NAME:=JSON"},
        {"malformed JSON", "a:=[1,",
         "-D a:1:4: expected a value after ',', found the end of the text"},
        {"not JSON", "a:=", "-D a:1:1: expected a value, found the end of the text"},
        {"bare text as JSON", "a:=text", "-D a:1:1: expected a value, found 'text'"},
        {"a string for the root's boolean", "$boolean=true", "-D $boolean: expected true or false"},
        {"a number for the root's boolean", "$boolean:=1", "-D $boolean: expected true or false"},
    };
    for (const auto& [name, definition, message] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor({"render", "page.txt", "-D", definition}), 2, "",
                      "stencilor: " + message + "\n");
    }
}

TEST_F(ContextTest, HasPositionsOnRequest) {
    folder.writeFile("page.txt", "{% for x in list %}{{ x.index }}{{ x.value }}"
                                 "{% if x.first %}f{% endif %}{% if x.last %}l{% endif %}"
                                 "{% endfor %}");
    const std::string list = R"(list:=["a","b"])";
    expectOutcome(runStencilor({"render", "--positions", "page.txt", "-D", list}), 0, "1af2bl", "");
    expectOutcome(runStencilor({"check", "--positions", "page.txt", "-D", list}), 0, "", "");
    EXPECT_EQ(runStencilor({"render", "page.txt", "-D", list}).status, 1);
    EXPECT_EQ(runStencilor({"check", "page.txt", "-D", list}).status, 1);
}

TEST_F(ContextTest, IsRejectedIfItsDottedNamesNeedTooMuchMemory) {
    folder.writeFile("page.txt", "text");
    std::string openings;
    for (int i = 0; i < 300; ++i) {
        openings += R"({"a":)";
    }
    const std::string value(2 * 1024 * 1024, 'x');
    folder.writeFile("values.json", openings + '"' + value + '"' + std::string(300, '}'));
    expectOutcome(runStencilor("render page.txt values.json"), 2, "",
                  "stencilor: the context is too large: the dotted names of its nested "
                  "dictionaries would take over 512 MiB\n");
}

} // namespace
} // namespace program
