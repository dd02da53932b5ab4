#ifndef LIBKEL_LOGGING_H
#define LIBKEL_LOGGING_H

#include <libKel/Export.h>
#include <libKel/String.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kel {

/// How much a record matters: the lower the number, the more detail. A record is written where its
/// number is not below the priority that is in force.
namespace LoggerPriority {
enum LOGGER_PRIORITY : std::int32_t {
    PRIORITY_ALL = 0,
    PRIORITY_TRACE = 1, ///< scopes entered and left
    PRIORITY_INFO = 2,
    PRIORITY_WARNING = 3,
    PRIORITY_FAILURE = 4,
    PRIORITY_SILENT = 5
};
} // namespace LoggerPriority

/// One record on its way to a sink. All pointers and views are valid during the call only.
struct LogRecord {
    enum class Kind { Message, ScopeEntered, ScopeLeft };

    Kind kind;
    LoggerPriority::LOGGER_PRIORITY priority;
    const char* category;
    std::string_view text; ///< a message's text; a scope's function name
    const char* file;      ///< a scope's source file; null for a message
    int line;              ///< a scope's line; 0 for a message
    unsigned int depth;    ///< how many traced scopes of this thread are open around this record
};

/// Receives the records. It may be called by several threads at once.
using LogSink = std::function<void(const LogRecord&)>;

/// A message that is composed piece by piece: `LoggerStream() + "size: " + text`.
/// Copying: not possible, it is handed to `Logger::log` by reference.
class LoggerStream {
  public:
    KEL_EXPORT LoggerStream();
    LoggerStream(const LoggerStream&) = delete;
    LoggerStream& operator=(const LoggerStream&) = delete;
    KEL_EXPORT ~LoggerStream();

    KEL_EXPORT LoggerStream& operator+(const char* text);
    KEL_EXPORT LoggerStream& operator+(const String& text);

    std::string_view view() const noexcept { return text_; }

  private:
    std::string text_;
};

/// Writes the records of one category.
///
/// Ownership: belongs to the library and lives until the process ends. `LogFactory::createLogger`
///   hands it out.
/// Threads: may be used by many threads; `threshold` may be changed while none uses it.
class Logger {
  public:
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    KEL_EXPORT ~Logger();

    /// The priority in force: the higher of the logger's own threshold and the global priority.
    KEL_EXPORT LoggerPriority::LOGGER_PRIORITY resolvePriority() const;

    /// Writes `message`. Returns false where its priority is below the one in force, or where the
    /// sink failed. Never throws.
    KEL_EXPORT bool log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream& message);

    const char* category() const noexcept { return category_.c_str(); }

    /// This logger's own priority, `PRIORITY_ALL` at first: records below it are not written.
    std::int32_t threshold = LoggerPriority::PRIORITY_ALL;

  private:
    friend class LogFactory;
    friend class TraceLogger;
    explicit Logger(const char* category);
    bool write(const LogRecord& record) noexcept;

    std::string category_;
};

/// Hands out the loggers and holds what they have in common.
///
/// Threads: all functions may be called from any thread.
class LogFactory {
  public:
    LogFactory() = delete;

    /// The global priority, `PRIORITY_WARNING` at first.
    static LoggerPriority::LOGGER_PRIORITY getPriority() noexcept {
        return static_cast<LoggerPriority::LOGGER_PRIORITY>(
            priority_.load(std::memory_order_relaxed));
    }
    KEL_EXPORT static void setPriority(LoggerPriority::LOGGER_PRIORITY priority) noexcept;

    /// Stores the logger of `category` (UTF-8, NUL-terminated) in `logger`; there is one for each
    /// category, made by the first call. Several threads may call it for the same pointer, which
    /// must then be read as an atomic (`std::atomic_ref`).
    KEL_EXPORT static void createLogger(const char* category, Logger*& logger);

    /// From now on records go to `sink`; an empty one stands for the standard error stream, where
    /// they go at first. A sink may throw nothing: what it throws is dropped. It must stay usable
    /// until a later `setSink` has returned and the calls that were under way have ended.
    KEL_EXPORT static void setSink(LogSink sink);

  private:
    KEL_EXPORT static std::atomic<std::int32_t> priority_;
};

/// Records that a scope is entered, and when it is destroyed that it is left.
///
/// Ownership: borrows the logger and the texts, which must outlive it. A null logger records
///   nothing, and costs nothing but the test for it.
/// Copying: not possible, it stands for one scope.
class TraceLogger {
  public:
    TraceLogger(Logger* logger, const char* function, const char* file, int line) noexcept
        : logger_(logger), function_(function), file_(file), line_(line) {
        if (logger_ != nullptr) {
            enter();
        }
    }
    TraceLogger(const TraceLogger&) = delete;
    TraceLogger& operator=(const TraceLogger&) = delete;
    ~TraceLogger() {
        if (logger_ != nullptr) {
            leave();
        }
    }

  private:
    KEL_EXPORT void enter() noexcept;
    KEL_EXPORT void leave() noexcept;
    void record(LogRecord::Kind kind) const noexcept;

    Logger* logger_;
    const char* function_;
    const char* file_;
    int line_;
};

} // namespace kel

#endif
