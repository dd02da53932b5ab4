#include <libStencilor/Stencilor.h>

#include <utility>

namespace kel::Stencilor {

// Copied rather than moved: values are long-lived, and a copy uses no more memory than it needs.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
ContextString::ContextString(String text) : value(text) {}

// The children are copied last: if memory were exhausted afterwards, the unfinished value would
// delete children that belong to the source.
ContextString::ContextString(const ContextString& other) : ContextBase(), value(other.value) {
    ContextBase::operator=(other);
}

ContextString::ContextString(ContextString&& other)
    : ContextBase(other), value(std::move(other.value)) {}

ContextString& ContextString::operator=(const ContextString& other) {
    String copy(other.value); // first, so that nothing changes if memory is exhausted
    ContextBase::operator=(other);
    value = std::move(copy);
    return *this;
}

ContextString& ContextString::operator=(ContextString&& other) {
    ContextBase::operator=(other);
    value = std::move(other.value);
    return *this;
}

ContextString::~ContextString() = default;

} // namespace kel::Stencilor
