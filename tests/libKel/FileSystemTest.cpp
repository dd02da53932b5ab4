#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>

namespace kel {
namespace {

using support::TemporaryFolder;
using support::WorkingFolder;

class FileSystemTest : public testing::Test {
  protected:
    /// The bytes of a file, which must be loadable.
    static std::string loaded(const String& path) {
        Buffer<unsigned char> buffer;
        fill(buffer);
        unsigned long length = 12345;
        EXPECT_TRUE(FileSystem::exists(path)) << path;
        EXPECT_TRUE(FileSystem::loadFile(path, buffer, &length)) << path;
        EXPECT_EQ(length, buffer.size) << path;
        EXPECT_GE(buffer.capacity, buffer.size) << path;
        return std::string(reinterpret_cast<const char*>(buffer.data), buffer.size);
    }

    /// Expects that loading fails and empties the buffer.
    static void expectNotLoaded(const String& path) {
        Buffer<unsigned char> buffer;
        fill(buffer);
        unsigned long length = 12345;
        EXPECT_FALSE(FileSystem::loadFile(path, buffer, &length)) << path;
        EXPECT_EQ(length, 0ul) << path;
        EXPECT_EQ(buffer.data, nullptr) << path;
        EXPECT_EQ(buffer.size, 0u) << path;
        EXPECT_EQ(buffer.capacity, 0u) << path;
    }

    static void expectMissing(const String& path) {
        EXPECT_FALSE(FileSystem::exists(path)) << path;
        expectNotLoaded(path);
    }

    TemporaryFolder folder_;

  private:
    /// Fills the buffer with a block that loading must free; the address sanitizer detects leaks.
    static void fill(Buffer<unsigned char>& buffer) {
        buffer.data = static_cast<unsigned char*>(::operator new(4));
        buffer.size = 4;
        buffer.capacity = 4;
    }
};

TEST_F(FileSystemTest, LoadsEveryByteOfAFile) {
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        allBytes += static_cast<char>(byte);
    }
    std::string large;
    for (int turn = 0; turn < 5000; ++turn) {
        large += allBytes;
    }
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"nothing", ""},
        {"one byte", "x"},
        {"all bytes", allBytes},
        {"line endings of all kinds", "a\r\nb\nc\rd\x1A"
                                      "e"},
        {"more than a megabyte", large},
    };
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        folder_.writeFile("file", bytes);
        EXPECT_EQ(loaded(folder_.path("file")), bytes);
    }
}

TEST_F(FileSystemTest, TakesRelativePathsFromTheWorkingDirectory) {
    folder_.makeFolder("inner/deeper");
    folder_.writeFile("inner/file", "here");
    const WorkingFolder working(folder_.path("inner"));
    EXPECT_EQ(loaded("file"), "here");
    EXPECT_EQ(loaded("./file"), "here");
    EXPECT_EQ(loaded("deeper/../file"), "here");
    EXPECT_EQ(loaded("../inner/file"), "here");
    expectMissing("inner/file");
}

TEST_F(FileSystemTest, TakesPathsInUtf8) {
    folder_.makeFolder("Gr\u00FC\u00DFe");
    folder_.writeFile("Gr\u00FC\u00DFe/\u65E5\u672C \U0001F600", "text");
    EXPECT_EQ(loaded(folder_.path("Gr\u00FC\u00DFe/\u65E5\u672C \U0001F600")), "text");
}

TEST_F(FileSystemTest, FindsOnlyRegularFiles) {
    folder_.makeFolder("directory");
    folder_.writeFile("file", "text");
    expectMissing("");
    expectMissing(folder_.path("missing"));
    expectMissing(folder_.path("missing/file"));
    expectMissing(folder_.path("file/below"));
    expectMissing(folder_.path("directory"));
    expectMissing(folder_.path("directory") + "/");
    expectMissing(folder_.path() + "/file/");
    expectMissing(".");
    expectMissing("/");
}

TEST_F(FileSystemTest, FindsNoPathWithANulByte) {
    folder_.writeFile("file", "text");
    const std::string path = folder_.path("file");
    ASSERT_TRUE(FileSystem::exists(path));
    expectMissing(path + std::string("\0", 1));
    expectMissing(path + std::string("\0.txt", 5));
    expectMissing(std::string("\0", 1));
}

TEST_F(FileSystemTest, FindsNoDevice) {
#ifdef _WIN32
    const char* const devices[] = {"NUL",  "CON",        "nul.txt",
                                   "COM1", "\\\\.\\NUL", "\\\\.\\pipe\\none"};
#else
    const char* const devices[] = {"/dev/null", "/dev/zero", "/dev/tty", "/dev/stdin"};
#endif
    for (const char* const device : devices) {
        expectMissing(device);
    }
}

TEST_F(FileSystemTest, FindsNoPipeAndDoesNotWaitForItsWriter) {
    if (!folder_.makePipe("pipe")) {
        GTEST_SKIP() << "named pipes are not supported";
    }
    expectMissing(folder_.path("pipe"));
}

TEST_F(FileSystemTest, FollowsSymbolicLinks) {
    folder_.makeFolder("directory");
    folder_.writeFile("directory/file", "text");
    if (!folder_.makeLink("link", "directory/file")) {
        GTEST_SKIP() << "symbolic links are not supported";
    }
    ASSERT_TRUE(folder_.makeLink("chain", "link"));
    ASSERT_TRUE(folder_.makeLink("other", "directory"));
    ASSERT_TRUE(folder_.makeLink("dangling", "missing"));
    ASSERT_TRUE(folder_.makeLink("zero", "/dev/zero"));
    ASSERT_TRUE(folder_.makeLink("loop", "loop"));
    ASSERT_TRUE(folder_.makeLink("there", "back"));
    ASSERT_TRUE(folder_.makeLink("back", "there"));
    EXPECT_EQ(loaded(folder_.path("link")), "text");
    EXPECT_EQ(loaded(folder_.path("chain")), "text");
    EXPECT_EQ(loaded(folder_.path("other/file")), "text");
    for (const char* const name :
         {"other", "dangling", "zero", "loop", "there", "back", "loop/x"}) {
        expectMissing(folder_.path(name));
    }
}

TEST_F(FileSystemTest, DoesNotLoadFilesWhoseSizeExceedsThirtyTwoBits) {
    constexpr std::uint64_t gigabyte = 1ull << 30;
    for (const std::uint64_t size : {4 * gigabyte, 5 * gigabyte, 16 * gigabyte + 5}) {
        folder_.writeSparseFile("large", size);
        EXPECT_TRUE(FileSystem::exists(folder_.path("large")));
        expectNotLoaded(folder_.path("large"));
    }
}

} // namespace
} // namespace kel
