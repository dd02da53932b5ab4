#include "../support/Test.h"
#include "Cases.h"

namespace support {
namespace {

/// A value of a host's own kind.
template <typename Kind>
class Derived : public Kind {
  public:
    using Kind::Kind;
};

ContextDictionary* named(const char* name) {
    return dictionary({{"name", text(name)}});
}

/// The text with a name in place of `^`.
std::string with(const std::string& name, std::string text) {
    return text.replace(text.find('^'), 1, name);
}

TEST(Constructs, ReportMissingNamesAndValuesOfAnotherKind) {
    const Root root({
        {"null", nullptr},
        {"string", text("true")},
        {"boolean", truth(true)},
        {"dictionary", dictionary({{"name", text("not reached by a dot")}})},
        {"list", listOf(2)},
        {"node", new ContextBase},
    });
    const struct {
        std::string kind;
        const char* input;
        const char* missing;
        const char* wrong;
    } constructs[] = {
        {"string", "[{{\t ^  }}]", "Could not find expected replacement named \"^\"\n",
         "The replacement is not of type String for \"^\""},
        {"boolean", "[{% if ^ %}a{% else %}b{% endif %}]",
         "Could not find expected boolean named \"^\n",
         "Expected named \"^\" to be of type ContextBoolean\n"},
        {"list", "[{% for item in ^ %}a{% endfor %}]",
         "Could not find expected for-expression named \"^\"\n",
         "Expected named \"^\" to be of type ContextIterable\n"},
    };
    for (const auto& [kind, input, missing, wrong] : constructs) {
        for (const std::string name : {"absent", "null", "String", "dictionary.name"}) {
            EXPECT_EQ(render(with(name, input), root), (Rendered{"[]", with(name, missing)}));
        }
        for (const std::string name : {"string", "boolean", "dictionary", "list", "node"}) {
            if (name != kind) {
                EXPECT_EQ(render(with(name, input), root), (Rendered{"[]", with(name, wrong)}));
            }
        }
    }
}

TEST(Constructs, ContinueAfterAFault) {
    const Root root({
        {"x", text("value")},
        {"yes", truth(true)},
        {"list", list()},
        {"users", list({named("a"), dictionary(), named("c")})},
    });
    EXPECT_EQ(render("a{{ one }}b{{ list }}c{{ two }}d{{ x }}", root),
              (Rendered{"abcdvalue", "Could not find expected replacement named \"one\"\n"
                                     "The replacement is not of type String for \"list\""
                                     "Could not find expected replacement named \"two\"\n"}));
    EXPECT_EQ(render("{% if yes %}a{{ v }}b{% if y %}{% endif %}c{% endif %}d{{ z }}", root),
              (Rendered{"abcd", "Could not find expected replacement named \"v\"\n"
                                "Could not find expected boolean named \"y\n"
                                "Could not find expected replacement named \"z\"\n"}));
    EXPECT_EQ(render("{% for u in users %}[{{ u.name }}{{ u.age }}]{% endfor %}", root),
              (Rendered{"[a][][c]", "Could not find expected replacement named \"u.age\"\n"
                                    "Could not find expected replacement named \"u.name\"\n"
                                    "Could not find expected replacement named \"u.age\"\n"
                                    "Could not find expected replacement named \"u.age\"\n"}));
}

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
        {"derived", new Derived<ContextString>("of a host's own kind")},
    });
    const Case cases[] = {
        {"alone", "{{ x }}", "value"},
        {"between text", "a {{ x }} b", "a value b"},
        {"twice", "{{ x }}{{ x }}", "valuevalue"},
        {"an empty text", "[{{ empty }}]", "[]"},
        {"a key with a dot", "{{ user.name }}", "dotted"},
        {"a key with a slash", "{{ a/b }}", "slashed"},
        {"a long text", "{{ long }}", std::string(1000, 'l')},
        {"without escaping and without parsing values", "{{ markup }}", "<b>&amp;\"{{ x }}</b>"},
        {"characters of every length", "{{ umlauts }}",
         "\u00E4\u00F6\u00FC \u65E5\u672C \U0001F600"},
        {"a text up to its first NUL", "{{ cut }}!", "before!"},
        {"malformed bytes, replaced", "{{ malformed }}", "a\uFFFD\uFFFDz"},
        {"a class derived from the string", "{{ derived }}", "of a host's own kind"},
    };
    expectRendered(root, cases);
}

TEST(Conditional, RendersTheBlockThatItsBooleanChooses) {
    const Root root({
        {"yes", truth(true)},
        {"no", truth(false)},
        {"derived", new Derived<ContextBoolean>(true)},
        {"x", text("value")},
    });
    const Case cases[] = {
        {"true", "{% if yes %}a{% else %}b{% endif %}", "a"},
        {"false", "{% if no %}a{% else %}b{% endif %}", "b"},
        {"true without else", "[{% if yes %}a{% endif %}]", "[a]"},
        {"false without else", "[{% if no %}a{% endif %}]", "[]"},
        {"true and an empty body", "[{% if yes %}{% else %}b{% endif %}]", "[]"},
        {"false and an empty else part", "[{% if no %}a{% else %}{% endif %}]", "[]"},
        {"a class derived from the boolean", "{% if derived %}a{% endif %}", "a"},
        {"nested", "{% if yes %}a{% if no %}b{% else %}c{% endif %}d{% endif %}", "acd"},
        {"a substitution inside", "{% if yes %}{{ x }}{% endif %}", "value"},
        {"a fault in the other part", "{% if no %}{{ missing }}{% endif %}", ""},
        {"surrounding text, unchanged", "\n{% if yes %}\n a\n{% endif %}\n", "\n\n a\n\n"},
    };
    expectRendered(root, cases);
}

TEST(Conditional, HasTheChildrenOfItsBooleanAsInnermostNamesInBothParts) {
    const Root root({
        {"yes", truth(true, {{"x", text("inner")}, {"null", nullptr}, {"also", truth(true)}})},
        {"no", truth(false, {{"x", text("of no")}})},
        {"x", text("outer")},
        {"null", text("not hidden by null")},
    });
    const Case cases[] = {
        {"in the body", "{% if yes %}{{ x }}{% endif %}", "inner"},
        {"in the else part", "{% if no %}{% else %}{{ x }}{% endif %}", "of no"},
        {"not after the block", "{% if yes %}{% endif %}{{ x }}", "outer"},
        {"not before it", "{{ x }}{% if yes %}{% endif %}", "outer"},
        {"in a nested block",
         "{% if yes %}{% if no %}{% else %}{{ x }}{% endif %}{{ x }}{% endif %}", "of noinner"},
        {"not if the entry is null", "{% if yes %}{{ null }}{% endif %}", "not hidden by null"},
        {"of the same boolean twice",
         "{% if yes %}{% if yes %}{{ x }}{% endif %}{{ x }}{% endif %}", "innerinner"},
        {"of the first again, inside the second",
         "{% if yes %}{% if no %}{% else %}{% if yes %}{{ x }}{% endif %}{{ x }}{% endif %}"
         "{{ x }}{% endif %}",
         "innerof noinner"},
        {"for a condition", "{% if yes %}{% if also %}a{% endif %}{% endif %}", "a"},
    };
    expectRendered(root, cases);
}

TEST(Loop, RendersItsBodyForEachElementInOrder) {
    auto* const derived = new Derived<ContextIterable>;
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
        {"rows",
         list({dictionary({{"cells", list({named("1"), named("2")})}}),
               dictionary({{"cells", list()}}), dictionary({{"cells", list({named("3")})}})})},
    });
    const Case cases[] = {
        {"with the variable's prefix", "{% for u in users %}{{ u.name }},{% endfor %}", "a,b,c,"},
        {"without the prefix", "{% for u in users %}{{ name }},{% endfor %}", "a,b,c,"},
        {"one element", "{% for u in one %}{{ u.name }}{% endfor %}", "one"},
        {"no element", "[{% for u in empty %}{{ u.name }}{% endfor %}]", "[]"},
        {"an empty body", "[{% for u in users %}{% endfor %}]", "[]"},
        {"null elements, which have no names", "{% for u in nulls %}{{ name }},{% endfor %}",
         "outer,outer,outer,"},
        {"a class derived from the list", "{% for u in derived %}{{ u.name }}{% endfor %}",
         "derived"},
        {"elements of every kind", "{% for u in mixed %}{{ name }},{% endfor %}",
         "outer,outer,of a boolean,outer,outer,of a dictionary,"},
        {"nothing between the iterations", "{% for u in nulls %}x{% endfor %}", "xxx"},
        {"surrounding text, unchanged", "<{% for u in one %}\n {{ u.name }}\n{% endfor %}>",
         "<\n one\n>"},
        {"the list itself inside its loop",
         "{% for u in users %}{% for v in users %}{{ v.name }}{% endfor %};{% endfor %}",
         "abc;abc;abc;"},
        {"lists in its elements",
         "{% for row in rows %}{% for cell in row.cells %}{{ cell.name }}{% endfor %};{% endfor %}",
         "12;;3;"},
    };
    expectRendered(root, cases);
}

TEST(Loop, HasNoValueForItsVariableAlone) {
    const Root strings({{"list", list({text("a"), text("b")})}});
    EXPECT_EQ(render("{% for item in list %}{{ item }}{% endfor %}", strings),
              (Rendered{"", "Could not find expected replacement named \"item\"\n"
                            "Could not find expected replacement named \"item\"\n"}));
    const Root root({{"list", list({text("a"), dictionary({{"item", text("child")}})})},
                     {"item", text("root's")}});
    EXPECT_EQ(render("{% for item in list %}{{ item }},{% endfor %}", root),
              (Rendered{"root's,child,", ""}));
}

TEST(Loop, DoesNotSeeTheNamedChildrenOfItsList) {
    auto* const elements = list({dictionary()});
    elements->insert("caption", text("text"));
    const Root root({{"list", elements}});
    EXPECT_EQ(render("{% for item in list %}{{ caption }}{% endfor %}", root),
              (Rendered{"", "Could not find expected replacement named \"caption\"\n"}));
}

} // namespace
} // namespace support
