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

/// What the tests tell the double to do, and what it was asked for. There is one, and each test
/// begins with a `reset`.
struct HostDouble {
    static HostDouble& instance();

    /// Everything is new but the loggers that were made: who asked for one keeps it.
    void reset();

    /// Those who asked for a logger have none again, as if the process had just begun.
    void takeLoggersBack();

    static String wide(std::u32string_view text);
    static std::u32string_view textOf(const String& string);

    /// How it answers.
    std::int32_t globalPriority = 3;
    std::int32_t resolvedPriority = 0;
    std::map<std::string, std::optional<std::string>> files; ///< nothing: cannot be loaded
    Logger logger;

    /// The calls in the order they came, with their arguments.
    std::vector<std::string> calls;
    std::vector<std::string> takeCalls();
    bool notesText = false; ///< whether conversions and appends of text are among them

    /// After so many calls from now on one throws `std::bad_alloc`; nothing: none does. What
    /// objects do when they are destroyed is not counted.
    std::optional<std::uint64_t> callsUntilFailure;

    std::set<std::string> sourcePaths;  ///< all that scopes were traced with
    std::set<Logger**> loggersAskedFor; ///< where they were to be stored
};

} // namespace kel

#endif
