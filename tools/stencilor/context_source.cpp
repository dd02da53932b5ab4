#include <libStencilorJson/JsonValue.h>
#include <tools/stencilor/context_source.h>
#include <tools/stencilor/failure.h>
#include <tools/stencilor/files.h>

#include <string_view>
#include <utility>

namespace stencilor {

namespace {

using kel::Stencilor::jsonBooleanMember;
using kel::Stencilor::JsonRoot;
using kel::Stencilor::JsonValue;

JsonValue parse(const std::string& name, std::string_view text, JsonRoot root) {
    try {
        return kel::Stencilor::parseJson(text, root);
    } catch (const kel::Stencilor::JsonError& error) {
        throw Failure(name + ":" + error.what());
    }
}

/// Carries out one `-D` option: `NAME=VALUE` makes the member NAME of `context` a string,
/// `NAME:=JSON` any value. What stood under that name is replaced.
void applyDefinition(JsonValue& context, std::string_view definition) {
    const std::size_t equals = definition.find('=');
    const bool isJson =
        equals != std::string_view::npos && equals > 0 && definition[equals - 1] == ':';
    const std::string_view name = definition.substr(0, isJson ? equals - 1 : equals);
    if (equals == std::string_view::npos || name.empty()) {
        throw Failure("-D " + std::string(definition) + ": expected NAME=VALUE or NAME:=JSON");
    }
    const std::string_view text = definition.substr(equals + 1);
    const std::string option = "-D " + std::string(name);
    JsonValue value = isJson
                          ? parse(option, text, JsonRoot::Any)
                          : JsonValue{.kind = JsonValue::Kind::String, .text = std::string(text)};
    if (name == jsonBooleanMember && value.kind != JsonValue::Kind::Boolean) {
        throw Failure(option + ": expected true or false");
    }
    context.set(name, std::move(value));
}

JsonValue loadContext(const ContextOptions& options) {
    JsonValue context{.kind = JsonValue::Kind::Object};
    if (options.file) {
        context = parse(inputName(*options.file), readInput(*options.file), JsonRoot::Object);
    }
    for (const std::string& definition : options.definitions) {
        applyDefinition(context, definition);
    }
    return context;
}

} // namespace

std::unique_ptr<kel::Stencilor::ContextBase> makeContext(const ContextOptions& options) {
    return kel::Stencilor::contextFromJsonValue(loadContext(options));
}

} // namespace stencilor
