#ifndef LIBSTENCILOR_RENDER_CONTENT_VISIT_H
#define LIBSTENCILOR_RENDER_CONTENT_VISIT_H

#include <libStencilor/context/context_access.h>
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
#include <memory>
#include <optional>
#include <string>
#include <typeinfo>

namespace kel::Stencilor::internal {

/// `value` as a `Kind`, or null. Hosts may derive from the kinds; the exact type is tested first
/// because that is much cheaper and nearly always right.
template <typename Kind>
const Kind* as(const ContextBase* value) {
    if (typeid(*value) == typeid(Kind)) {
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
    ~content_visit();

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
        std::optional<trace_scope> visit;
        std::optional<trace_scope> apply;
        scope_stack::position scope = 0;
        const content* next = nullptr; // of the list that is rendered
        const content* end = nullptr;

        const for_expr* loop = nullptr; // null for a conditional, which is rendered once
        const ContextIterable* elements = nullptr;
        std::size_t index = 0;
    };

    template <typename Kind, typename Record>
    const Kind* find(const std::string& name, const Record& node, fault notFound, fault wrongKind);
    block& enterBlock(const trace_point& point);
    void leaveBlock();
    void enterList(block& current, const content_list& list, const ContextBase* scope);
    bool enterNextIteration(block& loop);
    bool renderToNextBlock(block& current);
    void renderOpenBlocks();
    void closeBlock(block& current);

    Call& call_;
    scope_stack& scopes_;

    // The first depth_ of them are open. Those that were left are used again. Each is allocated
    // apart, since traced scopes cannot move.
    boost::container::small_vector<std::unique_ptr<block>, 4> blocks_;
    std::size_t depth_ = 0;
};

// Most nodes take less time than a call would: what is done for each node and each iteration is
// inline, and so are the lookups.

/// Where an exception passes, the traced scopes still close innermost first.
template <typename Call>
content_visit<Call>::~content_visit() {
    while (depth_ > 0) {
        leaveBlock();
    }
}

template <typename Call>
void content_visit<Call>::dispatch(const content& node) {
    call_.beginNode(node);
    boost::apply_visitor(*this, node);
    if (depth_ > 0) {
        renderOpenBlocks();
    }
}

template <typename Call>
inline void content_visit<Call>::operator()(const std::string& text) {
    const trace_scope trace(trace_points::visitString);
    call_.appendText(text);
}

template <typename Call>
void content_visit<Call>::operator()(const replace_expr& node) {
    const trace_scope trace(trace_points::visitReplace);
    const auto* string = find<ContextString>(node.name, node, fault::replacementNotFound,
                                             fault::replacementNotString);
    if (string != nullptr) {
        call_.appendValue(*string);
    }
}

template <typename Call>
void content_visit<Call>::operator()(const if_expr& node) {
    block& opened = enterBlock(trace_points::visitIf);
    const auto* boolean =
        find<ContextBoolean>(node.name, node, fault::booleanNotFound, fault::notBoolean);
    if (boolean == nullptr) {
        leaveBlock();
        return;
    }
    opened.loop = nullptr;
    enterList(opened, context_access::isTrue(*boolean) ? node.then_list : node.else_list, boolean);
}

template <typename Call>
void content_visit<Call>::operator()(const for_expr& node) {
    block& opened = enterBlock(trace_points::visitFor);
    const auto* iterable =
        find<ContextIterable>(node.list_name, node, fault::listNotFound, fault::notIterable);
    if (iterable == nullptr || context_access::elements(*iterable).empty()) {
        leaveBlock();
        return;
    }
    opened.loop = &node;
    opened.elements = iterable;
    opened.index = 0;
    call_.enterLoop(node.variable);
    call_.beginIteration(node);
    enterList(opened, node.body, context_access::elements(*iterable)[0]);
}

template <typename Call>
void content_visit<Call>::operator()(const include_expr& node) {
    const trace_scope trace(trace_points::visitInclude);
    call_.include(node, scopes_);
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

template <typename Call>
inline typename content_visit<Call>::block&
content_visit<Call>::enterBlock(const trace_point& point) {
    if (depth_ == blocks_.size()) {
        blocks_.push_back(std::make_unique<block>());
    }
    block& opened = *blocks_[depth_++];
    opened.visit.emplace(point);
    return opened;
}

/// Closes the traced scopes of the innermost block.
template <typename Call>
inline void content_visit<Call>::leaveBlock() {
    assert(depth_ > 0);
    block& closed = *blocks_[--depth_];
    closed.apply.reset();
    closed.visit.reset();
}

/// What `applyVisitor` does at its beginning, for a list of an open block.
template <typename Call>
inline void content_visit<Call>::enterList(block& current, const content_list& list,
                                           const ContextBase* scope) {
    current.apply.emplace(trace_points::applyVisitor);
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
    loop.apply.emplace(trace_points::applyVisitor);
    loop.scope = scopes_.replace(loop.scope, elements[loop.index]);
    loop.next = loop.loop->body.data();
    return true;
}

/// Renders what is left of the list, or what precedes the next block in it. True if a block was
/// opened.
template <typename Call>
inline bool content_visit<Call>::renderToNextBlock(block& current) {
    const std::size_t depth = depth_;
    const content* next = current.next;
    const content* const end = current.end;
    while (next != end) {
        const content& node = *next++;
        call_.beginNode(node);
        // At least half of the nodes are texts, and one test is quicker than choosing among five
        // kinds. (get, which checks more at compile time, makes the compiler place calls worse.)
        if (const auto* text = boost::relaxed_get<std::string>(&node)) {
            (*this)(*text);
            continue;
        }
        current.next = next;
        boost::apply_visitor(*this, node);
        if (depth_ != depth) {
            return true;
        }
    }
    return false;
}

template <typename Call>
void content_visit<Call>::renderOpenBlocks() {
    while (depth_ > 0) {
        block& current = *blocks_[depth_ - 1];
        const bool goesOn =
            renderToNextBlock(current) || (current.loop != nullptr && enterNextIteration(current));
        if (!goesOn) {
            closeBlock(current);
        }
    }
}

/// Ends a block whose list is rendered, and was rendered for the last time.
template <typename Call>
inline void content_visit<Call>::closeBlock(block& current) {
    scopes_.leave(current.scope);
    if (current.loop != nullptr) {
        call_.leaveLoop();
    }
    leaveBlock();
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
