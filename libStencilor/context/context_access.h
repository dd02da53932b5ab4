#ifndef LIBSTENCILOR_CONTEXT_CONTEXT_ACCESS_H
#define LIBSTENCILOR_CONTEXT_CONTEXT_ACCESS_H

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor::internal {

/// The library's own way to what context values hold; hosts have none.
struct context_access {
    template <typename Value>
    static auto& children(Value& value) noexcept {
        return value.children;
    }

    /// The child under `key`, or null.
    static const ContextBase* findChild(const ContextBase& value, const String& key) noexcept {
        const auto found = value.children.find(key);
        return found == value.children.end() ? nullptr : found->second;
    }

    static const String& text(const ContextString& string) noexcept { return string.value; }
    static bool isTrue(const ContextBoolean& boolean) noexcept { return boolean.value; }
    template <typename Iterable>
    static auto& elements(Iterable& iterable) noexcept {
        return iterable.elements;
    }
};

} // namespace kel::Stencilor::internal

#endif
