#include "../support/Test.h"

#include <libKel/StandardError.h>

namespace kel {
namespace {

using namespace LoggerPriority;
using std::chrono::system_clock;

LogRecord message(std::string_view text) {
    return {.kind = LogRecord::Kind::Message,
            .priority = PRIORITY_INFO,
            .category = "test",
            .text = text,
            .file = nullptr,
            .line = 0,
            .depth = 0};
}

/// The line without its time.
std::string lineFor(const LogRecord& record) {
    const std::string line = lineOf(record, system_clock::now());
    return line.substr(line.find(' ') + 1);
}

TEST(LineOfARecord, BeginsWithTheTimeInUtc) {
    const struct {
        const char* name;
        std::int64_t milliseconds;
        const char* expected;
    } cases[] = {
        {"the beginning", 0, "1970-01-01T00:00:00.000Z test info: x\n"},
        {"a leap day", 1709251199007, "2024-02-29T23:59:59.007Z test info: x\n"},
        {"before the beginning", -1, "1969-12-31T23:59:59.999Z test info: x\n"},
    };
    for (const auto& [name, milliseconds, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(
            lineOf(message("x"), system_clock::time_point(std::chrono::milliseconds(milliseconds))),
            expected);
    }
}

TEST(LineOfARecord, NamesThePriority) {
    for (const auto& [priority, name] :
         {std::pair(0, "trace"), std::pair(1, "trace"), std::pair(2, "info"),
          std::pair(3, "warning"), std::pair(4, "failure"), std::pair(5, "failure"),
          std::pair(-7, "trace"), std::pair(99, "failure")}) {
        LogRecord record = message("x");
        record.priority = static_cast<LOGGER_PRIORITY>(priority);
        EXPECT_EQ(lineFor(record), std::string("test ") + name + ": x\n");
    }
}

TEST(LineOfARecord, DescribesAScope) {
    LogRecord record = message("work");
    record.kind = LogRecord::Kind::ScopeEntered;
    record.file = "a.cpp";
    record.line = 12;
    record.depth = 2;
    EXPECT_EQ(lineFor(record), "test info:     > work (a.cpp:12)\n");
    record.kind = LogRecord::Kind::ScopeLeft;
    EXPECT_EQ(lineFor(record), "test info:     < work (a.cpp:12)\n");
}

TEST(LineOfARecord, IsASingleLineOfValidUtf8WithoutControlCharacters) {
    const struct {
        const char* name;
        std::string_view text;
        std::string_view expected;
    } cases[] = {
        {"nothing", "", ""},
        {"text in any language", "Gr\u00FC\u00DFe \u65E5 \U0001F600 \u00A0",
         "Gr\u00FC\u00DFe \u65E5 \U0001F600 \u00A0"},
        {"a line break at the end", "a\n", "a"},
        {"two line breaks at the end", "a\n\n", "a\\n"},
        {"lines inside", "a\nb\r\nc", "a\\nb\\u000D\\nc"},
        {"a NUL byte", {"a\0b", 3}, "a\\u0000b"},
        {"an escape sequence", "\x1B[2J\x7F", "\\u001B[2J\\u007F"},
        {"controls past ASCII", "\u0080\u009B\u0085\u009F", "\\u0080\\u009B\\u0085\\u009F"},
        {"other line breaks", "\u2028\u2029", "\\u2028\\u2029"},
        {"changes of text direction", "\u202E\u2066\u2069", "\\u202E\\u2066\\u2069"},
        {"their neighbours", "\u2027\u202F\u2065\u206A", "\u2027\u202F\u2065\u206A"},
        {"malformed UTF-8", "a\xFF\xE2\x82z", "a\uFFFD\uFFFDz"},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(lineFor(message(text)), "test info: " + std::string(expected) + "\n");
    }
    LogRecord record = message("x");
    record.category = "a\nb";
    EXPECT_EQ(lineFor(record), "a\\nb info: x\n");
}

} // namespace
} // namespace kel
