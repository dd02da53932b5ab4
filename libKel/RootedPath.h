#ifndef LIBKEL_ROOTEDPATH_H
#define LIBKEL_ROOTEDPATH_H

#include <string_view>

// Which paths may be looked up below a root. Not installed.

namespace kel {

/// True if `path` is relative and means the same file on every system: each of its parts is `.`,
/// `..`, or a name that Windows allows and does not reserve. Whether it stays below the root is for
/// the file system to say.
bool isPortableRelativePath(std::string_view path) noexcept;

} // namespace kel

#endif
