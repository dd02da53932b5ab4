#include "ProgramTest.h"

namespace program {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public ProgramTest {
  protected:
    OutputFileTest() { folder.writeFile("page.txt", "new"); }

    /// The sorted names of everything in the working directory.
    static std::vector<std::string> names(const fs::path& where = ".") {
        std::vector<std::string> result;
        for (const fs::directory_entry& entry : fs::directory_iterator(where)) {
            result.push_back(entry.path().filename().string());
        }
        std::sort(result.begin(), result.end());
        return result;
    }
};

using Names = std::vector<std::string>;

TEST_F(OutputFileTest, IsCreatedOrReplaced) {
    folder.makeFolder("below");
    const struct {
        const char* name;
        std::string file;
    } cases[] = {
        {"next to the template", "out.txt"},
        {"in another folder", "below/out.txt"},
        {"by its full path", folder.path("full.txt")},
    };
    for (const auto& [name, file] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor({"render", "page.txt", "-o", file}), 0, "", "");
        EXPECT_EQ(support::readFile(file), "new");
        expectOutcome(runStencilor({"render", "-", "--output", file}, {.input = ""}), 0, "", "");
        EXPECT_EQ(support::readFile(file), "");
    }
    EXPECT_EQ(names(), (Names{"below", "full.txt", "out.txt", "page.txt"}));
    EXPECT_EQ(names("below"), Names{"out.txt"});
}

TEST_F(OutputFileTest, IsNeverAFileThatWasRead) {
    const std::string page = R"({{ a }}{% include "part.txt" %})";
    folder.makeFolder("below");
    folder.writeFile("page.txt", page);
    folder.writeFile("part.txt", "{{ a }}");
    folder.writeFile("values.json", R"({"a":"x"})");
    const bool hasLink = folder.makeLink("link.txt", "page.txt");
    const struct {
        const char* name;
        std::string arguments;
        std::string file;
    } cases[] = {
        {"the template", "render page.txt values.json", "page.txt"},
        {"the template by another path", "render page.txt values.json", "below/../page.txt"},
        {"the template by its link", "render page.txt values.json",
         hasLink ? "link.txt" : "page.txt"},
        {"an include", "render page.txt values.json", "part.txt"},
        {"the context", "render page.txt values.json", "values.json"},
        {"the file of a template on stdin", "render - --stdin-name page.txt", "page.txt"},
        {"a template that is checked", "check page.txt", "page.txt"},
        {"an include of a template that is checked", "check page.txt", "part.txt"},
        {"the context of a check", "check page.txt --context values.json", "values.json"},
        {"a template that is listed", "names page.txt", "page.txt"},
        {"an include that is listed", "deps page.txt", "part.txt"},
        {"a template whose tree is printed", "tree page.txt", "page.txt"},
    };
    for (const auto& [name, arguments, file] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor(arguments + " -o " + file, {.input = "text"}), 2, "",
                      "stencilor: " + file + ": the output would overwrite an input file\n");
        EXPECT_EQ(support::readFile("page.txt"), page);
        EXPECT_EQ(support::readFile("part.txt"), "{{ a }}");
        EXPECT_EQ(support::readFile("values.json"), R"({"a":"x"})");
    }
}

TEST_F(OutputFileTest, IsReplacedByAnotherOneAndNotWrittenTo) {
    folder.writeFile("out.txt", "before");
    fs::create_hard_link("out.txt", "former.txt");
    expectOutcome(runStencilor("render page.txt -o out.txt"), 0, "", "");
    EXPECT_EQ(support::readFile("out.txt"), "new");
    EXPECT_EQ(support::readFile("former.txt"), "before");
}

TEST_F(OutputFileTest, IsNamedIfItCannotBeWritten) {
    folder.makeFolder("folder");
#ifdef _WIN32
    const std::string isFolder = "Access denied";
    const std::string noFolder = "Path not found";
#else
    const std::string isFolder = "Is a directory";
    const std::string noFolder = "No such file or directory";
#endif
    const struct {
        const char* name;
        std::string file;
        std::string reason;
    } cases[] = {
        {"a folder", "folder", isFolder},
        {"a file in a folder that does not exist", "none/out.txt", noFolder},
    };
    for (const auto& [name, file, reason] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor({"render", "page.txt", "-o", file}), 2, "",
                      "stencilor: " + file + ": " + reason + "\n");
        EXPECT_EQ(names(), (Names{"folder", "page.txt"}));
    }
}

#ifndef _WIN32

TEST_F(OutputFileTest, IsNeverAFileThatIsRedirected) {
    folder.writeFile("page.txt", "text");
    for (const auto& [command, name] :
         {std::pair<std::string, std::string>{"\"$0\" render - -o page.txt <page.txt", "page.txt"},
          {"\"$0\" render page.txt >>page.txt", "<stdout>"},
          {"\"$0\" render - <page.txt >>page.txt", "<stdout>"},
          {"\"$0\" render page.txt -o /dev/stdout >>page.txt", "/dev/stdout"}}) {
        SCOPED_TRACE(command);
        expectOutcome(runShell(command), 2, "",
                      "stencilor: " + name + ": the output would overwrite an input file\n");
        EXPECT_EQ(support::readFile("page.txt"), "text");
    }
}

fs::perms permissions(const char* file) {
    return fs::status(file).permissions();
}

TEST_F(OutputFileTest, IsKeptIfTheNewOneCannotBeWritten) {
    folder.writeFile("out.txt", "before");
    folder.writeFile("page.txt", std::string(100'000, 'x'));
    expectOutcome(runShell("ulimit -f 1; exec \"$0\" render page.txt -o out.txt"), 2, "",
                  "stencilor: out.txt: File too large\n");
    EXPECT_EQ(support::readFile("out.txt"), "before");
    EXPECT_EQ(names(), (Names{"out.txt", "page.txt"}));
}

TEST_F(OutputFileTest, IsNotCreatedIfItCannotBeWritten) {
    folder.writeFile("page.txt", std::string(100'000, 'x'));
    expectOutcome(runShell("ulimit -f 1; exec \"$0\" render page.txt -o out.txt"), 2, "",
                  "stencilor: out.txt: File too large\n");
    EXPECT_EQ(names(), Names{"page.txt"});
}

TEST_F(OutputFileTest, KeepsThePermissionsOfThePreviousFile) {
    for (const unsigned int mode : {0600u, 0640u, 0755u, 0666u}) {
        SCOPED_TRACE(mode);
        folder.writeFile("out.txt", "before");
        fs::permissions("out.txt", fs::perms(mode));
        expectOutcome(runShell("umask 027; exec \"$0\" render page.txt -o out.txt"), 0, "", "");
        EXPECT_EQ(support::readFile("out.txt"), "new");
        EXPECT_EQ(permissions("out.txt"), fs::perms(mode));
    }
}

TEST_F(OutputFileTest, GetsThePermissionsThatNewFilesHave) {
    expectOutcome(runShell("umask 022; exec \"$0\" render page.txt -o a.txt"), 0, "", "");
    EXPECT_EQ(permissions("a.txt"), fs::perms(0644));
    expectOutcome(runShell("umask 077; exec \"$0\" render page.txt -o b.txt"), 0, "", "");
    EXPECT_EQ(permissions("b.txt"), fs::perms(0600));
}

TEST_F(OutputFileTest, IsKeptIfItIsNotWritable) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may write to everything";
    }
    folder.writeFile("out.txt", "before");
    fs::permissions("out.txt", fs::perms(0444));
    expectOutcome(runStencilor("render page.txt -o out.txt"), 2, "",
                  "stencilor: out.txt: Permission denied\n");
    EXPECT_EQ(support::readFile("out.txt"), "before");
}

TEST_F(OutputFileTest, IsTheTargetOfALink) {
    folder.makeFolder("below");
    folder.writeFile("below/old.txt", "before");
    fs::permissions("below/old.txt", fs::perms(0640));
    const struct {
        const char* name;
        std::string link;
        std::string target;
        std::string file;
    } cases[] = {
        {"a link to a file", "link1", "below/old.txt", "below/old.txt"},
        {"a link to a link", "link2", "link1", "below/old.txt"},
        {"a full path", "link3", folder.path("below/old.txt"), "below/old.txt"},
        {"a link to a file that does not exist", "link4", "below/made.txt", "below/made.txt"},
    };
    for (const auto& [name, link, target, file] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(folder.makeLink(link, target));
        folder.writeFile("page.txt", name);
        expectOutcome(runStencilor({"render", "page.txt", "-o", link}), 0, "", "");
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(support::readFile(file), name);
    }
    EXPECT_EQ(permissions("below/old.txt"), fs::perms(0640));
    EXPECT_EQ(names("below"), (Names{"made.txt", "old.txt"}));
}

TEST_F(OutputFileTest, IsRejectedIfLinksAreCyclic) {
    ASSERT_TRUE(folder.makeLink("a", "b"));
    ASSERT_TRUE(folder.makeLink("b", "a"));
    expectOutcome(runStencilor("render page.txt -o a"), 2, "",
                  "stencilor: a: Too many levels of symbolic links\n");
    EXPECT_TRUE(fs::is_symlink(fs::symlink_status("a")));
}

TEST_F(OutputFileTest, MayBeTheStandardOutputByItsName) {
    expectOutcome(runStencilor("render page.txt -o /dev/stdout"), 0, "new", "");
    // Earlier output is kept, as with any program that writes there.
    expectOutcome(runShell("echo before; \"$0\" render page.txt -o /dev/stdout; echo; echo after"),
                  0, "before\nnew\nafter\n", "");
    expectOutcome(runShell("\"$0\" render page.txt -o /dev/stdout | cat"), 0, "new", "");
    expectOutcome(runStencilor("render page.txt -o /dev/null"), 0, "", "");
}

#endif

} // namespace
} // namespace program
