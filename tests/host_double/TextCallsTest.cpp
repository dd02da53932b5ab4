#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;

class TextCalls : public testing::Test {
  protected:
    TextCalls() {
        host_.reset();
        root_.insert("x", new ContextString(String("b\0c", 3)));
    }

    /// What was asked of strings and files.
    std::vector<std::string> callsOf(const char* input) {
        String errors;
        host_.notesText = true;
        buildOutput(input, root_, errors);
        std::vector<std::string> calls = host_.takeCalls();
        std::erase_if(calls, [](const std::string& call) {
            return call == "getPriority" || call.starts_with("> ") || call.starts_with("< ");
        });
        return calls;
    }

    static std::string appended(std::string_view text) {
        return "+= of " + std::to_string(text.size());
    }

    HostDouble& host_ = HostDouble::instance();
    ContextDictionary root_;
};

TEST_F(TextCalls, DecodeEachNodeOnItsOwnWithItsLength) {
    EXPECT_THAT(callsOf("a{{ x }}{{ y }}"),
                ElementsAre("getLowerByteString of 15",                                    //
                            "UTF8Decode of 1", "+= of 1", "+= of 0",                       //
                            "getUTF8String of 3", "UTF8Decode of 1", "+= of 1", "+= of 0", //
                            "UTF8Decode of 0", "+= of 0",
                            appended("Could not find expected replacement named \"y\"\n")));
}

TEST_F(TextCalls, TakeAFileWithItsLengthAndItsTextUpToTheFirstNul) {
    host_.files["file"] = std::string("a\0b", 3);
    EXPECT_THAT(callsOf("{% include \"file\" %}"),
                ElementsAre("getLowerByteString of 20", "exists file", "loadFile file",
                            "String of 3", "getLowerByteString of 3", "+= of 0",
                            "getUTF8String of 1", "UTF8Decode of 1", "+= of 1", "+= of 0"));
}

TEST_F(TextCalls, TakeAFileThatHoldsNothing) {
    host_.files["file"] = "";
    EXPECT_THAT(callsOf("{% include \"file\" %}"),
                ElementsAre("getLowerByteString of 20", "exists file", "loadFile file",
                            "String of 0", "getLowerByteString of 0", "+= of 0",
                            "getUTF8String of 0", "UTF8Decode of 0", "+= of 0", "+= of 0"));
}

TEST_F(TextCalls, RenderNothingOfARejectedTemplate) {
    const std::string message =
        "Could not build formatted output: Failed to parse input correctly.";
    EXPECT_THAT(callsOf("a{{"), ElementsAre("getLowerByteString of 3", appended(message)));
}

} // namespace
} // namespace kel::Stencilor
