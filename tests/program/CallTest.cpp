#include "ProgramTest.h"

namespace program {
namespace {

using CallTest = ProgramTest;

TEST_F(CallTest, EndsWithStatus2WhereItIsWrong) {
    folder.writeFile("page.txt", "text");
    folder.writeFile("values.json", "{}");
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {"no arguments", {}, "A subcommand is required"},
        {"an unknown command", {"frob"}, "The following argument was not expected: frob"},
        {"an unknown option",
         {"render", "page.txt", "--frob"},
         "The following argument was not expected: --frob"},
        {"an unknown option and no template",
         {"render", "--frob"},
         "The following argument was not expected: --frob"},
        {"an option before the command",
         {"--strict", "render", "page.txt"},
         "The following argument was not expected: --strict"},
        {"no template", {"render"}, "TEMPLATE is required"},
        {"a third file",
         {"render", "page.txt", "values.json", "more"},
         "The following argument was not expected: more"},
        {"two outputs",
         {"render", "page.txt", "-o", "a", "-o", "b"},
         "--output: At Most 1 required but received 2"},
        {"a definition that is missing",
         {"render", "page.txt", "-D"},
         "-D: 1 required NAME=VALUE missing"},
        {"the standard input twice",
         {"render", "-", "-"},
         "TEMPLATE and CONTEXT: only one of them can be -"},
        {"a flag with a value",
         {"render", "page.txt", "--strict=no"},
         "strict was given a disallowed flag override"},
        {"a long argument",
         {std::string(300, 'x')},
         "The following argument was not expected: " + std::string(159, 'x') + "..."},
    };
    for (const auto& [name, arguments, message] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        expectOutcome(outcome, 2, "", "stencilor: " + message + callHint);
    }
}

TEST_F(CallTest, PrintsItsVersion) {
    expectOutcome(runStencilor({"--version"}), 0, "stencilor " STENCILOR_VERSION "\n", "");
}

TEST_F(CallTest, PrintsItsHelp) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::vector<std::string> parts;
    } cases[] = {
        {"the program's", {"--help"}, {"Usage: stencilor [OPTIONS] SUBCOMMAND\n", "  render "}},
        {"a command's",
         {"render", "--help"},
         {"Usage: stencilor render [OPTIONS] TEMPLATE [CONTEXT]\n", "-D NAME=VALUE", "--output",
          "--root", "--strict", "--trace", "Exit status:\n", "\"trace: NAME:LINE\""}},
        {"a command's in short", {"render", "-h"}, {"Usage: stencilor render "}},
    };
    for (const auto& [name, arguments, parts] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, "");
        for (const std::string& part : parts) {
            EXPECT_NE(outcome.output.find(part), std::string::npos) << part;
        }
    }
}

TEST_F(CallTest, TakesAFileWhoseNameBeginsWithADash) {
    folder.writeFile("-x.txt", "text");
    expectOutcome(runStencilor({"render", "--", "-x.txt"}), 0, "text", "");
}

TEST_F(CallTest, TakesFullPathsAndNamesOutsideOfAscii) {
    folder.makeFolder("\u00E9t\u00E9");
    folder.writeFile("\u00E9t\u00E9/\u20AC \U0001F600.txt", "{{ a }}");
    folder.writeFile("\u00E9t\u00E9/\u20AC.json", R"({"a":"b"})");
    expectOutcome(runStencilor({"render", "\u00E9t\u00E9/\u20AC \U0001F600.txt",
                                "\u00E9t\u00E9/\u20AC.json", "-o", "\u20AC.out"}),
                  0, "", "");
    EXPECT_EQ(support::readFile(folder.path("\u20AC.out")), "b");
    expectOutcome(runStencilor({"render", folder.path("\u00E9t\u00E9/\u20AC \U0001F600.txt"),
                                folder.path("\u00E9t\u00E9/\u20AC.json")}),
                  0, "b", "");
}

TEST_F(CallTest, NamesTheFileThatCannotBeRead) {
    folder.writeFile("page.txt", "text");
    folder.makeFolder("folder");
#ifdef _WIN32
    const std::string missing = "File not found";
    const std::string isFolder = "Access denied";
#else
    const std::string missing = "No such file or directory";
    const std::string isFolder = "Is a directory";
#endif
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {"a template that is not there", {"none.txt"}, "none.txt: " + missing},
        {"a template that is a folder", {"folder"}, "folder: " + isFolder},
        {"a context that is not there", {"page.txt", "none.json"}, "none.json: " + missing},
        {"a context that is a folder", {"page.txt", "folder"}, "folder: " + isFolder},
        {"a root that is not there",
         {"page.txt", "--root", "none"},
         "none: not a folder that included files can be read from"},
        {"a root that is a file",
         {"page.txt", "--root", "page.txt"},
         "page.txt: not a folder that included files can be read from"},
    };
    for (const auto& [name, arguments, message] : cases) {
        SCOPED_TRACE(name);
        std::vector<std::string> all = {"render"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        expectOutcome(runStencilor(all), 2, "", "stencilor: " + message + "\n");
    }
}

TEST_F(CallTest, NamesTheFileThatIsTooLarge) {
    folder.writeFile("page.txt", "text");
    folder.writeSparseFile("huge.txt", std::uint64_t{1} << 32);
    const std::string message = "stencilor: huge.txt: File too large\n";
    expectOutcome(runStencilor({"render", "huge.txt"}), 2, "", message);
    expectOutcome(runStencilor({"render", "page.txt", "huge.txt"}), 2, "", message);
}

} // namespace
} // namespace program
