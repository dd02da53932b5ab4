#include <libKel/StandardError.h>
#include <libKel/Utf8.h>

#include <cstdio>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>

#include <cerrno>
#endif

namespace kel {

namespace {

const char* nameOf(LoggerPriority::LOGGER_PRIORITY priority) noexcept {
    if (priority <= LoggerPriority::PRIORITY_TRACE) {
        return "trace";
    }
    switch (priority) {
    case LoggerPriority::PRIORITY_INFO:
        return "info";
    case LoggerPriority::PRIORITY_WARNING:
        return "warning";
    default:
        return "failure";
    }
}

/// Formats a time as `2026-11-22T01:37:34.123Z`.
std::string textOf(std::chrono::system_clock::time_point time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::milliseconds>(time - day));
    char text[64];
    std::snprintf(
        text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text;
}

/// True for characters that end lines, control a terminal, or change the text direction.
bool isControl(char32_t character) noexcept {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

/// Appends valid UTF-8, with control characters as `\n` or `\u001B`.
void appendEscaped(std::string& line, std::string_view text) {
    while (!text.empty()) {
        const Utf8Character next = firstCharacter(text);
        if (!isControl(next.character)) {
            line += text.substr(0, next.length);
        } else if (next.character == '\n') {
            line += "\\n";
        } else {
            char escaped[16];
            std::snprintf(escaped, sizeof(escaped), "\\u%04X",
                          static_cast<unsigned>(next.character));
            line += escaped;
        }
        text.remove_prefix(next.length);
    }
}

/// The text of a record, without the final line break of the engine's messages.
std::string describe(const LogRecord& record) {
    if (record.kind == LogRecord::Kind::Message) {
        const bool ends = record.text.ends_with('\n');
        return std::string(record.text.substr(0, record.text.size() - (ends ? 1 : 0)));
    }
    std::string text(std::size_t{record.depth} * 2, ' ');
    text += record.kind == LogRecord::Kind::ScopeEntered ? "> " : "< ";
    text += record.text;
    return text + " (" + record.file + ":" + std::to_string(record.line) + ")";
}

} // namespace

std::string lineOf(const LogRecord& record, std::chrono::system_clock::time_point time) {
    const std::string text =
        std::string(record.category) + " " + nameOf(record.priority) + ": " + describe(record);
    std::string line = textOf(time) + " ";
    appendEscaped(line, repairedUtf8(text, validUtf8Prefix(text)));
    return line + "\n";
}

#ifdef _WIN32

namespace {

/// The most that one call writes; older consoles accept only 64 KiB.
constexpr std::size_t step = 8192;

/// Writes wide characters to a console, which would interpret bytes in its code page.
bool writeToConsole(HANDLE console, std::string_view line) {
    const std::wstring wide = String(line).toWide();
    for (std::wstring_view rest = wide; !rest.empty();) {
        const std::wstring_view piece = rest.substr(0, step);
        DWORD count = 0;
        if (::WriteConsoleW(console, piece.data(), static_cast<DWORD>(piece.size()), &count,
                            nullptr) == 0) {
            return false;
        }
        rest.remove_prefix(count);
    }
    return true;
}

} // namespace

bool writeToStandardError(std::string_view line) {
    const HANDLE stream = ::GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (::GetConsoleMode(stream, &mode) != 0) {
        return writeToConsole(stream, line);
    }
    while (!line.empty()) {
        const std::string_view piece = line.substr(0, 1u << 30);
        DWORD count = 0;
        if (::WriteFile(stream, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) ==
            0) {
            return false;
        }
        line.remove_prefix(count);
    }
    return true;
}

#else

bool writeToStandardError(std::string_view line) {
    while (!line.empty()) {
        const ssize_t count = ::write(STDERR_FILENO, line.data(), line.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        line.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return true;
}

#endif

} // namespace kel
