#include "ProgramTest.h"

#include <nlohmann/json.hpp>

namespace program {
namespace {

using CallTest = ProgramTest;

TEST_F(CallTest, EndsWithStatus2IfItIsWrong) {
    folder.writeFile("page.txt", "text");
    folder.writeFile("values.json", "{}");
    const struct {
        const char* name;
        std::string command; // whose help is pointed to
        std::string arguments;
        std::string message;
    } cases[] = {
        {"no arguments", "", "", "no command is given"},
        {"an unknown command", "", "frob", "unknown command \"frob\""},
        {"a misspelled command", "", "rendre page.txt",
         "unknown command \"rendre\"; did you mean \"render\"?"},
        {"an unknown option of the program", "", "--frob", "unknown option \"--frob\""},
        {"a misspelled option of the program", "", "--versoin",
         "unknown option \"--versoin\"; did you mean \"--version\"?"},
        {"an unknown option", "render", "render page.txt --frob", "unknown option \"--frob\""},
        {"a misspelled option", "check", "check page.txt --contxt values.json",
         "unknown option \"--contxt\"; did you mean \"--context\"?"},
        {"an unknown option without a template", "render", "render --frob",
         "unknown option \"--frob\""},
        {"an option of another command", "check", "check page.txt --strict",
         "unknown option \"--strict\""},
        {"an option before the command", "render", "--strict render page.txt",
         "\"--strict\" belongs after the command"},
        {"no template", "render", "render", "no TEMPLATE is given"},
        {"no templates", "check", "check --quiet", "no TEMPLATE is given"},
        {"a third file", "render", "render page.txt values.json more",
         "unexpected argument \"more\""},
        {"a third file whose name begins with a dash", "render",
         "render -- page.txt values.json -x", "unexpected argument \"-x\""},
        {"two outputs", "render", "render page.txt -o a -o b", "--output is given twice"},
        {"two contexts", "render", "render page.txt values.json --context values.json",
         "more than one context: values.json and values.json"},
        {"a missing definition", "render", "render page.txt -D", "-D needs a value"},
        {"a missing output", "names", "names page.txt -o", "-o needs a value"},
        {"standard input twice", "render", "render - -", "only one file can be - (standard input)"},
        {"standard input as two templates", "deps", "deps - -",
         "only one file can be - (standard input)"},
        {"a name for standard input that is not read", "tree", "tree page.txt --stdin-name x.txt",
         "--stdin-name needs - as the template"},
        {"a flag with a value", "render", "render page.txt --strict=no", "--strict takes no value"},
        {"an unknown choice", "names", "names page.txt --format yaml",
         "--format: \"yaml\" is not one of text, json, sarif"},
        {"a misspelled choice", "render", "render page.txt --escape htlm",
         "--escape: \"htlm\" is not one of none, html, json; did you mean \"html\"?"},
        {"an empty template", "render", "render ''", "the file name given for TEMPLATE is empty"},
        {"an empty context", "render", "render page.txt ''",
         "the file name given for CONTEXT is empty"},
        {"an empty context of another command", "check", "check page.txt --context ''",
         "the file name given for --context is empty"},
        {"an empty output", "render", "render page.txt -o ''",
         "the file name given for --output is empty"},
        {"an empty root", "deps",
         "deps page.txt --root=", "the file name given for --root is empty"},
        {"no number", "render", "render page.txt --max-steps many",
         "--max-steps: expected a number, optionally followed by K, M or G, not \"many\""},
        {"a number that is too large", "render", "render page.txt --max-output 17179869184G",
         "--max-output: expected a number, optionally followed by K, M or G, not \"17179869184G\""},
        {"a depth limit that is too large", "render", "render page.txt --max-depth 101",
         "--max-depth: expected a number from 1 to 100, not \"101\""},
        {"an unlimited depth", "render", "render page.txt --max-depth 0",
         "--max-depth: expected a number from 1 to 100, not \"0\""},
        {"help for an unknown command", "", "help chekc",
         "unknown command \"chekc\"; did you mean \"check\"?"},
        {"help for two commands", "", "help check names", "unexpected argument \"names\""},
        {"a long argument", "", std::string(300, 'x'),
         "unknown command \"" + std::string(200, 'x') + "...\""},
    };
    for (const auto& [name, command, arguments, message] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        expectOutcome(outcome, 2, "", "stencilor: " + message + helpHint(command));
    }
}

TEST_F(CallTest, AcceptsAContextAndAnyNumberOfTemplates) {
    folder.writeFile("a.txt", R"({{ a }}{% include "b.txt" %})");
    folder.writeFile("b.txt", R"({{ b }})");
    folder.writeFile("values.json", R"({"b":"x"})");
    const std::string warning = "a.txt:1:4: warning: no string is named \"a\"\n"
                                "{{ a }}{% include \"b.txt\" %}\n   ^\n";
    const struct {
        const char* name;
        std::string templates;
        std::string output;
        std::string errors;
    } cases[] = {
        {"render", "a.txt", "x", warning},
        {"check", "a.txt b.txt", warning, ""},
        {"names", "a.txt b.txt a.txt",
         "a  string  a.txt:1\nb  string  b.txt:1  included at a.txt:1\n", warning},
        {"deps", "a.txt b.txt", "b.txt\n", warning},
        {"tree", "a.txt b.txt",
         "a.txt:\n1:1 substitution a\n1:8 include \"b.txt\"\nb.txt:\n1:1 substitution b\n",
         warning},
    };
    for (const auto& [name, templates, output, errors] : cases) {
        SCOPED_TRACE(name);
        const std::string call = std::string(name) + " --context values.json " + templates;
        expectOutcome(runStencilor(call), 1, output, errors);
        expectOutcome(runStencilor(call + " --quiet"), 1, errors.empty() ? "" : output, "");
    }
}

TEST_F(CallTest, WritesMessagesAndResultsInEveryFormat) {
    using Json = nlohmann::json;
    folder.writeFile("page.txt",
                     R"({{ a }}{% if b %}x{% else %}{% for c in d %}{% endfor %}{% endif %})"
                     R"({% include "part.txt" %})");
    folder.writeFile("part.txt", "part");
    folder.writeFile("values.json", R"({"b":false,"d":[]})");
    for (const std::string command : {"render", "check", "names", "deps", "tree"}) {
        SCOPED_TRACE(command);
        const std::string call = command + " page.txt --context values.json --format ";
        const auto messagesOf = [&command](const Outcome& outcome) {
            EXPECT_EQ(outcome.status, 1);
            return Json::parse(command == "check" ? outcome.output : outcome.errors);
        };
        EXPECT_EQ(messagesOf(runStencilor(call + "json"))["findings"][0]["rule"], "missing-name");
        EXPECT_EQ(messagesOf(runStencilor(call + "sarif"))["runs"][0]["results"][0]["ruleId"],
                  "missing-name");
        expectOutcome(runStencilor(call + "sarif --quiet -o out.txt"), 1, "", "");
        EXPECT_NE(support::readFile("out.txt"), "");
    }
    const auto resultOf = [](const std::string& command) {
        return Json::parse(runStencilor(command + " page.txt --format json").output);
    };
    EXPECT_EQ(resultOf("names")["names"].size(), 3u);
    EXPECT_EQ(resultOf("deps"), Json::parse(R"({"files": ["part.txt"]})"));
    EXPECT_EQ(resultOf("tree"), Json::parse(R"({"files": [{"file": "page.txt", "nodes": [
        {"line": 1, "column": 1, "depth": 0, "kind": "substitution", "name": "a"},
        {"line": 1, "column": 8, "depth": 0, "kind": "if", "name": "b"},
        {"line": 1, "column": 18, "depth": 1, "kind": "text", "text": "x"},
        {"line": 1, "column": 19, "depth": 0, "kind": "else"},
        {"line": 1, "column": 29, "depth": 1, "kind": "for", "variable": "c", "list": "d"},
        {"line": 1, "column": 68, "depth": 0, "kind": "include", "path": "part.txt"}]}]})"));
}

TEST_F(CallTest, NamesATemplateOnTheStandardInput) {
    folder.makeFolder("pages");
    folder.writeFile("pages/page.txt", "saved");
    folder.writeFile("pages/part.txt", "{{ b }}");
    folder.writeFile("pages/loop.txt", R"({% include "page.txt" %})");
    const Streams unsaved{.input = R"({{ a }}{% include "part.txt" %})"};
    const std::string name = " - --stdin-name pages/page.txt";
    const struct {
        const char* command;
        int status;
        std::string output;
        std::string errors;
    } cases[] = {
        {"render", 1, "",
         "pages/page.txt:1:4: warning: no string is named \"a\"\n"
         "{{ a }}{% include \"part.txt\" %}\n   ^\n"
         "pages/part.txt:1:4: warning: no string is named \"b\"\n{{ b }}\n   ^\n"},
        {"check", 0, "", ""},
        {"names", 0,
         "a  string  pages/page.txt:1\n"
         "b  string  pages/part.txt:1  included at pages/page.txt:1\n",
         ""},
        {"deps", 0, "pages/part.txt\n", ""},
    };
    for (const auto& [command, status, output, errors] : cases) {
        SCOPED_TRACE(command);
        expectOutcome(runStencilor(command + name, unsaved), status, output, errors);
    }
    // Templates that include the file see the unsaved text.
    const std::string text = R"({% if a %}{% include "loop.txt" %}{% endif %}new)";
    expectOutcome(runStencilor({"render", "-", "--stdin-name", "pages/page.txt", "-D",
                                R"(a:={"$boolean":true,"a":{"$boolean":false}})"},
                               {.input = text}),
                  0, "newnew", "");
}

TEST_F(CallTest, ColorsMessagesOnRequest) {
    folder.writeFile("page.txt", "{{ a }}");
    const std::string plain = "page.txt:1:4: warning: no string is named \"a\"\n{{ a }}\n   ^\n";
    const std::string colored = "\x1B[1mpage.txt:1:4:\x1B[0m \x1B[1;35mwarning:\x1B[0m "
                                "\x1B[1mno string is named \"a\"\x1B[0m\n{{ a }}\n"
                                "\x1B[1;32m   ^\x1B[0m\n";
    expectOutcome(runStencilor("render page.txt"), 1, "", plain);
    expectOutcome(runStencilor("render page.txt --color never"), 1, "", plain);
    expectOutcome(runStencilor("render page.txt --color always"), 1, "", colored);
    expectOutcome(runStencilor("check page.txt -D b=c --color=always"), 1, colored, "");
    runStencilor("check page.txt -D b=c --color=always -o out.txt");
    EXPECT_EQ(support::readFile("out.txt"), plain);
}

TEST_F(CallTest, PrintsItsVersion) {
    expectOutcome(runStencilor("--version"), 0, "stencilor " STENCILOR_VERSION "\n", "");
}

TEST_F(CallTest, PrintsItsHelp) {
    const struct {
        const char* name;
        std::string arguments;
        std::vector<std::string> parts;
    } cases[] = {
        {"the program's",
         "--help",
         {"Usage: stencilor [OPTIONS] COMMAND\n", "\nCommands:\n  render "}},
        {"a command's",
         "render --help",
         {"Usage: stencilor render [OPTIONS] TEMPLATE [CONTEXT]\n", "-D NAME=VALUE", "--output",
          "--root", "--strict", "Exit status:\n"}},
        {"a command's by its name",
         "help check",
         {"Usage: stencilor check [OPTIONS] TEMPLATE...",
          "\nArguments:\n  TEMPLATE ... (required) ", "--format text|json|sarif"}},
        {"the program's by its name", "help", {"Usage: stencilor [OPTIONS] COMMAND\n"}},
        {"the help's", "help --help", {"Usage: stencilor help "}},
        {"a command's short help", "render -h", {"Usage: stencilor render "}},
    };
    for (const auto& [name, arguments, parts] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, "");
        for (const std::string& part : parts) {
            EXPECT_NE(outcome.output.find(part), std::string::npos) << part;
        }
        EXPECT_EQ(outcome.output.find("--trace"),
                  std::string::npos); // for developers of the engine
    }
}

TEST_F(CallTest, AcceptsAFileWhoseNameBeginsWithADash) {
    folder.writeFile("-x.txt", "text");
    expectOutcome(runStencilor("render -- -x.txt"), 0, "text", "");
}

TEST_F(CallTest, AcceptsFullPathsAndNonAsciiNames) {
    folder.makeFolder("\u00E9t\u00E9");
    folder.writeFile("\u00E9t\u00E9/\u20AC \U0001F600.txt", "{{ a }}");
    folder.writeFile("\u00E9t\u00E9/\u20AC.json", R"({"a":"b"})");
    expectOutcome(runStencilor("render '\u00E9t\u00E9/\u20AC \U0001F600.txt' "
                               "\u00E9t\u00E9/\u20AC.json -o \u20AC.out"),
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
        std::string arguments;
        std::string message;
    } cases[] = {
        {"a template that does not exist", "none.txt", "none.txt: " + missing},
        {"a template that is a folder", "folder", "folder: " + isFolder},
        {"a context that does not exist", "page.txt none.json", "none.json: " + missing},
        {"a context that is a folder", "page.txt folder", "folder: " + isFolder},
        {"a root that does not exist", "page.txt --root none", "none: not a readable folder"},
        {"a root that is a file", "page.txt --root page.txt", "page.txt: not a readable folder"},
    };
    for (const auto& [name, arguments, message] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runStencilor("render " + arguments), 2, "", "stencilor: " + message + "\n");
    }
}

TEST_F(CallTest, NamesTheFileThatIsTooLarge) {
    folder.writeFile("page.txt", "text");
    folder.writeSparseFile("huge.txt", std::uint64_t{1} << 32);
    const std::string message = "stencilor: huge.txt: File too large\n";
    expectOutcome(runStencilor("render huge.txt"), 2, "", message);
    expectOutcome(runStencilor("render page.txt huge.txt"), 2, "", message);
}

} // namespace
} // namespace program
