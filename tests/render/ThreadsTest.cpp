#include "../support/Context.h"
#include "../support/LogRecorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace support {
namespace {

using namespace kel::LoggerPriority;

// In a program of its own: the logger must not be there yet when the threads begin.
TEST(Threads, RenderOneContextAtOnceWhileTheLoggerIsMade) {
    const Root root({
        {"users", list({dictionary({{"name", text("a")}, {"active", truth(true)}}),
                        dictionary({{"name", text("b")}, {"active", truth(false)}})})},
        {"title", text("Users")},
    });
    const std::string input = "{{ title }}:{% for u in users %}{% if u.active %}{{ u.name }}"
                              "{% else %}-{% endif %}{{ missing }}{% endfor %}"
                              "{% include \"no/such/file\" %}";
    const Rendered expected = {"Users:a-",
                               "Could not find expected replacement named \"missing\"\n"
                               "Could not find expected replacement named \"missing\"\n"
                               "Could not include file \"no/such/file\", file doesn't exist"};
    constexpr int threadCount = 8;
    constexpr int turns = 50;

    const LogRecorder recorder(PRIORITY_TRACE);
    std::atomic<int> ready = 0;
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            ++ready;
            while (ready < threadCount) {
            }
            for (int turn = 0; turn < turns; ++turn) {
                right += render(input, root) == expected ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, threadCount * turns);
    EXPECT_EQ(recorder.messages().size(), static_cast<std::size_t>(threadCount * turns));
}

} // namespace
} // namespace support
