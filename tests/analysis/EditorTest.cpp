#include "../support/Test.h"

#include <libStencilor/Stencilor.h>
#include <libStencilor/Value.h>
#include <libStencilor/context/context_access.h>
#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/editor/PlaceNames.h>
#include <libStencilorAnalysis/editor/TagFix.h>
#include <libStencilorAnalysis/editor/TypedPart.h>

// What editors show for a position, which is marked by a bar in the template.

namespace kel::Stencilor::Analysis {
namespace {

/// A text with a place, parsed without the bar.
struct Marked {
    explicit Marked(const std::string& marked)
        : offset(marked.find('|')),
          file("page", marked.substr(0, offset) + marked.substr(offset + 1)) {}

    std::size_t offset;
    TemplateFile file;
};

std::string show(const TemplateFile& file, SyntaxRange range) {
    return std::to_string(range.begin) + ":" + std::string(file.slice(range));
}

std::string show(const TemplateFile& file, const std::vector<SyntaxRange>& ranges) {
    std::string text;
    for (const SyntaxRange range : ranges) {
        text += (text.empty() ? "" : " ") + show(file, range);
    }
    return text;
}

/// The tag at an index.
std::string showPart(const TemplateFile& file, std::size_t part) {
    return part == TemplateFile::none ? "none" : std::string(file.slice(file.parts()[part].whole));
}

struct Case {
    std::string name;
    std::string text;
    std::string expected;
};

using Answer = std::string (*)(const TemplateFile& file, std::size_t offset);

void expectAnswers(Answer answer, const std::vector<Case>& cases) {
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Marked place(each.text);
        EXPECT_EQ(answer(place.file, place.offset), each.expected) << each.text;
    }
}

std::string typedPart(const TemplateFile& file, std::size_t offset) {
    constexpr const char* kinds[] = {"none",     "keyword", "string", "condition",
                                     "variable", "in",      "list",   "path"};
    const TypedPart part = findTypedPart(file.text(), offset);
    return std::string(kinds[static_cast<std::size_t>(part.kind)]) +
           (part.kind == TypedPart::Kind::None ? "" : " " + show(file, part.word)) +
           (part.isQuoted ? " quoted" : "") + (part.isClosed ? " closed" : "");
}

TEST(TypedPart, IsWhatBeginsBeforeThePlaceAndMayContinueAfterIt) {
    expectAnswers(
        typedPart,
        {
            {"text", "te|xt", "none"},
            {"before a tag", "|{{ a }}", "none"},
            {"after a tag", "{{ a }}|", "none"},
            {"inside of the braces", "{|{", "none"},
            {"an empty substitution", "{{|", "string 2:"},
            {"after spaces", "{{  |  }}", "string 4: closed"},
            {"within a name", "{{ na|me }}", "string 3:name closed"},
            {"at the end of one", "{{ name|", "string 3:name"},
            {"after one", "{{ name |}}", "none"},
            {"the second tag of a line", "{{ a }}{{ b|", "string 10:b"},
            {"on the line after", "{{ a\n|", "none"},
            {"three braces", "{{{ a|", "string 4:a"},
            {"a keyword", "{% fo|r", "keyword 3:for"},
            {"no keyword yet", "{% |%}", "keyword 3: closed"},
            {"a condition", "{% if |", "condition 6:"},
            {"a variable", "{% for it|", "variable 7:it"},
            {"in", "{% for it |", "in 10:"},
            {"the beginning of in", "{% for it i|", "in 10:i"},
            {"a list", "{% for it in li| %}", "list 13:li closed"},
            {"after the list", "{% for it in list |", "none"},
            {"no quotation mark", "{% include |", "none"},
            {"a path", "{% include \"a/|", "path 12:a/"},
            {"a path in quotation marks", "{% include \"a|\" %}", "path 12:a quoted closed"},
            {"a path without the end of its tag", "{% include \"a|\"", "path 12:a quoted"},
            {"an unknown tag", "{% set a|", "none"},
        });
}

std::string nameAt(const TemplateFile& file, std::size_t offset) {
    constexpr const char* roles[] = {"value ", "variable ", "path "};
    const auto name = findNameAt(file, offset);
    return name ? roles[static_cast<std::size_t>(name->role)] + show(file, name->range) : "none";
}

TEST(Names, AreFoundFromTheirBeginningToTheirEnd) {
    expectAnswers(nameAt, {
                              {"at the beginning", "{{ |name }}", "value 3:name"},
                              {"at the end", "{{ name| }}", "value 3:name"},
                              {"beside it", "{{| name }}", "none"},
                              {"a condition", "{% if na|me %}{% endif %}", "value 6:name"},
                              {"a variable", "{% for |i in list %}{% endfor %}", "variable 7:i"},
                              {"a list", "{% for i in li|st %}{% endfor %}", "value 12:list"},
                              {"a keyword", "{% f|or i in list %}{% endfor %}", "none"},
                              {"a path", "{% include \"pa|th\" %}", "path 12:path"},
                              {"text", "te|xt", "none"},
                              {"a malformed tag", "{{ na|me | upper }}", "none"},
                              {"the text of nothing", "|", "none"},
                          });
}

constexpr const char* nested =
    "{% for i in l %}{{ i.a }}{% for j in i.b %}{{ i.c }}{{ j.d }}{% endfor %}"
    "{% for i in m %}{{ i.e }}{% endfor %}{% endfor %}{{ i.f }}";

/// The text of `nested`, with a bar before the last part of a name.
std::string nestedAt(const std::string& name) {
    std::string text = nested;
    return text.insert(text.find(name), "|");
}

std::string variableAt(const TemplateFile& file, std::size_t offset) {
    const std::size_t loop = findLoopAt(file, offset);
    return loop == TemplateFile::none ? "none" : show(file, findVariable(file, loop));
}

TEST(Variables, AreThoseOfTheInnermostLoopThatHasTheirName) {
    const std::string outer = "7:i 19:i 37:i 46:i";
    expectAnswers(variableAt,
                  {
                      {"in its tag", nestedAt("i in l"), outer},
                      {"as a prefix", nestedAt("i.a"), outer},
                      {"in the list of a loop", nestedAt("i.b"), outer},
                      {"inside another loop", nestedAt("i.c"), outer},
                      {"that of another loop", nestedAt("j.d"), "32:j 55:j"},
                      {"a later loop of the same name", nestedAt("i.e"), "80:i 92:i"},
                      {"after the loop", nestedAt("i.f"), "none"},
                      {"the member", "{% for i in l %}{{ i.|a }}{% endfor %}", "none"},
                      {"a longer name", "{% for i in l %}{{ i|x.a }}{% endfor %}", "none"},
                      {"the name alone", "{% for i in l %}{{ |i }}{% endfor %}", "none"},
                      {"a loop that is not closed", "{% for |i in l %}{{ i.a }}", "7:i 19:i"},
                  });
}

struct Renaming {
    std::string name;
    std::string text; ///< with a bar at the variable
    std::string to;
    std::string reason; ///< a part of it; empty if there is none
};

TEST(Variables, AreRenamedUnlessNamesWouldMeanSomethingElse) {
    for (const Renaming& each : std::vector<Renaming>{
             {"a new name", nestedAt("i in l"), "row", ""},
             {"the same name", nestedAt("i in l"), "i", ""},
             {"a name with a dot", nestedAt("i in l"), "my.row", ""},
             {"no name", nestedAt("i in l"), "1st", "is not a name"},
             {"an empty name", nestedAt("i in l"), "", "is not a name"},
             {"the variable of a loop inside", nestedAt("i in l"), "j", "an inner loop"},
             {"the variable of a loop inside that uses none of it",
              "{% for |i in l %}{% for j in m %}{{ j.a }}{% endfor %}{% endfor %}", "j", ""},
             {"a prefix that is used inside", "{% for |i in l %}{{ x.a }}{% endfor %}", "x",
              "is already used inside the loop"},
             {"a prefix that is used outside", "{{ x.a }}{% for |i in l %}{{ i.a }}{% endfor %}",
              "x", ""},
             {"the variable of the loop around, used inside",
              "{% for j in m %}{% for |i in l %}{{ j.a }}{% endfor %}{% endfor %}", "j",
              "is already used inside the loop"},
         }) {
        SCOPED_TRACE(each.name);
        const Marked place(each.text);
        const std::string reason =
            whyNotRename(place.file, findLoopAt(place.file, place.offset), each.to);
        EXPECT_EQ(reason.empty(), each.reason.empty()) << reason;
        EXPECT_NE(reason.find(each.reason), std::string::npos) << reason;
    }
}

TEST(Variables, AreNotRenamedIfErrorsHideSomeOfTheirUses) {
    std::string text = "{% for |i in l %}{{ i.a }}";
    for (std::size_t i = 0; i < mostFaults; ++i) {
        text += "{{ a-b }}";
    }
    const Marked enough(text + "{{ i.b }}{% endfor %}");
    EXPECT_EQ(whyNotRename(enough.file, findLoopAt(enough.file, enough.offset), "x"), "");
    const Marked place(text + "{{ a-b }}{{ i.b }}{% endfor %}");
    EXPECT_EQ(whyNotRename(place.file, findLoopAt(place.file, place.offset), "x"),
              "the template has too many errors to find every use of the variable");
}

std::string sameNames(const TemplateFile& file, std::size_t offset) {
    const auto name = findNameAt(file, offset);
    return name ? show(file, findSameNames(file, *name)) : "none";
}

TEST(Names, AreTheSameIfTheirTextAndRoleAre) {
    expectAnswers(
        sameNames,
        {
            {"values of every kind", "{{ |a }}{% if a %}{% endif %}{% for a in a %}{% endfor %}",
             "3:a 13:a 40:a"},
            {"paths", "{% include \"|a\" %}{{ a }}{% include \"a\" %}", "12:a 36:a"},
            {"longer names", "{{ |a }}{{ a.a }}{{ aa }}", "3:a"},
        });
}

std::string blocksAt(const TemplateFile& file, std::size_t offset) {
    std::string text = showPart(file, partAt(file, offset));
    for (const std::size_t tag : blocksAround(file, offset)) {
        text += " in " + showPart(file, tag) + (isAfterElse(file, tag, offset) ? " else" : "");
    }
    return text;
}

TEST(Blocks, AreAroundTheirContentButNotAroundTheirTags) {
    expectAnswers(
        blocksAt,
        {
            {"before all", "|a{% if b %}{% endif %}", "a"},
            {"in the opening tag", "{% i|f b %}{% endif %}", "{% if b %}"},
            {"after it", "{% if b %}|a{% endif %}", "a in {% if b %}"},
            {"before the closing tag", "{% if b %}a|{% endif %}", "{% endif %} in {% if b %}"},
            {"in the closing tag", "{% if b %}a{% en|dif %}", "{% endif %}"},
            {"after the closing tag", "{% if b %}a{% endif %}|", "{% endif %}"},
            {"before the else", "{% if b %}|a{% else %}c{% endif %}", "a in {% if b %}"},
            {"after the else", "{% if b %}a{% else %}|c{% endif %}", "c in {% if b %} else"},
            {"two blocks", "{% for a in b %}{% if c %}|d{% endif %}{% endfor %}",
             "d in {% for a in b %} in {% if c %}"},
            {"at the end of an unclosed block", "{% if b %}a|", " in {% if b %}"},
        });
}

TEST(Blocks, AreListedByTheirOpeningTags) {
    const TemplateFile file("page", "{% for a in b %}{% if c %}{% else %}{% endif %}{% endfor %}"
                                    "{%if d%}{%  endif %}");
    std::string text;
    for (const BlockTags& block : findBlocks(file)) {
        text += std::to_string(block.depth);
        for (const std::size_t tag : {block.open, block.otherwise, block.close}) {
            text += tag == TemplateFile::none
                        ? " -"
                        : " " + show(file, keywordRangeOf(file, file.parts()[tag]));
        }
        text += '\n';
    }
    EXPECT_EQ(text, "0 3:for - 50:endfor\n1 19:if 29:else 39:endif\n0 61:if - 71:endif\n");
    EXPECT_EQ(show(file, inOf(file, file.parts()[0])), "9:in");
}

TEST(TagFix, ReplacesTagsWithASingleMeaning) {
    for (const Case& each : std::vector<Case>{
             {"signs that trim", "{{- a -}}", "{{ a }}"},
             {"three braces", "{{{ a }}}", "{{ a }}"},
             {"an ampersand", "{{& a }}", "{{ a }}"},
             {"a leading dot", "{{ .a }}", "{{ a }}"},
             {"a path to a parent", "{{ ../a }}", "{{ a }}"},
             {"a partial", "{{> a }}", "{% include \"a\" %}"},
             {"single quotation marks", "{% include 'a' %}", "{% include \"a\" %}"},
             {"no quotation marks", "{% include a %}", "{% include \"a\" %}"},
             {"./ at the beginning of a path", "{% include \"./a\" %}", "{% include \"a\" %}"},
             {"a foreign word for include", "{% render 'a' %}", "{% include \"a\" %}"},
             {"capital letters", "{% IF a %}{% endif %}", "{% if a %}"},
             {"a misspelt keyword", "{% fro a in b %}{% endfor %}", "{% for a in b %}"},
             {"a foreign word for for", "{% foreach a in b %}{% endfor %}", "{% for a in b %}"},
             {"end in a condition", "{% if a %}{% end %}", "{% endif %}"},
             {"end in a loop", "{% for a in b %}{% end %}", "{% endfor %}"},
             {"a comparison", "{% if a == b %}{% endif %}", "none"},
             {"a filter", "{{ a | upper }}", "none"},
             {"no end of the tag", "{{ a", "none"},
             {"a tag of no meaning here", "{% cycle a, b %}", "none"},
         }) {
        SCOPED_TRACE(each.name);
        const TemplateFile file("page", each.text);
        ASSERT_FALSE(file.faults().faults.empty());
        EXPECT_EQ(fixTag(file, file.faults().faults.front()).value_or("none"), each.expected);
    }
}

const Value teas{
    {"title", "Teas"},
    {"open", true},
    {"items", Value::list({
                  Value{{"name", "Assam"}, {"tags", Value::list({Value{{"t", "black"}}})}},
                  Value{{"name", "Sencha"},
                        {"title", "Green"},
                        {"tags", Value::list({Value{{"t", "green"}}, Value{{"t", "new"}}})}},
              })},
};

/// The strings that a name has at the moments of a place.
std::string valuesAt(const Context& context, const Marked& place) {
    const auto name = findNameAt(place.file, place.offset);
    std::string text;
    for (const Moment& moment : findMoments(context, {{&place.file, place.offset}}, 10)) {
        const auto found = name ? moment.find(place.file.slice(name->range)) : std::nullopt;
        const auto* const string =
            found ? dynamic_cast<const ContextString*>(found->value) : nullptr;
        text += string == nullptr ? "" : internal::context_access::text(*string).str() + ";";
    }
    return text;
}

TEST(Moments, HaveTheValuesThatTheEngineWrites) {
    const Context context(teas);
    for (const std::string text : {
             "{{ |title }}",
             "{{ |missing }}",
             "{% if open %}{{ |title }}{% endif %}",
             "{% for i in items %}{{ |i.name }}{% endfor %}",
             "{% for i in items %}{{ |name }}{% endfor %}",
             "{% for i in items %}{{ |title }}{% endfor %}",
             "{% for i in items %}{{ |j.name }}{% endfor %}",
             "{% for i in items %}{% for t in i.tags %}{{ |t.t }}{% endfor %}{% endfor %}",
             "{% for i in items %}{% for t in i.tags %}{{ |i.name }}{% endfor %}{% endfor %}",
             "{% for i in items %}{% for i in tags %}{{ |i.t }}{% endfor %}{% endfor %}",
             "{% for i in items %}{% if open %}{{ |i.title }}{% endif %}{% endfor %}",
         }) {
        std::string marked = text;
        const std::size_t end = marked.find("}}") + 2;
        const Marked place(marked);
        // The engine writes the value with a semicolon.
        marked.insert(end, ";");
        marked.erase(marked.find('|'), 1);
        String errors;
        const std::string written =
            buildOutput(String(std::string_view(marked)), context, errors).str();
        std::string expected = written;
        if (errors.size() > 0) {
            expected.clear(); // semicolons without values
        }
        EXPECT_EQ(valuesAt(context, place), expected) << text;
    }
}

TEST(Moments, NameTheScopeAndThePathOfAValue) {
    const Context context(teas);
    const Marked place(
        "{% for i in items %}{% for t in i.tags %}{{ |t.t }}{% endfor %}{% endfor %}");
    const auto moments = findMoments(context, {{&place.file, place.offset}}, 2);
    ASSERT_EQ(moments.size(), 2u);
    const auto tag = moments[1].find("t.t");
    ASSERT_TRUE(tag.has_value());
    EXPECT_EQ(tag->path, "items.tags.t");
    EXPECT_EQ(tag->variable, "t");
    EXPECT_EQ(moments[1].scopes[tag->scope].element, 0u);
    EXPECT_EQ(moments[1].scopes[tag->scope].count, 2u);
    const auto title = moments[0].find("title");
    ASSERT_TRUE(title.has_value());
    EXPECT_EQ(title->scope, 0u);
    EXPECT_EQ(title->path, "title");
}

TEST(Moments, HaveNoVariablesOfTheFileThatIncludesThePlace) {
    const Context context(teas);
    const Marked around("{% for i in items %}|{% include \"row\" %}{% endfor %}");
    const Marked place("{{ |name }}");
    const auto moments =
        findMoments(context, {{&around.file, around.offset}, {&place.file, place.offset}}, 5);
    ASSERT_EQ(moments.size(), 2u);
    EXPECT_TRUE(moments[1].find("name").has_value());
    EXPECT_FALSE(moments[1].find("i.name").has_value());
}

} // namespace
} // namespace kel::Stencilor::Analysis
