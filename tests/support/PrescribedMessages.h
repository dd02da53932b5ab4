#ifndef TESTS_SUPPORT_PRESCRIBEDMESSAGES_H
#define TESTS_SUPPORT_PRESCRIBEDMESSAGES_H

#include <libStencilor/Template.h>

#include <array>
#include <string>
#include <string_view>

namespace support {

/// The text of `buildOutput` for each kind of message of a render.
struct PrescribedMessage {
    kel::Stencilor::RenderMessage::Kind kind;
    std::string_view before;
    std::string_view after;
};

inline constexpr std::array prescribedMessages = [] {
    using Kind = kel::Stencilor::RenderMessage::Kind;
    return std::array{
        PrescribedMessage{Kind::ReplacementNotFound, "Could not find expected replacement named \"",
                          "\"\n"},
        PrescribedMessage{Kind::ReplacementNotString,
                          "The replacement is not of type String for \"", "\""},
        PrescribedMessage{Kind::BooleanNotFound, "Could not find expected boolean named \"", "\n"},
        PrescribedMessage{Kind::NotBoolean, "Expected named \"",
                          "\" to be of type ContextBoolean\n"},
        PrescribedMessage{Kind::ListNotFound, "Could not find expected for-expression named \"",
                          "\"\n"},
        PrescribedMessage{Kind::NotIterable, "Expected named \"",
                          "\" to be of type ContextIterable\n"},
        PrescribedMessage{Kind::FileNotFound, "Could not include file \"",
                          "\", file doesn't exist"},
        PrescribedMessage{Kind::FileNotLoaded, "Could not load file \"", "\""},
        PrescribedMessage{Kind::TemplateRejected,
                          "Could not build formatted output: Failed to "
                          "parse input correctly.",
                          ""},
    };
}();

/// The messages of a render as returned by `buildOutput`, without those from inside includes.
inline std::string prescribedText(const kel::Stencilor::RenderResult& result) {
    std::string text;
    for (const kel::Stencilor::RenderMessage& message : result.messages) {
        if (!message.includedFrom.empty()) {
            continue;
        }
        for (const PrescribedMessage& row : prescribedMessages) {
            if (row.kind == message.kind) {
                text += row.before;
                text += message.name.view();
                text += row.after;
            }
        }
    }
    return text;
}

} // namespace support

#endif
