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

/// The grammar, with one function per rule. An object parses one template.
///
/// How it works: the first pass recognizes the template and records a flat queue of steps, with its
/// own stack of open blocks. The second pass builds the tree from the steps. It knows the number of
/// nodes in each list, so no list ever grows; growing would reallocate and move nodes.
/// Ownership: borrows the text, which must outlive the object. Lengths have 32 bits, as in
///   `kel::String`. The text is NUL-terminated. No rule inside a tag accepts NUL, so only
///   `text_rule` checks for it.
/// Copying: not possible, because the rules share one position.
///
/// Rules (spaces and tabs before a quoted literal or an identifier are skipped):
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
///     identifier = a-zA-Z_ { a-zA-Z_0-9./ }, greedy, nothing skipped
///
/// A literal matches regardless of what follows: `{% iffy %}` is an `if` on `fy`.
class template_grammar {
  public:
    explicit template_grammar(const char* text);
    template_grammar(const template_grammar&) = delete;
    template_grammar& operator=(const template_grammar&) = delete;

    /// Appends the top-level nodes to `list`. Returns false if the text is malformed; the list then
    /// receives the complete nodes before the fault.
    bool parse(content_list& list);

    /// Used instead of `parse`: true if the text is well formed. Then each call of `buildPart`
    /// appends the next few top-level nodes to `list`; it returns false if there are none left.
    bool recognize() { return start(); }
    bool buildPart(content_list& list);

    /// Used instead of `parse`: passes the parts to `visitor`, and returns the fault.
    SyntaxFault report(SyntaxVisitor& visitor);

  private:
    enum class step_kind : std::uint8_t { text, replace, include, open_if, open_for, other, close };

    struct span {
        std::uint32_t begin;
        std::uint32_t size;
    };

    struct step {
        step_kind kind;
        span text; // text, a name, a path or a loop variable
    };

    /// Additional data of a block, in the order of the opening tags.
    struct block {
        span list_name;           // of a loop
        std::uint32_t count;      // nodes in the body
        std::uint32_t else_count; // nodes in the `else` part
    };

    struct open_block {
        step_kind kind;
        block* counts;
        bool in_else = false;
    };

    /// The missing part of a tag. It is only recorded if nothing else can match the tag, so that it
    /// costs well-formed templates nothing.
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
    void build(content_list& list, std::uint32_t count);

    class reporter;
    std::string_view textOf(span part) const { return {begin_ + part.begin, part.size}; }

    const char* begin_;
    const char* position_;
    // A small template is parsed without allocations except for its nodes.
    piecewise_queue<step, 32> steps_;
    piecewise_queue<block, 4> blocks_;
    boost::container::small_vector<open_block, 4> open_;
    std::uint32_t top_level_count_ = 0;
    std::size_t record_bytes_ = 0; // the memory for the records and lists of all steps
    missing_part missing_;
};

} // namespace kel::Stencilor::internal

#endif
