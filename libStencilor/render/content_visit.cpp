#include <libStencilor/context/context_access.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/render/inclusion.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>

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

// Most nodes take less time than a call would: what is done for each node and each turn of a loop
// is inline, and so are the lookups.

/// Where an exception passes, the traced scopes still close innermost first.
content_visit::~content_visit() {
    while (depth_ > 0) {
        leaveBlock();
    }
}

void content_visit::dispatch(const content& node) {
    boost::apply_visitor(*this, node);
    if (depth_ > 0) {
        renderOpenBlocks();
    }
}

void content_visit::operator()(const std::string& text) {
    const trace_scope trace(trace_points::visitString);
    result_.output.append(text);
}

void content_visit::operator()(const replace_expr& node) {
    const trace_scope trace(trace_points::visitReplace);
    const auto* string = find<ContextString>(node.name, messages::replacementNotFound,
                                             messages::replacementNotString);
    if (string != nullptr) {
        result_.output.appendUpToNul(context_access::text(*string).getUTF8String().c_str());
    }
}

void content_visit::operator()(const if_expr& node) {
    block& opened = enterBlock(trace_points::visitIf);
    const auto* boolean =
        find<ContextBoolean>(node.name, messages::booleanNotFound, messages::notBoolean);
    if (boolean == nullptr) {
        leaveBlock();
        return;
    }
    const content_list& list = context_access::truth(*boolean) ? node.then_list : node.else_list;
    if (list.empty()) {
        opened.apply.emplace(trace_points::applyVisitor);
        leaveBlock();
        return;
    }
    opened.loop = nullptr;
    enterList(opened, list, boolean);
}

void content_visit::operator()(const for_expr& node) {
    block& opened = enterBlock(trace_points::visitFor);
    const auto* iterable =
        find<ContextIterable>(node.list_name, messages::listNotFound, messages::notIterable);
    if (iterable == nullptr || context_access::elements(*iterable).empty()) {
        leaveBlock();
        return;
    }
    opened.loop = &node;
    opened.elements = iterable;
    opened.turn = 0;
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

content_visit::block& content_visit::enterBlock(const trace_point& point) {
    if (depth_ == blocks_.size()) {
        blocks_.push_back(std::make_unique<block>());
    }
    block& opened = *blocks_[depth_++];
    opened.visit.emplace(point);
    return opened;
}

/// Closes the traced scopes of the innermost block.
void content_visit::leaveBlock() {
    block& closed = *blocks_[--depth_];
    closed.apply.reset();
    closed.visit.reset();
}

/// What `applyVisitor` does at its beginning, for a list of an open block.
void content_visit::enterList(block& current, const content_list& list, const ContextBase* scope) {
    current.apply.emplace(trace_points::applyVisitor);
    current.scope = scopes_.enter(scope);
    current.next = list.data();
    current.end = current.next + list.size();
}

/// The elements are asked for anew each time: the sink of a host may have added one.
void content_visit::enterTurn(block& loop) {
    enterList(loop, loop.loop->body, context_access::elements(*loop.elements)[loop.turn]);
}

void content_visit::leaveList(block& current) {
    scopes_.leave(current.scope);
    current.apply.reset();
}

/// Renders what is left of the list, or what stands before the next block in it. True if a block
/// was opened.
bool content_visit::renderToNextBlock(block& current) {
    const std::size_t depth = depth_;
    while (current.next != current.end) {
        const content& node = *current.next++;
        // At least half of the nodes are texts, and one test is quicker than choosing among five
        // kinds. (get, which checks more at compile time, makes the compiler place calls worse.)
        if (const auto* text = boost::relaxed_get<std::string>(&node)) {
            (*this)(*text);
            continue;
        }
        boost::apply_visitor(*this, node);
        if (depth_ != depth) {
            return true;
        }
    }
    return false;
}

void content_visit::renderOpenBlocks() {
    while (depth_ > 0) {
        block& current = *blocks_[depth_ - 1];
        if (renderToNextBlock(current)) {
            continue;
        }
        leaveList(current);
        if (current.loop == nullptr) {
            leaveBlock();
        } else if (++current.turn < context_access::elements(*current.elements).size()) {
            enterTurn(current);
        } else {
            prefixes_.leave(current.prefix);
            leaveBlock();
        }
    }
}

void applyVisitor(const content_list& list, const ContextBase* scope, scope_stack& scopes,
                  render_result& result) {
    const trace_scope trace(trace_points::applyVisitor);
    content_visit visitor(scopes, result);
    const scope_stack::position before = scopes.enter(scope);
    for (const content& node : list) {
        visitor.dispatch(node);
    }
    scopes.leave(before);
}

} // namespace kel::Stencilor::internal
