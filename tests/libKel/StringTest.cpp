#include "../support/Test.h"

#include <libKel/String.h>

#include <unordered_set>

namespace kel {
namespace {

// Why these lengths matter: 8 bytes are compared at once, 15 are stored in the string itself, 111
// are read without a block, and appending allocates a block of at least 255.
constexpr std::array<std::size_t, 16> lengths = {0,  1,  6,  7,   8,   9,   14,  15,
                                                 16, 30, 31, 110, 111, 112, 255, 1000};

std::string patternOf(std::size_t length, char first = 'a') {
    std::string pattern(length, '\0');
    for (std::size_t at = 0; at < length; ++at) {
        pattern[at] = static_cast<char>(first + static_cast<char>(at % 23));
    }
    return pattern;
}

TEST(StringConstruction, KeepsTheBytes) {
    const struct {
        const char* name;
        String made;
        std::string expected;
    } cases[] = {
        {"default", String(), ""},
        {"null pointer", String(static_cast<const char*>(nullptr)), ""},
        {"null pointer and zero length", String(nullptr, 0), ""},
        {"empty narrow text", String(""), ""},
        {"narrow text", String("plain"), "plain"},
        {"narrow text up to its first NUL", String("up to\0here"), "up to"},
        {"bytes with a length, NUL bytes included", String("a\0b\0", 4), std::string("a\0b\0", 4)},
        {"bytes with a length shorter than the text", String("shorter", 5), "short"},
        {"bytes over 127, unchanged", String("\xC3\xA9\xFF\x80"), "\xC3\xA9\xFF\x80"},
        {"a view", String(std::string_view("v\0w", 3)), std::string("v\0w", 3)},
        {"an empty view", String(std::string_view()), ""},
        {"a standard string", String(std::string("s\0t", 3)), std::string("s\0t", 3)},
    };
    for (const auto& [name, made, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(made.view(), expected);
        EXPECT_EQ(made.str(), expected);
        EXPECT_EQ(made.size(), expected.size());
        EXPECT_EQ(made.empty(), expected.empty());
    }
}

TEST(StringConstruction, RejectsTooLongTextsWithoutReadingThem) {
    const std::string_view tooLong("never looked at", std::size_t{1} << 32);
    try {
        const String string(tooLong);
        FAIL() << "made a string of " << string.size() << " bytes";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "kel::String: longer than 4 GiB - 1 byte");
    }
}

TEST(StringCopying, MakesAnIndependentEqualString) {
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        const std::string pattern = patternOf(length);
        String source(pattern);
        const String copy(source);
        source += "changed";
        EXPECT_EQ(copy.view(), pattern);
        EXPECT_EQ(source.view(), pattern + "changed");
    }
}

TEST(StringMoving, MovesTheContentAndLeavesAUsableEmptyString) {
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        const std::string pattern = patternOf(length);
        String source(pattern);
        const String target(std::move(source));
        EXPECT_EQ(target.view(), pattern);
        EXPECT_EQ(source.size(), 0u);
        EXPECT_EQ(source, "");
        EXPECT_FALSE(source < String());
        source += String("used again");
        EXPECT_EQ(source.view(), "used again");
        EXPECT_EQ(target.view(), pattern);
    }
}

TEST(StringAssignment, ReplacesContentOfEveryLengthByContentOfEveryLength) {
    for (const std::size_t before : lengths) {
        for (const std::size_t after : lengths) {
            SCOPED_TRACE(std::to_string(before) + " by " + std::to_string(after));
            const std::string pattern = patternOf(after, 'A');
            const String source(pattern);
            String copied(patternOf(before));
            EXPECT_EQ(&(copied = source), &copied);
            EXPECT_EQ(copied.view(), pattern);
            EXPECT_EQ(source.view(), pattern);

            String moving(pattern);
            String moved(patternOf(before));
            EXPECT_EQ(&(moved = std::move(moving)), &moved);
            EXPECT_EQ(moved.view(), pattern);
            EXPECT_TRUE(moving.empty());
            EXPECT_EQ(copied, moved);
            EXPECT_FALSE(copied < moved || moved < copied);
        }
    }
}

TEST(StringAssignment, OfAStringToItselfChangesNothing) {
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        const std::string pattern = patternOf(length);
        String string(pattern);
        String& same = string;
        string = same;
        EXPECT_EQ(string.view(), pattern);
        string = std::move(same);
        EXPECT_EQ(string.view(), pattern);
    }
}

TEST(StringAppend, JoinsContentOfEveryLengthWithContentOfEveryLength) {
    for (const std::size_t before : lengths) {
        for (const std::size_t added : lengths) {
            SCOPED_TRACE(std::to_string(before) + " and " + std::to_string(added));
            String string(patternOf(before));
            EXPECT_EQ(&(string += String(patternOf(added, 'A'))), &string);
            EXPECT_EQ(string.view(), patternOf(before) + patternOf(added, 'A'));
            EXPECT_STREQ(string.view().data(), string.str().c_str());
        }
    }
}

TEST(StringAppend, OfAStringToItselfDoublesIt) {
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        String string(patternOf(length));
        string += string;
        EXPECT_EQ(string.view(), patternOf(length) + patternOf(length));
    }
}

TEST(StringEquality, WithNarrowTextIsExact) {
    const struct {
        const char* name;
        String string;
        const char* narrow;
        bool expected;
    } cases[] = {
        {"the same", "item.", "item.", true},
        {"two empty texts", "", "", true},
        {"a shorter text", "item", "item.", false},
        {"a longer text", "item.x", "item.", false},
        {"different case", "Item.", "item.", false},
        {"a NUL after the same text", String("item.\0", 6), "item.", false},
        {"bytes over 127", "\xC3\xA9", "\xC3\xA9", true},
    };
    for (const auto& [name, string, narrow, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(string == narrow, expected);
    }
}

TEST(StringSubString, ReturnsTheAvailablePart) {
    const String text("0123456789");
    const struct {
        const char* name;
        unsigned int start;
        unsigned int count;
        const char* expected;
    } cases[] = {
        {"a prefix", 0, 4, "0123"},
        {"an empty part", 0, 0, ""},
        {"the whole text by its length", 0, 10, "0123456789"},
        {"the whole text by the largest count", 0, 0xFFFFFFFF, "0123456789"},
        {"a count past the end", 7, 100, "789"},
        {"the rest from a position", 7, 0xFFFFFFFF, "789"},
        {"the last character", 9, 1, "9"},
        {"the rest from the end", 10, 0xFFFFFFFF, ""},
        {"a start past the end", 11, 0xFFFFFFFF, ""},
        {"a start and count that overflow together", 0xFFFFFFFF, 0xFFFFFFFF, ""},
    };
    for (const auto& [name, start, count, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(text.subString(start, count).view(), expected);
    }
    EXPECT_EQ(text.view(), "0123456789");
    EXPECT_TRUE(String().subString(0, 0xFFFFFFFF).empty());
    EXPECT_EQ(String("a\0b", 3).subString(1, 0xFFFFFFFF).view(), std::string_view("\0b", 2));
}

static_assert(!std::is_copy_constructible_v<CString> && !std::is_move_constructible_v<CString>);

// Lengths from 128 include bytes over 127, and lengths from 256 include NUL bytes as well.
TEST(CString, HoldsTheBytesOfItsStringAndANul) {
    // 111 bytes are stored without a block.
    for (const std::size_t length :
         {0u, 1u, 7u, 8u, 23u, 24u, 110u, 111u, 112u, 113u, 300u, 5000u}) {
        SCOPED_TRACE(length);
        std::string bytes(length, 'c');
        for (std::size_t at = 0; at < length; ++at) {
            bytes[at] = static_cast<char>(at + 1);
        }
        const String string(bytes);
        const CString lower = string.getLowerByteString();
        const CString utf8 = string.getUTF8String();
        for (const CString* const result : {&lower, &utf8}) {
            ASSERT_EQ(result->size(), length);
            EXPECT_EQ(std::string(result->c_str(), length), bytes);
            EXPECT_EQ(result->c_str()[length], '\0');
        }
    }
}

TEST(CString, OutlivesItsString) {
    auto* const string = new String(std::string(200, 's'));
    const CString bytes = string->getUTF8String();
    delete string;
    EXPECT_EQ(bytes.c_str(), std::string(200, 's'));
}

TEST(StringStreaming, WritesEveryByte) {
    std::ostringstream stream;
    stream << String("a\0b", 3) << String() << String(patternOf(100));
    EXPECT_EQ(stream.str(), std::string("a\0b", 3) + patternOf(100));
}

TEST(StringHashing, IsConsistentWithEquality) {
    const std::unordered_set<String> set = {"one", "two", "one", patternOf(100), patternOf(100)};
    EXPECT_THAT(set, testing::UnorderedElementsAre("one", "two", String(patternOf(100))));
}

} // namespace
} // namespace kel
