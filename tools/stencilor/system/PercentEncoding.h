#ifndef TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H
#define TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H

#include <string>
#include <string_view>

namespace stencilor::system {

/// A path with `/` between its parts, as the path of a URI.
std::string percentEncode(std::string_view path);

} // namespace stencilor::system

#endif
