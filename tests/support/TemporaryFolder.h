#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace support {

/// A folder of its own for one test, removed with everything in it at the end.
/// Errors: what cannot be made throws `std::runtime_error`, which fails the test.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// The full path of `name` inside the folder, in UTF-8 and with `/` between its parts.
    std::string path(std::string_view name = {}) const;

    void writeFile(std::string_view name, std::string_view bytes) const;
    void makeFolder(std::string_view name) const;

    /// A file that is `size` bytes long and takes no room, since nothing is written to it.
    void writeSparseFile(std::string_view name, std::uint64_t size) const;

    /// A symbolic link that leads to `target`. False where the system cannot make one.
    [[nodiscard]] bool makeLink(std::string_view name, std::string_view target) const;

    /// A named pipe that nobody writes to. False where the system has none among its files.
    [[nodiscard]] bool makePipe(std::string_view name) const;

  private:
    std::filesystem::path folder_;
};

/// Makes a folder the working directory for a while.
class WorkingFolder {
  public:
    explicit WorkingFolder(const std::string& folder);
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder();

  private:
    std::filesystem::path former_;
};

/// The bytes of a file. Throws where it cannot be read.
std::string readFile(const std::string& path);

} // namespace support

#endif
