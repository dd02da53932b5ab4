#include <libKel/Logging.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace kel {

namespace {

/// What all loggers have in common. It is never destroyed, since a host may log while its static
/// objects go.
struct Registry {
    std::mutex mutex;
    std::map<std::string, std::unique_ptr<Logger>, std::less<>> loggers;
    std::shared_ptr<const LogSink> sink;
    spdlog::sink_ptr standardError = std::make_shared<spdlog::sinks::stderr_sink_mt>();
};

Registry& registry() {
    static auto* const instance = new Registry;
    return *instance;
}

thread_local unsigned int traceDepth = 0;

spdlog::level::level_enum levelOf(LoggerPriority::LOGGER_PRIORITY priority) {
    switch (priority) {
    case LoggerPriority::PRIORITY_ALL:
        return spdlog::level::trace;
    case LoggerPriority::PRIORITY_TRACE:
        return spdlog::level::debug;
    case LoggerPriority::PRIORITY_INFO:
        return spdlog::level::info;
    case LoggerPriority::PRIORITY_WARNING:
        return spdlog::level::warn;
    default:
        return spdlog::level::err;
    }
}

std::string lineOf(const LogRecord& record) {
    std::string line(std::size_t{record.depth} * 2, ' ');
    switch (record.kind) {
    case LogRecord::Kind::Message:
        return std::string(record.text);
    case LogRecord::Kind::ScopeEntered:
        line += "> ";
        break;
    case LogRecord::Kind::ScopeLeft:
        line += "< ";
        break;
    }
    line += record.text;
    return line + " (" + record.file + ":" + std::to_string(record.line) + ")";
}

void writeToStandardError(const LogRecord& record, const spdlog::sink_ptr& standardError) {
    spdlog::logger logger(record.category, standardError);
    logger.set_level(spdlog::level::trace);
    logger.log(levelOf(record.priority), lineOf(record));
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
        Registry& shared = registry();
        std::unique_lock lock(shared.mutex);
        const std::shared_ptr<const LogSink> sink = shared.sink;
        lock.unlock();
        if (sink != nullptr) {
            (*sink)(record);
        } else {
            writeToStandardError(record, shared.standardError);
        }
        return true;
    } catch (...) { // whatever the sink threw: logging changes nothing of what is logged about
        return false;
    }
}

constinit std::atomic<std::int32_t> LogFactory::priority_ = LoggerPriority::PRIORITY_WARNING;

void LogFactory::setPriority(LoggerPriority::LOGGER_PRIORITY priority) noexcept {
    priority_.store(priority, std::memory_order_relaxed);
}

void LogFactory::createLogger(const char* category, Logger*& logger) {
    Registry& shared = registry();
    const std::lock_guard lock(shared.mutex);
    auto found = shared.loggers.find(category);
    if (found == shared.loggers.end()) {
        std::unique_ptr<Logger> created(new Logger(category));
        found = shared.loggers.emplace(category, std::move(created)).first;
    }
    std::atomic_ref(logger).store(found->second.get(), std::memory_order_release);
}

void LogFactory::setSink(LogSink sink) {
    std::shared_ptr<const LogSink> shared =
        sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
    const std::lock_guard lock(registry().mutex);
    registry().sink.swap(shared);
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
