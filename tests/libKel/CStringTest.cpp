#include <libKel/String.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace kel {
namespace {

static_assert(!std::is_copy_constructible_v<CString> && !std::is_move_constructible_v<CString>);

TEST(CString, HoldsTheBytesOfItsStringAndANul) {
    // 111 bytes are held without a block of their own.
    for (const std::size_t length : {0u, 1u, 7u, 8u, 23u, 24u, 110u, 111u, 112u, 113u, 5000u}) {
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

TEST(CString, HoldsNulBytesToo) {
    const String string("a\0b", 3);
    const CString lower = string.getLowerByteString();
    EXPECT_EQ(std::strlen(lower.c_str()), 1u);
    EXPECT_EQ(std::string(lower.c_str(), lower.size()), std::string("a\0b", 3));
    const CString utf8 = string.getUTF8String();
    EXPECT_EQ(std::string(utf8.c_str(), utf8.size()), std::string("a\0b", 3));
}

TEST(CString, OutlivesItsString) {
    auto* const string = new String(std::string(200, 's'));
    const CString bytes = string->getUTF8String();
    delete string;
    EXPECT_EQ(bytes.c_str(), std::string(200, 's'));
}

TEST(CString, KeepsBytesOver127InBothForms) {
    const String string("\xC3\xA9\xFF\x80");
    EXPECT_STREQ(string.getLowerByteString().c_str(), "\xC3\xA9\xFF\x80");
    EXPECT_STREQ(string.getUTF8String().c_str(), "\xC3\xA9\xFF\x80");
}

} // namespace
} // namespace kel
