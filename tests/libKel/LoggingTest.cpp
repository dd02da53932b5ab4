#include "../support/LogRecorder.h"
#include "../support/Test.h"

#include <libKel/Logging.h>

namespace kel {
namespace {

using namespace LoggerPriority;
using support::loggerOf;
using support::LogRecorder;
using support::Threshold;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

LOGGER_PRIORITY priorityOf(int number) {
    return static_cast<LOGGER_PRIORITY>(number);
}

bool logText(Logger& logger, LOGGER_PRIORITY priority, const char* text) {
    LoggerStream stream;
    return logger.log(priority, stream + text);
}

TEST(LoggerPriorities, AreTheNumbersThatHostsKnow) {
    EXPECT_EQ(PRIORITY_ALL, 0);
    EXPECT_EQ(PRIORITY_TRACE, 1);
    EXPECT_EQ(PRIORITY_INFO, 2);
    EXPECT_EQ(PRIORITY_WARNING, 3);
    EXPECT_EQ(PRIORITY_FAILURE, 4);
    EXPECT_EQ(PRIORITY_SILENT, 5);
    static_assert(sizeof(LOGGER_PRIORITY) == 4);
}

TEST(LogFactory, IsSilentAtFirstAboutTracesAndMessagesOfTheEngine) {
    EXPECT_EQ(LogFactory::getPriority(), PRIORITY_WARNING);
}

TEST(LogFactory, HasOneLoggerForEachCategory) {
    Logger* first = nullptr;
    Logger* again = nullptr;
    Logger* other = nullptr;
    LogFactory::createLogger("one", first);
    LogFactory::createLogger("one", again);
    LogFactory::createLogger("other", other);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, again);
    EXPECT_NE(first, other);
    EXPECT_STREQ(first->category(), "one");
    EXPECT_STREQ(other->category(), "other");
    EXPECT_EQ(first->threshold, PRIORITY_ALL);
}

TEST(LogFactory, FillsOnePointerFromManyThreads) {
    static Logger* shared = nullptr;
    std::array<Logger*, 8> own{};
    std::vector<std::thread> threads;
    for (Logger*& logger : own) {
        threads.emplace_back([&logger] {
            LogFactory::createLogger("shared", shared);
            LogFactory::createLogger("shared", logger);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_NE(shared, nullptr);
    EXPECT_STREQ(shared->category(), "shared");
    EXPECT_THAT(own, testing::Each(shared));
}

TEST(Logger, IsBoundByTheHigherOfItsThresholdAndTheGlobalPriority) {
    const LogRecorder recorder(PRIORITY_ALL);
    Logger& logger = loggerOf("bounds");
    for (int threshold = 0; threshold <= 4; ++threshold) {
        for (int global = 0; global <= 4; ++global) {
            const Threshold own(logger, threshold);
            LogFactory::setPriority(priorityOf(global));
            EXPECT_EQ(LogFactory::getPriority(), global);
            EXPECT_EQ(logger.resolvePriority(), std::max(threshold, global));
            for (int priority = 0; priority <= 4; ++priority) {
                EXPECT_EQ(logText(logger, priorityOf(priority), "text"),
                          priority >= std::max(threshold, global))
                    << priority << " with " << threshold << " and " << global;
            }
        }
    }
}

TEST(Logger, PassesEachMessageToTheSinkOnce) {
    LogRecorder recorder(PRIORITY_INFO);
    Logger& logger = loggerOf("messages");
    LoggerStream stream;
    EXPECT_TRUE(logger.log(PRIORITY_INFO, stream + "size: " + String("a\0b", 3) + "\n" + ""));
    EXPECT_TRUE(logger.log(PRIORITY_FAILURE, LoggerStream()));
    EXPECT_FALSE(logText(logger, PRIORITY_TRACE, "too much detail"));
    EXPECT_THAT(recorder.lines(),
                ElementsAre(std::string("2 messages: size: a\0b\n", 22), "4 messages: "));
}

TEST(LoggerStream, ReturnsItselfFromEachAddition) {
    LoggerStream stream;
    EXPECT_EQ(&(stream + "a"), &stream);
    EXPECT_EQ(&(stream + String("b")), &stream);
    EXPECT_EQ(stream.view(), "ab");
}

TEST(Logger, SurvivesASinkThatThrows) {
    LogFactory::setPriority(PRIORITY_ALL);
    LogFactory::setSink([](const LogRecord&) { throw std::runtime_error("no room"); });
    Logger& logger = loggerOf("throwing");
    EXPECT_FALSE(logText(logger, PRIORITY_FAILURE, "lost"));
    {
        const TraceLogger outer(&logger, "outer", "file.cpp", 1);
        const TraceLogger inner(&logger, "inner", "file.cpp", 2);
    }
    LogRecorder recorder(PRIORITY_ALL);
    EXPECT_TRUE(logText(logger, PRIORITY_FAILURE, "kept"));
    EXPECT_THAT(recorder.lines(), ElementsAre("4 throwing: kept"));
}

TEST(TraceLogger, RecordsScopesWithTheirDepth) {
    LogRecorder recorder(PRIORITY_TRACE);
    Logger& logger = loggerOf("scopes");
    {
        const TraceLogger outer(&logger, "outer", "some/file.cpp", 10);
        logText(logger, PRIORITY_INFO, "inside");
        { const TraceLogger inner(&logger, "inner", "some/file.cpp", 20); }
        const TraceLogger second(&logger, "second", "some/file.cpp", 30);
    }
    const TraceLogger after(&logger, "after", "other/file.cpp", 40);
    EXPECT_THAT(recorder.lines(),
                ElementsAre("> outer:10", "  2 scopes: inside", "  > inner:20", "  < inner:20",
                            "  > second:30", "  < second:30", "< outer:10", "> after:40"));
    EXPECT_EQ(recorder.lastFile(), "other/file.cpp");
}

TEST(TraceLogger, RecordsNothingWithANullLogger) {
    LogRecorder recorder(PRIORITY_ALL);
    Logger& logger = loggerOf("null");
    {
        const TraceLogger silent(nullptr, "silent", "file.cpp", 1);
        const TraceLogger loud(&logger, "loud", "file.cpp", 2);
    }
    EXPECT_THAT(recorder.lines(), ElementsAre("> loud:2", "< loud:2"));
}

TEST(TraceLogger, CountsTheScopesOfItsOwnThreadOnly) {
    LogRecorder recorder(PRIORITY_TRACE);
    Logger& logger = loggerOf("threads");
    const TraceLogger outer(&logger, "outer", "file.cpp", 1);
    std::thread([&logger] { const TraceLogger other(&logger, "other", "file.cpp", 2); }).join();
    EXPECT_THAT(recorder.lines(), ElementsAre("> outer:1", "> other:2", "< other:2"));
}

TEST(LogFactory, CanChangeSinkAndPriorityWhileOthersLog) {
    LogRecorder recorder(PRIORITY_ALL);
    Logger& logger = loggerOf("busy");
    std::atomic<int> received = 0;
    // Once before the other threads start, because they may finish before this thread runs again.
    LogFactory::setSink([&received](const LogRecord&) { ++received; });
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&logger] {
            for (int turn = 0; turn < 500; ++turn) {
                const TraceLogger scope(&logger, "scope", "file.cpp", turn);
                logText(logger, PRIORITY_FAILURE, "text");
            }
        });
    }
    for (int turn = 0; turn < 100; ++turn) {
        LogFactory::setSink([&received](const LogRecord&) { ++received; });
        LogFactory::setPriority(priorityOf(turn % 3));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(received + static_cast<int>(recorder.lines().size()), 4 * 500 * 3);
    EXPECT_GT(received, 0);
}

// In a separate process, whose error stream is read here.
TEST(StandardErrorDeathTest, ReceivesTheRecordsIfNoSinkIsSet) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            LogFactory::setPriority(PRIORITY_TRACE);
            Logger& logger = loggerOf("stderr");
            LogFactory::setSink([](const LogRecord&) {});
            logText(logger, PRIORITY_FAILURE, "to the sink");
            LogFactory::setSink({});
            {
                const TraceLogger outer(&logger, "outer", "some/file.cpp", 10);
                const TraceLogger inner(&logger, "inner", "some/file.cpp", 20);
                logText(logger, PRIORITY_INFO, "a message with {} in it");
            }
            logText(logger, PRIORITY_ALL, "too much detail");
            logText(logger, PRIORITY_WARNING, "a warning");
            logText(logger, PRIORITY_FAILURE, "a failure");
            LogFactory::setPriority(PRIORITY_ALL);
            logText(logger, PRIORITY_ALL, "all detail");
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        AllOf(HasSubstr("Z stderr trace: > outer (some/file.cpp:10)\n"),
              HasSubstr("Z stderr trace:   > inner (some/file.cpp:20)\n"),
              HasSubstr("Z stderr info: a message with {} in it\n"),
              HasSubstr("Z stderr trace: < outer (some/file.cpp:10)\n"),
              HasSubstr("Z stderr warning: a warning\n"),
              HasSubstr("Z stderr failure: a failure\n"), HasSubstr("Z stderr trace: all detail\n"),
              testing::Not(HasSubstr("to the sink")), testing::Not(HasSubstr("too much detail"))));
}

} // namespace
} // namespace kel
