#include "../support/Context.h"

#include <gtest/gtest.h>

#include <string>

namespace support {
namespace {

/// A string of a host's own kind.
class DerivedString : public ContextString {
  public:
    using ContextString::ContextString;
};

TEST(Substitution, WritesTheTextOfAString) {
    const Root root({
        {"x", text("value")},
        {"empty", text("")},
        {"user.name", text("dotted")},
        {"a/b", text("slashed")},
        {"long", text(std::string(1000, 'l'))},
        {"markup", text("<b>&amp;\"{{ x }}</b>")},
        {"umlauts", text("\u00E4\u00F6\u00FC \u65E5\u672C \U0001F600")},
        {"cut", text(kel::String("before\0after", 12))},
        {"malformed", text("a\xFF\xE2\x82z")},
        {"derived", new DerivedString("of a host's own kind")},
    });
    const struct {
        const char* name;
        const char* input;
        std::string expected;
    } cases[] = {
        {"alone", "{{ x }}", "value"},
        {"between text", "a {{ x }} b", "a value b"},
        {"twice", "{{ x }}{{ x }}", "valuevalue"},
        {"an empty text", "[{{ empty }}]", "[]"},
        {"a key with a dot", "{{ user.name }}", "dotted"},
        {"a key with a slash", "{{ a/b }}", "slashed"},
        {"a long text", "{{ long }}", std::string(1000, 'l')},
        {"without escaping and without a second reading", "{{ markup }}", "<b>&amp;\"{{ x }}</b>"},
        {"characters of every length", "{{ umlauts }}",
         "\u00E4\u00F6\u00FC \u65E5\u672C \U0001F600"},
        {"a text up to its first NUL", "{{ cut }}!", "before!"},
        {"malformed bytes replaced", "{{ malformed }}", "a\uFFFD\uFFFDz"},
        {"a class derived from the string", "{{ derived }}", "of a host's own kind"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{expected, ""}));
    }
}

TEST(Substitution, ReportsWhatIsNotThereOrNoString) {
    const Root root({
        {"null", nullptr},
        {"truth", truth(true)},
        {"dictionary", dictionary()},
        {"list", list()},
        {"node", new ContextBase},
        {"Name", text("of another case")},
        {"user", dictionary({{"name", text("not reached by a dot")}})},
    });
    const struct {
        const char* name;
        const char* input;
        const char* errors;
    } cases[] = {
        {"a missing name", "{{ missing }}",
         "Could not find expected replacement named \"missing\"\n"},
        {"an entry that holds null", "{{ null }}",
         "Could not find expected replacement named \"null\"\n"},
        {"a name in another case", "{{ name }}",
         "Could not find expected replacement named \"name\"\n"},
        {"a dotted name, which is not taken apart", "{{ user.name }}",
         "Could not find expected replacement named \"user.name\"\n"},
        {"a boolean", "{{ truth }}", "The replacement is not of type String for \"truth\""},
        {"a dictionary", "{{ dictionary }}",
         "The replacement is not of type String for \"dictionary\""},
        {"a list", "{{ list }}", "The replacement is not of type String for \"list\""},
        {"a node without payload", "{{ node }}",
         "The replacement is not of type String for \"node\""},
        {"blanks around the name", "{{\t list  }}",
         "The replacement is not of type String for \"list\""},
    };
    for (const auto& [name, input, errors] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{"", errors}));
    }
}

TEST(Substitution, LeavesItsNeighboursAloneWhereItFails) {
    const Root root({{"x", text("value")}, {"list", list()}});
    EXPECT_EQ(render("a{{ one }}b{{ list }}c{{ two }}d{{ x }}", root),
              (Rendered{"abcdvalue", "Could not find expected replacement named \"one\"\n"
                                     "The replacement is not of type String for \"list\""
                                     "Could not find expected replacement named \"two\"\n"}));
}

} // namespace
} // namespace support
