#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"

#include <libKel/FileSystem.h>
#include <libKel/String.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace kel {
namespace {

constexpr std::uint64_t longest = std::numeric_limits<std::uint32_t>::max();

TEST(StringLimits, RefuseAppendingPastThirtyTwoBitsAndKeepTheString) {
    if (!support::hasMemory(8)) {
        GTEST_SKIP() << "takes eight gigabytes of memory";
    }
    const String half(std::string(0x7FFFFFFF, 'h'));
    String string(half);
    EXPECT_THROW((string += half) += "xy", std::length_error);
    EXPECT_EQ(string.size(), 0xFFFFFFFEu);
    string += "x";
    EXPECT_EQ(string.size(), longest);
    EXPECT_THROW(string += "x", std::length_error);
    EXPECT_THROW(string += string, std::length_error);
    EXPECT_EQ(string.size(), longest);
    EXPECT_EQ(string.subString(0xFFFFFFFD, 0xFFFFFFFF), "hx");
}

TEST(StringLimits, RefuseMakingAStringPastThirtyTwoBits) {
    if (!support::hasMemory(5)) {
        GTEST_SKIP() << "takes five gigabytes of memory";
    }
    const std::string tooLong(longest + 1, 'x');
    EXPECT_THROW(String(std::string_view(tooLong)), std::length_error);
    EXPECT_THROW(String(tooLong.c_str()), std::length_error);
    EXPECT_THROW(String{tooLong}, std::length_error);
}

TEST(FileLimits, AllowTheLongestFileThatThirtyTwoBitsTell) {
    if (!support::hasMemory(5)) {
        GTEST_SKIP() << "takes five gigabytes of memory";
    }
    const support::TemporaryFolder folder;
    folder.writeSparseFile("longest", longest);
    Buffer<unsigned char> buffer;
    ASSERT_TRUE(FileSystem::loadFile(folder.path("longest"), buffer, nullptr));
    EXPECT_EQ(buffer.size, longest);
    EXPECT_EQ(buffer.data[longest - 1], 0);
}

} // namespace
} // namespace kel
