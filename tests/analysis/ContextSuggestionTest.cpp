#include "../support/Test.h"
#include "MemoryReader.h"

#include <libStencilor/Value.h>
#include <libStencilorAnalysis/check/ContextCheck.h>

namespace kel::Stencilor::Analysis {
namespace {

Context makeContext() {
    const Value tags = Value::list({"new", "cheap"});
    const Value items = Value::list(
        {Value{{"title", "Tea"}, {"tags", tags}, {"sold", true}, {"maker", Value{{"name", "A"}}}}});
    return Context(Value{{"items", items},
                         {"title", "Shop"},
                         {"user", Value{{"name", "Ada"}, {"admin", true}}},
                         {"tags", tags},
                         {"first_name", "Ada"}});
}

TEST(ContextCheck, MakesSuggestions) {
    const struct {
        const char* name;
        std::string text;
        std::string end; ///< of the only message
    } cases[] = {
        {"a misspelled name", "{{ tilte }}",
         R"(no string is named "tilte"; did you mean "title"?)"},
        {"different case", "{{ firstName }}", R"(; did you mean "first_name"?)"},
        {"the singular of a list", "{% for x in item %}{% endfor %}", R"(; did you mean "items"?)"},
        {"a misspelled name with dots", "{{ user.nmae }}", R"(; did you mean "user.name"?)"},
        {"a name that needs a prefix", "{{ name }}", R"(; did you mean "user.name"?)"},
        {"a misspelled member of an element", "{% for x in items %}{{ x.titel }}{% endfor %}",
         R"(in element 1 of "items"; did you mean "x.title"?)"},
        {"a condition", "{% for x in items %}{% if x.slod %}{% endif %}{% endfor %}",
         R"(; did you mean "x.sold"?)"},
        {"no suggestion of another kind", "{% if tilte %}{% endif %}",
         R"(no boolean is named "tilte")"},
        {"no similar name", "{{ price }}", R"(no string is named "price")"},
        {"the variable of a loop over strings", "{% for x in tags %}{{ x }}{% endfor %}",
         R"(; "x" is a loop variable, which is only a prefix: write "x.value")"},
        {"the variable of a loop over objects", "{% for x in items %}{{ x }}{% endfor %}",
         R"(; "x" is a loop variable, which is only a prefix: write a member, such as )"
         R"("x.maker.name")"},
        {"a variable that an inner loop provides",
         "{% for x in tags %}{% for y in tags %}{{ x }}{% endfor %}{% endfor %}",
         R"(; "x" is a loop variable, which is only a prefix, and an inner loop hides )"
         R"("x.value": in the context, give the elements their own keys)"},
        {"a variable in an inner loop over a missing list",
         "{% for x in tags %}{% for y in items %}{{ x }}{% endfor %}{% endfor %}",
         R"(: write "x.value")"},
        {"a member of a list", "{{ items.title }}",
         R"(; "items" is a list, so loop over it: {% for x in items %}{{ x.title }}{% endfor %})"},
        {"a list as a string", "{{ items }}",
         R"("items" is a list, not a string; loop over it: {% for x in items %}...{% endfor %})"},
        {"the variable of a loop around an include",
         R"({% for x in items %}{% include "row" %}{% endfor %})", R"(; did you mean "title"?)"},
    };
    const std::map<std::string, std::string> texts = {{"row", "{{ x.title }}"}};
    MemoryReader reader(texts);
    const Context context = makeContext();
    for (const auto& [name, text, end] : cases) {
        SCOPED_TRACE(name);
        TemplateFiles files(reader);
        const std::vector<Finding> found = findContextFaults(files, files.add({"page", text, text}),
                                                             context, ContextWalk::Extent::Whole);
        ASSERT_EQ(found.size(), 1u);
        EXPECT_TRUE(found[0].message.ends_with(end)) << found[0].message;
    }
}

TEST(ContextCheck, WarnsIfANameIsFoundInAnotherLoop) {
    const std::string hint = ", an inner loop; in the context, give the elements their own keys";
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> expected;
    } cases[] = {
        {"a value of the inner loop",
         "{% for x in tags %}{% for y in words %}{{ x.value }}{% endfor %}{% endfor %}",
         {R"("x.value" is found in element 1 of "words")" + hint + " @19"}},
        {"the same list in both loops",
         "{% for x in tags %}{% for y in tags %}{{ x.value }}{% endfor %}{% endfor %}",
         {R"("x.value" is found in element 2 of "tags")" + hint + " @19"}},
        {"a position",
         "{% for x in tags %}{% for y in words %}{{ x.index }}{% endfor %}{% endfor %}",
         {R"("x.index" is found in element 1 of "words")" + hint + " @19"}},
        {"a condition",
         "{% for x in tags %}{% for y in words %}{% if x.last %}{% endif %}{% endfor %}{% endfor "
         "%}",
         {R"("x.last" is found in element 1 of "words")" + hint + " @19"}},
        {"a list",
         "{% for x in rows %}{% for y in rows %}{% for z in x.cells %}{% endfor %}{% endfor %}"
         "{% endfor %}",
         {R"("x.cells" is found in element 2 of "rows")" + hint + " @19"}},
        {"an enclosing loop",
         "{% for x in rows %}{% for y in words %}{{ y.title }}{% endfor %}{% endfor %}",
         {R"("y.title" is found in element 1 of "rows", an outer loop @0)"}},
        {"a loop that encloses the include",
         R"({% for x in rows %}{% include "words" %}{% endfor %})",
         {R"("y.title" is found in element 1 of "rows", an outer loop @0)"}},
        {"a name found in several loops",
         "{% for x in tags %}{% for x in words %}{{ x.value }}{% endfor %}{% endfor %}",
         {}},
        {"a loop over a list of the outer element",
         "{% for x in rows %}{% for y in x.cells %}{{ y.value }}{{ x.title }}{% endfor %}"
         "{% endfor %}",
         {}},
        {"an element without the key",
         "{% for x in tags %}{% for y in rows %}{{ x.value }}{% endfor %}{% endfor %}",
         {}},
        {"a name without a prefix",
         "{% for x in tags %}{% for y in words %}{{ value }}{% endfor %}{% endfor %}",
         {}},
        {"a name outside loops", "{% for x in tags %}{{ x.shop }}{% endfor %}", {}},
    };
    const Value row{{"title", "1"}, {"cells", Value::list({"a", "b"})}};
    const Context context(Value{{"tags", Value::list({"new", "cheap"})},
                                {"words", Value::list({"a"})},
                                {"rows", Value::list({row, row})},
                                {"shop", "S"}},
                          {.positions = true});
    const std::map<std::string, std::string> texts = {
        {"words", "{% for y in words %}{{ y.title }}{% endfor %}"}};
    MemoryReader reader(texts);
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        TemplateFiles files(reader);
        std::vector<std::string> found;
        for (const Finding& finding : findContextFaults(files, files.add({"page", text, text}),
                                                        context, ContextWalk::Extent::Whole)) {
            found.push_back(finding.message);
            for (const Note& note : finding.notes) {
                found.back() += " @" + std::to_string(note.place.range.begin);
            }
        }
        EXPECT_EQ(found, expected);
    }
}

} // namespace
} // namespace kel::Stencilor::Analysis
