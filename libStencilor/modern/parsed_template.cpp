#include <libStencilor/modern/parsed_template.h>
#include <libStencilor/modern/text_position.h>
#include <libStencilor/template/parse_template.h>

#include <boost/variant/get.hpp>

#include <cstddef>
#include <utility>
#include <vector>

namespace kel::Stencilor::internal {

namespace {

/// Counts the text nodes before a given one, in the order of the template.
class text_counter {
  public:
    std::size_t countBefore(const content_list& nodes, const content& text) {
        levels_.push_back({nodes.data(), nodes.data() + nodes.size()});
        while (!levels_.empty()) {
            level& innermost = levels_.back();
            if (innermost.next == innermost.end) {
                levels_.pop_back();
            } else if (innermost.next == &text) {
                break;
            } else {
                pass(*innermost.next++);
            }
        }
        return count_;
    }

  private:
    struct level {
        const content* next;
        const content* end;
    };

    void pass(const content& node) {
        if (boost::get<std::string>(&node) != nullptr) {
            ++count_;
        } else if (const auto* loop = boost::get<for_expr>(&node)) {
            enter(loop->body);
        } else if (const auto* conditional = boost::get<if_expr>(&node)) {
            enter(conditional->else_list);
            enter(conditional->then_list);
        }
    }

    void enter(const content_list& list) {
        levels_.push_back({list.data(), list.data() + list.size()});
    }

    std::vector<level> levels_;
    std::size_t count_ = 0;
};

/// Finds a text node by the number of text nodes before it.
class text_finder final : public SyntaxVisitor {
  public:
    explicit text_finder(std::size_t before) : before_(before) {}

    void visit(const SyntaxElement& part) override {
        if (part.kind == SyntaxElement::Kind::Text && before_-- == 0) {
            found = part.whole;
        }
    }

    SyntaxRange found;

  private:
    std::size_t before_;
};

node_place placeAt(const String& text, SyntaxRange range) {
    text_position position(text.view());
    position.moveTo(range.begin);
    return {range, position.line(), position.column()};
}

} // namespace

parsed_template::parsed_template(String source, String called)
    : text(std::move(source)), name(std::move(called)), isUtf8(String::isUtf8(text.view())) {
    if (parseTemplate(text, tree.nodes)) {
        names.emplace(text);
    } else {
        destroyNodes(tree.nodes);
        fault = findSyntaxFault(text);
        faultPlace = placeAt(text, {fault.offset, fault.offset});
    }
}

node_place placeOfText(const parsed_template& in, const content& text) {
    text_finder finder(text_counter().countBefore(in.tree.nodes, text));
    readSyntax(in.text, finder);
    return placeAt(in.text, finder.found);
}

} // namespace kel::Stencilor::internal
