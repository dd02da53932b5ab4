#include <libStencilor/Stencilor.h>
#include <libStencilor/context/context_access.h>

#include <utility>

namespace kel::Stencilor {

ContextDictionary::ContextDictionary() = default;

ContextDictionary::ContextDictionary(const ContextDictionary& other) = default;

ContextDictionary::ContextDictionary(ContextDictionary&& other)
    : ContextDictionary(std::as_const(other)) {}

ContextDictionary& ContextDictionary::operator=(const ContextDictionary& other) {
    ContextBase::operator=(other);
    return *this;
}

ContextDictionary& ContextDictionary::operator=(ContextDictionary&& other) {
    return *this = std::as_const(other);
}

ContextDictionary::~ContextDictionary() = default;

std::size_t ContextDictionary::size() const {
    return internal::context_access::children(*this).size();
}

} // namespace kel::Stencilor
