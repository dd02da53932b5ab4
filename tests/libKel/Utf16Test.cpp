#include "../support/Environment.h"
#include "../support/Test.h"

#include <libKel/String.h>

namespace kel {
namespace {

#define FFFD "\xEF\xBF\xBD"

TEST(FromUtf16, PairsSurrogatesAndReplacesLoneOnes) {
    const struct {
        const char* name;
        std::u16string utf16;
        std::string expected;
    } cases[] = {
        {"nothing", u"", ""},
        {"ASCII and NUL", std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
        {"one unit each", u"\u00E9\u20AC", "\u00E9\u20AC"},
        {"a pair", u"\U0001F600", "\U0001F600"},
        {"the first and last pairs", u"\U00010000\U0010FFFF", "\U00010000\U0010FFFF"},
        {"a lone leading surrogate", {u'a', 0xD83D, u'b'}, "a" FFFD "b"},
        {"a leading surrogate at the end", {u'a', 0xD83D}, "a" FFFD},
        {"a lone trailing surrogate", {0xDE00, u'b'}, FFFD "b"},
        {"a reversed pair", {0xDE00, 0xD83D}, FFFD FFFD},
        {"two leading surrogates before a trailing one",
         {0xD83D, 0xD83D, 0xDE00},
         FFFD "\U0001F600"},
        {"the units next to the surrogates", {0xD7FF, 0xE000}, "\xED\x9F\xBF\xEE\x80\x80"},
    };
    for (const auto& [name, utf16, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(String::fromUTF16(utf16).view(), expected);
    }
}

TEST(FromUtf16, ReadsNothingAfterTheText) {
    const std::u16string_view text = u"a\U0001F600";
    EXPECT_EQ(String::fromUTF16(text.substr(0, 2)).view(), "a" FFFD);
}

TEST(ToUtf16, CreatesPairsAndReplacesMalformedBytes) {
    const struct {
        const char* name;
        std::string utf8;
        std::u16string expected;
    } cases[] = {
        {"nothing", "", u""},
        {"ASCII and NUL", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"one unit each", "\u00E9\u20AC", u"\u00E9\u20AC"},
        {"a pair", "\U0001F600", u"\U0001F600"},
        {"malformed bytes", "a\xFF\xE2\x82z", u"a\uFFFD\uFFFDz"},
        {"an encoded surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& [name, utf8, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(String(utf8).toUTF16(), expected);
    }
}

// All code points in thorough tests; otherwise, those around each boundary, and some others.
TEST(Utf16, RoundTripsEveryCodePoint) {
    const auto isTried = [](char32_t point) {
        const char32_t inBlock = point % 0x400;
        return support::thorough() || point < 0x1000 || inBlock < 2 || inBlock > 0x3FD ||
               point % 17 == 0;
    };
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if ((point >= 0xD800 && point <= 0xDFFF) || !isTried(point)) {
            continue;
        }
        std::u16string utf16(1, static_cast<char16_t>(point));
        if (point > 0xFFFF) {
            utf16 = {static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)),
                     static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF))};
        }
        const String string = String::fromUTF16(utf16);
        const unsigned int length = point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
        ASSERT_EQ(string.size(), length) << static_cast<std::uint32_t>(point);
        ASSERT_EQ(string.toUTF16(), utf16) << static_cast<std::uint32_t>(point);
    }
}

#ifdef _WIN32
TEST(WideText, IsUtf16) {
    EXPECT_EQ(String::fromWide(L"\u00E9\U0001F600").view(), "\u00E9\U0001F600");
    EXPECT_EQ(String("\u00E9\U0001F600").toWide(), L"\u00E9\U0001F600");
}
#endif

} // namespace
} // namespace kel
