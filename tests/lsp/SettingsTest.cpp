#include "ServerTest.h"

#include <string>
#include <vector>

// Settings, and the files that belong to templates.

namespace stencilor::lsp {
namespace {

using SettingsTest = ServerTest;

TEST_F(SettingsTest, RemainIfAConfigurationHasNoneOfThem) {
    folder.writeFile("c.json", R"({"a": ""})");
    initialize({{"context", "c.json"}});
    for (const Json& settings :
         std::vector<Json>{Json::object(), nullptr, 7, {{"other", {{"context", "d.json"}}}}}) {
        notify("workspace/didChangeConfiguration", {{"settings", settings}});
    }
    open("a.txt", "{{ b }}");
    check();
    EXPECT_NE(published("a.txt").find("no string is named \"b\""), std::string::npos);
}

TEST_F(SettingsTest, OfAnotherTypeAreReportedOnce) {
    initialize({{"root", 7}, {"context", Json::array()}, {"positions", "yes"}, {"emptyLines", 1}});
    open("a.txt", "{% if x %}\n{% endif %}");
    check();
    EXPECT_EQ(shown(), (std::vector<std::string>{
                           "the setting \"root\" is not a string",
                           "the setting \"context\" is not a string",
                           "the setting \"positions\" is neither true nor false",
                           "the setting \"emptyLines\" is neither true nor false",
                       }));
    EXPECT_EQ(published("a.txt"), "");
    change("a.txt", "text");
    check();
    EXPECT_TRUE(shown().empty());
}

TEST_F(SettingsTest, AreThoseOfTheInnermostFolderOfTheWorkspace) {
    folder.makeFolder("inner");
    folder.writeFile("inner/c.json", R"({"a": ""})");
    const Json inner = {{"uri", uriOf("inner")}, {"name", "inner"}};
    const Json outer = {{"uri", uriOf("")}, {"name", "outer"}};
    for (const Json& folders : {Json::array({inner, outer}), Json::array({outer, inner})}) {
        LanguageServer other(
            [this](const std::string& message) { sent.push_back(Json::parse(message)); });
        other.receive({.message = {{"id", 1},
                                   {"method", "initialize"},
                                   {"params",
                                    {{"workspaceFolders", folders},
                                     {"initializationOptions", {{"context", "c.json"}}}}}}});
        other.receive(
            {.message = {
                 {"method", "textDocument/didOpen"},
                 {"params",
                  {{"textDocument", {{"uri", uriOf("inner") + "/a.txt"}, {"text", "{{ b }}"}}}}}}});
        sent.clear();
        other.runDue([] { return true; });
        EXPECT_TRUE(shown().empty()) << "c.json is in the inner folder";
    }
}

TEST_F(SettingsTest, AProjectFileThatIsWrongIsReportedOnce) {
    initialize();
    for (const std::string text : {"{", R"({"root": ".."})", R"({"roots": "a"})"}) {
        folder.writeFile("stencilor.json", text);
        notify("workspace/didChangeConfiguration", {{"settings", {{"stencilor", nullptr}}}});
        open("a.txt", "text");
        open("b.txt", "text");
        check();
        ASSERT_EQ(shown().size(), 1u) << text;
        EXPECT_NE(shown().front().find("stencilor.json"), std::string::npos);
        change("a.txt", "more");
        check();
        EXPECT_TRUE(shown().empty()) << text;
    }
}

// A pipe without a writer would keep the server waiting.
TEST_F(SettingsTest, AreNotReadFromWhatIsNoFile) {
    initialize();
    folder.makeFolder("a.txt.context.json");
    folder.makeFolder("inner");
    if (folder.makePipe("inner/stencilor.json")) {
        EXPECT_TRUE(folder.makePipe("inner/b.txt.context.json"));
    }
    open("a.txt", "{{ a }}");
    open("inner/b.txt", "{{ b }}");
    check();
    EXPECT_EQ(published("a.txt"), "");
    EXPECT_EQ(published("inner/b.txt"), "");
    EXPECT_TRUE(shown().empty());
}

TEST_F(SettingsTest, AContextIsThatOfTheBufferThatIsOpenNow) {
    initialize({{"context", "c.json"}});
    folder.writeFile("c.json", "{}");
    open("c.json", R"({"a": ""})", "json");
    open("a.txt", "{{ a }}");
    check();
    EXPECT_EQ(published("a.txt"), "");
    notify("textDocument/didClose", {{"textDocument", {{"uri", uriOf("c.json")}}}});
    open("c.json", R"({"b": ""})", "json"); // with the same version as before
    check();
    EXPECT_NE(published("a.txt"), "");
}

TEST_F(SettingsTest, ANewBufferIsFoundThroughALink) {
    initialize();
    folder.makeFolder("real");
    folder.writeFile("real/a.txt", "");
    if (!folder.makeLink("link", "real")) {
        GTEST_SKIP() << "the system makes no links";
    }
    const auto openLinked = [this](const std::string& name, const std::string& text) {
        notify("textDocument/didOpen",
               {{"textDocument", {{"uri", uriOf("") + "/link/" + name}, {"text", text}}}});
    };
    openLinked("new.txt", "not saved yet");
    openLinked("a.txt", "{% include \"new.txt\" %}");
    check();
    for (const Json& message : sent) {
        EXPECT_TRUE(message.at("params").at("diagnostics").empty()) << message.dump();
    }
}

} // namespace
} // namespace stencilor::lsp
