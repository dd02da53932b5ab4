#include <libStencilor/template/template_grammar.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace kel::Stencilor::internal {

using Kind = SyntaxElement::Kind;

/// Reports the result of the first pass of a parse.
///
/// How it works: there are no gaps between parts, so each begins at the end of the previous one.
/// The steps contain the names of a tag; the next delimiter after them closes it.
/// Ownership: borrows the grammar, and takes its steps.
class template_grammar::reporter {
  public:
    explicit reporter(template_grammar& grammar) : grammar_(grammar), text_(grammar.begin_) {}

    /// Call this once, before `fault`.
    void visitParts(SyntaxVisitor& visitor) {
        while (!grammar_.steps_.empty()) {
            const SyntaxElement part = nextPart(grammar_.steps_.take());
            position_ = part.whole.end;
            followBlocks(part);
            visitor.visit(part);
        }
    }

    /// The reason why a parse failed.
    SyntaxFault fault() const {
        SyntaxFault found;
        found.block = open_.empty() ? SyntaxRange() : open_.back().whole;
        found.tag = position_;
        if (*grammar_.position_ == '\0') {
            found.expected = missingTag();
            found.offset = position_;
        } else if (grammar_.missing_.expected != SyntaxExpectation::Nothing) {
            found.expected = grammar_.missing_.expected;
            found.offset = grammar_.missing_.offset;
        } else {
            found.expected = missingKeyword();
            found.offset = behindOpener();
        }
        return found;
    }

  private:
    struct open_tag {
        Kind kind; // If, Else or For: the innermost part of the block
        SyntaxRange whole;
    };

    SyntaxElement nextPart(const step& found) {
        switch (found.kind) {
        case step_kind::text:
            return {Kind::Text, rangeOf(found.text), {}, {}};
        case step_kind::replace:
            return tag(Kind::Substitution, "}}", found.text);
        case step_kind::include:
            return tag(Kind::Include, "%}", found.text);
        case step_kind::open_if:
            grammar_.blocks_.take();
            return tag(Kind::If, "%}", found.text);
        case step_kind::open_for:
            return tag(Kind::For, "%}", found.text, grammar_.blocks_.take().list_name);
        case step_kind::other:
            return tag(Kind::Else, "%}");
        case step_kind::close:
            break;
        }
        return tag(open_.back().kind == Kind::For ? Kind::EndFor : Kind::EndIf, "%}");
    }

    SyntaxElement tag(Kind kind, std::string_view closer, span name = {}, span list = {}) const {
        const SyntaxRange last = rangeOf(list.size != 0 ? list : name);
        const auto behind = last.isEmpty() ? position_ : last.end;
        const std::size_t closed = text_.find(closer, behind);
        return {kind,
                {position_, static_cast<unsigned int>(closed + closer.size())},
                rangeOf(name),
                rangeOf(list)};
    }

    void followBlocks(const SyntaxElement& part) {
        switch (part.kind) {
        case Kind::If:
        case Kind::For:
            open_.push_back({part.kind, part.whole});
            break;
        case Kind::Else:
            open_.back().kind = Kind::Else;
            break;
        case Kind::EndIf:
        case Kind::EndFor:
            open_.pop_back();
            break;
        default:
            break;
        }
    }

    unsigned int behindOpener() const {
        const std::size_t keyword = text_.find_first_not_of(" \t", position_ + 2);
        return static_cast<unsigned int>(std::min(keyword, text_.size()));
    }

    SyntaxExpectation missingKeyword() const {
        if (open_.empty()) {
            return SyntaxExpectation::Keyword;
        }
        return open_.back().kind == Kind::For    ? SyntaxExpectation::KeywordInFor
               : open_.back().kind == Kind::Else ? SyntaxExpectation::KeywordInElse
                                                 : SyntaxExpectation::KeywordInIf;
    }

    SyntaxExpectation missingTag() const {
        return open_.back().kind == Kind::For    ? SyntaxExpectation::MissingEndFor
               : open_.back().kind == Kind::Else ? SyntaxExpectation::MissingEndIf
                                                 : SyntaxExpectation::MissingElseOrEndIf;
    }

    static SyntaxRange rangeOf(span part) { return {part.begin, part.begin + part.size}; }

    template_grammar& grammar_;
    std::string_view text_;
    std::vector<open_tag> open_;
    unsigned int position_ = 0; // the beginning of the next part
};

SyntaxFault template_grammar::report(SyntaxVisitor& visitor) {
    const bool matched = start();
    reporter found(*this);
    found.visitParts(visitor);
    return matched ? SyntaxFault() : found.fault();
}

} // namespace kel::Stencilor::internal
