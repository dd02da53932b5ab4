#ifndef TOOLS_STENCILOR_LSP_MESSAGEQUEUE_H
#define TOOLS_STENCILOR_LSP_MESSAGEQUEUE_H

#include <tools/stencilor/lsp/Json.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace stencilor::lsp {

/// A received message.
struct Received {
    Json message;             ///< discarded if the content is not JSON
    bool isCancelled = false; ///< a request whose answer is no longer wanted
    std::size_t size = 0;
};

/// Parses the content of a message. Content that is nested deeper than any message of the protocol
/// counts as invalid.
Received parseMessage(const std::string& content);

/// The waiting messages, in order of arrival.
/// Threads: one thread adds, another one takes.
class MessageQueue {
  public:
    using Clock = std::chrono::steady_clock;

    /// Adds a message; a message that cancels a waiting request takes effect at once. Waits while
    /// there are more messages than a client can reasonably need.
    void add(Received received);

    /// Signals that there are no more messages.
    void close();

    /// Waits for a message. Returns nothing once the queue is closed and empty, or at `until`.
    std::optional<Received> take(std::optional<Clock::time_point> until);

    /// True while no message is waiting, but more may come.
    bool isIdle() const;

    /// True once no message is waiting and none will come.
    bool hasEnded() const;

  private:
    static constexpr std::size_t mostBytes = std::size_t{512} << 20;

    void cancel(const Json& id);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Received> messages_;
    std::size_t bytes_ = 0;
    bool isClosed_ = false;
};

} // namespace stencilor::lsp

#endif
