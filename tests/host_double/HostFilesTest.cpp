#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;

class HostFiles : public testing::Test {
  protected:
    HostFiles() { host_.reset(); }

    /// What was asked of the file services while the template gave `expected`.
    std::vector<std::string> fileCallsOf(const char* input, std::u32string_view expected) {
        const String output = buildOutput(input, ContextBase(), errors_);
        EXPECT_EQ(HostDouble::textOf(output), expected);
        std::vector<std::string> calls = host_.takeCalls();
        std::erase_if(calls, [](const std::string& call) {
            return !call.starts_with("exists") && !call.starts_with("loadFile");
        });
        return calls;
    }

    HostDouble& host_ = HostDouble::instance();
    String errors_;
};

TEST_F(HostFiles, AreAskedForByThePathAsItIsWritten) {
    host_.files["a/../b.txt"] = "text";
    EXPECT_THAT(fileCallsOf("{% include \" a/../b.txt \" %}", U"text"),
                ElementsAre("exists a/../b.txt", "loadFile a/../b.txt"));
    EXPECT_EQ(errors_.size(), 0u);
}

TEST_F(HostFiles, AreNotLoadedWhereTheyDoNotExist) {
    EXPECT_THAT(fileCallsOf("{% include \"missing\" %}", U""), ElementsAre("exists missing"));
    EXPECT_TRUE(errors_ == "Could not include file \"missing\", file doesn't exist");
}

TEST_F(HostFiles, ThatCannotBeLoadedAreReported) {
    host_.files["unreadable"] = std::nullopt;
    EXPECT_THAT(fileCallsOf("{% include \"unreadable\" %}", U""),
                ElementsAre("exists unreadable", "loadFile unreadable"));
    EXPECT_TRUE(errors_ == "Could not load file \"unreadable\"");
}

TEST_F(HostFiles, MayBeLoadedIntoNothing) {
    host_.files["empty"] = "";
    EXPECT_THAT(fileCallsOf("[{% include \"empty\" %}]", U"[]"),
                ElementsAre("exists empty", "loadFile empty"));
    EXPECT_EQ(errors_.size(), 0u);
}

} // namespace
} // namespace kel::Stencilor
