#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "Cases.h"

namespace support {
namespace {

/// Renders in its own folder, which is the working directory.
class InclusionTest : public testing::Test {
  protected:
    TemporaryFolder folder_;
    WorkingFolder working_{folder_.path()};
};

TEST_F(InclusionTest, RendersTheFileInPlace) {
    folder_.makeFolder("parts/deep");
    folder_.writeFile("plain.txt", "plain");
    folder_.writeFile("parts/head.txt", "<{{ title }}>");
    folder_.writeFile("parts/deep/all",
                      "{% if yes %}{% for u in users %}{{ u.name }}{% endfor %}{% endif %}");
    folder_.writeFile("nested.txt", "({% include \"parts/head.txt\" %})");
    folder_.writeFile("empty.txt", "");
    folder_.writeFile("lines.txt", "a\r\nb\n\tc\r");
    folder_.writeFile("umlauts.txt", "\u00E4\u65E5\U0001F600{{ title }}");
    folder_.writeFile("mark.txt", "\xEF\xBB\xBFx");
    folder_.writeFile("malformed.txt", "a\xFFz");
    folder_.writeFile("cut.txt", std::string("a{{ title }}\0b{{", 16));
    folder_.writeFile("first.txt", std::string("\0a", 2));
    const Root root({
        {"title", text("\u00DCberschrift")},
        {"yes", truth(true)},
        {"users", list({dictionary({{"name", text("a")}}), dictionary({{"name", text("b")}})})},
    });
    const Case cases[] = {
        {"plain text", "[{% include \"plain.txt\" %}]", "[plain]"},
        {"twice", "{% include \"plain.txt\" %}{% include \"plain.txt\" %}", "plainplain"},
        {"a folder", "{% include \"parts/head.txt\" %}", "<\u00DCberschrift>"},
        {"every construct", "{% include \"parts/deep/all\" %}", "ab"},
        {"a file that includes another, by the path from the working directory",
         "{% include \"nested.txt\" %}", "(<\u00DCberschrift>)"},
        {"a path with `..` parts", "{% include \"parts/../plain.txt\" %}", "plain"},
        {"an empty file", "[{% include \"empty.txt\" %}]", "[]"},
        {"line endings, kept", "{% include \"lines.txt\" %}", "a\r\nb\n\tc\r"},
        {"text of every language", "{% include \"umlauts.txt\" %}",
         "\u00E4\u65E5\U0001F600\u00DCberschrift"},
        {"a byte order mark, kept", "{% include \"mark.txt\" %}", "\xEF\xBB\xBFx"},
        {"malformed bytes, replaced", "{% include \"malformed.txt\" %}", "a\uFFFDz"},
        {"up to the first NUL", "[{% include \"cut.txt\" %}]", "[a\u00DCberschrift]"},
        {"a NUL at the beginning", "[{% include \"first.txt\" %}]", "[]"},
        {"in a block", "{% if yes %}{% include \"plain.txt\" %}{% endif %}", "plain"},
    };
    expectRendered(root, cases);
}

TEST_F(InclusionTest, ReportsFilesThatDoNotExist) {
    folder_.makeFolder("directory");
    const bool hasPipes = folder_.makePipe("pipe");
    const bool hasLinks = folder_.makeLink("zero", "/dev/zero");
    const Root root;
    for (const std::string path : {"missing.txt", "missing/file", "directory", "pipe", "zero"}) {
        if ((path == "pipe" && !hasPipes) || (path == "zero" && !hasLinks)) {
            continue;
        }
        EXPECT_EQ(render("a{% include \"" + path + "\" %}b", root),
                  (Rendered{"ab", "Could not include file \"" + path + "\", file doesn't exist"}));
    }
}

TEST_F(InclusionTest, ReportsFilesThatCannotBeLoaded) {
    folder_.writeSparseFile("large", 4ull << 30);
    const Root root;
    EXPECT_EQ(render("a{% include \" large \" %}b", root),
              (Rendered{"ab", "Could not load file \"large\""}));
}

TEST_F(InclusionTest, ReportsEachTimeAndGoesOn) {
    const Root root({{"list", listOf(2)}});
    EXPECT_EQ(render("{% for item in list %}a{% include \"x\" %}{% endfor %}{{ y }}", root),
              (Rendered{"aa", "Could not include file \"x\", file doesn't exist"
                              "Could not include file \"x\", file doesn't exist"
                              "Could not find expected replacement named \"y\"\n"}));
}

TEST_F(InclusionTest, DropsMessagesFromInsideTheFile) {
    folder_.writeFile("rejected.txt", "text {{ x");
    folder_.writeFile("faulty.txt", "a{{ missing }}b{% if missing %}{% endif %}c");
    folder_.writeFile("outer.txt", "<{% include \"missing.txt\" %}{% include \"rejected.txt\" %}>");
    const Root root;
    const Case cases[] = {
        {"a rejected file", "[{% include \"rejected.txt\" %}]", "[]"},
        {"faults inside", "[{% include \"faulty.txt\" %}]", "[abc]"},
        {"failing includes inside", "[{% include \"outer.txt\" %}]", "[<>]"},
    };
    expectRendered(root, cases);
    EXPECT_EQ(render("{{ x }}{% include \"faulty.txt\" %}{{ y }}", root),
              (Rendered{"abc", "Could not find expected replacement named \"x\"\n"
                               "Could not find expected replacement named \"y\"\n"}));
}

TEST_F(InclusionTest, SeesTheScopesAtTheStatementButNoLoopVariable) {
    folder_.writeFile("prefixed.txt", "{{ x.name }}");
    folder_.writeFile("whole.txt", "{{ x.whole }}");
    folder_.writeFile("plain.txt", "{{ name }}");
    folder_.writeFile("loop.txt", "{% for y in inner %}{{ y.name }}{{ x.name }}{% endfor %}");
    folder_.writeFile("again.txt", "{% for x in inner %}{{ x.name }}{% endfor %}");
    const Root root({
        {"list", list({dictionary({{"name", text("element")},
                                   {"inner", list({dictionary({{"name", text("inner")}})})}})})},
        {"name", text("root")},
        {"x.whole", text("whole")},
    });
    const Case cases[] = {
        {"the root's names", "{% include \"plain.txt\" %}", "root"},
        {"the element's names", "{% for x in list %}{% include \"plain.txt\" %}{% endfor %}",
         "element"},
        {"no names with the variable",
         "{% for x in list %}{% include \"prefixed.txt\" %}{% endfor %}", ""},
        {"a key of the whole dotted name",
         "{% for x in list %}{{ x.name }},{% include \"whole.txt\" %}{% endfor %}",
         "element,whole"},
        {"names with its own variable, none with the outer one",
         "{% for x in list %}{% include \"loop.txt\" %}{% endfor %}", "inner"},
        {"names with its own variable of the same name",
         "{% for x in list %}{% include \"again.txt\" %}{% endfor %}", "inner"},
        {"the variable applies again after it",
         "{% for x in list %}{% include \"loop.txt\" %},{{ x.name }}{% endfor %}", "inner,element"},
    };
    expectRendered(root, cases);
}

TEST_F(InclusionTest, ReadsTheFileAgainEachTime) {
    folder_.writeFile("file.txt", "first");
    const Root root;
    EXPECT_EQ(render("{% include \"file.txt\" %}", root).output, "first");
    folder_.writeFile("file.txt", "second");
    EXPECT_EQ(render("{% include \"file.txt\" %}", root).output, "second");
}

TEST_F(InclusionTest, MayNestHundredsDeep) {
    constexpr int depth = 300;
    for (int number = 0; number < depth; ++number) {
        folder_.writeFile("f" + std::to_string(number),
                          "<{% include \"f" + std::to_string(number + 1) + "\" %}>");
    }
    folder_.writeFile("f" + std::to_string(depth), "{{ x }}");
    const Root root({{"x", text("x")}});
    EXPECT_EQ(render("{% include \"f0\" %}", root),
              (Rendered{std::string(depth, '<') + "x" + std::string(depth, '>'), ""}));
}

// Two halves of a character, one in the file and one after the tag, are two malformed parts,
// because top-level nodes are decoded separately. Inside a block, they are in the text of one node.
TEST_F(InclusionTest, IsDecodedApartFromItsNeighboursAtTopLevel) {
    folder_.writeFile("half.txt", "\xC3");
    const Root root({{"yes", truth(true)}, {"half", text("\xC3")}});
    EXPECT_EQ(render("{% include \"half.txt\" %}\xA9", root).output, "\uFFFD\uFFFD");
    EXPECT_EQ(render("{{ half }}\xA9", root).output, "\uFFFD\uFFFD");
    EXPECT_EQ(render("{% if yes %}{% include \"half.txt\" %}\xA9{% endif %}", root).output,
              "\u00E9");
}

} // namespace
} // namespace support
