#ifndef TESTS_RENDER_CASES_H
#define TESTS_RENDER_CASES_H

#include "../support/Context.h"
#include "../support/Test.h"

namespace support {

/// A template, and its output without messages.
struct Case {
    const char* name;
    std::string input;
    std::string expected;
};

inline void expectRendered(const Root& root, std::span<const Case> cases) {
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{expected, ""})) << input;
    }
}

} // namespace support

#endif
