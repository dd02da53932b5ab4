#include <libStencilor/Syntax.h>
#include <libStencilor/template/template_grammar.h>

namespace kel::Stencilor {

namespace {

class no_visitor final : public SyntaxVisitor {
  public:
    void visit(const SyntaxElement&) override {}
};

} // namespace

SyntaxVisitor::SyntaxVisitor() = default;
SyntaxVisitor::SyntaxVisitor(const SyntaxVisitor& other) = default;
SyntaxVisitor& SyntaxVisitor::operator=(const SyntaxVisitor& other) = default;
SyntaxVisitor::~SyntaxVisitor() = default;

SyntaxFault readSyntax(const String& input, SyntaxVisitor& visitor) {
    const CString narrow = input.getLowerByteString();
    return internal::template_grammar(narrow.c_str()).report(visitor);
}

SyntaxFault findSyntaxFault(const String& input) {
    no_visitor nobody;
    return readSyntax(input, nobody);
}

const char* describe(SyntaxExpectation expectation) {
    switch (expectation) {
    case SyntaxExpectation::Nothing:
        return "";
    case SyntaxExpectation::Keyword:
        return R"("if", "for" or "include")";
    case SyntaxExpectation::KeywordInIf:
        return R"("if", "for", "include", "else" or "endif")";
    case SyntaxExpectation::KeywordInElse:
        return R"("if", "for", "include" or "endif")";
    case SyntaxExpectation::KeywordInFor:
        return R"("if", "for", "include" or "endfor")";
    case SyntaxExpectation::SubstitutionName:
        return R"(a name after "{{")";
    case SyntaxExpectation::SubstitutionEnd:
        return R"("}}" after the name)";
    case SyntaxExpectation::IfName:
        return R"(a name after "if")";
    case SyntaxExpectation::IfEnd:
    case SyntaxExpectation::ForEnd:
        return R"("%}" after the name)";
    case SyntaxExpectation::ElseEnd:
        return R"("%}" after "else")";
    case SyntaxExpectation::EndIfEnd:
        return R"("%}" after "endif")";
    case SyntaxExpectation::ForVariable:
        return R"(a loop variable after "for")";
    case SyntaxExpectation::ForIn:
        return R"("in" after the loop variable)";
    case SyntaxExpectation::ForList:
        return R"(a name after "in")";
    case SyntaxExpectation::EndForEnd:
        return R"("%}" after "endfor")";
    case SyntaxExpectation::IncludeOpeningQuote:
        return R"(a quotation mark after "include")";
    case SyntaxExpectation::IncludePath:
        return "a path after the quotation mark";
    case SyntaxExpectation::IncludeClosingQuote:
        return "a quotation mark after the path";
    case SyntaxExpectation::IncludeEnd:
        return R"("%}" after the path)";
    case SyntaxExpectation::MissingElseOrEndIf:
        return R"("{% else %}" or "{% endif %}" before the end)";
    case SyntaxExpectation::MissingEndIf:
        return R"("{% endif %}" before the end)";
    case SyntaxExpectation::MissingEndFor:
        return R"("{% endfor %}" before the end)";
    }
    return "";
}

} // namespace kel::Stencilor
