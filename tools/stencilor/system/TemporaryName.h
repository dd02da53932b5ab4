#ifndef TOOLS_STENCILOR_SYSTEM_TEMPORARYNAME_H
#define TOOLS_STENCILOR_SYSTEM_TEMPORARYNAME_H

#include <string>

namespace stencilor::system {

/// How many names are tried before it is an error that all of them are taken.
inline constexpr int mostTemporaryNames = 100;

/// A name for a hidden file, with 64 random bits: ids of processes are equal in containers that
/// share a folder.
std::string temporaryName();

} // namespace stencilor::system

#endif
