#include <libStencilor/Stencilor.h>

#include <utility>

namespace kel::Stencilor {

// Copied rather than moved: a value lives long, and a copy holds no more memory than it needs.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
ContextString::ContextString(String text) : value(text) {}

// The children come last: were memory to run out after them, the unfinished value would delete
// what still belongs to the source.
ContextString::ContextString(const ContextString& other) : ContextBase(), value(other.value) {
    ContextBase::operator=(other);
}

ContextString::ContextString(ContextString&& other)
    : ContextBase(other), value(std::move(other.value)) {}

ContextString& ContextString::operator=(const ContextString& other) {
    String copy(other.value); // first, so that exhausted memory changes nothing
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
