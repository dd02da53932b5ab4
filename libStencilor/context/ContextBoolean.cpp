#include <libStencilor/Stencilor.h>

#include <utility>

namespace kel::Stencilor {

ContextBoolean::ContextBoolean(bool isTrue) : value(isTrue) {}

ContextBoolean::ContextBoolean(const ContextBoolean& other) = default;

ContextBoolean::ContextBoolean(ContextBoolean&& other) : ContextBoolean(std::as_const(other)) {}

ContextBoolean& ContextBoolean::operator=(const ContextBoolean& other) {
    ContextBase::operator=(other);
    value = other.value;
    return *this;
}

ContextBoolean& ContextBoolean::operator=(ContextBoolean&& other) {
    return *this = std::as_const(other);
}

ContextBoolean::~ContextBoolean() = default;

} // namespace kel::Stencilor
