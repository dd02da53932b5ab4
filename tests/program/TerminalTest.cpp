#include "ProgramTest.h"

namespace program {
namespace {

using TerminalTest = ProgramTest;

/// Characters that control a terminal, or change the position of other text, as UTF-8.
const std::string_view obeyed[] = {
    "\x01",   "\x07",   "\b",     "\x1B",   "\x7F",   "\u0080", "\u009B", "\u009F",     "\u061C",
    "\u200B", "\u200E", "\u200F", "\u2028", "\u2029", "\u202A", "\u202E", "\u2060",     "\u2066",
    "\u2069", "\uFEFF", "\uFFF9", "\x9B",   "\xFF",   "\xE2",   "\r",     "\U000E0001",
};

/// None of them reaches a terminal, except for the program's own line breaks.
void expectNothingObeyed(const std::string& text) {
    for (const std::string_view character : obeyed) {
        if (character.size() == 1 && static_cast<unsigned char>(character[0]) > 0x7F) {
            continue; // also a part of other characters
        }
        EXPECT_EQ(text.find(character), std::string::npos) << text;
    }
}

std::string hostileText() {
    std::string text;
    for (const std::string_view character : obeyed) {
        text += character;
    }
    return text;
}

TEST_F(TerminalTest, IsSafeFromTheTextsOfFiles) {
    folder.writeFile("page.txt",
                     hostileText() + "{{ a }}{% include \"none.txt\" %}{{ " + hostileText());
    folder.writeFile("names.txt", "{{ a }}" + hostileText());
    folder.writeFile("values.json", "{\"a\":" + hostileText() + "}");
    folder.writeFile("name.json", "{\"" + std::string("\u202E\u009B") + "\":1,\"\u202E\u009B\":2}");
    const struct {
        const char* name;
        std::string arguments;
    } cases[] = {
        {"findings", "check page.txt"},
        {"findings in JSON", "check page.txt --format json"},
        {"findings in SARIF", "check page.txt --format sarif"},
        {"a rejected template", "names page.txt"},
        {"a tree", "tree names.txt"},
        {"a context that is not JSON", "render names.txt values.json"},
        {"a context with a name twice", "render names.txt name.json"},
    };
    for (const auto& [name, arguments] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        EXPECT_NE(outcome.output + outcome.errors, "");
        expectNothingObeyed(outcome.output);
        expectNothingObeyed(outcome.errors);
    }
}

TEST_F(TerminalTest, IsSafeFromArguments) {
    folder.writeFile("page.txt", "{{ a }}");
    const std::string hostile = "\x1B[31m\u009B\u202E\x7F";
    const std::string shown = "\\x1B[31m\\u009B\\u202E\\x7F";
    const struct {
        const char* name;
        std::string arguments;
    } cases[] = {
        {"a template", "render " + hostile},
        {"a template to check", "check " + hostile},
        {"a context", "render page.txt " + hostile},
        {"a root", "render page.txt --root " + hostile},
        {"an output", "render page.txt -o none/" + hostile},
        {"a definition without a value", "render page.txt -D " + hostile},
        {"a definition of bad JSON", "render page.txt -D " + hostile + ":=x"},
        {"a Make target", "deps page.txt --depfile " + hostile + "\n"},
        {"a command", hostile},
        {"an option", "render page.txt --" + hostile},
        {"a format", "check page.txt --format " + hostile},
    };
    for (const auto& [name, arguments] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runStencilor(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.errors.find(shown), std::string::npos) << outcome.errors;
        expectNothingObeyed(outcome.errors);
    }
}

#ifndef _WIN32
TEST_F(TerminalTest, IsSafeFromTheNamesOfFiles) {
    const std::string hostile = "\x1B[31m\u009B\u202E\n.txt";
    const std::string shown = "\\x1B[31m\\u009B\\u202E\\n.txt";
    folder.writeFile(hostile, "{{ a }}");
    expectOutcome(runStencilor({"render", hostile}), 1, "",
                  shown + ":1:4: warning: no string is named \"a\"\n{{ a }}\n   ^\n");
    expectOutcome(runStencilor({"names", hostile}), 0, "a  string  " + shown + ":1\n", "");
    folder.writeFile(hostile, "{{");
    expectOutcome(runStencilor("check " + hostile), 1,
                  shown + ":1:3: error: expected a name after \"{{\"\n{{\n  ^\n", "");
    const Outcome json = runStencilor({"check", hostile, "--format", "json"});
    EXPECT_NE(json.output.find(R"("file": "\u001b[31m\u009B\u202E\n.txt")"), std::string::npos);
}
#endif

#ifndef _WIN32
TEST_F(TerminalTest, ShowsColorsUnlessDisabled) {
    if (runShell("command -v script").status != 0) {
        GTEST_SKIP() << "needs the program script";
    }
    folder.writeFile("page.txt", "{{");
    const std::string call = "script -qec \"'$0' check page.txt $OPTION\" /dev/null";
    const struct {
        const char* name;
        std::string environment;
        bool colored;
    } cases[] = {
        {"a terminal", "TERM=xterm", true},
        {"an empty NO_COLOR", "TERM=xterm NO_COLOR=", true},
        {"NO_COLOR", "TERM=xterm NO_COLOR=1", false},
        {"NO_COLOR and a choice", "TERM=xterm NO_COLOR=1 OPTION=--color=always", true},
        {"no colors wanted", "TERM=xterm OPTION=--color=never", false},
        {"a terminal without colors", "TERM=dumb", false},
        {"an unknown terminal", "TERM=", false},
    };
    for (const auto& [name, environment, colored] : cases) {
        SCOPED_TRACE(name);
        const Outcome outcome = runShell("export " + environment + "; " + call);
        EXPECT_NE(outcome.output.find("expected a name"), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.output.find('\x1B') != std::string::npos, colored);
    }
}
#endif

TEST_F(TerminalTest, ShowsAtMost200CharactersOfANameOrALine) {
    const std::string name(10'000, 'a');
    folder.writeFile("page.txt", "{{ " + name + " }}{% if " + name + " %}{% endif %}{% for x in " +
                                     name + " %}{% endfor %}{% include \"" + name + "\" %}");
    folder.writeFile("values.json", "{\"" + name + "\":[],\"" + name + "\":[]}");
    for (const std::string& arguments : std::vector<std::string>{
             "render page.txt",
             "render page.txt -D " + name + ":=[]",
             "render page.txt -D " + name + ":=x",
             "render page.txt -D " + name,
             "render page.txt -D b=c --strict",
             "check page.txt -D b=c",
             "check page.txt -D " + name + "=b",
             "names page.txt --skeleton -o skeleton.json",
         }) {
        SCOPED_TRACE(arguments.substr(0, 30));
        const Outcome outcome = runStencilor(arguments);
        const std::string text = outcome.output + outcome.errors;
        EXPECT_NE(text.find(std::string(70, 'a')), std::string::npos);
        EXPECT_EQ(text.find(std::string(201, 'a')), std::string::npos);
    }
}

} // namespace
} // namespace program
