#include "../support/Test.h"
#include "../support/oracles/RandomTemplate.h"
#include "MemoryReader.h"

#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/template/TagRepair.h>

namespace kel::Stencilor::Analysis {
namespace {

struct HabitCase {
    std::string text;
    std::string notes;     ///< the beginnings of the notes, one per line
    std::string message{}; ///< of the first finding, unless it begins with `expected`
};

const std::string filter = "there are no filters";
const std::string call = "templates cannot call functions";
const std::string compare = "there are no comparisons";
const std::string both = "there is no \"and\" or \"or\"";
const std::string condition = "a condition is one name";
const std::string one = "a substitution is one name";
const std::string elif = "there is no elif";
const std::string trim = "tags do not trim whitespace";
const std::string value = "templates cannot set values";
const std::string macro = "there are no macros";
const std::string inherit = "there is no inheritance";
const std::string comment = "there are no comments";
const std::string letters = "keywords are in lower case";
const std::string translation = "there is no translation";
const std::string choice = "write {% if x %}...{% else %}";
const std::string loop = "there is no loop object";
const std::string literal = "a tag contains the name of a value";
const std::string operators = "there are no operators";
const std::string wholeList = "a loop visits the whole list";
const std::string space = "this character looks like a space";
const std::string section = "write {% for x in list %}...{% endfor %} for a list, ";
const std::string path = "a path consists of letters, digits";
const std::string text = "to output these two characters";
const std::string block = "close each block with its own tag";

/// Tags as written by users of other engines. None causes further findings.
const std::vector<HabitCase> cases = {
    {"{{ name | upper }}", filter},
    {R"({{ title|default("none")|e }})", filter},
    {R"({{ "literal" }})", literal},
    {R"({{ user.name if user else "anonymous" }})", choice},
    {R"({{ x ? "a" : "b" }})", choice},
    {R"({{ x ?? "a" }})", choice},
    {"{{ items[0].name }}", "there is no indexing"},
    {"{{ config['key'] }}", "there is no indexing"},
    {"{{ url_for('index') }}", call},
    {"{{ super() }}", inherit},
    {"{{ caller() }}", macro},
    {R"({{ f({"a": 1}) }})", call},
    {"{{ a + b }}", operators},
    {R"({{ a ~ "-" ~ b }})", operators},
    {"{{ '%d' % n }}", operators},
    {"{{ n-1 }}", "a name consists of letters", "'-' is not allowed in a name"},
    {"{{ a or b }}", choice},
    {"{{ '{{' }}", text},
    {"{{ '}}' }}", literal},
    {"{{ 'is it? | no' }}", literal},
    {R"({{ f("if this (or that) is <b>") }})", call},
    {"{{ f(\n  a='{{ b }}') }}", call},
    {"{{ _('Hello') }}", translation},
    {"{% trans %}Hello{% endtrans %}", translation},
    {"{% trans count=n %}line{% pluralize %}lines{% endtrans %}", translation + "\n" + translation},
    {R"({% blocktrans %}Hello{% endblocktrans %})", translation},
    {"{{\u00A0name }}", space},
    {"{{ name\u00A0}}", space},
    {"{% if\u00A0x %}y{% endif %}", space},
    {"{% include \u201Cx\u201D %}", "write straight quotation marks"},
    {"{{ 42 }}", one},
    {"{{ $x }}", one},
    {"{{ x, y }}", one},
    {R"({{t "key"}})", one},
    {"{{ a-b }}", "a name consists of letters", "'-' is not allowed in a name"},
    {"{{ x -}}", trim},
    {"{{- x }}", trim},
    {"{{~x~}}", trim},
    {"{{- x | y }}", trim + "\n" + filter},
    {"{{- '' -}}", trim + "\n" + literal},
    {"{% if x -%}y{% endif %}", trim},
    {"{%- if x == 1 -%}y{% endif %}", trim + "\n" + compare},
    {"{% for x in xs -%}y{%- endfor %}", trim + "\n" + trim},
    {"{%- for k, v in d.items() %}y{% endfor %}", trim + "\n" + "a loop has one variable"},
    {"{% for x in xs %}y{%- else %}n{% endfor %}", trim + "\n" + "a loop has no else"},
    {"{%- set x = 1 %}", trim + "\n" + value},
    {"{%+ if x %}y{% endif %}", trim},
    {"{%- if a -%}x{%- endif -%}", trim + "\n" + trim},
    {"{{ name\n}}", "a tag cannot span lines"},
    {"text {{ name } text", ""},
    {"Now 50{% off!", text},
    {"{{ is how a tag begins", text},
    {"{% if user %}a{% elif admin %}b{% else %}c{% endif %}", elif},
    {"{% if user %}a{% elseif admin %}b{% endif %}", elif},
    {"{% if user %}a{% else if admin %}b{% endif %}", elif},
    {"{% if not user %}x{% endif %}", "there is no \"not\""},
    {"{% if !a %}x{% endif %}", "there is no \"not\""},
    {"{% if a == b %}x{% endif %}", compare},
    {R"({% if a != "x" %}x{% endif %})", compare},
    {"{% if a > 3 %}x{% endif %}", compare},
    {"{% if a and b %}x{% endif %}", both},
    {"{% if a || b %}x{% endif %}", both},
    {"{% if user is defined %}x{% endif %}", "there are no tests"},
    {R"({% if "a" in list %}x{% endif %})", compare},
    {"{% if a not in list %}x{% endif %}", compare},
    {"{% for x in xs %}{% if not loop.last %}, {% endif %}{% endfor %}",
     "there is no \"not\"\n" + loop},
    {"{% for x in xs %}{{ f(loop.index) }}{% endfor %}", call + "\n" + loop},
    {"{% for x in xs %}{% if forloop.counter > 1 %}, {% endif %}{% endfor %}",
     compare + "\n" + loop},
    {"{% if (a) %}x{% endif %}", condition},
    {"{% ifequal a b %}x{% endifequal %}", condition},
    {"{% if items|length %}x{% endif %}", filter},
    {"{% if user.is_admin() %}x{% endif %}", call},
    {"{% for k, v in d.items() %}{{ k }}{% endfor %}", "a loop has one variable"},
    {"{% for x in range(3) %}x{% endfor %}", "a loop needs a list"},
    {"{% for x in items|sort %}{{ x.n }}{% endfor %}", filter},
    {"{% for x in items if x.ok %}{{ x.n }}{% endfor %}", wholeList},
    {"{% for x in 1..5 %}x{% endfor %}", "a loop has one variable and the name"},
    {"{% for x of items %}x{% endfor %}", "a loop has one variable and the name"},
    {"{% for x in items %}{{ x.n }}{% else %}none{% endfor %}", "a loop has no else"},
    {"{% set x = 1 %}{{ x }}", value},
    {"{% set x %}text{% endset %}", value},
    {R"({% assign x = "y" %})", value},
    {"{% with x = 1 %}a{% endwith %}", value},
    {R"({% macro f(name) %}{{ name }}{% endmacro %}{{ f("a") }})", macro + "\n" + call},
    {R"({% import "forms.html" as forms %})", macro},
    {"{% call f() %}x{% endcall %}", macro},
    {"{% block title %}x{% endblock title %}", inherit},
    {R"({% extends "base.html" %})", inherit},
    {"{% raw %}{{ x | y }}{% for %}{% endraw %}after{{ z }}", "there are no raw blocks"},
    {"{% verbatim %}{{ x | y }}{% endverbatim %}", "there are no raw blocks"},
    {"{% comment %}old {{ x|y }}{% endcomment %}", comment},
    {"{%# comment %}", comment},
    {"{% autoescape true %}{{ x }}{% endautoescape %}", "a block cannot change its text"},
    {"{% unless x %}a{% else %}b{% endunless %}", "there is no unless"},
    {"{% foreach xs as x %}a{% endforeach %}", "the only loop is"},
    {"{% break %}", wholeList},
    {"{% load static %}", "there is no \"load\" tag"},
    {"{% url 'index' %}", "there is no \"url\" tag, and none can be added"},
    {"{% do xs.append(x) %}", value},
    {"{% for x in xs %}y{% empty %}n{% endfor %}", "a loop has no else"},
    {"\\newcommand*{%\n", "a tag cannot span lines; to output"},
    {"{{\n  name\n", "a tag cannot span lines; to output"},
    {"{% if x %}a{% end %}", block},
    {"{% for x in xs %}a{% end %}", block},
    {"{% IF x %}a{% ENDIF %}", letters + "\n" + letters},
    {"{% if x %}a{% endfi %}", "did you mean \"endif\"?"},
    {"{% fro x in xs %}a{% endfor %}", "did you mean \"for\"?"},
    {"{% ifs a b %}x{% endif %}", condition},
    {"{% forx %}x{% endfor %}", "this is read as \"for\" and \"x\""},
    {"{% include 'x.html' %}", "write the path in double quotes"},
    {"{% include 'a/' ~ b ~ '.html' %}", "a path cannot be computed"},
    {"{% include 'C++.html' %}", "write the path in double quotes"},
    {R"({% include "x-y.html" %})", path, "'-' is not allowed in a path"},
    {R"({% include "my file.html" %})", path, "a path cannot contain spaces or tabs"},
    {R"({% include "./x.html" %})", "write the path from the folder",
     "a path cannot begin with '.'"},
    {R"({% include "/x.html" %})", "a path is relative", "a path cannot begin with '/'"},
    {R"({% include "2026.txt" %})", path, "a path cannot begin with '2'"},
    {R"({% include "x.html" with context %})", "an include takes only a path"},
    {"{% include x %}", "write the path itself, in double quotes"},
    {"{{{ raw }}}", "write {{ x }}"},
    {"{{&raw}}", "write {{ x }}"},
    {"{{> header}}", "write {% include \"x\" %}"},
    {"{{#items}}{{name}}{{/items}}", section},
    {"{{^items}}none{{/items}}", "write {% if x %}{% else %}"},
    {"{{#if a}}x{{else}}y{{/if}}", "write {% if x %}...{% endif %}"},
    {"{{#each items}}{{@index}}{{/each}}", "write {% for x in list %}...{% endfor %} for a "
                                           "list\nwith --positions, list elements have an index"},
    {"{{! comment }}", comment},
    {"{{.}}", "write {{ name }} without a dot"},
    {"{{../name}}", "names of outer blocks"},
    {"{{=<% %>=}}", "the delimiters of tags cannot be changed"},
    {"{% for x in xs %}{% if a %}b{% endfor %}", ""},
    {"{% if a %}{% for x in xs %}b{% endif %}{% endfor %}", ""},
    {"{% if x %}a{% else %}b{% else %}c{% endif %}", ""},
    {"{% endif %}", ""},
};

std::vector<Finding> check(const std::string& page, TemplateFiles& files) {
    CheckReport report;
    checkSyntax(files, files.add({"page", page, page}), report);
    return sortFindings(std::move(report));
}

// Also checks that there are no consequential findings: there is one finding per note.
TEST(Habits, OfOtherEnginesAreExplained) {
    MemoryReader reader({});
    TemplateFiles files(reader);
    for (const HabitCase& each : cases) {
        SCOPED_TRACE(each.text);
        std::vector<std::string> notes;
        const std::vector<Finding> findings = check(each.text, files);
        ASSERT_FALSE(findings.empty());
        EXPECT_EQ(findings.front().message.starts_with("expected "), each.message.empty());
        EXPECT_TRUE(each.message.empty() || findings.front().message == each.message);
        for (const Finding& finding : findings) {
            EXPECT_EQ(finding.rule, Rule::Syntax);
            for (const Note& note : finding.notes) {
                if (note.message != "opened here") {
                    notes.push_back(note.message);
                }
            }
        }
        const auto expected = static_cast<std::size_t>(
            std::count(each.notes.begin(), each.notes.end(), '\n') + (each.notes.empty() ? 0 : 1));
        ASSERT_EQ(notes.size(), expected) << formatText(findings);
        std::size_t begin = 0;
        for (const std::string& note : notes) {
            const std::string start =
                each.notes.substr(begin, each.notes.find('\n', begin) - begin);
            EXPECT_TRUE(note.starts_with(start)) << note;
            begin += start.size() + 1;
        }
        EXPECT_LE(findings.size(), std::max<std::size_t>(expected, 1)) << formatText(findings);
    }
}

TEST(Habits, OfOtherEnginesAreNotedIfWellFormed) {
    MemoryReader reader({});
    TemplateFiles files(reader);
    const std::pair<std::string, std::string> wellFormed[] = {
        {"a {# comment #} b", "page:1:3: note: there are no comments: this is text"},
        {"a {#if}", ""},
        {"{% iffy %}{% endif %}", "page:1:1: note: this is read as \"if\" and \"fy\""},
        {"{%format in xs%}{%endfor%}", "page:1:1: note: this is read as \"for\" and \"mat\""},
        {"{% for x inys %}{% endfor %}", "page:1:1: note: this is read as \"in\" and \"ys\""},
        {R"({%include"x"%})", ""},
        {"{% for x in xs %}{{ loop.index }}{% endfor %}",
         "page:1:21: note: there is no loop object: with --positions, elements have index (from "
         "1), first and last, as in \"x.index\""},
        {"{% for x in xs %}{% if forloop.last %}{% endif %}{% endfor %}",
         "page:1:24: note: there is no loop object"},
        {"a {# {{ x }} #} b", "page:1:3: note: there are no comments"},
        {"${#array[@]} and #}", ""},
        {"{% for loop in xs %}{{ loop.index }}{% endfor %}{{ loop.index }}", ""},
    };
    for (const auto& [page, line] : wellFormed) {
        const std::vector<Finding> findings = check(page, files);
        EXPECT_TRUE(formatText(findings).starts_with(line)) << page << formatText(findings);
        EXPECT_FALSE(needAttention(findings) && page.find("include") == page.npos) << page;
        EXPECT_TRUE(!line.empty() || findings.empty() || needAttention(findings)) << page;
    }
}

/// The tags at fault, with what was expected.
std::vector<std::string> listFaults(const std::string& page) {
    std::vector<SyntaxElement> parts;
    std::vector<std::string> list;
    for (const auto& [fault, tag] : readTemplate(page, parts).faults) {
        list.push_back(page.substr(tag.begin, tag.end - tag.begin) + " " +
                       std::to_string(fault.offset - fault.tag) + " " + describe(fault.expected));
    }
    return list;
}

/// Replaces a fault by the tags that the analysis uses in its place.
std::string repair(std::string page, std::size_t fault) {
    std::vector<SyntaxElement> parts;
    const std::vector<TagRepair> repairs = readTemplate(page, parts).repairs;
    for (auto each = repairs.rbegin(); each != repairs.rend(); ++each) {
        if (each->fault == fault) {
            page.replace(each->tag.begin, each->tag.end - each->tag.begin, each->text);
        }
    }
    return page;
}

TEST(Faults, StayWhenAnotherOneIsRepaired) {
    for (std::size_t first = 0; first < cases.size(); ++first) {
        std::string page;
        for (std::size_t i = 0; i < 5; ++i) {
            page += "{% if a %}" + cases[(first + i * 7) % cases.size()].text + "{% endif %}\n";
        }
        page += first % 2 == 0 ? "" : "{% if a %}{% for b in c %}";
        const std::vector<std::string> faults = listFaults(page);
        ASSERT_GE(faults.size(), 5u) << page;
        for (std::size_t i = 0; i < faults.size(); ++i) {
            std::vector<std::string> others = faults;
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
            EXPECT_EQ(listFaults(repair(page, i)), others) << page << repair(page, i);
        }
    }
}

TEST(Faults, AndPartsFollowEachOther) {
    for (std::uint64_t seed = 0; seed < 5000 && !HasFailure(); ++seed) {
        support::Random random(seed);
        const std::string page = support::randomTemplate(random, 40, {});
        SCOPED_TRACE(page);
        std::vector<SyntaxElement> parts;
        unsigned int end = 0;
        for (const auto& [fault, tag] : readTemplate(page, parts).faults) {
            EXPECT_TRUE(end <= tag.begin && tag.begin <= fault.offset && fault.offset <= tag.end &&
                        tag.end <= page.size());
            end = tag.end;
        }
        end = 0;
        for (const SyntaxElement& part : parts) {
            EXPECT_TRUE(end <= part.whole.begin && part.whole.end <= page.size());
            end = part.whole.begin;
        }
    }
}

TEST(Faults, AreAtMostTwenty) {
    std::string page;
    for (int i = 0; i < 20; ++i) {
        page += "{{ a b }}\n";
    }
    MemoryReader reader({});
    TemplateFiles files(reader);
    EXPECT_EQ(check(page, files).size(), 20u);
    EXPECT_EQ(formatText(check(page, files)).find("is not checked"), std::string::npos);
    const std::vector<Finding> findings = check(page + "{{ a b }}", files);
    EXPECT_EQ(findings.size(), 20u);
    EXPECT_EQ(findings.back().notes.back().message, "the rest of the file is not checked");
}

TEST(Faults, OfABlockThatIsNotClosedComeLast) {
    const std::vector<std::string> expected = {"{{ b c }} 5 \"}}\" after the name",
                                               " 0 \"{% endfor %}\" before the end"};
    EXPECT_EQ(listFaults("{% if a %}{% for x in y %}{{ b c }}"), expected);
}

TEST(Faults, LeaveTheOtherTagsToBeAnalysed) {
    MemoryReader reader({});
    TemplateFiles files(reader);
    const std::vector<Finding> findings =
        check(R"({{ a b }}{% include "none" %}{% if x y %}{% include "none" %}{% endif %})", files);
    std::vector<Rule> rules;
    for (const Finding& finding : findings) {
        rules.push_back(finding.rule);
    }
    EXPECT_EQ(rules, (std::vector{Rule::Syntax, Rule::MissingInclude, Rule::Syntax,
                                  Rule::MissingInclude}));
}

} // namespace
} // namespace kel::Stencilor::Analysis
