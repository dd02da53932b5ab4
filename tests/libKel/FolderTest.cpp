#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/Folder.h>

#ifdef _WIN32
#include "../support/LockedFile.h"
#else
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace kel {
namespace {

using support::TemporaryFolder;
using support::WorkingFolder;
using Answer = Folder::Answer;

constexpr std::uint64_t anySize = std::numeric_limits<std::uint64_t>::max();

std::filesystem::path native(const std::string& path) {
    return std::u8string(path.begin(), path.end());
}

/// Sets the modification time of a file, in nanoseconds since 1970. Some standard libraries only
/// support seconds.
void setModified(const std::filesystem::path& path, std::int64_t modified) {
#ifdef _WIN32
    const HANDLE file = ::CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    const std::int64_t steps = modified / 100 + 116'444'736'000'000'000;
    const FILETIME time{static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
    EXPECT_NE(::SetFileTime(file, nullptr, nullptr, &time), 0);
    ::CloseHandle(file);
#else
    const timespec time{.tv_sec = modified / 1'000'000'000, .tv_nsec = modified % 1'000'000'000};
    const timespec times[] = {time, time};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
#endif
}

#ifndef _WIN32
/// Keeps this process, even as root, from opening files during its lifetime.
class NoFilesLeft {
  public:
    NoFilesLeft() {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &former_), 0);
        const rlimit none{.rlim_cur = 0, .rlim_max = former_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    }
    NoFilesLeft(const NoFilesLeft&) = delete;
    NoFilesLeft& operator=(const NoFilesLeft&) = delete;
    ~NoFilesLeft() { ::setrlimit(RLIMIT_NOFILE, &former_); }

  private:
    rlimit former_{};
};
#endif

/// A folder `in` with files, next to a file outside it.
class FolderTest : public testing::Test {
  protected:
    FolderTest() {
        folder_.makeFolder("in/below");
        folder_.writeFile("in/file", "content");
        folder_.writeFile("in/below/other", "other");
        folder_.writeFile("outside", "outside");
    }

    Folder opened() const { return Folder::open(folder_.path("in")).value(); }

    /// The answer and the bytes read.
    static std::string loaded(const Folder& folder, const String& path,
                              std::uint64_t maxBytes = anySize) {
        Buffer<unsigned char> buffer;
        FileState state;
        switch (folder.load(path, maxBytes, buffer, state)) {
        case Answer::Found:
            return "found: " + std::string(buffer.data, buffer.data + buffer.size);
        case Answer::Missing:
            EXPECT_EQ(state, FileState());
            return "missing" + std::string(buffer.data, buffer.data + buffer.size);
        case Answer::Unreadable:
            return "unreadable" + std::string(buffer.data, buffer.data + buffer.size);
        case Answer::TooLarge:
            return "too large" + std::string(buffer.data, buffer.data + buffer.size);
        }
        return "no answer";
    }

    TemporaryFolder folder_;
};

TEST_F(FolderTest, OpensDirectoriesOnly) {
    EXPECT_TRUE(Folder::open(folder_.path("in")));
    EXPECT_TRUE(Folder::open(folder_.path("in/below/")));
    for (const std::string& path :
         {std::string(), folder_.path("missing"), folder_.path("in/file"),
          folder_.path("in") + std::string("\0", 1), folder_.path("in/file/below")}) {
        EXPECT_FALSE(Folder::open(path)) << path;
    }
}

TEST_F(FolderTest, LoadsTheFilesInside) {
    const Folder folder = opened();
    EXPECT_EQ(loaded(folder, "file"), "found: content");
    EXPECT_EQ(loaded(folder, "below/other"), "found: other");
    EXPECT_EQ(loaded(folder, "below/../file"), "found: content");
    folder_.writeFile("in/empty", "");
    EXPECT_EQ(loaded(folder, "empty"), "found: ");
}

TEST_F(FolderTest, HasNothingElse) {
    const Folder folder = opened();
    for (const std::string& path :
         {std::string(), std::string("missing"), std::string("below"), std::string("below/"),
          std::string("../outside"), std::string("../in/../outside"), folder_.path("in/file"),
          std::string("file\0", 5), std::string("file."), std::string("NUL")}) {
        EXPECT_FALSE(folder.find(path)) << path;
        EXPECT_EQ(loaded(folder, path), "missing") << path;
    }
    if (folder_.makeLink("in/link", "../outside")) {
        EXPECT_FALSE(folder.find("link"));
        EXPECT_EQ(loaded(folder, "link"), "missing");
    }
}

TEST_F(FolderTest, IsResolvedWhenItIsOpened) {
    std::optional<Folder> folder;
    {
        const WorkingFolder working(folder_.path());
        folder = Folder::open("in");
    }
    ASSERT_TRUE(folder);
    const WorkingFolder working(folder_.path("in/below"));
    EXPECT_EQ(loaded(*folder, "file"), "found: content");
    const Folder copy = *folder;
    folder.reset();
    EXPECT_EQ(loaded(copy, "file"), "found: content");
}

TEST_F(FolderTest, LoadsFilesOfTheSizeAllowedAndNoLargerOnes) {
    const Folder folder = opened();
    EXPECT_EQ(loaded(folder, "file", 7), "found: content");
    EXPECT_EQ(loaded(folder, "file", 6), "too large");
    EXPECT_EQ(loaded(folder, "file", 0), "too large");
    folder_.writeFile("in/empty", "");
    EXPECT_EQ(loaded(folder, "empty", 0), "found: ");
    folder_.writeSparseFile("in/large", std::uint64_t{16} << 30);
    EXPECT_EQ(loaded(folder, "large", std::uint64_t{1} << 30), "too large");
}

#ifndef _WIN32
TEST_F(FolderTest, BoundsFilesWhoseSizeIsNotKnownBeforehand) {
    const std::optional<Folder> folder = Folder::open("/proc/self");
    if (!folder) {
        GTEST_SKIP() << "there are no such files on this system";
    }
    EXPECT_EQ(folder->find("maps")->size, 0u);
    EXPECT_EQ(loaded(*folder, "maps", 100), "too large");
    EXPECT_NE(loaded(*folder, "maps").find("[stack]"), std::string::npos);
    EXPECT_EQ(loaded(*folder, "mem"), "unreadable"); // nothing is mapped at its start
}
#endif

TEST_F(FolderTest, DistinguishesUnreadableFilesFromMissingOnes) {
    const Folder folder = opened();
#ifdef _WIN32
    const support::LockedFile locked(native(folder_.path("in/file")));
#else
    const NoFilesLeft none;
#endif
    EXPECT_TRUE(folder.find("file"));
    EXPECT_EQ(loaded(folder, "file"), "unreadable");
    EXPECT_EQ(loaded(folder, "missing"), "missing");
}

TEST_F(FolderTest, ReportsTheStateOfTheFileThatItLoads) {
    const Folder folder = opened();
    const std::optional<FileState> found = folder.find("file");
    Buffer<unsigned char> buffer;
    FileState state;
    ASSERT_EQ(folder.load("file", anySize, buffer, state), Answer::Found);
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, state);
    EXPECT_EQ(state.size, 7u);
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::chrono::nanoseconds age = now - std::chrono::nanoseconds(state.modified);
    EXPECT_LT(std::chrono::abs(age), std::chrono::minutes(5));

    state = {};
    EXPECT_EQ(folder.load("file", 3, buffer, state), Answer::TooLarge);
    EXPECT_EQ(state, *found);
}

TEST_F(FolderTest, SeesEachWayInWhichAFileChanges) {
    constexpr std::int64_t time = 1'234'567'890'123'456'700;
    const Folder folder = opened();
    const std::filesystem::path path = native(folder_.path("in/file"));
    setModified(path, time);
    const FileState before = folder.find("file").value();
    EXPECT_EQ(before.modified, time);

    // Another time, one unit of Windows file times later.
    setModified(path, time + 100);
    EXPECT_EQ(folder.find("file")->modified, time + 100);
    setModified(path, time);
    EXPECT_EQ(folder.find("file"), before);

    // Another size.
    folder_.writeFile("in/file", "longer content");
    setModified(path, time);
    EXPECT_NE(folder.find("file"), before);

    // Another file in its place.
    folder_.writeFile("in/new", "CONTENT");
    setModified(native(folder_.path("in/new")), time);
    std::filesystem::rename(native(folder_.path("in/new")), path);
    const FileState replaced = folder.find("file").value();
    EXPECT_EQ(replaced.modified, time);
    EXPECT_EQ(replaced.size, before.size);
    EXPECT_EQ(replaced.volume, before.volume);
    EXPECT_NE(replaced.index, before.index);
}

TEST_F(FolderTest, IsIndependentOfTheRootOfTheProcess) {
    const Folder folder = opened();
    const std::optional<Folder> below = Folder::open(folder_.path("in/below"));
    ASSERT_TRUE(below);
    EXPECT_EQ(loaded(folder, "file"), "found: content");
    EXPECT_EQ(loaded(*below, "file"), "missing");
    EXPECT_EQ(loaded(*below, "other"), "found: other");
}

} // namespace
} // namespace kel
