#include <libStencilor/context/context_access.h>
#include <libStencilor/render/scopes.h>

#include <algorithm>
#include <functional>
#include <span>
#include <utility>

namespace kel::Stencilor::internal {

namespace {

/// The value that `scope` itself holds under `key`; null if there is none, or a null one.
const ContextBase* childOf(const ContextBase& scope, const String& key) {
    const auto& children = context_access::children(scope);
    const auto found = children.find(key);
    return found == children.end() ? nullptr : found->second;
}

/// The first value that one of `keys` stands for, in the innermost scope that has one.
const ContextBase* findFirst(const scope_stack& scopes, std::span<const String> keys) {
    for (auto scope = scopes.newestFirst(); scope != scopes.end(); ++scope) {
        for (const String& key : keys) {
            if (const ContextBase* found = childOf(**scope, key)) {
                return found;
            }
        }
    }
    return nullptr;
}

/// The keys that `name` is tried as. Trying a key twice in one scope finds nothing new, so each is
/// kept once; they differ in their length.
template <typename Keys>
void collectKeys(const std::string& name, const prefix_stack& prefixes, Keys& keys) {
    keys.clear();
    const auto add = [&name, &keys](std::size_t prefix) {
        String key(name.c_str() + prefix);
        const auto same = [&key](const String& other) { return other.size() == key.size(); };
        if (std::none_of(keys.begin(), keys.end(), same)) {
            keys.push_back(std::move(key));
        }
    };
    if (name.find('.') != std::string::npos) {
        for (auto prefix = prefixes.newestFirst(); prefix != prefixes.end(); ++prefix) {
            add(prefixLength(name, *prefix));
        }
    }
    add(0);
}

} // namespace

std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? variable.size() + 1 : 0;
}

const ContextBase* name_lookup::findInScopes(const scope_stack& scopes, const std::string& name,
                                             const prefix_stack& prefixes) {
    if (prefixes.empty()) {
        const String key(name.c_str());
        return findFirst(scopes, std::span(&key, 1));
    }
    // Nearly always a name has the slot where it belongs.
    const kept_name* kept = slots_ == nullptr ? nullptr : (*slots_)[homeOf(name)].get();
    if (kept == nullptr || kept->name != &name) {
        kept = &keep(name, prefixes);
    }
    return findFirst(scopes, std::span(kept->keys.data(), kept->keys.size()));
}

const name_lookup::kept_name& name_lookup::keep(const std::string& name,
                                                const prefix_stack& prefixes) {
    if (slots_ == nullptr) {
        slots_ = std::make_unique<slot_table>();
    }
    slot& kept = slotOf(name);
    if (kept == nullptr) {
        kept = std::make_unique<kept_name>();
    }
    if (kept->name != &name) {
        kept->name = nullptr; // it belongs to no name while its keys change
        collectKeys(name, prefixes, kept->keys);
        kept->name = &name;
    }
    return *kept;
}

/// The slot that `name` has, else a free one near where it belongs, else one that another loses.
name_lookup::slot& name_lookup::slotOf(const std::string& name) const {
    constexpr std::size_t neighbours = 4;
    const std::size_t home = homeOf(name);
    for (std::size_t next = home; next < home + neighbours; ++next) {
        slot& candidate = (*slots_)[next % slotCount];
        if (candidate == nullptr || candidate->name == &name) {
            return candidate;
        }
    }
    return (*slots_)[home];
}

/// Names are members of records on the heap, which spreads their addresses well enough.
std::size_t name_lookup::homeOf(const std::string& name) noexcept {
    return std::hash<const std::string*>()(&name) / alignof(std::max_align_t) % slotCount;
}

} // namespace kel::Stencilor::internal
