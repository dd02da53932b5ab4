#ifndef LIBSTENCILOR_HOST_BYTE_TEXT_H
#define LIBSTENCILOR_HOST_BYTE_TEXT_H

#include <libKel/String.h>

#include <concepts>
#include <string_view>

namespace kel::Stencilor::internal {

/// A string whose characters are the bytes of UTF-8, at hand without a copy, as those of `libKel`
/// are. Its conversions keep well-formed text as it is, so the engine does without them. The
/// strings of another base library are converted at each border.
template <typename Text>
concept byte_text = requires(const Text& text, std::string_view bytes) {
    { text.view() } -> std::same_as<std::string_view>;
    { Text::isUtf8(bytes) } -> std::same_as<bool>;
    requires Text::readableBytes >= 16; // from where the view begins; the text ends with a NUL
    Text(bytes);
};

/// A name of a template as a key of the context. It holds no NUL.
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
