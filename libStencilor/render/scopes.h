#ifndef LIBSTENCILOR_RENDER_SCOPES_H
#define LIBSTENCILOR_RENDER_SCOPES_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/render/recent_stack.h>

#include <boost/container/small_vector.hpp>

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// The result of a search outside the innermost scope. In a loop, only the innermost scope changes,
/// so the result is valid until the loop ends.
struct outer_search {
    std::uint64_t stamp = 0; // of the searched scopes; 0 if there were none
    const ContextBase* found = nullptr;
};

/// The values whose children are in scope, the root context first. The values are borrowed.
///
/// Like a `recent_stack`, it is searched from the newest scope to the oldest, and keeps only one
/// occurrence of a scope that is entered again.
class scope_stack {
  public:
    /// The position of a scope before it was entered.
    using position = std::size_t;

    scope_stack() = default;
    scope_stack(const scope_stack&) = delete;
    scope_stack& operator=(const scope_stack&) = delete;

    /// Makes `scope`, which may be null, the innermost. A scope without names is not stored. Pass
    /// the result to `leave`.
    position enter(const ContextBase* scope) {
        if (!holdsNames(scope)) {
            return notKept;
        }
        const position before = find(scope, scopes_.size());
        if (before != nowhere) {
            moveToTop(before);
            return before;
        }
        scopes_.push_back({scope, ++stamp_});
        return nowhere;
    }

    /// Undoes the most recent `enter` that has not been undone.
    void leave(position before) {
        assert(before == notKept || !scopes_.empty());
        if (before == nowhere) {
            scopes_.pop_back();
        } else if (before != notKept) {
            moveFromTop(before);
        }
    }

    /// `leave`, and then `enter`.
    position replace(position before, const ContextBase* scope) {
        if (before == nowhere && holdsNames(scope) && find(scope, scopes_.size() - 1) == nowhere) {
            scopes_.back() = {scope, ++stamp_};
            return nowhere;
        }
        leave(before);
        return enter(scope);
    }

    /// The child under `key` of the innermost scope, if it is at the position `guess`; otherwise
    /// null.
    const ContextBase* guessInnermost(const String& key, child_guess guess) const {
        return scopes_.empty() ? nullptr
                               : context_access::guessChild(*scopes_.back().scope, key, guess);
    }

    /// The first value that `findIn` finds in a scope, from the innermost outwards.
    template <typename FindIn>
    const ContextBase* findFirst(FindIn findIn) const {
        return findBelow(scopes_.size(), findIn);
    }

    /// The same, but if there is more than one scope, `remembered` returns the last result for the
    /// same place.
    template <typename Remembered, typename FindIn>
    const ContextBase* findFirst(Remembered remembered, FindIn findIn) const;

  private:
    struct kept_scope {
        const ContextBase* scope;
        std::uint64_t stamp; // differs whenever the scopes up to this position differ
    };

    static constexpr position nowhere = std::numeric_limits<position>::max();
    static constexpr position notKept = nowhere - 1;
    static constexpr std::size_t window = 64;

    static bool holdsNames(const ContextBase* scope) {
        return scope != nullptr && !context_access::children(*scope).empty();
    }

    /// The position of `scope` among the newest scopes below `end`.
    position find(const ContextBase* scope, std::size_t end) const {
        const std::size_t oldest = end > window ? end - window : 0;
        for (std::size_t at = end; at != oldest;) {
            if (scopes_[--at].scope == scope) {
                return at;
            }
        }
        return nowhere;
    }

    template <typename FindIn>
    const ContextBase* findBelow(std::size_t end, FindIn findIn) const {
        const ContextBase* found = nullptr;
        while (found == nullptr && end > 0) {
            found = findIn(*scopes_[--end].scope);
        }
        return found;
    }

    void moveToTop(position from);
    void moveFromTop(position to);
    void renewStamps();

    boost::container::small_vector<kept_scope, 8> scopes_;
    std::uint64_t stamp_ = 0; // the newest
};

template <typename Remembered, typename FindIn>
const ContextBase* scope_stack::findFirst(Remembered remembered, FindIn findIn) const {
    const std::size_t size = scopes_.size();
    if (size < 2) {
        return findBelow(size, findIn);
    }
    if (const ContextBase* innermost = findIn(*scopes_[size - 1].scope)) {
        return innermost;
    }
    const std::uint64_t outer = scopes_[size - 2].stamp;
    outer_search& known = remembered();
    if (known.stamp != outer) {
        known.found = findBelow(size - 1, findIn);
        known.stamp = outer; // only set when nothing can throw anymore
    }
    return known.found;
}

/// The variables of the loops in force, borrowed from the syntax tree. Each represents the prefix
/// that consists of it and a dot.
using prefix_stack = recent_stack<std::string_view>;

/// The length of the prefix of `name` that consists of `variable` and a dot; 0 if it does not begin
/// with that.
std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept;

/// Finds values by name, for one template.
///
/// In a loop, the same few names are looked up repeatedly, with the same loops around them, so
/// their keys are cached for as many names as there are slots.
/// Ownership: identifies names by their address, so they must outlive the object, or be forgotten.
class name_lookup {
  public:
    /// Searches the scopes from the innermost outwards. In each scope, every prefix is tried,
    /// newest first: the name without the prefix, or the whole name if it does not begin with it;
    /// finally the whole name. A null entry counts as missing. Returns null if nothing is found.
    const ContextBase* findInScopes(const scope_stack& scopes, const std::string& name,
                                    const prefix_stack& prefixes);

    /// Call this before names are destroyed, while no loop is open.
    void forgetNames() noexcept { slots_.reset(); }

  private:
    static const ContextBase* findOutsideLoops(const scope_stack& scopes, const std::string& name);

    /// The keys of a name.
    struct kept_name {
        const std::string* name = nullptr;
        child_guess guess = 0;
        outer_search outside;
        boost::container::small_vector<String, 2> keys; // in order, each once
    };

    using slot = std::unique_ptr<kept_name>;
    static constexpr std::size_t slotCount = 64;
    using slot_table = std::array<slot, slotCount>;

    const ContextBase* searchScopes(const scope_stack& scopes, const std::string& name,
                                    const prefix_stack& prefixes);
    kept_name& keep(const std::string& name, const prefix_stack& prefixes);
    slot& slotOf(const std::string& name) const;
    static std::size_t homeOf(const std::string& name) noexcept;

    std::unique_ptr<slot_table> slots_; // null until a name occurs in a loop
};

/// Names are members of records on the heap, so their addresses are distributed well enough.
inline std::size_t name_lookup::homeOf(const std::string& name) noexcept {
    return std::hash<const std::string*>()(&name) / alignof(std::max_align_t) % slotCount;
}

inline const ContextBase* name_lookup::findInScopes(const scope_stack& scopes,
                                                    const std::string& name,
                                                    const prefix_stack& prefixes) {
    // A name is nearly always in its preferred slot, and found where it was last found.
    if (slots_ != nullptr && !prefixes.empty()) {
        const kept_name* const kept = (*slots_)[homeOf(name)].get();
        if (kept != nullptr && kept->name == &name) {
            const auto* found = scopes.guessInnermost(kept->keys.front(), kept->guess);
            if (found != nullptr) {
                return found;
            }
        }
    }
    return searchScopes(scopes, name, prefixes);
}

} // namespace kel::Stencilor::internal

#endif
