#include "target.h"

#include <tools/stencilor/lsp/LanguageServer.h>
#include <tools/stencilor/lsp/MessageReader.h>

#include <algorithm>
#include <cstring>
#include <string>

// The language server answers each request once, whatever the messages are. An input is a
// transcript: a message in each line, after that which initializes the server.

using namespace stencilor::lsp;

namespace {

std::size_t countAnswers(const std::vector<Json>& sent) {
    return static_cast<std::size_t>(std::count_if(
        sent.begin(), sent.end(), [](const Json& each) { return !each.contains("method"); }));
}

void readStream(std::string_view stream) {
    MessageReader reader([&stream](char* data, std::size_t size) {
        const std::size_t count = std::min({size, stream.size(), std::size_t{50}});
        std::memcpy(data, stream.data(), count);
        stream.remove_prefix(count);
        return count;
    });
    while (reader.next()) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = fuzz::textOf(data, size);
    readStream(rest);
    std::vector<Json> sent;
    LanguageServer server(
        [&sent](const std::string& message) { sent.push_back(Json::parse(message)); });
    server.receive(parseMessage(R"({"id": 0, "method": "initialize", "params": {}})"));
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const Received received = parseMessage(std::string(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        sent.clear();
        server.receive(received);
        const Json& message = received.message;
        const bool isRequest = message.is_object() && message.contains("id") &&
                               message.contains("method") && message.at("method").is_string();
        fuzz::require(!isRequest || countAnswers(sent) == 1, "each request is answered once");
        if (server.due()) {
            server.runDue([] { return true; });
        }
    }
    countAnswers(sent);
    return 0;
}
