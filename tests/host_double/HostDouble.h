#ifndef TESTS_HOST_DOUBLE_HOSTDOUBLE_H
#define TESTS_HOST_DOUBLE_HOSTDOUBLE_H

#include <libKel/Logging.h>
#include <libKel/String.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// What the tests tell the double to do, and what it was asked for. There is one, and each test
/// begins with a `reset`.
struct HostDouble {
    static HostDouble& instance();

    /// Everything but the engine's logger is new; the engine keeps that one for ever.
    void reset();

    static String wide(std::u16string_view text);
    static std::u16string_view textOf(const String& string);

    /// How it answers.
    std::int32_t globalPriority = 3;
    std::int32_t resolvedPriority = 0;
    std::map<std::string, std::optional<std::string>> files; ///< nothing: cannot be loaded
    Logger logger;

    /// The calls in the order they came, with their arguments.
    std::vector<std::string> calls;
    std::vector<std::string> takeCalls();
};

} // namespace kel

#endif
