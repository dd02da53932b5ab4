#include "../support/Environment.h"
#include "../support/Test.h"
#include "../support/oracles/ObviousUtf8.h"

#include <libKel/String.h>

namespace kel {
namespace {

#define FFFD "\xEF\xBF\xBD"

std::string decoded(const std::string& bytes) {
    String string("what was there before, which is longer than most");
    string.UTF8Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), false);
    return string.str();
}

TEST(Utf8Decode, ReplacesEachMaximalMalformedPart) {
    const struct {
        const char* name;
        std::string bytes;
        std::string expected;
    } cases[] = {
        {"nothing", "", ""},
        {"ASCII", "plain", "plain"},
        {"NUL bytes", std::string("a\0b\0", 4), std::string("a\0b\0", 4)},
        {"valid text of every length", "a\u00E9\u20AC\U0001F600", "a\u00E9\u20AC\U0001F600"},
        {"the largest code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"a code point past the largest", "\xF4\x90\x80\x80", FFFD FFFD FFFD FFFD},
        {"U+FFFD itself", FFFD, FFFD},
        {"a byte order mark", "\xEF\xBB\xBFx", "\xEF\xBB\xBFx"},
        // The standard's own examples, tables 3-8 to 3-11.
        {"truncated sequences", "\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64",
         "a" FFFD FFFD FFFD "b" FFFD "c" FFFD FFFD "d"},
        {"overlong forms", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
         FFFD FFFD FFFD FFFD FFFD FFFD FFFD FFFD "A"},
        {"surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
         FFFD FFFD FFFD FFFD FFFD FFFD FFFD FFFD "A"},
        {"other bytes", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
         FFFD FFFD FFFD FFFD FFFD "A" FFFD FFFD "B"},
        {"truncated sequences in a row", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41",
         FFFD FFFD FFFD FFFD "A"},
        {"a sequence cut off by the end", "x\xE2\x82", "x" FFFD},
        {"a malformed byte after eight valid ones", "12345678\xFFzzzzzzzz",
         "12345678" FFFD "zzzzzzzz"},
    };
    for (const auto& [name, bytes, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(decoded(bytes), expected);
        EXPECT_EQ(support::obviouslyRepairedUtf8(bytes), expected);
    }
}

TEST(Utf8Decode, AcceptsANullPointerWithoutLength) {
    String string("before");
    string.UTF8Decode(nullptr, 0, false);
    EXPECT_EQ(string, "");
    EXPECT_EQ(string.size(), 0u);
}

TEST(Utf8Decode, DecodesTheBytesOfTheStringItself) {
    for (const std::string text :
         {"a\xFFz", "valid text that needs a block of its own", "\xE2\x82"}) {
        String string(text);
        string.UTF8Decode(string.view().data(), string.size(), false);
        EXPECT_EQ(string.view(), support::obviouslyRepairedUtf8(text));
    }
}

TEST(Utf8Decode, ReadsNoMoreThanTheGivenLength) {
    String string;
    string.UTF8Decode("\xE2\x82\xAC", 2, false);
    EXPECT_EQ(string, FFFD);
    string.UTF8Decode("\xE2\x82\xAC", 3, true); // whatever the flag is
    EXPECT_EQ(string, "\u20AC");
}

/// Compares the library with the obvious implementation, and reuses its memory: there are millions
/// of inputs.
class Comparison {
  public:
    void check(const char* bytes, unsigned int length) {
        string_.UTF8Decode(bytes, length, false);
        const std::string expected = support::obviouslyRepairedUtf8({bytes, length});
        ASSERT_EQ(string_.view(), expected)
            << testing::PrintToString(std::string(bytes, length)) << " was taken for "
            << testing::PrintToString(string_.str());
        ASSERT_EQ(string_.getUTF8String().c_str()[string_.size()], '\0')
            << testing::PrintToString(std::string(bytes, length)) << " does not end";
    }

  private:
    String string_;
};

/// The bytes on either side of each boundary in the table; all bytes in thorough tests.
std::vector<char> bytesToTry() {
    std::vector<char> bytes;
    for (int byte = 0; byte < 256; ++byte) {
        const auto next = static_cast<unsigned char>(byte + 1);
        const bool border = (byte & 0x0F) == 0 || (next & 0x0F) == 0 || byte >= 0xED ||
                            byte == 0xC1 || byte == 0xC2 || byte == 0xE1 || byte == 0xEC;
        if (support::thorough() || border) {
            bytes.push_back(static_cast<char>(byte));
        }
    }
    return bytes;
}

TEST(Utf8Decode, AgreesWithTheObviousImplementationOnInputsOfOneAndTwoBytes) {
    Comparison comparison;
    for (int first = 0; first < 256; ++first) {
        const char one = static_cast<char>(first);
        comparison.check(&one, 1);
        for (int second = 0; second < 256; ++second) {
            const std::array<char, 2> two = {one, static_cast<char>(second)};
            comparison.check(two.data(), 2);
        }
    }
}

TEST(Utf8Decode, AgreesWithTheObviousImplementationOnInputsOfThreeBytes) {
    Comparison comparison;
    const std::vector<char> bytes = bytesToTry();
    for (const char first : bytes) {
        for (const char second : bytes) {
            for (const char third : bytes) {
                const std::array<char, 3> three = {first, second, third};
                comparison.check(three.data(), 3);
            }
        }
    }
}

TEST(Utf8Decode, AgreesWithTheObviousImplementationOnBoundaryInputsOfFourBytes) {
    Comparison comparison;
    const std::string firsts =
        "\x7F\x80\xBF\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF";
    const std::string others = "\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xE0\xED\xF0\xF4\xFF";
    for (const char first : firsts) {
        for (const char second : others) {
            for (const char third : others) {
                for (const char fourth : others) {
                    const std::array<char, 4> four = {first, second, third, fourth};
                    comparison.check(four.data(), 4);
                }
            }
        }
    }
}

// Long text is read in large steps. The block is exactly as long as the text, so that the address
// sanitizer detects reads outside it.
TEST(Utf8Decode, FindsAMalformedByteWhereverItIsInALongText) {
    Comparison comparison;
    for (unsigned int length = 1; length <= 200; ++length) {
        std::vector<char> text(length, 'a');
        comparison.check(text.data(), length);
        for (unsigned int at = 0; at < length; ++at) {
            text[at] = '\xFF';
            comparison.check(text.data(), length);
            text[at] = 'a';
        }
    }
}

// The text ends within a sequence that the bytes after the text would complete.
TEST(Utf8Decode, ReadsNothingAfterALongText) {
    Comparison comparison;
    for (unsigned int length = 3; length <= 200; ++length) {
        const std::string text = std::string(length - 3, 'a') + "\u20AC";
        comparison.check(text.data(), length - 1);
        comparison.check(text.data(), length - 2);
    }
}

TEST(Utf8Decode, AgreesWithTheObviousImplementationOnLongRandomInputs) {
    Comparison comparison;
    std::mt19937 random(3);
    const std::vector<std::string> pieces = {"a",          "12345678", "\u00E9",   "\u20AC",
                                             "\U0001F600", "\x80",     "\xE2",     "\xE2\x82",
                                             "\xF0",       "\xF0\x9F", "\xED\xA0", "\xFF"};
    for (int turn = 0; turn < 20000; ++turn) {
        std::string text;
        for (std::size_t count = random() % 12; count > 0; --count) {
            text += pieces[random() % pieces.size()];
        }
        comparison.check(text.data(), static_cast<unsigned int>(text.size()));
    }
}

} // namespace
} // namespace kel
