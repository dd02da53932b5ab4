#ifndef LIBSTENCILOR_RENDER_SCOPES_H
#define LIBSTENCILOR_RENDER_SCOPES_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>
#include <libStencilor/render/recent_stack.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::internal {

/// The values whose children are in scope, the root context first. The values are borrowed.
class scope_stack {
  public:
    using position = std::optional<recent_stack<const ContextBase*>::position>;

    /// `scope` may be null. One that holds no names answers nothing, and is not kept.
    position enter(const ContextBase* scope);
    void leave(position before);

    auto newestFirst() const noexcept { return scopes_.newestFirst(); }
    auto end() const noexcept { return scopes_.end(); }

  private:
    recent_stack<const ContextBase*> scopes_;
};

/// The variables of the loops in force; each stands for the prefix that is made of it and a dot.
/// Borrowed from the syntax tree.
using prefix_stack = recent_stack<std::string_view>;

/// How many bytes at the start of `name` are the prefix made of `variable` and a dot; 0 if it does
/// not begin with that.
std::size_t prefixLength(std::string_view name, std::string_view variable) noexcept;

/// Finds values by name. It keeps the memory of one search for the next.
class name_lookup {
  public:
    /// Searches the scopes from the innermost outwards. In each, every prefix is tried, the newest
    /// first: the name without it, or the whole name where it does not begin with it; then the
    /// whole name. A key that holds null counts as absent. Null if nothing is found.
    const ContextBase* findInScopes(const scope_stack& scopes, const std::string& name,
                                    const prefix_stack& prefixes);

  private:
    void collectStarts(std::string_view name, const prefix_stack& prefixes);
    const ContextBase* findInScope(const ContextBase& scope, const std::string& name);

    // The keys to try in a scope: where each starts in the name, in order and each once, and the
    // keys themselves as far as they were needed yet.
    std::vector<std::size_t> starts_;
    std::vector<String> keys_;
};

} // namespace kel::Stencilor::internal

#endif
