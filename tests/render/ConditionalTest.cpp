#include "../support/Context.h"

#include <gtest/gtest.h>

namespace support {
namespace {

/// A boolean of a host's own kind.
class DerivedBoolean : public ContextBoolean {
  public:
    using ContextBoolean::ContextBoolean;
};

TEST(Conditional, RendersTheBlockThatItsTruthChooses) {
    const Root root({
        {"yes", truth(true)},
        {"no", truth(false)},
        {"derived", new DerivedBoolean(true)},
        {"x", text("value")},
    });
    const struct {
        const char* name;
        const char* input;
        const char* expected;
    } cases[] = {
        {"true", "{% if yes %}a{% else %}b{% endif %}", "a"},
        {"false", "{% if no %}a{% else %}b{% endif %}", "b"},
        {"true without else", "[{% if yes %}a{% endif %}]", "[a]"},
        {"false without else", "[{% if no %}a{% endif %}]", "[]"},
        {"true and an empty body", "[{% if yes %}{% else %}b{% endif %}]", "[]"},
        {"false and an empty else part", "[{% if no %}a{% else %}{% endif %}]", "[]"},
        {"a class derived from the boolean", "{% if derived %}a{% endif %}", "a"},
        {"nested", "{% if yes %}a{% if no %}b{% else %}c{% endif %}d{% endif %}", "acd"},
        {"a substitution inside", "{% if yes %}{{ x }}{% endif %}", "value"},
        {"a fault in the part that is not chosen", "{% if no %}{{ missing }}{% endif %}", ""},
        {"text around, kept as it is", "\n{% if yes %}\n a\n{% endif %}\n", "\n\n a\n\n"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{expected, ""}));
    }
}

TEST(Conditional, ReportsAConditionThatIsNotThereOrNoBoolean) {
    const Root root({
        {"null", nullptr},
        {"string", text("true")},
        {"dictionary", dictionary({{"a", text("b")}})},
        {"list", listOf(2)},
        {"node", new ContextBase},
    });
    const struct {
        const char* name;
        const char* condition;
        const char* errors;
    } cases[] = {
        {"a missing name", "flag", "Could not find expected boolean named \"flag\n"},
        {"an entry that holds null", "null", "Could not find expected boolean named \"null\n"},
        {"a string", "string", "Expected named \"string\" to be of type ContextBoolean\n"},
        {"a dictionary", "dictionary",
         "Expected named \"dictionary\" to be of type ContextBoolean\n"},
        {"a list", "list", "Expected named \"list\" to be of type ContextBoolean\n"},
        {"a node without payload", "node",
         "Expected named \"node\" to be of type ContextBoolean\n"},
    };
    for (const auto& [name, condition, errors] : cases) {
        SCOPED_TRACE(name);
        const std::string input =
            "[{% if " + std::string(condition) + " %}a{% else %}b{% endif %}]";
        EXPECT_EQ(render(input, root), (Rendered{"[]", errors}));
    }
}

TEST(Conditional, HandsTheFaultsInsideOn) {
    const Root root({{"yes", truth(true)}});
    EXPECT_EQ(render("{% if yes %}a{{ x }}b{% if y %}{% endif %}c{% endif %}d{{ z }}", root),
              (Rendered{"abcd", "Could not find expected replacement named \"x\"\n"
                                "Could not find expected boolean named \"y\n"
                                "Could not find expected replacement named \"z\"\n"}));
}

TEST(Conditional, HasTheChildrenOfItsBooleanAsInnermostNamesInBothParts) {
    const Root root({
        {"yes", truth(true, {{"x", text("inner")}, {"null", nullptr}})},
        {"no", truth(false, {{"x", text("of no")}})},
        {"x", text("outer")},
        {"null", text("not hidden by null")},
    });
    const struct {
        const char* name;
        const char* input;
        const char* expected;
    } cases[] = {
        {"in the body", "{% if yes %}{{ x }}{% endif %}", "inner"},
        {"in the else part", "{% if no %}{% else %}{{ x }}{% endif %}", "of no"},
        {"not behind the block", "{% if yes %}{% endif %}{{ x }}", "outer"},
        {"not in front of it", "{{ x }}{% if yes %}{% endif %}", "outer"},
        {"in a block inside",
         "{% if yes %}{% if no %}{% else %}{{ x }}{% endif %}{{ x }}{% endif %}", "of noinner"},
        {"not where the entry holds null", "{% if yes %}{{ null }}{% endif %}",
         "not hidden by null"},
        {"of the same boolean twice",
         "{% if yes %}{% if yes %}{{ x }}{% endif %}{{ x }}{% endif %}", "innerinner"},
        {"of the first again, inside the second",
         "{% if yes %}{% if no %}{% else %}{% if yes %}{{ x }}{% endif %}{{ x }}{% endif %}{{ x "
         "}}{% endif %}",
         "innerof noinner"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{expected, ""}));
    }
}

TEST(Conditional, FindsItsConditionAmongTheChildrenOfAnotherOne) {
    const Root root({{"outer", truth(true, {{"inner", truth(true)}})}});
    EXPECT_EQ(render("{% if outer %}{% if inner %}a{% endif %}{% endif %}", root),
              (Rendered{"a", ""}));
    EXPECT_EQ(render("{% if inner %}a{% endif %}", root),
              (Rendered{"", "Could not find expected boolean named \"inner\n"}));
}

} // namespace
} // namespace support
