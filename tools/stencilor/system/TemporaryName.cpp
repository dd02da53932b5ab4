#include <tools/stencilor/system/TemporaryName.h>

#include <random>

namespace stencilor::system {

std::string temporaryName() {
    static constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> digit(0, 15);
    std::string name = ".stencilor-";
    for (int i = 0; i < 16; ++i) {
        name += digits[digit(random)];
    }
    return name;
}

} // namespace stencilor::system
