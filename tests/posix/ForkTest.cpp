#include "../support/Environment.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <libKel/FileSystem.h>
#include <libKel/Logging.h>
#include <libStencilor/Template.h>
#include <libStencilor/Value.h>

#include <sys/wait.h>
#include <unistd.h>

namespace kel {
namespace {

/// Threads that repeat an action during its lifetime.
class Busy {
  public:
    explicit Busy(const std::vector<std::function<void()>>& actions) {
        for (const auto& action : actions) {
            threads_.emplace_back([this, action] {
                while (!done_) {
                    action();
                }
            });
        }
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy() {
        done_ = true;
        for (std::thread& thread : threads_) {
            thread.join();
        }
    }

  private:
    std::atomic<bool> done_ = false;
    std::vector<std::thread> threads_;
};

const int turns = support::thorough() ? 300 : 50;

bool logs(Logger& logger) {
    LoggerStream message;
    return logger.log(LoggerPriority::PRIORITY_FAILURE, message + "text");
}

/// Uses the library in a process made by fork(), which is killed if it blocks.
bool works() {
    ::alarm(20);
    Logger* logger = nullptr;
    LogFactory::createLogger("child", logger);
    return logs(*logger) && FileSystem::exists("file") && !FileSystem::exists("../file");
}

TEST(Fork, LeavesTheLibraryUsableWhateverOtherThreadsDoMeanwhile) {
    const support::TemporaryFolder folder;
    folder.writeFile("file", "text");
    ASSERT_TRUE(FileSystem::setRoot(folder.path()));
    LogFactory::setSink([](const LogRecord&) {});
    Logger* logger = nullptr;
    LogFactory::createLogger("parent", logger);
    {
        const Busy busy({[logger] { logs(*logger); }, [logger] { logs(*logger); },
                         [] { FileSystem::exists("file"); },
                         [] { LogFactory::setSink([](const LogRecord&) {}); }});
        for (int turn = 0; turn < turns && !HasFailure(); ++turn) {
            const pid_t child = ::fork();
            if (child == 0) {
                std::_Exit(works() ? EXIT_SUCCESS : EXIT_FAILURE);
            }
            int status = -1;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0) << "in turn " << turn;
        }
    }
    LogFactory::setSink({});
    FileSystem::clearRoot();
}

/// The output of a process made by fork() with a source of the parent.
bool renders(Stencilor::TemplateSource& source) {
    ::alarm(20);
    Stencilor::RenderOptions options;
    options.source = &source;
    const Stencilor::Template page("{% include \"part\" %}");
    return page.render(Stencilor::Value(), options).text == "text";
}

TEST(Fork, LeavesSourcesUsableWhateverOtherThreadsDoMeanwhile) {
    const support::TemporaryFolder folder;
    folder.writeFile("part", "text");
    Stencilor::FileTemplates files(folder.path());
    Stencilor::MemoryTemplates texts;
    texts.add("part", "text");
    const auto find = [](Stencilor::TemplateSource& source) {
        std::optional<Stencilor::Template> found;
        EXPECT_EQ(source.find("part", 4, found), Stencilor::TemplateSource::Answer::Found);
    };
    const Busy busy({[&] { find(files); }, [&] { find(files); }, [&] { find(texts); },
                     [&] { texts.add("part", "text"); }});
    for (int turn = 0; turn < turns && !::testing::Test::HasFailure(); ++turn) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::_Exit(renders(files) && renders(texts) ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << "in turn " << turn;
    }
}

// A sink is called without a lock, so it may use the library itself.
TEST(Fork, MayBeCalledByASink) {
    LogFactory::setSink([](const LogRecord& record) {
        LogFactory::setSink({}); // this sink is kept until it returns
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(20);
            Logger* logger = nullptr;
            LogFactory::createLogger(record.category, logger);
            std::_Exit(logger != nullptr ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    });
    Logger* logger = nullptr;
    LogFactory::createLogger("forking", logger);
    EXPECT_TRUE(logs(*logger));
}

} // namespace
} // namespace kel
