#include "ProgramTest.h"

#include <libStencilorJson/JsonText.h>

#include <cctype>

// The language server as a process; tests/lsp tests what it answers.

namespace program {
namespace {

using kel::Stencilor::Value;
using LanguageServerTest = ProgramTest;

std::string frame(const std::string& content) {
    return "Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content;
}

/// The messages of a stream, which must consist of nothing else.
std::vector<Value> messagesIn(std::string stream) {
    const std::string header = "Content-Length: ";
    std::vector<Value> messages;
    while (!stream.empty()) {
        const std::size_t end = stream.find("\r\n\r\n");
        if (!stream.starts_with(header) || end == stream.npos) {
            ADD_FAILURE() << "no header: " << stream;
            break;
        }
        const std::size_t size = std::stoul(stream.substr(header.size(), end - header.size()));
        EXPECT_LE(end + 4 + size, stream.size());
        messages.push_back(kel::Stencilor::valueFromJsonText(stream.substr(end + 4, size)));
        stream.erase(0, end + 4 + size);
    }
    return messages;
}

/// The URI of a file as editors write it: on Windows with a small letter and an encoded colon.
std::string uriOf(const std::string& path) {
    if (path.size() < 2 || path[1] != ':') {
        return "file://" + path;
    }
    const int drive = std::tolower(static_cast<unsigned char>(path[0]));
    return "file:///" + std::string(1, static_cast<char>(drive)) + "%3A" + path.substr(2);
}

std::string textAt(const Value& value, std::initializer_list<const char*> path) {
    const Value* found = &value;
    for (const char* const key : path) {
        found = found->find(key);
        if (found == nullptr) {
            return "nothing";
        }
    }
    return found->text().str();
}

TEST_F(LanguageServerTest, AnswersWithBytesAsTheyAre) {
    folder.writeFile("b.txt", "");
    const std::string document = R"("textDocument": {"uri": ")" + uriOf(folder.path("a.txt")) + '"';
    const std::string at = document + R"(}, "position": {"line": 1, "character": 15})";
    const Outcome outcome = runStencilor(
        "lsp",
        {.input =
             frame(R"({"id": 1, "method": "initialize", "params": {"rootUri": ")" +
                   uriOf(folder.path()) + R"("}})") +
             frame(R"({"method": "textDocument/didOpen", "params": {)" + document +
                   R"(, "text": "{% for i in x %}\r\n{% include \"b.txt\" %}\r\n\r\n\u001A)"
                   "\u00E9\U0001F375"
                   R"({% endfor %}"}}})") +
             frame(R"({"id": 2, "method": "textDocument/definition", "params": {)" + at + "}}") +
             frame(R"({"id": 3, "method": "textDocument/foldingRange", "params": {)" + document +
                   "}}}") +
             frame(R"({"id": 4, "method": "textDocument/rename", "params": {"newName": )" +
                   std::string(R"("no name\r\n\u001A\u00E9", )") + document +
                   R"(}, "position": {"line": 0, "character": 7}}})") +
             frame(R"({"id": 5, "method": "shutdown"})") + frame(R"({"method": "exit"})")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const std::vector<Value> answers = messagesIn(outcome.output);
    ASSERT_EQ(answers.size(), 5u);
    EXPECT_EQ(textAt(answers[0], {"result", "serverInfo", "name"}), "stencilor");
    const std::string target = textAt(answers[1], {"result", "uri"});
    const std::string path = folder.path("b.txt");
    EXPECT_TRUE(target.starts_with("file:///")) << target;
    EXPECT_TRUE(target.ends_with(path.substr(path[1] == ':' ? 2 : 0))) << target;
    const Value* const folds = answers[2].find("result");
    ASSERT_TRUE(folds != nullptr && folds->size() == 1u) << outcome.output;
    EXPECT_EQ(textAt(folds->at(0), {"endLine"}), "2");
    EXPECT_NE(textAt(answers[3], {"error", "message"}).find("\u00E9"), std::string::npos);
}

TEST_F(LanguageServerTest, FailsIfTheClientDisappears) {
    for (const std::string input : {"", "Content-Length: 100\r\n\r\n{", "\r\n\x1A"}) {
        expectOutcome(runStencilor("lsp", {.input = input}), 1, "", "");
    }
}

} // namespace
} // namespace program
