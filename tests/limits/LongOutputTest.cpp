#include "../support/Context.h"
#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace support {
namespace {

constexpr std::size_t mebibyte = 1u << 20;

/// A list of `count` texts of 64 MiB, which share one block.
ContextIterable* longTexts(std::size_t count) {
    const kel::String value(std::string(64 * mebibyte, 'x'));
    ContextIterable* const made = list();
    for (; count > 0; --count) {
        made->add(dictionary({{"text", text(value)}}));
    }
    return made;
}

struct Case {
    const char* name;
    const char* input;
};

TEST(LongOutput, IsRefusedWhereverItExceedsWhatAStringHolds) {
    if (!hasMemory(9)) {
        GTEST_SKIP() << "takes nine gigabytes of memory";
    }
    const TemporaryFolder folder;
    folder.writeFile("texts.txt", "{% for x in texts %}{{ text }}{% endfor %}");
    const WorkingFolder inside(folder.path());
    const Root root({{"texts", longTexts(64)}, {"half", longTexts(32)}});
    const Case cases[] = {
        {"one loop", "{% for x in texts %}{{ x.text }}{% endfor %}"},
        {"two loops", "{% for x in half %}{{ text }}{% endfor %}"
                      "{% for x in half %}{{ text }}{% endfor %}"},
        {"an included file", "{% include \"texts.txt\" %}"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_THROW(render(each.input, root), std::length_error);
    }
}

} // namespace
} // namespace support
