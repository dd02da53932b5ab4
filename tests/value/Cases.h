#ifndef TESTS_VALUE_CASES_H
#define TESTS_VALUE_CASES_H

#include "../support/Context.h"
#include "../support/Test.h"

#include <libStencilor/Value.h>

namespace kel::Stencilor {

/// The output of a template for a value, followed by the messages.
inline std::string rendered(const Value& value, const std::string& text,
                            ContextOptions options = {}) {
    const auto [output, errors] = support::render(text, Context(value, options));
    return output + errors;
}

struct Case {
    const char* name;
    Value value;
    std::string text;
    std::string expected;
};

inline void expectRendered(std::span<const Case> cases) {
    for (const auto& [name, value, text, expected] : cases) {
        EXPECT_EQ(rendered(value, text), expected) << name;
    }
}

} // namespace kel::Stencilor

#endif
