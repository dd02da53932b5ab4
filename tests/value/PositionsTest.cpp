#include "../support/Test.h"
#include "Cases.h"

namespace kel::Stencilor {
namespace {

constexpr ContextOptions positions{.positions = true};

constexpr const char* all = "{% for x in l %}{{ x.index }}{% if x.first %}f{% endif %}"
                            "{% if x.last %}l{% endif %} {% endfor %}";

TEST(Positions, AreInEveryElement) {
    const struct {
        const char* name;
        Value list;
        std::string expected;
    } cases[] = {
        {"no element", Value::list(), ""},
        {"one element", Value::list({Value{}}), "1fl "},
        {"dictionaries", Value::list({{{"a", 1}}, {{"a", 2}}, {{"a", 3}}}), "1f 2 3l "},
        {"texts", Value::list({"a", "b"}), "1f 2l "},
        {"booleans", Value::list({false, true}), "1f 2l "},
        {"booleans with members", Value::list({{{"$boolean", false}}, {{"$boolean", true}}}),
         "1f 2l "},
        {"lists", Value::list({Value::list(), Value::list()}), "1f 2l "},
        {"null", Value::list({nullptr, nullptr}), "1f 2l "},
        {"many elements", Value::list({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}),
         "1f 2 3 4 5 6 7 8 9 10 11l "},
    };
    for (const auto& [name, list, expected] : cases) {
        EXPECT_EQ(rendered({{"l", list}}, all, positions), expected) << name;
    }
}

TEST(Positions, GiveWayToKeys) {
    const Value list = Value::list({{{"index", "i"}, {"first", false}, {"last", true}}, Value{}});
    EXPECT_EQ(rendered({{"l", list}}, all, positions), "il 2l ");
    // A null entry hides nothing, and does not count as a position.
    EXPECT_EQ(rendered({{"index", "out"}, {"l", Value::list({{{"index", nullptr}}})}},
                       "{% for x in l %}{{ index }}{% endfor %}", positions),
              "out");
}

TEST(Positions, AreAddedToTheValueOfAnElement) {
    EXPECT_EQ(rendered({{"l", Value::list({"a", "b"})}},
                       "{% for x in l %}{{ x.index }}{{ x.value }}{% endfor %}", positions),
              "1a2b");
    EXPECT_EQ(rendered({{"l", Value::list({Value::list({"a", "b"}), Value::list({"c"})})}},
                       "{% for x in l %}{{ x.index }}:{% for y in x.value %}{{ y.index }}"
                       "{{ y.value }}{% if y.last %};{% endif %}{% endfor %}{% endfor %}",
                       positions),
              "1:1a2b;2:1c;");
}

TEST(Positions, AreInListsUnderDottedNames) {
    EXPECT_EQ(rendered({{"a", {{"l", Value::list({"x", "y"})}}}},
                       "{% for x in a.l %}{{ x.index }}{% endfor %}", positions),
              "12");
}

TEST(Positions, AreOnlyAddedOnRequest) {
    EXPECT_EQ(rendered({{"l", Value::list({"a"})}}, "{% for x in l %}{{ x.index }}{% endfor %}"),
              "Could not find expected replacement named \"x.index\"\n");
}

} // namespace
} // namespace kel::Stencilor
