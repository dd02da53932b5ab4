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
};

} // namespace kel::Stencilor::internal

#endif
