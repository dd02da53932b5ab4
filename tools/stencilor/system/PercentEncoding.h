#ifndef TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H
#define TOOLS_STENCILOR_SYSTEM_PERCENTENCODING_H

#include <optional>
#include <string>
#include <string_view>

namespace stencilor::system {

/// Encodes a path, with `/` as the separator, as the path of a URI.
std::string percentEncode(std::string_view path);

/// The inverse. Everything but encoded bytes is kept.
std::string percentDecode(std::string_view path);

/// The decoded path of a URI of a file on this machine. Nothing for other URIs, or if it contains a
/// NUL byte.
std::optional<std::string> decodeFileUri(std::string_view uri);

} // namespace stencilor::system

#endif
