#ifndef LIBKEL_FILESYSTEM_H
#define LIBKEL_FILESYSTEM_H

#include <libKel/Buffer.h>
#include <libKel/Export.h>
#include <libKel/Folder.h>
#include <libKel/String.h>

#include <cstdint>

/// @file
/// Access to the files that templates include.

namespace kel {

/// Access to the file system.
///
/// Paths: UTF-8 on every system, with `/` as the separator (on Windows also `\`, unless a root is
///   set). A relative path is relative to the working directory, or to the root if one is set. A
///   path that is empty or contains a NUL byte never exists.
/// Windows: a path also does not exist if it is not valid UTF-8, or has a part that Windows would
///   interpret differently: one that ends in a dot or a space, or a device name (`CON`, `NUL.txt`,
///   ...). The other rules of Windows apply: names are case-insensitive; short names and streams
///   (`file.txt:stream`) exist; `..` removes the part before it, even if that is a link.
/// Root: once a root is set, only the files inside that directory exist. Paths are then relative,
///   and are rejected if they leave the root through `..` or a symbolic link. The same paths are
///   rejected on every system, so that a path means the same everywhere: absolute paths, and parts
///   that contain `\`, `*`, `?`, `"`, `<`, `>`, `|`, `:` or a control character, or that Windows
///   would interpret differently. The root protects against paths, not against someone who replaces
///   directories with links while a file is being opened. It stays in force until the process ends,
///   even for destructors of static objects and for threads that run during exit.
/// Threads: all functions may be called from any thread. The root belongs to the whole process, and
///   child processes created by `fork` inherit it.
/// Errors: only `std::bad_alloc` is thrown.
class KEL_EXPORT FileSystem {
  public:
    FileSystem() = delete;

    /// True if the path names a regular file, directly or through symbolic links. Directories,
    /// pipes and devices do not count.
    static bool exists(const String& path);

    /// Reads a whole file.
    /// @param path as above
    /// @param out receives the bytes and owns them; its previous content is freed
    /// @param length if not null, receives the number of bytes read
    /// @return false, with `out` empty and `*length` zero, if the file does not exist (see
    ///   `exists`), cannot be read, or is longer than 4 GiB - 1 byte
    static bool loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length);

    /// Reads a whole file, unless it is too large.
    /// @param path as above
    /// @param maxBytes the largest size to load; at most one byte more is read from a larger file
    /// @param out receives the bytes and owns them; its previous content is freed. It is empty
    ///   unless the answer is `Found`.
    /// @return the outcome; `Missing` if the file does not exist (see `exists`)
    static Folder::Answer load(const String& path, std::uint64_t maxBytes,
                               Buffer<unsigned char>& out);

    /// Restricts the whole process to the files inside one directory.
    /// @param directory relative to the current working directory, or absolute
    /// @return false, with nothing changed, if this is not an accessible directory
    [[nodiscard]] static bool setRoot(const String& directory);

    /// Removes the root.
    static void clearRoot();
};

} // namespace kel

#endif
