#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <memory>
#include <string_view>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

int kindOf(RenderMessage::Kind kind) {
    using Kind = RenderMessage::Kind;
    switch (kind) {
    case Kind::ReplacementNotFound:
        return STENCILOR_MESSAGE_VALUE_NOT_FOUND;
    case Kind::ReplacementNotString:
        return STENCILOR_MESSAGE_VALUE_NOT_TEXT;
    case Kind::BooleanNotFound:
        return STENCILOR_MESSAGE_BOOLEAN_NOT_FOUND;
    case Kind::NotBoolean:
        return STENCILOR_MESSAGE_NOT_BOOLEAN;
    case Kind::ListNotFound:
        return STENCILOR_MESSAGE_LIST_NOT_FOUND;
    case Kind::NotIterable:
        return STENCILOR_MESSAGE_NOT_LIST;
    case Kind::FileNotFound:
        return STENCILOR_MESSAGE_TEMPLATE_NOT_FOUND;
    case Kind::FileNotLoaded:
        return STENCILOR_MESSAGE_TEMPLATE_UNREADABLE;
    case Kind::TemplateRejected:
        return STENCILOR_MESSAGE_TEMPLATE_REJECTED;
    case Kind::StepLimit:
        return STENCILOR_MESSAGE_STEP_LIMIT;
    case Kind::OutputLimit:
        return STENCILOR_MESSAGE_OUTPUT_LIMIT;
    case Kind::TemplateLimit:
        return STENCILOR_MESSAGE_TEMPLATE_LIMIT;
    case Kind::DepthLimit:
        return STENCILOR_MESSAGE_DEPTH_LIMIT;
    case Kind::Stopped:
        return STENCILOR_MESSAGE_STOPPED;
    }
    return STENCILOR_MESSAGE_NONE;
}

// Created when the library is loaded, not on first use, so that a forked child never waits for it.
const RenderMessage noMessage;
const IncludeSite noSite;

/// Empty for a null handle.
const RenderMessage& of(const stencilor_message* message) {
    return message == nullptr ? noMessage : *message->message;
}

/// Empty if memory is exhausted.
std::string_view textOf(const stencilor_message& message) noexcept {
    const kel::String* made = message.text.load();
    if (made == nullptr) {
        const int status = guarded([&] {
            auto text = std::make_unique<const kel::String>(message.message->text());
            if (message.text.compare_exchange_strong(made, text.get())) {
                made = text.release(); // this thread was first
            }
        });
        if (status != STENCILOR_OK) {
            return "";
        }
    }
    return made->view();
}

/// Empty past the last one.
const IncludeSite& siteOf(const stencilor_message* message, size_t index) {
    const auto& sites = of(message).includedFrom;
    return index < sites.size() ? sites[index] : noSite;
}

} // namespace

int stencilor_message_kind(const stencilor_message* message) {
    return message == nullptr ? STENCILOR_MESSAGE_NONE : kindOf(message->message->kind);
}

const char* stencilor_message_text(const stencilor_message* message, size_t* size) {
    return returned(message == nullptr ? "" : textOf(*message), size);
}

const char* stencilor_message_name(const stencilor_message* message, size_t* size) {
    return returned(of(message).name.view(), size);
}

const char* stencilor_message_template_name(const stencilor_message* message, size_t* size) {
    return returned(of(message).templateName.view(), size);
}

size_t stencilor_message_line(const stencilor_message* message) {
    return of(message).line;
}

size_t stencilor_message_column(const stencilor_message* message) {
    return of(message).column;
}

size_t stencilor_message_begin(const stencilor_message* message) {
    return of(message).range.begin;
}

size_t stencilor_message_end(const stencilor_message* message) {
    return of(message).range.end;
}

size_t stencilor_message_include_count(const stencilor_message* message) {
    return of(message).includedFrom.size();
}

const char* stencilor_message_include_template_name(const stencilor_message* message, size_t index,
                                                    size_t* size) {
    return returned(siteOf(message, index).templateName.view(), size);
}

size_t stencilor_message_include_line(const stencilor_message* message, size_t index) {
    return siteOf(message, index).line;
}

size_t stencilor_message_include_column(const stencilor_message* message, size_t index) {
    return siteOf(message, index).column;
}

size_t stencilor_message_include_begin(const stencilor_message* message, size_t index) {
    return siteOf(message, index).range.begin;
}

size_t stencilor_message_include_end(const stencilor_message* message, size_t index) {
    return siteOf(message, index).range.end;
}
