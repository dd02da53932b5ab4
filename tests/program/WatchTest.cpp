#include "ProgramTest.h"

namespace program {
namespace {

using namespace std::chrono_literals;

/// True if the output soon has the content, and the last message says what happened. Windows does
/// not replace the output while it is read, so it is not read often.
bool becomes(const std::string& content, const RunningStencilor& watching,
             const std::string& message = "rendered") {
    const std::string last = "stencilor: " + message + "; waiting for a change\n";
    for (int i = 0; i < 200; ++i) {
        std::this_thread::sleep_for(150ms);
        try {
            if (watching.errors().ends_with(last) && support::readFile("out.txt") == content) {
                return true;
            }
        } catch (const std::runtime_error&) { // it does not exist, or is being replaced
        }
    }
    ADD_FAILURE() << watching.errors();
    return false;
}

using WatchTest = ProgramTest;

TEST_F(WatchTest, RendersAgainWhenWhatItReadsChanges) {
    folder.writeFile("page.txt", R"({{ a }}{% include "part.txt" %})");
    folder.writeFile("part.txt", "part");
    folder.writeFile("values.json", R"({"a":"1"})");
    const RunningStencilor watching("render page.txt values.json --watch -o out.txt");
    ASSERT_TRUE(becomes("1part", watching));
    const struct {
        const char* name;
        std::string file;
        std::string text;
        std::string output;
        std::string message = "rendered";
    } changes[] = {
        {"the context", "values.json", R"({"a":"22"})", "22part"},
        {"an include", "part.txt", "other", "22other"},
        {"the template", "page.txt", R"([{{ a }}{% include "new.txt" %}])", "[22]",
         "rendered with warnings"},
        {"an include that was missing", "new.txt", "new", "[22new]"},
        {"an invalid context", "values.json", "{", "[22new]", "failed"},
        {"a context that is valid again", "values.json", R"({"a":"333"})", "[333new]"},
        {"a rejected template", "page.txt", "{{", "[333new]",
         "nothing written, because the template is malformed"},
        {"a template that is valid again", "page.txt", "good {{ a }}", "good 333"},
        {"an endless template", "page.txt", R"({% include "page.txt" %})", "good 333",
         "nothing written, because a limit was reached"},
        {"a template that ends", "page.txt", "ends", "ends"},
    };
    for (const auto& [name, file, text, output, message] : changes) {
        SCOPED_TRACE(name);
        folder.writeFile(file, text);
        ASSERT_TRUE(becomes(output, watching, message));
    }
    std::filesystem::remove("page.txt");
    ASSERT_TRUE(becomes("ends", watching, "failed"));
    folder.writeFile("page.txt", "back");
    EXPECT_TRUE(becomes("back", watching));
}

TEST_F(WatchTest, WritesNothingWithGapsIfItIsStrict) {
    folder.writeFile("page.txt", "{{ a }}");
    folder.writeFile("out.txt", "old");
    const RunningStencilor watching("render page.txt --watch --strict -o out.txt");
    EXPECT_TRUE(becomes("old", watching, "nothing written, because of --strict"));
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
