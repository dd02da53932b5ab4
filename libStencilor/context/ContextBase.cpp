#include <libStencilor/Stencilor.h>
#include <libStencilor/context/child_map.h>

#include <memory>
#include <utility>

namespace kel::Stencilor {

using internal::child_map;

ContextBase::ContextBase() = default;

ContextBase::ContextBase(const ContextBase& other)
    : children(other.children == nullptr ? nullptr : new child_map(*other.children)) {}

ContextBase& ContextBase::operator=(const ContextBase& other) {
    if (this != &other) {
        // Copied before the previous entries are dropped, so that nothing changes if memory is
        // exhausted.
        ContextBase copy(other);
        delete std::exchange(children, std::exchange(copy.children, nullptr));
    }
    return *this;
}

ContextBase::~ContextBase() {
    if (children == nullptr) {
        return;
    }
    for (auto& [key, child] : *children) {
        delete child;
        child = nullptr;
    }
    delete children;
}

ContextBase*& ContextBase::operator[](const String& key) {
    if (children == nullptr) {
        children = new child_map;
    }
    return (*children)[key];
}

ContextBase* ContextBase::insert(const String& key, ContextBase* value) {
    (*this)[key] = value;
    return value;
}

ContextBase* ContextBase::find(const String& key) const {
    if (children == nullptr) {
        return nullptr;
    }
    const auto found = std::as_const(*children).find(key);
    return found == std::as_const(*children).end() ? nullptr : found->second;
}

bool ContextBase::containsKey(const String& key) const {
    return children != nullptr &&
           std::as_const(*children).find(key) != std::as_const(*children).end();
}

} // namespace kel::Stencilor
