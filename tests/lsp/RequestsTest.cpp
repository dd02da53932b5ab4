#include "ServerTest.h"

#include <string>
#include <vector>

// What the protocol demands of answers. Their content is tested with a client in tests/editors.

namespace stencilor::lsp {
namespace {

class RequestsTest : public ServerTest {
  protected:
    Json askAt(const std::string& method, std::size_t character, const Json& more = {}) {
        Json params = {{"textDocument", {{"uri", uriOf("a.txt")}}},
                       {"position", {{"line", 0}, {"character", character}}}};
        params.update(more.is_null() ? Json::object() : more);
        return ask("textDocument/" + method, params);
    }
};

TEST_F(RequestsTest, OffersNoOptionsThatTheClientDoesNotKnow) {
    const Json answer = ask("initialize", {{"capabilities", Json::object()}}).at("capabilities");
    EXPECT_EQ(answer.at("renameProvider"), true);
    EXPECT_EQ(answer.at("codeActionProvider"), true);
    LanguageServer other(
        [this](const std::string& message) { sent.push_back(Json::parse(message)); });
    const Json known = {{"rename", {{"prepareSupport", true}}},
                        {"codeAction", {{"codeActionLiteralSupport", Json::object()}}}};
    other.receive({.message = {{"id", 1},
                               {"method", "initialize"},
                               {"params", {{"capabilities", {{"textDocument", known}}}}}}});
    const Json more = sent.back().at("result").at("capabilities");
    EXPECT_EQ(more.at("renameProvider").at("prepareProvider"), true);
    EXPECT_EQ(more.at("codeActionProvider").at("codeActionKinds").at(0), "quickfix");
}

std::size_t characterOf(const Json& range, const char* end) {
    EXPECT_EQ(range.at(end).at("line"), 0);
    return range.at(end).at("character").get<std::size_t>();
}

TEST_F(RequestsTest, SelectsRangesAroundThePlaceAndInsideEachOther) {
    initialize();
    for (const std::string text :
         {"x{% if a %}y{% else %}z{% endif %}{{ b }}{% for i in j %}{{ i.k }}{% endfor %}",
          "{% if a %}{% for b in c %}{{ b.d }}{% else %}", "{{ a-b }}{% if %}{% endif %}{{"}) {
        open("a.txt", text);
        for (std::size_t at = 0; at <= text.size(); ++at) {
            const Json position = {{"line", 0}, {"character", at}};
            Json each = askAt("selectionRange", at, {{"positions", Json::array({position})}}).at(0);
            for (; each.contains("parent"); each = Json(each.at("parent"))) {
                const Json& range = each.at("range");
                const Json& outer = each.at("parent").at("range");
                EXPECT_LE(characterOf(outer, "start"), characterOf(range, "start")) << text << at;
                EXPECT_GE(characterOf(outer, "end"), characterOf(range, "end")) << text << at;
                EXPECT_LE(characterOf(range, "start"), at) << text;
                EXPECT_GE(characterOf(range, "end"), at) << text;
            }
            EXPECT_EQ(characterOf(each.at("range"), "end"), text.size());
        }
    }
}

TEST_F(RequestsTest, SendsEditsOfAVersionToClientsThatKnowIt) {
    const Json versioned = {
        {"workspace", {{"workspaceEdit", {{"documentChanges", true}}}}},
        {"textDocument", {{"codeAction", {{"codeActionLiteralSupport", Json::object()}}}}}};
    initialize(nullptr, versioned);
    open("a.txt", "{% for i in j %}{{ i.k }}{% endfor %}{{- x -}}");
    const Json renamed = askAt("rename", 7, {{"newName", "row"}});
    ASSERT_EQ(renamed.at("documentChanges").size(), 1u);
    const Json expected = {{"uri", uriOf("a.txt")}, {"version", 1}};
    EXPECT_EQ(renamed.at("documentChanges").at(0).at("textDocument"), expected);
    EXPECT_EQ(renamed.at("documentChanges").at(0).at("edits").size(), 2u);
    const Json place = {{"line", 0}, {"character", 40}};
    const Json actions = askAt("codeAction", 40,
                               {{"range", {{"start", place}, {"end", place}}},
                                {"context", {{"diagnostics", Json::array()}}}});
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_EQ(actions.at(0).at("edit").at("documentChanges").at(0).at("textDocument"), expected);
}

TEST_F(RequestsTest, RefusesToRenameAVariableWhoseUsesAreNotAllKnown) {
    initialize();
    std::string text = "{% for item in items %}{{ item.a }}";
    for (int i = 0; i < 25; ++i) {
        text += "{{ a-b }}";
    }
    open("a.txt", text + "{{ item.b }}{% endfor %}");
    const Json answer =
        request("textDocument/rename", {{"textDocument", {{"uri", uriOf("a.txt")}}},
                                        {"position", {{"line", 0}, {"character", 8}}},
                                        {"newName", "x"}});
    ASSERT_TRUE(answer.contains("error")) << answer.dump();
    EXPECT_NE(answer.at("error").at("message").get<std::string>().find("too many errors"),
              std::string::npos);
}

TEST_F(RequestsTest, GivesItemsThatSortInTheirOrder) {
    initialize();
    open("a.txt", "{% if a %}{% ");
    const Json items = askAt("completion", 13).at("items");
    ASSERT_EQ(items.size(), 5u);
    EXPECT_EQ(items.at(0).at("label"), "endif");
    for (std::size_t i = 1; i < items.size(); ++i) {
        EXPECT_LT(items.at(i - 1).at("sortText"), items.at(i).at("sortText"));
    }
}

TEST_F(RequestsTest, TakesHalvesOfCharactersAsOneCharacterEach) {
    initialize();
    const std::string before = R"({"method": "textDocument/didOpen", "params": {"textDocument": )"
                               R"({"uri": ")" +
                               uriOf("a.txt") + R"(", "text": ")";
    receive(before + R"(\uD83C \uDF75 \uD83C\uDF75 \\uD83C {{"}}})");
    check();
    EXPECT_EQ(published("a.txt").substr(0, 16), "0:15-16 1 syntax");
}

} // namespace
} // namespace stencilor::lsp
