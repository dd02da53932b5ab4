#include "ProgramTest.h"

namespace program {
namespace {

class DepsTest : public ProgramTest {
  protected:
    DepsTest() {
        folder.makeFolder("pages/parts");
        folder.writeFile("pages/page.txt", R"({% include "parts/a.txt" %}{% include "b.txt" %})"
                                           R"({% include "parts/../b.txt" %})");
        folder.writeFile("pages/parts/a.txt",
                         R"({% if x %}{% include "b.txt" %}{% include "page.txt" %}{% endif %})");
        folder.writeFile("pages/b.txt", "text");
    }
};

TEST_F(DepsTest, ListsEachIncludedFileOnce) {
    expectOutcome(runStencilor("deps pages/page.txt"), 0, "pages/parts/a.txt\npages/b.txt\n", "");
    expectOutcome(runStencilor("deps pages/b.txt"), 0, "", "");
}

TEST_F(DepsTest, ListsFilesBelowAnotherRoot) {
    folder.makeFolder("other");
    folder.writeFile("other/b.txt", "text");
    folder.writeFile("pages/short.txt", R"({% include "b.txt" %})");
    expectOutcome(runStencilor("deps pages/short.txt --root other"), 0, "other/b.txt\n", "");
    expectOutcome(runStencilor("deps - --root other/", {.input = R"({% include "b.txt" %})"}), 0,
                  "other/b.txt\n", "");
}

TEST_F(DepsTest, ListsFilesThatAreMissing) {
    folder.writeFile("page.txt", R"({% include "none.txt" %})");
    expectOutcome(runStencilor("deps page.txt"), 1, "none.txt\n",
                  "page.txt:1:13: error: included file \"none.txt\" does not exist\n"
                  "{% include \"none.txt\" %}\n            ^~~~~~~~\n");
}

TEST_F(DepsTest, WritesAMakeRule) {
    folder.makeFolder("p q$#");
    folder.writeFile("p q$#/page.txt", R"({% include "row.txt" %})");
    folder.writeFile("p q$#/row.txt", "text");
    const struct {
        const char* name;
        std::string arguments;
        std::string rule;
    } cases[] = {
        {"files", "pages/page.txt --depfile out.html",
         "out.html: pages/page.txt \\\n  pages/parts/a.txt \\\n  pages/b.txt\n"},
        {"no includes", "pages/b.txt --depfile out.html", "out.html: pages/b.txt\n"},
        {"names that must be escaped", "'p q$#/page.txt' --depfile 'a b#c$d'",
         "a\\ b\\#c$$d: p\\ q$$\\#/page.txt \\\n  p\\ q$$\\#/row.txt\n"},
        {"backslashes", R"(pages/b.txt --depfile 'a\b\\ c')",
         R"(a\b\\\\\ c: pages/b.txt)"
         "\n"},
    };
    for (const auto& [name, arguments, rule] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor("deps " + arguments), 0, rule, "");
    }
    expectOutcome(runStencilor("deps - --depfile out", {.input = "text"}), 0, "out:\n", "");
    expectOutcome(runStencilor({"deps", "pages/b.txt", "--depfile", "a\nb"}), 2, "",
                  "stencilor: a Make rule cannot contain the line break in a\\nb\n");
}

#ifndef _WIN32
TEST_F(DepsTest, WritesARuleThatMakeReads) {
    if (runShell("command -v make").status != 0) {
        GTEST_SKIP() << "make is not installed";
    }
    folder.makeFolder("p q$#");
    folder.writeFile("p q$#/page.txt", R"({% include "row.txt" %})");
    folder.writeFile("p q$#/row.txt", "text");
    expectOutcome(runStencilor("deps 'p q$#/page.txt' --depfile 'o u$t' -o rules"), 0, "", "");
    folder.writeFile("Makefile", "include rules\no\\ u$$t:\n\t@touch '$@'\n");
    EXPECT_EQ(runShell("make -s 'o u$t' && make -q 'o u$t'").status, 0);
    // The file is older than its dependencies, so it must be made again.
    EXPECT_EQ(runShell("touch -d '+1 hour' 'p q$#/row.txt' && make -q 'o u$t'").status, 1);
}
#endif

} // namespace
} // namespace program
