#include <libStencilor/template/template_grammar.h>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <string>

namespace kel::Stencilor::internal {

namespace {

constexpr unsigned char inIdentifier = 1;
constexpr unsigned char firstOfIdentifier = 2;
constexpr unsigned char blank = 4;

/// The classes of each byte. The functions of <cctype> depend on the locale, and are undefined for
/// bytes over 127.
constexpr std::array<unsigned char, 256> byteKinds = [] {
    std::array<unsigned char, 256> kinds{};
    const auto mark = [&kinds](unsigned char first, unsigned char last, unsigned char kind) {
        for (unsigned char byte = first; byte <= last; ++byte) {
            kinds[byte] |= kind;
        }
    };
    for (const unsigned char kind : {inIdentifier, firstOfIdentifier}) {
        mark('a', 'z', kind);
        mark('A', 'Z', kind);
        mark('_', '_', kind);
    }
    mark('0', '9', inIdentifier);
    mark('.', '/', inIdentifier);
    mark(' ', ' ', blank);
    mark('\t', '\t', blank);
    return kinds;
}();

bool isOf(char byte, unsigned char kind) {
    return (byteKinds[static_cast<unsigned char>(byte)] & kind) != 0;
}

/// Line breaks are not skipped.
const char* behindBlanks(const char* at) {
    while (isOf(*at, blank)) {
        ++at;
    }
    return at;
}

bool beginsTag(const char* at) {
    return at[0] == '{' && (at[1] == '%' || at[1] == '{');
}

/// Finds a brace, or the end. Inline, because most text costs less to read than a call.
const char* nextBrace(const char* at) {
    for (const char* const few = at + 8; at != few; ++at) {
        if (*at == '{' || *at == '\0') {
            return at;
        }
    }
    const char* const brace = std::strchr(at, '{');
    return brace == nullptr ? at + std::strlen(at) : brace;
}

} // namespace

template_grammar::template_grammar(const char* text) : begin_(text), position_(text) {}

bool template_grammar::parse(content_list& list) {
    const bool matched = start();
    build(list, top_level_count_ - (open_.empty() ? 0 : 1)); // an open block is not complete
    return matched;
}

bool template_grammar::buildPart(content_list& list) {
    constexpr std::uint32_t most = 64; // they are still in the processor's cache when rendered
    const std::uint32_t count = std::min(top_level_count_, most);
    if (count == 0) {
        return false;
    }
    build(list, count);
    top_level_count_ -= count;
    return true;
}

// start = content end
bool template_grammar::start() {
    while (content_rule()) {
    }
    return *position_ == '\0' && open_.empty();
}

// content_rule = text_rule | expr_rule
// Matches both, because text is followed by a tag or the end. Returns false if no tag matches.
bool template_grammar::content_rule() {
    text_rule();
    return expr_rule();
}

// text_rule = { byte that begins neither "{%" nor "{{" }, one or more
void template_grammar::text_rule() {
    const char* const begin = position_;
    while (*position_ != '\0' && !beginsTag(position_)) {
        position_ = nextBrace(position_ + 1);
    }
    if (position_ != begin) {
        add(step_kind::text, spanFrom(begin), 0);
    }
}

// expr_rule = if_rule | for_rule | replace_rule | include_rule
// Also matches the tags that may follow the content of an open block. The beginning of a tag
// determines the only rule that can match it. A rule that fails consumes nothing.
bool template_grammar::expr_rule() {
    const char* const begin = position_;
    if (*begin == '\0') {
        return false;
    }
    assert(beginsTag(begin));
    position_ += 2;
    const bool matched = begin[1] == '{' ? replace_rule() : keyword_rule();
    if (!matched) {
        position_ = begin;
    }
    return matched;
}

/// The rest of a tag that begins with "{%".
bool template_grammar::keyword_rule() {
    switch (*behindBlanks(position_)) {
    case 'i':
        return literal("if") ? if_rule() : literal("include") && include_rule();
    case 'f':
        return literal("for") && for_rule();
    case 'e':
        return !open_.empty() && (else_tag() || end_tag());
    default:
        return false;
    }
}

// if_rule = "{%" "if" identifier "%}" content [ "{%" "else" "%}" content ] "{%" "endif" "%}"
// Matches the rest of the opening tag; the other tags are matched after the content.
bool template_grammar::if_rule() {
    span name{};
    if (!identifier_rule(name)) {
        return missing(SyntaxExpectation::IfName);
    }
    if (!literal("%}")) {
        return missing(SyntaxExpectation::IfEnd);
    }
    open(step_kind::open_if, name, {},
         record_memory::sizeOf<if_expr>() + record_memory::sizeOfList());
    return true;
}

// for_rule = "{%" "for" identifier "in" identifier "%}" content "{%" "endfor" "%}"
// Matches the rest of the opening tag, as in if_rule().
bool template_grammar::for_rule() {
    span variable{};
    span list_name{};
    if (!identifier_rule(variable)) {
        return missing(SyntaxExpectation::ForVariable);
    }
    if (!literal("in")) {
        return missing(SyntaxExpectation::ForIn);
    }
    if (!identifier_rule(list_name)) {
        return missing(SyntaxExpectation::ForList);
    }
    if (!literal("%}")) {
        return missing(SyntaxExpectation::ForEnd);
    }
    open(step_kind::open_for, variable, list_name,
         record_memory::sizeOf<for_expr>() + record_memory::sizeOfList());
    return true;
}

// replace_rule = "{{" identifier "}}"
bool template_grammar::replace_rule() {
    span name{};
    if (!identifier_rule(name)) {
        return missing(SyntaxExpectation::SubstitutionName);
    }
    if (!literal("}}")) {
        return missing(SyntaxExpectation::SubstitutionEnd);
    }
    add(step_kind::replace, name, record_memory::sizeOf<replace_expr>());
    return true;
}

// include_rule = "{%" "include" '"' identifier '"' "%}"
bool template_grammar::include_rule() {
    span path{};
    if (!literal("\"")) {
        return missing(SyntaxExpectation::IncludeOpeningQuote);
    }
    if (!identifier_rule(path)) {
        return missing(SyntaxExpectation::IncludePath);
    }
    if (!literal("\"")) {
        return missing(SyntaxExpectation::IncludeClosingQuote);
    }
    if (!literal("%}")) {
        return missing(SyntaxExpectation::IncludeEnd);
    }
    add(step_kind::include, path, record_memory::sizeOf<include_expr>());
    return true;
}

// identifier_rule = [a-zA-Z_] { [a-zA-Z_0-9./] }
bool template_grammar::identifier_rule(span& found) {
    const char* const begin = behindBlanks(position_);
    if (!isOf(*begin, firstOfIdentifier)) {
        return false;
    }
    position_ = begin + 1;
    while (isOf(*position_, inIdentifier)) {
        ++position_;
    }
    found = spanFrom(begin);
    return true;
}

bool template_grammar::else_tag() {
    open_block& innermost = open_.back();
    const char* const begin = position_;
    if (innermost.kind != step_kind::open_if || innermost.in_else || !literal("else")) {
        return false;
    }
    if (!literal("%}")) {
        missing(SyntaxExpectation::ElseEnd);
        position_ = begin;
        return false;
    }
    innermost.in_else = true;
    record_bytes_ += record_memory::sizeOfList();
    steps_.push_back({step_kind::other, {}});
    return true;
}

bool template_grammar::end_tag() {
    const bool closes_loop = open_.back().kind == step_kind::open_for;
    if (!(closes_loop ? literal("endfor") : literal("endif"))) {
        return false;
    }
    if (!literal("%}")) {
        return missing(closes_loop ? SyntaxExpectation::EndForEnd : SyntaxExpectation::EndIfEnd);
    }
    open_.pop_back();
    steps_.push_back({step_kind::close, {}});
    return true;
}

/// Matches `expected` after optional spaces and tabs.
template <std::size_t Size>
bool template_grammar::literal(const char (&expected)[Size]) {
    const char* at = behindBlanks(position_);
    for (std::size_t index = 0; index + 1 < Size; ++index, ++at) {
        if (*at != expected[index]) {
            return false;
        }
    }
    position_ = at;
    return true;
}

template_grammar::span template_grammar::spanFrom(const char* begin) const {
    return {static_cast<std::uint32_t>(begin - begin_),
            static_cast<std::uint32_t>(position_ - begin)};
}

/// Records a node, and counts it in its list.
void template_grammar::add(step_kind kind, span text, std::size_t record_bytes) {
    steps_.push_back({kind, text});
    record_bytes_ += record_bytes + sizeof(content);
    if (open_.empty()) {
        ++top_level_count_;
    } else {
        const open_block& parent = open_.back();
        ++(parent.in_else ? parent.counts->else_count : parent.counts->count);
    }
}

void template_grammar::open(step_kind kind, span text, span list_name, std::size_t record_bytes) {
    add(kind, text, record_bytes);
    open_.push_back({kind, &blocks_.push_back({list_name, 0, 0})});
}

/// Records what was expected after spaces and tabs. Returns false, as the result of the rule.
bool template_grammar::missing(SyntaxExpectation expected) {
    missing_ = {expected, static_cast<std::uint32_t>(behindBlanks(position_) - begin_)};
    return false;
}

/// Appends the next `count` top-level nodes to `list`, and removes their steps.
void template_grammar::build(content_list& list, std::uint32_t count) {
    struct level {
        content_list* nodes;
        if_expr* conditional = nullptr; // the owner of an `else`
        std::uint32_t else_count = 0;
    };
    boost::container::small_vector<level, 4> enclosing;
    level current = {&list};
    const record_memory memory(record_bytes_ + record_memory::sizeOfList());
    list.reserve(list.size() + count);
    for (; count > 0; count -= enclosing.empty() ? 1u : 0u) {
        const step next = steps_.take();
        const std::string_view text = textOf(next.text);
        switch (next.kind) {
        case step_kind::text:
            current.nodes->emplace_back(std::string(text));
            break;
        case step_kind::replace:
            current.nodes->emplace_back(replace_expr{std::string(text)});
            break;
        case step_kind::include:
            current.nodes->emplace_back(include_expr{std::string(text)});
            break;
        case step_kind::open_if: {
            const block opens = blocks_.take();
            current.nodes->emplace_back(); // an empty if_expr
            auto* opened = boost::get<if_expr>(&current.nodes->back());
            opened->name = text;
            opened->then_list.reserve(opens.count);
            enclosing.push_back(current);
            current = {&opened->then_list, opened, opens.else_count};
            break;
        }
        case step_kind::open_for: {
            const block opens = blocks_.take();
            current.nodes->emplace_back(
                for_expr{{}, std::string(text), std::string(textOf(opens.list_name))});
            auto* opened = boost::get<for_expr>(&current.nodes->back());
            opened->body.reserve(opens.count);
            enclosing.push_back(current);
            current = {&opened->body};
            break;
        }
        case step_kind::other:
            assert(current.conditional != nullptr); // a loop has no `else`
            current.nodes = &current.conditional->else_list;
            current.nodes->reserve(current.else_count);
            break;
        case step_kind::close:
            assert(!enclosing.empty());
            current = enclosing.back();
            enclosing.pop_back();
            break;
        }
    }
}

} // namespace kel::Stencilor::internal
