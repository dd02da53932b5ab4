#include "../support/Context.h"
#include "../support/PrescribedMessages.h"
#include "../support/TemporaryFolder.h"

#include <libStencilor/Template.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace support {
namespace {

ContextDictionary* item(const char* title, const char* amount, bool gift) {
    return dictionary({{"title", text(title)}, {"amount", text(amount)}, {"gift", truth(gift)}});
}

/// What all golden templates are rendered with.
Entries entries() {
    return {
        {"shop", text("B\u00FCcher & mehr")},
        {"customer.name", text("Zo\u00EB \u0141ukasz")},
        {"paid", truth(true, {{"shop", text("inside paid")}})},
        {"debug", truth(false)},
        {"total", text("12.50 \u20AC")},
        {"settings/root", text("/srv/www")},
        {"items", list({item("\u6570\u5B66", "1", false), item("Ovid", "2", true),
                        item("<\"quoted\">", "10", false)})},
        {"nothing", list()},
        {"emoji", text("\U0001F4DA")},
        {"malformed", text("\xC3|\x80")},
    };
}

std::vector<std::string> goldenFolders() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(STENCILOR_GOLDEN_FOLDER)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class Golden : public testing::TestWithParam<std::string> {};

// A folder holds template.txt, what it includes, and expected.txt; where messages are expected,
// also errors.txt.
TEST_P(Golden, RendersByteForByteAsExpected) {
    const std::string folder = std::string(STENCILOR_GOLDEN_FOLDER) + "/" + GetParam();
    const WorkingFolder working(folder);
    const Root root(entries());
    const Rendered rendered = render(readFile("template.txt"), root);
    EXPECT_EQ(rendered.output, readFile("expected.txt"));
    const bool faulty = std::filesystem::exists("errors.txt");
    EXPECT_EQ(rendered.errors, faulty ? readFile("errors.txt") : "");

    const kel::Stencilor::Template parsed(readFile("template.txt"));
    const kel::Stencilor::RenderResult result = parsed.render(root);
    EXPECT_EQ(result.text.str(), rendered.output);
    EXPECT_EQ(prescribedText(result), rendered.errors);
    std::string joined;
    parsed.renderTo(root, [&joined](std::string_view piece) { joined += piece; });
    EXPECT_EQ(joined, rendered.output);
}

INSTANTIATE_TEST_SUITE_P(Folders, Golden, testing::ValuesIn(goldenFolders()),
                         [](const testing::TestParamInfo<std::string>& folder) {
                             std::string name = folder.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
} // namespace support
