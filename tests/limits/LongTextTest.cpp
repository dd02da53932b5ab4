#include "../support/Context.h"
#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>

namespace support {
namespace {

using kel::String;

constexpr std::uint64_t longest = std::numeric_limits<std::uint32_t>::max();

TEST(StringLimits, RejectAppendingPastThirtyTwoBitsAndKeepTheString) {
    if (!hasMemory(8)) {
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

TEST(StringLimits, RejectStringsPastThirtyTwoBits) {
    if (!hasMemory(5)) {
        GTEST_SKIP() << "takes five gigabytes of memory";
    }
    const std::string tooLong(longest + 1, 'x');
    EXPECT_THROW(String(std::string_view(tooLong)), std::length_error);
    EXPECT_THROW(String(tooLong.c_str()), std::length_error);
    EXPECT_THROW(String{tooLong}, std::length_error);
}

TEST(FileLimits, AllowTheLargestThirtyTwoBitSize) {
    if (!hasMemory(5)) {
        GTEST_SKIP() << "takes five gigabytes of memory";
    }
    const TemporaryFolder folder;
    folder.writeSparseFile("longest", longest);
    kel::Buffer<unsigned char> buffer;
    ASSERT_TRUE(kel::FileSystem::loadFile(folder.path("longest"), buffer, nullptr));
    EXPECT_EQ(buffer.size, longest);
    EXPECT_EQ(buffer.data[longest - 1], 0);
}

/// A list of `count` strings of 64 MiB, which share one block.
ContextIterable* longTexts(std::size_t count) {
    const String value(std::string(64u << 20, 'x'));
    ContextIterable* const made = list();
    for (; count > 0; --count) {
        made->add(dictionary({{"text", text(value)}}));
    }
    return made;
}

TEST(LongOutput, IsRejectedWhereverItExceedsTheSizeOfAString) {
    if (!hasMemory(9)) {
        GTEST_SKIP() << "takes nine gigabytes of memory";
    }
    const TemporaryFolder folder;
    folder.writeFile("texts.txt", "{% for x in texts %}{{ text }}{% endfor %}");
    const WorkingFolder inside(folder.path());
    const Root root({{"texts", longTexts(64)}, {"half", longTexts(32)}});
    for (const char* const input : {"{% for x in texts %}{{ x.text }}{% endfor %}",
                                    "{% for x in half %}{{ text }}{% endfor %}"
                                    "{% for x in half %}{{ text }}{% endfor %}",
                                    "{% include \"texts.txt\" %}"}) {
        EXPECT_THROW(render(input, root), std::length_error) << input;
    }
}

} // namespace
} // namespace support
