#include <libStencilor/modern/metered_call.h>
#include <libStencilor/render/content_visit.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <array>

namespace kel::Stencilor::internal {

namespace {

using Kind = RenderMessage::Kind;

/// One row per fault, in the order of the enumeration.
constexpr std::array kinds{
    Kind::ReplacementNotFound, Kind::ReplacementNotString, Kind::BooleanNotFound,
    Kind::NotBoolean,          Kind::ListNotFound,         Kind::NotIterable,
    Kind::FileNotFound,        Kind::FileNotLoaded,
};
static_assert(kinds.size() == messages.size());

/// The record of a node, or null for text.
struct record_of : boost::static_visitor<const void*> {
    template <typename Record>
    const void* operator()(const Record& record) const {
        return &record;
    }
    const void* operator()(const std::string&) const { return nullptr; }
};

} // namespace

node_place metered_call::place() const {
    const void* const record = boost::apply_visitor(record_of(), *node_);
    return record == nullptr ? placeOfText(in_, *node_)
                             : placeOf(names_.use(record_memory::numberOf(record)));
}

void metered_call::endAtOutputLimit() {
    state_.end(RenderStatus::OutputLimit, in_, place());
}

void metered_call::addMessage(fault reason, const name_use& use) {
    state_.addMessage(kinds[static_cast<std::size_t>(reason)], in_, placeOf(use),
                      names_.nameOf(use));
}

/// `find` for a name that is no longer where it was last found.
const ContextBase* metered_call::search(const scope_stack& scopes, const name_use& use) {
    const name_keys& keys = names_.keysOf(use);
    if (!keys.areAllKept()) {
        return findByAllKeys(scopes, use);
    }
    const auto remembered = [&]() -> outer_search& { return state_.searchOf(keys, use.keys); };
    child_guess& guess = state_.guessOf(use);
    return scopes.findFirst(remembered, [this, &keys, &guess](const ContextBase& scope) {
        const ContextBase* found = nullptr;
        const auto kept = names_.keptKeys(keys);
        for (auto key = kept.begin(); found == nullptr && key != kept.end(); ++key) {
            state_.countKey(in_, [this] { return place(); });
            found = context_access::findChild(scope, *key, guess);
        }
        return found;
    });
}

/// The same if some keys are not stored.
const ContextBase* metered_call::findByAllKeys(const scope_stack& scopes, const name_use& use) {
    const name_keys& keys = names_.keysOf(use);
    const auto kept = names_.keptKeys(keys);
    const auto prefixes = names_.prefixes(keys);
    const std::string_view name = in_.text.view().substr(use.begin, use.size);
    const auto here = [this] { return place(); };
    child_guess& guess = state_.guessOf(use);
    return scopes.findFirst([&](const ContextBase& scope) {
        const ContextBase* found = nullptr;
        for (std::size_t index = 0; found == nullptr && index < prefixes.size(); ++index) {
            state_.countKey(in_, here);
            if (index < kept.size()) {
                found = context_access::findChild(scope, kept[index], guess);
            } else {
                const std::string_view key = name.substr(prefixes[index]);
                state_.countKeyBytes(key.size(), in_, here);
                found = context_access::findChild(scope, String(key), guess);
            }
        }
        return found;
    });
}

void metered_call::include(const include_expr& node, scope_stack& scopes) {
    const name_use& use = useOf(node);
    const included_template& included = state_.findTemplate(use, names_.nameOf(use));
    switch (included.answer) {
    case TemplateSource::Answer::Found:
        renderIncluded(*included.found, use, scopes);
        break;
    case TemplateSource::Answer::Missing:
        report(fault::fileNotFound, node.path, node);
        break;
    case TemplateSource::Answer::Unreadable:
        report(fault::fileNotLoaded, node.path, node);
        break;
    case TemplateSource::Answer::TooLarge:
        state_.end(RenderStatus::TemplateLimit, in_, placeOf(use));
    }
}

void metered_call::renderIncluded(const Template& included, const name_use& use,
                                  scope_stack& scopes) {
    if (!state_.mayInclude()) {
        state_.end(RenderStatus::DepthLimit, in_, placeOf(use));
    }
    const trace_scope trace(trace_points::renderIncluded);
    const parsed_template& parsed = template_access::parsed(included);
    state_.enterInclude(in_, use);
    if (parsed.names) {
        text_.beginIncluded(parsed.isUtf8);
        metered_call call({state_, text_, escape_}, parsed);
        applyVisitor(parsed.tree.nodes, scopes, call);
    } else if (state_.wantsMessage()) {
        state_.addMessage(Kind::TemplateRejected, parsed, parsed.faultPlace);
    }
    state_.leaveInclude();
}

} // namespace kel::Stencilor::internal
