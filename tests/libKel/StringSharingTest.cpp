#include "../support/Memory.h"
#include "../support/Test.h"

#include <libKel/String.h>

namespace kel {
namespace {

// From 4,096 bytes on, a copy shares the bytes until one of the two strings changes.
constexpr std::array<std::size_t, 5> lengths = {4095, 4096, 4097, 8191, 100000};

std::string patternOf(std::size_t length) {
    std::string pattern(length, '\0');
    for (std::size_t at = 0; at < length; ++at) {
        pattern[at] = static_cast<char>('a' + at % 23);
    }
    return pattern;
}

/// A string with room after its content, so that it can be appended to in place.
String withRoom(const std::string& content) {
    String made(content.substr(0, content.size() - 1));
    made += String(content.substr(content.size() - 1));
    return made;
}

struct Change {
    const char* what;
    std::function<void(String&)> apply;
    std::function<std::string(const std::string&)> expected;
};

const std::array<Change, 13> changes = {{
    {"a byte is appended", [](String& string) { string += String("x"); },
     [](const std::string& before) { return before + "x"; }},
    {"a long text is appended", [](String& string) { string += String(std::string(9000, 'x')); },
     [](const std::string& before) { return before + std::string(9000, 'x'); }},
    {"the string is appended to itself", [](String& string) { string += string; },
     [](const std::string& before) { return before + before; }},
    {"its copy is appended",
     [](String& string) {
         const String copy(string);
         string += copy;
     },
     [](const std::string& before) { return before + before; }},
    {"a few bytes are decoded", [](String& string) { string.UTF8Decode("few", 3, false); },
     [](const std::string&) { return "few"; }},
    {"as many bytes are decoded",
     [](String& string) {
         const std::string bytes(string.size(), 'y');
         string.UTF8Decode(bytes.data(), string.size(), false);
     },
     [](const std::string& before) { return std::string(before.size(), 'y'); }},
    {"a part of its own bytes is decoded",
     [](String& string) { string.UTF8Decode(string.view().data() + 7, 4090 - 7, false); },
     [](const std::string& before) { return before.substr(7, 4090 - 7); }},
    {"a short string is assigned", [](String& string) { string = String("short"); },
     [](const std::string&) { return "short"; }},
    {"another long string is assigned",
     [](String& string) {
         const String other(std::string(5000, 'z'));
         string = other;
     },
     [](const std::string&) { return std::string(5000, 'z'); }},
    {"its copy is assigned",
     [](String& string) {
         const String copy(string);
         string = copy;
     },
     [](const std::string& before) { return before; }},
    {"it is assigned to itself",
     [](String& string) {
         const String& same = string;
         string = same;
     },
     [](const std::string& before) { return before; }},
    {"its content is moved out", [](String& string) { const String taken(std::move(string)); },
     [](const std::string&) { return ""; }},
    {"a part of it is assigned to it", [](String& string) { string = string.subString(1, 4095); },
     [](const std::string& before) { return before.substr(1, 4095); }},
}};

/// Checks the content, and what hosts rely on: the NUL after it, and the order.
void expectContent(const String& string, const std::string& content) {
    EXPECT_EQ(string.view(), content);
    EXPECT_EQ(string.view().data()[content.size()], '\0');
    EXPECT_FALSE(string < String(content) || String(content) < string);
}

void expectContent(const CString& bytes, const std::string& content) {
    EXPECT_EQ(std::string(bytes.c_str(), bytes.size()), content);
    EXPECT_EQ(bytes.c_str()[content.size()], '\0');
}

/// Calls `test` with each change and a string of each length, with and without room after its
/// content.
template <typename Test>
void forEachChange(Test test) {
    for (const Change& change : changes) {
        for (const std::size_t length : lengths) {
            SCOPED_TRACE(std::string(change.what) + ", of " + std::to_string(length));
            const std::string pattern = patternOf(length);
            test(change, String(pattern), pattern);
            test(change, withRoom(pattern), pattern);
        }
    }
}

TEST(StringSharing, LeavesACopyAsItIsWhenTheStringChanges) {
    forEachChange([](const Change& change, String string, const std::string& pattern) {
        const String copy(string);
        String assigned(std::string(6000, 'b'));
        assigned = copy;
        const CString bytes = string.getUTF8String();
        change.apply(string);
        assigned += String("more");
        expectContent(string, change.expected(pattern));
        expectContent(copy, pattern);
        expectContent(assigned, pattern + "more");
        expectContent(bytes, pattern);
    });
}

TEST(StringSharing, LeavesTheStringAsItIsWhenACopyChanges) {
    forEachChange([](const Change& change, const String& string, const std::string& pattern) {
        String copy(string);
        change.apply(copy);
        expectContent(copy, change.expected(pattern));
        expectContent(string, pattern);
    });
}

TEST(StringSharing, EndsWithTheLastHolder) {
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        const std::string pattern = patternOf(length);
        auto string = std::make_unique<String>(pattern);
        auto copy = std::make_unique<String>(*string);
        const CString lower = copy->getLowerByteString();
        string.reset();
        EXPECT_EQ(copy->view(), pattern);
        copy.reset();
        EXPECT_EQ(std::string(lower.c_str(), lower.size()), pattern);
    }
}

TEST(StringSharing, NeedsNoMemoryForTheBytes) {
    const String string(patternOf(100000));
    const String copy(string);
    EXPECT_EQ(string.view().data(), copy.view().data());
    EXPECT_EQ(string.getUTF8String().c_str(), string.view().data());
}

TEST(StringSharing, AllowsChangesInPlaceWithoutOtherHolders) {
    String string = withRoom(patternOf(5000));
    const char* const place = string.view().data();
    {
        const String copy(string);
        String assigned(std::string(6000, 'b'));
        assigned = string;
        assigned = copy;
        const CString bytes = string.getUTF8String();
    }
    string += String("x");
    EXPECT_EQ(string.view().data(), place);
}

// Keeps each state of a growing text, like the messages of several calls.
TEST(StringSharing, UsesMemoryInProportionToTheBytesAndReleasesIt) {
    const std::uint64_t before = support::memoryInUse();
    {
        String string(patternOf(5000));
        std::vector<String> kept;
        for (int turn = 0; turn < 40; ++turn) {
            kept.push_back(string);
            string += String("x");
        }
        EXPECT_LT(support::memoryInUse(), before + (std::uint64_t{4} << 20));
        expectContent(string, patternOf(5000) + std::string(40, 'x'));
    }
    EXPECT_LT(support::memoryInUse(), before + 4096);
}

TEST(StringSharing, DoesNotKeepALargeBlockForASmallPart) {
    String string(std::string(1000000, 'x'));
    string.UTF8Decode(patternOf(5000).c_str(), 5000, false);
    const String copy(string);
    EXPECT_NE(copy.view().data(), string.view().data());
    expectContent(copy, patternOf(5000));
}

// The string is destroyed before the threads begin. Any of them may be the last to hold the bytes,
// and the last one may change them in place.
TEST(StringSharing, IsPossibleAmongThreads) {
    const std::string pattern = patternOf(5000);
    for (int turn = 0; turn < 200; ++turn) {
        auto string = std::make_unique<String>(withRoom(pattern));
        std::vector<String> copies(4, *string);
        string.reset();
        std::vector<std::thread> threads;
        for (String& copy : copies) {
            threads.emplace_back([&copy, &pattern, own = std::to_string(threads.size())] {
                EXPECT_EQ(copy.view(), pattern);
                copy += String(own);
                EXPECT_EQ(copy.view(), pattern + own);
                copy = String();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

} // namespace
} // namespace kel
