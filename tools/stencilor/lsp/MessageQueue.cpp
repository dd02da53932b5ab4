#include <tools/stencilor/lsp/MessageQueue.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace stencilor::lsp {

namespace {

constexpr std::size_t deepestMessage = 100;

/// Whether arrays and objects nest at most as deeply as messages do. Each level takes a hundred
/// times the size of its byte.
bool isShallow(std::string_view content) {
    std::size_t depth = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < content.size(); ++i) {
        const char byte = content[i];
        if (byte == '"') {
            isInString = !isInString;
        } else if (isInString) {
            i += byte == '\\' ? 1 : 0;
        } else if (byte == '[' || byte == '{') {
            if (++depth > deepestMessage) {
                return false;
            }
        } else if (byte == ']' || byte == '}') {
            depth -= depth > 0 ? 1 : 0;
        }
    }
    return true;
}

const Json* find(const Json& object, const char* name) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found == object.end() ? nullptr : &*found;
}

} // namespace

Received parseMessage(const std::string& content) {
    Json message =
        isShallow(content) ? Json::parse(content, nullptr, false) : Json(Json::value_t::discarded);
    return {.message = std::move(message), .size = content.size()};
}

void MessageQueue::add(Received received) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return bytes_ < mostBytes; });
    if (const Json* const method = find(received.message, "method");
        method != nullptr && *method == "$/cancelRequest") {
        const Json* const params = find(received.message, "params");
        const Json* const id = params == nullptr ? nullptr : find(*params, "id");
        if (id != nullptr) {
            cancel(*id);
        }
    }
    bytes_ += received.size;
    messages_.push_back(std::move(received));
    changed_.notify_all();
}

void MessageQueue::cancel(const Json& id) {
    for (Received& waiting : messages_) {
        const Json* const own = find(waiting.message, "id");
        waiting.isCancelled |= own != nullptr && *own == id;
    }
}

void MessageQueue::close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    changed_.notify_all();
}

std::optional<Received> MessageQueue::take(std::optional<Clock::time_point> until) {
    std::unique_lock lock(mutex_);
    const auto isReady = [this] { return isClosed_ || !messages_.empty(); };
    if (until) {
        changed_.wait_until(lock, *until, isReady);
    } else {
        changed_.wait(lock, isReady);
    }
    if (messages_.empty()) {
        return std::nullopt;
    }
    Received first = std::move(messages_.front());
    messages_.pop_front();
    bytes_ -= first.size;
    changed_.notify_all();
    return first;
}

bool MessageQueue::isIdle() const {
    const std::lock_guard lock(mutex_);
    return messages_.empty() && !isClosed_;
}

bool MessageQueue::hasEnded() const {
    const std::lock_guard lock(mutex_);
    return messages_.empty() && isClosed_;
}

} // namespace stencilor::lsp
