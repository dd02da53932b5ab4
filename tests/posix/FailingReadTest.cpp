#include "FailingRead.h"

#include "../support/Context.h"
#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>
#include <libKel/Folder.h>
#include <libStencilor/Template.h>

#include <cerrno>

// The address sanitizer detects leaks, except for open files.

namespace support {
namespace {

using kel::Buffer;
using kel::FileState;
using kel::FileSystem;
using kel::Folder;
using kel::Stencilor::FileTemplates;
using kel::Stencilor::renderFile;
using kel::Stencilor::RenderLimits;
using kel::Stencilor::RenderResult;
using kel::Stencilor::RenderStatus;
using kel::Stencilor::TemplateSource;
using kel::Stencilor::Value;

std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

/// Longer than several reads return.
const std::string content = "{{ name }}" + std::string(5 * FailingRead::step, 't');

class FailingReadTest : public testing::Test {
  protected:
    FailingReadTest() { folder_.writeFile("part", content); }

    ~FailingReadTest() override { EXPECT_EQ(openFiles(), openBefore_); }

    /// Calls `action` with each read failing in turn.
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

TEST_F(FailingReadTest, IsRepeatedIfItWasInterrupted) {
    failEachRead(EINTR, [](const FailingRead&) {
        Buffer<unsigned char> buffer;
        ASSERT_TRUE(FileSystem::loadFile("part", buffer, nullptr));
        EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.size), content);
    });
}

TEST_F(FailingReadTest, EndsIfTheFileHasBecomeShorter) {
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

TEST_F(FailingReadTest, LeavesTheSizeOfTheStateIfAFileHasBecomeShorter) {
    const FailingRead failure(2, 0);
    Buffer<unsigned char> buffer;
    FileState state;
    ASSERT_EQ(Folder::open(folder_.path())->load("part", content.size(), buffer, state),
              Folder::Answer::Found);
    EXPECT_EQ(buffer.size, 2 * FailingRead::step);
    EXPECT_EQ(state.size, content.size());
}

TEST_F(FailingReadTest, IsThatOfAFileThatGrowsPastTheLimit) {
    for (const std::size_t allowed : {content.size(), content.size() + 1, std::size_t{100'000}}) {
        const EndlessRead read;
        Buffer<unsigned char> buffer;
        FileState state;
        EXPECT_EQ(Folder::open(folder_.path())->load("part", allowed, buffer, state),
                  Folder::Answer::TooLarge);
        EXPECT_EQ(buffer.data, nullptr);
        EXPECT_EQ(state.size, content.size());
        EXPECT_EQ(read.given(), allowed + 1);
    }
}

/// Renders the file through each kind of access: without a source, and through a folder.
template <typename Check>
void renderThroughEachSource(const RenderLimits& limits, Check check) {
    FileTemplates folder(".");
    for (TemplateSource* const source :
         {static_cast<TemplateSource*>(nullptr), static_cast<TemplateSource*>(&folder)}) {
        SCOPED_TRACE(source == nullptr ? "no source" : "a folder");
        check([&] {
            return renderFile("part", Value{{"name", "n"}}, {.source = source, .limits = limits});
        });
    }
}

TEST_F(FailingReadTest, OfATemplateIsBoundedByItsLimit) {
    for (const std::uint64_t limit : {content.size() - 1, content.size(), content.size() + 999}) {
        SCOPED_TRACE(limit);
        renderThroughEachSource({.templateBytes = limit}, [limit](const auto& render) {
            const EndlessRead read; // the file grows without end
            EXPECT_EQ(render().status, RenderStatus::TemplateLimit);
            EXPECT_EQ(read.given(), limit < content.size() ? 0u : limit + 1);
        });
    }
}

TEST_F(FailingReadTest, OfATemplateIsRepeatedByTheNextRender) {
    const std::filesystem::path file = folder_.path("part");
    last_write_time(file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    const std::string whole = "n" + content.substr(content.find('t'));
    for (const int error : {0, EIO}) { // the file becomes shorter, or unreadable
        renderThroughEachSource({}, [&](const auto& render) {
            {
                const FailingRead failure(2, error);
                const RenderResult result = render();
                EXPECT_EQ(result.status,
                          error == 0 ? RenderStatus::Complete : RenderStatus::Unreadable);
                EXPECT_EQ(result.text.str(), error == 0 ? "n" + std::string(22, 't') : "");
            }
            EXPECT_EQ(render().text.str(), whole);
        });
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
