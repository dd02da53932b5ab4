#include <tools/stencilor/system/PercentEncoding.h>

#include <cstddef>
#include <utility>

namespace stencilor::system {

std::string percentEncode(std::string_view path) {
    static constexpr std::string_view unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : path) {
        if (unreserved.find(byte) != unreserved.npos) {
            encoded += byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            encoded += {'%', digits[value >> 4], digits[value & 15]};
        }
    }
    return encoded;
}

namespace {

/// The value of a hexadecimal digit; -1 for other bytes.
int digitOf(char byte) {
    if (byte >= '0' && byte <= '9') {
        return byte - '0';
    }
    const char letter = static_cast<char>(byte | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

} // namespace

std::string percentDecode(std::string_view path) {
    std::string decoded;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const bool isEncoded = path[i] == '%' && i + 2 < path.size() && digitOf(path[i + 1]) >= 0 &&
                               digitOf(path[i + 2]) >= 0;
        decoded += isEncoded ? static_cast<char>(digitOf(path[i + 1]) * 16 + digitOf(path[i + 2]))
                             : path[i];
        i += isEncoded ? 2 : 0;
    }
    return decoded;
}

std::optional<std::string> decodeFileUri(std::string_view uri) {
    for (const std::string_view start : {"file://localhost/", "file:///"}) {
        if (uri.starts_with(start)) {
            const std::string_view rest = uri.substr(start.size() - 1);
            std::string path = percentDecode(rest.substr(0, rest.find_first_of("?#")));
            return path.find('\0') == path.npos ? std::optional(std::move(path)) : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace stencilor::system
