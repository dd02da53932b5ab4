#include <libStencilor/template/template_grammar.h>

#include <boost/variant/get.hpp>

#include <string>

namespace kel::Stencilor::internal {

namespace {

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

bool isFirstOfIdentifier(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
}

bool isInIdentifier(char byte) {
    return isFirstOfIdentifier(byte) || (byte >= '0' && byte <= '9') || byte == '.' || byte == '/';
}

} // namespace

template_grammar::template_grammar(std::string_view text) : text_(text) {}

bool template_grammar::parse(content_list& list) {
    const bool matched = start();
    if (!open_.empty()) {
        steps_.resize(open_.front().opening); // what stands in an open block is not complete
        --top_level_count_;
    }
    build(list);
    return matched;
}

// start = content end
bool template_grammar::start() {
    while (content_rule() || closing_tag()) {
    }
    return position_ == text_.size() && open_.empty();
}

// content_rule = text_rule | expr_rule
bool template_grammar::content_rule() {
    return text_rule() || expr_rule();
}

// text_rule = { byte that begins neither "{%" nor "{{" }, one or more
bool template_grammar::text_rule() {
    std::size_t end = text_.find('{', position_);
    while (end != std::string_view::npos && end + 1 < text_.size() && text_[end + 1] != '%' &&
           text_[end + 1] != '{') {
        end = text_.find('{', end + 1);
    }
    if (end == std::string_view::npos || end + 1 == text_.size()) {
        end = text_.size();
    }
    if (end == position_) {
        return false;
    }
    add(step_kind::text,
        {static_cast<std::uint32_t>(position_), static_cast<std::uint32_t>(end - position_)}, {});
    position_ = end;
    return true;
}

// expr_rule = if_rule | for_rule | replace_rule | include_rule
bool template_grammar::expr_rule() {
    return if_rule() || for_rule() || replace_rule() || include_rule();
}

// if_rule = "{%" "if" identifier "%}" content [ "{%" "else" "%}" content ] "{%" "endif" "%}"
// The opening tag; the other tags are matched by closing_tag() when the content has ended.
bool template_grammar::if_rule() {
    const std::size_t begin = position_;
    span name;
    if (!attempt(literal("{%") && literal("if") && identifier_rule(name) && literal("%}"), begin)) {
        return false;
    }
    open(step_kind::open_if, name, {});
    return true;
}

// for_rule = "{%" "for" identifier "in" identifier "%}" content "{%" "endfor" "%}"
// The opening tag, as in if_rule().
bool template_grammar::for_rule() {
    const std::size_t begin = position_;
    span variable;
    span list_name;
    if (!attempt(literal("{%") && literal("for") && identifier_rule(variable) && literal("in") &&
                     identifier_rule(list_name) && literal("%}"),
                 begin)) {
        return false;
    }
    open(step_kind::open_for, variable, list_name);
    return true;
}

// replace_rule = "{{" identifier "}}"
bool template_grammar::replace_rule() {
    const std::size_t begin = position_;
    span name;
    if (!attempt(literal("{{") && identifier_rule(name) && literal("}}"), begin)) {
        return false;
    }
    add(step_kind::replace, name, {});
    return true;
}

// include_rule = "{%" "include" '"' identifier '"' "%}"
bool template_grammar::include_rule() {
    const std::size_t begin = position_;
    span path;
    if (!attempt(literal("{%") && literal("include") && literal("\"") && identifier_rule(path) &&
                     literal("\"") && literal("%}"),
                 begin)) {
        return false;
    }
    add(step_kind::include, path, {});
    return true;
}

// identifier_rule = [a-zA-Z_] { [a-zA-Z_0-9./] }
bool template_grammar::identifier_rule(span& found) {
    skipBlanks();
    const std::size_t begin = position_;
    if (begin == text_.size() || !isFirstOfIdentifier(text_[begin])) {
        return false;
    }
    do {
        ++position_;
    } while (position_ < text_.size() && isInIdentifier(text_[position_]));
    found = {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(position_ - begin)};
    return true;
}

/// The tags that may follow the content of the innermost open block.
bool template_grammar::closing_tag() {
    if (open_.empty()) {
        return false;
    }
    if (steps_[open_.back().opening].kind == step_kind::open_for) {
        return end_tag("endfor");
    }
    return (!open_.back().in_else && else_tag()) || end_tag("endif");
}

bool template_grammar::else_tag() {
    const std::size_t begin = position_;
    if (!attempt(literal("{%") && literal("else") && literal("%}"), begin)) {
        return false;
    }
    open_.back().in_else = true;
    steps_.push_back({step_kind::other, {}, {}});
    return true;
}

bool template_grammar::end_tag(std::string_view keyword) {
    const std::size_t begin = position_;
    if (!attempt(literal("{%") && literal(keyword) && literal("%}"), begin)) {
        return false;
    }
    open_.pop_back();
    steps_.push_back({step_kind::close, {}, {}});
    return true;
}

bool template_grammar::literal(std::string_view expected) {
    skipBlanks();
    if (text_.compare(position_, expected.size(), expected) != 0) {
        return false;
    }
    position_ += expected.size();
    return true;
}

/// A rule that fails consumes nothing.
bool template_grammar::attempt(bool matched, std::size_t begin) {
    if (!matched) {
        position_ = begin;
    }
    return matched;
}

void template_grammar::skipBlanks() {
    while (position_ < text_.size() && isBlank(text_[position_])) {
        ++position_;
    }
}

/// Notes a node, and counts it in the list that it belongs to.
void template_grammar::add(step_kind kind, span first, span second) {
    steps_.push_back({kind, first, second});
    if (open_.empty()) {
        ++top_level_count_;
    } else {
        step& block = steps_[open_.back().opening];
        ++(open_.back().in_else ? block.else_count : block.count);
    }
}

void template_grammar::open(step_kind kind, span first, span second) {
    add(kind, first, second);
    open_.push_back({steps_.size() - 1});
}

/// Appends the nodes that the steps describe to `list`.
void template_grammar::build(content_list& list) const {
    struct level {
        content_list* list;
        if_expr* block; // where an `else` belongs
        std::uint32_t else_count;
    };
    std::vector<level> levels{{&list, nullptr, 0}};
    list.reserve(list.size() + top_level_count_);
    for (const step& next : steps_) {
        content_list& nodes = *levels.back().list;
        switch (next.kind) {
        case step_kind::text:
            nodes.emplace_back(std::string(textOf(next.first)));
            break;
        case step_kind::replace:
            nodes.emplace_back(replace_expr{std::string(textOf(next.first))});
            break;
        case step_kind::include:
            nodes.emplace_back(include_expr{std::string(textOf(next.first))});
            break;
        case step_kind::open_if: {
            nodes.emplace_back(if_expr{{}, {}, std::string(textOf(next.first))});
            auto& block = boost::get<if_expr>(nodes.back());
            block.then_list.reserve(next.count);
            levels.push_back({&block.then_list, &block, next.else_count});
            break;
        }
        case step_kind::open_for: {
            nodes.emplace_back(
                for_expr{{}, std::string(textOf(next.first)), std::string(textOf(next.second))});
            auto& block = boost::get<for_expr>(nodes.back());
            block.body.reserve(next.count);
            levels.push_back({&block.body, nullptr, 0});
            break;
        }
        case step_kind::other: {
            level& current = levels.back();
            current.list = &current.block->else_list;
            current.list->reserve(current.else_count);
            break;
        }
        case step_kind::close:
            levels.pop_back();
            break;
        }
    }
}

} // namespace kel::Stencilor::internal
