#include "ServerTest.h"

#include <string>
#include <vector>

namespace stencilor::lsp {
namespace {

int codeOf(const Json& answer) {
    return answer.contains("error") ? answer.at("error").at("code").get<int>() : 0;
}

TEST_F(ServerTest, FollowsTheLifeCycle) {
    EXPECT_EQ(codeOf(request("textDocument/hover", Json::object())), -32002);
    open("a", "{{");
    EXPECT_FALSE(server.due().has_value()) << "a notification that arrives too early is dropped";
    initialize();
    EXPECT_EQ(codeOf(request("initialize", {{"capabilities", Json::object()}})), -32600);
    EXPECT_EQ(request("shutdown", nullptr).at("result"), nullptr);
    EXPECT_EQ(codeOf(request("textDocument/hover", Json::object())), -32600);
    EXPECT_FALSE(server.hasEnded());
    notify("exit", nullptr);
    EXPECT_TRUE(server.hasEnded());
    EXPECT_EQ(server.exitStatus(), 0);
}

TEST_F(ServerTest, FailsIfTheClientDidNotShutItDown) {
    initialize();
    notify("exit", nullptr);
    EXPECT_EQ(server.exitStatus(), 1);
}

TEST_F(ServerTest, OffersUtf8IfTheClientSupportsIt) {
    const auto encodingFor = [](const Json& capabilities) {
        Json answer;
        LanguageServer other(
            [&answer](const std::string& message) { answer = Json::parse(message); });
        other.receive({.message = {{"id", 1},
                                   {"method", "initialize"},
                                   {"params", {{"capabilities", capabilities}}}}});
        return answer.at("result").at("capabilities").at("positionEncoding").get<std::string>();
    };
    EXPECT_EQ(encodingFor(Json::object()), "utf-16");
    EXPECT_EQ(encodingFor({{"general", {{"positionEncodings", {"utf-16", "utf-32"}}}}}), "utf-16");
    EXPECT_EQ(encodingFor({{"general", {{"positionEncodings", {"utf-16", "utf-8"}}}}}), "utf-8");
}

struct Malformed {
    std::string content;
    int code; ///< 0: no answer
};

TEST_F(ServerTest, AnswersMalformedMessages) {
    initialize();
    for (const Malformed& each : std::vector<Malformed>{
             {"", -32700},
             {"{", -32700},
             {"\xFF", -32700},
             {R"({"id": 1, "method": "\uD8G0"})", -32700},
             {"null", -32600},
             {"7", -32600},
             {"[]", -32600},
             {R"([{"jsonrpc": "2.0", "id": 1, "method": "shutdown"}])", -32600},
             {"{}", -32600},
             {R"({"id": 1})", -32600},
             {R"({"id": 1, "method": 7})", -32600},
             {R"({"id": {}, "method": "shutdown"})", -32600},
             {R"({"id": null, "method": "shutdown"})", -32600},
             {R"({"id": 1, "method": "no/such"})", -32601},
             {R"({"id": 1, "method": "$/no/such"})", -32601},
             {R"({"id": 7, "result": null})", 0},
             {R"({"id": 7, "error": {}})", 0},
             {R"({"method": "$/no/such"})", 0},
         }) {
        sent.clear();
        receive(each.content);
        ASSERT_EQ(sent.size(), each.code == 0 ? 0u : 1u) << each.content;
        EXPECT_EQ(each.code == 0 ? 0 : codeOf(sent.front()), each.code) << each.content;
    }
}

TEST_F(ServerTest, ReportsInvalidNotifications) {
    initialize();
    for (const char* const method :
         {"textDocument/didOpen", "textDocument/didChange", "textDocument/didClose",
          "workspace/didChangeWorkspaceFolders", "no/such"}) {
        sent.clear();
        notify(method, {{"textDocument", 7}});
        ASSERT_EQ(sent.size(), 1u) << method;
        EXPECT_EQ(sent.front().at("method"), "window/logMessage");
    }
}

TEST_F(ServerTest, ChecksWhatAnInvalidChangeLeftBehind) {
    initialize();
    open("a.txt", "fine");
    check();
    notify("textDocument/didChange",
           {{"textDocument", {{"uri", uriOf("a.txt")}, {"version", 2}}},
            {"contentChanges", Json::array({Json{{"text", "{{"}}, Json{{"text", 7}}})}});
    check();
    EXPECT_EQ(published("a.txt").substr(0, 16), "0:1-2 1 syntax: ");
}

TEST_F(ServerTest, AnswersARequestThatWasCancelled) {
    initialize();
    sent.clear();
    Received received = parseMessage(R"({"id": 1, "method": "textDocument/hover"})");
    received.isCancelled = true;
    server.receive(received);
    EXPECT_EQ(codeOf(sent.front()), -32800);
}

TEST_F(ServerTest, AsksToWatchFilesIfTheClientCan) {
    const Json watching = {
        {"workspace", {{"didChangeWatchedFiles", {{"dynamicRegistration", true}}}}}};
    initialize(nullptr, watching);
    EXPECT_EQ(sent.back().at("method"), "client/registerCapability");
}

// Published diagnostics.

TEST_F(ServerTest, PublishesErrorsAndTheirRemoval) {
    initialize();
    open("a.txt", "Hello, {{ name }!\n");
    check();
    EXPECT_EQ(published("a.txt"), "0:15-16 1 syntax: expected \"}}\" after the name");
    change("a.txt", "Hello, {{ name }}!\n");
    check();
    EXPECT_EQ(published("a.txt"), "");
    EXPECT_FALSE(server.due().has_value());
}

struct Underlined {
    std::string text;
    std::string range; ///< of a diagnostic
};

TEST_F(ServerTest, PublishesAFaultAtTheEndOfALineVisibly) {
    initialize();
    for (const Underlined& each : std::vector<Underlined>{
             {"{% if x %}{% endif %}\n\U0001F375 {{ x\n", "1:6-7"},
             {"{% if x %}text", "0:13-14"},
             {"{% if x %}\u00E9", "0:10-11"},
             {"{% if x %}\U0001F375", "0:10-12"},
             {"{% if x %}\ntext\n", "1:3-4"},
             {"{% if x %}\r\ntext\r\n\r\n", "1:3-4"},
             {"{% if x %}\n\n", "0:9-10"},
         }) {
        open("a.txt", each.text);
        check();
        const std::string found = "\n" + published("a.txt");
        EXPECT_NE(found.find("\n" + each.range + " 1 syntax: "), std::string::npos)
            << each.text << found;
    }
}

TEST_F(ServerTest, WithdrawsWhatItPublishedWithTheUriOfTheDocument) {
    initialize();
    folder.makeFolder("real");
    folder.writeFile("real/a.txt", "");
    std::vector<std::string> uris = {"untitled:letter one"};
    if (folder.makeLink("link", "real")) {
        uris.push_back(uriOf("") + "/link/a.txt");
    }
    for (const std::string& uri : uris) {
        notify("textDocument/didOpen",
               {{"textDocument", {{"uri", uri}, {"languageId", "stencilor"}, {"text", "{{"}}}});
        check();
        EXPECT_EQ(sent.back().at("params").at("uri"), uri);
        EXPECT_EQ(sent.back().at("params").at("diagnostics").size(), 1u);
        notify("textDocument/didClose", {{"textDocument", {{"uri", uri}}}});
        check();
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent.back().at("params").at("uri"), uri);
        EXPECT_EQ(sent.back().at("params").at("diagnostics").size(), 0u);
    }
}

TEST_F(ServerTest, LooksUpNamesOnlyIfAContextIsKnown) {
    initialize();
    open("a.txt", "{{ titel }}");
    check();
    EXPECT_EQ(published("a.txt"), "");
    folder.writeFile("a.txt.context.json", R"({"title": "x"})");
    notify("workspace/didChangeWatchedFiles", {{"changes", Json::array()}});
    check();
    EXPECT_EQ(published("a.txt"),
              "0:3-8 2 missing-name: no string is named \"titel\"; did you mean \"title\"?");
}

struct Source {
    std::string name;
    Json options;
    std::string project;
    std::string own;
    std::string known; ///< the name that has a value; "any" without a context
};

TEST_F(ServerTest, UsesTheNearestContext) {
    folder.writeFile("one.json", R"({"one": ""})");
    initialize();
    const Json options = {{"context", "one.json"}};
    const std::string project = R"({"context": "two.json"})";
    int count = 0;
    for (const Source& each : std::vector<Source>{
             {"none", nullptr, "", "", "any"},
             {"the client's context", options, "", "", "one"},
             {"the project's context", options, project, "", "two"},
             {"its own context", options, project, R"({"three": ""})", "three"},
             {"the project's context for other files", nullptr,
              R"({"context": "two.json", "files": ["*.html"]})", "", "any"},
             {"the project's context for this file", nullptr,
              R"({"context": "two.json", "files": ["*.html", "*.txt"]})", "", "two"},
         }) {
        SCOPED_TRACE(each.name);
        const std::string place = "case" + std::to_string(++count);
        folder.makeFolder(place);
        folder.writeFile(place + "/two.json", R"({"two": ""})");
        if (!each.project.empty()) {
            folder.writeFile(place + "/stencilor.json", each.project);
        }
        if (!each.own.empty()) {
            folder.writeFile(place + "/a.txt.context.json", each.own);
        }
        notify("workspace/didChangeConfiguration", {{"settings", {{"stencilor", each.options}}}});
        open(place + "/a.txt", "{{ one }}{{ two }}{{ three }}");
        check();
        const std::string found = published(place + "/a.txt");
        for (const std::string name : {"one", "two", "three"}) {
            EXPECT_EQ(found.find("named \"" + name + '"') == std::string::npos,
                      each.known == "any" || each.known == name)
                << name << " in " << found;
        }
    }
}

TEST_F(ServerTest, ReportsErrorsInAContextInItsFile) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", "{\"a\":\n x}");
    open("a.txt", "{{ a }}");
    check();
    EXPECT_EQ(published("c.json").substr(0, 15), "1:1-2 1 context");
    folder.writeFile("c.json", R"({"a": ""})");
    notify("workspace/didChangeWatchedFiles", Json::object());
    check();
    EXPECT_EQ(published("c.json"), "");
    EXPECT_EQ(published("a.txt"), "");
}

TEST_F(ServerTest, ReadsAContextFromItsBuffer) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", "{}");
    open("c.json", R"({"a": ""})", "json");
    open("a.txt", "{{ a }}");
    check();
    EXPECT_EQ(published("a.txt"), "");
    change("c.json", R"({"b": ""})");
    check();
    EXPECT_EQ(published("a.txt").substr(0, 22), "0:3-4 2 missing-name: ");
}

TEST_F(ServerTest, ReportsAnInvalidRootOnceAndIgnoresIt) {
    initialize({{"root", "missing"}});
    folder.writeFile("b.txt", "");
    open("a.txt", "{% include \"b.txt\" %}");
    check();
    EXPECT_EQ(shown().size(), 1u);
    EXPECT_EQ(published("a.txt"), "");
    change("a.txt", "{% include \"b.txt\" %}!");
    check();
    EXPECT_TRUE(shown().empty());
}

TEST_F(ServerTest, LetsAProjectNarrowTheConfiguredRoot) {
    folder.makeFolder("all");
    folder.makeFolder("all/mails");
    folder.writeFile("all/mails/b.txt", "");
    folder.writeFile("all/stencilor.json", R"({"root": "mails"})");
    initialize({{"root", "all"}});
    open("all/a.txt", "{% include \"b.txt\" %}");
    check();
    EXPECT_EQ(published("all/a.txt"), "");
    EXPECT_TRUE(shown().empty());
}

TEST_F(ServerTest, LetsNoProjectWidenTheConfiguredRoot) {
    folder.makeFolder("inner");
    folder.writeFile("b.txt", "");
    folder.writeFile("stencilor.json", R"({"root": "."})");
    initialize({{"root", "inner"}});
    open("a.txt", "{% include \"b.txt\" %}");
    check();
    EXPECT_EQ(published("a.txt"),
              "0:12-17 1 missing-include: included file \"b.txt\" does not exist");
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_NE(shown().front().find("is outside the configured root"), std::string::npos);
}

// Includes.

TEST_F(ServerTest, ReadsIncludesFromBuffers) {
    initialize();
    folder.writeFile("b.txt", "{{");
    open("a.txt", "{% include \"b.txt\" %}{% include \"new.txt\" %}");
    check();
    EXPECT_EQ(published("a.txt"),
              "0:33-40 1 missing-include: included file \"new.txt\" does not exist");
    EXPECT_NE(published("b.txt"), "") << "errors in a file that is not open";
    open("b.txt", "fine");
    open("new.txt", "not saved yet");
    check();
    EXPECT_EQ(published("a.txt"), "");
    EXPECT_EQ(published("b.txt"), "");
    change("b.txt", "{% if");
    check();
    EXPECT_NE(published("b.txt"), "");
    notify("textDocument/didClose", {{"textDocument", {{"uri", uriOf("b.txt")}}}});
    folder.writeFile("b.txt", "fine");
    check();
    EXPECT_EQ(published("b.txt"), "");
}

TEST_F(ServerTest, LooksUpTheNamesOfAnIncludeWhereItIsIncluded) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", R"({"rows": [{"name": "x"}]})");
    open("row.txt", "{{ name }}{{ nmae }}");
    check();
    EXPECT_EQ(published("row.txt").substr(0, 28), "0:3-7 2 missing-name: no str");
    open("a.txt", "{% for row in rows %}{% include \"row.txt\" %}{% endfor %}");
    check();
    EXPECT_EQ(published("row.txt"),
              "0:13-17 2 missing-name: no string is named \"nmae\" in element 1 "
              "of \"rows\"; did you mean \"name\"?");
    EXPECT_EQ(published("a.txt"), "");
}

TEST_F(ServerTest, LooksUpNamesInTemplatesThatIncludeEachOther) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", R"({"go": false})");
    open("a.txt", "{{ x }}{% if go %}{% include \"b.txt\" %}{% endif %}");
    open("b.txt", "{% if go %}{% include \"a.txt\" %}{% endif %}");
    check();
    EXPECT_NE(published("a.txt").find("no string is named \"x\""), std::string::npos);
}

// Timing.

TEST_F(ServerTest, ContinuesAfterAnInterruption) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", R"({"a": ""})");
    open("a.txt", "{{ b }}");
    sent.clear();
    server.runDue([] { return false; });
    EXPECT_EQ(published("a.txt"), "nothing published");
    check();
    EXPECT_NE(published("a.txt"), "nothing published");
}

TEST_F(ServerTest, CanBeInterruptedWhileNamesAreLookedUp) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", R"({"a": ""})");
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text += "{{ a }}";
    }
    open("a.txt", text + "{{ b }}");
    sent.clear();
    int asked = 0;
    server.runDue([&asked] { return ++asked < 4; });
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(published("a.txt"), "nothing published");
    check();
    EXPECT_NE(published("a.txt"), "");
    EXPECT_FALSE(server.due().has_value());
}

TEST_F(ServerTest, ReportsEmptyLinesOnRequest) {
    initialize({{"emptyLines", true}});
    open("a.txt", "{% if x %}\n  {% for a in b %} \r\ntext\n\n{% endfor %}{% endif %}");
    check();
    const std::string note =
        " 3 empty-line: this line is empty in the output: its tags are removed, "
        "but its line break is not";
    EXPECT_EQ(published("a.txt"), "0:0-10" + note + "\n1:2-18" + note);
}

TEST_F(ServerTest, SendsNoMoreFindingsPerFileThanAnEditorShows) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", "{}");
    std::string text;
    for (int i = 0; i < 1500; ++i) {
        text += "{{ x }}\n";
    }
    open("a.txt", text);
    check();
    const Json& diagnostics = sent.back().at("params").at("diagnostics");
    EXPECT_EQ(diagnostics.size(), 1000u);
    EXPECT_NE(diagnostics.back().at("message").get<std::string>().find("500 more are not shown"),
              std::string::npos);
}

} // namespace
} // namespace stencilor::lsp
