#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace support {

/// A folder for one test, removed with its contents at the end.
/// Errors: failures throw `std::runtime_error`, which fails the test.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// The full path of `name` in the folder, in UTF-8 and with `/` as the separator.
    std::string path(std::string_view name = {}) const;

    void writeFile(std::string_view name, std::string_view bytes) const;
    void makeFolder(std::string_view name) const;

    /// A sparse file of `size` bytes.
    void writeSparseFile(std::string_view name, std::uint64_t size) const;

    /// Creates a symbolic link to `target`. Returns false if the system does not support it.
    [[nodiscard]] bool makeLink(std::string_view name, std::string_view target) const;

    /// Creates a named pipe without a writer. Returns false if the system does not support it.
    [[nodiscard]] bool makePipe(std::string_view name) const;

  private:
    std::filesystem::path folder_;
};

/// Makes a folder the working directory during its lifetime.
class WorkingFolder {
  public:
    explicit WorkingFolder(const std::string& folder);
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder();

  private:
    std::filesystem::path former_;
};

/// The bytes of a file. Throws if it cannot be read.
std::string readFile(const std::string& path);

} // namespace support

#endif
