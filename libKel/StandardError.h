#ifndef LIBKEL_STANDARDERROR_H
#define LIBKEL_STANDARDERROR_H

#include <libKel/Logging.h>

#include <chrono>
#include <string>
#include <string_view>

// The default destination of records. Not installed.

namespace kel {

/// Formats a record as a line, including the line break. It is valid UTF-8 without control
/// characters, so that no text in a record can end the line, imitate another record, or control a
/// terminal.
std::string lineOf(const LogRecord& record, std::chrono::system_clock::time_point time);

/// Writes a whole line, if possible in one system call. Returns false on failure.
bool writeToStandardError(std::string_view line);

} // namespace kel

#endif
