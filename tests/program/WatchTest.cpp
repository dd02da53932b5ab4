#include "ProgramTest.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace program {
namespace {

using namespace std::chrono_literals;

/// True if the file has the content soon. While it is read it cannot be replaced on Windows, and
/// the other way round, so it is rarely looked at.
bool becomes(const std::string& file, const std::string& content) {
    for (int i = 0; i < 200; ++i) {
        std::this_thread::sleep_for(150ms);
        try {
            if (support::readFile(file) == content) {
                return true;
            }
        } catch (const std::runtime_error&) { // it is not there, or being replaced
        }
    }
    return false;
}

using WatchTest = ProgramTest;

TEST_F(WatchTest, RendersAgainWhenWhatItReadsChanges) {
    folder.writeFile("page.txt", R"({{ a }}{% include "part.txt" %})");
    folder.writeFile("part.txt", "part");
    folder.writeFile("values.json", R"({"a":"1"})");
    const RunningStencilor watching("render page.txt values.json --watch -o out.txt");
    ASSERT_TRUE(becomes("out.txt", "1part"));
    const struct {
        const char* name;
        std::string file;
        std::string text;
        std::string output; // empty where there is none
    } changes[] = {
        {"the context", "values.json", R"({"a":"22"})", "22part"},
        {"an include", "part.txt", "other", "22other"},
        {"the template", "page.txt", R"([{{ a }}{% include "new.txt" %}])", "[22]"},
        {"an include that was missing", "new.txt", "new", "[22new]"},
        {"a context that is bad", "values.json", "{", ""},
        {"a context that is good again", "values.json", R"({"a":"333"})", "[333new]"},
        {"a template that is rejected", "page.txt", "{{", ""},
        {"a template that is good again", "page.txt", "good {{ a }}", "good 333"},
    };
    for (const auto& [name, file, text, output] : changes) {
        SCOPED_TRACE(name);
        folder.writeFile(file, text);
        if (output.empty()) {
            std::this_thread::sleep_for(500ms); // to be seen
        } else {
            ASSERT_TRUE(becomes("out.txt", output));
        }
    }
    std::filesystem::remove("page.txt");
    std::this_thread::sleep_for(500ms);
    folder.writeFile("page.txt", "back");
    EXPECT_TRUE(becomes("out.txt", "back"));
}

TEST_F(WatchTest, CannotReadTheStandardInputAgain) {
    folder.writeFile("page.txt", "text");
    for (const char* const call : {"render --watch -", "render --watch page.txt -"}) {
        expectOutcome(runStencilor(call), 2, "",
                      "stencilor: --watch cannot read the standard input again" +
                          helpHint("render"));
    }
}

} // namespace
} // namespace program
