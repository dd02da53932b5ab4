#ifndef LIBKEL_SYSTEMFILES_H
#define LIBKEL_SYSTEMFILES_H

#include <libKel/Folder.h>

#include <cstdint>
#include <optional>
#include <string>

// What differs between the systems about files. Not installed.

namespace kel {

#ifdef _WIN32
using SystemPath = std::wstring;
using SystemHandle = void*;
#else
using SystemPath = std::string;
using SystemHandle = int;
#endif

struct Folder::Directory {
    SystemPath path; // as resolveDirectory gives it
};

/// The path under which the system knows a directory, absolute and without links. Nothing where
/// `path` is not a directory that can be entered.
std::optional<SystemPath> resolveDirectory(const String& path);

/// The state of the regular file at `path`: below `root`, or anywhere where that is null.
std::optional<FileState> findFile(const SystemPath* root, const String& path);

/// Closes what is open, if anything is.
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
    /// Opens what `findFile` would find.
    OpenFile(const SystemPath* root, const String& path);

    /// The state when the file was opened; nothing where it could not be.
    const std::optional<FileState>& state() const noexcept { return state_; }

    /// Reads at most `count` bytes; 0 at the end of the file, nothing on failure.
    std::optional<std::uint64_t> read(unsigned char* to, std::uint64_t count) const;

  private:
    Handle handle_;
    std::optional<FileState> state_;
};

/// `Folder::load` below `root`, or anywhere where that is null.
Folder::Answer loadWhole(const SystemPath* root, const String& path, std::uint64_t maxBytes,
                         Buffer<unsigned char>& out, FileState& state);

} // namespace kel

#endif
