#ifndef LIBSTENCILOR_RENDER_MESSAGES_H
#define LIBSTENCILOR_RENDER_MESSAGES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel::Stencilor::internal {

/// Why a node cannot be rendered.
enum class fault : std::uint8_t {
    replacementNotFound,
    replacementNotString,
    booleanNotFound,
    notBoolean,
    listNotFound,
    notIterable,
    fileNotFound,
    fileNotLoaded,
};

/// The message of `buildOutput` for a fault: text before and after a name.
struct message {
    std::string_view before;
    std::string_view after;
};

/// One row per fault, in the order of the enumeration. Some lack a final quotation mark or line
/// break, but hosts depend on the exact wording.
inline constexpr std::array messages{
    message{"Could not find expected replacement named \"", "\"\n"},
    message{"The replacement is not of type String for \"", "\""},
    message{"Could not find expected boolean named \"", "\n"},
    message{"Expected named \"", "\" to be of type ContextBoolean\n"},
    message{"Could not find expected for-expression named \"", "\"\n"},
    message{"Expected named \"", "\" to be of type ContextIterable\n"},
    message{"Could not include file \"", "\", file doesn't exist"},
    message{"Could not load file \"", "\""},
};
static_assert(messages.size() == static_cast<std::size_t>(fault::fileNotLoaded) + 1);

constexpr const message& messageOf(fault reason) {
    return messages[static_cast<std::size_t>(reason)];
}

/// The message of `buildOutput` for a rejected template.
inline constexpr const char* notParsed =
    "Could not build formatted output: Failed to parse input correctly.";

} // namespace kel::Stencilor::internal

#endif
