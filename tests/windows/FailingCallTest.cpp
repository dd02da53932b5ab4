#include "FailingCall.h"

#include "../support/Context.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>
#include <libKel/Folder.h>

// Makes each file-system call fail in turn.

namespace support {
namespace {

using kel::Buffer;
using kel::FileState;
using kel::FileSystem;
using kel::Folder;
using Answer = Folder::Answer;

/// The calls for a path, in order; the last one only with a root.
constexpr std::string_view callsForAFile[] = {"GetFullPathNameW", "CreateFileW", "GetFileType",
                                              "GetFileInformationByHandle",
                                              "GetFinalPathNameByHandleW"};
constexpr std::string_view callForContent = "ReadFile";
constexpr std::string_view callsForARoot[] = {
    "GetFullPathNameW", "CreateFileW", "GetFileInformationByHandle", "GetFinalPathNameByHandleW"};

/// Longer than several reads return.
const std::string content = "{{ name }}" + std::string(5 * FailingCall::step, 't');
const std::string contentRendered = "root" + std::string(5 * FailingCall::step, 't');

class FailingCallTest : public testing::Test {
  protected:
    FailingCallTest() {
        folder_.writeFile("part", content);
        folder_.makeFolder("below");
        EXPECT_TRUE(FileSystem::setRoot(folder_.path()));
    }
    ~FailingCallTest() override { FileSystem::clearRoot(); }

    /// Calls `action` with each call of `function` failing in turn. Returns the number of failures.
    template <typename Action>
    int failEach(std::string_view function, Action action) {
        int count = 0;
        for (bool failed = true; failed; ++count) {
            SCOPED_TRACE(std::string(function) + ", call " + std::to_string(count));
            const FailingCall failure(function, count);
            action(failure);
            EXPECT_EQ(failure.openHandles(), 0);
            failed = failure.happened();
        }
        EXPECT_GT(count, 1) << function << " is not called";
        return count - 1;
    }

    TemporaryFolder folder_;
};

void expectLoadedUnless(const FailingCall& failure) {
    Buffer<unsigned char> buffer;
    unsigned long length = 1;
    const bool loaded = FileSystem::loadFile("part", buffer, &length);
    EXPECT_EQ(loaded, !failure.happened());
    EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.size), loaded ? content : "");
    EXPECT_EQ(length, buffer.size);
    EXPECT_EQ(buffer.data == nullptr, !loaded);
    EXPECT_EQ(buffer.capacity == 0, !loaded);
}

TEST_F(FailingCallTest, LeavesTheBufferEmpty) {
    for (const std::string_view function : callsForAFile) {
        failEach(function, expectLoadedUnless);
    }
    failEach(callForContent, expectLoadedUnless);
}

TEST_F(FailingCallTest, MayBeAnyOfTheReadsOfAFile) {
    EXPECT_EQ(failEach("ReadFile", expectLoadedUnless), 6);
}

TEST_F(FailingCallTest, EndsIfTheFileHasBecomeShorter) {
    std::size_t expected = 0;
    failEach(FailingCall::end, [&expected](const FailingCall& failure) {
        Buffer<unsigned char> buffer;
        ASSERT_TRUE(FileSystem::loadFile("part", buffer, nullptr));
        if (failure.happened()) {
            EXPECT_EQ(buffer.size, expected);
            expected += FailingCall::step;
        }
        EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.size),
                  content.substr(0, buffer.size));
    });
}

TEST_F(FailingCallTest, HidesTheFile) {
    for (const std::string_view function : callsForAFile) {
        failEach(function, [](const FailingCall& failure) {
            const bool exists = FileSystem::exists("part");
            EXPECT_EQ(exists, !failure.happened());
        });
    }
}

TEST_F(FailingCallTest, IsReportedByAFolder) {
    const Folder folder = Folder::open(folder_.path()).value();
    const auto load = [&folder](Buffer<unsigned char>& buffer) {
        FileState state;
        return folder.load("part", content.size(), buffer, state);
    };
    failEach(callForContent, [&load](const FailingCall& failure) {
        Buffer<unsigned char> buffer;
        const Answer answer = load(buffer);
        EXPECT_EQ(answer, failure.happened() ? Answer::Unreadable : Answer::Found);
        EXPECT_EQ(buffer.data == nullptr, failure.happened());
    });
    // A second attempt finds the file that could not be opened.
    for (const std::string_view function : callsForAFile) {
        failEach(function, [&load](const FailingCall& failure) {
            Buffer<unsigned char> buffer;
            const Answer answer = load(buffer);
            EXPECT_EQ(answer, failure.happened() ? Answer::Unreadable : Answer::Found);
        });
    }
}

TEST_F(FailingCallTest, LeavesTheRootAsItIs) {
    for (const std::string_view function : callsForARoot) {
        failEach(function, [this](const FailingCall& failure) {
            const bool set = FileSystem::setRoot(folder_.path("below"));
            EXPECT_EQ(set, !failure.happened());
            EXPECT_EQ(FileSystem::exists("part"), !set);
        });
        ASSERT_TRUE(FileSystem::setRoot(folder_.path()));
    }
}

TEST_F(FailingCallTest, IsReportedAsAFileThatIsMissingOrCannotBeLoaded) {
    const Root root({{"name", text("root")}});
    failEach(callForContent, [&root](const FailingCall& failure) {
        const Rendered rendered = render("a{% include \"part\" %}b", root);
        EXPECT_EQ(rendered, failure.happened() ? (Rendered{"ab", "Could not load file \"part\""})
                                               : (Rendered{"a" + contentRendered + "b", ""}));
    });
    for (const std::string_view function : callsForAFile) {
        int count = 0;
        failEach(function, [&root, &count](const FailingCall& failure) {
            const Rendered rendered = render("a{% include \"part\" %}b", root);
            // The first call checks whether the file exists, the second opens it for reading.
            const Rendered expected[] = {
                {"ab", "Could not include file \"part\", file doesn't exist"},
                {"ab", "Could not load file \"part\""},
                {"a" + contentRendered + "b", ""}};
            ASSERT_LT(count, 3);
            EXPECT_EQ(failure.happened(), count < 2);
            EXPECT_EQ(rendered, expected[count++]);
        });
    }
}

} // namespace
} // namespace support
