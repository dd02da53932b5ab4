#ifndef TOOLS_STENCILOR_LSP_LANGUAGESERVER_H
#define TOOLS_STENCILOR_LSP_LANGUAGESERVER_H

#include <tools/stencilor/lsp/Diagnostics.h>
#include <tools/stencilor/lsp/MessageQueue.h>
#include <tools/stencilor/lsp/Session.h>

#include <chrono>
#include <functional>
#include <optional>

namespace stencilor::lsp {

/// The Language Server Protocol without the streams: it receives and sends messages.
///
/// Errors: invalid messages are answered with an error, or logged if they need no answer.
///   Exceptions of `send` reach the caller.
/// Threads: not thread-safe.
class LanguageServer {
  public:
    using Clock = std::chrono::steady_clock;
    using Send = std::function<void(const std::string& message)>;

    /// The delay between a change and the check, so that not every key press causes a check.
    static constexpr std::chrono::milliseconds delay{60};

    explicit LanguageServer(Send send);
    LanguageServer(const LanguageServer&) = delete;
    LanguageServer& operator=(const LanguageServer&) = delete;

    void receive(const Received& received);

    /// The time of the next action without a message; nothing if there is none.
    std::optional<Clock::time_point> due() const;

    /// Performs the action. If `goOn` returns false, it is interrupted, and becomes due again.
    void runDue(const Checks::GoOn& goOn);

    bool hasEnded() const { return state_ == State::Ended; }

    /// The exit status: 0 if the client has requested the shutdown.
    int exitStatus() const { return wasShutDown_ ? 0 : 1; }

  private:
    enum class State { Started, Initialized, ShutDown, Ended };

    void answer(const Json& message, const std::string& method, bool isCancelled);
    std::string callRequest(const std::string& method, const Json& params);
    void callNotification(const std::string& method, const Json& params);
    void takeNotification(const std::string& method, const Json& params);

    Json initialize(const Json& params);
    void watchFiles();
    void changeFolders(const Json& event);
    void noteChange(const Document& document);
    void noteChangeOfAll();

    void send(const Json& message);
    void notify(const char* method, const std::string& params);
    void sendError(const Json& id, ErrorCode code, const std::string& message);
    void log(const std::string& message);

    Send send_;
    State state_ = State::Started;
    bool wasShutDown_ = false;
    Session session_;
    DiagnosticsPublisher publisher_;
    Clock::time_point due_{};
};

} // namespace stencilor::lsp

#endif
