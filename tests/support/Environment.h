#ifndef TESTS_SUPPORT_ENVIRONMENT_H
#define TESTS_SUPPORT_ENVIRONMENT_H

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace support {

/// The number in the environment variable `name`, or `otherwise` if it is not set. Throws if it is
/// not a number, which fails the test.
inline std::uint64_t numberFromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const value = std::getenv(name);
    if (value == nullptr) {
        return otherwise;
    }
    const std::string digits = value;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
        throw std::invalid_argument(std::string(name) + " is not a number: " + digits);
    }
    return std::stoull(digits);
}

/// True if the environment requests tests that take gigabytes or many seconds.
inline bool thorough() {
    return numberFromEnvironment("STENCILOR_THOROUGH", 0) != 0;
}

} // namespace support

#endif
