#include "../support/Context.h"

#include <gtest/gtest.h>

#include <string>

namespace support {
namespace {

/// A list of a host's own kind.
class DerivedIterable : public ContextIterable {};

ContextDictionary* named(const char* name) {
    return dictionary({{"name", text(name)}});
}

TEST(Loop, RendersItsBodyForEachElementInOrder) {
    auto* const derived = new DerivedIterable;
    derived->add(named("derived"));
    const Root root({
        {"users", list({named("a"), named("b"), named("c")})},
        {"one", list({named("one")})},
        {"empty", list()},
        {"nulls", listOf(3)},
        {"derived", derived},
        {"mixed", list({text("s"), nullptr, truth(true, {{"name", text("of a boolean")}}), list(),
                        new ContextBase, named("of a dictionary")})},
        {"name", text("outer")},
    });
    const struct {
        const char* name;
        const char* input;
        const char* expected;
    } cases[] = {
        {"by the variable's prefix", "{% for u in users %}{{ u.name }},{% endfor %}", "a,b,c,"},
        {"without the prefix", "{% for u in users %}{{ name }},{% endfor %}", "a,b,c,"},
        {"one element", "{% for u in one %}{{ u.name }}{% endfor %}", "one"},
        {"no element", "[{% for u in empty %}{{ u.name }}{% endfor %}]", "[]"},
        {"an empty body", "[{% for u in users %}{% endfor %}]", "[]"},
        {"null elements, which hold no names", "{% for u in nulls %}{{ name }},{% endfor %}",
         "outer,outer,outer,"},
        {"a class derived from the list", "{% for u in derived %}{{ u.name }}{% endfor %}",
         "derived"},
        {"elements of every kind", "{% for u in mixed %}{{ name }},{% endfor %}",
         "outer,outer,of a boolean,outer,outer,of a dictionary,"},
        {"nothing between the turns", "{% for u in nulls %}x{% endfor %}", "xxx"},
        {"text around, kept as it is", "<{% for u in one %}\n {{ u.name }}\n{% endfor %}>",
         "<\n one\n>"},
        {"the list itself inside its loop",
         "{% for u in users %}{% for v in users %}{{ v.name }}{% endfor %};{% endfor %}",
         "abc;abc;abc;"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(render(input, root), (Rendered{expected, ""}));
    }
}

TEST(Loop, ReportsAListThatIsNotThereOrNone) {
    const Root root({
        {"null", nullptr},
        {"string", text("text")},
        {"truth", truth(true)},
        {"dictionary", dictionary({{"a", text("b")}})},
        {"node", new ContextBase},
    });
    const struct {
        const char* name;
        const char* list;
        const char* errors;
    } cases[] = {
        {"a missing name", "xs", "Could not find expected for-expression named \"xs\"\n"},
        {"an entry that holds null", "null",
         "Could not find expected for-expression named \"null\"\n"},
        {"a string", "string", "Expected named \"string\" to be of type ContextIterable\n"},
        {"a boolean", "truth", "Expected named \"truth\" to be of type ContextIterable\n"},
        {"a dictionary", "dictionary",
         "Expected named \"dictionary\" to be of type ContextIterable\n"},
        {"a node without payload", "node",
         "Expected named \"node\" to be of type ContextIterable\n"},
    };
    for (const auto& [name, list, errors] : cases) {
        SCOPED_TRACE(name);
        const std::string input = "[{% for item in " + std::string(list) + " %}a{% endfor %}]";
        EXPECT_EQ(render(input, root), (Rendered{"[]", errors}));
    }
}

TEST(Loop, ReportsTheFaultsOfEachTurnAndGoesOn) {
    const Root root({{"users", list({named("a"), dictionary(), named("c")})}});
    EXPECT_EQ(render("{% for u in users %}[{{ u.name }}{{ u.age }}]{% endfor %}", root),
              (Rendered{"[a][][c]", "Could not find expected replacement named \"u.age\"\n"
                                    "Could not find expected replacement named \"u.name\"\n"
                                    "Could not find expected replacement named \"u.age\"\n"
                                    "Could not find expected replacement named \"u.age\"\n"}));
}

TEST(Loop, HasNoValueForItsVariableAlone) {
    const Root strings({{"list", list({text("a"), text("b")})}});
    EXPECT_EQ(render("{% for item in list %}{{ item }}{% endfor %}", strings),
              (Rendered{"", "Could not find expected replacement named \"item\"\n"
                            "Could not find expected replacement named \"item\"\n"}));
    const Root withItem({{"list", list({text("a"), text("b")})}, {"item", text("root's")}});
    EXPECT_EQ(render("{% for item in list %}{{ item }},{% endfor %}", withItem),
              (Rendered{"root's,root's,", ""}));
    const Root withChild({{"list", list({dictionary({{"item", text("child")}})})}});
    EXPECT_EQ(render("{% for item in list %}{{ item }}{% endfor %}", withChild),
              (Rendered{"child", ""}));
}

TEST(Loop, DoesNotSeeTheNamedChildrenOfItsList) {
    auto* const elements = list({dictionary()});
    elements->insert("caption", text("text"));
    const Root root({{"list", elements}});
    EXPECT_EQ(render("{% for item in list %}{{ caption }}{% endfor %}", root),
              (Rendered{"", "Could not find expected replacement named \"caption\"\n"}));
}

TEST(Loop, WalksListsThatItsElementsHold) {
    const Root root({{"rows", list({
                                  dictionary({{"cells", list({named("1"), named("2")})}}),
                                  dictionary({{"cells", list()}}),
                                  dictionary({{"cells", list({named("3")})}}),
                              })}});
    EXPECT_EQ(render("{% for row in rows %}{% for cell in row.cells %}{{ cell.name }}{% endfor %};"
                     "{% endfor %}",
                     root),
              (Rendered{"12;;3;", ""}));
}

} // namespace
} // namespace support
