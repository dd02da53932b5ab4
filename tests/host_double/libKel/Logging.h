#ifndef TESTS_HOST_DOUBLE_LIBKEL_LOGGING_H
#define TESTS_HOST_DOUBLE_LIBKEL_LOGGING_H

#include <libKel/String.h>

#include <cstdint>

namespace kel {

namespace LoggerPriority {
enum LOGGER_PRIORITY : std::int32_t { LOWEST = -1 };
} // namespace LoggerPriority

class LoggerStream {
  public:
    LoggerStream();
    LoggerStream(const LoggerStream&) = delete;
    LoggerStream& operator=(const LoggerStream&) = delete;
    ~LoggerStream();

    LoggerStream& operator+(const char* text);
    LoggerStream& operator+(const String& text);
};

class Logger {
  public:
    LoggerPriority::LOGGER_PRIORITY resolvePriority() const;
    bool log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream& message);

    std::int32_t threshold = 0;
};

class LogFactory {
  public:
    static LoggerPriority::LOGGER_PRIORITY getPriority();
    static void createLogger(const char* category, Logger*& logger);
};

class TraceLogger {
  public:
    TraceLogger(Logger* logger, const char* function, const char* file, int line);
    TraceLogger(const TraceLogger&) = delete;
    TraceLogger& operator=(const TraceLogger&) = delete;
    ~TraceLogger();

  private:
    const char* function_;
};

} // namespace kel

#endif
