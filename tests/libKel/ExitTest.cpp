#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>
#include <libKel/Logging.h>

#include <cstdio>

// Process-wide state stays in force until the process ends. Each case ends a process of its own.

namespace kel {
namespace {

/// Created before the library is used, and therefore destroyed after everything that the library
/// registers for exit().
class LastObject {
  public:
    ~LastObject() {
        if (action) {
            action();
        }
    }

    std::function<void()> action;
};

LastObject lastObject;

void say(bool isRight, const char* what) {
    std::fprintf(stderr, "%s%s. ", what, isRight ? "" : " not");
}

class ExitDeathTest : public testing::Test {
  protected:
    ExitDeathTest() {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        folder_.makeFolder("root");
        folder_.writeFile("root/inside", "inside");
        folder_.writeFile("outside", "outside");
    }

    support::TemporaryFolder folder_;
};

TEST_F(ExitDeathTest, LeavesTheRootToTheLastObject) {
    EXPECT_EXIT(
        {
            const support::WorkingFolder working(folder_.path());
            say(FileSystem::setRoot("root"), "set");
            lastObject.action = [] {
                say(FileSystem::exists("inside"), "inside found");
                say(!FileSystem::exists("outside"), "outside hidden");
                FileSystem::clearRoot();
                say(FileSystem::exists("outside"), "outside found");
            };
            std::exit(0);
        },
        testing::ExitedWithCode(0), "set. inside found. outside hidden. outside found. $");
}

TEST_F(ExitDeathTest, LeavesTheSinkAndTheLoggersToTheLastObject) {
    EXPECT_EXIT(
        {
            LogFactory::setSink([](const LogRecord& record) {
                say(record.text == "last words" && record.category == std::string("last"), "sent");
            });
            Logger* logger = nullptr;
            LogFactory::createLogger("last", logger);
            lastObject.action = [logger] {
                Logger* again = nullptr;
                LogFactory::createLogger("last", again);
                say(again == logger, "same");
                LoggerStream message;
                say(logger->log(LoggerPriority::PRIORITY_FAILURE, message + "last words"),
                    "logged");
            };
            std::exit(0);
        },
        testing::ExitedWithCode(0), "same. sent. logged. $");
}

TEST_F(ExitDeathTest, LeavesTheRootToThreadsThatStillRun) {
    EXPECT_EXIT(
        {
            const support::WorkingFolder working(folder_.path());
            say(FileSystem::setRoot("root"), "set");
            static std::atomic<int> looks = 0;
            std::thread([] {
                while (true) {
                    if (FileSystem::exists("outside") || !FileSystem::exists("inside")) {
                        std::_Exit(1);
                    }
                    ++looks;
                }
            }).detach();
            lastObject.action = [] {
                const int before = looks;
                while (looks < before + 100) {
                    std::this_thread::yield();
                }
                say(true, "looked");
            };
            std::exit(0);
        },
        testing::ExitedWithCode(0), "set. looked. $");
}

} // namespace
} // namespace kel
