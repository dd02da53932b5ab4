#ifndef LIBKEL_STANDARDERROR_H
#define LIBKEL_STANDARDERROR_H

#include <libKel/Logging.h>

#include <chrono>
#include <string>
#include <string_view>

// Where records go without a sink. Not installed.

namespace kel {

/// The line for a record, with its line end: valid UTF-8 without control characters, so that no
/// text in a record can end its line, look like another record, or reach a terminal as a command.
std::string lineOf(const LogRecord& record, std::chrono::system_clock::time_point time);

/// Writes a whole line in one call of the system, if that takes it. False where it fails.
bool writeToStandardError(std::string_view line);

} // namespace kel

#endif
