#ifndef TESTS_SUPPORT_LOGRECORDER_H
#define TESTS_SUPPORT_LOGRECORDER_H

#include <libKel/Logging.h>

#include <mutex>
#include <string>
#include <vector>

namespace support {

/// Receives all log records while it lives, one line for each:
///
///     > buildOutput:408          a scope entered, indented by its depth
///     < buildOutput:408          the scope left
///     2 libStencilor: 437 ...    a message, with its priority and its category
///
/// At its end the priority is the one from before, and records go to the standard error stream.
class LogRecorder {
  public:
    explicit LogRecorder(kel::LoggerPriority::LOGGER_PRIORITY priority);
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;
    ~LogRecorder();

    std::vector<std::string> lines() const;

    /// The lines, and none are left.
    std::vector<std::string> takeLines();

    /// The messages alone, without priority and category.
    std::vector<std::string> messages() const;

    /// The source file that the last scope told.
    std::string lastFile() const;

  private:
    void record(const kel::LogRecord& record);

    kel::LoggerPriority::LOGGER_PRIORITY former_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    std::vector<std::string> messages_;
    std::string lastFile_;
};

/// The one logger of `category`.
kel::Logger& loggerOf(const char* category);

/// Sets a logger's own threshold for a while.
class Threshold {
  public:
    Threshold(kel::Logger& logger, std::int32_t threshold)
        : logger_(logger), former_(logger.threshold) {
        logger_.threshold = threshold;
    }
    Threshold(const Threshold&) = delete;
    Threshold& operator=(const Threshold&) = delete;
    ~Threshold() { logger_.threshold = former_; }

  private:
    kel::Logger& logger_;
    std::int32_t former_;
};

} // namespace support

#endif
