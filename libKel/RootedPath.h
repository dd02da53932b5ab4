#ifndef LIBKEL_ROOTEDPATH_H
#define LIBKEL_ROOTEDPATH_H

#include <string_view>

// Which paths may be looked up. Not installed.

namespace kel {

/// True if `path` is relative and means the same file on every system: each of its parts is `.`,
/// `..`, or a name that Windows allows and does not reserve. Whether it stays below the root is for
/// the file system to say.
bool isPortableRelativePath(std::string_view path) noexcept;

/// True if Windows looks for each part of `path` under the name that is written, whether or not
/// there is a root: none ends in a dot or a space, which it would drop, or is the name of a device.
bool isAsWrittenOnWindows(std::string_view path) noexcept;

} // namespace kel

#endif
