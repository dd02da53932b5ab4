#include "ProgramTest.h"

namespace program {
namespace {

using MessagesTest = ProgramTest;

/// Each line of `messages` as the program prints it.
std::string printed(const std::vector<std::string>& messages, const std::string& name) {
    std::string result;
    for (const std::string& message : messages) {
        result += "stencilor: " + name + ": " + message + "\n";
    }
    return result;
}

TEST_F(MessagesTest, StandOnLinesOfTheirOwn) {
    folder.writeFile("values.json", R"({"string":"s","list":[]})");
    const std::string noReplacement = "Could not find expected replacement named \"x\"";
    const std::string noString = "The replacement is not of type String for \"list\"";
    const std::string noBoolean = "Could not find expected boolean named \"x";
    const std::string notBoolean = "Expected named \"list\" to be of type ContextBoolean";
    const std::string noList = "Could not find expected for-expression named \"x\"";
    const std::string notList = "Expected named \"string\" to be of type ContextIterable";
    const std::string noFile = "Could not include file \"none.txt\", file doesn't exist";
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> messages;
    } cases[] = {
        {"a name that is missing", "{{ x }}", {noReplacement}},
        {"a list as a replacement", "{{ list }}", {noString}},
        {"a boolean that is missing", "{% if x %}{% endif %}", {noBoolean}},
        {"a list as a boolean", "{% if list %}{% endif %}", {notBoolean}},
        {"a list that is missing", "{% for a in x %}{% endfor %}", {noList}},
        {"a string as a list", "{% for a in string %}{% endfor %}", {notList}},
        {"a file that is missing", R"({% include "none.txt" %})", {noFile}},
        {"messages without line breaks behind each other",
         R"({{ list }}{{ list }}{% include "none.txt" %}{% include "none.txt" %}{{ list }})",
         {noString, noString, noFile, noFile, noString}},
        {"each kind behind one without a line break",
         R"({{ list }}{{ x }}{{ list }}{% if x %}{% endif %}{{ list }}{% if list %}{% endif %})"
         R"({{ list }}{% for a in x %}{% endfor %}{{ list }}{% for a in string %}{% endfor %})",
         {noString, noReplacement, noString, noBoolean, noString, notBoolean, noString, noList,
          noString, notList}},
        {"each kind behind one with a line break",
         R"({{ x }}{{ list }}{% if x %}{% endif %}{% include "none.txt" %}{{ x }})",
         {noReplacement, noString, noBoolean, noFile, noReplacement}},
        {"a name like the words of a message",
         "{{ Could }}{{ list }}{{ Expected }}",
         {"Could not find expected replacement named \"Could\"", noString,
          "Could not find expected replacement named \"Expected\""}},
    };
    for (const auto& [name, text, messages] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        expectOutcome(runStencilor({"render", "page.txt", "values.json"}), 1, "",
                      printed(messages, "page.txt"));
        expectOutcome(runStencilor({"render", "-", "values.json"}, {.input = text}), 1, "",
                      printed(messages, "<stdin>"));
    }
}

#ifndef _WIN32
TEST_F(MessagesTest, TellOfAnIncludedFileThatCannotBeLoaded) {
    folder.writeSparseFile("huge.txt", std::uint64_t{1} << 32);
    folder.writeFile("page.txt", R"(a{% include "huge.txt" %}b{% include "huge.txt" %})");
    expectOutcome(runStencilor({"render", "page.txt"}), 1, "ab",
                  printed({"Could not load file \"huge.txt\"", "Could not load file \"huge.txt\""},
                          "page.txt"));
}
#endif

TEST_F(MessagesTest, LeaveTheRestOfTheOutput) {
    folder.writeFile("page.txt", "a{{ x }}b{{ y }}c");
    expectOutcome(runStencilor({"render", "page.txt", "-D", "y=Y"}), 1, "abYc",
                  printed({"Could not find expected replacement named \"x\""}, "page.txt"));
}

TEST_F(MessagesTest, KeepTheOutputFromBeingWrittenWhereThatIsAskedFor) {
    folder.writeFile("page.txt", "a{{ x }}b");
    folder.writeFile("out.txt", "before");
    const std::string message =
        printed({"Could not find expected replacement named \"x\""}, "page.txt");
    expectOutcome(runStencilor({"render", "page.txt", "--strict"}), 1, "", message);
    expectOutcome(runStencilor({"render", "page.txt", "--strict", "-o", "out.txt"}), 1, "",
                  message);
    EXPECT_EQ(support::readFile("out.txt"), "before");
    expectOutcome(runStencilor({"render", "page.txt", "--strict", "-o", "out.txt", "-D", "x=X"}), 0,
                  "", "");
    EXPECT_EQ(support::readFile("out.txt"), "aXb");
}

TEST_F(MessagesTest, TellThatATemplateIsRejected) {
    const struct {
        const char* name;
        std::string text;
    } cases[] = {
        {"a block without an end", "text {% if a %}"},
        {"a tag without an end", "text {{ a"},
        {"an unknown tag", "{% frob %}"},
    };
    for (const auto& [name, text] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("page.txt", text);
        folder.writeFile("out.txt", "before");
        const std::string message = printed(
            {"Could not build formatted output: Failed to parse input correctly."}, "page.txt");
        expectOutcome(runStencilor({"render", "page.txt"}), 3, "", message);
        expectOutcome(runStencilor({"render", "page.txt", "--strict"}), 3, "", message);
        expectOutcome(runStencilor({"render", "page.txt", "-o", "out.txt"}), 3, "", message);
        EXPECT_EQ(support::readFile("out.txt"), "before");
    }
}

TEST_F(MessagesTest, AreNoneForAnIncludedFileThatIsRejected) {
    folder.writeFile("page.txt", R"({% include "bad.txt" %})");
    folder.writeFile("bad.txt", "{{");
    expectOutcome(runStencilor({"render", "page.txt"}), 0, "", "");
}

TEST_F(MessagesTest, AreNoneForATemplateThatIsEmpty) {
    folder.writeFile("page.txt", "");
    expectOutcome(runStencilor({"render", "page.txt"}), 0, "", "");
}

TEST_F(MessagesTest, FollowTheTrace) {
    folder.writeFile("page.txt", R"(text{% for a in l %}{% if b %}{{ x }}{% endif %}{% endfor %})"
                                 R"({% include "part.txt" %})");
    folder.writeFile("part.txt", "text");
    folder.writeFile("values.json", R"({"l":[null,null],"b":true})");
    const std::string turn = "trace:     applyVisitor:230\n"
                             "trace:       content_visit::if_expr:126\n"
                             "trace:         applyVisitor:230\n"
                             "trace:           content_visit::replace_expr:184\n";
    const std::string message = "Could not find expected replacement named \"x\"";
    expectOutcome(runStencilor({"render", "page.txt", "values.json", "--trace"}), 1, "texttext",
                  "trace: buildOutput:408\n"
                  "trace:   content_visit::string:120\n"
                  "trace:   content_visit::for_expr:151\n" +
                      turn + turn +
                      "trace:   content_visit::include_expr:205\n"
                      "trace:     buildOutput:251\n"
                      "trace:       applyVisitor:230\n"
                      "trace:         content_visit::string:120\n" +
                      printed({message, message}, "page.txt"));
}

TEST_F(MessagesTest, FollowATraceThatIsNotIndentedForEver) {
    std::string text = "text";
    for (int i = 0; i < 30; ++i) {
        text = "{% if b %}" + text + "{% endif %}";
    }
    folder.writeFile("page.txt", text);
    const Outcome outcome = runStencilor({"render", "page.txt", "-D", "b:=true", "--trace"});
    EXPECT_NE(
        outcome.errors.find("\ntrace: " + std::string(78, ' ') + "content_visit::if_expr:126\n"),
        std::string::npos);
    EXPECT_NE(outcome.errors.find("\ntrace: (40 scopes) applyVisitor:230\n"), std::string::npos);
    EXPECT_NE(outcome.errors.find("\ntrace: (61 scopes) content_visit::string:120\n"),
              std::string::npos);
}

} // namespace
} // namespace program
