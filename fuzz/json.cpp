#include "../tests/support/oracles/JsonComparison.h"
#include "../tests/support/oracles/ObviousUtf8.h"
#include "target.h"

#include <libStencilorJson/Json.h>

#include <cstddef>
#include <optional>
#include <stdexcept>

// The reader and the nlohmann-json parser accept the same input and return the same values. Input
// is either rejected with a reason and a position, or makes a context that can be rendered. An
// nlohmann-json value converts to the same value as its JSON text.

namespace {

using namespace kel::Stencilor;

constexpr const char* page =
    "{{ a }}{{ a.b }}{{ a.b.c }}{% if a %}{{ b }}{% else %}{{ c }}{% endif %}"
    "{% for b in a %}{{ b.a }}{{ b.value }}{{ b.index }}{% if b.last %}{{ b.a.c }}{% endif %}"
    "{% for c in b.b %}{{ c.a }}{% endfor %}{% for c in b.value %}{{ c.value }}{% endfor %}"
    "{% endfor %}";

// A few thousand bytes can require more names than one input should use.
std::size_t countNames(const Value& value, std::size_t dictionariesAround) {
    std::size_t result = 0;
    if (value.kind() == Value::Kind::Dictionary) {
        result = value.size() * (dictionariesAround + 1);
        for (const kel::String& key : value.keys()) {
            result += countNames(*value.find(key), dictionariesAround + 1);
        }
    } else if (value.kind() == Value::Kind::List) {
        for (std::size_t i = 0; i < value.size(); ++i) {
            result += countNames(value.at(i), 0);
        }
    }
    return result;
}

std::optional<Value> read(std::string_view text) {
    try {
        return valueFromJsonText(text);
    } catch (const JsonError& error) {
        fuzz::require(error.line() > 0 && error.column() > 0 && *error.what() != '\0',
                      "what is refused has a reason and a position");
        return std::nullopt;
    }
}

std::optional<Context> makeContext(const Value& value, ContextOptions options) {
    try {
        return Context(value, options);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

void checkContext(const Value& value, ContextOptions options) {
    const std::optional<Context> made = makeContext(value, options);
    const bool isDictionary = value.kind() == Value::Kind::Dictionary;
    fuzz::require(made.has_value() == isDictionary, "every dictionary makes a context");
    if (!made) {
        return;
    }
    const ContextBase& context = *made;
    for (const kel::String& key : value.keys()) {
        fuzz::require(context.containsKey(key) == !(key == "$boolean"), "each key has its name");
    }
    const kel::String output = buildOutput(page, context);
    fuzz::require(output.view() == support::obviouslyRepairedUtf8(output.view()),
                  "what is rendered is valid UTF-8");
}

// The text of the value, because nlohmann-json limits the digits of numbers. Fractions and
// exponents are excluded, because values format them in their own way.
void checkNlohmann(std::string_view text) {
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded()) {
        return; // a number too large for it
    }
    const Value value = valueFromJson(json);
    const std::string written = json.dump();
    const bool hasFractions = written.find('.') != std::string::npos ||
                              written.find("e+") != std::string::npos ||
                              written.find("e-") != std::string::npos;
    fuzz::require(hasFractions || value == valueFromJsonText(written),
                  "a value is what its text is");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    fuzz::require(support::compareJsonReaders(text).difference.empty(), "both readers agree");
    const std::optional<Value> value = read(text);
    if (value && countNames(*value, 0) <= 10'000) {
        checkContext(*value, {.positions = false});
        checkContext(*value, {.positions = true});
        checkNlohmann(text);
    }
    return 0;
}
