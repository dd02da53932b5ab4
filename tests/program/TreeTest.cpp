#include "ProgramTest.h"

namespace program {
namespace {

using TreeTest = ProgramTest;

TEST_F(TreeTest, ShowsEachNodeWithItsPlace) {
    const struct {
        const char* name;
        std::string text;
        std::string tree;
    } cases[] = {
        {"nothing", "", ""},
        {"text", "a \"\u00E9\"\n\t\xFF", "1:1 text \"a \\\"\u00E9\\\"\\n\\t\uFFFD\"\n"},
        {"one node of each kind",
         R"({{ a.b }}{% if c %}d{% else %}e{% endif %}{% for f in g %}{{ f.h }})"
         R"({% endfor %}{% include "i.txt" %})",
         "1:1 substitution a.b\n"
         "1:10 if c\n"
         "  1:20 text \"d\"\n"
         "1:21 else\n"
         "  1:31 text \"e\"\n"
         "1:43 for f in g\n"
         "  1:59 substitution f.h\n"
         "1:80 include \"i.txt\"\n"},
        {"nested blocks", "{% if a %}\n{% for b in c %}\n{% endfor %}{% endif %}",
         "1:1 if a\n"
         "  1:11 text \"\\n\"\n"
         "  2:1 for b in c\n"
         "    2:17 text \"\\n\"\n"},
        {"the text before a NUL byte", std::string("a\0b", 3), "1:1 text \"a\"\n"},
    };
    for (const auto& [name, text, tree] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        expectOutcome(runStencilor("tree page.txt"), 0, tree, "");
        expectOutcome(runStencilor("tree -", {.input = text}), 0, tree, "");
    }
}

TEST_F(TreeTest, LimitsTheIndentation) {
    std::string text = "x";
    for (int i = 0; i < 50; ++i) {
        text = "{% if a %}" + text + "{% endif %}";
    }
    const Outcome outcome = runStencilor("tree -", {.input = text});
    EXPECT_NE(outcome.output.find("\n" + std::string(78, ' ') + "1:391 if a\n"), std::string::npos);
    EXPECT_NE(outcome.output.find("\n(40 deep) 1:401 if a\n"), std::string::npos);
    EXPECT_NE(outcome.output.find("\n(50 deep) 1:501 text \"x\"\n"), std::string::npos);
}

} // namespace
} // namespace program
