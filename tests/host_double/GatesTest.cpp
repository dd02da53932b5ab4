#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;

class Gates : public testing::Test {
  protected:
    Gates() {
        host_.reset();
        host_.globalPriority = 1;
        buildOutput("", ContextBase()); // the logger is there then
        host_.reset();
    }

    std::vector<std::string> callsOf(const char* input) {
        String errors;
        buildOutput(input, ContextBase(), errors);
        return host_.takeCalls();
    }

    HostDouble& host_ = HostDouble::instance();
};

TEST_F(Gates, OfTracesPassUpToPriorityOneInBothPlaces) {
    for (std::int32_t priority = -1; priority <= 3; ++priority) {
        for (std::int32_t threshold = -1; threshold <= 3; ++threshold) {
            host_.globalPriority = priority;
            host_.logger.threshold = threshold;
            const bool passes = priority <= 1 && threshold <= 1;
            EXPECT_THAT(callsOf(""),
                        ElementsAre("getPriority",
                                    passes ? "> buildOutput:408" : "> buildOutput:408 null",
                                    "< buildOutput"))
                << priority << " and " << threshold;
        }
    }
}

TEST_F(Gates, OfTheMessageAreTestedInOrder) {
    const struct {
        const char* name;
        std::int32_t priority;
        std::int32_t threshold;
        std::int32_t resolved;
        std::vector<std::string> expected;
    } cases[] = {
        {"the global priority keeps it out", 3, 0, 0, {"getPriority"}},
        {"the threshold keeps it out", 2, 3, 0, {"getPriority"}},
        {"the resolved priority keeps it out", 2, 2, 3, {"getPriority", "resolvePriority"}},
        {"nothing keeps it out",
         2,
         2,
         2,
         {"getPriority", "resolvePriority", "stream", "+ narrow 437 ", "+ narrow Errors: ",
          "+ string Could not find expected replacement named \"x\"\n", "log 2", "~stream"}},
    };
    for (const auto& [name, priority, threshold, resolved, expected] : cases) {
        SCOPED_TRACE(name);
        host_.globalPriority = priority;
        host_.logger.threshold = threshold;
        host_.resolvedPriority = resolved;
        std::vector<std::string> calls = callsOf("{{ x }}");
        const auto rendered =
            std::find(calls.begin(), calls.end(), "< content_visit::replace_expr");
        ASSERT_NE(rendered, calls.end());
        EXPECT_EQ(calls.back(), "< buildOutput");
        EXPECT_EQ(std::vector<std::string>(rendered + 1, calls.end() - 1), expected);
    }
}

TEST_F(Gates, OfTheMessageAreNotTestedWithoutOne) {
    host_.globalPriority = 2;
    EXPECT_THAT(callsOf("x"), ElementsAre("getPriority", "> buildOutput:408 null", "getPriority",
                                          "> content_visit::string:120 null",
                                          "< content_visit::string", "< buildOutput"));
}

TEST_F(Gates, OfTheMessageAreNotTestedForARejectedTemplate) {
    host_.globalPriority = 2;
    EXPECT_THAT(callsOf("{{"),
                ElementsAre("getPriority", "> buildOutput:408 null", "< buildOutput"));
}

} // namespace
} // namespace kel::Stencilor
