#include "../support/Test.h"
#include "../support/oracles/SyntaxTree.h"

#include <libStencilor/template/parse_template.h>

namespace kel::Stencilor::internal {
namespace {

struct Case {
    const char* name;
    String input;
    std::string expected;
};

template <std::size_t count>
void expectParsed(const Case (&cases)[count]) {
    for (const auto& [name, input, expected] : cases) {
        SCOPED_TRACE(name);
        syntax_tree tree;
        EXPECT_TRUE(parseTemplate(input, tree.nodes)) << input;
        EXPECT_EQ(support::describe(tree.nodes), expected) << input;
    }
}

TEST(Grammar, KeepsTextUnchanged) {
    expectParsed({
        {"nothing", "", ""},
        {"only whitespace", " \t ", "' \t '"},
        {"only line breaks", "\r\n\n", "'\r\n\n'"},
        {"plain text", "Hello, world!", "'Hello, world!'"},
        {"closers", "a }} b %} c", "'a }} b %} c'"},
        {"a single brace", "a { b", "'a { b'"},
        {"a single brace at the end", "a {", "'a {'"},
        {"a single brace and nothing else", "{", "'{'"},
        {"a brace apart from its percent sign", "{ % if x % }", "'{ % if x % }'"},
        {"a brace apart from the next one", "{ { x } }", "'{ { x } }'"},
        {"a percent sign before a brace", "100%{", "'100%{'"},
        {"a single closing brace", "} %", "'} %'"},
        {"bytes over 127", "\xC3\xA9\xFF\x80", "'\xC3\xA9\xFF\x80'"},
        {"control characters", "\x01\x0B\x0C\x7F", "'\x01\x0B\x0C\x7F'"},
    });
}

TEST(Grammar, EndsATemplateAtItsFirstZeroByte) {
    expectParsed({
        {"in text", String("ab\0cd", 5), "'ab'"},
        {"at the beginning", String("\0ab", 3), ""},
        {"before text that would be rejected", String("ab\0{{", 5), "'ab'"},
        {"after a statement", String("{{ x }}\0{{ y }}", 15), "{x}"},
    });
}

TEST(Grammar, KeepsTheWhitespaceAroundTags) {
    expectParsed({
        {"around a substitution", "a {{x}} b", "'a ' {x} ' b'"},
        {"at both ends of the template", " {{x}}\t", "' ' {x} '\t'"},
        {"between two tags", "{{x}} {{y}}", "{x} ' ' {y}"},
        {"a line break after a block", "{% if a %}x{% endif %}\ny", "if(a ? 'x') '\ny'"},
        {"inside a block", "{% if a %} x {% else %} y {% endif %}", "if(a ? ' x ' : ' y ')"},
        {"a block of spaces", "{% for a in b %} {% endfor %}", "for(a in b ? ' ')"},
        {"nothing between two tags", "{{x}}{{y}}", "{x} {y}"},
    });
}

TEST(Grammar, ReadsSubstitutions) {
    expectParsed({
        {"without spaces", "Hello, {{name}}!", "'Hello, ' {name} '!'"},
        {"with spaces", "Hello, {{ name }}!", "'Hello, ' {name} '!'"},
        {"with tabs", "Hello, {{\tname\t}}!", "'Hello, ' {name} '!'"},
        {"with many spaces", "{{ \t  name \t }}", "{name}"},
        {"a name with a dot", "{{ user.name }}", "{user.name}"},
        {"a name with a slash", "{{ a/b }}", "{a/b}"},
        {"a name with digits", "{{ a1.2/3 }}", "{a1.2/3}"},
        {"a name that begins with an underscore", "{{ _x_ }}", "{_x_}"},
        {"capital letters", "{{ AZaz09 }}", "{AZaz09}"},
        {"one letter", "{{x}}", "{x}"},
        {"a name that ends with a dot", "{{ a. }}", "{a.}"},
        {"a keyword as a name", "{{ if }}{{ endfor }}{{ in }}", "{if} {endfor} {in}"},
        {"a third closing brace is text", "{{x}}}", "{x} '}'"},
        {"a brace before the opening braces belongs to them", "{{x}}{", "{x} '{'"},
    });
}

TEST(Grammar, ReadsConditionals) {
    expectParsed({
        {"without spaces", "{%if x%}a{%else%}b{%endif%}", "if(x ? 'a' : 'b')"},
        {"with spaces", "{% if x %}a{% else %}b{% endif %}", "if(x ? 'a' : 'b')"},
        {"with tabs", "{%\tif\tx\t%}a{%\telse\t%}b{%\tendif\t%}", "if(x ? 'a' : 'b')"},
        {"without an else part", "{% if x %}a{% endif %}", "if(x ? 'a')"},
        {"with an empty else part", "{% if x %}a{% else %}{% endif %}", "if(x ? 'a')"},
        {"with an empty body", "{% if x %}{% endif %}", "if(x ?)"},
        {"with an else part only", "{% if x %}{% else %}b{% endif %}", "if(x ? : 'b')"},
        {"one after the other", "{% if a %}x{% endif %}{% if b %}y{% endif %}",
         "if(a ? 'x') if(b ? 'y')"},
        {"with all kinds of nodes", "{% if a %}x{{ y }}{% include \"z\" %}{% endif %}",
         "if(a ? 'x' {y} include(z))"},
    });
}

TEST(Grammar, ReadsLoops) {
    expectParsed({
        {"without spaces where none are needed", "{%for x in xs%}a{%endfor%}",
         "for(x in xs ? 'a')"},
        {"with spaces", "{% for x in xs %}a{% endfor %}", "for(x in xs ? 'a')"},
        {"with tabs", "{%\tfor\tx\tin\txs\t%}a{%\tendfor\t%}", "for(x in xs ? 'a')"},
        {"with an empty body", "{% for x in xs %}{% endfor %}", "for(x in xs ?)"},
        {"with dots and slashes", "{% for a.b in c/d.e %}{% endfor %}", "for(a.b in c/d.e ?)"},
        {"one after the other", "{% for a in b %}{% endfor %}{% for c in d %}{% endfor %}",
         "for(a in b ?) for(c in d ?)"},
    });
}

TEST(Grammar, ReadsInclusions) {
    expectParsed({
        {"a path with a folder", "{% include \"parts/header.txt\" %}", "include(parts/header.txt)"},
        {"without spaces", "{%include\"x.txt\"%}", "include(x.txt)"},
        {"with spaces inside the quotes", "{% include \" x.txt \" %}", "include(x.txt)"},
        {"with tabs", "{%\tinclude\t\"\tx.txt\t\"\t%}", "include(x.txt)"},
        {"between text", "a{% include \"b\" %}c", "'a' include(b) 'c'"},
        {"`..` parts", "{% include \"a/../b\" %}", "include(a/../b)"},
    });
}

TEST(Grammar, NeedsNoSpaceAfterAKeyword) {
    expectParsed({
        {"if and a name", "{%ifx%}{%endif%}", "if(x ?)"},
        {"a name that begins with if", "{% iffy %}{% endif %}", "if(fy ?)"},
        {"for and a variable", "{% format in xs %}{% endfor %}", "for(mat in xs ?)"},
        {"in and a list", "{% for x inys %}{% endfor %}", "for(x in ys ?)"},
        {"a list that begins with in", "{% for x in in %}{% endfor %}", "for(x in in ?)"},
        {"a variable named in", "{% for in in xs %}{% endfor %}", "for(in in xs ?)"},
        {"a condition named if", "{% ifif %}{% endif %}", "if(if ?)"},
        {"a condition named endif", "{% if endif %}{% endif %}", "if(endif ?)"},
        {"a loop over endfor", "{% for forin inendfor %}{% endfor %}", "for(forin in endfor ?)"},
    });
}

TEST(Grammar, ReadsNestedBlocks) {
    expectParsed({
        {"a conditional in a loop",
         "{% for u in users %}{% if u.active %}{{ u.name }}{% endif %}{% endfor %}",
         "for(u in users ? if(u.active ? {u.name}))"},
        {"a loop in a conditional", "{% if a %}{% for x in y %}{% endfor %}{% endif %}",
         "if(a ? for(x in y ?))"},
        {"blocks in an else part",
         "{% if a %}{% else %}{% if b %}x{% else %}{% for c in d %}y{% endfor %}{% endif %}{% "
         "endif %}",
         "if(a ? : if(b ? 'x' : for(c in d ? 'y')))"},
        {"an else part that belongs to the inner block",
         "{% if a %}{% if b %}x{% else %}y{% endif %}{% endif %}", "if(a ? if(b ? 'x' : 'y'))"},
        {"an else part that belongs to the outer block",
         "{% if a %}{% if b %}x{% endif %}{% else %}y{% endif %}", "if(a ? if(b ? 'x') : 'y')"},
        {"an else part around a loop",
         "{% if a %}{% for b in c %}{% endfor %}{% else %}y{% endif %}",
         "if(a ? for(b in c ?) : 'y')"},
        {"the same block nested four deep",
         "{% if a %}{% if a %}{% if a %}{% if a %}x{% endif %}{% endif %}{% endif %}{% endif %}",
         "if(a ? if(a ? if(a ? if(a ? 'x'))))"},
    });
}

} // namespace
} // namespace kel::Stencilor::internal
