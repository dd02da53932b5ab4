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

/// How much a record matters: the lower the number, the more detail. A record is written where its
/// number is not below the priority that is in force.
namespace LoggerPriority {
/// The priorities. Numbers between and beyond them are allowed.
enum LOGGER_PRIORITY : std::int32_t {
    PRIORITY_ALL = 0,     ///< everything
    PRIORITY_TRACE = 1,   ///< scopes entered and left
    PRIORITY_INFO = 2,    ///< the messages of renderings
    PRIORITY_WARNING = 3, ///< for hosts; the global priority at first
    PRIORITY_FAILURE = 4, ///< for hosts
    PRIORITY_SILENT = 5   ///< nothing that the libraries write
};
} // namespace LoggerPriority

/// One record on its way to a sink.
///
/// Ownership: borrows everything. All pointers and views are valid during the call only.
struct LogRecord {
    /// What is recorded.
    enum class Kind {
        Message,      ///< a text
        ScopeEntered, ///< a traced scope begins
        ScopeLeft     ///< a traced scope ends
    };

    Kind kind;                                ///< what is recorded
    LoggerPriority::LOGGER_PRIORITY priority; ///< how much it matters
    const char* category;                     ///< whose record it is, such as `libStencilor`
    std::string_view text;                    ///< a message's text; a scope's function name
    const char* file;                         ///< a scope's source file; null for a message
    int line;                                 ///< a scope's line; 0 for a message
    unsigned int depth; ///< how many traced scopes of this thread are open around this record
};

/// Receives the records. It may be called by several threads at once.
using LogSink = std::function<void(const LogRecord&)>;

/// A message that is composed piece by piece: `LoggerStream() + "size: " + text`.
///
/// Ownership: holds a copy of what is appended.
/// Copying: not possible, it is handed to `Logger::log` by reference.
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

    /// Appends a text, NUL bytes included.
    KEL_EXPORT LoggerStream& operator+(const String& text);

    /// Returns the message as it is now, valid until this stream is changed or destroyed.
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
    /// For the library, which owns the loggers.
    KEL_EXPORT ~Logger();

    /// Returns the priority in force: the higher of this logger's threshold and the global one.
    KEL_EXPORT LoggerPriority::LOGGER_PRIORITY resolvePriority() const;

    /// Writes a message. Never throws.
    /// @return false where the priority is below the one in force, or where the sink failed
    KEL_EXPORT bool log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream& message);

    /// Returns the name of the category, in UTF-8, valid as long as the logger.
    const char* category() const noexcept { return category_.c_str(); }

    /// This logger's own priority, `PRIORITY_ALL` at first: records below it are not written.
    std::int32_t threshold = LoggerPriority::PRIORITY_ALL;

  private:
    friend class LogFactory;
    friend class TraceLogger;
    explicit Logger(const char* category);
    bool write(const LogRecord& record) noexcept;

    std::string category_;
    Logger* older_ = nullptr;
};

/// Hands out the loggers and holds what they have in common.
///
/// Lifetime: loggers, sink and priority are there from before the first static object is made until
///   the process ends, for static objects and for threads that outlast `main`.
/// Threads: all functions may be called from any thread. A process made by `fork` can use the
///   library in any state that the threads of its parent left it in.
class LogFactory {
  public:
    LogFactory() = delete;

    /// Returns the priority that holds for all loggers, `PRIORITY_WARNING` at first.
    static LoggerPriority::LOGGER_PRIORITY getPriority() noexcept {
        return static_cast<LoggerPriority::LOGGER_PRIORITY>(
            priority_.load(std::memory_order_relaxed));
    }

    /// Sets the priority that holds for all loggers: records below it are not written.
    KEL_EXPORT static void setPriority(LoggerPriority::LOGGER_PRIORITY priority) noexcept;

    /// Hands out the logger of a category. There is one for each, made by the first call.
    /// @param category UTF-8, NUL-terminated; it is copied
    /// @param logger receives the pointer, borrowed. Several threads may call for the same pointer,
    ///   which must then be read as an atomic.
    KEL_EXPORT static void createLogger(const char* category, Logger*& logger);

    /// Sets where records go.
    /// @param sink is called for each record, and may itself log and call the library; what it
    ///   throws is dropped. It must stay usable until a later `setSink` has returned and the calls
    ///   that were under way have ended, or else until the process ends. An empty one stands for
    ///   the standard error stream, where records go at first, each as one line of UTF-8:
    ///   `2026-11-22T01:37:34.123Z libStencilor info: text`, with the time in UTC. Control
    ///   characters within are written as `\n` or `\u001B`.
    KEL_EXPORT static void setSink(LogSink sink);

  private:
    static Logger* find(Logger* newest, std::string_view category) noexcept;

    KEL_EXPORT static std::atomic<std::int32_t> priority_;
    static std::atomic<Logger*> newest_;
};

/// Records that a scope is entered, and when it is destroyed that it is left.
///
/// Ownership: borrows the logger and the texts, which must outlive it. A null logger records
///   nothing, and costs nothing but the test for it.
/// Copying: not possible, it stands for one scope.
/// Threads: is made and destroyed by the thread whose scope it stands for.
class TraceLogger {
  public:
    /// Records that a scope is entered, which is at a line of a file.
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
