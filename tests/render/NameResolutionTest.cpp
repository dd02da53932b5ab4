#include "../support/Test.h"
#include "Cases.h"

namespace support {
namespace {

TEST(NameResolution, TriesTheInnermostScopeFirst) {
    const Root root({
        {"x", text("root")},
        {"only", text("root only")},
        {"outer", list({dictionary({{"x", text("outer")}, {"middle", text("middle")}})})},
        {"inner", list({dictionary({{"x", text("inner")}, {"middle", nullptr}})})},
    });
    const Case cases[] = {
        {"at top level", "{{ x }}", "root"},
        {"in one loop", "{% for a in outer %}{{ x }}{% endfor %}", "outer"},
        {"in two loops", "{% for a in outer %}{% for b in inner %}{{ x }}{% endfor %}{% endfor %}",
         "inner"},
        {"in two loops, reversed",
         "{% for b in inner %}{% for a in outer %}{{ x }}{% endfor %}{% endfor %}", "outer"},
        {"a name that only the root has",
         "{% for a in outer %}{% for b in inner %}{{ only }}{% endfor %}{% endfor %}", "root only"},
        {"a name that null does not hide",
         "{% for a in outer %}{% for b in inner %}{{ middle }}{% endfor %}{% endfor %}", "middle"},
        {"after the loops", "{% for a in outer %}{% endfor %}{{ x }}", "root"},
        {"between the loops",
         "{% for a in outer %}{% for b in inner %}{% endfor %}{{ x }}{% endfor %}", "outer"},
    };
    expectRendered(root, cases);
}

TEST(NameResolution, StripsThePrefixOfALoopInsideItOnly) {
    const Root root({
        {"list", list({dictionary({{"title", text("element's")},
                                   {"item.own", text("key with the prefix")},
                                   {"item.title", text("not reached, title comes first")},
                                   {"a.b", text("dotted")},
                                   {"item.", text("key of the prefix alone")},
                                   {"", text("empty key")}})})},
        {"item.title", text("root's dotted")},
        {"item.rest", text("root's rest")},
        {"title", text("root's")},
        {"more", text("root's more")},
    });
    const Case cases[] = {
        {"inside", "{% for item in list %}{{ item.title }}{% endfor %}", "element's"},
        {"inside, without prefix", "{% for item in list %}{{ title }}{% endfor %}", "element's"},
        {"outside", "{{ item.title }}", "root's dotted"},
        {"after the loop", "{% for item in list %}{% endfor %}{{ item.title }}", "root's dotted"},
        {"under another variable", "{% for other in list %}{{ item.own }}{% endfor %}",
         "key with the prefix"},
        {"the whole name if the rest is not a key",
         "{% for item in list %}{{ item.own }}{% endfor %}", "key with the prefix"},
        {"a rest with a dot", "{% for item in list %}{{ item.a.b }}{% endfor %}", "dotted"},
        {"in the root, without prefix", "{% for item in list %}{{ item.more }}{% endfor %}",
         "root's more"},
        {"in the root, the whole name", "{% for item in list %}{{ item.rest }}{% endfor %}",
         "root's rest"},
        {"nothing after the prefix", "{% for item in list %}{{ item. }}{% endfor %}", "empty key"},
        {"only one prefix", "{% for item in list %}{{ item.item.own }}{% endfor %}",
         "key with the prefix"},
    };
    expectRendered(root, cases);
}

TEST(NameResolution, DoesNotStripWhatOnlyLooksLikeThePrefix) {
    const Root root({
        {"list", list({dictionary(
                     {{"title", text("element's")}, {"s.title", text("rest of a longer name")}})})},
        {"items.title", text("longer name")},
        {"ite.title", text("shorter name")},
        {"Item.title", text("another case")},
        {"x.item.title", text("prefix further on")},
        {"item/title", text("slash")},
    });
    const Case cases[] = {
        {"a longer name", "{% for item in list %}{{ items.title }}{% endfor %}", "longer name"},
        {"a shorter name", "{% for item in list %}{{ ite.title }}{% endfor %}", "shorter name"},
        {"different case", "{% for item in list %}{{ Item.title }}{% endfor %}", "another case"},
        {"the prefix later in the name", "{% for item in list %}{{ x.item.title }}{% endfor %}",
         "prefix further on"},
        {"a slash", "{% for item in list %}{{ item/title }}{% endfor %}", "slash"},
    };
    expectRendered(root, cases);
}

TEST(NameResolution, TriesTheNewestPrefixFirstAndEachInEveryScope) {
    const Root root({
        {"xs", list({dictionary({{"title", text("outer title")},
                                 {"only", text("outer only")},
                                 {"b.only", text("outer with b")}})})},
        {"ys",
         list({dictionary({{"title", text("inner title")}, {"a.whole", text("inner whole")}})})},
        {"dotted",
         list({dictionary({{"c", text("behind both")}, {"b.c", text("behind the outer")}})})},
        {"whole", text("root whole")},
        {"both", list({dictionary({{"title", text("rest")}, {"a.title", text("whole")}})})},
    });
    const auto loops = [](const std::string& body) {
        return "{% for a in xs %}{% for b in ys %}" + body + "{% endfor %}{% endfor %}";
    };
    const Case cases[] = {
        {"the outer variable reaches the inner element first", loops("{{ a.title }}"),
         "inner title"},
        {"the inner variable", loops("{{ b.title }}"), "inner title"},
        {"a member that only the outer element has, with either variable",
         loops("{{ a.only }},{{ b.only }},{{ only }}"), "outer only,outer only,outer only"},
        {"the whole name inside before the rest outside", loops("{{ a.whole }}"), "inner whole"},
        {"a prefix after a prefix stays",
         "{% for a in dotted %}{% for b in ys %}{{ a.b.c }}"
         "{% endfor %}{% endfor %}",
         "behind the outer"},
        {"variables with a dot",
         "{% for a in dotted %}{% for a.b in ys %}{{ a.b.c }}"
         "{% endfor %}{% endfor %}",
         "behind both"},
        {"variables with a dot, reversed",
         "{% for a.b in ys %}{% for a in dotted %}"
         "{{ a.b.c }}{% endfor %}{% endfor %}",
         "behind the outer"},
        {"the same variable twice",
         "{% for a in xs %}{% for a in ys %}{{ a.title }},{{ a.only }}"
         "{% endfor %}{{ a.title }}{% endfor %}",
         "inner title,outer onlyouter title"},
        {"the whole name before the rest if a newer prefix does not match",
         "{% for a in both %}{% for b in both %}{{ a.title }}{% endfor %}{% endfor %}", "whole"},
        {"the rest before the whole name if the newest prefix matches",
         "{% for a in both %}{{ a.title }}{% endfor %}", "rest"},
        {"a variable that is entered again is the newest until it is left",
         "{% for a in both %}{% for b in both %}{% for a in both %}{{ a.title }}{% endfor %},"
         "{{ a.title }}{% endfor %},{{ a.title }}{% endfor %}",
         "rest,whole,rest"},
    };
    expectRendered(root, cases);
}

TEST(NameResolution, FindsTheFirstValueOfTheNameWhateverItsKind) {
    const Root root({
        {"x", text("root")},
        {"list", list({dictionary({{"x", truth(true)}})})},
    });
    EXPECT_EQ(render("{% for item in list %}{{ x }}{% endfor %}", root),
              (Rendered{"", "The replacement is not of type String for \"x\""}));
    EXPECT_EQ(render("{% for item in list %}{{ item.x }}{% endfor %}", root),
              (Rendered{"", "The replacement is not of type String for \"item.x\""}));
}

TEST(NameResolution, HoldsForConditionsAndListsToo) {
    const Root root({{"users", list({dictionary({{"active", truth(true)},
                                                 {"tags", list({dictionary({{"t", text("x")}})})}}),
                                     dictionary({{"active", truth(false)}, {"tags", list()}})})}});
    EXPECT_EQ(render("{% for u in users %}{% if u.active %}yes{% else %}no{% endif %}"
                     "{% for tag in u.tags %}{{ tag.t }}{% endfor %};{% endfor %}",
                     root),
              (Rendered{"yesx;no;", ""}));
}

// Parts of a long template are freed while it is rendered, so names have the addresses of others.
TEST(NameResolution, TellsTheNamesInManyLoopsApart) {
    Root root;
    std::string input;
    std::string expected;
    ContextDictionary* const row = dictionary();
    for (int name = 0; name < 1000; ++name) {
        const std::string number = std::to_string(name);
        row->insert("n" + number, text(number));
        input += "{% for r in rows %}{{ r.n" + number + " }};{% endfor %}";
        expected += number + ";";
    }
    root.insert("rows", list({row}));
    EXPECT_EQ(render(input, root), (Rendered{expected, ""}));
}

// Many scopes and prefixes at once, both equal and different, from the inside out.
TEST(NameResolution, FindsTheRightScopeAmongHundreds) {
    Root root;
    std::string opening;
    std::string closing;
    for (int depth = 0; depth < 200; ++depth) {
        const std::string number = std::to_string(depth);
        root.insert(
            "list" + number,
            list({dictionary({{"x", text(number)}, {"own" + number, text("o" + number)}})}));
        opening += "{% for v" + number + " in list" + number + " %}";
        closing = "{{ x }} {% endfor %}" + closing;
    }
    std::string expected;
    for (int depth = 199; depth >= 0; --depth) {
        expected += std::to_string(depth) + " ";
    }
    EXPECT_EQ(render(opening + closing, root), (Rendered{expected, ""}));
    const std::string body =
        "{{ v0.own0 }} {{ v7.own199 }} {{ own100 }} "
        "{% for w in list3 %}{{ x }} {{ w.own3 }} {{ v199.own199 }}{% endfor %} {{ x }}|";
    expected.insert(0, "o0 o199 o100 3 o3 o199 199|");
    EXPECT_EQ(render(opening + body + closing, root), (Rendered{expected, ""}));
}

} // namespace
} // namespace support
