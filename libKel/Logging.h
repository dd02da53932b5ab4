#ifndef LIBKEL_LOGGING_H
#define LIBKEL_LOGGING_H

#include <libKel/Export.h>
#include <libKel/String.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// @file
/// Logging: priorities, records, sinks and loggers.

namespace kel {

/// The importance of a record; lower numbers mean more detail. A record is written unless its
/// number is below the priority in force.
namespace LoggerPriority {
/// The priorities. Numbers between and beyond them are allowed.
enum LOGGER_PRIORITY : std::int32_t {
    PRIORITY_ALL = 0,     ///< everything
    PRIORITY_TRACE = 1,   ///< scopes entered and left
    PRIORITY_INFO = 2,    ///< the messages of renderings
    PRIORITY_WARNING = 3, ///< for hosts; the initial global priority
    PRIORITY_FAILURE = 4, ///< for hosts
    PRIORITY_SILENT = 5   ///< disables all records of the libraries
};
} // namespace LoggerPriority

/// One record on its way to a sink.
///
/// Ownership: borrows everything. All pointers and views are valid only during the call.
struct LogRecord {
    /// The kinds of records.
    enum class Kind {
        Message,      ///< a message
        ScopeEntered, ///< a traced scope is entered
        ScopeLeft     ///< a traced scope is left
    };

    Kind kind;                                ///< what is recorded
    LoggerPriority::LOGGER_PRIORITY priority; ///< its importance
    const char* category;                     ///< its source, such as `libStencilor`
    std::string_view text;                    ///< a message's text; a scope's function name
    const char* file;                         ///< a scope's source file; null for a message
    int line;                                 ///< a scope's line; 0 for a message
    unsigned int depth; ///< the number of traced scopes of this thread around the record
};

/// Receives the records. Several threads may call it at once.
using LogSink = std::function<void(const LogRecord&)>;

/// A message that is composed piece by piece: `LoggerStream() + "size: " + text`.
///
/// Ownership: copies what is appended.
/// Copying: not possible; pass it to `Logger::log` by reference.
/// Threads: belongs to one thread at a time.
class LoggerStream {
  public:
    /// An empty message.
    /// @{
    KEL_EXPORT LoggerStream();
    LoggerStream(const LoggerStream&) = delete;
    LoggerStream& operator=(const LoggerStream&) = delete;
    KEL_EXPORT ~LoggerStream();
    /// @}

    /// Appends the bytes up to the first NUL.
    KEL_EXPORT LoggerStream& operator+(const char* text);

    /// Appends a string, NUL bytes included.
    KEL_EXPORT LoggerStream& operator+(const String& text);

    /// Returns the message so far, valid until this stream is changed or destroyed.
    std::string_view view() const noexcept { return text_; }

  private:
    std::string text_;
};

/// Writes the records of one category.
///
/// Ownership: belongs to the library and exists until the process ends. Obtain one from
///   `LogFactory::createLogger`.
/// Threads: thread-safe, except that `threshold` may only be changed while no thread uses the
///   logger.
class Logger {
  public:
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    /// Called only by the library, which owns the loggers.
    KEL_EXPORT ~Logger();

    /// Returns the priority in force: the higher of this logger's threshold and the global one.
    KEL_EXPORT LoggerPriority::LOGGER_PRIORITY resolvePriority() const;

    /// Writes a message. Never throws.
    /// @return false if the priority is below the one in force, or if the sink failed
    KEL_EXPORT bool log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream& message);

    /// Returns the name of the category, in UTF-8, valid as long as the logger.
    const char* category() const noexcept { return category_.c_str(); }

    /// The priority of this logger, initially `PRIORITY_ALL`. Records below it are not written.
    std::int32_t threshold = LoggerPriority::PRIORITY_ALL;

  private:
    friend class LogFactory;
    friend class TraceLogger;
    explicit Logger(const char* category);
    bool write(const LogRecord& record) noexcept;

    std::string category_;
    Logger* older_ = nullptr;
};

/// Creates the loggers and holds their common settings.
///
/// Lifetime: loggers, sink and priority exist before the first static object is constructed and
///   until the process ends, so static objects and threads that outlive `main` can use them.
/// Threads: all functions may be called from any thread. A process created by `fork` can use the
///   library, whatever the threads of its parent were doing.
class LogFactory {
  public:
    LogFactory() = delete;

    /// Returns the priority for all loggers, initially `PRIORITY_WARNING`.
    static LoggerPriority::LOGGER_PRIORITY getPriority() noexcept {
        return static_cast<LoggerPriority::LOGGER_PRIORITY>(
            priority_.load(std::memory_order_relaxed));
    }

    /// Sets the priority for all loggers. Records below it are not written.
    KEL_EXPORT static void setPriority(LoggerPriority::LOGGER_PRIORITY priority) noexcept;

    /// Returns the logger of a category. There is one for each, created by the first call.
    /// @param category UTF-8, NUL-terminated; it is copied
    /// @param logger receives the pointer, borrowed. Several threads may pass the same pointer;
    ///   they must then read it atomically.
    KEL_EXPORT static void createLogger(const char* category, Logger*& logger);

    /// Sets the destination of the records.
    /// @param sink is called for each record. It may log and call the library itself; its
    ///   exceptions are dropped. It must stay usable until a later `setSink` has returned and all
    ///   calls of the sink have ended, or until the process ends. If it is empty, records go to the
    ///   standard error stream, which is also the default. Each is one line of UTF-8:
    ///   `2026-11-22T01:37:34.123Z libStencilor info: text`, with the time in UTC. Control
    ///   characters in it are written as `\n` or `\u001B`.
    KEL_EXPORT static void setSink(LogSink sink);

  private:
    static Logger* find(Logger* newest, std::string_view category) noexcept;

    KEL_EXPORT static std::atomic<std::int32_t> priority_;
    static std::atomic<Logger*> newest_;
};

/// Records that a scope is entered and, on destruction, that it is left.
///
/// Ownership: borrows the logger and the strings, which must outlive it. With a null logger, it
///   records nothing and costs one test.
/// Copying: not possible, because it represents one scope.
/// Threads: construct and destroy it in the thread whose scope it represents.
class TraceLogger {
  public:
    /// Records that a scope is entered.
    TraceLogger(Logger* logger, const char* function, const char* file, int line) noexcept
        : logger_(logger) {
        if (logger_ != nullptr) {
            enter(function, file, line);
        }
    }
    TraceLogger(const TraceLogger&) = delete;
    TraceLogger& operator=(const TraceLogger&) = delete;
    /// Records that the scope is left.
    ~TraceLogger() {
        if (logger_ != nullptr) {
            leave();
        }
    }

  private:
    KEL_EXPORT void enter(const char* function, const char* file, int line) noexcept;
    KEL_EXPORT void leave() noexcept;
    void record(LogRecord::Kind kind) const noexcept;

    Logger* logger_;
    const char* function_; // this and the rest: not set without a logger
    const char* file_;
    int line_;
};

} // namespace kel

#endif
