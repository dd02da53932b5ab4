#ifndef LIBSTENCILOR_RENDER_SCOPES_H
#define LIBSTENCILOR_RENDER_SCOPES_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/render/recent_stack.h>

#include <boost/container/small_vector.hpp>

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// The values whose children are in scope, the root context first. The values are borrowed.
class scope_stack {
  public:
    using position = recent_stack<const ContextBase*>::position;

    /// `scope` may be null. One that holds no names answers nothing, and is not kept.
    position enter(const ContextBase* scope) {
        const bool kept = scope != nullptr && !context_access::children(*scope).empty();
        return kept ? scopes_.enter(scope) : notKept;
    }
    void leave(position before) {
        if (before != notKept) {
            scopes_.leave(before);
        }
    }

    auto newestFirst() const noexcept { return scopes_.newestFirst(); }
    auto end() const noexcept { return scopes_.end(); }

  private:
    // No position of an entry: a stack of so many would not fit in memory.
    static constexpr position notKept = std::numeric_limits<position>::max() - 1;

    recent_stack<const ContextBase*> scopes_;
};

/// The variables of the loops in force; each stands for the prefix that is made of it and a dot.
/// Borrowed from the syntax tree.
using prefix_stack = recent_stack<std::string_view>;

/// How many bytes at the start of `name` are the prefix made of `variable` and a dot; 0 if it does
/// not begin with that.
std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept;

/// Finds values by name, for one template.
///
/// In a loop the same few names are looked up again and again, and the loops around a name are the
/// same each time: what is tried for it is kept, for as many names as there are slots.
/// Ownership: knows names by their address; they must outlive the object.
class name_lookup {
  public:
    /// Searches the scopes from the innermost outwards. In each, every prefix is tried, the newest
    /// first: the name without it, or the whole name where it does not begin with it; then the
    /// whole name. A key that holds null counts as absent. Null if nothing is found.
    const ContextBase* findInScopes(const scope_stack& scopes, const std::string& name,
                                    const prefix_stack& prefixes);

  private:
    static const ContextBase* findFirst(const scope_stack& scopes, std::span<const String> keys);
    const ContextBase* findOutsideLoops(const scope_stack& scopes, const std::string& name);

    /// What a name is tried as.
    struct kept_name {
        const std::string* name = nullptr;
        boost::container::small_vector<String, 2> keys; // in their order, each once
    };

    using slot = std::unique_ptr<kept_name>;
    static constexpr std::size_t slotCount = 64;
    using slot_table = std::array<slot, slotCount>;

    const kept_name& keep(const std::string& name, const prefix_stack& prefixes);
    slot& slotOf(const std::string& name) const;
    static std::size_t homeOf(const std::string& name) noexcept;

    std::unique_ptr<slot_table> slots_; // none until a name stands in a loop
};

/// The first value that one of `keys` stands for, in the innermost scope that has one.
inline const ContextBase* name_lookup::findFirst(const scope_stack& scopes,
                                                 std::span<const String> keys) {
    for (auto scope = scopes.newestFirst(); scope != scopes.end(); ++scope) {
        const auto& children = context_access::children(**scope);
        for (const String& key : keys) {
            const auto found = children.find(key);
            if (found != children.end() && found->second != nullptr) {
                return found->second;
            }
        }
    }
    return nullptr;
}

/// Names are members of records on the heap, which spreads their addresses well enough.
inline std::size_t name_lookup::homeOf(const std::string& name) noexcept {
    return std::hash<const std::string*>()(&name) / alignof(std::max_align_t) % slotCount;
}

inline const ContextBase* name_lookup::findInScopes(const scope_stack& scopes,
                                                    const std::string& name,
                                                    const prefix_stack& prefixes) {
    if (prefixes.empty()) {
        return findOutsideLoops(scopes, name);
    }
    // Nearly always a name has the slot where it belongs.
    const kept_name* kept = slots_ == nullptr ? nullptr : (*slots_)[homeOf(name)].get();
    if (kept == nullptr || kept->name != &name) {
        kept = &keep(name, prefixes);
    }
    return findFirst(scopes, std::span(kept->keys.data(), kept->keys.size()));
}

} // namespace kel::Stencilor::internal

#endif
