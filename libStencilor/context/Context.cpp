#include <libStencilor/Value.h>
#include <libStencilor/context/build_context.h>
#include <libStencilor/value/value_access.h>

#include <utility>

namespace kel::Stencilor {

Context::Context(const Value& value, ContextOptions options)
    : root_(internal::buildContext(value, options)) {}

Context::Context(internal::value_access, std::unique_ptr<ContextBase> root) noexcept
    : root_(std::move(root)) {}

Context::Context(Context&& other) noexcept = default;

Context& Context::operator=(Context&& other) noexcept = default;

Context::~Context() = default;

Context::operator const ContextBase&() const noexcept {
    return *root_;
}

} // namespace kel::Stencilor
