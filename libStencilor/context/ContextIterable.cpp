#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {

ContextIterable::ContextIterable() = default;

// The children are copied last: if memory were exhausted afterwards, the unfinished list would
// delete children that belong to the source. Elements are safe, because the vector does not delete
// them.
ContextIterable::ContextIterable(const ContextIterable& other)
    : ContextBase(), elements(other.elements) {
    ContextBase::operator=(other);
}

ContextIterable& ContextIterable::operator=(const ContextIterable& other) {
    std::vector<ContextBase*> copy(other.elements); // first, in case memory is exhausted
    ContextBase::operator=(other);
    elements.swap(copy);
    return *this;
}

ContextIterable::~ContextIterable() {
    for (ContextBase* element : elements) {
        delete element;
    }
}

void ContextIterable::add(ContextBase* value) {
    elements.push_back(value);
}

std::size_t ContextIterable::size() const {
    return elements.size();
}

ContextBase* ContextIterable::operator[](unsigned int index) {
    return elements[index];
}

} // namespace kel::Stencilor
