#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;

std::vector<std::string> callsOf(const char* input, std::int32_t priority) {
    HostDouble& host = HostDouble::instance();
    host.globalPriority = priority;
    buildOutput(input, ContextBase());
    return host.takeCalls();
}

// In a program of its own, since a process makes the logger once.
TEST(LoggerCreation, IsLeftToTheFirstGateThatPasses) {
    HostDouble::instance().reset();
    EXPECT_THAT(callsOf("", 2),
                ElementsAre("getPriority", "> buildOutput:408 null", "< buildOutput"));
    EXPECT_THAT(callsOf("{{ x }}", 3),
                ElementsAre("getPriority", "> buildOutput:408 null", "getPriority",
                            "> content_visit::replace_expr:184 null",
                            "< content_visit::replace_expr", "getPriority", "< buildOutput"));
    // Here the message is the first to get through.
    EXPECT_THAT(callsOf("{{ x }}", 2),
                ElementsAre("getPriority", "> buildOutput:408 null", "getPriority",
                            "> content_visit::replace_expr:184 null",
                            "< content_visit::replace_expr", "getPriority",
                            "createLogger libStencilor", "resolvePriority", "stream",
                            "+ narrow 437 ", "+ narrow Errors: ",
                            "+ string Could not find expected replacement named \"x\"\n", "log 2",
                            "~stream", "< buildOutput"));
    EXPECT_THAT(callsOf("", 1), ElementsAre("getPriority", "> buildOutput:408", "< buildOutput"));
    EXPECT_THAT(callsOf("", 1), ElementsAre("getPriority", "> buildOutput:408", "< buildOutput"));
}

} // namespace
} // namespace kel::Stencilor
