#include "SyntaxReport.h"

#include "SecondReading.h"
#include "SyntaxTree.h"

#include <vector>

namespace support {

namespace {

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;
using Kind = SyntaxElement::Kind;
using Expected = SyntaxExpectation;

struct Parts : SyntaxVisitor {
    void visit(const SyntaxElement& element) override { all.push_back(element); }

    std::vector<SyntaxElement> all;
};

/// Makes a tree from the parts of a template.
class Builder {
  public:
    Builder(const std::string& text, const std::vector<SyntaxElement>& parts)
        : text_(text), next_(parts.begin()), end_(parts.end()) {}

    /// Continues to the end, or to a tag that ends a list.
    content_list build() {
        content_list nodes;
        for (; next_ != end_ && next_->kind != Kind::Else && next_->kind != Kind::EndIf &&
               next_->kind != Kind::EndFor;
             ++next_) {
            nodes.push_back(buildNode());
        }
        return nodes;
    }

  private:
    content buildNode() {
        const SyntaxElement& part = *next_;
        switch (part.kind) {
        case Kind::If:
            return buildConditional(part);
        case Kind::For:
            ++next_;
            return for_expr{build(), textOf(part.name), textOf(part.list)};
        case Kind::Substitution:
            return replace_expr{textOf(part.name)};
        case Kind::Include:
            return include_expr{textOf(part.name)};
        default:
            return textOf(part.whole);
        }
    }

    content buildConditional(const SyntaxElement& part) {
        if_expr node;
        node.name = textOf(part.name);
        ++next_;
        node.then_list = build();
        if (next_->kind == Kind::Else) {
            ++next_;
            node.else_list = build();
        }
        return node;
    }

    std::string textOf(SyntaxRange range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }

    const std::string& text_;
    std::vector<SyntaxElement>::const_iterator next_;
    std::vector<SyntaxElement>::const_iterator end_;
};

/// Completions that make a template of a tag that was read up to its fault, inside or outside of a
/// block.
struct Completion {
    Expected expected;
    const char* text;
    bool closesBlock = false;
};

const Completion completions[] = {
    {Expected::Keyword, "if x%}{%endif%}"},
    {Expected::Keyword, "for x in y%}{%endfor%}"},
    {Expected::Keyword, "include\"x\"%}"},
    {Expected::KeywordInIf, "else%}"},
    {Expected::KeywordInElse, "endif%}", true},
    {Expected::KeywordInFor, "endfor%}", true},
    {Expected::SubstitutionName, "x}}"},
    {Expected::SubstitutionEnd, "}}"},
    {Expected::IfName, "x%}{%endif%}"},
    {Expected::IfEnd, "%}{%endif%}"},
    {Expected::ElseEnd, "%}"},
    {Expected::EndIfEnd, "%}", true},
    {Expected::ForVariable, "x in y%}{%endfor%}"},
    {Expected::ForIn, " in y%}{%endfor%}"}, // a space is needed after a name
    {Expected::ForList, "y%}{%endfor%}"},
    {Expected::ForEnd, "%}{%endfor%}"},
    {Expected::EndForEnd, "%}", true},
    {Expected::IncludeOpeningQuote, "\"x\"%}"},
    {Expected::IncludePath, "x\"%}"},
    {Expected::IncludeClosingQuote, "\"%}"},
    {Expected::IncludeEnd, "%}"},
    {Expected::MissingElseOrEndIf, "{%else%}"},
    {Expected::MissingEndIf, "{%endif%}", true},
    {Expected::MissingEndFor, "{%endfor%}", true},
};

/// What is allowed in one part of a block is also allowed in the other.
bool isAmong(Expected one, Expected expected) {
    switch (expected) {
    case Expected::KeywordInIf:
        return one == Expected::Keyword || one == expected || one == Expected::KeywordInElse;
    case Expected::KeywordInElse:
    case Expected::KeywordInFor:
        return one == Expected::Keyword || one == expected;
    case Expected::MissingElseOrEndIf:
        return one == expected || one == Expected::MissingEndIf;
    default:
        return one == expected;
    }
}

struct OpenBlock {
    Kind kind; // of the first tag of the innermost part of the block
    SyntaxRange opener;

    const char* begin() const {
        return kind == Kind::For    ? "{%for x in y%}"
               : kind == Kind::Else ? "{%if x%}{%else%}"
                                    : "{%if x%}";
    }
    const char* end() const { return kind == Kind::For ? "{%endfor%}" : "{%endif%}"; }
};

/// The open blocks after the parts, outermost first.
std::vector<OpenBlock> findOpenBlocks(const std::vector<SyntaxElement>& parts) {
    std::vector<OpenBlock> open;
    for (const SyntaxElement& part : parts) {
        if (part.kind == Kind::If || part.kind == Kind::For) {
            open.push_back({part.kind, part.whole});
        } else if (part.kind == Kind::Else) {
            open.back().kind = Kind::Else;
        } else if (part.kind == Kind::EndIf || part.kind == Kind::EndFor) {
            open.pop_back();
        }
    }
    return open;
}

bool isTemplate(const std::string& text) {
    content_list ignored;
    return readOnceMore(text, ignored);
}

/// True if `tag` and the completion make a template inside `block`, or outside of all blocks.
bool completes(const std::string& tag, const Completion& completion, const OpenBlock* block) {
    if (block == nullptr) {
        return isTemplate(tag + completion.text);
    }
    return isTemplate(block->begin() + tag + completion.text +
                      (completion.closesBlock ? "" : block->end()));
}

/// True if the text before the malformed tag is a template, except for the ends of its blocks.
bool beginsWell(const std::string& before, const std::vector<OpenBlock>& open) {
    std::string whole = before + " "; // otherwise a brace at the end would join the tag
    for (auto block = open.rbegin(); block != open.rend(); ++block) {
        whole += block->end();
    }
    return isTemplate(whole);
}

std::string findMistakeInFault(const std::string& text, const std::vector<OpenBlock>& open,
                               const SyntaxFault& fault) {
    const OpenBlock* const block = open.empty() ? nullptr : &open.back();
    const SyntaxRange opener = block == nullptr ? SyntaxRange() : block->opener;
    if (fault.block.begin != opener.begin || fault.block.end != opener.end) {
        return "another block is open";
    }
    if (fault.tag > fault.offset || fault.offset > text.size() ||
        !beginsWell(text.substr(0, fault.tag), open)) {
        return "the fault stands elsewhere";
    }
    // No token is longer than seven bytes. Text may end with a part of one.
    constexpr std::size_t longestToken = 7;
    const bool endsBehind = text.size() >= fault.offset + longestToken;
    const std::string read = text.substr(fault.tag, fault.offset - fault.tag);
    const std::string more = text.substr(fault.tag, read.size() + longestToken);
    for (const Completion& completion : completions) {
        if (isAmong(completion.expected, fault.expected) && !completes(read, completion, block)) {
            return std::string("this does not belong there: ") + completion.text;
        }
        if (endsBehind && completes(more, completion, block)) {
            return std::string("the fault stands further on, before ") + completion.text;
        }
    }
    return "";
}

} // namespace

std::string findMistakeInReport(const std::string& input) {
    const std::string text = input.c_str();
    Parts parts;
    const SyntaxFault fault =
        readSyntax(kel::String(input.data(), static_cast<unsigned int>(input.size())), parts);
    content_list nodes;
    if (fault.isPresent() == readOnceMore(text, nodes)) {
        return "a fault in a template, or none in what is no template";
    }
    unsigned int end = 0;
    for (const SyntaxElement& part : parts.all) {
        if (part.whole.begin != end || part.whole.isEmpty()) {
            return "parts do not follow each other";
        }
        end = part.whole.end;
    }
    if (end != (fault.isPresent() ? fault.tag : text.size())) {
        return "the parts end elsewhere";
    }
    if (fault.isPresent()) {
        return findMistakeInFault(text, findOpenBlocks(parts.all), fault);
    }
    const bool same = describe(Builder(text, parts.all).build()) == describe(nodes);
    return same ? "" : "the parts make another tree";
}

} // namespace support
