#include "../support/TemporaryFolder.h"
#include "Rendering.h"

namespace support {
namespace {

using kel::Stencilor::FileTemplates;
using kel::Stencilor::renderFile;

constexpr int threadCount = 6;
constexpr int turns = 100;

/// Runs `work` in several threads at once, and `meanwhile` in this one until all of them end.
template <typename Work, typename Meanwhile>
void runTogether(Work work, Meanwhile meanwhile) {
    std::atomic<int> running = threadCount;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&work, &running] {
            for (int turn = 0; turn < turns; ++turn) {
                work();
            }
            --running;
        });
    }
    for (int time = 0; running > 0; ++time) {
        meanwhile(time);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// A version of some text: one digit, repeated.
std::string version(int number) {
    const auto size = static_cast<std::size_t>(100 + number % 3 * 5000);
    return std::string(size, static_cast<char>('0' + number % 10));
}

/// True if text is a whole version, twice.
bool isOneVersionTwice(const std::string& text) {
    const std::string half = text.substr(0, text.size() / 2);
    const bool isWhole = half.empty() || half == version(half[0] - '0') ||
                         half == version(half[0] - '0' + 10) || half == version(half[0] - '0' + 20);
    return isWhole && text == half + half;
}

const Template twice("{% include \"a\" %}{% include \"a\" %}");

TEST(TemplateThreads, ShareATemplateAContextAndAnEscape) {
    const Template made("{% for x in l %}{{ x.value }}{{ gone }}{% endfor %}");
    const Context context({{"l", Value::list({"<", 2, "\xFF"})}});
    const Escape escape([](std::string_view value, std::string& out) { out = value; });
    std::atomic<int> good = 0;
    runTogether(
        [&] {
            const Template copy = made;
            const RenderResult result = copy.render(context, {.escape = escape});
            std::string joined;
            made.renderTo(context, [&joined](std::string_view piece) { joined += piece; });
            good += result.text == "<2\uFFFD" && joined == result.text.str() &&
                            result.messages.size() == 3 && result.messages[0].name == "gone"
                        ? 1
                        : 0;
        },
        [](int) { std::this_thread::yield(); });
    EXPECT_EQ(good, threadCount * turns);
}

TEST(TemplateThreads, AddToMemoryTemplatesWhileOthersRender) {
    MemoryTemplates source;
    source.add("a", version(0));
    std::atomic<int> good = 0;
    runTogether(
        [&] {
            const RenderResult result = twice.render({}, {.source = &source});
            good += isOneVersionTwice(result.text.str()) && !result.text.empty() ? 1 : 0;
        },
        [&](int time) {
            source.add("a", version(time));
            source.add(kel::String(std::to_string(time % 50)), version(time));
        });
    EXPECT_EQ(good, threadCount * turns);
}

TEST(TemplateThreads, ShareFileTemplatesWhileFilesChange) {
    const TemporaryFolder folder;
    folder.writeFile("a", version(0));
    folder.writeFile("kept", "kept");
    last_write_time(std::filesystem::path(folder.path("kept")),
                    std::filesystem::file_time_type::clock::now() - std::chrono::seconds(100));
    FileTemplates source(folder.path());
    std::atomic<int> good = 0;
    runTogether(
        [&] {
            const RenderResult result = twice.render({}, {.source = &source});
            const RenderResult kept = renderFile("kept", {}, {.source = &source});
            good += isOneVersionTwice(result.text.str()) && kept.text == "kept" ? 1 : 0;
        },
        [&](int time) { // replaced, removed, and created again
            folder.writeFile("next", version(time));
            std::error_code ignored; // Windows refuses this while it is read
            std::filesystem::rename(folder.path("next"), folder.path("a"), ignored);
            if (time % 10 == 0) {
                std::filesystem::remove(folder.path("a"), ignored);
            }
        });
    EXPECT_EQ(good, threadCount * turns);
}

// Any prefix may be read, but it is used for one render only.
TEST(TemplateThreads, ReadFilesThatGrowAndShrink) {
    const TemporaryFolder folder;
    FileTemplates source(folder.path());
    std::atomic<int> good = 0;
    runTogether(
        [&] {
            const std::string text = twice.render({}, {.source = &source}).text.str();
            const std::size_t half = text.size() / 2;
            good += text.substr(0, half) == text.substr(half) ? 1 : 0;
        },
        [&](int time) { folder.writeFile("a", version(time)); });
    EXPECT_EQ(good, threadCount * turns);
    folder.writeFile("a", "at last");
    EXPECT_EQ(renderFile("a", {}, {.source = &source}).text, "at last");
}

} // namespace
} // namespace support
