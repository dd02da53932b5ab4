#include "HostDouble.h"

#include <libKel/FileSystem.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace kel {

namespace {

void noteEnd(std::string call) {
    HostDouble::instance().calls.push_back(std::move(call));
}

void note(std::string call) {
    std::optional<std::uint64_t>& left = HostDouble::instance().callsUntilFailure;
    if (left && (*left)-- == 0) {
        left.reset();
        throw std::bad_alloc();
    }
    HostDouble::instance().calls.push_back(std::move(call));
}

void noteText(const char* call, std::size_t length) {
    if (HostDouble::instance().notesText) {
        note(call + std::to_string(length));
    }
}

/// Characters over 8 bits would be missing in the recorded calls.
std::string narrow(const String& string) {
    const std::u32string_view text = HostDouble::textOf(string);
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char32_t character) { return static_cast<char>(character); });
    return bytes;
}

void appendUtf8(std::string& bytes, unsigned int character) {
    const auto append = [&bytes](unsigned int byte) { bytes += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | (character >> 18));
        append(0x80 | ((character >> 12) & 0x3F));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

/// The first character of `bytes` and its length; U+FFFD and 1 if it is incomplete. Overlong
/// sequences are accepted.
struct Sequence {
    explicit Sequence(std::string_view bytes) {
        const unsigned int lead = static_cast<unsigned char>(bytes[0]);
        if (lead < 0x80) {
            character = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            take(bytes, 2, lead & 0x1F);
        } else if ((lead & 0xF0) == 0xE0) {
            take(bytes, 3, lead & 0x0F);
        } else if ((lead & 0xF8) == 0xF0) {
            take(bytes, 4, lead & 0x07);
        }
    }

    unsigned int character = 0xFFFD;
    unsigned int length = 1;

  private:
    void take(std::string_view bytes, unsigned int needed, unsigned int bits) {
        for (unsigned int at = 1; at < needed; ++at) {
            const unsigned int byte = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
            if ((byte & 0xC0) != 0x80) {
                return;
            }
            bits = bits << 6 | (byte & 0x3F);
        }
        character = bits;
        length = needed;
    }
};

std::u32string widened(const char* bytes, std::size_t length) {
    std::u32string text;
    for (std::size_t at = 0; at < length; ++at) {
        text += static_cast<unsigned char>(bytes[at]);
    }
    return text;
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
    notesText = false;
    callsUntilFailure.reset();
    sourcePaths.clear();
}

void HostDouble::takeLoggersBack() {
    for (Logger** const asked : loggersAskedFor) {
        *asked = nullptr;
    }
}

std::vector<std::string> HostDouble::takeCalls() {
    return std::exchange(calls, {});
}

String HostDouble::wide(std::u32string_view text) {
    String string;
    string.text_ = text;
    return string;
}

std::u32string_view HostDouble::textOf(const String& string) {
    return string.text_;
}

String::String(const char* bytes) : text_(widened(bytes, std::strlen(bytes))) {}

String::String(const char* bytes, unsigned int length) : text_(widened(bytes, length)) {
    noteText("String of ", length);
}

String& String::operator+=(const String& other) {
    noteText("+= of ", other.text_.size());
    text_ += other.text_;
    return *this;
}

bool String::operator==(const char* bytes) const {
    return text_ == widened(bytes, std::strlen(bytes));
}

String String::subString(unsigned int start, unsigned int count) const {
    return HostDouble::wide(std::u32string_view(text_).substr(start, count));
}

CString String::getLowerByteString() const {
    noteText("getLowerByteString of ", text_.size());
    return CString(narrow(*this));
}

CString String::getUTF8String() const {
    noteText("getUTF8String of ", text_.size());
    std::string bytes;
    for (const char32_t character : text_) {
        appendUtf8(bytes, character);
    }
    return CString(bytes);
}

void String::UTF8Decode(const char* bytes, unsigned int length, bool flag) {
    noteText(flag ? "UTF8Decode with its flag set, of " : "UTF8Decode of ", length);
    text_.clear();
    for (std::string_view left(bytes, length); !left.empty();) {
        const Sequence sequence(left);
        text_ += static_cast<char32_t>(sequence.character);
        left.remove_prefix(sequence.length);
    }
}

bool FileSystem::exists(const String& path) {
    note("exists " + narrow(path));
    return HostDouble::instance().files.contains(narrow(path));
}

bool FileSystem::loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length) {
    const bool filled = out.data != nullptr || out.size != 0 || out.capacity != 0;
    note("loadFile " + narrow(path) + (length == nullptr ? "" : " with a length") +
         (filled ? " into a filled buffer" : ""));
    const std::optional<std::string>& bytes = HostDouble::instance().files.at(narrow(path));
    if (!bytes) {
        return false;
    }
    if (!bytes->empty()) { // a null pointer means no bytes
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
    noteEnd("~stream");
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
    HostDouble::instance().loggersAskedFor.insert(&logger);
}

TraceLogger::TraceLogger(Logger* logger, const char* function, const char* file, int line)
    : function_(function) {
    HostDouble::instance().sourcePaths.insert(file);
    note("> " + std::string(function) + ":" + std::to_string(line) +
         (logger == nullptr ? " null" : ""));
}

TraceLogger::~TraceLogger() {
    noteEnd("< " + std::string(function_));
}

} // namespace kel
