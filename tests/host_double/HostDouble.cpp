#include "HostDouble.h"

#include <libKel/FileSystem.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kel {

namespace {

void note(std::string call) {
    HostDouble::instance().calls.push_back(std::move(call));
}

/// Characters past the low 8 bits would not be in the calls that are noted.
std::string narrow(const String& string) {
    const std::u16string_view text = HostDouble::textOf(string);
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char16_t character) { return static_cast<char>(character); });
    return bytes;
}

void appendUtf8(std::string& bytes, unsigned int character) {
    const auto append = [&bytes](unsigned int byte) { bytes += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

} // namespace

HostDouble& HostDouble::instance() {
    static HostDouble only;
    return only;
}

void HostDouble::reset() {
    globalPriority = 3;
    resolvedPriority = 0;
    files.clear();
    logger.threshold = 0;
    calls.clear();
}

std::vector<std::string> HostDouble::takeCalls() {
    return std::exchange(calls, {});
}

String HostDouble::wide(std::u16string_view text) {
    String string;
    string.text_ = text;
    return string;
}

std::u16string_view HostDouble::textOf(const String& string) {
    return string.text_;
}

String::String(const char* bytes) : String(bytes, static_cast<unsigned int>(std::strlen(bytes))) {}

String::String(const char* bytes, unsigned int length) {
    for (unsigned int at = 0; at < length; ++at) {
        text_ += static_cast<unsigned char>(bytes[at]);
    }
}

String& String::operator+=(const String& other) {
    text_ += other.text_;
    return *this;
}

bool String::operator==(const char* bytes) const {
    return text_ == String(bytes).text_;
}

String String::subString(unsigned int start, unsigned int count) const {
    return HostDouble::wide(std::u16string_view(text_).substr(start, count));
}

CString String::getLowerByteString() const {
    return CString(narrow(*this));
}

CString String::getUTF8String() const {
    std::string bytes;
    for (const char16_t character : text_) {
        appendUtf8(bytes, character);
    }
    return CString(bytes);
}

/// Takes well-formed sequences of up to three bytes, and each byte of anything else for U+FFFD.
void String::UTF8Decode(const char* bytes, unsigned int length, bool flag) {
    if (flag) {
        note("UTF8Decode with its flag set");
    }
    text_.clear();
    const auto trailing = [bytes, length](unsigned int at) {
        const int byte = at < length ? static_cast<unsigned char>(bytes[at]) : 0;
        return (byte & 0xC0) == 0x80 ? byte & 0x3F : -1;
    };
    for (unsigned int at = 0; at < length; ++at) {
        const int lead = static_cast<unsigned char>(bytes[at]);
        int character = 0xFFFD;
        if (lead < 0x80) {
            character = lead;
        } else if ((lead & 0xE0) == 0xC0 && trailing(at + 1) >= 0) {
            character = (lead & 0x1F) << 6 | trailing(at + 1);
            at += 1;
        } else if ((lead & 0xF0) == 0xE0 && trailing(at + 1) >= 0 && trailing(at + 2) >= 0) {
            character = (lead & 0x0F) << 12 | trailing(at + 1) << 6 | trailing(at + 2);
            at += 2;
        }
        text_ += static_cast<char16_t>(character);
    }
}

bool FileSystem::exists(const String& path) {
    note("exists " + narrow(path));
    return HostDouble::instance().files.contains(narrow(path));
}

bool FileSystem::loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length) {
    note("loadFile " + narrow(path) + (length == nullptr ? "" : " with a length"));
    const std::optional<std::string>& bytes = HostDouble::instance().files.at(narrow(path));
    if (!bytes) {
        return false;
    }
    if (!bytes->empty()) { // a null pointer stands for no bytes
        out.data = static_cast<unsigned char*>(::operator new(bytes->size()));
        std::memcpy(out.data, bytes->data(), bytes->size());
        out.size = bytes->size();
        out.capacity = bytes->size();
    }
    return true;
}

LoggerStream::LoggerStream() {
    note("stream");
}

LoggerStream::~LoggerStream() {
    note("~stream");
}

LoggerStream& LoggerStream::operator+(const char* text) {
    note("+ narrow " + std::string(text));
    return *this;
}

LoggerStream& LoggerStream::operator+(const String& text) {
    note("+ string " + narrow(text));
    return *this;
}

LoggerPriority::LOGGER_PRIORITY Logger::resolvePriority() const {
    note("resolvePriority");
    return static_cast<LoggerPriority::LOGGER_PRIORITY>(HostDouble::instance().resolvedPriority);
}

bool Logger::log(LoggerPriority::LOGGER_PRIORITY priority, const LoggerStream&) {
    note("log " + std::to_string(priority));
    return false;
}

LoggerPriority::LOGGER_PRIORITY LogFactory::getPriority() {
    note("getPriority");
    return static_cast<LoggerPriority::LOGGER_PRIORITY>(HostDouble::instance().globalPriority);
}

void LogFactory::createLogger(const char* category, Logger*& logger) {
    note("createLogger " + std::string(category) + (logger == nullptr ? "" : " once more"));
    logger = &HostDouble::instance().logger;
}

TraceLogger::TraceLogger(Logger* logger, const char* function, const char*, int line)
    : function_(function) {
    note("> " + std::string(function) + ":" + std::to_string(line) +
         (logger == nullptr ? " null" : ""));
}

TraceLogger::~TraceLogger() {
    note("< " + std::string(function_));
}

} // namespace kel
