#ifndef TESTS_HOST_DOUBLE_HOSTDOUBLE_H
#define TESTS_HOST_DOUBLE_HOSTDOUBLE_H

#include <libKel/Logging.h>
#include <libKel/String.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The behavior of the double, and the calls that it received. There is only one, and each test
/// begins with a `reset`.
struct HostDouble {
    static HostDouble& instance();

    /// Resets everything except existing loggers, which their users keep.
    void reset();

    /// Resets the users' pointers to loggers, as if the process had just started.
    void takeLoggersBack();

    static String wide(std::u32string_view text);
    static std::u32string_view textOf(const String& string);

    /// The answers.
    std::int32_t globalPriority = 3;
    std::int32_t resolvedPriority = 0;
    std::map<std::string, std::optional<std::string>> files; ///< empty if it cannot be loaded
    Logger logger;

    /// The calls in order, with their arguments.
    std::vector<std::string> calls;
    std::vector<std::string> takeCalls();
    bool notesText = false; ///< true if conversions and appends of text are included

    /// The number of calls before one throws `std::bad_alloc`; empty if none does. Destructors are
    /// not counted.
    std::optional<std::uint64_t> callsUntilFailure;

    std::set<std::string> sourcePaths;  ///< the paths of all traced scopes
    std::set<Logger**> loggersAskedFor; ///< the pointers that receive them
};

} // namespace kel

#endif
