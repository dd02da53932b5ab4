#include "../tests/support/ObviousUtf8.h"
#include "target.h"

#include <libStencilor/Stencilor.h>

#include <tools/stencilor/json_context.h>

// A text is either refused with a reason and a place, or makes a context that can be rendered.

namespace {

constexpr const char* page =
    "{{ a }}{{ a.b }}{{ a.b.c }}{% if a %}{{ b }}{% else %}{{ c }}{% endif %}"
    "{% for b in a %}{{ b.a }}{{ b.a.c }}{% for c in b.b %}{{ c.a }}{% endfor %}{% endfor %}";

void checkContext(const stencilor::JsonValue& value) {
    // A few thousand bytes may ask for more names than one input should take.
    if (stencilor::measureDottedNames(value) > 1024u * 1024) {
        return;
    }
    using Kind = stencilor::JsonValue::Kind;
    const auto context = stencilor::buildContext(value);
    fuzz::require((context == nullptr) == (value.kind == Kind::Null), "null alone makes no value");
    if (context == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < value.names.size(); ++i) {
        const bool shown = value.names[i] != stencilor::booleanMember;
        fuzz::require(context->containsKey(value.names[i]) == shown, "each member has its name");
    }
    const kel::String output = kel::Stencilor::buildOutput(page, *context);
    fuzz::require(output.view() == support::obviouslyRepairedUtf8(output.view()),
                  "what is rendered is valid UTF-8");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = stencilor::parseJson(fuzz::textOf(data, size), stencilor::JsonRoot::Any);
    if (const auto* error = std::get_if<stencilor::JsonError>(&read)) {
        fuzz::require(error->line > 0 && error->column > 0 && !error->message.empty(),
                      "what is refused has a reason and a place");
        return 0;
    }
    checkContext(std::get<stencilor::JsonValue>(read));
    return 0;
}
