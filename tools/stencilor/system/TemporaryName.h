#ifndef TOOLS_STENCILOR_SYSTEM_TEMPORARYNAME_H
#define TOOLS_STENCILOR_SYSTEM_TEMPORARYNAME_H

#include <string>

namespace stencilor::system {

/// The number of names to try before giving up.
inline constexpr int mostTemporaryNames = 100;

/// A name for a hidden file, with 64 random bits, because process ids can be equal in containers
/// that share a folder.
std::string temporaryName();

} // namespace stencilor::system

#endif
