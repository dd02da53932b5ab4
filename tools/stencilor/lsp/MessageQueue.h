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

    /// Adds a message; one that cancels a request which still waits is carried out. Waits while
    /// there is more than a client could want to have answered.
    void add(Received received);

    /// Signals that there are no more messages.
    void close();

    /// Waits for a message. Nothing once it is closed and empty, and from `until` on.
    std::optional<Received> take(std::optional<Clock::time_point> until);

    /// True while no message waits, and more may come.
    bool isIdle() const;

    /// True once no message waits, and none will.
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
