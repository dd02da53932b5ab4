#ifndef TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H
#define TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H

#include <optional>
#include <string>
#include <string_view>

namespace stencilor::system {

/// A path with `/` between its parts, as the path of a URI.
std::string percentEncode(std::string_view path);

/// The inverse. What is not an encoded byte stays as it is.
std::string percentDecode(std::string_view path);

/// What follows the scheme and the authority of a URI of a file on this machine, decoded. Nothing
/// for other URIs, and where there is a NUL byte in it, which no path has.
std::optional<std::string> decodeFileUri(std::string_view uri);

} // namespace stencilor::system

#endif
