#include "../support/Test.h"

#include <tools/stencilor/lsp/MessageQueue.h>
#include <tools/stencilor/lsp/MessageReader.h>

namespace stencilor::lsp {
namespace {

/// What is read from a stream that delivers `step` bytes at a time.
std::vector<std::string> readAll(const std::string& stream, std::size_t step) {
    std::size_t at = 0;
    MessageReader reader([&](char* data, std::size_t size) {
        const std::size_t count = std::min({step, size, stream.size() - at});
        std::memcpy(data, stream.data() + at, count);
        at += count;
        return count;
    });
    std::vector<std::string> messages;
    while (auto message = reader.next()) {
        messages.push_back(std::move(*message));
    }
    return messages;
}

struct StreamCase {
    std::string name;
    std::string stream;
    std::vector<std::string> messages;
};

const std::vector<StreamCase> streamCases = {
    {"nothing", "", {}},
    {"two messages", frame("one") + frame("second"), {"one", "second"}},
    {"headers end with LF alone", "Content-Length: 2\n\nab", {"ab"}},
    {"another header", "Content-Type: x; charset=utf-8\r\nContent-Length: 2\r\n\r\nab", {"ab"}},
    {"the header in lower case", "content-length:2\r\n\r\nab", {"ab"}},
    {"spaces around the number", "Content-Length:  2 \r\n\r\nab", {"ab"}},
    {"an empty message", frame("") + frame("next"), {"", "next"}},
    {"empty lines between messages", "\r\n\r\n" + frame("next"), {"next"}},
    {"headers without a length", "Content-Type: x\r\n\r\n" + frame("next"), {"", "next"}},
    {"a length that is not a number", "Content-Length: x\r\n\r\n" + frame("next"), {"", "next"}},
    {"a negative length", "Content-Length: -1\r\n\r\n" + frame("next"), {"", "next"}},
    {"a length over 64 bits",
     "Content-Length: 99999999999999999999\r\n\r\n" + frame("next"),
     {"", "next"}},
    {"a very long header line", std::string(100'000, 'x') + "\r\n" + frame("next"), {"next"}},
    {"a truncated message", frame("one") + "Content-Length: 5\r\n\r\nab", {"one"}},
    {"a truncated header", frame("one") + "Content-Le", {"one"}},
    {"an impossibly large length", "Content-Length: 9999999999\r\n\r\nab", {}},
};

TEST(MessageReader, SplitsAStream) {
    for (const StreamCase& each : streamCases) {
        for (const std::size_t step : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 20}) {
            SCOPED_TRACE(each.name + ", " + std::to_string(step) + " bytes at a time");
            EXPECT_EQ(readAll(each.stream, step), each.messages);
        }
    }
}

TEST(Messages, ThatNestTooDeeplyAreNotJson) {
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    EXPECT_FALSE(parseMessage(nested(100)).message.is_discarded());
    EXPECT_TRUE(parseMessage(nested(101)).message.is_discarded());
    EXPECT_FALSE(parseMessage("[\"" + std::string(200, '[') + "\\\"[\"]").message.is_discarded());
}

Received make(const std::string& content) {
    return parseMessage(content);
}

TEST(MessageQueue, MarksARequestThatIsCancelledBeforeItsTurn) {
    MessageQueue queue;
    queue.add(make(R"({"id": 1, "method": "a"})"));
    queue.add(make(R"({"id": 2, "method": "a"})"));
    queue.add(make(R"({"method": "$/cancelRequest", "params": {"id": 2}})"));
    EXPECT_FALSE(queue.take(std::nullopt)->isCancelled);
    EXPECT_TRUE(queue.take(std::nullopt)->isCancelled);
    EXPECT_FALSE(queue.take(std::nullopt)->isCancelled);
}

TEST(MessageQueue, IgnoresUnknownCancellations) {
    MessageQueue queue;
    for (const char* const params :
         {"null", "[]", "{}", R"({"id": null})", R"({"id": {"a": []}})"}) {
        queue.add(make(std::string(R"({"method": "$/cancelRequest", "params": )") + params + "}"));
    }
    queue.add(make(R"({"method": "$/cancelRequest"})"));
    queue.add(make("7"));
    queue.add(make("x"));
    queue.close();
    int count = 0;
    while (queue.take(std::nullopt)) {
        ++count;
    }
    EXPECT_EQ(count, 8);
    EXPECT_TRUE(queue.hasEnded());
}

TEST(MessageQueue, WaitsNoLongerThanAsked) {
    MessageQueue queue;
    EXPECT_FALSE(queue.take(MessageQueue::Clock::now()).has_value());
    EXPECT_TRUE(queue.isIdle());
    EXPECT_FALSE(queue.hasEnded());
}

} // namespace
} // namespace stencilor::lsp
