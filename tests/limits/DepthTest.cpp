#include "../support/Build.h"
#include "../support/Context.h"
#include "../support/LogRecorder.h"
#include "../support/SmallStackThread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace support {
namespace {

constexpr int depth = slow ? 100000 : 1000000;
constexpr std::size_t stackSize = 256 * 1024;

/// The opening and the closing tags of `depth` blocks, conditionals and loops by turns.
struct Nest {
    Nest() {
        for (int level = 0; level < depth; ++level) {
            opening += isConditional(level) ? "{% if yes %}" : "{% for x in one %}";
        }
        for (int level = depth; level-- > 0;) {
            closing += isConditional(level) ? "{% endif %}" : "{% endfor %}";
        }
    }

    static bool isConditional(int level) { return level % 3 != 0; }

    std::string opening;
    std::string closing;
};

const Nest& nest() {
    static const Nest instance;
    return instance;
}

ContextBase* member(const char* name) {
    return dictionary({{"name", text(name)}});
}

class Depth : public testing::Test {
  protected:
    /// Renders in a thread that has a small stack.
    Rendered renderWithSmallStack(const std::string& input) const {
        Rendered rendered;
        runWithStack(stackSize, [&] { rendered = render(input, root_); });
        return rendered;
    }

    const Root root_{{{"yes", truth(true, {{"inner", text("of yes")}})},
                      {"one", list({member("element")})},
                      {"name", text("root")}}};
};

TEST_F(Depth, OfBlocksTakesNoCallStack) {
    EXPECT_EQ(renderWithSmallStack(nest().opening + "{{ x.name }} {{ inner }}" + nest().closing),
              (Rendered{"element of yes", ""}));
}

TEST_F(Depth, OfElsePartsTakesNoCallStack) {
    std::string input;
    for (int level = 0; level < depth; ++level) {
        input += "{% if no %}a{% else %}";
    }
    input += "{{ name }}";
    for (int level = 0; level < depth; ++level) {
        input += "{% endif %}";
    }
    Root root({{"no", truth(false)}, {"name", text("root")}});
    Rendered rendered;
    runWithStack(stackSize, [&] { rendered = render(input, root); });
    EXPECT_EQ(rendered, (Rendered{"root", ""}));
}

TEST_F(Depth, OfWhatIsNotRenderedIsFreed) {
    EXPECT_EQ(
        renderWithSmallStack("{% if missing %}" + nest().opening + nest().closing + "{% endif %}"),
        (Rendered{"", "Could not find expected boolean named \"missing\n"}));
}

TEST_F(Depth, OfRejectedTemplatesTakesNoCallStack) {
    const struct {
        const char* name;
        std::string input;
    } cases[] = {
        {"unclosed blocks", nest().opening},
        {"a fault at the bottom", nest().opening + "{{ }}" + nest().closing},
        {"one closer too few",
         nest().opening + nest().closing.substr(std::string("{% end").size())},
        {"one closer too many", nest().opening + nest().closing + "{% endif %}"},
        {"a fault behind all blocks", nest().opening + nest().closing + "{{"},
        {"the wrong closer at the bottom",
         nest().opening + "{% endfor %}{% endif %}" + nest().closing},
    };
    for (const auto& [name, input] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(renderWithSmallStack(input), (Rendered{"", "Could not build formatted output: "
                                                             "Failed to parse input correctly."}));
    }
}

TEST_F(Depth, OfTracedBlocksTakesNoCallStack) {
    LogRecorder recorder(kel::LoggerPriority::PRIORITY_TRACE);
    std::size_t records = 0;
    std::size_t deepest = 0;
    kel::LogFactory::setSink([&](const kel::LogRecord& record) {
        ++records;
        deepest = std::max<std::size_t>(deepest, record.depth);
    });
    EXPECT_EQ(renderWithSmallStack(nest().opening + "x" + nest().closing), (Rendered{"x", ""}));
    // The entry point, a block and its list at each level, and the text: entered and left.
    EXPECT_EQ(records, 2u * (1 + 2 * depth + 1));
    EXPECT_EQ(deepest, 1u + 2 * depth);
}

// Each level has another variable and another value: nothing is in force already.
TEST_F(Depth, OfDifferentNamesTakesNoCallStack) {
    constexpr int levels = 3000;
    Root root({{"name", text("root")}});
    std::string input;
    std::string closing;
    for (int level = 0; level < levels; ++level) {
        const std::string number = std::to_string(level);
        root.insert("list" + number, list({dictionary({{"own", text(number)}})}));
        input += "{% for x" + number + " in list" + number + " %}";
        closing.insert(0, "{{ own }}{% endfor %}");
    }
    input += "{{ x0.name }}" + closing;
    Rendered rendered;
    runWithStack(stackSize, [&] { rendered = render(input, root); });
    std::string expected = "root";
    for (int level = levels; level-- > 0;) {
        expected += std::to_string(level);
    }
    EXPECT_EQ(rendered, (Rendered{expected, ""}));
}

} // namespace
} // namespace support
