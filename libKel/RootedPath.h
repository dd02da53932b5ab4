#ifndef LIBKEL_ROOTEDPATH_H
#define LIBKEL_ROOTEDPATH_H

#include <string_view>

// The rules for paths. Not installed.

namespace kel {

/// True if `path` is relative and means the same file on every system: each of its parts is `.`,
/// `..`, or a name that Windows allows and does not reserve. The file system checks whether it
/// stays inside the root.
bool isPortableRelativePath(std::string_view path) noexcept;

/// True if Windows looks up each part of `path` exactly as written: none ends in a dot or a space,
/// which Windows would drop, or is a device name. This applies with and without a root.
bool isAsWrittenOnWindows(std::string_view path) noexcept;

} // namespace kel

#endif
