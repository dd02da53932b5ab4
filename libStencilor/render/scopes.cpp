#include <libStencilor/host/byte_text.h>
#include <libStencilor/render/scopes.h>

#include <algorithm>
#include <span>
#include <utility>

namespace kel::Stencilor::internal {

namespace {

/// The keys to try for `name`. Trying a key twice in one scope would be pointless, so each occurs
/// once; they differ in length.
template <typename Keys>
void collectKeys(const std::string& name, const prefix_stack& prefixes, Keys& keys) {
    keys.clear();
    const auto add = [&name, &keys](std::size_t prefix) {
        auto key = keyOf<String>(std::string_view(name).substr(prefix));
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

/// The value that one of `keys` refers to in a scope.
const ContextBase* findInScope(const ContextBase& scope, std::span<const String> keys,
                               child_guess& guess) {
    for (const String& key : keys) {
        if (const ContextBase* found = context_access::findChild(scope, key, guess)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

void scope_stack::moveToTop(position from) {
    for (std::size_t at = from; at + 1 < scopes_.size(); ++at) {
        std::swap(scopes_[at].scope, scopes_[at + 1].scope);
    }
    renewStamps();
}

void scope_stack::moveFromTop(position to) {
    for (std::size_t at = scopes_.size() - 1; at > to; --at) {
        std::swap(scopes_[at].scope, scopes_[at - 1].scope);
    }
    renewStamps();
}

/// After a move, only the stamps of the two newest scopes are compared until the move is undone.
/// The others are then unchanged.
void scope_stack::renewStamps() {
    const std::size_t size = scopes_.size();
    for (std::size_t at = size - std::min<std::size_t>(size, 2); at < size; ++at) {
        scopes_[at].stamp = ++stamp_;
    }
}

std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? variable.size() + 1 : 0;
}

const ContextBase* name_lookup::findOutsideLoops(const scope_stack& scopes,
                                                 const std::string& name) {
    const auto key = keyOf<String>(name);
    child_guess guess = 0;
    return scopes.findFirst(
        [&](const ContextBase& scope) { return findInScope(scope, std::span(&key, 1), guess); });
}

const ContextBase* name_lookup::searchScopes(const scope_stack& scopes, const std::string& name,
                                             const prefix_stack& prefixes) {
    if (prefixes.empty()) {
        return findOutsideLoops(scopes, name);
    }
    kept_name& kept = keep(name, prefixes);
    const auto remembered = [&kept]() -> outer_search& { return kept.outside; };
    return scopes.findFirst(remembered, [&kept](const ContextBase& scope) {
        return findInScope(scope, {kept.keys.data(), kept.keys.size()}, kept.guess);
    });
}

name_lookup::kept_name& name_lookup::keep(const std::string& name, const prefix_stack& prefixes) {
    if (slots_ == nullptr) {
        slots_ = std::make_unique<slot_table>();
    }
    slot& kept = slotOf(name);
    if (kept == nullptr) {
        kept = std::make_unique<kept_name>();
    }
    if (kept->name != &name) {
        kept->name = nullptr; // the slot has no name while its keys change
        kept->outside = {};
        collectKeys(name, prefixes, kept->keys);
        kept->name = &name;
    }
    return *kept;
}

/// The slot of `name`, otherwise a free one nearby, otherwise one taken from another name.
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

} // namespace kel::Stencilor::internal
