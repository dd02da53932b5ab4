#include <tools/stencilor/context_source.h>
#include <tools/stencilor/failure.h>

#include <algorithm>
#include <utility>

namespace stencilor {

namespace {

JsonValue parse(const std::string& name, std::string_view text, JsonRoot root) {
    std::variant<JsonValue, JsonError> result = parseJson(text, root);
    if (const auto* error = std::get_if<JsonError>(&result)) {
        throw Failure(name + ":" + std::to_string(error->line) + ":" +
                      std::to_string(error->column) + ": " + error->message);
    }
    return std::get<JsonValue>(std::move(result));
}

void setMember(JsonValue& object, std::string_view name, JsonValue value) {
    const auto found = std::find(object.names.begin(), object.names.end(), name);
    if (found != object.names.end()) {
        object.items[static_cast<std::size_t>(found - object.names.begin())] = std::move(value);
        return;
    }
    object.names.emplace_back(name);
    object.items.push_back(std::move(value));
}

} // namespace

JsonValue readContext(const std::string& name, std::string_view text) {
    return parse(name, text, JsonRoot::Object);
}

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
    if (name == booleanMember && value.kind != JsonValue::Kind::Boolean) {
        throw Failure(option + ": expected true or false");
    }
    setMember(context, name, std::move(value));
}

} // namespace stencilor
