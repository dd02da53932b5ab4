#include <tools/stencilor/lsp/MessageQueue.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
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

/// The number that four hexadecimal digits at an offset make; 0 if they are something else.
unsigned int hexAt(std::string_view text, std::size_t at) {
    const std::string_view digits = text.substr(std::min(at, text.size()), 4);
    unsigned int value = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return failure == std::errc() && end == digits.data() + 4 ? value : 0;
}

/// Replaces escaped halves of UTF-16 characters by U+FFFD, which takes the place of one, too. Texts
/// in an editor may contain them, but JSON with them is invalid.
std::string replaceLoneHalves(std::string content) {
    for (std::size_t at = content.find('\\'); at != content.npos; at = content.find('\\', at)) {
        const unsigned int value = content.compare(at, 2, "\\u") == 0 ? hexAt(content, at + 2) : 0;
        const bool isPair = value >= 0xD800 && value < 0xDC00 &&
                            content.compare(at + 6, 2, "\\u") == 0 &&
                            (hexAt(content, at + 8) & 0xFC00) == 0xDC00;
        if (!isPair && value >= 0xD800 && value < 0xE000) {
            content.replace(at + 2, 4, "FFFD");
        }
        at += isPair ? 12 : 2;
    }
    return content;
}

Json parse(const std::string& content) {
    Json message = Json::parse(content, nullptr, false);
    if (message.is_discarded()) {
        message = Json::parse(replaceLoneHalves(content), nullptr, false);
    }
    return message;
}

const Json* find(const Json& object, const char* name) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found == object.end() ? nullptr : &*found;
}

} // namespace

Received parseMessage(const std::string& content) {
    Json message = isShallow(content) ? parse(content) : Json(Json::value_t::discarded);
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
