#include <tools/stencilor/system/PercentEncoding.h>

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

} // namespace stencilor::system
