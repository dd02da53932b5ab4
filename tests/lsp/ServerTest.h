#ifndef TESTS_LSP_SERVERTEST_H
#define TESTS_LSP_SERVERTEST_H

#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <tools/stencilor/lsp/LanguageServer.h>

namespace stencilor::lsp {

/// A server without streams, with its own workspace.
class ServerTest : public ::testing::Test {
  protected:
    support::TemporaryFolder folder;
    std::vector<Json> sent;
    LanguageServer server{
        [this](const std::string& message) { sent.push_back(Json::parse(message)); }};

    void receive(const std::string& content) { server.receive(parseMessage(content)); }

    void notify(const std::string& method, const Json& params) {
        receive(Json({{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}).dump());
    }

    /// The answer to a request.
    Json request(const std::string& method, const Json& params) {
        sent.clear();
        receive(
            Json({{"jsonrpc", "2.0"}, {"id", ++lastId_}, {"method", method}, {"params", params}})
                .dump());
        EXPECT_EQ(sent.size(), 1u) << method;
        EXPECT_EQ(sent.back().at("id"), lastId_);
        return sent.back();
    }

    /// Its result.
    Json ask(const std::string& method, const Json& params) {
        const Json answer = request(method, params);
        EXPECT_TRUE(answer.contains("result")) << answer.dump();
        return answer.value("result", Json());
    }

    void initialize(const Json& options = nullptr, const Json& capabilities = Json::object()) {
        ask("initialize", {{"capabilities", capabilities},
                           {"rootUri", uriOf("")},
                           {"initializationOptions", options}});
        notify("initialized", Json::object());
    }

    std::string uriOf(const std::string& name) const {
        return system::uriOf(system::identityOf(folder.path(name)));
    }

    void open(const std::string& name, const std::string& text,
              const std::string& language = "stencilor") {
        notify(
            "textDocument/didOpen",
            {{"textDocument",
              {{"uri", uriOf(name)}, {"languageId", language}, {"version", 1}, {"text", text}}}});
    }

    void change(const std::string& name, const std::string& text) {
        notify("textDocument/didChange", {{"textDocument", {{"uri", uriOf(name)}, {"version", 2}}},
                                          {"contentChanges", Json::array({Json{{"text", text}}})}});
    }

    /// Checks the files that have changed.
    void check() {
        sent.clear();
        EXPECT_TRUE(server.due().has_value());
        server.runDue([] { return true; });
    }

    /// The last diagnostics published for a document, one per line:
    /// `LINE:CHARACTER-CHARACTER SEVERITY CODE: MESSAGE`. "nothing published" if there are none.
    std::string published(const std::string& name) const {
        std::string result = "nothing published";
        for (const Json& message : sent) {
            if (message.value("method", "") == "textDocument/publishDiagnostics" &&
                message.at("params").at("uri") == uriOf(name)) {
                result.clear();
                for (const Json& each : message.at("params").at("diagnostics")) {
                    result += (result.empty() ? "" : "\n") + describe(each);
                }
            }
        }
        return result;
    }

    /// The messages shown to the user.
    std::vector<std::string> shown() const {
        std::vector<std::string> texts;
        for (const Json& message : sent) {
            if (message.value("method", "") == "window/showMessage") {
                texts.push_back(message.at("params").at("message"));
            }
        }
        return texts;
    }

    static std::string describe(const Json& diagnostic) {
        const Json& range = diagnostic.at("range");
        const auto number = [](const Json& place, const char* name) {
            return std::to_string(place.at(name).get<int>());
        };
        return number(range.at("start"), "line") + ":" + number(range.at("start"), "character") +
               "-" + number(range.at("end"), "character") + " " +
               std::to_string(diagnostic.at("severity").get<int>()) + " " +
               diagnostic.at("code").get<std::string>() + ": " +
               diagnostic.at("message").get<std::string>();
    }

  private:
    int lastId_ = 0;
};

} // namespace stencilor::lsp

#endif
