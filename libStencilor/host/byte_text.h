#ifndef LIBSTENCILOR_HOST_BYTE_TEXT_H
#define LIBSTENCILOR_HOST_BYTE_TEXT_H

#include <libKel/String.h>

#include <concepts>
#include <string_view>

namespace kel::Stencilor::internal {

/// A string of UTF-8 bytes that can be read without a copy, like that of `libKel`. The engine skips
/// its conversions, which would not change well-formed text. Strings of another base library are
/// converted at each boundary.
template <typename Text>
concept byte_text = requires(const Text& text, std::string_view bytes) {
    { text.view() } -> std::same_as<std::string_view>;
    { Text::isUtf8(bytes) } -> std::same_as<bool>;
    requires Text::readableBytes >= 16; // from the beginning of the view; the text ends with a NUL
    Text(bytes);
};

/// Calls `use` with the bytes of a template, which end with a NUL.
template <typename Text, typename Use>
auto withLowerBytes(const Text& text, Use use) {
    const auto narrow = text.getLowerByteString();
    return use(narrow.c_str());
}
template <byte_text Text, typename Use>
auto withLowerBytes(const Text& text, Use use) {
    return use(text.view().data());
}

/// A name of a template as a key of the context. It contains no NUL.
template <typename Text>
Text keyOf(std::string_view name) {
    return Text(name.data());
}
template <byte_text Text>
Text keyOf(std::string_view name) {
    return Text(name);
}

} // namespace kel::Stencilor::internal

#endif
