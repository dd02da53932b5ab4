#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>

namespace kel {
namespace {

using support::TemporaryFolder;
using support::WorkingFolder;

/// A folder that contains the root, `root`, next to files outside it:
///
///     outside.txt   rootless/file.txt   root/file.txt   root/a/b.txt
class FileSystemRootTest : public testing::Test {
  protected:
    FileSystemRootTest() {
        folder_.makeFolder("root/a");
        folder_.makeFolder("rootless");
        folder_.writeFile("outside.txt", "outside");
        folder_.writeFile("rootless/file.txt", "outside");
        folder_.writeFile("root/file.txt", "file");
        folder_.writeFile("root/a/b.txt", "b");
        EXPECT_TRUE(FileSystem::setRoot(folder_.path("root")));
    }
    ~FileSystemRootTest() override { FileSystem::clearRoot(); }

    static void expectLoaded(const String& path, const std::string& expected) {
        EXPECT_TRUE(FileSystem::exists(path)) << path;
        Buffer<unsigned char> buffer;
        EXPECT_TRUE(FileSystem::loadFile(path, buffer, nullptr)) << path;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer.data), buffer.size), expected);
    }

    static void expectMissing(const String& path) {
        EXPECT_FALSE(FileSystem::exists(path)) << path;
        Buffer<unsigned char> buffer;
        EXPECT_FALSE(FileSystem::loadFile(path, buffer, nullptr)) << path;
        EXPECT_EQ(buffer.data, nullptr) << path;
    }

    TemporaryFolder folder_;
};

TEST_F(FileSystemRootTest, FindsTheFilesInside) {
    expectLoaded("file.txt", "file");
    expectLoaded("a/b.txt", "b");
    expectLoaded("./file.txt", "file");
    expectLoaded("a/../file.txt", "file");
    expectLoaded("a/./b.txt", "b");
    expectLoaded("a//b.txt", "b");
    expectLoaded("a/../a/../a/b.txt", "b");
}

TEST_F(FileSystemRootTest, FindsNothingOutside) {
    for (const char* const path :
         {"../outside.txt", "../rootless/file.txt", "a/../../outside.txt", "a/../../x",
          "./../outside.txt", "a/b.txt/../../../outside.txt", "..", "../..", "../root",
          "../../../../../../../../etc/passwd", "a/../../../../../../../../../etc/passwd"}) {
        expectMissing(path);
    }
}

TEST_F(FileSystemRootTest, FindsNoDirectoryAndNothingThatIsMissing) {
    for (const char* const path :
         {"", "a", "a/", ".", "./", "missing", "a/missing", "file.txt/x"}) {
        expectMissing(path);
    }
    expectMissing(String("file.txt\0", 9));
}

TEST_F(FileSystemRootTest, FindsNothingByAnAbsolutePath) {
    expectMissing(folder_.path("root/file.txt"));
    expectMissing(folder_.path("outside.txt"));
    expectMissing("/etc/passwd");
    expectMissing("/file.txt");
}

// Such names are files on some systems; there, the files are created, so that only the root rejects
// them. RootedPathTest tests all kinds.
TEST_F(FileSystemRootTest, FindsNoNameThatAnySystemInterpretsDifferently) {
    for (const char* const name : {"a\\b.txt", "C:file.txt", "file.txt:stream", "NUL", "a/com1",
                                   "file.", "a/file ", "a?b", "line\nbreak"}) {
#ifndef _WIN32
        folder_.writeFile("root/" + std::string(name), "text");
#endif
        expectMissing(name);
    }
    for (const char* const path :
         {"\\file.txt", "\\\\?\\C:\\file.txt", "C:/file.txt", "file.txt.", "a./b.txt"}) {
        expectMissing(path);
    }
}

TEST_F(FileSystemRootTest, FollowsLinksThatStayInside) {
    if (!folder_.makeLink("root/link.txt", "a/b.txt")) {
        GTEST_SKIP() << "symbolic links are not supported";
    }
    ASSERT_TRUE(folder_.makeLink("root/round", "../root/a"));
    ASSERT_TRUE(folder_.makeLink("root/whole.txt", folder_.path("root/file.txt")));
    expectLoaded("link.txt", "b");
    expectLoaded("round/b.txt", "b");
    expectLoaded("whole.txt", "file");
}

TEST_F(FileSystemRootTest, FollowsNoLinkThatLeavesTheRoot) {
    if (!folder_.makeLink("root/out.txt", "../outside.txt")) {
        GTEST_SKIP() << "symbolic links are not supported";
    }
    ASSERT_TRUE(folder_.makeLink("root/absolute.txt", folder_.path("outside.txt")));
    ASSERT_TRUE(folder_.makeLink("root/up", ".."));
    ASSERT_TRUE(folder_.makeLink("root/sibling", "../rootless"));
    ASSERT_TRUE(folder_.makeLink("root/chain.txt", "out.txt"));
    ASSERT_TRUE(folder_.makeLink("root/loop.txt", "loop.txt"));
    ASSERT_TRUE(folder_.makeLink("root/there", "back"));
    ASSERT_TRUE(folder_.makeLink("root/back", "there"));
    for (const char* const path : {"out.txt", "absolute.txt", "up/outside.txt", "sibling/file.txt",
                                   "chain.txt", "loop.txt", "there", "there/x", "back"}) {
        expectMissing(path);
    }
    // Out through a link and in again: what counts is the file that is reached.
    expectLoaded("up/root/file.txt", "file");
}

TEST_F(FileSystemRootTest, MayItselfBeALink) {
    if (!folder_.makeLink("alias", "root")) {
        GTEST_SKIP() << "symbolic links are not supported";
    }
    ASSERT_TRUE(FileSystem::setRoot(folder_.path("alias")));
    expectLoaded("file.txt", "file");
    expectMissing("../outside.txt");
}

TEST_F(FileSystemRootTest, MayBeRelativeToTheWorkingDirectoryOfThatMoment) {
    {
        const WorkingFolder working(folder_.path());
        ASSERT_TRUE(FileSystem::setRoot("root/a/"));
    }
    const WorkingFolder elsewhere(folder_.path("rootless"));
    expectLoaded("b.txt", "b");
    expectMissing("../file.txt");
}

TEST_F(FileSystemRootTest, IsKeptIfTheNewOneIsNotADirectory) {
    for (const std::string& path : {folder_.path("missing"), folder_.path("outside.txt"),
                                    std::string(), folder_.path("root/a") + std::string("\0", 1)}) {
        EXPECT_FALSE(FileSystem::setRoot(path)) << path;
    }
    expectLoaded("a/b.txt", "b");
}

TEST_F(FileSystemRootTest, CanBeReplaced) {
    ASSERT_TRUE(FileSystem::setRoot(folder_.path("root/a")));
    expectLoaded("b.txt", "b");
    expectMissing("../file.txt");
    ASSERT_TRUE(FileSystem::setRoot(folder_.path()));
    expectLoaded("outside.txt", "outside");
    expectLoaded("root/a/../../outside.txt", "outside");
}

TEST_F(FileSystemRootTest, CanBeTheRootOfTheSystem) {
    ASSERT_TRUE(FileSystem::setRoot("/"));
    const std::string path = folder_.path("outside.txt");
    expectMissing(path);
#ifndef _WIN32
    expectLoaded(path.substr(1), "outside");
#endif
}

TEST_F(FileSystemRootTest, IsRemovedWhenItIsCleared) {
    FileSystem::clearRoot();
    expectLoaded(folder_.path("outside.txt"), "outside");
    const WorkingFolder working(folder_.path("root/a"));
    expectLoaded("../../outside.txt", "outside");
    expectMissing("file.txt");
}

} // namespace
} // namespace kel
