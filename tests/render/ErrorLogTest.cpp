#include "../support/Context.h"
#include "../support/LogRecorder.h"
#include "../support/Test.h"

namespace support {
namespace {

using namespace kel::LoggerPriority;
using kel::String;
using kel::Stencilor::buildOutput;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ErrorLog, HoldsAllMessagesOfACallInOneRecord) {
    LogRecorder recorder(PRIORITY_INFO);
    const std::string expected = "2 libStencilor: 437 Errors: "
                                 "Could not find expected replacement named \"a\"\n"
                                 "Could not find expected boolean named \"b\n";
    render("{{ a }}{% if b %}{% endif %}", Root());
    buildOutput("{{ a }}{% if b %}{% endif %}", Root()); // the messages are not requested
    EXPECT_THAT(recorder.lines(), ElementsAre(expected, expected));
}

TEST(ErrorLog, IncludesPreviousErrorsOfTheCaller) {
    LogRecorder recorder(PRIORITY_INFO);
    String errors("mine|");
    buildOutput("no fault here", Root(), errors);
    buildOutput("{{ a }}", Root(), errors);
    buildOutput("{{ b }}", Root(), errors);
    EXPECT_THAT(recorder.messages(),
                ElementsAre("437 Errors: mine|",
                            "437 Errors: mine|Could not find expected replacement named \"a\"\n",
                            "437 Errors: mine|Could not find expected replacement named \"a\"\n"
                            "Could not find expected replacement named \"b\"\n"));
}

TEST(ErrorLog, IsEmptyWithoutMessagesAndForARejectedTemplate) {
    LogRecorder recorder(PRIORITY_INFO);
    render("", Root());
    render("text", Root());
    String errors("mine");
    buildOutput("{{", Root(), errors);
    buildOutput("{{", Root());
    EXPECT_THAT(recorder.lines(), IsEmpty());
}

TEST(ErrorLog, OmitsFaultsInsideAnInclude) {
    LogRecorder recorder(PRIORITY_INFO);
    render("{% include \"no/such/file\" %}", Root());
    EXPECT_THAT(
        recorder.messages(),
        ElementsAre("437 Errors: Could not include file \"no/such/file\", file doesn't exist"));
}

TEST(ErrorLog, IsWrittenAtPriorityTwoAndBelow) {
    kel::Logger& logger = loggerOf("libStencilor");
    for (int threshold = -1; threshold <= 5; ++threshold) {
        for (int global = -1; global <= 5; ++global) {
            SCOPED_TRACE(std::to_string(threshold) + " and " + std::to_string(global));
            const Threshold own(logger, threshold);
            LogRecorder recorder(static_cast<LOGGER_PRIORITY>(global));
            render("{{ a }}", Root());
            EXPECT_EQ(recorder.messages().size(), threshold <= 2 && global <= 2 ? 1u : 0u);
        }
    }
}

TEST(ErrorLog, IsWrittenInsideTheScopeOfTheEntryPoint) {
    LogRecorder recorder(PRIORITY_TRACE);
    render("{{ a }}", Root());
    EXPECT_THAT(recorder.lines(),
                ElementsAre("> buildOutput:408", "  > content_visit::replace_expr:184",
                            "  < content_visit::replace_expr:184",
                            "  2 libStencilor: 437 Errors: Could not find expected replacement "
                            "named \"a\"\n",
                            "< buildOutput:408"));
}

TEST(ErrorLog, ChangesNothingIfTheSinkThrows) {
    const LogRecorder recorder(PRIORITY_TRACE);
    kel::LogFactory::setSink([](const kel::LogRecord&) { throw std::runtime_error("no room"); });
    EXPECT_EQ(render("a{{ b }}", Root()),
              (Rendered{"a", "Could not find expected replacement named \"b\"\n"}));
}

} // namespace
} // namespace support
