#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {

ContextIterable::ContextIterable() = default;

// The children come last: were memory to run out after them, the unfinished list would delete what
// still belongs to the source. The elements are held by the vector only, which deletes none.
ContextIterable::ContextIterable(const ContextIterable& other)
    : ContextBase(), elements(other.elements) {
    ContextBase::operator=(other);
}

ContextIterable& ContextIterable::operator=(const ContextIterable& other) {
    std::vector<ContextBase*> copy(other.elements); // first: exhausted memory changes nothing
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
