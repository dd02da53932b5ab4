#include <libStencilorJson/JsonValue.h>

#include <algorithm>
#include <utility>

namespace kel::Stencilor {

JsonError::JsonError(std::size_t line, std::size_t column, const std::string& reason)
    : std::runtime_error(std::to_string(line) + ":" + std::to_string(column) + ": " + reason),
      line_(line), column_(column) {}

JsonError::JsonError(const std::string& reason) : std::runtime_error(reason) {}

void JsonValue::set(std::string_view name, JsonValue value) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found != names.end()) {
        items[static_cast<std::size_t>(found - names.begin())] = std::move(value);
        return;
    }
    names.emplace_back(name);
    items.push_back(std::move(value));
}

} // namespace kel::Stencilor
