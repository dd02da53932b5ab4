#include "ProgramTest.h"

#include <nlohmann/json.hpp>

namespace program {
namespace {

using Json = nlohmann::json;

class NamesTest : public ProgramTest {
  protected:
    NamesTest() {
        folder.writeFile("page.txt", "{{ title }}{% if new %}{{ title }}{% endif %}\n"
                                     "{% for item in shop.items %}{{ item.name }}\n"
                                     "{% for tag in item.tags %}{{ tag.x }}{{ item.name }}"
                                     "{% endfor %}{% include \"row.txt\" %}{% endfor %}\n"
                                     "{{ title }}");
        folder.writeFile("row.txt", "{{ price }}");
    }
};

TEST_F(NamesTest, AreListedWithTheirPlaces) {
    expectOutcome(runStencilor("names page.txt"), 0,
                  "title       string   page.txt:1, page.txt:4\n"
                  "new         boolean  page.txt:1\n"
                  "shop.items  list     page.txt:2\n"
                  "item.name   string   page.txt:2              for item in shop.items\n"
                  "item.tags   list     page.txt:3              for item in shop.items\n"
                  "tag.x       string   page.txt:3              for item in shop.items, for tag in "
                  "item.tags\n"
                  "item.name   string   page.txt:3              for item in shop.items, for tag in "
                  "item.tags\n"
                  "price       string   row.txt:1               included at page.txt:3\n",
                  "");
}

TEST_F(NamesTest, AreListedAsJson) {
    const Outcome outcome = runStencilor("names page.txt --format json");
    EXPECT_EQ(outcome.status, 0);
    const Json names = Json::parse(outcome.output)["names"];
    ASSERT_EQ(names.size(), 8u);
    EXPECT_EQ(names[0], Json::parse(R"({"name": "title", "kind": "string", "loops": [],
        "places": [{"file": "page.txt", "line": 1, "column": 4},
                   {"file": "page.txt", "line": 1, "column": 27},
                   {"file": "page.txt", "line": 4, "column": 4}],
        "moreLoops": 0, "includedAt": [], "moreInclusions": 0})"));
    EXPECT_EQ(names[5], Json::parse(R"({"name": "tag.x", "kind": "string",
        "loops": [{"variable": "item", "list": "shop.items"},
                  {"variable": "tag", "list": "item.tags"}],
        "places": [{"file": "page.txt", "line": 3, "column": 30}],
        "moreLoops": 0, "includedAt": [], "moreInclusions": 0})"));
    EXPECT_EQ(names[7]["includedAt"],
              Json::parse(R"([{"file": "page.txt", "line": 3, "column": 77}])"));
}

TEST_F(NamesTest, AreListedWithFivePlacesOfEachKindAndTheNumberOfTheOthers) {
    std::string page;
    std::string loops;
    std::string names;
    std::string ends;
    for (const std::string variable : {"a", "b", "c", "d", "e", "f"}) {
        page += "{% include \"part.txt\" %}\n";
        loops += "{% for " + variable + " in " + variable + "s %}";
        names += "\n{{ x }}";
        ends += "{% endfor %}";
    }
    folder.writeFile("case.txt", page);
    folder.writeFile("part.txt", loops + names + ends);
    const std::string list = runStencilor("names case.txt").output;
    EXPECT_EQ(
        list.substr(list.find("x ")),
        "x   string  part.txt:2, part.txt:3, part.txt:4, part.txt:5, part.txt:6 and 1 more  "
        "1 loop around, for b in bs, for c in cs, for d in ds, for e in es, for f in fs; "
        "included at case.txt:1, case.txt:2, case.txt:3, case.txt:4, case.txt:5 and 1 more\n");
    const Json json = Json::parse(runStencilor("names case.txt --format json").output);
    const Json& last = json["names"].back();
    EXPECT_EQ(last["places"].size(), 6u);
    EXPECT_EQ(last["moreLoops"], 1);
    EXPECT_EQ(last["includedAt"].size(), 5u);
    EXPECT_EQ(last["moreInclusions"], 1);
}

TEST_F(NamesTest, FormASkeletonToFillIn) {
    const Outcome outcome = runStencilor("names page.txt --skeleton");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(Json::parse(outcome.output), Json::parse(R"({"title": "", "new": true,
        "shop": {"items": [{"name": "", "tags": [{"x": ""}], "price": ""}]}})"));
}

TEST_F(NamesTest, FormACompleteSkeleton) {
    const struct {
        const char* name;
        std::string text;
        std::string skeleton;
    } cases[] = {
        {"no names", "text", "{}"},
        {"a list without members", "{% for a in b %}x{% endfor %}", R"({"b": [{}]})"},
        {"nested names", "{{ a.b.c }}{{ a.b.d }}{{ a.e }}",
         R"({"a": {"b": {"c": "", "d": ""}, "e": ""}})"},
        {"a name that begins another", "{{ a }}{{ a.b }}{{ a.b.c }}",
         R"({"a": "", "a.b": "", "a.b.c": ""})"},
        {"a name that begins a later one", "{{ a.b }}{{ a }}", R"({"a": "", "a.b": ""})"},
        {"names with empty parts", "{{ a. }}{{ b..c }}", R"({"a.": "", "b..c": ""})"},
        {"a condition on a member", "{% for a in b %}{% if a.c %}{{ a.d }}{% endif %}{% endfor %}",
         R"({"b": [{"c": true, "d": ""}]})"},
        {"a member of the outer element",
         "{% for a in b %}{% for c in a.d %}{{ a.e }}{{ c.f }}{% endfor %}{% endfor %}",
         R"({"b": [{"d": [{"f": ""}], "e": ""}]})"},
        {"a name of the outermost object inside a loop", "{% for a in b %}{{ c }}{% endfor %}",
         R"({"b": [{}], "c": ""})"},
        {"the variable of a loop by itself", "{% for a in b %}{{ a }}{{ a. }}{% endfor %}",
         R"({"b": [{}], "a": "", "a.": ""})"},
        {"the same variable twice",
         "{% for a in b %}{% for a in a.c %}{{ a.d }}{% endfor %}{% endfor %}",
         R"({"b": [{"c": [{"d": ""}]}]})"},
        {"a loop in an included file", R"({% for a in b %}{% include "loop.txt" %}{% endfor %})",
         R"({"b": [{"tags": [{"y": ""}]}]})"},
    };
    folder.writeFile("loop.txt", "{% for t in tags %}{{ t.y }}{% endfor %}");
    for (const auto& [name, text, skeleton] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("case.txt", text);
        const Outcome outcome = runStencilor("names case.txt --skeleton");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(Json::parse(outcome.output), Json::parse(skeleton));
        folder.writeFile("case.json", outcome.output);
        expectOutcome(runStencilor("check case.txt --context case.json"), 0, "", "");
    }
}

TEST_F(NamesTest, OfTwoKindsAreReported) {
    folder.writeFile("case.txt", "{% if a %}{% for x in a %}{{ x.y }}{% endfor %}{% endif %}");
    const Outcome outcome = runStencilor("names case.txt --skeleton");
    expectOutcome(outcome, 1, "{\n  \"a\": true\n}\n",
                  "stencilor: case.txt: \"a\" is used as a boolean and as a list\n");
}

TEST_F(NamesTest, OfARejectedTemplateAreNotListed) {
    folder.writeFile("case.txt", "{{ a }}{{");
    folder.writeFile("out.txt", "before");
    const std::string message =
        "case.txt:1:10: error: expected a name after \"{{\"\n{{ a }}{{\n         ^\n";
    expectOutcome(runStencilor("names case.txt -o out.txt"), 3, "", message);
    expectOutcome(runStencilor("names case.txt --skeleton -o out.txt"), 3, "", message);
    expectOutcome(runStencilor("tree case.txt -o out.txt"), 3, "", message);
    expectOutcome(runStencilor("deps case.txt -o out.txt"), 3, "", message);
    EXPECT_EQ(support::readFile("out.txt"), "before");
}

TEST_F(NamesTest, AreListedEvenIfAnIncludedFileIsMissingOrRejected) {
    folder.writeFile("case.txt", R"({% include "none.txt" %}{% include "bad.txt" %}{{ a }})");
    folder.writeFile("bad.txt", "{{ b }}{{");
    expectOutcome(runStencilor("names case.txt"), 1,
                  "b  string  bad.txt:1   included at case.txt:1\na  string  case.txt:1\n",
                  "case.txt:1:13: error: included file \"none.txt\" does not exist\n"
                  "{% include \"none.txt\" %}{% include \"bad.txt\" %}{{ a }}\n"
                  "            ^~~~~~~~\n"
                  "bad.txt:1:10: error: expected a name after \"{{\"\n{{ b }}{{\n         ^\n");
}

TEST_F(NamesTest, AreListedOnceIfAFileIncludesItself) {
    folder.writeFile("case.txt",
                     R"({% for x in xs %}{{ x.n }}{% include "case.txt" %}{% endfor %})");
    expectOutcome(runStencilor("names case.txt"), 0,
                  "xs   list    case.txt:1  included at case.txt:1\n"
                  "x.n  string  case.txt:1  for x in xs; included at case.txt:1\n",
                  "");
}

} // namespace
} // namespace program
