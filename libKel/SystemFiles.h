#ifndef LIBKEL_SYSTEMFILES_H
#define LIBKEL_SYSTEMFILES_H

#include <libKel/Folder.h>

#include <cstdint>
#include <optional>
#include <string>

// The system-dependent part of file access. Not installed.

namespace kel {

#ifdef _WIN32
using SystemPath = std::wstring;
using SystemHandle = void*;
#else
using SystemPath = std::string;
using SystemHandle = int;
#endif

struct Folder::Directory {
    SystemPath path; // as returned by resolveDirectory
};

/// The absolute path of a directory, with symbolic links resolved. Nothing if `path` is not an
/// accessible directory.
std::optional<SystemPath> resolveDirectory(const String& path);

/// The state of the regular file at `path`: inside `root`, or anywhere if that is null.
std::optional<FileState> findFile(const SystemPath* root, const String& path);

/// Closes the handle, if it is open.
class Handle {
  public:
    explicit Handle(SystemHandle handle) noexcept : handle_(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle();

    SystemHandle get() const noexcept { return handle_; }

  private:
    SystemHandle handle_;
};

/// A regular file that is open for reading.
class OpenFile {
  public:
    /// Opens the file that `findFile` would find.
    OpenFile(const SystemPath* root, const String& path);

    /// The state when the file was opened; nothing if that failed.
    const std::optional<FileState>& state() const noexcept { return state_; }

    /// Reads at most `count` bytes. Returns 0 at the end of the file, and nothing on failure.
    std::optional<std::uint64_t> read(unsigned char* to, std::uint64_t count) const;

  private:
    Handle handle_;
    std::optional<FileState> state_;
};

/// `Folder::load` inside `root`, or anywhere if that is null.
Folder::Answer loadWhole(const SystemPath* root, const String& path, std::uint64_t maxBytes,
                         Buffer<unsigned char>& out, FileState& state);

} // namespace kel

#endif
