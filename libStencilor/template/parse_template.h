#ifndef LIBSTENCILOR_TEMPLATE_PARSE_TEMPLATE_H
#define LIBSTENCILOR_TEMPLATE_PARSE_TEMPLATE_H

#include <libKel/String.h>
#include <libStencilor/template/syntax_tree.h>

namespace kel::Stencilor::internal {

/// Parses `text` into the empty `list`. Returns true if the whole template is well formed;
/// otherwise the list may contain the nodes before the fault. A template ends at its first NUL
/// byte.
bool parseTemplate(const String& text, content_list& list);

/// The same for bytes up to a NUL.
bool parseTemplate(const char* text, content_list& list);

} // namespace kel::Stencilor::internal

#endif
