#ifndef TOOLS_STENCILOR_CONTEXT_SOURCE_H
#define TOOLS_STENCILOR_CONTEXT_SOURCE_H

#include <libStencilorJson/JsonValue.h>

#include <string>
#include <string_view>

namespace stencilor {

using kel::Stencilor::JsonValue;

/// Reads the JSON text of a context. `name` is what messages call it.
/// Errors: throws `Failure`, with the line and column.
JsonValue readContext(const std::string& name, std::string_view text);

/// Carries out one `-D` option: `NAME=VALUE` makes the member NAME of `context` a string,
/// `NAME:=JSON` any value. What stood under that name is replaced.
/// Errors: throws `Failure`.
void applyDefinition(JsonValue& context, std::string_view definition);

} // namespace stencilor

#endif
