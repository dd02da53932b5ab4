#include "Handles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace support {
namespace {

constexpr int threadCount = 6;
constexpr int turns = 100;

int answer(void* payload, const char* path, std::size_t size, stencilor_request* request) {
    ++*static_cast<std::atomic<int>*>(payload);
    return stencilor_request_set_text(request, path, size);
}

int poll(void*) {
    return 0;
}

TEST(CThreads, ShareEverythingThatNeverChanges) {
    const TemplateHandle page = parse("{{ a }}{{ gone }}{% include \"p\" %}");
    const ContextHandle context = contextOf(R"({"a": "<"})");
    std::atomic<int> asked = 0;
    SourceHandle source;
    EXPECT_EQ(stencilor_source_callback(answer, &asked, out(source)), STENCILOR_OK);
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    stencilor_options_set_escape(options.get(), STENCILOR_ESCAPE_HTML);
    stencilor_options_set_poll(options.get(), poll, nullptr);
    const ResultHandle shared = render(page, context, options.get());
    asked = 0;
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < turns; ++turn) {
                const ResultHandle result = render(page, context, options.get());
                TextHandle json;
                stencilor_check(page.get(), source.get(), context.get(), out(json));
                const bool isGood = textOf(result) == "&lt;p" && textOf(shared) == "&lt;p" &&
                                    textOf(stencilor_result_message(shared.get(), 0)) ==
                                        textOf(stencilor_result_message(result.get(), 0)) &&
                                    !textOf(json).empty();
                good += isGood ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, threadCount * turns);
    EXPECT_EQ(asked, 2 * threadCount * turns);
}

TEST(CThreads, AddToASourceWhileOthersRender) {
    const TemplateHandle page = parse("{% include \"p\" %}");
    const ContextHandle context = contextOf("{}");
    const SourceHandle source = makeMemory();
    add(source, "p", "0");
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    std::atomic<bool> ended = false;
    std::thread adding([&] {
        for (int turn = 0; !ended; ++turn) {
            add(source, "p", std::to_string(turn % 10));
        }
    });
    int good = 0;
    for (int turn = 0; turn < threadCount * turns; ++turn) {
        good += textOf(render(page, context, options.get())).size() == 1 ? 1 : 0;
    }
    ended = true;
    adding.join();
    EXPECT_EQ(good, threadCount * turns);
}

} // namespace
} // namespace support
