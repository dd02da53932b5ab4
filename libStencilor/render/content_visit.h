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

/// `value` as a `Kind`, or null. Hosts may derive from the kinds; the exact type is tested first,
/// by the address of what describes it, because that is much cheaper and nearly always right.
template <typename Kind>
const Kind* as(const ContextBase* value) {
    if (&typeid(*value) == &typeid(Kind)) {
        return static_cast<const Kind*>(value);
    }
    return dynamic_cast<const Kind*>(value);
}

/// Renders the nodes of one template: one operation for each kind of node.
///
/// How it works: the operations of the two blocks only open the block, on a stack of the object's
///   own; its body is rendered from there, so that nesting takes no call stack. Loop variables hold
///   within one template: an included one is rendered by an object of its own, with the same
///   scopes.
/// What differs between the ways to render is in `Call`, which is made for one template, too:
///   where text and messages go, how names are found, what an inclusion does, and what is counted.
/// Ownership: borrows the call, the scopes, and the nodes while it renders them.
/// Errors: what cannot be rendered is one message to the call and no text. After an exception
///   neither this object nor the scopes may be used again.
/// Copying: not possible, it represents one place in one template.
template <typename Call>
class content_visit : public boost::static_visitor<> {
  public:
    content_visit(Call& call, scope_stack& scopes) : call_(call), scopes_(scopes) {}
    content_visit(const content_visit&) = delete;
    content_visit& operator=(const content_visit&) = delete;

    /// Renders one node and all below it.
    void dispatch(const content& node);

    void operator()(const if_expr& node);
    void operator()(const for_expr& node);
    void operator()(const replace_expr& node);
    void operator()(const include_expr& node);
    void operator()(const std::string& text);

  private:
    /// A block that is being rendered: how far, and for a loop also which iteration.
    struct block {
        scope_stack::position scope = 0;
        const content* next = nullptr; // of the list that is rendered
        const content* end = nullptr;

        const for_expr* loop = nullptr; // null for a conditional, which is rendered once
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
    boost::container::small_vector<block, 4> blocks_; // those that are open

    // Asked once, since most nodes take hardly more time than to ask. Another base library sees
    // that it is asked, and is asked by each scope.
    const bool traced_ = !byte_text<String> || trace_scope::isEnabled();
    std::forward_list<trace_scope> traces_; // the innermost first, which is also how they close
};

// Most nodes take less time than a call would: what is done for each node and each iteration is
// inline, and so are the lookups.

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

/// Renders a text or a substitution, which nearly all nodes are: a test is quicker than choosing
/// among five kinds. False for the others. (get, which checks more at compile time, makes the
/// compiler place calls worse.)
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

/// Renders the nodes up to one that is neither a text nor a substitution, and returns that, or the
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

/// The value that `name` refers to, where it is a `Kind`; otherwise null, and a message.
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

/// What `applyVisitor` does at its beginning, for a list of an open block.
template <typename Call>
inline void content_visit<Call>::enterList(block& current, const content_list& list,
                                           const ContextBase* scope) {
    beginTrace(trace_points::applyVisitor);
    current.scope = scopes_.enter(scope);
    current.next = list.data();
    current.end = current.next + list.size();
}

/// Enters the body of a loop for its next element. False if there is none: the number of elements
/// is read on each iteration, as a loop is defined.
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

/// Renders what is left of the list, or what precedes the next block in it. True if a block was
/// opened.
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

/// Ends a block whose list is rendered, and was rendered for the last time.
template <typename Call>
inline void content_visit<Call>::closeBlock(const block& current) {
    scopes_.leave(current.scope);
    if (current.loop != nullptr) {
        call_.leaveLoop();
    }
    endTrace(); // of applyVisitor
    endTrace(); // of the block
}

/// Renders the nodes of an included template: inside a scope that holds no names, without a loop
/// variable in force.
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
