#ifndef TESTS_SUPPORT_LOGRECORDER_H
#define TESTS_SUPPORT_LOGRECORDER_H

#include <libKel/Logging.h>

#include <mutex>
#include <string>
#include <vector>

namespace support {

/// Receives all log records during its lifetime, as one line each:
///
///     > buildOutput:408          a scope entered, indented by its depth
///     < buildOutput:408          the scope left
///     2 libStencilor: 437 ...    a message, with its priority and its category
///
/// Its destructor restores the priority, and resets the sink to the standard error stream.
class LogRecorder {
  public:
    explicit LogRecorder(kel::LoggerPriority::LOGGER_PRIORITY priority);
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;
    ~LogRecorder();

    std::vector<std::string> lines() const;

    /// Returns and removes the lines.
    std::vector<std::string> takeLines();

    /// Only the messages, without priority and category.
    std::vector<std::string> messages() const;

    /// The source file of the last scope.
    std::string lastFile() const;

  private:
    void record(const kel::LogRecord& record);

    kel::LoggerPriority::LOGGER_PRIORITY former_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    std::vector<std::string> messages_;
    std::string lastFile_;
};

/// The logger of `category`.
kel::Logger& loggerOf(const char* category);

/// Sets a logger's own threshold during its lifetime.
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
