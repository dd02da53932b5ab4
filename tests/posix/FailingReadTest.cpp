#include "FailingRead.h"

#include "../support/Context.h"
#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"

#include <libKel/FileSystem.h>
#include <libKel/Folder.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <limits>
#include <string>

// What is leaked on the way is for the address sanitizer to say, but for open files.

namespace support {
namespace {

using kel::Buffer;
using kel::FileState;
using kel::FileSystem;
using kel::Folder;

std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

/// Longer than several reads give.
const std::string content = "{{ name }}" + std::string(5 * FailingRead::step, 't');

class FailingReadTest : public testing::Test {
  protected:
    FailingReadTest() { folder_.writeFile("part", content); }

    ~FailingReadTest() override { EXPECT_EQ(openFiles(), openBefore_); }

    /// Calls `action` with each read failing in turn, until none is left to fail.
    template <typename Action>
    void failEachRead(int error, Action action) {
        int count = 0;
        for (bool failed = true; failed; ++count) {
            SCOPED_TRACE(count);
            const FailingRead failure(count, error);
            action(failure);
            failed = failure.happened();
        }
        EXPECT_GT(count, 5) << "the file was read in fewer pieces than it has";
    }

    std::ptrdiff_t openBefore_ = openFiles();
    const TemporaryFolder folder_;
    const WorkingFolder working_{folder_.path()};
};

TEST_F(FailingReadTest, LeavesTheBufferEmpty) {
    failEachRead(EIO, [](const FailingRead& failure) {
        Buffer<unsigned char> buffer;
        unsigned long length = 1;
        const bool loaded = FileSystem::loadFile("part", buffer, &length);
        EXPECT_EQ(loaded, !failure.happened());
        EXPECT_EQ(buffer.size, loaded ? content.size() : 0u);
        EXPECT_EQ(length, buffer.size);
        EXPECT_EQ(buffer.data == nullptr, !loaded);
        EXPECT_EQ(buffer.capacity == 0, !loaded);
    });
}

TEST_F(FailingReadTest, IsRepeatedWhereItWasInterrupted) {
    failEachRead(EINTR, [](const FailingRead&) {
        Buffer<unsigned char> buffer;
        ASSERT_TRUE(FileSystem::loadFile("part", buffer, nullptr));
        EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.size), content);
    });
}

TEST_F(FailingReadTest, EndsWhereTheFileHasBecomeShorter) {
    std::size_t expected = 0;
    failEachRead(0, [&expected](const FailingRead& failure) {
        Buffer<unsigned char> buffer;
        ASSERT_TRUE(FileSystem::loadFile("part", buffer, nullptr));
        if (failure.happened()) {
            EXPECT_EQ(buffer.size, expected);
            expected += FailingRead::step;
        }
        EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.size),
                  content.substr(0, buffer.size));
    });
}

TEST_F(FailingReadTest, IsThatOfAFileThatHasBecomeTooLong) {
    if (!hasMemory(5)) {
        GTEST_SKIP() << "allocates four gigabytes of memory";
    }
    folder_.writeSparseFile("longest", std::numeric_limits<std::uint32_t>::max());
    const EndlessRead read;
    Buffer<unsigned char> buffer;
    EXPECT_FALSE(FileSystem::loadFile("longest", buffer, nullptr));
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.size, 0u);
}

TEST_F(FailingReadTest, IsReportedByAFolderAsAFileThatIsUnreadable) {
    const Folder folder = Folder::open(folder_.path()).value();
    failEachRead(EIO, [&folder](const FailingRead& failure) {
        Buffer<unsigned char> buffer;
        FileState state;
        const Folder::Answer answer = folder.load("part", content.size(), buffer, state);
        EXPECT_EQ(answer, failure.happened() ? Folder::Answer::Unreadable : Folder::Answer::Found);
        EXPECT_EQ(buffer.size, failure.happened() ? 0u : content.size());
        EXPECT_EQ(state.size, content.size());
    });
}

TEST_F(FailingReadTest, LeavesTheSizeOfTheStateWhereAFileHasBecomeShorter) {
    const FailingRead failure(2, 0);
    Buffer<unsigned char> buffer;
    FileState state;
    ASSERT_EQ(Folder::open(folder_.path())->load("part", content.size(), buffer, state),
              Folder::Answer::Found);
    EXPECT_EQ(buffer.size, 2 * FailingRead::step);
    EXPECT_EQ(state.size, content.size());
}

TEST_F(FailingReadTest, IsThatOfAFileThatGrowsPastWhatIsAllowed) {
    const EndlessRead read;
    for (const std::size_t allowed : {content.size(), content.size() + 1, std::size_t{100'000}}) {
        Buffer<unsigned char> buffer;
        FileState state;
        EXPECT_EQ(Folder::open(folder_.path())->load("part", allowed, buffer, state),
                  Folder::Answer::TooLarge);
        EXPECT_EQ(buffer.data, nullptr);
        EXPECT_EQ(state.size, content.size());
    }
}

TEST_F(FailingReadTest, IsReportedAsAFileThatCannotBeLoaded) {
    const Root root({{"name", text("root")}});
    failEachRead(EIO, [&root](const FailingRead& failure) {
        const Rendered rendered = render("a{% include \"part\" %}b", root);
        if (failure.happened()) {
            EXPECT_EQ(rendered, (Rendered{"ab", "Could not load file \"part\""}));
        } else {
            EXPECT_EQ(rendered, (Rendered{"aroot" + content.substr(content.find('t')) + "b", ""}));
        }
    });
}

} // namespace
} // namespace support
