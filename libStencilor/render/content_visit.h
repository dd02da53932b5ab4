#ifndef LIBSTENCILOR_RENDER_CONTENT_VISIT_H
#define LIBSTENCILOR_RENDER_CONTENT_VISIT_H

#include <libStencilor/host/trace.h>
#include <libStencilor/render/render_result.h>
#include <libStencilor/render/scopes.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/container/small_vector.hpp>
#include <boost/variant/static_visitor.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace kel::Stencilor::internal {

/// Renders nodes: one operation for each kind.
///
/// How it works: the operations of the two blocks only open the block, on a stack of the object's
///   own; what stands inside is rendered from there, so that nesting takes no call stack. Loop
///   variables hold within one template: an included one is rendered by an object of its own, with
///   the same scopes.
/// Ownership: borrows the scopes and the result, which it appends to, and the nodes while it
///   renders them.
/// Errors: what cannot be rendered adds one message to the result and no text. After an exception
///   (memory exhaustion) neither this object nor the scopes may be used again.
/// Copying: not possible, it stands for one place in one template.
class content_visit : public boost::static_visitor<> {
  public:
    content_visit(scope_stack& scopes, render_result& result) : scopes_(scopes), result_(result) {}
    content_visit(const content_visit&) = delete;
    content_visit& operator=(const content_visit&) = delete;
    ~content_visit();

    /// Renders one node and all below it.
    void dispatch(const content& node);

    void operator()(const if_expr& node);
    void operator()(const for_expr& node);
    inline void operator()(const replace_expr& node);
    void operator()(const include_expr& node);
    inline void operator()(const std::string& text);

  private:
    /// A block that is being rendered: how far, and for a loop also which turn.
    struct block {
        std::optional<trace_scope> visit;
        std::optional<trace_scope> apply;
        scope_stack::position scope = 0;
        const content* next = nullptr; // of the list that is rendered
        const content* end = nullptr;

        const for_expr* loop = nullptr; // null for a conditional, which has one turn
        const ContextIterable* elements = nullptr;
        unsigned int turn = 0;
        prefix_stack::position prefix = 0;
    };

    template <typename Kind>
    const Kind* find(const std::string& name, const message& notFound, const message& wrongKind);
    inline block& enterBlock(const trace_point& point);
    inline void leaveBlock();
    inline void enterList(block& current, const content_list& list, const ContextBase* scope);
    inline void enterTurn(block& loop);
    inline void leaveList(block& current);
    bool renderToNextBlock(block& current);
    void renderOpenBlocks();

    scope_stack& scopes_;
    render_result& result_;
    prefix_stack prefixes_;
    name_lookup lookup_;

    // The first depth_ of them are open. Those that were left are used again. Each stands apart,
    // since traced scopes cannot move.
    boost::container::small_vector<std::unique_ptr<block>, 4> blocks_;
    std::size_t depth_ = 0;
};

/// Renders the nodes of `list` inside the scope `scope`, which may be null, without a loop variable
/// in force.
void applyVisitor(const content_list& list, const ContextBase* scope, scope_stack& scopes,
                  render_result& result);

} // namespace kel::Stencilor::internal

#endif
