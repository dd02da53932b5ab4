#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace kel::Stencilor {
namespace {

using testing::Contains;
using testing::Not;

class WideText : public testing::Test {
  protected:
    WideText() {
        host_.reset();
        root_.insert("x", new ContextString(HostDouble::wide(u"\u00E9\u0141")));
        root_.insert("cut", new ContextString(HostDouble::wide(std::u16string(u"a\0b", 3))));
        root_.insert("A", new ContextString("key A"));
        root_.insert(HostDouble::wide(u"\u0141"), new ContextString("wide key"));
    }

    std::u16string rendered(const String& input) {
        const String output = buildOutput(input, root_, errors_);
        return std::u16string(HostDouble::textOf(output));
    }

    HostDouble& host_ = HostDouble::instance();
    ContextDictionary root_;
    String errors_;
};

TEST_F(WideText, OfATemplateIsReducedToItsLowBytesAndDecodedAsUtf8) {
    const struct {
        const char* name;
        std::u16string input;
        std::u16string expected;
    } cases[] = {
        {"ASCII", u"plain", u"plain"},
        {"high bits dropped", u"\u0141\u0262", u"Ab"},
        {"braces by their low bytes", u"\u017B\u027B A \u017D\u7D7D", u"key A"},
        {"a name by its low bytes", u"{{ \u0141 }}", u"key A"},
        {"a zero byte by its low bits", u"ab\u0100cd{{", u"ab"},
        {"bytes that are UTF-8", u"\u00C3\u00A9", u"\u00E9"},
        {"bytes that are not", u"\u00E9!", u"\uFFFD!"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(HostDouble::wide(input)), expected);
        EXPECT_EQ(errors_.size(), 0u);
    }
}

TEST_F(WideText, OfAValueComesThroughWhole) {
    EXPECT_EQ(rendered("{{ x }}"), u"\u00E9\u0141");
    EXPECT_EQ(rendered("{{ cut }}!"), u"a!");
}

// Rendered text passes through the narrow constructor and comes out as UTF-8 once more: its bytes
// over 127 become two each.
TEST_F(WideText, OfAnIncludedFileIsEncodedOnceMore) {
    host_.files["file"] = "\xC3\xA9";
    host_.files["value"] = "{{ x }}";
    host_.files["outer"] = "{% include \"file\" %}";
    EXPECT_EQ(rendered("{% include \"file\" %}"), u"\u00C3\u00A9");
    EXPECT_EQ(rendered("{% include \"value\" %}"), u"\u00C3\u00A9\u00C5\u0081");
    EXPECT_EQ(rendered("{% include \"outer\" %}"), u"\u00C3\u0083\u00C2\u00A9");
    EXPECT_THAT(host_.calls, Not(Contains("UTF8Decode with its flag set")));
}

} // namespace
} // namespace kel::Stencilor
