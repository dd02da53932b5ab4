#include "ProgramTest.h"

namespace program {
namespace {

using CheckTest = ProgramTest;

TEST_F(CheckTest, ReportsErrorsWithTheirLocations) {
    const struct {
        const char* name;
        std::string text;
        std::string findings;
    } cases[] = {
        {"two names", "Dear {{ title name }},\n",
         "page.txt:1:15: error: expected \"}}\" after the name\n"
         "Dear {{ title name }},\n"
         "              ^\n"
         "page.txt:1:6: note: a substitution is one name: have the context provide the value as it "
         "should appear\n"
         "Dear {{ title name }},\n"
         "     ^~~~~~~~~~~~~~~~\n"},
        {"an open block", "a\n {% if b %}\nc {% endfor %}\n",
         "page.txt:3:6: error: expected \"if\", \"for\", \"include\", \"else\" or \"endif\"\n"
         "c {% endfor %}\n"
         "     ^\n"
         "page.txt:2:2: note: opened here\n"
         " {% if b %}\n"
         " ^~~~~~~~~~\n"
         "page.txt:4:1: error: expected \"{% else %}\" or \"{% endif %}\" before the end\n"
         "\n"
         "^\n"
         "page.txt:2:2: note: opened here\n"
         " {% if b %}\n"
         " ^~~~~~~~~~\n"},
        {"a block without an end", "{% for a in b %}\n",
         "page.txt:2:1: error: expected \"{% endfor %}\" before the end\n"
         "\n"
         "^\n"
         "page.txt:1:1: note: opened here\n"
         "{% for a in b %}\n"
         "^~~~~~~~~~~~~~~~\n"},
        {"multi-byte letters", "\u00E9\u65E5\U0001F600{{ }",
         "page.txt:1:7: error: expected a name after \"{{\"\n"
         "\u00E9\u65E5\U0001F600{{ }\n"
         "      ^\n"},
        {"bytes that are not letters", "\xFF\xE2\x82{{ }",
         "page.txt:1:1: warning: malformed UTF-8, which becomes U+FFFD in the output\n"
         "\uFFFD\uFFFD{{ }\n"
         "^\n"
         "page.txt:1:6: error: expected a name after \"{{\"\n"
         "\uFFFD\uFFFD{{ }\n"
         "     ^\n"},
        {"tabs", "\t\u00E9\t{{ }",
         "page.txt:1:7: error: expected a name after \"{{\"\n"
         "\t\u00E9\t{{ }\n"
         "\t \t   ^\n"},
        {"a byte-order mark", "\xEF\xBB\xBF{{ }",
         "page.txt:1:1: warning: the file begins with a byte-order mark, which is written to the "
         "output\n"
         "{{ }\n"
         "^\n"
         "page.txt:1:4: error: expected a name after \"{{\"\n"
         "{{ }\n"
         "   ^\n"},
        {"CR LF line endings", "a\r\n{{ b\r\n}}\r\n",
         "page.txt:2:5: error: expected \"}}\" after the name\n"
         "{{ b\n"
         "    ^\n"
         "page.txt:2:1: note: a tag cannot span lines\n"
         "{{ b\n"
         "^~~~\n"},
        {"a lone CR", "a\r{{ b }\r",
         "page.txt:1:8: error: expected \"}}\" after the name\n"
         "a\\r{{ b }\\r\n"
         "        ^\n"},
        {"the end of the text", "{{ b",
         "page.txt:1:5: error: expected \"}}\" after the name\n"
         "{{ b\n"
         "    ^\n"},
        {"a NUL byte", std::string("a{{ b \0}}", 9),
         "page.txt:1:7: error: expected \"}}\" after the name\n"
         "a{{ b \\x00}}\n"
         "      ^~~~\n"
         "page.txt:1:7: warning: a NUL byte: the template ends here, and what follows is ignored\n"
         "a{{ b \\x00}}\n"
         "      ^~~~\n"},
        {"characters that control a terminal", "\x1B[1m\u009B\u202E\uFEFF{{ \u2028",
         "page.txt:1:11: error: expected a name after \"{{\"\n"
         "\\x1B[1m\\u009B\\u202E\\uFEFF{{ \\u2028\n"
         "                            ^~~~~~\n"
         "page.txt:1:8: note: to output these two characters, have the context provide a value "
         "that contains them\n"
         "\\x1B[1m\\u009B\\u202E\\uFEFF{{ \\u2028\n"
         "                         ^~~~~~~~~\n"},
        {"a long line", std::string(300, 'a') + "{{ }" + std::string(300, 'b'),
         "page.txt:1:304: error: expected a name after \"{{\"\n"
         "..." +
             std::string(76, 'a') + "{{ }" + std::string(80, 'b') + "...\n" + "   " +
             std::string(79, ' ') + "^\n"},
    };
    for (const auto& [name, text, findings] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        expectOutcome(runStencilor("check page.txt"), 1, findings, "");
    }
}

TEST_F(CheckTest, ReportsNamesThatNoTemplateUses) {
    folder.writeFile("page.txt", "{% for x in a %}{% endfor %}");
    folder.writeFile("more.txt", "{{ b }}");
    folder.writeFile("values.json",
                     "{\"b\": {\"m\": 1, \"a.c\": 2},\n \"\u00E9\": 0, \"c\": [\"c\"],\n"
                     " \"a\": [[{\"b\": 1}], {\"b\": 2, \"\\u0078\": 3}]}");
    expectOutcome(
        runStencilor(
            "check page.txt more.txt --context values.json -D b=2 -D d:=1 --unused --positions"),
        1,
        "-D:2:1: warning: no template uses \"d\"\nd:=1\n^\n"
        "values.json:2:2: warning: no template uses \"\u00E9\"\n"
        " \"\u00E9\": 0, \"c\": [\"c\"],\n ^~~\n"
        "values.json:2:10: warning: no template uses \"c\"\n"
        " \"\u00E9\": 0, \"c\": [\"c\"],\n         ^~~\n"
        "values.json:3:8: warning: no template uses \"a.value\"\n"
        " \"a\": [[{\"b\": 1}], {\"b\": 2, \"\\u0078\": 3}]}\n       ^\n"
        "values.json:3:29: warning: no template uses \"a.x\"\n"
        " \"a\": [[{\"b\": 1}], {\"b\": 2, \"\\u0078\": 3}]}\n" +
            std::string(28, ' ') + "^~~~~~~~\n",
        "");
    EXPECT_EQ(runStencilor("check page.txt --unused").status, 2);
}

TEST_F(CheckTest, FindsNothingInATemplate) {
    folder.writeFile("page.txt", R"({% if a %}{{ b }}{% endif %}{% include "part.txt" %})");
    folder.writeFile("part.txt", "{{ c }}");
    expectOutcome(runStencilor("check page.txt"), 0, "", "");
    expectOutcome(runStencilor("check -", {.input = "{{ a }}"}), 0, "", "");
}

TEST_F(CheckTest, FollowsIncludes) {
    folder.makeFolder("pages/parts");
    folder.makeFolder("other");
    folder.writeFile("pages/bad.txt", "{{");
    folder.writeFile("pages/parts/bad.txt", "{%");
    folder.writeFile("other/bad.txt", "{% if");
    const std::string missing = "error: included file \"none.txt\" does not exist\n";
    const struct {
        const char* name;
        std::string text;
        std::string arguments;
        int status;
        std::string findings;
    } cases[] = {
        {"a rejected file", R"(a{% include "bad.txt" %})", "", 1,
         "pages/bad.txt:1:3: error: expected a name after \"{{\"\n{{\n  ^\n"},
        {"each file once",
         R"({% include "bad.txt" %}{% include "bad.txt" %}{% include "parts/../bad.txt" %})", "", 1,
         "pages/bad.txt:1:3: error: expected a name after \"{{\"\n{{\n  ^\n"},
        {"a file in a folder", R"({% include "parts/bad.txt" %})", "", 1,
         "pages/parts/bad.txt:1:3: error: expected \"if\", \"for\" or \"include\"\n{%\n  ^\n"},
        {"a file below another root", R"({% include "bad.txt" %})", "--root other", 1,
         "other/bad.txt:1:6: error: expected a name after \"if\"\n{% if\n     ^\n"},
        {"a missing file", "{% include \"none.txt\" %}", "", 1,
         "pages/page.txt:1:13: " + missing + "{% include \"none.txt\" %}\n            ^~~~~~~~\n"},
        {"a file outside the root", "{% include \"parts/../../none.txt\" %}", "", 1,
         "pages/page.txt:1:13: error: included file \"parts/../../none.txt\" does not exist\n"
         "{% include \"parts/../../none.txt\" %}\n            ^~~~~~~~~~~~~~~~~~~~\n"},
        {"the files before a fault", "{% include \"none.txt\" %}{{", "", 1,
         "pages/page.txt:1:13: " + missing +
             "{% include \"none.txt\" %}{{\n            ^~~~~~~~\n"
             "pages/page.txt:1:27: error: expected a name after \"{{\"\n"
             "{% include \"none.txt\" %}{{\n                          ^\n"},
        {"a file that includes itself", "{% include \"page.txt\" %}", "", 1,
         "pages/page.txt:1:13: error: the file includes itself unconditionally: pages/page.txt -> "
         "pages/page.txt\n"
         "{% include \"page.txt\" %}\n            ^~~~~~~~\n"},
    };
    for (const auto& [name, text, arguments, status, findings] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("none.txt", "above the root");
        folder.writeFile("pages/page.txt", text);
        expectOutcome(runStencilor("check pages/page.txt " + arguments), status, findings, "");
    }
}

TEST_F(CheckTest, DistinguishesCyclesThatMayEndFromEndlessOnes) {
    const std::string toA = R"({% include "a.txt" %})";
    const std::string toB = R"({% include "b.txt" %})";
    const std::string guarded = "{% if x %}" + toB + "{% endif %}";
    const std::string looped = "{% for x in xs %}" + toB + "{% endfor %}";
    const std::string message = "the file includes itself unconditionally: a.txt -> b.txt -> a.txt";
    const std::string note = "b.txt:1:13: note: the file includes itself: a.txt -> b.txt -> a.txt";
    const struct {
        const char* name;
        std::string a;
        std::string b;
        std::string finding; // its first line
    } cases[] = {
        {"an unconditional cycle", toB, toA, "b.txt:1:13: error: " + message},
        {"with blocks before and after", "{% if x %}{% endif %}" + toB + looped, toA,
         "b.txt:1:13: error: " + message},
        {"an include inside a condition", guarded, toA, note},
        {"an include inside a loop", looped, toA, note},
        {"the else part of a condition", "{% if x %}{% else %}" + toB + "{% endif %}", toA, note},
        {"one of two includes inside a condition", guarded + toB, toA,
         "b.txt:1:13: error: " + message},
        {"a rejected file", toB, toA + "{{", note},
    };
    for (const auto& [name, a, b, finding] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", toA + toB);
        folder.writeFile("a.txt", a);
        folder.writeFile("b.txt", b);
        const Outcome outcome = runStencilor("check page.txt");
        EXPECT_EQ(outcome.output.substr(0, outcome.output.find('\n')), finding);
        EXPECT_EQ(outcome.output.find("itself", finding.size()), std::string::npos);
        EXPECT_EQ(outcome.status, outcome.output.find("error: ") == std::string::npos ? 0 : 1);
    }
}

TEST_F(CheckTest, NamesTheFirstAndTheLastFilesOfALongCycle) {
    for (int i = 0; i < 9; ++i) {
        folder.writeFile("f" + std::to_string(i) + ".txt",
                         "{% include \"f" + std::to_string((i + 1) % 9) + ".txt\" %}");
    }
    const Outcome outcome = runStencilor("check f0.txt");
    EXPECT_NE(outcome.output.find(
                  " f0.txt -> f1.txt -> f2.txt -> ... -> f6.txt -> f7.txt -> f8.txt -> f0.txt\n"),
              std::string::npos)
        << outcome.output;
}

TEST_F(CheckTest, ContinuesAfterAnError) {
    folder.writeFile("a.txt", "{{");
    folder.writeFile("b.txt", "text");
    folder.writeFile("c.txt", "{%");
    const std::string a = "a.txt:1:3: error: expected a name after \"{{\"\n{{\n  ^\n";
    const std::string c = "c.txt:1:3: error: expected \"if\", \"for\" or \"include\"\n{%\n  ^\n";
    expectOutcome(runStencilor("check a.txt b.txt c.txt a.txt"), 1, a + c, "");
#ifdef _WIN32
    const std::string reason = "File not found";
#else
    const std::string reason = "No such file or directory";
#endif
    expectOutcome(runStencilor("check none.txt c.txt"), 2, c,
                  "stencilor: none.txt: " + reason + "\n");
}

TEST_F(CheckTest, WarnsAboutNamesThatAContextDoesNotHave) {
    folder.writeFile("values.json", R"({"s":"x","b":true,"no":false,"o":{"m":"y"},"items":[
        {"name":"one","price":"1"},{"name":"two","sub":[{"x":1}]},{"sub":[{}]}],"empty":[]})");
    folder.writeFile("part.txt", "{{ name }}{{ item.name }}");
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> warnings; // without the lines of the source
    } cases[] = {
        {"names in the context", "{{ s }}{{ o.m }}{% if b %}{% endif %}", {}},
        {"a missing name",
         "{{ x }}{{ x }}",
         {"1:4: warning: no string is named \"x\"", "1:11: warning: no string is named \"x\""}},
        {"values of other kinds",
         "{{ b }}{{ items }}{{ o }}{% if s %}{% endif %}{% for a in b %}{% endfor %}",
         {"1:4: warning: \"b\" is a boolean, not a string",
          "1:11: warning: \"items\" is a list, not a string; loop over it: {% for x in items "
          "%}...{% endfor %}",
          "1:22: warning: \"o\" is a dictionary, not a string",
          "1:32: warning: \"s\" is a string, not a boolean",
          "1:59: warning: \"b\" is a boolean, not a list"}},
        {"missing conditions and lists",
         "{% if x %}{{ y }}{% endif %}{% for a in z %}{{ a.y }}{% endfor %}",
         {"1:7: warning: no boolean is named \"x\"", "1:41: warning: no list is named \"z\""}},
        {"both parts of a condition",
         "{% if no %}{{ x }}{% else %}{{ y }}{% endif %}",
         {"1:15: warning: no string is named \"x\"", "1:32: warning: no string is named \"y\""}},
        {"an element that lacks a member, once",
         "{% for item in items %}{{ item.name }}{{ item.price }}{% endfor %}",
         {"1:27: warning: no string is named \"item.name\" in element 3 of \"items\"",
          "1:42: warning: no string is named \"item.price\" in element 2 of \"items\""}},
        {"nested loops",
         "{% for i in items %}{% for j in i.sub %}{{ j.x }}{{ i.price }}{% endfor %}{% endfor %}",
         {"1:33: warning: no list is named \"i.sub\" in element 1 of \"items\"",
          "1:44: warning: no string is named \"j.x\" in element 1 of \"i.sub\"",
          "1:53: warning: no string is named \"i.price\" in element 1 of \"i.sub\""}},
        {"nothing inside an empty list", "{% for i in empty %}{{ i.x }}{% endfor %}", {}},
        {"an included file, which does not see variables",
         R"({% for item in items %}{% include "part.txt" %}{% endfor %})",
         {"part.txt:1:4: warning: no string is named \"name\" in element 3 of \"items\"",
          "part.txt:1:14: warning: no string is named \"item.name\" in element 1 of \"items\"; did "
          "you mean \"name\"?"}},
    };
    for (const auto& [name, text, warnings] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        const Outcome outcome = runStencilor("check page.txt --context values.json");
        EXPECT_EQ(outcome.status, warnings.empty() ? 0 : 1);
        EXPECT_EQ(outcome.errors, "");
        std::string found;
        for (std::size_t at = outcome.output.find(".txt:"); at != std::string::npos;
             at = outcome.output.find(".txt:", at + 1)) {
            const std::size_t begin = outcome.output.rfind('\n', at) + 1; // 0 at the beginning
            found += outcome.output.substr(begin, outcome.output.find('\n', at) + 1 - begin);
        }
        std::string expected;
        for (const std::string& warning : warnings) {
            expected += (warning.starts_with("part") ? "" : "page.txt:") + warning + "\n";
        }
        EXPECT_EQ(found, expected);
    }
}

TEST_F(CheckTest, TreatsDefinitionsAsAContext) {
    folder.writeFile("page.txt", "{{ a }}");
    expectOutcome(runStencilor("check page.txt -D a=x"), 0, "", "");
    EXPECT_EQ(runStencilor("check page.txt -D b=x").status, 1);
    EXPECT_EQ(runStencilor("check page.txt").status, 0);
}

TEST_F(CheckTest, StopsAtEndlessRecursionOverAContext) {
    folder.writeFile("values.json",
                     R"({"all":[{"n":"a","all":[{"n":"b","all":[]},{"all":[]}]}],"more":true})");
    folder.writeFile("page.txt", R"({% for x in all %}{{ n }}{% include "page.txt" %}{% endfor %})"
                                 R"({% if more %}{% include "page.txt" %}{% endif %})");
    const Outcome outcome = runStencilor("check page.txt --context values.json");
    EXPECT_EQ(outcome.status, 0); // names are also found in outer elements
    EXPECT_NE(outcome.output.find("note: the file includes itself"), std::string::npos);
}

TEST_F(CheckTest, WritesTheOutputToAFile) {
    folder.writeFile("page.txt", "{{");
    expectOutcome(runStencilor("check page.txt -o findings.txt"), 1, "", "");
    EXPECT_EQ(support::readFile("findings.txt"),
              "page.txt:1:3: error: expected a name after \"{{\"\n{{\n  ^\n");
}

} // namespace
} // namespace program
