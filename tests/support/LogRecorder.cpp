#include "LogRecorder.h"

#include <utility>

namespace support {

namespace {

std::string lineOf(const kel::LogRecord& record) {
    std::string line(std::size_t{record.depth} * 2, ' ');
    switch (record.kind) {
    case kel::LogRecord::Kind::Message:
        line += std::to_string(record.priority) + " " + record.category + ": ";
        return line.append(record.text);
    case kel::LogRecord::Kind::ScopeEntered:
        line += "> ";
        break;
    case kel::LogRecord::Kind::ScopeLeft:
        line += "< ";
        break;
    }
    return line.append(record.text) + ":" + std::to_string(record.line);
}

} // namespace

LogRecorder::LogRecorder(kel::LoggerPriority::LOGGER_PRIORITY priority)
    : former_(kel::LogFactory::getPriority()) {
    kel::LogFactory::setSink([this](const kel::LogRecord& record) { this->record(record); });
    kel::LogFactory::setPriority(priority);
}

LogRecorder::~LogRecorder() {
    kel::LogFactory::setPriority(former_);
    kel::LogFactory::setSink({});
}

void LogRecorder::record(const kel::LogRecord& record) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(lineOf(record));
    if (record.kind == kel::LogRecord::Kind::Message) {
        messages_.emplace_back(record.text);
    } else {
        lastFile_ = record.file;
    }
}

std::vector<std::string> LogRecorder::lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

std::vector<std::string> LogRecorder::takeLines() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
}

std::vector<std::string> LogRecorder::messages() const {
    const std::lock_guard lock(mutex_);
    return messages_;
}

std::string LogRecorder::lastFile() const {
    const std::lock_guard lock(mutex_);
    return lastFile_;
}

kel::Logger& loggerOf(const char* category) {
    kel::Logger* logger = nullptr;
    kel::LogFactory::createLogger(category, logger);
    return *logger;
}

} // namespace support
