#include "../support/ExhaustedMemory.h"

#include <libStencilor/Value.h>

namespace support {
namespace {

using kel::Stencilor::Context;
using kel::Stencilor::Value;

const std::string longText(100, 'x');

/// A value with everything that allocates memory.
Value everything() {
    return {{longText, longText},
            {"raw", Value::raw(longText)},
            {"nested", {{"a", {{"b", longText}, {"c", Value::list({longText, nullptr})}}}}},
            {"boolean", {{"$boolean", true}, {"d", {{"e", Value::raw(longText)}}}}},
            {"list", Value::list({longText, true, nullptr, Value::list({1, 2}), {{"f", 1.5e300}}})},
            {"map", std::map<std::string, std::vector<bool>>{{longText, {true, false}}}}};
}

TEST_F(ExhaustedMemory, LeavesNothingOfAnIncompleteValue) {
    failEachAllocation([] { return std::make_unique<std::optional<Value>>(); },
                       [](std::optional<Value>& value) { value = everything(); },
                       [](std::optional<Value>& value) { EXPECT_FALSE(value.has_value()); });
}

TEST_F(ExhaustedMemory, LeavesAValueAsItWas) {
    const Value source = everything();
    const Value formers[] = {everything(), Value::list({longText}), Value{{longText, 1}}, nullptr};
    const struct {
        const char* name;
        std::function<void(Value&)> action;
    } actions[] = {
        {"assigned", [&](Value& value) { value = source; }},
        {"set", [&](Value& value) { value.set(kel::String(longText + "y"), source); }},
        {"replaced", [&](Value& value) { value.set(kel::String(longText), source); }},
        {"added", [&](Value& value) { value.add(source); }},
        {"added as a text", [&](Value& value) { value.add("a"); }},
    };
    for (const auto& [name, action] : actions) {
        SCOPED_TRACE(name);
        for (const Value& former : formers) {
            const bool isList = former.kind() == Value::Kind::List;
            const bool isDictionary = former.kind() == Value::Kind::Dictionary;
            const std::string called = name;
            if ((called.starts_with("added") && !isList) ||
                ((called == "set" || called == "replaced") && !isDictionary)) {
                continue;
            }
            failEachAllocation([&] { return std::make_unique<Value>(former); }, action,
                               [&](Value& value) { EXPECT_TRUE(value == former); });
        }
    }
}

TEST_F(ExhaustedMemory, LeavesNothingOfAnIncompleteContext) {
    const Value source = everything();
    for (const bool positions : {false, true}) {
        failEachAllocation(
            [] { return std::make_unique<std::optional<Context>>(); },
            [&](std::optional<Context>& context) {
                context.emplace(source, kel::Stencilor::ContextOptions{.positions = positions});
            },
            [](std::optional<Context>& context) { EXPECT_FALSE(context.has_value()); });
    }
}

} // namespace
} // namespace support
