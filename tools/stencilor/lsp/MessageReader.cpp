#include <tools/stencilor/lsp/MessageReader.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace stencilor::lsp {

namespace {

constexpr std::size_t blockSize = std::size_t{64} * 1024;

char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

/// The value of the header `Content-Length`; nothing for other headers, or if it is not a number.
std::optional<std::size_t> lengthIn(std::string_view header) {
    constexpr std::string_view name = "content-length:";
    const bool isLength =
        header.size() > name.size() &&
        std::equal(name.begin(), name.end(), header.begin(),
                   [](char expected, char found) { return expected == lower(found); });
    if (!isLength) {
        return std::nullopt;
    }
    header.remove_prefix(std::min(header.find_first_not_of(" \t", name.size()), header.size()));
    while (header.ends_with(' ') || header.ends_with('\t')) {
        header.remove_suffix(1);
    }
    std::size_t length = 0;
    const char* const end = header.data() + header.size();
    const auto [rest, failure] = std::from_chars(header.data(), end, length);
    return failure == std::errc() && rest == end ? std::optional(length) : std::nullopt;
}

} // namespace

std::optional<std::string> MessageReader::next() {
    std::optional<std::size_t> length;
    bool hasHeaders = false;
    for (;;) {
        const auto header = line();
        if (!header) {
            return std::nullopt;
        }
        if (!header->empty()) {
            hasHeaders = true;
            length = length ? length : lengthIn(*header);
        } else if (length) {
            break;
        } else if (hasHeaders) {
            return "";
        }
    }
    if (*length > longestContent) {
        return skip(*length) ? std::optional("") : std::nullopt;
    }
    return content(*length);
}

/// Reads more. False at the end of the stream.
bool MessageReader::fill() {
    buffer_.resize(blockSize);
    at_ = 0;
    buffer_.resize(read_(buffer_.data(), buffer_.size()));
    return !buffer_.empty();
}

/// A line without its end, which is CR LF or just LF.
std::optional<std::string> MessageReader::line() {
    std::string result;
    for (;;) {
        if (at_ == buffer_.size() && !fill()) {
            return std::nullopt;
        }
        const std::size_t end = std::min(buffer_.find('\n', at_), buffer_.size());
        const std::size_t room = longestLine - std::min(result.size(), longestLine);
        result.append(buffer_, at_, std::min(end - at_, room));
        at_ = end;
        if (at_ < buffer_.size()) {
            ++at_;
            if (result.ends_with('\r')) {
                result.pop_back();
            }
            return result;
        }
    }
}

std::optional<std::string> MessageReader::content(std::size_t size) {
    std::string result;
    while (result.size() < size) {
        if (at_ == buffer_.size() && !fill()) {
            return std::nullopt;
        }
        const std::size_t count = std::min(size - result.size(), buffer_.size() - at_);
        result.append(buffer_, at_, count);
        at_ += count;
    }
    return result;
}

bool MessageReader::skip(std::size_t size) {
    while (size > 0) {
        if (at_ == buffer_.size() && !fill()) {
            return false;
        }
        const std::size_t count = std::min(size, buffer_.size() - at_);
        at_ += count;
        size -= count;
    }
    return true;
}

std::string frame(const std::string& content) {
    return "Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content;
}

} // namespace stencilor::lsp
