#include <libStencilor/context/context_access.h>
#include <libStencilor/render/scopes.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

/// The value that `scope` itself holds under `key`; null if there is none, or a null one.
const ContextBase* childOf(const ContextBase& scope, const String& key) {
    const auto& children = context_access::children(scope);
    const auto found = children.find(key);
    return found == children.end() ? nullptr : found->second;
}

} // namespace

scope_stack::position scope_stack::enter(const ContextBase* scope) {
    if (scope == nullptr || context_access::children(*scope).empty()) {
        return std::nullopt;
    }
    return scopes_.enter(scope);
}

void scope_stack::leave(position before) {
    if (before) {
        scopes_.leave(*before);
    }
}

std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? variable.size() + 1 : 0;
}

const ContextBase* name_lookup::findInScopes(const scope_stack& scopes, const std::string& name,
                                             const prefix_stack& prefixes) {
    collectStarts(name, prefixes);
    keys_.clear();
    for (auto scope = scopes.newestFirst(); scope != scopes.end(); ++scope) {
        if (const ContextBase* found = findInScope(**scope, name)) {
            return found;
        }
    }
    return nullptr;
}

/// Trying a key twice in one scope finds nothing new, so each is kept once. No more than one key
/// starts behind each dot; all others are the whole name.
void name_lookup::collectStarts(std::string_view name, const prefix_stack& prefixes) {
    starts_.clear();
    const auto add = [this](std::size_t start) {
        if (std::find(starts_.begin(), starts_.end(), start) == starts_.end()) {
            starts_.push_back(start);
        }
    };
    if (!prefixes.empty() && name.find('.') != std::string_view::npos) {
        for (auto prefix = prefixes.newestFirst(); prefix != prefixes.end(); ++prefix) {
            add(prefixLength(name, *prefix));
        }
    }
    add(0);
}

const ContextBase* name_lookup::findInScope(const ContextBase& scope, const std::string& name) {
    for (std::size_t index = 0; index < starts_.size(); ++index) {
        if (index == keys_.size()) {
            keys_.emplace_back(name.c_str() + starts_[index]);
        }
        if (const ContextBase* found = childOf(scope, keys_[index])) {
            return found;
        }
    }
    return nullptr;
}

} // namespace kel::Stencilor::internal
