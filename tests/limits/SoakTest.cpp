#include "../support/Build.h"
#include "../support/Context.h"
#include "../support/Environment.h"
#include "../support/Memory.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/Logging.h>

namespace support {
namespace {

/// Everything that can occur in a rendering. The first one is rendered most often, because it opens
/// no file.
const std::array<std::string, 4> templates = {
    "{{ title }}: {% for user in users %}{% if user.active %}{{ user.name }}, a name of more bytes "
    "than fit into a string itself{% else %}{{ missing }}{% endif %}{% endfor %}",
    "{% include \"part\" %}{% include \"no/such/file\" %}",
    "{% if title %}{{ title }}{% for user in users %} never closed",
    // More than is kept from one text to the next, and more than fits without an allocation.
    std::string(100000, 't') + "{{ title }}" + std::string(1000, 't'),
};

/// Renders repeatedly. Returns the number of results that differ from the first of their template.
std::uint64_t renderOften(std::uint64_t count, const Root& root) {
    const std::array<Rendered, templates.size()> expected = {
        render(templates[0], root), render(templates[1], root), render(templates[2], root),
        render(templates[3], root)};
    std::uint64_t wrong = 0;
    for (std::uint64_t number = 0; number < count; ++number) {
        const std::size_t which = number % 50 == 0 ? 1 + number / 50 % (templates.size() - 1) : 0;
        wrong += render(templates[which], root) == expected[which] ? 0u : 1u;
    }
    return wrong;
}

// STENCILOR_RENDERS is the number of renderings; the preset "exhaustive" has ten million.
TEST(Soak, NeitherChangesTheOutputNorLeaksMemory) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("part", "{% for user in users %}{{ user.name }}{{ missing }}{% endfor %}");
    const Root root({
        {"title", text("Users")},
        {"users", list({dictionary({{"name", text("a")}, {"active", truth(true)}}), nullptr,
                        dictionary({{"name", text("b")}, {"active", truth(false)}})})},
    });
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_INFO);
    std::uint64_t records = 0;
    kel::LogFactory::setSink([&records](const kel::LogRecord&) { ++records; });

    const std::uint64_t count = numberFromEnvironment("STENCILOR_RENDERS", 20000);
    const std::uint64_t warmUp = count / 10;
    EXPECT_EQ(renderOften(warmUp, root), 0u);
    const std::uint64_t before = memoryInUse();
    EXPECT_EQ(renderOften(count - warmUp, root), 0u);
    const std::uint64_t after = memoryInUse();
    kel::LogFactory::setSink({});
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_WARNING);

    EXPECT_GT(records, count / 2);

    if (!sanitized) {
        EXPECT_GT(before, 0u);
    }
    // Far less than a byte for each rendering.
    constexpr std::uint64_t tolerance = 16 * 1024;
    EXPECT_LE(after, before + tolerance);
    std::cout << count << " renderings; " << before << " bytes in use before, " << after
              << " after\n";
}

} // namespace
} // namespace support
