#include "../tests/support/oracles/JsonComparison.h"
#include "../tests/support/oracles/ObviousUtf8.h"
#include "target.h"

#include <libStencilorJson/Json.h>
#include <libStencilorJson/measure_names.h>

#include <optional>

// The reader and the parser of nlohmann-json accept the same texts and report the same values. A
// text is either refused with a reason and a position, or makes a context that can be rendered; and
// a value of nlohmann-json makes what its text makes.

namespace {

using namespace kel::Stencilor;

constexpr const char* page =
    "{{ a }}{{ a.b }}{{ a.b.c }}{% if a %}{{ b }}{% else %}{{ c }}{% endif %}"
    "{% for b in a %}{{ b.a }}{{ b.a.c }}{% for c in b.b %}{{ c.a }}{% endfor %}{% endfor %}";

// A few thousand bytes may ask for more names than one input should take.
bool isTooLarge(const JsonValue& value) {
    return internal::measureDottedNames(value) > 1024u * 1024;
}

std::optional<JsonValue> read(std::string_view text) {
    try {
        return parseJson(text, JsonRoot::Any);
    } catch (const JsonError& error) {
        fuzz::require(error.line() > 0 && error.column() > 0 && *error.what() != '\0',
                      "what is refused has a reason and a position");
        return std::nullopt;
    }
}

kel::String render(const ContextBase& context) {
    kel::String errors;
    kel::String output = buildOutput(page, context, errors);
    output += errors;
    return output;
}

void checkContext(const JsonValue& value) {
    const auto context = contextFromJsonValue(value);
    const bool isNull = value.kind == JsonValue::Kind::Null;
    fuzz::require((context == nullptr) == isNull, "null alone makes no value");
    if (context == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < value.names.size(); ++i) {
        const bool shown = value.names[i] != jsonBooleanMember;
        fuzz::require(context->containsKey(value.names[i]) == shown, "each member has its name");
    }
    const kel::String output = render(*context);
    fuzz::require(output.view() == support::obviouslyRepairedUtf8(output.view()),
                  "what is rendered is valid UTF-8");
}

// The text of the value, since the values themselves keep numbers of only so many digits.
void checkNlohmann(std::string_view text) {
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded()) {
        return; // a number too great for it
    }
    const auto asText = contextFromJsonText(json.dump(), JsonRoot::Any);
    const auto asValue = contextFromJson(json);
    fuzz::require((asText == nullptr) == (asValue == nullptr), "a value is null as its text is");
    if (asText != nullptr) {
        fuzz::require(render(*asText) == render(*asValue), "a value is what its text is");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    fuzz::require(support::compareJsonReaders(text).difference.empty(), "both readers agree");
    const std::optional<JsonValue> value = read(text);
    if (value && !isTooLarge(*value)) {
        checkContext(*value);
        checkNlohmann(text);
    }
    return 0;
}
