#include "../support/Environment.h"
#include "ProgramTest.h"

#include <libStencilor/Stencilor.h>

#include <nlohmann/json.hpp>

#include <regex>

namespace program {
namespace {

class RenderTest : public ProgramTest {
  protected:
    RenderTest() {
        folder.writeFile("values.json", R"({"s":"x","no":false,"l":[{"a":"1"},{},{}],"o":{}})");
        folder.writeFile("part.txt", "text\n{{ missing }}");
        folder.writeFile("bad.txt", "{{");
        folder.writeFile("latin.txt", "\xE9");
        folder.writeFile("out.txt", "before");
    }
};

TEST_F(RenderTest, LeavesAndReportsGapsUnlessItIsStrict) {
    const struct {
        const char* name;
        std::string text;
        std::string output;
        std::string messages;
    } cases[] = {
        {"nothing", "{{ s }}", "x", ""},
        {"an empty template", "", "", ""},
        {"a missing name", "a\n{{ x }}b{{ s }}", "a\nbx",
         "page.txt:2:4: warning: no string is named \"x\"\n{{ x }}b{{ s }}\n   ^\n"},
        {"a list as a string", "{{ l }}", "",
         "page.txt:1:4: warning: \"l\" is a list, not a string; loop over it: {% for x in l "
         "%}...{% endfor %}\n{{ l }}\n   ^\n"},
        {"a missing condition", "{% if x %}{% endif %}", "",
         "page.txt:1:7: warning: no boolean is named \"x\"\n{% if x %}{% endif %}\n      ^\n"},
        {"a string as a condition", "{% if s %}{% endif %}", "",
         "page.txt:1:7: warning: \"s\" is a string, not a boolean\n"
         "{% if s %}{% endif %}\n      ^\n"},
        {"a missing list", "{% for a in x %}{% endfor %}", "",
         "page.txt:1:13: warning: no list is named \"x\"\n"
         "{% for a in x %}{% endfor %}\n            ^\n"},
        {"a string as a list", "{% for a in s %}{% endfor %}", "",
         "page.txt:1:13: warning: \"s\" is a string, not a list\n"
         "{% for a in s %}{% endfor %}\n            ^\n"},
        {"each place once", "{% for i in l %}{{ i.a }}{% endfor %}", "1",
         "page.txt:1:20: warning: no string is named \"i.a\" in element 2 of \"l\"\n"
         "{% for i in l %}{{ i.a }}{% endfor %}\n                   ^~~\n"},
        {"nothing about parts that are not rendered", "{% if no %}{{ x }}{% endif %}", "", ""},
        {"an included file that is missing", R"(a{% include "none.txt" %}b)", "ab",
         "page.txt:1:14: warning: included file \"none.txt\" does not exist\n"
         "a{% include \"none.txt\" %}b\n             ^~~~~~~~\n"},
        {"a name that is missing in an included file", R"({% include "part.txt" %})", "text\n",
         "part.txt:2:4: warning: no string is named \"missing\"\n{{ missing }}\n   ^~~~~~~\n"},
        {"an included file that is rejected", R"(a{% include "bad.txt" %}b)", "ab",
         "bad.txt:1:3: warning: expected a name after \"{{\"\n{{\n  ^\n"
         "page.txt:1:2: note: included here\n"
         "a{% include \"bad.txt\" %}b\n ^~~~~~~~~~~~~~~~~~~~~~~\n"},
        {"a NUL byte", std::string("a\0b", 3), "a",
         "page.txt:1:2: warning: a NUL byte: the template ends here, and what follows is ignored\n"
         "a\\x00b\n ^~~~\n"},
        {"a byte-order mark", "\xEF\xBB\xBFx", "\xEF\xBB\xBFx",
         "page.txt:1:1: warning: the file begins with a byte-order mark, which is written to the "
         "output\nx\n^\n"},
        {"malformed UTF-8 in an included file", R"(a{% include "latin.txt" %})", "a\uFFFD",
         "latin.txt:1:1: warning: malformed UTF-8, which becomes U+FFFD in the "
         "output\n\uFFFD\n^\n"},
    };
    for (const auto& [name, text, output, messages] : cases) {
        SCOPED_TRACE(name);
        const int status = messages.empty() ? 0 : 1;
        folder.writeFile("page.txt", text);
        folder.writeFile("out.txt", "before");
        expectOutcome(runStencilor("render page.txt values.json"), status, output, messages);
        const std::string errors =
            std::regex_replace(messages, std::regex(": warning: "), ": error: ");
        expectOutcome(runStencilor("render page.txt values.json --strict -o out.txt"), status, "",
                      errors);
        EXPECT_EQ(support::readFile("out.txt"), messages.empty() ? output : "before");
        expectOutcome(runStencilor("render page.txt values.json --quiet"), status, output, "");
    }
}

TEST_F(RenderTest, DiagnosesATemplateThatIsRejected) {
    const struct {
        const char* name;
        std::string text;
        std::string messages;
    } cases[] = {
        {"a block without an end", "text {% if a %}",
         "page.txt:1:16: error: expected \"{% else %}\" or \"{% endif %}\" before the end\n"
         "text {% if a %}\n               ^\n"
         "page.txt:1:6: note: opened here\ntext {% if a %}\n     ^~~~~~~~~~\n"},
        {"a tag without an end", "{% if s }\n{% endif %}",
         "page.txt:1:9: error: expected \"%}\" after the name\n{% if s }\n        ^\n"},
    };
    for (const auto& [name, text, messages] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        for (const char* const arguments :
             {"render page.txt values.json", "render page.txt values.json --strict",
              "render page.txt values.json -o out.txt"}) {
            expectOutcome(runStencilor(arguments), 3, "", messages);
        }
        EXPECT_EQ(support::readFile("out.txt"), "before");
        EXPECT_EQ(runStencilor("render -", {.input = text}).errors,
                  std::regex_replace(messages, std::regex("page.txt:"), "<stdin>:"));
    }
}

TEST_F(RenderTest, CountsTheMessagesThatAreNotKept) {
    std::string text;
    for (int i = 0; i < 1234; ++i) {
        text += "{{ x }}\n";
    }
    folder.writeFile("page.txt", text);
    const auto ended = runStencilor("render page.txt --max-output 1200");
    EXPECT_EQ(ended.errors.substr(ended.errors.rfind("note: ")),
              "note: and 201 more messages, here or elsewhere\n{{ x }}\n       ^\n");
    EXPECT_EQ(runStencilor("render page.txt").errors.find("note: "), std::string::npos);
}

TEST_F(RenderTest, EndsAtALimit) {
    folder.writeFile("endless.txt", R"({% include "endless.txt" %})");
    folder.writeFile("page.txt", R"(12345{{ s }}{% include "long.txt" %})");
    folder.writeFile("long.txt", "123456789012345");
    const struct {
        const char* name;
        std::string arguments;
        std::string message; // empty if there is no limit
    } cases[] = {
        {"a template that includes itself", "endless.txt",
         "endless.txt:1:13: error: includes are nested deeper than 100 (--max-depth)\n"},
        {"a chosen depth", "page.txt values.json --max-depth 1 --max-output 4",
         "page.txt:1:1: error: the output exceeds 4 bytes (--max-output)\n"},
        {"enough output", "page.txt values.json --max-output 21", ""},
        {"any output", "page.txt values.json --max-output 0", ""},
        {"output in KiB", "page.txt values.json --max-output 1200", ""},
        {"too much output", "page.txt values.json --max-output 20",
         "long.txt:1:1: error: the output exceeds 20 bytes (--max-output)\n"},
        {"enough templates", "page.txt values.json --max-templates 51", ""},
        {"an included template that is too long", "page.txt values.json --max-templates 50",
         "page.txt:1:25: error: the templates exceed 50 bytes (--max-templates)\n"},
        {"no bytes left for included templates", "page.txt values.json --max-templates 36",
         "page.txt:1:25: error: the templates exceed 36 bytes (--max-templates)\n"},
        {"a template that is too long", "page.txt values.json --max-templates 35",
         "page.txt:1:1: error: the template exceeds 35 bytes (--max-templates)\n"},
        {"enough steps", "page.txt values.json --max-steps 4", ""},
        {"too many steps", "page.txt values.json --max-steps 3",
         "long.txt:1:1: error: rendering exceeds 3 steps (--max-steps)\n"},
    };
    for (const auto& [name, arguments, message] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("out.txt", "before");
        const Outcome outcome = runStencilor("render -o out.txt " + arguments);
        EXPECT_EQ(outcome.status, message.empty() ? 0 : 4);
        EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n') + 1), message);
        EXPECT_EQ(support::readFile("out.txt") == "before", !message.empty());
    }
}

TEST_F(RenderTest, EndsAtTheDefaultStepLimit) {
    if (!support::thorough()) {
        GTEST_SKIP() << "takes a second";
    }
    folder.writeFile("loops.txt", "{% for a in t %}{% for b in t %}{% for c in t %}{% for d in t %}"
                                  "{% for e in t %}{% endfor %}{% endfor %}{% endfor %}{% endfor %}"
                                  "{% endfor %}");
    std::string list = "t:=[{}";
    for (int i = 1; i < 50; ++i) {
        list += ",{}";
    }
    list += "]";
    const Outcome outcome = runStencilor({"render", "loops.txt", "-D", list});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_TRUE(outcome.errors.starts_with(
        "loops.txt:1:77: error: rendering exceeds 100000000 steps (--max-steps)\n"));
}

TEST_F(RenderTest, WritesMessagesInOtherFormats) {
    folder.writeFile("page.txt", "a{{ x }}");
    const Outcome json = runStencilor("render page.txt --format json");
    EXPECT_EQ(json.output, "a");
    EXPECT_EQ(nlohmann::json::parse(json.errors), nlohmann::json::parse(R"({"findings": [
        {"rule": "missing-name", "severity": "warning", "message": "no string is named \"x\"",
         "file": "page.txt", "line": 1, "column": 5, "endLine": 1, "endColumn": 6, "notes": []}]})"));
    const Outcome sarif = runStencilor("render page.txt --strict --format sarif");
    const auto run = nlohmann::json::parse(sarif.errors)["runs"][0];
    EXPECT_EQ(run["results"][0]["level"], "error");
    EXPECT_EQ(run["results"][0]["ruleId"], "missing-name");
    EXPECT_EQ(runStencilor("render page.txt -D x=y --format json").errors, "");
}

TEST_F(RenderTest, EscapesValuesOnRequest) {
    folder.writeFile("page.txt", "\"{{ a }}\"");
    const std::string value = R"(a=<"&)";
    for (const auto& [kind, output] : {std::pair<std::string, std::string>{"none", R"("<"&")"},
                                       {"html", R"("&lt;&quot;&amp;")"},
                                       {"json", R"("\u003c\"\u0026")"}}) {
        expectOutcome(runStencilor({"render", "page.txt", "-D", value, "--escape", kind}), 0,
                      output, "");
    }
}

#ifndef _WIN32
TEST_F(RenderTest, NamesAnIncludedFileThatCannotBeRead) {
    folder.writeSparseFile("huge.txt", std::uint64_t{1} << 32);
    folder.writeFile("page.txt", R"(a{% include "huge.txt" %}b)");
    expectOutcome(runStencilor("render page.txt --max-templates 0"), 1, "ab",
                  "page.txt:1:14: warning: included file \"huge.txt\" cannot be read\n"
                  "a{% include \"huge.txt\" %}b\n             ^~~~~~~~\n");
}
#endif

TEST_F(RenderTest, ShowsTheTraceBeforeTheMessages) {
    folder.writeFile("page.txt", R"(text{% for a in l %}{% if b %}{{ x }}{% endif %}{% endfor %})"
                                 R"({% include "part.txt" %})");
    folder.writeFile("part.txt", "text");
    folder.writeFile("values.json", R"({"l":[null,null],"b":true})");
    const std::string iteration = "trace:     applyVisitor:230\n"
                                  "trace:       content_visit::if_expr:126\n"
                                  "trace:         applyVisitor:230\n"
                                  "trace:           content_visit::replace_expr:184\n";
    const Outcome outcome = runStencilor("render page.txt values.json --trace");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "texttext");
    EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find("page.txt:")),
              "trace: buildOutput:408\n"
              "trace:   content_visit::string:120\n"
              "trace:   content_visit::for_expr:151\n" +
                  iteration + iteration +
                  "trace:   content_visit::include_expr:205\n"
                  "trace:     buildOutput:251\n"
                  "trace:       applyVisitor:230\n"
                  "trace:         content_visit::string:120\n");
}

TEST_F(RenderTest, LimitsTheIndentationOfATrace) {
    std::string text = "text";
    for (int i = 0; i < 30; ++i) {
        text = "{% if b %}" + text + "{% endif %}";
    }
    folder.writeFile("page.txt", text);
    const Outcome outcome = runStencilor("render page.txt -D b:=true --trace");
    EXPECT_NE(
        outcome.errors.find("\ntrace: " + std::string(78, ' ') + "content_visit::if_expr:126\n"),
        std::string::npos);
    EXPECT_NE(outcome.errors.find("\ntrace: (40 scopes) applyVisitor:230\n"), std::string::npos);
    EXPECT_NE(outcome.errors.find("\ntrace: (61 scopes) content_visit::string:120\n"),
              std::string::npos);
}

} // namespace
} // namespace program
