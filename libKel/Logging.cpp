#include <libKel/Logging.h>
#include <libKel/ProcessState.h>
#include <libKel/StandardError.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace kel {

namespace {

constinit Immortal<std::shared_ptr<const LogSink>> sharedSink;

thread_local unsigned int traceDepth = 0;

std::shared_ptr<const LogSink> currentSink() {
    const ProcessLock lock;
    return sharedSink.value;
}

/// Stores a pointer that other threads may concurrently store and read.
void publish(Logger*& to, Logger* logger) noexcept {
#ifdef __cpp_lib_atomic_ref
    std::atomic_ref(to).store(logger, std::memory_order_release);
#else // libc++ before 19
    __atomic_store_n(&to, logger, __ATOMIC_RELEASE);
#endif
}

} // namespace

LoggerStream::LoggerStream() = default;
LoggerStream::~LoggerStream() = default;

LoggerStream& LoggerStream::operator+(const char* text) {
    text_ += text;
    return *this;
}

LoggerStream& LoggerStream::operator+(const String& text) {
    text_ += text.view();
    return *this;
}

Logger::Logger(const char* category) : category_(category) {}
Logger::~Logger() = default;

LoggerPriority::LOGGER_PRIORITY Logger::resolvePriority() const {
    const std::int32_t global = LogFactory::getPriority();
    return static_cast<LoggerPriority::LOGGER_PRIORITY>(std::max(threshold, global));
}

bool Logger::log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream& message) {
    if (priority < resolvePriority()) {
        return false;
    }
    return write({.kind = LogRecord::Kind::Message,
                  .priority = priority,
                  .category = category(),
                  .text = message.view(),
                  .file = nullptr,
                  .line = 0,
                  .depth = traceDepth});
}

bool Logger::write(const LogRecord& record) noexcept {
    try {
        const std::shared_ptr<const LogSink> sink = currentSink();
        if (sink == nullptr) {
            return writeToStandardError(lineOf(record, std::chrono::system_clock::now()));
        }
        (*sink)(record);
        return true;
    } catch (...) { // logging must not affect what is logged, whatever the sink throws
        return false;
    }
}

constinit std::atomic<std::int32_t> LogFactory::priority_ = LoggerPriority::PRIORITY_WARNING;

void LogFactory::setPriority(LoggerPriority::LOGGER_PRIORITY priority) noexcept {
    priority_.store(priority, std::memory_order_relaxed);
}

// Loggers are added to the front of a lock-free list, and never removed.
constinit std::atomic<Logger*> LogFactory::newest_ = nullptr;

/// The logger of a category among `newest` and older ones, or null.
Logger* LogFactory::find(Logger* newest, std::string_view category) noexcept {
    while (newest != nullptr && newest->category_ != category) {
        newest = newest->older_;
    }
    return newest;
}

void LogFactory::createLogger(const char* category, Logger*& logger) {
    std::unique_ptr<Logger> created;
    Logger* newest = newest_.load(std::memory_order_acquire);
    Logger* found = find(newest, category);
    while (found == nullptr) {
        if (created == nullptr) {
            created.reset(new Logger(category));
        }
        created->older_ = newest;
        if (newest_.compare_exchange_weak(newest, created.get(), std::memory_order_acq_rel)) {
            found = created.release();
        } else { // another thread was faster, maybe with this category
            found = find(newest, category);
        }
    }
    publish(logger, found);
}

void LogFactory::setSink(LogSink sink) {
    std::shared_ptr<const LogSink> exchanged =
        sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
    // The lock is released first, because destroying the previous sink runs code of the host.
    const ProcessLock lock;
    sharedSink.value.swap(exchanged);
}

void TraceLogger::enter(const char* function, const char* file, int line) noexcept {
    function_ = function;
    file_ = file;
    line_ = line;
    record(LogRecord::Kind::ScopeEntered);
    ++traceDepth;
}

void TraceLogger::leave() noexcept {
    --traceDepth;
    record(LogRecord::Kind::ScopeLeft);
}

void TraceLogger::record(LogRecord::Kind kind) const noexcept {
    logger_->write({.kind = kind,
                    .priority = LoggerPriority::PRIORITY_TRACE,
                    .category = logger_->category(),
                    .text = function_,
                    .file = file_,
                    .line = line_,
                    .depth = traceDepth});
}

} // namespace kel
