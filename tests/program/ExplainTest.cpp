#include "ProgramTest.h"

namespace program {
namespace {

using ExplainTest = ProgramTest;

TEST_F(ExplainTest, TellsWhereMessagesHaveTheirCause) {
    folder.writeFile("values.json", R"({"s":"x","no":false,"l":[{"a":"1"},{},{}]})");
    folder.writeFile("part.txt", "text\n{{ missing }}");
    folder.writeFile("bad.txt", "{{");
    const struct {
        const char* name;
        std::string text;
        int status;
        std::string output;
        std::string explanation;
    } cases[] = {
        {"nothing", "{{ s }}", 0, "x", ""},
        {"a name that is missing", "a\n{{ x }}", 1, "a\n",
         "page.txt:2:4: warning: no string is named \"x\"\n{{ x }}\n   ^\n"},
        {"a value of another kind", "{% if s %}{% endif %}", 1, "",
         "page.txt:1:7: warning: \"s\" is a string, not a boolean\n"
         "{% if s %}{% endif %}\n      ^\n"},
        {"each cause once", "{% for i in l %}{{ i.a }}{% endfor %}", 1, "1",
         "page.txt:1:20: warning: no string is named \"i.a\" in element 2 of \"l\"\n"
         "{% for i in l %}{{ i.a }}{% endfor %}\n                   ^~~\n"},
        {"nothing of what is not rendered", "{% if no %}{{ x }}{% endif %}", 0, "", ""},
        {"an included file that is missing", R"({% include "none.txt" %})", 1, "",
         "page.txt:1:13: error: included file \"none.txt\" does not exist\n"
         "{% include \"none.txt\" %}\n            ^~~~~~~~\n"},
        {"what goes wrong in an included file, of which there is no message",
         R"({% include "part.txt" %})", 0, "text\n",
         "part.txt:2:4: warning: no string is named \"missing\"\n{{ missing }}\n   ^~~~~~~\n"},
        {"an included file that is rejected, of which there is no message",
         R"(a{% include "bad.txt" %}b)", 0, "ab",
         "bad.txt:1:3: error: expected a name after \"{{\"\n{{\n  ^\n"
         "page.txt:1:2: note: included here\n"
         "a{% include \"bad.txt\" %}b\n ^~~~~~~~~~~~~~~~~~~~~~~\n"},
        {"why a template is rejected", "{% if s }", 3, "",
         "page.txt:1:9: error: expected \"%}\" after the name\n{% if s }\n        ^\n"},
    };
    for (const auto& [name, text, status, output, explanation] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        expectOutcome(runStencilor({"render", "page.txt", "values.json", "--explain"}), status,
                      output, explanation);
    }
}

TEST_F(ExplainTest, NamesTheStandardInput) {
    expectOutcome(runStencilor({"render", "-", "--explain"}, {.input = "a{{ x }}"}), 1, "a",
                  "<stdin>:1:5: warning: no string is named \"x\"\na{{ x }}\n    ^\n");
}

TEST_F(ExplainTest, LeavesTheOutputOutWhereThatIsAskedFor) {
    folder.writeFile("page.txt", "a{{ x }}");
    expectOutcome(runStencilor({"render", "page.txt", "--explain", "--strict"}), 1, "",
                  "page.txt:1:5: warning: no string is named \"x\"\na{{ x }}\n    ^\n");
}

} // namespace
} // namespace program
