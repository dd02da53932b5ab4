#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorJson/JsonText.h>
#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Failure.h>

#include <stdexcept>
#include <string_view>
#include <utility>

namespace stencilor {

namespace {

using kel::Stencilor::Value;
using kel::Stencilor::Analysis::shorten;

Value parse(const std::string& name, std::string_view text) {
    try {
        return kel::Stencilor::valueFromJsonText(text);
    } catch (const kel::Stencilor::JsonError& error) {
        throw Failure(name + ":" + error.what());
    }
}

/// Applies one `-D` option: `NAME=VALUE` sets the member NAME of `context` to a string,
/// `NAME:=JSON` to any value.
void applyDefinition(Value& context, std::string_view definition) {
    const std::size_t equals = definition.find('=');
    const bool isJson =
        equals != std::string_view::npos && equals > 0 && definition[equals - 1] == ':';
    const std::string_view name = definition.substr(0, isJson ? equals - 1 : equals);
    if (equals == std::string_view::npos || name.empty()) {
        throw Failure("-D " + shorten(definition) + ": expected NAME=VALUE or NAME:=JSON");
    }
    const std::string_view text = definition.substr(equals + 1);
    const std::string option = "-D " + shorten(name);
    Value value = isJson ? parse(option, text) : Value(text);
    if (name == "$boolean" && value.kind() != Value::Kind::Boolean) {
        throw Failure(option + ": expected true or false");
    }
    context.set(name, std::move(value));
}

Value loadContext(const ContextRequest& request, Files& files, std::string* text) {
    Value context;
    if (request.file) {
        const std::string name = inputName(*request.file);
        std::string json = files.read(*request.file);
        context = parse(name, json);
        if (context.kind() != Value::Kind::Dictionary) {
            throw Failure(name + ": expected an object, whose members the template can name");
        }
        if (text != nullptr) {
            *text = std::move(json);
        }
    }
    for (const std::string& definition : request.definitions) {
        applyDefinition(context, definition);
    }
    return context;
}

} // namespace

kel::Stencilor::Context makeContext(const ContextRequest& request, Files& files,
                                    std::string* text) {
    const Value values = loadContext(request, files, text);
    try {
        return kel::Stencilor::Context(values, {.positions = request.positions});
    } catch (const std::length_error& error) { // thrown for the dotted names, not for a string
        throw Failure(error.what());
    }
}

} // namespace stencilor
