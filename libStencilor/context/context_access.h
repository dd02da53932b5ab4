#ifndef LIBSTENCILOR_CONTEXT_CONTEXT_ACCESS_H
#define LIBSTENCILOR_CONTEXT_CONTEXT_ACCESS_H

#include <libStencilor/Stencilor.h>
#include <libStencilor/context/child_map.h>

#include <cassert>
#include <cstddef>
#include <memory>
#include <utility>

namespace kel::Stencilor::internal {

/// The entries of a value in the order of their keys.
class child_range {
  public:
    explicit child_range(const child_map* children) : children_(children) {}

    bool empty() const noexcept { return children_ == nullptr || children_->empty(); }
    std::size_t size() const noexcept { return empty() ? 0 : children_->size(); }
    auto begin() const { return empty() ? child_map::const_iterator() : children_->begin(); }
    auto end() const { return empty() ? child_map::const_iterator() : children_->end(); }

  private:
    const child_map* children_;
};

/// The library's access to the contents of context values.
struct context_access {
    static child_range children(const ContextBase& value) noexcept {
        return child_range(value.children);
    }

    /// For a value that does not have any yet.
    static void setChildren(ContextBase& value, std::unique_ptr<child_map> children) noexcept {
        assert(value.children == nullptr);
        value.children = children.release();
    }

    /// Moves all children to a value that does not have any yet.
    static void moveChildren(ContextBase& from, ContextBase& to) noexcept {
        assert(to.children == nullptr);
        to.children = std::exchange(from.children, nullptr);
    }

    /// The child under `key`, or null. `guess` is set to its position among the children.
    static const ContextBase* findChild(const ContextBase& value, const String& key,
                                        child_guess& guess) {
        if (value.children == nullptr) {
            return nullptr;
        }
        const child_map& children = *value.children;
        const auto found = children.find(key, guess);
        return found == children.end() ? nullptr : found->second;
    }

    /// The child under `key`, if it is at the position `guess`; otherwise null.
    static const ContextBase* guessChild(const ContextBase& value, const String& key,
                                         child_guess guess) {
        return value.children == nullptr ? nullptr : value.children->guess(key, guess);
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
