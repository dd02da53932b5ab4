#ifndef LIBKEL_FILESYSTEM_H
#define LIBKEL_FILESYSTEM_H

#include <libKel/Buffer.h>
#include <libKel/Export.h>
#include <libKel/Folder.h>
#include <libKel/String.h>

#include <cstdint>

/// @file
/// The files that templates may include.

namespace kel {

/// Access to the files of the machine.
///
/// Paths: UTF-8 on every system, `/` between the parts (on Windows `\` too, while no root is set).
///   A relative path is relative to the working directory, or to the root where one is set. A path
///   that is empty or holds a NUL byte names nothing.
/// Windows: neither does a path that is not valid UTF-8, or that has a part which Windows would
/// take
///   for something else: one that ends in a dot or a space, or a device name (`CON`, `NUL.txt`,
///   ...). The other rules of Windows remain: upper and lower case are one; short names and streams
///   (`file.txt:stream`) exist; `..` leads to the directory before it in the path, even where that
///   is a link.
/// Root: once a root is set, only the files inside that directory exist. Paths are then relative
///   and are refused where they leave the root by `..` or through a symbolic link. The same paths
///   are refused on every system, so that none means something else on another: absolute paths,
///   and parts that hold `\`, `*`, `?`, `"`, `<`, `>`, `|`, `:` or a control character, or that
///   Windows would take for something else.
///   The root guards against paths, not against somebody who exchanges directories for links
///   while a file is being opened. It is in force until the process ends, also for static objects
///   that are destroyed and threads that run while it exits.
/// Threads: all functions may be called from any thread. The root is one for the whole process, and
///   for processes made by `fork`.
/// Errors: nothing is thrown but `std::bad_alloc`.
class KEL_EXPORT FileSystem {
  public:
    FileSystem() = delete;

    /// True if the path names a regular file, directly or through symbolic links. A directory, a
    /// pipe or a device does not exist in this sense.
    static bool exists(const String& path);

    /// Reads a whole file.
    /// @param path as above
    /// @param out receives the bytes, and owns them; its former content is freed first
    /// @param length where not null, receives the number of bytes read
    /// @return false, with `out` empty and `*length` zero, where the file does not exist (as in
    ///   `exists`), cannot be read, or is longer than 4 GiB - 1 byte
    static bool loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length);

    /// Reads a whole file, unless it is too large.
    /// @param path as above
    /// @param maxBytes the largest size that is loaded; of a larger file at most one byte more is
    ///   read
    /// @param out receives the bytes, and owns them; its former content is freed first. Empty
    ///   unless the answer is `Found`.
    /// @return what became of it; `Missing` where the file does not exist (as in `exists`)
    static Folder::Answer load(const String& path, std::uint64_t maxBytes,
                               Buffer<unsigned char>& out);

    /// From now on only the files inside one directory exist, for the whole process.
    /// @param directory relative to the working directory of this moment, or absolute
    /// @return false, with nothing changed, where this is not a directory that can be entered
    [[nodiscard]] static bool setRoot(const String& directory);

    /// Takes the root away again.
    static void clearRoot();
};

} // namespace kel

#endif
