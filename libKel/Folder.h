#ifndef LIBKEL_FOLDER_H
#define LIBKEL_FOLDER_H

#include <libKel/Buffer.h>
#include <libKel/Export.h>
#include <libKel/String.h>

#include <cstdint>
#include <memory>
#include <optional>

/// @file
/// One directory, and the files inside it.

namespace kel {

/// What a file is at one moment. Two equal states mean that the file is the same and unchanged, as
/// far as the file system records it: a change within the resolution of its clock may not show.
struct FileState {
    std::uint64_t size = 0;    ///< in bytes; 0 where the system makes up the file as it is read
    std::int64_t modified = 0; ///< last modification, in nanoseconds since 1970-01-01 00:00 UTC
    std::uint64_t volume = 0;  ///< POSIX: the device; Windows: the serial number of the volume
    std::uint64_t index = 0;   ///< POSIX: the inode; Windows: the file index on the volume

    friend bool operator==(const FileState&, const FileState&) = default;
};

/// A directory that only the files inside it can be read through.
///
/// Paths: as below a root of `FileSystem`. They are relative to the directory, portable, and name
///   nothing where they lead out of it, be it by `..` or through a symbolic link.
/// Ownership: holds the directory's path as it was resolved by `open`, and keeps nothing open.
/// Copying: copies share the path, and cost no more than counting them. Moving copies.
/// Threads: may be used by many threads.
/// Errors: reported by results; nothing is thrown but `std::bad_alloc`.
class Folder {
  public:
    /// What became of a file that was to be loaded.
    enum class Answer {
        Found,      ///< it was loaded
        Missing,    ///< no regular file inside the directory has this path
        Unreadable, ///< it exists, but cannot be opened or read
        TooLarge    ///< it is, or became while it was read, larger than allowed
    };

    /// Resolves a directory.
    /// @param directory in UTF-8; relative to the working directory of this moment, or absolute
    /// @return nothing where it is not a directory that can be entered
    KEL_EXPORT static std::optional<Folder> open(const String& directory);

    /// Shares the path.
    /// @{
    Folder(const Folder&) = default;
    Folder& operator=(const Folder&) = default;
    /// @}

    /// Looks a file up without opening it for reading, so that it may turn out to be unreadable.
    /// @param path below the directory
    /// @return nothing where no regular file inside the directory has this path
    KEL_EXPORT std::optional<FileState> find(const String& path) const;

    /// Reads a whole file, all of it from one open handle.
    /// @param path below the directory
    /// @param maxBytes the largest size that is loaded
    /// @param out receives the bytes and owns them; its former content is freed first. Empty unless
    ///   the answer is `Found`.
    /// @param state receives what that handle reported before the first byte was read, so that a
    ///   file that changes later, even while it is read, has another state from then on. Where
    ///   `out.size` differs from its size, the file changed meanwhile or is made up by the system,
    ///   and the state says nothing about the bytes. Unchanged if the answer is `Missing`, or
    ///   `Unreadable` because the file could not be opened.
    /// @return what became of it
    KEL_EXPORT Answer load(const String& path, std::uint64_t maxBytes, Buffer<unsigned char>& out,
                           FileState& state) const;

  private:
    friend class FileSystem;
    struct Directory;
    explicit Folder(std::shared_ptr<const Directory> directory) noexcept;

    std::shared_ptr<const Directory> directory_; // never null
};

} // namespace kel

#endif
