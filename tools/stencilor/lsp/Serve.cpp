#include <tools/stencilor/lsp/LanguageServer.h>
#include <tools/stencilor/lsp/MessageReader.h>
#include <tools/stencilor/lsp/Serve.h>
#include <tools/stencilor/system/System.h>

#include <exception>
#include <memory>
#include <new>
#include <system_error>
#include <thread>

namespace stencilor::lsp {

namespace {

bool isExit(const Json& message) {
    const auto method = message.is_object() ? message.find("method") : message.end();
    return method != message.end() && *method == "exit";
}

Received parseOrDiscard(const std::string& content) {
    try {
        return parseMessage(content);
    } catch (const std::bad_alloc&) {
        return {.message = Json(Json::value_t::discarded)};
    }
}

/// Adds messages up to the end of the stream, or to the message that ends the session.
void readMessages(MessageQueue& queue) {
    try {
        MessageReader reader(
            [](char* data, std::size_t size) { return system::readStandardInput(data, size); });
        while (const auto content = reader.next()) {
            Received received = parseOrDiscard(*content);
            const bool isLast = isExit(received.message);
            queue.add(std::move(received));
            if (isLast) {
                break;
            }
        }
    } catch (const std::exception&) {
        // A stream that fails counts as ended.
    }
    queue.close();
}

void sendMessage(const std::string& message) {
    try {
        system::writeStandardOutput(frame(message));
    } catch (const std::system_error& error) {
        throw Failure("<stdout>: " + error.code().message());
    }
}

} // namespace

ExitStatus serve() {
    const auto queue = std::make_shared<MessageQueue>();
    // It may wait for input that never comes when the output has failed, so nothing waits for it.
    std::thread([queue] { readMessages(*queue); }).detach();
    LanguageServer server(sendMessage);
    while (!server.hasEnded() && !queue->hasEnded()) {
        if (const auto received = queue->take(server.due())) {
            server.receive(*received);
        } else if (!queue->hasEnded()) {
            server.runDue([&queue] { return queue->isIdle(); });
        }
    }
    return server.exitStatus() == 0 ? exitClean : exitMessages;
}

} // namespace stencilor::lsp
