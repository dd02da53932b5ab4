#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {

ContextBase::ContextBase() = default;

ContextBase::ContextBase(const ContextBase& other) : children(other.children) {}

ContextBase& ContextBase::operator=(const ContextBase& other) {
    if (this != &other) {
        // Copied before the former entries go, so that exhausted memory changes nothing.
        std::map<String, ContextBase*> copy(other.children);
        children.swap(copy);
    }
    return *this;
}

ContextBase::~ContextBase() {
    for (auto& [key, child] : children) {
        delete child;
        child = nullptr;
    }
    children.clear();
}

ContextBase*& ContextBase::operator[](const String& key) {
    return children[key];
}

ContextBase* ContextBase::insert(const String& key, ContextBase* value) {
    children[key] = value;
    return value;
}

ContextBase* ContextBase::find(const String& key) const {
    const auto found = children.find(key);
    return found == children.end() ? nullptr : found->second;
}

bool ContextBase::containsKey(const String& key) const {
    return children.contains(key);
}

} // namespace kel::Stencilor
