#include "../support/Test.h"
#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {
namespace {

class WideText : public testing::Test {
  protected:
    WideText() {
        host_.reset();
        root_.insert("x", new ContextString(HostDouble::wide(U"\u00E9\u0141\U0001F600")));
        root_.insert("A", new ContextString("key A"));
        root_.insert(HostDouble::wide(U"\u0141"), new ContextString("wide key"));
    }

    std::u32string rendered(const String& input) {
        const String output = buildOutput(input, root_, errors_);
        return std::u32string(HostDouble::textOf(output));
    }

    HostDouble& host_ = HostDouble::instance();
    ContextDictionary root_;
    String errors_;
};

TEST_F(WideText, OfATemplateIsReducedToItsLowBytesAndDecodedAsUtf8) {
    const struct {
        const char* name;
        std::u32string input;
        std::u32string expected;
    } cases[] = {
        {"ASCII", U"plain", U"plain"},
        {"high bits dropped", U"\u0141\u0262", U"Ab"},
        {"characters past 16 bits", U"\U00010041\U0010FF42", U"AB"},
        {"braces by their low bytes", U"\u017B\u027B A \u017D\u7D7D", U"key A"},
        {"a name by its low bytes", U"{{ \u0141 }}", U"key A"},
        {"a zero byte by its low bits", U"ab\u0100cd{{", U"ab"},
        {"bytes that are UTF-8", U"\u00C3\u00A9", U"\u00E9"},
        {"bytes that are not", U"\u00E9!", U"\uFFFD!"},
        {"a value, which is kept whole", U"{{ x }}", U"\u00E9\u0141\U0001F600"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(rendered(HostDouble::wide(input)), expected);
        EXPECT_EQ(errors_.size(), 0u);
    }
}

// Rendered text passes through the narrow constructor and is encoded as UTF-8 again: each byte over
// 127 becomes two.
TEST_F(WideText, OfAnIncludedFileIsEncodedAgain) {
    host_.files["file"] = "\xC3\xA9";
    host_.files["value"] = "{{ x }}";
    host_.files["outer"] = "{% include \"file\" %}";
    EXPECT_EQ(rendered("{% include \"file\" %}"), U"\u00C3\u00A9");
    EXPECT_EQ(rendered("{% include \"value\" %}"),
              U"\u00C3\u00A9\u00C5\u0081\u00F0\u009F\u0098\u0080");
    EXPECT_EQ(rendered("{% include \"outer\" %}"), U"\u00C3\u0083\u00C2\u00A9");
}

} // namespace
} // namespace kel::Stencilor
