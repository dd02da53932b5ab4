#include <libStencilor/Stencilor.h>

#include <utility>

namespace kel::Stencilor {

ContextRawString::ContextRawString(String text) : ContextString(std::move(text)) {}

ContextRawString::ContextRawString(const ContextRawString& other) = default;

ContextRawString::ContextRawString(ContextRawString&& other) = default;

ContextRawString& ContextRawString::operator=(const ContextRawString& other) = default;

ContextRawString& ContextRawString::operator=(ContextRawString&& other) = default;

ContextRawString::~ContextRawString() = default;

} // namespace kel::Stencilor
