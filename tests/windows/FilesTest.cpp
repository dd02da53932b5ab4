#include "../support/Context.h"
#include "../support/LockedFile.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>

#include <windows.h>

// Behavior of files that is specific to Windows. Common behavior is tested with the base library.

namespace support {
namespace {

using kel::FileSystem;

std::wstring native(const std::string& path) {
    return std::filesystem::path(std::u8string(path.begin(), path.end())).make_preferred().native();
}

/// The form of paths that allows any length, and in which Windows does not change names.
std::wstring unlimited(const std::string& path) {
    return L"\\\\?\\" + native(path);
}

void expectLoaded(const kel::String& path, const std::string& expected) {
    EXPECT_TRUE(FileSystem::exists(path)) << path;
    kel::Buffer<unsigned char> buffer;
    EXPECT_TRUE(FileSystem::loadFile(path, buffer, nullptr)) << path;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer.data), buffer.size), expected);
}

void expectMissing(const kel::String& path) {
    EXPECT_FALSE(FileSystem::exists(path)) << path;
    kel::Buffer<unsigned char> buffer;
    EXPECT_FALSE(FileSystem::loadFile(path, buffer, nullptr)) << path;
}

class WindowsFiles : public testing::Test {
  protected:
    ~WindowsFiles() override { FileSystem::clearRoot(); }

    TemporaryFolder folder_;
};

TEST_F(WindowsFiles, AreTemplatesInAnyLanguage) {
    folder_.makeFolder("\u6A21\u677F");
    folder_.writeFile("\u6A21\u677F/\u00FCberblick.txt", "\u00DC[{% include \"part.txt\" %}]");
    folder_.writeFile("\u6A21\u677F/part.txt", "\u6A21");
    folder_.writeFile("\u6A21\u677F/na\u00EFve.txt", "text");
    ASSERT_TRUE(FileSystem::setRoot(folder_.path("\u6A21\u677F")));
    kel::Buffer<unsigned char> buffer;
    ASSERT_TRUE(FileSystem::loadFile("\u00FCberblick.txt", buffer, nullptr));
    const kel::String input(reinterpret_cast<const char*>(buffer.data),
                            static_cast<unsigned int>(buffer.size));
    EXPECT_EQ(render(input, Root()), (Rendered{"\u00DC[\u6A21]", ""}));

    // Such a file exists, but as on other systems, templates cannot name it.
    expectLoaded("na\u00EFve.txt", "text");
    EXPECT_EQ(render("{% include \"na\u00EFve.txt\" %}", Root()).errors,
              "Could not build formatted output: Failed to parse input correctly.");
}

TEST_F(WindowsFiles, AreLoadedIfTheyAreReadOnly) {
    folder_.writeFile("file.txt", "text");
    const std::wstring path = native(folder_.path("file.txt"));
    ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    expectLoaded(folder_.path("file.txt"), "text");
    ASSERT_NE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST_F(WindowsFiles, AreLoadedWhileAnotherProgramHasThemOpenAndShares) {
    folder_.writeFile("file.txt", "text");
    const HANDLE file =
        ::CreateFileW(native(folder_.path("file.txt")).c_str(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    expectLoaded(folder_.path("file.txt"), "text");
    ::CloseHandle(file);
}

TEST_F(WindowsFiles, ExistButAreNotLoadedWhileTheyAreLocked) {
    folder_.writeFile("file.txt", "text");
    const std::string path = folder_.path("file.txt");
    ASSERT_TRUE(FileSystem::setRoot(folder_.path()));
    {
        const LockedFile locked(native(path));
        EXPECT_TRUE(FileSystem::exists("file.txt"));
        kel::Buffer<unsigned char> buffer;
        EXPECT_FALSE(FileSystem::loadFile("file.txt", buffer, nullptr));
        EXPECT_EQ(buffer.data, nullptr);
        EXPECT_EQ(render("[{% include \"file.txt\" %}]", Root()),
                  (Rendered{"[]", "Could not load file \"file.txt\""}));
    }
    expectLoaded("file.txt", "text");
}

TEST_F(WindowsFiles, AreFoundByBackslashesAndDrives) {
    folder_.makeFolder("below");
    folder_.writeFile("below/file.txt", "text");
    std::string path = folder_.path("below/file.txt");
    ASSERT_EQ(path[1], ':');
    expectLoaded(path, "text");
    for (char& character : path) {
        character = character == '/' ? '\\' : character;
    }
    expectLoaded(path, "text");
    expectLoaded("\\\\?\\" + path, "text");
    const WorkingFolder working(folder_.path("below"));
    expectLoaded(".\\file.txt", "text");
    expectLoaded("..\\below\\file.txt", "text");
    expectLoaded(path.substr(0, 2) + "file.txt", "text"); // in the working directory
    expectLoaded(path.substr(2), "text");
}

// Windows removes the end of such names, and the part before `..`.
TEST_F(WindowsFiles, AreFoundByTheNamesAsTheyAreWritten) {
    folder_.makeFolder("below");
    folder_.writeFile("f0", "text");
    folder_.writeFile("f2.txt", "text");
    folder_.writeFile("below/f", "text");
    const WorkingFolder working(folder_.path());
    for (const bool below : {false, true}) {
        SCOPED_TRACE(below ? "below a root" : "without a root");
        for (const char* const path :
             {"f0", "below/../f0", "./f0", "below/f", "below/.././f2.txt"}) {
            expectLoaded(path, "text");
        }
        for (const char* const path :
             {"f0.", "f0..", "f0 ", "f0. ", "f2.txt.", "f2.txt. ", "below./f", "below /f",
              "nodir/../f0", "below/nodir/../../f0", "f0/../f0", "f2.txt/./../f0", "NUL", "nul.txt",
              "below/CON"}) {
            expectMissing(path);
        }
        ASSERT_TRUE(FileSystem::setRoot("."));
    }
    FileSystem::clearRoot();
    for (const char* const path : {"below\\..\\f0", ".\\below/../f0"}) {
        expectLoaded(path, "text");
    }
    for (const char* const path : {"nodir\\..\\f0", "below.\\f", "f0\\..\\f0"}) {
        expectMissing(path);
    }
    expectMissing(folder_.path("f0."));
    expectMissing(folder_.path("nodir/../f0"));
    EXPECT_FALSE(FileSystem::setRoot("below."));
    EXPECT_FALSE(FileSystem::setRoot("nodir/.."));
}

// A name that ends in a space or a dot can only be created with the unlimited form of a path.
TEST_F(WindowsFiles, OfNamesThatOtherProgramsCannotNameAreNotFound) {
    for (const char* const name : {"file.", "file ", "CON", "NUL.txt"}) {
        const HANDLE file =
            ::CreateFileW(unlimited(folder_.path() + "/" + name).c_str(), GENERIC_WRITE, 0, nullptr,
                          CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE) << name << ", error " << ::GetLastError();
        ::CloseHandle(file);
    }
    for (const char* const name : {"file.", "file ", "CON", "NUL.txt"}) {
        expectMissing("\\\\?\\" + folder_.path() + "/" + name);
        expectMissing(folder_.path(name));
    }
    ASSERT_TRUE(FileSystem::setRoot(folder_.path()));
    for (const char* const name : {"file.", "file ", "CON", "NUL.txt"}) {
        expectMissing(name);
        EXPECT_NE(::DeleteFileW(unlimited(folder_.path() + "/" + name).c_str()), 0);
    }
}

TEST_F(WindowsFiles, AreFoundBelowARootWhateverTheCaseOfTheirLetters) {
    folder_.makeFolder("Folder");
    folder_.writeFile("Folder/File.txt", "text");
    ASSERT_TRUE(FileSystem::setRoot(folder_.path("FOLDER")));
    expectLoaded("file.TXT", "text");
    expectMissing("../other/file.txt");
}

TEST_F(WindowsFiles, AreNotFoundOnAnotherDriveOrServerOnceThereIsARoot) {
    folder_.writeFile("file.txt", "text");
    const std::string full = folder_.path("file.txt");
    ASSERT_TRUE(FileSystem::setRoot("C:\\"));
    expectMissing(full);
    expectMissing("..\\" + full.substr(3));
    const WorkingFolder working(folder_.path());
    ASSERT_TRUE(FileSystem::setRoot("."));
    for (const std::string path :
         {"C:file.txt", "C:\\file.txt", "C:/file.txt", "\\\\localhost\\c$\\windows\\win.ini",
          "//localhost/c$/windows/win.ini", "\\\\?\\C:\\windows\\win.ini", ".\\file.txt",
          "dir/..\\file.txt", "..\\file.txt"}) {
        expectMissing(path);
    }
    expectMissing(full.substr(0, 2) + "file.txt");
    expectLoaded("file.txt", "text");
}

TEST_F(WindowsFiles, HaveNoRootThatIsADevice) {
    for (const char* const name : {"NUL", "CON", "NUL.txt", "C:\\NUL", "\\\\.\\NUL"}) {
        EXPECT_FALSE(FileSystem::setRoot(name)) << name;
    }
}

/// A folder whose path exceeds the default limit of 260 characters on Windows. It is created and
/// removed with the unlimited form of paths.
class LongFolder {
  public:
    explicit LongFolder(const TemporaryFolder& folder) : path_(folder.path()) {
        const std::string name = "/" + std::string(40, 'l') + "\u00E4\u6A21";
        for (int level = 0; level < 8; ++level) {
            path_ += name;
            levels_.push_back(path_);
            EXPECT_NE(::CreateDirectoryW(unlimited(path_).c_str(), nullptr), 0);
        }
    }
    LongFolder(const LongFolder&) = delete;
    LongFolder& operator=(const LongFolder&) = delete;
    ~LongFolder() {
        ::DeleteFileW(unlimited(file()).c_str());
        for (; !levels_.empty(); levels_.pop_back()) {
            ::RemoveDirectoryW(unlimited(levels_.back()).c_str());
        }
    }

    void writeFile(const std::string& text) const {
        const HANDLE handle = ::CreateFileW(unlimited(file()).c_str(), GENERIC_WRITE, 0, nullptr,
                                            CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        EXPECT_NE(
            ::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr),
            0);
        ::CloseHandle(handle);
    }

    /// True if the system can report the path of this folder once it is open.
    bool hasFinalPath() const {
        const HANDLE folder =
            ::CreateFileW(unlimited(path_).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        EXPECT_NE(folder, INVALID_HANDLE_VALUE);
        std::wstring path(1000, L'\0');
        const DWORD length =
            ::GetFinalPathNameByHandleW(folder, path.data(), static_cast<DWORD>(path.size()), 0);
        ::CloseHandle(folder);
        return length != 0;
    }

    const std::string& path() const { return path_; }
    std::string file() const { return path_ + "/file.txt"; }

  private:
    std::string path_;
    std::vector<std::string> levels_;
};

TEST_F(WindowsFiles, AreFoundByPathsOfAnyLength) {
    const LongFolder folder(folder_);
    folder.writeFile("text");
    ASSERT_GT(native(folder.file()).size(), 300u);
    expectLoaded(folder.file(), "text");
    expectMissing(folder.path() + "/none.txt");
    {
        const WorkingFolder working(folder_.path());
        expectLoaded(folder.file().substr(folder_.path().size() + 1), "text");
    }
}

TEST_F(WindowsFiles, AreFoundByPathsOfAnyLengthBelowARoot) {
    const LongFolder folder(folder_);
    if (!folder.hasFinalPath()) {
        GTEST_SKIP() << "this system, like Wine 8, does not report long paths of open files";
    }
    folder.writeFile("text");
    ASSERT_TRUE(FileSystem::setRoot(folder_.path()));
    expectLoaded(folder.file().substr(folder_.path().size() + 1), "text");
    ASSERT_TRUE(FileSystem::setRoot(folder.path()));
    expectLoaded("file.txt", "text");
    EXPECT_EQ(render("[{% include \"file.txt\" %}]", Root()), (Rendered{"[text]", ""}));
    expectMissing("../file.txt");
}

} // namespace
} // namespace support
