#include "ProgramTest.h"

namespace program {
namespace {

class IncludeTest : public ProgramTest {
  protected:
    IncludeTest() {
        folder.makeFolder("pages/parts");
        folder.makeFolder("other");
        folder.writeFile("pages/page.txt", R"([{% include "part.txt" %}])");
        folder.writeFile("pages/deep.txt", R"([{% include "parts/part.txt" %}])");
        folder.writeFile("pages/up.txt", R"([{% include "parts/../../part.txt" %}])");
        folder.writeFile("pages/part.txt", "beside the page");
        folder.writeFile("pages/parts/part.txt", "below the page");
        folder.writeFile("other/part.txt", "elsewhere");
        folder.writeFile("part.txt", "in the working directory");
    }
};

TEST_F(IncludeTest, FindsFilesBelowTheRootOnly) {
    const struct {
        const char* name;
        std::string arguments;
        std::string input;
        std::string output;
        std::string errors;
    } cases[] = {
        {"the template's folder", "pages/page.txt", "", "[beside the page]", ""},
        {"a folder in it", "pages/deep.txt", "", "[below the page]", ""},
        {"the template's folder by its full path", folder.path("pages/page.txt"), "",
         "[beside the page]", ""},
        {"another root", "pages/page.txt --root other", "", "[elsewhere]", ""},
        {"another root above", "pages/page.txt --root .", "", "[in the working directory]", ""},
        {"the working directory, for a template from the standard input", "-",
         R"([{% include "part.txt" %}])", "[in the working directory]", ""},
        {"another root, for a template from the standard input", "- --root other",
         R"([{% include "part.txt" %}])", "[elsewhere]", ""},
        {"not above the root", "pages/up.txt", "", "[]",
         "pages/up.txt:1:14: warning: included file \"parts/../../part.txt\" does not exist\n"
         "[{% include \"parts/../../part.txt\" %}]\n             ^~~~~~~~~~~~~~~~~~~~\n"},
        {"not where only another root has the file", "pages/deep.txt --root other", "", "[]",
         "pages/deep.txt:1:14: warning: included file \"parts/part.txt\" does not exist\n"
         "[{% include \"parts/part.txt\" %}]\n             ^~~~~~~~~~~~~~\n"},
    };
    for (const auto& [name, arguments, input, output, errors] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor("render " + arguments, {.input = input}), errors.empty() ? 0 : 1,
                      output, errors);
    }
}

TEST_F(IncludeTest, DoesNotConfineTheFilesThatAreNamed) {
    folder.writeFile("values.json", R"({"a":"x"})");
    folder.writeFile("pages/value.txt", "{{ a }}");
    expectOutcome(runStencilor("render pages/value.txt values.json --root other -o pages/out.txt"),
                  0, "", "");
    EXPECT_EQ(support::readFile(folder.path("pages/out.txt")), "x");
}

TEST_F(IncludeTest, IsRejectedThroughALinkThatLeavesTheRoot) {
    if (!folder.makeLink("pages/link.txt", "../other/part.txt")) {
        GTEST_SKIP() << "links are not supported";
    }
    folder.writeFile("pages/linked.txt", R"([{% include "link.txt" %}])");
    expectOutcome(runStencilor("render pages/linked.txt"), 1, "[]",
                  "pages/linked.txt:1:14: warning: included file \"link.txt\" does not exist\n"
                  "[{% include \"link.txt\" %}]\n             ^~~~~~~~\n");
}

} // namespace
} // namespace program
