#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/ProjectFile.h>
#include <tools/stencilor/system/System.h>

namespace stencilor {
namespace {

struct Glob {
    std::string pattern;
    std::string path;
    bool matches;
};

TEST(ProjectFile, MatchesPatterns) {
    for (const Glob& each : std::vector<Glob>{
             {"a.txt", "a.txt", true},
             {"a.txt", "b/a.txt", false},
             {"*.txt", "a.txt", true},
             {"*.txt", "a.html", false},
             {"*.txt", "b/a.txt", false},
             {"*/*.txt", "b/a.txt", true},
             {"**/*.txt", "a.txt", true},
             {"**/*.txt", "b/c/a.txt", true},
             {"**/*.txt", "b/c/a.html", false},
             {"mails/**", "mails/a/b.txt", true},
             {"mails/**", "other/a.txt", false},
             {"mails/**/x.txt", "mails/x.txt", true},
             {"mails/**/x.txt", "mails/a/b/x.txt", true},
             {"?.txt", "a.txt", true},
             {"?.txt", "/.txt", false},
             {"a*b*c", "aXbYbZc", true},
             {"a*b*c", "aXbYbZ", false},
             {"**/a/*/b", "x/a/y/a/z/b", true},
             {"", "a", false},
             {"**", "a/b", true},
         }) {
        EXPECT_EQ(matchesGlob(each.pattern, each.path), each.matches)
            << each.pattern << " and " << each.path;
    }
}

struct Wrong {
    std::string name;
    std::string text;
    std::string fault; ///< after the path
};

TEST(ProjectFile, ReportsErrors) {
    const support::TemporaryFolder folder;
    folder.makeFolder("inner");
    const std::string file = system::identityOf(folder.path("inner")) + "/stencilor.json";
    for (const Wrong& each : std::vector<Wrong>{
             {"not JSON", "{", ":1:2: expected"},
             {"an array", "[]", ": expected an object with root, context and files"},
             {"a number as the root", R"({"root": 1, "context": {}})",
              ": \"context\" must be a string"},
             {"files that are not an array", R"({"files": "*.txt"})",
              ": \"files\" must be an array of strings"},
             {"a misspelled name", R"({"roots": "a"})", ": \"roots\" is unknown"},
             {"a root above the project", R"({"root": ".."})", ": the root \"..\" is outside"},
             {"a root whose path leads outside", R"({"root": "a/../../b"})", ": the root "},
             {"an absolute root", R"({"root": "/"})", ": the root \"/\" is outside"},
         }) {
        SCOPED_TRACE(each.name);
        try {
            parseProject(file, each.text);
            ADD_FAILURE() << "no error was reported";
        } catch (const Failure& failure) {
            EXPECT_EQ(std::string(failure.what()).substr(0, file.size() + each.fault.size()),
                      file + each.fault);
        }
    }
}

TEST(ProjectFile, ARootIsNotReachedThroughALinkThatLeadsOut) {
    const support::TemporaryFolder folder;
    folder.makeFolder("inner");
    if (!folder.makeLink("inner/out", "..")) {
        GTEST_SKIP() << "links are not supported";
    }
    const std::string file = system::identityOf(folder.path("inner")) + "/stencilor.json";
    EXPECT_THROW(parseProject(file, R"({"root": "out"})"), Failure);
}

TEST(ProjectFile, IsTheNearestOne) {
    const auto find = [](const std::string& folder, const std::string& outermost,
                         const std::vector<std::string>& files) {
        return findProjectFile(folder, outermost,
                               [&files](const std::string& name) {
                                   return std::find(files.begin(), files.end(), name) !=
                                          files.end();
                               })
            .value_or("none");
    };
    const std::string outer = "/w/stencilor.json";
    const std::string inner = "/w/a/b/stencilor.json";
    EXPECT_EQ(find("/w/a/b", "/w", {outer, inner}), inner);
    EXPECT_EQ(find("/w/a", "/w", {outer, inner}), outer);
    EXPECT_EQ(find("/w/a", "/w/a", {outer}), "none") << "it is outside the workspace";
    EXPECT_EQ(find("/x/a", "/w", {"/x/stencilor.json"}), "none");
    EXPECT_EQ(find("/x", "/w", {"/x/stencilor.json"}), "/x/stencilor.json");
    EXPECT_EQ(find("/", "/", {}), "none");
}

TEST(ProjectFile, KnowsWhatIsInsideAFolder) {
    EXPECT_TRUE(isInside("/a/b", "/a"));
    EXPECT_TRUE(isInside("/a", "/a"));
    EXPECT_TRUE(isInside("/a", "/"));
    EXPECT_FALSE(isInside("/ab", "/a"));
    EXPECT_FALSE(isInside("/", "/a"));
}

} // namespace
} // namespace stencilor
