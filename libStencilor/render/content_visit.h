#ifndef LIBSTENCILOR_RENDER_CONTENT_VISIT_H
#define LIBSTENCILOR_RENDER_CONTENT_VISIT_H

#include <libStencilor/context/context_access.h>
#include <libStencilor/host/byte_text.h>
#include <libStencilor/host/trace.h>
#include <libStencilor/render/messages.h>
#include <libStencilor/render/scopes.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/container/small_vector.hpp>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/static_visitor.hpp>

#include <cassert>
#include <cstddef>
#include <forward_list>
#include <string>
#include <typeinfo>

namespace kel::Stencilor::internal {

/// `value` as a `Kind`, or null. Hosts may derive from the kinds, but the exact type is tested
/// first, by the address of its type information, because this is much faster and nearly always
/// correct.
template <typename Kind>
const Kind* as(const ContextBase* value) {
    if (&typeid(*value) == &typeid(Kind)) {
        return static_cast<const Kind*>(value);
    }
    return dynamic_cast<const Kind*>(value);
}

/// Renders the nodes of one template, with one operation per kind of node.
///
/// How it works: the operations of the two blocks only push the block onto a stack in this object,
/// from which its body is rendered, so nesting does not use the call stack. Loop variables are only
/// in force within one template; an included one is rendered by another object, with the same
/// scopes. `Call`, of which each template has its own, defines what differs between the two
/// interfaces: the destination of text and messages, the lookup of names, the effect of an include,
/// and what is counted.
/// Ownership: borrows the call, the scopes, and the nodes while it renders them.
/// Errors: what cannot be rendered produces one message and no text. After an exception, neither
///   this object nor the scopes can be used.
/// Copying: not possible, because it represents one position in one template.
template <typename Call>
class content_visit : public boost::static_visitor<> {
  public:
    content_visit(Call& call, scope_stack& scopes) : call_(call), scopes_(scopes) {}
    content_visit(const content_visit&) = delete;
    content_visit& operator=(const content_visit&) = delete;

    /// Renders one node and everything below it.
    void dispatch(const content& node);

    void operator()(const if_expr& node);
    void operator()(const for_expr& node);
    void operator()(const replace_expr& node);
    void operator()(const include_expr& node);
    void operator()(const std::string& text);

  private:
    /// A block that is being rendered, with the position in it and, for a loop, the iteration.
    struct block {
        scope_stack::position scope = 0;
        const content* next = nullptr; // in the current list
        const content* end = nullptr;

        const for_expr* loop = nullptr; // null for a conditional
        const ContextIterable* elements = nullptr;
        std::size_t index = 0;
    };

    template <typename Kind, typename Record>
    const Kind* find(const std::string& name, const Record& node, fault notFound, fault wrongKind);
    bool renderLeaf(const content& node);
    const content* renderLeaves(const content* next, const content* end);
    void beginTrace(const trace_point& point);
    void endTrace();
    void enterList(block& current, const content_list& list, const ContextBase* scope);
    bool enterNextIteration(block& loop);
    bool renderToNextBlock(block& current);
    void renderOpenBlocks();
    void closeBlock(const block& current);

    Call& call_;
    scope_stack& scopes_;
    boost::container::small_vector<block, 4> blocks_; // the open blocks

    // Tested once, because most nodes take little more time than the test. With another base
    // library, which may observe the test, each scope tests it.
    const bool traced_ = !byte_text<String> || trace_scope::isEnabled();
    std::forward_list<trace_scope> traces_; // innermost first, which is also the order of closing
};

// Most nodes take less time than a call, so everything that is done for each node or iteration is
// inline, as are the lookups.

template <typename Call>
inline void content_visit<Call>::dispatch(const content& node) {
    if (!renderLeaf(node)) {
        call_.beginNode(node);
        boost::apply_visitor(*this, node);
        if (!blocks_.empty()) {
            renderOpenBlocks();
        }
    }
}

/// Renders text or a substitution. Nearly all nodes are one of these, and testing for them is
/// faster than dispatching on five kinds. Returns false for the others. (With `get`, which checks
/// more at compile time, the compiler inlines less well.)
template <typename Call>
inline bool content_visit<Call>::renderLeaf(const content& node) {
    if (const auto* text = boost::relaxed_get<std::string>(&node)) {
        call_.beginNode(node);
        (*this)(*text);
        return true;
    }
    if (const auto* substitution = boost::relaxed_get<replace_expr>(&node)) {
        call_.beginNode(node);
        (*this)(*substitution);
        return true;
    }
    return false;
}

/// Renders the nodes up to one that is neither text nor a substitution, and returns that, or the
/// end.
template <typename Call>
inline const content* content_visit<Call>::renderLeaves(const content* next, const content* end) {
    while (next != end && renderLeaf(*next)) {
        ++next;
    }
    return next;
}

template <typename Call>
inline void content_visit<Call>::operator()(const std::string& text) {
    beginTrace(trace_points::visitString);
    call_.appendText(text);
    endTrace();
}

template <typename Call>
inline void content_visit<Call>::operator()(const replace_expr& node) {
    beginTrace(trace_points::visitReplace);
    const auto* string = find<ContextString>(node.name, node, fault::replacementNotFound,
                                             fault::replacementNotString);
    if (string != nullptr) {
        call_.appendValue(*string);
    }
    endTrace();
}

template <typename Call>
void content_visit<Call>::operator()(const if_expr& node) {
    beginTrace(trace_points::visitIf);
    const auto* boolean =
        find<ContextBoolean>(node.name, node, fault::booleanNotFound, fault::notBoolean);
    if (boolean == nullptr) {
        endTrace();
        return;
    }
    block opened;
    enterList(opened, context_access::isTrue(*boolean) ? node.then_list : node.else_list, boolean);
    opened.next = renderLeaves(opened.next, opened.end);
    if (opened.next != opened.end) {
        blocks_.push_back(opened);
    } else {
        closeBlock(opened);
    }
}

template <typename Call>
void content_visit<Call>::operator()(const for_expr& node) {
    beginTrace(trace_points::visitFor);
    const auto* iterable =
        find<ContextIterable>(node.list_name, node, fault::listNotFound, fault::notIterable);
    if (iterable == nullptr || context_access::elements(*iterable).empty()) {
        endTrace();
        return;
    }
    block& opened = blocks_.emplace_back();
    opened.loop = &node;
    opened.elements = iterable;
    call_.enterLoop(node.variable);
    call_.beginIteration(node);
    enterList(opened, node.body, context_access::elements(*iterable)[0]);
}

template <typename Call>
void content_visit<Call>::operator()(const include_expr& node) {
    beginTrace(trace_points::visitInclude);
    call_.include(node, scopes_);
    endTrace();
}

template <typename Call>
inline void content_visit<Call>::beginTrace(const trace_point& point) {
    if (traced_) {
        traces_.emplace_front(point);
    }
}

/// Ends the newest trace.
template <typename Call>
inline void content_visit<Call>::endTrace() {
    if (traced_) {
        traces_.pop_front();
    }
}

/// The value of `name` if it is a `Kind`; otherwise null, with a message.
template <typename Call>
template <typename Kind, typename Record>
inline const Kind* content_visit<Call>::find(const std::string& name, const Record& node,
                                             fault notFound, fault wrongKind) {
    const ContextBase* found = call_.find(scopes_, name, node);
    if (found == nullptr) {
        call_.report(notFound, name, node);
        return nullptr;
    }
    const Kind* value = as<Kind>(found);
    if (value == nullptr) {
        call_.report(wrongKind, name, node);
    }
    return value;
}

/// The beginning of `applyVisitor`, for a list of an open block.
template <typename Call>
inline void content_visit<Call>::enterList(block& current, const content_list& list,
                                           const ContextBase* scope) {
    beginTrace(trace_points::applyVisitor);
    current.scope = scopes_.enter(scope);
    current.next = list.data();
    current.end = current.next + list.size();
}

/// Enters the body of a loop for its next element. Returns false if there is none. The language
/// requires reading the number of elements on each iteration.
template <typename Call>
inline bool content_visit<Call>::enterNextIteration(block& loop) {
    const auto& elements = context_access::elements(*loop.elements);
    if (++loop.index >= elements.size()) {
        return false;
    }
    call_.beginIteration(*loop.loop);
    endTrace();
    beginTrace(trace_points::applyVisitor);
    loop.scope = scopes_.replace(loop.scope, elements[loop.index]);
    loop.next = loop.loop->body.data();
    return true;
}

/// Renders the rest of the list, or the part before the next block in it. Returns true if a block
/// was opened.
template <typename Call>
inline bool content_visit<Call>::renderToNextBlock(block& current) {
    const std::size_t depth = blocks_.size();
    const content* const end = current.end;
    for (const content* next = renderLeaves(current.next, end); next != end;
         next = renderLeaves(next + 1, end)) {
        current.next = next + 1;
        call_.beginNode(*next);
        boost::apply_visitor(*this, *next);
        if (blocks_.size() != depth) {
            return true;
        }
    }
    return false;
}

template <typename Call>
void content_visit<Call>::renderOpenBlocks() {
    while (!blocks_.empty()) {
        block& current = blocks_.back();
        const bool goesOn =
            renderToNextBlock(current) || (current.loop != nullptr && enterNextIteration(current));
        if (!goesOn) {
            closeBlock(current);
            blocks_.pop_back();
        }
    }
}

/// Ends a block after the last rendering of its list.
template <typename Call>
inline void content_visit<Call>::closeBlock(const block& current) {
    scopes_.leave(current.scope);
    if (current.loop != nullptr) {
        call_.leaveLoop();
    }
    endTrace(); // of applyVisitor
    endTrace(); // of the block
}

/// Renders the nodes of an included template, in a scope without names and without loop variables.
template <typename Call>
void applyVisitor(const content_list& list, scope_stack& scopes, Call& call) {
    const trace_scope trace(trace_points::applyVisitor);
    content_visit<Call> visitor(call, scopes);
    const scope_stack::position before = scopes.enter(nullptr);
    for (const content& node : list) {
        visitor.dispatch(node);
    }
    scopes.leave(before);
}

} // namespace kel::Stencilor::internal

#endif
