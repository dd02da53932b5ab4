#ifndef LIBSTENCILORJSON_MEASURE_NAMES_H
#define LIBSTENCILORJSON_MEASURE_NAMES_H

#include <libStencilorJson/JsonValue.h>

namespace kel::Stencilor::internal {

/// The member that makes `object` a boolean, or null.
const JsonValue* findBooleanMember(const JsonValue& object);

/// About how many bytes the dotted names of `root` would take.
std::uint64_t measureDottedNames(const JsonValue& root);

} // namespace kel::Stencilor::internal

#endif
