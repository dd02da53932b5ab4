#include "../support/Test.h"

#include <libKel/String.h>

namespace kel {
namespace {

/// All strings of `length` bytes from `alphabet`.
std::vector<std::string> textsOf(std::size_t length, const std::string& alphabet) {
    if (length == 0) {
        return {std::string()};
    }
    std::vector<std::string> texts;
    for (const std::string& start : textsOf(length - 1, alphabet)) {
        for (const char last : alphabet) {
            texts.push_back(start + last);
        }
    }
    return texts;
}

// Bytes compare as unsigned, and a prefix of a string comes before it, as in the order of standard
// string views.
void expectOrderOf(const std::string& left, const std::string& right) {
    const String first(left);
    const String second(right);
    ASSERT_EQ(first < second, std::string_view(left) < std::string_view(right))
        << testing::PrintToString(left) << " and " << testing::PrintToString(right);
    ASSERT_EQ(first == second, left == right)
        << testing::PrintToString(left) << " and " << testing::PrintToString(right);
}

TEST(StringOrder, IsThatOfUnsignedBytesForAllShortTexts) {
    const std::string alphabet("\0\x01\x7F\x80\xFF", 5);
    std::vector<std::string> texts;
    for (std::size_t length = 0; length <= 3; ++length) {
        const std::vector<std::string> more = textsOf(length, alphabet);
        texts.insert(texts.end(), more.begin(), more.end());
    }
    for (const std::string& left : texts) {
        for (const std::string& right : texts) {
            expectOrderOf(left, right);
        }
    }
}

// Long common prefixes, so that the difference is before, at and after the eighth byte; and zero
// bytes, which could be mistaken for the padding of short strings.
TEST(StringOrder, IsThatOfUnsignedBytesForTextsWithCommonBeginnings) {
    const std::string alphabet("\0a\xFF", 3);
    std::vector<std::string> texts;
    for (std::size_t common = 5; common <= 26; ++common) {
        for (std::size_t length = 0; length <= 3; ++length) {
            for (const std::string& end : textsOf(length, alphabet)) {
                texts.push_back(std::string(common, 'c') + end);
                texts.push_back(std::string(common, '\0') + end);
            }
        }
    }
    std::mt19937 random(7);
    for (int turn = 0; turn < 50000; ++turn) {
        expectOrderOf(texts[random() % texts.size()], texts[random() % texts.size()]);
    }
}

// The order must not depend on how a string got its content.
TEST(StringOrder, StaysTheSameThroughEveryChange) {
    const std::string longText(40, 'x');
    String shortened(longText);
    shortened = String("b\0", 2);
    String appended("b");
    appended += String("\0", 1);
    String emptied(longText);
    const String taken(std::move(emptied));
    String decoded(longText);
    decoded.UTF8Decode("b\0", 2, false);
    for (const String* const string : {&shortened, &appended, &decoded}) {
        EXPECT_FALSE(*string < String("b"));
        EXPECT_TRUE(String("b") < *string);
        EXPECT_TRUE(*string < String("b\0\0", 3));
        EXPECT_TRUE(*string < taken);
        EXPECT_TRUE(emptied < *string);
    }
}

} // namespace
} // namespace kel
