#include "ProgramTest.h"

namespace program {
namespace {

using StreamsTest = ProgramTest;

TEST_F(StreamsTest, MayBeTheTemplateOrTheContext) {
    folder.writeFile("page.txt", "{{ a }}");
    folder.writeFile("values.json", R"({"a":"x"})");
    expectOutcome(runStencilor("render - values.json", {.input = "[{{ a }}]"}), 0, "[x]", "");
    expectOutcome(runStencilor("render page.txt -", {.input = R"({"a":"y"})"}), 0, "y", "");
    expectOutcome(runStencilor("render page.txt values.json -o -"), 0, "x", "");
}

TEST_F(StreamsTest, PreserveEveryByte) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
        int status = 0;
    } cases[] = {
        {"line endings of every kind", "a\r\nb\nc\rd\r\n\n\r", "a\r\nb\nc\rd\r\n\n\r"},
        {"a byte that ends a text file on some systems",
         "a\x1A"
         "b\n",
         "a\x1A"
         "b\n"},
        {"a byte-order mark",
         "\xEF\xBB\xBF"
         "a",
         "\xEF\xBB\xBF"
         "a",
         1},
        {"non-ASCII characters", "\u00E9\u20AC\U0001F600", "\u00E9\u20AC\U0001F600"},
        {"control characters", "\x01\t\v\f\x1B\x7F", "\x01\t\v\f\x1B\x7F"},
        {"malformed UTF-8, which the engine repairs",
         "a\xFF"
         "b",
         "a\uFFFD"
         "b",
         1},
        {"a NUL, which ends a template", std::string("a\0b", 3), "a", 1},
        {"more than a pipe or a buffer can hold", std::string(1'000'000, 'x') + "\r\n",
         std::string(1'000'000, 'x') + "\r\n"},
    };
    for (const auto& [name, text, expected, status] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        expectOutcome(runStencilor("render page.txt --quiet"), status, expected, "");
        expectOutcome(runStencilor("render - --quiet", {.input = text}), status, expected, "");
        expectOutcome(runStencilor("render - -o out.txt --quiet", {.input = text}), status, "", "");
        EXPECT_EQ(support::readFile("out.txt"), expected);
    }
}

TEST_F(StreamsTest, CauseWarningsIfTheirBytesAreDamaged) {
    expectOutcome(runStencilor("render -", {.input = std::string("a\0b", 3)}), 1, "a",
                  "<stdin>:1:2: warning: a NUL byte: the template ends here, and what follows is "
                  "ignored\na\\x00b\n ^~~~\n");
    folder.writeFile("page.txt", R"({% include "part.txt" %})");
    folder.writeFile("part.txt", "a\xFF");
    const std::string warning =
        "part.txt:1:2: warning: malformed UTF-8, which becomes U+FFFD in the "
        "output\na\uFFFD\n ^\n";
    expectOutcome(runStencilor("render page.txt"), 1, "a\uFFFD", warning);
    expectOutcome(runStencilor("check page.txt"), 1, warning, "");
}

TEST_F(StreamsTest, KeepANulInAContext) {
    folder.writeFile("page.txt", "{{ a }}{{ b }}");
    folder.writeFile("values.json", R"({"a":"x\u0000y","b":"z"})");
    expectOutcome(runStencilor("render page.txt values.json"), 0, "xz", "");
}

#ifndef _WIN32

TEST_F(StreamsTest, ThatAreFullOrClosedAreReported) {
    folder.writeFile("page.txt", "text");
    const struct {
        const char* name;
        std::string command;
        std::string message;
    } cases[] = {
        {"a full disk", "\"$0\" render page.txt >/dev/full", "<stdout>: No space left on device"},
        {"a full disk during the help", "\"$0\" --help >/dev/full",
         "<stdout>: No space left on device"},
        {"a full disk during the version", "\"$0\" --version >/dev/full",
         "<stdout>: No space left on device"},
        {"a closed output", "\"$0\" render page.txt >&-", "<stdout>: Bad file descriptor"},
        {"a closed input", "\"$0\" render - <&-", "<stdin>: Bad file descriptor"},
        {"a folder as the input", "\"$0\" render - <.", "<stdin>: Is a directory"},
        {"a device by its name", "\"$0\" render page.txt -o /dev/full",
         "/dev/full: No space left on device"},
    };
    for (const auto& [name, command, message] : cases) {
        SCOPED_TRACE(name);
        expectOutcome(runShell(command), 2, "", "stencilor: " + message + "\n");
    }
}

TEST_F(StreamsTest, WhoseReaderHasExitedEndTheProgramSilently) {
    folder.writeFile("page.txt", std::string(1'000'000, 'x'));
    expectOutcome(runShell("{ \"$0\" render page.txt; echo $? >status; } | :"), 0, "", "");
    EXPECT_EQ(support::readFile("status"), "141\n");
}

TEST_F(StreamsTest, MayBePipesWhereverFilesMay) {
    ASSERT_TRUE(folder.makePipe("page"));
    ASSERT_TRUE(folder.makePipe("values"));
    ASSERT_TRUE(folder.makePipe("out"));
    expectOutcome(runShell("echo '{{ a }}' >page & echo '{\"a\":\"x\"}' >values & cat out & "
                           "\"$0\" render page values -o out && wait"),
                  0, "x\n", "");
}

#endif

} // namespace
} // namespace program
