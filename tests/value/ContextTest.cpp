#include "../support/Test.h"
#include "Cases.h"

namespace kel::Stencilor {
namespace {

TEST(Context, HasAClassForEachKindOfValue) {
    const Context made(Value{{"text", "a"},
                             {"number", 1},
                             {"raw", Value::raw("<b>")},
                             {"boolean", false},
                             {"list", Value::list({1})},
                             {"dictionary", Value{}},
                             {"null", nullptr},
                             {"truth", {{"$boolean", true}}}});
    const ContextBase& context = made;
    EXPECT_NE(dynamic_cast<const ContextDictionary*>(&context), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context.find("text")), nullptr);
    EXPECT_EQ(dynamic_cast<ContextRawString*>(context.find("text")), nullptr);
    EXPECT_NE(dynamic_cast<ContextString*>(context.find("number")), nullptr);
    EXPECT_NE(dynamic_cast<ContextRawString*>(context.find("raw")), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context.find("boolean")), nullptr);
    EXPECT_NE(dynamic_cast<ContextIterable*>(context.find("list")), nullptr);
    EXPECT_NE(dynamic_cast<ContextDictionary*>(context.find("dictionary")), nullptr);
    EXPECT_NE(dynamic_cast<ContextBoolean*>(context.find("truth")), nullptr);
    EXPECT_TRUE(context.containsKey("null"));
    EXPECT_EQ(context.find("null"), nullptr);
    EXPECT_EQ(dynamic_cast<const ContextDictionary&>(context).size(), 8u);
}

TEST(Context, IsRendered) {
    const Case cases[] = {
        {"a text", {{"a", "\u00E9\n"}}, "{{ a }}", "\u00E9\n"},
        {"a raw text", {{"a", Value::raw("<b>")}}, "{{ a }}", "<b>"},
        {"a text up to its NUL", {{"a", std::string("b\0c", 3)}}, "{{ a }}", "b"},
        {"malformed bytes, which rendering replaces", {{"a", "\xFF"}}, "{{ a }}", "\uFFFD"},
        {"numbers", {{"a", -7}, {"b", 0.5}}, "{{a}} {{b}}", "-7 0.5"},
        {"true", {{"a", true}}, "{% if a %}yes{% else %}no{% endif %}", "yes"},
        {"false", {{"a", false}}, "{% if a %}yes{% else %}no{% endif %}", "no"},
        {"null, which is never found",
         {{"n", nullptr}},
         "{{ n }}",
         "Could not find expected replacement named \"n\"\n"},
        {"a list of dictionaries",
         {{"a", Value::list({{{"n", "1"}}, {{"n", "2"}}})}},
         "{% for x in a %}{{ x.n }},{% endfor %}",
         "1,2,"},
        {"an element of null, through which outer names are seen",
         {{"n", "out"}, {"a", Value::list({{{"n", "in"}}, nullptr})}},
         "{% for x in a %}{{ n }} {% endfor %}",
         "in out "},
        {"a key of null, which does not hide an outer name",
         {{"n", "out"}, {"a", Value::list({{{"n", nullptr}}})}},
         "{% for x in a %}{{ n }}{% endfor %}",
         "out"},
    };
    expectRendered(cases);
}

TEST(Context, ProvidesElementsThatAreNotDictionariesAsValue) {
    const struct {
        const char* name;
        Value list;
        std::string text;
        std::string expected;
    } cases[] = {
        {"texts", Value::list({"a", Value::raw("<b>"), 3}),
         "{% for x in l %}{{ x.value }},{{ value }};{% endfor %}", "a,a;<b>,<b>;3,3;"},
        {"booleans", Value::list({true, false}),
         "{% for x in l %}{% if x.value %}yes{% else %}no{% endif %} {% endfor %}", "yes no "},
        {"lists", Value::list({Value::list({1, 2}), Value::list(), Value::list({3})}),
         "{% for row in l %}[{% for cell in row.value %}{{ cell.value }},{% endfor %}]{% endfor %}",
         "[1,2,][][3,]"},
        {"a table", Value(std::vector<std::vector<int>>{{1, 2}, {3}}),
         "{% for row in l %}{% for cell in row.value %}{{ cell.value }} {% endfor %};{% endfor %}",
         "1 2 ;3 ;"},
        {"not the loop variable by itself", Value::list({"a"}),
         "{% for x in l %}{{ x }}{% endfor %}",
         "Could not find expected replacement named \"x\"\n"},
        {"not dictionaries", Value::list({Value{}}), "{% for x in l %}{{ x.value }}{% endfor %}",
         "Could not find expected replacement named \"x.value\"\n"},
        {"not booleans with members", Value::list({{{"$boolean", true}}}),
         "{% for x in l %}{% if x.value %}{% endif %}{% endfor %}",
         "Could not find expected boolean named \"x.value\n"},
        {"not null", Value::list({nullptr}), "{% for x in l %}{{ x.value }}{% endfor %}",
         "Could not find expected replacement named \"x.value\"\n"},
    };
    for (const auto& [name, list, text, expected] : cases) {
        EXPECT_EQ(rendered({{"l", list}}, text), expected) << name;
    }
}

/// A prefix is not tied to its loop.
TEST(Context, FindsAnOuterVariableInTheInnerElementIfItHasTheKey) {
    const Value table{{"rows", Value::list({Value::list({"a"})})}};
    EXPECT_EQ(rendered(table, "{% for row in rows %}{% for cell in row.value %}"
                              "{{ row.value }}{% endfor %}{% endfor %}"),
              "a");
    const Value named{{"rows", Value::list(std::vector<std::string>{"r"}, [](const auto& row) {
                           return Value{{"row", row}, {"cells", Value::list({"c"})}};
                       })}};
    EXPECT_EQ(rendered(named, "{% for r in rows %}{% for c in r.cells %}{{ r.row }}{{ c.value }}"
                              "{% endfor %}{% endfor %}"),
              "rc");
}

TEST(BooleanDictionaries, BecomeBooleansWithChildren) {
    const Case cases[] = {
        {"a true boolean",
         {{"n", "out"}, {"a", {{"$boolean", true}, {"n", "in"}}}},
         "{% if a %}{{ n }}{% endif %}",
         "in"},
        {"a false boolean",
         {{"a", {{"n", "in"}, {"$boolean", false}}}},
         "{% if a %}{% else %}{{ n }}{% endif %}",
         "in"},
        {"in a list",
         {{"a", Value::list({{{"$boolean", true}, {"n", "1"}}})}},
         "{% for x in a %}{{ x.n }}{% endfor %}",
         "1"},
        {"under a dotted name",
         {{"a", {{"b", {{"$boolean", true}, {"c", "1"}}}}}},
         "{% if a.b %}{{ c }}{% endif %}{{ a.b.c }}",
         "11"},
        {"with a dictionary in it",
         {{"a", {{"$boolean", true}, {"b", {{"c", "1"}}}}}},
         "{% if a %}{{ b.c }}{% endif %}{{ a.b.c }}",
         "11"},
        {"as the root", {{"$boolean", true}, {"a", "1"}}, "{{ a }}", "1"},
    };
    expectRendered(cases);
}

TEST(BooleanDictionaries, HaveNoChildForTheirKey) {
    const Context made(Value{{"a", {{"$boolean", true}, {"b", 1}}}, {"$boolean", false}});
    const ContextBase& context = made;
    EXPECT_FALSE(context.containsKey("$boolean"));
    EXPECT_FALSE(context.containsKey("a.$boolean"));
    EXPECT_FALSE(context.find("a")->containsKey("$boolean"));
    EXPECT_TRUE(context.containsKey("a.b"));
}

TEST(BooleanDictionaries, AreRejectedWithoutABoolean) {
    for (const Value& truth : {Value("true"), Value(nullptr), Value(1), Value::list(), Value{}}) {
        EXPECT_THROW(Context(Value{{"$boolean", truth}}), std::invalid_argument);
        EXPECT_THROW(Context(Value{{"a", Value::list({{{"$boolean", truth}}})}}),
                     std::invalid_argument);
    }
}

TEST(Context, IsRejectedIfTheRootIsNotADictionary) {
    for (const Value& root : {Value(nullptr), Value(true), Value("a"), Value::list({Value{}})}) {
        EXPECT_THROW(Context{root}, std::invalid_argument);
    }
}

TEST(Context, IsMoved) {
    Context source(Value{{"a", "1"}});
    const ContextBase* const root = &static_cast<const ContextBase&>(source);
    Context target = std::move(source);
    EXPECT_EQ(&static_cast<const ContextBase&>(target), root);
    source = Context(Value{{"a", "2"}}); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(buildOutput("{{ a }}", source), "2");
    target = std::move(source);
    EXPECT_EQ(buildOutput("{{ a }}", target), "2");
}

TEST(Context, IsIndependentOfTheValue) {
    Value value{{"a", std::string(100, 'a')}, {"b", Value::list({"1"})}};
    const Context context(value);
    value = nullptr;
    EXPECT_EQ(buildOutput("{{ a }}{% for x in b %}{{ x.value }}{% endfor %}", context),
              String(std::string(100, 'a') + "1"));
}

} // namespace
} // namespace kel::Stencilor
