#ifndef LIBSTENCILOR_TEMPLATE_TEMPLATE_GRAMMAR_H
#define LIBSTENCILOR_TEMPLATE_TEMPLATE_GRAMMAR_H

#include <libStencilor/Syntax.h>
#include <libStencilor/template/piecewise_queue.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/container/small_vector.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel::Stencilor::internal {

/// The language, one function per rule, for one parse.
///
/// How it works: a first pass recognises the template and notes what it found as a flat queue of
///   steps, with the open blocks on a stack of its own; a second one builds the tree from the
///   steps. The number of nodes in each list is known by then, so that no list ever grows: a node
///   that moves would have to be allocated again.
/// Ownership: borrows the text, which must outlive the object. Lengths fit in 32 bits, as those of
///   `kel::String` do. The text ends at its NUL, which nothing in a tag matches, so that only text
///   looks for it.
/// Copying: not possible, the rules share one position.
///
/// Rules, where a quoted literal or an identifier skips blanks (space and tab) before it:
///
///     start      = content end
///     content    = { text | expr }
///     text       = one byte or more, up to "{%" or "{{", nothing skipped
///     expr       = if | for | replace | include
///     if         = "{%" "if" identifier "%}" content
///                  [ "{%" "else" "%}" content ]
///                  "{%" "endif" "%}"
///     for        = "{%" "for" identifier "in" identifier "%}" content
///                  "{%" "endfor" "%}"
///     replace    = "{{" identifier "}}"
///     include    = "{%" "include" '"' identifier '"' "%}"
///     identifier = a-zA-Z_ { a-zA-Z_0-9./ }, greedy, no blanks inside
///
/// A literal matches whatever follows it: `{% iffy %}` is an `if` on `fy`.
class template_grammar {
  public:
    explicit template_grammar(const char* text);
    template_grammar(const template_grammar&) = delete;
    template_grammar& operator=(const template_grammar&) = delete;

    /// Appends the top-level nodes to `list`. False if the text is not a template as a whole; the
    /// list then receives the nodes that are complete before the fault.
    bool parse(content_list& list);

    /// In place of `parse`: hands the parts to `visitor`, and tells what is wrong.
    SyntaxFault report(SyntaxVisitor& visitor);

  private:
    enum class step_kind : std::uint8_t { text, replace, include, open_if, open_for, other, close };

    struct span {
        std::uint32_t begin;
        std::uint32_t size;
    };

    struct step {
        step_kind kind;
        span text; // a text, name, path or loop variable
    };

    /// What there is to know of a block beyond its step; in the order of the opening tags.
    struct block {
        span list_name;           // of a loop
        std::uint32_t count;      // nodes in the body
        std::uint32_t else_count; // nodes in the `else` part
    };

    struct open_block {
        step_kind kind;
        std::size_t step; // how many steps there are before its opening tag
        block* counts;
        bool in_else = false;
    };

    /// The part of a tag that was not found. Noted where nothing else can match the tag, so that
    /// templates that are well formed do not pay for it.
    struct missing_part {
        SyntaxExpectation expected = SyntaxExpectation::Nothing;
        std::uint32_t offset = 0;
    };

    bool start();
    inline bool content_rule();
    inline void text_rule();
    inline bool expr_rule();
    inline bool keyword_rule();
    inline bool if_rule();
    bool for_rule();
    inline bool replace_rule();
    bool include_rule();
    inline bool identifier_rule(span& found);

    inline bool else_tag();
    inline bool end_tag();

    template <std::size_t Size>
    inline bool literal(const char (&expected)[Size]);
    inline span spanFrom(const char* begin) const;
    inline void add(step_kind kind, span text, std::size_t record_bytes);
    inline void open(step_kind kind, span text, span list_name, std::size_t record_bytes);
    bool missing(SyntaxExpectation expected);
    void build(content_list& list, std::size_t count);

    class reporter;
    std::string_view textOf(span part) const { return {begin_ + part.begin, part.size}; }

    const char* begin_;
    const char* position_;
    // A small template is parsed without asking for memory but for its nodes.
    piecewise_queue<step, 32> steps_;
    piecewise_queue<block, 4> blocks_;
    boost::container::small_vector<open_block, 4> open_;
    std::uint32_t top_level_count_ = 0;
    std::size_t record_bytes_ = 0; // what the records and lists of all steps take
    missing_part missing_;
};

} // namespace kel::Stencilor::internal

#endif
