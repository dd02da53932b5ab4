#include "../support/Context.h"
#include "../support/LogRecorder.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

namespace support {
namespace {

using namespace kel::LoggerPriority;

constexpr int threadCount = 8;
constexpr int turns = 60;

const std::array<std::string, 5> templates = {
    "{{ title }}:{% for u in users %}{% if u.active %}{{ u.name }}{% else %}-{% endif %}"
    "{{ missing }}{% endfor %}{% include \"no/such/file\" %}",
    "{% for a in users %}{% for b in users %}{{ a.name }}{{ b.name }} {% endfor %}{% endfor %}",
    "{% include \"part\" %}{% for u in users %}{% include \"part\" %}{% endfor %}",
    "{{ title }}{% if title %}never{% endif %}",
    "{% if a %}rejected",
};

/// The template that a thread renders in a round. In each round, some threads share a template.
std::size_t templateOf(int thread, int turn) {
    return static_cast<std::size_t>(thread / 2 + turn) % templates.size();
}

/// Makes all threads render at once. Nothing is rendered before they begin.
std::vector<std::vector<Rendered>> renderInThreads(const ContextBase& root) {
    std::vector<std::vector<Rendered>> results(threadCount);
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < threadCount) {
            }
            for (int turn = 0; turn < turns; ++turn) {
                results[static_cast<std::size_t>(number)].push_back(
                    render(templates[templateOf(number, turn)], root));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return results;
}

// In a separate program, because the logger must not exist when the threads begin.
TEST(Threads, RenderOneContextLikeOneThreadWhileTheLoggerIsCreated) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("part", "[{{ title }}]");
    const Root root({
        {"users", list({dictionary({{"name", text("a")}, {"active", truth(true)}}),
                        dictionary({{"name", text("b")}, {"active", truth(false)}})})},
        {"title", text("Users")},
    });
    const LogRecorder recorder(PRIORITY_TRACE);
    const std::vector<std::vector<Rendered>> results = renderInThreads(root);
    const std::size_t messages = recorder.messages().size();

    std::array<Rendered, templates.size()> expected;
    std::transform(templates.begin(), templates.end(), expected.begin(),
                   [&root](const std::string& input) { return render(input, root); });
    EXPECT_EQ(expected[0].output, "Users:a-");
    EXPECT_EQ(expected[2].output, "[Users][Users][Users]");
    std::size_t logged = 0;
    for (int thread = 0; thread < threadCount; ++thread) {
        for (int turn = 0; turn < turns; ++turn) {
            const std::size_t which = templateOf(thread, turn);
            EXPECT_EQ(results[static_cast<std::size_t>(thread)][static_cast<std::size_t>(turn)],
                      expected[which]);
            // A template that was rejected has a message, but logs none.
            logged += which == 0 || which == 3 ? 1 : 0;
        }
    }
    EXPECT_EQ(messages, logged);
}

} // namespace
} // namespace support
