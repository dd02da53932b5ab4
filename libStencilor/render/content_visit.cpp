#include <libStencilor/context/context_access.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/render/inclusion.h>

#include <boost/variant/apply_visitor.hpp>

#include <typeinfo>

namespace kel::Stencilor::internal {

namespace {

/// `value` as a `Kind`, or null. Hosts may derive from the kinds; the exact type is tested first
/// because that is much cheaper and nearly always right.
template <typename Kind>
const Kind* as(const ContextBase* value) {
    if (typeid(*value) == typeid(Kind)) {
        return static_cast<const Kind*>(value);
    }
    return dynamic_cast<const Kind*>(value);
}

} // namespace

/// Where an exception passes, the traced scopes still close innermost first.
content_visit::~content_visit() {
    while (!blocks_.empty()) {
        blocks_.pop_back();
    }
}

void content_visit::dispatch(const content& node) {
    boost::apply_visitor(*this, node);
    renderOpenBlocks();
}

void content_visit::applyVisitor(const content_list& list, const ContextBase* scope) {
    const trace_scope trace(trace_points::applyVisitor);
    const scope_stack::position before = scopes_.enter(scope);
    for (const content& node : list) {
        dispatch(node);
    }
    scopes_.leave(before);
}

void content_visit::operator()(const std::string& text) {
    const trace_scope trace(trace_points::visitString);
    result_.output += text;
}

void content_visit::operator()(const replace_expr& node) {
    const trace_scope trace(trace_points::visitReplace);
    const auto* string = find<ContextString>(node.name, messages::replacementNotFound,
                                             messages::replacementNotString);
    if (string != nullptr) {
        result_.output += context_access::text(*string).getUTF8String().c_str();
    }
}

void content_visit::operator()(const if_expr& node) {
    block& opened = blocks_.emplace_back(trace_points::visitIf);
    const auto* boolean =
        find<ContextBoolean>(node.name, messages::booleanNotFound, messages::notBoolean);
    if (boolean == nullptr) {
        blocks_.pop_back();
        return;
    }
    opened.list = context_access::truth(*boolean) ? &node.then_list : &node.else_list;
    enterList(opened, boolean);
}

void content_visit::operator()(const for_expr& node) {
    block& opened = blocks_.emplace_back(trace_points::visitFor);
    const auto* iterable =
        find<ContextIterable>(node.list_name, messages::listNotFound, messages::notIterable);
    if (iterable == nullptr || iterable->size() == 0) {
        blocks_.pop_back();
        return;
    }
    opened.list = &node.body;
    opened.elements = iterable;
    opened.prefix = prefixes_.enter(node.variable);
    enterTurn(opened);
}

void content_visit::operator()(const include_expr& node) {
    const trace_scope trace(trace_points::visitInclude);
    includeFile(node.path, scopes_, result_);
}

/// The value that `name` stands for, where it is a `Kind`; otherwise null, and a message.
template <typename Kind>
const Kind* content_visit::find(const std::string& name, const message& notFound,
                                const message& wrongKind) {
    const ContextBase* found = lookup_.findInScopes(scopes_, name, prefixes_);
    if (found == nullptr) {
        result_.report(notFound, name);
        return nullptr;
    }
    const Kind* value = as<Kind>(found);
    if (value == nullptr) {
        result_.report(wrongKind, name);
    }
    return value;
}

/// What `applyVisitor` does at its beginning, for the list of an open block.
void content_visit::enterList(block& current, const ContextBase* scope) {
    current.apply.emplace(trace_points::applyVisitor);
    current.scope = scopes_.enter(scope);
    current.next = 0;
}

void content_visit::leaveList(block& current) {
    scopes_.leave(current.scope);
    current.apply.reset();
}

void content_visit::enterTurn(block& loop) {
    enterList(loop, context_access::elements(*loop.elements)[loop.turn]);
}

/// Leaves the innermost block.
void content_visit::leaveBlock() {
    if (blocks_.back().elements != nullptr) {
        prefixes_.leave(blocks_.back().prefix);
    }
    blocks_.pop_back();
}

void content_visit::renderOpenBlocks() {
    while (!blocks_.empty()) {
        block& current = blocks_.back();
        if (current.next < current.list->size()) {
            boost::apply_visitor(*this, (*current.list)[current.next++]);
            continue;
        }
        leaveList(current);
        if (current.elements != nullptr && ++current.turn < current.elements->size()) {
            enterTurn(current);
        } else {
            leaveBlock();
        }
    }
}

} // namespace kel::Stencilor::internal
