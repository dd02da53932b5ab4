#include <libStencilor/Stencilor.h>
#include <libStencilor/context/context_access.h>

#include <memory>
#include <utility>

namespace kel::Stencilor {

namespace {

using internal::context_access;

/// Moves the pointers of `children` into `value`, which must be empty. If memory is exhausted, they
/// still belong to the caller, because the map is copied first.
template <typename Value>
Value* adoptChildren(std::unique_ptr<Value> value, const std::map<String, ContextBase*>& children) {
    auto adopted = std::make_unique<internal::child_map>();
    for (const auto& [key, child] : children) {
        (*adopted)[key] = child;
    }
    context_access::setChildren(*value, std::move(adopted));
    return value.release();
}

} // namespace

ContextFactory& ContextFactory::operator=(const ContextFactory&) {
    return *this;
}

ContextFactory& ContextFactory::operator=(ContextFactory&&) {
    return *this;
}

ContextString* ContextFactory::buildString(const String& value) {
    return new ContextString(value);
}

ContextBoolean* ContextFactory::buildBoolean(bool value) {
    return new ContextBoolean(value);
}

ContextBoolean* ContextFactory::buildBoolean(bool value,
                                             const std::map<String, ContextBase*>& children) {
    return adoptChildren(std::make_unique<ContextBoolean>(value), children);
}

ContextDictionary* ContextFactory::buildDictionary() {
    return new ContextDictionary;
}

ContextDictionary* ContextFactory::buildDictionary(const std::map<String, ContextBase*>& children) {
    return adoptChildren(std::make_unique<ContextDictionary>(), children);
}

ContextIterable* ContextFactory::buildIterable() {
    return new ContextIterable;
}

ContextIterable* ContextFactory::buildIterable(const std::vector<ContextBase*>& elements) {
    auto value = std::make_unique<ContextIterable>();
    std::vector<ContextBase*> adopted(elements);
    context_access::elements(*value).swap(adopted);
    return value.release();
}

} // namespace kel::Stencilor
