#ifndef LIBSTENCILOR_RENDER_RENDER_RESULT_H
#define LIBSTENCILOR_RENDER_RENDER_RESULT_H

#include <libStencilor/render/text_sink.h>

#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// What is said where something cannot be rendered: two texts around the name that it is about.
struct message {
    std::string_view before;
    std::string_view after;
};

// Some end without a quotation mark or a line break. Hosts know them as they are.
namespace messages {
inline constexpr message replacementNotFound{"Could not find expected replacement named \"",
                                             "\"\n"};
inline constexpr message replacementNotString{"The replacement is not of type String for \"", "\""};
inline constexpr message booleanNotFound{"Could not find expected boolean named \"", "\n"};
inline constexpr message notBoolean{"Expected named \"", "\" to be of type ContextBoolean\n"};
inline constexpr message listNotFound{"Could not find expected for-expression named \"", "\"\n"};
inline constexpr message notIterable{"Expected named \"", "\" to be of type ContextIterable\n"};
inline constexpr message fileNotFound{"Could not include file \"", "\", file doesn't exist"};
inline constexpr message fileNotLoaded{"Could not load file \"", "\""};
inline constexpr const char* notParsed =
    "Could not build formatted output: Failed to parse input correctly.";
} // namespace messages

/// Where rendering appends to: the text as UTF-8, and the messages.
struct render_result {
    void report(const message& text, std::string_view name) {
        errors.append(text.before).append(name).append(text.after);
    }

    text_sink output;
    std::string errors;
};

} // namespace kel::Stencilor::internal

#endif
