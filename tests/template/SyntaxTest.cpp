#include "../support/Test.h"

#include <libStencilor/Syntax.h>

namespace kel::Stencilor {
namespace {

using Expected = SyntaxExpectation;

/// Formats the parts as `kind[text|name|list]`.
class Notes : public SyntaxVisitor {
  public:
    explicit Notes(std::string text) : text_(std::move(text)) {}

    void visit(const SyntaxElement& element) override {
        static const char* const kinds[] = {"text",  "substitution", "if",     "else",
                                            "endif", "for",          "endfor", "include"};
        notes_ += kinds[static_cast<std::size_t>(element.kind)];
        notes_ += "[" + textOf(element.whole);
        for (const SyntaxRange range : {element.name, element.list}) {
            notes_ += range.isEmpty() ? "" : "|" + textOf(range);
        }
        notes_ += "]";
    }

    const std::string& notes() const { return notes_; }

  private:
    std::string textOf(SyntaxRange range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }

    std::string text_;
    std::string notes_;
};

TEST(Syntax, ReturnsThePartsInOrder) {
    const struct {
        const char* name;
        std::string input;
        std::string parts;
    } cases[] = {
        {"nothing", "", ""},
        {"text", "a } b", "text[a } b]"},
        {"a substitution", "a{{ b.c }}d", "text[a]substitution[{{ b.c }}|b.c]text[d]"},
        {"consecutive tags", "{{a}}{{b}}", "substitution[{{a}}|a]substitution[{{b}}|b]"},
        {"a condition", "{% if a %}b{% endif %}", "if[{% if a %}|a]text[b]endif[{% endif %}]"},
        {"a condition with an else", "{%ifa%}{%\telse %}{%endif\t%}",
         "if[{%ifa%}|a]else[{%\telse %}]endif[{%endif\t%}]"},
        {"a loop", "{% for a in b/c %}{{ a.d }}{% endfor %}",
         "for[{% for a in b/c %}|a|b/c]substitution[{{ a.d }}|a.d]endfor[{% endfor %}]"},
        {"an include", "{% include \" a.txt \" %}", "include[{% include \" a.txt \" %}|a.txt]"},
        {"nested blocks",
         "{% for a in b %}{% if c %}{% for d in e %}{% endfor %}{% else %}{% endif %}{% endfor %}",
         "for[{% for a in b %}|a|b]if[{% if c %}|c]for[{% for d in e %}|d|e]endfor[{% endfor %}]"
         "else[{% else %}]endif[{% endif %}]endfor[{% endfor %}]"},
        {"the text before the first NUL", std::string("a{{b}}\0{{c}}", 12),
         "text[a]substitution[{{b}}|b]"},
        {"the parts before a fault", "a{{ b }}{{ c", "text[a]substitution[{{ b }}|b]"},
        {"the parts of a block without an end", "{% for a in b %}{{ a.c }}",
         "for[{% for a in b %}|a|b]substitution[{{ a.c }}|a.c]"},
    };
    for (const auto& [name, input, parts] : cases) {
        SCOPED_TRACE(name);
        Notes notes(input);
        readSyntax(String(input.data(), static_cast<unsigned int>(input.size())), notes);
        EXPECT_EQ(notes.notes(), parts);
    }
}

TEST(Syntax, ReportsWhatIsExpectedAndWhere) {
    // In each text, `^` marks the fault.
    const struct {
        const char* name;
        std::string input;
        Expected expected;
        const char* description;
    } cases[] = {
        {"an empty substitution", "a{{ ^}}", Expected::SubstitutionName, "a name after \"{{\""},
        {"a number as a substitution", "{{ ^1x }}", Expected::SubstitutionName,
         "a name after \"{{\""},
        {"a substitution without an end", "{{ a^", Expected::SubstitutionEnd,
         "\"}}\" after the name"},
        {"a name with a hyphen", "{{ a^-b }}", Expected::SubstitutionEnd, "\"}}\" after the name"},
        {"a line break in a tag", "{{ a ^\n}}", Expected::SubstitutionEnd, "\"}}\" after the name"},
        {"a tag cut off by a NUL byte", std::string("{{ a ^\0}}", 9), Expected::SubstitutionEnd,
         "\"}}\" after the name"},
        {"an unknown keyword", "{% ^set x %}", Expected::Keyword, "\"if\", \"for\" or \"include\""},
        {"a sign before the keyword", "{% ^~if a %}", Expected::Keyword,
         "\"if\", \"for\" or \"include\""},
        {"a line break before the keyword", "{% ^\nif a %}", Expected::Keyword,
         "\"if\", \"for\" or \"include\""},
        {"an empty statement", "{%^%}", Expected::Keyword, "\"if\", \"for\" or \"include\""},
        {"an opener at the end", "a{%\t^", Expected::Keyword, "\"if\", \"for\" or \"include\""},
        {"an else outside any block", "{% ^else %}", Expected::Keyword,
         "\"if\", \"for\" or \"include\""},
        {"the end of a loop in a condition", "{% if a %}{% ^endfor %}", Expected::KeywordInIf,
         "\"if\", \"for\", \"include\", \"else\" or \"endif\""},
        {"a second else", "{% if a %}{% else %}{% ^else %}{% endif %}", Expected::KeywordInElse,
         "\"if\", \"for\", \"include\" or \"endif\""},
        {"an else in a loop", "{% for a in b %}{% ^else %}", Expected::KeywordInFor,
         "\"if\", \"for\", \"include\" or \"endfor\""},
        {"a condition without a name", "{% if ^%}", Expected::IfName, "a name after \"if\""},
        {"a condition of two names", "{% if not ^a %}", Expected::IfEnd, "\"%}\" after the name"},
        {"an else with a name", "{% if a %}{% else ^b %}{% endif %}", Expected::ElseEnd,
         "\"%}\" after \"else\""},
        {"an else that continues as an endif", "{% if a %}{% else ^endif %}", Expected::ElseEnd,
         "\"%}\" after \"else\""},
        {"an end with a name", "{% if a %}{% endif ^a %}", Expected::EndIfEnd,
         "\"%}\" after \"endif\""},
        {"a loop without a variable", "{% for ^%}", Expected::ForVariable,
         "a loop variable after \"for\""},
        {"a loop without in", "{% for a ^of b %}", Expected::ForIn,
         "\"in\" after the loop variable"},
        {"a loop without a list", "{% for a in ^%}", Expected::ForList, "a name after \"in\""},
        {"a loop over two lists", "{% for a in b^, c %}", Expected::ForEnd,
         "\"%}\" after the name"},
        {"the end of a loop with a name", "{% for a in b %}{% endfor ^a %}", Expected::EndForEnd,
         "\"%}\" after \"endfor\""},
        {"a path without quotation marks", "{% include ^a.txt %}", Expected::IncludeOpeningQuote,
         "a quotation mark after \"include\""},
        {"a path that begins with a dot", "{% include \"^./a\" %}", Expected::IncludePath,
         "a path after the quotation mark"},
        {"a path with a hyphen", "{% include \"a^-b\" %}", Expected::IncludeClosingQuote,
         "a quotation mark after the path"},
        {"an include without an end", "{% include \"a\" ^}", Expected::IncludeEnd,
         "\"%}\" after the path"},
        {"an unclosed condition", "{% if a %}b^", Expected::MissingElseOrEndIf,
         "\"{% else %}\" or \"{% endif %}\" before the end"},
        {"an unclosed else", "{% if a %}{% else %}b^", Expected::MissingEndIf,
         "\"{% endif %}\" before the end"},
        {"an unclosed loop", "{% for a in b %}c\n^", Expected::MissingEndFor,
         "\"{% endfor %}\" before the end"},
    };
    for (const auto& [name, marked, expected, description] : cases) {
        SCOPED_TRACE(name);
        std::string input = marked;
        const std::size_t offset = input.find('^');
        input.erase(offset, 1);
        const SyntaxFault fault =
            findSyntaxFault(String(input.data(), static_cast<unsigned int>(input.size())));
        EXPECT_TRUE(fault.isPresent());
        EXPECT_EQ(fault.expected, expected);
        EXPECT_EQ(fault.offset, offset);
        EXPECT_STREQ(describe(fault.expected), description);
    }
}

TEST(Syntax, ReportsTheMalformedTagAndTheOpenBlock) {
    const struct {
        const char* name;
        const char* input;
        unsigned int tag;
        SyntaxRange block;
    } cases[] = {
        {"a tag outside all blocks", "ab{{ c", 2, {}},
        {"a tag after a block", "{% if a %}{% endif %}{{ c", 21, {}},
        {"a tag in a block", "ab{% if c %}d{{ e", 13, {2, 12}},
        {"a tag in an else", "ab{% if c %}{% else %}{% d", 22, {2, 12}},
        {"a block without an end", "ab{% if c %}d", 13, {2, 12}},
        {"the inner of two blocks", "{%if a%}{%for b in c%}d", 23, {8, 22}},
        {"the outer of two blocks", "{%if a%}{%for b in c%}{%endfor%}", 32, {0, 8}},
    };
    for (const auto& [name, input, tag, block] : cases) {
        SCOPED_TRACE(name);
        const SyntaxFault fault = findSyntaxFault(input);
        EXPECT_EQ(fault.tag, tag);
        EXPECT_EQ(fault.block.begin, block.begin);
        EXPECT_EQ(fault.block.end, block.end);
    }
}

TEST(Syntax, FindsNoFaultInATemplate) {
    const SyntaxFault fault = findSyntaxFault("{% if a %}{{ b }}{% endif %}");
    EXPECT_FALSE(fault.isPresent());
    EXPECT_STREQ(describe(fault.expected), "");
}

TEST(Syntax, IsReadByCopiesOfAVisitor) {
    const std::string input = "a{{ b }}";
    const Notes visitor(input);
    Notes copy(visitor);
    Notes assigned("");
    assigned = visitor;
    readSyntax(input, copy);
    readSyntax(input, assigned);
    EXPECT_EQ(visitor.notes(), "");
    EXPECT_EQ(copy.notes(), "text[a]substitution[{{ b }}|b]");
    EXPECT_EQ(assigned.notes(), copy.notes());
}

TEST(Syntax, PropagatesExceptionsOfTheVisitor) {
    struct Thrower : SyntaxVisitor {
        void visit(const SyntaxElement&) override { throw std::runtime_error("enough"); }
    };
    Thrower thrower;
    EXPECT_THROW(readSyntax("text", thrower), std::runtime_error);
}

} // namespace
} // namespace kel::Stencilor
