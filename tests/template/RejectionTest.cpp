#include "../support/Test.h"
#include "../support/oracles/SyntaxTree.h"

#include <libStencilor/template/parse_template.h>

namespace kel::Stencilor::internal {
namespace {

struct RejectionCase {
    const char* name;
    String input;
};

template <std::size_t count>
void expectRejected(const RejectionCase (&cases)[count]) {
    for (const auto& [name, input] : cases) {
        SCOPED_TRACE(name);
        syntax_tree tree;
        EXPECT_FALSE(parseTemplate(input, tree.nodes)) << input;
    }
}

TEST(Rejection, OfDelimitersThatOpenNoTag) {
    expectRejected({
        {"an opener of a statement in text", "50{% off"},
        {"an opener of a substitution in text", "a {{ b"},
        {"an opener of a statement at the end", "a{%"},
        {"an opener of a substitution at the end", "a{{"},
        {"an empty statement", "{%%}"},
        {"an empty substitution", "{{}}"},
        {"a substitution of spaces", "{{ \t }}"},
        {"an unknown keyword", "{% unless x %}"},
        {"a truncated keyword", "{% i x %}{% endif %}"},
        {"a comment", "{# x #}{%# x %}"},
        {"an assignment", "{% set x = y %}"},
        {"three braces", "{{{x}}}"},
        {"three braces before a statement", "{{{% if x %}{% endif %}"},
        {"a zero byte inside a tag", String("{{ x\0 }}", 8)},
    });
}

TEST(Rejection, OfInvalidNames) {
    expectRejected({
        {"a hyphen", "{{ a-b }}"},
        {"a leading digit", "{{ 1x }}"},
        {"a leading dot", "{{ .x }}"},
        {"a leading slash", "{{ /x }}"},
        {"two names", "{{ a b }}"},
        {"a letter over 127", "{{ \xC3\xA9 }}"},
        {"a byte over 127 inside", "{{ a\xFF }}"},
        {"a colon", "{{ a:b }}"},
        {"a filter", "{{ a|b }}"},
        {"a lone closing brace", "{{ x }"},
        {"a closing brace and a space", "{{ x } }"},
        {"the closer of a statement", "{{ x %}"},
        {"a condition that is a number", "{% if 1 %}{% endif %}"},
        {"a negated condition", "{% if !x %}{% endif %}"},
        {"a negated condition with \"not\"", "{% if not x %}{% endif %}"},
        {"no condition", "{% if %}{% endif %}"},
        {"no list", "{% for x in %}{% endfor %}"},
        {"no variable", "{% for in xs %}{% endfor %}"},
        {"two variables", "{% for x, y in xs %}{% endfor %}"},
    });
}

TEST(Rejection, OfInvalidKeywords) {
    expectRejected({
        {"a variable that absorbs the keyword in", "{% for xin ys %}{% endfor %}"},
        {"a missing keyword in", "{% for x of ys %}{% endfor %}"},
        {"capital keywords", "{% IF x %}{% ENDIF %}"},
        {"a capital closer", "{% if x %}{% EndIf %}"},
        {"a capital else", "{% if x %}{% Else %}{% endif %}"},
        {"a keyword with a space inside", "{% if x %}{% end if %}"},
        {"an opening delimiter with a space inside", "{% if x % }{% endif %}"},
        {"letters after else", "{% if x %}{% elsewhere %}{% endif %}"},
        {"letters after endif", "{% if x %}{% endiff %}"},
        {"a name after endfor", "{% for x in xs %}{% endfor x %}"},
        {"a condition after else", "{% if x %}{% else if y %}{% endif %}"},
        {"another spelling of else", "{% if x %}{% elif y %}{% endif %}"},
    });
}

TEST(Rejection, OfLineBreaksInsideTags) {
    for (const char* const lineBreak : {"\n", "\r", "\r\n", "\v", "\f"}) {
        const std::string break_ = lineBreak;
        const RejectionCase cases[] = {
            {"before a condition", "{% if" + break_ + "x %}{% endif %}"},
            {"before a keyword", "{%" + break_ + "if x %}{% endif %}"},
            {"before a closing delimiter", "{% if x" + break_ + "%}{% endif %}"},
            {"in a substitution", "{{ name" + break_ + "}}"},
            {"before a name", "{{" + break_ + "name }}"},
            {"in an else tag", "{% if x %}{% else" + break_ + "%}{% endif %}"},
            {"in a closing tag", "{% if x %}{% endif" + break_ + "%}"},
            {"in a loop", "{% for x in" + break_ + "xs %}{% endfor %}"},
            {"in a path", "{% include \"x" + break_ + "\" %}"},
        };
        expectRejected(cases);
    }
}

TEST(Rejection, OfInvalidPaths) {
    expectRejected({
        {"a path that begins with ..", "{% include \"../x.txt\" %}"},
        {"a path that begins with .", "{% include \"./x.txt\" %}"},
        {"an absolute path", "{% include \"/abs/x\" %}"},
        {"a hyphen", "{% include \"my-file.txt\" %}"},
        {"a drive", "{% include \"x:/y\" %}"},
        {"a backslash", "{% include \"x\\y\" %}"},
        {"a space inside", "{% include \"a b.txt\" %}"},
        {"an empty path", "{% include \"\" %}"},
        {"a path of spaces", "{% include \"  \" %}"},
        {"a path in single quotes", "{% include 'x.txt' %}"},
        {"a path without quotes", "{% include x.txt %}"},
        {"a path without its closing quote", "{% include \"x.txt %}"},
        {"a path without its opening quote", "{% include x.txt\" %}"},
        {"two paths", "{% include \"a\" \"b\" %}"},
        {"a letter over 127", "{% include \"\xC3\xA9.txt\" %}"},
    });
}

TEST(Rejection, OfBlocksThatDoNotMatch) {
    expectRejected({
        {"an unclosed conditional", "{% if a %}x"},
        {"an unclosed loop", "{% for a in b %}x"},
        {"an unclosed else part", "{% if a %}x{% else %}y"},
        {"a conditional closed as a loop", "{% if a %}x{% endfor %}"},
        {"a loop closed as a conditional", "{% for a in b %}x{% endif %}"},
        {"crossed blocks", "{% if a %}{% for x in y %}{% endif %}{% endfor %}"},
        {"blocks crossed the other way", "{% for x in y %}{% if a %}{% endfor %}{% endif %}"},
        {"endif at top level", "{% endif %}"},
        {"endfor at top level", "x{% endfor %}"},
        {"else at top level", "{% else %}"},
        {"else in a loop", "{% for a in b %}{% else %}{% endfor %}"},
        {"else in a loop in a conditional",
         "{% if x %}{% for a in b %}{% else %}{% endfor %}{% endif %}"},
        {"two else parts", "{% if a %}x{% else %}y{% else %}z{% endif %}"},
        {"an extra closing tag", "{% if a %}x{% endif %}{% endif %}"},
        {"an inner block that takes the only closer", "{% if a %}{% if b %}x{% endif %}"},
        {"an inner block unclosed in an else part", "{% if a %}{% else %}{% if b %}{% endif %}"},
        {"an inner fault", "{% if a %}{{ }}{% endif %}"},
    });
}

// The list then contains the complete nodes before the fault, which are not used.
TEST(Rejection, LeavesTheCompleteNodesBeforeTheFault) {
    const struct {
        const char* name;
        String input;
        std::string expected;
    } cases[] = {
        {"a substitution without closing braces", "Hello {{ x", "'Hello '"},
        {"nodes and a fault", "a{{ b }}c{% d", "'a' {b} 'c'"},
        {"a block and a fault", "{% if a %}b{% endif %}{{", "if(a ? 'b')"},
        {"an unclosed block", "a{% if b %}c{{ d }}", "'a'"},
        {"an extra closing tag", "a{% endif %}b", "'a'"},
    };
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        syntax_tree tree;
        EXPECT_FALSE(parseTemplate(input, tree.nodes));
        EXPECT_EQ(support::describe(tree.nodes), expected);
    }
}

} // namespace
} // namespace kel::Stencilor::internal
