#include <libStencilor/Template.h>

#include <string>

namespace kel::Stencilor {

namespace {

/// A name in quotation marks, without line breaks or other characters that control a terminal.
std::string quoted(const String& name) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "\"";
    for (const char byte : name.view()) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x20 || code == 0x7F) {
            text += {'\\', 'u', '0', '0', digits[code >> 4], digits[code & 0xF]};
        } else {
            text += byte;
        }
    }
    return text + '"';
}

std::string describe(const RenderMessage& message) {
    using Kind = RenderMessage::Kind;
    switch (message.kind) {
    case Kind::ReplacementNotFound:
        return "there is no value named " + quoted(message.name);
    case Kind::ReplacementNotString:
        return "the value " + quoted(message.name) + " is not a string";
    case Kind::BooleanNotFound:
        return "there is no boolean named " + quoted(message.name);
    case Kind::NotBoolean:
        return "the value " + quoted(message.name) + " is not a boolean";
    case Kind::ListNotFound:
        return "there is no list named " + quoted(message.name);
    case Kind::NotIterable:
        return "the value " + quoted(message.name) + " is not a list";
    case Kind::FileNotFound:
        return "there is no template " + quoted(message.name);
    case Kind::FileNotLoaded:
        return "the template " + quoted(message.name) + " cannot be read";
    case Kind::TemplateRejected:
        return std::string("the template is not well formed: expected ") +
               describe(message.fault.expected);
    case Kind::StepLimit:
        return "the step limit was reached";
    case Kind::OutputLimit:
        return "the output size limit was reached";
    case Kind::TemplateLimit:
        return "the template size limit was reached";
    case Kind::DepthLimit:
        return "the include depth limit was reached";
    case Kind::Stopped:
        return "the host stopped the render";
    }
    return {};
}

} // namespace

String RenderMessage::text() const {
    return describe(*this);
}

} // namespace kel::Stencilor
